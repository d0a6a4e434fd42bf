#include "code/debugger.h"

#include <algorithm>
#include <string>
#include <vector>

#include "code/debugger_values.h"
#include "code/listing.h"
#include "comm/communication.h"
#include "comm/sysaddr.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "symbols/addr_name.h"
#include "text/bytes.h"
#include "ui/resource.h"
#include "watch/windows/name_completion.h"
#include "watch/windows/outcome_colors.h"

namespace {

constexpr int PANEL = PANEL_DEBUGGER;
constexpr int PAGE_LINES = 100; // instructions read at once
constexpr size_t LINES_MAX = 1000, PLACES_MAX = 100;
constexpr double PERIOD_S = 0.5;
constexpr uint32_t PAUSE_MS = 3000; // after a failed refresh
enum Column { COLUMN_ADDRESS, COLUMN_BYTES, COLUMN_TEXT, COLUMN_NAMES, COLUMN_VALUES };

const char LIVE_VIEW[] = "Live view: the target goes on running; it cannot be stopped or stepped.";
const char ONLY_C166[] = "The code of this processor cannot be shown; registers and memory can.";

struct Place {
    uint32_t address = CODE_NO_ADDRESS;
    int line = 0; // selected
};

std::vector<CODE_Instruction> code;
std::vector<Place> places; // come from, the last one last
bool isPrepared = false;
std::string shownSource; // processor, station and map of what is shown
uint32_t failedMs = 0;   // when the last refresh failed; 0 = it did not

void ShowOutcome(const std::string &text, int color = COLOR_PLAIN)
{
    SetCtrlAttribute(PANEL, DEBUG_MESSAGE, ATTR_TEXT_COLOR, color);
    SetCtrlVal(PANEL, DEBUG_MESSAGE, text);
}

bool HasCode()
{
    return Procesor == CPU_C166 || Procesor == CPU_C167;
}

bool IsShown()
{
    int isVisible = 0;
    return GetPanelAttribute(PANEL, ATTR_VISIBLE, &isVisible) >= 0 && isVisible != 0;
}

int GetLine()
{
    int line = -1;
    GetCtrlIndex(PANEL, DEBUG_CODE, &line);
    return line < static_cast<int>(code.size()) ? line : -1;
}

std::string FormatHexAddress(uint32_t address)
{
    static const char DIGITS[] = "0123456789ABCDEF";
    std::string text;
    for (int shift = 20; shift >= 0; shift -= 4)
        text += DIGITS[address >> shift & 0xF];
    return text;
}

// What the message line says while all is well: what the window is, and what lies at the
// selected line.
void ShowWhere()
{
    const int line = GetLine();
    const uint32_t address = line >= 0 ? code[static_cast<size_t>(line)].address : 0;
    const std::string name = line >= 0 ? SYM_AddressToName(address) : "";
    ShowOutcome((HasCode() ? LIVE_VIEW : ONLY_C166) +
                (name.empty() ? "" : "  " + FormatHexAddress(address) + ": " + name));
}

// --- the list of code -------------------------------------------------------------------

std::vector<UI_Cell> MakeCells(const CODE_Instruction &instruction)
{
    const std::string here = SYM_AddressToName(instruction.address);
    const bool isStart = !here.empty() && here.find('+') == std::string::npos;
    std::string names = CODE_FormatNames(instruction);
    if (isStart)
        names = here + ":" + (names.empty() ? "" : "  ") + names;
    const unsigned style = !instruction.isValid ? UIS_DIM : isStart ? UIS_BOLD : UIS_NORMAL;
    return {{FormatHexAddress(instruction.address), style, here},
            {BYT_Hex(instruction.bytes, instruction.length), UIS_DIM, ""},
            {CODE_FormatInstruction(instruction), style, names},
            {names, UIS_NORMAL, names},
            {DBV_FormatOperands(instruction), UIS_NORMAL, "as last read"}};
}

void EnableButtons()
{
    const int line = GetLine();
    const bool canFollow = line >= 0 && code[static_cast<size_t>(line)].target != CODE_NO_ADDRESS;
    SetCtrlAttribute(PANEL, DEBUG_FOLLOW, ATTR_DIMMED, !canFollow);
    SetCtrlAttribute(PANEL, DEBUG_BACK, ATTR_DIMMED, places.empty());
    SetCtrlAttribute(PANEL, DEBUG_MORE, ATTR_DIMMED, code.empty() || code.size() >= LINES_MAX);
    SetCtrlAttribute(PANEL, DEBUG_COPY, ATTR_DIMMED, code.empty());
    SetCtrlAttribute(PANEL, DEBUG_GO, ATTR_DIMMED, !HasCode());
}

void AppendLines(size_t first)
{
    for (size_t i = first; i < code.size(); ++i) {
        InsertListItem(PANEL, DEBUG_CODE, -1, FormatHexAddress(code[i].address), 0);
        SetListCells(PANEL, DEBUG_CODE, static_cast<int>(i), MakeCells(code[i]));
    }
    EnableButtons();
}

// The values in view; the rest keeps what it had, which no longer counts.
void ShowValues(int first, int lines)
{
    for (size_t i = 0; i < code.size(); ++i) {
        const int line = static_cast<int>(i);
        std::vector<UI_Cell> cells;
        if (GetListCells(PANEL, DEBUG_CODE, line, &cells) < 0 || cells.size() <= COLUMN_VALUES)
            continue;
        const bool isInView = line >= first && line < first + lines;
        const std::string text = isInView ? DBV_FormatOperands(code[i]) : "";
        if (cells[COLUMN_VALUES].text == text)
            continue;
        cells[COLUMN_VALUES].text = text;
        SetListCells(PANEL, DEBUG_CODE, line, cells);
    }
}

void GetView(int *first, int *lines)
{
    *first = *lines = 0;
    GetCtrlAttribute(PANEL, DEBUG_CODE, ATTR_FIRST_VISIBLE_LINE, first);
    GetCtrlAttribute(PANEL, DEBUG_CODE, ATTR_LINES_IN_VIEW, lines);
    if (*lines <= 0)
        *lines = PAGE_LINES;
}

// --- reading ----------------------------------------------------------------------------

// Registers first: the page pointers lead the operands of the code to their names.
bool Refresh()
{
    std::string cause;
    int first = 0, lines = 0;
    GetView(&first, &lines);
    const int result = DBV_Refresh(HasCode() ? &code : nullptr, first, lines, &cause);
    failedMs = result == 0 ? 0 : std::max(PLT_TickMs(), 1u);
    ShowValues(first, result == 0 ? lines : 0);
    if (result != 0)
        ShowOutcome("Not read: " + cause + ".", COLOR_BAD);
    else
        ShowWhere();
    return result == 0;
}

bool ReadCode(uint32_t address, std::vector<CODE_Instruction> *fresh)
{
    std::string cause;
    if (CODE_Read(STATION, address, PAGE_LINES, DBV_GetPages(), fresh, &cause) == 0)
        return true;
    ShowOutcome("Not read: " + cause + ".", COLOR_BAD);
    return false;
}

// Shows the code at an address; what is shown stays when that cannot be read.
bool ShowCode(uint32_t address, int line)
{
    std::vector<CODE_Instruction> fresh;
    if (!VR_EnsureCom()) {
        ShowOutcome(std::string("Not read: ") + COM_OFF_TEXT, COLOR_BAD);
        return false;
    }
    if (!Refresh() || !ReadCode(address, &fresh))
        return false;
    code = fresh;
    ClearListCtrl(PANEL, DEBUG_CODE);
    AppendLines(0);
    SetCtrlIndex(PANEL, DEBUG_CODE, std::min(line, static_cast<int>(code.size()) - 1));
    const std::string name = SYM_AddressToName(address);
    SetCtrlVal(PANEL, DEBUG_PLACE, name.empty() ? "$" + FormatHexAddress(address) : name);
    EnableButtons();
    return true;
}

void ShowAndRemember(uint32_t address)
{
    Place from;
    if (!code.empty())
        from = {code.front().address, std::max(GetLine(), 0)};
    if (!ShowCode(address, 0) || from.address == CODE_NO_ADDRESS || from.address == address)
        return;
    places.push_back(from);
    if (places.size() > PLACES_MAX)
        places.erase(places.begin());
    EnableButtons();
}

bool ReadTypedAddress(int control, uint32_t *address)
{
    std::string text;
    GetCtrlVal(PANEL, control, &text);
    *address = GetSysAddr(text.c_str());
    if (*address != ADDR_NONE && text.find('&') == std::string::npos)
        return true;
    ShowOutcome(ADR_UnknownText(text), COLOR_BAD);
    return false;
}

void ShowTypedCode()
{
    uint32_t address = 0;
    if (!HasCode())
        ShowOutcome(ONLY_C166);
    else if (ReadTypedAddress(DEBUG_PLACE, &address))
        ShowAndRemember(address & ~1u);
}

void FollowJump()
{
    const int line = GetLine();
    if (line < 0)
        return;
    const uint32_t target = code[static_cast<size_t>(line)].target;
    if (target == CODE_NO_ADDRESS)
        ShowOutcome("This instruction jumps nowhere that is known before it runs.");
    else
        ShowAndRemember(target);
}

void GoBack()
{
    if (places.empty())
        return;
    const Place place = places.back();
    if (ShowCode(place.address, place.line))
        places.pop_back();
    EnableButtons();
}

void ReadMore()
{
    if (code.empty() || code.size() >= LINES_MAX)
        return;
    const uint32_t next = code.back().address + code.back().length;
    std::vector<CODE_Instruction> fresh;
    if (next >= ADDR_LIMIT || !VR_EnsureCom() || !ReadCode(next, &fresh))
        return;
    const size_t before = code.size();
    code.insert(code.end(), fresh.begin(), fresh.end());
    AppendLines(before);
    SetCtrlIndex(PANEL, DEBUG_CODE, static_cast<int>(before));
    EnableButtons();
}

void CopyCode()
{
    std::string text;
    for (const CODE_Instruction &instruction : code)
        text += CODE_FormatLine(instruction) + "\n";
    if (ClipboardPutText(text) == 0)
        ShowOutcome("Copied: " + std::to_string(code.size()) + " instructions.");
}

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
    DBV_FillGroups();
    for (const int control : {DEBUG_PLACE, DEBUG_MEM_PLACE})
        SetCtrlCompletion(PANEL, control, NCM_CompleteCB);
    SetCtrlAttribute(PANEL, DEBUG_TIMER, ATTR_INTERVAL, PERIOD_S);
    EnableButtons();
}

