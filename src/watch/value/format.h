// The text of one value, as the list shows it.
#ifndef WATCH_VALUE_FORMAT_H
#define WATCH_VALUE_FORMAT_H

#include <string>

struct LItem;

// Appends the value's text; the number of characters appended, 0 for a size that the
// type does not have.
int FormatLItemVal(std::string *text, const LItem &item);

#endif
