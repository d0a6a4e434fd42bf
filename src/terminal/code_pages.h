// What the characters of a target mean: one byte each, by a code page. Tables are made once,
// with the system's help but for the display controller's own; texts of the program are UTF-8.
#ifndef TERMINAL_CODE_PAGES_H
#define TERMINAL_CODE_PAGES_H

#include <cstddef>
#include <cstdint>
#include <string>

// As a display's block numbers them.
enum { CPT_LCD, CPT_LATIN_1, CPT_CP852, CPT_CP1250, CPT_KOI8_R, CPT_COUNT };
const char *CPT_Name(int page); // "" when there is no such page
// The code point of a byte; 0xFFFD where the page has none. A display's own characters (0 to 15
// of CPT_LCD, each of the eight twice) are CPT_GLYPH and up, which are for private use.
constexpr char32_t CPT_GLYPH = 0xE000, CPT_UNKNOWN = 0xFFFD;
char32_t CPT_ToCode(int page, uint8_t byte);
std::string CPT_ToUtf8(char32_t code);
std::string CPT_ToUtf8(int page, const std::string &bytes);
// UTF-8 to bytes of the page. How many characters of `text` the page does not have: each is a
// "?" in *bytes.
size_t CPT_FromUtf8(int page, const std::string &text, std::string *bytes);

#endif
