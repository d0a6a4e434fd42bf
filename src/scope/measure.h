// What a bench instrument reads off a curve: extremes, mean and RMS of a stretch of samples,
// period, frequency and duty where it repeats, and the frequencies it is made of.
#ifndef SCOPE_MEASURE_H
#define SCOPE_MEASURE_H

#include <cstddef>
#include <vector>

// Words that every window with measures uses.
constexpr char SCP_BETWEEN_TEXT[] = "Between cursors"; // head of the measures
constexpr char SCP_OPEN_TEXT[] = "Open recording";     // title of the file dialog

struct SCP_Measures {
    size_t count = 0; // samples that have a value; 0: nothing below means anything
    double min = 0, max = 0, mean = 0, rms = 0;
    double period = 0; // seconds; 0 = fewer than two whole swings
    double duty = 0;   // share of the period above the middle, 0 to 1
};

// Of the samples with from <= x <= to; x rises, NaN in y is skipped.
SCP_Measures SCP_Measure(const std::vector<double> &x, const std::vector<double> &y, double from,
                         double to);

constexpr size_t SCP_SPECTRUM_SAMPLES_MIN = 16;

struct SCP_Spectrum {
    std::vector<double> frequencies; // Hz, from 0 to half the rate
    std::vector<double> amplitudes;  // of a sine of that frequency: half its peak to peak
    double peakHz = 0, peak = 0;     // the strongest line; 0 of a curve that does not move
};

// Of the samples, `rate` a second, without their mean. 0, or -1: fewer than
// SCP_SPECTRUM_SAMPLES_MIN or one that has no value.
int SCP_MakeSpectrum(const std::vector<double> &samples, double rate, SCP_Spectrum *spectrum);

#endif
