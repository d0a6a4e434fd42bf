// What the window shows is drawn from `range`, the bytes as last read; what is typed into the
// fields stays text until it is read or written (memory_range.h).
#include "watch/windows/memory_panel.h"

#include <algorithm>

#include "comm/communication.h"
#include "runtime/list_columns.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/addr_name.h"
#include "text/bytes.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/litem.h"
#include "watch/windows/memory_range.h"
#include "watch/windows/name_completion.h"
#include "watch/windows/outcome_colors.h"
#include "watch/windows/selector_row.h"

namespace {

constexpr int PANEL = PANEL_MEMORY;
constexpr int DEFAULT_COUNT = 64; // bytes
// Pixels; the captions above the list stand at the same places.
constexpr int HEX_COLUMN = 80;
constexpr int TEXT_COLUMN = 436;

WIN_MemoryRange range; // as last read; empty before, and after a read that failed

void ShowOutcome(const std::string &text, int color)
{
    SetCtrlAttribute(PANEL, MEMORY_RESULT, ATTR_TEXT_COLOR, color);
    SetCtrlVal(PANEL, MEMORY_RESULT, text);
}

// The last line may be shorter.
size_t LineBytes(size_t first)
{
    return std::min<size_t>(MEMORY_LINE_BYTES, range.bytes.size() - first);
}

std::string LineLabel(size_t first)
{
    const uint8_t *bytes = range.bytes.data() + first;
    const uint32_t address = range.start + static_cast<uint32_t>(first);
    return SEL_AddressText(address) +
           SEL_Column(HEX_COLUMN, TXT_FormatHexBytes(bytes, LineBytes(first))) +
           SEL_Column(TEXT_COLUMN, TXT_PlainBytes(bytes, LineBytes(first)));
}

// Index of the selected line's first byte, or -1.
int SelectedByte()
{
    int line = -1;
    GetCtrlIndex(PANEL, MEMORY_LIST, &line);
    const int first = line * MEMORY_LINE_BYTES;
    return line >= 0 && first < static_cast<int>(range.bytes.size()) ? first : -1;
}

void ShowSelected()
{
    const int first = SelectedByte();
    const size_t at = static_cast<size_t>(std::max(first, 0));
    SetCtrlVal(PANEL, MEMORY_LINE,
               first < 0 ? "" : TXT_FormatHexBytes(range.bytes.data() + at, LineBytes(at)));
    for (const int control : {MEMORY_LINE, MEMORY_WRITE})
        SetCtrlAttribute(PANEL, control, ATTR_DIMMED, first < 0);
    SetCtrlAttribute(PANEL, MEMORY_COPY, ATTR_DIMMED, range.bytes.empty());
}

std::string TypedAddress()
{
    std::string text;
    GetCtrlVal(PANEL, MEMORY_ADDRESS, &text);
    return text;
}

void ShowPlace()
{
    uint32_t address = 0;
    int station = -1;
    std::string text;
    if (WIN_FindMemoryPlace(TypedAddress(), &address, &station, &text)) {
        text = WIN_MemoryPlaceText(address, station);
        text[0] = 'B'; // it begins a sentence here
        // A name is said where it says more than what was typed.
        const std::string name = SYM_AddressToName(address);
        if (!name.empty() && name != TypedAddress())
            text += ": " + name;
        const int first = SelectedByte(); // of another line than the first
        const std::string selected =
            first > 0 ? SYM_AddressToName(range.start + static_cast<uint32_t>(first)) : "";
        if (!selected.empty())
            text += ". Selected line: " + selected;
    }
    SetCtrlVal(PANEL, MEMORY_PLACE, text);
}

// Whether the place in the address field is that of the bytes below it.
bool IsPlaceShown()
{
    uint32_t address = 0;
    int station = -1;
    std::string message;
    return WIN_FindMemoryPlace(TypedAddress(), &address, &station, &message) &&
           address == range.start && station == range.station;
}

// Bytes that are old, or not those of the place in the address field, are grey, with the time
// of their reading in the tip.
void ShowAge()
{
    const bool isOld = range.isOld || !IsPlaceShown();
    std::string label, tip;
    if (isOld)
        tip = TXT_Format("Old: read at %02d:%02d:%02d from station %d.", range.readAt.hour,
                         range.readAt.minute, range.readAt.second, range.station);
    const size_t lines = (range.bytes.size() + MEMORY_LINE_BYTES - 1) / MEMORY_LINE_BYTES;
    for (int line = 0; line < static_cast<int>(lines); ++line) {
        if (GetLabelFromIndex(PANEL, MEMORY_LIST, line, &label) < 0)
            continue;
        std::vector<UI_Cell> cells;
        for (const UI_LabelColumn &column : UI_SplitColumns(label))
            cells.push_back({column.text, isOld ? UIS_DIM : UIS_NORMAL, tip});
        SetListCells(PANEL, MEMORY_LIST, line, cells);
    }
}

void ReadAndShow()
{
    WIN_MemoryRange wanted;
    int count = 0;
    GetCtrlVal(PANEL, MEMORY_COUNT, &count);
    const std::string refusal = WIN_FindMemoryRange(TypedAddress(), count, &wanted);
    if (!refusal.empty()) {
        ShowOutcome(refusal, COLOR_BAD);
        return;
    }
    if (!VR_EnsureCom()) {
        ShowOutcome(std::string("Not read: ") + COM_OFF_TEXT, COLOR_BAD);
        return;
    }
    // What could not be read is not left on the screen as if it had been: the list is empty then.
    std::string cause;
    const bool isRead = WIN_ReadMemoryRange(&wanted, &cause) == 0;
    range = wanted;
    int selected = 0, lines = 0;
    GetCtrlIndex(PANEL, MEMORY_LIST, &selected);
    ClearListCtrl(PANEL, MEMORY_LIST);
    for (size_t first = 0; first < range.bytes.size(); first += MEMORY_LINE_BYTES, ++lines)
        InsertListItem(PANEL, MEMORY_LIST, -1, LineLabel(first), lines);
    if (lines > 0)
        SetCtrlIndex(PANEL, MEMORY_LIST, std::clamp(selected, 0, lines - 1));
    ShowSelected();
    ShowAge();
    if (isRead)
        ShowOutcome("Read " + std::to_string(count) + " bytes from station " +
                        std::to_string(range.station) + ".",
                    COLOR_PLAIN);
    else
        ShowOutcome("Not read: " + cause + ".", COLOR_BAD);
}

// The bytes that are typed for the selected line; "", or why they are refused.
std::string CheckLine(size_t first, std::vector<uint8_t> *wanted)
{
    // A place was typed since the bytes were read: to which of the two would they go?
    if (!IsPlaceShown())
        return "REFUSED: The bytes are those of " +
               WIN_MemoryPlaceText(range.start, range.station) +
               ": press Read for the place above.";
    std::string text;
    GetCtrlVal(PANEL, MEMORY_LINE, &text);
    const std::string error = TXT_ParseHexBytes(text, LineBytes(first), wanted);
    return error.empty() ? "" : "REFUSED: " + error;
}

void WriteAndShow()
{
    const int selected = SelectedByte();
    if (selected < 0)
        return;
    const size_t first = static_cast<size_t>(selected);
    std::vector<uint8_t> wanted;
    const std::string refusal = CheckLine(first, &wanted);
    if (!refusal.empty()) {
        ShowOutcome(refusal, COLOR_BAD);
        return;
    }
    if (std::equal(wanted.begin(), wanted.end(), range.bytes.begin() + selected)) {
        ShowOutcome("Nothing to write: the bytes are as they were read.", COLOR_PLAIN);
        return;
    }
    if (!VR_EnsureCom()) {
        ShowOutcome(std::string("REFUSED: Not written: ") + COM_OFF_TEXT, COLOR_BAD);
        return;
    }
    std::string message;
    bool isRead = false;
    const WIN_MemoryOutcome outcome = WIN_WriteMemory(&range, first, wanted, &message, &isRead);
    if (isRead) {
        ReplaceListItem(PANEL, MEMORY_LIST, selected / MEMORY_LINE_BYTES, LineLabel(first), 0);
        ShowAge();
    }
    // After a failure what was typed stays in the field, to be written again.
    if (outcome == WIN_MEMORY_OK || outcome == WIN_MEMORY_DIFFERENT)
        ShowSelected();
    ShowOutcome(message, outcome == WIN_MEMORY_OK            ? COLOR_GOOD
                         : outcome == WIN_MEMORY_NOT_WRITTEN ? COLOR_BAD
                                                             : COLOR_WARN);
}

void CopyLines()
{
    int count = 0;
    GetNumListItems(PANEL, MEMORY_LIST, &count);
    std::string text, label;
    for (int i = 0; i < count; ++i)
        if (GetLabelFromIndex(PANEL, MEMORY_LIST, i, &label) >= 0)
            text += UI_JoinColumns(label, "\t") + "\n";
    if (ClipboardPutText(text) == 0)
        ShowOutcome("Copied: " + std::to_string(range.bytes.size()) + " bytes.", COLOR_PLAIN);
}

} // namespace

