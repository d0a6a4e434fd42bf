// One mr166 exchange on a line that knows whether it is in step. In step, the answer is read
// as the driver reads it and failures have the driver's codes. Out of step, the characters
// are sorted into frames and each answer is looked up in the book of open ones: only what
// can be nobody else's answer is accepted.
#include "comm/failures.h"
#include "comm/in_step.h"
#include "comm/mr166_driver.h"
#include "comm/mr166_link.h"
#include "comm/trace.h"
#include "platform/system.h"

#include <algorithm>
#include <cstring>

uint8_t Mr166_byStNo = 0, Mr166_byCmd = 0;
uint32_t Mr166_dwAddr = 0;
uint16_t Mr166_wData = 0;
int32_t nMr166Err = 0;
uint16_t wMr166State = MR166_STATE_OK;
uint16_t cnRcvData = 0;
int32_t Mr166_nFault = 0;
bool Mr166_isEchoing = false;
uint32_t EC_dwMsgOk = 0;
uint16_t EC_wTimeErr = 0;
uint16_t EC_wFrameErr = 0;

namespace {

constexpr uint32_t ADDRESS_MAX = 0xFFFFFF;
constexpr int STATIONS = 16, COMMAND_MAX = 15;
constexpr size_t UNCHECKED_ANSWER_ROOM = 64, CHUNK = 256;
constexpr size_t JUNK_ANSWER_CHARS = 5; // so many in a row may be half of a damaged answer
constexpr uint32_t PROOF_PERIOD_MS = 1000, SUSPICION_MS = 10000;

// --- sorting characters into frames ---------------------------------------------------

enum class Event { NONE, ANSWER, DAMAGED, ECHO };

struct Sorter {
    char frame[MR166_ANSWER_ROOM];
    size_t count = 0;        // characters of the frame that has begun
    size_t noiseChars = 0;   // outside of any frame since the last one
    size_t damagedChars = 0; // of the last damaged frame
};

STEP_Line line;
Sorter sorter;
bool wasSent = false;
uint32_t failedProbes = 0;
uint32_t disturbedSeen = 0, suspiciousSinceMs = 0; // when something odd was last noticed
bool isSuspicious = false;

// Where a probe reads: address 0, or, at a station that refuses that, where it answered.
struct ProbePlace {
    uint32_t goodAddress = 0;
    bool hasGood = false, isZeroRefused = false;
};
ProbePlace probePlaces[STATIONS];

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
    const size_t room = isAnswer ? MR166_ANSWER_ROOM : MR166_LONG_CHARS;
    return sorter.count == room ? EndDamaged(room) : Event::NONE;
}

// --- what an answer is of -------------------------------------------------------------

STEP_Shape ShapeOf(int command, unsigned dataBytes)
{
    return static_cast<unsigned>(command) << 8 | dataBytes;
}

// Commands 1 to 4 are answered with two bytes of data, a read with what was asked for.
unsigned ExpectedData(const Mr166_Request &request)
{
    if (request.command >= 1 && request.command <= 4)
        return 2;
    return request.command == MR166_CMD_READ ? std::min<unsigned>(request.word, 0xFF) : 0;
}

STEP_Shape ShapeOfAnswerTo(const Mr166_Request &request)
{
    return ShapeOf(request.command, ExpectedData(request));
}

// The open request of this command that an error answer, which has no length of its own,
// belongs to: the oldest. `none` when there is none.
STEP_Shape OldestOfCommand(int station, int command, STEP_Shape none)
{
    for (const STEP_Open &open : line.partners[static_cast<size_t>(station)].open) {
        if (open.shape >> 8 == static_cast<unsigned>(command))
            return open.shape;
    }
    return none;
}

// How the waiting for an answer goes on after a frame.
struct Judgement {
    enum Kind { WAIT, ACCEPTED, REFUSED, PROOF, ECHO, UNSOUND } kind = WAIT;
    int code = 0;         // of the answer check, of a frame that was none's answer
    bool isOlder = false; // an answer to an older request: the partner works them off
};

