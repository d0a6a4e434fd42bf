// Characters come one by one: start and end characters tell frames, and each sound answer is
// looked up among the open requests of its station.
#include "comm/mr166_answers.h"

#include "comm/mr166_link.h"
#include "platform/system.h"

#include <algorithm>
#include <cstring>

STEP_Line Mr166_line;

namespace {

constexpr size_t CHUNK = 256;
constexpr size_t JUNK_ANSWER_CHARS = 5; // so many in a row may be half of a damaged answer

enum class Event { NONE, ANSWER, DAMAGED, ECHO };

struct Sorter {
    char frame[MR166_ANSWER_ROOM];
    size_t count = 0;        // characters of the frame that has begun
    size_t noiseChars = 0;   // outside of any frame since the last one
    size_t damagedChars = 0; // of the last damaged frame
};

Sorter sorter;

// A frame that ends before its end character was reached, or characters outside of frames.
Event EndDamaged(size_t chars)
{
    sorter.count = 0;
    sorter.noiseChars = 0;
    sorter.damagedChars = chars;
    return chars > 0 ? Event::DAMAGED : Event::NONE;
}

// Start characters are in no frame's text, so each begins a frame. When one cuts another
// frame off, that is told first.
Event SortByte(char byte)
{
    const bool isAnswerStart = byte == MR166_START_ANSWER;
    if (isAnswerStart || byte == MR166_START_SHORT || byte == MR166_START_LONG) {
        const Event cut = EndDamaged(sorter.count + sorter.noiseChars);
        sorter.frame[sorter.count++] = byte;
        return cut;
    }
    if (sorter.count == 0) {
        ++sorter.noiseChars;
        return byte == MR166_END ? EndDamaged(sorter.noiseChars) : Event::NONE;
    }
    sorter.frame[sorter.count++] = byte;
    const bool isAnswer = sorter.frame[0] == MR166_START_ANSWER;
    if (byte == MR166_END)
        return isAnswer ? Event::ANSWER : Event::ECHO;
    // No frame is longer: what goes on is noise, and the next start character is looked for.
    const size_t room = isAnswer ? MR166_ANSWER_ROOM : MR166_LONG_CHARS;
    return sorter.count == room ? EndDamaged(room) : Event::NONE;
}

// The open request of this command that an error answer, which has no length of its own,
// belongs to: the oldest. `none` when there is none.
STEP_Shape OldestOfCommand(int station, int command, STEP_Shape none)
{
    for (const STEP_Open &open : Mr166_line.partners[static_cast<size_t>(station)].open) {
        if (open.shape >> 8 == static_cast<unsigned>(command))
            return open.shape;
    }
    return none;
}

// Books a sound answer that is not the one waited for.
Mr166_Judgement BookOther(int code)
{
    const int echoed = hexToByte(sorter.frame + 1);
    const int station = echoed >> 4, command = echoed & 15;
    const unsigned count = hexToByte(sorter.frame + 3);
    const STEP_Shape shape = Mr166_ShapeOf(command, count);
    const bool isError = count >= MR166_TARGET_ERROR_MIN;
    // An error answer carries its code where others carry their count of bytes.
    const STEP_Shape refused = OldestOfCommand(station, command, shape);
    const uint32_t before = Mr166_line.disturbed;
    bool isProof = false;
    if (isError && refused != shape)
        STEP_Refused(&Mr166_line, station, refused);
    else
        isProof = STEP_Passed(&Mr166_line, station, shape, PLT_TickMs());
    Mr166_Judgement judgement;
    judgement.kind = isProof ? Mr166_Judgement::PROOF : Mr166_Judgement::WAIT;
    judgement.isOlder = Mr166_line.disturbed == before;
    judgement.code = isError || !judgement.isOlder ? code : 0;
    return judgement;
}

// Looks at the complete answer in the sorter. `request` is null while nobody waits.
Mr166_Judgement JudgeAnswer(const Mr166_Request *request, int station)
{
    const int command = request != nullptr ? request->command : MR166_CMD_READ;
    const int code = mr166CheckAnswer(sorter.frame, sorter.count, station, command);
    if ((code < 0 && code > MR166_ERR_STATION) || code == MR166_ERR_LENGTH) {
        // Damaged on its way it may have been ours: when no other answer can come, waiting on
        // would only cost the rest of the time-out.
        STEP_Junk(&Mr166_line, station, sorter.count >= JUNK_ANSWER_CHARS ? 1 : 0);
        const bool isLast = STEP_HaveAllCome(Mr166_line, station);
        return {isLast ? Mr166_Judgement::UNSOUND : Mr166_Judgement::WAIT, code};
    }
    if (request == nullptr || code == MR166_ERR_STATION || code == MR166_ERR_COMMAND)
        return BookOther(code);
    const STEP_Shape shape = Mr166_ShapeOfAnswerTo(*request);
    const bool isError = code <= -MR166_TARGET_ERROR_MIN;
    if (isError && OldestOfCommand(station, command, shape) == shape) {
        STEP_Refused(&Mr166_line, station, shape);
        return {Mr166_Judgement::REFUSED, code};
    }
    if (isError || Mr166_ShapeOf(command, static_cast<unsigned>(code)) != shape)
        return BookOther(isError ? code : MR166_FAULT_COUNT);
    STEP_Accepted(&Mr166_line, station, shape, PLT_TickMs());
    // From here on as if a driver had read it: the answer check leaves its data where all
    // callers look for them.
    std::memcpy(Mr166_abyRcv, sorter.frame, sorter.count);
    cbRcv = static_cast<uint16_t>(sorter.count);
    cnRcvData = static_cast<uint16_t>(chkAnsFrm(station, command));
    return {Mr166_Judgement::ACCEPTED, 0};
}

} // namespace

