// Another program run as a part of this one: lines go into its standard input, and what it
// prints, errors included, comes back as lines. It is told to end by the end of its input, so
// that it ends with this program, however that ends. For one owner at a time.
#ifndef PLATFORM_CHILD_H
#define PLATFORM_CHILD_H

#include <deque>
#include <string>
#include <vector>

struct PLT_Child;

constexpr size_t PLT_CHILD_LINES_MAX = 2000;       // kept until they are taken; older ones are lost
constexpr size_t PLT_CHILD_LINE_LENGTH_MAX = 1000; // characters; the rest of a line is cut off

// The path of a program that lies beside this one, by its name without an ending.
std::string PLT_FindOwnProgram(const std::string &name);
// Starts a program with its arguments. `notify` is called on a thread of the child's own when
// lines wait where there were none, and once when it has ended; never after PLT_StopChild. Null
// when it cannot be started.
PLT_Child *PLT_StartChild(const std::vector<std::string> &words, void (*notify)());
// Moves the lines that wait to the end of *lines. How many were lost before them.
size_t PLT_FetchChildLines(PLT_Child *child, std::deque<std::string> *lines);
bool PLT_IsChildRunning(PLT_Child *child);
// 0, or -1: it does not listen any more.
int PLT_SendLineToChild(PLT_Child *child, const std::string &line);
// Ends its input, waits a bounded time for it to end (PLT_CHILD_END_WAIT_MS), then makes it end.
// Frees the child.
constexpr unsigned PLT_CHILD_END_WAIT_MS = 3000;
void PLT_StopChild(PLT_Child *child);

#endif
