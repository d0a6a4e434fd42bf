// The debug file on disk: its lines to watch items and back, and the time of the file last
// seen. Knows no window; what the user does with files is in debug_file.h.
#ifndef WATCH_LIST_LIST_FILE_H
#define WATCH_LIST_LIST_FILE_H

#include <string>

struct LItem;

// Loads a debug file in place of the list and resolves its names. 0, also when the file
// holds more than LITEMS_MAX items (message box; the first ones stay, unresolved);
// -2: cannot be opened, list unchanged.
int dat2litems(const char *path);
enum { LIT_FILE_ERR_OPEN = -2, LIT_FILE_ERR_KEPT = -3 };
// The same for the user: before a file without a single item takes the place of a list that
// has some, `mayEmpty` is asked. LIT_FILE_ERR_KEPT: it said no. Lines that gave no item or a bad
// type or address are named once, in the message area.
int LIT_LoadFile(const std::string &path, bool (*mayEmpty)(const std::string &path));
// Splits at commas into at most maxFields trimmed fields of at most 120 characters.
// 1 and the count, or 0 when there are more (count untouched).
int parseLine(const char *line, int maxFields, int *count, std::string *fields);
// Type and size of the item being built, aLItems[nLItems]; `count` is not used.
void getTypeLItem(int count, const char *typeField);
// Strips "3:" and returns the station (0..15), or returns -1 and leaves the text alone.
int parseStationModifier(char *text);

// Takes the file's present time as the one last seen; an unreadable time changes nothing.
void LIT_RememberFileStamp(const std::string &path);

// Writes the list into the file it came from, comments, blank lines and line ends as they
// were; the old file is lost only once the new one is complete.
// 0, -1 cannot be opened, -2 cannot be written.
int LIT_WriteFile(const std::string &path);
int IsDbgFileChanged(); // 1 when the file's time differs from the one last seen

std::string LIT_FileLine(const LItem &item); // the item's line of the debug file, no line end

#endif
