// What the fields of the array inspector designate: an array of the target, or a slice of it.
#ifndef INSPECT_ARRAY_PLACE_H
#define INSPECT_ARRAY_PLACE_H

#include <cstdint>
#include <string>
#include <vector>

struct ArrayType;

struct INS_Array {
    std::string place;               // as typed
    uint32_t address = 0;            // of the slice
    const ArrayType *type = nullptr; // null: nothing is shown
    std::vector<uint32_t> outer;     // sizes of the dimensions in front of the last two
    std::vector<uint32_t> slice;     // the index in each of them
    uint32_t rows = 0, columns = 1;
};

// "awTable" with the type map's dimensions, or "place, type, size[, size...]" with a type of
// element.h. `slice` holds the indices of the outer dimensions, "2, 1" or "[2][1]"; those that
// are not named are 0. 0, or -1 with the reason.
int INS_ParsePlace(const std::string &text, const std::string &slice, INS_Array *array,
                   std::string *cause);
std::string INS_FormatSlice(const INS_Array &array); // "2, 1"; "" with two dimensions or one

#endif
