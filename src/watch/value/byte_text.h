// Bytes as people read and type them in the memory editor.
#ifndef WATCH_VALUE_BYTE_TEXT_H
#define WATCH_VALUE_BYTE_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

std::string BYT_Hex(const uint8_t *bytes, size_t count);   // "01 AB"
std::string BYT_Plain(const uint8_t *bytes, size_t count); // printable ASCII, else "."
// `count` bytes of two hexadecimal digits each, blanks between them as one likes. "" and the
// bytes, or what is wrong with the text.
std::string BYT_Parse(const std::string &text, size_t count, std::vector<uint8_t> *bytes);

#endif
