// What a user does (clicks, types, resizes) and what a user sees.
#include "runtime/headless/hl_state.h"

#include <algorithm>

namespace {

HL_Control *FindReachable(int panel, int control, int *error)
{
    HL_Control *c = HL_FindControl(panel, control, error);
    if (c && (c->isDimmed || !c->isVisible)) {
        *error = HL_DIMMED;
        return nullptr;
    }
    return c;
}

int PanelEvent(int panel, int event, int data)
{
    int error = 0;
    const HL_Panel *p = HL_FindPanel(panel, &error);
    if (!p)
        return error;
    return p->row->callback ? p->row->callback(panel, event, data) : 0;
}

// What the widget does by itself with a key its callback left alone.
int OwnKeyAction(HL_Control *c, int key)
{
    const int panel = c->row->panel, control = c->row->control;
    if (c->row->kind == UIK_LIST && (key == KEY_UP || key == KEY_DOWN)) {
        const int last = static_cast<int>(c->lines.size()) - 1;
        c->selected = std::clamp(c->selected + (key == KEY_DOWN ? 1 : -1), std::min(0, last), last);
        return 0;
    }
    if (key == KEY_ENTER && (c->row->kind == UIK_STRING || c->row->kind == UIK_NUMBER ||
                             c->row->kind == UIK_LIST))
        return HL_Event(panel, control, EVENT_COMMIT, 0);
    return 0;
}

int ClickShortcut(int key)
{
    for (const HL_MenuItem &item : HL_GetState().items)
        if (item.shortcut == key && item.item != 0)
            return HL_ClickMenu(item.item);
    return 0;
}

template <typename T> int SetByUser(int panel, int control, const T &value)
{
    int error = 0;
    const HL_Control *c = FindReachable(panel, control, &error);
    if (!c)
        return error;
    if (c->mode == 0)
        return HL_DIMMED;
    error = SetCtrlVal(panel, control, value);
    return error < 0 ? error : HL_Event(panel, control, EVENT_VAL_CHANGED, 0);
}

} // namespace

int HL_ClickMenu(int item)
{
    const HL_MenuItem *found = HL_FindItem(item);
    if (!found || !found->callback)
        return UIE_NO_ITEM;
    if (found->isDimmed)
        return HL_DIMMED;
    found->callback(UI_nMenuPanel, item);
    return 0;
}

int HL_Event(int panel, int control, int event, int data)
{
    int error = 0;
    const HL_Control *c = HL_FindControl(panel, control, &error);
    if (!c)
        return error;
    return c->row->callback ? c->row->callback(panel, control, event, data) : 0;
}

int HL_CommitControl(int panel, int control)
{
    int error = 0;
    if (!FindReachable(panel, control, &error))
        return error;
    return HL_Event(panel, control, EVENT_COMMIT, 0);
}

int HL_Toggle(int panel, int control)
{
    int error = 0;
    HL_Control *c = FindReachable(panel, control, &error);
    if (!c)
        return error;
    if (c->row->kind != UIK_SWITCH)
        return UIE_BAD_TYPE;
    c->value = !c->value;
    return HL_Event(panel, control, EVENT_COMMIT, 0);
}

int HL_SetUserVal(int panel, int control, int value)
{
    return SetByUser(panel, control, value);
}

int HL_SetUserVal(int panel, int control, const std::string &text)
{
    return SetByUser(panel, control, text);
}

int HL_SelectLine(int panel, int control, int index)
{
    int error = 0;
    if (!FindReachable(panel, control, &error))
        return error;
    error = SetCtrlIndex(panel, control, index);
    return error < 0 ? error : HL_Event(panel, control, EVENT_VAL_CHANGED, 0);
}

int HL_Key(int panel, int control, int key)
{
    int error = 0;
    if (control != 0) {
        HL_Control *c = FindReachable(panel, control, &error);
        if (!c)
            return error;
        HL_FindPanel(panel, &error)->focus = control;
        if (HL_Event(panel, control, EVENT_KEYPRESS, key) == 1)
            return 1;
        OwnKeyAction(c, key);
    }
    const int result = PanelEvent(panel, EVENT_KEYPRESS, key);
    return result == 0 ? ClickShortcut(key) : result;
}

int HL_ClosePanel(int panel)
{
    return PanelEvent(panel, EVENT_CLOSE, 0);
}

int HL_ActivatePanel(int panel)
{
    return PanelEvent(panel, EVENT_ACTIVATED, 0);
}

int HL_ResizePanel(int panel, int height, int width)
{
    int error = 0;
    HL_Panel *p = HL_FindPanel(panel, &error);
    if (!p)
        return error;
    p->rect.height = height;
    p->rect.width = width;
    return PanelEvent(panel, EVENT_PANEL_SIZE, 0);
}

std::vector<std::string> HL_GetLabels(int panel, int control)
{
    int error = 0;
    std::vector<std::string> labels;
    if (const HL_Control *c = HL_FindControl(panel, control, &error))
        for (const HL_Line &line : c->lines)
            labels.push_back(line.label);
    return labels;
}

std::vector<std::string> HL_GetLines(int panel, int control)
{
    return HL_GetLabels(panel, control);
}

std::string HL_GetTip(int panel, int control, int index)
{
    int error = 0;
    const HL_Control *c = HL_FindControl(panel, control, &error);
    const bool isInside = c && index >= 0 && index < static_cast<int>(c->lines.size());
    return isInside ? c->lines[static_cast<size_t>(index)].tip : "";
}

std::vector<int> HL_GetMenuItems(int menu)
{
    std::vector<int> items;
    for (const HL_MenuItem &item : HL_GetState().items)
        if (item.menu == menu && item.item != 0)
            items.push_back(item.item);
    return items;
}

std::string HL_GetMenuText(int item)
{
    const HL_MenuItem *found = HL_FindItem(item);
    return found ? found->text : "";
}

int HL_GetShortcut(int item)
{
    const HL_MenuItem *found = HL_FindItem(item);
    return found ? found->shortcut : UIE_NO_ITEM;
}

int HL_GetPopupMenu()
{
    return HL_GetState().popupMenu;
}

std::vector<std::string> HL_Complete(int panel, int control)
{
    int error = 0;
    const HL_Control *c = HL_FindControl(panel, control, &error);
    if (!c || !c->completion)
        return {};
    return c->completion(panel, control, c->text);
}
