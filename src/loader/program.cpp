// The order of things: nothing is erased before the file was checked and a loader has
// answered; each group of blocks is read back right after it was written, so that at any
// interruption all before it is known to be good.
#include "loader/program.h"

#include "comm/mr166_link.h"
#include "loader/borrow.h"
#include "loader/l3_protocol.h"
#include "loader/plan.h"
#include "platform/system.h"

#include <algorithm>
#include <cstring>

namespace {

// A target cut off in the middle of a command takes the next request for the rest of it.
constexpr int TEST_TRIES = 3;

struct Run {
    LDR_Job *job;
    const LDR_Progress *progress;
    std::vector<bool> isThere; // blocks of the plan found in the flash before writing
    uint32_t startMs = 0;
    uint32_t timedBytes = 0; // moved since startMs
    bool isCancelled = false;
};

void Log(const Run &run, const std::string &line)
{
    if (run.progress->log != nullptr)
        run.progress->log(run.progress->context, line.c_str());
}

void SetStep(Run *run, int step, LDR_StepState state)
{
    run->job->steps[step] = state;
}

int Fail(Run *run, int result, uint32_t address)
{
    run->job->cause = LD167U_GetFaultText();
    run->job->causeAddress = address;
    return result;
}

void BeginClock(Run *run)
{
    run->startMs = PLT_TickMs();
    run->timedBytes = 0;
}

// True when the user wishes to stop.
bool Advance(Run *run, uint32_t bytes, const char *text)
{
    LDR_Job *job = run->job;
    // A group that is read may hold blocks that need not have been: never more than all.
    job->bytesDone = std::min(job->bytesDone + bytes, job->bytesTotal);
    run->timedBytes += bytes;
    const uint32_t ms = PLT_TickMs() - run->startMs;
    if (ms > 0 && run->timedBytes > 0) {
        job->bytesPerSecond = static_cast<uint32_t>(uint64_t{run->timedBytes} * 1000u / ms);
        const uint32_t left = job->bytesTotal - job->bytesDone;
        job->secondsLeft =
            job->bytesPerSecond > 0 ? (left + job->bytesPerSecond - 1) / job->bytesPerSecond : 0;
    }
    if (LDR_Step(*run->progress, job->bytesDone, job->bytesTotal, text))
        run->isCancelled = true;
    return run->isCancelled;
}

// What came unasked, after a fault say, must not be taken for the next answer.
int ReadGroup(Run *run, const LDR_Group &group, IHEX167_Block *found)
{
    found->address = group.wanted.address;
    found->length = group.wanted.length;
    LD167U_pPort->dropInput();
    return LD167U_L3CmdReadBlock(found) < 0 ? Fail(run, LDR_ERR_READ, found->address) : 0;
}

// --- the steps ------------------------------------------------------------------------------

int CheckFile(Run *run)
{
    SetStep(run, LDR_STEP_FILE, LDR_RUNNING);
    if (HEX_IsUnchanged(run->job->file) == 0)
        return LDR_ERR_CHANGED;
    SetStep(run, LDR_STEP_FILE, LDR_DONE);
    return 0;
}

int FindTarget(Run *run)
{
    SetStep(run, LDR_STEP_TARGET, LDR_RUNNING);
    for (int i = 0; i < TEST_TRIES; ++i) {
        if (LD167U_L3Test() == 0) {
            SetStep(run, LDR_STEP_TARGET, LDR_DONE);
            Log(*run, "The target's loader answers.");
            return 0;
        }
        if (Advance(run, 0, "Looking for the target's loader"))
            return LDR_ERR_CANCELLED;
    }
    return Fail(run, LDR_ERR_TARGET, 0);
}

int Erase(Run *run)
{
    LDR_Job *job = run->job;
    SetStep(run, LDR_STEP_ERASE, LDR_RUNNING);
    job->flash = LDR_FLASH_ERASING;
    if (LD167U_L3CmdEraseFlash(*run->progress) < 0)
        return Fail(run, LDR_ERR_ERASE, 0);
    job->flash = LDR_FLASH_ERASED;
    SetStep(run, LDR_STEP_ERASE, LDR_DONE);
    Log(*run, "The flash is erased.");
    return Advance(run, 0, "Erased") ? LDR_ERR_CANCELLED : 0;
}

// Judges the blocks of a group that was read. What was verified before must still be there,
// else this is another flash; a write that was damaged on its way must have arrived here.
int JudgeGroup(Run *run, const LDR_Group &group, const IHEX167_Block &found)
{
    LDR_Job *job = run->job;
    size_t at = 0;
    for (size_t i = group.first; i < group.end; at += job->plan[i++].length) {
        const size_t count = job->plan[i].length;
        const bool isEqual = std::memcmp(group.wanted.data + at, found.data + at, count) == 0;
        const bool isNeeded = i < job->verified || (job->isStrayPossible && i == job->written);
        run->isThere[i] = isEqual;
        if (isEqual || (!isNeeded && LDR_CanBecome(group.wanted, found, at, count)))
            continue;
        LDR_FindDifference(group.wanted, found, &job->difference);
        job->flash = job->flash == LDR_FLASH_UNTOUCHED ? job->flash : LDR_FLASH_UNUSABLE;
        return LDR_ERR_NEEDS_ERASE;
    }
    return 0;
}

// Reads what the flash holds of the first `end` blocks.
int ReadWhatFlashHolds(Run *run, size_t end)
{
    LDR_Job *job = run->job;
    SetStep(run, LDR_STEP_ERASE, LDR_LEFT_OUT);
    Log(*run, "Reading what the flash holds.");
    for (size_t i = 0; i < end;) {
        const LDR_Group group = LDR_GetGroup(*job, i);
        IHEX167_Block found;
        int result = ReadGroup(run, group, &found);
        if (result == 0)
            result = JudgeGroup(run, group, found);
        if (result < 0)
            return result;
        i = group.end;
        if (Advance(run, group.wanted.length, "Reading what the flash holds"))
            return LDR_ERR_CANCELLED;
    }
    return 0;
}

int WriteBlock(Run *run, size_t index)
{
    LDR_Job *job = run->job;
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
    return Fail(run, LDR_ERR_WRITE, block.address);
}

int VerifyGroup(Run *run, const LDR_Group &group)
{
    IHEX167_Block found;
    const int result = ReadGroup(run, group, &found);
    if (result < 0)
        return result;
    return LDR_FindDifference(group.wanted, found, &run->job->difference) ? LDR_ERR_DIFFERENT : 0;
}

// Nothing is left that a wish to stop could save.
bool IsEnd(const LDR_Job &job)
{
    return (job.isVerify ? job.verified : job.written) == job.plan.size();
}

int ProgramGroup(Run *run, const LDR_Group &group)
{
    LDR_Job *job = run->job;
    bool isWritten = false;
    for (size_t i = group.first; i < group.end; ++i) {
        if (!run->isThere[i]) {
            const int result = WriteBlock(run, i);
            if (result < 0)
                return result;
            isWritten = true;
        }
        job->written = i + 1;
        if (!run->isThere[i] && Advance(run, job->plan[i].length, "Programming") && !IsEnd(*job))
            return LDR_ERR_CANCELLED;
    }
    if (!job->isVerify)
        return 0;
    if (!isWritten) {
        job->verified = group.end;
        return 0;
    }
    const int result = VerifyGroup(run, group);
    // The target took the block, and its flash holds something else: no writing on it helps.
    if (result == LDR_ERR_DIFFERENT)
        job->flash = LDR_FLASH_UNUSABLE;
    if (result < 0)
        return result;
    job->verified = group.end;
    return Advance(run, group.wanted.length, "Programming") && !IsEnd(*job) ? LDR_ERR_CANCELLED : 0;
}

int Program(Run *run)
{
    LDR_Job *job = run->job;
    SetStep(run, LDR_STEP_PROGRAM, LDR_RUNNING);
    SetStep(run, LDR_STEP_VERIFY, job->isVerify ? LDR_RUNNING : LDR_LEFT_OUT);
    job->written = job->verified = 0;
    BeginClock(run);
    for (size_t i = 0; i < job->plan.size();) {
        const LDR_Group group = LDR_GetGroup(*job, i);
        const int result = ProgramGroup(run, group);
        if (result < 0)
            return result;
        i = group.end;
    }
    job->flash = LDR_FLASH_WHOLE;
    SetStep(run, LDR_STEP_PROGRAM, LDR_DONE);
    if (job->isVerify)
        SetStep(run, LDR_STEP_VERIFY, LDR_DONE);
    return 0;
}

// Both directions count: a block written and read back is two times its bytes.
void CountTotal(Run *run, size_t lookEnd)
{
    LDR_Job *job = run->job;
    const uint32_t passes = job->isVerify ? 2 : 1;
    job->bytesDone = 0;
    job->bytesTotal =
        LDR_CountBytes(*job, 0, lookEnd) + passes * LDR_CountBytes(*job, 0, job->plan.size());
}

// What is there already need not be written.
void ShortenTotal(Run *run)
{
    LDR_Job *job = run->job;
    const uint32_t passes = job->isVerify ? 2 : 1;
    for (size_t i = 0; i < job->plan.size(); ++i)
        if (run->isThere[i])
            job->bytesTotal -= passes * job->plan[i].length;
}

// Everything of a group whose end was reached by an interrupted run, and the block in doubt.
size_t GetResumeEnd(const LDR_Job &job)
{
    return std::min(job.plan.size(), std::max(job.verified, job.written) + 1);
}

int RunSteps(Run *run, bool isResume)
{
    LDR_Job *job = run->job;
    const bool isErasing = job->isErase && !isResume;
    const size_t lookEnd = isErasing ? 0 : isResume ? GetResumeEnd(*job) : job->plan.size();
    if (!isResume) {
        job->written = job->verified = 0;
        job->isStrayPossible = false;
        // The next target of a series: what is known is known of the one before.
        if (job->flash == LDR_FLASH_WHOLE)
            job->flash = LDR_FLASH_UNTOUCHED;
    }
    CountTotal(run, lookEnd);
    int result = CheckFile(run);
    if (result == 0)
        result = FindTarget(run);
    BeginClock(run);
    if (result == 0)
        result = isErasing ? Erase(run) : ReadWhatFlashHolds(run, lookEnd);
    if (result < 0)
        return result;
    ShortenTotal(run);
    result = Program(run);
    // The job is done with what was checked; whether that still is "the file" is asked last.
    if (result == 0 && HEX_IsUnchanged(job->file) == 0)
        result = LDR_ERR_CHANGED;
    return result;
}

void EndSteps(LDR_Job *job)
{
    for (LDR_StepState &step : job->steps)
        if (step == LDR_RUNNING)
            step = LDR_FAILED;
}

// Reads all of the file's blocks and changes nothing.
int Compare(Run *run)
{
    LDR_Job *job = run->job;
    SetStep(run, LDR_STEP_VERIFY, LDR_RUNNING);
    BeginClock(run);
    for (size_t i = 0; i < job->plan.size();) {
        const LDR_Group group = LDR_GetGroup(*job, i);
        const int result = VerifyGroup(run, group);
        if (result < 0)
            return result;
        i = group.end;
        if (Advance(run, group.wanted.length, "Comparing") && i < job->plan.size())
            return LDR_ERR_CANCELLED;
    }
    if (HEX_IsUnchanged(job->file) == 0)
        return LDR_ERR_CHANGED;
    SetStep(run, LDR_STEP_VERIFY, LDR_DONE);
    return 0;
}

// What a comparison has found goes before what an earlier run has left behind.
void LearnFromCompare(LDR_Job *job)
{
    const size_t known = std::max(job->verified, job->written);
    if (job->result == 0 && job->flash == LDR_FLASH_PARTLY) {
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

// Runs `work` with the port in the loader's hands.
template <class Work> int WithPort(LDR_Job *job, int port, int baud, Work work)
{
    if (job->plan.empty())
        return job->result;
    LDR_Loan loan;
    const int opened = LDR_BorrowPort(port, baud, &loan);
    if (opened < 0) {
        job->cause = MrASC_ErrorText(opened);
        std::fill(job->steps + LDR_STEP_TARGET, job->steps + LDR_STEPS, LDR_WAITING);
        job->steps[LDR_STEP_TARGET] = LDR_FAILED;
        return job->result = LDR_ERR_PORT;
    }
    const int result = work();
    LDR_ReturnPort(loan);
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
    if (isResume && !LDR_CanResume(*job))
        isResume = false;
    for (LDR_StepState &step : job->steps)
        step = LDR_WAITING;
    job->bytesPerSecond = job->secondsLeft = 0;
    job->cause.clear();
    job->isReadBack = job->isVerify;
    Run run = {job, &progress, std::vector<bool>(job->plan.size()), 0, 0, false};
    job->result = RunSteps(&run, isResume);
    EndSteps(job);
    Log(run, LDR_GetResultText(*job));
    return job->result;
}

int LDR_Run(LDR_Job *job, bool isResume, int port, int baud, const LDR_Progress &progress)
{
    return WithPort(job, port, baud, [&] { return LDR_RunOnPort(job, isResume, progress); });
}

int LDR_VerifyOnPort(LDR_Job *job, const LDR_Progress &progress)
{
    if (job->plan.empty())
        return job->result;
    Run run = {job, &progress, {}, 0, 0, false};
    job->cause.clear();
    job->bytesPerSecond = job->secondsLeft = 0;
    job->bytesDone = 0;
    job->bytesTotal = LDR_CountBytes(*job, 0, job->plan.size());
    job->isReadBack = true;
    for (const int step : {LDR_STEP_TARGET, LDR_STEP_VERIFY})
        job->steps[step] = LDR_WAITING;
    for (const int step : {LDR_STEP_ERASE, LDR_STEP_PROGRAM})
        job->steps[step] = LDR_LEFT_OUT;
    job->result = FindTarget(&run);
    if (job->result == 0)
        job->result = Compare(&run);
    EndSteps(job);
    LearnFromCompare(job);
    Log(run, LDR_GetResultText(*job));
    return job->result;
}

int LDR_Verify(LDR_Job *job, int port, int baud, const LDR_Progress &progress)
{
    return WithPort(job, port, baud, [&] { return LDR_VerifyOnPort(job, progress); });
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
        LD167U_pPort->dropInput();
        if (LD167U_L3CmdReadBlock(&block) < 0)
            return LDR_ERR_READ;
        bytes->insert(bytes->end(), block.data, block.data + block.length);
        if (LDR_Step(progress, done + block.length, count, "Reading") && bytes->size() < count)
            return LDR_ERR_CANCELLED;
    }
    return 0;
}
