// The code half of the debugger window: the instructions that are shown, where the user came from,
// and what the message line says about them. Only for debugger.cpp; the live half is
// debugger_values.h.
#ifndef CODE_DEBUGGER_CODE_H
#define CODE_DEBUGGER_CODE_H

#include <cstdint>
#include <string>

#include "watch/windows/outcome_colors.h"

// Said in place of code that this room cannot decode.
constexpr char CODE_ONLY_C166[] =
    "The code of this processor cannot be shown; registers and memory can.";

void CODE_ShowDebuggerOutcome(const std::string &text, int color = COLOR_PLAIN);
// What the message line says while all is well: what the window is, and what lies at the
// selected line.
void CODE_ShowWhere();
void CODE_EnableDebuggerButtons();
// Reads everything in view, with the operands of the code in view. False after a message.
bool CODE_RefreshDebugger();
// Whether the last refresh failed; whether it is too early for the timer to try again.
bool CODE_HasFailed();
bool CODE_IsPausing();

// Shows the code at an address and keeps the place come from. What is shown stays when that cannot
// be read; the message line then says why.
void CODE_ShowCode(uint32_t address);
void CODE_FollowJump();   // of the selected line
void CODE_GoBack();       // to the place come from, at the line that was selected there
void CODE_ReadMoreCode(); // the code behind the last line
void CODE_CopyCode();     // to the clipboard
void CODE_ForgetCode();   // and where the user came from

#endif
