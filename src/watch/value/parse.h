// What a user types as a value, to bits: the inverse of the value texts of the list, a
// function each way of writing, with the ranges. Called through the rows of value_types.h.
#ifndef WATCH_VALUE_PARSE_H
#define WATCH_VALUE_PARSE_H

#include <cstdint>
#include <string>

struct LItem;

// The values of VAL_WriteResult that parsing gives.
enum { VAL_PARSE_OK = 0, VAL_PARSE_ERR_TEXT = -2, VAL_PARSE_ERR_RANGE = -3 };

std::string VAL_NormalText(const std::string &text); // trimmed, in small letters

// From a normal text that is not empty: VAL_PARSE_OK and the bits, or a code and *bits untouched.
int VAL_ParseInteger(const LItem &item, const std::string &text, uint64_t *bits);
int VAL_ParseBits(const LItem &item, const std::string &text, uint64_t *bits);
int VAL_ParseFloat(const LItem &item, const std::string &text, uint64_t *bits);
int VAL_ParseDuration(const LItem &item, const std::string &text, uint64_t *bits);

// "0 to 255", by the size of an integer item and in the form that the list shows its type in.
std::string VAL_GetIntegerRange(const LItem &item);

#endif
