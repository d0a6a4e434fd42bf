// A ring an item, in three vectors instead of one of records: 17 bytes a sample where a record of
// the same has 24.
#include "sampler/sample_store.h"

#include "text/bytes.h"
#include "watch/list/litem.h"
#include "watch/value/tms_float.h"
#include "watch/value/value_types.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

constexpr size_t REASONS_MAX = 255; // the last one stands for all others
const char OTHER_REASON[] = "failed for another reason";

// A number's place follows from its lap, without a division. The ring grows until it holds
// `samplesMax`; from then on the oldest sample makes way.
void Grow(SMP_Ring *ring, size_t samplesMax)
{
    const size_t had = ring->timesUs.size();
    const size_t has = std::min(std::max<size_t>(had * 2, 64), samplesMax);
    SMP_Ring bigger;
    bigger.first = ring->first;
    bigger.end = ring->end;
    bigger.lap = ring->first; // all of it in front
    bigger.timesUs.resize(has);
    bigger.bits.resize(has);
    bigger.states.resize(has);
    for (uint64_t number = ring->first; number < ring->end; ++number) {
        const size_t from = SMP_PlaceOf(*ring, number), to = SMP_PlaceOf(bigger, number);
        bigger.timesUs[to] = ring->timesUs[from];
        bigger.bits[to] = ring->bits[from];
        bigger.states[to] = ring->states[from];
    }
    *ring = std::move(bigger);
}

// 'f', 'i' or 'u'; hexadecimal, binary and characters are numbers without a sign here.
char PlainForm(const SMP_Item &item)
{
    const VAL_TypeRow *row = VAL_FindType(item.type);
    return row != nullptr ? row->plainForm : 'u';
}

int64_t SignedOf(const SMP_Item &item, uint64_t bits)
{
    // Its sign at the top, then back with copies of it.
    const int unused = 64 - 8 * item.size;
    return static_cast<int64_t>(bits << unused) >> unused;
}

template <typename Number> std::string Shortest(Number number)
{
    // Words for what is no number: a spreadsheet leaves them as they are.
    if (!std::isfinite(number))
        return std::isnan(number) ? "nan" : number > 0 ? "inf" : "-inf";
    char text[40];
    const auto end = std::to_chars(text, text + sizeof text, number);
    return std::string(text, end.ptr);
}

float FloatOf(const SMP_Item &item, uint64_t bits)
{
    const uint32_t low = static_cast<uint32_t>(bits);
    if (item.isTMS) // of 24 bits: a single holds it
        return static_cast<float>(TMS_IEEE(low));
    float number;
    std::memcpy(&number, &low, sizeof number);
    return number;
}

double DoubleOf(uint64_t bits)
{
    double number;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

} // namespace

SMP_Item SMP_FromWatch(const LItem &item)
{
    // The label: two lines may watch one variable under names of their own.
    SMP_Item sampled;
    sampled.name = LIT_Label(item);
    sampled.address = LIT_HasAddress(item) ? item.address : SMP_NO_ADDRESS;
    sampled.station = LIT_Station(item);
    sampled.size = item.size;
    sampled.type = item.type;
    sampled.isTMS = LIT_IsTMS(item);
    return sampled;
}

bool SMP_IsSame(const SMP_Item &a, const SMP_Item &b)
{
    return a.name == b.name && a.address == b.address && a.station == b.station &&
           a.size == b.size && a.type == b.type && a.isTMS == b.isTMS;
}

std::string SMP_TypeText(const SMP_Item &item)
{
    LItem typed;
    typed.type = item.type;
    typed.size = item.size;
    return VAL_TypeField(typed);
}

bool SMP_IsRate(const SMP_Item &item)
{
    return item.type == 'p';
}

double SMP_Number(const SMP_Item &item, uint64_t bits)
{
    if (SMP_IsRate(item))
        return DoubleOf(bits);
    const char form = PlainForm(item);
    if (form == 'f')
        return static_cast<double>(FloatOf(item, bits));
    return form == 'i' ? static_cast<double>(SignedOf(item, bits)) : static_cast<double>(bits);
}

std::string SMP_NumberText(const SMP_Item &item, uint64_t bits)
{
    if (SMP_IsRate(item))
        return Shortest(DoubleOf(bits));
    const char form = PlainForm(item);
    if (form == 'f')
        return Shortest(FloatOf(item, bits));
    return form == 'i' ? std::to_string(SignedOf(item, bits)) : std::to_string(bits);
}

