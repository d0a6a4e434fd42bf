// A text, because a control holds one: so a display needs no kind of control of its own, and a
// terminal prints its rows as they are.
#include "runtime/lcd_text.h"

#include <cstdio>

namespace {

constexpr char MARK = '\x1E'; // in front of the line with the rest

// Up to U+FFFF: a display's own characters lie at U+E000, its code pages below.
void AddUtf8(std::string *text, char32_t code)
{
    if (code < 0x80) {
        *text += static_cast<char>(code);
        return;
    }
    const bool isLong = code >= 0x800;
    *text += static_cast<char>(isLong ? 0xE0 | code >> 12 : 0xC0 | code >> 6);
    if (isLong)
        *text += static_cast<char>(0x80 | (code >> 6 & 0x3F));
    *text += static_cast<char>(0x80 | (code & 0x3F));
}

// Of texts made by UI_FormatLcd: characters of at most three bytes.
char32_t NextCode(const std::string &text, size_t *at)
{
    const auto first = static_cast<uint8_t>(text[(*at)++]);
    const int more = first >= 0xE0 ? 2 : first >= 0xC0 ? 1 : 0;
    char32_t code = more == 2 ? first & 0x0F : more == 1 ? first & 0x1F : first;
    for (int i = 0; i < more && *at < text.size(); ++i)
        code = code << 6 | (static_cast<uint8_t>(text[(*at)++]) & 0x3Fu);
    return code;
}

void ParseRest(const std::string &text, UI_LcdPicture *picture)
{
    int light = 0, length = 0;
    if (std::sscanf(text.c_str(), "%d %d %d %d %n", &picture->cursorRow, &picture->cursorColumn,
                    &picture->cursor, &light, &length) != 4)
        return;
    picture->isLit = light != 0;
    for (size_t i = 0; i < picture->glyphs.size(); ++i) {
        unsigned line = 0; // two hexadecimal digits each
        const size_t at = static_cast<size_t>(length) + 2 * i;
        if (at + 2 > text.size() || std::sscanf(text.c_str() + at, "%2x", &line) != 1)
            return;
        picture->glyphs[i] = static_cast<uint8_t>(line);
    }
}

} // namespace

std::string UI_FormatLcd(const UI_LcdPicture &picture)
{
    std::string text;
    for (const std::u32string &row : picture.rows) {
        for (const char32_t code : row)
            AddUtf8(&text, code);
        text += '\n';
    }
    text += MARK + std::to_string(picture.cursorRow) + " " + std::to_string(picture.cursorColumn) +
            " " + std::to_string(picture.cursor) + (picture.isLit ? " 1 " : " 0 ");
    for (const uint8_t line : picture.glyphs) {
        char hex[3];
        std::snprintf(hex, sizeof hex, "%02x", static_cast<unsigned>(line));
        text += hex;
    }
    return text;
}

UI_LcdPicture UI_ParseLcd(const std::string &text)
{
    UI_LcdPicture picture;
    std::u32string row;
    size_t at = 0;
    while (at < text.size() && text[at] != MARK) {
        const char32_t code = NextCode(text, &at);
        if (code != '\n') {
            row += code;
            continue;
        }
        picture.rows.push_back(row);
        row.clear();
    }
    if (at < text.size())
        ParseRest(text.substr(at + 1), &picture);
    return picture;
}
