// What the characters of a target mean: one byte each, by a code page. Tables are made once,
// with the system's help but for the display controller's own; texts of the program are UTF-8.
#ifndef TERMINAL_CODE_PAGES_H
#define TERMINAL_CODE_PAGES_H

#include <cstddef>
#include <cstdint>
#include <string>

// As a display's block numbers them.
enum {
    TRM_PAGE_LCD,
    TRM_PAGE_LATIN_1,
    TRM_PAGE_CP852,
    TRM_PAGE_CP1250,
    TRM_PAGE_KOI8_R,
    TRM_PAGE_COUNT
};
const char *TRM_PageName(int page); // "" when there is no such page
// The code point of a byte; 0xFFFD where the page has none. A display's own characters (0 to 15
// of TRM_PAGE_LCD, each of the eight twice) are TRM_PAGE_GLYPH and up, which are for private use.
constexpr char32_t TRM_PAGE_GLYPH = 0xE000, TRM_PAGE_UNKNOWN = 0xFFFD;
char32_t TRM_ToCode(int page, uint8_t byte);
std::string TRM_ToUtf8(char32_t code);
std::string TRM_ToUtf8(int page, const std::string &bytes);
// UTF-8 to bytes of the page. How many characters of `text` the page does not have: each is a
// "?" in *bytes.
size_t TRM_FromUtf8(int page, const std::string &text, std::string *bytes);

#endif
