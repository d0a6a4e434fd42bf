// The block's base is found once, by the init; every access is an offset from there.
#include "scope/scope_v3.h"

#include "comm/sysaddr.h"
#include "comm/ucm.h"
#include "settings/settings.h"
#include "text/bytes.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

uint32_t S3_dwBaseAddr = ADDR_NONE, S3_dwBuffAddr = ADDR_NONE;
int S3_isVer166 = 0;
int S3_nErr = -1;

namespace {

// Fields of the control block, byte offsets.
enum Field : uint32_t {
    IDENTIFICATION = 0x00,
    CONTROL = 0x02,
    POST_TRIGGER = 0x04,
    SUB_PERIOD = 0x06, // period minus 1
    LEVEL = 0x08,
    VALUES = 0x10,
    CHANNELS = 0x12,
    TRIGGER_MODE = 0x16,
    FREQUENCY = 0x18, // mHz
    SUB_COUNTER = 0x20,
    WRITE_INDEX = 0x22,
    BUFFER = 0x28,
    SOURCES = 0x2C, // 4 bytes a channel
};

constexpr uint16_t ID_TMS = 0x20D3, ID_166 = 0x20D2;
constexpr uint32_t MHZ_MIN = 1001, MHZ_MAX = 999999999; // outside: the target tells none
constexpr uint16_t MODE_FREE_RUN = 0x10;
constexpr uint32_t PAGE_OFFSET_MASK = 0x3FFF; // of a C166 page of 16 KiB
constexpr int PAGE_GAP_BITS = 2;              // stored, the page begins at bit 16 and not at 14

int ReadWord(uint32_t offset, uint16_t *value)
{
    uint8_t bytes[2];
    const int result = S3_RdOscVar(offset, sizeof bytes, bytes);
    if (result == 0)
        *value = static_cast<uint16_t>(TXT_GetLittle(bytes, sizeof bytes));
    return result;
}

int ReadLong(uint32_t offset, uint32_t *value)
{
    uint8_t bytes[4];
    const int result = S3_RdOscVar(offset, sizeof bytes, bytes);
    if (result == 0)
        *value = static_cast<uint32_t>(TXT_GetLittle(bytes, sizeof bytes));
    return result;
}

int WriteWord(uint32_t offset, uint16_t value)
{
    uint8_t bytes[2];
    TXT_PutLittle(bytes, sizeof bytes, value);
    return S3_WrOscVar(offset, sizeof bytes, bytes);
}

int WriteLong(uint32_t offset, uint32_t value)
{
    uint8_t bytes[4];
    TXT_PutLittle(bytes, sizeof bytes, value);
    return S3_WrOscVar(offset, sizeof bytes, bytes);
}

// The block counts words on a TMS320 and keeps page and offset apart on a C166.
uint32_t FromBlockFormat(uint32_t stored)
{
    return S3_isVer166 ? (stored & PAGE_OFFSET_MASK) | (stored & 0xFFFF0000u) >> PAGE_GAP_BITS
                       : stored * 2;
}

uint32_t ToBlockFormat(uint32_t address)
{
    return S3_isVer166
               ? (address & PAGE_OFFSET_MASK) | (address & ~PAGE_OFFSET_MASK) << PAGE_GAP_BITS
               : address / 2;
}

uint32_t SourceOffset(int channel)
{
    return SOURCES + 4 * static_cast<uint32_t>(channel - 1);
}

void FillRecords()
{
    const int channels = std::min(SX_nCh, S3_CHANNELS_MAX);
    SX_PrepareRecords(channels);
    for (int channel = 1; channel <= channels; ++channel) {
        SX_Record &record = SX_aRecords[static_cast<size_t>(channel - 1)];
        if (S3_IsChannelBlocked(channel)) {
            record.isEnabled = 0; // its zeros are no samples: the words belong to its neighbour
            continue;
        }
        const int type = SX_anChTyp[static_cast<size_t>(channel - 1)];
        const bool isLast = channel == SX_nCh;
        for (int i = 0; i < record.cnSamples; ++i) {
            const size_t at = static_cast<size_t>(SX_nCh * i + channel - 1);
            double &sample = record.samples[static_cast<size_t>(i)];
            // The last channel has no second word: half a value would be a wrong one.
            if (SX_IsX4(type) && isLast)
                sample = std::numeric_limits<double>::quiet_NaN();
            else
                sample = SX_Value(type, SX_awData[at], isLast ? uint16_t{0} : SX_awData[at + 1]);
        }
    }
}

} // namespace

