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

RCJ_Job job;
std::vector<TRG_Trigger> triggers;
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
        job.recorder.file.isOpen ? WRD_Visible(job.recorder.file.path) : "waits for its trigger";
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
    const RCJ_Listener listener = {[](const std::string &text) { VR_ShowMessage(text); },
                                   [] { Beep(); }};
    std::string problem;
    if (RCJ_Start(&job, ItemsOfList(), PERIOD_MS, options, triggers, listener, &problem) != 0) {
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

bool RCW_IsRunning()
{
    return job.isRunning;
}

void RCW_Record()
{
    if (!job.isRunning)
        return;
    // The list may have been edited, or another map loaded: its lines are compared every second.
    RCJ_Follow(&job, ItemsOfList());
    if (job.isRunning)
        ShowProgress();
    NoticeEnd();
}

void RCW_Tick()
{
    if (!job.isRunning)
        return;
    const uint64_t begin = PLT_TickUs();
    if (tickedUs != 0 && begin - tickedUs > BUSY_US)
        RCJ_Note(&job, "gap", "the program was busy");
    tickedUs = begin;
    while (RCJ_Step(&job) == 0 && PLT_TickUs() - begin < TICK_US) {
    }
    NoticeEnd();
}

void RCW_ShowCommunication()
{
    // Only from on to off and back is a gap; the state may be told twice.
    ShowState();
    static bool wasOn = false;
    const bool isOn = isTimer != 0;
    tickedUs = 0;
    if (job.isRunning && wasOn && !isOn)
        RCJ_Interrupt(&job, "communication was switched off");
    if (job.isRunning && !wasOn && isOn)
        RCJ_Note(&job, "gap", "communication is on");
    wasOn = isOn;
}

void RCW_Stop()
{
    if (!job.isRunning)
        return;
    const std::string path = job.recorder.file.path; // the last one, of several
    const bool isKept = RCJ_Stop(&job) == 0;
    ShowState();
    if (isKept)
        VR_ShowMessage("Recorded " + WRD_Visible(path) + ": " + std::to_string(job.recorder.rows) +
                       " rows.");
    else
        MessagePopup("Error", job.problem);
}

void RCW_Mark(const std::string &text)
{
    if (job.isRunning)
        RCJ_Note(&job, "marker", text);
}

void RCW_ToggleCB(int /*menuBar*/, int /*item*/)
{
    if (job.isRunning) {
        RCW_Stop();
        return;
    }
    std::string path;
    if (FileSelectPopup(PLT_CurrentDir(), "recording.csv", "*.csv", "Record watch list", FILE_SAVE,
                        &path) > VAL_NO_FILE_SELECTED)
        Begin(path);
}

void RCW_MarkCB(int /*menuBar*/, int /*item*/)
{
    std::string text;
    if (PromptPopup("Marker", "Text of the marker in the recording", &text, TEXT_MAX) >= 0)
        RCW_Mark(text);
}

void RCW_TriggersCB(int /*menuBar*/, int /*item*/)
{
    TRG_Ask("of the next recording", &triggerText, &triggers);
}
