// Writes rows of values as CSV while they come: docs/manual/reference/formats.md has the layout. A
// program that is killed has lost a second at most, for every batch is flushed. A full disk ends a
// recording and leaves what is there. Knows no line and no window; its owner feeds it.
#ifndef SAMPLER_RECORDER_H
#define SAMPLER_RECORDER_H

#include "platform/system.h"
#include "sampler/sample_store.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

struct REC_Options {
    std::string path;
    bool mayReplace = false;        // an existing file
    bool isStamped = false;         // a time stamp in the name of the first file, too
    uint64_t rotateBytes = 0;       // a new file when this one would grow beyond; 0: never
    uint32_t rotateMinutes = 0;     // or after so long
    int periodMs = 0;               // for the head: 0 as fast as the line allows
    int64_t (*utcMs)() = PLT_UtcMs; // the clock that can be set
    bool hasDates = true;           // a column with dates beside the times
    std::FILE *file = nullptr;      // open already, of this path; the recorder closes it
};

struct REC_Recorder {
    REC_Options options;
    bool isOpen = false;
    std::string path;    // of the file being written: with rotation it has a time stamp
    std::string problem; // why it stopped by itself, "" when it did not
    uint64_t rows = 0, files = 0, bytes = 0; // bytes: of this file

    // The rest is the recorder's own.
    std::FILE *file = nullptr;
    std::vector<SMP_Item> items;
    std::vector<uint8_t> states; // of each item in the last row
    int64_t originUs = 0;        // steady clock at time 0
    int64_t originUtcMs = 0;     // the same moment by the system's clock, as it is set now
    int64_t startUtcMs = 0;      // and as it was set then
    int offsetMinutes = 0;       // of local time against UTC
    int64_t fileUs = 0;          // when this file began
    bool isAllFailed = false;    // the last row had no value at all
    int64_t secondUtc = -1;      // whose text is in `secondText`
    std::string secondText, zoneText;
    std::string buffer;
};

enum {
    REC_ERR_OPEN = -1,   // cannot be created: recorder->problem
    REC_ERR_EXISTS = -2, // and options.mayReplace is not set
    REC_ERR_WRITE = -3,  // the disk is full or gone: recording has ended, recorder->problem
};

// Creates the file with its head. `nowUs` is the steady clock of the rows. 0 or a code.
int REC_Open(REC_Recorder *recorder, const REC_Options &options, const std::vector<SMP_Item> &items,
             int64_t nowUs);
// One row, in the order of the items; samples that failed are empty cells, and the first of
// them is preceded by a line with the reason. Of rows without any value the first is written. 0 or
// REC_ERR_WRITE; nothing when it is not open.
int REC_PutRow(REC_Recorder *recorder, int64_t timeUs, const SMP_Sample *samples,
               const SMP_Store &store);
// A line "; TIME, kind, text" between the rows: a gap, a marker, a trigger. 0 or REC_ERR_WRITE.
int REC_PutNote(REC_Recorder *recorder, int64_t timeUs, const std::string &kind,
                const std::string &text);
// Other columns from now on: a new file with a time stamp in its name. 0 or a code.
int REC_ChangeItems(REC_Recorder *recorder, const std::vector<SMP_Item> &items, int64_t nowUs);
// Hands everything to the system: call behind each batch, at least once a second. Also where
// a clock that was set is noticed. 0 or REC_ERR_WRITE.
int REC_Flush(REC_Recorder *recorder, int64_t nowUs);
// 0, or REC_ERR_WRITE when not everything reached the disk.
int REC_Close(REC_Recorder *recorder);

// The texts of a recording (recorder_text.cpp): what stands in its rows, above them, and in the
// name of its file. Only the recorder calls them.
// Local time against UTC from now on, by the system's two clocks.
void REC_SetZone(REC_Recorder *recorder);
// A moment of the steady clock by the system's clock, as it was set when last looked at.
int64_t REC_UtcMsAt(const REC_Recorder &recorder, int64_t timeUs);
// "2026-11-21T17:01:14.123+01:00", to the recorder's buffer.
void REC_AppendLocalDate(REC_Recorder *recorder, int64_t utcMs);
// "12.000345", six digits behind the point.
void REC_AppendSeconds(std::string *text, int64_t us);
// What stands above the rows: with it the file can be understood alone.
std::string REC_Head(const REC_Recorder &recorder);
// "run.csv" becomes "run-20261121-170114.csv", and "...-2.csv" when that is there already.
std::string REC_StampedPath(const REC_Recorder &recorder, int64_t nowUs);

#endif
