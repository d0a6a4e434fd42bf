// Every access looks its variable up by name: a map that is loaded later counts at once.
#include "scope/scope_v2.h"

#include "comm/sysaddr.h"
#include "comm/ucm.h"
#include "settings/settings.h"
#include "text/bytes.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

int S2_IsXt = 0;
int S2_nErr = -1;

namespace {

// All have to exist, wTgM too, although nothing here uses it.
constexpr const char *NEEDED[] = {"cn",    "wTg", "wTgL", "wTgM",  "wTgTm",
                                  "aData", "nVz", "nCh",  "CTgC1", "CTgC2"};
constexpr const char *EXTENDED[] = {"fFreq", "wSubPd", "cnSubSmp"};

// The target compares by two conditional jumps whose codes are patched.
struct TriggerCode {
    int mode, slope;
    uint8_t first, second;
};
constexpr TriggerCode TRIGGER_CODES[] = {
    {0, 1, 0xCD, 0xBD}, {0, 0, 0x8D, 0xFD}, {1, 1, 0xAD, 0xDD}, {1, 0, 0xED, 0x9D}};

// Source addresses of a target with pages of 16 KiB: offset, and number of the page.
constexpr uint32_t PAGE_OFFSET_MASK = 0x3FFF, PAGE_MASK = 0x3FFFC000;
constexpr int PAGE_SHIFT = 14;

// Loads of the sampling routine, as the C166 codes them: a byte with its sign, a byte with zeros, a
// word.
constexpr uint16_t LOAD_SIGNED_BYTE = 0xF2D2, LOAD_BYTE = 0xF2C2, LOAD_WORD = 0xF2F2;

uint32_t AddressOf(const std::string &suffix)
{
    return GetSysAddr((SX_szPrefix + suffix).c_str());
}

bool IsKnown(const std::string &suffix)
{
    return AddressOf(suffix) != ADDR_NONE;
}

int ReadWord(const char *suffix, uint16_t *value)
{
    uint8_t bytes[2];
    const int result = S2_RdOscVar(suffix, sizeof bytes, bytes);
    if (result == 0)
        *value = static_cast<uint16_t>(TXT_GetLittle(bytes, sizeof bytes));
    return result;
}

int WriteWord(const std::string &suffix, uint16_t value)
{
    uint8_t bytes[2];
    TXT_PutLittle(bytes, sizeof bytes, value);
    return S2_WrOscVar(suffix.c_str(), sizeof bytes, bytes);
}

std::string OfChannel(const char *name, int channel)
{
    return name + std::to_string(channel);
}

void FillRecords()
{
    SX_PrepareRecords(SX_nCh);
    for (int channel = 0; channel < SX_nCh; ++channel) {
        SX_Record &record = SX_aRecords[static_cast<size_t>(channel)];
        const int type = SX_anChTyp[static_cast<size_t>(channel)];
        // Sample after sample, the channels of one behind each other.
        for (int i = 0; i < record.cnSamples; ++i) {
            const uint16_t word = SX_awData[static_cast<size_t>(SX_nCh * i + channel)];
            // One word a channel is all there is: wider types have no value here.
            record.samples[static_cast<size_t>(i)] =
                SX_IsX4(type) ? std::numeric_limits<double>::quiet_NaN() : SX_Value(type, word, 0);
        }
    }
}

} // namespace

int S2_Init()
{
    SX_isInitDone = 0;
    SX_isUploadDone = 0;
    S2_nErr = -1;
    uint16_t values = 0, channels = 0;
    // Only this tells that the other generation may be there; all later failures are of this one.
    if (ReadWord("nVz", &values) < 0)
        return SX_NO_GENERATION;
    if (ReadWord("nCh", &channels) < 0)
        return -1;
    if (values < SX_VALUES_MIN || values > SX_VALUES_MAX)
        return -2;
    if (channels < 1 || channels > SX_CHANNELS_MAX)
        return -3;
    if (!std::all_of(std::begin(NEEDED), std::end(NEEDED), IsKnown))
        return -2;
    S2_IsXt = std::all_of(std::begin(EXTENDED), std::end(EXTENDED), IsKnown);
    SX_ffFscp = 1.0;
    if (S2_IsXt) {
        uint8_t bytes[4];
        float frequency = 0; // Hz
        if (S2_RdOscVar("fFreq", sizeof bytes, bytes) < 0)
            return -1;
        const auto bits = static_cast<uint32_t>(TXT_GetLittle(bytes, sizeof bytes));
        std::memcpy(&frequency, &bits, sizeof frequency);
        SX_ffFscp = static_cast<double>(frequency);
    }
    for (int channel = 1; channel <= channels; ++channel) {
        if (!IsKnown(OfChannel("pSrc", channel)))
            return -1;
    }
    // A refused scope leaves the counts of the last one, which its upload still has.
    SX_nVz = values;
    SX_nCh = channels;
    S2_nErr = 0;
    SX_isInitDone = 1;
    return 0;
}

int S2_RdOscVar(const char *suffix, uint32_t length, void *buffer)
{
    const uint32_t address = AddressOf(suffix);
    if (address == ADDR_NONE)
        return -1;
    return UCM_Read(STATION, address, length, buffer) < 0 ? -2 : 0;
}

int S2_WrOscVar(const char *suffix, uint32_t length, const void *data)
{
    const uint32_t address = AddressOf(suffix);
    if (address == ADDR_NONE)
        return -1;
    return UCM_Write(STATION, address, length, data) < 0 ? -1 : 0;
}

