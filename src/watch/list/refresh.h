// Periodic refresh of the watch list: one item a timer tick, a redraw at the end of
// each sweep.
#ifndef WATCH_LIST_REFRESH_H
#define WATCH_LIST_REFRESH_H

#include <cstdint>
#include <string>

constexpr int SWEEP_LINES = 13; // at most so many lines from the first visible one are read

extern int UpdItem; // next item to read, counted from the first visible line
extern int eTMS;    // this sweep: 0 good, -1 a C166 read failed, -2 a TMS320 read failed
extern int nErrors; // failed reads since the last good sweep
extern double VR_fRefreshPeriod; // seconds between ticks

// The next tick begins a sweep at the first visible line, whatever the last one found.
void RFR_BeginSweep();
// The main panel's timer: reads the next visible item while communication is on. Returns 0.
int timerCB(int panel, int control, int event, int data);
// Reads one item and, when it ends a sweep, redraws list, status and memory box. Returns 0.
// An item without an address is marked as failed, but neither turns the status to
// "Error" nor counts for auto-off: the link is not to blame.
int updateListTextBox(int index);
#endif
