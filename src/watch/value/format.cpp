// The widths hold the longest number of each size with its sign, so that the values of one
// type stand under one another.
#include "watch/value/format.h"

#include <cstdio>
#include <cstring>

#include "watch/list/litem.h"
#include "watch/value/tms_float.h"

namespace {

constexpr double NO_RATE = -999.0; // two reads within one tick, or only one so far
constexpr uint32_t MINUTES_MASK = 0xFFFFFF;
constexpr unsigned HOUR_MINUTES = 60, DAY_MINUTES = 24 * HOUR_MINUTES;

bool IsWordSize(int size)
{
    return size == 1 || size == 2 || size == 4;
}

int WidthFor(int size, int one, int two, int four)
{
    return size == 1 ? one : size == 2 ? two : four;
}

} // namespace

void VAL_FormatHex(char *text, const LItem &item)
{
    const auto bits = static_cast<unsigned long long>(LIT_Bits(item));
    if (item.size == 8) // the only size without leading zeros
        std::snprintf(text, VAL_TEXT_MAX, "%llXh", bits);
    else if (IsWordSize(item.size))
        std::snprintf(text, VAL_TEXT_MAX, "%0*llXh", 2 * item.size, bits);
}

void VAL_FormatUnsigned(char *text, const LItem &item)
{
    const auto bits = static_cast<unsigned long long>(LIT_Bits(item));
    if (item.size == 8)
        std::snprintf(text, VAL_TEXT_MAX, "%20llu", bits);
    else if (IsWordSize(item.size))
        std::snprintf(text, VAL_TEXT_MAX, "%*llu", WidthFor(item.size, 3, 5, 10), bits);
}

void VAL_FormatSigned(char *text, const LItem &item)
{
    if (item.size != 8 && !IsWordSize(item.size))
        return;
    const auto number = static_cast<long long>(LIT_SignedBits(item));
    if (item.size == 8)
        std::snprintf(text, VAL_TEXT_MAX, "%21lld", number);
    else
        std::snprintf(text, VAL_TEXT_MAX, "%*lld", WidthFor(item.size, 4, 6, 11), number);
}

double VAL_FloatOf(const LItem &item)
{
    if (LIT_IsTMS(item))
        return TMS_IEEE(item.value);
    float number;
    std::memcpy(&number, &item.value, sizeof number);
    return static_cast<double>(number);
}

void VAL_FormatFloat(char *text, const LItem &item)
{
    if (item.size == 4)
        std::snprintf(text, VAL_TEXT_MAX, "%g", VAL_FloatOf(item));
}

void VAL_FormatBits(char *text, const LItem &item)
{
    if (item.size != 1)
        return;
    for (int bit = 7; bit >= 0; --bit) {
        *text++ = (item.value >> bit & 1) ? '1' : '0';
        if (bit == 4)
            *text++ = ' ';
    }
    std::strcpy(text, " b");
}

void VAL_FormatDuration(char *text, const LItem &item)
{
    if (item.size != 4)
        return;
    const unsigned minutes = item.value & MINUTES_MASK; // the top byte is no part of it
    std::snprintf(text, VAL_TEXT_MAX, "%02ud %02uh %02um", minutes / DAY_MINUTES,
                  minutes / HOUR_MINUTES % 24, minutes % HOUR_MINUTES);
}

void VAL_FormatRate(char *text, const LItem &item)
{
    if (item.size != 8 && !IsWordSize(item.size))
        return;
    // Sixteen bits of the tick: what lies a turn (65 s) or more back has no rate.
    const uint16_t elapsedMs = static_cast<uint16_t>(item.readTick - item.previousReadTick);
    // A counter that has run over counts on: the difference within its own size. Eight bytes
    // have none, for only the lower half of the value before is kept.
    const int unusedBits = item.size == 8 ? 0 : 32 - 8 * item.size;
    const uint32_t change = item.size == 8 ? 0 : item.value - item.previousValue;
    const uint32_t delta = (change << unusedBits) >> unusedBits;
    const double rate = elapsedMs == 0 ? NO_RATE : delta * 1000.0 / elapsedMs;
    std::snprintf(text, VAL_TEXT_MAX, "%10.3f Hz", rate);
}
