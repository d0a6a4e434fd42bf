// What a record inspector holds and shows: its tree as lines, and the values of those in view.
// Knows nothing of buttons and keys, which are record_inspector.cpp's; only for that file.
#ifndef INSPECT_RECORD_VIEW_H
#define INSPECT_RECORD_VIEW_H

#include <cstdint>
#include <string>

#include "code/live_reads.h"
#include "inspect/record_tree.h"
#include "watch/windows/outcome_colors.h"

struct INS_RecordView {
    int panel = 0;
    INS_Tree tree;
    std::string shown; // expression
    int shownStation = -1;
    std::string shownTypes; // maps that the tree was built from
    CODE_LiveReads live;
    uint32_t failedMs = 0; // when the last refresh failed; 0 = it did not
};

void INS_ShowRecordOutcome(const INS_RecordView &view, const std::string &text,
                           int color = COLOR_PLAIN);
int INS_GetSelectedNode(const INS_RecordView &view); // line of the tree, or -1
void INS_EnableRecordButtons(const INS_RecordView &view);
// All lines anew, with the values read last; `selected` may be -1.
void INS_ShowTree(INS_RecordView *view, int selected);
bool INS_RefreshRecord(INS_RecordView *view); // reads the lines in view and no other
// Where a pointer of the tree leads, read from the target now. False after a message: it cannot
// be read, or it leads nowhere.
bool INS_FollowPointer(INS_RecordView *view, const INS_Node &node, uint32_t *target);

#endif
