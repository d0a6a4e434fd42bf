// What a template of a listing can show: a value by the name of its place, "{{value}}", and the
// fixed words in the user's language, "{{t.value}}". Filled in by listing.cpp only.
#ifndef SETS_LISTING_PLACES_H
#define SETS_LISTING_PLACES_H

#include "sets/compare.h"

#include <string>
#include <vector>

// Where in files and rows the filling is.
struct PST_Spot {
    const std::vector<PST_File> *files = nullptr;
    const std::vector<PST_Row> *rows = nullptr;
    int language = 0;             // LANGUAGE_...
    const PST_Row *row = nullptr; // the group's first one outside of rows
    bool isInRow = false;
    size_t file = 0;
    bool isInFile = false; // in a block that is repeated for each file
    std::string now;       // when the listing is made
};

bool PST_IsPlace(const std::string &name);
// What stands there, not escaped; `name` is one of a place.
std::string PST_GetPlaceText(const PST_Spot &spot, const std::string &name);

#endif
