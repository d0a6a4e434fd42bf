#include "scope/window.h"

#include "comm/communication.h"
#include "platform/plain_file.h"
#include "platform/safe_file.h"
#include "platform/settings_place.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "scope/measure.h"
#include "scope/session.h"
#include "scope/window_curves.h"
#include "settings/settings.h"
#include "text/numbers.h"
#include "ui/resource.h"
#include "watch/windows/name_completion.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr double LOOK_PERIOD_S = 0.05;   // at the control word while the scope waits
constexpr uint32_t FORCE_AFTER_MS = 500; // Auto: then the trigger is forced
constexpr uint32_t BOX_AFTER_MS = 500;   // a short upload shows no progress box
constexpr size_t ID_MAX_CHARS = 80;
constexpr const char *SETTINGS_FILE = "DtaScope.ini";

enum RunMode { MODE_SINGLE, MODE_NORMAL_SWEEP, MODE_AUTO };

SCP_Setup setup;
SCP_Capture capture, reference;
bool isRunning = false;
bool isSettingsRead = false; // or there were none: they may be written
size_t chosen = 0;           // channel
int foundStation = -1;       // where the scope was found
uint32_t armedSinceMs = 0;
int progressBox = 0;
uint32_t uploadSinceMs = 0;
std::string settingsPath = SETTINGS_FILE;

void ShowStatus(const std::string &text)
{
    SetCtrlVal(PANEL_SCOPE, SCOPE_MESSAGE, text);
}

void ShowState(const std::string &text)
{
    SetCtrlVal(PANEL_SCOPE, SCOPE_STATE, text);
}

bool AskId(const std::string &defaultId, std::string *id)
{
    std::string typed = *id;
    const int button = GenericMessagePopup("Scope ID setup", "Warning: check Sope ID",
                                           {defaultId, *id, "OK"}, &typed, ID_MAX_CHARS);
    if (button == 1)
        *id = defaultId;
    else if (button == 3)
        *id = typed;
    return button != 0 && !id->empty();
}

// A box appears only for what takes a while; its Cancel ends the upload between two blocks.
bool ShowProgress(uint32_t done, uint32_t total)
{
    if (progressBox == 0 && PLT_TickMs() - uploadSinceMs >= BOX_AFTER_MS)
        progressBox = CreateProgressDialog("Data scope", SCP_UPLOADING);
    const int percent = static_cast<int>(uint64_t{done} * 100 / std::max(total, 1u));
    const bool isCancelled =
        progressBox != 0 && UpdateProgressDialog(progressBox, percent, SCP_UPLOADING) != 0;
    return isCancelled || IsBreakWished();
}

const SCP_View VIEW = {ShowStatus, AskId, ShowProgress};

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

// --- what the window shows ---------------------------------------------------------------

void ShowButtons()
{
    for (const int control : {SCOPE_RUN, SCOPE_SNAP, SCOPE_UPLOAD})
        SetCtrlAttribute(PANEL_SCOPE, control, ATTR_DIMMED, SX_isInitDone ? 0 : 1);
    SetCtrlAttribute(PANEL_SCOPE, SCOPE_RUN, ATTR_LABEL_TEXT, isRunning ? "__Stop" : "__Run");
    SetCtrlAttribute(PANEL_SCOPE, SCOPE_SAVE_DATA, ATTR_DIMMED, capture.traces.empty() ? 1 : 0);
}

void ShowChannels()
{
    SetListColumns(PANEL_SCOPE, SCOPE_CHANNELS,
                   {{"", 40}, {"", 28}, {"Variable", 112}, {"Type", 36}, {"Unit", 0}});
    ClearListCtrl(PANEL_SCOPE, SCOPE_CHANNELS);
    for (size_t i = 0; i < SX_CHANNELS_MAX; ++i) {
        const SCP_ChannelSetup &channel = setup.channels[i];
        const bool isThere = !SX_isInitDone || static_cast<int>(i) < SX_nCh;
        InsertListItem(PANEL_SCOPE, SCOPE_CHANNELS, -1,
                       "X" + std::to_string(i + 1) + " " + channel.place, static_cast<int>(i));
        const unsigned style = isThere && channel.isOn ? UIS_NORMAL : UIS_DIM;
        SetListCells(PANEL_SCOPE, SCOPE_CHANNELS, static_cast<int>(i),
                     {{"X" + std::to_string(i + 1), style, ""},
                      {channel.isOn ? "on" : "", UIS_GOOD, ""},
                      {channel.place, style, ""},
                      {channel.place.empty() ? "" : SX_TypeName(channel.type), style, ""},
                      {channel.unit, style, ""}});
    }
    SetCtrlIndex(PANEL_SCOPE, SCOPE_CHANNELS, static_cast<int>(chosen));
}

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

