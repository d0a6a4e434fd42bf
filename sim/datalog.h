// The data logger of the demo: two logs a station, one as a C166 keeps it and one as an
// F283xx does, with a table of record ids. Both hold a history at the start and get one
// message a second while the target runs; once full, the newest overwrite the oldest.
#ifndef SIM_DATALOG_H
#define SIM_DATALOG_H

#include "station.h"

// Writes the variables, the table and the history of station `number`.
void SIM_InitDataLogs(SIM_Station *station, int number);
// Brings the logs up to `seconds` since the start when the `count` bytes at `address` hold a
// part of them.
void SIM_UpdateDataLogs(SIM_Station *station, int number, double seconds, uint32_t address,
                        size_t count);

#endif
