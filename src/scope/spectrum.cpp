#include "scope/spectrum.h"

#include <kissfft.hh>

#include <algorithm>
#include <cmath>

namespace {

constexpr double PI = 3.14159265358979323846;

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
void FindPeak(SPC_Spectrum *spectrum)
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

int SPC_Make(const std::vector<double> &samples, double rate, SPC_Spectrum *spectrum)
{
    const size_t count = samples.size();
    if (count < SPC_SAMPLES_MIN ||
        !std::all_of(samples.begin(), samples.end(), [](double v) { return std::isfinite(v); }))
        return -1;
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
    SPC_Spectrum made;
    for (size_t i = 0; i <= length / 2; i++) {
        made.frequencies.push_back(static_cast<double>(i) * rate / static_cast<double>(length));
        made.amplitudes.push_back(2 * std::abs(out[i]) / weights);
    }
    FindPeak(&made);
    *spectrum = std::move(made);
    return 0;
}
