// The order of things: nothing is erased before the file was checked and a loader has
// answered; each group of blocks is read back right after it was written, so that at any
// interruption all before it is known to be good.
#include "loader/program.h"

#include "loader/l3_protocol.h"
#include "loader/pass.h"

#include <algorithm>
#include <cstring>

namespace {

int Erase(LDR_Pass *pass)
{
    LDR_Job *job = pass->job;
    job->steps[LDR_STEP_ERASE] = LDR_RUNNING;
    // From the first byte asked for: a target that falls silent may be erasing all the same.
    job->flash = LDR_FLASH_ERASING;
    if (LD167U_L3CmdEraseFlash(*pass->progress) < 0)
        return LDR_KeepCause(pass, LDR_ERR_ERASE, 0);
    job->flash = LDR_FLASH_ERASED;
    job->steps[LDR_STEP_ERASE] = LDR_DONE;
    LDR_LogLine(*pass, "The flash is erased.");
    return LDR_Advance(pass, 0, "Erased") ? LDR_ERR_CANCELLED : 0;
}

// Judges the blocks of a group that was read. What was verified before must still be there,
// else this is another flash; a write that was damaged on its way must have arrived here.
int JudgeGroup(LDR_Pass *pass, const LDR_Group &group, const IHEX167_Block &found)
{
    LDR_Job *job = pass->job;
    size_t at = 0;
    for (size_t i = group.first; i < group.end; at += job->plan[i++].length) {
        const size_t count = job->plan[i].length;
        const bool isEqual = std::memcmp(group.wanted.data + at, found.data + at, count) == 0;
        const bool isNeeded = i < job->verified || (job->isStrayPossible && i == job->written);
        pass->isThere[i] = isEqual;
        if (isEqual || (!isNeeded && LDR_CanBecome(group.wanted, found, at, count)))
            continue;
        LDR_FindDifference(group.wanted, found, &job->difference);
        // A flash that nobody has touched is somebody else's, not one that this job has spoilt.
        job->flash = job->flash == LDR_FLASH_UNTOUCHED ? job->flash : LDR_FLASH_UNUSABLE;
        return LDR_ERR_NEEDS_ERASE;
    }
    return 0;
}

// Reads what the flash holds of the first `end` blocks, in place of erasing it.
int ReadWhatFlashHolds(LDR_Pass *pass, size_t end)
{
    LDR_Job *job = pass->job;
    job->steps[LDR_STEP_ERASE] = LDR_LEFT_OUT;
    LDR_LogLine(*pass, "Reading what the flash holds.");
    for (size_t i = 0; i < end;) {
        const LDR_Group group = LDR_GetGroup(*job, i);
        IHEX167_Block found;
        int result = LDR_ReadGroup(pass, group, &found);
        if (result == 0)
            result = JudgeGroup(pass, group, found);
        if (result < 0)
            return result;
        i = group.end;
        if (LDR_Advance(pass, group.wanted.length, "Reading what the flash holds"))
            return LDR_ERR_CANCELLED;
    }
    return 0;
}

int WriteBlock(LDR_Pass *pass, size_t index)
{
    LDR_Job *job = pass->job;
    IHEX167_Block block;
    HEX_GetBlock(job->file, job->plan[index], &block);
    LD167U_pPort->dropInput();
    job->flash = LDR_FLASH_PARTLY; // from the first byte sent on, whatever comes of it
    if (LD167U_L3CmdWriteBlock(&block) == 0)
        return 0;
    // The target answers with the sum of what it took: it took something else.
    job->isStrayPossible = LD167U_enFault == L3_FAULT_CHECKSUM;
    if (job->isStrayPossible)
        job->verified = 0; // it may have hit what had been good
    return LDR_KeepCause(pass, LDR_ERR_WRITE, block.address);
}

// Nothing is left that a wish to stop could save.
bool IsEnd(const LDR_Job &job)
{
    return (job.isVerify ? job.verified : job.written) == job.plan.size();
}

// Writes the blocks of a group that are not there yet, and reads the whole group back.
int ProgramGroup(LDR_Pass *pass, const LDR_Group &group)
{
    LDR_Job *job = pass->job;
    bool isWritten = false;
    for (size_t i = group.first; i < group.end; ++i) {
        if (!pass->isThere[i]) {
            const int result = WriteBlock(pass, i);
            if (result < 0)
                return result;
            isWritten = true;
        }
        // Counted before the user is asked, so that a stop right here is gone on with behind it.
        job->written = i + 1;
        if (!pass->isThere[i] && LDR_Advance(pass, job->plan[i].length, "Programming") &&
            !IsEnd(*job))
            return LDR_ERR_CANCELLED;
    }
    if (!job->isVerify)
        return 0;
    // All of it was there: it has been read and compared in front of the writing.
    if (!isWritten) {
        job->verified = group.end;
        return 0;
    }
    const int result = LDR_CompareGroup(pass, group);
    // The target took the block, and its flash holds something else: no writing on it helps.
    if (result == LDR_ERR_DIFFERENT)
        job->flash = LDR_FLASH_UNUSABLE;
    if (result < 0)
        return result;
    job->verified = group.end;
    return LDR_Advance(pass, group.wanted.length, "Programming") && !IsEnd(*job) ? LDR_ERR_CANCELLED
                                                                                 : 0;
}

int Program(LDR_Pass *pass)
{
    LDR_Job *job = pass->job;
    job->steps[LDR_STEP_PROGRAM] = LDR_RUNNING;
    // It goes along with the writing, a group behind it.
    job->steps[LDR_STEP_VERIFY] = job->isVerify ? LDR_RUNNING : LDR_LEFT_OUT;
    // Also when going on: blocks that are there are passed by without a byte on the wire.
    job->written = job->verified = 0;
    LDR_BeginClock(pass);
    for (size_t i = 0; i < job->plan.size();) {
        const LDR_Group group = LDR_GetGroup(*job, i);
        const int result = ProgramGroup(pass, group);
        if (result < 0)
            return result;
        i = group.end;
    }
    job->flash = LDR_FLASH_WHOLE;
    job->steps[LDR_STEP_PROGRAM] = LDR_DONE;
    if (job->isVerify)
        job->steps[LDR_STEP_VERIFY] = LDR_DONE;
    return 0;
}

int RunSteps(LDR_Pass *pass, bool isResume)
{
    LDR_Job *job = pass->job;
    const size_t all = job->plan.size();
    const bool isErasing = job->isErase && !isResume;
    // Blocks to be read before the first write: when going on, all that an interrupted run has
    // reached and the block in doubt behind them.
    size_t lookEnd = isErasing ? 0 : all;
    if (isResume)
        lookEnd = std::min(all, std::max(job->verified, job->written) + 1);
    if (!isResume) {
        job->written = job->verified = 0;
        job->isStrayPossible = false;
        // The next target of a series: what is known is known of the one before.
        if (job->flash == LDR_FLASH_WHOLE)
            job->flash = LDR_FLASH_UNTOUCHED;
    }
    // Both directions count: a block written and read back is two times its bytes.
    const uint32_t passes = job->isVerify ? 2 : 1;
    job->bytesDone = 0;
    job->bytesTotal = LDR_CountBytes(*job, 0, lookEnd) + passes * LDR_CountBytes(*job, 0, all);

    job->steps[LDR_STEP_FILE] = LDR_RUNNING;
    if (HEX_IsUnchanged(job->file) == 0)
        return LDR_ERR_CHANGED;
    job->steps[LDR_STEP_FILE] = LDR_DONE;
    int result = LDR_FindTarget(pass);
    LDR_BeginClock(pass);
    if (result == 0)
        result = isErasing ? Erase(pass) : ReadWhatFlashHolds(pass, lookEnd);
    if (result < 0)
        return result;
    // What is there already need not be written.
    for (size_t i = 0; i < all; ++i)
        if (pass->isThere[i])
            job->bytesTotal -= passes * job->plan[i].length;
    result = Program(pass);
    // The job is done with what was checked; whether that still is "the file" is asked last.
    if (result == 0 && HEX_IsUnchanged(job->file) == 0)
        result = LDR_ERR_CHANGED;
    return result;
}

} // namespace

