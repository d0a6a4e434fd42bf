// What the lines of a recording say: its head, the notes between its rows, the rows. Only the
// reader of recordings (recording.cpp, recording_read.cpp) calls it.
#ifndef SAMPLER_RECORDING_ROWS_H
#define SAMPLER_RECORDING_ROWS_H

#include "sampler/line_blocks.h"
#include "sampler/recording_data.h"

#include <limits>
#include <string>
#include <vector>

// A clock without a date begins anew at midnight: where it stood, and the days before.
struct REC_RowClock {
    double last = std::numeric_limits<double>::quiet_NaN(), dayOffset = 0;
};

// Going through a file once, or through a part of it.
struct REC_RowPass {
    bool hasTable = false, hasForm = false;
    std::vector<REC_CellPiece> cells;
    std::vector<double> values; // of the row, a number a column
    REC_RowClock clock;
    std::vector<REC_Column> head; // what was said of columns before they were named
};

std::string REC_TextOf(const REC_FileLine &line);
bool REC_IsComment(const REC_FileLine &line);
// "; start, 2026-...", "; type, 1, u2", "; 12.5, marker, text".
void REC_ReadComment(const REC_FileLine &line, REC_Recording *recording, REC_RowPass *pass);
// The line with the columns. 0, or REC_READ_ERR_NO_TABLE with the reason in *problem.
int REC_ReadHead(const REC_FileLine &line, const REC_RowPass &pass, REC_Recording *recording,
                 std::string *problem);
// The last line of a recording that was cut may end in the middle of a number.
bool REC_IsCutRow(const REC_FileLine &line, const REC_Recording &recording);
// A row's time and values. False when it is none.
bool REC_ReadRow(const REC_FileLine &line, const REC_Recording &recording, REC_RowPass *pass,
                 double *time);
// Seconds as they are shown.
double REC_ShownTime(const REC_Recording &recording, double time, REC_RowClock *clock);

// The decimated picture while the rows go by (recording_picture.cpp): least and greatest of every
// column for each stretch of rows, halved whenever it is full. One row that begins at `offset`;
// `before` is the clock in front of it.
void REC_AddRowToPicture(REC_Recording *recording, int64_t offset, double time,
                         const std::vector<double> &values, const REC_RowClock &before);

#endif
