#include "inspect/inspectors.h"

#include "runtime/userint.h"
#include "watch/main_window.h"

INS_Inspector *Inspectors[INSPECTORS_MAX];
int INS_anPanels[INSPECTORS_MAX] = {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1};

namespace {

const char ALL_OPEN[] = "Ten inspectors are open. Close the window of one first.";

bool IsUsed(int panel)
{
    return INS_Find(panel) != nullptr;
}

// The first window of a kind that nobody uses; there are as many as inspectors.
int ChoosePanel(int first, int more)
{
    int panel = first;
    for (int i = 0; IsUsed(panel); ++i)
        panel = more + i;
    return panel;
}

void Free(int slot)
{
    delete Inspectors[slot];
    Inspectors[slot] = nullptr;
    INS_anPanels[slot] = -1;
}

INS_Inspector *Make(int first, int more)
{
    int slot = 0;
    while (slot < INSPECTORS_MAX && Inspectors[slot] != nullptr)
        ++slot;
    if (slot == INSPECTORS_MAX) {
        MessagePopup("Inspectors", ALL_OPEN);
        return nullptr;
    }
    const int panel = ChoosePanel(first, more);
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
            Free(slot);
}

INS_Inspector *INS_Open(int first, int more, int control,
                        const std::function<bool(const INS_Inspector &)> &isMeant)
{
    INS_Inspector *found = nullptr;
    for (INS_Inspector *inspector : Inspectors)
        if (found == nullptr && inspector != nullptr && isMeant(*inspector))
            found = inspector;
    if (found == nullptr)
        found = Make(first, more);
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

int INS_PanelCB(int panel, int event, int data)
{
    if (event != EVENT_CLOSE && !(event == EVENT_KEYPRESS && data == KEY_ESC))
        return 0;
    HidePanel(panel);
    for (int slot = 0; slot < INSPECTORS_MAX; ++slot)
        if (INS_anPanels[slot] == panel)
            Free(slot);
    return 1;
}
