// The type map: C declarations of the target program's variables, named types and
// structures. Owns the three tables and the struct-variable nodes built from them and
// a map. Resolves name.member[index] and computes sizes and alignments.
#ifndef SYMBOLS_TYPEMAP_H
#define SYMBOLS_TYPEMAP_H

#include <cstdint>
#include <string>
#include <vector>

#include "symbols/varnode.h"

constexpr int TMF_NAME_SIZE = NODE_NAME_MAX + 1; // with its end
constexpr int TMF_CHAIN_SIZE = 10;               // codes of one declaration and the closing 0
constexpr int TMF_CODES_MAX = TMF_CHAIN_SIZE - 1;
constexpr int TMF_DEPTH_MAX = 20; // levels of arrays and structures inside one another
constexpr int TMF_SVNODES_MAX = 200000;

// Type codes. A chain lists the outermost derivation first and ends with a basic type.
enum : uint32_t {
    TMF_DERIVATION = 0x38000000u, // mask; 0 = basic type
    TMF_FUNCTION = 0x18000000u,
    TMF_ARRAY = 0x20000000u, // low bits: element count
    TMF_POINTER = 0x28000000u,
    TMF_UNION = 0x30000000u,  // low bits: structure number from 1
    TMF_STRUCT = 0x38000000u, // the same
    TMF_VALUE = 0x07FFFFFFu,  // mask of the low bits
    TMF_MODIFIER = 0x40000000u,
    TMF_INVALID = 0x80000000u,

    TMF_KIND = 0x7u, // basic types: mask of the kind
    TMF_VOID = 1,
    TMF_INTEGER = 2,
    TMF_FLOAT = 4,
    TMF_SIGNED = 0x20,
    TMF_UNSIGNED = 0x40,
    TMF_SIZE1 = 0x80,
    TMF_SIZE2 = 0x100,
    TMF_SIZE4 = 0x200,
    TMF_SIZE8 = 0x400,
};

struct TMF_Decl {
    char name[TMF_NAME_SIZE];       // "" for an unnamed type
    uint32_t chain[TMF_CHAIN_SIZE]; // ends with a 0
    int32_t codes;                  // before the 0
};

struct TMF_Struct {
    int32_t members;
    int32_t allocated;
    TMF_Decl *paMembers; // owned
};

extern TMF_Decl *TMF_paDefVars;
extern int32_t TMF_cnDefVars;
extern TMF_Decl *TMF_paDefTypes;
extern int32_t TMF_cnDefTypes;
extern TMF_Struct *TMF_paDefStructCts;
extern int32_t TMF_cnDefStructCts;

// --- reading ----------------------------------------------------------------------
// 0, or -1: every table is then empty and TMF_nErrorLine says where reading stopped
// (from 1; 0: the file could not be opened, and the tables are as they were).
int TMF_LoadMap(const char *fileName);
int TMF_LoadMapFrw(int textHandle); // from a whole-file text, from its first line on
extern int TMF_nErrorLine;
// One section each, in the order VARS, TYPES, STRUCTS; 0 or -1. From a whole-file text
// (at its working line) or a streaming text file.
int TMF_LoadVarTableFrw(int textHandle);
int TMF_LoadTypeTableFrw(int textHandle);
int TMF_LoadStructTableFrw(int textHandle);
int TMF_LoadVarTable(int streamHandle);
int TMF_LoadTypeTable(int streamHandle);
int TMF_LoadStructTable(int streamHandle);
void TMF_FreeTables();  // the three tables
void TMF_CleanTables(); // the tables and the struct-variable nodes
// As TMF_LoadMap for the user: a file that fails leaves the loaded type map as it was;
// after success the struct-variable nodes are built and all watch items resolved again.
int TMF_OpenMap(const char *fileName);
// The file that the loaded type map was read from; "" when it came another way.
extern std::string TMF_szFileName;
// "53 variables, 4 structures": what is loaded.
std::string TMF_GetCountsText();
// As TMF_LoadMapFrw, but a text that fails leaves the loaded type map as it was.
int TMF_ReplaceMapFrw(int textHandle);

enum { TMF_MODE_VARS = 0, TMF_MODE_TYPES = 1, TMF_MODE_MEMBER = 2 };
bool TMF_IsVTLineOk(const char *line, int mode);
bool TMF_ParseStructHead(const char *line, int32_t *members);

