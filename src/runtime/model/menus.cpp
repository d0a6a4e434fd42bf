// The menu bar: attributes of items, and items that come and go at run time (the list of recent
// files). There is one bar, the main window's.
#include "runtime/model/model.h"

namespace {

// What `use` answers for an item; the bar is addressed by its panel's number.
template <class Use> int OnItem(int menuBar, int item, Use use)
{
    if (menuBar != UI_nMenuPanel)
        return UIE_NO_PANEL;
    MDL_Item *found = MDL_FindItem(item);
    return found ? MDL_AnswerOf(use, found) : UIE_NO_ITEM;
}

bool *FindFlag(VIEW_MenuItem *item, int attribute)
{
    if (attribute == ATTR_DIMMED)
        return &item->isDimmed;
    return attribute == ATTR_CHECKED ? &item->isChecked : nullptr;
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
        bool *flag = FindFlag(&state, attribute);
        if (!flag)
            return UIE_BAD_ATTRIBUTE;
        // Taking a mark away that was never there still makes the item one that has a mark.
        const bool isFirstCheck = attribute == ATTR_CHECKED && !state.isCheckable;
        if (*flag == (value != 0) && !isFirstCheck)
            return 0;
        *flag = value != 0;
        state.isCheckable |= attribute == ATTR_CHECKED;
        found->isChanged = true;
        return 0;
    });
}

int GetMenuBarAttribute(int menuBar, int item, int attribute, int *value)
{
    return OnItem(menuBar, item, [&](MDL_Item *found) -> int {
        const bool *flag = FindFlag(&found->state, attribute);
        if (!flag)
            return UIE_BAD_ATTRIBUTE;
        *value = *flag;
        return 0;
    });
}

int NewMenuItem(int menuBar, int menu, const std::string &text, int beforeItem, int shortcut,
                MenuCallback callback)
{
    return OnItem(menuBar, beforeItem, [&](MDL_Item *before) -> int {
        if (before->state.menu != menu)
            return UIE_NO_ITEM;
        // Numbers go up and never come again, so a late click cannot mean a newer item.
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
    });
}

int RunPopupMenu(int menuBar, int menu)
{
    if (menuBar != UI_nMenuPanel)
        return UIE_NO_PANEL;
    for (int i = 0; i < UI_cnMenus; i++) {
        if (UI_aMenus[i].menu != menu)
            continue;
        MDL_GetState().extra.popupMenu = menu; // opens when the callback has ended
        return 0;
    }
    return UIE_NO_ITEM;
}
