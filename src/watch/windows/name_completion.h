// Completion of variable names in the fields of the watch windows.
#ifndef WATCH_WINDOWS_NAME_COMPLETION_H
#define WATCH_WINDOWS_NAME_COMPLETION_H

#include <string>
#include <vector>

constexpr size_t COMPLETIONS_MAX = 200;

// Texts that begin with what was typed, in either case of letters, sorted: names of the
// loaded map and registers, behind "&" names of the TMS320; once a "." or "[" was typed,
// members and elements that the type map knows. A station prefix is kept. Nothing for an
// empty name, and nothing when the typed text is the only one.
std::vector<std::string> WIN_CompleteName(const std::string &typed);
// The same as the callback of a field.
std::vector<std::string> WIN_CompleteNameCB(int panel, int control, const std::string &typed);

#endif
