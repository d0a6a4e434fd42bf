// The window around the curves: state, buttons, rings, and what the user does to the settings.
// Sampling stands in window_run.cpp, the curves in window_curves.cpp, files in window_files.cpp.
#include "graphs/window.h"

#include "graphs/window_parts.h"
#include "platform/plain_file.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/edit.h"
#include "watch/list/litem.h"

#include <algorithm>

GRA_Setup GRA_setup;
GRA_Source GRA_source;

namespace {

constexpr uint32_t MEASURE_PERIOD_MS = 500; // numbers that change faster cannot be read
constexpr double US_PER_S = 1e6;

GRA_Setup &setup = GRA_setup;
GRA_Source &source = GRA_source;
bool isNewerThanShown = false;        // a picture was drawn and not measured yet
uint32_t drawnMs = 0, measuredMs = 0; // when it was done last

int IntOf(int control)
{
    int value = 0;
    GetCtrlVal(PANEL_GRAPH, control, &value);
    return value;
}

// Each selected line that is no curve yet, in a pane of its own when panes are stacked.
void AddSelection()
{
    size_t left = 0;
    for (const EDT_Reference &line : SEL_GetWatchSelection()) {
        const int index = EDT_Find(line);
        if (index < 0) // deleted meanwhile
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
        GRA_ShowMessage("A graph has 32 curves at most: " + std::to_string(left) + " left out.");
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

} // namespace

void GRA_ShowMessage(const std::string &text)
{
    SetCtrlVal(PANEL_GRAPH, STRIP_MESSAGE, text);
}

void GRA_ShowState()
{
    std::string text = "stopped";
    if (source.isFile) {
        text = source.recording.path;
    } else if (source.sampler.isRunning) {
        const SMP_Totals &totals = source.sampler.totals;
        const double seconds = static_cast<double>(totals.elapsedUs) / US_PER_S;
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
    }
    SetCtrlVal(PANEL_GRAPH, STRIP_STATE, text);
}

void GRA_ShowButtons()
{
    const auto dim = [](int control, bool isDim) {
        SetCtrlAttribute(PANEL_GRAPH, control, ATTR_DIMMED, isDim ? 1 : 0);
    };
    const bool isRunning = source.sampler.isRunning;
    SetCtrlAttribute(PANEL_GRAPH, STRIP_START, ATTR_LABEL_TEXT, isRunning ? "S__top" : "__Start");
    SetCtrlAttribute(PANEL_GRAPH, STRIP_PAUSE, ATTR_LABEL_TEXT,
                     GRA_IsFollowing() ? "__Pause" : "__Follow");
    SetCtrlAttribute(PANEL_GRAPH, STRIP_RECORD, ATTR_LABEL_TEXT,
                     source.recorder.isOn ? "End __recording" : "__Record...");
    dim(STRIP_START, setup.curves.empty());
    dim(STRIP_PAUSE, !isRunning);
    dim(STRIP_RECORD, !isRunning);
    dim(STRIP_MARKER, setup.curves.empty());
    // The curves of a recording are its columns, by place: none can go.
    dim(STRIP_REMOVE, setup.curves.empty() || source.isFile);
    dim(STRIP_SAVE_DATA, setup.curves.empty());
    dim(STRIP_SAVE_SETUP, setup.curves.empty());
}

void GRA_ShowAll()
{
    if (GRA_ShowCurves(&source, setup) < 0)
        GRA_ShowMessage(PLT_ReadFailureText(source.recording.path));
    GRA_ShowTable(&source, setup);
    GRA_ShowState();
    GRA_ShowButtons();
    source.isFresh = false;
    drawnMs = measuredMs = PLT_TickMs();
}

void GRA_ShowFresh()
{
    // The picture by what can be seen of it; table and state no faster than somebody reads.
    const uint32_t now = PLT_TickMs();
    if (source.isFresh && now - drawnMs >= GRA_GetPictureMs()) {
        GRA_ShowCurves(&source, setup);
        source.isFresh = false;
        isNewerThanShown = true;
        drawnMs = now;
    }
    if (isNewerThanShown && now - measuredMs >= MEASURE_PERIOD_MS) {
        GRA_ShowTable(&source, setup);
        GRA_ShowState();
        GRA_ShowButtons();
        isNewerThanShown = false;
        measuredMs = now;
    }
    // What sampler and recorder had to say during their step.
    if (source.isBeepDue)
        Beep();
    source.isBeepDue = false;
    if (!source.message.empty())
        GRA_ShowMessage(source.message);
    source.message.clear();
}

void GRA_OpenCB(int, int)
{
    DisplayPanel(PANEL_GRAPH);
    SetActivePanel(PANEL_GRAPH);
    SetActiveCtrl(PANEL_GRAPH, STRIP_GRAPH);
    // The curves of a recording give way to those of the selection, and come back when nothing
    // is selected or sampling did not begin: names and numbers must belong to each other.
    const bool wasFile = source.isFile;
    const GRA_Setup before = setup;
    if (wasFile)
        setup.curves.clear();
    const size_t count = setup.curves.size();
    AddSelection();
    ShowRings();
    if (setup.curves.size() > count)
        GRA_Start(wasFile);
    if (source.isFile)
        setup = before;
    GRA_ShowAll();
}

void GRA_OnQuit()
{
    // Without the past its files would stay until the next program removes them.
    GRA_StopSource(&source);
    GRA_ClearPast(&source.past);
}

const GRA_Setup &GRA_GetSetup()
{
    return setup;
}

const GRA_Source &GRA_GetSource()
{
    return source;
}

int GRA_PanelCB(int panel, int event, int data)
{
    // A graph that nobody sees does not load the line: sampling ends with the window.
    const bool isClosed = event == EVENT_CLOSE || (event == EVENT_KEYPRESS && data == KEY_ESC);
    if (!isClosed)
        return 0;
    if (source.recorder.isOn && ConfirmPopup("Graph", "End the recording?") != 1)
        return 0;
    GRA_Stop();
    GRA_ClearPast(&source.past);
    HidePanel(panel);
    return 0;
}

int GRA_PauseCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT || !source.sampler.isRunning)
        return 0;
    // Sampling goes on: only the picture stands, and what comes is there when it follows again.
    double from = 0, to = 0;
    GRA_GetTimes(&from, &to);
    GRA_SetView(from, to, !GRA_IsFollowing());
    GRA_ShowAll();
    return 0;
}

