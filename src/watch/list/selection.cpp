#include "watch/list/selection.h"

#include "runtime/userint.h"
#include "settings/settings.h"
#include "watch/list/list_view.h"

namespace {

std::vector<WSL_Listener> listeners;
std::vector<EDT_Reference> toldLines;

bool IsSame(const std::vector<EDT_Reference> &one, const std::vector<EDT_Reference> &other)
{
    if (one.size() != other.size())
        return false;
    for (size_t i = 0; i < one.size(); ++i)
        if (one[i].index != other[i].index || one[i].label != other[i].label)
            return false;
    return true;
}

} // namespace

std::vector<EDT_Reference> WSL_GetSelection()
{
    std::vector<EDT_Reference> lines;
    if (!VR_isWatchView)
        return lines;
    for (const int line : LSV_SelectedLines())
        lines.push_back(EDT_Refer(line));
    return lines;
}

int WSL_AddListener(const WSL_Listener &listener)
{
    for (const WSL_Listener &known : listeners)
        if (known.changed == listener.changed && known.menuItem == listener.menuItem)
            return 0;
    if (listeners.size() >= WSL_LISTENERS_MAX)
        return -1;
    listeners.push_back(listener);
    return 0;
}

void WSL_Refresh()
{
    const std::vector<EDT_Reference> lines = WSL_GetSelection();
    const int menuBar = GetPanelMenuBar(mainPanel);
    for (const WSL_Listener &listener : listeners)
        if (listener.menuItem != 0)
            SetMenuBarAttribute(menuBar, listener.menuItem, ATTR_DIMMED, lines.empty());
    if (IsSame(lines, toldLines))
        return;
    toldLines = lines;
    for (const WSL_Listener &listener : listeners)
        if (listener.changed != nullptr)
            listener.changed(lines);
}