// Books a sound answer that is not the one waited for.
Judgement BookOther(int code)
{
    const int echoed = hexToByte(sorter.frame + 1);
    const int station = echoed >> 4, command = echoed & 15;
    const unsigned count = hexToByte(sorter.frame + 3);
    const STEP_Shape shape = ShapeOf(command, count);
    const bool isError = count >= MR166_TARGET_ERROR_MIN;
    const STEP_Shape refused = OldestOfCommand(station, command, shape);
    const uint32_t before = line.disturbed;
    bool isProof = false;
    if (isError && refused != shape)
        STEP_Refused(&line, station, refused);
    else
        isProof = STEP_Passed(&line, station, shape, PLT_TickMs());
    Judgement judgement;
    judgement.kind = isProof ? Judgement::PROOF : Judgement::WAIT;
    judgement.isOlder = line.disturbed == before;
    judgement.code = isError || !judgement.isOlder ? code : 0;
    return judgement;
}

// Looks at the complete answer in the sorter. `request` is null while nobody waits.
Judgement JudgeAnswer(const Mr166_Request *request, int station)
{
    const int command = request != nullptr ? request->command : MR166_CMD_READ;
    const int code = mr166CheckAnswer(sorter.frame, sorter.count, station, command);
    if ((code < 0 && code > MR166_ERR_STATION) || code == MR166_ERR_LENGTH) {
        STEP_Junk(&line, station, sorter.count >= JUNK_ANSWER_CHARS ? 1 : 0);
        const bool isLast = STEP_HaveAllCome(line, station);
        return {isLast ? Judgement::UNSOUND : Judgement::WAIT, code};
    }
    if (request == nullptr || code == MR166_ERR_STATION || code == MR166_ERR_COMMAND)
        return BookOther(code);
    const STEP_Shape shape = ShapeOfAnswerTo(*request);
    const bool isError = code <= -MR166_TARGET_ERROR_MIN;
    if (isError && OldestOfCommand(station, command, shape) == shape) {
        STEP_Refused(&line, station, shape);
        return {Judgement::REFUSED, code};
    }
    if (isError || ShapeOf(command, static_cast<unsigned>(code)) != shape)
        return BookOther(isError ? code : MR166_FAULT_COUNT);
    STEP_Accepted(&line, station, shape, PLT_TickMs());
    std::memcpy(Mr166_abyRcv, sorter.frame, sorter.count);
    cbRcv = static_cast<uint16_t>(sorter.count);
    cnRcvData = static_cast<uint16_t>(chkAnsFrm(station, command));
    return {Judgement::ACCEPTED, 0};
}

bool IsOwnEcho()
{
    return sorter.count == cbSnd && std::memcmp(sorter.frame, Mr166_abySnd, cbSnd) == 0;
}

Judgement JudgeByte(char byte, const Mr166_Request *request, int station)
{
    const bool wasNoise = sorter.count == 0;
    switch (SortByte(byte)) {
    case Event::ANSWER: {
        const Judgement judgement = JudgeAnswer(request, station);
        sorter.count = sorter.noiseChars = 0;
        return judgement;
    }
    case Event::ECHO: {
        const bool isOwn = IsOwnEcho();
        if (!isOwn) // an answer whose first character was damaged looks like this
            STEP_Junk(&line, station, sorter.count >= JUNK_ANSWER_CHARS ? 1 : 0);
        sorter.count = 0;
        return {isOwn ? Judgement::ECHO : Judgement::WAIT, isOwn ? 0 : MR166_ERR_START};
    }
    case Event::DAMAGED:
        STEP_Junk(&line, station, sorter.damagedChars >= JUNK_ANSWER_CHARS ? 1 : 0);
        return {Judgement::WAIT, wasNoise ? MR166_ERR_START : MR166_ERR_END};
    case Event::NONE:
        break;
    }
    return {Judgement::WAIT, 0};
}

