// The watch list as it stands, for other programs: tab-separated for the clipboard, CSV
// in a file, and the menu items for both. A value that is old says so as its state; what was
// not read stays blank.
#ifndef WATCH_LIST_SNAPSHOT_H
#define WATCH_LIST_SNAPSHOT_H

#include <string>
#include <vector>

// One heading and one line for each of the items: name, address, type, value, state; LF ends.
std::string LSV_SnapshotText(const std::vector<int> &lines);
// All items, with the raw value, comma-separated and quoted where needed; CR LF line ends.
std::string LSV_SnapshotCsv();
// 0, -1 cannot be opened, -2 cannot be written; an older file is kept on failure.
int LSV_SaveSnapshotCsv(const std::string &path);

// The first and the last read every item once, with a progress box, so that what leaves the
// program is fresh. The selected lines are copied when there are several, else the whole list.
void LSV_CopyListCB(int menuBar, int item);
void LSV_CopyMemoryCB(int menuBar, int item); // the memory box
void LSV_SnapshotCB(int menuBar, int item);

#endif
