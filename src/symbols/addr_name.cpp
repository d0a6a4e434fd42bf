// Both directions look into the tables as they are: nothing is kept here that a new map would
// make untrue.
#include "symbols/addr_name.h"

#include <cstdio>

#include "comm/sysaddr.h"
#include "symbols/typemap.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"

namespace {

// Further behind its start an address is more likely no part of a variable.
constexpr uint32_t NEAR_VARIABLE_BYTES = 0x100;
// Special function registers of the C166 family.
constexpr uint32_t SPECIAL_FIRST = 0xFE00, SPECIAL_LAST = 0xFFFF;

} // namespace

uint32_t SYM_ResolveName(const char *name, bool isTMS)
{
    if (isTMS)
        return openTMSStruct ? inStruct(name, aVarTMSNode, nTMSNodes) : ADDR_NONE;
    uint32_t address = ADDR_NONE;
    if (openStruct)
        address = inStruct(name, aVarNode, nNodes);
    if (address == ADDR_NONE && openStruct166)
        address = inStruct(name, aVarNode166, nNodes166);
    return address;
}

int RegAddrToName(uint32_t address, std::string *text)
{
    text->clear();
    const VarNode *node = openStruct166 ? SYM_RegisterAtOrBelow(address) : nullptr;
    if (!node)
        return -1;
    const uint32_t offset = address - node->addr;
    // Word registers begin at even addresses; only their second byte lies between two.
    if (offset > 1 || (offset == 1 && node->addr % 2 != 0))
        return -1;
    *text = node->name;
    if (offset == 1)
        *text += "+1";
    return 0;
}

int VarAddrToName(uint32_t address, std::string *text)
{
    text->clear();
    const VarNode *node = openStruct ? SYM_MapNodeAtOrBelow(address) : nullptr;
    if (!node)
        return -1;
    const unsigned long offset = address - node->addr;
    char buffer[NODE_NAME_MAX + 48];
    if (offset == 0)
        std::snprintf(buffer, sizeof buffer, "%s", node->name);
    else if (offset < NEAR_VARIABLE_BYTES)
        std::snprintf(buffer, sizeof buffer, "%s+%lu", node->name, offset);
    else
        std::snprintf(buffer, sizeof buffer, "0%lXh (==%s+%lu)",
                      static_cast<unsigned long>(address), node->name, offset);
    *text = buffer;
    return 0;
}

std::string SYM_AddressToName(uint32_t address)
{
    std::string name;
    if (RegAddrToName(address, &name) == 0)
        return name;
    const VarNode *node = openStruct ? SYM_MapNodeAtOrBelow(address) : nullptr;
    // A member of a structure says more than the structure and an offset.
    const VarNode *member = openStruct ? TMF_SVNodeAtOrBelow(address) : nullptr;
    if (member != nullptr && (node == nullptr || member->addr >= node->addr))
        node = member;
    // Between registers lies nothing that belongs to the one before.
    const bool isSpecial = address >= SPECIAL_FIRST && address <= SPECIAL_LAST;
    if (node == nullptr || address - node->addr >= (isSpecial ? 2 : NEAR_VARIABLE_BYTES))
        return "";
    name = node->name;
    return address == node->addr ? name : name + "+" + std::to_string(address - node->addr);
}

int MapAddrToId(std::string *name, uint32_t *address)
{
    const VarNode *node =
        TMF_cnSVNode > 0 ? TMF_SVNodeAtOrAfter(*address) : SYM_MapNodeAtOrAfter(*address);
    const VarNode *reg = SYM_RegisterAtOrAfter(*address);
    if (reg != nullptr && (node == nullptr || reg->addr < node->addr))
        node = reg;
    *name = node != nullptr ? node->name : "";
    *address = node != nullptr ? node->addr : 0xFFFFFFFFu;
    return node != nullptr ? 0 : -1;
}