// Sorts characters nobody waits for: what was left over, or what a strict reading refused.
void SortLeftOver(const char *bytes, size_t count, int station)
{
    for (size_t i = 0; i < count; ++i)
        (void)JudgeByte(bytes[i], nullptr, station);
}

// A byte that waits before a request goes out, or the beginning of a frame left over from
// before, says that the line is out of step.
void ClearInput(const Mr166_Driver &driver, int station)
{
    char bytes[CHUNK];
    while (driver.waiting() > 0) {
        const int got = driver.readSome(bytes, sizeof bytes, 0);
        if (got <= 0)
            return;
        SortLeftOver(bytes, static_cast<size_t>(got), station);
    }
    if (sorter.count + sorter.noiseChars > 0)
        STEP_Junk(&line, station, 0);
}

enum class Kind { REQUEST, REPETITION, PROBE };

// --- results of a try -----------------------------------------------------------------

int Refuse(int code)
{
    nMr166Err = code;
    Mr166_nFault = code;
    wMr166State = MR166_STATE_FAILED;
    return code;
}

int FailTry(bool isEchoSeen)
{
    if (TRC_isOn)
        MrTRC_End(true, isEchoSeen);
    FAIL_Note(MrASC_ErrorText(Mr166_nFault));
    return 0;
}

int FailSilent(int fault, bool isEchoSeen)
{
    ++EC_wTimeErr;
    wMr166State = MR166_STATE_WAITING;
    nMr166Err = MR166_ERR_TIMEOUT;
    Mr166_nFault = fault;
    return FailTry(isEchoSeen);
}

int FailCheck(int code, int fault, bool isEchoSeen)
{
    if (EC_wFrameErr != UINT16_MAX)
        ++EC_wFrameErr;
    Refuse(code);
    Mr166_nFault = fault;
    Mr166_isEchoing = Mr166_isEchoing || fault == MR166_FAULT_ECHO;
    return FailTry(isEchoSeen);
}

int Cancel()
{
    Refuse(MR166_FAULT_CANCELLED);
    FAIL_Note(MrASC_ErrorText(MR166_FAULT_CANCELLED));
    return 0;
}

int Succeed(const Mr166_Request &request, bool isEchoSeen)
{
    wMr166State = MR166_STATE_OK;
    if (EC_dwMsgOk != UINT32_MAX)
        ++EC_dwMsgOk;
    nMr166Err = 0;
    Mr166_nFault = 0;
    Mr166_isEchoing = false;
    if (request.command == MR166_CMD_READ) {
        probePlaces[request.station].goodAddress = request.address;
        probePlaces[request.station].hasGood = true;
    }
    if (TRC_isOn)
        MrTRC_End(true, isEchoSeen);
    return 1;
}

// --- reading ----------------------------------------------------------------------------

struct Reading {
    Judgement::Kind kind = Judgement::WAIT; // still WAIT: the time is over
    int code = 0;                           // of the first frame that answered nothing
    bool isGone = false, isEchoSeen = false;
};

