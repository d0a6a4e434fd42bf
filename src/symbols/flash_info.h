// Project information that travels with the target program: its variable map and type
// map, read from the target's own flash or from a combined archive into the tables of
// nodes and types. A source that fails leaves the tables as they were.
#ifndef SYMBOLS_FLASH_INFO_H
#define SYMBOLS_FLASH_INFO_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "symbols/flash_varmap.h"

// Names of the files, in the flash directory and in an archive.
#define MFS_VAR_MAP "prjinfo.map28x"
#define MFS_TYPE_MAP "prjinfo.tmf"      // as text, or else rebuilt from the two following
#define MFS_TYPE_DECLS "prjinfo.tmf1"   // compressed declarations of the map's variables
#define MFS_TYPE_STRUCTS "prjinfo.tmf3" // compressed structures

const char *MFS_GetErrorText(int result); // one sentence, "" for a good result

// Fills aVarNode from a text of lines "HHHHHH name" (16-bit word addresses). The number of
// variables read, or a negative code.
int LoadFrwVarMap283xx(int textHandle);
// The same from the flash directory between two byte addresses.
int LoadFVarMap283xx(uint32_t start, uint32_t end);
// Variable map and type map from a flash directory. Without type information the type
// map stays as it was. The number of variables read, or a negative code.
int LoadFMap283xx(uint32_t start, uint32_t end);
// The same from an archive, which must hold both. While a C166 is the selected processor
// its variables are those of the TMS320 behind it and the type map is not taken. 0 or a
// negative code.
int ReadMaps283xx(const char *archiveName);
int Read_TMS_CombiMap(const char *archiveName);

enum { MFS_AT_END = 0, MFS_AT_1C000 = 1 };
// Reads the target's flash and makes its map the loaded one (OPEN_FROM_MEMORY); says in
// the message area what was read or why not. 0 or a negative code.
int fl2node(int place);
// Saves what was last read from flash as an archive that opens as a TMS map. 0, or -1:
// nothing with types was read yet, or the file cannot be written.
int SaveFlash(const char *fileName);

#endif
