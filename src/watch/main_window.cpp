// Until a host is set, as in tests of a single room, what asks for the window asks nobody.
#include "watch/main_window.h"

#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/words.h"
#include "ui/resource.h"

namespace {

constexpr int PLAIN = 0x000000, QUIET = 0x808080; // 0xRRGGBB

MWN_Host host = {};
MWN_Topic shownTopic = MWN_NEWS;
bool isOutdated = false;

void ShowText(const std::string &text, bool isQuiet)
{
    isOutdated = isQuiet;
    SetCtrlVal(mainPanel, MAIN_MESSAGE, text);
    SetCtrlAttribute(mainPanel, MAIN_MESSAGE, ATTR_TEXT_COLOR, isQuiet ? QUIET : PLAIN);
}

} // namespace

void MWN_SetHost(const MWN_Host &newHost)
{
    host = newHost;
}

void SetMainPanelAttributes()
{
    if (host.showSettings != nullptr)
        host.showSettings();
}

void VR_EnableControls()
{
    if (host.enableControls != nullptr)
        host.enableControls();
}

void MWN_ShowView(int item)
{
    if (host.showView != nullptr)
        host.showView(item);
}

void SetMainPanelTitle()
{
    const std::string name = WRD_Visible(szDebugFileName); // a star: unsaved changes
    const std::string title = IsDBGChange == 0 ? "Vireo2  " + name : "Vireo2 * " + name + " ";
    SetPanelAttribute(mainPanel, ATTR_TITLE, title);
}

void VR_ShowMessage(const std::string &text, MWN_Topic topic)
{
    shownTopic = topic;
    ShowText(WRD_VisibleLines(text), false);
}

void MWN_Outdate(MWN_Topic changed)
{
    if (shownTopic != MWN_NEWS && shownTopic != changed)
        return;
    // Grey at the first change, gone at the second.
    std::string shown;
    GetCtrlVal(mainPanel, MAIN_MESSAGE, &shown);
    ShowText(isOutdated ? "" : shown, !isOutdated && !shown.empty());
}

int MWN_CloseCB(int panel, int event, int data)
{
    if (event != EVENT_CLOSE && !(event == EVENT_KEYPRESS && data == KEY_ESC))
        return 0;
    HidePanel(panel);
    return 1;
}
