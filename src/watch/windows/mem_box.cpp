// The box is text, written anew at each reading: bytes or typed items of the C166's memory, or
// words of the TMS320's through the mailbox. Its text for other programs is cut out of that.
#include "watch/windows/mem_box.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

#include "comm/sysaddr.h"
#include "comm/tms_mailbox.h"
#include "comm/ucm.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/bytes.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/list/read_item.h"
#include "watch/value/tms_float.h"
#include "watch/value/value_types.h"
#include "watch/windows/outcome_colors.h"

char cMemBoxType = 'x';
int nMemBoxItmSz = 2;

namespace {

constexpr int ROWS = 4;
constexpr int ROW_BYTES = 16;
constexpr int TYPED_ITEMS = 8; // two beside one another
constexpr int TMS_WORDS = 4;
// A raw line: "00001f00( +0):  01 02 ... 10  characters", the characters at a fixed place
// because they may be blanks themselves.
constexpr size_t RAW_BYTES_AT = 15;
constexpr size_t RAW_BYTES_CHARS = ROW_BYTES * 3;
constexpr size_t RAW_TEXT_AT = RAW_BYTES_AT + RAW_BYTES_CHARS + 2;
constexpr size_t RAW_CHARS = RAW_TEXT_AT + ROW_BYTES;
const char OUT_OF_RANGE[] = "The address is outside the target's memory.";

void Print(const std::string &text)
{
    SetCtrlAttribute(mainPanel, MAIN_MEM_BOX, ATTR_TEXT_COLOR, COLOR_PLAIN);
    SetCtrlVal(mainPanel, MAIN_MEM_BOX, text);
}

// The box has room for the cause that a result code does not carry.
int Failed(int result, const std::string &cause)
{
    Print("\n " + cause);
    return result;
}

int typedStation = -1; // in front of the address that is being read, -1 = the selected one

enum Memory { BY_SELECTED_ITEM, OF_C166, OF_TMS };

// What the address field says. A bare number is hexadecimal and means the memory of the
// selected item; everything else is a place as it is everywhere else, and says whose.
struct Place {
    uint32_t address = 0;
    int station = -1;
    Memory memory = BY_SELECTED_ITEM;
};

// "" and the place, or why there is none.
std::string FindPlace(const std::string &text, Place *place)
{
    const char *cursor = text.c_str();
    place->station = GetStationModifier(&cursor);
    if (place->station > STATION_MAX)
        return COM_UnknownStationText();
    const std::string what = TXT_Trim(cursor);
    if (what.empty())
        return "An address or a name is missing behind the station.";
    // A name of the map that could be a number is the name: nobody writes "ADC" for 0xADC then.
    const bool isHex = what.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    const bool isLikeName = std::isdigit(static_cast<unsigned char>(what[0])) == 0;
    if (isHex && (!isLikeName || GetSysAddrWk(what.c_str()) == ADDR_NONE)) {
        const unsigned long long number = std::strtoull(what.c_str(), nullptr, 16);
        // One beyond the target stays there, for the read to refuse.
        place->address = number > ADDR_LIMIT ? ADDR_LIMIT : static_cast<uint32_t>(number);
        return "";
    }
    place->memory = what[0] == '&' ? OF_TMS : OF_C166;
    place->address = GetSysAddrWk(what.c_str());
    return place->address == ADDR_NONE ? COM_UnknownNameText(what) : "";
}

int StationToRead()
{
    return typedStation >= 0 ? typedStation : STATION;
}

std::string RawText(uint32_t address, const uint8_t *bytes)
{
    std::string text;
    for (int row = 0; row < ROWS; ++row, bytes += ROW_BYTES) {
        const int offset = row * ROW_BYTES;
        text += TXT_Format("\n%08x(%+3i): ", address + static_cast<uint32_t>(offset), offset);
        text +=
            " " + TXT_FormatHexBytes(bytes, ROW_BYTES) + "  " + TXT_PlainBytes(bytes, ROW_BYTES);
    }
    return text;
}

// One item of a typed row: its value only; place and spacing are the caller's.
std::string TypedValue(const uint8_t *bytes)
{
    const uint64_t value = TXT_GetLittle(bytes, static_cast<size_t>(nMemBoxItmSz));
    const int unusedBits = 64 - 8 * nMemBoxItmSz;
    float number;
    const VAL_TypeRow *row = VAL_FindType(cMemBoxType);
    switch (row != nullptr ? row->plainForm : 'x') {
    case 'i':
        return TXT_Format("%10lld", static_cast<long long>(
                                        static_cast<int64_t>(value << unusedBits) >> unusedBits));
    case 'u':
        return TXT_Format("%15llu", static_cast<unsigned long long>(value));
    case 'f': // the IEEE one, for the TMS320's is shown by words
        std::memcpy(&number, bytes, sizeof number);
        return TXT_Format("%+10g (%8Xh)", static_cast<double>(number),
                          static_cast<unsigned>(value));
    default:
        return TXT_Format("%8llXh", static_cast<unsigned long long>(value));
    }
}

std::string TypedText(uint32_t address, const uint8_t *bytes)
{
    const bool isFloat = cMemBoxType == 'f';
    const VAL_TypeRow *row = VAL_FindType(cMemBoxType);
    std::string text = " float:\n ------------"; // a float's size is no news
    if (row != nullptr && row->plainForm != 'f')
        text = std::string(" ") + row->memoryLabel + " " + std::to_string(nMemBoxItmSz) +
               "B\n ------------";
    for (int item = 0; item < TYPED_ITEMS / 2; ++item) {
        for (int side = 0; side < 2; ++side) {
            // Items count down the left side first.
            const int offset = (item + side * TYPED_ITEMS / 2) * nMemBoxItmSz;
            text += side == 0 ? "\n " : isFloat ? "   " : "       ";
            const uint32_t place = address + static_cast<uint32_t>(offset);
            text += isFloat ? TXT_Format("%06x(%+3i): ", place, offset)
                            : TXT_Format("%06x (%+3i):   ", place, offset);
            text += TypedValue(bytes + offset);
        }
    }
    return text;
}

std::string WordsText(uint32_t address, const uint32_t *words)
{
    std::string text =
        "  ADDR:         |     hex:          long:      unsign. long:     TMS float:\n "
        "------------------------------------------------------------------------";
    for (int i = 0; i < TMS_WORDS; ++i)
        text += TXT_Format("\n %08x (%+3i):|  %08X   %12d    %12u    %12g",
                           address + static_cast<uint32_t>(i), i, words[i],
                           static_cast<int32_t>(words[i]), words[i], TMS_IEEE(words[i]));
    return text;
}

// Typed memory is shown as the selected item is; without one as the last one was.
void UseItemType(int index)
{
    if (index < 0 || index >= nLItems)
        return;
    cMemBoxType = aLItems[index].type;
    nMemBoxItmSz = aLItems[index].size;
}

// A line of typed or TMS320 memory as cells: two blanks or a bar part two columns, one blank is
// part of a heading.
std::string ColumnRow(const std::string &line)
{
    std::string row;
    size_t blanks = 0;
    for (const char c : line) {
        if (c == ' ' || c == '|') {
            blanks += c == '|' ? 2 : 1;
            continue;
        }
        if (!row.empty() && blanks > 0)
            row += blanks > 1 ? '\t' : ' ';
        row += c;
        blanks = 0;
    }
    return row;
}

} // namespace

