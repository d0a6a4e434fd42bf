// How the items' names become addresses: against the tables of the loaded maps, when an item
// is new and when names, types or the processor have changed.
#ifndef WATCH_LIST_ITEM_NAMES_H
#define WATCH_LIST_ITEM_NAMES_H

#include "symbols/listener.h"

struct LItem;

// Resolves the C166 (TMS320) items against a table; the rest stays as it is.
void completeLItems(const struct VarNode *nodes, int count);
void completeTMSLItems(const struct VarNode *nodes, int count);
void CleanLItems(); // forgets every resolved address, and the values with them

// Resolves one item against every table that is loaded and meant for it.
void LIT_Resolve(LItem *item);
// The same from the start, as if the item had just been loaded: a name that the tables no
// longer know loses the address it had from them, and its value with it.
void LIT_ResolveAnew(LItem *item);

// The symbols' listener: looks up the items concerned again and shows their addresses.
void LIT_NamesChanged(SYM_Change change);
// After another processor was selected: looks up the C166 items' names again and places
// the members of structures as that processor does. A register that it does not have is
// not resolved any more. The list is not drawn.
void VR_ResolveWatchList();

#endif
