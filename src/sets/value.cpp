// One value of a set as bytes, number and text. The three must agree to the bit: a backup that is
// restored has to leave the target as it was.
#include "sets/value.h"

#include "symbols/assignment.h"
#include "text/bytes.h"
#include "text/words.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

struct TypeRow {
    int32_t type;
    const char *name, *cast;
    double min, max; // of a whole type
};
const TypeRow TYPES[] = {
    {ATP_U1, "u1", "(u1)", 0, 255},          {ATP_I1, "i1", "(i1)", -128, 127},
    {ATP_U2, "u2", "(u2)", 0, 65535},        {ATP_I2, "i2", "(i2)", -32768, 32767},
    {ATP_U4, "u4", "(u4)", 0, 4294967295.0}, {ATP_I4, "i4", "(i4)", -2147483648.0, 2147483647.0},
    {ATP_F4, "float", "(float)", 0, 0},      {0, "bytes", "", 0, 0},
};
// As many as a float is good for; lines of a file have all of them.
constexpr int SHOWN_DIGITS = 6;

const TypeRow &RowOf(int32_t type)
{
    for (const TypeRow &row : TYPES)
        if (row.type == type)
            return row;
    return TYPES[std::size(TYPES) - 1];
}

float FloatOf(const PST_Bytes &bytes)
{
    const auto bits = static_cast<uint32_t>(TXT_GetLittle(bytes.data(), 4));
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

void PutFloat(float value, PST_Bytes *bytes)
{
    uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    TXT_PutLittle(bytes->data(), 4, bits);
}

// The shortest text that gives the same float when it is read as a double first, which is
// how lines are read.
std::string FloatText(float value)
{
    char text[48];
    const auto end = std::to_chars(text, text + sizeof text - 1, value);
    *end.ptr = '\0';
    const float back = static_cast<float>(std::strtod(text, nullptr));
    if (std::memcmp(&back, &value, sizeof back) != 0)
        std::snprintf(text, sizeof text, "%.9g", static_cast<double>(value));
    return text;
}

std::string RangeText(const TypeRow &row)
{
    if (row.type == ATP_F4)
        return "a number";
    char text[64];
    std::snprintf(text, sizeof text, "%.0f to %.0f", row.min, row.max);
    return text;
}

} // namespace

const char *PST_CastOf(int32_t type)
{
    return RowOf(type).cast;
}

const char *PST_TypeName(int32_t type)
{
    return RowOf(type).name;
}

double PST_Number(int32_t type, const PST_Bytes &bytes)
{
    if (type == 0)
        return 0;
    if (type == ATP_F4)
        return static_cast<double>(FloatOf(bytes));
    const int size = ATP_SizeOf(static_cast<uint32_t>(type));
    const uint64_t bits = TXT_GetLittle(bytes.data(), static_cast<size_t>(size));
    // Two's complement by hand: sizes differ, and a cast would hide which one is meant.
    const uint64_t sign = uint64_t{1} << (8 * size - 1);
    const double value = static_cast<double>(bits);
    const bool isSigned = RowOf(type).min < 0;
    return isSigned && (bits & sign) != 0 ? value - std::ldexp(1, 8 * size) : value;
}

std::string PST_ValueText(const PST_Entry &entry, const PST_Bytes &bytes)
{
    if (entry.type == 0)
        return TXT_FormatHexBytes(bytes.data(), entry.size);
    if (entry.type == ATP_F4)
        return FloatText(FloatOf(bytes));
    char text[32];
    // Four bytes at most, so that a double holds every whole value.
    std::snprintf(text, sizeof text, "%.0f", PST_Number(entry.type, bytes));
    return text;
}

std::string PST_AssignmentText(const PST_Entry &entry, const PST_Bytes &bytes)
{
    if (entry.type == ATP_F4 && !std::isfinite(FloatOf(bytes))) {
        char text[16];
        std::snprintf(text, sizeof text, "0%08Xh",
                      static_cast<unsigned>(TXT_GetLittle(bytes.data(), 4)));
        return "(u4) " + entry.name + " = " + text;
    }
    const std::string cast = PST_CastOf(entry.type);
    return (cast.empty() ? "" : cast + " ") + entry.name + " = " + PST_ValueText(entry, bytes);
}

int PST_ParseValue(const PST_Entry &entry, const std::string &cast, const std::string &text,
                   PST_Bytes *bytes, std::string *why)
{
    const TypeRow &row = RowOf(entry.type);
    if (entry.type == 0) {
        std::vector<uint8_t> parsed;
        *why = cast.empty() ? TXT_ParseHexBytes(text, entry.size, &parsed) : "Bytes have no type.";
        if (!why->empty())
            return -1;
        std::copy(parsed.begin(), parsed.end(), bytes->begin());
        return 0;
    }
    const int32_t said = cast.empty() ? entry.type : StrToATP(cast.c_str());
    // Infinities and the like have no decimal text: their bits stand for them.
    const bool isBits = entry.type == ATP_F4 && said == ATP_U4;
    if (said != entry.type && !isBits) {
        *why = cast + " does not fit: the header says (" + row.name + ").";
        return -1;
    }
    ScrPar records[SYM_ASSIGN_RECORDS];
    const std::string line = std::string(isBits ? "(u4)" : row.cast) + " x = " + text;
    const int kind = ParseAssn2(line.c_str(), records, said);
    const ScrPar &value = records[1];
    PST_Bytes result = {};
    bool isGood = kind == SYM_ASSIGN_VALUE && (value.flags & PAR_NAME) == 0;
    if (isGood && entry.type == ATP_F4 && !isBits) {
        const auto number = static_cast<float>(value.fvalue);
        isGood = std::isfinite(number);
        PutFloat(number, &result);
    } else if (isGood) {
        TXT_PutLittle(result.data(), entry.size, value.value);
        isGood = !isBits || !std::isfinite(FloatOf(result));
    }
    if (!isGood) {
        *why = "'" + text + "' is no value of type " + row.name + " (" + RangeText(row) + ").";
        return -1;
    }
    *bytes = result;
    return 0;
}

