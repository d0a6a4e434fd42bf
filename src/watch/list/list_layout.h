// The debug file as the user wrote it: comments, blank lines, line ends, and which line gave
// which item. Saving puts the list into it and leaves everything else where it was. One file
// at a time, that of the loaded list; used by list_file.cpp only.
#ifndef WATCH_LIST_LIST_LAYOUT_H
#define WATCH_LIST_LIST_LAYOUT_H

#include <cstddef>
#include <string>
#include <vector>

struct LItem;

enum LAY_Kind {
    LAY_OTHER,   // a comment, a blank line, a line that gave nothing
    LAY_ITEM,    // gave an item
    LAY_WIDENER, // gave none, but makes the item before it four bytes wide
};

struct LAY_File {
    struct Line {
        size_t begin, end; // in the content, the line end included
        LAY_Kind kind;
    };
    std::string content;
    std::vector<Line> lines; // an item's fileLine counts these, from 0
};

void LAY_Set(LAY_File &&file); // an empty one when the list comes from no file
// The comment behind an item's line, without semicolon and the blanks around it; "" for none.
std::string LAY_Comment(int line);
// The whole file for the list as it is now. Items that changed places follow the item before
// them and take the comment of their line along; new ones do, too. A comment that was changed
// since the file was read takes the place of the line's.
typedef std::string (*LAY_ItemText)(const LItem &item); // an item's line without its end
std::string LAY_Compose(LAY_ItemText itemText);

#endif
