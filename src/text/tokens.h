// Small text helpers of the parsers of lines that people write. ASCII only: target names and
// commands do not depend on the user's language.
#ifndef TEXT_TOKENS_H
#define TEXT_TOKENS_H

#include <cstddef>
#include <cstdint>
#include <string>

bool TXT_IsBlank(char c);
bool TXT_IsLetter(char c);   // a letter or "_"
bool TXT_IsNameChar(char c); // a letter, "_" or a digit
bool TXT_IsHexDigit(char c);
uint32_t CON_DigitValue(char c); // of a hexadecimal digit: 0 to 15
char TXT_ToLower(char c);
const char *TXT_SkipBlanks(const char *text);
size_t TXT_WordLength(const char *text); // up to a blank or the end
size_t TXT_NameLength(const char *text); // of the name that starts here, 0 when none does
bool TXT_IsSameWord(const std::string &a, const char *b); // ignoring case

// Hexadecimal digits at *cursor, which is moved past them; at most 32 bits.
bool TXT_ParseHex(const char **cursor, uint32_t *value);
// The same behind the "$" or "0x" that addresses have elsewhere, or without.
bool TXT_ParseAddress(const char **cursor, uint32_t *address);
// Decimal digits likewise.
bool TXT_ParseDecimal(const char **cursor, uint32_t *value);
// Past a "," and the blanks around it; false when there is none.
bool TXT_SkipComma(const char **cursor);

#endif
