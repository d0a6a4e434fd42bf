// The text of a terminal: what a target writes becomes lines, with carriage return, backspace,
// tabulator, form feed and the control sequences of terminals, of which none is carried out.
// Bounded: the oldest lines go first. Its owner shows it.
#ifndef TERMINAL_SCREEN_H
#define TERMINAL_SCREEN_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

constexpr size_t TRM_SCREEN_COLUMNS_MAX = 500; // longer lines go on in the next one

struct TRM_Screen {
    std::u32string line;           // the last one, which may still change
    size_t column = 0;             // where the next character goes
    std::vector<std::string> done; // whole lines since they were last fetched, UTF-8
    bool isCleared = false;        // everything in front of `done` is gone
    bool isBell = false;           // was rung since it was last fetched
    int escape = 0;                // inside of a control sequence
};

void TRM_PutOnScreen(TRM_Screen *screen, int codePage, const std::string &bytes);
std::string TRM_GetScreenLine(const TRM_Screen &screen); // the last line, UTF-8

#endif
