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
struct RRW_Clock {
    double last = std::numeric_limits<double>::quiet_NaN(), dayOffset = 0;
};

// Going through a file once, or through a part of it.
struct RRW_Pass {
    bool hasTable = false, hasForm = false;
    std::vector<CVT_Piece> cells;
    std::vector<double> values; // of the row, a number a column
    RRW_Clock clock;
    std::vector<RDR_Column> head; // what was said of columns before they were named
};

std::string RRW_TextOf(const LBK_Line &line);
bool RRW_IsComment(const LBK_Line &line);
// "; start, 2026-...", "; type, 1, u2", "; 12.5, marker, text".
void RRW_ReadComment(const LBK_Line &line, RDR_Recording *recording, RRW_Pass *pass);
// The line with the columns. 0, or RDR_ERR_NO_TABLE with the reason in *problem.
int RRW_ReadHead(const LBK_Line &line, const RRW_Pass &pass, RDR_Recording *recording,
                 std::string *problem);
// The last line of a recording that was cut may end in the middle of a number.
bool RRW_IsCut(const LBK_Line &line, const RDR_Recording &recording);
// A row's time and values. False when it is none.
bool RRW_ReadRow(const LBK_Line &line, const RDR_Recording &recording, RRW_Pass *pass,
                 double *time);
// Seconds as they are shown.
double RRW_ShownTime(const RDR_Recording &recording, double time, RRW_Clock *clock);

// The decimated picture while the rows go by (recording_picture.cpp): least and greatest of every
// column for each stretch of rows, halved whenever it is full. One row that begins at `offset`;
// `before` is the clock in front of it.
void RPC_AddRow(RDR_Recording *recording, int64_t offset, double time,
                const std::vector<double> &values, const RRW_Clock &before);

#endif
