// Periodic refresh of the watch list: one item a timer tick, a redraw at the end of
// each sweep, the memory box and the frequency meter.
#ifndef WATCH_REFRESH_H
#define WATCH_REFRESH_H

#include <cstdint>
#include <string>

struct LItem;

constexpr int SWEEP_LINES = 13; // at most so many lines from the first visible one are read

extern int UpdItem;  // next item to read, counted from the first visible line
extern int eTMS;     // this sweep: 0 good, -1 a C166 read failed, -2 a TMS320 read failed
extern int nErrors;  // failed reads since the last good sweep
extern double VR_fRefreshPeriod; // seconds between ticks

int timerCB(int panel, int control, int event, int data);
int updateListTextBox(int index);
void FormatLItemVal(std::string *text, const LItem &item); // appends the value's text

int ReadMemory(uint32_t address, int index);
int read166Memory(uint32_t address);
int readTMSMemory(uint32_t address);

int DetectTypeByName(LItem *item, const char *name); // 1 when a prefix was recognised
int is_id_type(const char *name, const char *prefix);

uint32_t IEEE_TMS(uint32_t bits);
double TMS_IEEE(uint32_t bits);

#endif
