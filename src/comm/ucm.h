// The unified communication layer: everything that reaches a target goes through
// here and does not know which link protocol is in use. Owns UCM_recS.
// Results are 16-bit signed values widened to int: negative is a failure.
#ifndef COMM_UCM_H
#define COMM_UCM_H

#include "platform/system.h"

#include <cstdint>
#include <functional>
#include <string>

enum {
    UCM_ERR_FAILED = -1,      // the target did not answer correctly: UCM_LastErrorText
    UCM_ERR_PROOF = -1,       // it did, but not provably; no caller need tell the two apart
    UCM_ERR_ARGUMENT = -20,   // bad argument, or the wrong protocol for the operation
    UCM_ERR_MODBUS_OPEN = -22 // the Modbus port could not be opened
};
constexpr int UCM_COUNTERS = 100;

struct UCM_Record {
    int16_t protocol = 1;
    int16_t tries = 3;
    uint16_t errors[UCM_COUNTERS] = {}; // errors[k] counts results of -k; 0 is never used
    int16_t opened = 0;
    int16_t port = 0;
};
extern UCM_Record UCM_recS;

void UCM_Init();
void UCM_ClearErrorCounter();
int UCM_CountErr(int result);
int UCM_Open(int protocol, int port, int baud);
void UCM_Close();
int UCM_IsOpened();
bool UCM_IsGone(); // the open port is not there any more: unplugged
int UCM_UseWin32(int flag);

// The name of a port for a message: "COM3 (/dev/ttyS2)".
std::string UCM_PortName(int port);

// What a value read is worth. Equipment on the line may repeat answers, and then a value may
// be a neighbour's. Proof comes behind the reads: show, save and compare what was read only
// when UCM_Prove says so, at the end of a sweep, of a transfer or of a command, and at least
// once a second while sampling. A UCM_Read of more than one block (64 bytes with mr166)
// proves itself, as does any read on a line where something odd was seen in the last
// ten seconds and the first one of each second; a single value otherwise waits for this.
// One exchange for each station read since its last proof, nothing when there is none.
enum {
    UCM_PROVEN = 0,      // what was read since the last call is good
    UCM_NOT_PROVEN = -1, // no proof to be had: none of it may be shown; UCM_LastErrorText
    UCM_READ_AGAIN = -2  // more answers came than were asked for: read all of it again
};
int UCM_Prove();
extern const char *const UCM_REPEATED_TEXT; // the reason of UCM_READ_AGAIN in words
// How often UCM_Prove has refused so far. It answers each refusal once, to whoever asks first:
// a reader whose values wait longer sees here that they are in doubt too.
uint32_t UCM_CountDoubts();
// For whoever shows, saves or compares at once: the proof and the reading again in one call.
// Makes `exchange` (0 or positive good, negative failed) and puts the proof behind it, up to
// three times while answers are repeated. 0, the exchange's failure, or UCM_ERR_PROOF;
// UCM_LastErrorText has the reason of each.
int UCM_MakeProven(const std::function<int()> &exchange);
int UCM_ReadProven(int station, uint32_t address, uint32_t count, void *buffer);
// One message of 1 to 16 bytes. When answers were repeated, reading back decides: it is not sent
// a second time.
int UCM_WriteProven(int station, uint32_t address, uint16_t count, const void *data);

// Exchanges one after the other with one proof behind them all, up to the first that fails; what
// stands in front of that is proven too. All are made again while answers are repeated.
struct UCM_Series {
    uint32_t made = 0; // exchanges that were answered, up to the first failure
    uint32_t good = 0; // of these proven: all or none
    int result = 0;    // of the failed exchange, UCM_ERR_PROOF, or 0
    std::string cause; // in words; "" when none failed
};
UCM_Series UCM_MakeSeries(uint32_t count, const std::function<int(uint32_t index)> &exchange);

// The last try read its own request back: the line echoes, the driver cannot skip that.
bool UCM_IsEchoing();

// Who is asked and told while the link works; all of it on the caller's thread, inside of the
// call. Entries may be null. Neither may use the link.
struct UCM_Listener {
    // Asked before every try: true ends the transfer with the reason "cancelled".
    bool (*isBreak)() = nullptr;
    // Told before an exchange with another station than the last, or after a failed one.
    void (*waiting)(int station) = nullptr;
};
void UCM_SetListener(const UCM_Listener &listener);

// Whole transfers. `count` bytes at a target byte address; target byte order.
// A write that is reported as done was acknowledged, and not by an older answer.
int UCM_Read(int station, uint32_t address, uint32_t count, void *buffer);
int UCM_Write(int station, uint32_t address, uint32_t count, const void *data);

// As UCM_Read of any number of bytes, and with it, where that can be had for fewer characters
// than an exchange of its own, the proof of all that was read from this station: the last block
// then has a length that no other answer has. 1 with that proof: UCM_Prove, which is still to be
// asked, then costs nothing for the station. 0 read only; negative failure.
int UCM_ReadProving(int station, uint32_t address, uint32_t count, void *buffer);

// One block a call, proven: 1 finished, 0 one step done and more remain, negative failure.
int UCM_ReadBg(int station, uint32_t *address, uint32_t *count, uint8_t **buffer);
int UCM_WriteBg(int station, uint32_t *address, uint32_t *count, const uint8_t **data);

// Bytes that one message of the present protocol writes at most: a transfer in steps of these
// knows how far it came.
uint32_t UCM_WriteStep();

// One request: 1 answered correctly, 0 failed; UCM_ERR_ARGUMENT as described for each protocol.
// `data` is what command 8 writes. What command 0 reads stays in the mr166 link's buffer; over
// Modbus it is put into `data`, which must then be writable.
int UCM_EmuCom166Msg(int station, int command, uint32_t address, uint16_t word, const void *data);
// The same without waiting for a correct answer; mr166 only.
int UCM_EmuCom166MsgNA(int station, int command, uint32_t address, uint16_t word, const void *data);

// Why the last read, write, request or opening failed, in words for the user ("no answer",
// "target error code 66", ...); "" when it did not fail.
std::string UCM_LastErrorText();

// What the line has been doing since the statistics were last reset.
struct UCM_Statistics {
    uint32_t answered = 0;              // messages answered correctly
    uint32_t timeouts = 0;              // messages without an answer
    uint32_t damaged = 0;               // answers refused: damaged, foreign, or a target error code
    uint32_t repeated = 0;              // failed tries of blocks
    uint16_t errors[UCM_COUNTERS] = {}; // as in UCM_Record
    PLT_Date since;                     // local time of the last reset, or of UCM_Init
};
void UCM_GetStatistics(UCM_Statistics *statistics);
// What kind of failure there was since these were taken. To ask more of a silent station only
// costs time-outs; what was refused may be had in another way.
enum UCM_Cause {
    UCM_CAUSE_SILENT,  // nobody answered
    UCM_CAUSE_REFUSED, // an answer came, but no good one
    UCM_CAUSE_OTHER    // neither: the port is closed or gone, or somebody broke off
};
UCM_Cause UCM_CauseSince(const UCM_Statistics &before);
void UCM_ResetStatistics(); // also clears the error counters and the causes of failures.h

#endif
