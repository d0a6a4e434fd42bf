// What a user types as a value, to bits: the inverse of the value texts of the list.
#include <algorithm>
#include <cctype>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>

#include "watch/list/litem.h"
#include "watch/list/refresh.h"
#include "watch/value/write_value.h"

namespace {

constexpr uint64_t MINUTES_MAX = 0xFFFFFF;
constexpr uint64_t MINUTES_PER_HOUR = 60;
constexpr uint64_t MINUTES_PER_DAY = 24 * 60;

struct Number {
    bool isNegative = false;
    bool isPattern = false; // written as bits, not as an amount
    uint64_t amount = 0;
};

std::string lowered(const std::string &text)
{
    std::string result;
    for (const char c : text)
        result += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const size_t begin = result.find_first_not_of(" \t");
    if (begin == std::string::npos)
        return "";
    return result.substr(begin, result.find_last_not_of(" \t") - begin + 1);
}

int digitsToAmount(const std::string &digits, int base, uint64_t *amount)
{
    const char *const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, *amount, base);
    if (error == std::errc::result_out_of_range &&
        std::all_of(stop, end, [](unsigned char c) { return std::isxdigit(c) != 0; }))
        return WRV_ERR_RANGE;
    return error == std::errc() && stop == end ? WRV_OK : WRV_ERR_TEXT;
}

// Takes the mark of the base off; the base.
int takeBase(std::string *text, int plainBase)
{
    if (text->rfind("0x", 0) == 0) {
        text->erase(0, 2);
        return 16;
    }
    if (text->rfind("0b", 0) == 0 && plainBase != 16) {
        text->erase(0, 2);
        return 2;
    }
    if (!text->empty() && text->back() == 'h') {
        text->pop_back();
        return 16;
    }
    return plainBase;
}

int parseNumber(std::string text, int plainBase, Number *number)
{
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        number->isNegative = text[0] == '-';
        text.erase(0, 1);
    }
    const int base = takeBase(&text, plainBase);
    number->isPattern = base != 10;
    return digitsToAmount(text, base, &number->amount);
}

uint64_t largest(int size)
{
    return size == 8 ? UINT64_MAX : (uint64_t{1} << 8 * size) - 1;
}

int toUnsigned(const Number &number, int size, uint64_t *bits)
{
    if ((number.isNegative && number.amount != 0) || number.amount > largest(size))
        return WRV_ERR_RANGE;
    *bits = number.amount;
    return WRV_OK;
}

int toSigned(const Number &number, int size, uint64_t *bits)
{
    const uint64_t half = largest(size) / 2;
    const uint64_t limit = number.isNegative ? half + 1 : number.isPattern ? largest(size) : half;
    if (number.amount > limit)
        return WRV_ERR_RANGE;
    *bits = (number.isNegative ? 0 - number.amount : number.amount) & largest(size);
    return WRV_OK;
}

int parseInteger(const LItem &item, const std::string &text, uint64_t *bits)
{
    Number number;
    const int result = parseNumber(text, item.type == 'x' ? 16 : 10, &number);
    if (result != WRV_OK)
        return result;
    return item.type == 'i' ? toSigned(number, item.size, bits)
                            : toUnsigned(number, item.size, bits);
}

int parseBits(const LItem &item, const std::string &typed, uint64_t *bits)
{
    std::string text = typed;
    const bool isMarked = text.rfind("0x", 0) == 0 || text.back() == 'h';
    if (!isMarked && text.rfind("0b", 0) != 0 && text.back() == 'b')
        text.pop_back();
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    Number number;
    const int result = parseNumber(text, 2, &number);
    return result == WRV_OK ? toUnsigned(number, item.size, bits) : result;
}

int parseFloat(const LItem &item, const std::string &text, uint64_t *bits)
{
    const char *begin = text.data() + (text[0] == '+' ? 1 : 0);
    const char *const end = text.data() + text.size();
    double number = 0;
    const auto [stop, error] = std::from_chars(begin, end, number);
    if (error == std::errc::result_out_of_range && stop == end)
        return WRV_ERR_RANGE;
    if (error != std::errc() || stop != end || !std::isfinite(number))
        return WRV_ERR_TEXT;
    const float single = static_cast<float>(
        std::clamp(number, -static_cast<double>(FLT_MAX), static_cast<double>(FLT_MAX)));
    if (std::fabs(number) > static_cast<double>(FLT_MAX))
        return WRV_ERR_RANGE;
    uint32_t pattern;
    std::memcpy(&pattern, &single, sizeof pattern);
    // Below the smallest normal number the TMS320 form knows only zero.
    if (LIT_IsTMS(item))
        pattern = IEEE_TMS(std::fabs(single) < FLT_MIN ? 0 : pattern);
    *bits = pattern;
    return WRV_OK;
}

