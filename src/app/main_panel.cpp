// What the main panel shows of the settings: title, state line, check marks, recent
// files, and which controls have something to act on.
#include "app/main_panel.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "app/connect_page.h"
#include "app/options.h"
#include "app/window_places.h"
#include "code/debugger.h"
#include "comm/ucm.h"
#include "diagnostics/statistics_panel.h"
#include "diagnostics/trace_panel.h"
#include "inspect/array_inspector.h"
#include "inspect/record_inspector.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "simulator/target.h"
#include "symbols/mapfile.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"
#include "terminal/window.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/debug_file.h"
#include "watch/list/list_events.h"
#include "watch/list/litem.h"
#include "watch/list/refresh.h"
#include "watch/main_window.h"
#include "watch/windows/outcome_colors.h"
#include "watch/windows/selectors.h"

namespace {

// A processor or protocol: its menu item, its word in the state line and in plain words.
struct Choice {
    int item;
    int value;
    const char *word, *meaning;
};
constexpr Choice PROCESSORS[] = {{ITEM_CPU_C166, CPU_C166, "AC166", "C166"},
                                 {ITEM_CPU_C167, CPU_C167, "AC167", "C167"},
                                 {ITEM_CPU_F283XX, CPU_F283XX, "F283xx", "TMS320F283xx"},
                                 {ITEM_CPU_F2803X, CPU_F2803X, "F2803x", "TMS320F2803x"}};
constexpr Choice PROTOCOLS[] = {{ITEM_MR166, PROTOCOL_MR166, "COM166", "mr166 frames, station "},
                                {ITEM_MODBUS, PROTOCOL_MODBUS, "MODBUS", "Modbus RTU, slave "}};

// Null for a value that no row has: settings files are written by hand, too.
template <size_t N> const Choice *FindChoice(const Choice (&choices)[N], int value)
{
    for (const Choice &choice : choices)
        if (choice.value == value)
            return &choice;
    return nullptr;
}

void Check(int item, bool isOn)
{
    SetMenuBarAttribute(GetPanelMenuBar(mainPanel), item, ATTR_CHECKED, isOn);
}

// One item of each group is checked, or none where a setting is not among those offered.
void CheckOptions()
{
    for (int item = ITEM_BAUD_FIRST; item <= ITEM_BAUD_LAST; item++)
        Check(item, APP_BAUD_RATES[item - ITEM_BAUD_FIRST] == bRate);
    for (const Choice &row : PROTOCOLS)
        Check(row.item, row.value == VR_nProtocol);
    for (const Choice &row : PROCESSORS)
        Check(row.item, row.value == Procesor);
    for (int port = 1; port <= APP_MENU_PORTS; port++)
        Check(ITEM_PORT_FIRST + port - 1, port == ncom);
    Check(ITEM_PORT_OTHER, ncom > APP_MENU_PORTS);
    for (int item = ITEM_STATION_FIRST; item <= ITEM_STATION_LAST; item++)
        Check(item, item - ITEM_STATION_FIRST == STATION);
    for (int item = ITEM_RATE_FIRST; item <= ITEM_RATE_LAST; item++)
        Check(item, RFR_RATES[item - ITEM_RATE_FIRST] == Option_nSweepRate);
    Check(ITEM_AUTO_OFF, Option_AutoOff != 0);
    Check(ITEM_COM_WIN32, Option_ComWin32 != 0);
    Check(ITEM_ECHO, Option_Echo != 0);
    Check(ITEM_FULL_COMMANDS, VR_isFullCommandSet);
}

// All anew: their number, order and texts change together, and a view redraws only what differs.
void RefreshRecentItems()
{
    const int menuBar = GetPanelMenuBar(mainPanel);
    for (int &item : anRecentItems) {
        if (item != 0)
            DiscardMenuItem(menuBar, item);
        item = 0;
    }
    for (int i = 0; i < nDebugFileNames; i++) {
        const std::string &path = szaDebugFileNames[static_cast<size_t>(i)];
        const std::string text = "__" + std::to_string(i + 1) + " " + TXT_Visible(path);
        const int item = NewMenuItem(menuBar, MENU_FILE, text, ITEM_RECENT_END,
                                     KEY_CTRL | ('1' + i), MenuReopenFileCB);
        // An item that could not be made is 0, so that nobody discards it the next time.
        anRecentItems[i] = std::max(item, 0);
        Check(item, path == szDebugFileName);
    }
}

void EnableCtrl(int control, bool isOn)
{
    SetCtrlAttribute(mainPanel, control, ATTR_DIMMED, isOn ? 0 : 1);
}

void EnableItem(int item, bool isOn)
{
    SetMenuBarAttribute(GetPanelMenuBar(mainPanel), item, ATTR_DIMMED, isOn ? 0 : 1);
}

// Where symbols come from. A value that openStruct should not have is shown rather than hidden.
std::string MapText()
{
    switch (openStruct) {
    case OPEN_NONE:
        return "Map not opened.";
    case OPEN_MAP_FILE:
        return "Map file: " + TXT_Visible(szMapFileName);
    case OPEN_FROM_MEMORY:
        return "Map loaded from memory.";
    default:
        return "Map ???";
    }
}

// Only the run-time driver of mr166 can skip an echo.
const char ECHO_TEXT[] = "The line echoes what is sent: switch Win32 services off. ";
const char MODBUS_ECHO_TEXT[] = "The line echoes what is sent. ";
const char SIMULATED_TEXT[] = "SIMULATED TARGET. ";
bool isEchoShown = false;

// What the state line says, in plain words.
std::string StateTip()
{
    const Choice *processor = FindChoice(PROCESSORS, Procesor);
    std::string text = "Processor: ";
    text += processor != nullptr ? processor->meaning : "unknown";
    text += "\n";
    // An unknown protocol reads as mr166 here; the line itself shows "???".
    text += PROTOCOLS[VR_nProtocol == PROTOCOL_MODBUS ? 1 : 0].meaning;
    text += std::to_string(STATION) + "\nPort " + TXT_Visible(UCM_PortName(ncom)) + " at " +
            std::to_string(bRate) + " baud";
    text += Option_ComWin32 != 0 ? "\nEchoes of a two-wire line are not skipped (Win32 services)"
                                 : "\nEchoes of a two-wire line are skipped (run-time services)";
    text += Option_AutoOff != 0 ? "\nCommunication goes off after repeated errors"
                                : "\nCommunication stays on whatever fails";
    if (TGT_IsConnected())
        text += "\nThe target is simulated by this program: no machine is reached";
    return text + "\n" + MapText();
}

} // namespace

