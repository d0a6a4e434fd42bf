// Variable nodes: the symbols of the loaded map, of the selected processor's
// registers and of a TMS320 behind a C166 station; their tables and look-ups.
#ifndef SYMBOLS_VARNODE_H
#define SYMBOLS_VARNODE_H

#include <cstdint>
#include <string>
#include <vector>

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
extern std::string mapFile;     // name of the loaded map file
extern std::string TMS_mapFile; // the same of the TMS320 behind the station

bool SYM_IsNameChar(char c); // a letter, a digit, "_", or "?" of static variables
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
int SYM_AddNode(VarNode *table, int *count, uint32_t address, const char *text, int *refused);
// Fills a table anew: sorted, without the doubles that maps list; names as for AddMapVar.
// The number taken, doubles among them; *refused counts the different symbols for which the
// table has no room.
struct SYM_Symbol {
    uint32_t address; // in bytes
    std::string name;
};
int SYM_ReplaceNodes(VarNode *table, int *count, const std::vector<SYM_Symbol> &symbols,
                     int *refused);
// Order of a selection sort that swaps the first smallest remaining name into place: equal
// names may end up in another order than a stable sort gives them. O(n log n).
void SYM_SortByName(VarNode *table, int count);
// Turns byte into 16-bit word addresses: what aVarTMSNode holds.
void SYM_BytesToWords(VarNode *table, int count);
// Of neighbours with equal name and address the later one stays.
void SYM_RemoveDuplicates(VarNode *table, int *count);
// Index of the first node of that name in table order, or -1. A table sorted by
// SYM_SortByName and changed only through the calls above is searched by halving.
int SYM_FindName(const VarNode *table, int count, const char *name);
// The node at or after an address: of the loaded map, or of the registers; null when none.
const VarNode *SYM_MapNodeAtOrAfter(uint32_t address);
const VarNode *SYM_RegisterAtOrAfter(uint32_t address);
// The node with the highest address at or below the given one; of several, the first.
const VarNode *SYM_MapNodeAtOrBelow(uint32_t address);
const VarNode *SYM_RegisterAtOrBelow(uint32_t address);
// Tells the user how many symbols a full table did not take and how many names were too
// long; nothing for 0.
void SYM_WarnRefused(int refused, int longNames);
// Whether a name matches: characters agree up to a "*" (any rest) or the end of both.
bool SYM_IsWildcardMatch(const char *wildcard, const char *name);

// Next name matching "abc*" from *position on; 0, or -1 at the end.
int RdTblVarName(const char *wildcard, const char **name, const VarNode *table, int count,
                 int *position);
// Loads the register table of a processor code into aVarNode166.
void initRgMap(int processor);

#endif
