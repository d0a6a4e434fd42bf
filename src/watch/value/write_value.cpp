// A value is sent once, never repeated by this module: what went wrong on the way may have
// reached the target all the same, and only reading back tells.
#include "watch/value/write_value.h"

#include "comm/sysaddr.h"
#include "comm/tms_mailbox.h"
#include "comm/ucm.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "text/bytes.h"
#include "text/words.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/list/read_item.h"
#include "watch/value/value_types.h"

namespace {

int BytesToWrite(const LItem &item)
{
    const VAL_TypeRow *row = VAL_FindType(item.type);
    return row != nullptr && row->bytesWritten != 0 ? row->bytesWritten : item.size;
}

uint64_t MaskOfWritten(const LItem &item)
{
    return UINT64_MAX >> (64 - 8 * BytesToWrite(item));
}

std::string RangeText(const VAL_TypeRow &row, const LItem &item)
{
    return row.range != nullptr ? row.range : VAL_GetIntegerRange(item);
}

int WriteC166(const LItem &item, uint64_t bits)
{
    uint8_t bytes[8];
    const int count = BytesToWrite(item);
    TXT_PutLittle(bytes, static_cast<size_t>(count), bits);
    const int station = LIT_Station(item);
    if (count == 8)
        return UCM_Write(station, item.address, 8, bytes) < 0 ? VAL_WRITE_ERR_WRITE : VAL_WRITE_OK;
    const int result =
        UCM_EmuCom166Msg(station, TARGET_WRITE, item.address, static_cast<uint16_t>(count), bytes);
    return result > 0 ? VAL_WRITE_OK : VAL_WRITE_ERR_WRITE;
}

// The mailbox moves whole words: the bytes that stay as they are, as a duration's fourth, are read
// first.
int WriteTMS(const LItem &item, uint32_t word, std::string *cause)
{
    const int station = LIT_Station(item);
    const uint32_t mask = static_cast<uint32_t>(MaskOfWritten(item));
    if (mask != UINT32_MAX) {
        uint32_t before = 0;
        if (RFR_ReadTmsWords(station, item.address, 1, &before, cause) != TMS_OK)
            return VAL_WRITE_ERR_WRITE;
        word |= before & ~mask;
    }
    const int result = TMS_WriteWord(station, item.address, word, nullptr);
    *cause = TMS_ErrorText(result);
    return result == TMS_OK ? VAL_WRITE_OK : VAL_WRITE_ERR_WRITE;
}

void SetBits(LItem *item, uint64_t bits)
{
    item->value = static_cast<uint32_t>(bits);
    item->valueHigh = static_cast<uint32_t>(bits >> 32);
}

// Checks the item's place and the text, and sends the value once. What was sent in *bits.
int SendText(const LItem &item, const std::string &text, uint64_t *bits, std::string *message)
{
    if (!LIT_HasAddress(item)) {
        *message = "The value was not written: the item has no address.";
        return VAL_WRITE_ERR_ADDRESS;
    }
    if (!LIT_IsTMS(item) && item.address + static_cast<uint32_t>(BytesToWrite(item)) > ADDR_LIMIT) {
        *message = "The value was not written: its last byte lies beyond the target's memory.";
        return VAL_WRITE_ERR_ADDRESS;
    }
    const int parsed = VAL_ParseFor(item, text, bits, message);
    if (parsed != VAL_WRITE_OK)
        return parsed;
    std::string cause;
    const int result = LIT_IsTMS(item) ? WriteTMS(item, static_cast<uint32_t>(*bits), &cause)
                                       : WriteC166(item, *bits);
    if (result == VAL_WRITE_OK)
        return VAL_WRITE_OK;
    // The mailbox names its own causes; those of a message are the communication layer's.
    if (cause.empty())
        cause = UCM_LastErrorText();
    *message = "The value was not written" + (cause.empty() ? "" : ": " + cause) + ".";
    return result;
}

// The outcome once the item holds what was read back, or why it could not be.
int Compare(const LItem &item, uint64_t bits, bool isRead, const std::string &reason,
            std::string *message)
{
    if (!isRead) {
        *message = "Written, but the target's value could not be read: " + reason + ".";
        return VAL_WRITE_ERR_READ_BACK;
    }
    const std::string held = VAL_GetValueText(item);
    // A byte that was not written is the target's own business.
    if ((LIT_Bits(item) & MaskOfWritten(item)) == bits) {
        *message = "Written. The target holds " + held + ".";
        return VAL_WRITE_OK;
    }
    LItem sent = item;
    SetBits(&sent, bits);
    *message = "Written " + VAL_GetValueText(sent) + ", but the target now holds " + held + ".";
    return VAL_WRITE_DIFFERENT;
}

} // namespace

std::string VAL_GetValueText(const LItem &item)
{
    LItem shown = item;
    if (const VAL_TypeRow *row = VAL_FindType(item.type))
        shown.type = row->writtenAs; // of a rate the value, not how fast it changes
    std::string text;
    FormatLItemVal(&text, shown);
    return TXT_Trim(text);
}

std::string VAL_GetHint(const LItem &item)
{
    const VAL_TypeRow *row = VAL_FindType(item.type);
    return row ? std::string(row->form) + "; " + RangeText(*row, item) : "";
}

int VAL_ParseFor(const LItem &item, const std::string &text, uint64_t *bits, std::string *message)
{
    const VAL_TypeRow *row = VAL_FindType(item.type);
    const std::string value = VAL_NormalText(text);
    const int result = !row || value.empty() ? VAL_WRITE_ERR_TEXT : row->parse(item, value, bits);
    if (result == VAL_WRITE_ERR_RANGE)
        *message = "'" + text + "' is out of range: " + RangeText(*row, item) + ".";
    else if (result == VAL_WRITE_ERR_TEXT)
        *message = "'" + text + "' is not a value of this item: " + VAL_GetHint(item) + ".";
    return result;
}

int VAL_Write(int index, const std::string &text, std::string *message)
{
    if (index < 0 || index >= nLItems) {
        *message = LIT_NO_LINE;
        return VAL_WRITE_ERR_INDEX;
    }
    uint64_t bits = 0;
    const int result = SendText(aLItems[index], text, &bits, message);
    if (result != VAL_WRITE_OK)
        return result;
    const bool isRead = RFR_ReadItemNow(index) == 0;
    if (readLItems)
        LSV_ShowValues();
    return Compare(aLItems[index], bits, isRead, aLItems[index].reason, message);
}

int VAL_ReadUnlisted(LItem *item, std::string *cause)
{
    uint8_t bytes[8] = {};
    uint32_t word = 0;
    const uint32_t size = static_cast<uint32_t>(item->size);
    const int station = LIT_Station(*item);
    const int result = LIT_IsTMS(*item)
                           ? RFR_ReadTmsWords(station, item->address, 1, &word, cause)
                           : RFR_ReadItemBytes(station, item->address, size, bytes, cause);
    item->isValueGood = result == 0;
    if (result != 0)
        return VAL_WRITE_ERR_READ_BACK;
    SetBits(item, LIT_IsTMS(*item) ? word : TXT_GetLittle(bytes, size));
    return VAL_WRITE_OK;
}

int VAL_WriteUnlisted(LItem *item, const std::string &text, std::string *message)
{
    uint64_t bits = 0;
    const int result = SendText(*item, text, &bits, message);
    if (result != VAL_WRITE_OK)
        return result;
    std::string cause;
    const bool isRead = VAL_ReadUnlisted(item, &cause) == VAL_WRITE_OK;
    return Compare(*item, bits, isRead, cause, message);
}
