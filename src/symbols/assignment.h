// Lines that assign a value to a target variable, or are labels; the type codes such
// lines share with command parameters. Used by the readers of every format built of
// assignments.
#ifndef SYMBOLS_ASSIGNMENT_H
#define SYMBOLS_ASSIGNMENT_H

#include <cstdint>
#include <string>

#include "text/script_param.h"

// Assignment type codes: sums of PAR_ bits.
constexpr int32_t ATP_I1 = 0x05;
constexpr int32_t ATP_I2 = 0x09;
constexpr int32_t ATP_I4 = 0x11;
constexpr int32_t ATP_U1 = 0x06;
constexpr int32_t ATP_U2 = 0x0A;
constexpr int32_t ATP_U4 = 0x12;
constexpr int32_t ATP_F4 = 0x1000;
constexpr int32_t ATP_SZ = 0x800;
constexpr int32_t ATP_RS = 0x8800;
constexpr uint32_t ATP_MASK = 0x121F; // bits that make out a named type

enum { SYM_ASSIGN_NONE = -1, SYM_ASSIGN_VALUE = 1, SYM_ASSIGN_LABEL = 2 };
constexpr int SYM_ASSIGN_RECORDS = 2; // the target, then the value

int32_t StrToATP(const char *text);    // code of the cast "(type)" the text starts with, or -1
int32_t GetPfxType(const char *name);  // type that the name's prefix implies, 0 when none
int32_t GetPfx2Type(const char *text); // the cast, or the prefix type of the last component
int ATP_SizeOf(uint32_t code);         // bytes, 0 for texts
void ATP_toStr(uint32_t code, std::string *text); // "(u2 ID)"

// Parses one line into two records. SYM_ASSIGN_VALUE, SYM_ASSIGN_LABEL (the name is in the first
// record) or SYM_ASSIGN_NONE. The default type counts when the line shows none.
int ParseAssn2(const char *line, ScrPar *records, int32_t defaultType);
int ParseAssn(const char *line, ScrPar *records, int32_t defaultType);

// An assignment as a person types it: beside the above a station in front of the name,
// members and several indexes behind it, an address for a name, and no value at all.
struct AssnLine {
    std::string cast;   // what stands in "( )", "" without
    std::string target; // station and path, as typed
    std::string path;   // "&stMotor[2].nSpeed+4", without blanks
    int station = -1;   // of "3:", not checked; -1 without
    bool hasValue = false;
    std::string value; // behind "=", as typed
};
// 0; -1 another shape, or an "=" without a value. Whether names and types exist is not asked.
int SYM_SplitAssignment(const char *line, AssnLine *parts);

#endif