int ReadMemory(uint32_t address, int index)
{
    UseItemType(index);
    if (index < 0 || index >= nLItems || !LIT_IsTMS(aLItems[index]))
        return read166Memory(address) == 0 ? 0 : -1;
    SetCtrlVal(mainPanel, MAIN_MEM_MODE, 1);
    return readTMSMemory(address) == 0 ? 0 : -2;
}

int read166Memory(uint32_t address)
{
    int isTyped = 0;
    GetCtrlVal(mainPanel, MAIN_MEM_TYPED, &isTyped);
    SetCtrlVal(mainPanel, MAIN_MEM_MODE, 0);
    // Eight items of eight bytes are no more than the four raw rows.
    uint8_t bytes[ROWS * ROW_BYTES];
    const uint32_t count = isTyped ? static_cast<uint32_t>(TYPED_ITEMS * nMemBoxItmSz)
                                   : static_cast<uint32_t>(sizeof bytes);
    if (address > ADDR_LIMIT - count)
        return Failed(-1, OUT_OF_RANGE);
    std::string cause;
    if (RFR_ReadItemBytes(StationToRead(), address, count, bytes, &cause) < 0)
        return Failed(-1, cause);
    Print(isTyped ? TypedText(address, bytes) : RawText(address, bytes));
    return 0;
}

