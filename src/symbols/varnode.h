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

extern VarNode aVarNode[NODES_MAX]; // the user's symbols
extern int nNodes;
extern int openStruct;                 // OPEN_...
extern VarNode aVarNode166[NODES_MAX]; // registers of the selected processor
extern int nNodes166;
extern int openStruct166;
extern VarNode aVarTMSNode[NODES_MAX]; // a TMS320 behind the station; word addresses
extern int nTMSNodes;
extern int openTMSStruct;
extern std::string mapFile; // name of the loaded map file

// Appends a node to aVarNode. The name is the run of letters, digits, "_" and "?" at the
// start of `text`. 0, or -1: table full (counted), no name, or a name of more than 64.
int AddMapVar(uint32_t address, const char *text);
// The same with the hexadecimal number at the start of the line as the address.
int AddMapVarS(const char *mapLine, const char *text);
void SortMapByName(); // aVarNode, byte by byte
void SortMapNdxByAddr();
// Frees every name and sets the count to 0.
void FreeNodes(VarNode *table, int *count);

// The same for any of the three tables; `refused` (may be null) counts nodes beyond NODES_MAX.
int VRN_AddNode(VarNode *table, int *count, uint32_t address, const char *text, int *refused);
// Order of a selection sort that swaps the first smallest remaining name into place: equal
// names may end up in another order than a stable sort gives them. O(n log n).
void VRN_SortByName(VarNode *table, int count);
// Turns byte into 16-bit word addresses: what aVarTMSNode holds.
void VRN_BytesToWords(VarNode *table, int count);
// Of neighbours with equal name and address the later one stays.
void VRN_RemoveDuplicates(VarNode *table, int *count);
// Index of the first node of that name in table order, or -1. A table sorted by
// VRN_SortByName and changed only through the calls above is searched by halving.
int VRN_FindName(const VarNode *table, int count, const char *name);
// Whether a name matches: characters agree up to a "*" (any rest) or the end of both.
bool VRN_IsWildcardMatch(const char *wildcard, const char *name);

// Address an expression denotes ("name", "name + 0x10", "name.member[2]", "0x1F00"), or
// 0xFFFFFFFF. A leading "&" and a station prefix ("3:") are taken off first. Text after
// a blank that is no offset is ignored; an offset that is no number gives 0xFFFFFFFF.
// For aVarTMSNode the result is a word address, as the mailbox to that processor takes it:
// offsets count words, and members lie as the TMS320 lays them out.
uint32_t inStruct(const char *expression, const VarNode *table, int count);
// Name of the nearest node at or after *address (registers and the map, members when a
// type map is loaded) and its address; 0, or -1 with "" and 0xFFFFFFFF.
int MapAddrToId(std::string *name, uint32_t *address);
// Next name matching "abc*" from *position on; 0, or -1 at the end.
int RdTblVarName(const char *wildcard, const char **name, const VarNode *table, int count,
                 int *position);
// Forgets and resolves again every address of the watch list, and shows them; the TMS320
// items stay unresolved until the debug file is loaded again.
void VRN_RefreshVars();
// Loads the register table of a processor code into aVarNode166.
void initRgMap(int processor);

#endif
