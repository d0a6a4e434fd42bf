// The mailbox of a TMS320 behind a station that answers anything: every result and every byte
// of an answer comes from the input. A word counts as read only when the mailbox said that
// it was done and the word itself arrived, and no station keeps the program waiting.
#include "comm/tms_mailbox.h"
#include "comm/ucm.h"
#include "fuzz_check.h"
#include "settings/settings.h"

// Stands in for the settings and the link.
int32_t STATION = 3;

namespace {

const unsigned char *input;
size_t left;
int exchanges;
bool isDone;      // the mailbox has said so since the command was sent
uint32_t fetched; // the last data word that arrived
bool isFetched;

int Next()
{
    if (left == 0)
        return 0;
    --left;
    return *input++;
}

} // namespace

int UCM_Read(int, uint32_t address, uint32_t count, void *buffer)
{
    ++exchanges;
    unsigned char *bytes = static_cast<unsigned char *>(buffer);
    for (uint32_t i = 0; i < count; ++i)
        bytes[i] = static_cast<unsigned char>(Next());
    const int result = static_cast<signed char>(Next());
    if (address == TMS_BOX_COMMAND && result >= 0)
        isDone = bytes[0] == 0;
    if (address == TMS_BOX_DATA && result >= 0) {
        isFetched = true;
        fetched = static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8 |
                  static_cast<uint32_t>(bytes[2]) << 16 | static_cast<uint32_t>(bytes[3]) << 24;
    }
    return result;
}

int UCM_EmuCom166Msg(int, int, uint32_t address, uint16_t, const void *)
{
    ++exchanges;
    if (address == TMS_BOX_COMMAND)
        isDone = isFetched = false;
    return static_cast<signed char>(Next());
}

int proof; // the last one

int UCM_Prove()
{
    const int choice = Next() % 8;
    return proof = choice == 0 ? UCM_READ_AGAIN : choice == 1 ? UCM_NOT_PROVEN : UCM_PROVEN;
}

UCM_Series UCM_MakeSeries(uint32_t count, const std::function<int(uint32_t index)> &exchange)
{
    UCM_Series series;
    while (series.made < count && (series.result = exchange(series.made)) >= 0)
        ++series.made;
    if (UCM_Prove() == UCM_PROVEN)
        series.good = series.made;
    else if (series.result >= 0)
        series.result = UCM_ERR_PROOF;
    return series;
}

const char *const UCM_REPEATED_TEXT = "repeated";

std::string UCM_LastErrorText()
{
    return Next() % 2 == 0 ? "" : "no answer";
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    input = data;
    left = size;
    const int polls = Next() % 32;
    while (left > 0) {
        exchanges = 0;
        uint32_t value = 0x5EEDu;
        const int read = TMS_ReadWord(Next() % 16, 0x8000, polls, &value);
        FUZ_Check(exchanges <= 3 + polls && read <= TMS_OK && read >= TMS_ERR_DATA);
        FUZ_Check(read == TMS_OK ? isDone && isFetched && value == fetched : value == 0x5EEDu);
        FUZ_Check((read == TMS_OK) == TMS_ErrorText(read).empty());
        exchanges = 0;
        uint32_t failedAt = 0;
        const int written = TMS_WriteWord(STATION, 0x8000, value, &failedAt);
        FUZ_Check(exchanges <= 3 + TMS_POLLS_WRITE && written <= TMS_OK && written > TMS_ERR_DATA);
        FUZ_Check(written != TMS_OK || isDone);
        FUZ_Check((written == TMS_ERR_SEND) == (failedAt != 0));
        const int proven = TMS_WriteProven(STATION, 0x8000, value, nullptr);
        FUZ_Check(proven != TMS_OK || proof == UCM_PROVEN);
        uint32_t words[3] = {}, good = 7;
        std::string cause;
        const int all = TMS_ReadWords(3, 0x8000, 3, polls, words, &good, &cause);
        FUZ_Check(good <= 3 && (good == 0 || proof == UCM_PROVEN));
        FUZ_Check(all != TMS_OK || (good == 3 && words[2] == fetched && cause.empty()));
    }
    return 0;
}
