// The memory box under the watch list: bytes or typed items of the C166's memory, or
// words of the TMS320's through the mailbox.
#include "watch/windows/mem_box.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "comm/sysaddr.h"
#include "comm/tms_mailbox.h"
#include "comm/ucm.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "ui/resource.h"
#include "watch/list/litem.h"
#include "watch/list/refresh.h"

char cMemBoxType = 'x';
int nMemBoxItmSz = 2;

namespace {

constexpr int ROWS = 4;
constexpr int ROW_BYTES = 16;
constexpr int TYPED_ITEMS = 8;
constexpr int TMS_WORDS = 4;
constexpr int LINE_CHARS = 160;
const char OUT_OF_RANGE[] = "The address is outside the target's memory.";

void appendf(std::string *text, const char *format, ...) __attribute__((format(printf, 2, 3)));

void appendf(std::string *text, const char *format, ...)
{
    char line[LINE_CHARS];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    *text += line;
}

void print(const std::string &text)
{
    SetCtrlVal(mainPanel, MAIN_MEM_BOX, text);
}

// The box has room for the cause that a result code does not carry.
int failed(int result, const std::string &cause)
{
    print("\n " + cause);
    return result;
}

uint64_t littleEndian(const uint8_t *bytes, int count)
{
    uint64_t value = 0;
    for (int i = 0; i < count; ++i)
        value |= static_cast<uint64_t>(bytes[i]) << 8 * i;
    return value;
}

std::string rawText(uint32_t address, const uint8_t *bytes)
{
    std::string text;
    for (int row = 0; row < ROWS; ++row, bytes += ROW_BYTES) {
        const int offset = row * ROW_BYTES;
        appendf(&text, "\n%08lx(%+3i): ",
                static_cast<unsigned long>(address + static_cast<uint32_t>(offset)), offset);
        for (int i = 0; i < ROW_BYTES; ++i)
            appendf(&text, " %02X", bytes[i]);
        text += "  ";
        for (int i = 0; i < ROW_BYTES; ++i)
            text += bytes[i] >= 0x20 && bytes[i] < 0x7F ? static_cast<char>(bytes[i]) : '.';
    }
    return text;
}

// One item of a typed row: its value only; place and spacing are the caller's.
std::string typedValue(const uint8_t *bytes)
{
    const uint64_t value = littleEndian(bytes, nMemBoxItmSz);
    const int unusedBits = 64 - 8 * nMemBoxItmSz;
    std::string text;
    float number;
    switch (cMemBoxType) {
    case 'i':
        appendf(&text, "%10lld",
                static_cast<long long>(static_cast<int64_t>(value << unusedBits) >> unusedBits));
        break;
    case 'u':
    case 't':
    case 'p':
        appendf(&text, "%15llu", static_cast<unsigned long long>(value));
        break;
    case 'f':
        std::memcpy(&number, bytes, sizeof number);
        appendf(&text, "%+10g (%8Xh)", static_cast<double>(number), static_cast<unsigned>(value));
        break;
    default:
        appendf(&text, "%8llXh", static_cast<unsigned long long>(value));
    }
    return text;
}

std::string typedHeader()
{
    static const struct {
        char type;
        const char *label;
    } labels[] = {{'x', "hex:  "}, {'i', "int:  "}, {'u', "uns:  "},
                  {'t', "uns t:"}, {'p', "uns p:"}, {'b', "hex:  "}};
    for (const auto &row : labels) {
        if (row.type == cMemBoxType)
            return std::string(" ") + row.label + " " + std::to_string(nMemBoxItmSz) +
                   "B\n ------------";
    }
    return " float:\n ------------";
}

std::string typedText(uint32_t address, const uint8_t *bytes)
{
    const bool isFloat = cMemBoxType == 'f';
    std::string text = typedHeader();
    for (int item = 0; item < TYPED_ITEMS / 2; ++item) {
        for (int side = 0; side < 2; ++side) {
            const int offset = (item + side * TYPED_ITEMS / 2) * nMemBoxItmSz;
            text += side == 0 ? "\n " : isFloat ? "   " : "       ";
            appendf(&text, isFloat ? "%06lx(%+3i): " : "%06lx (%+3i):   ",
                    static_cast<unsigned long>(address + static_cast<uint32_t>(offset)), offset);
            text += typedValue(bytes + offset);
        }
    }
    return text;
}

void takeItemType(int index)
{
    if (index < 0 || index >= nLItems)
        return;
    cMemBoxType = aLItems[index].type;
    nMemBoxItmSz = aLItems[index].size;
}

} // namespace

int ReadMemory(uint32_t address, int index)
{
    takeItemType(index);
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
    uint8_t bytes[ROWS * ROW_BYTES];
    const uint32_t count = isTyped ? static_cast<uint32_t>(TYPED_ITEMS * nMemBoxItmSz)
                                   : static_cast<uint32_t>(sizeof bytes);
    if (address > ADDR_LIMIT - count)
        return failed(-1, OUT_OF_RANGE);
    if (UCM_Read(STATION, address, count, bytes) < 0)
        return failed(-1, UCM_LastErrorText());
    print(isTyped ? typedText(address, bytes) : rawText(address, bytes));
    return 0;
}

int readTMSMemory(uint32_t address)
{
    if (address > ADDR_LIMIT - TMS_WORDS)
        return failed(TMS_ERR_SEND, OUT_OF_RANGE);
    print("  ADDR:         |     hex:          long:      unsign. long:     TMS float:\n "
          "------------------------------------------------------------------------");
    for (int offset = 0; offset < TMS_WORDS; ++offset) {
        const uint32_t place = address + static_cast<uint32_t>(offset);
        uint32_t word = 0;
        const int result = TMS_ReadWord(STATION, place, TMS_POLLS_MEMORY, &word);
        if (result != TMS_OK)
            return failed(result, TMS_ErrorText(result));
        std::string line;
        appendf(&line, "\n %08x (%+3i):|  %08X   %12d    %12u    %12g", place, offset, word,
                static_cast<int32_t>(word), word, TMS_IEEE(word));
        print(line);
    }
    return 0;
}

namespace {

// A raw line: "00001f00( +0):  01 02 ... 10  characters", the characters at a fixed place
// because they may be blanks themselves.
constexpr size_t RAW_BYTES_AT = 15;
constexpr size_t RAW_BYTES_CHARS = 16 * 3;
constexpr size_t RAW_TEXT_AT = RAW_BYTES_AT + RAW_BYTES_CHARS + 2;
constexpr size_t RAW_CHARS = RAW_TEXT_AT + 16;

bool isRaw(const std::string &line)
{
    return line.size() == RAW_CHARS && line[8] == '(';
}

std::string rawRow(const std::string &line)
{
    std::string row = line.substr(0, RAW_BYTES_AT - 1);
    for (size_t at = RAW_BYTES_AT; at < RAW_TEXT_AT - 2; at += 3)
        row += '\t' + line.substr(at + 1, 2);
    return row + '\t' + line.substr(RAW_TEXT_AT);
}

bool isRule(const std::string &line)
{
    return line.find("---") != std::string::npos;
}

std::string columnRow(const std::string &line)
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

std::string MBX_TabbedText()
{
    int count = 0;
    GetNumTextBoxLines(mainPanel, MAIN_MEM_BOX, &count);
    std::string text, line;
    for (int i = 0; i < count; ++i) {
        if (GetTextBoxLine(mainPanel, MAIN_MEM_BOX, i, &line) < 0 || isRule(line))
            continue;
        const std::string row = isRaw(line) ? rawRow(line) : columnRow(line);
        text += row.empty() ? "" : row + '\n';
    }
    return text;
}
