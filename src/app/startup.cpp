// The program from its first line to the event loop, and its orderly end.
#include "app/startup.h"

#include <cstdio>

#include "app/ini_file.h"
#include "app/main_panel.h"
#include "app/rooms.h"
#include "app/version.h"
#include "comm/communication.h"
#include "comm/ucm.h"
#include "console/monitor/monitor.h"
#include "console/script/script.h"
#include "graphs/window.h"
#include "inspect/inspectors.h"
#include "runtime/userint.h"
#include "sampler/record_watch.h"
#include "scope/window.h"
#include "sets/window.h"
#include "settings/settings.h"
#include "simulator/target.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/debug_file.h"
#include "watch/list/litem.h"
#include "watch/main_window.h"
#include "watch/windows/map_loading.h"

bool VR_isScriptRun = false;
int VR_nScriptResult = 0;
bool VR_isTypesFailed = false;

namespace {

constexpr int EXIT_UNSAVED = 1; // the settings could not be written, or the list was not

struct PanelLoad {
    int panel;
    int parent;
};
// Further windows of the inspectors are loaded when they are needed.
constexpr PanelLoad PANELS[] = {
    {PANEL_MAIN, 0},
    {PANEL_VALUE, 0},
    {PANEL_MEMORY, 0},
    {PANEL_ITEM, 0},
    {PANEL_CONSOLE, PANEL_MAIN},
    {PANEL_STATISTICS, 0},
    {PANEL_TRACE, 0},
    {PANEL_LOADER, 0},
    {PANEL_DATA_LOG, 0},
    {PANEL_VAR_SELECTOR, 0},
    {PANEL_STRUCT_SELECTOR, 0},
    {PANEL_SCOPE, 0},
    {PANEL_GRAPH, 0},
    {PANEL_TERMINAL_ENTRY, 0},
    {PANEL_CONFIG, 0},
    {PANEL_CONFIG_EDIT, 0},
    {PANEL_DEBUGGER, 0},
    {PANEL_ARRAY, 0},
    {PANEL_RECORD, 0},
    {PANEL_SIMULATOR, 0},
    {PANEL_TERMINAL, 0},
    {PANEL_LCD, 0},
    {PANEL_CONNECT, PANEL_MAIN},
};

int LoadPanels()
{
    for (const PanelLoad &row : PANELS)
        if (LoadPanel(row.parent, row.panel) < 0)
            return -1;
    mainPanel = PANEL_MAIN;
    consolePanel = PANEL_CONSOLE;
    return 0;
}

// Nobody is there any more to be asked: what was set is kept, a changed list is not saved.
void EndAtOnce()
{
    VIR2_StopPeriodicASC();
    TGT_Stop(); // what is saved are the settings of before
    GRA_OnQuit();
    const bool isScopeSaved = DTSC_SaveSettings() == 0;
    const bool isSaved = SaveIniFile() == 0 && isScopeSaved && IsDBGChange == 0;
    QuitUserInterface(isSaved ? 0 : EXIT_UNSAVED);
}

} // namespace

int VR_StartUp(int argc, char **argv)
{
    VR_ConnectRooms();
    GetVRVersion(argc > 0 ? argv[0] : "");
    UCM_Init();
    INS_Clear();
    // Until the settings file or an option says another.
    bRate = 19200;
    if (InitCVIRTE(&argc, argv) < 0 || LoadPanels() < 0)
        return -1;
    SetEndCallback(EndAtOnce);
    // Nothing to reload, to undo or to close yet. An item without a row answers with an error,
    // which is as good as dimmed.
    const int menuBar = GetPanelMenuBar(mainPanel);
    for (const int item : {ITEM_RELOAD_MAP, ITEM_UNDO, ITEM_CLOSE_PORT})
        SetMenuBarAttribute(menuBar, item, ATTR_DIMMED, 1);
    SetMenuBarAttribute(menuBar, ITEM_CONNECT, ATTR_DIMMED, 0);
    WindowCB(0, ITEM_CONSOLE_VIEW);
    SetPanelAttribute(mainPanel, ATTR_SIZABLE, 1);
    // No tick before somebody has switched communication on.
    SuspendTimerCallbacks();
    isTimer = 0;
    // Options choose the settings file, and win over what it says.
    GetCmdLineOptions(argc, argv);
    OpenIniFile(mainPanel);
    const int script = GetCmdLineOptions(argc, argv);
    // For a person who looks at the terminal; a window's program may have none.
    std::string remarks;
    for (const std::string &remark : VR_GetCmdLineRemarks(argc, argv))
        remarks += (remarks.empty() ? "" : " ") + remark;
    if (!remarks.empty())
        std::fprintf(stderr, "%s\n", TXT_Visible(remarks).c_str());
    std::string message;
    VR_isTypesFailed = !VR_szTypesOption.empty() && WIN_OpenTypeMap(VR_szTypesOption, &message) < 0;
    if (VR_isTypesFailed)
        VR_ShowMessage("Error: " + message);
    SetMainPanelAttributes();
    DisplayPanel(VR_enAppMode == MODE_CONFIGURATION ? static_cast<int>(PANEL_CONFIG) : mainPanel);
    // The device configuration is the only window then.
    if (VR_enAppMode == MODE_CONFIGURATION)
        CFW_Opened();
    // Only now: the settings that ask for this view, and the list it shows, have been read.
    if (VR_isWatchView && VR_enAppMode == MODE_NORMAL)
        WindowCB(0, ITEM_WATCH_VIEW);
    // Nothing is done with types that are not the ones asked for.
    if (script < argc && !VR_isTypesFailed) {
        WindowCB(0, ITEM_CONSOLE_VIEW);
        VR_isScriptRun = true;
        VR_nScriptResult = ExecMonScript(argv[script], consolePanel);
        SCR_ReportResult(argv[script], VR_nScriptResult);
    }
    return 0;
}

int VR_Main(int argc, char **argv)
{
    if (VR_StartUp(argc, argv) < 0)
        return -1;
    return RunUserInterface();
}

int ExitApplication(int)
{
    // The one question comes first: who cancels it goes on with everything as it was.
    if (DbgChngSafety() < 0)
        return -1;
    REC_StopWatch(); // its last rounds are proven over the line
    VIR2_StopPeriodicASC();
    TGT_Stop();
    QuitUserInterface(0);
    GRA_OnQuit();
    const bool isScopeSaved = DTSC_SaveSettings() == 0;
    const int code = SaveIniFile() < 0 || !isScopeSaved ? EXIT_UNSAVED : 0;
    // Asked for twice: a pop-up that a save opened may have taken the first request.
    QuitUserInterface(code);
    INS_Free();
    return 0;
}

void ExitCB(int, int)
{
    ExitApplication(mainPanel);
}