int LDR_Prepare(LDR_Job *job, const std::string &path)
{
    const LDR_Job before = *job;
    *job = LDR_Job();
    job->isErase = before.isErase;
    job->isVerify = before.isVerify;
    // Another file does not undo what was done to the flash.
    const bool isUsed = before.flash != LDR_FLASH_UNTOUCHED && before.flash != LDR_FLASH_ERASED;
    job->flash = isUsed ? LDR_FLASH_UNUSABLE : before.flash;
    const int result = HEX_Read(path, &job->file);
    // A file with a fault gets no plan, and without a plan nothing runs.
    if (result == 0)
        LDR_MakePlan(job);
    job->result = result == 0 ? LDR_OK : result == HEX_ERR_OPEN ? LDR_ERR_OPEN : LDR_ERR_PROBLEMS;
    job->steps[LDR_STEP_FILE] = result == 0 ? LDR_DONE : LDR_FAILED;
    return job->result;
}

bool LDR_CanResume(const LDR_Job &job)
{
    return job.result < 0 && (job.flash == LDR_FLASH_ERASED || job.flash == LDR_FLASH_PARTLY);
}

int LDR_RunOnPort(LDR_Job *job, bool isResume, const LDR_Progress &progress)
{
    if (job->plan.empty()) // the file was not fit to be programmed
        return job->result;
    // Asked for in a window that was drawn a while ago: where it cannot be, it begins anew.
    if (isResume && !LDR_CanResume(*job))
        isResume = false;
    for (LDR_StepState &step : job->steps)
        step = LDR_WAITING;
    job->bytesPerSecond = job->secondsLeft = 0;
    job->cause.clear();
    job->isReadBack = job->isVerify;
    LDR_Pass pass;
    pass.job = job;
    pass.progress = &progress;
    pass.isThere.resize(job->plan.size());
    job->result = RunSteps(&pass, isResume);
    LDR_EndSteps(job);
    LDR_LogLine(pass, LDR_GetResultText(*job));
    return job->result;
}

int LDR_Run(LDR_Job *job, bool isResume, int port, int baud, const LDR_Progress &progress)
{
    return LDR_WithPort(job, port, baud, [&] { return LDR_RunOnPort(job, isResume, progress); });
}
