// Reading the value of one watch item: from the C166, or through the mailbox from the
// TMS320, with the reason of a failure kept for the user.
#include "comm/sysaddr.h"
#include "comm/tms_mailbox.h"
#include "comm/ucm.h"
#include "platform/system.h"
#include "settings/settings.h"
#include "watch/list/litem.h"

namespace {

constexpr uint32_t FAILED_VALUE = 0xFFFFFFFF;
const char NOT_RESOLVED[] = "not resolved: no such name in the loaded maps";
const char OUT_OF_RANGE[] = "the address is outside the target's memory";

const LItem *itemAt(int index)
{
    return index >= 0 && index < nLItems ? &aLItems[index] : nullptr;
}

int stationOf(const LItem &item)
{
    return item.station >= 0 && item.station <= STATION_MAX ? item.station : STATION;
}

uint32_t littleEndian(const uint8_t *bytes, int count)
{
    uint32_t value = 0;
    for (int i = 0; i < count; ++i)
        value |= static_cast<uint32_t>(bytes[i]) << 8 * i;
    return value;
}

// The text of a failed read, from the layer that failed.
std::string failureText(const LItem &item, int mailboxResult)
{
    if (item.address == LITEM_NO_ADDRESS)
        return NOT_RESOLVED;
    if (!LIT_HasAddress(item))
        return OUT_OF_RANGE;
    return LIT_IsTMS(item) ? TMS_ErrorText(mailboxResult) : UCM_LastErrorText();
}

int readMailbox(const LItem &item, uint32_t *value)
{
    return TMS_ReadWord(stationOf(item), item.address, TMS_POLLS_ITEM, value);
}

// Reads into the item. 0, or -1 or -2 by processor; *mailboxResult for the reason.
int readInto(LItem *item, int index, int *mailboxResult)
{
    if (!LIT_IsTMS(*item))
        return read166(index, &item->value, &item->valueHigh) == 0 ? 0 : -1;
    if (!LIT_HasAddress(*item))
        return -2;
    *mailboxResult = readMailbox(*item, &item->value);
    return *mailboxResult == TMS_OK ? 0 : -2;
}

} // namespace

int read166(int index, uint32_t *low, uint32_t *high)
{
    const LItem *item = itemAt(index);
    if (!item || !LIT_HasAddress(*item))
        return -2;
    uint8_t bytes[8];
    if (item->size < 1 || item->size > 8 ||
        UCM_Read(stationOf(*item), item->address, static_cast<uint32_t>(item->size), bytes) < 0)
        return -1;
    *low = littleEndian(bytes, item->size < 4 ? item->size : 4);
    *high = item->size == 8 ? littleEndian(bytes + 4, 4) : 0;
    return 0;
}

int readTMS(int index, uint32_t *value)
{
    const LItem *item = itemAt(index);
    if (!item || !LIT_HasAddress(*item))
        return -2;
    const int result = readMailbox(*item, value);
    if (result == TMS_OK)
        return 0;
    return result == TMS_ERR_BUSY ? -2 : -1;
}

int readValues(int index)
{
    if (!itemAt(index))
        return -4;
    LItem &item = aLItems[index];
    item.previousValue = item.value;
    item.previousReadTick = item.readTick;
    item.valueHigh = 0;
    int mailboxResult = TMS_OK;
    const int result = readInto(&item, index, &mailboxResult);
    const uint32_t now = PLT_TickMs();
    const bool isLongAgo = now - item.lastReadMs > UINT16_MAX; // out of view for a while
    item.lastReadMs = now;
    item.readTick = static_cast<uint16_t>(now);
    item.readError = result != 0;
    // A rate needs two good reads within a turn of the tick: equal ticks mark that there is none.
    if (!item.isValueGood || result != 0 || isLongAgo)
        item.previousReadTick = item.readTick;
    item.isValueGood = result == 0;
    if (result == 0) {
        item.reason.clear();
        return 0;
    }
    item.value = FAILED_VALUE;
    item.reason = failureText(item, mailboxResult);
    return result;
}
