// Lines of standard input for a program that must do other work while none comes: a thread
// reads them, the program takes them one at a time. A client that sends faster than its
// requests are answered is made to wait.
#ifndef APP_CONSOLE_PROGRAM_SERVE_INPUT_H
#define APP_CONSOLE_PROGRAM_SERVE_INPUT_H

#include <cstddef>
#include <string>

constexpr size_t SRI_LINE_MAX = 65536; // bytes of one line
constexpr size_t SRI_QUEUE_MAX = 256;  // lines read ahead

void SRI_Start(); // once
enum { SRI_LINE = 1, SRI_NONE = 0, SRI_END = -1, SRI_TOO_LONG = -2 };
// Waits at most so long. SRI_TOO_LONG: a line was longer than SRI_LINE_MAX and is skipped.
int SRI_Next(unsigned waitMs, std::string *line);

#endif
