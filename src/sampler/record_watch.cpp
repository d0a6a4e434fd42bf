// The job is driven by the main panel's timer, a part of the second's row in each tick, so that
// recording goes on beside whatever the user does.
#include "sampler/record_watch.h"

#include "platform/system.h"
#include "runtime/userint.h"
#include "sampler/record_job.h"
#include "settings/settings.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/litem.h"
#include "watch/main_window.h"

namespace {

constexpr int PERIOD_MS = 1000;
constexpr uint64_t TICK_US = 15000;    // of reading in one tick: one exchange at least
constexpr uint64_t BUSY_US = 3000000;  // without a tick: the gap gets a line
constexpr size_t TEXT_MAX = 200;       // characters of a marker
const char RECORDING[] = "Recording "; // how every message about its state begins

REC_Job job;
std::vector<SMP_Trigger> triggers;
std::string triggerText;
uint64_t tickedUs = 0; // 0: communication was off

std::vector<SMP_Item> ItemsOfList()
{
    std::vector<SMP_Item> items;
    for (int i = 0; i < nLItems; ++i)
        items.push_back(SMP_FromWatch(aLItems[i]));
    return items;
}

void ShowState()
{
    const int menuBar = GetPanelMenuBar(mainPanel);
    SetMenuBarAttribute(menuBar, ITEM_RECORD, ATTR_CHECKED, job.isRunning);
    SetMenuBarAttribute(menuBar, ITEM_RECORD_MARK, ATTR_DIMMED, !job.isRunning);
}

// What goes on is shown where nothing else stands.
void ShowProgress()
{
    std::string shown;
    GetCtrlVal(mainPanel, MAIN_MESSAGE, &shown);
    if (!shown.empty() && shown.compare(0, sizeof RECORDING - 1, RECORDING) != 0)
        return;
    const std::string where =
        job.recorder.file.isOpen ? TXT_Visible(job.recorder.file.path) : "waits for its trigger";
    VR_ShowMessage(RECORDING + where + ": " + std::to_string(job.recorder.rows) + " rows.");
}

// A job that has ended by itself has said so.
void NoticeEnd()
{
    if (!job.isRunning)
        ShowState();
}

void Begin(const std::string &path)
{
    REC_Options options;
    options.path = path;
    options.mayReplace = true; // the dialog has asked
    const REC_JobListener listener = {[](const std::string &text) { VR_ShowMessage(text); },
                                      [] { Beep(); }};
    std::string problem;
    if (REC_StartJob(&job, ItemsOfList(), PERIOD_MS, options, triggers, listener, &problem) != 0) {
        MessagePopup("Error", problem);
        return;
    }
    ShowState();
    ShowProgress();
    // It may be begun first: rows come with communication.
    if (isTimer == 0)
        VR_ShowMessage("Recording begins when communication is on.");
}

} // namespace

bool REC_IsWatchRecorded()
{
    return job.isRunning;
}

void REC_RecordWatch()
{
    if (!job.isRunning)
        return;
    // The list may have been edited, or another map loaded: its lines are compared every second.
    REC_FollowJob(&job, ItemsOfList());
    if (job.isRunning)
        ShowProgress();
    NoticeEnd();
}

void REC_StepWatch()
{
    if (!job.isRunning)
        return;
    const uint64_t begin = PLT_TickUs();
    if (tickedUs != 0 && begin - tickedUs > BUSY_US)
        REC_NoteInJob(&job, "gap", "the program was busy");
    tickedUs = begin;
    while (REC_StepJob(&job) == 0 && PLT_TickUs() - begin < TICK_US) {
    }
    NoticeEnd();
}

void REC_ShowCommunication()
{
    // Only from on to off and back is a gap; the state may be told twice.
    ShowState();
    static bool wasOn = false;
    const bool isOn = isTimer != 0;
    tickedUs = 0;
    if (job.isRunning && wasOn && !isOn)
        REC_InterruptJob(&job, "communication was switched off");
    if (job.isRunning && !wasOn && isOn)
        REC_NoteInJob(&job, "gap", "communication is on");
    wasOn = isOn;
}

void REC_StopWatch()
{
    if (!job.isRunning)
        return;
    const std::string path = job.recorder.file.path; // the last one, of several
    const bool isKept = REC_StopJob(&job) == 0;
    ShowState();
    if (isKept)
        VR_ShowMessage("Recorded " + TXT_Visible(path) + ": " + std::to_string(job.recorder.rows) +
                       " rows.");
    else
        MessagePopup("Error", job.problem);
}

void REC_MarkWatch(const std::string &text)
{
    if (job.isRunning)
        REC_NoteInJob(&job, "marker", text);
}

void REC_ToggleCB(int /*menuBar*/, int /*item*/)
{
    if (job.isRunning) {
        REC_StopWatch();
        return;
    }
    std::string path;
    if (FileSelectPopup(PLT_CurrentDir(), "recording.csv", "*.csv", "Record watch list", FILE_SAVE,
                        &path) > CON_NO_FILE_SELECTED)
        Begin(path);
}

void REC_MarkCB(int /*menuBar*/, int /*item*/)
{
    std::string text;
    if (PromptPopup("Marker", "Text of the marker in the recording", &text, TEXT_MAX) >= 0)
        REC_MarkWatch(text);
}

void REC_TriggersCB(int /*menuBar*/, int /*item*/)
{
    SMP_AskForTrigger("of the next recording", &triggerText, &triggers);
}
