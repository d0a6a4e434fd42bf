// The console's control events; the system calls the handler on a thread of its own.
#include "platform/system.h"

#include <atomic>
#include <windows.h>

namespace {

constexpr DWORD END_WAIT_MS = 4000; // the system ends the process when the handler returns

void (*listener)(bool isInterrupt) = nullptr;
std::atomic<bool> isAsked{false};

BOOL WINAPI OnControl(DWORD event)
{
    const bool isInterrupt = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
    if (isAsked.exchange(true))
        return FALSE; // was not heard: end at once
    listener(isInterrupt);
    if (!isInterrupt)
        Sleep(END_WAIT_MS);
    return TRUE;
}

} // namespace

int PLT_WatchSignals(void (*notify)(bool isInterrupt))
{
    listener = notify;
    return SetConsoleCtrlHandler(OnControl, TRUE) ? 0 : -1;
}

void PLT_SignalHeard()
{
    isAsked = false;
}
