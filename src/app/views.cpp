// Events of the main panel, its two views (watch list and console), and the windows
// that the Window menu opens.
#include "app/help.h"
#include "app/main_panel.h"
#include "app/startup.h"
#include "code/debugger.h"
#include "comm/communication.h"
#include "diagnostics/statistics_panel.h"
#include "diagnostics/trace_panel.h"
#include "loader/window.h"
#include "runtime/userint.h"
#include "scope/window.h"
#include "sets/window.h"
#include "settings/settings.h"
#include "simulator/window.h"
#include "ui/resource.h"
#include "watch/list/debug_file.h"
#include "watch/list/litem.h"
#include "watch/main_window.h"

namespace {

// Pixels, device independent.
constexpr int MAIN_WIDTH = 780;
constexpr int MAIN_HEIGHT_MIN = 50;
constexpr int CONSOLE_LEFT = 1;
constexpr int CONSOLE_TOP = 21;
constexpr int CONSOLE_BOX_LOSS = 43;  // main panel's height less the text box's
constexpr int CONSOLE_LINE_LOSS = 42; // ... less the top of prompt and input

void CheckView(int shown, int hidden)
{
    const int menuBar = GetPanelMenuBar(mainPanel);
    SetMenuBarAttribute(menuBar, shown, ATTR_CHECKED, 1);
    SetMenuBarAttribute(menuBar, hidden, ATTR_CHECKED, 0);
}

void ShowConsoleView()
{
    HidePanel(PANEL_CONNECT);
    SetPanelPos(consolePanel, CONSOLE_TOP, CONSOLE_LEFT);
    DisplayPanel(consolePanel);
    oldTimer = 0;
    VR_isWatchView = false;
    CheckView(ITEM_CONSOLE_VIEW, ITEM_WATCH_VIEW);
    VR_EnableControls();
    // The window may have changed its size while the console was hidden.
    VR_SizeConsole(oldHeight);
    SetActiveCtrl(consolePanel, CONSOLE_INPUT);
}

void ShowWatchView()
{
    HidePanel(PANEL_CONNECT);
    HidePanel(consolePanel);
    VR_isWatchView = true;
    CheckView(ITEM_WATCH_VIEW, ITEM_CONSOLE_VIEW);
    VR_EnableControls();
    if (oldTimer != 0) {
        if (Check_ASC_Open(VR_OpenLink()) < 0)
            return;
        isTimer = oldTimer;
        ResumeTimerCallbacks();
        COM_TellState();
    }
    DisplayPanel(mainPanel);
}

// Arrow keys move the watch list's selection wherever the focus is; a list that has
// the focus has moved it already.
void MoveSelection(int step)
{
    int row = -1;
    GetCtrlIndex(mainPanel, MAIN_LIST, &row);
    if (GetActiveCtrl(mainPanel) != MAIN_LIST)
        row += step;
    if (row < 0 || row >= nLItems)
        return;
    SetCtrlIndex(mainPanel, MAIN_LIST, row);
}

// 1: the key means nothing else then; an arrow still moves the cursor of whoever has it.
int OnKey(int key)
{
    switch (key) {
    case KEY_F1:
        DisplayHelp();
        return 1;
    case KEY_DOWN:
        MoveSelection(1);
        return 0;
    case KEY_UP:
        MoveSelection(-1);
        return 0;
    case KEY_CTRL | 's':
    case KEY_CTRL | 'S':
        SaveDbg(mainPanel);
        return 1;
    default:
        return 0;
    }
}

// The console stands inside the main panel and has no layout of its own that would follow it.
void OnResize()
{
    int height = oldHeight;
    GetPanelAttribute(mainPanel, ATTR_HEIGHT, &height);
    // A window without any height would hide what it could be enlarged by.
    if (height < MAIN_HEIGHT_MIN) {
        SetPanelAttribute(mainPanel, ATTR_HEIGHT, oldHeight);
        return;
    }
    oldHeight = height;
    VR_SizeConsole(height);
}

// Windows that are shown and then told so; others have callbacks of their own in the menu's rows.
struct WindowItem {
    int item;
    int panel;
    void (*opened)(); // may be null
};
constexpr WindowItem WINDOW_ITEMS[] = {
    {ITEM_STATISTICS, PANEL_STATISTICS, DIA_StatisticsOpened},
    {ITEM_TRACE, PANEL_TRACE, DIA_TraceOpened},
    {ITEM_LOADER, PANEL_LOADER, LDR_WindowOpened},
    {ITEM_SCOPE, PANEL_SCOPE, DTSC_Opened},
    {ITEM_CONFIG, PANEL_CONFIG, CFW_Opened},
    {ITEM_DEBUGGER, PANEL_DEBUGGER, CODE_DebuggerOpened},
    {ITEM_SIMULATOR, PANEL_SIMULATOR, TGT_WindowOpened},
};

} // namespace

void VR_SizeConsole(int height)
{
    int width = MAIN_WIDTH;
    GetPanelAttribute(mainPanel, ATTR_WIDTH, &width);
    SetPanelAttribute(consolePanel, ATTR_WIDTH, width);
    SetPanelAttribute(consolePanel, ATTR_HEIGHT, height - CONSOLE_TOP);
    SetCtrlAttribute(consolePanel, CONSOLE_BOX, ATTR_HEIGHT, height - CONSOLE_BOX_LOSS);
    SetCtrlAttribute(consolePanel, CONSOLE_PROMPT, ATTR_TOP, height - CONSOLE_LINE_LOSS);
    SetCtrlAttribute(consolePanel, CONSOLE_INPUT, ATTR_TOP, height - CONSOLE_LINE_LOSS);
    int lines = 0;
    GetNumTextBoxLines(consolePanel, CONSOLE_BOX, &lines);
    if (lines > 0) // the line that is being worked at stays in sight
        SetCtrlAttribute(consolePanel, CONSOLE_BOX, ATTR_FIRST_VISIBLE_LINE, lines - 1);
}

int PanelCB(int panel, int event, int data)
{
    switch (event) {
    case EVENT_KEYPRESS:
        return OnKey(data);
    case EVENT_CLOSE:
        ExitApplication(panel);
        return 0;
    case EVENT_PANEL_SIZE:
        OnResize();
        return 0;
    case EVENT_ACTIVATED: // an editor may have been in front
        LIT_CheckReload(panel);
        return 0;
    default:
        return 0;
    }
}

int ConfigPanelCB(int panel, int event, int)
{
    if (event == EVENT_ACTIVATED)
        CFW_Activated();
    if (event != EVENT_CLOSE)
        return 0;
    // There it is the main window; otherwise one of many, and stays loaded.
    if (VR_enAppMode == MODE_CONFIGURATION)
        ExitApplication(panel);
    else
        HidePanel(panel);
    return 0;
}

// Of the Window menu's other items neither is a view.
void VR_ShowView(int item)
{
    if (item == ITEM_CONSOLE_VIEW)
        ShowConsoleView();
    else if (item == ITEM_WATCH_VIEW)
        ShowWatchView();
}

void WindowCB(int, int item)
{
    VR_ShowView(item);
    if (item == ITEM_SCOPE) // it is of no use without the target
        VR_ComRequest();
    for (const WindowItem &row : WINDOW_ITEMS) {
        if (row.item != item)
            continue;
        DisplayPanel(row.panel);
        SetActivePanel(row.panel);
        if (row.opened != nullptr)
            row.opened();
    }
}
