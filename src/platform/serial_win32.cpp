// Serial ports on the Win32 file and communication calls. A handle is the system's
// own. The read time-out is changed only when a call needs another one, because each
// change is a request to the driver.
#include "platform/serial_device.h"

#include <windows.h>

#include <climits>
#include <cstring>

namespace {

// Of a flow control that is never on.
constexpr WORD XON_LIMIT = 2048, XOFF_LIMIT = 512;
constexpr char XON_CHAR = 0x11, XOFF_CHAR = 0x13;
constexpr int PORTS_MAX = 16;

struct Timeouts {
    SER_Handle handle = SER_INVALID;
    DWORD readTotalMs = 0, writeTotalMs = 0;
    DWORD readNowMs = 0; // what the driver has at the moment
};
Timeouts timeouts[PORTS_MAX];
SER_Why lastReason = SER_WHY_OTHER;

HANDLE ToHandle(SER_Handle handle)
{
    return reinterpret_cast<HANDLE>(handle);
}

// Null when there is none; that of SER_INVALID is a free place.
Timeouts *FindTimeouts(SER_Handle handle)
{
    for (Timeouts &entry : timeouts) {
        if (entry.handle == handle)
            return &entry;
    }
    return nullptr;
}

// A total of 0 means "do not wait", which the driver spells as the largest interval.
bool ApplyTimeouts(Timeouts *entry, DWORD readMs)
{
    COMMTIMEOUTS settings;
    std::memset(&settings, 0, sizeof settings);
    settings.ReadIntervalTimeout = readMs == 0 ? MAXDWORD : 0;
    settings.ReadTotalTimeoutConstant = readMs;
    // For a write 0 means "wait for ever".
    settings.WriteTotalTimeoutConstant = entry->writeTotalMs == 0 ? 1 : entry->writeTotalMs;
    if (!SetCommTimeouts(ToHandle(entry->handle), &settings))
        return false;
    entry->readNowMs = readMs;
    return true;
}

int ReadBytes(Timeouts *entry, void *buffer, size_t count, DWORD timeoutMs)
{
    if (entry->readNowMs != timeoutMs && !ApplyTimeouts(entry, timeoutMs))
        return SER_ERR_IO;
    const DWORD wanted = count > INT_MAX ? INT_MAX : static_cast<DWORD>(count);
    DWORD got = 0;
    // A time-out is no error of the call; an error with bytes has brought these all the same.
    if (!ReadFile(ToHandle(entry->handle), buffer, wanted, &got, nullptr) && got == 0)
        return SER_ERR_IO;
    return static_cast<int>(got);
}

// Every field that could hold bytes back or change them is set: the port comes with whatever the
// last program has left in it.
void FillControlBlock(DCB *dcb, const SER_Settings &settings)
{
    dcb->BaudRate = settings.baud;
    dcb->fBinary = TRUE;
    dcb->fParity = FALSE;
    dcb->fOutxCtsFlow = FALSE;
    dcb->fOutxDsrFlow = FALSE;
    dcb->fDtrControl = settings.dtr ? DTR_CONTROL_ENABLE : DTR_CONTROL_DISABLE;
    dcb->fDsrSensitivity = FALSE;
    dcb->fTXContinueOnXoff = FALSE;
    dcb->fOutX = FALSE;
    dcb->fInX = FALSE;
    dcb->fErrorChar = FALSE;
    dcb->fNull = FALSE;
    dcb->fRtsControl = settings.rts ? RTS_CONTROL_ENABLE : RTS_CONTROL_DISABLE;
    dcb->fAbortOnError = FALSE;
    dcb->XonLim = XON_LIMIT;
    dcb->XoffLim = XOFF_LIMIT;
    dcb->ByteSize = static_cast<BYTE>(settings.dataBits);
    dcb->Parity =
        settings.parity == 'e' ? EVENPARITY : (settings.parity == 'o' ? ODDPARITY : NOPARITY);
    dcb->StopBits = settings.stopBits == 2 ? TWOSTOPBITS : ONESTOPBIT;
    dcb->XonChar = XON_CHAR;
    dcb->XoffChar = XOFF_CHAR;
    dcb->ErrorChar = 0;
    dcb->EvtChar = 0;
}

// The system refuses a port that is in use with "access denied", like one without permission;
// on a desktop it is practically always the former.
SER_Why WhyNotOpened(DWORD error)
{
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
        return SER_WHY_MISSING;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
        return SER_WHY_BUSY;
    default:
        return SER_WHY_OTHER;
    }
}

} // namespace

SER_Why DEV_LastReason()
{
    return lastReason;
}

std::string DEV_DevicePath(int port)
{
    return "\\\\.\\COM" + std::to_string(port);
}

