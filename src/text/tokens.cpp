// The C library's character classes follow the user's language and take no plain char;
// these do neither.
#include "text/tokens.h"

bool TXT_IsBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool TXT_IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool TXT_IsNameChar(char c)
{
    return TXT_IsLetter(c) || (c >= '0' && c <= '9');
}

bool TXT_IsHexDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

char TXT_ToLower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

const char *TXT_SkipBlanks(const char *text)
{
    while (TXT_IsBlank(*text))
        text++;
    return text;
}

size_t TXT_WordLength(const char *text)
{
    size_t length = 0;
    while (text[length] != '\0' && !TXT_IsBlank(text[length]))
        length++;
    return length;
}

size_t TXT_NameLength(const char *text)
{
    if (!TXT_IsLetter(*text))
        return 0;
    size_t length = 1;
    while (TXT_IsNameChar(text[length]))
        length++;
    return length;
}

bool TXT_IsSameWord(const std::string &a, const char *b)
{
    size_t i = 0;
    while (i < a.size() && TXT_ToLower(a[i]) == TXT_ToLower(b[i]))
        i++;
    return i == a.size() && b[i] == '\0';
}

uint32_t CON_DigitValue(char c)
{
    return static_cast<uint32_t>(c <= '9' ? c - '0' : TXT_ToLower(c) - 'a' + 10);
}

namespace {

// Fails, with the cursor where it was, without a digit and beyond 32 bits: a number that was cut
// would be another address or value.
bool ParseDigits(const char **cursor, uint32_t base, uint32_t *value)
{
    const char *c = *cursor;
    uint64_t number = 0;
    for (; TXT_IsHexDigit(*c) && CON_DigitValue(*c) < base; c++) {
        number = number * base + CON_DigitValue(*c);
        if (number > UINT32_MAX)
            return false;
    }
    if (c == *cursor)
        return false;
    *cursor = c;
    *value = static_cast<uint32_t>(number);
    return true;
}

} // namespace

bool TXT_ParseHex(const char **cursor, uint32_t *value)
{
    return ParseDigits(cursor, 16, value);
}

bool TXT_ParseAddress(const char **cursor, uint32_t *address)
{
    const char *c = *cursor;
    if (*c == '$')
        c++;
    else if (*c == '0' && (c[1] == 'x' || c[1] == 'X'))
        c += 2;
    if (!TXT_ParseHex(&c, address)) // "0x" alone: the cursor stays in front of it
        return false;
    *cursor = c;
    return true;
}

bool TXT_ParseDecimal(const char **cursor, uint32_t *value)
{
    return ParseDigits(cursor, 10, value);
}

bool TXT_SkipComma(const char **cursor)
{
    const char *c = TXT_SkipBlanks(*cursor);
    if (*c != ',')
        return false;
    *cursor = TXT_SkipBlanks(c + 1);
    return true;
}
