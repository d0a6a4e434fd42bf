#include "comm/tms_mailbox.h"

#include "comm/ucm.h"
#include "settings/settings.h"

namespace {

constexpr int MSG_WRITE = 8;
constexpr uint32_t COMMAND_READ = 1;
constexpr uint32_t COMMAND_WRITE = 2;

struct BoxWord {
    uint32_t address;
    uint32_t word;
};

int sendWord(int station, const BoxWord &entry)
{
    const uint8_t bytes[4] = {
        static_cast<uint8_t>(entry.word), static_cast<uint8_t>(entry.word >> 8),
        static_cast<uint8_t>(entry.word >> 16), static_cast<uint8_t>(entry.word >> 24)};
    const int result = UCM_EmuCom166Msg(station, MSG_WRITE, entry.address, sizeof bytes, bytes);
    return result > 0 ? TMS_OK : TMS_ERR_SEND; // a refused argument is no success either
}

int waitDone(int maxPolls)
{
    for (int poll = 0; poll < maxPolls; ++poll) {
        uint8_t flag[2];
        if (UCM_Read(STATION, TMS_BOX_COMMAND, sizeof flag, flag) < 0)
            return TMS_ERR_POLL;
        if (flag[0] == 0)
            return TMS_OK;
    }
    return TMS_ERR_BUSY;
}

} // namespace

int TMS_ReadWord(int station, uint32_t address, int maxPolls, uint32_t *value)
{
    if (sendWord(station, {TMS_BOX_ADDRESS, address}) != TMS_OK ||
        sendWord(station, {TMS_BOX_COMMAND, COMMAND_READ}) != TMS_OK)
        return TMS_ERR_SEND;
    const int result = waitDone(maxPolls);
    if (result != TMS_OK)
        return result;
    uint8_t bytes[4];
    if (UCM_Read(STATION, TMS_BOX_DATA, sizeof bytes, bytes) < 0)
        return TMS_ERR_DATA;
    *value = bytes[0] | static_cast<uint32_t>(bytes[1]) << 8 |
             static_cast<uint32_t>(bytes[2]) << 16 | static_cast<uint32_t>(bytes[3]) << 24;
    return TMS_OK;
}

int TMS_WriteWord(uint32_t address, uint32_t value, uint32_t *failedAt)
{
    const BoxWord entries[] = {
        {TMS_BOX_ADDRESS, address}, {TMS_BOX_DATA, value}, {TMS_BOX_COMMAND, COMMAND_WRITE}};
    for (const BoxWord &entry : entries) {
        if (sendWord(STATION, entry) == TMS_OK)
            continue;
        if (failedAt)
            *failedAt = entry.address;
        return TMS_ERR_SEND;
    }
    return waitDone(TMS_POLLS_WRITE);
}

std::string TMS_ErrorText(int result)
{
    if (result == TMS_OK)
        return "";
    if (result == TMS_ERR_BUSY)
        return "the TMS320 does not answer (mailbox busy)";
    const std::string cause = UCM_LastErrorText();
    const std::string where = result == TMS_ERR_SEND   ? "mailbox not writable"
                              : result == TMS_ERR_POLL ? "state of the mailbox not readable"
                                                       : "answer in the mailbox not readable";
    return cause.empty() ? where : where + ": " + cause;
}
