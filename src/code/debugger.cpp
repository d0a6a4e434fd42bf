// The debugger's window: its columns, buttons, fields and keys. What is shown in it belongs to
// debugger_code.cpp and debugger_values.cpp.
#include "code/debugger.h"

#include <string>

#include "code/debugger_code.h"
#include "code/debugger_values.h"
#include "code/listing.h"
#include "comm/communication.h"
#include "comm/sysaddr.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "ui/resource.h"
#include "watch/windows/name_completion.h"

namespace {

constexpr int PANEL = PANEL_DEBUGGER;
constexpr double PERIOD_S = 0.5;

bool isPrepared = false;
std::string shownSource; // processor, station and map of what is shown

bool IsShown()
{
    int isVisible = 0;
    return GetPanelAttribute(PANEL, ATTR_VISIBLE, &isVisible) >= 0 && isVisible != 0;
}

// False after a message. Memory behind "&" is reached through a mailbox, which live reads lack.
bool ReadTypedAddress(int control, uint32_t *address)
{
    std::string text;
    GetCtrlVal(PANEL, control, &text);
    *address = GetSysAddr(text.c_str());
    if (*address != ADDR_NONE && text.find('&') == std::string::npos)
        return true;
    CODE_ShowDebuggerOutcome(COM_UnknownNameText(text), COLOR_BAD);
    return false;
}

void ShowTypedCode()
{
    uint32_t address = 0;
    if (!CODE_CanDecode())
        CODE_ShowDebuggerOutcome(CODE_ONLY_C166);
    else if (ReadTypedAddress(DEBUG_PLACE, &address))
        CODE_ShowCode(address & ~1u); // instructions stand at even addresses
}

// Only once: after that the columns have the widths the user gave them.
void SetColumns()
{
    SetListColumns(PANEL, DEBUG_CODE,
                   {{"Address", 64, UIA_LEFT},
                    {"Bytes", 92, UIA_LEFT},
                    {"Instruction", 200, UIA_LEFT},
                    {"Names", 160, UIA_LEFT},
                    {"Values", 120, UIA_LEFT}});
    SetListColumns(PANEL, DEBUG_REGISTERS,
                   {{"Register", 80, UIA_LEFT},
                    {"Hex", 50, UIA_LEFT},
                    {"Decimal", 60, UIA_RIGHT},
                    {"Bits", 170, UIA_LEFT}});
    SetListColumns(PANEL, DEBUG_STACK,
                   {{"Stack", 110, UIA_LEFT}, {"Hex", 60, UIA_LEFT}, {"Decimal", 60, UIA_LEFT}});
    SetListColumns(PANEL, DEBUG_MEMORY,
                   {{"Memory", 64, UIA_LEFT},
                    {"Bytes", 370, UIA_LEFT},
                    {"Text", 130, UIA_LEFT},
                    {"Name", 120, UIA_LEFT}});
}

void Prepare()
{
    if (!isPrepared)
        SetColumns();
    isPrepared = true;
    CODE_FillGroups();
    for (const int control : {DEBUG_PLACE, DEBUG_MEM_PLACE})
        SetCtrlCompletion(PANEL, control, WIN_CompleteNameCB);
    SetCtrlAttribute(PANEL, DEBUG_TIMER, ATTR_INTERVAL, PERIOD_S);
    CODE_EnableDebuggerButtons();
}

} // namespace

void CODE_DebuggerOpened()
{
    Prepare();
    SetCtrlVal(PANEL, DEBUG_LIVE, 1);
    // What one comes for is typed first: a name or an address.
    SetActiveCtrl(PANEL, DEBUG_PLACE);
    CODE_ShowWhere();
    // Opening the window alone never opens the port.
    if (isTimer != 0)
        CODE_RefreshDebugger();
}

void CODE_DebuggerChanged()
{
    const std::string source =
        std::to_string(Procesor) + " " + std::to_string(STATION) + " " + szMapFileName;
    const bool isSame = source == shownSource;
    // Kept also before the window was ever opened, when there is nothing to forget.
    shownSource = source;
    if (!isPrepared || isSame)
        return;
    // Decoded and named by what is not true any more.
    CODE_ForgetCode();
    ClearListCtrl(PANEL, DEBUG_MEMORY);
    Prepare();
    if (IsShown())
        CODE_ShowWhere();
}

int CODE_PlaceCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT)
        ShowTypedCode();
    return 0;
}

int CODE_DebuggerButtonCB(int, int control, int event, int)
{
    constexpr struct {
        int control;
        void (*act)();
    } ACTIONS[] = {{DEBUG_GO, ShowTypedCode},
                   {DEBUG_BACK, CODE_GoBack},
                   {DEBUG_FOLLOW, CODE_FollowJump},
                   {DEBUG_MORE, CODE_ReadMoreCode},
                   {DEBUG_COPY, CODE_CopyCode}};
    for (const auto &row : ACTIONS)
        if (event == EVENT_COMMIT && row.control == control)
            row.act();
    return 0;
}

int CODE_LiveCB(int, int, int event, int)
{
    int isOn = 0;
    if (event != EVENT_COMMIT || GetCtrlVal(PANEL, DEBUG_LIVE, &isOn) < 0)
        return 0;
    if (isOn == 0)
        CODE_MarkOld(); // what stays on the screen looks like what it is
    else if (VR_EnsureCom())
        CODE_RefreshDebugger();
    return 0;
}

int CODE_CodeCB(int, int, int event, int data)
{
    if (event == EVENT_VAL_CHANGED) {
        CODE_EnableDebuggerButtons();
        if (!CODE_HasFailed()) // else its reason stays to be read
            CODE_ShowWhere();
    } else if (event == EVENT_COMMIT || event == EVENT_LEFT_DOUBLE_CLICK ||
               (event == EVENT_KEYPRESS && data == KEY_RIGHT))
        CODE_FollowJump();
    else if (event == EVENT_KEYPRESS && (data == KEY_LEFT || data == KEY_BACKSPACE))
        CODE_GoBack();
    return event == EVENT_KEYPRESS ? 1 : 0;
}

int CODE_GroupCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT && VR_EnsureCom())
        CODE_RefreshDebugger();
    return 0;
}

int CODE_RegistersCB(int, int, int event, int)
{
    int line = -1;
    std::string cause;
    if (event != EVENT_COMMIT && event != EVENT_LEFT_DOUBLE_CLICK)
        return 0;
    // The others are read with every refresh; this one only now, since reading it has an effect.
    GetCtrlIndex(PANEL, DEBUG_REGISTERS, &line);
    if (VR_EnsureCom() && CODE_ReadTouchy(line, &cause) < 0)
        CODE_ShowDebuggerOutcome("Not read: " + cause + ".", COLOR_BAD);
    return 0;
}

int CODE_MemPlaceCB(int, int, int event, int)
{
    uint32_t address = 0;
    if (event != EVENT_COMMIT || !ReadTypedAddress(DEBUG_MEM_PLACE, &address))
        return 0;
    // Read with the next refresh, together with all the rest and proven with it.
    CODE_SetMemory(address);
    if (VR_EnsureCom())
        CODE_RefreshDebugger();
    return 0;
}

int CODE_DebuggerTimerCB(int, int, int, int)
{
    int isOn = 0;
    GetCtrlVal(PANEL, DEBUG_LIVE, &isOn);
    // After a failure it waits a while, or a silent target would hold the window at each tick.
    if (isTimer != 0 && isOn != 0 && IsShown() && !CODE_IsPausing())
        CODE_RefreshDebugger();
    return 0;
}
