// What a graph draws and measures of sampled items without looking at every sample again: an
// index of blocks over the sampler's store. A long stretch becomes the least and greatest
// sample of each column of the picture, at their own times; failed samples are gaps.
#ifndef GRAPHS_HISTORY_H
#define GRAPHS_HISTORY_H

#include "sampler/sample_store.h"

#include <deque>

constexpr uint64_t GRA_HISTORY_BLOCK_SAMPLES = 64;

// A whole block of samples. 40 bytes: with the store's 17 a sample takes less than 18.
struct GRA_HistoryBlock {
    double min = 0, max = 0, mean = 0;
    double deviation = 0; // sum of the squares of the differences from the mean
    uint8_t good = 0;     // samples that have a value
    uint8_t minAt = 0, maxAt = 0, failedAt = 0; // places in the block; the last that failed
};

// Of one item.
struct GRA_HistoryIndex {
    uint64_t firstBlock = 0; // number of the front one
    std::deque<GRA_HistoryBlock> blocks;
};

// Takes in what has come since, drops what has fallen out of the store.
void GRA_UpdateHistory(const SMP_Store &store, size_t item, GRA_HistoryIndex *index);

// How a curve's values come from the samples: number * factor + offset.
struct GRA_Scale {
    double factor = 1, offset = 0;
};

// A curve to be drawn: times rise, NaN is a gap.
struct GRA_Points {
    std::vector<double> times, values;
};

// Appends points between two times (seconds since `originUs`), and one on each side where there
// is one: every sample where a column has no width, else at most three a column. Columns are
// counted from time 0, so that a picture that moves does not shimmer. Where more than `pauseS` lie
// between two samples nothing was sampled: a gap, too.
void GRA_DrawHistory(const SMP_Store &store, size_t item, const GRA_HistoryIndex &index,
                     int64_t originUs, double from, double to, double columnS, double pauseS,
                     const GRA_Scale &scale, GRA_Points *points);
// The width of a column for so many of them: 0 while there are few samples.
double GRA_ColumnS(const SMP_Store &store, size_t item, int64_t originUs, double from, double to,
                   int columns);

struct GRA_Measures {
    uint64_t count = 0, failed = 0; // count 0: nothing below means anything
    double min = 0, max = 0, mean = 0, rms = 0, deviation = 0; // standard deviation
    bool hasShape = false; // the rest was looked for: not over very many samples
    double period = 0;     // seconds; 0: it does not repeat
    double slope = 0;      // units a second, of the straight line that lies nearest
};
constexpr uint64_t GRA_SHAPE_SAMPLES_MAX = 20000;

// Over the samples with from <= time <= to.
GRA_Measures GRA_MeasureHistory(const SMP_Store &store, size_t item, const GRA_HistoryIndex &index,
                                int64_t originUs, double from, double to, const GRA_Scale &scale);
// The same of a curve that is there as numbers; NaN is a gap.
GRA_Measures GRA_MeasureCurve(const std::vector<double> &times, const std::vector<double> &values,
                              double from, double to);

#endif