void WIN_OpenMemory(int index)
{
    int count = 0;
    GetCtrlVal(PANEL, MEMORY_COUNT, &count);
    if (count < 1)
        SetCtrlVal(PANEL, MEMORY_COUNT, DEFAULT_COUNT);
    // What a TMS320 holds is no bytes: the window opens at what it showed before.
    const bool hasPlace = index >= 0 && index < nLItems && LIT_HasAddress(aLItems[index]) &&
                          !LIT_IsTMS(aLItems[index]);
    if (hasPlace)
        SetCtrlVal(PANEL, MEMORY_ADDRESS, WIN_MemoryPlaceOf(aLItems[index]));
    SetCtrlCompletion(PANEL, MEMORY_ADDRESS, WIN_CompleteNameCB);
    ShowPlace();
    ShowSelected();
    DisplayPanel(PANEL);
    SetActivePanel(PANEL);
    SetActiveCtrl(PANEL, MEMORY_ADDRESS);
    ShowOutcome("", COLOR_PLAIN);
    if (hasPlace && isTimer) // nobody is asked about communication for merely opening it
        ReadAndShow();
}

void WIN_ShowMemoryOld()
{
    range.isOld = true;
    ShowAge();
}

int WIN_MemoryAddressCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    if (event == EVENT_VAL_CHANGED) { // at every key: where it would read, and what is below
        ShowPlace();
        ShowAge();
    } else if (event == EVENT_COMMIT)
        ReadAndShow();
    return 0;
}

int WIN_MemoryCountCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    if (event == EVENT_COMMIT)
        ReadAndShow();
    return 0;
}

int WIN_MemoryListCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    if (event == EVENT_VAL_CHANGED) {
        ShowSelected();
        ShowPlace();
    } else if (event == EVENT_COMMIT || event == EVENT_LEFT_DOUBLE_CLICK) // to be changed
        SetActiveCtrl(PANEL, MEMORY_LINE);
    return 0;
}

int WIN_MemoryLineCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    if (event == EVENT_COMMIT)
        WriteAndShow();
    return 0;
}

int WIN_MemoryButtonCB(int panel, int control, int event, int data)
{
    // A click, or Enter while the button has the keyboard.
    if (event != EVENT_COMMIT && !(event == EVENT_KEYPRESS && data == KEY_ENTER))
        return 0;
    if (control == MEMORY_READ)
        ReadAndShow();
    else if (control == MEMORY_WRITE)
        WriteAndShow();
    else if (control == MEMORY_COPY)
        CopyLines();
    else
        HidePanel(panel);
    return 1;
}