void ShowRate()
{
    if (!SX_isInitDone) {
        SetCtrlVal(PANEL_SCOPE, SCOPE_RATE, "");
        return;
    }
    const double rate = SX_ffFscp / setup.subPd;
    SetCtrlVal(PANEL_SCOPE, SCOPE_RATE,
               SCW_NumberText(rate) + " Hz, " + SCW_NumberText(SX_nVz / rate) + " s");
}

void ShowTrigger()
{
    SetCtrlVal(PANEL_SCOPE, SCOPE_EDGE, setup.mode);
    SetCtrlVal(PANEL_SCOPE, SCOPE_LEVEL, SCP_NumberText(setup.level));
    SetCtrlVal(PANEL_SCOPE, SCOPE_POSITION, setup.position);
    SetCtrlVal(PANEL_SCOPE, SCOPE_SUB, setup.subPd);
    ShowRate();
}

void ShowSetup()
{
    SetCtrlVal(PANEL_SCOPE, SCOPE_ID, setup.id.empty() ? SX_DefaultPrefix(Procesor) : setup.id);
    ShowChannels();
    ShowChannelFields();
    ShowTrigger();
    ShowButtons();
}

// --- steps ---------------------------------------------------------------------------------

void Stop()
{
    isRunning = false;
    ShowButtons();
}

// Another station has another scope, or none.
bool IsFound()
{
    if (SX_isInitDone && foundStation != STATION) {
        SX_isInitDone = 0;
        Stop();
        ShowState("not found yet");
    }
    return SX_isInitDone != 0;
}

bool Upload()
{
    uploadSinceMs = PLT_TickMs();
    SetBusyText("uploading the scope's recording");
    const int result = SCP_Upload(VIEW);
    if (progressBox != 0)
        DiscardProgressDialog(progressBox);
    progressBox = 0;
    if (result < 0)
        return false;
    const SCP_Capture fresh = SCP_MakeCapture(SCP_GetRunSetup());
    if (fresh.traces.empty()) {
        ShowStatus(SCP_NO_CHANNEL);
        return false;
    }
    capture = fresh;
    SCW_ShowCurves(setup, capture, reference);
    ShowButtons();
    return true;
}

bool Arm()
{
    if (SCP_SetAll(setup, VIEW) < 0 || SCP_Run(VIEW) < 0) {
        Stop();
        return false;
    }
    armedSinceMs = PLT_TickMs();
    return true;
}

void Follow(SCP_State state)
{
    static const char *const WORDS[] = {"no answer", "complete", "armed, waits for the trigger",
                                        "triggered, sampling"};
    ShowState(WORDS[state - SCP_UNKNOWN]);
    if (state == SCP_UNKNOWN) {
        ShowStatus("Error (run).");
        Stop();
        return;
    }
    const int mode = IntOf(SCOPE_MODE);
    if (state == SCP_ARMED && mode == MODE_AUTO && PLT_TickMs() - armedSinceMs >= FORCE_AFTER_MS &&
        !SX_isSnapped)
        SCP_Snap(VIEW);
    if (state != SCP_COMPLETE)
        return;
    const bool isUploaded = Upload();
    if (!isUploaded || mode == MODE_SINGLE)
        Stop();
    else
        Arm();
}

// --- files -----------------------------------------------------------------------------------

