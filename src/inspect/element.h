// Elements of an array as the inspector shows them: the types of the array commands, and those
// of 8 bytes, which the commands do not know.
#ifndef INSPECT_ELEMENT_H
#define INSPECT_ELEMENT_H

#include <cstdint>
#include <string>

#include "console/commands/array_types.h"

constexpr uint32_t AEL_BYTES_MAX = 8;
extern const char AEL_NAMES[]; // of all types, for messages

const ArrayType *AEL_Find(const std::string &name); // ignoring case, or null
// The text that ARR_ParseElement and AEL_Parse bring back to the value; without blanks.
std::string AEL_Format(const ArrayType &type, const uint8_t *bytes);
ArrayParse AEL_Parse(const ArrayType &type, const std::string &text, uint8_t *bytes);
// For curves: of 8 bytes, the nearest double; NaN for what is no finite number.
double AEL_GetNumber(const ArrayType &type, const uint8_t *bytes);

#endif
