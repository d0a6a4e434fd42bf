#include "graphs/window.h"

#include "comm/communication.h"
#include "graphs/window_curves.h"
#include "graphs/window_files.h"
#include "platform/plain_file.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "sampler/trigger_entry.h"
#include "settings/settings.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/edit.h"
#include "watch/list/litem.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr uint32_t MEASURE_PERIOD_MS = 500;
constexpr uint32_t NAMES_PERIOD_MS = 1000; // maps may have been loaded anew
constexpr int64_t SILENCE_US = 1500000;    // without a tick: timers were off
constexpr double STEP_MIN_S = 0.001, STEP_MAX_S = 0.05;

GRA_Setup setup;
GRS_Source source;
bool isNewerThanShown = false; // something is to be drawn or measured
uint32_t drawnMs = 0, measuredMs = 0, namesMs = 0;
int64_t tickUs = 0;

void ShowMessage(const std::string &text)
{
    SetCtrlVal(PANEL_GRAPH, STRIP_MESSAGE, text);
}

int IntOf(int control)
{
    int value = 0;
    GetCtrlVal(PANEL_GRAPH, control, &value);
    return value;
}

// --- what the window shows ----------------------------------------------------------------

void ShowState()
{
    std::string text;
    if (source.isFile)
        text = source.recording.path;
    else if (source.sampler.isRunning) {
        const SMP_Totals &totals = source.sampler.totals;
        const double seconds = static_cast<double>(totals.elapsedUs) / 1e6;
        char figures[120];
        std::snprintf(figures, sizeof figures, "%.0f s, %.1f rows a second, %.0f %% of the line",
                      seconds, seconds > 0 ? static_cast<double>(totals.rows) / seconds : 0,
                      100 * SMP_WireShare(source.sampler, bRate));
        text = figures;
        if (totals.failed > 0)
            text += ", " + std::to_string(totals.failed) + " failed";
        if (source.recorder.isOn)
            text += source.recorder.file.isOpen
                        ? ", records " + std::to_string(source.recorder.rows) + " rows"
                        : ", the recording waits for its trigger";
    } else {
        text = "stopped";
    }
    SetCtrlVal(PANEL_GRAPH, STRIP_STATE, text);
}

void ShowButtons()
{
    const auto dim = [](int control, bool isDim) {
        SetCtrlAttribute(PANEL_GRAPH, control, ATTR_DIMMED, isDim ? 1 : 0);
    };
    const bool isRunning = source.sampler.isRunning;
    SetCtrlAttribute(PANEL_GRAPH, STRIP_START, ATTR_LABEL_TEXT, isRunning ? "S__top" : "__Start");
    SetCtrlAttribute(PANEL_GRAPH, STRIP_PAUSE, ATTR_LABEL_TEXT,
                     GRV_IsFollowing() ? "__Pause" : "__Follow");
    SetCtrlAttribute(PANEL_GRAPH, STRIP_RECORD, ATTR_LABEL_TEXT,
                     source.recorder.isOn ? "End __recording" : "__Record...");
    dim(STRIP_START, setup.curves.empty());
    dim(STRIP_PAUSE, !isRunning);
    dim(STRIP_RECORD, !isRunning);
    dim(STRIP_MARKER, setup.curves.empty());
    dim(STRIP_REMOVE, setup.curves.empty() || source.isFile);
    dim(STRIP_SAVE_DATA, setup.curves.empty());
    dim(STRIP_SAVE_SETUP, setup.curves.empty());
}

void ShowAll()
{
    if (GRV_ShowCurves(&source, setup) < 0)
        ShowMessage(PLF_FailureText(source.recording.path));
    GRV_ShowTable(&source, setup);
    ShowState();
    ShowButtons();
    source.isFresh = false;
    drawnMs = measuredMs = PLT_TickMs();
}

// What has come since, not more often than an eye can follow.
void ShowFresh()
{
    const uint32_t now = PLT_TickMs();
    if (source.isFresh && now - drawnMs >= GRV_PictureMs()) {
        GRV_ShowCurves(&source, setup);
        source.isFresh = false;
        isNewerThanShown = true;
        drawnMs = now;
    }
    if (isNewerThanShown && now - measuredMs >= MEASURE_PERIOD_MS) {
        GRV_ShowTable(&source, setup);
        ShowState();
        ShowButtons();
        isNewerThanShown = false;
        measuredMs = now;
    }
    if (source.isBeepDue)
        Beep();
    source.isBeepDue = false;
    if (!source.message.empty())
        ShowMessage(source.message);
    source.message.clear();
}

// --- sampling ---------------------------------------------------------------------------------

