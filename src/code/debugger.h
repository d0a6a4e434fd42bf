// The debugger window: code, registers, stack and memory of the running target beside one
// another. A live view: the target's program offers no stopping and stepping, and the window
// says so. One refresh reads everything that is in view with few messages and shows it only
// when all of it is proven.
#ifndef CODE_DEBUGGER_H
#define CODE_DEBUGGER_H

#include <cstdint>

void CODE_DebuggerOpened(); // the window was shown
// The settings may have changed. Another processor, map or station: what is shown belongs to
// the one before and goes.
void CODE_DebuggerChanged();

int CODE_PlaceCB(int panel, int control, int event, int data);
int CODE_DebuggerButtonCB(int panel, int control, int event,
                          int data); // go, back, follow, more, copy
int CODE_LiveCB(int panel, int control, int event, int data);
int CODE_CodeCB(int panel, int control, int event, int data);
int CODE_GroupCB(int panel, int control, int event, int data);
int CODE_RegistersCB(int panel, int control, int event, int data);
int CODE_MemPlaceCB(int panel, int control, int event, int data);
int CODE_DebuggerTimerCB(int panel, int control, int event, int data);

#endif
