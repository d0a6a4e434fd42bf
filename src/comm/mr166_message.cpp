// One mr166 exchange with either driver. The Win32 driver reads the whole expected answer
// with one bounded read; the run-time driver takes byte by byte and can so skip the echo
// of a two-wire line.
#include "comm/failures.h"
#include "comm/mr166_driver.h"
#include "comm/mr166_late.h"
#include "comm/mr166_link.h"
#include "comm/trace.h"
#include "runtime/rs232.h"

#include <algorithm>
#include <cstring>

uint8_t Mr166_byStNo = 0, Mr166_byCmd = 0;
uint32_t Mr166_dwAddr = 0;
uint16_t Mr166_wData = 0;
int32_t nMr166Err = 0;
uint16_t wMr166State = MR166_STATE_OK;
uint16_t cnRcvData = 0;
int32_t Mr166_nFault = 0;
uint32_t EC_dwMsgOk = 0;
uint16_t EC_wTimeErr = 0;
uint16_t EC_wFrameErr = 0;

namespace {

constexpr uint32_t ADDRESS_MAX = 0xFFFFFF;
constexpr int STATION_MAX = 15, COMMAND_MAX = 15;
constexpr size_t UNCHECKED_ANSWER_ROOM = 64;

struct Request {
    int station, command;
    uint32_t address;
    uint16_t word;
    const void *data;
};

int Refuse(int code)
{
    nMr166Err = code;
    Mr166_nFault = code;
    wMr166State = MR166_STATE_FAILED;
    return code;
}

// Records the request and builds its frame. 0, or MR166_ERR_ARGUMENT.
int BuildRequest(const Request &request)
{
    Mr166_byStNo = static_cast<uint8_t>(request.station);
    Mr166_byCmd = static_cast<uint8_t>(request.command);
    Mr166_dwAddr = request.address;
    Mr166_wData = request.word;
    if (request.station < 0 || request.station > STATION_MAX || request.command < 0 ||
        request.command > COMMAND_MAX)
        return Refuse(MR166_ERR_ARGUMENT);
    if (request.command != MR166_CMD_WRITE)
        makeSFrm(request.station, request.command, request.address, request.word);
    else if (!makeLFrm(request.station, request.command, request.address, request.word,
                       request.data))
        return Refuse(MR166_ERR_ARGUMENT);
    return 0;
}

enum class Sending { DONE, NOT_DONE, BAD_ARGUMENT };

// Everything up to and with the sending; `closedState` is what a closed port leaves behind.
Sending SendRequest(const Request &request, uint16_t closedState)
{
    if (!wMrOpenFlag) {
        Refuse(MR166_ERR_CLOSED);
        wMr166State = closedState;
        return Sending::NOT_DONE;
    }
    if (request.address > ADDRESS_MAX) {
        nMr166Err = MR166_ERR_ARGUMENT;
        Mr166_nFault = MR166_ERR_ARGUMENT;
        return Sending::NOT_DONE;
    }
    MrASC_Driver().dropQueues();
    if (BuildRequest(request) != 0)
        return Sending::BAD_ARGUMENT;
    MrLATE_Settle();
    if (TRC_isOn)
        MrTRC_Begin();
    if (MrFrameOut() >= 0) {
        MrLATE_Sent();
        return Sending::DONE;
    }
    Mr166_nFault = MrASC_Driver().isGone() ? MR166_FAULT_GONE : MR166_FAULT_SEND;
    if (TRC_isOn)
        MrTRC_End(true, false);
    return Sending::NOT_DONE;
}

// Commands 1 to 4 are answered with two bytes of data, a read with what was asked for.
size_t ExpectedAnswer(int command, uint16_t word)
{
    if (command >= 1 && command <= 4)
        return MR166_ANSWER_MIN_CHARS + 4;
    if (command != MR166_CMD_READ)
        return MR166_ANSWER_MIN_CHARS;
    return std::min<size_t>(MR166_ANSWER_MIN_CHARS + 2u * word, MR166_ANSWER_ROOM);
}

int Finish(int result, bool isEchoSkipped)
{
    if (TRC_isOn)
        MrTRC_End(true, isEchoSkipped);
    return result;
}

int NoAnswer(bool isGone, bool isEchoSkipped)
{
    ++EC_wTimeErr;
    if (isGone)
        MrLATE_Forget();
    else
        MrLATE_Missed();
    nMr166Err = MR166_ERR_TIMEOUT;
    Mr166_nFault = isGone ? MR166_FAULT_GONE : MR166_ERR_TIMEOUT;
    return Finish(0, isEchoSkipped);
}

bool IsEchoOfRequest()
{
    return cbRcv > 0 && std::memcmp(Mr166_abyRcv, Mr166_abySnd, std::min(cbRcv, cbSnd)) == 0;
}

// A frame of the wrong shape may be an older request's; noise leaves the shape alone.
bool IsForeign(int code)
{
    return code > -static_cast<int>(MR166_TARGET_ERROR_MIN) && code != MR166_ERR_HEX &&
           code != MR166_ERR_CHECK;
}

int CheckAnswer(const Request &request, bool isEchoSkipped)
{
    const int count = chkAnsFrm(request.station, request.command);
    if (count < 0) {
        if (IsForeign(count))
            MrLATE_Missed();
        if (EC_wFrameErr != UINT16_MAX)
            ++EC_wFrameErr;
        Refuse(count);
        if (IsEchoOfRequest())
            Mr166_nFault = MR166_FAULT_ECHO;
        return Finish(0, isEchoSkipped);
    }
    MrLATE_Answered();
    wMr166State = MR166_STATE_OK;
    cnRcvData = static_cast<uint16_t>(count);
    if (EC_dwMsgOk != UINT32_MAX)
        ++EC_dwMsgOk;
    nMr166Err = 0;
    Mr166_nFault = 0;
    return Finish(1, isEchoSkipped);
}

// --- run-time driver -----------------------------------------------------------------

enum class Collect { IDLE, SKIPPING_ECHO, COLLECTING, COMPLETE, WRONG_START };

void StoreByte(char byte)
{
    Mr166_abyRcv[cbRcv++] = byte;
}

Collect TakeFirst(char byte)
{
    if (byte == MR166_START_ANSWER) {
        StoreByte(byte);
        return Collect::COLLECTING;
    }
    const bool isEcho = byte == MR166_START_SHORT || byte == MR166_START_LONG;
    return isEcho ? Collect::SKIPPING_ECHO : Collect::WRONG_START;
}

Collect TakeByte(Collect state, char byte)
{
    if (state == Collect::IDLE)
        return TakeFirst(byte);
    if (state == Collect::SKIPPING_ECHO)
        return byte == MR166_END ? Collect::IDLE : state;
    StoreByte(byte);
    return byte == MR166_END || cbRcv == MR166_ANSWER_ROOM ? Collect::COMPLETE : state;
}

// Takes what is in the input queue, up to the end of the answer.
Collect TakeWaiting(Collect state, int waiting, bool *isEchoSkipped)
{
    for (; waiting > 0 && state < Collect::COMPLETE; --waiting) {
        const int byte = ComRdByte(MrASC_PortNI());
        if (byte < 0)
            break;
        if (TRC_isOn) {
            const auto received = static_cast<uint8_t>(byte);
            MrTRC_Received(&received, 1);
        }
        state = TakeByte(state, static_cast<char>(byte));
        *isEchoSkipped = *isEchoSkipped || state == Collect::SKIPPING_ECHO;
    }
    return state;
}

int WrongStart(bool isEchoSkipped)
{
    ++EC_wFrameErr;
    MrLATE_Missed();
    nMr166Err = MR166_ERR_START;
    Mr166_nFault = MR166_ERR_START;
    FlushOutQ(MrASC_PortNI());
    return Finish(0, isEchoSkipped);
}

int CollectAnswer(const Request &request)
{
    const uint32_t start = PLT_TickMs();
    Collect state = Collect::IDLE;
    bool isEchoSkipped = false;
    cbRcv = 0;
    for (;;) {
        const uint32_t passed = PLT_TickMs() - start;
        if (!Mr166_wComDbg && passed >= Mr166_nTimeoutMs)
            return NoAnswer(false, isEchoSkipped);
        const uint32_t wait =
            passed < Mr166_nTimeoutMs ? Mr166_nTimeoutMs - passed : Mr166_nTimeoutMs;
        const int waiting = WaitInQ(MrASC_PortNI(), wait);
        if (waiting < 0)
            return NoAnswer(true, isEchoSkipped);
        state = TakeWaiting(state, waiting, &isEchoSkipped);
        if (state == Collect::COMPLETE)
            return CheckAnswer(request, isEchoSkipped);
        if (state == Collect::WRONG_START)
            return WrongStart(isEchoSkipped);
    }
}

} // namespace

