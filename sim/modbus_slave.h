// What a Modbus slave does with a request and what it answers. Knows nothing of lines.
#ifndef SIM_MODBUS_SLAVE_H
#define SIM_MODBUS_SLAVE_H

#include "target.h"

// Carries out the request that stands in `frame` (without CRC; slave 1..15) and builds the
// answer, without CRC, into `answer` of SIM_RTU_MAX bytes. Returns the answer's length;
// *exception is its exception code, or 0. The caller holds the target's lock.
size_t SIM_ServeRtu(SIM_Target *target, const uint8_t *frame, size_t count, uint8_t *answer,
                    int *exception);
// The answer that refuses a request with an exception code.
size_t SIM_RefuseRtu(const uint8_t *frame, int exception, uint8_t *answer);

#endif
