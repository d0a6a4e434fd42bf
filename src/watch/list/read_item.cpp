// A good read stays in the item's `held` until the line is proven (RFR_ProveSweep publishes it); a
// failed one is shown at once, with the reason of the layer that failed.
#include "watch/list/read_item.h"

#include <algorithm>

#include "comm/grouping.h"
#include "comm/sysaddr.h"
#include "comm/tms_mailbox.h"
#include "comm/ucm.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/bytes.h"
#include "watch/list/age.h"
#include "watch/list/litem.h"

namespace {

constexpr uint32_t FAILED_VALUE = 0xFFFFFFFF; // what an item holds after a failed read
constexpr int ROUNDS_MAX = 3;                 // reads of the same thing before giving up
constexpr int ITEMS_PER_PROOF = 32;           // of a read of the whole list: about a second's worth
const char OUT_OF_RANGE[] = "the address is outside the target's memory";

// A block that was refused may hold a byte that cannot be read: for a while nothing is read
// together then.
constexpr uint32_t APART_MS = 10000;
bool isApart = false;
uint32_t apartSinceMs = 0;

uint32_t doubtsBefore = 0; // UCM_CountDoubts when the oldest held reading was made

LItem *ItemAt(int index)
{
    return index >= 0 && index < nLItems ? &aLItems[index] : nullptr;
}

int ReadMailbox(const LItem &item, uint32_t *value)
{
    return TMS_ReadWord(LIT_Station(item), item.address, TMS_POLLS_ITEM, value);
}

// The little-endian bytes of a value of 1 to 8 bytes.
void SplitValue(const uint8_t *bytes, int size, uint32_t *low, uint32_t *high)
{
    const size_t lowBytes = size < 4 ? static_cast<size_t>(size) : 4;
    *low = static_cast<uint32_t>(TXT_GetLittle(bytes, lowBytes));
    *high = size == 8 ? static_cast<uint32_t>(TXT_GetLittle(bytes + 4, 4)) : 0;
}

// 0, or -1 or -2 by processor with the reason, from the layer that failed.
int ReadInto(LItemReading *reading, int index, std::string *reason)
{
    const LItem &item = aLItems[index];
    const bool isTMS = LIT_IsTMS(item);
    if (!LIT_HasAddress(item)) {
        *reason = item.address == LITEM_NO_ADDRESS ? RFR_NOT_RESOLVED : OUT_OF_RANGE;
        return isTMS ? -2 : -1;
    }
    if (isTMS) {
        const int result = ReadMailbox(item, &reading->value);
        if (result != TMS_OK)
            *reason = TMS_ErrorText(result);
        return result == TMS_OK ? 0 : -2;
    }
    if (read166(index, &reading->value, &reading->valueHigh) == 0)
        return 0;
    *reason = UCM_LastErrorText();
    return -1;
}

// A rate needs two good reads within a turn of the 16-bit tick: equal ticks mark that
// there is none.
void SetTicks(LItem *item, uint32_t nowMs, bool isGood)
{
    const bool isLongAgo = nowMs - item->lastReadMs > UINT16_MAX; // out of view for a while
    item->previousReadTick = item->readTick;
    item->lastReadMs = nowMs;
    item->readTick = static_cast<uint16_t>(nowMs);
    if (!item->isValueGood || !isGood || isLongAgo)
        item->previousReadTick = item->readTick;
}

void Publish(LItem *item)
{
    item->previousValue = item->value;
    item->value = item->held.value;
    item->valueHigh = item->held.valueHigh;
    SetTicks(item, item->held.tickMs, true);
    item->readError = 0;
    item->isValueGood = true;
    item->isHeld = false;
    item->reason.clear();
    ++item->goodReads;
    RFR_StampAge(item, item->held.station);
}

void Fail(LItem *item, uint32_t nowMs, const std::string &reason)
{
    item->previousValue = item->value;
    item->value = FAILED_VALUE;
    item->valueHigh = 0;
    SetTicks(item, nowMs, false);
    item->readError = 1;
    item->isValueGood = false;
    item->isHeld = false;
    item->reason = reason;
}

std::vector<int> HeldItems()
{
    std::vector<int> held;
    for (int i = 0; i < nLItems; ++i)
        if (aLItems[i].isHeld)
            held.push_back(i);
    return held;
}

} // namespace

