// The only door to a serial port, be it a device of this machine (serial_posix.cpp or
// serial_win32.cpp) or one behind the network (tcp_port.cpp); nobody asks at run time which.
// A handle owns its device from SER_Open to SER_Close.
// Used by the mr166 link, the Modbus master and the run-time's RS-232 library.
#ifndef PLATFORM_SERIAL_H
#define PLATFORM_SERIAL_H

#include <cstddef>
#include <cstdint>
#include <string>

typedef intptr_t SER_Handle;
constexpr SER_Handle SER_INVALID = -1;

enum SER_Result {
    SER_OK = 0,
    SER_ERR_OPEN = -1, // no such device, no permission, or in use by somebody else
    SER_ERR_GET = -2,  // the device's settings could not be read
    SER_ERR_SET = -3,  // the device refused the settings
    SER_ERR_IO = -4,   // the device is gone or broken
};

// Why the last SER_Open or SER_Configure failed, finer than its result.
enum SER_Why {
    SER_WHY_OTHER,
    SER_WHY_MISSING, // no such device
    SER_WHY_BUSY,    // somebody else has it
    SER_WHY_ACCESS,  // no permission to use it
    SER_WHY_BAUD,    // it does not do the baud rate
    SER_WHY_HOST,    // nobody knows a host of that name
    SER_WHY_REFUSED, // the host is there, but nothing listens at that port
    SER_WHY_SILENT,  // the host does not answer
    SER_WHY_NONE,    // nothing failed
};
SER_Why SER_LastReason();

struct SER_Settings {
    uint32_t baud = 19200;
    int dataBits = 8;  // 5 to 8
    char parity = 'n'; // 'n' none, 'e' even, 'o' odd
    int stopBits = 1;  // 1 or 2
    bool dtr = true;   // line on
    bool rts = true;   // line on
};

// Device path of port number `port`, the first that applies: environment variable
// VIREO2_COM<n>; an address that was given the number (remote_ports.h); on Windows
// "\\.\COM<n>", elsewhere the link COM<n> in $XDG_CONFIG_HOME/vireo2/ports (or
// ~/.config/vireo2/ports) or /dev/ttyS<n-1>. "tcp:host:port" is a port behind the network.
std::string SER_DevicePath(int port);

// Opens the device exclusively and raw, without touching its settings. SER_OK or SER_ERR_OPEN.
int SER_Open(int port, SER_Handle *handle);

// SER_OK, SER_ERR_GET or SER_ERR_SET. No flow control of any kind is ever set.
int SER_Configure(SER_Handle handle, const SER_Settings &settings);

// Total time-outs of one read and one write, in milliseconds; 0 = do not wait.
int SER_SetTimeouts(SER_Handle handle, unsigned readTotalMs, unsigned writeTotalMs);

// Bytes written (fewer than `count` when the write time-out struck), or SER_ERR_IO.
int SER_Write(SER_Handle handle, const void *bytes, size_t count);

// Waits until `count` bytes came or the read time-out is over. Bytes read
// (0 to count), or SER_ERR_IO when the port is gone and nothing was read.
int SER_Read(SER_Handle handle, void *buffer, size_t count);

// Reads what is there, at most `capacity` bytes; waits up to `waitMs` for the first one,
// whatever the time-outs are. Bytes read (0 when none came), or SER_ERR_IO.
int SER_ReadSome(SER_Handle handle, void *buffer, size_t capacity, unsigned waitMs);

// Bytes that can be read without waiting, or SER_ERR_IO.
int SER_BytesWaiting(SER_Handle handle);

int SER_DropInput(SER_Handle handle);   // discards what arrived and was not read
int SER_DropOutput(SER_Handle handle);  // discards what was not sent yet
int SER_FlushOutput(SER_Handle handle); // hands what was written to the line

void SER_Close(SER_Handle handle); // SER_INVALID is allowed

#endif
