// The service terminal without a window: a line for the target of the station, and what it
// answers, for the console and scripts. The link is the caller's.
#ifndef TERMINAL_TALK_H
#define TERMINAL_TALK_H

#include <string>

// A program without windows: term166 shows in the console what the target writes.
extern bool TLK_isWithoutWindow;
// Sends a text (UTF-8, "" for nothing) and lets `print` have each line that comes, until the
// target is quiet for a second, ten seconds at most. Not while the window talks. 0, or -1 with the
// reason in *problem.
int TLK_Talk(const std::string &text, void (*print)(const std::string &line), std::string *problem);

#endif