void Start(bool isFromNothing)
{
    if (setup.curves.empty() || !VR_EnsureCom())
        return;
    for (GRA_Curve &curve : setup.curves)
        GRA_Resolve(&curve.item);
    if (isFromNothing)
        GRS_Stop(&source);
    if (source.isFile)
        GRV_FitAll(); // heights that were chosen for a recording are not these curves'
    const bool isNew = !source.sampler.isRunning;
    const int result = GRS_Start(&source, setup);
    if (result < 0) {
        ShowMessage(result == SMP_ERR_ITEMS ? "There is nothing to sample."
                                            : "This period cannot be had.");
        return;
    }
    if (isNew)
        GRV_SetView(-setup.windowS, 0, true);
    tickUs = 0;
    ShowMessage("");
    ShowAll();
}

void Stop()
{
    GRS_Stop(&source);
    ShowAll();
    ShowFresh(); // what the recorder says in the end
}

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
            ShowMessage("No map knows '" + WRD_Visible(item.name) + "' any more.");
    }
    if (isOther)
        GRS_Start(&source, setup);
}

void AddSelection()
{
    size_t left = 0;
    for (const EDT_Reference &line : WSL_GetSelection()) {
        const int index = EDT_Find(line);
        if (index < 0)
            continue;
        GRA_Curve curve;
        curve.item = SMP_FromWatch(aLItems[index]);
        const bool isThere =
            std::any_of(setup.curves.begin(), setup.curves.end(),
                        [&](const GRA_Curve &c) { return SMP_IsSame(c.item, curve.item); });
        curve.pane = static_cast<int>(setup.curves.size());
        if (isThere)
            continue;
        if (setup.curves.size() < GRA_CURVES_MAX)
            setup.curves.push_back(curve);
        else
            ++left;
    }
    if (left > 0)
        ShowMessage("A graph has 32 curves at most: " + std::to_string(left) + " left out.");
}

// A file may hold a value that is no entry yet.
void ShowRing(int control, int value, const char *unit)
{
    if (SetCtrlVal(PANEL_GRAPH, control, value) < 0) {
        InsertListItem(PANEL_GRAPH, control, -1, std::to_string(value) + unit, value);
        SetCtrlVal(PANEL_GRAPH, control, value);
    }
}

void ShowRings()
{
    ShowRing(STRIP_PERIOD, setup.periodMs, " ms");
    ShowRing(STRIP_WINDOW, static_cast<int>(setup.windowS), " s");
}

void EditCell()
{
    if (!GRV_EditCell(&setup))
        ShowMessage("Factor and offset are numbers, the factor not 0; a pane is 1 to 32.");
    ShowAll();
}

} // namespace

void GRW_OpenCB(int, int)
{
    DisplayPanel(PANEL_GRAPH);
    SetActivePanel(PANEL_GRAPH);
    SetActiveCtrl(PANEL_GRAPH, STRIP_GRAPH);
    const bool wasFile = source.isFile;
    const GRA_Setup before = setup;
    if (wasFile)
        setup.curves.clear();
    const size_t count = setup.curves.size();
    AddSelection();
    ShowRings();
    if (setup.curves.size() > count)
        Start(wasFile);
    else if (wasFile)
        setup = before; // nothing is selected: the recording stays
    ShowAll();
}

void GRW_OnQuit()
{
    GRS_Stop(&source);
    GPA_Clear(&source.past);
}

const GRA_Setup &GRW_GetSetup()
{
    return setup;
}

const GRS_Source &GRW_GetSource()
{
    return source;
}

int GRW_PanelCB(int panel, int event, int data)
{
    const bool isClosed = event == EVENT_CLOSE || (event == EVENT_KEYPRESS && data == KEY_ESC);
    if (!isClosed)
        return 0;
    if (source.recorder.isOn && ConfirmPopup("Graph", "End the recording?") != 1)
        return 0;
    Stop();
    GPA_Clear(&source.past);
    HidePanel(panel);
    return 0;
}

int GRW_StartCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    if (source.sampler.isRunning)
        Stop();
    else
        Start(true);
    return 0;
}

int GRW_PauseCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT || !source.sampler.isRunning)
        return 0;
    double from = 0, to = 0;
    GRV_GetTimes(&from, &to);
    GRV_SetView(from, to, !GRV_IsFollowing());
    ShowAll();
    return 0;
}

int GRW_RecordCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    if (source.recorder.isOn) {
        const bool hasFile = source.recorder.rows > 0 || source.recorder.file.isOpen;
        const std::string path = source.recorder.file.path;
        if (ARC_End(&source.recorder) < 0)
            ShowMessage(source.recorder.file.problem);
        else
            ShowMessage(hasFile ? "Recorded into " + path : "Nothing was recorded.");
    } else if (source.sampler.isRunning) {
        const std::string begun = GRF_BeginRecording(setup, &source);
        if (!begun.empty())
            ShowMessage(begun);
    }
    ShowState();
    ShowButtons();
    return 0;
}

