#include "sampler/record_job.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr int64_t FLUSH_US = 500000; // at most between two, however slowly rows come

int64_t NowUs(const RCJ_Job &job)
{
    return static_cast<int64_t>(job.sampler.line.nowUs());
}

void Tell(const RCJ_Job &job, const std::string &text)
{
    if (job.listener.message != nullptr)
        job.listener.message(text);
}

bool IsWaitingForStart(const RCJ_Job &job)
{
    return std::any_of(job.triggers.begin(), job.triggers.end(),
                       [](const TRG_Trigger &trigger) { return trigger.action == TRG_START; });
}

// A recording that cannot go on ends the job: nobody waits for rows that are not kept.
void CheckRecorder(RCJ_Job *job)
{
    if (job->recorder.isOpen || job->recorder.problem.empty() || !job->problem.empty())
        return;
    job->problem = job->recorder.problem;
    job->sampler.isRunning = false;
    job->isRunning = false;
    Tell(*job, job->problem);
}

int Begin(RCJ_Job *job, int64_t nowUs)
{
    job->hasBegun = true;
    return REC_Open(&job->recorder, job->options, job->sampler.store.items, nowUs);
}

// A second recording of the job must not overwrite the first.
void BeginByTrigger(RCJ_Job *job, const TRG_Trigger &trigger, int64_t timeUs)
{
    if (job->recorder.isOpen)
        return;
    job->options.isStamped = job->options.isStamped || job->hasBegun;
    Begin(job, timeUs);
    CheckRecorder(job);
    if (job->recorder.isOpen)
        Tell(*job, "Recording " + job->recorder.path + " (" + trigger.text + ").");
    REC_PutNote(&job->recorder, timeUs, "trigger", trigger.text);
}

void EndByTrigger(RCJ_Job *job, const TRG_Trigger &trigger, int64_t timeUs)
{
    if (!job->recorder.isOpen)
        return;
    REC_PutNote(&job->recorder, timeUs, "trigger", trigger.text);
    Tell(*job, "Recorded " + job->recorder.path + " (" + trigger.text + ").");
    if (REC_Close(&job->recorder) != 0 || IsWaitingForStart(*job))
        return;
    job->isRunning = false;
    job->sampler.isRunning = false;
}

void Fire(RCJ_Job *job, const TRG_Trigger &trigger, int64_t timeUs)
{
    if (trigger.action == TRG_START)
        BeginByTrigger(job, trigger, timeUs);
    if (trigger.action == TRG_STOP)
        EndByTrigger(job, trigger, timeUs);
    if (trigger.action == TRG_BEEP && job->listener.beep != nullptr)
        job->listener.beep();
    if (trigger.action != TRG_MARK)
        return;
    ++job->markers;
    REC_PutNote(&job->recorder, timeUs, "marker", trigger.text);
}

// What starts a recording comes before its row, what stops it behind.
void PutRow(void *context, const SMP_Sampler &sampler, const SMP_Row &row)
{
    RCJ_Job *job = static_cast<RCJ_Job *>(context);
    std::vector<const TRG_Trigger *> behind;
    for (TRG_Trigger &trigger : job->triggers) {
        if (!TRG_Feed(&trigger, sampler.store.items, row.samples))
            continue;
        if (trigger.action == TRG_STOP)
            behind.push_back(&trigger);
        else
            Fire(job, trigger, row.timeUs);
    }
    job->rows += job->recorder.isOpen;
    REC_PutRow(&job->recorder, row.timeUs, row.samples, sampler.store);
    for (const TRG_Trigger *trigger : behind)
        Fire(job, *trigger, row.timeUs);
}

void Flush(void *context)
{
    RCJ_Job *job = static_cast<RCJ_Job *>(context);
    job->flushedUs = NowUs(*job);
    REC_Flush(&job->recorder, job->flushedUs);
    CheckRecorder(job);
}

