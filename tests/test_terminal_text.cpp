// Characters of the terminals: lines of what a target writes, code pages, the display's picture.
#include "runtime/lcd_text.h"
#include "terminal/code_pages.h"
#include "terminal/screen.h"

#include <gtest/gtest.h>

namespace {

TEST(TerminalScreen, MakesLinesOfWhatATargetWrites)
{
    const struct {
        const char *bytes;
        const char *lines; // whole ones, then the open one
    } cases[] = {{"one\r\ntwo", "one\ntwo"},
                 {" 45 %\r100 %\r\n", "100 %\n"},
                 {"ab\b\bX", "Xb"},
                 {"\b\bok", "ok"},
                 {"1\t2", "1       2"},
                 {"\x1B[1;31mred\x1B[0m\x1B"
                  "c!",
                  "red!"},
                 {"cut\x1B[1;\r\nnext", "cut\nnext"},
                 {"\x05\x7F\x85", "\xC2\xB7\xC2\xB7\xC2\xB7"},
                 {"old\r\nlonger\fnew", "new"}};
    for (const auto &row : cases) {
        TRM_Screen whole, split;
        TRM_PutOnScreen(&whole, TRM_PAGE_LATIN_1, row.bytes);
        for (const char *c = row.bytes; *c != '\0'; ++c)
            TRM_PutOnScreen(&split, TRM_PAGE_LATIN_1, std::string(1, *c));
        for (const TRM_Screen &screen : {whole, split}) {
            std::string text;
            for (const std::string &line : screen.done)
                text += line + "\n";
            EXPECT_EQ(row.lines, text + TRM_GetScreenLine(screen));
        }
    }
    TRM_Screen longer;
    TRM_PutOnScreen(&longer, TRM_PAGE_LATIN_1, std::string(2 * TRM_SCREEN_COLUMNS_MAX + 1, 'x'));
    EXPECT_EQ(2u, longer.done.size());
}

TEST(TerminalCodePages, KnowTheirCharactersAndBack)
{
    const struct {
        int page;
        uint8_t byte;
        char32_t code;
    } cases[] = {{TRM_PAGE_CP852, 0x9F, 0x10D},   {TRM_PAGE_CP1250, 0xE8, 0x10D},
                 {TRM_PAGE_CP1250, 0x81, 0xFFFD}, {TRM_PAGE_KOI8_R, 0xC1, 0x430},
                 {TRM_PAGE_LATIN_1, 0xE9, 0xE9},  {TRM_PAGE_LCD, 0xB1, 0xFF71},
                 {TRM_PAGE_LCD, 0xDF, 0xFF9F},    {TRM_PAGE_LCD, 0x7E, 0x2192},
                 {TRM_PAGE_LCD, 0x5C, 0xA5},      {TRM_PAGE_LCD, 0xFF, 0x2588},
                 {TRM_PAGE_LCD, 0x0A, 0xE002},    {TRM_PAGE_LCD, 0x90, 0xFFFD}};
    for (const auto &row : cases)
        EXPECT_EQ(row.code, TRM_ToCode(row.page, row.byte)) << row.page << " " << int{row.byte};
    for (int page = 0; page < TRM_PAGE_COUNT; ++page)
        for (unsigned byte = 0x20; byte < 0x100; ++byte) {
            const char32_t code = TRM_ToCode(page, static_cast<uint8_t>(byte));
            std::string back;
            const size_t absent = TRM_FromUtf8(page, TRM_ToUtf8(code), &back);
            EXPECT_EQ(code == TRM_PAGE_UNKNOWN ? 1u : 0u, absent) << page << " " << byte;
            EXPECT_TRUE(absent > 0 || code == TRM_ToCode(page, static_cast<uint8_t>(back[0])));
        }
    std::string bytes;
    EXPECT_EQ(3u, TRM_FromUtf8(TRM_PAGE_LATIN_1, "a\xD0\x96\xF0\x9F\x98\x80\xFF\n", &bytes));
    EXPECT_EQ("a???\n", bytes);
}

TEST(LcdText, ComesBackAsItWent)
{
    UI_LcdPicture picture;
    picture.rows = {U"a\xE007\xFF71", U"\xB5  "};
    picture.cursorRow = 1;
    picture.cursorColumn = 2;
    picture.cursor = UI_LCD_CURSOR_BLINKING;
    picture.isLit = true;
    picture.glyphs[63] = 0x1F;
    const UI_LcdPicture back = UI_ParseLcd(UI_FormatLcd(picture));
    EXPECT_EQ(picture.rows, back.rows);
    EXPECT_EQ(2, back.cursorColumn);
    EXPECT_EQ(UI_LCD_CURSOR_BLINKING, back.cursor);
    EXPECT_TRUE(back.isLit);
    EXPECT_EQ(picture.glyphs, back.glyphs);
    EXPECT_TRUE(UI_ParseLcd("\x1E 1").rows.empty());
}

} // namespace
