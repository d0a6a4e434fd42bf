// The live half of the debugger window: which registers, stack words, bytes and operands are
// in view, what they hold, and their lines. Only for debugger.cpp, which owns the code.
#ifndef CODE_DEBUGGER_VALUES_H
#define CODE_DEBUGGER_VALUES_H

#include <string>
#include <vector>

#include "code/c166.h"

void CODE_FillGroups(); // of the selected processor, into the ring; the first one is chosen
void CODE_SetMemory(uint32_t address);
// Reads everything in view, with the operands of `code` (null: none), and shows it. 0, or -1
// with the reason in *cause: the lists are then marked as old.
int CODE_RefreshValues(const std::vector<CODE_Instruction> *code, int firstLine, int lines,
                       std::string *cause);
void CODE_MarkOld(); // what is shown was read some time ago
// What an instruction's operands held at the last refresh: "r4=0010h 008142=1234h"; "" when
// that is not known.
std::string CODE_FormatOperands(const CODE_Instruction &instruction);
// The data page pointers of the last refresh.
CODE_Pages CODE_GetPages();
// Reads one register that is not read by itself, and shows it in its line.
int CODE_ReadTouchy(int line, std::string *cause);

#endif