void NoteMessage(void *context, const std::string &text)
{
    RCJ_Job *job = static_cast<RCJ_Job *>(context);
    REC_PutNote(&job->recorder, NowUs(*job), "line", text);
    Tell(*job, text);
}

} // namespace

int RCJ_Start(RCJ_Job *job, const std::vector<SMP_Item> &items, int periodMs,
              const REC_Options &options, const std::vector<TRG_Trigger> &triggers,
              const RCJ_Listener &listener, std::string *problem, const SMP_Line *line)
{
    *job = RCJ_Job();
    job->options = options;
    job->options.periodMs = periodMs;
    job->triggers = triggers;
    job->listener = listener;
    const SMP_Listener rows = {job, PutRow, Flush, NoteMessage};
    // The store is for graphs; here nobody looks back.
    const int started = SMP_Start(&job->sampler, items, periodMs, rows, 1, line);
    if (started != 0) {
        *problem = started == SMP_ERR_ITEMS ? "There is nothing to record."
                                            : "The period is out of range.";
        return -1;
    }
    if (!IsWaitingForStart(*job)) {
        const int result = Begin(job, NowUs(*job));
        if (result != 0) {
            *problem = job->recorder.problem;
            job->sampler.isRunning = false;
            return result;
        }
    }
    job->isRunning = true;
    return 0;
}

int64_t RCJ_Step(RCJ_Job *job)
{
    if (!job->isRunning)
        return SMP_IDLE;
    const int64_t waitUs = SMP_Step(&job->sampler);
    if (NowUs(*job) - job->flushedUs >= FLUSH_US)
        Flush(job);
    return job->isRunning ? waitUs : SMP_IDLE;
}

void RCJ_Follow(RCJ_Job *job, const std::vector<SMP_Item> &items)
{
    const std::vector<SMP_Item> &had = job->sampler.store.items;
    if (!job->isRunning || (items.size() == had.size() &&
                            std::equal(items.begin(), items.end(), had.begin(), SMP_IsSame)))
        return;
    if (SMP_Change(&job->sampler, items) != 0) {
        RCJ_Note(job, "items", "there is nothing to record any more");
        Tell(*job, "The recording has ended: there is nothing to record any more.");
        RCJ_Stop(job);
        return;
    }
    REC_ChangeItems(&job->recorder, items, NowUs(*job));
    if (job->recorder.isOpen)
        Tell(*job, "The items have changed: the recording goes on in " + job->recorder.path + ".");
    CheckRecorder(job);
}

void RCJ_Note(RCJ_Job *job, const std::string &kind, const std::string &text)
{
    REC_PutNote(&job->recorder, NowUs(*job), kind, text);
    job->markers += kind == "marker";
    CheckRecorder(job);
}

void RCJ_Interrupt(RCJ_Job *job, const std::string &reason)
{
    if (!job->isRunning)
        return;
    SMP_DropHeld(&job->sampler, reason);
    RCJ_Note(job, "gap", reason);
    Flush(job);
}

int RCJ_Stop(RCJ_Job *job)
{
    SMP_Stop(&job->sampler);
    job->isRunning = false;
    const int result = REC_Close(&job->recorder);
    if (job->problem.empty())
        job->problem = job->recorder.problem;
    return job->problem.empty() ? result : REC_ERR_WRITE;
}

std::string RCJ_Summary(const RCJ_Job &job, int baud)
{
    const SMP_Totals &totals = job.sampler.totals;
    const double seconds = std::max(static_cast<double>(totals.elapsedUs) / 1e6, 1e-6);
    char text[200];
    std::snprintf(
        text, sizeof text,
        "%llu rows, %llu samples, %.1f samples a second, %.1f %% of the line, %llu failed",
        static_cast<unsigned long long>(job.rows), static_cast<unsigned long long>(totals.samples),
        static_cast<double>(totals.samples) / seconds, 100 * SMP_WireShare(job.sampler, baud),
        static_cast<unsigned long long>(totals.failed));
    return text;
}