int read166(int index, uint32_t *low, uint32_t *high)
{
    const LItem *item = ItemAt(index);
    if (!item || !LIT_HasAddress(*item))
        return -2;
    uint8_t bytes[8];
    if (item->size < 1 || item->size > 8 ||
        UCM_Read(LIT_Station(*item), item->address, static_cast<uint32_t>(item->size), bytes) < 0)
        return -1;
    SplitValue(bytes, item->size, low, high);
    return 0;
}

int readTMS(int index, uint32_t *value)
{
    const LItem *item = ItemAt(index);
    if (!item || !LIT_HasAddress(*item))
        return -2;
    const int result = ReadMailbox(*item, value);
    if (result == TMS_OK)
        return 0;
    return result == TMS_ERR_BUSY ? -2 : -1;
}

int readValues(int index)
{
    LItem *item = ItemAt(index);
    if (item == nullptr)
        return -4;
    if (HeldItems().empty())
        doubtsBefore = UCM_CountDoubts();
    LItemReading reading;
    std::string reason;
    reading.station = LIT_Station(*item);
    const int result = ReadInto(&reading, index, &reason);
    reading.tickMs = PLT_TickMs();
    // Without an address nothing was asked, so nothing was broken off either.
    if (result != 0 && LIT_HasAddress(*item) && IsBreakWished()) {
        item->isHeld = false;
        return RFR_BROKEN_OFF;
    }
    if (result != 0) {
        Fail(item, reading.tickMs, reason);
        return result;
    }
    item->held = reading;
    item->isHeld = true;
    return 0;
}

std::vector<std::vector<int>> RFR_PlanItemBlocks(int from, int end)
{
    isApart = isApart && PLT_TickMs() - apartSinceMs < APART_MS;
    std::vector<std::vector<int>> blocks;
    std::vector<UCM_BlockItem> together;
    std::vector<int> indices;
    for (int i = from; i < end; ++i) {
        const LItem &item = aLItems[i];
        if (isApart || LIT_IsTMS(item) || !LIT_HasAddress(item)) {
            blocks.push_back({i});
            continue;
        }
        together.push_back({LIT_Station(item), item.address, static_cast<uint32_t>(item.size)});
        indices.push_back(i);
    }
    const UCM_WireCosts wire = UCM_ReadWire(VR_nProtocol);
    for (const UCM_Block &block : UCM_PlanBlocks(together, wire, UCM_ReadRules(Procesor))) {
        blocks.emplace_back();
        for (const size_t i : block.items)
            blocks.back().push_back(indices[i]);
        std::sort(blocks.back().begin(), blocks.back().end());
    }
    // In the order of the list, as one looks at it.
    std::sort(blocks.begin(), blocks.end());
    return blocks;
}

int RFR_ReadItemBlock(const std::vector<int> &indices)
{
    if (indices.size() == 1)
        return readValues(indices[0]);
    uint32_t begin = UINT32_MAX, end = 0;
    for (const int index : indices) {
        const LItem &item = aLItems[index];
        begin = std::min(begin, item.address);
        end = std::max(end, item.address + static_cast<uint32_t>(item.size));
    }
    if (IsWordAddressing(Procesor)) { // words stay whole
        begin -= begin % 2;
        end += end % 2;
    }
    if (HeldItems().empty())
        doubtsBefore = UCM_CountDoubts();
    LItemReading reading;
    reading.station = LIT_Station(aLItems[indices[0]]);
    std::vector<uint8_t> bytes(end - begin);
    UCM_Statistics before;
    UCM_GetStatistics(&before);
    const int result = UCM_Read(reading.station, begin, end - begin, bytes.data());
    reading.tickMs = PLT_TickMs();
    // Refused is refused as a whole: one byte in it may be to blame, and the others shall show.
    if (result < 0 && UCM_CauseSince(before) == UCM_CAUSE_REFUSED) {
        isApart = true;
        apartSinceMs = reading.tickMs;
        int first = 0;
        for (const int index : indices) {
            const int single = readValues(index);
            first = first != 0 ? first : single;
        }
        return first;
    }
    for (const int index : indices) {
        LItem *item = &aLItems[index];
        if (result < 0) {
            Fail(item, reading.tickMs, UCM_LastErrorText());
            continue;
        }
        SplitValue(&bytes[item->address - begin], item->size, &reading.value, &reading.valueHigh);
        item->held = reading;
        item->isHeld = true;
    }
    return result < 0 ? -1 : 0;
}

