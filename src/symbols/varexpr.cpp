// Address expressions: a number, or a name with members, indexes and an offset, looked
// up in a node table.
#include <cstdlib>
#include <cstring>

#include "settings/limits.h"
#include "settings/settings.h"
#include "symbols/typemap.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"
#include "text/xscan.h"

namespace {

constexpr uint32_t NOT_FOUND = 0xFFFFFFFFu;
constexpr size_t EXPRESSION_MAX = 511; // characters; a longer text names nothing

const char *SkipBlanks(const char *text)
{
    xscan("* ", &text);
    return text;
}

// Past a station prefix ("3 : ") of a valid station, else where it was.
const char *SkipStation(const char *text)
{
    const char *end = text;
    if (xscan("* *#0-9.* /:", &end) < 0)
        return text;
    return std::strtol(text, nullptr, 10) <= STATION_MAX ? end : text;
}

// Station and "&" may stand in either order.
const char *SkipPrefixes(const char *text)
{
    const char *rest = SkipBlanks(SkipStation(text));
    if (*rest != '&')
        return rest;
    return SkipBlanks(rest == SkipBlanks(text) ? SkipStation(rest + 1) : rest + 1);
}

// A number that 32 bits do not hold is no address that anybody meant.
uint32_t ReadNumber(const char *digits, int base)
{
    const unsigned long long number = std::strtoull(digits, nullptr, base);
    return number < NOT_FOUND ? static_cast<uint32_t>(number) : NOT_FOUND;
}

// "0x1F" or "0FA00H" at the cursor: the number, the cursor moved past it.
bool ScanHexNumber(const char **cursor, uint32_t *value)
{
    const char *start = SkipBlanks(*cursor);
    const char *end = start;
    if (xscani("0x@#0-9A-F.", &end) < 0 && xscani("#0-9.*#0-9A-F.#H.", &end) < 0)
        return false;
    *value = ReadNumber(start, 16);
    *cursor = end;
    return true;
}

// The offset text from its sign on. False when it is no number.
bool ScanOffset(const char *text, uint32_t *offset)
{
    const bool negative = *text == '-';
    *offset = 0;
    xscan("?#+/-.* ", &text);
    if (!ScanHexNumber(&text, offset)) {
        const char *digits = text;
        if (xscan("@#0-9.", &text) < 0)
            return false;
        *offset = ReadNumber(digits, 10);
    }
    if (*offset == NOT_FOUND)
        return false;
    if (negative)
        *offset = 0u - *offset;
    return xscan("* #", &text) >= 0;
}

// Where the type map says the path leads, from its variable on: in bytes, or in words for
// a processor behind the station.
bool OffsetInside(const char *path, bool isMailbox, uint32_t *offset)
{
    if (!isMailbox)
        return TMF_GetEfType(path, nullptr, offset) == 0;
    uint32_t bytes = 0;
    if (TMF_GetEfTypeFor(CPU_F283XX, path, nullptr, &bytes) != 0 || bytes % 2 != 0)
        return false;
    *offset = bytes / 2;
    return true;
}

} // namespace

uint32_t inStruct(const char *expression, const VarNode *table, int count)
{
    if (expression == nullptr || std::strlen(expression) > EXPRESSION_MAX)
        return NOT_FOUND;
    const char *text = SkipPrefixes(expression);
    uint32_t number = 0;
    const char *afterNumber = text;
    if (ScanHexNumber(&afterNumber, &number))
        return number;

    char path[EXPRESSION_MAX + 1];
    std::strcpy(path, text);
    char name[EXPRESSION_MAX + 1];
    const int nameLength = xscan_strcpy(name, path, "#_/?a-zA-Z.*#_/?0-9a-zA-Z.");
    if (nameLength <= 0)
        return NOT_FOUND;
    uint32_t offset = 0;
    if (char *sign = std::strpbrk(path + nameLength, "+-")) {
        if (!ScanOffset(sign, &offset))
            return NOT_FOUND;
        *sign = '\0';
    }
    const int node = SYM_FindName(table, count, name);
    if (node < 0)
        return NOT_FOUND;
    char *follows = path + nameLength;
    follows += SkipBlanks(follows) - follows;
    const bool hasSelection = *follows == '.' || *follows == '[';
    uint32_t inside = 0;
    if (!OffsetInside(path, table == aVarTMSNode, &inside) && hasSelection)
        return NOT_FOUND;
    return table[node].addr + inside + offset;
}