void OpenSetup()
{
    std::string path;
    std::vector<std::string> problems;
    if (FileSelectPopup("", "*.ini", "*.ini", "Open scope settings", FILE_LOAD, &path) ==
        VAL_NO_FILE_SELECTED)
        return;
    if (SCP_LoadSetup(path, &setup, &problems) != 0) {
        MessagePopup("Error", PLF_FailureText(path));
        return;
    }
    SX_isInitDone = 0; // it may name another scope
    Stop();
    ShowSetup();
    std::string text;
    for (const std::string &problem : problems)
        text += problem + "\n";
    if (!text.empty())
        MessagePopup("Scope settings", text);
}

void SaveSetup()
{
    std::string path;
    if (FileSelectPopup("", "scope.ini", "*.ini", "Save scope settings", FILE_SAVE, &path) ==
        VAL_NO_FILE_SELECTED)
        return;
    if (SCP_SaveSetup(path, setup) != 0)
        MessagePopup("Error", SAF_FailureText(path));
}

void OpenData(SCP_Capture *into)
{
    std::string path, problem;
    if (FileSelectPopup("", "*.csv", "*.csv", SCP_OPEN_TEXT, FILE_LOAD, &path) ==
        VAL_NO_FILE_SELECTED)
        return;
    if (SCP_LoadCapture(path, into, &problem) != 0) {
        MessagePopup("Error", problem);
        return;
    }
    SCW_ShowCurves(setup, capture, reference);
    ShowButtons();
}

void SaveData()
{
    std::string path;
    if (FileSelectPopup("", "scope.csv", "*.csv", "Save recording", FILE_SAVE, &path) ==
        VAL_NO_FILE_SELECTED)
        return;
    if (SCP_SaveCapture(path, capture) != 0)
        MessagePopup("Error", SAF_FailureText(path));
}

} // namespace

int DTSC_LoadSettings()
{
    const SPL_Place place = SPL_FindPlace(SETTINGS_FILE);
    settingsPath = place.write;
    setup = SCP_Setup();
    const bool isThere = PLF_Exists(place.read);
    std::vector<std::string> problems;
    const int result = isThere ? SCP_LoadSetup(place.read, &setup, &problems) : 0;
    isSettingsRead = result == 0;
    if (result != 0)
        ShowStatus("DtaScope.ini cannot be read: it will not be written.");
    else if (!problems.empty())
        ShowStatus("DtaScope.ini, " + problems[0]);
    return result;
}

int DTSC_SaveSettings()
{
    const bool isUsed = !setup.lines.empty() || !setup.id.empty() ||
                        std::any_of(setup.channels.begin(), setup.channels.end(),
                                    [](const SCP_ChannelSetup &c) { return !c.place.empty(); });
    if (!isSettingsRead || !isUsed)
        return 0;
    return SCP_SaveSetup(settingsPath, setup);
}

const SCP_Setup &DTSC_GetSetup()
{
    return setup;
}

const SCP_Capture &DTSC_GetCapture()
{
    return capture;
}

void DTSC_Opened()
{
    SetCtrlCompletion(PANEL_SCOPE, SCOPE_PLACE, NCM_CompleteCB);
    SetCtrlAttribute(PANEL_SCOPE, SCOPE_TIMER, ATTR_INTERVAL, LOOK_PERIOD_S);
    IsFound();
    ShowSetup();
    SCW_ShowCurves(setup, capture, reference);
    if (!SX_isInitDone)
        ShowState("not found yet");
}

void DTSC_OnQuit()
{
    if (isRunning)
        Stop();
}

int DTSC_PanelCB(int panel, int event, int)
{
    if (event == EVENT_CLOSE) {
        DTSC_OnQuit();
        HidePanel(panel);
    }
    return 0;
}

int DTSC_OnInit(int, int, int event, int)
{
    if (event != EVENT_COMMIT || !VR_EnsureCom())
        return 0;
    Stop();
    setup.id = TextOf(SCOPE_ID);
    SetBusyText("looking for the scope");
    const bool isGood = SCP_Init(&setup, VIEW) == 0;
    foundStation = STATION;
    ShowState(SX_isInitDone ? "ready" : "not found");
    if (isGood && setup.channels[0].isOn && setup.slope == SCP_Setup().slope)
        setup.slope = SCP_SlopeOf(setup.channels[0].type);
    ShowSetup();
    return 0;
}

