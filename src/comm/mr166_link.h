// The mr166 link: owns the serial port of the protocol, exchanges one request and answer
// at a time through one of two drivers, counts what went wrong and splits transfers into
// blocks. Only the unified layer, the flash loader (which borrows the port) and tests call
// it. Everything happens inside the call: an exchange is over when it returns.
#ifndef COMM_MR166_LINK_H
#define COMM_MR166_LINK_H

#include "comm/mr166_frame.h"
#include "platform/serial.h"

#include <cstdint>
#include <string>

// Results beyond those of the answer check in mr166_frame.h.
enum {
    MR166_ERR_TIMEOUT = -9,   // no answer within the time-out
    MR166_ERR_ARGUMENT = -20, // station or command above 15, address above 24 bits, write count
    MR166_ERR_CLOSED = -21,   // port not open
    MR166_ERR_OPEN_NI = -22,  // the run-time driver could not open the port
    MR166_ERR_OPEN = -30,     // the port could not be opened
    MR166_ERR_GET = -31,      // its settings could not be read
    MR166_ERR_SET = -32,      // its settings could not be written
    MR166_ERR_PORT = -38,     // port number out of range
    // Finer causes, in Mr166_nFault only:
    MR166_FAULT_GONE = -40,      // the device vanished during the exchange
    MR166_FAULT_SEND = -41,      // the request could not be sent whole
    MR166_FAULT_ECHO = -42,      // the request itself came back in place of an answer
    MR166_FAULT_COUNT = -43,     // a sound answer with another number of bytes than asked for
    MR166_FAULT_CANCELLED = -44, // the user broke off; also in nMr166Err
    MR166_FAULT_SURPLUS = -45,   // answers come more than once: what was read proves nothing
    MR166_FAULT_MISSING = -46,   // opening: no such device
    MR166_FAULT_BUSY = -47,      // opening: another program has it
    MR166_FAULT_ACCESS = -48,    // opening: no permission
    MR166_FAULT_BAUD = -49,      // opening: the device does not do this baud rate
    MR166_FAULT_HOST = -50,      // opening: no such host
    MR166_FAULT_REFUSED = -51,   // opening: nothing listens at that port of the host
    MR166_FAULT_SILENT = -52,    // opening: the host does not answer
};

// wMr166State
enum : uint16_t {
    MR166_STATE_OK = 0,
    MR166_STATE_FAILED = 3,
    MR166_STATE_CLOSED = 4,
    MR166_STATE_WAITING = 0xFFFF
};

extern uint16_t wMrOpenFlag;
extern int32_t MR166_isWin32;     // 1 Win32 driver, 0 run-time driver
extern SER_Handle MR166_hCom;     // port of the Win32 driver
extern int32_t MrASC_nCom;        // of the last successful open
extern int32_t MrASC_nBaudRate;   // of the last successful open
extern int16_t Mr166_CnBlkRpt;    // repetitions of a failed block: attempts = value + 1
extern int16_t Mr166_wComDbg;     // run-time driver: wait for the answer without end
extern uint32_t Mr166_nTimeoutMs; // answer time-out; read when the port is opened

// The last exchange.
extern uint8_t Mr166_byStNo, Mr166_byCmd;
extern uint32_t Mr166_dwAddr;
extern uint16_t Mr166_wData;
extern int32_t nMr166Err; // 0 or a code of the answer check or above
extern uint16_t wMr166State;
extern uint16_t cnRcvData;   // data bytes of the last answer
extern int32_t Mr166_nFault; // like nMr166Err but set by every failure, and with finer causes

extern bool Mr166_isEchoing; // Win32 driver: the last try read its own request

// Counted since the program started and never reset here.
extern uint32_t EC_dwMsgOk;   // answered correctly; stops at the maximum
extern uint16_t EC_wTimeErr;  // not answered; wraps
extern uint16_t EC_wFrameErr; // answer refused; stops at the maximum in the answer check
extern uint32_t EC_dwBlkRpt;  // failed tries of blocks; wraps

// 0, or the result of reopening: an open port is closed and opened with the other driver.
int MrASC_UseWin32(int flag);
// 0, or a negative code; a port that is open is closed first. Two stop bits, no parity.
int MrASC_Open(int port, int baud);
int MrASC_OpenWin32(int port, int baud); // ports 0 to 255
int MrASC_OpenNI(int port, int baud);    // ports 0 to 98
void MrASC_Close();
void MrASC_CloseWin32();
void MrASC_CloseNI();
int MrASC_IsOpened();
bool MrASC_IsGone(); // the open port's device is not there any more

// Sends the send buffer. Negative on failure.
int MrFrameOut();

// One exchange. When the line is not in step, a probe goes out first (see
// docs/architecture/line.md), which is in the trace but not in the counters unless it fails like
// a try. 1 answered correctly, data in Mr166_abyRcvData; 0 failed, cause in
// nMr166Err. The run-time driver answers a bad station, command or write count with
// MR166_ERR_ARGUMENT. `word` is the count for commands 0 and 8, else the value sent;
// `data` is read for command 8 only.
int mr166Message(int station, int command, uint32_t address, uint16_t word, const void *data);
int mr166MessageWin32(int station, int command, uint32_t address, uint16_t word, const void *data);
int mr166MessageNI(int station, int command, uint32_t address, uint16_t word, const void *data);
// One request whose answer, if any, is not looked at. 1 sent, 0 not, MR166_ERR_ARGUMENT.
int Mr166MessageW32NA(int station, int command, uint32_t address, uint16_t word, const void *data);

// Whole transfers in blocks, each tried Mr166_CnBlkRpt + 1 times. 0, or -1. A transfer
// of several blocks, or one on a suspicious line, is proven behind its last block and made
// again when it must; any other waits for Mr166_Prove.
int Mr166_Read(int station, uint32_t address, uint32_t count, void *buffer);
int Mr166_Write(int station, uint32_t address, uint32_t count, const void *data);
// Proves whatever was read since the last call: 0 all of it is good; MR166_READ_AGAIN more
// answers came than were asked for, so any of it may be a neighbour's; -1 no proof was to
// be had. One exchange for each station that was read since its last proof.
constexpr int MR166_READ_AGAIN = -2;
int Mr166_Prove();
// One block a call, the three values advanced by it. 1 complete, 0 more remains, -1 failed.
// A count that is a multiple of the block size needs one more call, for no bytes: reading
// none succeeds when the target answers, writing none fails.
int Mr166_ReadBg(int station, uint32_t *address, uint32_t *count, uint8_t **buffer);
int Mr166_WriteBg(int station, uint32_t *address, uint32_t *count, const uint8_t **data);

// A result or fault in words: "answered", "no answer", "target error code 66", ...
std::string MrASC_ErrorText(int code);

#endif
