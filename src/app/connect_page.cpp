// Every field shows a setting and changes it at once, as the menu would: there is nothing to
// confirm, and whatever else changes a setting is followed by APP_RefreshConnectPage.
#include "app/connect_page.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "app/options.h"
#include "comm/communication.h"
#include "diagnostics/line_test.h"
#include "platform/port_list.h"
#include "platform/serial.h"
#include "runtime/userint.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/debug_file.h"
#include "watch/main_window.h"
#include "watch/windows/map_loading.h"

namespace {

constexpr int OTHER_PORT = 0; // the entry that asks for a number or a path

struct Choice {
    int control;
    const char *label;
    int value;
};
constexpr Choice CHOICES[] = {
    {CONNECT_PROTOCOL, "mr166", PROTOCOL_MR166}, {CONNECT_PROTOCOL, "Modbus RTU", PROTOCOL_MODBUS},
    {CONNECT_PROCESSOR, "AC166", CPU_C166},      {CONNECT_PROCESSOR, "AC167", CPU_C167},
    {CONNECT_PROCESSOR, "F283xx", CPU_F283XX},   {CONNECT_PROCESSOR, "F2803x", CPU_F2803X},
};

std::vector<SER_PortEntry> ports; // as listed when the page was opened

// The ports of this machine. An entry's value is its place in `ports`, below zero, because a
// device may not have a number yet.
void FillPorts()
{
    ports = SER_ListPorts();
    const auto used = std::find_if(ports.begin(), ports.end(),
                                   [](const SER_PortEntry &port) { return port.number == ncom; });
    const int usedIndex = static_cast<int>(used - ports.begin());
    if (used == ports.end()) {
        // The port in use stands in the list even when nothing is plugged in there.
        SER_PortEntry absent;
        absent.number = ncom;
        absent.device = SER_DevicePath(ncom);
        absent.description = "not there";
        ports.push_back(absent);
    }
    ClearListCtrl(PANEL_CONNECT, CONNECT_PORT);
    for (size_t i = 0; i < ports.size(); i++) {
        const SER_PortEntry &port = ports[i];
        std::string label = port.number > 0 ? "COM" + std::to_string(port.number) : "-";
        label += ": " + port.device;
        if (!port.description.empty())
            label += ", " + port.description;
        InsertListItem(PANEL_CONNECT, CONNECT_PORT, -1, TXT_Visible(label),
                       -1 - static_cast<int>(i));
    }
    InsertListItem(PANEL_CONNECT, CONNECT_PORT, -1, "Other...", OTHER_PORT);
    SetCtrlIndex(PANEL_CONNECT, CONNECT_PORT, usedIndex);
}

// Rates of the menu, and the one in use when it is another.
void FillBauds()
{
    ClearListCtrl(PANEL_CONNECT, CONNECT_BAUD);
    bool isKnown = false;
    for (const int32_t baud : APP_BAUD_RATES) {
        InsertListItem(PANEL_CONNECT, CONNECT_BAUD, -1, std::to_string(baud), baud);
        isKnown = isKnown || baud == bRate;
    }
    if (!isKnown)
        InsertListItem(PANEL_CONNECT, CONNECT_BAUD, -1, std::to_string(bRate), bRate);
    SetCtrlVal(PANEL_CONNECT, CONNECT_BAUD, bRate);
}

std::string NameOr(const std::string &path, const char *none)
{
    return path.empty() ? none : TXT_Visible(path);
}

// Why the protocol cannot reach the station, "" when it can. mr166 has four bits for it in a frame,
// a Modbus slave 0 would be a broadcast that nobody answers. The number is never moved into the
// range: the nearest station is another machine.
std::string StationProblem(int station)
{
    const bool isModbus = VR_nProtocol == PROTOCOL_MODBUS;
    const int least = isModbus ? MODBUS_STATION_MIN : 0;
    const int most = isModbus ? MODBUS_STATION_MAX : STATION_MAX;
    if (station >= least && station <= most)
        return "";
    return "There is no station " + std::to_string(station) + " with " +
           (isModbus ? "Modbus" : "mr166") + ": its stations are " + std::to_string(least) +
           " to " + std::to_string(most) + ".";
}

// Back to the view that the page has covered.
void Close()
{
    WIN_ShowMainView(VR_isWatchView ? ITEM_WATCH_VIEW : ITEM_CONSOLE_VIEW);
}

void Test()
{
    // The test opens the link for itself; communication that was on goes on afterwards.
    const bool wasOn = isTimer != 0;
    if (wasOn)
        VIR2_StopPeriodicASC();
    // A silent station is waited for through all tries, which takes seconds.
    SetCtrlVal(PANEL_CONNECT, CONNECT_RESULT, "Asking...");
    SetBusyText(COM_WaitingText(STATION));
    std::string text;
    DIA_TestLine(&text);
    SetCtrlVal(PANEL_CONNECT, CONNECT_RESULT, TXT_Visible(text));
    if (wasOn)
        VIR2_StartPeriodicASC();
}

} // namespace

