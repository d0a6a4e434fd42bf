// Curves of millions of samples made small enough to be drawn at once: for each column of
// pixels the lowest and highest value. Blocks of samples are looked through once, when the
// curve comes; knows nothing of how it is drawn.
#ifndef RUNTIME_PLOT_THIN_H
#define RUNTIME_PLOT_THIN_H

#include "runtime/userint.h"

constexpr size_t PLOT_BLOCK_SAMPLES = 32;

struct PLOT_ThinCurve {
    UI_Samples x, y;
    std::vector<double> low, high; // of each block; low > high where all are gaps
};

// What one column of pixels shows; a column without samples is left out.
struct PLOT_Column {
    int pixel = 0;
    double low = 0, high = 0;   // of the samples in it
    double first = 0, last = 0; // NaN at a gap: the line breaks there
};

PLOT_ThinCurve PLOT_MakeThinCurve(const UI_Samples &x, const UI_Samples &y);
// Samples with xMin <= x <= xMax as first and end, and one more on each side where there is
// one: the line to it is in view.
void PLOT_FindSample(const PLOT_ThinCurve &curve, double xMin, double xMax, size_t *first,
                     size_t *end);
// By rising pixel from 0 to pixels - 1; a column of gaps alone has low > high.
void PLOT_ThinOut(const PLOT_ThinCurve &curve, double xMin, double xMax, int pixels,
                  std::vector<PLOT_Column> *columns);

#endif
