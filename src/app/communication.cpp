// Communication on and off, the error report that always switches it off first, and
// what the window shows of both.
#include "app/VR.h"

#include <cstdio>

#include "diagnostics/statistics_panel.h"
#include "diagnostics/trace_panel.h"
#include "comm/ucm.h"
#include "runtime/userint.h"
#include "ui/resource.h"
#include "watch/list/refresh.h"

namespace {

struct OpenReason {
    int result;
    const char *text;
};
constexpr OpenReason OPEN_REASONS[] = {
    {-30, "(port is not available)"},
    {-38, "(bad com number)"},
};

constexpr const char *AUTO_OFF = "Communication switched off: ";

// What failed before, on another port or with the cable off, must not switch off again.
int OpenLink()
{
    RFR_BeginSweep();
    nErrors = 0;
    return Check_ASC_Open(VR_OpenLink());
}

// What switched it off the last time is no news while it runs.
void ClearAutoOff()
{
    std::string message;
    if (GetCtrlVal(mainPanel, MAIN_MESSAGE, &message) == 0 && message.rfind(AUTO_OFF, 0) == 0)
        VR_ShowMessage("");
}

} // namespace

void Error(const std::string &message)
{
    VIR2_StopPeriodicASC();
    MessagePopup("Error", message);
}

int Check_ASC_Open(int result)
{
    if (result >= 0)
        return result;
    char text[80];
    std::snprintf(text, sizeof text, "Error opening serial port 'COM%d'.\n", ncom);
    std::string message = text;
    for (const OpenReason &reason : OPEN_REASONS)
        if (reason.result == result)
            message += reason.text;
    Error(message);
    return result;
}

int VR_OpenLink()
{
    const int result = UCM_Open(VR_nProtocol, ncom, bRate);
    // A driver chosen while the other protocol was in use reaches the link only now.
    const int driver = VR_nProtocol == PROTOCOL_MR166 ? UCM_UseWin32(Option_ComWin32) : 0;
    return result < 0 ? result : driver;
}

void VR_ShowComState()
{
    const int menuBar = GetPanelMenuBar(mainPanel);
    SetCtrlVal(mainPanel, MAIN_COMM, isTimer != 0);
    SetCtrlVal(mainPanel, MAIN_STOPPED, isTimer == 0);
    SetMenuBarAttribute(menuBar, ITEM_CONNECT, ATTR_CHECKED, isTimer != 0);
    SetMenuBarAttribute(menuBar, ITEM_CLOSE_PORT, ATTR_DIMMED, UCM_IsOpened() == 0);
    if (isTimer == 0) // whatever switched it off, nothing runs and nothing fails now
        SetCtrlVal(mainPanel, MAIN_STATUS, "");
    VR_ShowDiagnostics();
}

void VR_ShowDiagnostics()
{
    STP_Refresh();
    TRP_Refresh();
}

void VIR2_StartPeriodicASC()
{
    if (OpenLink() < 0) {
        VIR2_StopPeriodicASC();
        return;
    }
    ResumeTimerCallbacks();
    isTimer = 1;
    ClearAutoOff();
    VR_ShowComState();
}

// The timer is stopped before the link is closed under it.
void VIR2_StopPeriodicASC()
{
    SuspendTimerCallbacks();
    isTimer = 0;
    UCM_Close();
    VR_ShowComState();
}

void VR_FollowPort()
{
    static bool isWaiting = false;
    if (UCM_IsOpened() != 0 && !UCM_IsGone()) {
        isWaiting = false;
        return;
    }
    const std::string port = "COM" + std::to_string(ncom);
    const bool isBack = VR_OpenLink() >= 0;
    if (isBack)
        VR_ShowMessage(port + " is back.");
    else if (!isWaiting)
        VR_ShowMessage(port + " is gone: waiting for it.");
    isWaiting = !isBack;
}

void VR_AutoOff(const std::string &why)
{
    VIR2_StopPeriodicASC();
    VR_ShowMessage(AUTO_OFF + why);
}

void VR_Reopen()
{
    if (isTimer == 0)
        return;
    SuspendTimerCallbacks();
    UCM_Close();
    if (OpenLink() >= 0)
        ResumeTimerCallbacks();
    VR_ShowComState();
}

void VR_ComRequest()
{
    if (isTimer != 0 || ConfirmPopup("Message", "Enable communication?") == 0)
        return;
    SetCtrlVal(mainPanel, MAIN_COMM, 1);
    VIR2_StartPeriodicASC();
}

bool VR_EnsureCom()
{
    VR_ComRequest();
    return isTimer != 0;
}

void ConnectCB(int, int)
{
    if (isTimer != 0)
        VIR2_StopPeriodicASC();
    else
        VIR2_StartPeriodicASC();
}

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
