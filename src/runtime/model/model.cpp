// The records, made from the tables of ui/ at the first call and again at each reset. They are
// looked up by walking them: there are some forty panels, and a pointer into the vectors stays
// good because no record comes or goes later.
#include "runtime/model/model.h"

#include "runtime/model/door.h"

namespace {

// Entries and numbers that stand in the tables rather than being set by the program.
void FillFromTables(MDL_Control *control)
{
    const auto isOurs = [&](int panel, int number) {
        return panel == control->row->panel && number == control->row->control;
    };
    for (int i = 0; i < UI_cnRingEntries; i++) {
        const UI_RingEntry &row = UI_aRingEntries[i];
        if (!isOurs(row.panel, row.control))
            continue;
        VIEW_Line line;
        line.id = static_cast<uint32_t>(i) + 1; // 0 is no line
        line.label = row.label;
        line.value = row.value;
        control->lines.push_back(line);
    }
    // A ring always shows one of its entries.
    if (!control->lines.empty()) {
        control->current = 0;
        control->state.value = control->lines[0].value;
        control->listMask = VIEW_LIST_LINES | VIEW_LIST_SELECTION;
    }
    for (int i = 0; i < UI_cnNumbers; i++) {
        const UI_Number &row = UI_aNumbers[i];
        if (!isOurs(row.panel, row.control))
            continue;
        control->min = row.min;
        control->max = row.max;
        control->state.number = row.value;
        control->state.mask = VIEW_CTRL_VALUE;
    }
}

MDL_Panel MakePanel(const UI_Panel &row)
{
    // The main window's; the Designer files have the sizes of the others, and the view reports
    // what came of them.
    constexpr VIEW_Rect START_SIZE = {0, 0, 780, 491};
    MDL_Panel panel;
    panel.row = &row;
    panel.state.panel = row.panel;
    panel.state.title = row.title;
    panel.state.rect = START_SIZE;
    panel.state.isSizable = true;
    for (int i = 0; i < UI_cnControls; i++) {
        if (UI_aControls[i].panel != row.panel)
            continue;
        MDL_Control control;
        control.row = &UI_aControls[i];
        control.state.panel = row.panel;
        control.state.control = control.row->control;
        FillFromTables(&control);
        panel.controls.push_back(std::move(control));
    }
    return panel;
}

MDL_State MakeState()
{
    MDL_State state;
    for (int i = 0; i < UI_cnPanels; i++)
        state.panels.push_back(MakePanel(UI_aPanels[i]));
    for (int i = 0; i < UI_cnMenuItems; i++) {
        const UI_MenuItem &row = UI_aMenuItems[i];
        MDL_Item item;
        item.state.menu = row.menu;
        item.state.item = row.item;
        item.state.text = row.text;
        item.state.shortcut = row.shortcut;
        item.callback = row.callback;
        state.items.push_back(item);
    }
    state.lineId = static_cast<uint32_t>(UI_cnRingEntries); // those numbers are given away
    return state;
}

} // namespace

MDL_State &MDL_GetState()
{
    static MDL_State state = MakeState();
    return state;
}

void MDL_Reset()
{
    MDL_ResetDoor();
    MDL_GetState() = MakeState();
}

MDL_Panel *MDL_FindPanel(int panel, int *error)
{
    for (MDL_Panel &candidate : MDL_GetState().panels) {
        if (candidate.row->panel != panel)
            continue;
        // Nobody must fill a window in that was never loaded and will never be shown.
        *error = candidate.isLoaded ? 0 : UIE_NOT_LOADED;
        return candidate.isLoaded ? &candidate : nullptr;
    }
    *error = UIE_NO_PANEL;
    return nullptr;
}

MDL_Control *MDL_FindControl(int panel, int control, int *error)
{
    MDL_Panel *owner = MDL_FindPanel(panel, error);
    if (!owner)
        return nullptr;
    for (MDL_Control &candidate : owner->controls)
        if (candidate.row->control == control)
            return &candidate;
    *error = UIE_NO_CONTROL;
    return nullptr;
}

MDL_Item *MDL_FindItem(int item)
{
    for (MDL_Item &candidate : MDL_GetState().items) // 0 is every separator's
        if (item != 0 && candidate.state.item == item)
            return &candidate;
    return nullptr;
}

int *MDL_FindEdge(VIEW_Rect *rect, int attribute)
{
    switch (attribute) {
    case ATTR_LEFT:
        return &rect->left;
    case ATTR_TOP:
        return &rect->top;
    case ATTR_WIDTH:
        return &rect->width;
    case ATTR_HEIGHT:
        return &rect->height;
    default:
        return nullptr;
    }
}

// A panel inside another shares its window, and a window has one place for the keyboard.
void MDL_SetFocus(int panel, int control)
{
    int error = 0;
    MDL_Panel *owner = MDL_FindPanel(panel, &error);
    const auto windowOf = [](const MDL_Panel &p) {
        return p.state.parent != 0 ? p.state.parent : p.row->panel;
    };
    for (MDL_Panel &other : MDL_GetState().panels)
        if (windowOf(other) == windowOf(*owner))
            other.state.focus = 0;
    owner->state.focus = control;
}
