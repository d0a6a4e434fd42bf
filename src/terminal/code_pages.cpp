// A table of 256 code points a page; the way back looks through it, for texts to a target are
// short.
#include "terminal/code_pages.h"

#include "platform/code_page.h"

#include <array>

namespace {

typedef std::array<char32_t, 256> Table;

struct Page {
    const char *name;
    unsigned number; // the system's; 0: the table is ours
};
const Page PAGES[TRM_PAGE_COUNT] = {{"LCD controller", 0},
                                    {"ISO-8859-1", 28591},
                                    {"CP852", 852},
                                    {"CP1250", 1250},
                                    {"KOI8-R", 20866}};

// The widespread ROM of character displays where it differs from ASCII: half-width katakana in
// the order of their standard, then Greek and signs.
constexpr uint8_t KATAKANA_FIRST = 0xA1, KATAKANA_LAST = 0xDF, SIGNS_FIRST = 0xE0;
constexpr char32_t KATAKANA = 0xFF61;
const char32_t SIGNS[] = {0x3B1,  0xE4,   0x3B2,  0x3B5,  0x3BC,  0x3C3, 0x3C1, 0x67,
                          0x221A, 0x207B, 0x6A,   0x2E3,  0xA2,   0xA3,  0xF1,  0xF6,
                          0x70,   0x71,   0x3B8,  0x221E, 0x3A9,  0xFC,  0x3A3, 0x3C0,
                          0x78,   0x79,   0x5343, 0x4E07, 0x5186, 0xF7,  0x20,  0x2588};

Table MakeDisplayTable()
{
    Table table;
    table.fill(TRM_PAGE_UNKNOWN);
    for (unsigned i = 0; i < 16; ++i)
        table[i] = TRM_PAGE_GLYPH + i % 8;
    for (unsigned i = ' '; i < 0x7E; ++i)
        table[i] = i;
    table['\\'] = 0xA5;   // yen
    table[0x7E] = 0x2192; // arrows
    table[0x7F] = 0x2190;
    table[0xA0] = ' ';
    for (unsigned i = KATAKANA_FIRST; i <= KATAKANA_LAST; ++i)
        table[i] = KATAKANA + i - KATAKANA_FIRST;
    for (unsigned i = SIGNS_FIRST; i < table.size(); ++i)
        table[i] = SIGNS[i - SIGNS_FIRST];
    return table;
}

// ASCII alone where the system does not know the page.
Table MakeTable(unsigned number)
{
    Table table;
    if (number == 0)
        return MakeDisplayTable();
    if (PLT_GetCodePage(number, table.data()) != 0) {
        table.fill(TRM_PAGE_UNKNOWN);
        for (unsigned i = 0; i < 0x80; ++i)
            table[i] = i;
    }
    return table;
}

const Table &GetTable(int page)
{
    static const std::array<Table, TRM_PAGE_COUNT> TABLES = [] {
        std::array<Table, TRM_PAGE_COUNT> made;
        for (size_t i = 0; i < made.size(); ++i)
            made[i] = MakeTable(PAGES[i].number);
        return made;
    }();
    return TABLES[page >= 0 && page < TRM_PAGE_COUNT ? static_cast<size_t>(page) : 0];
}

// The next code point of UTF-8, and the bytes it takes: one and TRM_PAGE_UNKNOWN where it is none.
char32_t NextCode(const std::string &text, size_t at, size_t *length)
{
    const auto first = static_cast<uint8_t>(text[at]);
    *length = 1;
    if (first < 0x80)
        return first;
    // 0xC0 and 0xC1 could only begin a longer form of ASCII.
    const size_t count = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || at + count > text.size())
        return TRM_PAGE_UNKNOWN;
    char32_t code = first & (0x7Fu >> count);
    for (size_t i = 1; i < count; ++i) {
        const auto byte = static_cast<uint8_t>(text[at + i]);
        if ((byte & 0xC0) != 0x80)
            return TRM_PAGE_UNKNOWN;
        code = code << 6 | (byte & 0x3Fu);
    }
    *length = count;
    return code;
}

} // namespace

const char *TRM_PageName(int page)
{
    return page >= 0 && page < TRM_PAGE_COUNT ? PAGES[page].name : "";
}

char32_t TRM_ToCode(int page, uint8_t byte)
{
    return GetTable(page)[byte];
}

std::string TRM_ToUtf8(char32_t code)
{
    std::string text;
    if (code < 0x80)
        return std::string(1, static_cast<char>(code));
    const int more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    const char32_t marks[] = {0, 0xC0, 0xE0, 0xF0};
    text += static_cast<char>(marks[more] | code >> 6 * more);
    for (int i = more - 1; i >= 0; --i)
        text += static_cast<char>(0x80 | (code >> 6 * i & 0x3F));
    return text;
}

std::string TRM_ToUtf8(int page, const std::string &bytes)
{
    std::string text;
    for (const char byte : bytes)
        text += TRM_ToUtf8(TRM_ToCode(page, static_cast<uint8_t>(byte)));
    return text;
}

size_t TRM_FromUtf8(int page, const std::string &text, std::string *bytes)
{
    const Table &table = GetTable(page);
    size_t absent = 0, length = 0;
    bytes->clear();
    for (size_t at = 0; at < text.size(); at += length) {
        const char32_t code = NextCode(text, at, &length);
        // Control characters are themselves in every page.
        if (code < ' ') {
            *bytes += static_cast<char>(code);
            continue;
        }
        size_t byte = ' ';
        while (byte < table.size() && (table[byte] != code || code == TRM_PAGE_UNKNOWN))
            ++byte;
        absent += byte == table.size();
        *bytes += byte < table.size() ? static_cast<char>(byte) : '?';
    }
    return absent;
}
