// What happens to each answer, decided by the seed alone: the same seed and shares give
// the same faults at the same answers, whatever the timing.
#ifndef SIM_FAULTS_H
#define SIM_FAULTS_H

#include <cstddef>
#include <cstdint>
#include <random>

enum SIM_Fate { SIM_SENT, SIM_DROPPED, SIM_CORRUPTED };

// True in `share` of the calls. One raw draw each: distributions differ between libraries.
bool SIM_DrawChance(std::mt19937 *random, double share);

// Decides over one answer of `count` characters; a corrupted one gets one bit of one
// character flipped in place.
SIM_Fate SIM_ApplyFaults(std::mt19937 *random, double drop, double corrupt, uint8_t *frame,
                         size_t count);

#endif
