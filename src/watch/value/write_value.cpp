#include "watch/value/write_value.h"

#include "comm/sysaddr.h"
#include "comm/tms_mailbox.h"
#include "comm/ucm.h"
#include "settings/settings.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/list/refresh.h"

namespace {

constexpr int MSG_WRITE = 8;
constexpr uint32_t MINUTES_MASK = 0xFFFFFF;
constexpr int MINUTES_BYTES = 3;

// Bytes to send: the high byte of a duration is none of its minutes and stays as it is.
int bytesToWrite(const LItem &item)
{
    return item.type == 't' ? MINUTES_BYTES : item.size;
}

int writeC166(const LItem &item, uint64_t bits)
{
    uint8_t bytes[8];
    const int count = bytesToWrite(item);
    for (int i = 0; i < count; ++i)
        bytes[i] = static_cast<uint8_t>(bits >> 8 * i);
    const bool hasStation = item.station >= 0 && item.station <= STATION_MAX;
    const int station = hasStation ? item.station : STATION;
    if (count == 8)
        return UCM_Write(station, item.address, 8, bytes) < 0 ? WRV_ERR_WRITE : WRV_OK;
    const int result =
        UCM_EmuCom166Msg(station, MSG_WRITE, item.address, static_cast<uint16_t>(count), bytes);
    return result > 0 ? WRV_OK : WRV_ERR_WRITE;
}

// The mailbox moves whole words: the high byte of a duration is read first.
int writeTMS(const LItem &item, uint32_t word, std::string *cause)
{
    if (item.type == 't') {
        uint32_t before = 0;
        const int result = TMS_ReadWord(STATION, item.address, TMS_POLLS_MEMORY, &before);
        *cause = TMS_ErrorText(result);
        if (result != TMS_OK)
            return WRV_ERR_WRITE;
        word |= before & ~MINUTES_MASK;
    }
    const int result = TMS_WriteWord(item.address, word, nullptr);
    *cause = TMS_ErrorText(result);
    return result == TMS_OK ? WRV_OK : WRV_ERR_WRITE;
}

int writeBits(const LItem &item, uint64_t bits, std::string *message)
{
    std::string cause;
    const int result = LIT_IsTMS(item) ? writeTMS(item, static_cast<uint32_t>(bits), &cause)
                                       : writeC166(item, bits);
    if (result == WRV_OK)
        return WRV_OK;
    if (cause.empty())
        cause = UCM_LastErrorText();
    *message = "The value was not written" + (cause.empty() ? "" : ": " + cause) + ".";
    return result;
}

std::string heldText(const LItem &item)
{
    LItem shown = item;
    if (shown.type == 'p')
        shown.type = 'u'; // what was written, not how fast it changes
    std::string text;
    FormatLItemVal(&text, shown);
    const size_t begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? "" : text.substr(begin);
}

// Whether the value just read is the one that was written.
bool isHeld(const LItem &item, uint64_t bits)
{
    uint64_t held = static_cast<uint64_t>(item.valueHigh) << 32 | item.value;
    if (item.type == 't')
        held &= MINUTES_MASK;
    return held == bits;
}

} // namespace

int WRV_Write(int index, const std::string &text, std::string *message)
{
    if (index < 0 || index >= nLItems) {
        *message = "There is no such line in the watch list.";
        return WRV_ERR_INDEX;
    }
    const LItem &item = aLItems[index];
    if (!LIT_HasAddress(item)) {
        *message = "The value was not written: the item has no address.";
        return WRV_ERR_ADDRESS;
    }
    uint64_t bits = 0;
    int result = WRV_Parse(item, text, &bits, message);
    if (result == WRV_OK)
        result = writeBits(item, bits, message);
    if (result != WRV_OK)
        return result;
    const int readResult = readValues(index);
    if (readLItems)
        LSV_ShowValues();
    if (readResult != 0) {
        *message = "Written, but the target's value could not be read: " + item.reason + ".";
        return WRV_ERR_READ_BACK;
    }
    const bool isSame = isHeld(item, bits);
    *message = (isSame ? "Written. The target holds " : "Written, but the target now holds ") +
               heldText(item) + ".";
    return isSame ? WRV_OK : WRV_DIFFERENT;
}
