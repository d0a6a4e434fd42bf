// The struct-variable nodes: every variable of a map and all its members with their
// addresses, ordered by address. A few thousand symbols can have a hundred thousand members, so
// that the table grows on the heap and is searched by halving.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "symbols/listener.h"
#include "symbols/typemap.h"

VarNode *TMF_paSVNode = nullptr;
int32_t TMF_cnSVNode = 0;
int32_t TMF_cnSVNodeAlloc = 0;
int32_t *TMF_panSVIndex = nullptr;

namespace {

// Doubled whenever it is full; TMF_SVNODES_MAX is the end.
constexpr int32_t FIRST_SVNODES = 1024;

int AddParts(const std::string &path, const uint32_t *chain, uint32_t address);

int AddMembers(const std::string &path, uint32_t code, uint32_t address)
{
    std::vector<uint32_t> offsets;
    if (!TMF_MemberOffsets(code, &offsets))
        return 0;
    const TMF_Decl *members = TMF_paDefStructCts[(code & TMF_VALUE) - 1].paMembers;
    for (size_t i = 0; i < offsets.size(); ++i) {
        const std::string member = path + "." + members[i].name;
        // A member before its parts: at equal addresses the shorter name is found first.
        if (TMF_AddSVNode(member, address + offsets[i]) != 0 ||
            AddParts(member, members[i].chain, address + offsets[i]) != 0)
            return -1;
    }
    return 0;
}

// Everything inside a variable of that type; plain arrays stay whole. A type that does not
// resolve (a structure inside itself) has no parts, which bounds the recursion.
int AddParts(const std::string &path, const uint32_t *chain, uint32_t address)
{
    const uint32_t *element = chain;
    while ((element[0] & TMF_DERIVATION) == TMF_ARRAY)
        ++element;
    uint32_t kind = 0, count = 0, stride = 0;
    int32_t size = 0, elements = 0, alignment = 0;
    if (!TMF_IsRecord(element[0]) ||
        TMF_GetTypeInfo(chain, &kind, &size, &elements, &alignment, 0) != 0)
        return 0;
    if (TMF_IsRecord(chain[0]))
        return AddMembers(path, chain[0], address);
    if (TMF_GetArrayInfo(chain, &count, &stride) != 0)
        return 0;
    for (uint32_t i = 0; i < count; ++i)
        if (AddParts(path + "[" + std::to_string(i) + "]", chain + 1, address + i * stride) != 0)
            return -1;
    return 0;
}

} // namespace

int TMF_AddSVNode(const std::string &name, uint32_t address)
{
    if (TMF_cnSVNode >= TMF_SVNODES_MAX)
        return -1;
    if (TMF_cnSVNode == TMF_cnSVNodeAlloc) {
        const int32_t room = TMF_cnSVNodeAlloc == 0 ? FIRST_SVNODES : TMF_cnSVNodeAlloc * 2;
        void *grown = std::realloc(static_cast<void *>(TMF_paSVNode),
                                   static_cast<size_t>(room) * sizeof(VarNode));
        if (grown == nullptr) // the nodes there are stay as they were
            return -1;
        TMF_paSVNode = static_cast<VarNode *>(grown);
        TMF_cnSVNodeAlloc = room;
    }
    char *copy = static_cast<char *>(std::malloc(name.size() + 1));
    if (copy == nullptr)
        return -1;
    std::memcpy(copy, name.c_str(), name.size() + 1);
    TMF_paSVNode[TMF_cnSVNode].name = copy;
    TMF_paSVNode[TMF_cnSVNode].addr = address;
    ++TMF_cnSVNode;
    return 0;
}

int TMF_CreateSVIndex()
{
    std::free(TMF_panSVIndex);
    TMF_panSVIndex = nullptr;
    if (TMF_cnSVNode == 0)
        return 0;
    TMF_panSVIndex = static_cast<int32_t *>(
        std::malloc(static_cast<size_t>(TMF_cnSVNode) * sizeof *TMF_panSVIndex));
    if (TMF_panSVIndex == nullptr)
        return -1;
    for (int32_t i = 0; i < TMF_cnSVNode; ++i)
        TMF_panSVIndex[i] = i;
    // Stable, so that of nodes at one address the outer one stays in front.
    std::stable_sort(TMF_panSVIndex, TMF_panSVIndex + TMF_cnSVNode, [](int32_t a, int32_t b) {
        return TMF_paSVNode[a].addr < TMF_paSVNode[b].addr;
    });
    return 0;
}

int TMF_BuildSVNodes(const VarNode *nodes, int count)
{
    TMF_FreeSVNodes();
    int result = 0;
    // All variables before the first member: when the table is full it is members that lack.
    for (int i = 0; i < count && result == 0; ++i)
        result = TMF_AddSVNode(nodes[i].name, nodes[i].addr);
    for (int i = 0; i < count && result == 0; ++i) {
        const TMF_Decl *decl = TMF_FindVarDecl(nodes[i].name);
        if (decl != nullptr)
            result = AddParts(nodes[i].name, decl->chain, nodes[i].addr);
    }
    if (result != 0)
        SYM_Warn("Type map", "The variables have more than " + std::to_string(TMF_SVNODES_MAX) +
                                 " members. Addresses of the rest are shown without names.");
    return TMF_CreateSVIndex() == 0 ? result : -1; // also for a part: it is found, the rest not
}

void TMF_Rebuild()
{
    // Without types the nodes would say no more than the map does.
    if (TMF_cnDefVars > 0)
        TMF_BuildSVNodes(aVarNode, nNodes);
    else
        TMF_FreeSVNodes();
}

void TMF_FreeSVNodes()
{
    for (int32_t i = 0; i < TMF_cnSVNode; ++i)
        std::free(TMF_paSVNode[i].name);
    std::free(static_cast<void *>(TMF_paSVNode));
    std::free(TMF_panSVIndex);
    TMF_paSVNode = nullptr;
    TMF_panSVIndex = nullptr;
    TMF_cnSVNode = 0;
    TMF_cnSVNodeAlloc = 0;
}

const VarNode *TMF_SVNodeAtOrAfter(uint32_t address)
{
    if (TMF_panSVIndex == nullptr)
        return nullptr;
    const int32_t *begin = TMF_panSVIndex;
    const int32_t *end = begin + TMF_cnSVNode;
    const int32_t *found = std::lower_bound(begin, end, address, [](int32_t node, uint32_t wanted) {
        return TMF_paSVNode[node].addr < wanted;
    });
    return found == end ? nullptr : &TMF_paSVNode[*found];
}

const VarNode *TMF_SVNodeAtOrBelow(uint32_t address)
{
    if (TMF_panSVIndex == nullptr)
        return nullptr;
    const int32_t *begin = TMF_panSVIndex;
    const int32_t *behind =
        std::upper_bound(begin, begin + TMF_cnSVNode, address, [](uint32_t wanted, int32_t node) {
            return wanted < TMF_paSVNode[node].addr;
        });
    return behind == begin ? nullptr : &TMF_paSVNode[*(behind - 1)];
}
