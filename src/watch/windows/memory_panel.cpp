#include "watch/windows/memory_panel.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "comm/communication.h"
#include "comm/sysaddr.h"
#include "comm/ucm.h"
#include "platform/system.h"
#include "runtime/list_columns.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/addr_name.h"
#include "text/bytes.h"
#include "ui/resource.h"
#include "watch/list/litem.h"
#include "watch/list/read_item.h"
#include "watch/windows/name_completion.h"
#include "watch/windows/outcome_colors.h"
#include "watch/windows/selector_row.h"

namespace {

constexpr int PANEL = PANEL_MEMORY;
constexpr int DEFAULT_COUNT = 64;
// Pixels; the captions above the list stand at the same places.
constexpr int HEX_COLUMN = 80;
constexpr int TEXT_COLUMN = 436;

typedef std::vector<uint8_t> Bytes;

struct Range {
    uint32_t start = 0;
    int station = 0;
    Bytes bytes; // empty: nothing has been read
    PLT_Date readAt;
    bool isOld = false; // communication was off since, or another station is selected
};
Range range;

void ShowOutcome(const std::string &text, int color)
{
    SetCtrlAttribute(PANEL, MEMORY_RESULT, ATTR_TEXT_COLOR, color);
    SetCtrlVal(PANEL, MEMORY_RESULT, text);
}

// --- lines ------------------------------------------------------------------------------

size_t LineBytes(size_t first)
{
    return std::min<size_t>(MEMORY_LINE_BYTES, range.bytes.size() - first);
}

std::string LineLabel(size_t first)
{
    const uint8_t *bytes = range.bytes.data() + first;
    const uint32_t address = range.start + static_cast<uint32_t>(first);
    return SEL_AddressText(address) + SEL_Column(HEX_COLUMN, BYT_Hex(bytes, LineBytes(first))) +
           SEL_Column(TEXT_COLUMN, BYT_Plain(bytes, LineBytes(first)));
}

// Bytes that are old, or not those of the place in the address field, are grey, with the time
// of their reading in the tip.
void ShowLineAge(int line, bool isOld)
{
    std::string label, tip;
    if (GetLabelFromIndex(PANEL, MEMORY_LIST, line, &label) < 0)
        return;
    if (isOld) {
        char text[40];
        std::snprintf(text, sizeof text, "Old: read at %02d:%02d:%02d from station %d.",
                      range.readAt.hour, range.readAt.minute, range.readAt.second, range.station);
        tip = text;
    }
    std::vector<UI_Cell> cells;
    for (const UIC_Column &column : UIC_SplitColumns(label))
        cells.push_back({column.text, isOld ? UIS_DIM : UIS_NORMAL, tip});
    SetListCells(PANEL, MEMORY_LIST, line, cells);
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
               first < 0 ? "" : BYT_Hex(range.bytes.data() + at, LineBytes(at)));
    for (const int control : {MEMORY_LINE, MEMORY_WRITE})
        SetCtrlAttribute(PANEL, control, ATTR_DIMMED, first < 0);
    SetCtrlAttribute(PANEL, MEMORY_COPY, ATTR_DIMMED, range.bytes.empty());
}

void ShowRange()
{
    int line = 0;
    GetCtrlIndex(PANEL, MEMORY_LIST, &line);
    ClearListCtrl(PANEL, MEMORY_LIST);
    int lines = 0;
    for (size_t first = 0; first < range.bytes.size(); first += MEMORY_LINE_BYTES, ++lines)
        InsertListItem(PANEL, MEMORY_LIST, -1, LineLabel(first), lines);
    if (lines > 0)
        SetCtrlIndex(PANEL, MEMORY_LIST, std::clamp(line, 0, lines - 1));
    ShowSelected();
}

// --- reading ----------------------------------------------------------------------------

std::string TypedAddress()
{
    std::string text;
    GetCtrlVal(PANEL, MEMORY_ADDRESS, &text);
    return text;
}

