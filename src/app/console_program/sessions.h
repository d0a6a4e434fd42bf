// What the console program does once the program proper has started: the drivers of
// the event loop. Each returns the exit code.
#ifndef APP_CONSOLE_PROGRAM_SESSIONS_H
#define APP_CONSOLE_PROGRAM_SESSIONS_H

#include "app/console_program/console_options.h"

extern CPG_Options CPG_options; // of this run; set before a driver runs
// Loads the watch list that the options name. False when there is none or nothing in it, which
// it says.
bool CPG_LoadWatchList();
// On standard error: a file of an option that cannot be opened, or not written whole. Both 1,
// the exit code.
int CPG_FailOpen(const std::string &path);
int CPG_FailWrite(const std::string &path);
// Says on standard error what the window's message area would show: the port is gone, it
// is back, why communication was switched off. Each message once.
void CPG_RepeatMessage();
int CPG_RunScript();  // a script was run at start: its result
int CPG_RunWatch();   // the watch list, sweep by sweep
int CPG_RunProgram(); // a HEX file into the target's flash
int CPG_RunScope();   // one recording of the target's scope
int CPG_RunServe();   // requests of another program, until its end
int CPG_RunRecord();  // the watch list's values into a file
int CPG_RunCompare(); // the target against a data file: 0 equal, 1 different, 2 not compared
int CPG_RunSession(); // lines from standard input to the console

#endif
