#include "comm/modbus_step.h"

#include "comm/in_step.h"
#include "comm/modbus.h"
#include "comm/modbus_frames.h"
#include "comm/modbus_line.h"
#include "comm/trace.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

typedef std::vector<uint8_t> Bytes;

constexpr size_t NOISE_MAX = 4;      // more bytes than that may have been an answer
constexpr size_t HEARD_MAX = 4096;   // of one wait: a line that never stops talking
constexpr int SLOW_ATTEMPTS = 4;     // time-outs that the proof of a slow slave may take
constexpr int PROBES_MAX = 16;       // on a line that adds a byte to every answer there is no end
constexpr int SILENCE_WAITS_MAX = 8; // time-outs after which a chattering line is given up

STEP_Line book;
Bytes lastFrames[STEP_PARTNERS]; // the last request to each slave
bool isSlow[STEP_PARTNERS];      // it answered after its time-out
Bytes heard;                     // bytes of the present wait, not yet sorted into frames
int probesLeft = 0;              // of one proof
int probeFault = 0;              // why the prober gave up

STEP_Partner &PartnerOf(int slave)
{
    return book.partners[static_cast<size_t>(slave)];
}

// An exception tells its function only: it answers the oldest open request of that.
STEP_Shape ShapeOfException(const uint8_t *frame)
{
    const unsigned function = frame[1] & ~static_cast<unsigned>(MBF_EXCEPTION_BIT);
    for (const STEP_Open &open : book.partners[frame[0]].open) {
        if (open.shape >> MBF_FUNCTION_SHIFT == function)
            return open.shape;
    }
    return 0;
}

STEP_Shape ShapeOf(const uint8_t *frame)
{
    return (frame[1] & MBF_EXCEPTION_BIT) != 0 ? ShapeOfException(frame) : MBF_ShapeOfAnswer(frame);
}

// --- sorting bytes into frames ----------------------------------------------------------------

// The next sound answer in `heard`, which then begins with it. Its length, or 0. What may be
// the beginning of one is kept unless `isAll` says that no more comes. *noise grows by the
// bytes passed over.
size_t NextAnswer(bool isAll, size_t *noise)
{
    for (size_t at = 0; at < heard.size(); ++at) {
        const size_t rest = heard.size() - at;
        const size_t length = MBF_AnswerLength(heard.data() + at, rest);
        const bool isWhole = length > 0 && length <= rest;
        const bool isUnfinished = length > rest && !isAll;
        if (!isUnfinished && !(isWhole && MBF_IsSound(heard.data() + at, length)))
            continue;
        *noise += at;
        heard.erase(heard.begin(), heard.begin() + static_cast<std::ptrdiff_t>(at));
        return isUnfinished ? 0 : length;
    }
    *noise += heard.size();
    heard.clear();
    return 0;
}

void DropFrame(size_t length)
{
    heard.erase(heard.begin(), heard.begin() + static_cast<std::ptrdiff_t>(length));
}

void BookNoise(int slave, size_t noise)
{
    if (noise > 0)
        STEP_Junk(&book, slave, noise > NOISE_MAX ? 1 : 0);
}

// A sound answer that is not the one waited for. Whether it was a probe's.
bool BookOther(const uint8_t *answer)
{
    return STEP_Passed(&book, answer[0], ShapeOf(answer), MBM_line->nowMs());
}

