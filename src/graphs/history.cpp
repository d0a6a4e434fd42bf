// Whole blocks stand for their samples wherever a column of the picture, or the stretch that is
// measured, holds all of a block; samples are looked at one by one only at the edges.
#include "graphs/history.h"

#include "scope/measure.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double GAP = std::numeric_limits<double>::quiet_NaN();
constexpr double US_PER_S = 1e6;

double NumberOf(const SMP_Store &store, size_t item, const SMP_Sample &sample)
{
    return sample.state == SMP_GOOD ? SMP_Number(store.items[item], sample.bits) : GAP;
}

GRA_HistoryBlock MakeBlock(const SMP_Store &store, size_t item, uint64_t first)
{
    GRA_HistoryBlock block;
    for (uint64_t i = 0; i < GRA_HISTORY_BLOCK_SAMPLES; ++i) {
        const double number = NumberOf(store, item, SMP_GetSample(store, item, first + i));
        const auto place = static_cast<uint8_t>(i);
        if (!std::isfinite(number)) {
            block.failedAt = place;
            continue;
        }
        if (block.good == 0 || number < block.min) {
            block.min = number;
            block.minAt = place;
        }
        if (block.good == 0 || number > block.max) {
            block.max = number;
            block.maxAt = place;
        }
        // One pass without the loss of large means: each sample moves mean and squares.
        const double away = number - block.mean;
        block.mean += away / ++block.good;
        block.deviation += away * (number - block.mean);
    }
    return block;
}

// The block a sample begins, when it lies whole before `end`; null else.
const GRA_HistoryBlock *BlockAt(const GRA_HistoryIndex &index, uint64_t number, uint64_t end)
{
    const uint64_t block = number / GRA_HISTORY_BLOCK_SAMPLES;
    if (number % GRA_HISTORY_BLOCK_SAMPLES != 0 || number + GRA_HISTORY_BLOCK_SAMPLES > end ||
        block < index.firstBlock || block - index.firstBlock >= index.blocks.size())
        return nullptr;
    return &index.blocks[static_cast<size_t>(block - index.firstBlock)];
}

// --- columns ------------------------------------------------------------------------------

struct Point {
    double time = 0, value = GAP;
    bool isThere = false;
};

// What one column of the picture has collected so far: three points at most, however many
// samples it has.
struct Column {
    Point low, high, gap;

    void add(const Point &point)
    {
        if (!std::isfinite(point.value)) {
            gap = {point.time, GAP, true};
            return;
        }
        if (!low.isThere || point.value < low.value)
            low = point;
        if (!high.isThere || point.value > high.value)
            high = point;
    }
    // At their own times, so that the curve goes up and down as the samples did.
    void flush(GRA_Points *points)
    {
        Point all[] = {low, high, gap};
        std::sort(std::begin(all), std::end(all),
                  [](const Point &a, const Point &b) { return a.time < b.time; });
        const bool isOne = low.isThere && low.time == high.time;
        bool isDone = false; // least and greatest are one sample
        for (const Point &point : all) {
            const bool isGap = !std::isfinite(point.value);
            if (!point.isThere || (isOne && !isGap && isDone))
                continue;
            isDone = isDone || !isGap;
            points->times.push_back(point.time);
            points->values.push_back(point.value);
        }
        *this = Column();
    }
};

struct Span {
    uint64_t begin, end;
};

// The samples between two times. A view may lie anywhere: bounded, for the product of a great
// time would not fit.
Span FindSpan(const SMP_Store &store, size_t item, int64_t originUs, double from, double to)
{
    const auto us = [&](double seconds) {
        return originUs +
               static_cast<int64_t>(std::llround(std::clamp(seconds, -1e12, 1e12) * US_PER_S));
    };
    return {SMP_FindTime(store, item, us(from)), SMP_FindTime(store, item, us(to) + 1)};
}

// --- measures -----------------------------------------------------------------------------

// Mean and sum of squares around it, so that two stretches can be joined without loss.
struct Sums {
    uint64_t count = 0;
    double mean = 0, deviation = 0;

