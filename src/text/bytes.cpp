#include "text/bytes.h"

#include "text/tokens.h"

#include <cstdio>

std::string TXT_FormatHexBytes(const uint8_t *bytes, size_t count)
{
    std::string text;
    char digits[4];
    for (size_t i = 0; i < count; ++i) {
        std::snprintf(digits, sizeof digits, "%02X", bytes[i]);
        text += (i > 0 ? " " : "") + std::string(digits);
    }
    return text;
}

std::string TXT_PlainBytes(const uint8_t *bytes, size_t count)
{
    std::string text;
    for (size_t i = 0; i < count; ++i)
        text += bytes[i] >= 0x20 && bytes[i] < 0x7F ? static_cast<char>(bytes[i]) : '.';
    return text;
}

std::string TXT_ParseHexBytes(const std::string &text, size_t count, std::vector<uint8_t> *bytes)
{
    bytes->clear();
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == ' ')
            continue;
        // Two digits stand together: "1 2" may be meant as 12 or as 01 02.
        if (i + 1 == text.size() || !TXT_IsHexDigit(text[i]) || !TXT_IsHexDigit(text[i + 1]))
            return "'" + text.substr(i, 2) + "' is no byte: two hexadecimal digits each.";
        const uint32_t byte = CON_DigitValue(text[i]) << 4 | CON_DigitValue(text[i + 1]);
        bytes->push_back(static_cast<uint8_t>(byte));
        ++i;
    }
    if (bytes->size() != count) // whoever shows the bytes cannot insert or take away any
        return "The line has " + std::to_string(count) + " bytes, not " +
               std::to_string(bytes->size()) + ".";
    return "";
}