// Books everything in `heard` as nobody's answer.
void BookAll(int slave)
{
    size_t noise = 0;
    while (const size_t length = NextAnswer(true, &noise)) {
        BookOther(heard.data());
        DropFrame(length);
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
        MBMTRC_Received(bytes, static_cast<size_t>(got));
    return got;
}

// The line's echo of what was sent, at the beginning of `heard`: cut off. Whether it was there.
bool CutEcho(const uint8_t *sent, size_t count)
{
    if (heard.size() < count || std::memcmp(heard.data(), sent, count) != 0)
        return false;
    DropFrame(count);
    return true;
}

enum class Wait { FOUND, SILENT, DAMAGED, FOREIGN, GONE, ECHO };

// Waits for one time-out until `isWanted`, which books what it does not want, takes a sound
// answer; that then begins `heard`.
template <typename Wanted>
Wait Listen(const uint8_t *sent, size_t count, size_t *length, Wanted isWanted)
{
    const uint32_t start = MBM_line->nowMs();
    const int slave = sent[0];
    size_t noise = 0;
    bool isEchoSeen = false, isOther = false;
    for (bool isOver = false; !isOver;) {
        const uint32_t passed = MBM_line->nowMs() - start;
        // A last round with nothing new sorts what was kept as the beginning of an answer.
        isOver = passed >= MBM_nTimeoutMs || heard.size() > HEARD_MAX;
        const int got = isOver ? 0 : Hear(MBM_nTimeoutMs - passed);
        if (got < 0)
            return Wait::GONE;
        if (!isEchoSeen)
            isEchoSeen = CutEcho(sent, count);
        if (isEchoSeen && !MBM_isEcho)
            return Wait::ECHO;
        // An echo that is still coming in may look like an answer.
        if (MBM_isEcho && !isEchoSeen && !isOver)
            continue;
        while ((*length = NextAnswer(isOver, &noise)) > 0) {
            if (isWanted(heard.data())) {
                BookNoise(slave, noise);
                return Wait::FOUND;
            }
            DropFrame(*length);
            isOther = true;
        }
    }
    BookNoise(slave, noise);
    return noise > 0 ? Wait::DAMAGED : isOther ? Wait::FOREIGN : Wait::SILENT;
}

// --- probes -------------------------------------------------------------------------------------

int FaultOf(Wait wait)
{
    constexpr int FAULTS[] = {
        0, MBM_EX_SILENT, MBM_EX_PART, MBM_EX_FOREIGN, MBM_FAULT_GONE, MBM_FAULT_ECHO};
    return FAULTS[static_cast<int>(wait)];
}

// A probe on its way, and back when `isWanted` takes its answer.
template <typename Wanted>
Wait Exchange(const Bytes &frame, int slave, STEP_Shape shape, Wanted isWanted)
{
    if (TRC_isOn)
        MBMTRC_Begin(frame.data(), frame.size(), true);
    STEP_Sent(&book, slave, shape, true);
    Wait wait = Wait::GONE;
    size_t length = 0;
    if (MBM_line->write(frame.data(), frame.size()) == static_cast<int>(frame.size()))
        wait = Listen(frame.data(), frame.size(), &length, isWanted);
    if (wait == Wait::FOUND) {
        DropFrame(length);
        BookAll(slave);
    }
    if (TRC_isOn)
        MBMTRC_End(MBM_isEcho != 0, FaultOf(wait));
    return wait;
}

// Any probe's answer will do: an earlier one may be proof enough.
int Probe(int slave, STEP_Shape shape)
{
    if (probesLeft-- <= 0) {
        probeFault = MBM_FAULT_STEP;
        return -1;
    }
    const Bytes frame = MBF_BuildProbe(slave, shape);
    const Wait wait = Exchange(frame, slave, shape, [slave](const uint8_t *answer) {
        return BookOther(answer) && answer[0] == slave;
    });
    probeFault = FaultOf(wait);
    if (wait == Wait::FOUND)
        return 1;
    return wait == Wait::GONE || wait == Wait::ECHO ? -1 : 0;
}

const STEP_Prober PROBER = {MBF_aProbeShapes, MBF_cnProbeShapes, Probe};

// Books what waits before a request goes out: the line's way of saying that it is out of step.
int SortWaiting(int slave)
{
    int waiting = MBM_line->waiting();
    for (; waiting > 0; waiting = MBM_line->waiting()) {
        if (Hear(0) <= 0)
            break;
        BookAll(slave);
    }
    return waiting < 0 ? static_cast<int>(MBM_FAULT_GONE) : 0;
}

// One time-out in which nothing comes; then nothing is open any more.
int ProveBySilence(int slave)
{
    for (int i = 0; i < SILENCE_WAITS_MAX; ++i) {
        const int got = Hear(MBM_nTimeoutMs);
        heard.clear();
        if (got < 0)
            return MBM_FAULT_GONE;
        if (got > 0)
            continue;
        STEP_WasSilent(&book, slave, MBM_line->nowMs());
        return 0;
    }
    return MBM_FAULT_STEP;
}

int FaultOfProof(int slave, int result)
{
    if (result == STEP_PROVEN)
        return 0;
    isSlow[slave] = false; // worse than that now: the next try waits no longer
    return result == STEP_ERR_SILENT ? static_cast<int>(MBM_EX_SILENT) : probeFault;
}

// An answer to either sending answers the request; it was in step when it went out first.
bool IsRepetition(int slave)
{
    const Bytes &last = lastFrames[slave];
    const STEP_Partner &partner = PartnerOf(slave);
    return partner.unknown == 0 && !partner.open.empty() && last.size() > MBF_CRC_BYTES &&
           last.size() == static_cast<size_t>(MBM_cnLastSend) &&
           std::equal(last.begin(), last.end(), MBM_abySnd);
}

} // namespace