void ShowMemoryPlace()
{
    uint32_t address = 0;
    if (!ReadTypedAddress(DEBUG_MEM_PLACE, &address))
        return;
    DBV_SetMemory(address);
    if (VR_EnsureCom())
        Refresh();
}

} // namespace

void DBW_Opened()
{
    Prepare();
    SetCtrlVal(PANEL, DEBUG_LIVE, 1);
    SetActiveCtrl(PANEL, DEBUG_PLACE);
    ShowWhere();
    if (isTimer != 0)
        Refresh();
}

void DBW_Changed()
{
    const std::string source =
        std::to_string(Procesor) + " " + std::to_string(STATION) + " " + szMapFileName;
    const bool isSame = source == shownSource;
    shownSource = source;
    if (!isPrepared || isSame)
        return;
    code.clear();
    places.clear();
    ClearListCtrl(PANEL, DEBUG_CODE);
    ClearListCtrl(PANEL, DEBUG_MEMORY);
    Prepare();
    if (IsShown())
        ShowWhere();
}

int DBW_PanelCB(int panel, int event, int data)
{
    if (event != EVENT_CLOSE && !(event == EVENT_KEYPRESS && data == KEY_ESC))
        return 0;
    HidePanel(panel);
    return 1;
}

int DBW_PlaceCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT)
        ShowTypedCode();
    return 0;
}

