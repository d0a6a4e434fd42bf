// The debug file as the user wrote it: comments, blank lines, line ends, and which line gave
// which item. Saving puts the list into it and leaves everything else where it was. One file
// at a time, that of the loaded list; used by list_file.cpp only.
#ifndef WATCH_LIST_LIST_LAYOUT_H
#define WATCH_LIST_LIST_LAYOUT_H

#include <cstddef>
#include <string>
#include <vector>

struct LItem;

enum LIT_FileLineKind {
    LIT_FILE_OTHER,   // a comment, a blank line, a line that gave nothing
    LIT_FILE_ITEM,    // gave an item
    LIT_FILE_WIDENER, // gave none, but makes the item before it four bytes wide
};

struct LIT_FileLayout {
    struct Line {
        size_t begin, end; // in the content, the line end included
        LIT_FileLineKind kind;
    };
    std::string content;
    std::vector<Line> lines; // an item's fileLine counts these, from 0
};

void LIT_SetLayout(LIT_FileLayout &&file); // an empty one when the list comes from no file
// The comment behind an item's line, without semicolon and the blanks around it; "" for none.
std::string LIT_FileComment(int line);
// The whole file for the list as it is now. Items that changed places follow the item before
// them and take the comment of their line along; new ones do, too. A comment that was changed
// since the file was read takes the place of the line's.
typedef std::string (*LIT_FileItemText)(const LItem &item); // an item's line without its end
std::string LIT_ComposeFile(LIT_FileItemText itemText);

#endif
