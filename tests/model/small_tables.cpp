#include "model/small_tables.h"

#include "runtime/view.h"
#include "ui/ui_table.h"

Program program;

namespace {

int OnControl(int, int control, int event, int data)
{
    return program.onControl ? program.onControl(control, event, data) : 0;
}

int OnTick(int, int timer, int, int)
{
    if (program.onTick)
        program.onTick(timer);
    return 0;
}

void OnItem(int, int item)
{
    if (program.onItem)
        program.onItem(item);
}

} // namespace

constexpr UI_Panel PANELS[] = {{WINDOW, "window", "Window", nullptr}};
const UI_Panel *const UI_aPanels = PANELS;
const int UI_cnPanels = 1;
constexpr UI_Control CONTROLS[] = {
    {WINDOW, FIELD, UIK_STRING, "field", OnControl},
    {WINDOW, LIST, UIK_LIST, "list", OnControl},
    {WINDOW, BOX, UIK_TEXTBOX, "box", nullptr},
    {WINDOW, SWITCH, UIK_SWITCH, "sw", OnControl},
    {WINDOW, BUTTON, UIK_BUTTON, "button", OnControl},
    {WINDOW, TIMER, UIK_TIMER, "timer", OnTick},
    {WINDOW, COUNT, UIK_NUMBER, "count", OnControl},
    {WINDOW, OTHER_TIMER, UIK_TIMER, "other", OnTick},
};
const UI_Control *const UI_aControls = CONTROLS;
const int UI_cnControls = sizeof CONTROLS / sizeof CONTROLS[0];
const UI_Menu UI_aMenus[] = {{MENU, 0, "Menu"}};
const int UI_cnMenus = 1;
const UI_MenuItem UI_aMenuItems[] = {{MENU, ITEM_STOP, "Stop", 0, OnItem},
                                     {MENU, ITEM_END, "End", 0, OnItem}};
const int UI_cnMenuItems = 2;
const int UI_nMenuPanel = WINDOW;
const UI_RingEntry UI_aRingEntries[] = {{0, 0, "", 0}};
const int UI_cnRingEntries = 0;
const UI_Number UI_aNumbers[] = {{WINDOW, COUNT, 1, 100, 5}};
const int UI_cnNumbers = 1;
const UI_KeyRow *const UI_aKeys = nullptr;
const int UI_cnKeys = 0;
const UI_Urgent UI_aUrgent[] = {{WINDOW, SWITCH, 0, 0}, {WINDOW, 0, ITEM_STOP, -1}};
const int UI_cnUrgent = 2;
const int UI_nPrintPanel = WINDOW;
const int UI_nPrintControl = BOX;

const UI_KeyRow *UI_FindKey(int, int, int)
{
    return nullptr;
}

void VIEW_Wake()
{
    if (program.onWake)
        program.onWake();
}
