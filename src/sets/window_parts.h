// What the two files of the device configuration's window share: the form it shows, its lines of
// result and state, and writing. window.cpp shows and loads, window_device.cpp reads and writes
// the target. Nobody else calls these.
#ifndef SETS_WINDOW_PARTS_H
#define SETS_WINDOW_PARTS_H

#include "sets/form.h"

#include <string>
#include <vector>

constexpr char CFW_TITLE[] = "Parameters";

extern PST_Form CFW_form;

void CFW_ShowResult(const std::string &text, bool isBad);
void CFW_ShowState();  // of the port
void CFW_Refresh();    // groups, table, buttons, editor: everything that the form says
int CFW_GetSelected(); // the entry of the selected line, -1 for none
// As many lines as a question may have, and how many more there are.
std::string CFW_FirstLines(const std::vector<std::string> &lines);

// Addresses and the target's values are worth something only as long as names, processor and
// station are those they were made with. False when the form cannot be had any more.
bool CFW_FollowChanges();
// Writes the typed values of these entries, after a question. Whether the target holds them. The
// form has followed changes before: entries are numbers of the form as it is.
bool CFW_WriteEntries(const std::vector<uint32_t> &entries);

#endif
