// The window asks the target's module for all it shows; only the log is kept here, because the
// target gives each line once. Faults are sent whenever they may differ from what it has.
#include "simulator/window.h"

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <sstream>
#include <vector>

#include "runtime/userint.h"
#include "settings/settings.h"
#include "simulator/target.h"
#include "symbols/addr_name.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/main_window.h"
#include "watch/windows/outcome_colors.h"

namespace {

constexpr int PANEL = PANEL_SIMULATOR;
constexpr double PERIOD_S = 0.3;                                       // fast enough to read along
constexpr size_t LOG_LINES_MAX = 500;                                  // newest first
const char *const SCOPES[] = {"2,3,3c166", "none", "2", "3", "3c166"}; // by the ring's value

// A slider, the text beside it, and what the target calls it. Refusing is Modbus's way of
// failing, repeating that of equipment on an mr166 line.
struct Fault {
    int slider, text;
    const char *name;
    double factor; // of the slider's value
    const char *unit;
    bool isOfMr166, isOfModbus;
};
constexpr Fault FAULTS[] = {
    {SIMUL_DROP, SIMUL_DROP_TEXT, "drop", 0.01, "%", true, true},
    {SIMUL_CORRUPT, SIMUL_CORRUPT_TEXT, "corrupt", 0.01, "%", true, true},
    {SIMUL_REPEAT, SIMUL_REPEAT_TEXT, "repeat", 0.01, "%", true, false},
    {SIMUL_REFUSE, SIMUL_REFUSE_TEXT, "refuse", 0.01, "%", false, true},
    {SIMUL_DELAY, SIMUL_DELAY_TEXT, "delay", 1, "ms", true, true},
};
struct Switch {
    int control;
    const char *name, *on, *off;
};
// Silent after 0 requests is at once, after -1 never.
constexpr Switch SWITCHES[] = {{SIMUL_SILENT, "silent-after", "0", "-1"},
                               {SIMUL_ECHO, "echo", "1", "0"}};

std::deque<std::string> logged;    // oldest first
uint64_t requests = 0, failed = 0; // since the log was cleared, those that have left it as well

int GetNumber(int control)
{
    int value = 0;
    GetCtrlVal(PANEL, control, &value);
    return value;
}

bool IsShown()
{
    int isVisible = 0;
    return GetPanelAttribute(PANEL, ATTR_VISIBLE, &isVisible) >= 0 && isVisible != 0;
}

void ShowOutcome(const std::string &text, int color = COLOR_PLAIN)
{
    SetCtrlAttribute(PANEL, SIMUL_MESSAGE, ATTR_TEXT_COLOR, color);
    SetCtrlVal(PANEL, SIMUL_MESSAGE, text);
}

// --- the log ----------------------------------------------------------------------------

// "    1.234567 station 1 command 0 address 008002 word 2 answered"; anything else is a remark.
struct LogLine {
    std::string time, request, outcome;
    uint32_t address = 0;
    bool hasAddress = false;
};

bool SplitLogLine(const std::string &line, LogLine *parts)
{
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    char *end = nullptr;
    if (words.size() < 3 || (std::strtod(words[0].c_str(), &end), *end != '\0'))
        return false;
    parts->time = words.front();
    parts->outcome = words.back();
    for (size_t i = 1; i + 1 < words.size(); ++i) {
        parts->request += (i > 1 ? " " : "") + words[i];
        if (words[i - 1] == "address") {
            parts->hasAddress = true;
            parts->address = static_cast<uint32_t>(std::strtoul(words[i].c_str(), nullptr, 16));
        }
    }
    return true;
}

std::vector<UI_Cell> MakeCells(const std::string &line)
{
    LogLine parts;
    if (!SplitLogLine(line, &parts))
        return {{"", UIS_NORMAL, ""}, {TXT_Visible(line), UIS_WARNING, ""}, {}, {}};
    const bool isGood = parts.outcome == "answered";
    const std::string name = parts.hasAddress ? SYM_AddressToName(parts.address) : "";
    return {{parts.time, UIS_DIM, "seconds since the target's start"},
            {parts.request, UIS_NORMAL, line},
            {name, UIS_NORMAL, ""},
            {parts.outcome, isGood ? UIS_NORMAL : UIS_WARNING, ""}};
}

void ShowState()
{
    std::string text = "No simulated target runs.";
    if (TGT_IsStarted()) {
        text = "Runs at " + TGT_GetAddress() + ". Requests: " + std::to_string(requests) +
               ", not answered as they should be: " + std::to_string(failed) + ".";
        if (TGT_IsConnected())
            text += " Connected: the main window shows this target.";
    }
    SetCtrlVal(PANEL, SIMUL_STATE, text);
}

// Takes what has come and draws it.
void Refresh()
{
    std::deque<std::string> fresh;
    TGT_TakeLog(&fresh);
    for (const std::string &line : fresh) {
        LogLine parts;
        logged.push_back(line);
        if (!SplitLogLine(line, &parts))
            continue;
        ++requests;
        failed += parts.outcome == "answered" ? 0 : 1;
    }
    // Of thousands between two looks only those that stay in the list are drawn.
    const size_t first = fresh.size() > LOG_LINES_MAX ? fresh.size() - LOG_LINES_MAX : 0;
    for (size_t i = first; i < fresh.size(); ++i) {
        InsertListItem(PANEL, SIMUL_LOG, 0, fresh[i], 0);
        SetListCells(PANEL, SIMUL_LOG, 0, MakeCells(fresh[i]));
    }
    while (logged.size() > LOG_LINES_MAX)
        logged.pop_front();
    int count = 0;
    GetNumListItems(PANEL, SIMUL_LOG, &count);
    const int surplus = count - static_cast<int>(LOG_LINES_MAX);
    if (surplus > 0)
        DeleteListItem(PANEL, SIMUL_LOG, count - surplus, surplus);
    ShowState();
}

void ClearLog()
{
    logged.clear();
    requests = failed = 0;
    ClearListCtrl(PANEL, SIMUL_LOG);
    ShowState();
}

void CopyLog()
{
    std::string text;
    for (const std::string &line : logged)
        text += line + "\n";
    if (ClipboardPutText(text) == 0)
        ShowOutcome("Copied: " + std::to_string(logged.size()) + " lines.");
}

// --- the target -------------------------------------------------------------------------

void EnableControls()
{
    const bool isStarted = TGT_IsStarted();
    const bool isLoader = GetNumber(SIMUL_PROGRAM) == TGT_LOADER;
    const bool isModbus = GetNumber(SIMUL_PROTOCOL) == PROTOCOL_MODBUS && !isLoader;
    SetCtrlAttribute(PANEL, SIMUL_START, ATTR_LABEL_TEXT, isStarted ? "__Stop" : "__Start");
    SetCtrlAttribute(PANEL, SIMUL_CONNECT, ATTR_LABEL_TEXT,
                     TGT_IsConnected() ? "Dis__connect" : "__Connect");
    for (const int control :
         {SIMUL_PROGRAM, SIMUL_PROTOCOL, SIMUL_BAUD, SIMUL_STATIONS, SIMUL_SCOPES})
        SetCtrlAttribute(PANEL, control, ATTR_DIMMED, isStarted);
    // What has no meaning for the chosen program, besides.
    if (isLoader)
        SetCtrlAttribute(PANEL, SIMUL_PROTOCOL, ATTR_DIMMED, 1);
    if (GetNumber(SIMUL_PROGRAM) != TGT_DEMO)
        SetCtrlAttribute(PANEL, SIMUL_SCOPES, ATTR_DIMMED, 1);
    for (const Fault &fault : FAULTS)
        SetCtrlAttribute(PANEL, fault.slider, ATTR_DIMMED,
                         isModbus ? !fault.isOfModbus : !fault.isOfMr166);
    ShowState();
}

void SendFault(const Fault &fault)
{
    const int value = GetNumber(fault.slider);
    SetCtrlVal(PANEL, fault.text, std::to_string(value) + " " + fault.unit);
    TGT_SetFault(fault.name, TXT_Format("%g", value * fault.factor));
}

void SendSwitch(const Switch &row)
{
    TGT_SetFault(row.name, GetNumber(row.control) != 0 ? row.on : row.off);
}

void SendAllFaults()
{
    for (const Fault &fault : FAULTS)
        SendFault(fault);
    for (const Switch &row : SWITCHES)
        SendSwitch(row);
}

void ClearFaults()
{
    for (const Fault &fault : FAULTS)
        SetCtrlVal(PANEL, fault.slider, 0);
    for (const Switch &row : SWITCHES)
        SetCtrlVal(PANEL, row.control, 0);
    SendAllFaults();
}

// The target has ended by itself: said where the user looks, and nothing is left pointing to it.
void HandleEnd()
{
    Refresh(); // its last words may still wait
    LogLine request;
    const bool hasComplained = !logged.empty() && !SplitLogLine(logged.back(), &request);
    const std::string last = hasComplained ? " It said: " + TXT_Visible(logged.back()) : "";
    TGT_Stop(); // which gives back the settings of before
    const std::string text =
        "The simulated target has ended by itself; communication is off." + last;
    ShowOutcome(text, COLOR_BAD);
    VR_ShowMessage(text);
    EnableControls();
}

// While communication is on, the window's timer looks at the log often enough.
void HandleNews()
{
    if (TGT_HasEnded())
        HandleEnd();
    else if (isTimer == 0 && IsShown())
        Refresh();
}

void Announce() // on a thread of the child's
{
    PostDeferredCall(HandleNews);
}

bool Start()
{
    TGT_Options options;
    std::string cause;
    options.program = static_cast<TGT_Program>(GetNumber(SIMUL_PROGRAM));
    options.isModbus = GetNumber(SIMUL_PROTOCOL) == PROTOCOL_MODBUS;
    options.baud = GetNumber(SIMUL_BAUD);
    options.scopes = SCOPES[GetNumber(SIMUL_SCOPES)];
    GetCtrlVal(PANEL, SIMUL_STATIONS, &options.stations);
    options.stations = TXT_Trim(options.stations);
    ClearLog(); // times begin anew with each target
    if (TGT_Start(options, Announce, &cause) != 0) {
        ShowOutcome("Not started: " + cause + ".", COLOR_BAD);
        return false;
    }
    SendAllFaults(); // a new one has none
    ShowOutcome("Started.");
    return true;
}

void StartOrStop()
{
    if (TGT_IsStarted()) {
        Refresh(); // what it has done last
        TGT_Stop();
        ShowOutcome("Stopped.");
    } else {
        Start();
    }
    EnableControls();
}

void ConnectOrNot()
{
    std::string cause;
    if (TGT_IsConnected()) {
        TGT_Disconnect(); // the target goes on, to be connected again
        ShowOutcome("Disconnected: the settings of before are back, communication is off.");
    } else if (TGT_IsStarted() || Start()) {
        if (TGT_Connect(&cause) != 0)
            ShowOutcome("Not connected: " + cause + ".", COLOR_BAD);
        else if (GetNumber(SIMUL_PROGRAM) == TGT_LOADER)
            ShowOutcome("Connected: the flash loader's window reaches it.", COLOR_GOOD);
        else
            ShowOutcome("Connected.", COLOR_GOOD);
    }
    EnableControls();
}

} // namespace

