// A variable as a tree of its parts: members of structures and unions, elements of arrays,
// what pointers lead to, bits of integers. Plain data on the loaded type map; reads nothing but
// pointers that it is asked to follow. For the record inspector.
#ifndef INSPECT_RECORD_TREE_H
#define INSPECT_RECORD_TREE_H

#include <cstdint>
#include <string>
#include <vector>

#include "code/live_reads.h"
#include "watch/list/litem.h"

constexpr int INS_DEPTH_MAX = 20;          // levels; pointers that lead in a circle end here
constexpr uint32_t INS_ELEMENTS_MAX = 256; // of an array that is opened
constexpr size_t INS_NODES_MAX = 5000;

enum INS_NodeKind {
    INS_NODE_VALUE,
    INS_NODE_RECORD,
    INS_NODE_ARRAY,
    INS_NODE_POINTER,
    INS_NODE_BIT,
    INS_NODE_OTHER
};

struct INS_Node {
    std::string name;            // "speed", "[3]", "*next"
    std::string expression;      // for the watch list; "" behind a pointer
    std::vector<uint32_t> chain; // type codes
    INS_NodeKind kind = INS_NODE_OTHER;
    uint32_t address = 0;
    uint32_t size = 0; // bytes of a value or a pointer, of a bit those it lies in
    uint32_t bit = 0;  // its number
    int depth = 0;
    bool isOpen = false;
};

struct INS_Tree {
    std::vector<INS_Node> nodes; // as listed: children behind their parent
};

// The tree of an expression with its first level open. 0, or -1 with the reason.
int INS_BuildTree(const std::string &expression, INS_Tree *tree, std::string *cause);
bool INS_CanOpenNode(const INS_Node &node);
// Opens a node; of a pointer, `target` is where it leads. 0, or -1 with the reason.
int INS_OpenNode(INS_Tree *tree, size_t index, uint32_t target, std::string *cause);
void INS_CloseNode(INS_Tree *tree, size_t index);
// Where a pointer of that value leads, through the page pointers as last read; ADDR_NONE for
// a pointer to nothing.
uint32_t INS_GetPointerTarget(uint32_t value);
// "int16_t speed" without the name; "{ 5 members }", "[16]" stand as values of what has parts.
std::string INS_FormatType(const INS_Node &node);
std::string INS_FormatParts(const INS_Node &node);
// A value as a watch item that stands in no list, to be formatted and written.
LItem INS_MakeNodeItem(const INS_Node &node);

#endif
