// Moves stretches of target memory with the console's meter, which the user can cancel between
// two exchanges, as Ctrl-C can. What was read reaches its taker only when it is proven, and what
// was written counts as such only then. Works at STATION.
#ifndef CONSOLE_COMMANDS_TRANSFER_H
#define CONSOLE_COMMANDS_TRANSFER_H

#include <cstdint>
#include <functional>
#include <string>

struct TransferPlan {
    uint32_t address = 0;
    uint32_t count = 0;      // bytes
    uint32_t blockBytes = 0; // at most so many a block
    const char *meterText = "";
};

enum TransferResult {
    TRANSFER_DONE = 0,
    TRANSFER_LINK = -1,      // the target did not answer, or not provably
    TRANSFER_TAKER = -2,     // the taker refused a block
    TRANSFER_CANCELLED = -3, // by the user
};

struct TransferReport {
    TransferResult result = TRANSFER_DONE;
    uint32_t moved = 0;   // units that were answered for
    bool isProven = true; // false: perhaps not all of them
    int code = 0;         // of the exchange that failed; 0 when it was the proof
    std::string cause;    // of TRANSFER_LINK, in words
};

// Texts of the meter in front of the block's number.
extern const char SCR_METER_ARRAY[];
extern const char SCR_METER_BINARY[];

// Takes what was read; false ends the transfer.
typedef std::function<bool(uint32_t address, const uint8_t *bytes, uint32_t count)> TransferTaker;

TransferReport SCR_ReadTransfer(const TransferPlan &plan, const TransferTaker &take);
TransferReport SCR_WriteTransfer(const TransferPlan &plan, const uint8_t *bytes);

// The engine of both, for other units than bytes. Each exchange moves `perExchange` units,
// one proof stands behind `perStretch` of them; a stretch is moved again while the line repeats
// answers. The meter counts `perBlock` units as a block.
struct TransferSteps {
    uint32_t count = 0; // units
    uint32_t perExchange = 1, perStretch = 1, perBlock = 1;
    const char *meterText = "";
    // Moves `count` units from `at` on. 0 or positive, or negative.
    std::function<int(uint32_t at, uint32_t count)> exchange;
    // Units that are proven now; false ends the transfer. May be empty.
    std::function<bool(uint32_t at, uint32_t count)> settle;
};
TransferReport SCR_RunTransfer(const TransferSteps &steps);

// "12 of 40 bytes written", or "at most 12 of ..."; `unitBytes` is the size of a unit.
std::string SCR_WrittenText(const TransferReport &report, uint32_t count, uint32_t unitBytes);

#endif