int mr166Message(int station, int command, uint32_t address, uint16_t word, const void *data)
{
    const int result = MrASC_Driver().message(station, command, address, word, data);
    if (result != 1)
        FAIL_Note(MrASC_ErrorText(Mr166_nFault));
    return result;
}

int mr166MessageWin32(int station, int command, uint32_t address, uint16_t word, const void *data)
{
    const Request request = {station, command, address, word, data};
    if (SendRequest(request, MR166_STATE_FAILED) != Sending::DONE)
        return 0;
    wMr166State = MR166_STATE_WAITING;
    const int got = SER_Read(MR166_hCom, Mr166_abyRcv, ExpectedAnswer(command, word));
    if (got <= 0)
        return NoAnswer(got < 0, false);
    cbRcv = static_cast<uint16_t>(got);
    if (TRC_isOn)
        MrTRC_Received(Mr166_abyRcv, cbRcv);
    return CheckAnswer(request, false);
}

int mr166MessageNI(int station, int command, uint32_t address, uint16_t word, const void *data)
{
    const Request request = {station, command, address, word, data};
    const Sending sending = SendRequest(request, MR166_STATE_FAILED);
    if (sending != Sending::DONE)
        return sending == Sending::BAD_ARGUMENT ? MR166_ERR_ARGUMENT : 0;
    wMr166State = MR166_STATE_WAITING;
    return CollectAnswer(request);
}

int Mr166MessageW32NA(int station, int command, uint32_t address, uint16_t word, const void *data)
{
    const Request request = {station, command, address, word, data};
    const Sending sending = SendRequest(request, MR166_STATE_CLOSED);
    if (sending != Sending::DONE)
        return sending == Sending::BAD_ARGUMENT ? MR166_ERR_ARGUMENT : 0;
    char ignored[UNCHECKED_ANSWER_ROOM];
    const int got = SER_Read(MR166_hCom, ignored, sizeof ignored);
    if (TRC_isOn) {
        MrTRC_Received(ignored, got > 0 ? static_cast<size_t>(got) : 0u);
        MrTRC_End(false, false);
    }
    return 1;
}
