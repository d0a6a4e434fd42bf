// One lookup serves them all (Resolve): a name that is found wins over an address that was
// given with it, and the given one comes back where the name is not found.
#include "watch/list/item_names.h"

#include "symbols/typemap.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"

namespace {

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
        item->explicitAddress = !LIT_IsAnonymous(*item);
    }
}

void ResolveAllAnew(bool isTMS)
{
    for (int i = 0; i < nLItems; ++i)
        if (LIT_IsTMS(aLItems[i]) == isTMS)
            LIT_ResolveAnew(&aLItems[i]);
}

} // namespace

void completeLItems(const VarNode *nodes, int count)
{
    for (int i = 0; i < nLItems; ++i)
        if (!LIT_IsTMS(aLItems[i]))
            Resolve(&aLItems[i], nodes, count);
}

void completeTMSLItems(const VarNode *nodes, int count)
{
    for (int i = 0; i < nLItems; ++i)
        if (LIT_IsTMS(aLItems[i]))
            Resolve(&aLItems[i], nodes, count);
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

void LIT_Resolve(LItem *item)
{
    // The map comes last: its variable hides a register of the same name.
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
    item->explicitAddress = item->address != LITEM_NO_ADDRESS && !LIT_IsAnonymous(*item);
    LIT_Resolve(item);
    const bool isSamePlace = item->address == before;
    item->isValueGood &= isSamePlace;
    item->isHeld &= isSamePlace;
}

void LIT_NamesChanged(SYM_Change change)
{
    if (change == SYM_MAP_LOADED) {
        // Another map forgets every address and resolves again what it can; the TMS320 items
        // stay unresolved until their map or the debug file is loaded again.
        CleanLItems();
        if (openStruct166)
            completeLItems(aVarNode166, nNodes166);
        if (openStruct != OPEN_NONE)
            completeLItems(aVarNode, nNodes);
    }
    if (change == SYM_TYPES_LOADED)
        ResolveAllAnew(false);
    if (change == SYM_TYPES_LOADED || change == SYM_TMS_MAP_LOADED)
        ResolveAllAnew(true); // after new types their map is still the same
    LSV_ShowAddresses();
}

void VR_ResolveWatchList()
{
    TMF_Rebuild(); // first: the members' places are names of the table
    ResolveAllAnew(false);
}
