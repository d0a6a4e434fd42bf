// What the place field of the array inspector designates.
#include <cstdlib>
#include <vector>

#include "comm/sysaddr.h"
#include "console/commands/array_types.h"
#include "inspect/array_inspector.h"
#include "settings/limits.h"
#include "symbols/typemap.h"
#include "text/words.h"

namespace {

constexpr size_t PARTS_MIN = 3, PARTS_MAX = 4; // place, type, rows, columns
constexpr unsigned long COUNT_MAX = ADDR_LIMIT;
constexpr uint32_t COLUMNS_MAX = 15; // a wider array is listed element by element

std::vector<std::string> SplitParts(const std::string &text)
{
    std::vector<std::string> parts;
    for (size_t begin = 0; begin <= text.size();) {
        const size_t comma = std::min(text.find(',', begin), text.size());
        parts.push_back(WRD_Trim(text.substr(begin, comma - begin)));
        begin = comma + 1;
    }
    return parts;
}

bool ParseCount(const std::string &text, uint32_t *count)
{
    char *end = nullptr;
    const unsigned long number = std::strtoul(text.c_str(), &end, 10);
    *count = static_cast<uint32_t>(number);
    return end != text.c_str() && *end == '\0' && number >= 1 && number <= COUNT_MAX &&
           text[0] != '-';
}

// The array commands' name of a basic type; "" for one they do not have.
std::string GetTypeName(uint32_t code)
{
    const int size = TMF_GetElemSize(code);
    const bool isFloat = (code & TMF_KIND) == TMF_FLOAT;
    const char letter = isFloat ? 'f' : (code & TMF_SIGNED) != 0 ? 'i' : 'u';
    return letter + std::to_string(size);
}

int TakeDeclaration(const std::string &name, ARI_Array *array, std::string *cause)
{
    uint32_t chain[TMF_CHAIN_SIZE], offset = 0, stride = 0;
    if (TMF_GetEfType(name.c_str(), chain, &offset) != 0) {
        *cause =
            "no array of the type map has the name '" + name + "': type it as name, type, count";
        return -1;
    }
    const uint32_t *element = chain;
    if (TMF_GetArrayInfo(element, &array->rows, &stride) != 0) {
        *cause = "'" + name + "' is no array";
        return -1;
    }
    ++element;
    array->columns = 1;
    if (TMF_GetArrayInfo(element, &array->columns, &stride) == 0)
        ++element;
    array->type = (*element & TMF_DERIVATION) == 0 ? ARR_FindType(GetTypeName(*element)) : nullptr;
    if (array->type == nullptr)
        *cause = "its elements are no numbers of up to 4 bytes: the record inspector shows them";
    return array->type != nullptr ? 0 : -1;
}

} // namespace

int ARI_Parse(const std::string &text, ARI_Array *array, std::string *cause)
{
    const std::vector<std::string> parts = SplitParts(text);
    array->place = WRD_Trim(text);
    array->address = GetSysAddr(parts[0].c_str());
    if (array->address == ADDR_NONE || parts[0].find('&') != std::string::npos) {
        *cause = ADR_UnknownText(parts[0]);
        cause->pop_back(); // its full stop
        return -1;
    }
    if (parts.size() == 1) {
        if (TakeDeclaration(parts[0], array, cause) != 0)
            return -1;
    } else {
        array->type = parts.size() >= PARTS_MIN ? ARR_FindType(parts[1]) : nullptr;
        array->columns = 1;
        if (parts.size() > PARTS_MAX || array->type == nullptr ||
            !ParseCount(parts[2], &array->rows) ||
            (parts.size() == PARTS_MAX && !ParseCount(parts[3], &array->columns))) {
            *cause = "an array is typed as name, type, count: awTable, u2, 32; types are i1, u1, "
                     "i2, u2, i4, u4, f4";
            return -1;
        }
    }
    if (array->columns > COLUMNS_MAX && uint64_t{array->rows} * array->columns <= COUNT_MAX) {
        array->rows *= array->columns;
        array->columns = 1;
    }
    if (uint64_t{array->rows} * array->columns * array->type->size > ADDR_LIMIT - array->address) {
        *cause = "it would end beyond the target's memory";
        return -1;
    }
    return 0;
}
