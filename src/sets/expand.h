// Spreads what a line of a header names into single values: elements of arrays, members of
// structures, pieces of areas, and the places of mirrors. Called by the header's reader only.
#ifndef SETS_EXPAND_H
#define SETS_EXPAND_H

#include "sets/set.h"

#include <string>

// Each appends to the set and answers "", or says what is wrong; the set may then hold part of
// it and is of no use.
//
// A variable with everything in it. The type is the cast's, else the type map's, else the
// one that the name's prefix implies; `count` elements where the type map knows none (0 =
// one). `value` is the default behind "=", or "".
std::string PST_ExpandVariable(PST_Set *set, PST_Item *item, const std::string &cast,
                               uint32_t count, const std::string &value);
std::string PST_ExpandArea(PST_Set *set, PST_Item *item, uint32_t length);
// A second place for everything that `source` has spread into.
std::string PST_ExpandMirror(PST_Set *set, const PST_Item &source, const std::string &cast,
                             const std::string &reference);

#endif
