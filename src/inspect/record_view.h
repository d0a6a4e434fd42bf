// What a record inspector holds and shows: its tree as lines, and the values of those in view.
// Knows nothing of buttons and keys, which are record_inspector.cpp's; only for that file.
#ifndef INSPECT_RECORD_VIEW_H
#define INSPECT_RECORD_VIEW_H

#include <cstdint>
#include <string>

#include "code/live_reads.h"
#include "inspect/record_tree.h"
#include "watch/windows/outcome_colors.h"

struct RCI_View {
    int panel = 0;
    RCT_Tree tree;
    std::string shown; // expression
    int shownStation = -1;
    std::string shownTypes; // maps that the tree was built from
    LVR_Set live;
    uint32_t failedMs = 0; // when the last refresh failed; 0 = it did not
};

void RCI_ShowOutcome(const RCI_View &view, const std::string &text, int color = COLOR_PLAIN);
int RCI_GetSelected(const RCI_View &view); // line of the tree, or -1
void RCI_EnableButtons(const RCI_View &view);
// All lines anew, with the values read last; `selected` may be -1.
void RCI_ShowTree(RCI_View *view, int selected);
bool RCI_Refresh(RCI_View *view); // reads the lines in view and no other
// Where a pointer of the tree leads, read from the target now. False after a message: it cannot
// be read, or it leads nowhere.
bool RCI_FollowPointer(RCI_View *view, const RCT_Node &node, uint32_t *target);

#endif
