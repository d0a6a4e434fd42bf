// The frequency meter: how fast the selected item counts, over a number of samples.
#ifndef WATCH_LIST_FREQ_METER_H
#define WATCH_LIST_FREQ_METER_H

#include <cstdint>

extern int FM_nPeriod;          // samples taken since the last result
extern uint32_t FM_dwPrevValue; // the previous sample
extern uint32_t FM_dwDelta;     // sum of the differences since the last result

// Called after every read. Takes a sample when the selected item has got another proven
// value. Shows a result once the samples are complete; dims the result fields while there is
// nothing to measure.
void FM_Update(int selected);

#endif
