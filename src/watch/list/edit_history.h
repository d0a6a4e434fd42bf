// What was done to the watch list, for undo and redo: every edit is a sequence of small steps
// that can be taken back in reverse order. Owns both histories; list/edit.h makes the edits and
// takes them back, others ask whether there is one. Items keep the values they had: an old one
// shows as old when it comes back.
#ifndef WATCH_LIST_EDIT_HISTORY_H
#define WATCH_LIST_EDIT_HISTORY_H

#include <string>
#include <vector>

#include "watch/list/litem.h"

constexpr size_t HIS_EDITS_MAX = 100; // the oldest edit goes first

enum HIS_Kind { HIS_INSERT, HIS_REMOVE, HIS_REPLACE, HIS_MOVE };
struct HIS_Step {
    HIS_Kind kind = HIS_INSERT;
    int index = 0;
    int to = 0;   // of a move: index afterwards
    LItem before; // removed or replaced
    LItem after;  // inserted or in its place
};
struct HIS_Edit {
    std::string what; // "remove nnCount"
    std::vector<HIS_Step> steps;
};

void HIS_Apply(const HIS_Step &step); // to the list
// A finished edit, whose steps have been applied: nothing can be redone any more.
void HIS_Record(const HIS_Edit &edit);
// Takes the last edit back, or does again what was taken back last. Null when there is none;
// else the edit, valid until the next call.
const HIS_Edit *HIS_Undo();
const HIS_Edit *HIS_Redo();
bool HIS_CanUndo();
bool HIS_CanRedo();
void HIS_Forget(); // another list was loaded

#endif
