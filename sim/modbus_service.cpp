// The target's thread as a Modbus RTU slave: reads the line, serves requests, answers them.
#include "modbus_frame.h"
#include "modbus_slave.h"

#include <cstdio>

namespace {

constexpr size_t READ_CHUNK = 512;
constexpr int64_t NS_PER_MS = 1000000;
// What began a frame and was not continued for so long is nobody's any more. Longer than a
// program on a busy machine pauses inside a frame.
constexpr int64_t STALE_NS = 50 * NS_PER_MS;

struct Answer {
    uint8_t frame[SIM_RTU_MAX];
    size_t count = 0; // 0 = nothing is sent
    int64_t delayNs = 0;
};

void LogRequest(SIM_Target *target, const uint8_t *frame, size_t count, int exception,
                const char *fate)
{
    if (!target->log)
        return;
    fprintf(target->log, "%12.6f slave %d function %d data", SIM_Elapsed(target), frame[0],
            frame[1]);
    for (size_t i = 2; i < count; i++)
        fprintf(target->log, " %02X", frame[i]);
    if (exception != 0)
        fprintf(target->log, " exception %d", exception);
    fprintf(target->log, " %s\n", fate);
    fflush(target->log);
}

// `count` is the frame's length without its CRC.
Answer PrepareAnswer(SIM_Target *target, const uint8_t *frame, size_t count)
{
    constexpr int FAILURE = 4, BUSY = 6;
    Answer answer;
    const std::lock_guard<std::mutex> guard(target->lock);
    answer.delayNs = target->options.delayMs * NS_PER_MS;
    // Slave 0 is a broadcast, which nobody answers.
    const int slave = frame[0];
    const bool isPresent =
        slave >= 1 && slave < SIM_STATIONS && (target->options.stations >> slave & 1) != 0;
    if (!isPresent) {
        LogRequest(target, frame, count, 0, "absent");
        return answer;
    }
    // Both draws are made for every request, so that later ones stay where they are when the
    // share of refusals changes.
    const bool isRefused = SIM_DrawChance(&target->random, target->options.refuse);
    const int refusal = target->random() % 2 ? FAILURE : BUSY;
    int exception = isRefused ? refusal : 0;
    if (isRefused)
        answer.count = SIM_RefuseRtu(frame, exception, answer.frame);
    else
        answer.count = SIM_ServeRtu(target, frame, count, answer.frame, &exception);
    answer.count = SIM_CloseRtu(answer.frame, answer.count);
    const SIM_Fate fate = SIM_DecideFate(target, answer.frame, &answer.count);
    LogRequest(target, frame, count, exception, SIM_FateText(fate));
    return answer;
}

// Handles what one read brought. Returns false when the target is to end.
bool ServeBytes(SIM_Target *target, SIM_RtuReceiver *receiver, const uint8_t *bytes, size_t count)
{
    constexpr size_t CRC_SIZE = 2;
    SIM_Echo echo = SIM_BeginEcho(target);
    for (size_t i = 0; i < count; i++) {
        uint64_t malformed = 0;
        SIM_PassReceived(&target->line);
        const size_t whole = SIM_ReceiveRtu(receiver, bytes[i], &malformed);
        if (malformed > 0) {
            const std::lock_guard<std::mutex> guard(target->lock);
            target->counters.malformed += malformed;
        }
        const bool isEchoDue = whole > 0 || i + 1 == count;
        if (isEchoDue && !SIM_EchoUpTo(target, &echo, bytes, i + 1))
            return false;
        if (whole == 0)
            continue;
        receiver->length = 0;
        const Answer answer = PrepareAnswer(target, receiver->bytes, whole - CRC_SIZE);
        if (answer.count == 0)
            continue;
        // A line with a speed answers behind the request's last bit, not when it was read.
        const int64_t base = target->line.charNs > 0 ? target->line.receiveNs : SIM_NowNs();
        if (!SIM_SendLine(&target->line, answer.frame, answer.count, base + answer.delayNs))
            return false;
    }
    return true;
}

} // namespace

void SIM_ServeModbus(SIM_Target *target)
{
    SIM_RtuReceiver receiver;
    uint8_t bytes[READ_CHUNK];
    int64_t lastNs = 0;
    for (;;) {
        const int count = SIM_ReadLine(&target->line, bytes, sizeof bytes);
        if (count < 0)
            return;
        if (SIM_NowNs() - lastNs > STALE_NS)
            receiver.length = 0;
        lastNs = SIM_NowNs();
        if (!ServeBytes(target, &receiver, bytes, static_cast<size_t>(count)))
            return;
    }
}
