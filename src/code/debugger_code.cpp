// A refresh reads and proves everything before anything of it is shown. The code itself is read
// once and kept: a program in flash does not change, its operands do.
#include "code/debugger_code.h"

#include <algorithm>
#include <string>
#include <vector>

#include "code/debugger_values.h"
#include "code/listing.h"
#include "comm/communication.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "symbols/addr_name.h"
#include "text/bytes.h"
#include "ui/resource.h"
#include "watch/windows/selector_row.h"

namespace {

constexpr int PANEL = PANEL_DEBUGGER;
constexpr int PAGE_LINES = 100; // instructions read at once
// Bounds of the list and of the way back, so that neither grows for a whole day.
constexpr size_t LINES_MAX = 1000, PLACES_MAX = 100;
constexpr uint32_t PAUSE_MS = 3000; // after a failed refresh
enum Column { COLUMN_ADDRESS, COLUMN_BYTES, COLUMN_TEXT, COLUMN_NAMES, COLUMN_VALUES };

const char LIVE_VIEW[] = "Live view: the target goes on running; it cannot be stopped or stepped.";

struct Place {
    uint32_t address = CODE_NO_ADDRESS;
    int line = 0; // selected
};

std::vector<CODE_Instruction> code;
std::vector<Place> places; // come from, the last one last
uint32_t failedMs = 0;     // when the last refresh failed; 0 = it did not

// The selected line, or -1: the list may not have been refilled yet.
int GetLine()
{
    int line = -1;
    GetCtrlIndex(PANEL, DEBUG_CODE, &line);
    return line < static_cast<int>(code.size()) ? line : -1;
}

// The line of a named address carries the name in front of those that its operands use.
std::vector<UI_Cell> MakeCells(const CODE_Instruction &instruction)
{
    const std::string here = SYM_AddressToName(instruction.address);
    const bool isStart = !here.empty() && here.find('+') == std::string::npos;
    std::string names = CODE_FormatNames(instruction);
    if (isStart)
        names = here + ":" + (names.empty() ? "" : "  ") + names;
    const unsigned style = !instruction.isValid ? UIS_DIM : isStart ? UIS_BOLD : UIS_NORMAL;
    return {{SEL_AddressText(instruction.address), style, here},
            {TXT_FormatHexBytes(instruction.bytes, instruction.length), UIS_DIM, ""},
            {CODE_FormatInstruction(instruction), style, names},
            {names, UIS_NORMAL, names},
            {CODE_FormatOperands(instruction), UIS_NORMAL, "as last read"}};
}

// Of lines in front of `first` nothing is drawn again.
void AppendLines(size_t first)
{
    for (size_t i = first; i < code.size(); ++i) {
        InsertListItem(PANEL, DEBUG_CODE, -1, SEL_AddressText(code[i].address), 0);
        SetListCells(PANEL, DEBUG_CODE, static_cast<int>(i), MakeCells(code[i]));
    }
    CODE_EnableDebuggerButtons();
}

// The values in view. A line out of view loses its own: no refresh has read it again.
void ShowValues(int first, int lines)
{
    for (size_t i = 0; i < code.size(); ++i) {
        const int line = static_cast<int>(i);
        std::vector<UI_Cell> cells;
        if (GetListCells(PANEL, DEBUG_CODE, line, &cells) < 0 || cells.size() <= COLUMN_VALUES)
            continue;
        const bool isInView = line >= first && line < first + lines;
        const std::string text = isInView ? CODE_FormatOperands(code[i]) : "";
        if (cells[COLUMN_VALUES].text == text)
            continue;
        cells[COLUMN_VALUES].text = text;
        SetListCells(PANEL, DEBUG_CODE, line, cells);
    }
}

bool ReadCode(uint32_t address, std::vector<CODE_Instruction> *fresh)
{
    std::string cause;
    if (CODE_Read(STATION, address, PAGE_LINES, CODE_GetPages(), fresh, &cause) == 0)
        return true;
    CODE_ShowDebuggerOutcome("Not read: " + cause + ".", COLOR_BAD);
    return false;
}

// In front of the code stands a refresh: its page pointers lead the operands to their names.
bool ShowCodeAt(uint32_t address, int line)
{
    std::vector<CODE_Instruction> fresh;
    if (!VR_EnsureCom()) {
        CODE_ShowDebuggerOutcome(std::string("Not read: ") + COM_OFF_TEXT, COLOR_BAD);
        return false;
    }
    if (!CODE_RefreshDebugger() || !ReadCode(address, &fresh))
        return false;
    code = fresh; // only now: what was shown stays when this cannot be read
    ClearListCtrl(PANEL, DEBUG_CODE);
    AppendLines(0);
    SetCtrlIndex(PANEL, DEBUG_CODE, std::min(line, static_cast<int>(code.size()) - 1));
    const std::string name = SYM_AddressToName(address);
    SetCtrlVal(PANEL, DEBUG_PLACE, name.empty() ? "$" + SEL_AddressText(address) : name);
    CODE_EnableDebuggerButtons();
    return true;
}

} // namespace

