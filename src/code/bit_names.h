// Names of the bits of the C166 and C167's special function registers. Data only.
#ifndef CODE_BIT_NAMES_H
#define CODE_BIT_NAMES_H

#include <string>
#include <vector>

struct CODE_BitField {
    std::string name;
    int first = 0, last = 0; // bit numbers, the lowest first
};

// The fields of a register by its name as in the register tables, from the lowest bit on;
// none for a register that has no named bits.
std::vector<CODE_BitField> CODE_GetBitFields(const std::string &registerName);
// The field that bit lies in, or "". Of a field of several bits with its number in it:
// "ILVL.2".
std::string CODE_GetBitName(const std::string &registerName, int bit);

#endif