// "1d 2h 3m" with any part left out, or a number of minutes.
int parseDuration(const LItem & /*item*/, const std::string &text, uint64_t *bits)
{
    static const struct {
        char unit;
        uint64_t minutes;
    } units[] = {{'d', MINUTES_PER_DAY}, {'h', MINUTES_PER_HOUR}, {'m', 1}};
    uint64_t total = 0;
    size_t at = 0;
    for (const auto &row : units) {
        const size_t end = text.find(row.unit, at);
        if (end == std::string::npos)
            continue;
        uint64_t amount;
        const int result = digitsToAmount(lowered(text.substr(at, end - at)), 10, &amount);
        if (result != WRV_OK)
            return result;
        if (amount > MINUTES_MAX)
            return WRV_ERR_RANGE;
        total += amount * row.minutes;
        at = end + 1;
    }
    if (at == 0) {
        const int result = digitsToAmount(text, 10, &total);
        if (result != WRV_OK)
            return result;
    } else if (at != text.size()) {
        return WRV_ERR_TEXT;
    }
    if (total > MINUTES_MAX)
        return WRV_ERR_RANGE;
    *bits = total;
    return WRV_OK;
}

std::string hexDigits(uint64_t value)
{
    char digits[17];
    const auto end = std::to_chars(digits, digits + sizeof digits, value, 16).ptr;
    std::string text(digits, end);
    for (char &c : text)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

std::string unsignedRange(const LItem &item)
{
    return "0 to " + std::to_string(largest(item.size));
}

std::string signedRange(const LItem &item)
{
    const uint64_t half = largest(item.size) / 2;
    return "-" + std::to_string(half + 1) + " to " + std::to_string(half);
}

std::string hexRange(const LItem &item)
{
    return "0h to " + hexDigits(largest(item.size)) + "h";
}

std::string bitRange(const LItem & /*item*/)
{
    return "0000 0000 to 1111 1111";
}

std::string floatRange(const LItem & /*item*/)
{
    return "-3.40282e+38 to 3.40282e+38";
}

std::string durationRange(const LItem & /*item*/)
{
    return "0 to 16777215 minutes (11650d 20h 15m)";
}

struct TypeRow {
    char type;
    const char *form;
    int (*parse)(const LItem &item, const std::string &text, uint64_t *bits);
    std::string (*range)(const LItem &item);
};
const char INTEGER_FORM[] = "a decimal number, or hexadecimal as 0x1F or 1Fh";
const TypeRow typeRows[] = {
    {'i', INTEGER_FORM, parseInteger, signedRange},
    {'u', INTEGER_FORM, parseInteger, unsignedRange},
    {'p', INTEGER_FORM, parseInteger, unsignedRange},
    {'x', "a hexadecimal number", parseInteger, hexRange},
    {'b', "eight binary digits, or hexadecimal as 0x5C or 5Ch", parseBits, bitRange},
    {'f', "a decimal number", parseFloat, floatRange},
    {'t', "minutes, or days, hours and minutes as 1d 2h 3m", parseDuration, durationRange},
};

const TypeRow *rowOf(const LItem &item)
{
    for (const TypeRow &row : typeRows) {
        if (row.type == item.type)
            return &row;
    }
    return nullptr;
}

} // namespace

std::string WRV_Hint(const LItem &item)
{
    const TypeRow *row = rowOf(item);
    return row ? std::string(row->form) + "; " + row->range(item) : "";
}

int WRV_Parse(const LItem &item, const std::string &text, uint64_t *bits, std::string *message)
{
    const TypeRow *row = rowOf(item);
    const std::string value = lowered(text);
    const int result = !row || value.empty() ? WRV_ERR_TEXT : row->parse(item, value, bits);
    if (result == WRV_ERR_RANGE)
        *message = "'" + text + "' is out of range: " + row->range(item) + ".";
    else if (result == WRV_ERR_TEXT)
        *message = "'" + text + "' is not a value of this item: " + WRV_Hint(item) + ".";
    return result;
}
