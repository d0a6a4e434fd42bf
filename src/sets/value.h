// Values of a set as text and back: in the target's own numbers as data files have them, and
// times the factor as a form shows them. One place for the range of each type.
#ifndef SETS_VALUE_H
#define SETS_VALUE_H

#include "sets/set.h"

#include <cstdint>
#include <string>

// The cast that stands in front of a value of this type: "(u2)", "(float)"; "" for bytes.
const char *PST_CastOf(int32_t type);
// The type's name as a listing has it: "u2", "float", "bytes".
const char *PST_TypeName(int32_t type);

// The number that the bytes stand for; of plain bytes 0.
double PST_Number(int32_t type, const PST_Bytes &bytes);
// Decimal; a float so that its bits come back; plain bytes as "01 AB".
std::string PST_ValueText(const PST_Entry &entry, const PST_Bytes &bytes);
// One value's line of a data file without its end: "(u2) wGain = 100". A float that is no
// number stands there by its bits: "(u4) fLimit = 7FC00000h".
std::string PST_AssignmentText(const PST_Entry &entry, const PST_Bytes &bytes);
// The same way back from "(u2)" or "" and the text behind "=". 0, or -1 with the reason: no
// value of the type, out of its range, or a cast of another type.
int PST_ParseValue(const PST_Entry &entry, const std::string &cast, const std::string &text,
                   PST_Bytes *bytes, std::string *why);

// Number times factor, with as many digits as a reader wants.
std::string PST_ShownText(const PST_Entry &entry, double factor, const PST_Bytes &bytes);
std::string PST_ShownNumber(double value);
// What somebody typed into a form, to bytes: a number times factor is divided by it, and
// rounded when the type is whole. 0, or -1 with the reason.
int PST_ParseShown(const PST_Entry &entry, double factor, const std::string &text, PST_Bytes *bytes,
                   std::string *why);

// A number as the bytes of a type; -1 when the type does not hold it.
int PST_PutNumber(int32_t type, double number, PST_Bytes *bytes);
// "" or why the value lies outside of the header's limits.
std::string PST_CheckLimits(const PST_Attributes &attributes, const PST_Entry &entry,
                            const PST_Bytes &bytes);
// A number of a header: "12", "-0.5", "1e-3", "0x1F", "1Fh".
bool PST_ParseNumber(const std::string &text, double *number);

#endif
