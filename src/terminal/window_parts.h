// What the files of the terminals' windows share: the rings of both windows, and the text of the
// service terminal. Only they call it; the others know window.h.
#ifndef TERMINAL_WINDOW_PARTS_H
#define TERMINAL_WINDOW_PARTS_H

#include <string>

bool TRM_IsShown(int panel); // on the screen

// The rings that say which station is meant and what its characters mean (place_rings.cpp).
// The station of the program, or another one: values -1 and 0 to 15.
void TRM_FillStations(int panel, int control);
int TRM_GetStation(int panel, int control); // the one that is meant now
// The code pages by name, values CPT_...; with `first`, which has the value -1, in front of them.
void TRM_FillPages(int panel, int control, const char *first, int chosen);

// The text of the service terminal, and its log (window_text.cpp).
int T166_GetPage(); // of the characters, both ways
// What the target has written, and what it has taken of what was typed. "", or why the log has
// ended by this.
std::string T166_ShowText(const std::string &taken, const std::string &received);
void T166_ClearText();
// Ends the log with the line that may still change. 0, or -1: not all of it has reached the disk.
int T166_EndLog();
std::string T166_GetLogPath();
// "", or why there is none; an open one is ended.
std::string T166_BeginLog(const std::string &path);
void T166_ShowLog(); // the switch as it is

#endif
