// Many small pieces of the target's memory read with few messages: pieces that lie close
// together go into one, and nothing that was not asked for is read where reading has effects.
// Values are good only once CODE_ReadLive has proven all of them. A set belongs to its caller.
#ifndef CODE_LIVE_READS_H
#define CODE_LIVE_READS_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

struct CODE_LivePiece {
    uint32_t address = 0, size = 0; // bytes
};

struct CODE_LiveReads {
    std::vector<CODE_LivePiece> wanted;
    std::map<uint32_t, std::vector<uint8_t>> blocks; // read, by first address
};

// A place beyond the target's memory is not asked for. `size`: 1 to 65536.
void CODE_WantLive(CODE_LiveReads *set, uint32_t address, uint32_t size);
// The messages that reading what is wanted and not read yet takes, in order of address: the
// cheapest by the characters on the wire of the present protocol.
std::vector<CODE_LivePiece> CODE_PlanLive(const CODE_LiveReads &set);
// Reads all that is wanted from a station, proven together. Where some of it depends on the rest
// (what a pointer points at), `wantMore` is called once that is read, and adds it; it may be
// called again for the same refresh. 0, or -1 with the reason in *cause: the set then holds
// nothing.
int CODE_ReadLive(CODE_LiveReads *set, int station, std::string *cause,
                  const std::function<void(CODE_LiveReads *set)> &wantMore = nullptr);
// The number at an address, low byte first, of at most 4 bytes; false when it was not read.
bool CODE_GetLive(const CODE_LiveReads &set, uint32_t address, uint32_t size, uint32_t *value);

#endif