int S2_RdCtl(int16_t *value)
{
    uint16_t word = 0;
    const int result = ReadWord("wTg", &word);
    *value = static_cast<int16_t>(word); // 0 when it was not read: the result says so
    return result;
}

int S2_WriteCtl(int16_t value)
{
    return WriteWord("wTg", static_cast<uint16_t>(value));
}

int S2_Run()
{
    uint16_t post = 0;
    const int result = S2_GetCnPostTgr(&post);
    return result < 0 ? result : S2_WriteCtl(SX_ArmingWord(post));
}

int S2_ManTgr()
{
    // As if it had triggered just now, with a whole record to come behind it.
    return S2_WriteCtl(static_cast<int16_t>(SX_nVz));
}

int S2_SetTgrPos(double percent)
{
    const double post = SX_CountBehind(percent);
    if (!(post >= 0 && post <= SX_nVz)) // NaN as well
        return -1;
    return WriteWord("wTgTm", static_cast<uint16_t>(post));
}

int S2_GetCnPostTgr(uint16_t *count)
{
    return ReadWord("wTgTm", count);
}

int S2_SetSubPd(uint16_t period)
{
    if (period == 0)
        return -1;
    // The period itself here, where the other generation's block holds one less.
    const int result = WriteWord("wSubPd", period);
    // The counter starts anew, or a shorter period would begin after a longer one's rest.
    return result < 0 ? result : WriteWord("cnSubSmp", 1);
}

int S2_SetTgrLevel(uint16_t level)
{
    return WriteWord("wTgL", level);
}

int S2_SetTriggerMode(int mode, int slope)
{
    for (const TriggerCode &row : TRIGGER_CODES) {
        if (row.mode != mode || row.slope != slope)
            continue;
        const int result = S2_WrOscVar("CTgC1", 1, &row.first);
        return result < 0 ? result : S2_WrOscVar("CTgC2", 1, &row.second);
    }
    return -1;
}

int S2_GetTgrCond()
{
    uint8_t first = 0, second = 0;
    if (S2_RdOscVar("CTgC1", 1, &first) < 0 || S2_RdOscVar("CTgC2", 1, &second) < 0)
        return -1;
    // The first bytes differ in all rows; the second must go with it.
    for (const TriggerCode &row : TRIGGER_CODES) {
        if (row.first == first)
            return row.second == second ? 2 * row.mode + (1 - row.slope) : -1;
    }
    return -1;
}

int S2_SetChAddr(int channel, uint32_t address)
{
    if (!SX_isInitDone || channel < 1 || channel > SX_nCh)
        return -1;
    const std::string source = OfChannel("pSrc", channel), page = OfChannel("pSrcPg", channel),
                      load = OfChannel("pSrcInst", channel);
    if (!IsKnown(source))
        return -2;
    // A firmware without pages samples near memory only and holds the lower 16 bits.
    const bool isPaged = IsKnown(page);
    const uint32_t offset = isPaged ? address & PAGE_OFFSET_MASK : address;
    if (WriteWord(source, static_cast<uint16_t>(offset)) < 0)
        return -3;
    if (isPaged && WriteWord(page, static_cast<uint16_t>((address & PAGE_MASK) >> PAGE_SHIFT)) < 0)
        return -3;
    // The address is written all the same: whoever samples words may take this for good.
    if (!IsKnown(load))
        return -1;
    const int type = SX_anChTyp[static_cast<size_t>(channel - 1)];
    const uint16_t instruction = type == SX_I1   ? LOAD_SIGNED_BYTE
                                 : type == SX_U1 ? LOAD_BYTE
                                                 : LOAD_WORD;
    return WriteWord(load, instruction) < 0 ? -3 : 1;
}

int S2_GetChAddr(int channel, uint32_t *address)
{
    if (!SX_isInitDone || channel < 1 || channel > SX_nCh)
        return -1;
    uint16_t offset = 0, page = 0;
    const std::string source = OfChannel("pSrc", channel), pages = OfChannel("pSrcPg", channel);
    int result = ReadWord(source.c_str(), &offset);
    if (result == 0 && IsKnown(pages))
        result = ReadWord(pages.c_str(), &page);
    if (result == 0)
        *address = static_cast<uint32_t>(page) << PAGE_SHIFT | offset;
    return result;
}

int S2_ReadData(SX_Progress progress)
{
    const int total = SX_nCh * SX_nVz;
    if (total < 1 || total > SX_WORDS_MAX)
        return -1;
    int16_t control = 0;
    if (S2_RdCtl(&control) < 0)
        return -2;
    if (control != 0)
        return control < 0 ? SX_NOT_TRIGGERED : SX_SAMPLING;
    // Into a ring of its own: an upload that breaks off leaves the last one whole.
    const uint32_t buffer = AddressOf("aData");
    std::vector<uint16_t> ring(static_cast<size_t>(total));
    const int result =
        buffer == ADDR_NONE ? -2 : SX_ReadWords(buffer, total, ring.data(), progress);
    if (result < 0)
        return result;
    uint16_t position = 0; // bytes
    if (ReadWord("cn", &position) < 0)
        return -3;
    const int index = position / 2;
    if (index >= total)
        return -4;
    // The target fills the ring downwards: the word below the newest one is the oldest.
    SX_cnData = total;
    for (int k = 0; k < total; ++k)
        SX_awData[static_cast<size_t>(k)] =
            ring[static_cast<size_t>((index - 1 - k + 2 * total) % total)];
    FillRecords();
    SX_NoteUpload();
    return 0;
}
