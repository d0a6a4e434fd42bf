// The steps of a recording: find the scope, arm it, follow it, upload. Nobody waits for the
// trigger: the timer looks at the control word, one exchange a tick.
#include "scope/window.h"

#include "comm/communication.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "scope/window_parts.h"
#include "settings/settings.h"
#include "ui/resource.h"

#include <algorithm>

namespace {

constexpr uint32_t FORCE_AFTER_MS = 500; // Auto: then the trigger is forced
constexpr uint32_t BOX_AFTER_MS = 500;   // a short upload shows no progress box
constexpr size_t ID_MAX_CHARS = 80;

enum RunMode { MODE_SINGLE, MODE_NORMAL_SWEEP, MODE_AUTO };

int foundStation = -1; // where the scope was found
uint32_t armedSinceMs = 0, uploadSinceMs = 0;
int progressBox = 0; // 0: none is shown

bool AskId(const std::string &defaultId, std::string *id)
{
    std::string typed = *id;
    const int button = GenericMessagePopup("Scope ID setup", "Warning: check Sope ID",
                                           {defaultId, *id, "OK"}, &typed, ID_MAX_CHARS);
    if (button == 1)
        *id = defaultId;
    else if (button == 3)
        *id = typed;
    return button != 0 && !id->empty();
}

// A box appears only for what takes a while; its Cancel ends the upload between two blocks.
bool ShowProgress(uint32_t done, uint32_t total)
{
    if (progressBox == 0 && PLT_TickMs() - uploadSinceMs >= BOX_AFTER_MS)
        progressBox = CreateProgressDialog("Data scope", SCP_UPLOADING);
    const int percent = static_cast<int>(uint64_t{done} * 100 / std::max(total, 1u));
    const bool isCancelled =
        progressBox != 0 && UpdateProgressDialog(progressBox, percent, SCP_UPLOADING) != 0;
    return isCancelled || IsBreakWished();
}

const SCP_View VIEW = {SCP_ShowStatus, AskId, ShowProgress};

// The recording on the screen is replaced only by one that has curves.
bool Upload()
{
    uploadSinceMs = PLT_TickMs();
    SetBusyText("uploading the scope's recording");
    const int result = SCP_Upload(VIEW);
    if (progressBox != 0)
        DiscardProgressDialog(progressBox);
    progressBox = 0;
    if (result < 0)
        return false;
    const SCP_Capture fresh = SCP_MakeCapture(SCP_GetRunSetup());
    if (fresh.traces.empty()) {
        SCP_ShowStatus(SCP_NO_CHANNEL);
        return false;
    }
    SCP_windowState.capture = fresh;
    SCP_ShowCurves();
    SCP_ShowButtons();
    return true;
}

bool Arm()
{
    // All of the setup each time: it may have been typed while communication was off.
    if (SCP_SetAll(SCP_windowState.setup, VIEW) < 0 || SCP_Run(VIEW) < 0) {
        SCP_Stop();
        return false;
    }
    armedSinceMs = PLT_TickMs();
    return true;
}

} // namespace

void SCP_Stop()
{
    SCP_windowState.isRunning = false;
    SCP_ShowButtons();
}

bool SCP_IsFound()
{
    // Another station has another scope, or none.
    if (SX_isInitDone && foundStation != STATION) {
        SX_isInitDone = 0;
        SCP_Stop();
        SCP_ShowWindowState(SCP_NOT_FOUND_TEXT);
    }
    return SX_isInitDone != 0;
}

void SCP_TellTarget(int (*step)(const SCP_Setup &setup, const SCP_View &view))
{
    if (isTimer != 0 && SCP_IsFound())
        step(SCP_windowState.setup, VIEW);
}

int DTSC_OnInit(int, int, int event, int)
{
    SCP_Setup &setup = SCP_windowState.setup;
    if (event != EVENT_COMMIT || !VR_EnsureCom())
        return 0;
    SCP_Stop();
    GetCtrlVal(PANEL_SCOPE, SCOPE_ID, &setup.id);
    SetBusyText("looking for the scope");
    const bool isGood = SCP_Init(&setup, VIEW) == 0;
    foundStation = STATION;
    // Found, and yet not good, is one whose channels were refused: they can be mended and run.
    SCP_ShowWindowState(SX_isInitDone ? "ready" : "not found");
    // How the trigger compares depends on the generation, which is known only now. A file that
    // asks for another comparison than the default keeps it.
    if (isGood && setup.channels[0].isOn && setup.slope == SCP_Setup().slope)
        setup.slope = SCP_SlopeOf(setup.channels[0].type);
    SCP_ShowSetup();
    return 0;
}

int DTSC_OnRun(int, int, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    if (SCP_windowState.isRunning) {
        SCP_Stop();
        SCP_ShowWindowState("stopped");
        return 0;
    }
    if (!VR_EnsureCom() || !SCP_IsFound())
        return 0;
    SCP_windowState.isRunning = Arm();
    SCP_ShowButtons();
    return 0;
}

int DTSC_OnSnap(int, int, int event, int)
{
    if (event == EVENT_COMMIT && VR_EnsureCom() && SCP_IsFound())
        SCP_Snap(VIEW);
    return 0;
}

int DTSC_OnUpload(int, int, int event, int)
{
    if (event == EVENT_COMMIT && VR_EnsureCom() && SCP_IsFound())
        Upload();
    return 0;
}

// One look at the control word a tick, and what follows from it.
int DTSC_TimerCB(int, int, int event, int)
{
    static const char *const WORDS[] = {"no answer", "complete", "armed, waits for the trigger",
                                        "triggered, sampling"};
    if (event != EVENT_TIMER_TICK || !SCP_windowState.isRunning || !SCP_IsFound())
        return 0;
    const SCP_State state = SCP_GetState();
    SCP_ShowWindowState(WORDS[state - SCP_UNKNOWN]);
    if (state == SCP_UNKNOWN) {
        SCP_ShowStatus("Error (run).");
        SCP_Stop();
        return 0;
    }
    int mode = MODE_SINGLE;
    GetCtrlVal(PANEL_SCOPE, SCOPE_MODE, &mode);
    // At most once a run: what still says armed behind that has not obeyed.
    const bool isLate = PLT_TickMs() - armedSinceMs >= FORCE_AFTER_MS;
    if (state == SCP_ARMED && mode == MODE_AUTO && isLate && !SX_isSnapped)
        SCP_Snap(VIEW);
    if (state != SCP_COMPLETE)
        return 0;
    // A failed upload ends the sweep, or it would run away over the recording that is wanted.
    if (!Upload() || mode == MODE_SINGLE)
        SCP_Stop();
    else
        Arm();
    return 0;
}
