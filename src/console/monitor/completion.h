// Completion of what a user types at the prompt: command words, script names after
// "!", names of the loaded map. Both faces use it.
#ifndef CONSOLE_MONITOR_COMPLETION_H
#define CONSOLE_MONITOR_COMPLETION_H

#include <cstddef>
#include <string>
#include <vector>

constexpr size_t CANDIDATES_MAX = 200;

// Candidates for the word that ends at `cursor` of `line`, sorted, at most
// CANDIDATES_MAX. Position in `line` where the word begins.
int CON_Complete(const std::string &line, size_t cursor, std::vector<std::string> *candidates);
// The longest text all candidates begin with.
std::string CON_GetCommonStart(const std::vector<std::string> &candidates);
// Completes the last word of the line in place; several candidates are printed on the
// console.
void CON_CompleteLine(std::string *line);

#endif
