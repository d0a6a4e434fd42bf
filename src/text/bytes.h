// Bytes to numbers and back, and as people read and type them.
#ifndef TEXT_BYTES_H
#define TEXT_BYTES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// The number in `count` (at most 8) bytes, the least significant first, as targets store it.
inline uint64_t TXT_GetLittle(const uint8_t *bytes, size_t count)
{
    uint64_t value = 0;
    for (size_t i = 0; i < count; ++i)
        value |= static_cast<uint64_t>(bytes[i]) << 8 * i;
    return value;
}

// The way back; bits beyond `count` bytes are left out.
inline void TXT_PutLittle(uint8_t *bytes, size_t count, uint64_t value)
{
    for (size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<uint8_t>(value >> 8 * i);
}

std::string TXT_FormatHexBytes(const uint8_t *bytes, size_t count); // "01 AB"
std::string TXT_PlainBytes(const uint8_t *bytes, size_t count);     // printable ASCII, else "."
// `count` bytes of two hexadecimal digits each, blanks between them as one likes. "" and the
// bytes, or what is wrong with the text.
std::string TXT_ParseHexBytes(const std::string &text, size_t count, std::vector<uint8_t> *bytes);

#endif
