// The recording of the watch list in the window: its menu items, and what the main panel's timer
// calls. Owns the one recording there is; anybody may ask whether it runs.
#ifndef SAMPLER_RECORD_WATCH_H
#define SAMPLER_RECORD_WATCH_H

#include <string>

bool REC_IsWatchRecorded();
// Called by the timer while communication is on: once a second the list is followed and the
// state shown; each tick reads a part of the second's row.
void REC_RecordWatch();
void REC_StepWatch();
void REC_ShowCommunication(); // it was switched on or off: off is a gap
void REC_StopWatch();         // says what was recorded; nothing when none runs
// The marker's text goes into the file, too.
void REC_MarkWatch(const std::string &text);

void REC_ToggleCB(int menuBar, int item);
void REC_MarkCB(int menuBar, int item);
void REC_TriggersCB(int menuBar, int item);

#endif
