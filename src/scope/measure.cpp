#include "scope/measure.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double HYSTERESIS = 0.1; // of the swing, above and below the middle: noise is no edge

struct Edges {
    size_t rises = 0;
    double first = 0, last = 0;     // times of rises
    double high = 0, highTotal = 0; // above the middle since the first rise; up to the last
};

double CrossingTime(double x0, double y0, double x1, double y1, double middle)
{
    return y1 == y0 ? x1 : x0 + (x1 - x0) * (middle - y0) / (y1 - y0);
}

// A rise counts once the curve has been below the band and goes above it; its time is where
// it passed the middle last.
Edges FindEdges(const std::vector<double> &x, const std::vector<double> &y, size_t begin,
                size_t end, const SCP_Measures &m)
{
    const double middle = m.min / 2 + m.max / 2, band = (m.max - m.min) * HYSTERESIS;
    Edges edges;
    bool isHigh = y[begin] > middle, isKnown = false;
    double up = x[begin], down = x[begin];
    size_t before = begin;
    for (size_t i = begin + 1; i < end; i++) {
        if (std::isnan(y[i]))
            continue;
        if (y[before] <= middle && y[i] > middle)
            up = CrossingTime(x[before], y[before], x[i], y[i], middle);
        if (y[before] > middle && y[i] <= middle)
            down = CrossingTime(x[before], y[before], x[i], y[i], middle);
        before = i;
        if (y[i] < middle - band && (isHigh || !isKnown)) {
            if (isHigh && edges.rises > 0)
                edges.high += down - edges.last;
            isHigh = false;
            isKnown = true;
        } else if (y[i] > middle + band && !isHigh && isKnown) {
            isHigh = true;
            edges.first = edges.rises == 0 ? up : edges.first;
            edges.highTotal = edges.high; // a swing that has no end yet does not count
            edges.last = up;
            edges.rises++;
        }
    }
    return edges;
}

} // namespace

SCP_Measures SCP_Measure(const std::vector<double> &x, const std::vector<double> &y, double from,
                         double to)
{
    SCP_Measures m;
    auto begin = static_cast<size_t>(std::lower_bound(x.begin(), x.end(), from) - x.begin());
    const auto end = static_cast<size_t>(std::upper_bound(x.begin(), x.end(), to) - x.begin());
    while (begin < end && std::isnan(y[begin]))
        begin++;
    if (begin >= end)
        return m;
    double sum = 0, squares = 0;
    m.min = m.max = y[begin];
    for (size_t i = begin; i < end; i++) {
        if (std::isnan(y[i]))
            continue;
        m.count++;
        m.min = std::min(m.min, y[i]);
        m.max = std::max(m.max, y[i]);
        sum += y[i];
        squares += y[i] * y[i];
    }
    m.mean = sum / static_cast<double>(m.count);
    m.rms = std::sqrt(squares / static_cast<double>(m.count));
    if (!(m.max > m.min))
        return m;
    const Edges edges = FindEdges(x, y, begin, end, m);
    if (edges.rises >= 2) {
        m.period = (edges.last - edges.first) / static_cast<double>(edges.rises - 1);
        m.duty = edges.highTotal / (edges.last - edges.first);
    }
    return m;
}