void SMP_SetStoreItems(SMP_Store *store, const std::vector<SMP_Item> &items, size_t samplesMax)
{
    std::vector<SMP_Ring> rings(items.size());
    // Each old ring serves once, though the list may hold a variable twice.
    for (size_t i = 0; i < items.size(); ++i)
        for (size_t old = 0; old < store->items.size(); ++old)
            if (store->rings[old].end != 0 && SMP_IsSame(items[i], store->items[old]) &&
                samplesMax == store->samplesMax) {
                rings[i] = std::move(store->rings[old]);
                store->rings[old] = SMP_Ring();
                break;
            }
    store->items = items;
    store->rings = std::move(rings);
    store->samplesMax = std::max<size_t>(samplesMax, 1); // the newest is always there
}

void SMP_AddRow(SMP_Store *store, size_t item, const SMP_Sample &sample)
{
    SMP_Ring &ring = store->rings[item];
    if (ring.end - ring.first == ring.timesUs.size()) {
        if (ring.timesUs.size() < store->samplesMax)
            Grow(&ring, store->samplesMax);
        else
            ++ring.first;
    }
    if (ring.end - ring.lap == ring.timesUs.size()) // at the end of the vectors: a new lap
        ring.lap = ring.end;
    const size_t place = SMP_PlaceOf(ring, ring.end);
    ring.timesUs[place] = sample.timeUs;
    ring.bits[place] = sample.bits;
    ring.states[place] = sample.state;
    ++ring.end;
}

SMP_Sample SMP_GetSample(const SMP_Store &store, size_t item, uint64_t number)
{
    const SMP_Ring &ring = store.rings[item];
    const size_t place = SMP_PlaceOf(ring, number);
    return {ring.timesUs[place], ring.bits[place], ring.states[place]};
}

int64_t SMP_GetRound(const SMP_Store &store, uint64_t back, std::vector<SMP_Sample> *samples)
{
    samples->assign(store.items.size(), {0, 0, SMP_NOT_SAMPLED});
    int64_t firstUs = INT64_MAX, lastUs = INT64_MIN;
    for (size_t i = 0; i < samples->size(); ++i) {
        const SMP_Ring &ring = store.rings[i];
        if (back > ring.end - ring.first)
            continue;
        (*samples)[i] = SMP_GetSample(store, i, ring.end - back);
        firstUs = std::min(firstUs, (*samples)[i].timeUs);
        lastUs = std::max(lastUs, (*samples)[i].timeUs);
    }
    return firstUs + (lastUs - firstUs) / 2;
}

uint64_t SMP_FindTime(const SMP_Store &store, size_t item, int64_t timeUs)
{
    // By halves: the times of one item rise, whatever the system's clock does.
    const SMP_Ring &ring = store.rings[item];
    uint64_t from = ring.first, to = ring.end;
    while (from < to) {
        const uint64_t middle = from + (to - from) / 2;
        if (ring.timesUs[SMP_PlaceOf(ring, middle)] < timeUs)
            from = middle + 1;
        else
            to = middle;
    }
    return from;
}

void SMP_CopySamples(const SMP_Store &store, size_t item, uint64_t from, uint64_t to,
                     int64_t originUs, std::vector<double> *seconds, std::vector<double> *values)
{
    seconds->clear();
    values->clear();
    const SMP_Ring &ring = store.rings[item];
    // The caller's numbers may be older than what is kept.
    from = std::max(from, ring.first);
    to = std::min(to, ring.end);
    for (uint64_t number = from; number < to; ++number) {
        const SMP_Sample sample = SMP_GetSample(store, item, number);
        seconds->push_back(static_cast<double>(sample.timeUs - originUs) / 1e6);
        values->push_back(sample.state == SMP_GOOD ? SMP_Number(store.items[item], sample.bits)
                                                   : std::numeric_limits<double>::quiet_NaN());
    }
}

uint8_t SMP_StateOf(SMP_Store *store, const std::string &reason)
{
    // A state is a byte in every sample: its text stands here once.
    const auto known = std::find(store->reasons.begin(), store->reasons.end(), reason);
    if (known == store->reasons.end()) {
        if (store->reasons.size() == REASONS_MAX) // a state is a byte, and 0 is good
            return REASONS_MAX;
        store->reasons.push_back(store->reasons.size() == REASONS_MAX - 1 ? OTHER_REASON : reason);
        return static_cast<uint8_t>(store->reasons.size());
    }
    return static_cast<uint8_t>(known - store->reasons.begin() + 1);
}

std::string SMP_ReasonText(const SMP_Store &store, uint8_t state)
{
    return state == SMP_GOOD || state > store.reasons.size() ? "" : store.reasons[state - 1u];
}
