#include "watch/list/selection.h"

#include "settings/settings.h"
#include "watch/list/list_view.h"

std::vector<EDT_Reference> WSL_GetSelection()
{
    std::vector<EDT_Reference> lines;
    if (!VR_isWatchView)
        return lines;
    for (const int line : LSV_SelectedLines())
        lines.push_back(EDT_Refer(line));
    return lines;
}
