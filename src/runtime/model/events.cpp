// Events: from what the user did to the model and to the program's callbacks.
#include "runtime/model/model.h"

#include <algorithm>

#include "runtime/model/door.h"
#include "runtime/plot_view.h"

namespace {

bool IsStale(const MDL_Control &control, const VIEW_Event &event)
{
    // The counters wrap: what counts is which of the two is ahead.
    return static_cast<int32_t>(control.stamp - event.seen) > 0;
}

bool CarriesValue(const MDL_Control &control, const VIEW_Event &event)
{
    if (event.kind != VIEW_EVENT_CONTROL)
        return false;
    switch (control.row->kind) {
    case UIK_SWITCH:
    case UIK_RING:
    case UIK_STRING:
    case UIK_NUMBER:
    case UIK_GRAPH:
        return event.event == EVENT_COMMIT || event.event == EVENT_VAL_CHANGED;
    case UIK_LIST:
        return event.event == EVENT_COMMIT || event.event == EVENT_VAL_CHANGED ||
               event.event == EVENT_LEFT_DOUBLE_CLICK || event.event == EVENT_RIGHT_CLICK;
    default:
        return false;
    }
}

// Where the line of an event stands now: in its place, elsewhere, or nowhere (-1).
int Resolve(const MDL_Control &list, const VIEW_LineRef &line)
{
    const int count = static_cast<int>(list.lines.size());
    if (line.index >= 0 && line.index < count &&
        list.lines[static_cast<size_t>(line.index)].id == line.id)
        return line.index;
    for (int i = 0; i < count && line.index >= 0; i++)
        if (list.lines[static_cast<size_t>(i)].id == line.id)
            return i;
    return -1;
}

// The view shows the program's value again over what the user did.
void ShowAgain(MDL_Control *control)
{
    if (control->row->kind == UIK_GRAPH)
        control->graphMask |= VIEW_GRAPH_VIEW;
    if (MDL_HasLines(*control))
        control->listMask |= VIEW_LIST_SELECTION;
    if (control->row->kind != UIK_LIST && control->row->kind != UIK_RING &&
        control->row->kind != UIK_GRAPH)
        control->state.mask |= VIEW_CTRL_VALUE;
}

int ApplySelection(MDL_Control *list, const VIEW_Event &event)
{
    const int current = Resolve(*list, event.line);
    if (current < 0 && event.line.index >= 0)
        return MDL_STALE;
    std::vector<int> selected;
    for (const VIEW_LineRef &line : event.selected)
        if (Resolve(*list, line) >= 0)
            selected.push_back(Resolve(*list, line));
    if (event.selected.empty() && current >= 0)
        selected.push_back(current);
    std::sort(selected.begin(), selected.end());
    list->isLoose = false;
    list->current = list->shownCurrent = current;
    list->selected = list->shownSelected = selected;
    return 0;
}

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

// --- quiet events: no callback follows --------------------------------------------------------

void ApplyPlace(MDL_Panel *panel, const VIEW_Event &event)
{
    panel->state.rect = event.rect;
    panel->isPlaced = true;
}

void ApplyScroll(MDL_Control *control, const VIEW_Event &event)
{
    control->firstVisible = std::max(0, event.value);
    control->linesInView = std::max(0, event.extra);
}

void ApplyWidths(MDL_Control *list, const VIEW_Event &event)
{
    for (size_t i = 0; i < event.widths.size() && i < list->columns.size(); i++)
        list->columns[i].width = event.widths[i];
}

// True when the event is done with.
bool ApplyQuiet(const VIEW_Event &event)
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
        if (control)
            ApplyScroll(control, event);
        return true;
    case VIEW_EVENT_COLUMNS:
        if (control)
            ApplyWidths(control, event);
        return true;
    case VIEW_EVENT_PLACED:
        if (panel)
            ApplyPlace(panel, event);
        return true;
    case VIEW_EVENT_LAYOUT:
        MDL_KeepLayout({event.text, event.widths});
        return true;
    case VIEW_EVENT_ANSWER: // to a question that is closed
        return true;
    default:
        return false;
    }
}

// --- events with a callback -------------------------------------------------------------------

void OfferCompletions(const MDL_Control &control)
{
    VIEW_Completion offer;
    offer.panel = control.row->panel;
    offer.control = control.row->control;
    offer.typed = control.state.text;
    offer.candidates = control.completion(offer.panel, offer.control, offer.typed);
    MDL_GetState().extra.completions.push_back(std::move(offer));
}

// What goes with the callback, or MDL_STALE when the line is gone.
int PrepareData(MDL_Control *control, const VIEW_Event &event, int *data)
{
    constexpr int DROP_FACTOR = 65536;
    const int line = Resolve(*control, event.line);
    switch (event.event) {
    case EVENT_KEYPRESS:
        *data = event.value;
        return 0;
    case EVENT_DROPPED:
        *data = line * DROP_FACTOR + Resolve(*control, event.target);
        return line < 0 || Resolve(*control, event.target) < 0 ? MDL_STALE : 0;
    case EVENT_CELL_EDITED:
        *data = event.column;
        control->edited = event;
        control->edited.line.index = line;
        return line < 0 ? MDL_STALE : 0;
    default:
        return 0;
    }
}

