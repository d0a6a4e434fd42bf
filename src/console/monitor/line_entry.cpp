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

int RunC166Line(int panel, const char *line)
{
    CON_Print(" %s > %s", VR1_GetCpuPrompt(), line);
    StoreLine(line);
    const int result = RunMonitor(panel, line);
    if (command == CMD_C166) // else the line has begun another mode, which has its own prompt
        CON_ShowModePrompt();
    return result;
}

int RunTmsLine(int panel, const char *line)
{
    CON_Print(" S166\\TMS > %s", line);
    StoreLine(line);
    const int result = RunTMSMonitor(panel, line);
    if (command == CMD_TMS)
        CON_ShowModePrompt();
    return result;
}

int RunMapName(int panel, const char *line)
{
    // A name that was asked for; good or bad, the next line is a command again.
    const int result = LoadMapFile(panel, line);
    command = CMD_C166;
    CON_ShowModePrompt();
    return result;
}

struct Mode {
    int32_t mode;
    int (*run)(int panel, const char *line); // negative: the line failed
};
const Mode MODES[] = {{CMD_C166, RunC166Line},
                      {CMD_TMS, RunTmsLine},
                      {CMD_MAP_NAME, RunMapName},
                      {CMD_WRITE_C166, WriteD},
                      {CMD_WRITE_TMS, WriteT}};

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
    CON_nRefused = CON_nUnknown = 0;
    const int32_t mode = command; // the line may change it
    for (const Mode &row : MODES)
        if (row.mode == mode && (row.run(panel, line.c_str()) < 0 || CON_nRefused > 0))
            CON_nFailed++;
    CON_ScrollToEnd();
    isRunning = false;
    if (SCR_isExit) { // "exit" closes this view in the window, and the console program
        SCR_isExit = false;
        CON_isExit = true;
        WIN_ShowMainView(ITEM_WATCH_VIEW);
    }
    return 0;
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

// The other way round than elsewhere: Down shows the older line, Up the newer one. The two
// conditions do not mirror each other: that is how far the user gets.
void HandleArrow(int, int, int key)
{
    if (command != CMD_C166 && command != CMD_TMS) // values and file names have no history
        return;
    if (key == KEY_DOWN) {
        if (iOldCmd == iOldCmd2 - 1 || (iOldCmd == 0 && iOldCmd2 == LAST_SLOT))
            return;
        iOldCmd2 = iOldCmd2 == 0 ? LAST_SLOT : iOldCmd2 - 1;
    } else {
        if (iOldCmd == iOldCmd2 + 1 || (iOldCmd == LAST_SLOT && iOldCmd2 == 0) ||
            iOldCmd == iOldCmd2)
            return;
        iOldCmd2 = iOldCmd2 == LAST_SLOT ? 0 : iOldCmd2 + 1;
    }
    SetField(aOldCommand[static_cast<size_t>(iOldCmd2)]);
}

// Replaces the word by what all candidates have in common; several are listed.
void HandleTab(int panel, int control, int)
{
    std::string line;
    if (GetCtrlVal(panel, control, &line) < 0)
        return;
    CON_CompleteLine(&line);
    SetField(line);
}

const KeyAction KEY_ACTIONS[] = {
    {KEY_ESC, HandleEscape}, {KEY_UP, HandleArrow}, {KEY_DOWN, HandleArrow}, {KEY_TAB, HandleTab}};

} // namespace

int StrinCB(int panel, int control, int event, int data)
{
    if (event == EVENT_COMMIT)
        return EnterLine(panel, control);
    if (event != EVENT_KEYPRESS)
        return 0;
    for (const KeyAction &row : KEY_ACTIONS) {
        if (row.key != data)
            continue;
        row.run(panel, control, data);
        return 1; // the key means nothing else here: Tab does not leave the field
    }
    return 0;
}
