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

constexpr uint64_t MINUTES_MAX = 0xFFFFFF;
constexpr uint64_t MINUTES_PER_HOUR = 60;
constexpr uint64_t MINUTES_PER_DAY = 24 * 60;

struct Number {
    bool isNegative = false;
    bool isPattern = false; // written as bits, not as an amount
    uint64_t amount = 0;
};

int DigitsToAmount(const std::string &digits, int base, uint64_t *amount)
{
    const char *const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, *amount, base);
    if (error == std::errc::result_out_of_range &&
        std::all_of(stop, end, [](unsigned char c) { return std::isxdigit(c) != 0; }))
        return PRS_ERR_RANGE;
    return error == std::errc() && stop == end ? PRS_OK : PRS_ERR_TEXT;
}

// Takes the mark of the base off; the base.
int CutBaseMark(std::string *text, int plainBase)
{
    if (text->rfind("0x", 0) == 0) {
        text->erase(0, 2);
        return 16;
    }
    // Before "0b": 0BH is eleven.
    if (!text->empty() && text->back() == 'h') {
        text->pop_back();
        return 16;
    }
    if (text->rfind("0b", 0) == 0 && plainBase != 16) {
        text->erase(0, 2);
        return 2;
    }
    return plainBase;
}

int ParseNumber(std::string text, int plainBase, Number *number)
{
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        number->isNegative = text[0] == '-';
        text.erase(0, 1);
    }
    const int base = CutBaseMark(&text, plainBase);
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
        return PRS_ERR_RANGE;
    *bits = number.amount;
    return PRS_OK;
}

int ToSigned(const Number &number, int size, uint64_t *bits)
{
    const uint64_t half = Largest(size) / 2;
    const uint64_t limit = number.isNegative ? half + 1 : number.isPattern ? Largest(size) : half;
    if (number.amount > limit)
        return PRS_ERR_RANGE;
    *bits = (number.isNegative ? 0 - number.amount : number.amount) & Largest(size);
    return PRS_OK;
}

std::string HexDigits(uint64_t value)
{
    char digits[17];
    const auto end = std::to_chars(digits, digits + sizeof digits, value, 16).ptr;
    std::string text(digits, end);
    for (char &c : text)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

} // namespace

std::string PRS_Normal(const std::string &text)
{
    std::string result;
    for (const char c : text)
        result += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return WRD_Trim(result);
}

int PRS_Integer(const LItem &item, const std::string &text, uint64_t *bits)
{
    Number number;
    const int result = ParseNumber(text, item.type == 'x' ? 16 : 10, &number);
    if (result != PRS_OK)
        return result;
    return item.type == 'i' ? ToSigned(number, item.size, bits)
                            : ToUnsigned(number, item.size, bits);
}

int PRS_Bits(const LItem &item, const std::string &typed, uint64_t *bits)
{
    std::string text = typed;
    const bool isMarked = text.rfind("0x", 0) == 0 || text.back() == 'h';
    if (!isMarked && text.rfind("0b", 0) != 0 && text.back() == 'b')
        text.pop_back();
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    Number number;
    const int result = ParseNumber(text, 2, &number);
    return result == PRS_OK ? ToUnsigned(number, item.size, bits) : result;
}

int PRS_Float(const LItem &item, const std::string &text, uint64_t *bits)
{
    const char *begin = text.data() + (text[0] == '+' ? 1 : 0);
    const char *const end = text.data() + text.size();
    double number = 0;
    const auto [stop, error] = std::from_chars(begin, end, number);
    if (error == std::errc::result_out_of_range && stop == end)
        return PRS_ERR_RANGE;
    if (error != std::errc() || stop != end || !std::isfinite(number))
        return PRS_ERR_TEXT;
    const float single = static_cast<float>(
        std::clamp(number, -static_cast<double>(FLT_MAX), static_cast<double>(FLT_MAX)));
    if (std::fabs(number) > static_cast<double>(FLT_MAX))
        return PRS_ERR_RANGE;
    uint32_t pattern;
    std::memcpy(&pattern, &single, sizeof pattern);
    // Below the smallest normal number the TMS320 form knows only zero.
    if (LIT_IsTMS(item))
        pattern = IEEE_TMS(std::fabs(single) < FLT_MIN ? 0 : pattern);
    *bits = pattern;
    return PRS_OK;
}

// "1d 2h 3m" with any part left out, or a number of minutes.
int PRS_Duration(const LItem & /*item*/, const std::string &text, uint64_t *bits)
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
        const int result = DigitsToAmount(PRS_Normal(text.substr(at, end - at)), 10, &amount);
        if (result != PRS_OK)
            return result;
        if (amount > MINUTES_MAX)
            return PRS_ERR_RANGE;
        total += amount * row.minutes;
        at = end + 1;
    }
    if (at == 0) {
        const int result = DigitsToAmount(text, 10, &total);
        if (result != PRS_OK)
            return result;
    } else if (at != text.size()) {
        return PRS_ERR_TEXT;
    }
    if (total > MINUTES_MAX)
        return PRS_ERR_RANGE;
    *bits = total;
    return PRS_OK;
}

std::string PRS_UnsignedRange(const LItem &item)
{
    return "0 to " + std::to_string(Largest(item.size));
}

std::string PRS_SignedRange(const LItem &item)
{
    const uint64_t half = Largest(item.size) / 2;
    return "-" + std::to_string(half + 1) + " to " + std::to_string(half);
}

std::string PRS_HexRange(const LItem &item)
{
    return "0h to " + HexDigits(Largest(item.size)) + "h";
}

std::string PRS_BitRange(const LItem & /*item*/)
{
    return "0000 0000 to 1111 1111";
}

std::string PRS_FloatRange(const LItem & /*item*/)
{
    return "-3.40282e+38 to 3.40282e+38";
}

std::string PRS_DurationRange(const LItem & /*item*/)
{
    return "0 to 16777215 minutes (11650d 20h 15m)";
}
