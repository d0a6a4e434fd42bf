// Periodic refresh of the watch list: one item a timer tick, a redraw at the end of
// each sweep, the memory box and the frequency meter.
#ifndef WATCH_LIST_REFRESH_H
#define WATCH_LIST_REFRESH_H

#include <cstdint>
#include <string>

struct LItem;

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
// Appends the value's text; the number of characters appended, 0 for a size that the
// type does not have.
int FormatLItemVal(std::string *text, const LItem &item);

// Fills the memory box for the selected item: from the TMS320's memory (word addresses)
// when its name begins with "&", else from the C166's. 0, -1 C166 failed, -2 TMS320 failed.
int ReadMemory(uint32_t address, int index);
int read166Memory(uint32_t address); // 0, or -1
int readTMSMemory(uint32_t address); // 0, or TMS_ERR_ of the mailbox
extern char cMemBoxType;             // of the typed memory box: the selected item's
extern int nMemBoxItmSz;             // bytes

// Sets type and size from the prefix of a name; 1 when a prefix was recognised, else 0
// and the item as it was. The name comes without station prefix and "&".
int DetectTypeByName(LItem *item, const char *name);
int is_id_type(const char *name, const char *prefix);

// IEEE single (as bits) to the TMS320's float and back. Infinities and NaNs saturate.
uint32_t IEEE_TMS(uint32_t bits);
double TMS_IEEE(uint32_t bits);

#endif
