// Periodic refresh of the watch list: one item a timer tick; at the end of each sweep over
// the lines in view what was read is proven, shown, and the status with it. What fails is
// marked at once.
#ifndef WATCH_LIST_REFRESH_H
#define WATCH_LIST_REFRESH_H

#include <cstdint>
#include <string>

extern int UpdItem; // next item to read, counted from the first visible line
extern int eTMS;    // this sweep: 0 good, -1 a C166 read failed, -2 a TMS320 read failed
extern int nErrors; // failed reads since the last good sweep

// Sweeps a second that the Options menu offers; 0 = as fast as the line allows.
constexpr int RFR_RATES[] = {1, 2, 5, 10, 0};
bool RFR_IsRate(int rate);
double RFR_Period(); // seconds between ticks, by Option_nSweepRate and the lines in view

// What else the timer's ticks are for, while communication is on. Entries may be null.
struct RFR_Recorder {
    void (*record)() = nullptr; // once a second, but not in configuration mode
    void (*tick)() = nullptr;   // each time
    // Each time, first of all: reads the service terminal; whether it is on. Then the ticks come
    // faster while there is no list.
    bool (*terminal)() = nullptr;
};
void RFR_SetRecorder(const RFR_Recorder &recorder);

// The next tick begins a sweep at the first visible line, whatever the last one found.
void RFR_BeginSweep();
// Communication was switched on or off: shows which, on the place that it shares with the
// status. What was read before is old then.
void RFR_ShowCommunication();
// The main panel's timer: reads the next visible item while communication is on. Returns 0.
int timerCB(int panel, int control, int event, int data);
// Reads one item and, when it ends a sweep, redraws list, status and memory box. Returns 0.
// A name that is not resolved is marked as failed but does not count for auto-off, for the
// link is not to blame; a sweep without one good read is no "RUN" all the same.
int updateListTextBox(int index);
#endif
