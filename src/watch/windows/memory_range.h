// A range of a station's bytes for the memory editor: where it is from what the user types,
// reading it, and writing what was changed in a stretch of it. Shows nothing; what happened
// comes back as a sentence.
#ifndef WATCH_WINDOWS_MEMORY_RANGE_H
#define WATCH_WINDOWS_MEMORY_RANGE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/system.h"

struct LItem;

constexpr int MEMORY_BYTES_MAX = 1024;

struct WIN_MemoryRange {
    uint32_t start = 0;         // byte address
    int station = 0;            // 0 to STATION_MAX
    std::vector<uint8_t> bytes; // empty: nothing has been read
    PLT_Date readAt;
    bool isOld = false; // communication was off since, or another station is selected
};

// Address and station of a typed place. False, and why in *message, when that is nowhere.
bool WIN_FindMemoryPlace(const std::string &text, uint32_t *address, int *station,
                         std::string *message);
// A range of `count` bytes, zero until they are read. "", or why there is none.
std::string WIN_FindMemoryRange(const std::string &text, int count, WIN_MemoryRange *range);
// "byte address 0x001F00, station 3", with the word address where the processor counts words.
std::string WIN_MemoryPlaceText(uint32_t address, int station);
// What to type for an item's place: its name when that says where the item is, else its address.
std::string WIN_MemoryPlaceOf(const LItem &item);

// Reads the whole range, proven. 0, or -1 with the reason in *cause and no bytes left in it.
int WIN_ReadMemoryRange(WIN_MemoryRange *range, std::string *cause);

enum WIN_MemoryOutcome {
    WIN_MEMORY_OK,          // written, and the target holds it
    WIN_MEMORY_DIFFERENT,   // written, but a byte that was written reads otherwise
    WIN_MEMORY_NOT_READ,    // written, but it could not be read back
    WIN_MEMORY_NOT_WRITTEN, // or only in part
};
// Puts `wanted` in place of as many bytes from index `first` on: only those that differ from
// what was read are written, then all of them read back into the range. *message always says
// what happened; *isRead whether the range has changed.
WIN_MemoryOutcome WIN_WriteMemory(WIN_MemoryRange *range, size_t first,
                                  const std::vector<uint8_t> &wanted, std::string *message,
                                  bool *isRead);

#endif
