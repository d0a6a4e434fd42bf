// The text of one value as the list shows it, a function each type. Called through the
// rows of value_types.h.
#ifndef WATCH_VALUE_FORMAT_H
#define WATCH_VALUE_FORMAT_H

#include <cstddef>

struct LItem;

constexpr size_t FMT_TEXT_MAX = 48; // characters with the NUL

void FMT_Hex(char *text, const LItem &item);
void FMT_Unsigned(char *text, const LItem &item);
void FMT_Signed(char *text, const LItem &item);
void FMT_Float(char *text, const LItem &item);
void FMT_Bits(char *text, const LItem &item);
void FMT_Duration(char *text, const LItem &item); // minutes in the low three bytes
void FMT_Rate(char *text, const LItem &item);     // change a second since the read before

// The number of an item with four bytes, by the float format of the processor it lives in.
double FMT_FloatOf(const LItem &item);

#endif
