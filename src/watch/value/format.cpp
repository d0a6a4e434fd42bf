// The text of one value, by the item's type letter and size.
#include "watch/value/format.h"

#include <cstdio>
#include <cstring>

#include "watch/list/litem.h"
#include "watch/value/tms_float.h"

namespace {

constexpr double NO_RATE = -999.0;

uint64_t WholeValue(const LItem &item)
{
    return static_cast<uint64_t>(item.valueHigh) << 32 | item.value;
}

uint32_t MaskOf(int size)
{
    return size == 4 ? 0xFFFFFFFFu : (1u << 8 * size) - 1;
}

bool IsWordSize(int size)
{
    return size == 1 || size == 2 || size == 4;
}

int32_t SignExtended(uint32_t value, int size)
{
    if (size == 1)
        return static_cast<int8_t>(value);
    if (size == 2)
        return static_cast<int16_t>(value);
    return static_cast<int32_t>(value);
}

int WidthFor(int size, int one, int two, int four)
{
    return size == 1 ? one : size == 2 ? two : four;
}

} // namespace

void FMT_Hex(char *text, const LItem &item)
{
    if (item.size == 8)
        std::snprintf(text, FMT_TEXT_MAX, "%llXh",
                      static_cast<unsigned long long>(WholeValue(item)));
    else if (IsWordSize(item.size))
        std::snprintf(text, FMT_TEXT_MAX, "%0*Xh", 2 * item.size, item.value & MaskOf(item.size));
}

void FMT_Unsigned(char *text, const LItem &item)
{
    if (item.size == 8)
        std::snprintf(text, FMT_TEXT_MAX, "%20llu",
                      static_cast<unsigned long long>(WholeValue(item)));
    else if (IsWordSize(item.size))
        std::snprintf(text, FMT_TEXT_MAX, "%*u", WidthFor(item.size, 3, 5, 10),
                      item.value & MaskOf(item.size));
}

void FMT_Signed(char *text, const LItem &item)
{
    if (item.size == 8)
        std::snprintf(text, FMT_TEXT_MAX, "%21lld", static_cast<long long>(WholeValue(item)));
    else if (IsWordSize(item.size))
        std::snprintf(text, FMT_TEXT_MAX, "%*d", WidthFor(item.size, 4, 6, 11),
                      SignExtended(item.value, item.size));
}

void FMT_Float(char *text, const LItem &item)
{
    if (item.size != 4)
        return;
    float number;
    std::memcpy(&number, &item.value, sizeof number);
    std::snprintf(text, FMT_TEXT_MAX, "%g",
                  LIT_IsTMS(item) ? TMS_IEEE(item.value) : static_cast<double>(number));
}

void FMT_Bits(char *text, const LItem &item)
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

void FMT_Duration(char *text, const LItem &item)
{
    if (item.size != 4)
        return;
    const unsigned minutes = item.value & 0xFFFFFFu;
    std::snprintf(text, FMT_TEXT_MAX, "%02ud %02uh %02um", minutes / (24 * 60), minutes / 60 % 24,
                  minutes % 60);
}

void FMT_Rate(char *text, const LItem &item)
{
    if (item.size != 8 && !IsWordSize(item.size))
        return;
    const uint16_t elapsedMs = static_cast<uint16_t>(item.readTick - item.previousReadTick);
    const uint32_t delta =
        item.size == 8 ? 0 : (item.value - item.previousValue) & MaskOf(item.size);
    const double rate = elapsedMs == 0 ? NO_RATE : delta * 1000.0 / elapsedMs;
    std::snprintf(text, FMT_TEXT_MAX, "%10.3f Hz", rate);
}
