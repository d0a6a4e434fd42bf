// The decimated picture of a recording while its rows go by: least and greatest of every column
// for each stretch of rows, halved whenever it is full. Only the reader of recordings calls it.
#ifndef SAMPLER_RECORDING_PICTURE_H
#define SAMPLER_RECORDING_PICTURE_H

#include "sampler/recording_rows.h"

// One row that begins at `offset`; `before` is the clock in front of it.
void RPC_AddRow(RDR_Recording *recording, int64_t offset, double time,
                const std::vector<double> &values, const RRW_Clock &before);

#endif