    void add(uint64_t good, double itsMean, double itsDeviation)
    {
        if (good == 0)
            return;
        const double away = itsMean - mean;
        const auto before = static_cast<double>(count), more = static_cast<double>(good);
        mean += away * more / (before + more);
        deviation += itsDeviation + away * away * before * more / (before + more);
        count += good;
    }
};

// Mean and spread known, in the curve's own numbers.
void Finish(const Sums &sums, GRA_Measures *m)
{
    m->count = sums.count;
    if (sums.count == 0)
        return;
    // From mean and deviation, not from squares: those of large numbers would lose what differs.
    const double variance = sums.deviation / static_cast<double>(sums.count);
    m->mean = sums.mean;
    m->deviation = std::sqrt(variance);
    m->rms = std::sqrt(sums.mean * sums.mean + variance);
}

// The nearest straight line, by least squares.
double FindSlope(const std::vector<double> &times, const std::vector<double> &values, size_t begin,
                 size_t end)
{
    double count = 0, meanT = 0, meanV = 0, both = 0, square = 0;
    for (size_t i = begin; i < end; ++i) {
        if (!std::isfinite(values[i]))
            continue;
        count++;
        const double awayT = times[i] - meanT;
        meanT += awayT / count;
        meanV += (values[i] - meanV) / count;
        both += awayT * (values[i] - meanV);
        square += awayT * (times[i] - meanT);
    }
    return square > 0 ? both / square : 0;
}

} // namespace

void GRA_UpdateHistory(const SMP_Store &store, size_t item, GRA_HistoryIndex *index)
{
    const SMP_Ring &ring = store.rings[item];
    // Blocks begin at multiples of their length: which samples one holds never changes.
    const uint64_t firstWhole =
        (ring.first + GRA_HISTORY_BLOCK_SAMPLES - 1) / GRA_HISTORY_BLOCK_SAMPLES;
    const uint64_t endWhole = ring.end / GRA_HISTORY_BLOCK_SAMPLES;
    // Numbers begin anew with another item; a store that ran ahead has lost the blocks between.
    const uint64_t done = index->firstBlock + index->blocks.size();
    if (done > endWhole || done < firstWhole) {
        index->blocks.clear();
        index->firstBlock = firstWhole;
    }
    while (!index->blocks.empty() && index->firstBlock < firstWhole) {
        index->blocks.pop_front();
        index->firstBlock++;
    }
    for (uint64_t next = index->firstBlock + index->blocks.size(); next < endWhole; ++next)
        index->blocks.push_back(MakeBlock(store, item, next * GRA_HISTORY_BLOCK_SAMPLES));
}

void GRA_DrawHistory(const SMP_Store &store, size_t item, const GRA_HistoryIndex &index,
                     int64_t originUs, double from, double to, double columnS, double pauseS,
                     const GRA_Scale &scale, GRA_Points *points)
{
    const SMP_Ring &ring = store.rings[item];
    // One more on either side: the stroke that leaves the picture is in it.
    Span span = FindSpan(store, item, originUs, from, to);
    span.begin -= span.begin > ring.first ? 1 : 0;
    span.end += span.end < ring.end ? 1 : 0;
    const auto secondsOf = [&](uint64_t number) {
        return static_cast<double>(ring.timesUs[SMP_PlaceOf(ring, number)] - originUs) / US_PER_S;
    };
    const auto scaled = [&](double number) { return number * scale.factor + scale.offset; };
    const auto valueOf = [&](uint64_t number) {
        return scaled(NumberOf(store, item, SMP_GetSample(store, item, number)));
    };
    const bool isEach = columnS <= 0;
    Column column;
    double before = INFINITY;     // time of the sample in front; none: no pause
    double columnEnd = -INFINITY; // of the column that is being filled
    for (uint64_t number = span.begin; number < span.end;) {
        const double time = secondsOf(number);
        // What was collected in front of a pause is drawn there, and the gap in its middle.
        if (time - before > pauseS) {
            column.flush(points);
            points->times.push_back(before + (time - before) / 2);
            points->values.push_back(GAP);
        }
        if (isEach) {
            points->times.push_back(time);
            points->values.push_back(valueOf(number++));
            before = time;
            continue;
        }
        if (time >= columnEnd) {
            column.flush(points);
            columnEnd = (std::floor(time / columnS) + 1) * columnS;
        }
        const GRA_HistoryBlock *block = BlockAt(index, number, span.end);
        if (block != nullptr && secondsOf(number + GRA_HISTORY_BLOCK_SAMPLES - 1) < columnEnd) {
            if (block->good > 0) {
                column.add({secondsOf(number + block->minAt), scaled(block->min), true});
                column.add({secondsOf(number + block->maxAt), scaled(block->max), true});
            }
            if (block->good < GRA_HISTORY_BLOCK_SAMPLES)
                column.add({secondsOf(number + block->failedAt), GAP, true});
            number += GRA_HISTORY_BLOCK_SAMPLES;
            before = secondsOf(number - 1);
            continue;
        }
        before = time;
        column.add({time, valueOf(number), true});
        ++number;
    }
    column.flush(points);
}

