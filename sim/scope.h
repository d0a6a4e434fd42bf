// The sampling scopes of the demo's firmware, as docs/manual/reference/formats.md describes them
// for firmware authors: generation 2 (variables SCP2_...), generation 3 of a C166 (block
// SCP3_rScope) and of a TMS320 (block PWM_rScope, word addresses). They sample the station's live
// variables at their own clock, on paper: the samples that are due are taken when somebody looks.
#ifndef SIM_SCOPE_H
#define SIM_SCOPE_H

#include "station.h"

enum { SIM_SCOPE_2 = 1, SIM_SCOPE_3 = 2, SIM_SCOPE_3C166 = 4, SIM_SCOPE_ALL = 7 };

// Puts the scopes of the mask into the station's memory, complete and empty.
void SIM_InitScopes(SIM_Station *station, unsigned mask);
// Takes what is due up to `seconds` since the start, when the `count` bytes at `address`
// belong to a scope. Called before every read and write, so that a
// scope samples as it was set until then.
void SIM_UpdateScopes(SIM_Station *station, int number, double seconds, uint32_t address,
                      size_t count);

#endif
