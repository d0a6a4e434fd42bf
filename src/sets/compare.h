// Data files side by side: a row a value, and whether all files have the same one.
#ifndef SETS_COMPARE_H
#define SETS_COMPARE_H

#include "sets/data.h"

#include <string>
#include <vector>

constexpr size_t PST_COMPARE_MAX = 20; // files in one comparison

// One value's line in all the files.
struct PST_Row {
    std::string group, heading, name;
    std::vector<const PST_Record *> records; // by file, null where it has no such value
    bool differs = false;
};
// The rows of all files: in the order of the first, what only others have at the end of its
// group. Records stay the files' own, which must outlive the rows.
std::vector<PST_Row> PST_CompareFiles(const std::vector<PST_File> &files);

// Whether two records hold the same value, null being one that is not there. Numbers are
// compared as numbers: 10 and 0Ah are the same.
bool PST_IsSameRecord(const PST_Record *a, const PST_Record *b);
// The number that stands in a record, as its type would hold it. False for plain bytes.
bool PST_GetNumber(const PST_Record &record, double *number);

#endif
