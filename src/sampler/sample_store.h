// What was sampled: for each item the last so many samples with their times, in memory of a
// fixed bound (17 bytes a sample). Owns nothing but what is in it; a sampler fills it, graphs
// and recorders read it. What has fallen out of it is only in a recording, if there is one.
#ifndef SAMPLER_SAMPLE_STORE_H
#define SAMPLER_SAMPLE_STORE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

struct LItem;

// A value to be sampled. Independent of the watch list once made.
struct SMP_Item {
    std::string name;     // as it stands above a column
    uint32_t address = 0; // byte address, or the TMS320's own; SMP_NO_ADDRESS: does not resolve
    int station = 1;
    int size = 2;       // bytes: 1, 2, 4 or 8
    char type = 'i';    // letter of watch/value/value_types.h
    bool isTMS = false; // of the TMS320 behind the station
    std::string unit;   // for people; may be ""
};
constexpr uint32_t SMP_NO_ADDRESS = 0xFFFFFFFF;

SMP_Item SMP_FromWatch(const LItem &item);
// The same variable read in the same way: its samples go on.
bool SMP_IsSame(const SMP_Item &a, const SMP_Item &b);
std::string SMP_TypeText(const SMP_Item &item); // "u2", as the watch list's files have it

// What the bits of a sample say. A rate (type p) is sampled as its result: see SMP_IsRate.
bool SMP_IsRate(const SMP_Item &item); // its samples are the bits of a double, in Hz
double SMP_Number(const SMP_Item &item, uint64_t bits);
// The number as recordings have it, exactly: whole numbers whole, floats as short as they come
// back the same.
std::string SMP_NumberText(const SMP_Item &item, uint64_t bits);

constexpr uint8_t SMP_GOOD = 0;                // any other state: failed, a key of SMP_ReasonText
constexpr uint8_t SMP_NOT_SAMPLED = UINT8_MAX; // the item was not there yet
struct SMP_Sample {
    int64_t timeUs = 0; // of the steady clock, the middle of its exchange
    uint64_t bits = 0;
    uint8_t state = SMP_GOOD;
};

// The samples of one item, numbered from 0 since it was added; the oldest fall out.
struct SMP_Ring {
    uint64_t first = 0, end = 0; // numbers that are here: first <= number < end
    uint64_t lap = 0;            // the newest number that stands at the front of the vectors
    std::vector<int64_t> timesUs;
    std::vector<uint64_t> bits;
    std::vector<uint8_t> states;
};
struct SMP_Store {
    std::vector<SMP_Item> items;
    std::vector<SMP_Ring> rings;      // one an item
    size_t samplesMax = 0;            // of each item
    std::vector<std::string> reasons; // of failed samples
};
constexpr size_t SMP_BYTES_PER_SAMPLE = 17;
constexpr size_t SMP_DEFAULT_SAMPLES = 200000; // of each item

// Other items from now on. Those that stay the same keep their samples and numbers.
void SMP_SetStoreItems(SMP_Store *store, const std::vector<SMP_Item> &items, size_t samplesMax);
void SMP_AddRow(SMP_Store *store, size_t item, const SMP_Sample &sample);
// Where a number stands, first <= number < end: graphs ask millions of times.
inline size_t SMP_PlaceOf(const SMP_Ring &ring, uint64_t number)
{
    return static_cast<size_t>(number >= ring.lap ? number - ring.lap
                                                  : number + ring.timesUs.size() - ring.lap);
}
SMP_Sample SMP_GetSample(const SMP_Store &store, size_t item,
                         uint64_t number); // first <= number < end
// The samples of one round, one an item, and the middle of their times. Rounds are counted from
// the newest, 1, for items that were added later have fewer: those without get SMP_NOT_SAMPLED.
// At least one item has a sample of it.
int64_t SMP_GetRound(const SMP_Store &store, uint64_t back, std::vector<SMP_Sample> *samples);
// The first sample kept that is not before this time; `end` when there is none.
uint64_t SMP_FindTime(const SMP_Store &store, size_t item, int64_t timeUs);
// Samples from <= number < to as a curve: seconds since `originUs`, and NaN where one failed.
// Numbers that are not kept are left out.
void SMP_CopySamples(const SMP_Store &store, size_t item, uint64_t from, uint64_t to,
                     int64_t originUs, std::vector<double> *seconds, std::vector<double> *values);
// The state of a sample that failed for this reason. After 254 reasons all others are one.
uint8_t SMP_StateOf(SMP_Store *store, const std::string &reason);
std::string SMP_ReasonText(const SMP_Store &store, uint8_t state); // "" for a good one

#endif
