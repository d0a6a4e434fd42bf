// Reading a line from a person at a terminal. Two files implement it: with editing
// and history (libedit), and plain where that library does not exist.
#ifndef APP_CONSOLE_PROGRAM_LINEEDIT_H
#define APP_CONSOLE_PROGRAM_LINEEDIT_H

#include <string>

bool CPG_IsTerminal();      // standard input and output are a terminal
bool CPG_IsErrorTerminal(); // standard error is one
// 1 and the line without its end, 0 at the end of input.
int CPG_ReadLine(const std::string &prompt, std::string *line);

#endif