int DTSC_OnRun(int, int, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    if (isRunning) {
        Stop();
        ShowState("stopped");
        return 0;
    }
    if (!VR_EnsureCom() || !IsFound())
        return 0;
    isRunning = Arm();
    ShowButtons();
    return 0;
}

int DTSC_OnSnap(int, int, int event, int)
{
    if (event == EVENT_COMMIT && VR_EnsureCom() && IsFound())
        SCP_Snap(VIEW);
    return 0;
}

int DTSC_OnUpload(int, int, int event, int)
{
    if (event == EVENT_COMMIT && VR_EnsureCom() && IsFound())
        Upload();
    return 0;
}

int DTSC_ChannelsCB(int panel, int control, int event, int)
{
    int index = -1;
    GetCtrlIndex(panel, control, &index);
    if (index < 0 || index >= SX_CHANNELS_MAX)
        return 0;
    chosen = static_cast<size_t>(index);
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
        ShowStatus("Neither comma nor semicolon can stand here.");
        return 0;
    }
    double number = 0;
    switch (control) {
    case SCOPE_ON:
        channel.isOn = IntOf(control) != 0;
        break;
    case SCOPE_PLACE:
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
        if (!NUM_Parse(text, &number) || (control == SCOPE_FACTOR && number == 0)) {
            ShowStatus("Factor and offset are numbers, the factor not 0.");
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
    double level = 0;
    if (event != EVENT_COMMIT && !(event == EVENT_VAL_CHANGED && control == SCOPE_POSITION))
        return 0;
    if (control == SCOPE_LEVEL && !NUM_Parse(TextOf(SCOPE_LEVEL), &level)) {
        ShowStatus("The level is a number.");
        return 0;
    }
    if (control == SCOPE_LEVEL)
        setup.level = level;
    setup.mode = IntOf(SCOPE_EDGE);
    GetCtrlVal(PANEL_SCOPE, SCOPE_POSITION, &setup.position);
    SCW_ShowMarks(setup, capture);
    if (event == EVENT_COMMIT && isTimer != 0 && IsFound())
        SCP_SetTrigger(setup, VIEW);
    return 0;
}

int DTSC_OnSubPd(int, int, int event, int)
{
    setup.subPd = IntOf(SCOPE_SUB);
    ShowRate();
    if (event == EVENT_COMMIT && isTimer != 0 && IsFound())
        SCP_SetSubPeriod(setup, VIEW);
    return 0;
}

// The marks may have been dragged; they reach the target with the next run or Enter.
int DTSC_GraphCB(int, int, int event, int)
{
    if (event != EVENT_VAL_CHANGED)
        return 0;
    SCW_ReadMarks(capture, &setup);
    SetCtrlVal(PANEL_SCOPE, SCOPE_LEVEL, SCP_NumberText(setup.level));
    SetCtrlVal(PANEL_SCOPE, SCOPE_POSITION, setup.position);
    SCW_ShowMeasures(capture);
    return 0;
}

int DTSC_FileCB(int, int control, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    switch (control) {
    case SCOPE_OPEN_SETUP:
        OpenSetup();
        break;
    case SCOPE_SAVE_SETUP:
        SaveSetup();
        break;
    case SCOPE_OPEN_DATA:
        OpenData(&capture);
        break;
    case SCOPE_SAVE_DATA:
        SaveData();
        break;
    default:
        OpenData(&reference);
        break;
    }
    return 0;
}

int DTSC_ShownCB(int, int control, int event, int)
{
    if (event != EVENT_COMMIT && event != EVENT_VAL_CHANGED)
        return 0;
    SCW_ChooseSpectrum(IntOf(control));
    SCW_ShowCurves(setup, capture, reference);
    return 0;
}

int DTSC_TimerCB(int, int, int event, int)
{
    if (event == EVENT_TIMER_TICK && isRunning && IsFound())
        Follow(SCP_GetState());
    return 0;
}
