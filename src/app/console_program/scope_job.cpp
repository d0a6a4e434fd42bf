// One recording of the target's scope for other programs: init, set up, run, wait, upload,
// write. Progress goes to standard error, the recording to a file or standard output.
#include <cstdio>

#include "app/console_program/sessions.h"
#include "comm/communication.h"
#include "comm/ucm.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "scope/capture.h"
#include "scope/session.h"
#include "settings/settings.h"

namespace {

constexpr unsigned LOOK_PERIOD_MS = 50; // at the control word while the scope waits

void ShowStatus(const std::string &text)
{
    std::fprintf(stderr, "%s\n", text.c_str());
}

// Progress is not shown; asked about it, the view says whether somebody has interrupted.
const SCP_View VIEW = {ShowStatus, nullptr, [](uint32_t, uint32_t) { return IsBreakWished(); }};

// The reason of a step that failed on the line; a step says itself what it was about.
int FailStep()
{
    const std::string reason = UCM_LastErrorText();
    if (!reason.empty())
        ShowStatus(reason);
    return 1;
}

// Until the recording is complete. False when the time is over, the target falls silent
// or somebody has interrupted.
bool WaitForTrigger(double seconds)
{
    const uint32_t start = PLT_TickMs();
    for (;;) {
        // Looked at before the clock: a trigger that came in the last moment counts.
        const SCP_State state = SCP_GetState();
        if (state == SCP_COMPLETE)
            return true;
        const bool isOver = PLT_TickMs() - start >= seconds * 1000;
        if (state == SCP_UNKNOWN || isOver || IsBreakWished()) {
            ShowStatus(state == SCP_UNKNOWN ? "Error (run)."
                       : isOver             ? SCP_NO_TRIGGER
                                            : "Interrupted.");
            return false;
        }
        PLT_SleepMs(LOOK_PERIOD_MS);
    }
}

int Record(SCP_Setup *setup)
{
    if (SCP_Init(setup, VIEW) < 0 || SCP_SetAll(*setup, VIEW) < 0)
        return FailStep();
    if ((CPG_options.isSnap ? SCP_Snap(VIEW) : SCP_Run(VIEW)) < 0)
        return FailStep();
    if (!WaitForTrigger(CPG_options.scopeWait))
        return 1;
    if (SCP_Upload(VIEW) < 0)
        return FailStep();
    const SCP_Capture capture = SCP_MakeCapture(SCP_GetRunSetup());
    if (capture.traces.empty()) {
        ShowStatus(SCP_NO_CHANNEL);
        return 1;
    }
    if (SCP_SaveCapture(CPG_options.csvFile, capture) == 0)
        return 0;
    return CPG_FailWrite(CPG_options.csvFile);
}

} // namespace

int CPG_RunScope()
{
    SCP_Setup setup;
    std::vector<std::string> problems;
    if (SCP_LoadSetup(CPG_options.scopeFile, &setup, &problems) != 0)
        return CPG_FailOpen(CPG_options.scopeFile);
    for (const std::string &problem : problems)
        std::fprintf(stderr, "%s: %s\n", CPG_options.scopeFile.c_str(), problem.c_str());
    if (!problems.empty())
        return 1;
    VIR2_StartPeriodicASC();
    if (isTimer == 0)
        return 1;
    const int result = Record(&setup);
    VIR2_StopPeriodicASC();
    return result;
}
