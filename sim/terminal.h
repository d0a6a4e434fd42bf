// The terminals of the demo's firmware, as docs/manual/reference/formats.md describes them for
// firmware authors: a service terminal with a small menu, and a display of 4 by 20 characters with
// keys. They work when somebody looks or writes.
#ifndef SIM_TERMINAL_H
#define SIM_TERMINAL_H

#include "station.h"

// Puts both blocks into the station's memory, as the firmware's start does.
void SIM_InitTerminals(SIM_Station *station, int number);
// The firmware's work up to `seconds` since the start, when the `count` bytes at `address` belong
// to a block. Called before every read and after every write.
void SIM_UpdateTerminals(SIM_Station *station, int number, double seconds, uint32_t address,
                         size_t count);

#endif
