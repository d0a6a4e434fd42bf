// Until a host is set, as in tests of a single room, what asks for the window asks nobody.
#include "watch/main_window.h"

#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/words.h"
#include "ui/resource.h"

namespace {

constexpr int PLAIN = 0x000000, QUIET = 0x808080; // 0xRRGGBB

WIN_MainHost host = {};
WIN_Topic shownTopic = WIN_TOPIC_NEWS;
bool isOutdated = false;

void ShowText(const std::string &text, bool isQuiet)
{
    isOutdated = isQuiet;
    SetCtrlVal(mainPanel, MAIN_MESSAGE, text);
    SetCtrlAttribute(mainPanel, MAIN_MESSAGE, ATTR_TEXT_COLOR, isQuiet ? QUIET : PLAIN);
}

} // namespace

void WIN_SetMainHost(const WIN_MainHost &newHost)
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

void WIN_ShowMainView(int item)
{
    if (host.showView != nullptr)
        host.showView(item);
}

void SetMainPanelTitle()
{
    const std::string name = TXT_Visible(szDebugFileName); // a star: unsaved changes
    const std::string title = IsDBGChange == 0 ? "Vireo2  " + name : "Vireo2 * " + name + " ";
    SetPanelAttribute(mainPanel, ATTR_TITLE, title);
}

void VR_ShowMessage(const std::string &text, WIN_Topic topic)
{
    shownTopic = topic;
    ShowText(TXT_VisibleLines(text), false);
}

void WIN_Outdate(WIN_Topic changed)
{
    if (shownTopic != WIN_TOPIC_NEWS && shownTopic != changed)
        return;
    // Grey at the first change, gone at the second.
    std::string shown;
    GetCtrlVal(mainPanel, MAIN_MESSAGE, &shown);
    ShowText(isOutdated ? "" : shown, !isOutdated && !shown.empty());
}

int WIN_CloseWindowCB(int panel, int event, int data)
{
    if (event != EVENT_CLOSE && !(event == EVENT_KEYPRESS && data == KEY_ESC))
        return 0;
    HidePanel(panel); // not discarded: it comes back with what stood in it
    return 1;
}
