// Types of up to 4 bytes go to the array commands, so that both show and take the same texts.
#include "inspect/element.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "text/bytes.h"
#include "text/tokens.h"
#include "text/words.h"

const char INS_ELEMENT_NAMES[] = "i1, u1, i2, u2, i4, u4, i8, u8, f4, f8";

namespace {

constexpr ArrayType WIDE_TYPES[] = {
    {"i8", "I8", 8, true, false}, {"u8", "U8", 8, false, false}, {"f8", "F8", 8, true, true}};

// Target bytes are least significant first, whatever this machine's order is.
template <class Value> Value GetWide(const uint8_t *bytes)
{
    static_assert(sizeof(Value) == INS_ELEMENT_BYTES_MAX);
    const uint64_t bits = TXT_GetLittle(bytes, INS_ELEMENT_BYTES_MAX);
    Value value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

} // namespace

const ArrayType *INS_FindElement(const std::string &name)
{
    for (const ArrayType &type : WIDE_TYPES)
        if (TXT_IsSameWord(name, type.name))
            return &type;
    return SCR_FindArrayType(name);
}

std::string INS_FormatElement(const ArrayType &type, const uint8_t *bytes)
{
    if (type.size < INS_ELEMENT_BYTES_MAX)
        return TXT_Trim(SCR_FormatElement(type, bytes));
    if (!type.isFloat)
        return type.isSigned ? std::to_string(GetWide<int64_t>(bytes))
                             : std::to_string(GetWide<uint64_t>(bytes));
    char text[40]; // 24 characters at most: the shortest that brings the value back
    const std::to_chars_result end =
        std::to_chars(text, text + sizeof text, GetWide<double>(bytes));
    return std::string(text, end.ptr);
}

ArrayParse INS_ParseElement(const ArrayType &type, const std::string &text, uint8_t *bytes)
{
    if (type.size < INS_ELEMENT_BYTES_MAX)
        return SCR_ParseElement(type, text.c_str(), bytes);
    const std::string number = TXT_Trim(text);
    // The C library takes more than a number: hexadecimal, infinities, a sign where none may be.
    const char *allowed = type.isFloat ? "0123456789+-.eE" : "0123456789+-";
    if (number.empty() || number.find_first_not_of(allowed) != std::string::npos ||
        (!type.isSigned && number.find('-') != std::string::npos))
        return ARRAY_NO_VALUE;
    char *end = nullptr;
    errno = 0;
    uint64_t bits = 0;
    bool isInRange = true;
    if (type.isFloat) {
        const double value = std::strtod(number.c_str(), &end);
        std::memcpy(&bits, &value, sizeof bits);
        isInRange = std::isfinite(value); // one that is too small becomes 0 or nearly so
    } else if (type.isSigned) {
        bits = static_cast<uint64_t>(std::strtoll(number.c_str(), &end, 10));
        isInRange = errno == 0;
    } else {
        bits = std::strtoull(number.c_str(), &end, 10);
        isInRange = errno == 0;
    }
    if (*end != '\0') // "1-2", "1e"
        return ARRAY_NO_VALUE;
    if (!isInRange)
        return ARRAY_OUT_OF_RANGE;
    TXT_PutLittle(bytes, INS_ELEMENT_BYTES_MAX, bits);
    return ARRAY_OK;
}

double INS_GetElementNumber(const ArrayType &type, const uint8_t *bytes)
{
    // A curve has the precision of a double: of 8 bytes of integer it shows 53 bits.
    double number = 0;
    if (type.size == INS_ELEMENT_BYTES_MAX) {
        number = type.isFloat    ? GetWide<double>(bytes)
                 : type.isSigned ? static_cast<double>(GetWide<int64_t>(bytes))
                                 : static_cast<double>(GetWide<uint64_t>(bytes));
    } else {
        const uint32_t bits = SCR_GetElement(type, bytes);
        float single = 0;
        std::memcpy(&single, &bits, sizeof single);
        number = type.isFloat    ? static_cast<double>(single)
                 : type.isSigned ? static_cast<double>(static_cast<int32_t>(bits))
                                 : static_cast<double>(bits);
    }
    return std::isfinite(number) ? number : NAN; // a gap in the curve
}
