// The fields of the window and what is typed into them. What a recording needs stands in
// window_run.cpp, the files in window_files.cpp, the right half in window_curves.cpp.
#include "scope/window.h"

#include "runtime/userint.h"
#include "scope/window_parts.h"
#include "settings/settings.h"
#include "text/numbers.h"
#include "ui/resource.h"
#include "watch/windows/name_completion.h"

SCP_WindowState SCP_windowState;

namespace {

constexpr double LOOK_PERIOD_S = 0.05; // at the control word while the scope waits

SCP_Setup &setup = SCP_windowState.setup;
size_t &chosen = SCP_windowState.chosen;

std::string TextOf(int control)
{
    std::string text;
    GetCtrlVal(PANEL_SCOPE, control, &text);
    return text;
}

int IntOf(int control)
{
    int value = 0;
    GetCtrlVal(PANEL_SCOPE, control, &value);
    return value;
}

void ShowChannels()
{
    SetListColumns(PANEL_SCOPE, SCOPE_CHANNELS,
                   {{"", 40}, {"", 28}, {"Variable", 112}, {"Type", 36}, {"Unit", 0}});
    ClearListCtrl(PANEL_SCOPE, SCOPE_CHANNELS);
    for (size_t i = 0; i < SX_CHANNELS_MAX; ++i) {
        const SCP_ChannelSetup &channel = setup.channels[i];
        // Channels beyond the target's stay in the setup: the next scope may have more.
        const bool isThere = !SX_isInitDone || static_cast<int>(i) < SX_nCh;
        const unsigned style = isThere && channel.isOn ? UIS_NORMAL : UIS_DIM;
        const std::string number = "X" + std::to_string(i + 1);
        InsertListItem(PANEL_SCOPE, SCOPE_CHANNELS, -1, number + " " + channel.place,
                       static_cast<int>(i));
        SetListCells(PANEL_SCOPE, SCOPE_CHANNELS, static_cast<int>(i),
                     {{number, style, ""},
                      {channel.isOn ? "on" : "", UIS_GOOD, ""},
                      {channel.place, style, ""},
                      {channel.place.empty() ? "" : SX_TypeName(channel.type), style, ""},
                      {channel.unit, style, ""}});
    }
    // The list was filled anew and has lost which line was chosen.
    SetCtrlIndex(PANEL_SCOPE, SCOPE_CHANNELS, static_cast<int>(chosen));
}

// Numbers in full: what is shown is what Enter would store.
void ShowChannelFields()
{
    const SCP_ChannelSetup &channel = setup.channels[chosen];
    SetCtrlVal(PANEL_SCOPE, SCOPE_ON, channel.isOn ? 1 : 0);
    SetCtrlVal(PANEL_SCOPE, SCOPE_PLACE, channel.place);
    SetCtrlVal(PANEL_SCOPE, SCOPE_TYPE, channel.type);
    SetCtrlVal(PANEL_SCOPE, SCOPE_UNIT, channel.unit);
    SetCtrlVal(PANEL_SCOPE, SCOPE_FACTOR, SCP_NumberText(channel.factor));
    SetCtrlVal(PANEL_SCOPE, SCOPE_OFFSET, SCP_NumberText(channel.offset));
}

// Of the next run, and how long its record is. Before the init the target's frequency and
// length are unknown.
void ShowRate()
{
    if (!SX_isInitDone) {
        SetCtrlVal(PANEL_SCOPE, SCOPE_RATE, "");
        return;
    }
    const double rate = SX_ffFscp / setup.subPd;
    SetCtrlVal(PANEL_SCOPE, SCOPE_RATE,
               SCP_CurveNumberText(rate) + " Hz, " + SCP_CurveNumberText(SX_nVz / rate) + " s");
}

} // namespace

void SCP_ShowStatus(const std::string &text)
{
    SetCtrlVal(PANEL_SCOPE, SCOPE_MESSAGE, text);
}

void SCP_ShowWindowState(const std::string &text)
{
    SetCtrlVal(PANEL_SCOPE, SCOPE_STATE, text);
}

void SCP_ShowButtons()
{
    // What asks the target waits for the init; files and fields do not.
    for (const int control : {SCOPE_RUN, SCOPE_SNAP, SCOPE_UPLOAD})
        SetCtrlAttribute(PANEL_SCOPE, control, ATTR_DIMMED, SX_isInitDone ? 0 : 1);
    SetCtrlAttribute(PANEL_SCOPE, SCOPE_RUN, ATTR_LABEL_TEXT,
                     SCP_windowState.isRunning ? "__Stop" : "__Run");
    SetCtrlAttribute(PANEL_SCOPE, SCOPE_SAVE_DATA, ATTR_DIMMED,
                     SCP_windowState.capture.traces.empty() ? 1 : 0);
}

void SCP_ShowSetup()
{
    SetCtrlVal(PANEL_SCOPE, SCOPE_ID, setup.id.empty() ? SX_DefaultPrefix(Procesor) : setup.id);
    ShowChannels();
    ShowChannelFields();
    SetCtrlVal(PANEL_SCOPE, SCOPE_EDGE, setup.mode);
    SetCtrlVal(PANEL_SCOPE, SCOPE_LEVEL, SCP_NumberText(setup.level));
    SetCtrlVal(PANEL_SCOPE, SCOPE_POSITION, setup.position);
    SetCtrlVal(PANEL_SCOPE, SCOPE_SUB, setup.subPd);
    ShowRate();
    SCP_ShowButtons();
}

