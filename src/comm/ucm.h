// The unified communication layer: everything that reaches a target goes through
// here and does not know which link protocol is in use. Owns UCM_recS.
// Results are 16-bit signed values widened to int: negative is a failure.
#ifndef COMM_UCM_H
#define COMM_UCM_H

#include "platform/system.h"

#include <cstdint>
#include <string>

enum {
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

// Whole transfers. `count` bytes at a target byte address; target byte order.
int UCM_Read(int station, uint32_t address, uint32_t count, void *buffer);
int UCM_Write(int station, uint32_t address, uint32_t count, const void *data);

// One block a call: 1 finished, 0 one step done and more remain, negative failure.
int UCM_ReadBg(int station, uint32_t *address, uint32_t *count, uint8_t **buffer);
int UCM_WriteBg(int station, uint32_t *address, uint32_t *count, const uint8_t **data);

// One request: 1 answered correctly, 0 failed; UCM_ERR_ARGUMENT as described for each protocol.
// `data` is what command 8 writes, and receives nothing.
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
void UCM_ResetStatistics(); // also clears the error counters and the causes of failures.h

#endif
