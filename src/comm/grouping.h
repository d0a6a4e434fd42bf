// Which pieces of target memory to transfer together. Neighbours are one block when the bytes
// between them cost less on the wire than another request and its answer. Arithmetic only: no
// port and no state, so that whoever reads or writes many things may call it.
#ifndef COMM_GROUPING_H
#define COMM_GROUPING_H

#include <cstddef>
#include <cstdint>
#include <vector>

struct UCM_BlockItem {
    int station = 0;
    uint32_t address = 0; // byte address
    uint32_t size = 1;    // bytes, 1 or more
};

struct UCM_Block {
    int station = 0;
    uint32_t address = 0, size = 0;
    std::vector<size_t> items; // what it covers, as indices into the list it was made of
};

// What one exchange costs, in characters on the wire.
struct UCM_WireCosts {
    uint32_t exchange;  // a request and its answer, without the data
    uint32_t unit;      // bytes that data is counted in: single ones, or registers of two
    uint32_t unitChars; // characters of each; 0 where a block has a fixed length
    uint32_t blockMax;  // bytes that one exchange carries
};
// By PROTOCOL_MR166 or PROTOCOL_MODBUS; another number counts as the first.
UCM_WireCosts UCM_ReadWire(int protocol);
UCM_WireCosts UCM_WriteWire(int protocol);
// Characters of a transfer of `count` bytes, cut into blocks as the unified layer does.
uint64_t UCM_CountBlockChars(const UCM_WireCosts &wire, uint32_t count);

struct UCM_Range {
    uint32_t first, last; // byte addresses, both included
};

struct UCM_BlockRules {
    // Bytes between items may go along: reads. False: a block is nothing but items, as for
    // writes, which must leave alone what lies between.
    bool areGapsAllowed = true;
    std::vector<UCM_Range> noGaps; // where they may not all the same: reading a register can act
    uint32_t spanMax = 0; // bytes of a block of several items; 0: what one exchange carries
    uint32_t align = 1;   // blocks of several items begin and end at multiples: 2 for words
};

// For reading a target with this processor (settings/settings.h): registers are left alone
// unless they are asked for, and words stay whole.
UCM_BlockRules UCM_ReadRules(int processor);

// The cheapest blocks that cover every item, by station and address. An item larger than
// `spanMax` is a block by itself, with what lies within it. Items may overlap and lie in any order.
std::vector<UCM_Block> UCM_PlanBlocks(const std::vector<UCM_BlockItem> &items,
                                      const UCM_WireCosts &wire, const UCM_BlockRules &rules);
// Characters of all blocks.
uint64_t UCM_CountPlanChars(const std::vector<UCM_Block> &plan, const UCM_WireCosts &wire);

#endif