// Sorts what comes until the answer is there or the time is over. A probe's wait ends with
// any probe's answer, because that may be proof enough.
Reading ReadSorted(const Mr166_Driver &driver, const Mr166_Request &request, Kind sending)
{
    uint32_t start = PLT_TickMs(), limitMs = Mr166_nTimeoutMs;
    Reading reading;
    bool isAnythingRead = false;
    char bytes[CHUNK];
    while (reading.kind == Judgement::WAIT) {
        const uint32_t passed = PLT_TickMs() - start;
        const bool isEndless = Mr166_wComDbg && driver.isEchoSkipped;
        if (passed >= limitMs && !isEndless)
            break;
        const uint32_t wait = passed < limitMs ? limitMs - passed : limitMs;
        const int got = driver.readSome(bytes, sizeof bytes, wait);
        if (got < 0) {
            reading.isGone = true;
            break;
        }
        if (TRC_isOn)
            MrTRC_Received(bytes, static_cast<size_t>(got));
        isAnythingRead = isAnythingRead || got > 0;
        for (int i = 0; i < got; ++i) {
            const bool isWaiting = reading.kind == Judgement::WAIT;
            const Judgement judgement =
                JudgeByte(bytes[i], isWaiting ? &request : nullptr, request.station);
            if (!isWaiting)
                continue;
            if (judgement.isOlder) { // it is slow, and ours is in the queue behind
                start = PLT_TickMs();
                limitMs = Mr166_nTimeoutMs * (static_cast<uint32_t>(Mr166_CnBlkRpt) + 1);
            }
            if (reading.code == 0 || judgement.kind == Judgement::REFUSED)
                reading.code = judgement.code;
            if (judgement.kind == Judgement::ECHO)
                reading.isEchoSeen = true;
            else if (judgement.kind != Judgement::PROOF || sending == Kind::PROBE)
                reading.kind = judgement.kind;
        }
    }
    // The driver that reads by length calls half an answer damaged, the other one none.
    if (reading.kind == Judgement::WAIT && reading.code == 0 && !driver.isEchoSkipped &&
        isAnythingRead && sorter.count > 0)
        reading.code =
            mr166CheckAnswer(sorter.frame, sorter.count, request.station, request.command);
    // A driver that cannot skip echoes gives no value on a line that has them. The answer
    // behind an echo is awaited all the same, or it would be taken for the next try's. Of
    // repetitions, an earlier one's answer may come before the echo.
    const bool isEarlier = Mr166_isEchoing && sending == Kind::REPETITION;
    const bool isAnswered = reading.kind == Judgement::ACCEPTED;
    if (!driver.isEchoSkipped && (reading.isEchoSeen || (isEarlier && isAnswered)))
        reading.kind = Judgement::ECHO;
    return reading;
}

int FinishSorted(const Mr166_Request &request, const Reading &reading)
{
    if (reading.isGone)
        return FailSilent(MR166_FAULT_GONE, reading.isEchoSeen);
    if (reading.kind == Judgement::ACCEPTED)
        return Succeed(request, reading.isEchoSeen);
    if (reading.kind == Judgement::ECHO)
        return FailCheck(MR166_ERR_START, MR166_FAULT_ECHO, false);
    if (reading.code == 0)
        return FailSilent(MR166_ERR_TIMEOUT, reading.isEchoSeen);
    const bool isCount = reading.code == MR166_FAULT_COUNT;
    return FailCheck(isCount ? MR166_ERR_LENGTH : reading.code, reading.code, reading.isEchoSeen);
}

bool StartsWithOwnEcho()
{
    return cbRcv > 0 && std::memcmp(Mr166_abyRcv, Mr166_abySnd, std::min(cbRcv, cbSnd)) == 0;
}

