// Which frequencies a curve is made of. The transform is kissfft's, which is nothing but a
// header and therefore the same on every system.
#ifndef SCOPE_SPECTRUM_H
#define SCOPE_SPECTRUM_H

#include <cstddef>
#include <vector>

constexpr size_t SPC_SAMPLES_MIN = 16;

struct SPC_Spectrum {
    std::vector<double> frequencies; // Hz, from 0 to half the rate
    std::vector<double> amplitudes;  // of a sine of that frequency: half its peak to peak
    double peakHz = 0, peak = 0;     // the strongest line; 0 of a curve that does not move
};

// Of the samples, `rate` a second, without their mean. 0, or -1: fewer than SPC_SAMPLES_MIN or
// one that has no value.
int SPC_Make(const std::vector<double> &samples, double rate, SPC_Spectrum *spectrum);

#endif
