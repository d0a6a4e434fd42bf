// Driver of the scope's generation 3: one control block, found by the prefix as its name,
// with fields at fixed offsets. The layout of the block stands in docs/manual/reference/formats.md.
// Unless said otherwise: 0, or -1 (block unknown or a write failed), -2 (a read failed).
#ifndef SCOPE_SCOPE_V3_H
#define SCOPE_SCOPE_V3_H

#include "scope/scope.h"

constexpr int S3_CHANNELS_MAX = 10;

extern uint32_t S3_dwBaseAddr, S3_dwBuffAddr; // byte addresses; 0xFFFFFFFF unknown
extern int S3_isVer166;                       // the block keeps addresses in page format
extern int S3_nErr;                           // 0 once the init has succeeded, else -1

// -1 not found, not a scope or not read; -2 samples, -3 channels out of range.
int S3_Init();
int S3_RdOscVar(uint32_t offset, uint32_t length, void *buffer);
int S3_WrOscVar(uint32_t offset, uint32_t length, const void *data);
// `count` words of the sample buffer from word `index` on, in target byte order.
int S3_RdOscData(uint32_t index, uint32_t count, uint16_t *words);
int S3_RdCtl(int16_t *value);
int S3_WriteCtl(int16_t value);
int S3_Run();
int S3_ManTgr();
int S3_SetTgrPos(double percent); // of the record that lies before the trigger
int S3_GetCnPostTgr(uint16_t *count);
int S3_SetSubPd(uint16_t period); // 1 keeps every sample; 0 is refused (-1)
// The level as channel 1's type needs it. -3 when the type cannot hold it.
int S3_SetTgrLevel(double level, int type);
int S3_SetTrigLevel(uint32_t bits);
// mode 0 rising, 1 falling through the level, 2 free run; `slope` the type of the
// comparison (an SX_Type; the 16-bit signed one by default).
int S3_SetTriggerMode(int mode, int slope);
int S3_GetTgrCond();               // 2 * mode + (1 - signed), or -1 for a code of another meaning
bool S3_IsDataTypeX4(int channel); // channels from 1
bool S3_IsChannelBlocked(int channel); // its slot serves the X4 channel before it
// 1, or 2 with the second slot of an X4 channel; 0 blocked, -1 bad channel or no init,
// -2 block unknown, -3 failed write, -4 written, but the target cannot sample bytes.
int S3_SetChAddr(int channel, uint32_t address);
int S3_GetChAddr(int channel, uint32_t *address);
// -1 too large, -2 failed read, -3 no write index, -4 index outside the ring, or
// SX_NOT_TRIGGERED, SX_SAMPLING, SX_CANCELLED: records and data as they were.
int S3_ReadData(SX_Progress progress);

#endif