STEP_Shape Mr166_ShapeOf(int command, unsigned dataBytes)
{
    return static_cast<unsigned>(command) << 8 | dataBytes;
}

// Commands 1 to 4 are answered with two bytes of data, a read with what was asked for.
unsigned Mr166_ExpectedData(const Mr166_Request &request)
{
    if (request.command >= 1 && request.command <= 4)
        return 2;
    return request.command == MR166_CMD_READ ? std::min<unsigned>(request.word, 0xFF) : 0;
}

STEP_Shape Mr166_ShapeOfAnswerTo(const Mr166_Request &request)
{
    return Mr166_ShapeOf(request.command, Mr166_ExpectedData(request));
}

void Mr166_ResetAnswers()
{
    sorter = Sorter();
}

size_t Mr166_CountBegunAnswer()
{
    return sorter.count;
}

int Mr166_CheckBegunAnswer(int station, int command)
{
    return mr166CheckAnswer(sorter.frame, sorter.count, station, command);
}

Mr166_Judgement Mr166_JudgeByte(char byte, const Mr166_Request *request, int station)
{
    const bool wasNoise = sorter.count == 0;
    switch (SortByte(byte)) {
    case Event::ANSWER: {
        const Mr166_Judgement judgement = JudgeAnswer(request, station);
        sorter.count = sorter.noiseChars = 0;
        return judgement;
    }
    case Event::ECHO: {
        const bool isOwn =
            sorter.count == cbSnd && std::memcmp(sorter.frame, Mr166_abySnd, cbSnd) == 0;
        if (!isOwn) // an answer whose first character was damaged looks like this
            STEP_Junk(&Mr166_line, station, sorter.count >= JUNK_ANSWER_CHARS ? 1 : 0);
        sorter.count = 0;
        return {isOwn ? Mr166_Judgement::ECHO : Mr166_Judgement::WAIT, isOwn ? 0 : MR166_ERR_START};
    }
    case Event::DAMAGED:
        STEP_Junk(&Mr166_line, station, sorter.damagedChars >= JUNK_ANSWER_CHARS ? 1 : 0);
        return {Mr166_Judgement::WAIT, wasNoise ? MR166_ERR_START : MR166_ERR_END};
    case Event::NONE:
        break;
    }
    return {Mr166_Judgement::WAIT, 0};
}

void Mr166_SortLeftOver(const char *bytes, size_t count, int station)
{
    for (size_t i = 0; i < count; ++i)
        (void)Mr166_JudgeByte(bytes[i], nullptr, station);
}

// A byte that waits before a request goes out, or the beginning of a frame left over from
// before, says that the line is out of step.
void Mr166_ClearInput(const Mr166_Driver &driver, int station)
{
    char bytes[CHUNK];
    while (driver.waiting() > 0) {
        const int got = driver.readSome(bytes, sizeof bytes, 0);
        if (got <= 0)
            return;
        Mr166_SortLeftOver(bytes, static_cast<size_t>(got), station);
    }
    if (sorter.count + sorter.noiseChars > 0)
        STEP_Junk(&Mr166_line, station, 0);
}
