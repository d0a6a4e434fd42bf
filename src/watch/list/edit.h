// Editing the watch list: what panels, menus and drag and drop call. Every change can be
// undone and redone, marks the list as unsaved, refreshes title and list, and selects the line
// concerned; a refused change leaves everything as it was.
#ifndef WATCH_LIST_EDIT_H
#define WATCH_LIST_EDIT_H

#include <cstdint>
#include <string>
#include <vector>

struct LItem;

enum EDT_Result {
    EDT_ERR_INDEX = -1,   // no such line
    EDT_ERR_FULL = -2,    // the list holds LITEMS_MAX items
    EDT_ERR_NAME = -3,    // empty, too long, or with characters that a debug file cannot hold
    EDT_ERR_TYPE = -4,    // no such type or size, or not for this item
    EDT_ERR_ADDRESS = -5, // outside the target's memory
    EDT_ERR_NOTHING = -6, // nothing to undo, or to redo
    EDT_ERR_COMMENT = -7, // with its item it would not fit into a line of the debug file
};
const char *EDT_ErrorText(int result); // one sentence; "" for 0 and above

constexpr int EDT_AT_END = -1;

// Type field for a name ("u2"): from the type map when it knows the name, else from the
// name's prefix (the last member's of a path); "i2" when neither says anything. Station
// prefix and "&" are skipped.
std::string EDT_SuggestType(const std::string &name);

// A type field is "b", "f", "t" or one of i u x p with 1, 2, 4 or 8. "" takes the
// suggested one. TMS320 items have four bytes whatever the field says. Each adds before
// line `position` (or at the end) and returns the new index, or EDT_ERR_.
int EDT_AddByName(const std::string &name, const std::string &typeField, int position);
// What a user types: "$1F00", "0x1F00" or "[1F00]", each with "&" in front for the
// TMS320, is an address; anything else a name.
int EDT_AddText(const std::string &text, const std::string &typeField, int position);

// The item that EDT_AddText would add, resolved. 0 or EDT_ERR_, *item untouched then.
int EDT_Parse(const std::string &text, const std::string &typeField, LItem *item);
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
bool EDT_CanUndo();
bool EDT_CanRedo();
void EDT_ForgetEdits();                                   // another list was loaded
int EDT_SetType(int index, const std::string &typeField); // 0 or EDT_ERR_
int EDT_Rename(int index, const std::string &name);       // resolves again; 0 or EDT_ERR_
// Blanks around it are dropped, and control characters become blanks. 0 or EDT_ERR_.
int EDT_SetComment(int index, const std::string &comment);

#endif
