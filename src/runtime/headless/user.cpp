// What a user does (clicks, types, resizes) and what a user sees.
#include "runtime/headless/headless.h"

#include <algorithm>

#include "runtime/model/model.h"

namespace {

// Posts the event as a window would, and lets the program handle it. What its callback
// answered, or why it was dropped.
int PostAndHandle(const VIEW_Event &event)
{
    MDL_Flush(); // a user acts on what is on the screen
    VIEW_Post(event);
    while (MDL_HandleNext()) {
    }
    return MDL_GetState().result;
}

VIEW_LineRef RefTo(const MDL_Control &list, int index)
{
    const bool isInside = index >= 0 && index < static_cast<int>(list.lines.size());
    return isInside ? VIEW_LineRef{index, list.lines[static_cast<size_t>(index)].id}
                    : VIEW_LineRef();
}

// An event of the control with the value it has now.
VIEW_Event EventOf(const MDL_Control &control, int event)
{
    VIEW_Event made;
    made.event = event;
    made.panel = control.row->panel;
    made.control = control.row->control;
    made.value = control.state.value;
    made.number = control.state.number;
    made.text = control.state.text;
    made.line = RefTo(control, control.current);
    for (const int index : control.selected)
        made.selected.push_back(RefTo(control, index));
    return made;
}

// Makes the event of a control, lets `fill` set what is special, and posts it.
template <class Fill> int Act(int panel, int control, int event, Fill fill)
{
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        VIEW_Event made = EventOf(*c, event);
        const int error = fill(*c, &made);
        return error < 0 ? error : PostAndHandle(made);
    });
}

int PanelEvent(int panel, int event, int value)
{
    return MDL_OnPanel(panel, [&](MDL_Panel *) {
        VIEW_Event made;
        made.kind = VIEW_EVENT_PANEL;
        made.panel = panel;
        made.event = event;
        made.value = value;
        return PostAndHandle(made);
    });
}

// What the widget does by itself with a key that is in no table.
void OwnKeyAction(MDL_Control *c, int key)
{
    const int panel = c->row->panel, control = c->row->control;
    if (c->row->kind == UIK_LIST && (key == KEY_UP || key == KEY_DOWN)) {
        const int last = static_cast<int>(c->lines.size()) - 1;
        const int wanted = c->current + (key == KEY_DOWN ? 1 : -1);
        if (last >= 0 && std::clamp(wanted, 0, last) != c->current)
            HL_SelectLine(panel, control, std::clamp(wanted, 0, last));
    }
    if (key == KEY_ENTER &&
        (c->row->kind == UIK_STRING || c->row->kind == UIK_NUMBER || c->row->kind == UIK_LIST))
        HL_CommitControl(panel, control);
}

int ClickShortcut(int key)
{
    for (const MDL_Item &item : MDL_GetState().items)
        if (item.state.shortcut == key && item.state.item != 0)
            return HL_ClickMenu(item.state.item);
    return 0;
}

int PressInControl(MDL_Control *c, int key)
{
    const int panel = c->row->panel, control = c->row->control;
    if (c->state.isDimmed || !c->state.isVisible)
        return HL_DIMMED;
    VIEW_Event focus;
    focus.kind = VIEW_EVENT_FOCUS;
    focus.panel = panel;
    focus.control = control;
    PostAndHandle(focus);
    const UI_KeyRow *row = UI_FindKey(panel, control, key);
    if (row)
        HL_Event(panel, control, EVENT_KEYPRESS, key);
    if (row && row->isSwallowed)
        return 1;
    OwnKeyAction(c, key);
    return 0;
}

} // namespace

int HL_ClickMenu(int item)
{
    const MDL_Item *found = MDL_FindItem(item);
    if (!found)
        return UIE_NO_ITEM;
    VIEW_Event event;
    event.kind = VIEW_EVENT_MENU;
    event.item = item;
    event.value = found->state.isChecked;
    return PostAndHandle(event);
}

int HL_Event(int panel, int control, int event, int data)
{
    return Act(panel, control, event, [&](const MDL_Control &c, VIEW_Event *made) {
        if (event == EVENT_KEYPRESS)
            made->value = data;
        if (event == EVENT_DROPPED) {
            made->line = RefTo(c, data / 65536);
            made->target = RefTo(c, data % 65536);
        }
        return 0;
    });
}

int HL_CommitControl(int panel, int control)
{
    return HL_Event(panel, control, EVENT_COMMIT, 0);
}

int HL_Toggle(int panel, int control)
{
    return Act(panel, control, EVENT_COMMIT, [](const MDL_Control &c, VIEW_Event *made) -> int {
        made->value = !c.state.value;
        return c.row->kind == UIK_SWITCH ? 0 : UIE_BAD_TYPE;
    });
}