void MBMSTEP_Opened()
{
    STEP_Reset(&book, MBM_line->nowMs());
    std::fill(std::begin(isSlow), std::end(isSlow), false);
    for (Bytes &frame : lastFrames)
        frame.clear();
    heard.clear();
}

int MBMSTEP_Ready()
{
    const int slave = MBM_abySnd[0];
    const int gone = SortWaiting(slave);
    if (gone != 0)
        return gone;
    const STEP_Shape shape = MBF_ShapeOfRequest(MBM_abySnd);
    if (STEP_IsSafe(book, slave, shape) || IsRepetition(slave))
        return 0;
    if (!MBF_IsTunnel(MBM_abySnd))
        return ProveBySilence(slave);
    const int attempts = isSlow[slave] ? SLOW_ATTEMPTS : 1;
    probesLeft = PROBES_MAX;
    return FaultOfProof(slave, STEP_MakeSafe(&book, slave, shape, attempts, PROBER));
}

void MBMSTEP_Sent()
{
    STEP_Sent(&book, MBM_abySnd[0], MBF_ShapeOfRequest(MBM_abySnd), false);
    lastFrames[MBM_abySnd[0]].assign(MBM_abySnd, MBM_abySnd + MBM_cnLastSend);
}

bool MBMSTEP_IsCalm()
{
    return STEP_IsCalm(book, MBM_abySnd[0], 1);
}

int MBMSTEP_Find(uint8_t *frame, size_t room, int *fault)
{
    const STEP_Shape shape = MBF_ShapeOfRequest(MBM_abySnd);
    size_t length = 0;
    const auto count = static_cast<size_t>(MBM_cnLastSend);
    const Wait wait = Listen(MBM_abySnd, count, &length, [shape](const uint8_t *answer) {
        const bool isAnswer = answer[0] == MBM_abySnd[0] && ShapeOf(answer) == shape;
        if (!isAnswer)
            BookOther(answer);
        return isAnswer;
    });
    if (wait != Wait::FOUND) {
        *fault = FaultOf(wait);
        return 0;
    }
    length = std::min(length, room);
    std::memcpy(frame, heard.data(), length);
    DropFrame(length);
    BookAll(MBM_abySnd[0]);
    return static_cast<int>(length);
}

