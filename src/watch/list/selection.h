// The selected lines of the watch list for windows of other rooms: a graph, a sampler. A
// window asks when its menu item is chosen, or has itself told whenever the selection
// changes. The lines are named so that they are found again after the list was edited.
#ifndef WATCH_LIST_SELECTION_H
#define WATCH_LIST_SELECTION_H

#include <vector>

#include "watch/list/edit.h"

// The selected lines by rising index, at least the one with the keyboard; empty for an empty
// list or in the console view, where the list is out of sight. EDT_Find gives the index later.
std::vector<EDT_Reference> WSL_GetSelection();

struct WSL_Listener {
    // Other lines are selected, or other items stand in them. Called within the callback that
    // changed it, also when the list has become empty. May be null.
    void (*changed)(const std::vector<EDT_Reference> &lines) = nullptr;
    int menuItem = 0; // dimmed while there is nothing to hand over; 0 = none
};
constexpr int WSL_LISTENERS_MAX = 8;
// Listens from now on; the same one twice is one. 0, or -1 when there are too many.
int WSL_AddListener(const WSL_Listener &listener);

// For the list's own modules: looks whether the selection has changed, tells so and dims.
void WSL_Refresh();

#endif
