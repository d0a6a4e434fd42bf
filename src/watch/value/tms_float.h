// The TMS320's own 32-bit float and IEEE single precision.
#ifndef WATCH_VALUE_TMS_FLOAT_H
#define WATCH_VALUE_TMS_FLOAT_H

#include <cstdint>

// IEEE single (as bits) to the TMS320's float and back. Infinities and NaNs saturate.
uint32_t IEEE_TMS(uint32_t bits);
double TMS_IEEE(uint32_t bits);

#endif