void SetMainPanelStateLine()
{
    char numbers[80];
    std::snprintf(numbers, sizeof numbers, "st = %d; com = %d, brate = %d; ", STATION, ncom, bRate);
    const Choice *processor = FindChoice(PROCESSORS, Procesor);
    const Choice *protocol = FindChoice(PROTOCOLS, VR_nProtocol);
    std::string text = "CPU = ";
    text += processor != nullptr ? processor->word : "???";
    text += "; prot = ";
    text += protocol != nullptr ? protocol->word : "???";
    text += std::string("; ") + numbers;
    text += Option_AutoOff != 0 ? "auto-off; " : "";
    text += Option_ComWin32 != 0 ? "Win32Com; " : "NI_Com; ";
    isEchoShown = UCM_IsEchoing();
    // In front of paths, which may be longer than the window is wide.
    const char *advice = VR_nProtocol == PROTOCOL_MODBUS ? MODBUS_ECHO_TEXT : ECHO_TEXT;
    const std::string echo = isEchoShown ? advice : "";
    const std::string simulated = TGT_IsConnected() ? SIMULATED_TEXT : "";
    const std::string types = TMF_cnDefVars > 0 ? "; types: " + TMF_GetCountsText() : "";
    SetCtrlVal(mainPanel, MAIN_STATE, text + "\n" + simulated + echo + MapText() + types);
    // Nobody may take values of a simulated target for those of a machine.
    SetCtrlAttribute(mainPanel, MAIN_STATE, ATTR_TEXT_COLOR,
                     TGT_IsConnected() ? COLOR_WARN : COLOR_PLAIN);
    SetCtrlAttribute(mainPanel, MAIN_STATE, ATTR_TOOLTIP_TEXT, StateTip());
    SetCtrlVal(mainPanel, MAIN_LED_MAPFILE, openStruct == OPEN_MAP_FILE);
    SetCtrlVal(mainPanel, MAIN_LED_MAPMEM, openStruct == OPEN_FROM_MEMORY);
}

