// What the variable and structure selectors show: variables and their parts with C
// declarations, addresses, sizes, and the watch item type that fits each. Plain data; reads
// the loaded map and type map and owns nothing.
#ifndef SYMBOLS_TYPEMAP_LIST_H
#define SYMBOLS_TYPEMAP_LIST_H

#include <cstdint>
#include <string>
#include <vector>

struct TMF_ListRow {
    std::string expression;  // what to give the watch list: "motor[2].speed"
    std::string declaration; // "int16_t speed[4]"; the plain name when no type is known
    uint32_t address = 0;    // byte address
    int32_t size = 0;        // bytes in all; 0 = unknown
    bool hasParts = false;   // TMF_ListParts has something to list
    char itemType = 'i';     // watch item type of the first value in it
    int itemSize = 2;
};

constexpr uint32_t TMF_LIST_ELEMENTS_MAX = 1000; // of one array, and as many more as asked for

// Variables of the loaded map whose name contains `filter` in either case ("" = all).
std::vector<TMF_ListRow> TMF_ListVariables(const char *filter);
// Members of a structure or union, or elements from `first` on of an array. Empty when the
// expression has no parts or does not resolve.
std::vector<TMF_ListRow> TMF_ListParts(const char *expression, uint32_t first = 0);
// Display type letter and size (1, 2, 4, 8) of the watch item for an expression; of an
// array the one of its elements. 0, or -1: type unknown, or a structure.
int TMF_SuggestItem(const char *expression, char *type, int *size);
// C declaration of a name with that type; "" for an invalid chain.
std::string TMF_FormatDecl(const std::string &name, const uint32_t *chain);

#endif
