// The menu bar: attributes of items, and items that come and go at run time.
#include "runtime/model/model.h"

namespace {

// What `use` answers for an item; the bar is addressed by its panel's number.
template <class Use> int OnItem(int menuBar, int item, Use use)
{
    if (menuBar != UI_nMenuPanel)
        return UIE_NO_PANEL;
    MDL_Item *found = MDL_FindItem(item);
    return found ? use(found) : UIE_NO_ITEM;
}

} // namespace

int GetPanelMenuBar(int panel)
{
    return MDL_OnPanel(
        panel, [&](MDL_Panel *) -> int { return panel == UI_nMenuPanel ? panel : UIE_NO_ITEM; });
}

int SetMenuBarAttribute(int menuBar, int item, int attribute, int value)
{
    return OnItem(menuBar, item, [&](MDL_Item *found) -> int {
        VIEW_MenuItem &state = found->state;
        if (attribute != ATTR_DIMMED && attribute != ATTR_CHECKED)
            return UIE_BAD_ATTRIBUTE;
        bool *field = attribute == ATTR_DIMMED ? &state.isDimmed : &state.isChecked;
        const bool isFirstCheck = attribute == ATTR_CHECKED && !state.isCheckable;
        if (*field == (value != 0) && !isFirstCheck)
            return 0;
        *field = value != 0;
        state.isCheckable |= attribute == ATTR_CHECKED;
        found->isChanged = true;
        return 0;
    });
}

int GetMenuBarAttribute(int menuBar, int item, int attribute, int *value)
{
    return OnItem(menuBar, item, [&](MDL_Item *found) -> int {
        if (attribute != ATTR_DIMMED && attribute != ATTR_CHECKED)
            return UIE_BAD_ATTRIBUTE;
        *value = attribute == ATTR_DIMMED ? found->state.isDimmed : found->state.isChecked;
        return 0;
    });
}

int NewMenuItem(int menuBar, int menu, const std::string &text, int beforeItem, int shortcut,
                MenuCallback callback)
{
    return OnItem(menuBar, beforeItem, [&](MDL_Item *before) -> int {
        if (before->state.menu != menu)
            return UIE_NO_ITEM;
        MDL_State &state = MDL_GetState();
        MDL_Item item;
        item.state.isNew = true;
        item.state.menu = menu;
        item.state.before = beforeItem;
        item.state.item = state.nextItem++;
        item.state.text = text;
        item.state.shortcut = shortcut;
        item.callback = callback;
        item.isChanged = true;
        state.items.insert(state.items.begin() + (before - state.items.data()), item);
        return item.state.item;
    });
}

int DiscardMenuItem(int menuBar, int item)
{
    return OnItem(menuBar, item, [&](MDL_Item *found) {
        MDL_State &state = MDL_GetState();
        if (!found->state.isNew) { // else the view never heard of it
            state.goneItems.push_back(*found);
            state.goneItems.back().state.isGone = true;
        }
        state.items.erase(state.items.begin() + (found - state.items.data()));
        return 0;
    });
}

int RunPopupMenu(int menuBar, int menu)
{
    if (menuBar != UI_nMenuPanel)
        return UIE_NO_PANEL;
    for (int i = 0; i < UI_cnMenus; i++) {
        if (UI_aMenus[i].menu == menu) {
            MDL_GetState().extra.popupMenu = menu;
            return 0;
        }
    }
    return UIE_NO_ITEM;
}
