#include "runtime/plot_thin.h"

#include <algorithm>
#include <cmath>

namespace {

void Widen(const std::vector<double> &values, size_t begin, size_t end, double *low, double *high)
{
    for (size_t i = begin; i < end; i++) { // a NaN compares false
        *low = values[i] < *low ? values[i] : *low;
        *high = values[i] > *high ? values[i] : *high;
    }
}

// Whole blocks from the table, the rest sample by sample.
void FindExtremes(const PLOT_ThinCurve &curve, size_t begin, size_t end, double *low, double *high)
{
    *low = INFINITY;
    *high = -INFINITY;
    const size_t firstBlock = (begin + PLOT_BLOCK_SAMPLES - 1) / PLOT_BLOCK_SAMPLES;
    const size_t endBlock = end / PLOT_BLOCK_SAMPLES;
    if (firstBlock >= endBlock) {
        Widen(*curve.y, begin, end, low, high);
        return;
    }
    Widen(*curve.y, begin, firstBlock * PLOT_BLOCK_SAMPLES, low, high);
    Widen(*curve.y, endBlock * PLOT_BLOCK_SAMPLES, end, low, high);
    for (size_t block = firstBlock; block < endBlock; block++) {
        *low = std::min(*low, curve.low[block]);
        *high = std::max(*high, curve.high[block]);
    }
}

} // namespace

PLOT_ThinCurve PLOT_MakeThinCurve(const UI_Samples &x, const UI_Samples &y)
{
    PLOT_ThinCurve curve;
    curve.x = x;
    curve.y = y;
    const size_t blocks = (y->size() + PLOT_BLOCK_SAMPLES - 1) / PLOT_BLOCK_SAMPLES;
    curve.low.assign(blocks, INFINITY);
    curve.high.assign(blocks, -INFINITY);
    for (size_t block = 0; block < blocks; block++) {
        const size_t begin = block * PLOT_BLOCK_SAMPLES;
        Widen(*y, begin, std::min(y->size(), begin + PLOT_BLOCK_SAMPLES), &curve.low[block],
              &curve.high[block]);
    }
    return curve;
}

void PLOT_FindSample(const PLOT_ThinCurve &curve, double xMin, double xMax, size_t *first,
                     size_t *end)
{
    const std::vector<double> &x = *curve.x;
    const auto begin = std::lower_bound(x.begin(), x.end(), xMin);
    const auto behind = std::upper_bound(begin, x.end(), xMax);
    *first = static_cast<size_t>(begin - x.begin()) - (begin == x.begin() ? 0 : 1);
    *end = static_cast<size_t>(behind - x.begin()) + (behind == x.end() ? 0 : 1);
}

void PLOT_ThinOut(const PLOT_ThinCurve &curve, double xMin, double xMax, int pixels,
                  std::vector<PLOT_Column> *columns)
{
    columns->clear();
    const std::vector<double> &x = *curve.x;
    auto begin = std::lower_bound(x.begin(), x.end(), xMin);
    for (int pixel = 0; pixel < pixels && begin != x.end(); pixel++) {
        const double limit = xMin + (xMax - xMin) * (pixel + 1) / pixels;
        // The last column takes in what lies on the right edge.
        const auto end = pixel + 1 == pixels ? std::upper_bound(begin, x.end(), xMax)
                                             : std::lower_bound(begin, x.end(), limit);
        if (begin == end)
            continue;
        const auto from = static_cast<size_t>(begin - x.begin());
        const auto to = static_cast<size_t>(end - x.begin());
        PLOT_Column column;
        column.pixel = pixel;
        column.first = (*curve.y)[from];
        column.last = (*curve.y)[to - 1];
        FindExtremes(curve, from, to, &column.low, &column.high);
        columns->push_back(column);
        begin = end;
    }
}
