// Communication as the user switches it: on, off by himself or by itself, and what is said of it.
#include "comm/communication.h"

#include "comm/modbus.h"

#include <cstdio>

#include "comm/ucm.h"
#include "runtime/userint.h"
#include "settings/settings.h"

namespace {

constexpr int BAD_NUMBER = -38; // such a port has no device

struct OpenReason {
    int result;
    const char *text;
};
// The short reasons of the first version; the sentence behind them comes from the driver.
constexpr OpenReason OPEN_REASONS[] = {
    {-30, "(port is not available)"},
    {BAD_NUMBER, "(bad com number)"},
};

constexpr const char *AUTO_OFF = "Communication switched off: ";

COM_Listener listener = {};
std::string autoOffMessage; // shown last

void ShowMessage(const std::string &text)
{
    if (listener.showMessage != nullptr)
        listener.showMessage(text);
}

int OpenLink()
{
    // What failed before, on another port or with the cable off, must not switch off again.
    if (listener.opening != nullptr)
        listener.opening();
    return Check_ASC_Open(VR_OpenLink());
}

} // namespace

void COM_SetListener(const COM_Listener &newListener)
{
    listener = newListener;
}

void COM_TellState()
{
    if (listener.stateChanged != nullptr)
        listener.stateChanged();
}

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
    const std::string cause = UCM_LastErrorText();
    // A number without a device has no name that could be told.
    if (result != BAD_NUMBER && !cause.empty())
        message += "\n" + UCM_PortName(ncom) + ": " + cause;
    Error(message); // switches off what was just being switched on
    return result;
}

int VR_OpenLink()
{
    MBM_isEcho = Option_Echo;
    const int result = UCM_Open(VR_nProtocol, ncom, bRate);
    // A driver chosen while the other protocol was in use reaches the link only now.
    const int driver = VR_nProtocol == PROTOCOL_MR166 ? UCM_UseWin32(Option_ComWin32) : 0;
    return result < 0 ? result : driver;
}

void VIR2_StartPeriodicASC()
{
    if (OpenLink() < 0) {
        VIR2_StopPeriodicASC();
        return;
    }
    ResumeTimerCallbacks();
    isTimer = 1;
    // What switched it off the last time is no news while it runs.
    if (!autoOffMessage.empty() && listener.withdrawMessage != nullptr)
        listener.withdrawMessage(autoOffMessage);
    autoOffMessage.clear();
    COM_TellState();
}

// The timer is stopped before the link is closed under it.
void VIR2_StopPeriodicASC()
{
    SuspendTimerCallbacks();
    isTimer = 0;
    UCM_Close();
    COM_TellState();
}

void VR_FollowPort()
{
    // So that "gone" is said once and not at every look.
    static bool isWaiting = false;
    if (UCM_IsOpened() != 0 && !UCM_IsGone()) {
        isWaiting = false;
        return;
    }
    const std::string port = "COM" + std::to_string(ncom);
    const bool isBack = VR_OpenLink() >= 0;
    if (isBack)
        ShowMessage(port + " is back.");
    else if (!isWaiting)
        ShowMessage(port + " is gone: waiting for it.");
    isWaiting = !isBack;
}

void VR_AutoOff(const std::string &why)
{
    // The reads failed because the user broke them off. What was wished has its turn next,
    // and a toggle must find communication as the user saw it.
    if (IsBreakWished())
        return;
    VIR2_StopPeriodicASC();
    autoOffMessage = AUTO_OFF + why;
    ShowMessage(autoOffMessage);
}

void VIR2_SetStation(int station)
{
    STATION = station;
}

void VR_Reopen()
{
    if (isTimer == 0)
        return;
    // No tick may find the link closed: it would count as a failed read. A link that could not
    // be opened has switched the timer off for good.
    SuspendTimerCallbacks();
    UCM_Close();
    if (OpenLink() >= 0)
        ResumeTimerCallbacks();
    COM_TellState();
}

void VR_ComRequest()
{
    if (isTimer == 0 && ConfirmPopup("Message", "Enable communication?") != 0)
        VIR2_StartPeriodicASC();
}

bool VR_EnsureCom()
{
    VR_ComRequest();
    return isTimer != 0;
}

std::string COM_WaitingText(int station)
{
    return "waiting for station " + std::to_string(station);
}
