// The text of one value as the list shows it, a function each type. Called through the
// rows of value_types.h.
#ifndef WATCH_VALUE_FORMAT_H
#define WATCH_VALUE_FORMAT_H

#include <cstddef>

struct LItem;

constexpr size_t VAL_TEXT_MAX = 48; // characters with the NUL

void VAL_FormatHex(char *text, const LItem &item);
void VAL_FormatUnsigned(char *text, const LItem &item);
void VAL_FormatSigned(char *text, const LItem &item);
void VAL_FormatFloat(char *text, const LItem &item);
void VAL_FormatBits(char *text, const LItem &item);
void VAL_FormatDuration(char *text, const LItem &item); // minutes in the low three bytes
void VAL_FormatRate(char *text, const LItem &item);     // change a second since the read before

// The number of an item with four bytes, by the float format of the processor it lives in.
double VAL_FloatOf(const LItem &item);

#endif