// Reads the way the driver reads a line that is in step. What fails the check goes through
// the sorter, so that the rest of it finds its beginning there.
int ReadInStep(const Mr166_Driver &driver, const Mr166_Request &request)
{
    bool isEchoSeen = false;
    const size_t expected =
        std::min<size_t>(MR166_ANSWER_MIN_CHARS + 2u * ExpectedData(request), MR166_ANSWER_ROOM);
    const Mr166_Ending ending = driver.readAnswer(expected, &isEchoSeen);
    if (ending == Mr166_Ending::GONE)
        return FailSilent(MR166_FAULT_GONE, isEchoSeen);
    const STEP_Shape shape = ShapeOfAnswerTo(request);
    const int count = ending == Mr166_Ending::COMPLETE ? chkAnsFrm(request.station, request.command)
                                                       : MR166_ERR_START;
    if (count >= 0) {
        cnRcvData = static_cast<uint16_t>(count);
        const STEP_Shape came = ShapeOf(request.command, static_cast<unsigned>(count));
        if (came == shape)
            STEP_Accepted(&line, request.station, shape, PLT_TickMs());
        else // somebody else's, perhaps: the caller sees the count
            STEP_Passed(&line, request.station, came, PLT_TickMs());
        return Succeed(request, isEchoSeen);
    }
    if (ending == Mr166_Ending::COMPLETE && count <= -MR166_TARGET_ERROR_MIN) {
        STEP_Refused(&line, request.station, shape);
        return FailCheck(count, count, isEchoSeen);
    }
    const bool isEcho = ending == Mr166_Ending::COMPLETE && StartsWithOwnEcho();
    SortLeftOver(Mr166_abyRcv, cbRcv, request.station);
    if (isEcho)
        (void)ReadSorted(driver, request, Kind::REQUEST);
    if (ending == Mr166_Ending::TIME_OUT)
        return FailSilent(MR166_ERR_TIMEOUT, isEchoSeen);
    if (ending == Mr166_Ending::WRONG_START) {
        ++EC_wFrameErr;
        nMr166Err = Mr166_nFault = MR166_ERR_START;
        return FailTry(isEchoSeen);
    }
    return FailCheck(count, isEcho ? MR166_FAULT_ECHO : count, isEchoSeen);
}

// --- sending ----------------------------------------------------------------------------

enum class Examined { GOOD, REFUSED, BAD_ARGUMENT };

// What forbids the request before anything is sent. `closedState` is what a closed port
// leaves behind.
Examined Examine(const Mr166_Driver &driver, const Mr166_Request &request, uint16_t closedState)
{
    if (!wMrOpenFlag) {
        Refuse(MR166_ERR_CLOSED);
        wMr166State = closedState;
        return Examined::REFUSED;
    }
    if (request.address > ADDRESS_MAX) {
        nMr166Err = MR166_ERR_ARGUMENT;
        Mr166_nFault = MR166_ERR_ARGUMENT;
        return Examined::REFUSED;
    }
    driver.clearOutput();
    Mr166_byStNo = static_cast<uint8_t>(request.station);
    Mr166_byCmd = static_cast<uint8_t>(request.command);
    Mr166_dwAddr = request.address;
    Mr166_wData = request.word;
    const bool isBadWrite =
        request.command == MR166_CMD_WRITE &&
        (request.word < 1 || request.word > MR166_WRITE_MAX || request.data == nullptr);
    if (request.station >= 0 && request.station < STATIONS && request.command >= 0 &&
        request.command <= COMMAND_MAX && !isBadWrite)
        return Examined::GOOD;
    Refuse(MR166_ERR_ARGUMENT);
    return Examined::BAD_ARGUMENT;
}

// Sends the request; everything that can come of it is in the book from here on.
bool Send(const Mr166_Driver &driver, const Mr166_Request &request, bool isProbe)
{
    if (request.command == MR166_CMD_WRITE)
        makeLFrm(request.station, request.command, request.address, request.word, request.data);
    else
        makeSFrm(request.station, request.command, request.address, request.word);
    STEP_TellWaiting(request.station, Mr166_nFault != 0);
    if (TRC_isOn)
        MrTRC_Begin(request, isProbe);
    // Also a request that went out in part may be answered, by what was in the line before.
    STEP_Sent(&line, request.station, ShapeOfAnswerTo(request), isProbe);
    if (driver.frameOut() >= 0)
        return true;
    Mr166_nFault = driver.waiting() < 0 ? MR166_FAULT_GONE : MR166_FAULT_SEND;
    (void)FailTry(false);
    return false;
}

// --- proofs -----------------------------------------------------------------------------

// Reads nobody else makes are the best probes, and short ones are cheap. The sizes of
// numbers and of blocks are left out.
constexpr STEP_Shape PROBES[] = {3,  5,  6,  7,  9,  10, 11, 12, 13, 14, 15, 17,
                                 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29,
                                 30, 31, 33, 34, 35, 36, 37, 38, 39, 41, 42, 43};

