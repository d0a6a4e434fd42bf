// Start, the event loop and the timers. The loop waits at the door until an event comes or the
// next timer is due; events go first, so that a window stays quick beside a busy timer.
#include "runtime/model/model.h"

#include <algorithm>

#include "platform/system.h"
#include "runtime/model/door.h"

namespace {

constexpr uint64_t WAIT_MAX_US = 60000000; // nothing is due: look again after a minute

uint64_t IntervalUs(const MDL_Control &timer)
{
    return static_cast<uint64_t>(timer.interval * 1e6);
}

template <class Use> void ForEachTimer(Use use)
{
    for (MDL_Panel &panel : MDL_GetState().panels)
        for (MDL_Control &control : panel.controls)
            if (panel.isLoaded && control.row->kind == UIK_TIMER)
                use(&control);
}

int RunLoop()
{
    MDL_State &state = MDL_GetState();
    MDL_Flush();
    while (!state.isQuit) {
        if (MDL_HandleNext())
            continue;
        // The timer that is due first; those that start to count begin now.
        const uint64_t now = PLT_TickUs();
        MDL_Control *first = nullptr;
        const auto look = [&](MDL_Control *timer) {
            if (timer->dueUs == 0)
                timer->dueUs = now + IntervalUs(*timer);
            if (!first || timer->dueUs < first->dueUs)
                first = timer;
        };
        if (!state.isSuspended)
            ForEachTimer(look);
        if (!first || first->dueUs > now) {
            MDL_WaitEvent(first ? std::min(first->dueUs, now + WAIT_MAX_US) : now + WAIT_MAX_US);
            continue;
        }
        // One tick, so that an event that came meanwhile has its turn between two. Ticks that were
        // missed are left out: a callback of a second would be followed by a salvo.
        first->dueUs = std::max(first->dueUs + IntervalUs(*first), now);
        MDL_FireTimer(first);
    }
    return 0;
}

} // namespace

int InitCVIRTE(int *, char **)
{
    MDL_GetState(); // made here, on the program's thread
    return 0;
}

int RunUserInterface()
{
    MDL_State &state = MDL_GetState();
    if (state.isStarting) // the first window comes up here
        MDL_EndCall();
    state.isStarting = false;
    int result = 0;
    if (!state.isQuit)
        result = state.driver ? state.driver() : RunLoop();
    MDL_Flush();
    return state.isQuit ? state.quitCode : result;
}

int QuitUserInterface(int code)
{
    MDL_GetState().isQuit = true;
    MDL_GetState().quitCode = code;
    return 0;
}

int ProcessSystemEvents()
{
    MDL_State &state = MDL_GetState();
    MDL_CatchUp();
    const bool isEnd =
        std::any_of(state.queue.begin(), state.queue.end(),
                    [](const VIEW_Event &event) { return event.kind == VIEW_EVENT_END; });
    // A driver that reads lines never comes back to the loop: the end cannot wait for that.
    while (isEnd && state.depth == 0 && !state.isQuit && MDL_HandleNext()) {
    }
    MDL_Flush();
    return 0;
}

int SuspendTimerCallbacks()
{
    MDL_GetState().isSuspended = true;
    // They begin to count when they are resumed; else all would be due at once.
    ForEachTimer([](MDL_Control *timer) { timer->dueUs = 0; });
    return 0;
}

int ResumeTimerCallbacks()
{
    MDL_GetState().isSuspended = false;
    return 0;
}

int SetBusyText(const std::string &text)
{
    MDL_SetDoorBusyText(text);
    MDL_FlushNowAndThen();
    return 0;
}

// Called before every try of an exchange and between the lines of a script: the one place that
// is sure to come by in a long callback, hence what has changed is shown here.
bool IsBreakWished()
{
    MDL_FlushNowAndThen();
    return MDL_IsBreakPosted();
}

int SetEndCallback(void (*callback)())
{
    MDL_GetState().endCallback = callback;
    return 0;
}

int PostDeferredCall(void (*callback)())
{
    VIEW_Event event = VIEW_MakeEvent(VIEW_EVENT_CALL);
    event.call = callback;
    VIEW_Post(event);
    return 0;
}

int MDL_FireTimer(MDL_Control *timer)
{
    if (timer->row->kind != UIK_TIMER || !timer->row->callback)
        return UIE_BAD_TYPE;
    if (MDL_GetState().isSuspended) // by an event that came in between
        return 0;
    MDL_BeginCall();
    timer->row->callback(timer->row->panel, timer->row->control, EVENT_TIMER_TICK, 0);
    MDL_EndCall();
    return 1;
}

int VIEW_RunProgram(int argc, char **argv, int (*program)(int argc, char **argv))
{
    MDL_State &state = MDL_GetState();
    PLT_WatchSignals(MDL_OnSignal); // before the program opens a port or a file
    // Until the loop runs everything is one callback: the first window comes up whole.
    state.isStarting = true;
    MDL_BeginCall();
    const int code = program(argc, argv);
    // A program that never came to its loop, because of a wrong option for instance.
    if (state.isStarting)
        MDL_EndCall();
    state.isStarting = false;
    state.extra.isEnded = true;
    state.extra.exitCode = code;
    MDL_Flush();
    return code;
}
