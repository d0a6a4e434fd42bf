// A look at the display of a target's program and keys for it, through its block. A picture
// counts only when the target did not change it while it was read; keys go through a ring, each
// once. Knows no window and no clock; its owner steps it and shows what is new.
#ifndef TERMINAL_LCD_H
#define TERMINAL_LCD_H

#include "terminal/sender.h"

#include <array>
#include <string>
#include <vector>

struct TRM_MakeLcdPicture {
    TRM_LcdBlock block;
    std::array<uint8_t, TRM_LCD_GLYPHS *TRM_LCD_GLYPH_LINES> glyphs = {};
    std::vector<uint8_t> characters; // rows times columns; empty: never read
};

struct TRM_LcdSession {
    TRM_BlockPlace place;
    bool isOpen = false, wasOpen = false; // as of TRM_ServiceSession
    TRM_MakeLcdPicture picture;           // the last whole one
    int unsteady = 0;                     // looks in a row that found it changing
    TRM_Sender keys;
};

struct TRM_LcdNews {
    bool isNew = false;  // another picture
    std::string message; // what went wrong, "" when nothing
    bool isLineBad = false;
};

void TRM_BeginLcd(TRM_LcdSession *session, const TRM_BlockPlace &place);
void TRM_StepLcd(TRM_LcdSession *session, TRM_LcdNews *news);
// Puts a key into what waits to be sent: pressed (again: repeated) or released. false when
// there is no such key or too many wait.
bool TRM_AddLcdKey(TRM_LcdSession *session, int key, bool isRelease);

#endif