std::vector<int> RFR_ProveSweep()
{
    std::vector<int> failed;
    int result = UCM_PROVEN;
    for (int round = 0; round < ROUNDS_MAX; ++round) {
        const std::vector<int> held = HeldItems();
        if (held.empty())
            return failed;
        // Others may have asked since the oldest held reading: what they were told to read
        // again concerns that reading too.
        result = UCM_Prove();
        if (result == UCM_PROVEN && UCM_CountDoubts() != doubtsBefore)
            result = UCM_READ_AGAIN;
        doubtsBefore = UCM_CountDoubts();
        if (result == UCM_PROVEN) {
            for (const int index : held)
                Publish(&aLItems[index]);
            return failed;
        }
        if (result == UCM_NOT_PROVEN && IsBreakWished()) {
            RFR_DropHeld(); // broken off is not failed: the items stay as they were
            return failed;
        }
        if (result == UCM_NOT_PROVEN)
            break;
        for (const int index : held)
            if (const int read = readValues(index); read != 0 && read != RFR_BROKEN_OFF)
                failed.push_back(index);
    }
    // A line that mixes up answers time and again, or one that gave no proof at all.
    const std::string reason = result == UCM_READ_AGAIN ? UCM_REPEATED_TEXT : UCM_LastErrorText();
    for (const int index : HeldItems()) {
        Fail(&aLItems[index], PLT_TickMs(), reason);
        failed.push_back(index);
    }
    return failed;
}

int RFR_ReadItemNow(int index)
{
    const int result = readValues(index);
    if (result != 0 && result != RFR_BROKEN_OFF)
        return result;
    // The proof is one for all that is held, and may fail this item among others.
    LItem *item = &aLItems[index];
    const uint32_t goodBefore = item->goodReads;
    RFR_ProveSweep();
    if (!item->readError && item->goodReads != goodBefore)
        return 0;
    if (item->goodReads == goodBefore && IsBreakWished()) // who asks for one item is told
        Fail(item, PLT_TickMs(), RFR_CANCELLED);
    return LIT_IsTMS(aLItems[index]) ? -2 : -1;
}

int RFR_ReadItemBytes(int station, uint32_t address, uint32_t count, void *buffer,
                      std::string *cause)
{
    const int result = UCM_ReadProven(station, address, count, buffer);
    // At once: the next exchange of anybody has a text of its own.
    *cause = result < 0 ? UCM_LastErrorText() : "";
    return result < 0 ? -1 : 0;
}

int RFR_ReadTmsWords(int station, uint32_t address, uint32_t count, uint32_t *words,
                     std::string *cause)
{
    return TMS_ReadWords(station, address, count, TMS_POLLS_MEMORY, words, nullptr, cause);
}

void RFR_DropHeld()
{
    for (LItem &item : aLItems)
        item.isHeld = false;
}

int RFR_ReadAllItems(bool (*advance)(int index))
{
    for (int i = 0; i < nLItems; ++i) {
        const bool isEnded = advance != nullptr && !advance(i);
        if (isEnded || readValues(i) == RFR_BROKEN_OFF) {
            RFR_ProveSweep(); // of those before it
            return -1;
        }
        if (i % ITEMS_PER_PROOF == ITEMS_PER_PROOF - 1)
            RFR_ProveSweep();
    }
    RFR_ProveSweep();
    return 0;
}
