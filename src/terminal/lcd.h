// A look at the display of a target's program and keys for it, through its block. A picture
// counts only when the target did not change it while it was read; keys go through a ring, each
// once. Knows no window and no clock; its owner steps it and shows what is new.
#ifndef TERMINAL_LCD_H
#define TERMINAL_LCD_H

#include "terminal/sender.h"

#include <array>
#include <string>
#include <vector>

struct LCS_Picture {
    TBK_Lcd block;
    std::array<uint8_t, TBK_GLYPHS *TBK_GLYPH_LINES> glyphs = {};
    std::vector<uint8_t> characters; // rows times columns; empty: never read
};

struct LCS_Session {
    TBK_Place place;
    bool isOpen = false, wasOpen = false; // as of TSV_Session
    LCS_Picture picture;                  // the last whole one
    int unsteady = 0;                     // looks in a row that found it changing
    TSN_Sender keys;
};

struct LCS_News {
    bool isNew = false;  // another picture
    std::string message; // what went wrong, "" when nothing
    bool isLineBad = false;
};

void LCS_Begin(LCS_Session *session, const TBK_Place &place);
void LCS_Step(LCS_Session *session, LCS_News *news);
// Puts a key into what waits to be sent: pressed (again: repeated) or released. false when
// there is no such key or too many wait.
bool LCS_AddKey(LCS_Session *session, int key, bool isRelease);

#endif
