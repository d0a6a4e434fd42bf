// A picture of a character display as the text of a control: its rows first, as anybody can
// read them, then one line with what only a drawing view knows what to do with: the cursor,
// the light and the display's own characters.
#ifndef RUNTIME_LCD_TEXT_H
#define RUNTIME_LCD_TEXT_H

#include <array>
#include <cstdint>
#include <string>
#include <vector>

enum UI_LcdCursor { UI_LCD_NO_CURSOR, UI_LCD_CURSOR_UNDERLINE, UI_LCD_CURSOR_BLINKING };

constexpr int UI_LCD_GLYPH_LINES = 8, UI_LCD_GLYPH_COLUMNS = 5;
constexpr char32_t UI_LCD_GLYPH = 0xE000; // and seven more: the display's own characters

struct UI_LcdPicture {
    std::vector<std::u32string> rows; // of one length
    int cursorRow = 0, cursorColumn = 0;
    int cursor = UI_LCD_NO_CURSOR;
    bool isLit = false;
    // Eight characters of eight lines, the lowest five bits of each from right to left.
    std::array<uint8_t, 64> glyphs = {};
};

std::string UI_FormatLcd(const UI_LcdPicture &picture);
// The way back. What the text does not say is as in a new UI_LcdPicture.
UI_LcdPicture UI_ParseLcd(const std::string &text);

#endif
