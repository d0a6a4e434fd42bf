// A text becomes a sign and an amount first, and then, by the item's type and size, bits:
// whether an amount fits is asked once, for every way of writing it.
#include "watch/value/parse.h"

#include <algorithm>
#include <cctype>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>

#include "text/words.h"
#include "watch/list/litem.h"
#include "watch/value/tms_float.h"

namespace {

constexpr uint64_t MINUTES_MAX = 0xFFFFFF; // three of a duration's four bytes
constexpr uint64_t MINUTES_PER_HOUR = 60;
constexpr uint64_t MINUTES_PER_DAY = 24 * 60;

struct Number {
    bool isNegative = false;
    bool isPattern = false; // written as bits, not as an amount
    uint64_t amount = 0;
};

// All of the text, and nothing else, as digits of a base.
int DigitsToAmount(const std::string &digits, int base, uint64_t *amount)
{
    // Digits too many are a number out of range; with a letter behind them they are none.
    const char *const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, *amount, base);
    if (error == std::errc::result_out_of_range &&
        std::all_of(stop, end, [](unsigned char c) { return std::isxdigit(c) != 0; }))
        return VAL_PARSE_ERR_RANGE;
    return error == std::errc() && stop == end ? VAL_PARSE_OK : VAL_PARSE_ERR_TEXT;
}

// A sign, then digits with the mark of their base; without a mark they are of `plainBase`.
int ParseNumber(std::string text, int plainBase, Number *number)
{
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        number->isNegative = text[0] == '-';
        text.erase(0, 1);
    }
    int base = plainBase;
    if (text.rfind("0x", 0) == 0) {
        text.erase(0, 2);
        base = 16;
    } else if (!text.empty() && text.back() == 'h') { // before "0b": 0BH is eleven
        text.pop_back();
        base = 16;
    } else if (text.rfind("0b", 0) == 0 && plainBase != 16) { // plain digits of a type x item
        text.erase(0, 2);
        base = 2;
    }
    number->isPattern = base != 10;
    return DigitsToAmount(text, base, &number->amount);
}

uint64_t Largest(int size)
{
    return size == 8 ? UINT64_MAX : (uint64_t{1} << 8 * size) - 1;
}

int ToUnsigned(const Number &number, int size, uint64_t *bits)
{
    if ((number.isNegative && number.amount != 0) || number.amount > Largest(size))
        return VAL_PARSE_ERR_RANGE;
    *bits = number.amount;
    return VAL_PARSE_OK;
}

} // namespace

std::string VAL_NormalText(const std::string &text)
{
    std::string result;
    for (const char c : text)
        result += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return TXT_Trim(result);
}

int VAL_ParseInteger(const LItem &item, const std::string &text, uint64_t *bits)
{
    Number number;
    const int result = ParseNumber(text, item.type == 'x' ? 16 : 10, &number);
    if (result != VAL_PARSE_OK)
        return result;
    if (item.type != 'i')
        return ToUnsigned(number, item.size, bits);
    // A pattern may have the sign's bit set: 0xFF in one byte is -1, but 255 is out of range.
    const uint64_t all = Largest(item.size), half = all / 2;
    const uint64_t limit = number.isNegative ? half + 1 : number.isPattern ? all : half;
    if (number.amount > limit)
        return VAL_PARSE_ERR_RANGE;
    *bits = (number.isNegative ? 0 - number.amount : number.amount) & all;
    return VAL_PARSE_OK;
}

int VAL_ParseBits(const LItem &item, const std::string &typed, uint64_t *bits)
{
    std::string text = typed;
    // As the list shows them, "0101 1100 b"; in hexadecimal the last "b" is a digit.
    const bool isMarked = text.rfind("0x", 0) == 0 || text.back() == 'h';
    if (!isMarked && text.rfind("0b", 0) != 0 && text.back() == 'b')
        text.pop_back();
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    Number number;
    const int result = ParseNumber(text, 2, &number);
    return result == VAL_PARSE_OK ? ToUnsigned(number, item.size, bits) : result;
}

int VAL_ParseFloat(const LItem &item, const std::string &text, uint64_t *bits)
{
    // from_chars takes no "+", and a point in every system language.
    const char *begin = text.data() + (text[0] == '+' ? 1 : 0);
    const char *const end = text.data() + text.size();
    double number = 0;
    const auto [stop, error] = std::from_chars(begin, end, number);
    if (error == std::errc::result_out_of_range && stop == end)
        return VAL_PARSE_ERR_RANGE;
    if (error != std::errc() || stop != end || !std::isfinite(number))
        return VAL_PARSE_ERR_TEXT;
    // Before the conversion, which has no result beyond the largest single.
    if (std::fabs(number) > static_cast<double>(FLT_MAX))
        return VAL_PARSE_ERR_RANGE;
    const float single = static_cast<float>(number);
    uint32_t pattern;
    std::memcpy(&pattern, &single, sizeof pattern);
    // Below the smallest normal number the TMS320 form knows only zero.
    if (LIT_IsTMS(item))
        pattern = IEEE_TMS(std::fabs(single) < FLT_MIN ? 0 : pattern);
    *bits = pattern;
    return VAL_PARSE_OK;
}

// "1d 2h 3m" with any part left out, or a number of minutes.
int VAL_ParseDuration(const LItem & /*item*/, const std::string &text, uint64_t *bits)
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
        const int result = DigitsToAmount(VAL_NormalText(text.substr(at, end - at)), 10, &amount);
        if (result != VAL_PARSE_OK)
            return result;
        if (amount > MINUTES_MAX) // early, so that no sum runs over
            return VAL_PARSE_ERR_RANGE;
        total += amount * row.minutes;
        at = end + 1;
    }
    if (at == 0) { // no unit at all
        const int result = DigitsToAmount(text, 10, &total);
        if (result != VAL_PARSE_OK)
            return result;
    } else if (at != text.size()) {
        return VAL_PARSE_ERR_TEXT;
    }
    if (total > MINUTES_MAX)
        return VAL_PARSE_ERR_RANGE;
    *bits = total;
    return VAL_PARSE_OK;
}

std::string VAL_GetIntegerRange(const LItem &item)
{
    const uint64_t all = Largest(item.size), half = all / 2;
    if (item.type == 'i')
        return "-" + std::to_string(half + 1) + " to " + std::to_string(half);
    if (item.type == 'x')
        return TXT_Format("0h to %llXh", static_cast<unsigned long long>(all));
    return "0 to " + std::to_string(all);
}
