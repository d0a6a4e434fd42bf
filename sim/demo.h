// The live variables of the demo: what examples/demo.m66 names moves here. Values follow
// from the time since the start; stations run at different phases. Set-points keep what is
// written to them.
#ifndef SIM_DEMO_H
#define SIM_DEMO_H

#include "station.h"

// Fills set-points, constants and page pointers of station `number` (0..15).
void SIM_InitDemo(SIM_Station *station, int number);
// Brings the live variables up to `seconds` since the start; does nothing when the `count`
// bytes at `address` hold none.
void SIM_UpdateDemo(SIM_Station *station, int number, double seconds, uint32_t address,
                    size_t count);
// The same for the words of the TMS320.
void SIM_UpdateDemoTms(SIM_Station *station, int number, double seconds);

// The core's registers, stack and program; for the demo's own use.
void SIM_InitDemoCore(SIM_Station *station);
void SIM_UpdateDemoCore(SIM_Station *station, double seconds);

#endif
