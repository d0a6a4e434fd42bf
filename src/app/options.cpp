// The Options menu: every item changes one setting while the program runs and, where
// the link is concerned, opens it anew.
#include "app/options.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "comm/communication.h"
#include "comm/ucm.h"
#include "platform/port_list.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/varnode.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/item_names.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/list/refresh.h"
#include "watch/main_window.h"

namespace {

constexpr int PROCESSORS[] = {CPU_C166, CPU_C167, CPU_F283XX, CPU_F2803X};
const char PORT_QUESTION[] = "Enter COM number, the path of a device or tcp:host:port";

// Said whenever the run-time library's driver is chosen, not only the first time.
const char NI_WARNING[] = "Use of NI COM services is supported for full backward compatibility\n"
                          "as it makes possible RS485 echo cancellation.\n\n"
                          "Win32 services should always be used with USB/COM adapters,\n"
                          "otherwise the computer may become unstable.\n\n"
                          "You can switch to Win32 services using the Options/Win32 menu.";

// Communication ends without the timers being suspended: a tick finds isTimer clear.
void CloseLink()
{
    UCM_Close();
    isTimer = 0;
    COM_TellState();
}

// "/dev/ttyUSB0", "COM3", "tcp:10.0.0.7:4001": what a device is called, and no number. A path is
// told by its slash, Windows' names by the M.
bool IsDeviceName(const std::string &text)
{
    return text.compare(0, 4, "tcp:") == 0 ||
           (!text.empty() && std::isdigit(static_cast<unsigned char>(text[0])) == 0 &&
            text.find_first_of("/\\mM") != std::string::npos);
}

} // namespace

int APP_UsePort(const std::string &text)
{
    const std::string name = TXT_Trim(text);
    int number = 0;
    if (IsDeviceName(name)) {
        const int result = SER_PortUse(name, &number);
        if (result != 0) {
            const std::string device = "device '" + TXT_Visible(name) + "'";
            MessagePopup("Error",
                         result == SER_PORT_ERR_MISSING
                             ? "There is no " + device + "."
                             : "The " + device +
                                   " cannot be given a number: the folder of the links cannot be "
                                   "written, or no number is left.");
            return -1;
        }
    } else {
        // What is no number is port 1, as it always was.
        const long typed = std::strtol(name.c_str(), nullptr, 10);
        number = static_cast<int>(std::clamp(typed, 1L, static_cast<long>(SER_NUMBER_MAX)));
    }
    // Kept also when it cannot be opened: the adapter may be plugged in later.
    ncom = number;
    VR_Reopen();
    return 0;
}

void APP_UseProcessor(int processor)
{
    if (Procesor == processor)
        return;
    // Registers first: names of the list are looked up among them, too.
    Procesor = processor;
    initRgMap(Procesor);
    VR_ResolveWatchList();
    VR_FillDebugItems();
}

void BRateCB(int, int item)
{
    if (item >= ITEM_BAUD_FIRST && item <= ITEM_BAUD_LAST) {
        bRate = APP_BAUD_RATES[item - ITEM_BAUD_FIRST];
        VR_Reopen();
    }
    SetMainPanelAttributes();
}

void PortCB(int, int item)
{
    if (item >= ITEM_PORT_FIRST && item < ITEM_PORT_FIRST + APP_MENU_PORTS) {
        ncom = item - ITEM_PORT_FIRST + 1;
        VR_Reopen();
    } else if (item == ITEM_PORT_OTHER) {
        std::string text = std::to_string(ncom);
        // A number, a path or tcp:...: a path may be as long as paths are.
        if (PromptPopup("Prompt", PORT_QUESTION, &text, PATH_MAX_CHARS - 1) >= 0)
            APP_UsePort(text);
    }
    SetMainPanelAttributes();
}

// An item that stands for no station chooses 1, as a new installation has it.
void StationCB(int, int item)
{
    const bool isKnown = item >= ITEM_STATION_FIRST && item <= ITEM_STATION_LAST;
    VIR2_SetStation(isKnown ? item - ITEM_STATION_FIRST : 1);
    SetMainPanelAttributes();
}

void ProcesorCB(int, int item)
{
    const bool isKnown = item >= ITEM_CPU_C166 && item <= ITEM_CPU_F2803X;
    if (isKnown)
        APP_UseProcessor(PROCESSORS[item - ITEM_CPU_C166]);
    SetMainPanelAttributes();
}

void ProtocolCB(int, int item)
{
    const int16_t protocol = item == ITEM_MODBUS ? PROTOCOL_MODBUS : PROTOCOL_MR166;
    if (VR_nProtocol != protocol) {
        // Left closed: the user says when the other protocol may speak to what is connected.
        VR_nProtocol = protocol;
        CloseLink();
    }
    SetMainPanelAttributes();
}

void ComWin32CB(int, int)
{
    Option_ComWin32 = Option_ComWin32 == 0;
    if (Option_ComWin32 == 0)
        MessagePopup("(!) Warning", NI_WARNING);
    // An open link changes its driver on the spot, which may fail like any opening.
    Check_ASC_Open(UCM_UseWin32(Option_ComWin32));
    SetMainPanelAttributes();
}

void AutoOffCB(int, int)
{
    Option_AutoOff = Option_AutoOff == 0;
    SetMainPanelAttributes();
}

void RateCB(int, int item)
{
    // Only rates with an item of their own, which is also all the settings file admits.
    if (item >= ITEM_RATE_FIRST && item <= ITEM_RATE_LAST)
        Option_nSweepRate = RFR_RATES[item - ITEM_RATE_FIRST];
    SetMainPanelAttributes();
}

void ClosePortCB(int, int)
{
    CloseLink();
    SetMainPanelAttributes();
}

void EchoCB(int, int)
{
    Option_Echo = Option_Echo == 0;
    VR_isEchoOnce = false; // chosen here it is for the settings file, not for this run only
    SetMainPanelAttributes();
    VR_Reopen();
}

void FullCommandsCB(int, int)
{
    VR_isFullCommandSet = !VR_isFullCommandSet;
    VR_isFullOnce = false;
    SetMainPanelAttributes();
}

// The menu item toggles what is, not what its check mark shows.
void ConnectCB(int, int)
{
    if (isTimer != 0)
        VIR2_StopPeriodicASC();
    else
        VIR2_StartPeriodicASC();
}

// The switch shows the wish; whether it came true, VR_ShowComState shows.
int CommSwitchCB(int panel, int control, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    int isOn = 0;
    GetCtrlVal(panel, control, &isOn);
    if (isOn != 0)
        VIR2_StartPeriodicASC();
    else
        VIR2_StopPeriodicASC();
    return 0;
}
