// The TMS320's own 32-bit float: an 8-bit two's-complement exponent, a sign and a 23-bit
// fraction of a two's-complement mantissa with an implied leading bit.
#include "watch/value/tms_float.h"

#include <cstring>

namespace {

constexpr uint32_t FRACTION_MASK = 0x7FFFFF;
constexpr uint32_t SIGN_BIT = 0x800000; // of the TMS320 form
constexpr uint32_t MANTISSA_MASK = 0xFFFFFF;
constexpr uint32_t TMS_ZERO = 0x80000000;
constexpr uint32_t TMS_LARGEST = 0x7F7FFFFF;
constexpr uint32_t TMS_LOWEST = 0x7F800000;
constexpr int IEEE_BIAS = 127;
constexpr uint32_t IEEE_SPECIAL = 255; // exponent of infinities and NaNs

} // namespace

uint32_t IEEE_TMS(uint32_t bits)
{
    const bool isNegative = bits >> 31;
    const uint32_t exponent = bits >> 23 & 0xFF;
    const uint32_t fraction = bits & FRACTION_MASK;
    if ((bits & 0x7FFFFFFF) == 0)
        return TMS_ZERO;
    if (exponent == IEEE_SPECIAL)
        return fraction != 0 && isNegative ? TMS_LOWEST : TMS_LARGEST;
    uint32_t tmsExponent = exponent - IEEE_BIAS;
    uint32_t mantissa = fraction;
    if (isNegative && fraction == 0) {
        // A power of two: -1.0 x 2^e is -2.0 x 2^(e-1), the lowest mantissa.
        tmsExponent -= 1;
        mantissa = SIGN_BIT;
    } else if (isNegative) {
        mantissa = (0u - fraction) & MANTISSA_MASK;
    }
    return tmsExponent << 24 | mantissa;
}

double TMS_IEEE(uint32_t bits)
{
    if (bits >> 24 == 0x80)
        return 0.0;
    // The zero exponent is the only one that would give an infinity's here.
    uint32_t exponent = ((bits >> 24) + IEEE_BIAS) & 0xFF;
    uint32_t fraction = bits & FRACTION_MASK;
    const bool isNegative = bits & SIGN_BIT;
    if (isNegative) {
        fraction = (~fraction & FRACTION_MASK) + 1;
        exponent += fraction >> 23; // the carry of a zero fraction
        fraction &= FRACTION_MASK;
    }
    const uint32_t ieee = static_cast<uint32_t>(isNegative) << 31 | exponent << 23 | fraction;
    float number;
    std::memcpy(&number, &ieee, sizeof number);
    return static_cast<double>(number);
}
