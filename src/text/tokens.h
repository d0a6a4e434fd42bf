// Small text helpers of the parsers of lines that people write. ASCII only: target names and
// commands do not depend on the user's language.
#ifndef TEXT_TOKENS_H
#define TEXT_TOKENS_H

#include <cstddef>
#include <cstdint>
#include <string>

bool CON_IsBlank(char c);
bool CON_IsLetter(char c);   // a letter or "_"
bool CON_IsNameChar(char c); // a letter, "_" or a digit
bool CON_IsHexDigit(char c);
uint32_t CON_DigitValue(char c); // of a hexadecimal digit: 0 to 15
char CON_ToLower(char c);
const char *CON_SkipBlanks(const char *text);
size_t CON_WordLength(const char *text); // up to a blank or the end
size_t CON_NameLength(const char *text); // of the name that starts here, 0 when none does
bool CON_IsSameWord(const std::string &a, const char *b); // ignoring case

// Hexadecimal digits at *cursor, which is moved past them; at most 32 bits.
bool CON_ParseHex(const char **cursor, uint32_t *value);
// The same behind the "$" or "0x" that addresses have elsewhere, or without.
bool CON_ParseAddress(const char **cursor, uint32_t *address);
// Decimal digits likewise.
bool CON_ParseDecimal(const char **cursor, uint32_t *value);
// Past a "," and the blanks around it; false when there is none.
bool CON_SkipComma(const char **cursor);

#endif