int S3_Init()
{
    SX_isInitDone = 0;
    SX_isUploadDone = 0;
    S3_nErr = -1;
    S3_dwBuffAddr = ADDR_NONE;
    S3_dwBaseAddr = GetSysAddr(SX_szPrefix.c_str());
    if (S3_dwBaseAddr == ADDR_NONE)
        return -1;
    // Any variable may have been named: the identification tells a scope from other data, and
    // which kind of processor counts its addresses.
    uint16_t id = 0, values = 0, channels = 0;
    uint32_t buffer = 0, milliHertz = 0;
    if (ReadWord(IDENTIFICATION, &id) < 0 || (id != ID_TMS && id != ID_166))
        return -1;
    S3_isVer166 = id == ID_166;
    if (ReadLong(BUFFER, &buffer) < 0 || ReadWord(VALUES, &values) < 0 ||
        ReadWord(CHANNELS, &channels) < 0)
        return -1;
    if (values < SX_VALUES_MIN || values > SX_VALUES_MAX)
        return -2;
    if (channels < 1 || channels > S3_CHANNELS_MAX)
        return -3;
    if (ReadLong(FREQUENCY, &milliHertz) < 0)
        return -1;
    // Only now: beside a scope that is refused, the counts of the last upload stay.
    S3_dwBuffAddr = FromBlockFormat(buffer);
    SX_nVz = values;
    SX_nCh = channels;
    SX_ffFscp = milliHertz >= MHZ_MIN && milliHertz <= MHZ_MAX ? milliHertz * 0.001 : 1.0;
    S3_nErr = 0;
    SX_isInitDone = 1;
    return 0;
}

int S3_RdOscVar(uint32_t offset, uint32_t length, void *buffer)
{
    if (S3_dwBaseAddr == ADDR_NONE)
        return -1;
    return UCM_Read(STATION, S3_dwBaseAddr + offset, length, buffer) < 0 ? -2 : 0;
}

int S3_WrOscVar(uint32_t offset, uint32_t length, const void *data)
{
    if (S3_dwBaseAddr == ADDR_NONE)
        return -1;
    return UCM_Write(STATION, S3_dwBaseAddr + offset, length, data) < 0 ? -1 : 0;
}

int S3_RdOscData(uint32_t index, uint32_t count, uint16_t *words)
{
    if (S3_dwBuffAddr == ADDR_NONE)
        return -1;
    return SX_ReadWords(S3_dwBuffAddr + 2 * index, static_cast<int>(count), words, nullptr);
}

int S3_RdCtl(int16_t *value)
{
    uint16_t word = 0;
    const int result = ReadWord(CONTROL, &word);
    *value = static_cast<int16_t>(word);
    return result;
}

int S3_WriteCtl(int16_t value)
{
    return WriteWord(CONTROL, static_cast<uint16_t>(value));
}

int S3_Run()
{
    uint16_t post = 0;
    const int result = S3_GetCnPostTgr(&post);
    return result < 0 ? result : S3_WriteCtl(SX_ArmingWord(post));
}

int S3_ManTgr()
{
    // As if it had triggered just now, with a whole record to come behind it.
    return S3_WriteCtl(static_cast<int16_t>(SX_nVz));
}

int S3_SetTgrPos(double percent)
{
    const double post = SX_CountBehind(percent);
    if (!(post >= 0 && post <= SX_nVz)) // NaN as well
        return -1;
    return WriteWord(POST_TRIGGER, static_cast<uint16_t>(post));
}

int S3_GetCnPostTgr(uint16_t *count)
{
    return ReadWord(POST_TRIGGER, count);
}

int S3_SetSubPd(uint16_t period)
{
    if (period == 0)
        return -1;
    const int result = WriteWord(SUB_PERIOD, static_cast<uint16_t>(period - 1));
    return result < 0 ? result : WriteWord(SUB_COUNTER, 1);
}

int S3_SetTgrLevel(double level, int type)
{
    uint32_t bits = 0;
    // A packed float is the upper half of a single, so its level is a single as well.
    if (type == SX_F4 || type == SX_F2) {
        const float single = static_cast<float>(level);
        std::memcpy(&bits, &single, sizeof bits);
    } else if (type == SX_U4) {
        if (!(level >= 0 && level < 4294967296.0))
            return -3;
        bits = static_cast<uint32_t>(level);
    } else {
        // Truncated towards 0 as the conversion does, so that a bit more than the limits fits.
        if (!(level > -2147483649.0 && level < 2147483648.0))
            return -3;
        bits = static_cast<uint32_t>(static_cast<int32_t>(level));
    }
    return S3_SetTrigLevel(bits);
}

