// The Win32 driver of the mr166 link: one write and one bounded read of the whole expected
// answer. It cannot tell an echo from an answer, so an echoing line gives no value here.
#include "comm/mr166_driver.h"
#include "comm/mr166_link.h"
#include "comm/trace.h"

SER_Handle MR166_hCom = SER_INVALID;

namespace {

constexpr int PORT_MAX = 255;
constexpr int DATA_BITS = 8, STOP_BITS = 2;

Mr166_Ending ReadAnswer(size_t expected, bool * /*isEchoSeen*/)
{
    // One system call for the whole answer: the quickest way on a line that works.
    // The port's own time-out bounds the read; fewer characters than expected end it as well.
    const int got = SER_Read(MR166_hCom, Mr166_abyRcv, expected);
    cbRcv = static_cast<uint16_t>(got > 0 ? got : 0);
    if (got <= 0)
        return got < 0 ? Mr166_Ending::GONE : Mr166_Ending::TIME_OUT;
    if (TRC_isOn)
        Mr166_TraceReceived(Mr166_abyRcv, cbRcv);
    return Mr166_Ending::COMPLETE;
}

} // namespace

const Mr166_Driver MR166_DRIVER_WIN32 = {
    "Win32 driver",
    0, // a bad argument is a failure like any other
    false,
    MrASC_OpenWin32,
    MrASC_CloseWin32,
    [] { SER_FlushOutput(MR166_hCom); },
    [] { return SER_BytesWaiting(MR166_hCom); },
    // frameOut: half a frame is no frame, its rest would stand before the next one
    [] { return wMrOpenFlag && SER_Write(MR166_hCom, Mr166_abySnd, cbSnd) == cbSnd ? 0 : -1; },
    [](char *buffer, size_t capacity, unsigned waitMs) {
        return SER_ReadSome(MR166_hCom, buffer, capacity, waitMs);
    },
    ReadAnswer,
};

int MrASC_OpenWin32(int port, int baud)
{
    if (wMrOpenFlag)
        MrASC_Close();
    if (port < 0 || port > PORT_MAX)
        return MR166_ERR_PORT;
    if (SER_Open(port, &MR166_hCom) != SER_OK)
        return MR166_ERR_OPEN;
    SER_Settings settings;
    // No baud rate at all is refused by the device, with its own reason.
    settings.baud = baud > 0 ? static_cast<uint32_t>(baud) : 0u;
    settings.dataBits = DATA_BITS;
    settings.stopBits = STOP_BITS;
    const int result = SER_Configure(MR166_hCom, settings);
    if (result != SER_OK) {
        // Half-opened is closed: the next attempt finds the port free.
        MrASC_CloseWin32();
        return result == SER_ERR_GET ? MR166_ERR_GET : MR166_ERR_SET;
    }
    // In full for reading and for writing: a device that takes nothing must end as well.
    SER_SetTimeouts(MR166_hCom, Mr166_nTimeoutMs, Mr166_nTimeoutMs);
    wMrOpenFlag = 1;
    return 0;
}

void MrASC_CloseWin32()
{
    wMrOpenFlag = 0;
    SER_Close(MR166_hCom);
    MR166_hCom = SER_INVALID;
}
