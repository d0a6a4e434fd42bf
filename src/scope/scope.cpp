// A word of a sample, a value: the rest of what both generations count alike.
#include "scope/scope.h"

#include "comm/grouping.h"
#include "comm/ucm.h"
#include "settings/settings.h"
#include "text/bytes.h"

#include <algorithm>
#include <cmath>
#include <cstring>

std::string SX_szPrefix = "SCP2_";
int SX_nVer = 2;
int SX_nCh = 0;
int SX_nVz = 0;
double SX_ffFscp = 1.0, SX_ffFscpUpload = 1.0; // 1 Hz: times then count samples
uint16_t SX_wSubPd = 1, SX_wSubPdUpload = 1;
int SX_isInitDone = 0, SX_isUploadDone = 0;
int SX_isSnapped = 0;
std::array<int, SX_CHANNELS_MAX> SX_anChTyp = {SX_I2, SX_I2, SX_I2, SX_I2, SX_I2, SX_I2,
                                               SX_I2, SX_I2, SX_I2, SX_I2, SX_I2, SX_I2,
                                               SX_I2, SX_I2, SX_I2, SX_I2};
std::array<std::string, SX_CHANNELS_MAX> SX_aszChName;
std::array<uint16_t, SX_WORDS_MAX> SX_awData;
int SX_cnData = 0;
std::array<SX_Record, SX_RECORDS> SX_aRecords;

namespace {

constexpr const char *TYPE_NAMES[SX_TYPES] = {"i1", "i2", "i4", "u1", "u2", "u4", "f4", "f2"};
constexpr int NAMED_CHANNELS = 10; // those behind have no name field in the window
constexpr int ARMED_LAST = -2;     // -1 waits for the trigger: one sample has to come before
constexpr size_t NAME_MAX_CHARS = 80;
// What is proven together: a second or two of a fast line, and a multiple of both protocols'
// read blocks (64 and 216 bytes), so that no block but the last is short.
constexpr uint32_t PROVEN_BYTES = 5 * 1728;

} // namespace

const char *SX_DefaultPrefix(int processor)
{
    return IsWordAddressing(processor) ? "PWM_rScope" : "SCP2_";
}

const char *SX_TypeName(int type)
{
    return type >= 0 && type < SX_TYPES ? TYPE_NAMES[type] : "?";
}

int SX_FindType(const std::string &name)
{
    for (int type = 0; type < SX_TYPES; ++type) {
        if (name == TYPE_NAMES[type])
            return type;
    }
    return -1;
}

bool SX_IsX4(int type)
{
    return type == SX_I4 || type == SX_U4 || type == SX_F4;
}

double SCP_CvtF2C_F4(uint16_t word)
{
    // 134: the exponent's bias of 127, and 7 bits of fraction. No denormals, no infinity.
    const int exponent = word >> 7 & 0xFF;
    const double magnitude = std::ldexp((word & 0x7F) + 128, exponent - 134);
    return word & 0x8000 ? -magnitude : magnitude;
}

double SX_Value(int type, uint16_t word, uint16_t high)
{
    // The target's words are unsigned here; what they mean is decided by the type alone.
    const uint32_t both = static_cast<uint32_t>(high) << 16 | word;
    float single = 0;
    switch (type) {
    case SX_I4:
        return static_cast<int32_t>(both);
    case SX_U4:
        return both;
    case SX_F4:
        std::memcpy(&single, &both, sizeof single);
        return static_cast<double>(single);
    case SX_F2:
        return SCP_CvtF2C_F4(word);
    case SX_U1:
    case SX_U2:
        return word;
    default: // bytes too: the target has extended them with their sign
        return static_cast<int16_t>(word);
    }
}

double SX_CountBehind(double percent)
{
    return std::floor(0.5 + SX_nVz * (100 - percent) * 0.01);
}

int16_t SX_ArmingWord(uint16_t behind)
{
    // The count up to the trigger: the samples in front of it are to be fresh.
    return static_cast<int16_t>(std::min(behind - 1 - SX_nVz, ARMED_LAST));
}

void SX_PrepareRecords(int channels)
{
    // All of them: a scope of fewer channels must not show what an earlier one left.
    SX_aRecords.fill(SX_Record());
    for (int channel = 0; channel < channels; ++channel) {
        SX_Record &record = SX_aRecords[static_cast<size_t>(channel)];
        record.isEnabled = 1;
        record.cnSamples = std::min(SX_nVz, SX_RECORD_SAMPLES);
        record.name = channel < NAMED_CHANNELS ? SX_aszChName[static_cast<size_t>(channel)]
                                               : "#X" + std::to_string(channel + 1);
        record.name.resize(std::min(record.name.size(), NAME_MAX_CHARS));
        record.isValid = 1;
    }
}

int SX_ReadWords(uint32_t address, int count, uint16_t *words, SX_Progress progress)
{
    const uint32_t total = 2 * static_cast<uint32_t>(count);
    // As much as one exchange of this protocol brings, so that a cancel waits for no more.
    const uint32_t blockMax = UCM_ReadWire(UCM_recS.protocol).blockMax;
    std::vector<uint8_t> bytes(total);
    bool isCancelled = false;
    // Block by block: a read of several has a proof of its own behind it each time.
    const auto readStretch = [&](uint32_t begin, uint32_t end) {
        for (uint32_t done = begin; done < end; done += blockMax) {
            isCancelled = progress != nullptr && progress(done, total);
            const uint32_t block = std::min(end - done, blockMax);
            if (isCancelled || UCM_Read(STATION, address + done, block, &bytes[done]) < 0)
                return -1;
        }
        return 0;
    };
    for (uint32_t begin = 0; begin < total; begin += PROVEN_BYTES) {
        const uint32_t end = std::min(begin + PROVEN_BYTES, total);
        if (UCM_MakeProven([&] { return readStretch(begin, end); }) < 0)
            return isCancelled ? static_cast<int>(SX_CANCELLED) : -2;
    }
    for (uint32_t i = 0; i < total; i += 2)
        *words++ = static_cast<uint16_t>(TXT_GetLittle(&bytes[i], 2));
    return 0;
}

void SX_NoteUpload()
{
    SX_isUploadDone = 1;
    SX_wSubPdUpload = SX_wSubPd;
    SX_ffFscpUpload = SX_ffFscp;
}
