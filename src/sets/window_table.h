// What the table and the groups of the device configuration show. Called by its window only.
#ifndef SETS_WINDOW_TABLE_H
#define SETS_WINDOW_TABLE_H

#include "sets/form.h"

#include <string>

enum CFT_Column {
    CFT_NAME,
    CFT_VALUE,
    CFT_UNIT,
    CFT_DEVICE,
    CFT_FILE,
    CFT_LIMITS,
    CFT_DEFAULT,
    CFT_TEXT
};
constexpr size_t CFT_ROWS_MAX = 5000; // shown at once; a group has the rest

void CFT_Prepare(); // columns; once the panels are loaded
// Fills the groups; the chosen one stays when it is still there.
void CFT_ShowGroups(const PST_Form &form);
std::string CFT_GetGroup(); // the chosen one, "" = all
// Fills the table with the entries of the chosen group. The number of entries that it has.
size_t CFT_ShowEntries(const PST_Form &form, bool isOnlyMarked);
int CFT_GetEntry(int line); // -1: none, or a heading

// "0 … 400"; "" without limits. In the form's units.
std::string CFT_LimitsText(const PST_Attributes &attributes);
std::string CFT_DefaultText(const PST_Attributes &attributes);
std::string CFT_HeldText(const PST_Form &form, uint32_t entry, const PST_Held &held);

#endif
