// Frames of RTU have no mark at their beginning, so an answer is looked for at every byte: its
// first bytes tell its length, and only its CRC that it was one.
#include "comm/modbus_listen.h"

#include "comm/modbus.h"
#include "comm/modbus_frames.h"
#include "comm/modbus_line.h"
#include "comm/trace.h"

#include <cstring>

STEP_Line MBM_book;

namespace {

constexpr size_t NOISE_MAX = 4;      // more bytes than that may have been an answer
constexpr size_t HEARD_MAX = 4096;   // of one wait: a line that never stops talking
constexpr int SILENCE_WAITS_MAX = 8; // time-outs after which a chattering line is given up

std::vector<uint8_t> heard; // bytes not yet sorted into frames

bool IsException(const uint8_t *answer)
{
    return (answer[1] & MBM_EXCEPTION_BIT) != 0;
}

// Cuts so many bytes off the beginning of `heard`.
void CutHeard(size_t count)
{
    heard.erase(heard.begin(), heard.begin() + static_cast<std::ptrdiff_t>(count));
}

// The next sound answer in `heard`, which then begins with it. Its length, or 0. What may be
// the beginning of one is kept unless `isAll` says that no more comes. *noise grows by the
// bytes passed over.
size_t NextAnswer(bool isAll, size_t *noise)
{
    for (size_t at = 0; at < heard.size(); ++at) {
        const size_t rest = heard.size() - at;
        const size_t length = MBM_AnswerLength(heard.data() + at, rest);
        const bool isWhole = length > 0 && length <= rest;
        const bool isUnfinished = length > rest && !isAll;
        if (!isUnfinished && !(isWhole && MBM_IsSoundFrame(heard.data() + at, length)))
            continue;
        *noise += at;
        CutHeard(at);
        return isUnfinished ? 0 : length;
    }
    *noise += heard.size();
    heard.clear();
    return 0;
}

void BookNoise(int slave, size_t noise)
{
    if (noise > 0)
        STEP_Junk(&MBM_book, slave, noise > NOISE_MAX ? 1 : 0);
}

// Books everything in `heard` as nobody's answer.
void BookHeard(int slave)
{
    size_t noise = 0;
    while (const size_t length = NextAnswer(true, &noise)) {
        MBM_BookOther(heard.data());
        CutHeard(length);
    }
    BookNoise(slave, noise);
}

// What is there, appended to `heard`. Bytes, 0 when nothing came, negative when the port is gone.
int Hear(uint32_t waitMs)
{
    uint8_t bytes[256];
    const int got = MBM_line->readSome(bytes, sizeof bytes, waitMs);
    if (got > 0)
        heard.insert(heard.end(), bytes, bytes + got);
    if (got > 0 && TRC_isOn)
        MBM_TraceReceived(bytes, static_cast<size_t>(got));
    return got;
}

} // namespace

void MBM_ForgetHeard()
{
    heard.clear();
}

STEP_Shape MBM_ShapeOf(const uint8_t *answer)
{
    if (!IsException(answer))
        return MBM_ShapeOfAnswer(answer);
    // An exception tells its function only: it answers the oldest open request of that.
    const unsigned function = answer[1] & ~static_cast<unsigned>(MBM_EXCEPTION_BIT);
    for (const STEP_Open &open : MBM_book.partners[answer[0]].open) {
        if (open.shape >> MBM_FUNCTION_SHIFT == function)
            return open.shape;
    }
    return 0;
}

bool MBM_BookOther(const uint8_t *answer)
{
    const STEP_Shape shape = MBM_ShapeOf(answer);
    if (!IsException(answer) || shape == 0)
        return STEP_Passed(&MBM_book, answer[0], shape, MBM_line->nowMs());
    // It crosses out a request, but has no length to know it by: one that was repeated, or of
    // a time before the book began, looks the same. So it is never a probe's answer.
    STEP_Refused(&MBM_book, answer[0], shape);
    return false;
}

void MBM_BookBytes(int slave, const uint8_t *bytes, size_t count)
{
    heard.assign(bytes, bytes + count);
    BookHeard(slave);
}

int MBM_BookWaiting(int slave)
{
    // Bytes that wait are the line's way of saying that it is out of step.
    int waiting = MBM_line->waiting();
    for (; waiting > 0; waiting = MBM_line->waiting()) {
        if (Hear(0) <= 0)
            break;
        BookHeard(slave);
    }
    return waiting < 0 ? static_cast<int>(MBM_FAULT_GONE) : 0;
}

int MBM_Listen(const uint8_t *sent, size_t count,
               const std::function<bool(const uint8_t *answer)> &isWanted,
               std::vector<uint8_t> *answer)
{
    const uint32_t start = MBM_line->nowMs();
    const int slave = sent[0];
    size_t noise = 0;
    bool isEchoSeen = false, isOther = false;
    for (bool isOver = false; !isOver;) {
        const uint32_t passed = MBM_line->nowMs() - start;
        // A last round with nothing new sorts what was kept as the beginning of an answer.
        isOver = passed >= MBM_nTimeoutMs || heard.size() > HEARD_MAX;
        if (!isOver && Hear(MBM_nTimeoutMs - passed) < 0)
            return MBM_FAULT_GONE;
        if (!isEchoSeen && heard.size() >= count && std::memcmp(heard.data(), sent, count) == 0) {
            if (!MBM_isEcho)
                return MBM_FAULT_ECHO;
            isEchoSeen = true;
            CutHeard(count);
        }
        // An echo that is still coming in may look like an answer.
        if (MBM_isEcho && !isEchoSeen && !isOver)
            continue;
        while (const size_t length = NextAnswer(isOver, &noise)) {
            const bool isFound = isWanted(heard.data());
            if (isFound)
                answer->assign(heard.begin(), heard.begin() + static_cast<std::ptrdiff_t>(length));
            CutHeard(length);
            if (isFound) {
                BookNoise(slave, noise);
                BookHeard(slave);
                return 0;
            }
            isOther = true;
        }
    }
    BookNoise(slave, noise);
    return noise > 0 ? MBM_EX_PART : isOther ? MBM_EX_FOREIGN : MBM_EX_SILENT;
}

int MBM_ProveBySilence(int slave)
{
    for (int i = 0; i < SILENCE_WAITS_MAX; ++i) {
        const int got = Hear(MBM_nTimeoutMs);
        if (got < 0)
            return MBM_FAULT_GONE;
        if (got > 0)
            continue;
        // Booked only now that frames are whole. An answer too many casts doubt on what was
        // read before, which the silence behind it would hide.
        BookHeard(slave);
        STEP_WasSilent(&MBM_book, slave, MBM_line->nowMs());
        return 0;
    }
    heard.clear();
    return MBM_FAULT_STEP;
}
