// A station's memory as a request reaches it, whatever the protocol: the demo's variables
// are brought up to date before a read, and a write of the mailbox's command byte is carried
// out by the TMS320. The caller holds the target's lock.
#ifndef SIM_ACCESS_H
#define SIM_ACCESS_H

#include "target.h"

void SIM_ReadTarget(SIM_Target *target, int number, uint32_t address, void *bytes, size_t count);
void SIM_WriteTarget(SIM_Target *target, int number, uint32_t address, const void *bytes,
                     size_t count);

#endif
