// Target memory over Modbus, block by block. The unified layer and tests call it; everybody
// else goes through ucm.h. Results: 0 or more, or negative as there.
#ifndef COMM_UCM_MODBUS_H
#define COMM_UCM_MODBUS_H

#include "comm/modbus.h"

#include <cstdint>

// MBM_MasterFN, repeated after a failure as often as UCM_recS.tries says; every failure
// is counted.
int UCM_ExchangeMBM(int function, int slave, const MBM_Part *from, const MBM_Part *to);
// One block of 1 to 246 bytes, UCM_ERR_ARGUMENT beyond; of a read at most 250 are possible.
int UCM_WriteBlkMBM(int slave, uint32_t address, uint32_t count, const void *data);
int UCM_ReadBlkMBM(int slave, uint32_t address, uint32_t count, void *buffer);
// Blocks of 216 bytes up to the first that fails; 0 for no bytes.
int UCM_WriteMBM(int slave, uint32_t address, uint32_t count, const void *data);
int UCM_ReadMBM(int slave, uint32_t address, uint32_t count, void *buffer);
// One such block; the three values are past it even when it fails. 1 that was the last.
int UCM_WriteBlkBgMBM(int slave, uint32_t *address, uint32_t *count, const uint8_t **data);
int UCM_ReadBlkBgMBM(int slave, uint32_t *address, uint32_t *count, uint8_t **buffer);
// The commands 0 (reads `word` bytes into `data`), 4 (writes `word`) and 8 (writes `word`
// bytes of `data`); UCM_ERR_ARGUMENT for others.
int UCM_EmuCom166MsgMBM(int slave, int command, uint32_t address, uint16_t word, void *data);

#endif
