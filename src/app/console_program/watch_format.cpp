// Text is for people and shows what is wrong in place of the value; CSV and JSON are for programs
// and leave the value out.
#include "app/console_program/watch_format.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "comm/sysaddr.h"
#include "text/words.h"
#include "watch/list/litem.h"
#include "watch/value/value_types.h"

namespace {

constexpr size_t NAME_COLUMN_MAX = 40; // a longer name pushes its line to the right

// An item without a good value has neither value nor raw, and a rate no value before its
// second read: a number that was not read must not look like one that was.
struct Row {
    std::string name, address, value, raw, reason;
    char type = 'i';
    int size = 0;
    bool isError = false;
};

Row MakeRow(const LItem &item)
{
    Row row;
    row.name = item.name;
    row.type = item.type;
    row.size = item.size;
    row.reason = item.reason;
    row.isError = !item.isValueGood;
    if (item.address != ADDR_NONE) {
        char text[16];
        std::snprintf(text, sizeof text, "0x%06X", item.address);
        row.address = text;
    }
    if (LIT_HasNumber(item)) {
        FormatLItemVal(&row.value, item);
        row.value = TXT_Trim(row.value);
    }
    if (item.isValueGood)
        row.raw = std::to_string(LIT_Bits(item));
    return row;
}

// Addresses, types and numbers hold no comma and need no quotes.
std::string CsvLine(const Row &row, long sweep)
{
    return std::to_string(sweep) + ',' + TXT_QuoteCsv(row.name) + ',' + row.address + ',' +
           row.type + ',' + std::to_string(row.size) + ',' + TXT_QuoteCsv(row.value) + ',' +
           row.raw + ',' + (row.isError ? "1" : "0") + '\n';
}

// An object a line, so that a reader need not wait for the end of the list.
std::string JsonLine(const Row &row, long sweep)
{
    return "{\"sweep\":" + std::to_string(sweep) + ",\"name\":" + CPG_QuoteJson(row.name) +
           ",\"address\":" + CPG_QuoteJson(row.address) +
           ",\"type\":" + CPG_QuoteJson(std::string(1, row.type)) +
           ",\"size\":" + std::to_string(row.size) + ",\"value\":" + CPG_QuoteJson(row.value) +
           ",\"raw\":" + (row.raw.empty() ? "null" : row.raw) +
           ",\"error\":" + (row.isError ? "1" : "0") + "}\n";
}

std::string TextLine(const Row &row, size_t nameWidth)
{
    const size_t pad = nameWidth > row.name.size() ? nameWidth - row.name.size() : 0;
    char columns[40];
    std::snprintf(columns, sizeof columns, "  %-8s  %c%d  ",
                  row.address.empty() ? "??????" : row.address.c_str(), row.type, row.size);
    // What is wrong stands where the value would be looked for.
    std::string value = row.value;
    if (row.address.empty())
        value = "Address?";
    else if (row.isError)
        value = row.reason.empty() ? "(!)" : "(!) " + row.reason;
    return TXT_Visible(row.name) + std::string(pad, ' ') + columns + value + '\n';
}

// Strict, because readers of JSON are: no overlong forms, no halves of pairs, nothing above
// 10FFFFh. Length of the UTF-8 character at text[at], 0 when there is none.
size_t Utf8Length(const std::string &text, size_t at)
{
    const auto byte = [&](size_t i) { return static_cast<uint8_t>(i < text.size() ? text[i] : 0); };
    const uint8_t lead = byte(at), second = byte(at + 1);
    size_t length = 0;
    if (lead >= 0xC2 && lead <= 0xDF)
        length = 2;
    else if (lead >= 0xE0 && lead <= 0xEF)
        length = 3;
    else if (lead >= 0xF0 && lead <= 0xF4)
        length = 4;
    for (size_t i = 1; i < length; i++)
        if ((byte(at + i) & 0xC0) != 0x80)
            return 0;
    const bool isOverlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool isOutside = (lead == 0xED && second > 0x9F) || (lead == 0xF4 && second > 0x8F);
    return isOverlong || isOutside ? 0 : length;
}

} // namespace

std::string CPG_QuoteJson(const std::string &text)
{
    std::string quoted = "\"";
    for (size_t i = 0; i < text.size();) {
        const uint8_t c = static_cast<uint8_t>(text[i]);
        // Sound UTF-8 goes as it is. Any other byte above 7Fh is taken for that character of
        // Latin 1: JSON has no bytes.
        const size_t length = Utf8Length(text, i);
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\u%04X", c);
        if (length > 0)
            quoted += text.substr(i, length);
        else if (c == '"' || c == '\\')
            quoted += std::string("\\") + text[i];
        else if (c < 0x20 || c >= 0x7F)
            quoted += escape;
        else
            quoted += text[i];
        i += std::max<size_t>(length, 1);
    }
    return quoted + '"';
}

std::string CPG_FormatHeader(CPG_Format format)
{
    return format == CPG_CSV ? "sweep,name,address,type,size,value,raw,error\n" : "";
}

std::string CPG_FormatSweep(CPG_Format format, long sweep)
{
    std::string text;
    if (format == CPG_TEXT)
        text = (sweep > 1 ? "\nSweep " : "Sweep ") + std::to_string(sweep) + '\n';
    // The longest name that still fits gives all lines the place of their second column.
    size_t width = 0;
    for (int i = 0; i < nLItems; i++)
        width = std::max(width, aLItems[i].name.size());
    width = std::min(width, NAME_COLUMN_MAX);
    for (int i = 0; i < nLItems; i++) {
        const Row row = MakeRow(aLItems[i]);
        if (format == CPG_CSV)
            text += CsvLine(row, sweep);
        else if (format == CPG_JSON)
            text += JsonLine(row, sweep);
        else
            text += TextLine(row, width);
    }
    return text;
}
