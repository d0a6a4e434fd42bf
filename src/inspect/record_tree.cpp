// A node keeps its own chain of type codes; its parts are made when it is opened and dropped when
// it is closed, so that a type that holds a pointer to itself costs nothing until it is followed.
#include "inspect/record_tree.h"

#include <algorithm>

#include "comm/sysaddr.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "symbols/typemap.h"
#include "symbols/typemap_list.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"

namespace {

INS_Node MakeNode(const std::string &name, const std::string &expression, const uint32_t *chain,
                  uint32_t address, int depth)
{
    INS_Node node;
    node.name = name;
    node.expression = expression;
    // A copy: the type map may be read anew while the tree is shown. The closing 0 belongs to it.
    for (int i = 0; i < TMF_CODES_MAX && chain[i] != 0; ++i)
        node.chain.push_back(chain[i]);
    node.chain.push_back(0);
    node.address = address;
    node.depth = depth;
    const uint32_t code = chain[0];
    switch (code & TMF_DERIVATION) {
    case TMF_STRUCT:
    case TMF_UNION:
        node.kind = INS_NODE_RECORD;
        break;
    case TMF_ARRAY:
        node.kind = INS_NODE_ARRAY;
        break;
    case TMF_POINTER:
        node.kind = INS_NODE_POINTER;
        node.size = static_cast<uint32_t>(TMF_GetPtrSize(Procesor, false));
        break;
    case 0: // no derivation: a number, or void with the size 0
        node.size = static_cast<uint32_t>(std::max(TMF_GetElemSize(code), 0));
        node.kind = node.size > 0 ? INS_NODE_VALUE : INS_NODE_OTHER;
        break;
    default:
        break;
    }
    return node;
}

std::vector<INS_Node> ListMembers(const INS_Node &parent)
{
    std::vector<INS_Node> parts;
    std::vector<uint32_t> offsets;
    const uint32_t code = parent.chain[0];
    // False for a structure the map refers to but does not have.
    if (!TMF_MemberOffsets(code, &offsets))
        return parts;
    // Type codes count structures from 1.
    const TMF_Decl *members = TMF_paDefStructCts[(code & TMF_VALUE) - 1].paMembers;
    for (size_t i = 0; i < offsets.size(); ++i)
        parts.push_back(
            MakeNode(members[i].name,
                     parent.expression.empty() ? "" : parent.expression + "." + members[i].name,
                     members[i].chain, parent.address + offsets[i], parent.depth + 1));
    return parts;
}

std::vector<INS_Node> ListElements(const INS_Node &parent)
{
    std::vector<INS_Node> parts;
    uint32_t count = 0, stride = 0;
    if (TMF_GetArrayInfo(parent.chain.data(), &count, &stride) != 0)
        return parts;
    // Larger arrays have an inspector of their own; here their first elements do.
    for (uint32_t i = 0; i < std::min(count, INS_ELEMENTS_MAX); ++i) {
        const std::string index = "[" + std::to_string(i) + "]";
        parts.push_back(MakeNode(index, parent.expression.empty() ? "" : parent.expression + index,
                                 parent.chain.data() + 1, parent.address + i * stride,
                                 parent.depth + 1));
    }
    return parts;
}

// The bits of an integer, which may be flags or fields.
std::vector<INS_Node> ListBits(const INS_Node &parent)
{
    std::vector<INS_Node> parts;
    INS_Node part = parent;
    part.kind = INS_NODE_BIT;
    part.expression.clear();
    part.isOpen = false;
    part.depth++;
    for (part.bit = 0; part.bit < 8 * parent.size; ++part.bit) {
        part.name = "bit " + std::to_string(part.bit);
        parts.push_back(part);
    }
    return parts;
}

} // namespace

bool INS_CanOpenNode(const INS_Node &node)
{
    const bool isInteger = node.kind == INS_NODE_VALUE && (node.chain[0] & TMF_KIND) == TMF_INTEGER;
    return isInteger || node.kind == INS_NODE_RECORD || node.kind == INS_NODE_ARRAY ||
           node.kind == INS_NODE_POINTER;
}