int DEV_Open(const std::string &path, SER_Handle *handle)
{
    *handle = SER_INVALID;
    lastReason = SER_WHY_OTHER;
    Timeouts *entry = FindTimeouts(SER_INVALID);
    if (entry == nullptr)
        return SER_ERR_OPEN;
    const HANDLE device = CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    if (device == INVALID_HANDLE_VALUE) {
        lastReason = WhyNotOpened(GetLastError());
        return SER_ERR_OPEN;
    }
    *handle = reinterpret_cast<SER_Handle>(device);
    *entry = Timeouts();
    entry->handle = *handle;
    // Until the user of the port sets others: a read must not wait by those of another program.
    (void)ApplyTimeouts(entry, 0);
    return SER_OK;
}

int DEV_Configure(SER_Handle handle, const SER_Settings &settings)
{
    DCB dcb;
    std::memset(&dcb, 0, sizeof dcb);
    dcb.DCBlength = sizeof dcb;
    if (handle == SER_INVALID || !GetCommState(ToHandle(handle), &dcb))
        return SER_ERR_GET;
    FillControlBlock(&dcb, settings);
    if (SetCommState(ToHandle(handle), &dcb))
        return SER_OK;
    // The system does not say which setting it was; the frame is one that every port does.
    lastReason = SER_WHY_BAUD;
    return SER_ERR_SET;
}

int DEV_SetTimeouts(SER_Handle handle, unsigned readTotalMs, unsigned writeTotalMs)
{
    Timeouts *entry = handle == SER_INVALID ? nullptr : FindTimeouts(handle);
    if (entry == nullptr)
        return SER_ERR_IO;
    entry->readTotalMs = readTotalMs;
    entry->writeTotalMs = writeTotalMs;
    return ApplyTimeouts(entry, readTotalMs) ? SER_OK : SER_ERR_IO;
}

int DEV_Write(SER_Handle handle, const void *bytes, size_t count)
{
    if (handle == SER_INVALID)
        return SER_ERR_IO;
    const DWORD wanted = count > INT_MAX ? INT_MAX : static_cast<DWORD>(count);
    DWORD wrote = 0;
    // A write that took too long is a short one, as elsewhere.
    if (!WriteFile(ToHandle(handle), bytes, wanted, &wrote, nullptr) &&
        GetLastError() != ERROR_SEM_TIMEOUT)
        return SER_ERR_IO;
    return static_cast<int>(wrote);
}

int DEV_Read(SER_Handle handle, void *buffer, size_t count)
{
    Timeouts *entry = handle == SER_INVALID ? nullptr : FindTimeouts(handle);
    return entry == nullptr ? SER_ERR_IO : ReadBytes(entry, buffer, count, entry->readTotalMs);
}

int DEV_ReadSome(SER_Handle handle, void *buffer, size_t capacity, unsigned waitMs)
{
    Timeouts *entry = handle == SER_INVALID ? nullptr : FindTimeouts(handle);
    if (entry == nullptr || capacity == 0)
        return entry == nullptr ? SER_ERR_IO : 0;
    int waiting = DEV_BytesWaiting(handle);
    size_t first = 0;
    if (waiting == 0 && waitMs > 0) {
        // The driver has no "wait for any": wait for one byte, then take its followers.
        const int got = ReadBytes(entry, buffer, 1, waitMs);
        if (got <= 0)
            return got;
        first = 1;
        waiting = DEV_BytesWaiting(handle);
    }
    if (waiting <= 0 || first == capacity)
        return first > 0 ? static_cast<int>(first) : waiting;
    const size_t room = capacity - first;
    const size_t rest = static_cast<size_t>(waiting) < room ? static_cast<size_t>(waiting) : room;
    const int got = ReadBytes(entry, static_cast<char *>(buffer) + first, rest, entry->readNowMs);
    return got < 0 && first == 0 ? got : static_cast<int>(first) + (got < 0 ? 0 : got);
}

int DEV_BytesWaiting(SER_Handle handle)
{
    COMSTAT status;
    DWORD errors = 0;
    if (handle == SER_INVALID || !ClearCommError(ToHandle(handle), &errors, &status))
        return SER_ERR_IO;
    return static_cast<int>(status.cbInQue);
}

int DEV_DropInput(SER_Handle handle)
{
    const bool done = handle != SER_INVALID && PurgeComm(ToHandle(handle), PURGE_RXCLEAR);
    return done ? SER_OK : SER_ERR_IO;
}

int DEV_DropOutput(SER_Handle handle)
{
    const bool done = handle != SER_INVALID && PurgeComm(ToHandle(handle), PURGE_TXCLEAR);
    return done ? SER_OK : SER_ERR_IO;
}

int DEV_FlushOutput(SER_Handle handle)
{
    return handle != SER_INVALID && FlushFileBuffers(ToHandle(handle)) ? SER_OK : SER_ERR_IO;
}

void DEV_Close(SER_Handle handle)
{
    if (handle == SER_INVALID)
        return;
    CloseHandle(ToHandle(handle));
    // The system may give the next port the same number.
    Timeouts *entry = FindTimeouts(handle);
    if (entry != nullptr)
        *entry = Timeouts();
}
