// Typed parameters of command lines: one scanner for script commands, assignments and
// the files that hold them.
#ifndef TEXT_SCRIPT_PARAM_H
#define TEXT_SCRIPT_PARAM_H

#include <cstddef>
#include <cstdint>

// Bits of a parameter type code, and of the flags that say what was parsed.
constexpr uint32_t PAR_SIGNED = 0x1;   // code: signed range only; flag: negative
constexpr uint32_t PAR_UNSIGNED = 0x2; // code: not negative; flag: above the signed range
constexpr uint32_t PAR_BYTE = 0x4;
constexpr uint32_t PAR_WORD = 0x8;
constexpr uint32_t PAR_LONG = 0x10;
constexpr uint32_t PAR_NAME = 0x20;
constexpr uint32_t PAR_EXTERN = 0x40;  // first code of a command that takes its whole line
constexpr uint32_t PAR_ADDRESS = 0x80; // marker: a name here is an address
constexpr uint32_t PAR_TYPE = 0x100;   // marker: a name here is an element type
constexpr uint32_t PAR_RAW = 0x400;    // up to "," or the end: file names
constexpr uint32_t PAR_TEXT = 0x800;   // the same, quoted in ' or " if need be
constexpr uint32_t PAR_FLOAT = 0x1000;
constexpr uint32_t PAR_INDEX = 0x2000;  // [n] may follow a name
constexpr uint32_t PAR_OFFSET = 0x4000; // +n or -n may follow a name
constexpr uint32_t PAR_INTEGER = PAR_BYTE | PAR_WORD | PAR_LONG;

constexpr int PARAMS_MAX = 7;
constexpr size_t PAR_TEXT_CHARS = 239;

struct ScrPar {
    uint32_t flags = 0;                 // PAR_... of what was parsed, and the two markers
    int32_t index = 0;                  // of [n]
    int32_t offset = 0;                 // of +n or -n
    char text[PAR_TEXT_CHARS + 1] = ""; // name, raw text or quoted text
    uint32_t value = 0;                 // integer, two's complement when negative
    double fvalue = 0;
};

// Reads the parameter at *cursor, which is moved past it. -1 it does not fit the code
// (the cursor is where it was); 1 the line is exhausted; 0 more follows.
int ScrGetPar(const char **cursor, ScrPar *par, uint32_t code);
// Clears `count` records.
void ClrScrPar(ScrPar *par, int count);

#endif