const SCP_Setup &DTSC_GetSetup()
{
    return setup;
}

const SCP_Capture &DTSC_GetCapture()
{
    return SCP_windowState.capture;
}

void DTSC_Opened()
{
    SetCtrlCompletion(PANEL_SCOPE, SCOPE_PLACE, WIN_CompleteNameCB);
    SetCtrlAttribute(PANEL_SCOPE, SCOPE_TIMER, ATTR_INTERVAL, LOOK_PERIOD_S);
    // Before anything is shown: the station may have changed while the window was closed.
    SCP_IsFound();
    SCP_ShowSetup();
    SCP_ShowCurves();
    if (!SX_isInitDone)
        SCP_ShowWindowState(SCP_NOT_FOUND_TEXT);
}

void DTSC_OnQuit()
{
    if (SCP_windowState.isRunning)
        SCP_Stop();
}

int DTSC_PanelCB(int panel, int event, int)
{
    // A window that nobody sees follows no recording; setup and curves stay for the next time.
    if (event == EVENT_CLOSE) {
        DTSC_OnQuit();
        HidePanel(panel);
    }
    return 0;
}

int DTSC_ChannelsCB(int panel, int control, int event, int)
{
    int index = -1;
    GetCtrlIndex(panel, control, &index);
    if (index < 0 || index >= SX_CHANNELS_MAX)
        return 0;
    chosen = static_cast<size_t>(index);
    // Enter and a double click switch the channel; one without a variable stays off.
    if (event == EVENT_COMMIT || event == EVENT_LEFT_DOUBLE_CLICK) {
        SCP_ChannelSetup &channel = setup.channels[chosen];
        channel.isOn = !channel.isOn && !channel.place.empty();
        ShowChannels();
    }
    ShowChannelFields();
    return 0;
}

int DTSC_ChannelCB(int, int control, int event, int)
{
    if (event != EVENT_COMMIT && event != EVENT_VAL_CHANGED)
        return 0;
    SCP_ChannelSetup &channel = setup.channels[chosen];
    const bool isNew = channel.place.empty();
    const std::string text = control == SCOPE_ON || control == SCOPE_TYPE ? "" : TextOf(control);
    // Comma and semicolon part and end the fields of the settings file.
    if (text.find_first_of(",;") != std::string::npos) {
        SCP_ShowStatus("Neither comma nor semicolon can stand here.");
        return 0;
    }
    double number = 0;
    switch (control) {
    case SCOPE_ON:
        channel.isOn = IntOf(control) != 0;
        break;
    case SCOPE_PLACE:
        // Whoever names a variable wants it sampled; one that was switched off stays off.
        channel.place = text;
        channel.isOn = !text.empty() && (channel.isOn || isNew);
        SetCtrlVal(PANEL_SCOPE, SCOPE_ON, channel.isOn ? 1 : 0);
        break;
    case SCOPE_TYPE:
        channel.type = IntOf(control);
        break;
    case SCOPE_UNIT:
        channel.unit = text;
        break;
    default:
        if (!TXT_ParseNumber(text, &number) || (control == SCOPE_FACTOR && number == 0)) {
            SCP_ShowStatus("Factor and offset are numbers, the factor not 0.");
            return 0;
        }
        (control == SCOPE_FACTOR ? channel.factor : channel.offset) = number;
        break;
    }
    // The comparison of the trigger follows the type of its channel.
    if (chosen == 0 && SX_isInitDone)
        setup.slope = SCP_SlopeOf(channel.type);
    ShowChannels();
    return 0;
}

int DTSC_OnTriggerMode(int, int control, int event, int)
{
    // The position has arrows: its mark moves with each step, but only Enter tells the target.
    double level = 0;
    if (event != EVENT_COMMIT && !(event == EVENT_VAL_CHANGED && control == SCOPE_POSITION))
        return 0;
    if (control == SCOPE_LEVEL && !TXT_ParseNumber(TextOf(SCOPE_LEVEL), &level)) {
        SCP_ShowStatus("The level is a number.");
        return 0;
    }
    if (control == SCOPE_LEVEL)
        setup.level = level;
    setup.mode = IntOf(SCOPE_EDGE);
    GetCtrlVal(PANEL_SCOPE, SCOPE_POSITION, &setup.position);
    SCP_ShowMarks();
    if (event == EVENT_COMMIT)
        SCP_TellTarget(SCP_SetTrigger);
    return 0;
}

int DTSC_OnSubPd(int, int, int event, int)
{
    setup.subPd = IntOf(SCOPE_SUB);
    ShowRate(); // with every step of the arrows
    if (event == EVENT_COMMIT)
        SCP_TellTarget(SCP_SetSubPeriod);
    return 0;
}

// The marks may have been dragged; they reach the target with the next run or Enter.
int DTSC_GraphCB(int, int, int event, int)
{
    if (event != EVENT_VAL_CHANGED)
        return 0;
    SCP_ReadMarks();
    SetCtrlVal(PANEL_SCOPE, SCOPE_LEVEL, SCP_NumberText(setup.level));
    SetCtrlVal(PANEL_SCOPE, SCOPE_POSITION, setup.position);
    SCP_ShowMeasures(); // they are those of what is in view
    return 0;
}

int DTSC_ShownCB(int, int control, int event, int)
{
    if (event != EVENT_COMMIT && event != EVENT_VAL_CHANGED)
        return 0;
    SCP_ChooseSpectrum(IntOf(control));
    SCP_ShowCurves();
    return 0;
}
