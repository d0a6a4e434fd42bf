// Data files as HTML: one as a listing, several side by side with what differs marked. Text
// from the files is escaped, whatever it holds; the template is the user's own.
#ifndef SETS_LISTING_H
#define SETS_LISTING_H

#include "sets/data.h"
#include "sets/set.h"

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
// group. Records stay the files' own, which must outlive the rows. Numbers are compared as
// numbers: 10 and 0Ah are the same.
std::vector<PST_Row> PST_CompareFiles(const std::vector<PST_File> &files);

// Fills the template with the files, in the settings' LANGUAGE_..., and writes the output whole. 0,
// or -1 with the reasons.
int PST_WriteListing(const std::string &templatePath, const std::vector<PST_File> &files,
                     int language, const std::string &output, PST_Problems *problems);

#endif
