// A recording as it is known once its file has been gone through: columns, notes, and the
// decimated picture. Plain data; recording.h fills it in and reads from it.
#ifndef SAMPLER_RECORDING_DATA_H
#define SAMPLER_RECORDING_DATA_H

#include "sampler/csv_table.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

constexpr size_t REC_COLUMNS_MAX = 512;
constexpr size_t REC_LINE_MAX = 65536; // characters

struct REC_Column {
    std::string name, unit, type; // type as in the head, "" when there is none
};
struct REC_Note { // a line between the rows
    double time = 0;
    std::string kind, text; // "marker", "gap", "failed", ...
};
constexpr size_t REC_NOTES_MAX = 10000; // more are not kept

// Rows that lie together in the file.
struct REC_Stretch {
    int64_t offset = 0; // of its first row, in bytes
    uint64_t rows = 0;
    double timeMin = 0, timeMax = 0;
    double dayOffset = 0, clockBefore = 0; // of a clock without a date, in front of it
};
constexpr size_t REC_STRETCHES_MAX = 65536;

struct REC_Recording {
    std::string path;
    std::vector<REC_Column> columns; // without the times
    std::vector<REC_Note> notes;
    std::string start; // as the head says, "" when it does not
    uint64_t rows = 0;
    double timeMin = 0, timeMax = 0;     // seconds
    uint64_t badLines = 0, backward = 0; // lines that are no row; rows whose time goes back
    bool isCut = false;                  // the last line is not whole

    // The rest is the reader's own.
    bool isOurs = false;
    std::vector<REC_Stretch> stretches;
    uint64_t rowsPerStretch = 1;
    std::vector<float> least, greatest; // stretch after stretch, a number a column; NaN: none
    REC_Table table;
    std::vector<size_t> cellOf; // column -> cell
    double origin = 0;          // time in the file that is shown as 0
    int64_t end = 0;            // of what was gone through, in bytes
};

enum {
    REC_READ_ERR_OPEN = -1,     // or no plain file
    REC_READ_ERR_NO_TABLE = -2, // no columns with a time among them
    REC_READ_ERR_CANCELLED = -3
};

#endif
