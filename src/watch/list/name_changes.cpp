#include "watch/list/name_changes.h"

#include "symbols/typemap.h"
#include "symbols/varnode.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"

namespace {

// Another map forgets every address and resolves again what it can; the TMS320 items stay
// unresolved until the debug file is loaded again.
void ResolveForMap()
{
    CleanLItems();
    if (openStruct166)
        completeLItems(aVarNode166, nNodes166);
    if (openStruct != OPEN_NONE)
        completeLItems(aVarNode, nNodes);
}

} // namespace

void NCH_NamesChanged(SYM_Change change)
{
    if (change == SYM_MAP_LOADED)
        ResolveForMap();
    if (change == SYM_TYPES_LOADED)
        LIT_ResolveAll(false);
    if (change == SYM_TYPES_LOADED || change == SYM_TMS_MAP_LOADED)
        LIT_ResolveAll(true); // after new types their map is still the same
    LSV_ShowAddresses();
}

void VR_ResolveWatchList()
{
    TMF_Rebuild();
    LIT_ResolveAll(false);
}
