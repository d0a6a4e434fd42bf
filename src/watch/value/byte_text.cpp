#include "watch/value/byte_text.h"

#include <cctype>
#include <cstdio>

namespace {

int hexDigit(char c)
{
    if (!std::isxdigit(static_cast<unsigned char>(c)))
        return -1;
    return std::isdigit(static_cast<unsigned char>(c))
               ? c - '0'
               : std::toupper(static_cast<unsigned char>(c)) - 'A' + 10;
}

} // namespace

std::string BYT_Hex(const uint8_t *bytes, size_t count)
{
    std::string text;
    char digits[4];
    for (size_t i = 0; i < count; ++i) {
        std::snprintf(digits, sizeof digits, "%02X", bytes[i]);
        text += (i > 0 ? " " : "") + std::string(digits);
    }
    return text;
}

std::string BYT_Plain(const uint8_t *bytes, size_t count)
{
    std::string text;
    for (size_t i = 0; i < count; ++i)
        text += bytes[i] >= 0x20 && bytes[i] < 0x7F ? static_cast<char>(bytes[i]) : '.';
    return text;
}

std::string BYT_Parse(const std::string &text, size_t count, std::vector<uint8_t> *bytes)
{
    bytes->clear();
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == ' ')
            continue;
        const int high = hexDigit(text[i]);
        const int low = i + 1 < text.size() ? hexDigit(text[i + 1]) : -1;
        if (high < 0 || low < 0)
            return "'" + text.substr(i, 2) + "' is no byte: two hexadecimal digits each.";
        bytes->push_back(static_cast<uint8_t>(high << 4 | low));
        ++i;
    }
    if (bytes->size() != count)
        return "The line has " + std::to_string(count) + " bytes, not " +
               std::to_string(bytes->size()) + ".";
    return "";
}
