// The memory box under the watch list: memory around the selected item, its bytes or typed
// items, or words of the TMS320's through the mailbox; and its text for other programs.
#ifndef WATCH_WINDOWS_MEM_BOX_H
#define WATCH_WINDOWS_MEM_BOX_H

#include <cstdint>
#include <string>

// Fills the memory box for the selected item: from the TMS320's memory (word addresses)
// when its name begins with "&", else from the C166's. 0, -1 C166 failed, -2 TMS320 failed.
int ReadMemory(uint32_t address, int index);
int read166Memory(uint32_t address); // 0, or -1
int readTMSMemory(uint32_t address); // 0, or TMS_ERR_ of the mailbox
extern char cMemBoxType;             // of the typed memory box: the selected item's
extern int nMemBoxItmSz;             // bytes

// Reads what the address field names, when the box is switched on: a bare hexadecimal number
// in the memory of the selected item, or a place as it is typed everywhere else ("wSpeed",
// "3:$1F00", "&fCurrent"). Says in the box what is no place.
void WIN_UpdateMemoryBox(int selected);
void WIN_ShowMemoryBoxOld(); // what the box shows was read some time ago: drawn in grey
// Address field and switches of the box: old until it was read again.
int WIN_MemoryBoxPlaceCB(int panel, int control, int event, int data);

// What the box shows, a line a row, its cells separated by tabs: of raw memory every byte
// and the characters, of typed or TMS320 memory every column.
std::string WIN_MemoryBoxText();

#endif
