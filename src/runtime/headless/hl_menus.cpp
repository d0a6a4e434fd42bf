// The menu bar: attributes of items, and items that come and go at run time.
#include "runtime/headless/hl_state.h"

namespace {

// The bar is addressed by its panel's number.
HL_MenuItem *FindInBar(int menuBar, int item, int *error)
{
    if (menuBar != UI_nMenuPanel) {
        *error = UIE_NO_PANEL;
        return nullptr;
    }
    HL_MenuItem *found = HL_FindItem(item);
    *error = found ? 0 : UIE_NO_ITEM;
    return found;
}

int *ItemField(HL_MenuItem *item, int attribute)
{
    if (attribute == ATTR_DIMMED)
        return &item->isDimmed;
    return attribute == ATTR_CHECKED ? &item->isChecked : nullptr;
}

} // namespace

int GetPanelMenuBar(int panel)
{
    int error = 0;
    if (!HL_FindPanel(panel, &error))
        return error;
    return panel == UI_nMenuPanel ? panel : UIE_NO_ITEM;
}

int SetMenuBarAttribute(int menuBar, int item, int attribute, int value)
{
    int error = 0;
    HL_MenuItem *found = FindInBar(menuBar, item, &error);
    if (!found)
        return error;
    int *field = ItemField(found, attribute);
    if (!field)
        return UIE_BAD_ATTRIBUTE;
    *field = value != 0;
    return 0;
}

int GetMenuBarAttribute(int menuBar, int item, int attribute, int *value)
{
    int error = 0;
    HL_MenuItem *found = FindInBar(menuBar, item, &error);
    if (!found)
        return error;
    const int *field = ItemField(found, attribute);
    if (!field)
        return UIE_BAD_ATTRIBUTE;
    *value = *field;
    return 0;
}

int NewMenuItem(int menuBar, int menu, const std::string &text, int beforeItem, int shortcut,
                MenuCallback callback)
{
    int error = 0;
    const HL_MenuItem *before = FindInBar(menuBar, beforeItem, &error);
    if (!before)
        return error;
    if (before->menu != menu)
        return UIE_NO_ITEM;
    HL_State &state = HL_GetState();
    HL_MenuItem item;
    item.menu = menu;
    item.item = state.nextItem++;
    item.text = text;
    item.shortcut = shortcut;
    item.callback = callback;
    state.items.insert(state.items.begin() + (before - state.items.data()), item);
    return item.item;
}

int DiscardMenuItem(int menuBar, int item)
{
    int error = 0;
    const HL_MenuItem *found = FindInBar(menuBar, item, &error);
    if (!found)
        return error;
    HL_State &state = HL_GetState();
    state.items.erase(state.items.begin() + (found - state.items.data()));
    return 0;
}

int RunPopupMenu(int menuBar, int menu)
{
    if (menuBar != UI_nMenuPanel)
        return UIE_NO_PANEL;
    for (int i = 0; i < UI_cnMenus; i++) {
        if (UI_aMenus[i].menu == menu) {
            HL_GetState().popupMenu = menu;
            return 0;
        }
    }
    return UIE_NO_ITEM;
}
