#include "watch/value/value_forms.h"

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "watch/list/litem.h"
#include "watch/value/tms_float.h"
#include "watch/value/value_types.h"

namespace {

constexpr const char *NO_VALUE = "-";
constexpr int BITS_PER_LINE = 32;

int64_t SignedOf(const LItem &item)
{
    const int unused = 64 - 8 * item.size;
    return static_cast<int64_t>(LIT_Bits(item) << unused) >> unused;
}

double FloatOf(const LItem &item)
{
    if (LIT_IsTMS(item))
        return TMS_IEEE(item.value);
    float number;
    std::memcpy(&number, &item.value, sizeof number);
    return static_cast<double>(number);
}

} // namespace

std::string VFM_Float(const LItem &item)
{
    if (!item.isValueGood || item.size != 4)
        return NO_VALUE;
    char text[40];
    std::snprintf(text, sizeof text, "%.9g", FloatOf(item)); // every single has its own text
    return text;
}

std::string VFM_Decimal(const LItem &item)
{
    if (!item.isValueGood)
        return NO_VALUE;
    const VTY_Row *row = VTY_Find(item.type);
    if (row != nullptr && row->plainForm == 'f')
        return VFM_Float(item);
    return row != nullptr && row->plainForm == 'i' ? std::to_string(SignedOf(item))
                                                   : std::to_string(LIT_Bits(item));
}

std::string VFM_Hex(const LItem &item)
{
    if (!item.isValueGood)
        return NO_VALUE;
    char text[24];
    std::snprintf(text, sizeof text, "0x%0*" PRIX64, 2 * item.size, LIT_Bits(item));
    return text;
}

std::string VFM_Binary(const LItem &item)
{
    if (!item.isValueGood)
        return NO_VALUE;
    std::string text;
    for (int bit = 8 * item.size - 1; bit >= 0; --bit) {
        text += (LIT_Bits(item) >> bit & 1) != 0 ? '1' : '0';
        if (bit != 0 && bit % 4 == 0)
            text += bit % BITS_PER_LINE == 0 ? '\n' : ' ';
    }
    return text;
}
