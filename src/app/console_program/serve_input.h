// Lines of standard input for a program that must do other work while none comes: a thread
// reads them, the program takes them one at a time. A client that sends faster than its
// requests are answered is made to wait.
#ifndef APP_CONSOLE_PROGRAM_SERVE_INPUT_H
#define APP_CONSOLE_PROGRAM_SERVE_INPUT_H

#include <cstddef>
#include <string>

constexpr size_t CPG_SERVE_LINE_MAX = 65536; // bytes of one line
constexpr size_t CPG_SERVE_QUEUE_MAX = 256;  // lines read ahead

void CPG_StartServeInput(); // once
enum { CPG_SERVE_LINE = 1, CPG_SERVE_NONE = 0, CPG_SERVE_END = -1, CPG_SERVE_TOO_LONG = -2 };
// Waits at most so long. CPG_SERVE_TOO_LONG: a line was longer than CPG_SERVE_LINE_MAX and is
// skipped.
int CPG_GetServeLine(unsigned waitMs, std::string *line);

#endif