void VR_DimControls()
{
    // A button and a menu item that do the same are dimmed together.
    // A list that was opened and is empty can be saved, too.
    const bool hasItems = openLItems != 0 || nLItems > 0;
    const bool hasFile = !szDebugFileName.empty();
    const bool hasMap = !szMapFileName.empty() || !TMF_szFileName.empty();
    for (const int control : {MAIN_BTN_SAVE, MAIN_MEM_SWITCH, MAIN_FM_SWITCH})
        EnableCtrl(control, hasItems);
    for (const int item : {ITEM_SAVE, ITEM_SAVE_AS})
        EnableItem(item, hasItems);
    for (const int control : {MAIN_BTN_RELOAD, MAIN_BTN_EDIT})
        EnableCtrl(control, hasFile);
    for (const int item : {ITEM_RELOAD, ITEM_RELOAD_NOW, ITEM_EDIT_FILE})
        EnableItem(item, hasFile);
    EnableCtrl(MAIN_BTN_MAP, hasMap);
    EnableItem(ITEM_RELOAD_MAP, hasMap);
    LSV_Enable();
    if (UCM_IsEchoing() != isEchoShown) // called at the end of each sweep
        SetMainPanelStateLine();
}

void VR_ShowSettings()
{
    // What was said about another port, station or protocol says nothing about these.
    static std::vector<int> before;
    const std::vector<int> now = {ncom, bRate, STATION, VR_nProtocol, Option_ComWin32, Option_Echo};
    if (!before.empty() && before != now)
        WIN_Outdate(WIN_TOPIC_LINK);
    before = now;
    // The list in use stands among the recent ones before the menu is made of them.
    if (!szDebugFileName.empty())
        AddDebugFileName(szDebugFileName);
    RefreshRecentItems();
    SetMainPanelTitle();
    SetMainPanelStateLine();
    CheckOptions();
    VR_DimControls();
    VR_ShowComState();
    // Windows find out by themselves whether what they show depends on what has changed.
    SEL_SymbolsChanged();
    CODE_DebuggerChanged();
    INS_ArrayNamesChanged();
    INS_RecordNamesChanged();
    T166_SetPanelAttributes();
    TRM_SetLcdPanelAttributes();
    // Windows that were loaded since the last call have their columns only now.
    APP_ApplyColumns();
    APP_RefreshConnectPage();
}

void VR_ShowComState()
{
    static bool wasOn = false;
    // Turned grey and not taken away: the message may be the reason why communication ended.
    if (wasOn && isTimer == 0)
        WIN_Outdate(WIN_TOPIC_LINK);
    wasOn = isTimer != 0;
    const int menuBar = GetPanelMenuBar(mainPanel);
    SetCtrlVal(mainPanel, MAIN_COMM, isTimer != 0);
    SetMenuBarAttribute(menuBar, ITEM_CONNECT, ATTR_CHECKED, isTimer != 0);
    SetMenuBarAttribute(menuBar, ITEM_CLOSE_PORT, ATTR_DIMMED, UCM_IsOpened() == 0);
    RFR_ShowCommunication();
    DIA_RefreshStatistics();
    DIA_RefreshTrace();
}
