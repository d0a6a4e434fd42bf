// The recording of the watch list in the window: its menu items, and what the main panel's timer
// calls. Owns the one recording there is; anybody may ask whether it runs.
#ifndef SAMPLER_RECORD_WATCH_H
#define SAMPLER_RECORD_WATCH_H

#include <string>

bool RCW_IsRunning();
// Called by the timer while communication is on: once a second the list is followed and the
// state shown; each tick reads a part of the second's row.
void RCW_Record();
void RCW_Tick();
void RCW_ShowCommunication(); // it was switched on or off: off is a gap
void RCW_Stop();              // says what was recorded; nothing when none runs
// The marker's text goes into the file, too.
void RCW_Mark(const std::string &text);

void RCW_ToggleCB(int menuBar, int item);
void RCW_MarkCB(int menuBar, int item);
void RCW_TriggersCB(int menuBar, int item);

#endif
