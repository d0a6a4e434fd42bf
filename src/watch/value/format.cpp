// The text of one value, by the item's type letter and size.
#include <cstdio>
#include <cstring>

#include "watch/list/litem.h"
#include "watch/list/refresh.h"

namespace {

constexpr size_t TEXT_MAX = 48;
constexpr double NO_RATE = -999.0;

uint64_t wholeValue(const LItem &item)
{
    return static_cast<uint64_t>(item.valueHigh) << 32 | item.value;
}

uint32_t maskOf(int size)
{
    return size == 4 ? 0xFFFFFFFFu : (1u << 8 * size) - 1;
}

bool isWordSize(int size)
{
    return size == 1 || size == 2 || size == 4;
}

int32_t signExtended(uint32_t value, int size)
{
    if (size == 1)
        return static_cast<int8_t>(value);
    if (size == 2)
        return static_cast<int16_t>(value);
    return static_cast<int32_t>(value);
}

int widthFor(int size, int one, int two, int four)
{
    return size == 1 ? one : size == 2 ? two : four;
}

void formatHex(char *text, const LItem &item)
{
    if (item.size == 8)
        std::snprintf(text, TEXT_MAX, "%llXh", static_cast<unsigned long long>(wholeValue(item)));
    else if (isWordSize(item.size))
        std::snprintf(text, TEXT_MAX, "%0*Xh", 2 * item.size, item.value & maskOf(item.size));
}

void formatUnsigned(char *text, const LItem &item)
{
    if (item.size == 8)
        std::snprintf(text, TEXT_MAX, "%20llu", static_cast<unsigned long long>(wholeValue(item)));
    else if (isWordSize(item.size))
        std::snprintf(text, TEXT_MAX, "%*u", widthFor(item.size, 3, 5, 10),
                      item.value & maskOf(item.size));
}

void formatSigned(char *text, const LItem &item)
{
    if (item.size == 8)
        std::snprintf(text, TEXT_MAX, "%21lld", static_cast<long long>(wholeValue(item)));
    else if (isWordSize(item.size))
        std::snprintf(text, TEXT_MAX, "%*d", widthFor(item.size, 4, 6, 11),
                      signExtended(item.value, item.size));
}

void formatFloat(char *text, const LItem &item)
{
    if (item.size != 4)
        return;
    float number;
    std::memcpy(&number, &item.value, sizeof number);
    std::snprintf(text, TEXT_MAX, "%g",
                  LIT_IsTMS(item) ? TMS_IEEE(item.value) : static_cast<double>(number));
}

void formatBits(char *text, const LItem &item)
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

void formatDuration(char *text, const LItem &item)
{
    if (item.size != 4)
        return;
    const unsigned minutes = item.value & 0xFFFFFFu;
    std::snprintf(text, TEXT_MAX, "%02ud %02uh %02um", minutes / (24 * 60), minutes / 60 % 24,
                  minutes % 60);
}

void formatRate(char *text, const LItem &item)
{
    if (item.size != 8 && !isWordSize(item.size))
        return;
    const uint16_t elapsedMs = static_cast<uint16_t>(item.readTick - item.previousReadTick);
    const uint32_t delta =
        item.size == 8 ? 0 : (item.value - item.previousValue) & maskOf(item.size);
    const double rate = elapsedMs == 0 ? NO_RATE : delta * 1000.0 / elapsedMs;
    std::snprintf(text, TEXT_MAX, "%10.3f Hz", rate);
}

struct FormatRow {
    char type;
    void (*format)(char *text, const LItem &item); // at most TEXT_MAX with the NUL
};
const FormatRow formats[] = {
    {'x', formatHex},  {'u', formatUnsigned}, {'i', formatSigned}, {'f', formatFloat},
    {'b', formatBits}, {'t', formatDuration}, {'p', formatRate},
};

} // namespace

int FormatLItemVal(std::string *text, const LItem &item)
{
    char buffer[TEXT_MAX] = "";
    for (const FormatRow &row : formats) {
        if (row.type == item.type)
            row.format(buffer, item);
    }
    *text += buffer;
    return static_cast<int>(std::strlen(buffer));
}