// --- type codes ---------------------------------------------------------------------
bool TMF_IsElemTypeOk(uint32_t code); // a valid basic type
int TMF_GetElemSize(uint32_t code);   // bytes: 1, 2, 4, 8, or 0
bool TMF_IsTTypeOk(uint32_t code);    // a valid basic or derived code
int TMF_AlignmentRule(int size);      // bytes, by the selected processor
int TMF_GetPtrSize(int processor, bool toFunction);
// Element size, element count and alignment (bytes) of what a chain declares, and a code
// describing it. 0, or -1. `depth` is 0 for a caller outside.
int TMF_GetTypeInfo(const uint32_t *chain, uint32_t *kind, int32_t *elementSize, int32_t *count,
                    int32_t *alignment, int depth);

// --- names, members, indexes --------------------------------------------------------
// Declaration of a variable, or null. A name that begins with "_" is also found without
// it: compilers put one in front of C names.
const TMF_Decl *TMF_FindVarDecl(const char *name);
// The chain that a named type stands for; 0, or -1 when there is no such type.
int TMF_TypeSubst(const char *typeName, uint32_t *chain);
// Name of the type that stands for a structure or union code, or null.
const char *TMF_FindTypeName(uint32_t code);
bool TMF_IsStructName(const char *typeName); // a named structure or union
// Member of structure or union `code` by name: its declaration and byte offset. 0 or -1.
int TMF_GetStructItemInfo(uint32_t code, const char *member, const TMF_Decl **decl,
                          uint32_t *offset);
// Same for the member at a position from 0.
int TMF_GetStructItemAt(uint32_t code, int position, const TMF_Decl **decl, uint32_t *offset);
// Element count and bytes from one element to the next of an array chain; 0 or -1.
int TMF_GetArrayInfo(const uint32_t *chain, uint32_t *count, uint32_t *stride);
// "[12]" or "[0xC]" at the cursor: the index, the cursor moved past it; 0 or -1.
int TMF_GetIndexor(const char **cursor, uint32_t *index);
// What "name.member[2].x" designates: its chain (TMF_CHAIN_SIZE codes, may be null) and
// its byte offset in the variable. 0, or -1: unknown name or member, an index outside the
// array, a selection that does not fit the type, or other text behind.
int TMF_GetEfType(const char *expression, uint32_t *chain, uint32_t *offset);
// The same with the sizes and alignments of another processor than the selected one.
int TMF_GetEfTypeFor(int processor, const char *expression, uint32_t *chain, uint32_t *offset);
// The structure or union code of a variable, or of the elements of an array variable; 0 = none.
uint32_t TMF_GetRootStruct(const char *variable);
uint32_t TMF_GetRootAStruct(const char *variable);

// --- struct-variable nodes ------------------------------------------------------------
// Every node of a map and, where the type map knows it, every member ("motor[2].speed").
extern VarNode *TMF_paSVNode;
extern int32_t TMF_cnSVNode;
extern int32_t TMF_cnSVNodeAlloc;
extern int32_t *TMF_panSVIndex; // node indexes by address
// 0, or -1: out of memory, or more than TMF_SVNODES_MAX (those built stay; one message).
int TMF_BuildSVNodes(const VarNode *nodes, int count);
// The nodes for aVarNode as it is now; none while no type map is loaded.
void TMF_Rebuild();
int TMF_AddSVNode(const std::string &name, uint32_t address); // 0, or -1: full
int TMF_CreateSVIndex();
void TMF_FreeSVNodes();
const VarNode *TMF_SVNodeAtOrAfter(uint32_t address); // null: none
// The last one in table order, which is the innermost member, of those at the highest address.
const VarNode *TMF_SVNodeAtOrBelow(uint32_t address); // null: none

// --- for the type map's own files: how members follow one another -----------------------
inline bool TMF_IsRecord(uint32_t code) // structure or union
{
    const uint32_t derivation = code & TMF_DERIVATION;
    return derivation == TMF_UNION || derivation == TMF_STRUCT;
}

// Where a member goes that would start at `offset`. The padding is the offset modulo the
// alignment: exact for alignments of 1 and 2, and for 4 at even offsets.
int64_t TMF_PlaceMember(int64_t offset, int32_t alignment);
// Byte offsets of all members of a structure or union; false when it does not resolve.
bool TMF_MemberOffsets(uint32_t code, std::vector<uint32_t> *offsets);
// The tables have changed: sizes computed from them are forgotten.
void TMF_ForgetLayouts();
// The same for the name index.
void TMF_ForgetNames();

#endif
