// The watch list as it stands, for other programs: tab-separated for the clipboard, CSV
// in a file. Nothing is read from the target.
#ifndef WATCH_LIST_SNAPSHOT_H
#define WATCH_LIST_SNAPSHOT_H

#include <string>

// One heading and one line an item: name, address, type, value, state; LF line ends.
std::string SNP_Text();
// The same with the raw value, comma-separated and quoted where needed; CR LF line ends.
std::string SNP_Csv();
// 0, -1 cannot be opened, -2 cannot be written; an older file is kept on failure.
int SNP_SaveCsv(const std::string &path);

#endif