// A target that refuses every probe is left to the other proof: one whole time-out of
// silence. 1; 0 when the line does not fall silent.
int WaitForSilence(const Mr166_Driver &driver, int station)
{
    constexpr int WAITS_MAX = 4;
    char bytes[CHUNK];
    for (int waits = 0; waits < WAITS_MAX; ++waits) {
        const int got = driver.readSome(bytes, sizeof bytes, Mr166_nTimeoutMs);
        if (got < 0)
            return 0;
        if (got == 0) {
            sorter = Sorter();
            STEP_WasSilent(&line, station, PLT_TickMs());
            return 1;
        }
        SortLeftOver(bytes, static_cast<size_t>(got), station);
    }
    return 0;
}

// One probe on its way and back. The target's error code answers it too, but has no length
// to know it by.
int SendProbe(int station, STEP_Shape shape)
{
    if (STEP_IsBreak()) {
        Cancel();
        return -1;
    }
    const Mr166_Driver &driver = MrASC_Driver();
    ProbePlace *place = &probePlaces[station];
    for (;;) {
        const uint32_t address = place->isZeroRefused && place->hasGood ? place->goodAddress : 0;
        const Mr166_Request probe = {station, MR166_CMD_READ, address, static_cast<uint16_t>(shape),
                                     nullptr};
        if (!Send(driver, probe, true)) {
            ++failedProbes;
            return Mr166_nFault == MR166_FAULT_GONE ? -1 : 0;
        }
        const Reading reading = ReadSorted(driver, probe, Kind::PROBE);
        const bool isProof =
            reading.kind == Judgement::ACCEPTED || reading.kind == Judgement::PROOF;
        if (isProof || reading.kind == Judgement::REFUSED) {
            Mr166_nFault = isProof ? 0 : reading.code;
            if (TRC_isOn)
                MrTRC_End(true, reading.isEchoSeen);
            Mr166_nFault = 0;
            if (isProof) {
                Mr166_isEchoing = Mr166_isEchoing && reading.kind == Judgement::PROOF;
                return 1;
            }
            const bool isSecondRefusal = place->isZeroRefused;
            place->isZeroRefused = true;
            if (isSecondRefusal || !place->hasGood)
                return WaitForSilence(driver, station);
            continue;
        }
        ++failedProbes;
        (void)FinishSorted(probe, reading);
        return reading.isGone ? -1 : 0;
    }
}

constexpr STEP_Prober PROBER = {PROBES, sizeof PROBES / sizeof PROBES[0], SendProbe};

int SendAndRead(const Mr166_Driver &driver, const Mr166_Request &request, Kind sending)
{
    if (!Send(driver, request, false))
        return 0;
    wasSent = true;
    wMr166State = MR166_STATE_WAITING;
    // What failed once is sorted: a stray character before each answer costs one try, not all.
    if (sending == Kind::REQUEST && STEP_IsCalm(line, request.station, 1) && sorter.count == 0)
        return ReadInStep(driver, request);
    return FinishSorted(request, ReadSorted(driver, request, sending));
}

// What the first try and the repetitions have in common. `probes` is negative for the latter.
int Try(const Mr166_Driver &driver, const Mr166_Request &request, int probes)
{
    if (STEP_IsBreak())
        return Cancel();
    const Examined examined = Examine(driver, request, MR166_STATE_FAILED);
    if (examined != Examined::GOOD) {
        FAIL_Note(MrASC_ErrorText(Mr166_nFault));
        return examined == Examined::BAD_ARGUMENT ? driver.badArgument : 0;
    }
    ClearInput(driver, request.station);
    if (probes >= 0 && STEP_MakeSafe(&line, request.station, ShapeOfAnswerTo(request), probes,
                                     PROBER) != STEP_PROVEN)
        return 0;
    return SendAndRead(driver, request, probes >= 0 ? Kind::REQUEST : Kind::REPETITION);
}

} // namespace

