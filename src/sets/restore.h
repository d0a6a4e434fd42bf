// The values of a set out of the target into a data file, and back. On the way back everything
// is checked before the first byte is written, what would change can be shown, the old values
// are kept in an undo file, and afterwards every value has a state. Whoever shows the job asks
// the user between PST_PrepareRestore and PST_RunRestore; nothing here asks anybody.
#ifndef SETS_RESTORE_H
#define SETS_RESTORE_H

#include "sets/data.h"
#include "sets/device.h"
#include "sets/set.h"

#include <string>
#include <vector>

enum {
    PST_ERR_FILE = -3,  // header or data file: the reasons are in the job's problems
    PST_ERR_UNDO = -4,  // the undo file could not be written: nothing was changed
    PST_ERR_VALUES = -5 // written, but the target holds something else at some places
};

// Reads every value that the header names and writes them into `data`, which is replaced only
// when it is whole. PST_OK or a code; *lines says what was saved and what went wrong, mirrors
// that hold another value than their source among it.
int PST_Backup(const std::string &header, const std::string &data, const PST_Progress &progress,
               std::vector<std::string> *lines);
// Mirrors whose value is not that of their source, a line each.
std::vector<std::string> PST_MirrorRemarks(const PST_Set &set, const PST_Image &image);

struct PST_Restore {
    PST_Set set;
    PST_File file;
    PST_Image wanted;              // by entry
    PST_Image before;              // by place, as read from the target
    PST_Image after;               // by place, as read back
    std::vector<int> lines;        // of the data file, by entry
    std::vector<uint32_t> writes;  // places that are to be written
    std::vector<PST_State> states; // by place, once it has run
    PST_Problems problems;
    std::string why;      // of what failed last
    std::string undoPath; // "" before there is one
};

// Reads header and data file, checks them, and reads the target. With isAll every value of the
// file is to be written, otherwise those that differ. PST_OK (also when nothing is to be
// written), or a code: nothing has been written.
int PST_PrepareRestore(const std::string &header, const std::string &data, bool isAll,
                       PST_Restore *job, const PST_Progress &progress);

// Why the file may not be this target's, a line each: another map, processor or device.
std::vector<std::string> PST_MapRemarks(const PST_Restore &job);
// What the user should know before he agrees, a line each: the remarks above,
// values the file does not have, read-only ones that differ. Empty when all fits.
std::vector<std::string> PST_RestoreWarnings(const PST_Restore &job);
// What would change, a line each: "wGain: 100 -> 120 %".
std::vector<std::string> PST_RestoreChanges(const PST_Restore &job);

// Writes the undo file, then the values, and reads them back. PST_OK or a code; job->why and
// the states say the rest. It may be prepared and run again: what is written already does not
// differ any more then.
int PST_RunRestore(PST_Restore *job, const PST_Progress &progress);
// How it ended, a line each: how many values were written, which were not and in what state
// they are, how to undo it.
std::vector<std::string> PST_RestoreResult(const PST_Restore &job, int result);

extern const char PST_NOTHING_WRITTEN[]; // what a user is told who has not agreed, or cannot

// The target against a file: "wGain: 100 in the target, 120 in the file". Empty when the
// target holds the file; `job` has been prepared with isAll false. Mirrors count, too.
std::vector<std::string> PST_Differences(const PST_Restore &job);

#endif
