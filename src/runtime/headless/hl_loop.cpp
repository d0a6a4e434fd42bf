// The event loop, timers and the desktop's services.
#include "runtime/headless/hl_state.h"

#include <algorithm>

#include "platform/system.h"

int InitCVIRTE(int *, char **)
{
    HL_GetState();
    return 0;
}

int RunUserInterface()
{
    HL_State &state = HL_GetState();
    int result = 0;
    if (!state.isQuit && state.driver)
        result = state.driver();
    return state.isQuit ? state.quitCode : result;
}

int QuitUserInterface(int code)
{
    HL_GetState().isQuit = true;
    HL_GetState().quitCode = code;
    return 0;
}

int ProcessSystemEvents()
{
    if (HL_GetState().out)
        std::fflush(HL_GetState().out);
    return 0;
}

int SuspendTimerCallbacks()
{
    HL_GetState().isSuspended = true;
    return 0;
}

int ResumeTimerCallbacks()
{
    HL_GetState().isSuspended = false;
    return 0;
}

void HL_SetDriver(int (*driver)())
{
    HL_GetState().driver = driver;
}

bool HL_IsQuit()
{
    return HL_GetState().isQuit;
}

int HL_FireTimer(int panel, int control)
{
    int error = 0;
    const HL_Control *timer = HL_FindControl(panel, control, &error);
    if (!timer)
        return error;
    if (timer->row->kind != UIK_TIMER || !timer->row->callback)
        return UIE_BAD_TYPE;
    if (HL_GetState().isSuspended)
        return 0;
    timer->row->callback(panel, control, EVENT_TIMER_TICK, 0);
    return 1;
}

int HL_WaitTimer(int panel, int control, bool (*isStopped)())
{
    constexpr unsigned SLICE_MS = 20; // how soon a request to stop is noticed
    double seconds = 0;
    const int error = GetCtrlAttribute(panel, control, ATTR_INTERVAL, &seconds);
    if (error < 0)
        return error;
    ProcessSystemEvents();
    const unsigned total = static_cast<unsigned>(std::clamp(seconds, 0.0, 3600.0) * 1000.0);
    for (unsigned done = 0; done < total; done += SLICE_MS) {
        if (isStopped && isStopped())
            return 0;
        PLT_SleepMs(std::min(SLICE_MS, total - done));
    }
    return isStopped && isStopped() ? 0 : HL_FireTimer(panel, control);
}

int LaunchExecutable(const std::string &commandLine)
{
    HL_State &state = HL_GetState();
    state.launched.push_back(commandLine);
    // Silent streams mean a test: it wants to know, not to see an editor.
    return state.err ? PLT_Launch(commandLine) : 0;
}

int ClipboardPutText(const std::string &text)
{
    HL_GetState().clipboard = text;
    return 0;
}

const std::string &HL_GetClipboard()
{
    return HL_GetState().clipboard;
}

const std::vector<std::string> &HL_GetLaunched()
{
    return HL_GetState().launched;
}
