// Elements of an array as the inspector shows them: the types of the array commands, and those
// of 8 bytes, which the commands do not know.
#ifndef INSPECT_ELEMENT_H
#define INSPECT_ELEMENT_H

#include <cstdint>
#include <string>

#include "console/commands/array_types.h"

constexpr uint32_t INS_ELEMENT_BYTES_MAX = 8;
extern const char INS_ELEMENT_NAMES[]; // of all types, for messages

const ArrayType *INS_FindElement(const std::string &name); // ignoring case, or null
// The text that SCR_ParseElement and INS_ParseElement bring back to the value; without blanks.
std::string INS_FormatElement(const ArrayType &type, const uint8_t *bytes);
ArrayParse INS_ParseElement(const ArrayType &type, const std::string &text, uint8_t *bytes);
// For curves: of 8 bytes, the nearest double; NaN for what is no finite number.
double INS_GetElementNumber(const ArrayType &type, const uint8_t *bytes);

#endif
