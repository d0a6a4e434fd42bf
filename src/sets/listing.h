// Data files as HTML: one as a listing, several side by side with what differs marked. Text
// from the files is escaped, whatever it holds; the template is the user's own.
#ifndef SETS_LISTING_H
#define SETS_LISTING_H

#include "sets/compare.h"

#include <string>
#include <vector>

// Fills the template with the files, in the settings' LANGUAGE_..., and writes the output whole.
// 0, or -1 with the reasons.
int PST_WriteListing(const std::string &templatePath, const std::vector<PST_File> &files,
                     int language, const std::string &output, PST_Problems *problems);

#endif