// Where the typed range begins. False, and why in *message, when that is nowhere.
bool FindStart(uint32_t *address, int *station, std::string *message)
{
    const std::string text = TypedAddress();
    *message = ADR_HINT;
    if (text.find_first_not_of(' ') == std::string::npos)
        return false;
    *address = GetSysAddrM(text.c_str(), station);
    const char *name = text.c_str();
    GetStationModifier(&name);
    while (*name == ' ')
        ++name;
    *message = *name == '&' ? "The memory of a TMS320 behind a station is not bytes: use a watch "
                              "item or the memory box."
                            : ADR_UnknownText(text);
    if (*address == ADDR_NONE || *name == '&')
        return false;
    *message = ADR_StationText();
    return *station <= STATION_MAX;
}

std::string PlaceText(uint32_t address, int station)
{
    char place[80];
    std::snprintf(place, sizeof place, "byte address 0x%06X", address);
    std::string text = place;
    if (IsWordAddressing(Procesor))
        text += ", word address 0x" + SEL_AddressText(address);
    return text + ", station " + std::to_string(station);
}

void ShowPlace()
{
    uint32_t address = 0;
    int station = -1;
    std::string text;
    if (FindStart(&address, &station, &text)) {
        text = PlaceText(address, station < 0 ? STATION : station);
        text[0] = 'B';
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

// The range that is typed, into *wanted; false, with the reason said, when it is none.
bool ReadTypedRange(Range *wanted)
{
    std::string message;
    int count = 0, station = -1;
    GetCtrlVal(PANEL, MEMORY_COUNT, &count);
    if (!FindStart(&wanted->start, &station, &message)) {
        ShowOutcome(message, COLOR_BAD);
        return false;
    }
    if (count < 1 || count > MEMORY_BYTES_MAX) {
        ShowOutcome("The count must be 1 to " + std::to_string(MEMORY_BYTES_MAX) + " bytes.",
                    COLOR_BAD);
        return false;
    }
    if (static_cast<uint32_t>(count) > ADDR_LIMIT - wanted->start) {
        ShowOutcome("The range ends beyond the target's memory.", COLOR_BAD);
        return false;
    }
    wanted->station = station < 0 ? STATION : station;
    wanted->bytes.resize(static_cast<size_t>(count));
    return true;
}

// Whether the place in the address field is that of the bytes below it.
bool IsPlaceShown()
{
    uint32_t address = 0;
    int station = -1;
    std::string message;
    return FindStart(&address, &station, &message) && address == range.start &&
           (station < 0 ? STATION : station) == range.station;
}

void ShowAge()
{
    const bool isOld = range.isOld || !IsPlaceShown();
    const int lines =
        static_cast<int>((range.bytes.size() + MEMORY_LINE_BYTES - 1) / MEMORY_LINE_BYTES);
    for (int line = 0; line < lines; ++line)
        ShowLineAge(line, isOld);
}

// What could not be read is not left on the screen as if it had been.
void ReadAndShow()
{
    Range wanted;
    if (!ReadTypedRange(&wanted))
        return;
    if (!VR_EnsureCom()) {
        ShowOutcome(std::string("Not read: ") + COM_OFF_TEXT, COLOR_BAD);
        return;
    }
    const uint32_t count = static_cast<uint32_t>(wanted.bytes.size());
    std::string cause;
    const bool isRead =
        RDI_ReadBytes(wanted.station, wanted.start, count, wanted.bytes.data(), &cause) == 0;
    if (!isRead)
        wanted.bytes.clear();
    PLT_LocalTime(&wanted.readAt);
    range = wanted;
    ShowRange();
    ShowAge();
    if (isRead)
        ShowOutcome("Read " + std::to_string(count) + " bytes from station " +
                        std::to_string(range.station) + ".",
                    COLOR_PLAIN);
    else
        ShowOutcome("Not read: " + cause + ".", COLOR_BAD);
}

// --- writing ----------------------------------------------------------------------------

// Writes each run of changed bytes with one message and nothing between them: the target
// may have changed a neighbour since it was read. False when a message failed.
bool WriteChanged(uint32_t address, const Bytes &before, const Bytes &wanted)
{
    for (size_t begin = 0; begin < wanted.size();) {
        size_t end = begin;
        while (end < wanted.size() && wanted[end] != before[end])
            ++end;
        if (end > begin && UCM_Write(range.station, address + static_cast<uint32_t>(begin),
                                     static_cast<uint32_t>(end - begin), &wanted[begin]) < 0)
            return false;
        begin = std::max(end, begin + 1);
    }
    return true;
}

// What the target holds now against what was wanted, of the bytes that were written.
void Compare(uint32_t address, const Bytes &before, const Bytes &wanted, const Bytes &held)
{
    for (size_t i = 0; i < wanted.size(); ++i) {
        if (wanted[i] == before[i] || wanted[i] == held[i])
            continue;
        char text[80];
        std::snprintf(text, sizeof text, " 0x%06X: wrote %02X, the target holds %02X.",
                      address + static_cast<uint32_t>(i), wanted[i], held[i]);
        ShowOutcome(std::string("DIFFERENT at byte address") + text, COLOR_WARN);
        return;
    }
    size_t changed = 0;
    for (size_t i = 0; i < wanted.size(); ++i)
        changed += wanted[i] != before[i];
    ShowOutcome("OK: Written and read back: " + std::to_string(changed) +
                    (changed == 1 ? " byte." : " bytes."),
                COLOR_GOOD);
}

void WriteLine(size_t first, const Bytes &before, const Bytes &wanted)
{
    const uint32_t address = range.start + static_cast<uint32_t>(first);
    const bool isWritten = WriteChanged(address, before, wanted);
    std::string cause = isWritten ? "" : UCM_LastErrorText();
    if (!isWritten)
        ShowOutcome("FAILED: Not written, or only in part: " + cause + ".", COLOR_BAD);
    Bytes held(before.size());
    const bool isRead = RDI_ReadBytes(range.station, address, static_cast<uint32_t>(held.size()),
                                      held.data(), &cause) == 0;
    if (isWritten && !isRead)
        ShowOutcome("NOT VERIFIED: Written, but the line could not be read: " + cause + ".",
                    COLOR_WARN);
    if (!isRead)
        return;
    std::copy(held.begin(), held.end(), range.bytes.begin() + static_cast<long>(first));
    ReplaceListItem(PANEL, MEMORY_LIST, static_cast<int>(first) / MEMORY_LINE_BYTES,
                    LineLabel(first), 0);
    ShowAge();
    if (!isWritten)
        return;
    ShowSelected();
    Compare(address, before, wanted, held);
}

void WriteAndShow()
{
    const int selected = SelectedByte();
    if (selected < 0)
        return;
    const size_t first = static_cast<size_t>(selected);
    const auto begin = range.bytes.begin() + selected;
    const Bytes before(begin, begin + static_cast<long>(LineBytes(first)));
    Bytes wanted;
    std::string text;
    if (!IsPlaceShown()) {
        ShowOutcome("REFUSED: The bytes are those of " + PlaceText(range.start, range.station) +
                        ": press Read for the place above.",
                    COLOR_BAD);
        return;
    }
    GetCtrlVal(PANEL, MEMORY_LINE, &text);
    const std::string error = BYT_Parse(text, before.size(), &wanted);
    if (!error.empty())
        ShowOutcome("REFUSED: " + error, COLOR_BAD);
    else if (wanted == before)
        ShowOutcome("Nothing to write: the bytes are as they were read.", COLOR_PLAIN);
    else if (!VR_EnsureCom())
        ShowOutcome(std::string("REFUSED: Not written: ") + COM_OFF_TEXT, COLOR_BAD);
    else
        WriteLine(first, before, wanted);
}

// The item's name when it says where the item is, else its address.
std::string PlaceOf(const LItem &item)
{
    if (GetSysAddr(item.name.c_str()) == item.address)
        return item.name;
    char place[40];
    std::snprintf(place, sizeof place, "$%X", item.address);
    return (item.station < 0 ? "" : std::to_string(item.station) + ":") + place;
}

void CopyLines()
{
    int count = 0;
    GetNumListItems(PANEL, MEMORY_LIST, &count);
    std::string text, label;
    for (int i = 0; i < count; ++i)
        if (GetLabelFromIndex(PANEL, MEMORY_LIST, i, &label) >= 0)
            text += UIC_JoinColumns(label, "\t") + "\n";
    if (ClipboardPutText(text) == 0)
        ShowOutcome("Copied: " + std::to_string(range.bytes.size()) + " bytes.", COLOR_PLAIN);
}

bool IsPressed(int event, int data)
{
    return event == EVENT_COMMIT || (event == EVENT_KEYPRESS && data == KEY_ENTER);
}

int Press(int event, int data, void (*act)())
{
    if (!IsPressed(event, data))
        return 0;
    act();
    return 1;
}

} // namespace

void MMP_Open(int index)
{
    int count = 0;
    GetCtrlVal(PANEL, MEMORY_COUNT, &count);
    if (count < 1)
        SetCtrlVal(PANEL, MEMORY_COUNT, DEFAULT_COUNT);
    const bool hasPlace = index >= 0 && index < nLItems && LIT_HasAddress(aLItems[index]) &&
                          !LIT_IsTMS(aLItems[index]);
    if (hasPlace)
        SetCtrlVal(PANEL, MEMORY_ADDRESS, PlaceOf(aLItems[index]));
    SetCtrlCompletion(PANEL, MEMORY_ADDRESS, NCM_CompleteCB);
    ShowPlace();
    ShowSelected();
    DisplayPanel(PANEL);
    SetActivePanel(PANEL);
    SetActiveCtrl(PANEL, MEMORY_ADDRESS);
    ShowOutcome("", COLOR_PLAIN);
    if (hasPlace && isTimer)
        ReadAndShow();
}

void MMP_ShowOld()
{
    range.isOld = true;
    ShowAge();
}

int MMP_PanelCB(int panel, int event, int data)
{
    if (event != EVENT_CLOSE && !(event == EVENT_KEYPRESS && data == KEY_ESC))
        return 0;
    HidePanel(panel);
    return 1;
}

int MMP_AddressCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    if (event == EVENT_VAL_CHANGED) {
        ShowPlace();
        ShowAge();
    } else if (event == EVENT_COMMIT)
        ReadAndShow();
    return 0;
}

int MMP_CountCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    if (event == EVENT_COMMIT)
        ReadAndShow();
    return 0;
}

int MMP_ReadCB(int /*panel*/, int /*control*/, int event, int data)
{
    return Press(event, data, ReadAndShow);
}

int MMP_ListCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    if (event == EVENT_VAL_CHANGED) {
        ShowSelected();
        ShowPlace();
    } else if (event == EVENT_COMMIT || event == EVENT_LEFT_DOUBLE_CLICK)
        SetActiveCtrl(PANEL, MEMORY_LINE);
    return 0;
}

int MMP_LineCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    if (event == EVENT_COMMIT)
        WriteAndShow();
    return 0;
}

int MMP_WriteCB(int /*panel*/, int /*control*/, int event, int data)
{
    return Press(event, data, WriteAndShow);
}

int MMP_CopyCB(int /*panel*/, int /*control*/, int event, int data)
{
    return Press(event, data, CopyLines);
}

int MMP_CloseCB(int panel, int /*control*/, int event, int data)
{
    if (IsPressed(event, data))
        HidePanel(panel);
    return IsPressed(event, data);
}
