// One try of an exchange: arguments checked, frame sent, answer read and judged; and what each
// outcome does to the codes, the counters and the trace.
#include "comm/mr166_try.h"

#include "comm/failures.h"
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
constexpr int COMMAND_MAX = 15;
constexpr size_t CHUNK = 256;

struct GoodRead {
    uint32_t address = 0;
    bool isKnown = false;
};
GoodRead goodReads[MRTRY_STATIONS]; // the last of each station

int FailTry(bool isEchoSeen)
{
    if (TRC_isOn)
        Mr166_EndTrace(true, isEchoSeen);
    FAIL_Note(MrASC_ErrorText(Mr166_nFault));
    return 0;
}

// The state stays "waiting", as callers of the first protocol version expect.
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
    // The counters of the first protocol version: this one stops, the time-outs wrap.
    if (EC_wFrameErr != UINT16_MAX)
        ++EC_wFrameErr;
    Mr166_RefuseTry(code);
    Mr166_nFault = fault;
    Mr166_isEchoing = Mr166_isEchoing || fault == MR166_FAULT_ECHO;
    return FailTry(isEchoSeen);
}

int Succeed(const Mr166_Request &request, bool isEchoSeen)
{
    wMr166State = MR166_STATE_OK;
    if (EC_dwMsgOk != UINT32_MAX)
        ++EC_dwMsgOk;
    nMr166Err = 0;
    Mr166_nFault = 0;
    // A line that gives good answers does not echo, whatever it did before.
    Mr166_isEchoing = false;
    if (request.command == MR166_CMD_READ) {
        goodReads[request.station].address = request.address;
        goodReads[request.station].isKnown = true;
    }
    if (TRC_isOn)
        Mr166_EndTrace(true, isEchoSeen);
    return 1;
}

} // namespace

Mr166_Examined Mr166_ExamineAnswer(const Mr166_Driver &driver, const Mr166_Request &request,
                                   uint16_t closedState)
{
    if (!wMrOpenFlag) {
        Mr166_RefuseTry(MR166_ERR_CLOSED);
        wMr166State = closedState;
        return Mr166_Examined::REFUSED;
    }
    // An address beyond 24 bits would be cut by the frame and hit another place. Unlike the other
    // arguments it leaves the state as it was.
    if (request.address > ADDRESS_MAX) {
        nMr166Err = MR166_ERR_ARGUMENT;
        Mr166_nFault = MR166_ERR_ARGUMENT;
        return Mr166_Examined::REFUSED;
    }
    // What an exchange that failed has left in the output would delay this one.
    driver.clearOutput();
    Mr166_byStNo = static_cast<uint8_t>(request.station);
    Mr166_byCmd = static_cast<uint8_t>(request.command);
    Mr166_dwAddr = request.address;
    Mr166_wData = request.word;
    const bool isBadWrite =
        request.command == MR166_CMD_WRITE &&
        (request.word < 1 || request.word > MR166_WRITE_MAX || request.data == nullptr);
    if (request.station >= 0 && request.station < MRTRY_STATIONS && request.command >= 0 &&
        request.command <= COMMAND_MAX && !isBadWrite)
        return Mr166_Examined::GOOD;
    Mr166_RefuseTry(MR166_ERR_ARGUMENT);
    return Mr166_Examined::BAD_ARGUMENT;
}

bool Mr166_SendTry(const Mr166_Driver &driver, const Mr166_Request &request, bool isProbe)
{
    if (request.command == MR166_CMD_WRITE)
        makeLFrm(request.station, request.command, request.address, request.word, request.data);
    else
        makeSFrm(request.station, request.command, request.address, request.word);
    STEP_TellWaiting(request.station, Mr166_nFault != 0);
    if (TRC_isOn)
        Mr166_BeginTrace(request, isProbe);
    // Also a request that went out in part may be answered, by what was in the line before.
    STEP_Sent(&Mr166_line, request.station, Mr166_ShapeOfAnswerTo(request), isProbe);
    if (driver.frameOut() >= 0)
        return true;
    Mr166_nFault = driver.waiting() < 0 ? MR166_FAULT_GONE : MR166_FAULT_SEND;
    (void)FailTry(false);
    return false;
}

// --- reading ----------------------------------------------------------------------------

Mr166_Reading Mr166_ReadSorted(const Mr166_Driver &driver, const Mr166_Request &request,
                               Mr166_ReadingKind sending)
{
    uint32_t start = PLT_TickMs(), limitMs = Mr166_nTimeoutMs;
    Mr166_Reading reading;
    bool isAnythingRead = false;
    char bytes[CHUNK];
    while (reading.kind == Mr166_Judgement::WAIT) {
        const uint32_t passed = PLT_TickMs() - start;
        // A target stopped in its debugger: only the driver that skips echoes waits for it.
        const bool isEndless = Mr166_wComDbg && driver.isEchoSkipped;
        if (passed >= limitMs && !isEndless)
            break;
        // Behind the limit only the endless wait comes here: it goes on by whole time-outs.
        const uint32_t wait = passed < limitMs ? limitMs - passed : limitMs;
        const int got = driver.readSome(bytes, sizeof bytes, wait);
        if (got < 0) {
            reading.isGone = true;
            break;
        }
        if (TRC_isOn)
            Mr166_TraceReceived(bytes, static_cast<size_t>(got));
        isAnythingRead = isAnythingRead || got > 0;
        for (int i = 0; i < got; ++i) {
            const bool isWaiting = reading.kind == Mr166_Judgement::WAIT;
            const Mr166_Judgement judgement =
                Mr166_JudgeByte(bytes[i], isWaiting ? &request : nullptr, request.station);
            if (!isWaiting)
                continue;
            if (judgement.isOlder) { // it is slow, and ours is in the queue behind
                start = PLT_TickMs();
                limitMs = Mr166_nTimeoutMs * (static_cast<uint32_t>(Mr166_CnBlkRpt) + 1);
            }
            if (reading.code == 0 || judgement.kind == Mr166_Judgement::REFUSED)
                reading.code = judgement.code;
            if (judgement.kind == Mr166_Judgement::ECHO)
                reading.isEchoSeen = true;
            else if (judgement.kind != Mr166_Judgement::PROOF ||
                     sending == Mr166_ReadingKind::PROBE)
                reading.kind = judgement.kind;
        }
    }
    // The driver that reads by length calls half an answer damaged, the other one none.
    if (reading.kind == Mr166_Judgement::WAIT && reading.code == 0 && !driver.isEchoSkipped &&
        isAnythingRead && Mr166_CountBegunAnswer() > 0)
        reading.code = Mr166_CheckBegunAnswer(request.station, request.command);
    // A driver that cannot skip echoes gives no value on a line that has them. The answer
    // behind an echo is awaited all the same, or it would be taken for the next try's. Of
    // repetitions, an earlier one's answer may come before the echo.
    const bool isEarlier = Mr166_isEchoing && sending == Mr166_ReadingKind::REPETITION;
    const bool isAnswered = reading.kind == Mr166_Judgement::ACCEPTED;
    if (!driver.isEchoSkipped && (reading.isEchoSeen || (isEarlier && isAnswered)))
        reading.kind = Mr166_Judgement::ECHO;
    return reading;
}