void CODE_ShowDebuggerOutcome(const std::string &text, int color)
{
    SetCtrlAttribute(PANEL, DEBUG_MESSAGE, ATTR_TEXT_COLOR, color);
    SetCtrlVal(PANEL, DEBUG_MESSAGE, text);
}

void CODE_ShowWhere()
{
    const int line = GetLine();
    const uint32_t address = line >= 0 ? code[static_cast<size_t>(line)].address : 0;
    const std::string name = line >= 0 ? SYM_AddressToName(address) : "";
    CODE_ShowDebuggerOutcome((CODE_CanDecode() ? LIVE_VIEW : CODE_ONLY_C166) +
                             (name.empty() ? "" : "  " + SEL_AddressText(address) + ": " + name));
}

void CODE_EnableDebuggerButtons()
{
    const int line = GetLine();
    const bool canFollow = line >= 0 && code[static_cast<size_t>(line)].target != CODE_NO_ADDRESS;
    SetCtrlAttribute(PANEL, DEBUG_FOLLOW, ATTR_DIMMED, !canFollow);
    SetCtrlAttribute(PANEL, DEBUG_BACK, ATTR_DIMMED, places.empty());
    SetCtrlAttribute(PANEL, DEBUG_MORE, ATTR_DIMMED, code.empty() || code.size() >= LINES_MAX);
    SetCtrlAttribute(PANEL, DEBUG_COPY, ATTR_DIMMED, code.empty());
    SetCtrlAttribute(PANEL, DEBUG_GO, ATTR_DIMMED, !CODE_CanDecode());
}

bool CODE_RefreshDebugger()
{
    std::string cause;
    int first = 0, lines = 0;
    GetCtrlAttribute(PANEL, DEBUG_CODE, ATTR_FIRST_VISIBLE_LINE, &first);
    GetCtrlAttribute(PANEL, DEBUG_CODE, ATTR_LINES_IN_VIEW, &lines);
    if (lines <= 0) // no view has said how many it shows
        lines = PAGE_LINES;
    const int result = CODE_RefreshValues(CODE_CanDecode() ? &code : nullptr, first, lines, &cause);
    failedMs = result == 0 ? 0 : std::max(PLT_TickMs(), 1u); // the clock may stand at 0
    ShowValues(first, result == 0 ? lines : 0);
    if (result != 0)
        CODE_ShowDebuggerOutcome("Not read: " + cause + ".", COLOR_BAD);
    else
        CODE_ShowWhere();
    return result == 0;
}

bool CODE_HasFailed()
{
    return failedMs != 0;
}

bool CODE_IsPausing()
{
    return failedMs != 0 && PLT_TickMs() - failedMs < PAUSE_MS;
}

void CODE_ShowCode(uint32_t address)
{
    Place from;
    if (!code.empty())
        from = {code.front().address, std::max(GetLine(), 0)};
    if (!ShowCodeAt(address, 0) || from.address == CODE_NO_ADDRESS || from.address == address)
        return;
    // Only a jump that was shown can be gone back from; a jump to itself is none.
    places.push_back(from);
    if (places.size() > PLACES_MAX)
        places.erase(places.begin());
    CODE_EnableDebuggerButtons();
}

void CODE_FollowJump()
{
    const int line = GetLine();
    if (line < 0)
        return;
    const uint32_t target = code[static_cast<size_t>(line)].target;
    // A jump through a register, a return, or no jump at all.
    if (target == CODE_NO_ADDRESS)
        CODE_ShowDebuggerOutcome("This instruction jumps nowhere that is known before it runs.");
    else
        CODE_ShowCode(target);
}

void CODE_GoBack()
{
    if (places.empty())
        return;
    // A place that cannot be read now stays the one to go back to.
    const Place place = places.back();
    if (ShowCodeAt(place.address, place.line))
        places.pop_back();
    CODE_EnableDebuggerButtons();
}

void CODE_ReadMoreCode()
{
    if (code.empty() || code.size() >= LINES_MAX)
        return;
    // What the last line leaves of an extension's scope is not known behind it.
    const uint32_t next = code.back().address + code.back().length;
    std::vector<CODE_Instruction> fresh;
    if (next >= ADDR_LIMIT || !VR_EnsureCom() || !ReadCode(next, &fresh))
        return;
    const size_t before = code.size();
    code.insert(code.end(), fresh.begin(), fresh.end());
    AppendLines(before);
    SetCtrlIndex(PANEL, DEBUG_CODE, static_cast<int>(before));
    CODE_EnableDebuggerButtons();
}

void CODE_CopyCode()
{
    std::string text;
    // All that was read, not the lines in view; without values, which are of one moment.
    for (const CODE_Instruction &instruction : code)
        text += CODE_FormatLine(instruction) + "\n";
    if (ClipboardPutText(text) == 0)
        CODE_ShowDebuggerOutcome("Copied: " + std::to_string(code.size()) + " instructions.");
}

void CODE_ForgetCode()
{
    code.clear();
    // Places of another station or program lead nowhere here.
    places.clear();
    ClearListCtrl(PANEL, DEBUG_CODE);
}
