// One variable by name: "stMotor.nSpeed = 5" writes, reads back and compares, a name alone
// reads. The command `set` prints what comes of it; whoever serves another program calls
// SCR_ParseSet and SCR_ExecuteSet and words it himself. The link must be open for the latter.
#ifndef CONSOLE_COMMANDS_SET_COMMAND_H
#define CONSOLE_COMMANDS_SET_COMMAND_H

#include <string>

#include "watch/list/litem.h"

struct SCR_SetRequest {
    std::string target; // as typed: "2:stMotor.nSpeed"
    LItem item;         // place, station (-1: the selected one), type and size
    bool isWrite = false;
    std::string value; // typed, when isWrite
};

// "[(type)] [station:][&]name[.member][[index]][+offset] [= value]". The type is that of the
// cast, of the type map or of the name's prefix, in this order; a register is u2. An address
// ("$8100"), and a TMS320 register that may have two words, need the cast. 0, or -1 with one
// sentence in *problem.
int SCR_ParseSet(const std::string &text, SCR_SetRequest *request, std::string *problem);
// Writes or reads. 0 with the value that the target holds in *result and in the item; -1
// with one sentence in *result.
int SCR_ExecuteSet(SCR_SetRequest *request, std::string *result);
std::string SCR_TypeAndPlace(const SCR_SetRequest &request); // "u2 at 0x008100"

#endif
