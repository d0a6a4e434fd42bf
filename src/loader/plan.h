// The blocks of a programming: what is written by one command, what is read back by one, and
// how two of them compare. Used by the loader's program only.
#ifndef LOADER_PLAN_H
#define LOADER_PLAN_H

#include "loader/job.h"

// A run of blocks without gaps, small enough to be read back by one command.
struct LDR_Group {
    size_t first = 0, end = 0; // in the plan
    IHEX167_Block wanted;
};

// The file's records by address, cut where they are too long for one write command.
void LDR_MakePlan(LDR_Job *job);
LDR_Group LDR_GetGroup(const LDR_Job &job, size_t first); // as long as possible
uint32_t LDR_CountBytes(const LDR_Job &job, size_t first, size_t end);

// The first byte that differs; false when there is none.
bool LDR_FindDifference(const IHEX167_Block &wanted, const IHEX167_Block &found,
                        LDR_Difference *at);
// Whether `count` bytes can become what is wanted: programming only clears bits.
bool LDR_CanBecome(const IHEX167_Block &wanted, const IHEX167_Block &found, size_t at,
                   size_t count);

#endif