int HandleControl(const VIEW_Event &event)
{
    int error = 0;
    MDL_Control *control = MDL_FindControl(event.panel, event.control, &error);
    if (!control)
        return error;
    const bool isReadOnly = !control->state.canType && CarriesValue(*control, event);
    if (control->state.isDimmed || !control->state.isVisible || isReadOnly) {
        ShowAgain(control);
        return MDL_DIMMED;
    }
    int data = 0;
    error = MDL_ApplyValue(control, event);
    if (error == 0)
        error = PrepareData(control, event, &data);
    if (error < 0) {
        ShowAgain(control);
        return error;
    }
    MDL_State &state = MDL_GetState();
    MDL_Control *const outer = state.handled;
    state.handled = control;
    MDL_BeginCall();
    if (event.event == EVENT_VAL_CHANGED && control->completion)
        OfferCompletions(*control);
    if (control->row->callback)
        error = control->row->callback(event.panel, event.control, event.event, data);
    state.handled = outer;
    control->edited.event = 0;
    MDL_EndCall();
    return error;
}

int HandlePanel(const VIEW_Event &event)
{
    int error = 0;
    MDL_Panel *panel = MDL_FindPanel(event.panel, &error);
    if (!panel)
        return error;
    if (event.event == EVENT_PANEL_SIZE)
        ApplyPlace(panel, event);
    if (!panel->row->callback)
        return event.event == EVENT_CLOSE ? HidePanel(event.panel) : 0;
    MDL_BeginCall();
    const int data = event.event == EVENT_KEYPRESS ? event.value : 0;
    const int result = panel->row->callback(event.panel, event.event, data);
    MDL_EndCall();
    return result;
}

int HandleMenu(const VIEW_Event &event)
{
    const MDL_Item *item = MDL_FindItem(event.item);
    if (!item || !item->callback)
        return UIE_NO_ITEM;
    if (item->state.isDimmed)
        return MDL_DIMMED;
    // The user chose the other state of a check mark. If the program has come to it by itself
    // meanwhile, toggling would lead away from it.
    if (item->state.isCheckable && event.value != (item->state.isChecked ? 1 : 0))
        return MDL_STALE;
    const MenuCallback callback = item->callback; // it may discard its own item
    MDL_BeginCall();
    callback(UI_nMenuPanel, event.item);
    MDL_EndCall();
    return 0;
}

int HandleEnd()
{
    MDL_State &state = MDL_GetState();
    state.isEndWished = true;
    if (state.endCallback) {
        MDL_BeginCall();
        state.endCallback();
        MDL_EndCall();
    }
    if (!state.isQuit)
        QuitUserInterface(state.quitCode);
    return 0;
}

int HandleCall(const VIEW_Event &event)
{
    MDL_BeginCall();
    event.call();
    MDL_EndCall();
    return 0;
}

int HandleEvent(const VIEW_Event &event)
{
    if (ApplyQuiet(event))
        return 0;
    switch (event.kind) {
    case VIEW_EVENT_CONTROL:
        return HandleControl(event);
    case VIEW_EVENT_PANEL:
        return HandlePanel(event);
    case VIEW_EVENT_MENU:
        return HandleMenu(event);
    case VIEW_EVENT_END:
        return HandleEnd();
    case VIEW_EVENT_CALL:
        return HandleCall(event);
    default:
        return 0;
    }
}

void FetchEvents(MDL_State *state)
{
    // A newer value may take the place of an event that is in the model already.
    if (DOOR_FetchEvents(&state->queue) && !state->isCaught.empty())
        state->isCaught.back() = false;
    state->isCaught.resize(state->queue.size(), false);
}

// An event puts the value of its moment into the control; later ones are caught again.
void ForgetCaught(MDL_State *state, const VIEW_Event &event)
{
    for (size_t i = 0; i < state->queue.size(); i++)
        if (state->queue[i].panel == event.panel && state->queue[i].control == event.control)
            state->isCaught[i] = false;
}

} // namespace

int MDL_ApplyValue(MDL_Control *control, const VIEW_Event &event)
{
    if (!CarriesValue(*control, event))
        return 0;
    if (IsStale(*control, event))
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
        if (!event.view || !PLV_IsGood(*event.view))
            return MDL_STALE;
        control->graph = *event.view;
        PLV_Settle(control->plots, &control->graph);
        return 0;
    default:
        control->state.value = event.value != 0;
        return 0;
    }
}

void MDL_CatchUp()
{
    MDL_State &state = MDL_GetState();
    FetchEvents(&state);
    for (size_t i = 0; i < state.queue.size(); i++) {
        const VIEW_Event &event = state.queue[i];
        if (state.isCaught[i])
            continue;
        int error = 0;
        MDL_Control *control = MDL_FindControl(event.panel, event.control, &error);
        if (control && control == state.handled)
            continue;
        state.isCaught[i] = true;
        if (control && event.kind == VIEW_EVENT_CONTROL) {
            if (!control->state.isDimmed && control->state.isVisible && control->state.canType)
                MDL_ApplyValue(control, event);
        } else if (event.kind == VIEW_EVENT_PANEL && event.event == EVENT_PANEL_SIZE) {
            if (MDL_Panel *panel = MDL_FindPanel(event.panel, &error))
                ApplyPlace(panel, event);
        } else if (event.kind != VIEW_EVENT_ANSWER) {
            ApplyQuiet(event);
        }
    }
}

bool MDL_HandleNext()
{
    MDL_State &state = MDL_GetState();
    FetchEvents(&state);
    if (state.queue.empty())
        return false;
    const VIEW_Event event = std::move(state.queue.front());
    state.queue.pop_front();
    state.isCaught.pop_front();
    ForgetCaught(&state, event);
    DOOR_EndUrgent(event);
    state.result = HandleEvent(event);
    DOOR_CountHandled();
    if (state.depth == 0)
        MDL_Flush();
    return true;
}

void MDL_BeginCall()
{
    if (MDL_GetState().depth++ == 0)
        DOOR_SetBusy(true);
}

void MDL_EndCall()
{
    if (--MDL_GetState().depth > 0)
        return;
    DOOR_SetBusy(false);
    DOOR_EndInterrupt();
    MDL_Flush();
}