void TGT_WindowOpened()
{
    std::vector<UI_Column> columns;
    if (GetListColumns(PANEL, SIMUL_LOG, &columns) < 0 || columns.empty())
        SetListColumns(PANEL, SIMUL_LOG,
                       {{"Time", 80, UIA_RIGHT},
                        {"Request", 330, UIA_LEFT},
                        {"Name", 120, UIA_LEFT},
                        {"Outcome", 80, UIA_LEFT}});
    SetCtrlAttribute(PANEL, SIMUL_TIMER, ATTR_INTERVAL, PERIOD_S);
    SendAllFaults(); // and their texts
    Refresh();
    EnableControls();
    SetActiveCtrl(PANEL, SIMUL_START);
}

int TGT_ButtonCB(int, int control, int event, int)
{
    constexpr struct {
        int control;
        void (*act)();
    } ACTIONS[] = {{SIMUL_START, StartOrStop},
                   {SIMUL_CONNECT, ConnectOrNot},
                   {SIMUL_NO_FAULTS, ClearFaults},
                   {SIMUL_COPY, CopyLog},
                   {SIMUL_CLEAR, ClearLog}};
    for (const auto &row : ACTIONS)
        if (event == EVENT_COMMIT && row.control == control)
            row.act();
    return 0;
}

int TGT_OptionCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT)
        EnableControls();
    return 0;
}

int TGT_FaultCB(int, int control, int event, int)
{
    if (event != EVENT_COMMIT && event != EVENT_VAL_CHANGED)
        return 0;
    for (const Fault &fault : FAULTS)
        if (fault.slider == control)
            SendFault(fault);
    for (const Switch &row : SWITCHES)
        if (row.control == control)
            SendSwitch(row);
    return 0;
}

int TGT_TimerCB(int, int, int, int)
{
    if (IsShown() && TGT_IsStarted())
        Refresh();
    return 0;
}
