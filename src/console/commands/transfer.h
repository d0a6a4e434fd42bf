// Moves stretches of target memory block by block with the console's meter, which the
// user can cancel between two blocks. Works at STATION.
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
    TRANSFER_CANCELLED = -3, // by the user, before the next block
};

// Texts of the meter in front of the block's number.
extern const char TRF_METER_ARRAY[];
extern const char TRF_METER_BINARY[];

// Takes a block that was read; false ends the transfer.
typedef std::function<bool(uint32_t address, const uint8_t *bytes, uint32_t count)> TransferTaker;

TransferResult TRF_Read(const TransferPlan &plan, const TransferTaker &take);
// *written: bytes the target has taken.
TransferResult TRF_Write(const TransferPlan &plan, const uint8_t *bytes, uint32_t *written);

#endif
