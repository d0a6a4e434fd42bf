// The input field: what each key does, the history, and which interpreter gets the
// line in which mode.
#include "console/monitor/completion.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "console/script/script.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "ui/resource.h"
#include "watch/main_window.h"

int32_t command = CMD_C166;
std::array<std::string, HISTORY_LINES> aOldCommand;
int iOldCmd = 0;
int iOldCmd2 = 0;
bool CON_isExit = false;

namespace {

constexpr int LAST_SLOT = HISTORY_LINES - 1;

void SetField(const std::string &text)
{
    SetCtrlVal(consolePanel, CONSOLE_INPUT, text);
}

void StoreLine(const std::string &line)
{
    aOldCommand[static_cast<size_t>(iOldCmd)] = line.substr(0, HISTORY_CHARS);
    iOldCmd = iOldCmd == LAST_SLOT ? 0 : iOldCmd + 1;
    iOldCmd2 = iOldCmd;
}

void ShowSlot()
{
    SetField(aOldCommand[static_cast<size_t>(iOldCmd2)]);
}

void ShowOlder()
{
    if (iOldCmd == iOldCmd2 - 1 || (iOldCmd == 0 && iOldCmd2 == LAST_SLOT))
        return;
    iOldCmd2 = iOldCmd2 == 0 ? LAST_SLOT : iOldCmd2 - 1;
    ShowSlot();
}

// The second condition does not mirror ShowOlder: that is how far the user gets.
void ShowNewer()
{
    if (iOldCmd == iOldCmd2 + 1 || (iOldCmd == LAST_SLOT && iOldCmd2 == 0) || iOldCmd == iOldCmd2)
        return;
    iOldCmd2 = iOldCmd2 == LAST_SLOT ? 0 : iOldCmd2 + 1;
    ShowSlot();
}

int RunC166Line(int panel, const std::string &line)
{
    CON_Print(" %s > %s", VR1_GetCpuPrompt(), line.c_str());
    StoreLine(line);
    const int result = RunMonitor(panel, line.c_str());
    if (command == CMD_C166)
        CON_ShowModePrompt();
    return result;
}

int RunTmsLine(int panel, const std::string &line)
{
    CON_Print(" S166\\TMS > %s", line.c_str());
    StoreLine(line);
    const int result = RunTMSMonitor(panel, line.c_str());
    if (command == CMD_TMS)
        CON_ShowModePrompt();
    return result;
}

int RunMapName(int panel, const std::string &line)
{
    const int result = LoadMapFile(panel, line.c_str());
    command = CMD_C166;
    CON_ShowModePrompt();
    return result;
}

int RunC166Value(int panel, const std::string &line)
{
    return WriteD(panel, line.c_str());
}

int RunTmsValue(int panel, const std::string &line)
{
    return WriteT(panel, line.c_str());
}

struct Mode {
    int32_t mode;
    int (*run)(int panel, const std::string &line); // negative: the line failed
};
const Mode MODES[] = {{CMD_C166, RunC166Line},
                      {CMD_TMS, RunTmsLine},
                      {CMD_MAP_NAME, RunMapName},
                      {CMD_WRITE_C166, RunC166Value},
                      {CMD_WRITE_TMS, RunTmsValue}};

void RunInMode(int panel, const std::string &line)
{
    CON_nRefused = CON_nUnknown = 0;
    for (const Mode &mode : MODES) {
        if (mode.mode == command) {
            if (mode.run(panel, line) < 0 || CON_nRefused > 0)
                CON_nFailed++;
            return;
        }
    }
}

int EnterLine(int panel, int control)
{
    static bool isRunning = false; // a pop-up of a running line must not start another
    std::string line;
    if (isRunning || GetCtrlVal(panel, control, &line) < 0)
        return 0;
    if (line.size() > LINE_CHARS_MAX) {
        CON_RefuseLongLine();
        CON_nFailed++;
        return 0;
    }
    isRunning = true;
    SetField("");
    RunInMode(panel, line);
    CON_ScrollToEnd();
    isRunning = false;
    if (SCR_isExit) { // "exit" closes this view in the window, and the console program
        SCR_isExit = false;
        CON_isExit = true;
        MWN_ShowView(ITEM_WATCH_VIEW);
    }
    return 0;
}

void BrowseHistory(int key)
{
    if (command != CMD_C166 && command != CMD_TMS)
        return;
    if (key == KEY_DOWN)
        ShowOlder();
    else
        ShowNewer();
}

// Replaces the word by what all candidates have in common; several are listed.
void CompleteField(int panel, int control)
{
    std::string line;
    if (GetCtrlVal(panel, control, &line) < 0)
        return;
    CON_CompleteLine(&line);
    SetField(line);
}

// Keys of their own beside Enter; none of them is a menu's shortcut.
struct KeyAction {
    int key;
    void (*run)(int panel, int control, int key);
};

void HandleEscape(int, int, int)
{
    SetField("");
    iOldCmd2 = iOldCmd; // browsing begins at the newest line again
}

void HandleArrow(int, int, int key)
{
    BrowseHistory(key);
}

void HandleTab(int panel, int control, int)
{
    CompleteField(panel, control);
}

const KeyAction KEY_ACTIONS[] = {
    {KEY_ESC, HandleEscape}, {KEY_UP, HandleArrow}, {KEY_DOWN, HandleArrow}, {KEY_TAB, HandleTab}};

int HandleKey(int panel, int control, int key)
{
    for (const KeyAction &row : KEY_ACTIONS) {
        if (row.key != key)
            continue;
        row.run(panel, control, key);
        return 1;
    }
    return 0;
}

} // namespace

int StrinCB(int panel, int control, int event, int data)
{
    if (event == EVENT_COMMIT)
        return EnterLine(panel, control);
    if (event == EVENT_KEYPRESS)
        return HandleKey(panel, control, data);
    return 0;
}