void APP_RefreshConnectPage()
{
    // Looking for ports takes time, and this is called with every change of a setting.
    int isVisible = 0;
    if (GetPanelAttribute(PANEL_CONNECT, ATTR_VISIBLE, &isVisible) < 0 || isVisible == 0)
        return;
    FillPorts();
    FillBauds();
    SetCtrlVal(PANEL_CONNECT, CONNECT_PROTOCOL, VR_nProtocol);
    SetCtrlVal(PANEL_CONNECT, CONNECT_PROCESSOR, Procesor);
    SetCtrlVal(PANEL_CONNECT, CONNECT_STATION, STATION);
    SetCtrlVal(PANEL_CONNECT, CONNECT_MAP_NAME, NameOr(szMapFileName, "none: by address only"));
    SetCtrlVal(PANEL_CONNECT, CONNECT_LIST_NAME, NameOr(szDebugFileName, "none: an empty list"));
}

void APP_OpenConnectPage()
{
    HidePanel(consolePanel);
    DisplayPanel(PANEL_CONNECT);
    // The panel stays loaded and keeps what its rings had at the last opening.
    for (const int control : {CONNECT_PROTOCOL, CONNECT_PROCESSOR})
        ClearListCtrl(PANEL_CONNECT, control);
    for (const Choice &choice : CHOICES)
        InsertListItem(PANEL_CONNECT, choice.control, -1, choice.label, choice.value);
    SetCtrlVal(PANEL_CONNECT, CONNECT_RESULT, "");
    APP_RefreshConnectPage();
    SetActiveCtrl(PANEL_CONNECT, CONNECT_PORT);
}

void ConnectPageCB(int, int)
{
    APP_OpenConnectPage();
}

int APP_ConnectPortCB(int, int, int event, int)
{
    int value = OTHER_PORT;
    if (event != EVENT_COMMIT || GetCtrlVal(PANEL_CONNECT, CONNECT_PORT, &value) < 0)
        return 0;
    SetCtrlVal(PANEL_CONNECT, CONNECT_RESULT, ""); // of the port before
    const size_t index = static_cast<size_t>(-1 - value);
    if (value == OTHER_PORT)
        PortCB(0, ITEM_PORT_OTHER);
    // By its device where it is another port: that may have no number before it is used.
    else if (index < ports.size())
        APP_UsePort(ports[index].number == ncom ? std::to_string(ncom) : ports[index].device);
    SetMainPanelAttributes();
    return 0;
}

int APP_ConnectSettingCB(int, int control, int event, int)
{
    int value = 0;
    // Rings report browsing, too, and mean it at the end; the number has no Enter to wait for.
    const bool isMeant = event == EVENT_COMMIT || control == CONNECT_STATION;
    if (!isMeant || GetCtrlVal(PANEL_CONNECT, control, &value) < 0)
        return 0;
    SetCtrlVal(PANEL_CONNECT, CONNECT_RESULT, "");
    if (control == CONNECT_BAUD && value != bRate) {
        bRate = value;
        VR_Reopen();
    } else if (control == CONNECT_PROTOCOL) {
        ProtocolCB(0, value == PROTOCOL_MODBUS ? ITEM_MODBUS : ITEM_MR166);
        // Kept all the same: who has met the wrong line of the ring gets the number back.
        SetCtrlVal(PANEL_CONNECT, CONNECT_RESULT, StationProblem(STATION));
    } else if (control == CONNECT_PROCESSOR) {
        APP_UseProcessor(value);
    } else if (control == CONNECT_STATION) {
        const std::string problem = StationProblem(value);
        if (problem.empty())
            VIR2_SetStation(value);
        SetCtrlVal(PANEL_CONNECT, CONNECT_RESULT, problem);
    }
    SetMainPanelAttributes(); // also puts a field back whose number was refused
    return 0;
}

int APP_ConnectButtonCB(int, int control, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    switch (control) {
    case CONNECT_TEST:
        Test();
        break;
    case CONNECT_MAP:
        OpenMapCB(0, ITEM_OPEN_MAP);
        break;
    case CONNECT_LIST:
        OpenDatCB(0, ITEM_OPEN);
        break;
    case CONNECT_START: {
        // Behind the watch view nothing would say why every line fails.
        const std::string problem = StationProblem(STATION);
        SetCtrlVal(PANEL_CONNECT, CONNECT_RESULT, problem);
        if (!problem.empty())
            break;
        // Values first: there is no use in a list that stands still.
        WIN_ShowMainView(ITEM_WATCH_VIEW);
        if (isTimer == 0)
            VIR2_StartPeriodicASC();
        break;
    }
    default:
        Close();
        break;
    }
    return 0;
}

int APP_ConnectPanelCB(int, int event, int data)
{
    if (event == EVENT_CLOSE || (event == EVENT_KEYPRESS && data == KEY_ESC))
        Close();
    return event == EVENT_KEYPRESS && data == KEY_ESC ? 1 : 0;
}
