// Code of the target as lines: read, decoded, with the names of what it uses. For the console
// and the debugger; reads through the link, at any station, keeps nothing.
#ifndef CODE_LISTING_H
#define CODE_LISTING_H

#include <cstdint>
#include <string>
#include <vector>

#include "code/c166.h"

constexpr int CODE_LINES_MAX = 256; // instructions read at once

// Whether the selected processor is one whose code this room knows.
bool CODE_CanDecode();
// The data page pointers as the target has them now, if its processor has any. They are read
// from the selected station.
CODE_Pages CODE_ReadPages();

// `count` (1 to CODE_LINES_MAX) instructions from an even address on, fewer at the end of the
// address space; proven. The scope of an extension instruction in front of the first is not
// known and counts as none. 0, or -1 with the reason in *cause.
int CODE_Read(int station, uint32_t address, int count, const CODE_Pages &pages,
              std::vector<CODE_Instruction> *code, std::string *cause);

// The instruction with register names.
std::string CODE_FormatInstruction(const CODE_Instruction &instruction);
// Names of what it uses, separated by blanks: bits, variables, targets; "" for none.
std::string CODE_FormatNames(const CODE_Instruction &instruction);
// "00c010  F2 F4 0E FE  mov r4, 0fe0eh  ; 00fe0e MDL"
std::string CODE_FormatLine(const CODE_Instruction &instruction);

#endif
