// The selected lines of the watch list for windows of other rooms, which ask when their menu item
// is chosen. The lines are named so that they are found again after the list was edited.
#ifndef WATCH_LIST_SELECTION_H
#define WATCH_LIST_SELECTION_H

#include <vector>

#include "watch/list/edit.h"

// The selected lines by rising index, at least the one with the keyboard; empty for an empty
// list or in the console view, where the list is out of sight. EDT_Find gives the index later.
std::vector<EDT_Reference> WSL_GetSelection();

#endif
