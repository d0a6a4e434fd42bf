// The answers are one or two calls each: what is more belongs into the room that does it.
#include "app/rooms.h"

#include "app/ini_file.h"
#include "app/main_panel.h"
#include "comm/communication.h"
#include "comm/sysaddr.h"
#include "comm/ucm.h"
#include "platform/safe_file.h"
#include "runtime/userint.h"
#include "sampler/record_watch.h"
#include "settings/settings.h"
#include "symbols/addr_name.h"
#include "symbols/listener.h"
#include "symbols/varnode.h"
#include "terminal/window.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/age.h"
#include "watch/list/item_names.h"
#include "watch/list/refresh.h"
#include "watch/main_window.h"

namespace {

int progressDialog = -1; // of the one map that is being loaded

void ShowLinkMessage(const std::string &text)
{
    VR_ShowMessage(text, WIN_TOPIC_LINK);
}

void ShowMapMessage(const std::string &text)
{
    VR_ShowMessage(text, WIN_TOPIC_MAP);
}

// A new link starts with a clean count at the first visible line, and with a word about
// settings that cannot work.
void BeginRun()
{
    WIN_Outdate(WIN_TOPIC_LINK);
    const std::string problem = APP_GetRangeProblem();
    if (!problem.empty())
        ShowLinkMessage(problem);
    RFR_BeginSweep();
    RFR_EndAgeRun(); // perhaps another port, and another target on it
    nErrors = 0;
}

// Every window that says whether the target is asked.
void ShowComState()
{
    VR_ShowComState();
    REC_ShowCommunication();
    T166_ShowCommunication();
    TRM_SetLcdPanelAttributes();
}

// Takes a message away unless another one has replaced it since.
void WithdrawMessage(const std::string &text)
{
    std::string shown;
    if (GetCtrlVal(mainPanel, MAIN_MESSAGE, &shown) == 0 && shown == text)
        VR_ShowMessage("");
}

void Warn(const std::string &title, const std::string &text)
{
    MessagePopup(title, text);
}

// While the line is silent the window says for whom the program waits.
void ShowWaiting(int station)
{
    SetBusyText(COM_WaitingText(station));
}

// The default is no: an answer that nobody gave must not cost a protected file.
bool MayReplace(const std::string &path)
{
    return ConfirmPopup("Vireo2",
                        "The file '" + TXT_Visible(path) +
                            "' is write-protected. Replace it all the same?",
                        UI_DEFAULT_NO) == 1;
}

void BeginProgress(const std::string &title, const std::string &text)
{
    progressDialog = CreateProgressDialog(title, text);
}

// False: the user has cancelled, or closed the box.
bool AdvanceProgress(int percent, const std::string &text)
{
    return UpdateProgressDialog(progressDialog, percent, text) <= 0;
}

void EndProgress()
{
    DiscardProgressDialog(progressDialog);
}

} // namespace

void VR_ConnectRooms()
{
    COM_Listener link = {};
    link.opening = BeginRun;
    link.stateChanged = ShowComState;
    link.showMessage = ShowLinkMessage;
    link.withdrawMessage = WithdrawMessage;
    COM_SetListener(link);

    // Asked before every try on the line, so both must be quick.
    UCM_Listener exchange;
    exchange.isBreak = IsBreakWished;
    exchange.waiting = ShowWaiting;
    UCM_SetListener(exchange);

    // Recording and terminal have no timer of their own: they go with the ticks of the list.
    RFR_Recorder recorder;
    recorder.record = REC_RecordWatch;
    recorder.tick = REC_StepWatch;
    recorder.terminal = T166_Read;
    RFR_SetRecorder(recorder);

    // The link knows addresses only; what is typed as a name is looked up above it.
    COM_SetNameResolver(SYM_ResolveName);

    SYM_Listener names = {};
    // Watch list, windows and completion hold addresses that came from names.
    names.namesChanged = LIT_NamesChanged;
    names.showMessage = ShowMapMessage;
    names.warn = Warn;
    names.beginProgress = BeginProgress;
    names.advanceProgress = AdvanceProgress;
    names.endProgress = EndProgress;
    SYM_SetListener(names);

    PLT_SetSaveQuestion(MayReplace);

    // The watch room shows the main window's parts without knowing who fills them.
    WIN_MainHost window = {};
    window.showSettings = VR_ShowSettings;
    window.enableControls = VR_DimControls;
    window.showView = VR_ShowView;
    WIN_SetMainHost(window);
}