double GRA_ColumnS(const SMP_Store &store, size_t item, int64_t originUs, double from, double to,
                   int columns)
{
    const Span span = FindSpan(store, item, originUs, from, to);
    const bool areFew = span.end - span.begin <= 2 * static_cast<uint64_t>(std::max(columns, 1));
    return areFew ? 0 : (to - from) / columns;
}

GRA_Measures GRA_MeasureHistory(const SMP_Store &store, size_t item, const GRA_HistoryIndex &index,
                                int64_t originUs, double from, double to, const GRA_Scale &scale)
{
    const Span span = FindSpan(store, item, originUs, from, to);
    // Few enough to look for a period and a slope, which no block can tell.
    if (span.end - span.begin <= GRA_SHAPE_SAMPLES_MAX) {
        std::vector<double> times, values;
        SMP_CopySamples(store, item, span.begin, span.end, originUs, &times, &values);
        for (double &value : values)
            value = value * scale.factor + scale.offset;
        return GRA_MeasureCurve(times, values, from, to);
    }
    GRA_Measures m;
    Sums sums;
    const auto addExtremes = [&](double low, double high) {
        m.min = sums.count == 0 ? low : std::min(m.min, low);
        m.max = sums.count == 0 ? high : std::max(m.max, high);
    };
    for (uint64_t number = span.begin; number < span.end;) {
        if (const GRA_HistoryBlock *block = BlockAt(index, number, span.end)) {
            if (block->good > 0)
                addExtremes(block->min, block->max);
            sums.add(block->good, block->mean, block->deviation);
            number += GRA_HISTORY_BLOCK_SAMPLES;
            continue;
        }
        const double value = NumberOf(store, item, SMP_GetSample(store, item, number++));
        if (!std::isfinite(value))
            continue;
        addExtremes(value, value);
        sums.add(1, value, 0);
    }
    // Scaled in the end, once; a negative factor turns least and greatest round.
    m.failed = span.end - span.begin - sums.count;
    sums.mean = sums.mean * scale.factor + scale.offset;
    sums.deviation *= scale.factor * scale.factor;
    Finish(sums, &m);
    m.min = m.min * scale.factor + scale.offset;
    m.max = m.max * scale.factor + scale.offset;
    if (m.min > m.max)
        std::swap(m.min, m.max);
    return m;
}

GRA_Measures GRA_MeasureCurve(const std::vector<double> &times, const std::vector<double> &values,
                              double from, double to)
{
    GRA_Measures m;
    const auto begin = std::lower_bound(times.begin(), times.end(), from) - times.begin();
    const auto end = std::upper_bound(times.begin(), times.end(), to) - times.begin();
    if (begin >= end)
        return m;
    // Extremes and period as the scope finds them; mean and spread as blocks give them.
    const SCP_Measures measured = SCP_Measure(times, values, from, to);
    Sums sums;
    for (auto i = begin; i < end; ++i)
        if (std::isfinite(values[static_cast<size_t>(i)]))
            sums.add(1, values[static_cast<size_t>(i)], 0);
    Finish(sums, &m);
    m.failed = static_cast<uint64_t>(end - begin) - m.count;
    m.min = measured.min;
    m.max = measured.max;
    m.hasShape = true;
    m.period = measured.period;
    m.slope = FindSlope(times, values, static_cast<size_t>(begin), static_cast<size_t>(end));
    return m;
}
