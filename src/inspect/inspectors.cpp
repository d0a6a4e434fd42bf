#include "inspect/inspectors.h"

#include <algorithm>

#include "runtime/userint.h"
#include "watch/main_window.h"

INS_Inspector *Inspectors[INSPECTORS_MAX];
int INS_anPanels[INSPECTORS_MAX] = {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1};

namespace {

const char ALL_OPEN[] = "Ten inspectors are open. Close the window of one first.";

constexpr int LINES_WITHOUT_VIEW = 60; // read where no view has said how many it shows

void FreeSlot(int slot)
{
    delete Inspectors[slot];
    Inspectors[slot] = nullptr;
    INS_anPanels[slot] = -1;
}

INS_Inspector *MakeInspector(int first, int more)
{
    int slot = 0;
    while (slot < INSPECTORS_MAX && Inspectors[slot] != nullptr)
        ++slot;
    if (slot == INSPECTORS_MAX) {
        MessagePopup("Inspectors", ALL_OPEN);
        return nullptr;
    }
    // The first window of the kind that nobody uses; there are as many as inspectors.
    int panel = first;
    for (int i = 0; INS_Find(panel) != nullptr; ++i)
        panel = more + i;
    // Most sessions need one or two, so a window is made when it is needed first.
    int isVisible = 0;
    if (GetPanelAttribute(panel, ATTR_VISIBLE, &isVisible) == UIE_NOT_LOADED) {
        LoadPanel(0, panel);
        SetMainPanelAttributes(); // its place and the widths of its columns of the last run
    }
    Inspectors[slot] = new INS_Inspector;
    Inspectors[slot]->panel = INS_anPanels[slot] = panel;
    return Inspectors[slot];
}

} // namespace

// At the start of a run: nothing is freed, for nothing is owned yet.
void INS_Clear()
{
    for (int slot = 0; slot < INSPECTORS_MAX; ++slot) {
        Inspectors[slot] = nullptr;
        INS_anPanels[slot] = -1;
    }
}

void INS_Free()
{
    for (int slot = 0; slot < INSPECTORS_MAX; ++slot)
        if (Inspectors[slot] != nullptr)
            FreeSlot(slot);
}

INS_Inspector *INS_Open(int first, int more, int control,
                        const std::function<bool(const INS_Inspector &)> &isMeant)
{
    // The same thing twice would be read twice, and an empty window is there to be used.
    INS_Inspector *found = nullptr;
    for (INS_Inspector *inspector : Inspectors)
        if (found == nullptr && inspector != nullptr && isMeant(*inspector))
            found = inspector;
    if (found == nullptr)
        found = MakeInspector(first, more);
    if (found == nullptr)
        return nullptr;
    DisplayPanel(found->panel);
    SetActivePanel(found->panel);
    SetActiveCtrl(found->panel, control);
    return found;
}

INS_Inspector *INS_Find(int panel)
{
    for (INS_Inspector *inspector : Inspectors)
        if (inspector != nullptr && inspector->panel == panel)
            return inspector;
    return nullptr;
}

void INS_GetLinesInView(int panel, int list, int count, int *first, int *end)
{
    int lines = 0;
    *first = 0;
    GetCtrlAttribute(panel, list, ATTR_FIRST_VISIBLE_LINE, first);
    GetCtrlAttribute(panel, list, ATTR_LINES_IN_VIEW, &lines);
    *first = std::max(*first, 0);
    *end = std::min(*first + (lines > 0 ? lines : LINES_WITHOUT_VIEW), count);
}

int INS_PanelCB(int panel, int event, int data)
{
    if (event != EVENT_CLOSE && !(event == EVENT_KEYPRESS && data == KEY_ESC))
        return 0;
    HidePanel(panel); // stays loaded: its number may be used again
    for (int slot = 0; slot < INSPECTORS_MAX; ++slot)
        if (INS_anPanels[slot] == panel)
            FreeSlot(slot);
    return 1;
}
