// Which kind of port a number is: a device of this machine, or one behind the network. A
// handle tells by itself: those of the network lie below SER_INVALID, where no device's lies.
#include "platform/serial.h"

#include "platform/remote_ports.h"
#include "platform/serial_device.h"
#include "platform/tcp_port.h"

#include <cstdlib>

namespace {

bool isLastTcp = false; // of SER_Open: whose reason is asked for

} // namespace

SER_Why SER_LastReason()
{
    return isLastTcp ? TCP_LastReason() : DEV_LastReason();
}

std::string SER_DevicePath(int port)
{
    // The environment comes first: it is for one run, and for tests.
    const char *given = std::getenv(("VIREO2_COM" + std::to_string(port)).c_str());
    if (given != nullptr && *given != '\0')
        return given;
    const std::string remote = TCP_GetPortAddress(port);
    return remote.empty() ? DEV_DevicePath(port) : remote;
}

int SER_Open(int port, SER_Handle *handle)
{
    const std::string path = SER_DevicePath(port);
    isLastTcp = TCP_IsAddress(path);
    return isLastTcp ? TCP_Open(path, handle) : DEV_Open(path, handle);
}

// Speed and frame of a remote port are set where it is; all that can be asked here is whether the
// connection still stands.
int SER_Configure(SER_Handle handle, const SER_Settings &settings)
{
    if (TCP_IsHandle(handle))
        return TCP_BytesWaiting(handle) < 0 ? SER_ERR_GET : SER_OK;
    return DEV_Configure(handle, settings);
}

// From here on each call goes where its handle belongs; the results are the same on both sides.
int SER_SetTimeouts(SER_Handle handle, unsigned readTotalMs, unsigned writeTotalMs)
{
    return TCP_IsHandle(handle) ? TCP_SetTimeouts(handle, readTotalMs, writeTotalMs)
                                : DEV_SetTimeouts(handle, readTotalMs, writeTotalMs);
}

int SER_Write(SER_Handle handle, const void *bytes, size_t count)
{
    return TCP_IsHandle(handle) ? TCP_Write(handle, bytes, count) : DEV_Write(handle, bytes, count);
}

int SER_Read(SER_Handle handle, void *buffer, size_t count)
{
    return TCP_IsHandle(handle) ? TCP_Read(handle, buffer, count) : DEV_Read(handle, buffer, count);
}

int SER_ReadSome(SER_Handle handle, void *buffer, size_t capacity, unsigned waitMs)
{
    return TCP_IsHandle(handle) ? TCP_ReadSome(handle, buffer, capacity, waitMs)
                                : DEV_ReadSome(handle, buffer, capacity, waitMs);
}

int SER_BytesWaiting(SER_Handle handle)
{
    return TCP_IsHandle(handle) ? TCP_BytesWaiting(handle) : DEV_BytesWaiting(handle);
}

int SER_DropInput(SER_Handle handle)
{
    return TCP_IsHandle(handle) ? TCP_DropInput(handle) : DEV_DropInput(handle);
}

// What was handed to the network cannot be taken back, and leaves without being asked.
int SER_DropOutput(SER_Handle handle)
{
    return TCP_IsHandle(handle) ? SER_OK : DEV_DropOutput(handle);
}

int SER_FlushOutput(SER_Handle handle)
{
    return TCP_IsHandle(handle) ? SER_OK : DEV_FlushOutput(handle);
}

void SER_Close(SER_Handle handle)
{
    if (TCP_IsHandle(handle))
        TCP_Close(handle);
    else
        DEV_Close(handle);
}