int Mr166_FinishSorted(const Mr166_Request &request, const Mr166_Reading &reading)
{
    if (reading.isGone)
        return FailSilent(MR166_FAULT_GONE, reading.isEchoSeen);
    if (reading.kind == Mr166_Judgement::ACCEPTED)
        return Succeed(request, reading.isEchoSeen);
    if (reading.kind == Mr166_Judgement::ECHO)
        return FailCheck(MR166_ERR_START, MR166_FAULT_ECHO, false);
    if (reading.code == 0)
        return FailSilent(MR166_ERR_TIMEOUT, reading.isEchoSeen);
    const bool isCount = reading.code == MR166_FAULT_COUNT;
    return FailCheck(isCount ? MR166_ERR_LENGTH : reading.code, reading.code, reading.isEchoSeen);
}

// What fails the check goes through the sorter, so that the rest of it finds its beginning
// there.
int Mr166_ReadInStep(const Mr166_Driver &driver, const Mr166_Request &request)
{
    bool isEchoSeen = false;
    const size_t expected = std::min<size_t>(
        MR166_ANSWER_MIN_CHARS + 2u * Mr166_ExpectedData(request), MR166_ANSWER_ROOM);
    const Mr166_Ending ending = driver.readAnswer(expected, &isEchoSeen);
    if (ending == Mr166_Ending::GONE)
        return FailSilent(MR166_FAULT_GONE, isEchoSeen);
    // A wrong start character is known before the whole has come; the driver says so itself.
    const STEP_Shape shape = Mr166_ShapeOfAnswerTo(request);
    const int count = ending == Mr166_Ending::COMPLETE ? chkAnsFrm(request.station, request.command)
                                                       : MR166_ERR_START;
    if (count >= 0) {
        cnRcvData = static_cast<uint16_t>(count);
        const STEP_Shape came = Mr166_ShapeOf(request.command, static_cast<unsigned>(count));
        if (came == shape)
            STEP_Accepted(&Mr166_line, request.station, shape, PLT_TickMs());
        else // somebody else's, perhaps: the caller sees the count
            STEP_Passed(&Mr166_line, request.station, came, PLT_TickMs());
        return Succeed(request, isEchoSeen);
    }
    if (ending == Mr166_Ending::COMPLETE && count <= -MR166_TARGET_ERROR_MIN) {
        STEP_Refused(&Mr166_line, request.station, shape);
        return FailCheck(count, count, isEchoSeen);
    }
    // The driver that reads by length takes the echo for the beginning of the answer.
    const bool isEcho = ending == Mr166_Ending::COMPLETE && cbRcv > 0 &&
                        std::memcmp(Mr166_abyRcv, Mr166_abySnd, std::min(cbRcv, cbSnd)) == 0;
    Mr166_SortLeftOver(Mr166_abyRcv, cbRcv, request.station);
    // The answer behind the echo is waited for, or it would meet the next request.
    if (isEcho)
        (void)Mr166_ReadSorted(driver, request, Mr166_ReadingKind::REQUEST);
    if (ending == Mr166_Ending::TIME_OUT)
        return FailSilent(MR166_ERR_TIMEOUT, isEchoSeen);
    if (ending == Mr166_Ending::WRONG_START) {
        ++EC_wFrameErr;
        nMr166Err = Mr166_nFault = MR166_ERR_START;
        return FailTry(isEchoSeen);
    }
    return FailCheck(count, isEcho ? MR166_FAULT_ECHO : count, isEchoSeen);
}

// --- outcomes ---------------------------------------------------------------------------

int Mr166_RefuseTry(int code)
{
    nMr166Err = code;
    Mr166_nFault = code;
    wMr166State = MR166_STATE_FAILED;
    return code;
}

int Mr166_CancelTry()
{
    Mr166_RefuseTry(MR166_FAULT_CANCELLED);
    FAIL_Note(MrASC_ErrorText(MR166_FAULT_CANCELLED));
    return 0;
}

bool Mr166_GoodAddress(int station, uint32_t *address)
{
    *address = goodReads[station].address;
    return goodReads[station].isKnown;
}

void Mr166_NoteOpenedDriver()
{
    Mr166_isEchoing = false;
    for (GoodRead &read : goodReads)
        read = GoodRead();
    Mr166_ResetAnswers();
}
