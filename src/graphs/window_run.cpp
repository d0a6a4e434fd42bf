// Sampling in the graph window: it begins and ends here, is stepped by the window's timer and
// written into a recording.
#include "graphs/window.h"

#include "comm/communication.h"
#include "graphs/window_parts.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "text/words.h"
#include "ui/resource.h"

#include <algorithm>

namespace {

constexpr uint32_t NAMES_PERIOD_MS = 1000; // maps may have been loaded anew
constexpr int64_t SILENCE_US = 1500000;    // without a tick: timers were off
constexpr double STEP_MIN_S = 0.001, STEP_MAX_S = 0.05;
constexpr double US_PER_S = 1e6;

GRA_Setup &setup = GRA_setup;
GRA_Source &source = GRA_source;
uint32_t namesMs = 0; // when the names were looked up last
int64_t tickUs = 0;   // the end of the last tick; 0: none since the start

// A name may have moved, or gone, with another map.
void FollowNames()
{
    if (PLT_TickMs() - namesMs < NAMES_PERIOD_MS)
        return;
    namesMs = PLT_TickMs();
    bool isOther = false;
    for (GRA_Curve &curve : setup.curves) {
        SMP_Item item = curve.item;
        GRA_Resolve(&item);
        if (item.address == curve.item.address)
            continue;
        curve.item.address = item.address;
        isOther = true;
        if (item.address == SMP_NO_ADDRESS)
            GRA_ShowMessage("No map knows '" + TXT_Visible(item.name) + "' any more.");
    }
    // The sampler runs on: a curve at another address begins anew, the others keep theirs.
    if (isOther)
        GRA_StartSource(&source, setup);
}

} // namespace

void GRA_Start(bool isFromNothing)
{
    if (setup.curves.empty() || !VR_EnsureCom())
        return;
    for (GRA_Curve &curve : setup.curves)
        GRA_Resolve(&curve.item);
    if (isFromNothing)
        GRA_StopSource(&source);
    if (source.isFile)
        GRA_FitAll(); // heights that were chosen for a recording are not these curves'
    const bool isNew = !source.sampler.isRunning;
    const int result = GRA_StartSource(&source, setup);
    if (result < 0) {
        GRA_ShowMessage(result == SMP_ERR_ITEMS ? "There is nothing to sample."
                                                : "This period cannot be had.");
        return;
    }
    // A view that the user has moved stays while sampling goes on with another curve.
    if (isNew)
        GRA_SetView(-setup.windowS, 0, true);
    tickUs = 0;
    GRA_ShowMessage("");
    GRA_ShowAll();
}

void GRA_Stop()
{
    GRA_StopSource(&source);
    GRA_ShowAll();
    GRA_ShowFresh(); // what the recorder says in the end
}

int GRA_StartCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    if (source.sampler.isRunning)
        GRA_Stop();
    else
        GRA_Start(true);
    return 0;
}

int GRA_RecordCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    if (source.recorder.isOn) {
        // Looked at before the end. One that waited for its trigger until then has no file.
        const bool hasFile = source.recorder.rows > 0 || source.recorder.file.isOpen;
        const std::string path = source.recorder.file.path;
        if (REC_EndArmed(&source.recorder) < 0)
            GRA_ShowMessage(source.recorder.file.problem);
        else
            GRA_ShowMessage(hasFile ? "Recorded into " + path : "Nothing was recorded.");
    } else if (source.sampler.isRunning) {
        const std::string begun = GRA_BeginRecording(setup, &source);
        if (!begun.empty())
            GRA_ShowMessage(begun);
    }
    GRA_ShowState();
    GRA_ShowButtons();
    return 0;
}

// The text stands in a field and is not asked for: sampling goes on.
int GRA_MarkerCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT || setup.curves.empty())
        return 0;
    UI_GraphView view;
    GetGraphView(PANEL_GRAPH, STRIP_GRAPH, &view);
    // Where the first cursor stands; else now, or where the picture ends when nothing runs.
    double time = source.sampler.isRunning ? GRA_GetNow(source) : view.x.max;
    if (view.cursors[0].isShown)
        time = view.cursors[0].x;
    std::string text;
    GetCtrlVal(PANEL_GRAPH, STRIP_TEXT, &text);
    if (text.empty())
        text = "marker " + std::to_string(source.markers.size() + 1);
    if (GRA_MarkSource(&source, time, TXT_Visible(text)) < 0)
        GRA_ShowMessage(source.recorder.file.problem);
    GRA_ShowAll();
    return 0;
}

// One exchange a tick: whatever else wants the line has its turn between two.
int GRA_TimerCB(int panel, int control, int event, int)
{
    if (event != EVENT_TIMER_TICK || !source.sampler.isRunning)
        return 0;
    const auto now = static_cast<int64_t>(PLT_TickUs());
    // Communication was off: rows still held for a proof cannot get one any more.
    if (tickUs != 0 && now - tickUs > SILENCE_US)
        SMP_DropHeld(&source.sampler, "communication was off");
    FollowNames();
    const int64_t waitUs = GRA_StepSource(&source);
    tickUs = static_cast<int64_t>(PLT_TickUs());
    // The next tick comes when the sampler wants it, within bounds: not at once, so that the
    // window is drawn, and not too late for what the user does.
    SetCtrlAttribute(panel, control, ATTR_INTERVAL,
                     std::clamp(static_cast<double>(waitUs) / US_PER_S, STEP_MIN_S, STEP_MAX_S));
    GRA_ShowFresh();
    return 0;
}
