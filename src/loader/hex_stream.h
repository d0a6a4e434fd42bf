// HEX files sent to the target line by line as they are read: into flash through the
// boot-strap loader, or into memory over the ordinary link. Nothing is checked beforehand,
// nothing is read back: what a script's `l3write` and `hexload` do.
#ifndef LOADER_HEX_STREAM_H
#define LOADER_HEX_STREAM_H

#include "loader/progress.h"

#include <string>

enum {
    HEX_LOAD_ERR_OPEN = -1,      // the file cannot be opened
    HEX_LOAD_ERR_BLOCK = -2,     // l3write: no data, or an address beyond 24 bits
    HEX_LOAD_ERR_LINE = -2,      // hexload: a line that is no record
    HEX_LOAD_ERR_WRITE = -3,     // the target did not take a block
    HEX_LOAD_ERR_RECORD = -4,    // l3write: a line that is no record of data or base address
    HEX_LOAD_ERR_CLOSED = -10,   // l3write: the port is not open
    HEX_LOAD_ERR_CANCELLED = -20 // the user wished to stop, before the file was through
};

// Each data record is written as a block of its own, one record behind the reader.
int LD167U_L3CmdWriteHexFile(const std::string &path,
                             const LDR_Progress &progress = LDR_Progress());
// Into the memory of a station through the unified layer, with either protocol.
int HEX_LoadByLines(const std::string &path, int station,
                    const LDR_Progress &progress = LDR_Progress());
// Where the last of the two stopped: "line 12: block at 0x010020: no answer".
const std::string &HEX_GetLoadCause();

#endif
