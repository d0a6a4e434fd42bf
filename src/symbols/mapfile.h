// Linker map files: the C166 format (".m66") and the TMS320C28x format (".m28xt").
#ifndef SYMBOLS_MAPFILE_H
#define SYMBOLS_MAPFILE_H

#include <cstdint>
#include <string>

// Replaces aVarNode. 0, or -2: cannot be opened or read, and the loaded map stays. Symbols
// beyond NODES_MAX are left out and counted in one message.
int ReadMap(const char *fileName);
// The same for the C28x format. While a processor of the C166 family is selected the map is
// that of a TMS320 behind it: aVarTMSNode and openTMSStruct are filled, aVarNode stays. A
// combined archive brings the type map, too; one that is damaged gives a code of flash_info.h.
int Read_TMS_Map(const char *fileName);
// Read, remember the name in mapFile, set openStruct, tell the listener.
int map2node(const char *fileName);
int TMSmap2node(const char *fileName);

// One line of a map: true when it declares a symbol; the name begins at *name.
bool MAP_ParseC166Line(const char *line, uint32_t *address, const char **name);
bool MAP_ParseTMSLine(const char *line, uint32_t *address, const char **name);

bool IsHexAddr(const char *text);
bool IsTMSHexAddr(const char *text);
bool isID166(const char *text);
bool cmp_sz2szID(const char *text, const char *word);
bool cmp_sz2szID_Start(const char *text, const char *word);
bool cmp_sz2aszKeyword(const char *text, const char *const *table, int count);
bool cmp_sz2aszKwdStart(const char *text, const char *const *table, int count);

#endif