// From now on, and kept with the settings.
int GRA_WhenCB(int, int, int event, int)
{
    std::vector<SMP_Trigger> parsed;
    if (event != EVENT_COMMIT ||
        !SMP_AskForTrigger("while the curves are sampled", &setup.triggers, &parsed))
        return 0;
    GRA_UseTriggers(&source, setup);
    // Allowed all the same: its curve may be added later.
    for (const SMP_Trigger &trigger : parsed) {
        const bool isKnown =
            std::any_of(setup.curves.begin(), setup.curves.end(),
                        [&](const GRA_Curve &curve) { return curve.item.name == trigger.item; });
        if (!isKnown)
            GRA_ShowMessage("No curve is called '" + TXT_Visible(trigger.item) + "'.");
    }
    return 0;
}

int GRA_RemoveCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT || source.isFile)
        return 0;
    // From the last one, so that the places of the others hold.
    std::vector<size_t> chosen = GRA_GetChosen(setup.curves.size());
    for (auto index = chosen.rbegin(); index != chosen.rend(); ++index)
        setup.curves.erase(setup.curves.begin() + static_cast<std::ptrdiff_t>(*index));
    if (setup.curves.empty())
        GRA_StopSource(&source);
    else if (source.sampler.isRunning)
        GRA_StartSource(&source, setup);
    GRA_ShowAll();
    return 0;
}

int GRA_RingCB(int, int control, int event, int)
{
    if (event != EVENT_COMMIT && event != EVENT_VAL_CHANGED)
        return 0;
    if (control == STRIP_PERIOD && IntOf(control) != setup.periodMs) {
        setup.periodMs = IntOf(control);
        if (source.sampler.isRunning) // another period begins another recording: all anew
            GRA_Start(true);
    }
    if (control == STRIP_WINDOW) {
        setup.windowS = IntOf(control); // the right edge stays where it is
        double from = 0, to = 0;
        GRA_GetTimes(&from, &to);
        GRA_SetView(to - setup.windowS, to, source.sampler.isRunning);
        GRA_ShowAll();
    }
    return 0;
}

int GRA_GraphCB(int panel, int control, int event, int data)
{
    if (event == EVENT_KEYPRESS && data == ' ')
        return GRA_PauseCB(panel, control, EVENT_COMMIT, 0);
    if (event == EVENT_KEYPRESS && (data == 'm' || data == 'M'))
        return GRA_MarkerCB(panel, control, EVENT_COMMIT, 0);
    if (event != EVENT_VAL_CHANGED)
        return 0;
    // Zoom and pan come in many events: while it runs, measuring waits for the timer.
    if (!source.sampler.isRunning || PLT_TickMs() - measuredMs >= MEASURE_PERIOD_MS) {
        GRA_ShowAll();
        return 0;
    }
    GRA_ShowCurves(&source, setup);
    isNewerThanShown = true;
    return 0;
}

int GRA_CurvesCB(int panel, int control, int event, int data)
{
    if (event == EVENT_CELL_EDITED) {
        if (!GRA_EditCell(&setup))
            GRA_ShowMessage("Factor and offset are numbers, the factor not 0; a pane is 1 to 32.");
        GRA_ShowAll(); // a refused cell shows again what holds
    }
    if (event == EVENT_KEYPRESS && data == KEY_DELETE)
        GRA_RemoveCB(panel, control, EVENT_COMMIT, 0);
    return 0;
}

int GRA_FileCB(int, int control, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    std::string message;
    switch (control) {
    case STRIP_OPEN_DATA:
        if (GRA_OpenData(&setup, &source, &message))
            GRA_ShowAll();
        if (!message.empty())
            GRA_ShowMessage(message);
        break;
    case STRIP_SAVE_DATA:
        GRA_SaveData(setup, source);
        break;
    case STRIP_OPEN_SETUP:
        if (GRA_OpenSetup(&setup, &source)) {
            ShowRings();
            GRA_ShowAll();
        }
        break;
    default: // STRIP_SAVE_SETUP
        GRA_AskAndSaveSetup(&setup);
        break;
    }
    return 0;
}
