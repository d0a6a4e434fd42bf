// What the files of the Modbus master share among themselves: the line below it and the
// hooks by which an exchange reports to the wire trace.
#ifndef COMM_MODBUS_LINE_H
#define COMM_MODBUS_LINE_H

#include <cstddef>
#include <cstdint>

// The line as the master uses it. Results are bytes, negative when the port is gone.
struct MBM_Line {
    int (*write)(const void *bytes, size_t count);
    int (*read)(void *buffer, size_t count); // all of them, or what came in one time-out
    int (*readSome)(void *buffer, size_t capacity, unsigned waitMs);
    int (*waiting)();
    int (*drop)(); // what arrived and was not read
    uint32_t (*nowMs)();
};
// The serial port, unless a test has put a line of its own here.
extern const MBM_Line *MBM_line;
extern const MBM_Line MBM_SERIAL_LINE;

// Who was asked for what; the answer is checked against it.
struct MBM_Expected {
    uint8_t slave, quantity; // of bits and registers, the low 8 bits
    uint16_t start;          // of a write
};
extern MBM_Expected MBM_expected;

// Notes a failure that happened before anything was sent. Always MBM_FAILED.
int MBM_Refuse(int fault);
// Counts and notes a try that failed; `code` is for MBM_byExCode. Always MBM_FAILED.
int MBM_Fail(int fault, int code);

// Called only while TRC_isOn. A record begins with a request and ends with its answer.
void MBM_BeginTrace(const uint8_t *frame, size_t count, bool isProbe);
void MBM_TraceReceived(const void *bytes, size_t count);
void MBM_EndTrace(bool isEchoSkipped, int fault);
void MBM_TraceLink(bool isOpening, int port, int result);

#endif
