// Shared by the two selectors: how a row looks and how it gets into the watch list.
#ifndef WATCH_WINDOWS_SELECTOR_ROW_H
#define WATCH_WINDOWS_SELECTOR_ROW_H

#include <cstdint>
#include <string>

struct TMF_ListRow;

// A byte address as the selected processor counts (bytes or 16-bit words).
std::string SEL_AddressText(uint32_t address);
std::string SEL_SizeText(int size); // "" when unknown
// A column that starts at a pixel of the list.
std::string SEL_Column(int pixel, const std::string &text);

// Type field that the type map gives an expression ("u2"); "" when it knows none.
std::string SEL_TypeField(const std::string &expression);
// A structure has no value of its own to watch; an array stands for its first element.
bool SEL_CanWatch(const TMF_ListRow &row);
// What the row is and as which type it would be added.
std::string SEL_Describe(const TMF_ListRow &row);
// Adds an expression at the end of the watch list and says in a control what happened.
void SEL_AddToWatch(const std::string &expression, int panel, int messageControl);

#endif