void MBMSTEP_Answered()
{
    const int slave = MBM_abySnd[0];
    // An older request was still open when this answer came: its own had been late.
    isSlow[slave] = PartnerOf(slave).open.size() > 1;
    const bool wasDue = PartnerOf(slave).isProofDue;
    STEP_Accepted(&book, slave, MBF_ShapeOfRequest(MBM_abySnd), MBM_line->nowMs());
    // A device without memory to probe has no proof but its being in step.
    if (!MBF_IsTunnel(MBM_abySnd))
        PartnerOf(slave).isProofDue = wasDue;
}

void MBMSTEP_Refused()
{
    STEP_Passed(&book, MBM_abySnd[0], MBF_ShapeOfRequest(MBM_abySnd), MBM_line->nowMs());
}

void MBMSTEP_Odd(const uint8_t *bytes, size_t count)
{
    heard.assign(bytes, bytes + count);
    BookAll(MBM_abySnd[0]);
}

bool MBMSTEP_IsProofDue(int slave)
{
    return slave >= 0 && slave < STEP_PARTNERS && !book.partners.empty() &&
           PartnerOf(slave).isProofDue;
}

bool MBMSTEP_IsSuspicious(int slave)
{
    return STEP_IsSuspicious(&book, slave, MBM_line->nowMs());
}

int MBMSTEP_ProveBehind(int slave, int attempts)
{
    if (!MBM_isOpen)
        return MBM_FAULT_CLOSED;
    const int fault = SortWaiting(slave);
    if (fault != 0)
        return fault;
    // Each proof has its own bound: a line that never comes to rest ends with a fault.
    probesLeft = PROBES_MAX;
    return FaultOfProof(slave, STEP_ProveBehind(&book, slave, attempts, PROBER));
}

void MBMSTEP_GiveUpProof(int slave)
{
    PartnerOf(slave).isProofDue = false;
}

uint32_t MBMSTEP_PickProving(int slave, uint32_t least, uint32_t most)
{
    // Only where nothing else can come: a line in doubt gets probes that read nothing of value.
    if (book.partners.empty() || !STEP_IsCalm(book, slave, 0))
        return 0;
    std::vector<STEP_Shape> shapes;
    for (const uint32_t bytes : STEP_ListProbeLengths(2, least, most))
        shapes.push_back(MBF_ProbeShape(bytes));
    STEP_Shape shape = 0;
    return STEP_PickUnusedProbe(&book, slave, shapes, &shape) ? shape & 0xFFFF : 0;
}

int MBMSTEP_ReadProving(int slave, uint32_t address, uint32_t count, uint8_t *bytes)
{
    constexpr size_t DATA_AT = 3;
    if (!MBM_isOpen)
        return MBM_FAULT_CLOSED;
    const int gone = SortWaiting(slave);
    if (gone != 0 || !STEP_IsCalm(book, slave, 0)) // what came just now leaves it in doubt
        return gone != 0 ? gone : static_cast<int>(MBM_FAULT_STEP);
    const STEP_Shape shape = MBF_ProbeShape(count);
    const Bytes frame = MBF_BuildProbe(slave, shape, address);
    int exception = 0;
    const Wait wait = Exchange(frame, slave, shape, [&](const uint8_t *answer) {
        const bool isException = (answer[1] & MBF_EXCEPTION_BIT) != 0;
        const bool isOurs = answer[0] == slave && ShapeOf(answer) == shape;
        if (isOurs && isException) { // has no length to know it by and proves nothing
            STEP_Refused(&book, slave, shape);
            exception = MBM_FAULT_EXCEPTION + answer[2];
            return true;
        }
        // Registers come high byte first; the target's low byte stands in front.
        for (uint32_t i = 0; isOurs && i < count; ++i)
            bytes[i] = answer[DATA_AT + (i ^ 1u)];
        return BookOther(answer) && isOurs;
    });
    if (wait != Wait::FOUND || exception != 0)
        return exception != 0 ? exception : FaultOf(wait);
    if (MBM_cnOk != UINT32_MAX)
        ++MBM_cnOk;
    return 0;
}

uint32_t MBMSTEP_Surplus()
{
    return book.surplus;
}