int readTMSMemory(uint32_t address)
{
    if (address > ADDR_LIMIT - TMS_WORDS)
        return Failed(TMS_ERR_SEND, OUT_OF_RANGE);
    uint32_t words[TMS_WORDS];
    std::string cause;
    const int result = RFR_ReadTmsWords(StationToRead(), address, TMS_WORDS, words, &cause);
    if (result != TMS_OK)
        return Failed(result, cause);
    Print(WordsText(address, words));
    return 0;
}

void WIN_UpdateMemoryBox(int selected)
{
    int isOn = 0;
    if (GetCtrlVal(mainPanel, MAIN_MEM_SWITCH, &isOn) < 0 || !isOn)
        return;
    std::string text;
    GetCtrlVal(mainPanel, MAIN_MEM_ADDR, &text);
    text = TXT_Trim(text);
    if (text.empty()) // switched on, but nothing to show yet: no error
        return;
    ResetTextBox(mainPanel, MAIN_MEM_BOX, "");
    Place place;
    const std::string refusal = FindPlace(text, &place);
    if (!refusal.empty()) {
        Print("\n " + refusal);
        return;
    }
    typedStation = place.station; // for this reading only
    if (place.memory == BY_SELECTED_ITEM) {
        ReadMemory(place.address, selected);
    } else if (place.memory == OF_TMS) {
        SetCtrlVal(mainPanel, MAIN_MEM_MODE, 1);
        readTMSMemory(place.address);
    } else {
        UseItemType(selected);
        read166Memory(place.address);
    }
    typedStation = -1;
}

void WIN_ShowMemoryBoxOld()
{
    SetCtrlAttribute(mainPanel, MAIN_MEM_BOX, ATTR_TEXT_COLOR, COLOR_OLD);
}

int WIN_MemoryBoxPlaceCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    // What stands there is of another place, or in another form, until the read below.
    if (event == EVENT_VAL_CHANGED || event == EVENT_COMMIT)
        WIN_ShowMemoryBoxOld();
    if (event == EVENT_COMMIT && isTimer && nLItems > 0)
        WIN_UpdateMemoryBox(LSV_Selected());
    return 0;
}

std::string WIN_MemoryBoxText()
{
    int count = 0;
    GetNumTextBoxLines(mainPanel, MAIN_MEM_BOX, &count);
    std::string text, line;
    for (int i = 0; i < count; ++i) {
        if (GetTextBoxLine(mainPanel, MAIN_MEM_BOX, i, &line) < 0)
            continue;
        std::string row;
        // Raw lines first: their characters may look like the rule under a heading.
        if (line.size() == RAW_CHARS && line[8] == '(') {
            row = line.substr(0, RAW_BYTES_AT - 1);
            for (size_t at = RAW_BYTES_AT; at < RAW_TEXT_AT - 2; at += 3)
                row += '\t' + line.substr(at + 1, 2);
            row += '\t' + line.substr(RAW_TEXT_AT);
        } else if (line.find("---") == std::string::npos) {
            row = ColumnRow(line);
        }
        text += row.empty() ? "" : row + '\n';
    }
    return text;
}
