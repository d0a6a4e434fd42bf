// The watch list's values into a CSV file as they come, for hours and without a window. What
// there is to say goes to standard error, a summary at the end.
#include <algorithm>
#include <cstdio>

#include "app/console_program/sessions.h"
#include "comm/communication.h"
#include "comm/ucm.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "sampler/record_job.h"
#include "settings/settings.h"
#include "watch/list/litem.h"

namespace {

constexpr uint32_t PORT_PERIOD_MS = 500;  // between two looks at an unplugged port
constexpr int64_t WAIT_MAX_US = 50000;    // so that an interrupt is heard
constexpr int64_t SHORTEST_WAIT_US = 500; // less is no use to sleep for

void PrintForPerson(const std::string &text)
{
    std::fprintf(stderr, "%s\n", text.c_str());
}

// Before anything is opened. False after a message.
bool ParseTriggers(std::vector<SMP_Trigger> *triggers)
{
    for (const std::string &line : CPG_options.triggers) {
        SMP_Trigger trigger;
        std::string problem;
        if (SMP_ParseTrigger(line, &trigger, &problem) != 0) {
            PrintForPerson("Trigger '" + line + "': " + problem + ".");
            return false;
        }
        const bool isKnown = std::any_of(aLItems, aLItems + nLItems, [&](const LItem &item) {
            return SMP_FromWatch(item).name == trigger.item;
        });
        if (!isKnown) {
            PrintForPerson("Trigger '" + line + "': no item '" + trigger.item +
                           "' in the watch list.");
            return false;
        }
        triggers->push_back(trigger);
    }
    return true;
}

// An unplugged port is a gap; the recording goes on when it is back.
void FollowPort(REC_Job *job)
{
    // Static, because a run of the program makes one recording.
    static bool wasGone = false;
    static uint32_t lookedMs = 0;
    const bool isGone = UCM_IsOpened() == 0 || UCM_IsGone();
    if (!isGone && !wasGone)
        return;
    if (isGone && !wasGone)
        REC_InterruptJob(job, "the port is gone");
    wasGone = isGone;
    if (!isGone)
        REC_NoteInJob(job, "gap", "the port is back");
    else if (PLT_TickMs() - lookedMs >= PORT_PERIOD_MS) {
        lookedMs = PLT_TickMs();
        VR_FollowPort();
        CPG_RepeatMessage();
    }
}

// Until the time is over, somebody interrupts or the job ends by itself.
void Follow(REC_Job *job)
{
    const uint64_t startUs = PLT_TickUs();
    const double limitUs = CPG_options.recordSeconds * 1e6;
    while (!HL_IsEndWished()) {
        const double elapsedUs = static_cast<double>(PLT_TickUs() - startUs);
        if (limitUs > 0 && elapsedUs >= limitUs)
            return;
        const int64_t waitUs = REC_StepJob(job);
        if (waitUs == SMP_IDLE)
            return;
        FollowPort(job);
        // Not beyond the end of the recording, and not so long that an interrupt waits.
        int64_t sleepUs = std::min(waitUs, WAIT_MAX_US);
        if (limitUs > 0)
            sleepUs = std::min(sleepUs, static_cast<int64_t>(limitUs - elapsedUs) + 1);
        if (sleepUs >= SHORTEST_WAIT_US)
            PLT_SleepMs(static_cast<unsigned>(std::max<int64_t>(sleepUs / 1000, 1)));
    }
}

int Begin(REC_Job *job, const std::vector<SMP_Trigger> &triggers)
{
    REC_Options file;
    file.path = CPG_options.recordFile;
    file.rotateBytes = CPG_options.rotateBytes;
    file.rotateMinutes = CPG_options.rotateMinutes;
    const REC_JobListener listener = {PrintForPerson, [] { std::fputs("\a", stderr); }};
    std::vector<SMP_Item> items;
    for (int i = 0; i < nLItems; ++i)
        items.push_back(SMP_FromWatch(aLItems[i]));
    std::string problem;
    int result =
        REC_StartJob(job, items, CPG_options.recordPeriodMs, file, triggers, listener, &problem);
    // A recording cannot be made again, so none is replaced without being asked for.
    if (result == REC_ERR_EXISTS) {
        file.mayReplace =
            ConfirmPopup("Record", "The file '" + file.path + "' exists. Replace it?") == 1;
        if (file.mayReplace)
            result = REC_StartJob(job, items, CPG_options.recordPeriodMs, file, triggers, listener,
                                  &problem);
    }
    if (result != 0)
        PrintForPerson(problem);
    return result;
}

} // namespace

int CPG_RunRecord()
{
    // A trigger that cannot work is told before the port is opened and a file begun.
    std::vector<SMP_Trigger> triggers;
    if (!CPG_LoadWatchList() || !ParseTriggers(&triggers))
        return 1;
    VIR2_StartPeriodicASC();
    if (isTimer == 0)
        return 1;
    REC_Job job;
    if (Begin(&job, triggers) != 0) {
        VIR2_StopPeriodicASC();
        return 1;
    }
    Follow(&job);
    // Stopped while the line is open: the last rounds are proven over it.
    const bool isEarly = HL_IsEndWished() && CPG_options.recordSeconds > 0;
    const bool isKept = REC_StopJob(&job) == 0;
    PrintForPerson(REC_JobSummary(job, bRate));
    if (isEarly)
        PrintForPerson("Interrupted.");
    VIR2_StopPeriodicASC();
    // A recording that ended before its time, or in which nothing was ever read, is no success.
    const SMP_Totals &totals = job.sampler.totals;
    const bool isAnyGood = totals.samples == 0 || totals.failed < totals.samples;
    return isKept && !isEarly && isAnyGood ? 0 : 1;
}
