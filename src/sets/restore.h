// A data file back into the target: everything is checked before the first byte is written,
// what would change can be shown, the old values are kept in an undo file, and afterwards
// every value has a state. Whoever shows the job asks the user between SET_PrepareRestore
// and SET_RunRestore; nothing here asks anybody.
#ifndef SETS_RESTORE_H
#define SETS_RESTORE_H

#include "sets/data.h"
#include "sets/device.h"
#include "sets/set.h"

#include <string>
#include <vector>

enum {
    SET_ERR_FILE = -3,  // header or data file: the reasons are in the job's problems
    SET_ERR_UNDO = -4,  // the undo file could not be written: nothing was changed
    SET_ERR_VALUES = -5 // written, but the target holds something else at some places
};

struct SET_Restore {
    SET_Set set;
    SET_File file;
    SET_Image wanted;              // by entry
    SET_Image before;              // by place, as read from the target
    SET_Image after;               // by place, as read back
    std::vector<int> lines;        // of the data file, by entry
    std::vector<uint32_t> writes;  // places that are to be written
    std::vector<SET_State> states; // by place, once it has run
    SET_Problems problems;
    std::string why;      // of what failed last
    std::string undoPath; // "" before there is one
};

// Reads header and data file, checks them, and reads the target. With isAll every value of the
// file is to be written, otherwise those that differ. SET_OK (also when nothing is to be
// written), or a code: nothing has been written.
int SET_PrepareRestore(const std::string &header, const std::string &data, bool isAll,
                       SET_Restore *job, const SET_Progress &progress);

// Why the file may not be this target's, a line each: another map, processor or device.
std::vector<std::string> SET_MapRemarks(const SET_Restore &job);
// What the user should know before he agrees, a line each: the remarks above,
// values the file does not have, read-only ones that differ. Empty when all fits.
std::vector<std::string> SET_RestoreWarnings(const SET_Restore &job);
// What would change, a line each: "wGain: 100 -> 120 %".
std::vector<std::string> SET_RestoreChanges(const SET_Restore &job);

// Writes the undo file, then the values, and reads them back. SET_OK or a code; job->why and
// the states say the rest. It may be prepared and run again: what is written already does not
// differ any more then.
int SET_RunRestore(SET_Restore *job, const SET_Progress &progress);
// How it ended, a line each: how many values were written, which were not and in what state
// they are, how to undo it.
std::vector<std::string> SET_RestoreResult(const SET_Restore &job, int result);

// The target against a file: "wGain: 100 in the target, 120 in the file". Empty when the
// target holds the file; `job` has been prepared with isAll false. Mirrors count, too.
std::vector<std::string> SET_Differences(const SET_Restore &job);

#endif
