// The job stands between sampler and recorder as the listener of both; whatever ends one of them
// ends the job.
#include "sampler/record_job.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr int64_t FLUSH_US = 500000; // at most between two, however slowly rows come

int64_t NowUs(const REC_Job &job)
{
    return static_cast<int64_t>(job.sampler.line.nowUs());
}

void Tell(const REC_Job &job, const std::string &text)
{
    if (job.listener.message != nullptr)
        job.listener.message(text);
}

void TellOfRecorder(void *context, const std::string &text)
{
    Tell(*static_cast<REC_Job *>(context), text);
}

void BeepOfRecorder(void *context)
{
    const REC_Job *job = static_cast<REC_Job *>(context);
    if (job->listener.beep != nullptr)
        job->listener.beep();
}

// A recording that has ended, by a trigger or a full disk, ends the job: nobody waits for rows
// that are not kept.
void CheckRecorder(REC_Job *job)
{
    REC_Recorder *file = &job->recorder.file;
    const bool isFault = !file->isOpen && !file->problem.empty() && job->problem.empty();
    if (isFault) {
        job->problem = file->problem;
        if (job->recorder.isOn) // else the recorder has said so
            Tell(*job, job->problem);
    }
    if (job->recorder.isOn && !isFault)
        return;
    job->recorder.isOn = false;
    job->sampler.isRunning = false;
    job->isRunning = false;
}

void PutRow(void *context, const SMP_Sampler &sampler, const SMP_Row &row)
{
    REC_Job *job = static_cast<REC_Job *>(context);
    REC_PutArmedRow(&job->recorder, sampler.store, row);
    CheckRecorder(job);
}

void Flush(void *context)
{
    REC_Job *job = static_cast<REC_Job *>(context);
    job->flushedUs = NowUs(*job);
    REC_Flush(&job->recorder.file, job->flushedUs);
    CheckRecorder(job);
}

// What befalls the line explains the gaps in the file.
void NoteMessage(void *context, const std::string &text)
{
    REC_Job *job = static_cast<REC_Job *>(context);
    REC_PutNote(&job->recorder.file, NowUs(*job), "line", text);
    Tell(*job, text);
}

} // namespace

int REC_StartJob(REC_Job *job, const std::vector<SMP_Item> &items, int periodMs,
                 const REC_Options &options, const std::vector<SMP_Trigger> &triggers,
                 const REC_JobListener &listener, std::string *problem, const SMP_Line *line)
{
    *job = REC_Job();
    job->listener = listener;
    job->recorder.triggers = triggers;
    job->recorder.listener = {job, TellOfRecorder, BeepOfRecorder, nullptr};
    const SMP_Listener rows = {job, PutRow, Flush, NoteMessage};
    // The store is for graphs; here nobody looks back.
    const int started = SMP_Start(&job->sampler, items, periodMs, rows, 1, line);
    if (started != 0) {
        *problem = started == SMP_ERR_ITEMS ? "There is nothing to record."
                                            : "The period is out of range.";
        return -1;
    }
    REC_Options timed = options;
    timed.periodMs = periodMs;
    // Behind the sampler, whose clock counts the file's times; nothing was asked yet.
    const int result = REC_BeginArmed(&job->recorder, timed, items, NowUs(*job));
    if (result != 0) {
        *problem = job->recorder.file.problem;
        job->sampler.isRunning = false;
        return result;
    }
    job->isRunning = true;
    return 0;
}

int64_t REC_StepJob(REC_Job *job)
{
    if (!job->isRunning)
        return SMP_IDLE;
    const int64_t waitUs = SMP_Step(&job->sampler);
    // Rows of a slow period come seldom, but the clock of the file is to be looked at.
    if (NowUs(*job) - job->flushedUs >= FLUSH_US)
        Flush(job);
    return job->isRunning ? waitUs : SMP_IDLE;
}

void REC_FollowJob(REC_Job *job, const std::vector<SMP_Item> &items)
{
    const std::vector<SMP_Item> &had = job->sampler.store.items;
    if (!job->isRunning || (items.size() == had.size() &&
                            std::equal(items.begin(), items.end(), had.begin(), SMP_IsSame)))
        return;
    if (SMP_Change(&job->sampler, items) != 0) {
        REC_NoteInJob(job, "items", "there is nothing to record any more");
        Tell(*job, "The recording has ended: there is nothing to record any more.");
        REC_StopJob(job);
        return;
    }
    REC_Recorder *file = &job->recorder.file;
    REC_ChangeItems(file, items, NowUs(*job));
    if (file->isOpen)
        Tell(*job, "The items have changed: the recording goes on in " + file->path + ".");
    CheckRecorder(job);
}

void REC_NoteInJob(REC_Job *job, const std::string &kind, const std::string &text)
{
    REC_PutNote(&job->recorder.file, NowUs(*job), kind, text);
    job->recorder.markers += kind == "marker";
    CheckRecorder(job);
}

void REC_InterruptJob(REC_Job *job, const std::string &reason)
{
    if (!job->isRunning)
        return;
    // Rows first, failed for this reason, then the line that says when it was.
    SMP_DropHeld(&job->sampler, reason);
    REC_NoteInJob(job, "gap", reason);
    Flush(job);
}

int REC_StopJob(REC_Job *job)
{
    SMP_Stop(&job->sampler);
    job->isRunning = false;
    const int result = REC_EndArmed(&job->recorder);
    if (job->problem.empty())
        job->problem = job->recorder.file.problem;
    return job->problem.empty() ? result : REC_ERR_WRITE;
}

std::string REC_JobSummary(const REC_Job &job, int baud)
{
    const SMP_Totals &totals = job.sampler.totals;
    const double seconds = static_cast<double>(std::max<uint64_t>(totals.elapsedUs, 1)) / 1e6;
    char text[200];
    std::snprintf(
        text, sizeof text,
        "%llu rows, %llu samples, %.1f samples a second, %.1f %% of the line, %llu failed",
        static_cast<unsigned long long>(job.recorder.rows),
        static_cast<unsigned long long>(totals.samples),
        static_cast<double>(totals.samples) / seconds, 100 * SMP_WireShare(job.sampler, baud),
        static_cast<unsigned long long>(totals.failed));
    return text;
}