// The text stands in a field and is not asked for: sampling goes on.
int GRW_MarkerCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT || setup.curves.empty())
        return 0;
    UI_GraphView view;
    GetGraphView(PANEL_GRAPH, STRIP_GRAPH, &view);
    double time = source.sampler.isRunning ? GRS_Now(source) : view.x.max;
    if (view.cursors[0].isShown)
        time = view.cursors[0].x;
    std::string text;
    GetCtrlVal(PANEL_GRAPH, STRIP_TEXT, &text);
    if (text.empty())
        text = "marker " + std::to_string(source.markers.size() + 1);
    if (GRS_Mark(&source, time, WRD_Visible(text)) < 0)
        ShowMessage(source.recorder.file.problem);
    ShowAll();
    return 0;
}

// From now on, and kept with the settings.
int GRW_WhenCB(int, int, int event, int)
{
    std::vector<TRG_Trigger> parsed;
    if (event != EVENT_COMMIT || !TRG_Ask("while the curves are sampled", &setup.triggers, &parsed))
        return 0;
    GRS_UseTriggers(&source, setup);
    for (const TRG_Trigger &trigger : parsed) {
        const bool isKnown =
            std::any_of(setup.curves.begin(), setup.curves.end(),
                        [&](const GRA_Curve &curve) { return curve.item.name == trigger.item; });
        if (!isKnown)
            ShowMessage("No curve is called '" + WRD_Visible(trigger.item) + "'.");
    }
    return 0;
}

int GRW_RemoveCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT || source.isFile)
        return 0;
    std::vector<size_t> chosen = GRV_GetChosen(setup.curves.size());
    for (auto index = chosen.rbegin(); index != chosen.rend(); ++index)
        setup.curves.erase(setup.curves.begin() + static_cast<std::ptrdiff_t>(*index));
    if (setup.curves.empty())
        GRS_Stop(&source);
    else if (source.sampler.isRunning)
        GRS_Start(&source, setup);
    ShowAll();
    return 0;
}

int GRW_RingCB(int, int control, int event, int)
{
    if (event != EVENT_COMMIT && event != EVENT_VAL_CHANGED)
        return 0;
    if (control == STRIP_PERIOD && IntOf(control) != setup.periodMs) {
        setup.periodMs = IntOf(control);
        if (source.sampler.isRunning)
            Start(true);
    }
    if (control == STRIP_WINDOW) {
        setup.windowS = IntOf(control);
        double from = 0, to = 0;
        GRV_GetTimes(&from, &to);
        GRV_SetView(to - setup.windowS, to, source.sampler.isRunning);
        ShowAll();
    }
    return 0;
}

int GRW_GraphCB(int panel, int control, int event, int data)
{
    if (event == EVENT_KEYPRESS && data == ' ')
        return GRW_PauseCB(panel, control, EVENT_COMMIT, 0);
    if (event == EVENT_KEYPRESS && (data == 'm' || data == 'M'))
        return GRW_MarkerCB(panel, control, EVENT_COMMIT, 0);
    if (event != EVENT_VAL_CHANGED)
        return 0;
    if (!source.sampler.isRunning || PLT_TickMs() - measuredMs >= MEASURE_PERIOD_MS) {
        ShowAll();
        return 0;
    }
    GRV_ShowCurves(&source, setup);
    isNewerThanShown = true;
    return 0;
}

int GRW_CurvesCB(int panel, int control, int event, int data)
{
    if (event == EVENT_CELL_EDITED)
        EditCell();
    if (event == EVENT_KEYPRESS && data == KEY_DELETE)
        GRW_RemoveCB(panel, control, EVENT_COMMIT, 0);
    return 0;
}

int GRW_FileCB(int, int control, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    std::string message;
    switch (control) {
    case STRIP_OPEN_DATA:
        if (GRF_OpenData(&setup, &source, &message))
            ShowAll();
        if (!message.empty())
            ShowMessage(message);
        break;
    case STRIP_SAVE_DATA:
        GRF_SaveData(setup, source);
        break;
    case STRIP_OPEN_SETUP:
        if (GRF_OpenSetup(&setup, &source)) {
            ShowRings();
            ShowAll();
        }
        break;
    default:
        GRF_SaveSetup(&setup);
        break;
    }
    return 0;
}

// One exchange a tick: whatever else wants the line has its turn between two.
int GRW_TimerCB(int panel, int control, int event, int)
{
    if (event != EVENT_TIMER_TICK || !source.sampler.isRunning)
        return 0;
    const auto now = static_cast<int64_t>(PLT_TickUs());
    if (tickUs != 0 && now - tickUs > SILENCE_US)
        SMP_DropHeld(&source.sampler, "communication was off");
    FollowNames();
    const int64_t waitUs = GRS_Step(&source);
    tickUs = static_cast<int64_t>(PLT_TickUs());
    SetCtrlAttribute(panel, control, ATTR_INTERVAL,
                     std::clamp(static_cast<double>(waitUs) / 1e6, STEP_MIN_S, STEP_MAX_S));
    ShowFresh();
    return 0;
}
