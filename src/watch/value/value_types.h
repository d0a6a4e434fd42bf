// The value types of watch items: one row each with everything that differs from type to
// type, and the texts of an item's value that follow from them. A new value format is a row
// here, with its functions in format.cpp and parse.cpp.
#ifndef WATCH_VALUE_VALUE_TYPES_H
#define WATCH_VALUE_VALUE_TYPES_H

#include <cstddef>
#include <cstdint>
#include <string>

struct LItem;

struct VAL_TypeRow {
    char letter;
    const char *name;        // as windows name it
    int onlySize;            // bytes; 0 = 1, 2, 4 or 8, which a type field must then name
    bool isSizeSaved;        // the debug file's type field ends in the size
    bool isForTMS;           // a TMS320 item can have it
    char plainForm;          // as a bare number: signed i, unsigned u, hexadecimal x, float f
    const char *memoryLabel; // head of the typed memory box

    // Writes the value's text, at most VAL_TEXT_MAX with the NUL; nothing for a size that
    // the type does not have.
    void (*format)(char *text, const LItem &item);
    // A trimmed text in small letters to bits: VAL_WRITE_OK, VAL_WRITE_ERR_TEXT or
    // VAL_WRITE_ERR_RANGE.
    int (*parse)(const LItem &item, const std::string &text, uint64_t *bits);
    const char *form;  // what may be typed
    const char *range; // from the least to the greatest; null = VAL_GetIntegerRange
    int bytesWritten;  // 0 = all of the item's
    char writtenAs;    // type that shows what was written
};
extern const VAL_TypeRow VAL_aTypeRows[]; // in the order that rings show them
extern const int VAL_cnTypeRows;

const VAL_TypeRow *VAL_FindType(char letter); // null when there is no such type

// Whether a field names a type, with its size where there is a choice ("b", "u2", "f4").
bool VAL_IsTypeField(const std::string &field);
// Type and size from a field; 'i' and 2 where it says nothing. A wrong size counts as none.
void VAL_SetFromField(LItem *item, const char *field);
std::string VAL_TypeField(const LItem &item); // "u2", as the debug file has it

// Appends the value's text; the number of characters appended, 0 for a size that the
// type does not have.
int FormatLItemVal(std::string *text, const LItem &item);

// The value last read in the forms that people compare, whatever the item's own type; "-"
// when there is none. Decimal is signed for a signed item and the number itself for a float;
// binary stands in groups of four, 32 bits a line.
std::string VAL_DecimalForm(const LItem &item);
std::string VAL_HexForm(const LItem &item);
std::string VAL_BinaryForm(const LItem &item);
std::string VAL_FloatForm(const LItem &item); // "-" also for items that have not four bytes

#endif
