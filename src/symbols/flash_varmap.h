// Variable maps as the target's flash and archives carry them: see
// docs/manual/reference/formats.md. Used by flash_info.cpp and by tests only.
#ifndef SYMBOLS_FLASH_VARMAP_H
#define SYMBOLS_FLASH_VARMAP_H

#include "symbols/varnode.h"

#include <cstdint>
#include <string>
#include <vector>

// Results of reading project information, here and in flash_info.h.
enum {
    MFS_ERR_NO_MAP = -1, // none found, or one that is damaged
    MFS_VAR_MAP_ERR_COMMUNICATION = -2,
    MFS_VAR_MAP_ERR_CANCELLED = -3,
    MFS_ERR_ADDRESS = -4,         // a variable beyond 24 bits
    MFS_ERR_TYPES = -5,           // the type map is damaged
    MFS_VAR_MAP_ERR_TOO_MANY = -6 // the directory does not end
};

// Variable map in any of its layouts to plain lines "HHHHHH name": a text handle, or
// MFS_ERR_NO_MAP. Lines beyond what such a text holds are left out.
int MFS_OpenVarMap(const char *name, const std::string &content);
// Variables of such a text. 0 or MFS_ERR_.
int MFS_ParseVarMap(int textHandle, std::vector<SYM_Symbol> *variables);
// Replaces a table of nodes: the number taken over; what the table cannot hold is
// reported to the user.
int MFS_ReplaceVariables(const std::vector<SYM_Symbol> &variables, VarNode *table, int *count);

#endif
