// The target's thread: reads the line, carries out requests and answers them.
#include "access.h"

#include <algorithm>

namespace {

constexpr size_t READ_CHUNK = 512;
constexpr int64_t NS_PER_MS = 1000000;

struct Answer {
    uint8_t frame[SIM_ANSWER_MAX];
    size_t count = 0; // 0 = nothing is sent
    bool echo = false;
    int64_t delayNs = 0;
    bool isRepeated = false; // sent twice
};

// Carries the request out. Returns the number of data bytes of the answer or, negated, the
// target's error code.
int ExecuteRequest(SIM_Target *target, const SIM_Request &request, uint8_t *data)
{
    constexpr int READ = 0, STORE_WORD = 4, LAST_WITH_DATA = 4;
    if (target->errorCodes[request.command] != 0)
        return -target->errorCodes[request.command];
    if (request.command == SIM_WRITE_COMMAND) {
        if (request.word < 1 || request.word > sizeof request.data)
            return -SIM_ERROR_COUNT;
        SIM_WriteTarget(target, request.station, request.address, request.data, request.word);
        return 0;
    }
    if (request.command == READ) {
        if (request.word > SIM_DATA_MAX)
            return -SIM_ERROR_COUNT;
        SIM_ReadTarget(target, request.station, request.address, data, request.word);
        return request.word;
    }
    if (request.command > LAST_WITH_DATA)
        return 0;
    // Of the word commands only 4 stores its word; each answers the word that stands there.
    if (request.command == STORE_WORD)
        SIM_SetValue(&target->stations[request.station], request.address, 2, request.word);
    SIM_ReadTarget(target, request.station, request.address, data, 2);
    return 2;
}

void LogRequest(SIM_Target *target, const SIM_Request &request, int result, const char *fate)
{
    if (!target->log)
        return;
    fprintf(target->log, "%12.6f station %d command %d address %06X ", SIM_Elapsed(target),
            request.station, request.command, static_cast<unsigned>(request.address));
    if (request.command == SIM_WRITE_COMMAND) {
        fprintf(target->log, "data");
        for (size_t i = 0; i < std::min<size_t>(request.word, sizeof request.data); i++)
            fprintf(target->log, " %02X", request.data[i]);
    } else {
        fprintf(target->log, "word %u", request.word);
    }
    if (result < 0)
        fprintf(target->log, " error %d", -result);
    fprintf(target->log, " %s\n", fate);
    fflush(target->log);
}

Answer PrepareAnswer(SIM_Target *target, const SIM_Request &request)
{
    Answer answer;
    const std::lock_guard<std::mutex> guard(target->lock);
    answer.delayNs = target->options.delayMs * NS_PER_MS;
    if (!(target->options.stations >> request.station & 1)) {
        LogRequest(target, request, 0, "absent");
        return answer;
    }
    uint8_t data[SIM_DATA_MAX];
    const int result = ExecuteRequest(target, request, data);
    answer.count = SIM_BuildAnswer(request, result < 0 ? -result : 0, data,
                                   static_cast<size_t>(std::max(result, 0)), answer.frame);
    const SIM_Fate fate = SIM_DecideFate(target, answer.frame, &answer.count);
    // Drawn only when asked for: the other faults stay where they are by their seed.
    answer.isRepeated = fate == SIM_SENT && target->options.repeat > 0 &&
                        SIM_DrawChance(&target->random, target->options.repeat);
    LogRequest(target, request, result, SIM_FateText(fate));
    return answer;
}

bool SendAnswer(SIM_Target *target, const Answer &answer)
{
    if (answer.count == 0)
        return true;
    // On a paced line the answer follows the request's last character, however late this thread
    // woke.
    const int64_t base = target->line.charNs > 0 ? target->line.receiveNs : SIM_NowNs();
    for (int copy = 0; copy < (answer.isRepeated ? 2 : 1); copy++)
        if (!SIM_SendLine(&target->line, answer.frame, answer.count, base + answer.delayNs))
            return false;
    return true;
}

// Handles what one read brought, which may be several requests or a part of one. Returns false
// when the target is to end.
bool ServeBytes(SIM_Target *target, SIM_Receiver *receiver, const uint8_t *bytes, size_t count)
{
    SIM_Echo echo = SIM_BeginEcho(target);
    for (size_t i = 0; i < count; i++) {
        SIM_Request request;
        SIM_PassReceived(&target->line);
        const SIM_Received got = SIM_ReceiveByte(receiver, bytes[i], &request);
        if (got == SIM_RX_MALFORMED) {
            const std::lock_guard<std::mutex> guard(target->lock);
            target->counters.malformed++;
        }
        const bool isEchoDue = got == SIM_RX_REQUEST || i + 1 == count;
        if (isEchoDue && !SIM_EchoUpTo(target, &echo, bytes, i + 1))
            return false;
        if (got == SIM_RX_REQUEST && !SendAnswer(target, PrepareAnswer(target, request)))
            return false;
    }
    return true;
}

} // namespace

SIM_Echo SIM_BeginEcho(SIM_Target *target)
{
    const std::lock_guard<std::mutex> guard(target->lock);
    return {target->options.echo, 0, target->line.receiveNs};
}

bool SIM_EchoUpTo(SIM_Target *target, SIM_Echo *echo, const uint8_t *bytes, size_t end)
{
    if (!echo->isOn)
        return true;
    if (!SIM_SendLine(&target->line, bytes + echo->done, end - echo->done, echo->fromNs))
        return false;
    echo->done = end;
    echo->fromNs = target->line.receiveNs;
    return true;
}

SIM_Fate SIM_DecideFate(SIM_Target *target, uint8_t *frame, size_t *count)
{
    SIM_Fate fate = SIM_ApplyFaults(&target->random, target->options.drop, target->options.corrupt,
                                    frame, *count);
    if (target->answersLeft == 0)
        fate = SIM_DROPPED;
    if (target->answersLeft > 0)
        target->answersLeft--;
    target->counters.requests++;
    target->counters.dropped += fate == SIM_DROPPED;
    target->counters.corrupted += fate == SIM_CORRUPTED;
    target->counters.answers += fate == SIM_SENT;
    if (fate == SIM_DROPPED)
        *count = 0;
    return fate;
}

const char *SIM_FateText(SIM_Fate fate)
{
    return fate == SIM_DROPPED ? "dropped" : fate == SIM_CORRUPTED ? "corrupted" : "answered";
}

double SIM_Elapsed(const SIM_Target *target)
{
    return static_cast<double>(SIM_NowNs() - target->startNs) / 1e9;
}

void SIM_Serve(SIM_Target *target)
{
    SIM_Receiver receiver;
    uint8_t bytes[READ_CHUNK];
    for (;;) {
        const int count = SIM_ReadLine(&target->line, bytes, sizeof bytes);
        if (count < 0)
            return;
        if (!ServeBytes(target, &receiver, bytes, static_cast<size_t>(count)))
            return;
    }
}
