// Editing the watch list: what panels, menus and drag and drop call. Every change can be
// undone and redone, marks the list as unsaved, refreshes title and list, and selects the line
// concerned; a refused change leaves everything as it was.
#ifndef WATCH_LIST_EDIT_H
#define WATCH_LIST_EDIT_H

#include <string>
#include <vector>

#include "watch/list/typed_item.h"

constexpr int EDT_AT_END = -1;

// Each adds the item of typed_item.h before line `position` (or at the end) and returns the new
// index, or EDT_ERR_.
int EDT_AddByName(const std::string &name, const std::string &typeField, int position);
int EDT_AddText(const std::string &text, const std::string &typeField, int position);

// Puts what the text stands for in place of an item; the item's own label changes its type
// only. 0 or EDT_ERR_.
int EDT_Change(int index, const std::string &text, const std::string &typeField);

// Which item a window is about, while others may move, remove or load items.
struct EDT_Reference {
    int index = -1;
    std::string label;
};
EDT_Reference EDT_Refer(int index);
int EDT_Find(const EDT_Reference &reference); // the item's index now, -1 = it is gone
// The selected lines by rising index, for windows of other rooms: at least the one with the
// keyboard; none for an empty list or in the console view, where the list is out of sight.
std::vector<EDT_Reference> SEL_GetWatchSelection();

int EDT_Remove(int index);                   // 0 or EDT_ERR_
int EDT_RemoveLines(std::vector<int> lines); // several as one edit; 0 or EDT_ERR_
int EDT_Move(int from, int to);              // `to` = index afterwards; 0 or EDT_ERR_
// Several lines up (-1) or down (1) by one, as one edit; they stay selected. 0, or
// EDT_ERR_INDEX when one would leave the list.
int EDT_MoveLines(std::vector<int> lines, int by);
// Several lines together in front of line `gap` (nLItems: to the end), as one edit; they stay
// selected. 0 or EDT_ERR_INDEX.
int EDT_GatherLines(std::vector<int> lines, int gap);
// Takes back the last edit, or does again what was taken back. The line that it was about,
// and the edit in words ("remove wSpeed"); or EDT_ERR_NOTHING.
int EDT_Undo(std::string *what);
int EDT_Redo(std::string *what);
int EDT_SetType(int index, const std::string &typeField); // 0 or EDT_ERR_
// Blanks around it are dropped, and control characters become blanks. 0 or EDT_ERR_.
int EDT_SetComment(int index, const std::string &comment);

#endif
