// The flash against the file without changing either, and memory read for whoever asks. What a
// comparison has seen is newer than what an earlier run believes, so it corrects the job.
#include "loader/l3_protocol.h"
#include "loader/pass.h"
#include "loader/program.h"

#include <algorithm>

namespace {

// Reads all of the file's blocks. 0 or LDR_ERR_...
int Compare(LDR_Pass *pass)
{
    LDR_Job *job = pass->job;
    job->steps[LDR_STEP_VERIFY] = LDR_RUNNING;
    LDR_BeginClock(pass);
    for (size_t i = 0; i < job->plan.size();) {
        const LDR_Group group = LDR_GetGroup(*job, i);
        const int result = LDR_CompareGroup(pass, group);
        if (result < 0)
            return result;
        i = group.end;
        // Behind the last group there is nothing left to stop: all is known.
        if (LDR_Advance(pass, group.wanted.length, "Comparing") && i < job->plan.size())
            return LDR_ERR_CANCELLED;
    }
    // What was compared is the copy in the job; whether that still is "the file" is asked last.
    if (HEX_IsUnchanged(job->file) == 0)
        return LDR_ERR_CHANGED;
    job->steps[LDR_STEP_VERIFY] = LDR_DONE;
    return 0;
}

// What a comparison has found goes before what an earlier run has left behind.
void LearnFromCompare(LDR_Job *job)
{
    const size_t known = std::max(job->verified, job->written);
    if (job->result == 0 && job->flash == LDR_FLASH_PARTLY) {
        // Also a damaged write must have gone where it belongs, or it would have been seen.
        job->flash = LDR_FLASH_WHOLE;
        job->written = job->verified = job->plan.size();
        job->isStrayPossible = false;
    } else if (job->result == LDR_ERR_DIFFERENT && job->flash == LDR_FLASH_WHOLE) {
        job->flash = LDR_FLASH_UNTOUCHED; // another target, or another tool's work
    } else if (job->result == LDR_ERR_DIFFERENT && job->flash == LDR_FLASH_PARTLY && known > 0 &&
               job->difference.address < LDR_GetEnd(job->plan[known - 1])) {
        job->flash = LDR_FLASH_UNUSABLE; // not what was written there
    }
}

} // namespace

int LDR_VerifyOnPort(LDR_Job *job, const LDR_Progress &progress)
{
    if (job->plan.empty()) // the file was not fit to be programmed
        return job->result;
    LDR_Pass pass;
    pass.job = job;
    pass.progress = &progress;
    job->cause.clear();
    job->bytesPerSecond = job->secondsLeft = 0;
    job->bytesDone = 0;
    job->bytesTotal = LDR_CountBytes(*job, 0, job->plan.size());
    // Success means the same as after a programming with reading back.
    job->isReadBack = true;
    for (const int step : {LDR_STEP_TARGET, LDR_STEP_VERIFY})
        job->steps[step] = LDR_WAITING;
    for (const int step : {LDR_STEP_ERASE, LDR_STEP_PROGRAM})
        job->steps[step] = LDR_LEFT_OUT;
    job->result = LDR_FindTarget(&pass);
    if (job->result == 0)
        job->result = Compare(&pass);
    LDR_EndSteps(job);
    LearnFromCompare(job);
    LDR_LogLine(pass, LDR_GetResultText(*job));
    return job->result;
}

int LDR_Verify(LDR_Job *job, int port, int baud, const LDR_Progress &progress)
{
    return LDR_WithPort(job, port, baud, [&] { return LDR_VerifyOnPort(job, progress); });
}

int LDR_ReadMemory(uint32_t address, uint32_t count, std::vector<uint8_t> *bytes,
                   const LDR_Progress &progress)
{
    bytes->clear();
    LD167U_SetTimeouts();
    while (bytes->size() < count) {
        const auto done = static_cast<uint32_t>(bytes->size());
        IHEX167_Block block;
        block.address = address + done;
        block.length = static_cast<uint16_t>(std::min<uint32_t>(count - done, IHEX167_DATA_MAX));
        // The rest of an answer that broke off must not become the begin of this one.
        LD167U_pPort->dropInput();
        if (LD167U_L3CmdReadBlock(&block) < 0)
            return LDR_ERR_READ;
        bytes->insert(bytes->end(), block.data, block.data + block.length);
        if (LDR_Step(progress, done + block.length, count, "Reading") && bytes->size() < count)
            return LDR_ERR_CANCELLED;
    }
    return 0;
}
