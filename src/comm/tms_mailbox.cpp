// The order of the words is the protocol: the TMS320 looks at the command only, so address and
// data must have arrived before it.
#include "comm/tms_mailbox.h"

#include "comm/ucm.h"
#include "settings/limits.h"
#include "text/bytes.h"

namespace {

constexpr uint32_t BOX_READ = 1;
constexpr uint32_t BOX_WRITE = 2;

struct BoxWord {
    uint32_t address;
    uint32_t word;
};

int SendWord(int station, const BoxWord &entry)
{
    uint8_t bytes[4];
    TXT_PutLittle(bytes, sizeof bytes, entry.word);
    const int result = UCM_EmuCom166Msg(station, TARGET_WRITE, entry.address, sizeof bytes, bytes);
    return result > 0 ? TMS_OK : TMS_ERR_SEND; // a refused argument is no success either
}

// No pause between the polls: each takes a whole exchange on the line, 20 ms at 19200 baud.
int WaitDone(int station, int maxPolls)
{
    for (int poll = 0; poll < maxPolls; ++poll) {
        // Two bytes though one decides: the station's memory is read by words.
        uint8_t flag[2];
        if (UCM_Read(station, TMS_BOX_COMMAND, sizeof flag, flag) < 0)
            return TMS_ERR_POLL;
        if (flag[0] == 0)
            return TMS_OK;
    }
    return TMS_ERR_BUSY;
}

} // namespace

int TMS_ReadWord(int station, uint32_t address, int maxPolls, uint32_t *value)
{
    if (SendWord(station, {TMS_BOX_ADDRESS, address}) != TMS_OK ||
        SendWord(station, {TMS_BOX_COMMAND, BOX_READ}) != TMS_OK)
        return TMS_ERR_SEND;
    const int result = WaitDone(station, maxPolls);
    if (result != TMS_OK)
        return result;
    uint8_t bytes[4];
    if (UCM_Read(station, TMS_BOX_DATA, sizeof bytes, bytes) < 0)
        return TMS_ERR_DATA;
    *value = static_cast<uint32_t>(TXT_GetLittle(bytes, sizeof bytes));
    return TMS_OK;
}

int TMS_WriteWord(int station, uint32_t address, uint32_t value, uint32_t *failedAt)
{
    const BoxWord entries[] = {
        {TMS_BOX_ADDRESS, address}, {TMS_BOX_DATA, value}, {TMS_BOX_COMMAND, BOX_WRITE}};
    // Ends at the first word that fails: a command behind a lost address would write elsewhere.
    for (const BoxWord &entry : entries) {
        if (SendWord(station, entry) == TMS_OK)
            continue;
        if (failedAt)
            *failedAt = entry.address;
        return TMS_ERR_SEND;
    }
    return WaitDone(station, TMS_POLLS_WRITE);
}

int TMS_ReadWords(int station, uint32_t address, uint32_t count, int maxPolls, uint32_t *words,
                  uint32_t *good, std::string *cause)
{
    cause->clear();
    const UCM_Series series = UCM_MakeSeries(count, [&](uint32_t i) {
        const int result = TMS_ReadWord(station, address + i, maxPolls, &words[i]);
        *cause = TMS_ErrorText(result);
        return result;
    });
    if (good)
        *good = series.good;
    // Every word came, and then the proof failed: no single word is to blame.
    if (series.made == count && series.result < 0) {
        *cause = series.cause;
        return TMS_ERR_PROOF;
    }
    return series.result;
}

int TMS_WriteProven(int station, uint32_t address, uint32_t value, uint32_t *failedAt)
{
    const int result = TMS_WriteWord(station, address, value, failedAt);
    const int proof = result == TMS_OK ? UCM_Prove() : UCM_PROVEN;
    if (proof == UCM_NOT_PROVEN)
        return TMS_ERR_PROOF;
    if (proof == UCM_PROVEN)
        return result;
    // Any of the mailbox's words may not have arrived.
    uint32_t held = 0;
    std::string cause;
    const int read = TMS_ReadWords(station, address, 1, TMS_POLLS_WRITE, &held, nullptr, &cause);
    return read == TMS_OK && held == value ? TMS_OK : TMS_ERR_PROOF;
}

std::string TMS_ErrorText(int result)
{
    return TMS_ErrorText(result, UCM_LastErrorText());
}

std::string TMS_ErrorText(int result, const std::string &cause)
{
    switch (result) {
    case TMS_OK:
        return "";
    case TMS_ERR_BUSY:
        return "the TMS320 does not answer (mailbox busy)";
    case TMS_ERR_PROOF:
        return cause.empty() ? UCM_REPEATED_TEXT : cause;
    default:
        break;
    }
    const std::string where = result == TMS_ERR_SEND   ? "mailbox not writable"
                              : result == TMS_ERR_POLL ? "state of the mailbox not readable"
                                                       : "answer in the mailbox not readable";
    return cause.empty() ? where : where + ": " + cause;
}
