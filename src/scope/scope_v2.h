// Driver of the scope's generation 2: each control variable is a variable of the target,
// its name the prefix and a fixed suffix (docs/manual/reference/formats.md lists them).
// Unless said otherwise: 0, or -1 (unknown name or a write failed), -2 (a read failed).
#ifndef SCOPE_SCOPE_V2_H
#define SCOPE_SCOPE_V2_H

#include "scope/scope.h"

extern int S2_IsXt; // the scope tells its frequency and can leave samples out
extern int S2_nErr; // 0 once the init has succeeded, else -1

// SX_NO_GENERATION: nothing of that prefix; -1 not read or a channel without a source,
// -2 samples out of range or a variable missing, -3 channels out of range.
int S2_Init();
int S2_RdOscVar(const char *suffix, uint32_t length, void *buffer);
int S2_WrOscVar(const char *suffix, uint32_t length, const void *data);
int S2_RdCtl(int16_t *value);
int S2_WriteCtl(int16_t value);
int S2_Run();
int S2_ManTgr();
int S2_SetTgrPos(double percent); // of the record that lies before the trigger
int S2_GetCnPostTgr(uint16_t *count);
int S2_SetSubPd(uint16_t period); // 1 keeps every sample; 0 is refused (-1)
int S2_SetTgrLevel(uint16_t level);
int S2_SetTriggerMode(int mode, int slope); // 0 rising, 1 falling; 1 signed, 0 unsigned
int S2_GetTgrCond(); // 2 * mode + (1 - slope), or -1 for bytes of another meaning
// 1; -1 bad channel, no init or no instruction to patch; -2 source unknown, -3 failed write.
int S2_SetChAddr(int channel, uint32_t address);
int S2_GetChAddr(int channel, uint32_t *address);
// As S3_ReadData. 16-bit types only.
int S2_ReadData(SX_Progress progress);

#endif
