// The TMS320's own 32-bit float and IEEE single precision.
#ifndef WATCH_VALUE_TMS_FLOAT_H
#define WATCH_VALUE_TMS_FLOAT_H

#include <cstdint>

// IEEE single (as bits) to the TMS320's float. Infinities and NaNs become its largest number, a
// negative NaN its lowest.
uint32_t IEEE_TMS(uint32_t bits);
// The number of a TMS320's float; its exponent -128 is zero whatever the mantissa says.
double TMS_IEEE(uint32_t bits);

#endif
