// From an event to the model: the value a control has now, and what the user did to windows.
// Whoever calls has seen to it that the event's turn has come, or looks ahead.
#include "runtime/model/model.h"

#include "runtime/plot_view.h"

namespace {

// Of the selected lines those that are still there; but when the one the user has just turned to
// is gone, the event is about nothing.
int ApplySelection(MDL_Control *list, const VIEW_Event &event)
{
    const int current = MDL_ResolveLine(*list, event.line);
    if (current < 0 && event.line.index >= 0)
        return MDL_STALE;
    std::vector<int> selected;
    for (const VIEW_LineRef &line : event.selected)
        if (MDL_ResolveLine(*list, line) >= 0)
            selected.push_back(MDL_ResolveLine(*list, line));
    if (event.selected.empty() && current >= 0)
        selected.push_back(current);
    std::sort(selected.begin(), selected.end());
    list->isLoose = false; // what was selected before the refill is of no interest any more
    // The view shows it already: no change to be sent back.
    list->current = list->shownCurrent = current;
    list->selected = list->shownSelected = selected;
    return 0;
}

// An entry that the program has taken out meanwhile cannot be chosen.
int ApplyRing(MDL_Control *ring, int value)
{
    for (size_t i = 0; i < ring->lines.size(); i++) {
        if (ring->lines[i].value != value)
            continue;
        ring->state.value = value;
        ring->current = ring->shownCurrent = static_cast<int>(i);
        ring->selected = ring->shownSelected = {ring->current};
        return 0;
    }
    return MDL_STALE;
}

} // namespace

bool MDL_CarriesValue(const MDL_Control &control, const VIEW_Event &event)
{
    if (event.kind != VIEW_EVENT_CONTROL)
        return false;
    const bool isSet = event.event == EVENT_COMMIT || event.event == EVENT_VAL_CHANGED;
    // A double click on a list selects the line it is meant for, a right click as well.
    const bool isClick = event.event == EVENT_LEFT_DOUBLE_CLICK || event.event == EVENT_RIGHT_CLICK;
    if (control.row->kind == UIK_LIST)
        return isSet || isClick;
    return isSet && MDL_IsKind(control, {UIK_SWITCH, UIK_RING, UIK_STRING, UIK_NUMBER, UIK_GRAPH});
}

int MDL_ResolveLine(const MDL_Control &list, const VIEW_LineRef &line)
{
    const int count = static_cast<int>(list.lines.size());
    // Nearly always the line is where it was. A list refilled with the same keeps its numbers.
    if (line.index >= 0 && line.index < count &&
        list.lines[static_cast<size_t>(line.index)].id == line.id)
        return line.index;
    for (int i = 0; i < count && line.index >= 0; i++)
        if (list.lines[static_cast<size_t>(i)].id == line.id)
            return i;
    return -1;
}

void MDL_ShowAgain(MDL_Control *control)
{
    if (control->row->kind == UIK_GRAPH)
        control->graphMask |= VIEW_GRAPH_VIEW;
    else if (MDL_HasLines(*control))
        control->listMask |= VIEW_LIST_SELECTION;
    else
        control->state.mask |= VIEW_CTRL_VALUE;
}

int MDL_ApplyValue(MDL_Control *control, const VIEW_Event &event)
{
    if (!MDL_CarriesValue(*control, event))
        return 0;
    // The user has not seen what the program has set since. The counters wrap: what counts is
    // which of the two is ahead.
    if (static_cast<int32_t>(control->stamp - event.seen) > 0)
        return MDL_STALE;
    switch (control->row->kind) {
    case UIK_LIST:
        return ApplySelection(control, event);
    case UIK_RING:
        return ApplyRing(control, event.value);
    case UIK_STRING:
        control->state.text = event.text;
        return 0;
    case UIK_NUMBER:
        control->state.number = control->min < control->max
                                    ? std::clamp(event.number, control->min, control->max)
                                    : event.number;
        return 0;
    case UIK_GRAPH:
        if (!event.view || !PLOT_IsGoodSample(*event.view))
            return MDL_STALE;
        control->graph = *event.view;
        PLOT_SettleView(control->plots, &control->graph); // curves may have grown since
        return 0;
    default:
        control->state.value = event.value != 0;
        return 0;
    }
}

bool MDL_ApplyState(const VIEW_Event &event)
{
    int error = 0;
    MDL_Panel *panel = MDL_FindPanel(event.panel, &error);
    MDL_Control *control = panel ? MDL_FindControl(event.panel, event.control, &error) : nullptr;
    switch (event.kind) {
    case VIEW_EVENT_FOCUS:
        if (panel && (control || event.control == 0))
            MDL_SetFocus(event.panel, event.control);
        return true;
    case VIEW_EVENT_SCROLLED:
        if (control) {
            control->firstVisible = std::max(0, event.value);
            control->linesInView = std::max(0, event.extra);
        }
        return true;
    case VIEW_EVENT_COLUMNS:
        for (size_t i = 0; control && i < event.widths.size() && i < control->columns.size(); i++)
            control->columns[i].width = event.widths[i];
        return true;
    case VIEW_EVENT_LAYOUT:
        MDL_KeepLayout({event.text, event.widths});
        return true;
    case VIEW_EVENT_ANSWER: // to a question that is closed
        return true;
    case VIEW_EVENT_PLACED:
    case VIEW_EVENT_PANEL: {
        const bool isPlace = event.kind == VIEW_EVENT_PLACED;
        if (panel && (isPlace || event.event == EVENT_PANEL_SIZE)) {
            panel->state.rect = event.rect;
            panel->isPlaced = true;
        }
        return isPlace;
    }
    default:
        return false;
    }
}
