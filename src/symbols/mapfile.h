// Linker map files: the C166 format (".m66") and the TMS320C28x format (".m28xt").
#ifndef SYMBOLS_MAPFILE_H
#define SYMBOLS_MAPFILE_H

#include <cstdint>
#include <string>

enum { SYM_MAP_ERR_OPEN = -2, SYM_MAP_ERR_NO_SYMBOL = -3 };
// Replaces aVarNode. 0, or a code with the loaded map as it was: the file cannot be read, or
// it holds no symbol at all (another file, or the map of the other processor). Different
// symbols beyond NODES_MAX and names beyond NODE_NAME_MAX are left out and counted in one
// message.
int ReadMap(const char *fileName);
// The same for the C28x format. While a processor of the C166 family is selected the map is
// that of a TMS320 behind it: aVarTMSNode and openTMSStruct are filled, aVarNode stays. A
// combined archive brings the type map, too; one that is damaged gives a code of flash_info.h.
int Read_TMS_Map(const char *fileName);
// Read, remember the name in mapFile, set openStruct, tell the listener.
int map2node(const char *fileName);
int TMSmap2node(const char *fileName);

// Why a map was not taken, to stand behind its name: "cannot be opened".
const char *SYM_MapErrorText(int result);

// One line of a map: whether it declares a symbol; the name begins at *name, the address
// counts bytes.
enum { SYM_MAP_NO_SYMBOL = 0, SYM_MAP_SYMBOL = 1, SYM_MAP_LONG_NAME = 2 };
int SYM_ParseC166MapLine(const char *line, uint32_t *address, const char **name);
int SYM_ParseTMSMapLine(const char *line, uint32_t *address, const char **name);

bool IsHexAddr(const char *text);
bool IsTMSHexAddr(const char *text);
bool isID166(const char *text);
bool cmp_sz2szID(const char *text, const char *word);
bool cmp_sz2szID_Start(const char *text, const char *word);
bool cmp_sz2aszKeyword(const char *text, const char *const *table, int count);
bool cmp_sz2aszKwdStart(const char *text, const char *const *table, int count);

#endif
