// What the table and the groups of the device configuration show. Called by its window only.
#ifndef SETS_WINDOW_TABLE_H
#define SETS_WINDOW_TABLE_H

#include "sets/form.h"

#include <string>

enum CFW_Column {
    CFW_COLUMN_NAME,
    CFW_COLUMN_VALUE,
    CFW_COLUMN_UNIT,
    CFW_COLUMN_DEVICE,
    CFW_COLUMN_FILE,
    CFW_COLUMN_LIMITS,
    CFW_COLUMN_DEFAULT,
    CFW_COLUMN_TEXT
};
constexpr size_t CFW_ROWS_MAX = 5000; // shown at once; a group has the rest

void CFW_PrepareTable(); // columns; once the panels are loaded
// Fills the groups; the chosen one stays when it is still there.
void CFW_ShowGroups(const PST_Form &form);
std::string CFW_GetGroup(); // the chosen one, "" = all
// Fills the table with the entries of the chosen group. The number of entries that it has.
size_t CFW_ShowEntries(const PST_Form &form, bool isOnlyMarked);
int CFW_GetEntry(int line); // -1: none, or a heading

// "0 … 400"; "" without limits. In the form's units.
std::string CFW_LimitsText(const PST_Attributes &attributes);
std::string CFW_DefaultText(const PST_Attributes &attributes);
std::string CFW_HeldText(const PST_Form &form, uint32_t entry, const PST_Held &held);

#endif
