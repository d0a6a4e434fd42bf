// What both generations of the target's sampling scope share: the state of the scope that
// was found, the channel types and the records an upload fills. The drivers (scope_v2,
// scope_v3) own it; the session and the scope's window read it. Everything is read from
// and written to STATION.
#ifndef SCOPE_SCOPE_H
#define SCOPE_SCOPE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

constexpr int SX_CHANNELS_MAX = 16;    // generation 2; generation 3 has at most 10
constexpr int SX_RECORDS = 32;         // trace buffers
constexpr int SX_RECORD_SAMPLES = 512; // samples one trace buffer holds
constexpr int SX_WORDS_MAX = 8000;     // largest buffer that is uploaded, 16-bit words
constexpr int SX_VALUES_MIN = 11, SX_VALUES_MAX = 16384; // samples a channel

// Data type of a channel. X4 types take two neighbouring words, low word first.
enum SX_Type {
    SX_I1 = 0, // signed byte, extended to a word by the target
    SX_I2 = 1,
    SX_I4 = 2, // X4
    SX_U1 = 3, // unsigned byte, extended to a word by the target
    SX_U2 = 4,
    SX_U4 = 5, // X4
    SX_F4 = 6, // X4
    SX_F2 = 7, // upper half of an IEEE single
};
constexpr int SX_TYPES = 8;

enum {
    SX_NOT_TRIGGERED = -99, // upload: still armed
    SX_SAMPLING = -98,      // upload: the samples behind the trigger are not complete
    SX_CANCELLED = -97,     // upload: the user has cancelled it
    SX_NO_GENERATION = -77, // init: no generation 2 scope under this prefix
};

extern std::string SX_szPrefix; // name of the block, or what its variables' names begin with
extern int SX_nVer;             // 2 or 3
extern int SX_nCh;              // channels the target has
extern int SX_nVz;              // samples a channel
extern double SX_ffFscp, SX_ffFscpUpload;   // sampling frequency, Hz; 1.0 when not told
extern uint16_t SX_wSubPd, SX_wSubPdUpload; // every how manieth sample is kept
extern int SX_isInitDone, SX_isUploadDone;
extern int SX_isSnapped;                            // the last run was forced: nothing triggered it
extern std::array<int, SX_CHANNELS_MAX> SX_anChTyp; // SX_Type, by channel from 0
extern std::array<std::string, SX_CHANNELS_MAX> SX_aszChName; // names for the records
extern std::array<uint16_t, SX_WORDS_MAX> SX_awData;          // in time order after an upload
extern int SX_cnData;                                         // words of it in use

struct SX_Record {
    int isEnabled = 0;
    int reserved[2] = {0, 0};
    int cnSamples = 0;
    std::string name; // at most 80 characters
    int isValid = 0;
    std::array<double, SX_RECORD_SAMPLES> samples{}; // NaN where the word gives no value
};
extern std::array<SX_Record, SX_RECORDS> SX_aRecords;

// Called between two blocks of an upload; true cancels it. Null: never asked.
typedef bool (*SX_Progress)(uint32_t done, uint32_t total);

// "PWM_rScope" on the TMS320 processors, "SCP2_" on the others.
const char *SX_DefaultPrefix(int processor);

// Letter and digit of a type ("i2", ...), "?" when unknown; the type of such a text, or -1.
const char *SX_TypeName(int type);
int SX_FindType(const std::string &name);
bool SX_IsX4(int type);

// The packed float: 1 sign, 8 exponent and 7 fraction bits. There is no zero: 0 is 2^-127.
double SCP_CvtF2C_F4(uint16_t word);
// A word, or two of an X4 type with `high` the second, as the type's value.
double SX_Value(int type, uint16_t word, uint16_t high);

// Samples behind the trigger when `percent` of the record lie before it: rounded, and what the
// target counts down. Outside of 0 to SX_nVz for a percentage outside of 0 to 100.
double SX_CountBehind(double percent);
// Control word that arms a scope with so many samples behind the trigger.
int16_t SX_ArmingWord(uint16_t behind);

// Clears the records and gives each of `channels` its sample count, name and flags.
void SX_PrepareRecords(int channels);
// Reads `count` words at a byte address in blocks, little-endian and proven, asking for a
// cancel between them. 0, -2 on a failed read, SX_CANCELLED; `words` are then as they were.
int SX_ReadWords(uint32_t address, int count, uint16_t *words, SX_Progress progress);
// An upload is complete: what was in force is kept for the samples it has brought.
void SX_NoteUpload();

#endif
