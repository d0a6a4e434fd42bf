// What the console program does once the program proper has started: the drivers of
// the event loop. Each returns the exit code.
#ifndef APP_CONSOLE_PROGRAM_SESSIONS_H
#define APP_CONSOLE_PROGRAM_SESSIONS_H

#include "app/console_program/console_options.h"

void CON_SetOptions(const CON_Options &options); // before a driver runs
int CON_RunScript();                             // a script was run at start: its result
int CON_RunWatch();                              // the watch list, sweep by sweep
int CON_RunSession();                            // lines from standard input to the console

#endif
