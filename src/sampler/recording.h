// Reads recordings: ours, the scope's, and CSV files of other tools with a column of times.
// The file stays on disk. Opening goes through it once and keeps a decimated picture of bounded
// size (least and greatest of every column for each stretch of rows); a part of it is read back
// when somebody looks. A file that was cut anywhere opens up to the cut.
#ifndef SAMPLER_RECORDING_H
#define SAMPLER_RECORDING_H

#include "sampler/recording_data.h"

// Told while a file is gone through; false ends it. May be null.
typedef bool (*REC_ReadProgress)(void *context, int percent);

// 0, or a code with the reason in *problem and *recording as it was.
int REC_OpenRecording(const std::string &path, REC_Recording *recording, std::string *problem,
                      REC_ReadProgress progress = nullptr, void *context = nullptr);

// Goes on with what a recorder has written since. For recordings of ours by a recorder, whose
// times do not go back. 0, or a code: what was known stays.
int REC_FollowRecording(REC_Recording *recording);

// How many rows a reading of this time would go through; a little more than there are.
uint64_t REC_CountRows(const REC_Recording &recording, double from, double to);

// Curves of the columns over a time: row by row when that is not more than `pointsMax` points,
// else least and greatest by turns. NaN where there is no value. All columns have the same
// times; rows close to the time asked for may be with them.
struct REC_Curves {
    std::vector<double> times;
    std::vector<std::vector<double>> values; // one a wanted column
    bool isDecimated = false;
};
// 0 or REC_READ_ERR_OPEN: the file is gone, or REC_READ_ERR_CANCELLED.
int REC_ReadCurves(const REC_Recording &recording, double from, double to,
                   const std::vector<size_t> &columns, size_t pointsMax, REC_Curves *curves,
                   REC_ReadProgress progress = nullptr, void *context = nullptr);

#endif
