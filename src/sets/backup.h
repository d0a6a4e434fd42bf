// The values of a set out of the target into a data file.
#ifndef SETS_BACKUP_H
#define SETS_BACKUP_H

#include "sets/device.h"
#include "sets/set.h"

#include <string>
#include <vector>

// Reads every value that the header names and writes them into `data`, which is replaced only
// when it is whole. PST_OK or a code (restore.h has those of files); *lines says what was
// saved and what went wrong, mirrors that hold another value than their source among it.
int PST_Backup(const std::string &header, const std::string &data, const PST_Progress &progress,
               std::vector<std::string> *lines);

// Mirrors whose value is not that of their source, a line each.
std::vector<std::string> PST_MirrorRemarks(const PST_Set &set, const PST_Image &image);

#endif
