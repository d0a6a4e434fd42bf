// The memory editor's window: a range of bytes as lines of sixteen, of which the selected one
// can be changed; what happened is said below. It owns the bytes of the range as last read.
#ifndef WATCH_WINDOWS_MEMORY_PANEL_H
#define WATCH_WINDOWS_MEMORY_PANEL_H

constexpr int MEMORY_LINE_BYTES = 16;

// Opens the window at the address of a watch item (-1 = at what was shown before), and
// reads at once when communication is on.
void WIN_OpenMemory(int index);

// What was read is of another time or place now: communication was switched, or the station.
void WIN_ShowMemoryOld();

int WIN_MemoryAddressCB(int panel, int control, int event, int data);
int WIN_MemoryCountCB(int panel, int control, int event, int data);
int WIN_MemoryButtonCB(int panel, int control, int event, int data);
int WIN_MemoryListCB(int panel, int control, int event, int data);
int WIN_MemoryLineCB(int panel, int control, int event, int data);

#endif
