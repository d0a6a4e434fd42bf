// What the watch list does when names, types or the processor have changed.
#ifndef WATCH_LIST_NAME_CHANGES_H
#define WATCH_LIST_NAME_CHANGES_H

#include "symbols/listener.h"

// The symbols' listener: looks up the items concerned again and shows their addresses.
void NCH_NamesChanged(SYM_Change change);

// After another processor was selected: looks up the C166 items' names again and places
// the members of structures as that processor does. A register that it does not have is
// not resolved any more.
void VR_ResolveWatchList();

#endif
