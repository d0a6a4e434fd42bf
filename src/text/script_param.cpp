// One branch a kind of parameter, in the order in which a code with several kinds is
// tried: quoted text, raw text, integer, float, name. A number begins with a digit or a
// sign and a name with neither, so that no kind has to be tried twice.
#include "text/script_param.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>

#include "text/tokens.h"
#include "text/xscan.h"

namespace {

struct Width {
    uint32_t code;
    uint32_t signedMax;
    uint32_t max;
};
const Width WIDTHS[] = {
    {PAR_BYTE, 0x7F, 0xFF}, {PAR_WORD, 0x7FFF, 0xFFFF}, {PAR_LONG, 0x7FFFFFFF, 0xFFFFFFFF}};

bool SetText(ScrPar *par, const char *text, size_t length)
{
    if (length > PAR_TEXT_CHARS)
        return false;
    std::memcpy(par->text, text, length);
    par->text[length] = '\0';
    return true;
}

// Decimal digits, or hexadecimal ones that begin with a digit and end in "H" or stand
// behind "0x".
bool ParseMagnitude(const char **cursor, uint32_t *value)
{
    // "0x" that no digit follows is a 0, and the caller refuses what stands behind it.
    const char *digits = *cursor;
    if (xscan("0#xX.", &digits) > 0 && TXT_IsHexDigit(*digits)) {
        if (!TXT_ParseHex(&digits, value))
            return false;
        *cursor = digits;
        return true;
    }
    const char *end = *cursor;
    if (xscan("#0-9.*#0-9a-fA-F.#hH.", &end) > 0) {
        if (!TXT_ParseHex(cursor, value))
            return false;
        *cursor = end;
        return true;
    }
    return TXT_ParseDecimal(cursor, value);
}

bool ParseInteger(const char **cursor, ScrPar *par, uint32_t code)
{
    // A code without a width is taken as 32 bits.
    const Width *width = WIDTHS;
    while (width != std::end(WIDTHS) - 1 && !(code & width->code))
        ++width;
    const bool hasMinus = **cursor == '-';
    *cursor += hasMinus ? 1 : 0;
    uint32_t magnitude = 0;
    if (!ParseMagnitude(cursor, &magnitude))
        return false;
    // Unsigned and signed reading are both allowed unless the code excludes one.
    if (hasMinus && ((code & PAR_UNSIGNED) || magnitude > width->signedMax + 1))
        return false;
    if (!hasMinus && magnitude > ((code & PAR_SIGNED) ? width->signedMax : width->max))
        return false;
    par->value = hasMinus ? 0u - magnitude : magnitude;
    par->flags |= width->code;
    if (hasMinus)
        par->flags |= PAR_SIGNED;
    else if (magnitude > width->signedMax)
        par->flags |= PAR_UNSIGNED;
    return true;
}

bool ParseFloat(const char **cursor, ScrPar *par)
{
    const char *begin = *cursor;
    if (xscan("?#+/-.@#0-9.?/.*#0-9.", cursor) < 0)
        return false;
    xscan("#eE.?#+/-.@#0-9.", cursor); // a lone "e" stays for the caller to refuse
    const double value = std::strtod(std::string(begin, *cursor).c_str(), nullptr);
    if (!std::isfinite(value)) // more than a double holds
        return false;
    par->fvalue = value;
    par->flags |= PAR_FLOAT;
    return true;
}

bool ParseQuoted(const char **cursor, ScrPar *par)
{
    const char quote = **cursor;
    const char *begin = *cursor + 1;
    const char *end = std::strchr(begin, quote);
    if (!end || !SetText(par, begin, static_cast<size_t>(end - begin)))
        return false;
    *cursor = end + 1;
    return true;
}

bool ParseRaw(const char **cursor, ScrPar *par)
{
    const char *begin = *cursor;
    const char *end = begin + std::strcspn(begin, ",");
    *cursor = end;
    while (end > begin && TXT_IsBlank(end[-1]))
        end--;
    return SetText(par, begin, static_cast<size_t>(end - begin));
}

bool ToSigned(uint32_t magnitude, bool isNegative, int32_t *value)
{
    if (magnitude > 0x7FFFFFFFu)
        return false;
    *value = static_cast<int32_t>(magnitude) * (isNegative ? -1 : 1);
    return true;
}

bool ParseIndex(const char **cursor, ScrPar *par)
{
    const char *c = TXT_SkipBlanks(*cursor);
    if (*c != '[')
        return true;
    c = TXT_SkipBlanks(c + 1);
    uint32_t number = 0;
    if (!ParseMagnitude(&c, &number) || !ToSigned(number, false, &par->index))
        return false;
    c = TXT_SkipBlanks(c);
    if (*c != ']')
        return false;
    *cursor = c + 1;
    return true;
}

bool ParseOffset(const char **cursor, ScrPar *par)
{
    const char *c = TXT_SkipBlanks(*cursor);
    if (*c != '+' && *c != '-')
        return true;
    const bool isNegative = *c == '-';
    c = TXT_SkipBlanks(c + 1);
    uint32_t number = 0;
    if (!ParseMagnitude(&c, &number) || !ToSigned(number, isNegative, &par->offset))
        return false;
    *cursor = c;
    return true;
}

bool ParseName(const char **cursor, ScrPar *par, uint32_t code)
{
    const char *begin = *cursor;
    const char *c = begin + (*begin == '&' || *begin == '@' ? 1 : 0);
    if (TXT_NameLength(c) == 0)
        return false;
    while (TXT_IsNameChar(*c) || *c == '.')
        c++;
    if (!SetText(par, begin, static_cast<size_t>(c - begin)))
        return false;
    par->flags |= PAR_NAME;
    *cursor = c;
    if ((code & PAR_INDEX) && !ParseIndex(cursor, par))
        return false;
    return !(code & PAR_OFFSET) || ParseOffset(cursor, par);
}

bool ParseByCode(const char **cursor, ScrPar *par, uint32_t code)
{
    const char first = **cursor;
    // Double quotes are also those of names; an apostrophe may begin a raw file name.
    const uint32_t quoted = first == '"' ? PAR_NAME | PAR_RAW | PAR_TEXT : PAR_TEXT;
    if ((first == '"' || first == '\'') && (code & quoted)) {
        par->flags |= code & (PAR_NAME | PAR_RAW | PAR_TEXT);
        return ParseQuoted(cursor, par);
    }
    if (code & (PAR_RAW | PAR_TEXT)) {
        par->flags |= code & (PAR_RAW | PAR_TEXT);
        return ParseRaw(cursor, par);
    }
    const bool isNumber = first == '-' || (first >= '0' && first <= '9');
    if ((code & PAR_INTEGER) && isNumber)
        return ParseInteger(cursor, par, code);
    if ((code & PAR_FLOAT) && (isNumber || first == '+'))
        return ParseFloat(cursor, par);
    return (code & PAR_NAME) && ParseName(cursor, par, code);
}

} // namespace

int ScrGetPar(const char **cursor, ScrPar *par, uint32_t code)
{
    const char *c = TXT_SkipBlanks(*cursor);
    par->flags |= code & (PAR_ADDRESS | PAR_TYPE);
    if (!ParseByCode(&c, par, code))
        return -1;
    *cursor = c;
    return *TXT_SkipBlanks(c) == '\0' ? 1 : 0;
}

void ClrScrPar(ScrPar *par, int count)
{
    for (int i = 0; i < count; i++)
        par[i] = ScrPar();
}
