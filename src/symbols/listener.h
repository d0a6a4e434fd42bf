// What the symbols tell those above them: names that have changed, news for the user, the
// progress of a long read. The start-up sets one listener; without one nothing is told.
#ifndef SYMBOLS_LISTENER_H
#define SYMBOLS_LISTENER_H

#include <string>

enum SYM_Change {
    SYM_MAP_LOADED,     // another map of the selected processor
    SYM_TMS_MAP_LOADED, // another map of the TMS320 behind the station
    SYM_TYPES_LOADED,   // another type map beside the same maps
};

// Entries may be null.
struct SYM_Listener {
    void (*namesChanged)(SYM_Change change);
    void (*showMessage)(const std::string &text); // passing news
    void (*warn)(const std::string &title, const std::string &text);
    // A read that takes a while: begin, any number of advances (false: the user cancels), end.
    void (*beginProgress)(const std::string &title, const std::string &text);
    bool (*advanceProgress)(int percent, const std::string &text);
    void (*endProgress)();
};
void SYM_SetListener(const SYM_Listener &listener);

// For the modules of this room; each does nothing without a listener.
void SYM_NamesChanged(SYM_Change change);
void SYM_ShowMessage(const std::string &text);
void SYM_Warn(const std::string &title, const std::string &text);
void SYM_BeginProgress(const std::string &title, const std::string &text);
bool SYM_AdvanceProgress(int percent, const std::string &text); // true: go on
void SYM_EndProgress();

#endif
