// The protocol of the C166's boot-strap loader: read and write a block, erase, link test.
// It works on the serial port that the mr166 link has open with the Win32 driver, keeps no
// connection of its own and repeats nothing. Owns the queue, the running check sum and the
// last fault. Used by the loader's other files, console commands and tests.
#ifndef LOADER_L3_PROTOCOL_H
#define LOADER_L3_PROTOCOL_H

#include "loader/ihex_line.h"
#include "loader/progress.h"

#include <cstddef>
#include <cstdint>
#include <string>

constexpr size_t LD167U_QUEUE_BYTES = 256;
constexpr uint16_t LD167U_WRITE_DATA_MAX = 251; // what fits the queue behind a command's head
constexpr unsigned LD167U_TIMEOUT_MS = 1000;    // of a read and of a write

// What the transfer functions run on. Results as those of the serial port: bytes moved, or
// negative when the port is gone.
struct LD167U_Port {
    int (*write)(const void *bytes, size_t count);
    int (*read)(void *buffer, size_t count); // waits for all of them, at most the time-out
    int (*dropInput)();
    int (*setTimeouts)(unsigned readMs, unsigned writeMs);
};
extern const LD167U_Port LD167U_SerialPort; // the port of the Win32 driver
extern const LD167U_Port *LD167U_pPort;     // the one in use

extern uint8_t LD167U_abySendBuffer[LD167U_QUEUE_BYTES];
extern int32_t LD167U_cnSendBuffer; // bytes queued
extern uint8_t LD167U_byChkSum;     // sum of every byte sent or received

// --- bytes: all fail with -1 while the port is not open ---------------------------------
int LD167U_ReadBytes(void *buffer, int n); // 0, or -1 also when fewer arrive in time
int LD167U_ReadByte();                     // 0 to 255, or -1
int LD167U_WriteByte(uint8_t byte);        // 0 or -1
int LD167U_WriteBytes(const void *bytes, int n);
void LD167U_ClearQueue();
int LD167U_QueueByte(uint8_t byte); // 0, or -1 when the queue is full
int LD167U_SendQueue();             // 0 or -1; the queue is empty afterwards in any case

int LD167U_SetTimeouts(); // 0

// --- commands ----------------------------------------------------------------------------
// Fills the data of a block whose address and length are set. 0 or -1.
int LD167U_L3CmdReadBlock(IHEX167_Block *block);
// 0, or -1; a block of more than LD167U_WRITE_DATA_MAX bytes does not fit the queue.
int LD167U_L3CmdWriteBlock(const IHEX167_Block *block);
int LD167U_L3Test(); // 0 the loader answers, or -1
// 0, -1 sending failed, -2 wrong answer, -3 no answer within about 21 s. A wish to stop is
// not heeded: the target cannot be stopped either.
int LD167U_L3CmdEraseFlash(const LDR_Progress &progress = LDR_Progress());

// --- why the last command failed ----------------------------------------------------------
enum L3_Fault {
    L3_FAULT_NONE,
    L3_FAULT_CLOSED,   // the port is not open
    L3_FAULT_ARGUMENT, // not a block that this command can carry
    L3_FAULT_GONE,     // the port vanished
    L3_FAULT_SEND,     // the request could not be sent whole
    L3_FAULT_SILENT,   // not one byte came
    L3_FAULT_SHORT,    // the answer broke off
    L3_FAULT_CHECKSUM, // the answer's check sum is wrong
    L3_FAULT_ANSWER,   // another answer than expected
};
extern L3_Fault LD167U_enFault;
std::string LD167U_GetFaultText(); // of the last command, in words: "no answer"

#endif
