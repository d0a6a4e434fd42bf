// The run-time's RS-232 library on top of platform/serial.h: ports addressed by
// number, an input queue that is filled while nobody reads. Results are negative on failure.
#ifndef RUNTIME_RS232_H
#define RUNTIME_RS232_H

#include <cstddef>

enum {
    COM_ERR_ARGUMENT = -3, // no such port open, or a bad argument
    COM_ERR_OPEN = -5,     // the device is missing, busy or refused the settings
    COM_ERR_IO = -6,       // the device is gone
    COM_ERR_TIMEOUT = -99, // nothing came in time
};

// parity: 0 none, 1 odd, 2 even. Queue sizes in bytes.
int OpenComConfig(int port, const char *deviceName, long baud, int parity, int dataBits,
                  int stopBits, int inputQueue, int outputQueue);
int SetComTime(int port, double seconds);              // time-out of reads and writes
int ComWrt(int port, const void *bytes, size_t count); // bytes written
int GetInQLen(int port);                               // bytes waiting
// Bytes waiting; while there are none waits up to `waitMs` for the first.
int WaitInQ(int port, unsigned waitMs);
int ComRdByte(int port); // next byte 0..255, negative on time-out
int FlushInQ(int port);
int FlushOutQ(int port);
int CloseCom(int port);

#endif
