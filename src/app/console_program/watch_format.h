// One sweep of the watch list as text, CSV or JSON lines.
#ifndef APP_CONSOLE_PROGRAM_WATCH_FORMAT_H
#define APP_CONSOLE_PROGRAM_WATCH_FORMAT_H

#include <string>

#include "app/console_program/console_options.h"

// A JSON string with its quotes. Bytes that are no UTF-8 count as Latin-1.
std::string CPG_QuoteJson(const std::string &text);

// What stands once before the first sweep ("" for most formats).
std::string CPG_FormatHeader(CPG_Format format);
// All items as they are in aLItems now, one line each.
std::string CPG_FormatSweep(CPG_Format format, long sweep);

#endif