int DBW_ButtonCB(int, int control, int event, int)
{
    constexpr struct {
        int control;
        void (*act)();
    } ACTIONS[] = {{DEBUG_GO, ShowTypedCode},
                   {DEBUG_BACK, GoBack},
                   {DEBUG_FOLLOW, FollowJump},
                   {DEBUG_MORE, ReadMore},
                   {DEBUG_COPY, CopyCode}};
    for (const auto &row : ACTIONS)
        if (event == EVENT_COMMIT && row.control == control)
            row.act();
    return 0;
}

int DBW_LiveCB(int, int, int event, int)
{
    int isOn = 0;
    if (event != EVENT_COMMIT || GetCtrlVal(PANEL, DEBUG_LIVE, &isOn) < 0)
        return 0;
    if (isOn == 0)
        DBV_MarkOld();
    else if (VR_EnsureCom())
        Refresh();
    return 0;
}

int DBW_CodeCB(int, int, int event, int data)
{
    if (event == EVENT_VAL_CHANGED) {
        EnableButtons();
        if (failedMs == 0)
            ShowWhere();
    } else if (event == EVENT_COMMIT || event == EVENT_LEFT_DOUBLE_CLICK ||
               (event == EVENT_KEYPRESS && data == KEY_RIGHT))
        FollowJump();
    else if (event == EVENT_KEYPRESS && (data == KEY_LEFT || data == KEY_BACKSPACE))
        GoBack();
    return event == EVENT_KEYPRESS ? 1 : 0;
}

int DBW_GroupCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT && VR_EnsureCom())
        Refresh();
    return 0;
}

int DBW_RegistersCB(int, int, int event, int)
{
    int line = -1;
    std::string cause;
    if (event != EVENT_COMMIT && event != EVENT_LEFT_DOUBLE_CLICK)
        return 0;
    GetCtrlIndex(PANEL, DEBUG_REGISTERS, &line);
    if (VR_EnsureCom() && DBV_ReadTouchy(line, &cause) < 0)
        ShowOutcome("Not read: " + cause + ".", COLOR_BAD);
    return 0;
}

int DBW_MemPlaceCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT)
        ShowMemoryPlace();
    return 0;
}

int DBW_TimerCB(int, int, int, int)
{
    int isOn = 0;
    GetCtrlVal(PANEL, DEBUG_LIVE, &isOn);
    const bool isPausing = failedMs != 0 && PLT_TickMs() - failedMs < PAUSE_MS;
    if (isTimer != 0 && isOn != 0 && IsShown() && !isPausing)
        Refresh();
    return 0;
}
