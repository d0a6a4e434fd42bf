// The bits of one watch item in the forms that people compare: decimal, hexadecimal,
// binary and float, whatever the item's own type.
#ifndef WATCH_VALUE_VALUE_FORMS_H
#define WATCH_VALUE_VALUE_FORMS_H

#include <string>

struct LItem;

// The value last read; "-" when there is none. Decimal is signed for a signed item and the
// number itself for a float; binary stands in groups of four, 32 bits a line.
std::string VFM_Decimal(const LItem &item);
std::string VFM_Hex(const LItem &item);
std::string VFM_Binary(const LItem &item);
std::string VFM_Float(const LItem &item); // "-" also for items that have not four bytes

#endif
