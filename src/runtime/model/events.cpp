// From the queue of events to the program's callbacks, one at a time and in order.
#include "runtime/model/model.h"

#include "runtime/model/door.h"

namespace {

// What goes with the callback, or MDL_STALE when the line is gone.
int PrepareData(MDL_Control *control, const VIEW_Event &event, int *data)
{
    constexpr int DROP_FACTOR = 65536; // two lines in one number
    const int line = MDL_ResolveLine(*control, event.line);
    const int target = MDL_ResolveLine(*control, event.target);
    switch (event.event) {
    case EVENT_KEYPRESS:
        *data = event.value;
        return 0;
    case EVENT_DROPPED:
        *data = line * DROP_FACTOR + target;
        return line < 0 || target < 0 ? MDL_STALE : 0;
    case EVENT_CELL_EDITED:
        *data = event.column;
        control->edited = event; // for GetEditedCell
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
    // The click may have been made before the user saw the control go dim.
    const bool isReadOnly = !control->state.canType && MDL_CarriesValue(*control, event);
    if (control->state.isDimmed || !control->state.isVisible || isReadOnly) {
        MDL_ShowAgain(control);
        return MDL_DIMMED;
    }
    int data = 0;
    error = MDL_ApplyValue(control, event);
    if (error == 0)
        error = PrepareData(control, event, &data);
    if (error < 0) {
        MDL_ShowAgain(control);
        return error;
    }
    // Later values of this control wait until its callback is through (MDL_CatchUp).
    MDL_State &state = MDL_GetState();
    MDL_Control *const outer = state.handled;
    state.handled = control;
    MDL_BeginCall();
    if (event.event == EVENT_VAL_CHANGED && control->completion) {
        VIEW_Completion offer;
        offer.panel = event.panel;
        offer.control = event.control;
        offer.typed = control->state.text;
        offer.candidates = control->completion(offer.panel, offer.control, offer.typed);
        state.extra.completions.push_back(std::move(offer));
    }
    if (control->row->callback)
        error = control->row->callback(event.panel, event.control, event.event, data);
    state.handled = outer;
    control->edited.event = 0; // the edited cell can be asked for no more
    MDL_EndCall();
    return error;
}

int HandlePanel(const VIEW_Event &event)
{
    int error = 0;
    MDL_Panel *panel = MDL_FindPanel(event.panel, &error);
    if (!panel)
        return error;
    // The view leaves closing to the program: a window nobody watches over just goes.
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

int HandleEvent(const VIEW_Event &event)
{
    MDL_State &state = MDL_GetState();
    if (MDL_ApplyState(event))
        return 0;
    switch (event.kind) {
    case VIEW_EVENT_CONTROL:
        return HandleControl(event);
    case VIEW_EVENT_PANEL:
        return HandlePanel(event);
    case VIEW_EVENT_MENU:
        return HandleMenu(event);
    case VIEW_EVENT_CALL:
        MDL_BeginCall();
        event.call();
        MDL_EndCall();
        return 0;
    case VIEW_EVENT_END:
        state.isEndWished = true; // questions from here on are answered safely
        if (state.endCallback) {
            MDL_BeginCall();
            state.endCallback();
            MDL_EndCall();
        }
        // A callback that forgot to leave must not keep the system waiting.
        if (!state.isQuit)
            QuitUserInterface(state.quitCode);
        return 0;
    default:
        return 0;
    }
}

void FetchEvents(MDL_State *state)
{
    // A newer value may take the place of an event that is in the model already.
    if (MDL_FetchEvents(&state->queue) && !state->isCaught.empty())
        state->isCaught.back() = false;
    state->isCaught.resize(state->queue.size(), false);
}

} // namespace

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
        // Each is looked at once: an older value must not come back over a newer one.
        state.isCaught[i] = true;
        if (!control || event.kind != VIEW_EVENT_CONTROL)
            MDL_ApplyState(event);
        else if (!control->state.isDimmed && control->state.isVisible && control->state.canType)
            MDL_ApplyValue(control, event);
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
    // It puts the value of its moment into the control; later ones are caught again.
    for (size_t i = 0; i < state.queue.size(); i++)
        if (state.queue[i].panel == event.panel && state.queue[i].control == event.control)
            state.isCaught[i] = false;
    // Before the callback: a wish that is being met breaks off nothing any more.
    MDL_EndUrgent(event);
    state.result = HandleEvent(event);
    MDL_CountHandledEvents();
    if (state.depth == 0) // one that was dropped has called nobody who would show it again
        MDL_Flush();
    return true;
}

void MDL_BeginCall()
{
    if (MDL_GetState().depth++ == 0)
        MDL_SetDoorBusy(true);
}

void MDL_EndCall()
{
    if (--MDL_GetState().depth > 0)
        return;
    MDL_SetDoorBusy(false);
    MDL_EndInterrupt(); // it was meant for this callback, not for the next
    MDL_Flush();
}
