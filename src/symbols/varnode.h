// Variable nodes: the symbols of the loaded map, of the selected processor's
// registers and of a TMS320 behind a C166 station; their tables and look-ups.
#ifndef SYMBOLS_VARNODE_H
#define SYMBOLS_VARNODE_H

#include <cstdint>
#include <string>

constexpr int NODES_MAX = 5000;
constexpr int NODE_NAME_MAX = 64;

struct VarNode {
    char *name = nullptr; // owned, at most NODE_NAME_MAX characters
    uint32_t addr = 0;    // byte address in the target
};

enum { OPEN_NONE = 0, OPEN_MAP_FILE = 1, OPEN_FROM_MEMORY = 2 };

extern VarNode aVarNode[NODES_MAX];    // the user's symbols
extern int nNodes;
extern int openStruct;                 // OPEN_...
extern VarNode aVarNode166[NODES_MAX]; // registers of the selected processor
extern int nNodes166;
extern int openStruct166;
extern VarNode aVarTMSNode[NODES_MAX]; // a TMS320 behind the station
extern int nTMSNodes;
extern int openTMSStruct;
extern std::string mapFile;            // name of the loaded map file

int AddMapVar(uint32_t address, const char *text);          // 0, or -1: table full or no name
int AddMapVarS(const char *mapLine, const char *text);
void SortMapByName();
void SortMapNdxByAddr();
void FreeNodes(VarNode *table, int *count);

// Address an expression denotes ("name", "name + 0x10", "name.member[2]", "0x1F00"), or
// 0xFFFFFFFF. A leading "&" and a station prefix are taken off first.
uint32_t inStruct(const char *expression, const VarNode *table, int count);
// Name of the nearest node at or after *address and its address; 0, or -1 and "".
int MapAddrToId(std::string *name, uint32_t *address);
// Next name matching "abc*" from *position on; 0, or -1 at the end.
int RdTblVarName(const char *wildcard, const char **name, const VarNode *table, int count,
                 int *position);
// Forgets and resolves again every address of the watch list.
void VRN_RefreshVars();
// Loads the register table of a processor code into aVarNode166.
void initRgMap(int processor);

#endif