int INS_BuildTree(const std::string &expression, INS_Tree *tree, std::string *cause)
{
    uint32_t chain[TMF_CHAIN_SIZE], offset = 0;
    // Both must know it: the map has the address, the type map the parts.
    const uint32_t address = inStruct(expression.c_str(), aVarNode, nNodes);
    if (openStruct == OPEN_NONE || address >= ADDR_LIMIT) {
        *cause = "no loaded map knows '" + expression + "'";
        return -1;
    }
    if (TMF_GetEfType(expression.c_str(), chain, &offset) != 0) {
        *cause = "the type map does not know '" + expression + "'";
        return -1;
    }
    tree->nodes = {MakeNode(expression, expression, chain, address, 0)};
    // Who asks for a record wants its members; a pointer is not followed unasked.
    const INS_NodeKind kind = tree->nodes[0].kind;
    return kind == INS_NODE_RECORD || kind == INS_NODE_ARRAY
               ? INS_OpenNode(tree, 0, ADDR_NONE, cause)
               : 0;
}

int INS_OpenNode(INS_Tree *tree, size_t index, uint32_t target, std::string *cause)
{
    const INS_Node node = tree->nodes[index]; // a copy: inserting moves the nodes
    std::vector<INS_Node> parts;
    if (node.isOpen)
        return 0;
    // A list that points at itself would open without end.
    if (node.depth >= INS_DEPTH_MAX) {
        *cause = "more than " + std::to_string(INS_DEPTH_MAX) + " levels are not shown";
        return -1;
    }
    if (node.kind == INS_NODE_RECORD)
        parts = ListMembers(node);
    else if (node.kind == INS_NODE_ARRAY)
        parts = ListElements(node);
    else if (node.kind == INS_NODE_VALUE && INS_CanOpenNode(node))
        parts = ListBits(node);
    else if (node.kind == INS_NODE_POINTER && target < ADDR_LIMIT && node.chain.size() > 2)
        parts = {MakeNode("*" + node.name, "", node.chain.data() + 1, target, node.depth + 1)};
    if (parts.empty() || tree->nodes.size() + parts.size() > INS_NODES_MAX) {
        *cause = parts.empty() ? "there is nothing inside" : "more lines than can be shown";
        return -1;
    }
    tree->nodes[index].isOpen = true;
    tree->nodes.insert(tree->nodes.begin() + static_cast<long>(index) + 1, parts.begin(),
                       parts.end());
    return 0;
}

void INS_CloseNode(INS_Tree *tree, size_t index)
{
    size_t end = index + 1;
    // All that lies deeper behind it came from it.
    while (end < tree->nodes.size() && tree->nodes[end].depth > tree->nodes[index].depth)
        ++end;
    tree->nodes.erase(tree->nodes.begin() + static_cast<long>(index) + 1,
                      tree->nodes.begin() + static_cast<long>(end));
    tree->nodes[index].isOpen = false;
}

uint32_t INS_GetPointerTarget(uint32_t value)
{
    if (value == 0)
        return ADDR_NONE;
    // A TMS320 pointer counts words. One of a C166 is near: 14 bits in the page it names.
    const uint32_t address = IsWordAddressing(Procesor)
                                 ? (value < ADDR_LIMIT / 2 ? value * 2 : ADDR_NONE)
                                 : QuickNearToHuge(static_cast<uint16_t>(value));
    return address < ADDR_LIMIT ? address : ADDR_NONE;
}

std::string INS_FormatType(const INS_Node &node)
{
    return node.kind == INS_NODE_BIT ? "" : TMF_FormatDecl("", node.chain.data());
}

std::string INS_FormatParts(const INS_Node &node)
{
    uint32_t count = 0, stride = 0;
    if (node.kind == INS_NODE_ARRAY && TMF_GetArrayInfo(node.chain.data(), &count, &stride) == 0)
        return "[" + std::to_string(count) + "]" +
               (node.isOpen && count > INS_ELEMENTS_MAX
                    ? " the first " + std::to_string(INS_ELEMENTS_MAX)
                    : "");
    if (node.kind != INS_NODE_RECORD)
        return "";
    // A structure that the map refers to but does not have.
    if ((node.chain[0] & TMF_VALUE) > static_cast<uint32_t>(TMF_cnDefStructCts))
        return "";
    const int32_t members = TMF_paDefStructCts[(node.chain[0] & TMF_VALUE) - 1].members;
    const bool isUnion = (node.chain[0] & TMF_DERIVATION) == TMF_UNION;
    return (isUnion ? "union of " : "{ ") + std::to_string(members) + (isUnion ? "" : " members }");
}

LItem INS_MakeNodeItem(const INS_Node &node)
{
    LItem item;
    const uint32_t code = node.chain[0];
    item.address = node.address;
    item.size = static_cast<int32_t>(node.size);
    item.type = (code & TMF_KIND) == TMF_FLOAT ? 'f' : (code & TMF_SIGNED) != 0 ? 'i' : 'u';
    if (node.kind == INS_NODE_POINTER)
        item.type = 'x';
    return item;
}
