// Programming and comparing tell their speed, their failures and their end in the same way, and
// both trust nothing that a command's own answer does not say.
#include "loader/pass.h"

#include "comm/mr166_link.h"
#include "loader/borrow.h"
#include "loader/l3_protocol.h"
#include "platform/system.h"

#include <algorithm>

namespace {

// A target cut off in the middle of a command takes the next request for the rest of it.
constexpr int TEST_TRIES = 3;

} // namespace

int LDR_WithPort(LDR_Job *job, int port, int baud, const std::function<int()> &work)
{
    if (job->plan.empty())
        return job->result;
    LDR_Loan loan;
    const int opened = LDR_BorrowPort(port, baud, &loan);
    if (opened < 0) {
        job->cause = MrASC_ErrorText(opened);
        // The steps of an earlier run are not this one's; only the file stays checked.
        std::fill(job->steps + LDR_STEP_TARGET, job->steps + LDR_STEPS, LDR_WAITING);
        job->steps[LDR_STEP_TARGET] = LDR_FAILED;
        return job->result = LDR_ERR_PORT;
    }
    const int result = work();
    LDR_ReturnPort(loan);
    return result;
}

void LDR_LogLine(const LDR_Pass &pass, const std::string &line)
{
    if (pass.progress->log != nullptr)
        pass.progress->log(pass.progress->context, line.c_str());
}

int LDR_KeepCause(LDR_Pass *pass, int result, uint32_t address)
{
    // At once: the next command, also one that only looks, puts its own fault there.
    pass->job->cause = LD167U_GetFaultText();
    pass->job->causeAddress = address;
    return result;
}

void LDR_BeginClock(LDR_Pass *pass)
{
    // Anew with each step: a link test or an erase moves no bytes and would spoil the speed.
    pass->startMs = PLT_TickMs();
    pass->timedBytes = 0;
}

bool LDR_Advance(LDR_Pass *pass, uint32_t bytes, const char *text)
{
    LDR_Job *job = pass->job;
    // A group that is read may hold blocks that need not have been: never more than all.
    job->bytesDone = std::min(job->bytesDone + bytes, job->bytesTotal);
    pass->timedBytes += bytes;
    const uint32_t ms = PLT_TickMs() - pass->startMs;
    if (ms > 0 && pass->timedBytes > 0) {
        job->bytesPerSecond = static_cast<uint32_t>(uint64_t{pass->timedBytes} * 1000u / ms);
        // Rounded up: "0 s left" while bytes are still moving would be untrue.
        const uint32_t left = job->bytesTotal - job->bytesDone;
        job->secondsLeft =
            job->bytesPerSecond > 0 ? (left + job->bytesPerSecond - 1) / job->bytesPerSecond : 0;
    }
    if (LDR_Step(*pass->progress, job->bytesDone, job->bytesTotal, text))
        pass->isCancelled = true;
    return pass->isCancelled;
}

int LDR_FindTarget(LDR_Pass *pass)
{
    pass->job->steps[LDR_STEP_TARGET] = LDR_RUNNING;
    for (int i = 0; i < TEST_TRIES; ++i) {
        if (LD167U_L3Test() == 0) {
            pass->job->steps[LDR_STEP_TARGET] = LDR_DONE;
            LDR_LogLine(*pass, "The target's loader answers.");
            return 0;
        }
        if (LDR_Advance(pass, 0, "Looking for the target's loader"))
            return LDR_ERR_CANCELLED;
    }
    return LDR_KeepCause(pass, LDR_ERR_TARGET, 0);
}

int LDR_ReadGroup(LDR_Pass *pass, const LDR_Group &group, IHEX167_Block *found)
{
    found->address = group.wanted.address;
    found->length = group.wanted.length;
    // What came unasked, after a fault say, must not be taken for the next answer.
    LD167U_pPort->dropInput();
    if (LD167U_L3CmdReadBlock(found) < 0)
        return LDR_KeepCause(pass, LDR_ERR_READ, found->address);
    return 0;
}

int LDR_CompareGroup(LDR_Pass *pass, const LDR_Group &group)
{
    IHEX167_Block found;
    const int result = LDR_ReadGroup(pass, group, &found);
    if (result < 0)
        return result;
    return LDR_FindDifference(group.wanted, found, &pass->job->difference) ? LDR_ERR_DIFFERENT : 0;
}

void LDR_EndSteps(LDR_Job *job)
{
    // Whatever way a step was left, it said "running" until it was done.
    for (LDR_StepState &step : job->steps)
        if (step == LDR_RUNNING)
            step = LDR_FAILED;
}