int HL_SetUserVal(int panel, int control, int value)
{
    return Act(panel, control, EVENT_VAL_CHANGED, [&](const MDL_Control &c, VIEW_Event *made) {
        made->value = value;
        made->number = value;
        made->line = RefTo(c, value);
        made->selected.clear();
        const UI_Kind kind = c.row->kind;
        const bool isFitting = kind == UIK_SWITCH || kind == UIK_NUMBER || MDL_HasLines(c);
        return isFitting ? 0 : static_cast<int>(UIE_BAD_TYPE);
    });
}

int HL_SetUserVal(int panel, int control, const std::string &text)
{
    return Act(panel, control, EVENT_VAL_CHANGED, [&](const MDL_Control &c, VIEW_Event *made) {
        made->text = text;
        return c.row->kind == UIK_STRING ? 0 : static_cast<int>(UIE_BAD_TYPE);
    });
}

int HL_SelectLine(int panel, int control, int index)
{
    return HL_SelectLines(panel, control, {index});
}

int HL_SelectLines(int panel, int control, const std::vector<int> &indices)
{
    return Act(panel, control, EVENT_VAL_CHANGED, [&](const MDL_Control &c, VIEW_Event *made) {
        made->selected.clear();
        for (const int index : indices)
            if (RefTo(c, index).index < 0)
                return static_cast<int>(MDL_HasLines(c) ? UIE_BAD_INDEX : UIE_BAD_TYPE);
            else
                made->selected.push_back(RefTo(c, index));
        made->line = indices.empty() ? VIEW_LineRef() : made->selected.front();
        if (c.row->kind == UIK_RING && made->line.index >= 0)
            made->value = c.lines[static_cast<size_t>(made->line.index)].value;
        return 0;
    });
}

int HL_SetGraphView(int panel, int control, const UI_GraphView &view)
{
    return Act(panel, control, EVENT_VAL_CHANGED, [&](const MDL_Control &c, VIEW_Event *made) {
        made->view = std::make_shared<const UI_GraphView>(view);
        return c.row->kind == UIK_GRAPH ? 0 : static_cast<int>(UIE_BAD_TYPE);
    });
}

int HL_EditCell(int panel, int control, int index, int column, const std::string &text)
{
    return Act(panel, control, EVENT_CELL_EDITED, [&](const MDL_Control &c, VIEW_Event *made) {
        made->line = RefTo(c, index);
        made->column = column;
        made->text = text;
        return made->line.index < 0 ? static_cast<int>(UIE_BAD_INDEX) : 0;
    });
}

int HL_Key(int panel, int control, int key)
{
    if (control != 0) {
        const int result = MDL_OnControl(
            panel, control, [&](MDL_Control *c) -> int { return PressInControl(c, key); });
        if (result != 0)
            return result;
    }
    if (const UI_KeyRow *row = UI_FindKey(panel, 0, key)) {
        const int result = PanelEvent(panel, EVENT_KEYPRESS, key);
        return result < 0 || row->isSwallowed ? result : ClickShortcut(key);
    }
    return ClickShortcut(key);
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
    return MDL_OnPanel(panel, [&](MDL_Panel *p) {
        VIEW_Event event;
        event.kind = VIEW_EVENT_PANEL;
        event.event = EVENT_PANEL_SIZE;
        event.panel = panel;
        event.rect = p->state.rect;
        event.rect.height = height;
        event.rect.width = width;
        return PostAndHandle(event);
    });
}

std::vector<std::string> HL_GetLabels(int panel, int control)
{
    int error = 0;
    std::vector<std::string> labels;
    if (const MDL_Control *c = MDL_FindControl(panel, control, &error))
        for (const VIEW_Line &line : c->lines)
            labels.push_back(line.label);
    return labels;
}

std::vector<std::string> HL_GetLines(int panel, int control)
{
    int error = 0;
    const MDL_Control *c = MDL_FindControl(panel, control, &error);
    return c ? std::vector<std::string>(c->box.begin(), c->box.end()) : std::vector<std::string>();
}

std::string HL_GetTip(int panel, int control, int index)
{
    int error = 0;
    const MDL_Control *c = MDL_FindControl(panel, control, &error);
    const bool isInside = c && index >= 0 && index < static_cast<int>(c->lines.size());
    return isInside ? c->lines[static_cast<size_t>(index)].tip : "";
}

std::vector<int> HL_GetMenuItems(int menu)
{
    std::vector<int> items;
    for (const MDL_Item &item : MDL_GetState().items)
        if (item.state.menu == menu && item.state.item != 0)
            items.push_back(item.state.item);
    return items;
}

std::string HL_GetMenuText(int item)
{
    const MDL_Item *found = MDL_FindItem(item);
    return found ? found->state.text : "";
}

int HL_GetShortcut(int item)
{
    const MDL_Item *found = MDL_FindItem(item);
    return found ? found->state.shortcut : UIE_NO_ITEM;
}

std::vector<std::string> HL_Complete(int panel, int control)
{
    int error = 0;
    const MDL_Control *c = MDL_FindControl(panel, control, &error);
    if (!c || !c->completion)
        return {};
    return c->completion(panel, control, c->state.text);
}