std::string PST_ShownNumber(double value)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.*g", SHOWN_DIGITS, value);
    // A number that fits the digits as a whole one is not written with an exponent.
    if (std::fabs(value) < 1e15 && std::floor(value) == value)
        std::snprintf(text, sizeof text, "%.0f", value);
    return std::strcmp(text, "-0") == 0 ? "0" : text;
}

std::string PST_ShownText(const PST_Entry &entry, double factor, const PST_Bytes &bytes)
{
    if (entry.type == 0 || factor == 1)
        return PST_ValueText(entry, bytes);
    return PST_ShownNumber(PST_Number(entry.type, bytes) * factor);
}

int PST_ParseShown(const PST_Entry &entry, double factor, const std::string &text, PST_Bytes *bytes,
                   std::string *why)
{
    const std::string trimmed = TXT_Trim(text);
    if (entry.type == 0 || factor == 1)
        return PST_ParseValue(entry, "", trimmed, bytes, why);
    double number = 0;
    if (PST_ParseNumber(trimmed, &number)) {
        number /= factor;
        if (entry.type != ATP_F4)
            // 2.5 in units of 0.1 is 25, whatever the division makes of it.
            number = std::round(number);
        if (PST_PutNumber(entry.type, number, bytes) == 0)
            return 0;
    }
    const TypeRow &row = RowOf(entry.type);
    *why = "'" + text + "' is no value of this parameter";
    if (entry.type != ATP_F4) {
        double low = row.min * factor, high = row.max * factor;
        if (low > high)
            std::swap(low, high);
        *why += " (" + PST_ShownNumber(low) + " to " + PST_ShownNumber(high) + ")";
    }
    *why += ".";
    return -1;
}

int PST_PutNumber(int32_t type, double number, PST_Bytes *bytes)
{
    const TypeRow &row = RowOf(type);
    PST_Bytes result = {};
    if (type == ATP_F4) {
        const auto value = static_cast<float>(number);
        if (!std::isfinite(value))
            return -1;
        PutFloat(value, &result);
    } else {
        if (type == 0 || !(number >= row.min && number <= row.max) || std::floor(number) != number)
            return -1;
        const auto bits = static_cast<uint64_t>(static_cast<int64_t>(number));
        TXT_PutLittle(result.data(), static_cast<size_t>(ATP_SizeOf(static_cast<uint32_t>(type))),
                      bits);
    }
    *bytes = result;
    return 0;
}

std::string PST_CheckLimits(const PST_Attributes &attributes, const PST_Entry &entry,
                            const PST_Bytes &bytes)
{
    if (entry.type == 0 || (!attributes.hasMin && !attributes.hasMax))
        return "";
    const double number = PST_Number(entry.type, bytes);
    // The limits of a float are floats, too: 0.1 as a limit admits the target's 0.1.
    const bool isFloat = entry.type == ATP_F4;
    const double min =
        isFloat ? static_cast<double>(static_cast<float>(attributes.min)) : attributes.min;
    const double max =
        isFloat ? static_cast<double>(static_cast<float>(attributes.max)) : attributes.max;
    const std::string value = PST_ValueText(entry, bytes);
    if (attributes.hasMin && !(number >= min))
        return value + " lies below the limit " + PST_ShownNumber(attributes.min) + ".";
    if (attributes.hasMax && !(number <= max))
        return value + " lies above the limit " + PST_ShownNumber(attributes.max) + ".";
    return "";
}

bool PST_ParseNumber(const std::string &text, double *number)
{
    // Both spellings of a hexadecimal number, "0x1F" and "1Fh", up to 32 bits.
    const bool isPrefixed = text.size() > 2 && text[0] == '0' && (text[1] | 0x20) == 'x';
    const bool isSuffixed = text.size() > 1 && (text.back() | 0x20) == 'h';
    const char *begin = text.data() + (isPrefixed ? 2 : 0);
    const char *end = text.data() + text.size() - (isSuffixed && !isPrefixed ? 1 : 0);
    if (isPrefixed || isSuffixed) {
        uint32_t value = 0;
        const auto result = std::from_chars(begin, end, value, 16);
        if (result.ec != std::errc() || result.ptr != end)
            return false;
        *number = value;
        return true;
    }
    // The library takes a minus only.
    if (begin != end && *begin == '+')
        ++begin;
    double value = 0;
    const auto result = std::from_chars(begin, end, value);
    if (result.ec != std::errc() || result.ptr != end || !std::isfinite(value))
        return false;
    *number = value;
    return true;
}
