// The debug file on disk: writing the list, and the time of the file last seen.
#ifndef WATCH_LIST_DEBUG_FILE_H
#define WATCH_LIST_DEBUG_FILE_H

#include <string>

// Takes the file's present time as the one last seen; an unreadable time changes nothing.
void DBG_RememberStamp(const std::string &path);

// Writes the whole list; the old file is lost only once the new one is complete.
// 0, -1 cannot be opened, -2 cannot be written.
int DBG_WriteFile(const std::string &path);

// Asks about unsaved changes, then loads a file as the current one. 0, -1 the user
// cancelled, -2 cannot be opened (message area; list and name unchanged).
int DBG_Open(const std::string &path);

#endif
