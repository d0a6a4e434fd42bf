#include "watch/main_window.h"

#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/words.h"
#include "ui/resource.h"

namespace {

MWN_Host host = {};

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
    const std::string name = WRD_Visible(szDebugFileName);
    const std::string title = IsDBGChange == 0 ? "Vireo2  " + name : "Vireo2 * " + name + " ";
    SetPanelAttribute(mainPanel, ATTR_TITLE, title);
}

void VR_ShowMessage(const std::string &text)
{
    SetCtrlVal(mainPanel, MAIN_MESSAGE, WRD_VisibleLines(text));
}
