// Numbers in files and fields. A number is the whole text, without blanks and with a point,
// wherever the program runs; what is none leaves the caller's value as it was.
#ifndef TEXT_NUMBERS_H
#define TEXT_NUMBERS_H

#include <charconv>
#include <limits>
#include <string>

// Within the bounds, both included, so that an infinite number and none at all are refused.
template <typename Number>
bool TXT_ParseNumber(const std::string &text, Number low, Number high, Number *value)
{
    Number parsed = 0;
    const char *end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, parsed);
    if (result.ec != std::errc() || result.ptr != end || !(parsed >= low && parsed <= high))
        return false;
    *value = parsed;
    return true;
}

// Any number of the type that is one.
template <typename Number> bool TXT_ParseNumber(const std::string &text, Number *value)
{
    typedef std::numeric_limits<Number> Limits;
    return TXT_ParseNumber(text, Limits::lowest(), Limits::max(), value);
}

#endif
