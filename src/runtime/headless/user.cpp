// What a user does (clicks, types, resizes) and what a user sees. Acting goes the way of a
// window's events, through the door; seeing looks straight into the model, because a test wants
// to know what is there now and not what the last batch brought.
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

// Makes an event of the control with the value it has now, lets `fill` set what is special, and
// posts it. Nothing is posted that no window could do.
template <class Fill> int Act(int panel, int control, int event, Fill fill)
{
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        VIEW_Event made = VIEW_MakeEvent(VIEW_EVENT_CONTROL, panel, control, event);
        made.value = c->state.value;
        made.number = c->state.number;
        made.text = c->state.text;
        made.line = RefTo(*c, c->current);
        for (const int index : c->selected)
            made.selected.push_back(RefTo(*c, index));
        const int error = fill(*c, &made);
        return error < 0 ? error : PostAndHandle(made);
    });
}

int PanelEvent(int panel, int event, int value)
{
    return MDL_OnPanel(panel, [&](MDL_Panel *) {
        VIEW_Event made = VIEW_MakeEvent(VIEW_EVENT_PANEL, panel, 0, event);
        made.value = value;
        return PostAndHandle(made);
    });
}

// What the widget does by itself with a key that is in no table. Only what the program hears of.
void OwnKeyAction(MDL_Control *c, int key)
{
    const int panel = c->row->panel, control = c->row->control;
    if (c->row->kind == UIK_LIST && (key == KEY_UP || key == KEY_DOWN)) {
        const int last = static_cast<int>(c->lines.size()) - 1;
        const int wanted = c->current + (key == KEY_DOWN ? 1 : -1);
        if (last >= 0 && std::clamp(wanted, 0, last) != c->current)
            HL_SelectLine(panel, control, std::clamp(wanted, 0, last));
    }
    if (key == KEY_ENTER && MDL_IsKind(*c, {UIK_STRING, UIK_NUMBER, UIK_LIST}))
        HL_CommitControl(panel, control);
}

// Items that have come at run time may have a key too: the model knows them all.
int ClickShortcut(int key)
{
    for (const MDL_Item &item : MDL_GetState().items)
        if (item.state.shortcut == key && item.state.item != 0)
            return HL_ClickMenu(item.state.item);
    return 0;
}

// 1 when the control has swallowed the key, 0 when it goes on to the panel.
int PressInControl(MDL_Control *c, int key)
{
    const int panel = c->row->panel, control = c->row->control;
    // The keyboard cannot get there at all.
    if (c->state.isDimmed || !c->state.isVisible)
        return HL_DIMMED;
    // A window gives a key only to what has the keyboard.
    PostAndHandle(VIEW_MakeEvent(VIEW_EVENT_FOCUS, panel, control));
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
    VIEW_Event event = VIEW_MakeEvent(VIEW_EVENT_MENU);
    event.item = item;
    event.value = found->state.isChecked; // the mark as the user sees it
    return PostAndHandle(event);
}

int HL_Event(int panel, int control, int event, int data)
{
    return Act(panel, control, event, [&](const MDL_Control &c, VIEW_Event *made) -> int {
        if (event == EVENT_KEYPRESS)
            made->value = data;
        if (event == EVENT_DROPPED) { // two lines in one number, as the callback gets them
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
    return Act(
        panel, control, EVENT_VAL_CHANGED, [&](const MDL_Control &c, VIEW_Event *made) -> int {
            // Whichever of them the kind of control looks at.
            made->value = value;
            made->number = value;
            made->line = RefTo(c, value);
            made->selected.clear();
            const bool isFitting = MDL_IsKind(c, {UIK_SWITCH, UIK_NUMBER, UIK_LIST, UIK_RING});
            return isFitting ? 0 : UIE_BAD_TYPE;
        });
}

int HL_SetUserVal(int panel, int control, const std::string &text)
{
    return Act(panel, control, EVENT_VAL_CHANGED,
               [&](const MDL_Control &c, VIEW_Event *made) -> int {
                   made->text = text;
                   return c.row->kind == UIK_STRING ? 0 : UIE_BAD_TYPE;
               });
}

int HL_SelectLine(int panel, int control, int index)
{
    return HL_SelectLines(panel, control, {index});
}

int HL_SelectLines(int panel, int control, const std::vector<int> &indices)
{
    return Act(
        panel, control, EVENT_VAL_CHANGED, [&](const MDL_Control &c, VIEW_Event *made) -> int {
            made->selected.clear();
            for (const int index : indices) {
                if (RefTo(c, index).index < 0)
                    return MDL_HasLines(c) ? UIE_BAD_INDEX : UIE_BAD_TYPE;
                made->selected.push_back(RefTo(c, index));
            }
            // The first has the keyboard; no line at all takes the selection away.
            made->line = indices.empty() ? VIEW_LineRef() : made->selected.front();
            if (c.row->kind == UIK_RING && made->line.index >= 0) // a ring tells the entry's value
                made->value = c.lines[static_cast<size_t>(made->line.index)].value;
            return 0;
        });
}

int HL_SetGraphView(int panel, int control, const UI_GraphView &view)
{
    return Act(panel, control, EVENT_VAL_CHANGED,
               [&](const MDL_Control &c, VIEW_Event *made) -> int {
                   // As dragging and zooming would leave it; whether it is a good one the model
                   // looks.
                   made->view = std::make_shared<const UI_GraphView>(view);
                   return c.row->kind == UIK_GRAPH ? 0 : UIE_BAD_TYPE;
               });
}

int HL_EditCell(int panel, int control, int index, int column, const std::string &text)
{
    return Act(panel, control, EVENT_CELL_EDITED,
               [&](const MDL_Control &c, VIEW_Event *made) -> int {
                   made->line = RefTo(c, index);
                   made->column = column;
                   made->text = text;
                   return made->line.index < 0 ? UIE_BAD_INDEX : 0;
               });
}

int HL_Key(int panel, int control, int key)
{
    if (control != 0) {
        const int result =
            MDL_OnControl(panel, control, [&](MDL_Control *c) { return PressInControl(c, key); });
        if (result != 0)
            return result;
    }
    // The control has left the key: next the panel's row of the key table, then the menu.
    if (const UI_KeyRow *row = UI_FindKey(panel, 0, key)) {
        const int result = PanelEvent(panel, EVENT_KEYPRESS, key);
        return result < 0 || row->isSwallowed ? result : ClickShortcut(key);
    }
    return ClickShortcut(key);
}

// Asked to close, as by its cross: what comes of it the panel's callback says.
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
        VIEW_Event event = VIEW_MakeEvent(VIEW_EVENT_PANEL, panel, 0, EVENT_PANEL_SIZE);
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
    for (const MDL_Item &item : MDL_GetState().items) // separators have no number
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
    return c->completion(panel, control, c->state.text); // as a window would ask while one types
}
