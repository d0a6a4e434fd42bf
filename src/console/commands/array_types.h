// Element types of the array commands, what their parameters resolve to, and the text
// form of an element. Shared by all commands that move arrays.
#ifndef CONSOLE_COMMANDS_ARRAY_TYPES_H
#define CONSOLE_COMMANDS_ARRAY_TYPES_H

#include <cstdint>
#include <string>

#include "text/script_param.h"

struct ArrayType {
    const char *name;      // as typed
    const char *upperName; // as written to files
    uint32_t size;         // bytes of an element
    bool isSigned;
    bool isFloat;
    int dumpWidth = 0; // characters of its number on a row of a dump
};

constexpr int ARRAY_TYPES = 7;
constexpr size_t ELEMENT_BYTES_MAX = 4;
extern const ArrayType SCR_aArrayTypes[ARRAY_TYPES];

const ArrayType *SCR_FindArrayType(const std::string &name); // ignoring case, or null

// What a command asks for, resolved.
struct ArrayRequest {
    std::string place; // name of the array, or "" for an address
    uint32_t address = 0;
    const ArrayType *type = nullptr; // null for raw memory
    uint32_t count = 0;              // elements, or bytes of raw memory
};

// Resolves the names among the parameters to addresses: a marked name that is not a
// number becomes one. False when a name is unknown or an address is out of range.
bool ExecPar(ScrPar *par, int count);

// An array's place, type and count from the first three parameters. `label` opens the
// messages ("Save"), `typeLabel` that about the type ("Save."). 0, or -1 after SCR_Fail.
int SCR_ResolveArray(ScrPar *par, const char *label, const char *typeLabel, ArrayRequest *request);

// "'name[count]'", or "'address[count]'" with the prefix in front of a bare address.
std::string SCR_FormatPlace(const ArrayRequest &request, const char *addressPrefix);

// The value of an element in the target's byte order as a line of an array file.
std::string SCR_FormatElement(const ArrayType &type, const uint8_t *bytes);
// The element's bits, sign extended for signed types.
uint32_t SCR_GetElement(const ArrayType &type, const uint8_t *bytes);

enum ArrayParse { ARRAY_OK = 0, ARRAY_NO_VALUE = -1, ARRAY_OUT_OF_RANGE = -2 };
// One data line to an element's bytes: the value alone, blanks around it.
ArrayParse SCR_ParseElement(const ArrayType &type, const char *line, uint8_t *bytes);

#endif
