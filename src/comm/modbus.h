// The Modbus RTU master: owns its serial port and exchanges one request and answer at a
// time. Requests of functions 1 to 4, 6, 16 and 23 to any slave; nothing is repeated here.
// Only the unified layer, the console's Modbus commands and tests call it.
#ifndef COMM_MODBUS_H
#define COMM_MODBUS_H

#include "platform/serial.h"

#include <cstddef>
#include <cstdint>
#include <string>

enum {
    MBM_FAILED = -1, // the reason is in MBM_byExCode and, finer, in MBM_nFault
    MBM_ERR_OPEN = -1000,
    MBM_ERR_GET = -1001,  // the port's settings could not be read
    MBM_ERR_SET = -1002,  // ... or not written
    MBM_ERR_PORT = -1008, // port number outside 0 to 255
};

enum : int {
    MBM_FN_COILS = 1,
    MBM_FN_INPUTS = 2,
    MBM_FN_HOLDING = 3,
    MBM_FN_INPUT_REGISTERS = 4,
    MBM_FN_WRITE_ONE = 6,
    MBM_FN_WRITE = 16,
    MBM_FN_READ_WRITE = 23,
};

// Why an exchange failed. MBM_byExCode holds one of the first five, or 1 to 0xFA: what the
// slave said in an exception answer. MBM_nFault holds any of these, an MBM_ERR_ of opening,
// or 0 after a good answer.
enum {
    MBM_EX_PART = 0xFB,          // data incomplete, wrong CRC, or another write confirmed
    MBM_EX_COUNT = 0xFC,         // byte count is not the expected one
    MBM_EX_CRC = 0xFD,           // exception answer with a wrong CRC
    MBM_EX_FOREIGN = 0xFE,       // of another slave or function
    MBM_EX_SILENT = 0xFF,        // fewer than 5 bytes within the time-out
    MBM_FAULT_EXCEPTION = 0x100, // plus the slave's exception code
    MBM_FAULT_GONE = -40,        // the device vanished during the exchange
    MBM_FAULT_SEND = -41,        // the request could not be sent whole
    MBM_FAULT_ECHO = -42,        // the request itself came back in place of an answer
    MBM_FAULT_NO_ECHO = -43,     // an echo was expected and something else came
    MBM_FAULT_CLOSED = -44,      // port not open
    MBM_FAULT_ARGUMENT = -45,    // function or quantity out of range: nothing was sent
    MBM_FAULT_SLAVE = -46,       // slave address out of range: nothing was sent
    MBM_FAULT_CUT = -47,         // the answer ended before its fifth byte
    MBM_FAULT_STEP = -48,        // the line did not come in step again: nothing was sent
    MBM_FAULT_CANCELLED = -49,   // the listener wanted an end: nothing was sent
};

constexpr int MBM_BITS_MAX = 2000, MBM_READ_MAX = 125, MBM_WRITE_MAX = 123;
constexpr int MBM_READ_WRITE_MAX = 121; // registers that function 23 writes
constexpr size_t MBM_FRAME_ROOM = 1000;
constexpr int MBM_PARITY_EVEN = 'e', MBM_PARITY_ODD = 'o';

extern int32_t MBM_isOpen;
extern SER_Handle MBM_hCom;
extern uint32_t MBM_dwBaudrate;
extern int32_t MBM_isEcho;      // the line echoes what is sent: read back before the answer
extern uint32_t MBM_nTimeoutMs; // answer time-out; read when the port is opened
extern int32_t MBM_nFnCode;     // of the request in progress; -1 after a refused one
extern uint8_t MBM_byExCode;    // why the last answer failed
extern int32_t MBM_nFault;      // like it, but 0 after a good answer, and with finer causes
extern int32_t MBM_cnLastSend;  // bytes of the last frame, CRC included; 0 when not sent
extern uint8_t MBM_abySnd[MBM_FRAME_ROOM], MBM_abyRcv[MBM_FRAME_ROOM];
extern uint16_t MBM_awRcvData[MBM_READ_MAX]; // registers, or bits packed, of the last answer

// Counted since the program started; the first stops at the maximum, the others wrap.
extern uint32_t MBM_cnOk, MBM_cnSilent, MBM_cnRefused;

// Registers to read into or to write from. Of bits, eight go into each byte, the first byte
// of two in the register's high half.
struct MBM_Part {
    uint16_t start, quantity;
    uint16_t *registers;
};

// 0, or an MBM_ERR_. 8 data bits, one stop bit; `parity` is MBM_PARITY_..., else none.
int MBM_Open(int port, int baud, int parity);
void MBM_Close();
bool MBM_IsGone(); // the open port's device is not there any more

uint16_t MBM_GetCRC(const void *bytes, size_t length);
int MBM_IsRcvCRC_Ok(int length);     // 1 when the received frame of that length is sound
int MBM_SendFrame(int length);       // appends the CRC. 0, or MBM_FAILED
int MBM_Read(int offset, int count); // into MBM_abyRcv. Bytes, or MBM_FAILED

// Build and send one request. 0, or MBM_FAILED, also for a quantity out of range.
int MBM_SendFN1or2(int slave, int function, int start, int quantity);
int MBM_SendFN1(int slave, int start, int quantity);
int MBM_SendFN2(int slave, int start, int quantity);
int MBM_SendFN3or4(int slave, int function, int start, int quantity);
int MBM_SendFN3(int slave, int start, int quantity);
int MBM_SendFN4(int slave, int start, int quantity);
int MBM_SendFN6(int slave, int reg, int value);
int MBM_SendFN16(int slave, int start, int quantity, const uint16_t *registers);
int MBM_SendFN23(int slave, int readStart, int readQuantity, int writeStart, int writeQuantity,
                 const uint16_t *registers);

// The answer to the request just sent: its quantity (of bits, the low 8 bits of it), 0 for
// functions 6 and 16, or MBM_FAILED. More than 255 bits at once are refused as a wrong count.
int MBM_ReceiveFN();

// One exchange. As MBM_ReceiveFN, or MBM_FAILED when a part that the function needs is
// missing (null, or without registers).
int MBM_MasterFN(int function, int slave, const MBM_Part *readPart, const MBM_Part *writePart);

// A fault in words: "no answer", "exception 2: illegal data address", ...
std::string MBM_ErrorText(int fault);

#endif
