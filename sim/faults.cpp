#include "faults.h"

bool SIM_DrawChance(std::mt19937 *random, double share)
{
    constexpr double RANGE = 4294967296.0; // of a raw draw: 32 bits
    return static_cast<double>((*random)()) / RANGE < share;
}

SIM_Fate SIM_ApplyFaults(std::mt19937 *random, double drop, double corrupt, uint8_t *frame,
                         size_t count)
{
    // The same number of draws for every answer keeps later faults where they are when a
    // share changes.
    const bool dropped = SIM_DrawChance(random, drop);
    const bool corrupted = SIM_DrawChance(random, corrupt);
    const size_t place = (*random)() % count;
    const auto bit = static_cast<unsigned>((*random)() % 8);
    if (dropped)
        return SIM_DROPPED;
    if (!corrupted)
        return SIM_SENT;
    frame[place] = static_cast<uint8_t>(frame[place] ^ 1U << bit);
    return SIM_CORRUPTED;
}