int S3_SetTrigLevel(uint32_t bits)
{
    return WriteLong(LEVEL, bits);
}

int S3_SetTriggerMode(int mode, int slope)
{
    if (mode < 0 || mode > 2)
        return -1;
    // By the type of the comparison. The target extends bytes to signed words, zeros or not, so
    // both are compared as such, and so is a type that nobody knows.
    constexpr uint16_t BASES[SX_TYPES] = {2, 2, 7, 2, 5, 10, 12, 14};
    const uint16_t base = slope >= 0 && slope < SX_TYPES ? BASES[slope] : BASES[SX_I2];
    return WriteWord(TRIGGER_MODE, mode == 2 ? MODE_FREE_RUN : static_cast<uint16_t>(base + mode));
}

int S3_GetTgrCond()
{
    uint16_t code = 0;
    if (ReadWord(TRIGGER_MODE, &code) < 0)
        return -1;
    // Not the way back of the bases: free run has no condition, and of the type only the sign
    // comes back.
    struct {
        uint16_t code;
        int mode, isSigned;
    } constexpr CODES[] = {{2, 0, 1},  {7, 0, 1},  {12, 0, 1}, {14, 0, 1}, {3, 1, 1}, {8, 1, 1},
                           {13, 1, 1}, {15, 1, 1}, {5, 0, 0},  {10, 0, 0}, {6, 1, 0}, {11, 1, 0}};
    for (const auto &row : CODES) {
        if (row.code == code)
            return 2 * row.mode + (1 - row.isSigned);
    }
    return -1;
}

bool S3_IsDataTypeX4(int channel)
{
    return channel >= 1 && channel <= SX_nCh &&
           SX_IsX4(SX_anChTyp[static_cast<size_t>(channel - 1)]);
}

bool S3_IsChannelBlocked(int channel)
{
    // A blocked channel carries nothing of its own, so its type blocks nobody.
    return channel > 1 && S3_IsDataTypeX4(channel - 1) && !S3_IsChannelBlocked(channel - 1);
}

int S3_SetChAddr(int channel, uint32_t address)
{
    if (!SX_isInitDone || channel < 1 || channel > SX_nCh)
        return -1;
    if (S3_dwBaseAddr == ADDR_NONE)
        return -2;
    if (S3_IsChannelBlocked(channel))
        return 0;
    const uint32_t stored = ToBlockFormat(address);
    if (WriteLong(SourceOffset(channel), stored) < 0)
        return -3;
    const int type = SX_anChTyp[static_cast<size_t>(channel - 1)];
    // The target samples words: the upper half goes through the next channel's slot, from the
    // next word. Added before the conversion on a C166, for it may lie in the next page.
    if (SX_IsX4(type) && channel < SX_nCh) {
        const uint32_t second = S3_isVer166 ? ToBlockFormat(address + 2) : stored + 1;
        return WriteLong(SourceOffset(channel + 1), second) < 0 ? -3 : 2;
    }
    return type == SX_I1 || type == SX_U1 ? -4 : 1;
}

int S3_GetChAddr(int channel, uint32_t *address)
{
    if (!SX_isInitDone || channel < 1 || channel > SX_nCh)
        return -1;
    uint32_t stored = 0;
    const int result = ReadLong(SourceOffset(channel), &stored);
    if (result == 0)
        *address = FromBlockFormat(stored);
    return result;
}

int S3_ReadData(SX_Progress progress)
{
    const int total = SX_nCh * SX_nVz;
    if (total < 1 || total > SX_WORDS_MAX)
        return -1;
    int16_t control = 0;
    if (S3_dwBuffAddr == ADDR_NONE || S3_RdCtl(&control) < 0)
        return -2;
    if (control != 0)
        return control < 0 ? SX_NOT_TRIGGERED : SX_SAMPLING;
    uint16_t index = 0;
    // The ring stands still since the control word is 0: the order of the reads is free.
    if (ReadWord(WRITE_INDEX, &index) < 0)
        return -3;
    // Into a buffer of its own: an upload that breaks off leaves the last one whole.
    std::vector<uint16_t> ring(static_cast<size_t>(total));
    const int result = SX_ReadWords(S3_dwBuffAddr, total, ring.data(), progress);
    if (result < 0)
        return result;
    if (index > total)
        return -4;
    // The word at the write index is the oldest; an index behind the end is that of the first.
    SX_cnData = total;
    for (size_t i = 0; i < ring.size(); ++i)
        SX_awData[i] = ring[(i + index) % ring.size()];
    FillRecords();
    SX_NoteUpload();
    return 0;
}
