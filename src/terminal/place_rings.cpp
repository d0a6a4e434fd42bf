// Filled once: a ring that is opened again keeps what the user has chosen.
#include "terminal/window_parts.h"

#include "runtime/userint.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "terminal/code_pages.h"

namespace {

bool IsFilled(int panel, int control)
{
    int count = 0;
    GetNumListItems(panel, control, &count);
    return count > 0;
}

} // namespace

bool TRM_IsShown(int panel)
{
    int isVisible = 0;
    GetPanelAttribute(panel, ATTR_VISIBLE, &isVisible);
    return isVisible != 0;
}

void TRM_FillStations(int panel, int control)
{
    if (IsFilled(panel, control))
        return;
    InsertListItem(panel, control, -1, "of the program", -1);
    for (int i = 0; i <= STATION_MAX; ++i)
        InsertListItem(panel, control, -1, std::to_string(i), i);
    SetCtrlVal(panel, control, -1);
}

int TRM_GetStation(int panel, int control)
{
    int station = -1;
    GetCtrlVal(panel, control, &station);
    // Asked each time: the program's station may change while the window is open.
    return station < 0 ? STATION : station;
}

void TRM_FillPages(int panel, int control, const char *first, int chosen)
{
    if (IsFilled(panel, control))
        return;
    if (first != nullptr)
        InsertListItem(panel, control, -1, first, -1);
    for (int i = 0; i < TRM_PAGE_COUNT; ++i)
        InsertListItem(panel, control, -1, TRM_PageName(i), i);
    SetCtrlVal(panel, control, chosen);
}
