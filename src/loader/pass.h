// One way over the flash, to program it or only to compare it: the clock, the wish to stop,
// the loader found, a group read back. Used by program.cpp and compare.cpp only.
#ifndef LOADER_PASS_H
#define LOADER_PASS_H

#include "loader/job.h"
#include "loader/plan.h"
#include "loader/progress.h"

#include <functional>
#include <string>
#include <vector>

struct LDR_Pass {
    LDR_Job *job = nullptr;
    const LDR_Progress *progress = nullptr;
    std::vector<bool> isThere; // blocks of the plan found in the flash before writing
    uint32_t startMs = 0;      // of the clock that the speed is told by
    uint32_t timedBytes = 0;   // moved since then
    bool isCancelled = false;
};

// Runs `work` with the port in the loader's hands: what it answers, or LDR_ERR_PORT with the
// job saying why. A job whose file was not fit to be programmed keeps its result.
int LDR_WithPort(LDR_Job *job, int port, int baud, const std::function<int()> &work);

void LDR_LogLine(const LDR_Pass &pass, const std::string &line);
// Keeps the protocol's cause and the address it is about in the job; gives `result` back.
int LDR_KeepCause(LDR_Pass *pass, int result, uint32_t address);
void LDR_BeginClock(LDR_Pass *pass);
// So many bytes more were moved. True when the user wishes to stop, from then on always.
bool LDR_Advance(LDR_Pass *pass, uint32_t bytes, const char *text);

// The step LDR_STEP_TARGET. 0, LDR_ERR_TARGET or LDR_ERR_CANCELLED.
int LDR_FindTarget(LDR_Pass *pass);
// What stands where the group belongs. 0 or LDR_ERR_READ.
int LDR_ReadGroup(LDR_Pass *pass, const LDR_Group &group, IHEX167_Block *found);
// 0, LDR_ERR_READ, or LDR_ERR_DIFFERENT with the job's difference.
int LDR_CompareGroup(LDR_Pass *pass, const LDR_Group &group);
// The step that was running when the job ended has failed.
void LDR_EndSteps(LDR_Job *job);

#endif
