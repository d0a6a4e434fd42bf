#include "watch/list/litem.h"

#include "comm/sysaddr.h"
#include "settings/settings.h"
#include "text/words.h"

LItem aLItems[LITEMS_MAX];
int nLItems = 0;
int openLItems = 0;
int readLItems = 0;

namespace {

std::string Bracketed(const LItem &item)
{
    // An item whose address is forgotten for now keeps the one it was given.
    const uint32_t kept = item.address != LITEM_NO_ADDRESS ? item.address : item.givenAddress;
    return TXT_Format("[0x%X]", kept);
}

} // namespace

bool LIT_IsTMS(const LItem &item)
{
    return !item.name.empty() && item.name[0] == '&';
}

bool LIT_IsAnonymous(const LItem &item)
{
    return item.name.empty() || item.name == "&";
}

bool LIT_HasAddress(const LItem &item)
{
    return item.address < ADDR_LIMIT;
}

int LIT_Station(const LItem &item)
{
    // A line may have been written for a station that no target can have.
    return item.station >= 0 && item.station <= STATION_MAX ? item.station : STATION;
}

bool LIT_HasNumber(const LItem &item)
{
    // Equal ticks mark that there was no read before, or that it is too long ago.
    const bool isRateless = item.type == 'p' && item.readTick == item.previousReadTick;
    return item.isValueGood && !isRateless;
}

uint64_t LIT_Bits(const LItem &item)
{
    const uint64_t whole = static_cast<uint64_t>(item.valueHigh) << 32 | item.value;
    // Eight bytes apart: to shift 64 bits by 64 means nothing.
    return item.size >= 8 ? whole : whole & ((uint64_t{1} << 8 * item.size) - 1);
}

int64_t LIT_SignedBits(const LItem &item)
{
    const int unusedBits = 64 - 8 * item.size;
    return static_cast<int64_t>(LIT_Bits(item) << unusedBits) >> unusedBits;
}

std::string LIT_Label(const LItem &item)
{
    // Names come from files: on the screen no character of theirs may steer anything.
    return LIT_IsAnonymous(item) ? item.name + Bracketed(item) : TXT_Visible(item.name);
}

std::string LIT_LabelAndPlace(const LItem &item)
{
    if (LIT_IsAnonymous(item))
        return item.name + Bracketed(item);
    // Saved while no map is loaded, the line must not lose the address it came with.
    const bool isForgotten = item.address == LITEM_NO_ADDRESS;
    if (item.explicitAddress || (isForgotten && item.givenAddress != LITEM_NO_ADDRESS))
        return item.name + ", " + Bracketed(item);
    return item.name;
}
