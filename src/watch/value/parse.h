// What a user types as a value, to bits: the inverse of the value texts of the list, a
// function each way of writing, with the ranges. Called through the rows of value_types.h.
#ifndef WATCH_VALUE_PARSE_H
#define WATCH_VALUE_PARSE_H

#include <cstdint>
#include <string>

struct LItem;

// The values of WRV_Result that parsing gives.
enum { PRS_OK = 0, PRS_ERR_TEXT = -2, PRS_ERR_RANGE = -3 };

std::string PRS_Normal(const std::string &text); // trimmed, in small letters

// From a normal text that is not empty: PRS_OK and the bits, or a code and *bits untouched.
int PRS_Integer(const LItem &item, const std::string &text, uint64_t *bits);
int PRS_Bits(const LItem &item, const std::string &text, uint64_t *bits);
int PRS_Float(const LItem &item, const std::string &text, uint64_t *bits);
int PRS_Duration(const LItem &item, const std::string &text, uint64_t *bits);

// "0 to 255", by the size of an integer item and in the form that the list shows its type in.
std::string PRS_IntegerRange(const LItem &item);

#endif
