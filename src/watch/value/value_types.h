// The value types of watch items: one row each with everything that differs from type to
// type, and the texts of an item's value that follow from them. A new value format is a row
// here, with its functions in format.cpp and parse.cpp.
#ifndef WATCH_VALUE_VALUE_TYPES_H
#define WATCH_VALUE_VALUE_TYPES_H

#include <cstddef>
#include <cstdint>
#include <string>

struct LItem;

struct VTY_Row {
    char letter;
    const char *name;        // as windows name it
    int onlySize;            // bytes; 0 = 1, 2, 4 or 8, which a type field must then name
    bool isSizeSaved;        // the debug file's type field ends in the size
    bool isForTMS;           // a TMS320 item can have it
    char plainForm;          // as a bare number: signed i, unsigned u, hexadecimal x, float f
    const char *memoryLabel; // head of the typed memory box

    // Writes the value's text, at most FMT_TEXT_MAX with the NUL; nothing for a size that
    // the type does not have.
    void (*format)(char *text, const LItem &item);
    // A trimmed text in small letters to bits: WRV_OK, WRV_ERR_TEXT or WRV_ERR_RANGE.
    int (*parse)(const LItem &item, const std::string &text, uint64_t *bits);
    const char *form;  // what may be typed
    const char *range; // from the least to the greatest; null = PRS_IntegerRange
    int bytesWritten;  // 0 = all of the item's
    char writtenAs;    // type that shows what was written
};
extern const VTY_Row VTY_aRows[]; // in the order that rings show them
extern const int VTY_cnRows;

const VTY_Row *VTY_Find(char letter); // null when there is no such type

// Whether a field names a type, with its size where there is a choice ("b", "u2", "f4").
bool VTY_IsField(const std::string &field);
// Type and size from a field; 'i' and 2 where it says nothing. A wrong size counts as none.
void VTY_SetFromField(LItem *item, const char *field);
std::string VTY_Field(const LItem &item); // "u2", as the debug file has it

// Appends the value's text; the number of characters appended, 0 for a size that the
// type does not have.
int FormatLItemVal(std::string *text, const LItem &item);

// The value last read in the forms that people compare, whatever the item's own type; "-"
// when there is none. Decimal is signed for a signed item and the number itself for a float;
// binary stands in groups of four, 32 bits a line.
std::string VFM_Decimal(const LItem &item);
std::string VFM_Hex(const LItem &item);
std::string VFM_Binary(const LItem &item);
std::string VFM_Float(const LItem &item); // "-" also for items that have not four bytes

#endif
