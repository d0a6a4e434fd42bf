// Who holds the link: nASC_Opened counts the lines that run inside each other (a script
// started by a line adds its own lines), nScripts the scripts, isTimer is the user.
#include "console/monitor/link.h"

#include <cstdlib>
#include <string>

#include "comm/communication.h"
#include "comm/ucm.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "diagnostics/statistics_panel.h"
#include "diagnostics/trace_panel.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/words.h"
#include "watch/main_window.h"

int32_t nASC_Opened = 0;

namespace {

constexpr size_t PORT_CHARS_MAX = 5;

int nScripts = 0; // scripts running, one inside the other

// What was wrong with which device; "" when nothing is known beyond the number.
std::string WhyNotOpen()
{
    const std::string cause = UCM_LastErrorText();
    return cause.empty() ? "" : UCM_PortName(ncom) + ": " + cause;
}

void ReportPort()
{
    CON_Print("Error opening serial port: COM%i.\n", ncom);
    if (!WhyNotOpen().empty())
        PrintMonStr(WhyNotOpen());
}

// True when the user gave another port to try; it may be the same number again.
bool AskForPort()
{
    std::string text = std::to_string(ncom);
    const std::string message =
        TXT_Format("Error opening serial port: COM%i.\nEnter alternative COM number, please.",
                   ncom) +
        (WhyNotOpen().empty() ? "" : "\n" + WhyNotOpen());
    if (GenericMessagePopup("Error", message, {"Retry", "Cancel"}, &text, PORT_CHARS_MAX) != 1)
        return false;
    const int port = std::atoi(text.c_str());
    if (port > 0) {
        ncom = port;
        SetMainPanelAttributes();
    }
    return true;
}

// Somebody wants the link beyond the present line.
bool IsLinkKept()
{
    return isTimer != 0 || nScripts > 0;
}

// The diagnostics' own timers do not run while communication is off.
void ShowDiagnostics()
{
    DIA_RefreshStatistics();
    DIA_RefreshTrace();
}

} // namespace

int CON_HoldLink(CON_LinkQuestion question)
{
    // A link nobody keeps is opened for each line anew: the settings may have changed.
    const bool isReady = (nASC_Opened > 0 || IsLinkKept()) && UCM_IsOpened();
    if (!isReady) {
        while (VR_OpenLink() < 0) {
            if (question == LINK_ASK_FOR_PORT && AskForPort())
                continue;
            ReportPort();
            return -1;
        }
    }
    nASC_Opened++;
    return 0;
}

// The count is 0 already when an inner line could not open the link again.
void CON_ReleaseLink()
{
    if (nASC_Opened > 0)
        nASC_Opened--;
    if (nASC_Opened == 0) {
        if (!IsLinkKept()) {
            UCM_Close();
            ShowDiagnostics();
        }
        return;
    }
    if (!UCM_IsOpened() && VR_OpenLink() < 0) {
        ReportPort();
        nASC_Opened = 0;
    }
}

void CON_BeginScript()
{
    nScripts++;
}

void CON_EndScript()
{
    nScripts--;
    // A script that was begun at the prompt leaves the link to the line that began it.
    if (nASC_Opened == 0 && !IsLinkKept())
        UCM_Close();
    ShowDiagnostics();
}

void CON_DropLink()
{
    // Periodic reading goes on with the new settings; switching it off closes the link.
    if (isTimer) {
        VIR2_StopPeriodicASC();
        VIR2_StartPeriodicASC();
        return;
    }
    UCM_Close();
}
