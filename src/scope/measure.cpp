// The transform is kissfft's, which is nothing but a header and therefore the same on every
// system.
#include "scope/measure.h"

#include <kissfft.hh>

#include <algorithm>
#include <cmath>

namespace {

constexpr double PI = 3.14159265358979323846;
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
    // Halved first: the sum of two great numbers may be none.
    const double middle = m.min / 2 + m.max / 2, band = (m.max - m.min) * HYSTERESIS;
    Edges edges;
    // Where the curve begins is no edge: it has to leave the band once.
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

// The next length without a prime factor above 5: the others take much longer.
size_t FastLength(size_t count)
{
    for (;; count++) {
        size_t rest = count;
        for (const size_t factor : {2u, 3u, 5u})
            while (rest % factor == 0)
                rest /= factor;
        if (rest == 1)
            return count;
    }
}

// The line lies between the bins; a parabola through the logarithms of the three highest finds
// it, and for this window's shape the height with it.
void FindPeak(SCP_Spectrum *spectrum)
{
    const std::vector<double> &a = spectrum->amplitudes;
    const auto top = std::max_element(a.begin(), a.end());
    const auto at = static_cast<size_t>(top - a.begin());
    spectrum->peak = *top;
    spectrum->peakHz = *top > 0 ? spectrum->frequencies[at] : 0;
    if (at == 0 || at + 1 == a.size() || a[at - 1] <= 0 || a[at + 1] <= 0)
        return;
    const double left = std::log(a[at - 1]), middle = std::log(a[at]), right = std::log(a[at + 1]);
    const double bend = left - 2 * middle + right;
    if (bend >= 0)
        return;
    const double shift = (left - right) / (2 * bend);
    spectrum->peakHz += shift * spectrum->frequencies[1];
    spectrum->peak = std::exp(middle - (left - right) * shift / 4);
}

} // namespace

SCP_Measures SCP_Measure(const std::vector<double> &x, const std::vector<double> &y, double from,
                         double to)
{
    SCP_Measures m;
    auto begin = static_cast<size_t>(std::lower_bound(x.begin(), x.end(), from) - x.begin());
    const auto end = static_cast<size_t>(std::upper_bound(x.begin(), x.end(), to) - x.begin());
    // The first one that has a value is what least and greatest begin with.
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
    if (!(m.max > m.min)) // no swing, no edges
        return m;
    const Edges edges = FindEdges(x, y, begin, end, m);
    if (edges.rises >= 2) {
        m.period = (edges.last - edges.first) / static_cast<double>(edges.rises - 1);
        m.duty = edges.highTotal / (edges.last - edges.first);
    }
    return m;
}

int SCP_MakeSpectrum(const std::vector<double> &samples, double rate, SCP_Spectrum *spectrum)
{
    const size_t count = samples.size();
    if (count < SCP_SPECTRUM_SAMPLES_MIN ||
        !std::all_of(samples.begin(), samples.end(), [](double v) { return std::isfinite(v); }))
        return -1;
    // Divided before it is added: the sum of great samples could be infinite.
    double mean = 0;
    for (const double sample : samples)
        mean += sample / static_cast<double>(count);
    // A Hann window, so that a line does not spread over the whole picture; zeros behind.
    const size_t length = FastLength(count);
    std::vector<std::complex<double>> in(length), out(length);
    double weights = 0;
    for (size_t i = 0; i < count; i++) {
        const double weight =
            0.5 - 0.5 * std::cos(2 * PI * static_cast<double>(i) / static_cast<double>(count));
        in[i] = (samples[i] - mean) * weight;
        weights += weight;
    }
    kissfft<double>(length, false).transform(in.data(), out.data());
    SCP_Spectrum made;
    for (size_t i = 0; i <= length / 2; i++) {
        made.frequencies.push_back(static_cast<double>(i) * rate / static_cast<double>(length));
        made.amplitudes.push_back(2 * std::abs(out[i]) / weights);
    }
    FindPeak(&made);
    *spectrum = std::move(made);
    return 0;
}
