// List labels with columns: ESC "p<pixels>l" starts a column at that pixel,
// left-aligned. Shared by the views and by whoever needs the plain text of a line.
#ifndef RUNTIME_LIST_COLUMNS_H
#define RUNTIME_LIST_COLUMNS_H

#include <string>
#include <vector>

struct UI_LabelColumn {
    int left = 0; // pixels from the left edge of the list
    std::string text;
};

// At least one column; the first starts at pixel 0. An escape that is not of this
// form stays in the text.
std::vector<UI_LabelColumn> UI_SplitColumns(const std::string &label);
// The columns joined with `separator`.
std::string UI_JoinColumns(const std::string &label, const char *separator);

#endif
