// What was done to the watch list, for undo and redo: every edit is a sequence of small steps
// that can be taken back in reverse order. Owns both histories; list/edit.h makes the edits and
// takes them back, others ask whether there is one. Items keep the values they had: an old one
// shows as old when it comes back.
#ifndef WATCH_LIST_EDIT_HISTORY_H
#define WATCH_LIST_EDIT_HISTORY_H

#include <string>
#include <vector>

#include "watch/list/litem.h"

constexpr size_t EDT_EDITS_MAX = 100; // the oldest edit goes first

enum EDT_EditKind { EDT_INSERT, EDT_REMOVE, EDT_REPLACE, EDT_MOVE };
struct EDT_Step {
    EDT_EditKind kind = EDT_INSERT;
    int index = 0;
    int to = 0;   // of a move: index afterwards
    LItem before; // removed or replaced
    LItem after;  // inserted or in its place
};
struct EDT_Edit {
    std::string what; // "remove nnCount"
    std::vector<EDT_Step> steps;
};

void EDT_ApplyStep(const EDT_Step &step); // to the list
// A finished edit, whose steps have been applied: nothing can be redone any more.
void EDT_RecordStep(const EDT_Edit &edit);
// Takes the last edit back, or does again what was taken back last. Null when there is none;
// else the edit, valid until the next call.
const EDT_Edit *EDT_UndoStep();
const EDT_Edit *EDT_RedoStep();
bool EDT_CanUndo();
bool EDT_CanRedo();
void EDT_ForgetEdits(); // another list was loaded

#endif