void MrEXC_Opened()
{
    STEP_Reset(&line, static_cast<uint32_t>(PLT_TickUs()) ^ static_cast<uint32_t>(PLT_ProcessId())
                                                                << 16);
    sorter = Sorter();
    isSuspicious = false;
    disturbedSeen = 0;
    Mr166_isEchoing = false;
    for (ProbePlace &place : probePlaces)
        place = ProbePlace();
}

int MrEXC_FirstTry(const Mr166_Driver &driver, const Mr166_Request &request, int probes)
{
    wasSent = false;
    return Try(driver, request, probes);
}

int MrEXC_Repeat(const Mr166_Driver &driver, const Mr166_Request &request)
{
    return Try(driver, request, -1);
}

bool MrEXC_WasSent()
{
    return wasSent;
}

uint32_t MrEXC_FailedProbes()
{
    return failedProbes;
}

uint32_t MrEXC_Surplus()
{
    return line.surplus;
}

bool MrEXC_IsProofDue(int station)
{
    return station >= 0 && station < STATIONS && !line.partners.empty() &&
           line.partners[static_cast<size_t>(station)].isProofDue;
}

// After something odd every read is proven at once for a while; on a good line one a second.
bool MrEXC_IsSuspicious(int station)
{
    const uint32_t now = PLT_TickMs();
    if (line.disturbed != disturbedSeen) {
        disturbedSeen = line.disturbed;
        suspiciousSinceMs = now;
        isSuspicious = true;
    }
    isSuspicious = isSuspicious && now - suspiciousSinceMs < SUSPICION_MS;
    return isSuspicious ||
           now - line.partners[static_cast<size_t>(station)].provenMs >= PROOF_PERIOD_MS;
}

int MrEXC_ProveBehind(int station, int probes)
{
    if (!wMrOpenFlag)
        return Refuse(MR166_ERR_CLOSED);
    const int32_t error = nMr166Err, fault = Mr166_nFault;
    const uint16_t state = wMr166State;
    ClearInput(MrASC_Driver(), station);
    const int result = STEP_ProveBehind(&line, station, probes, PROBER);
    if (result == STEP_PROVEN) { // what the caller read was good: so are its codes
        nMr166Err = error;
        Mr166_nFault = fault;
        wMr166State = state;
    }
    return result;
}

void MrEXC_GiveUpProof(int station)
{
    line.partners[static_cast<size_t>(station)].isProofDue = false;
}

int mr166Message(int station, int command, uint32_t address, uint16_t word, const void *data)
{
    return MrEXC_FirstTry(MrASC_Driver(), {station, command, address, word, data}, 1);
}

int mr166MessageWin32(int station, int command, uint32_t address, uint16_t word, const void *data)
{
    return MrEXC_FirstTry(MR166_DRIVER_WIN32, {station, command, address, word, data}, 1);
}

int mr166MessageNI(int station, int command, uint32_t address, uint16_t word, const void *data)
{
    return MrEXC_FirstTry(MR166_DRIVER_RUNTIME, {station, command, address, word, data}, 1);
}

int Mr166MessageW32NA(int station, int command, uint32_t address, uint16_t word, const void *data)
{
    const Mr166_Driver &driver = MrASC_Driver();
    const Mr166_Request request = {station, command, address, word, data};
    const Examined examined = Examine(driver, request, MR166_STATE_CLOSED);
    if (examined != Examined::GOOD)
        return examined == Examined::BAD_ARGUMENT ? MR166_ERR_ARGUMENT : 0;
    ClearInput(driver, station);
    if (!Send(driver, request, false))
        return 0;
    char ignored[UNCHECKED_ANSWER_ROOM];
    const int got = SER_Read(MR166_hCom, ignored, sizeof ignored);
    const size_t count = got > 0 ? static_cast<size_t>(got) : 0;
    SortLeftOver(ignored, count, station);
    if (TRC_isOn) {
        MrTRC_Received(ignored, count);
        MrTRC_End(false, false);
    }
    return 1;
}
