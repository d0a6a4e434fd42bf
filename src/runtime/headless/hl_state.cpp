#include "runtime/headless/hl_state.h"

namespace {

HL_Control MakeControl(const UI_Control &row)
{
    HL_Control control;
    control.row = &row;
    if (row.kind == UIK_TIMER)
        control.number = 1.0;
    return control;
}

HL_Panel MakePanel(const UI_Panel &row)
{
    constexpr HL_Rect START_SIZE = {0, 0, 780, 491};
    HL_Panel panel;
    panel.row = &row;
    panel.title = row.title;
    panel.rect = START_SIZE;
    for (int i = 0; i < UI_cnControls; i++)
        if (UI_aControls[i].panel == row.panel)
            panel.controls.push_back(MakeControl(UI_aControls[i]));
    return panel;
}

HL_State MakeState()
{
    HL_State state;
    for (int i = 0; i < UI_cnPanels; i++)
        state.panels.push_back(MakePanel(UI_aPanels[i]));
    for (int i = 0; i < UI_cnMenuItems; i++) {
        const UI_MenuItem &row = UI_aMenuItems[i];
        HL_MenuItem item;
        item.menu = row.menu;
        item.item = row.item;
        item.text = row.text;
        item.shortcut = row.shortcut;
        item.callback = row.callback;
        state.items.push_back(item);
    }
    return state;
}

} // namespace

HL_State &HL_GetState()
{
    static HL_State state = MakeState();
    return state;
}

void HL_Reset()
{
    HL_State fresh = MakeState();
    fresh.out = nullptr;
    fresh.err = nullptr;
    HL_GetState() = std::move(fresh);
}

int HL_LoadAllPanels()
{
    for (int i = 0; i < UI_cnPanels; i++) {
        const int result = LoadPanel(0, UI_aPanels[i].panel);
        if (result < 0)
            return result;
    }
    return 0;
}

void HL_SetStreams(std::FILE *out, std::FILE *err)
{
    HL_GetState().out = out;
    HL_GetState().err = err;
}

HL_Panel *HL_FindPanel(int panel, int *error)
{
    for (HL_Panel &candidate : HL_GetState().panels) {
        if (candidate.row->panel != panel)
            continue;
        *error = candidate.isLoaded ? 0 : UIE_NOT_LOADED;
        return candidate.isLoaded ? &candidate : nullptr;
    }
    *error = UIE_NO_PANEL;
    return nullptr;
}

HL_Control *HL_FindControl(int panel, int control, int *error)
{
    HL_Panel *owner = HL_FindPanel(panel, error);
    if (!owner)
        return nullptr;
    for (HL_Control &candidate : owner->controls)
        if (candidate.row->control == control)
            return &candidate;
    *error = UIE_NO_CONTROL;
    return nullptr;
}

HL_MenuItem *HL_FindItem(int item)
{
    for (HL_MenuItem &candidate : HL_GetState().items)
        if (item != 0 && candidate.item == item)
            return &candidate;
    return nullptr;
}

bool HL_HasLines(const HL_Control &control)
{
    return control.row->kind == UIK_LIST || control.row->kind == UIK_RING;
}
