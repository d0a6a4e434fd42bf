// Many small pieces of the target's memory read with few messages: pieces that lie close
// together go into one, and nothing that was not asked for is read where reading has effects.
// Values are good only once LVR_Read has proven all of them. A set belongs to its caller.
#ifndef CODE_LIVE_READS_H
#define CODE_LIVE_READS_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

struct LVR_Piece {
    uint32_t address = 0, size = 0; // bytes
};

struct LVR_Set {
    std::vector<LVR_Piece> wanted;
    std::map<uint32_t, std::vector<uint8_t>> blocks; // read, by first address
};

// A place beyond the target's memory is not asked for. `size`: 1 to 65536.
void LVR_Want(LVR_Set *set, uint32_t address, uint32_t size);
// The messages that reading what is wanted takes: stretches of at most LVR_BLOCK_MAX bytes.
constexpr uint32_t LVR_BLOCK_MAX = 64;
std::vector<LVR_Piece> LVR_Plan(const LVR_Set &set);
// Reads all that is wanted from a station, proven together. 0, or -1 with the reason in
// *cause: the set then holds nothing.
int LVR_Read(LVR_Set *set, int station, std::string *cause);
// The number at an address, low byte first, of at most 4 bytes; false when it was not read.
bool LVR_Get(const LVR_Set &set, uint32_t address, uint32_t size, uint32_t *value);

#endif
