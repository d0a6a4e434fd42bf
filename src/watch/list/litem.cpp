#include "watch/list/litem.h"

#include <cstdio>
#include <cstring>

#include "comm/sysaddr.h"
#include "settings/settings.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"
#include "text/words.h"

LItem aLItems[LITEMS_MAX];
int nLItems = 0;
int openLItems = 0;
int readLItems = 0;

namespace {

bool IsAnonymous(const LItem &item)
{
    return item.name.empty() || item.name == "&";
}

std::string Bracketed(const LItem &item)
{
    char place[24];
    // An item whose address is forgotten for now keeps the one it was given.
    const uint32_t kept = item.address != LITEM_NO_ADDRESS ? item.address : item.givenAddress;
    std::snprintf(place, sizeof place, "[0x%X]", kept);
    return place;
}

// Looks a name up in one table. A found name replaces an address that was given; an
// address that was forgotten comes back when the table does not know the name.
void Resolve(LItem *item, const VarNode *nodes, int count)
{
    const uint32_t address = inStruct(item->name.c_str(), nodes, count);
    if (address != LITEM_NO_ADDRESS) {
        item->address = address;
        item->explicitAddress = 0;
        item->givenAddress = LITEM_NO_ADDRESS;
    } else if (item->address == LITEM_NO_ADDRESS && item->givenAddress != LITEM_NO_ADDRESS) {
        item->address = item->givenAddress;
        item->explicitAddress = !IsAnonymous(*item);
    }
}

void Complete(const VarNode *nodes, int count, bool isTMS)
{
    for (int i = 0; i < nLItems; ++i) {
        if (LIT_IsTMS(aLItems[i]) == isTMS)
            Resolve(&aLItems[i], nodes, count);
    }
}

} // namespace

void LIT_Resolve(LItem *item)
{
    if (openStruct166 && !LIT_IsTMS(*item))
        Resolve(item, aVarNode166, nNodes166);
    if (openStruct && !LIT_IsTMS(*item))
        Resolve(item, aVarNode, nNodes);
    if (openTMSStruct && LIT_IsTMS(*item))
        Resolve(item, aVarTMSNode, nTMSNodes);
}

void LIT_ResolveAnew(LItem *item)
{
    const uint32_t before = item->address;
    item->address = item->givenAddress;
    item->explicitAddress = item->address != LITEM_NO_ADDRESS && !IsAnonymous(*item);
    LIT_Resolve(item);
    const bool isSamePlace = item->address == before;
    item->isValueGood &= isSamePlace;
    item->isHeld &= isSamePlace;
}

void LIT_ResolveAll(bool isTMS)
{
    for (int i = 0; i < nLItems; ++i)
        if (LIT_IsTMS(aLItems[i]) == isTMS)
            LIT_ResolveAnew(&aLItems[i]);
}

void completeLItems(const VarNode *nodes, int count)
{
    Complete(nodes, count, false);
}

void completeTMSLItems(const VarNode *nodes, int count)
{
    Complete(nodes, count, true);
}

void CleanLItems()
{
    for (int i = 0; i < nLItems; ++i) {
        aLItems[i].address = LITEM_NO_ADDRESS;
        aLItems[i].explicitAddress = 0;
        aLItems[i].isValueGood = false; // what was read elsewhere gives no rate
        aLItems[i].isHeld = false;
    }
}

bool LIT_IsTMS(const LItem &item)
{
    return !item.name.empty() && item.name[0] == '&';
}

bool LIT_HasAddress(const LItem &item)
{
    return item.address < ADDR_LIMIT;
}

int LIT_Station(const LItem &item)
{
    return item.station >= 0 && item.station <= STATION_MAX ? item.station : STATION;
}

bool LIT_HasNumber(const LItem &item)
{
    const bool isRateless = item.type == 'p' && item.readTick == item.previousReadTick;
    return item.isValueGood && !isRateless;
}

uint64_t LIT_Bits(const LItem &item)
{
    const uint64_t whole = static_cast<uint64_t>(item.valueHigh) << 32 | item.value;
    return item.size >= 8 ? whole : whole & ((uint64_t{1} << 8 * item.size) - 1);
}

std::string LIT_Label(const LItem &item)
{
    return IsAnonymous(item) ? item.name + Bracketed(item) : WRD_Visible(item.name);
}

std::string LIT_LabelAndPlace(const LItem &item)
{
    const bool isForgotten = item.address == LITEM_NO_ADDRESS;
    if (IsAnonymous(item))
        return item.name + Bracketed(item);
    if (item.explicitAddress || (isForgotten && item.givenAddress != LITEM_NO_ADDRESS))
        return item.name + ", " + Bracketed(item);
    return item.name;
}
