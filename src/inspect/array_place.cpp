// What was typed goes through three steps: the place gives an address, a declaration or the typed
// sizes give type and dimensions, and the slice moves the address to its table.
#include "inspect/array_place.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "comm/sysaddr.h"
#include "inspect/element.h"
#include "settings/limits.h"
#include "symbols/typemap.h"
#include "text/words.h"

namespace {

constexpr size_t PARTS_MIN = 3, PARTS_MAX = 10; // place, type, sizes
constexpr unsigned long COUNT_MAX = ADDR_LIMIT;
constexpr uint32_t COLUMNS_MAX = 15; // a wider array is listed element by element

std::vector<std::string> SplitParts(const std::string &text)
{
    std::vector<std::string> parts;
    for (size_t begin = 0; begin <= text.size();) {
        const size_t comma = std::min(text.find(',', begin), text.size());
        parts.push_back(TXT_Trim(text.substr(begin, comma - begin)));
        begin = comma + 1;
    }
    return parts;
}

// "2, 1" or "[2][1]" to one index for each outer dimension; those that are missing are 0.
bool ParseSlice(const std::string &text, INS_Array *array, std::string *cause)
{
    array->slice.assign(array->outer.size(), 0);
    size_t at = 0;
    for (uint32_t &index : array->slice) {
        at = text.find_first_not_of(" ,[]", at);
        if (at == std::string::npos)
            break;
        const size_t end = std::min(text.find_first_of(" ,[]", at), text.size());
        const std::string number = text.substr(at, end - at);
        const bool isNumber = number.find_first_not_of("0123456789") == std::string::npos;
        const uint32_t size = array->outer[static_cast<size_t>(&index - array->slice.data())];
        const unsigned long value = std::strtoul(number.c_str(), nullptr, 10);
        if (!isNumber || value >= size) {
            *cause =
                "the slice's index '" + number + "' is not within 0 to " + std::to_string(size - 1);
            return false;
        }
        index = static_cast<uint32_t>(value);
        at = end;
    }
    if (at == std::string::npos || text.find_first_not_of(" ,[]", at) == std::string::npos)
        return true;
    *cause = "a slice has " + std::to_string(array->outer.size()) + " indices";
    return false;
}

// All dimensions of a declaration, the outermost first.
int ReadDeclaration(const std::string &name, std::vector<uint32_t> *sizes, INS_Array *array,
                    std::string *cause)
{
    uint32_t chain[TMF_CHAIN_SIZE], offset = 0, size = 0, stride = 0;
    if (TMF_GetEfType(name.c_str(), chain, &offset) != 0) {
        *cause =
            "no array of the type map has the name '" + name + "': type it as name, type, count";
        return -1;
    }
    const uint32_t *element = chain;
    for (; TMF_GetArrayInfo(element, &size, &stride) == 0; ++element)
        sizes->push_back(size);
    if (sizes->empty()) {
        *cause = "'" + name + "' is no array";
        return -1;
    }
    // What stands behind the dimensions must be a number, whose name is letter and size: "u2".
    if ((*element & TMF_DERIVATION) == 0) {
        const char letter = (*element & TMF_KIND) == TMF_FLOAT ? 'f'
                            : (*element & TMF_SIGNED) != 0     ? 'i'
                                                               : 'u';
        array->type = INS_FindElement(letter + std::to_string(TMF_GetElemSize(*element)));
    }
    if (array->type != nullptr)
        return 0;
    *cause = "its elements are no numbers: the record inspector shows them";
    return -1;
}

// "awTable, u2, 4, 32": the parts behind the place.
int ReadParts(const std::vector<std::string> &parts, std::vector<uint32_t> *sizes, INS_Array *array,
              std::string *cause)
{
    bool isGood = parts.size() >= PARTS_MIN && parts.size() <= PARTS_MAX;
    array->type = isGood ? INS_FindElement(parts[1]) : nullptr;
    for (size_t i = PARTS_MIN - 1; i < parts.size() && isGood; ++i) {
        // strtoul turns a negative number into a large positive one.
        char *end = nullptr;
        const unsigned long count = std::strtoul(parts[i].c_str(), &end, 10);
        isGood = end != parts[i].c_str() && *end == '\0' && count >= 1 && count <= COUNT_MAX &&
                 parts[i][0] != '-';
        sizes->push_back(static_cast<uint32_t>(count));
    }
    if (isGood && array->type != nullptr)
        return 0;
    *cause = std::string("an array is typed as name, type, count: awTable, u2, 32; types are ") +
             INS_ELEMENT_NAMES;
    return -1;
}

// The last two dimensions are the table's, those in front of them choose it. Bytes of a table
// of one slice, or -1: it all would not fit into the memory.
int64_t UseSizes(const std::vector<uint32_t> &sizes, INS_Array *array)
{
    uint64_t bytes = array->type->size, table = 0;
    for (size_t i = sizes.size(); i-- > 0;) {
        bytes *= sizes[i]; // both below 2^32
        if (i + 2 == sizes.size() || sizes.size() == 1)
            table = bytes;
        if (bytes > ADDR_LIMIT - array->address)
            return -1;
    }
    const size_t outer = sizes.size() > 2 ? sizes.size() - 2 : 0;
    array->outer.assign(sizes.begin(), sizes.begin() + static_cast<long>(outer));
    array->rows = sizes[outer];
    array->columns = sizes.size() > 1 ? sizes.back() : 1;
    if (array->columns > COLUMNS_MAX) {
        array->rows *= array->columns;
        array->columns = 1;
    }
    return static_cast<int64_t>(table);
}

} // namespace

int INS_ParsePlace(const std::string &text, const std::string &slice, INS_Array *array,
                   std::string *cause)
{
    const std::vector<std::string> parts = SplitParts(text);
    std::vector<uint32_t> sizes;
    array->place = TXT_Trim(text);
    array->address = GetSysAddr(parts[0].c_str());
    // The memory behind "&" is reached through a mailbox, which the transfers do not know.
    if (array->address == ADDR_NONE || parts[0].find('&') != std::string::npos) {
        *cause = COM_UnknownNameText(parts[0]);
        cause->pop_back(); // its full stop
        return -1;
    }
    if (parts.size() == 1 ? ReadDeclaration(parts[0], &sizes, array, cause) != 0
                          : ReadParts(parts, &sizes, array, cause) != 0)
        return -1;
    const int64_t sliceBytes = UseSizes(sizes, array);
    if (sliceBytes < 0) {
        *cause = "it would end beyond the target's memory";
        return -1;
    }
    if (!ParseSlice(slice, array, cause))
        return -1;
    uint32_t number = 0; // of the slice
    for (size_t i = 0; i < array->outer.size(); ++i)
        number = number * array->outer[i] + array->slice[i];
    array->address += number * static_cast<uint32_t>(sliceBytes);
    return 0;
}

std::string INS_FormatSlice(const INS_Array &array)
{
    std::string text;
    for (const uint32_t index : array.slice)
        text += (text.empty() ? "" : ", ") + std::to_string(index);
    return text;
}
