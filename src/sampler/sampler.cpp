// Row by row: a row is read block by block, held until the line is proven, then given out. A block
// a step, so that all of this is in the sampler between two steps and nowhere else.
#include "sampler/sampler.h"

#include "comm/failures.h"
#include "settings/settings.h"
#include "text/bytes.h"
#include "watch/list/read_item.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint64_t SECOND_US = 1000000;
constexpr double US_PER_S = 1e6;

// A proof costs about so many characters (mr166, whose bytes are dearer; Modbus 63); of the
// line's time it may take a hundredth, within these bounds: later than that nobody wants to see
// a value, nor to lose it in a crash.
constexpr double PROOF_CHARS = 76, PROOF_SHARE = 0.01;
constexpr uint64_t PROOF_MIN_US = 250000, PROOF_MAX_US = 800000;
constexpr double PROOF_SOON = 0.8;         // of that time: a block may be the proof from then on
constexpr uint64_t PROOF_IDLE_US = 100000; // when the line has nothing else to do

constexpr uint64_t SILENCE_MIN_US = 2 * SECOND_US; // before a silent station is asked again
constexpr uint64_t SILENCE_FACTOR = 4;             // of what asking it has cost
constexpr uint64_t NO_LINE_US = 500000;            // before the port is tried again
constexpr uint64_t NOTHING_READ_US = 250000;       // between rows for which nobody was asked

const char FIRST_OF_RATE[] = "a rate needs two values";

// --- stations that are silent --------------------------------------------------------------
SMP_Station *StationOf(SMP_Sampler *sampler, int number)
{
    for (SMP_Station &station : sampler->stations)
        if (station.number == number)
            return &station;
    sampler->stations.push_back({number, false, 0, ""});
    return &sampler->stations.back();
}

void Tell(const SMP_Sampler &sampler, const std::string &text)
{
    if (sampler.listener.message != nullptr)
        sampler.listener.message(sampler.listener.context, text);
}

void NoteSilence(SMP_Sampler *sampler, SMP_Station *station, uint64_t nowUs, uint64_t costUs)
{
    station->reason = sampler->line.failure();
    const bool isSilence = sampler->line.cause() == UCM_CAUSE_SILENT;
    station->askAgainUs =
        nowUs + (isSilence ? std::max(SILENCE_MIN_US, SILENCE_FACTOR * costUs) : NO_LINE_US);
    if (!station->isSilent)
        Tell(*sampler, "Station " + std::to_string(station->number) + ": " + station->reason + ".");
    station->isSilent = true;
}

// --- giving out ----------------------------------------------------------------------------
// A count becomes its change a second since the good one before.
void MakeRate(SMP_Sampler *sampler, size_t i, SMP_Sample *sample)
{
    SMP_Sample &before = sampler->previous[i];
    const SMP_Sample count = *sample;
    const uint64_t mask = UINT64_MAX >> (64 - 8 * sampler->store.items[i].size);
    const int64_t elapsedUs = count.timeUs - before.timeUs;
    if (count.state == SMP_GOOD && before.state == SMP_GOOD && elapsedUs > 0) {
        // Modulo its size: a counter that has wrapped once goes on.
        const double rate = static_cast<double>((count.bits - before.bits) & mask) * US_PER_S /
                            static_cast<double>(elapsedUs);
        std::memcpy(&sample->bits, &rate, sizeof rate);
    } else if (count.state == SMP_GOOD) {
        sample->state = SMP_StateOf(&sampler->store, FIRST_OF_RATE);
    }
    before = count;
}

// By its samples' own times: from these the store finds the row of a recording again.
int64_t MiddleTimeUs(const SMP_Sample *samples, size_t count)
{
    const auto isEarlier = [](const SMP_Sample &a, const SMP_Sample &b) {
        return a.timeUs < b.timeUs;
    };
    const auto ends = std::minmax_element(samples, samples + count, isEarlier);
    return ends.first->timeUs + (ends.second->timeUs - ends.first->timeUs) / 2;
}

void GiveOut(SMP_Sampler *sampler)
{
    // Taken out first, so that nothing is given out twice.
    const size_t count = sampler->store.items.size();
    std::vector<SMP_Sample> held = std::move(sampler->held);
    sampler->held.clear();
    for (size_t row = 0; row < held.size(); row += count) {
        SMP_Sample *samples = &held[row];
        for (size_t i = 0; i < count; ++i) {
            if (SMP_IsRate(sampler->store.items[i]))
                MakeRate(sampler, i, &samples[i]);
            SMP_AddRow(&sampler->store, i, samples[i]);
            sampler->totals.failed += samples[i].state != SMP_GOOD;
        }
        ++sampler->totals.rows;
        sampler->totals.samples += count;
        if (sampler->listener.row != nullptr)
            sampler->listener.row(sampler->listener.context, *sampler,
                                  {MiddleTimeUs(samples, count), samples, count});
    }
    if (!held.empty() && sampler->listener.published != nullptr)
        sampler->listener.published(sampler->listener.context);
}

// The row that is being read counts among what waits.
void FailHeld(SMP_Sampler *sampler, const std::string &reason)
{
    const uint8_t state = SMP_StateOf(&sampler->store, reason);
    for (std::vector<SMP_Sample> *samples : {&sampler->held, &sampler->row})
        for (SMP_Sample &sample : *samples)
            if (sample.state == SMP_GOOD)
                sample.state = state;
}

// What was in doubt cannot be read again: its moment is over. It has failed. Others who asked
// for a proof meanwhile may have been told of a doubt that concerns these samples too.
void ProveAndGiveOut(SMP_Sampler *sampler)
{
    sampler->hasProofCome = false;
    int result = sampler->line.prove();
    if (result == UCM_PROVEN && sampler->line.doubts() != sampler->doubts)
        result = UCM_READ_AGAIN;
    sampler->doubts = sampler->line.doubts();
    if (result != UCM_PROVEN) {
        const std::string cause =
            result == UCM_READ_AGAIN ? UCM_REPEATED_TEXT : sampler->line.failure();
        FailHeld(sampler, cause.empty() ? FAIL_NO_PROOF : cause);
    }
    sampler->provenUs = sampler->line.nowUs();
    GiveOut(sampler);
}

// --- one row -------------------------------------------------------------------------------
void BeginRow(SMP_Sampler *sampler, uint64_t nowUs)
{
    const bool isOtherLine = sampler->protocol != VR_nProtocol || sampler->processor != Procesor;
    const bool isTogether = sampler->togetherUs != 0 && nowUs >= sampler->togetherUs;
    if (isTogether) {
        std::fill(sampler->isAlone.begin(), sampler->isAlone.end(), uint8_t{0});
        sampler->togetherUs = 0;
    }
    if (isOtherLine || isTogether)
        SMP_MakePlan(sampler);
    // What the plan leaves out keeps this: it has no place.
    SMP_Sample unread;
    unread.timeUs = static_cast<int64_t>(nowUs);
    unread.state = SMP_StateOf(&sampler->store, RFR_NOT_RESOLVED);
    sampler->row.assign(sampler->store.items.size(), unread);
    sampler->isAnyAsked = false;
    sampler->isInRow = true;
    sampler->next = 0;
}

void EndRow(SMP_Sampler *sampler, uint64_t nowUs)
{
    sampler->isInRow = false;
    sampler->held.insert(sampler->held.end(), sampler->row.begin(), sampler->row.end());
    const uint64_t periodUs = static_cast<uint64_t>(sampler->periodMs) * 1000;
    if (periodUs == 0)
        sampler->dueUs = nowUs;
    else // what was missed is left out, and the beat stays
        sampler->dueUs +=
            std::max<uint64_t>((nowUs - std::min(nowUs, sampler->dueUs) + periodUs - 1) / periodUs,
                               1) *
            periodUs;
    // Rows of silent stations alone cost no exchange: without a pause they would fill the store.
    if (!sampler->isAnyAsked)
        sampler->dueUs = std::max(sampler->dueUs, nowUs + NOTHING_READ_US);
}

void SetBlock(SMP_Sampler *sampler, const UCM_Block &block, const uint8_t *bytes, int64_t timeUs,
              uint8_t state)
{
    for (const size_t i : block.items) {
        const SMP_Item &item = sampler->store.items[i];
        SMP_Sample &sample = sampler->row[i];
        sample.timeUs = timeUs;
        sample.state = state;
        const size_t size = static_cast<size_t>(item.size);
        sample.bits =
            state == SMP_GOOD
                ? TXT_GetLittle(bytes + (item.isTMS ? 0 : item.address - block.address), size)
                : 0;
    }
}

// A proof for each station, at the price above. At 115,200 baud and one station: 0.73 s.
uint64_t ProofPeriodUs(const SMP_Sampler &sampler)
{
    const double stations = static_cast<double>(std::max<size_t>(sampler.stations.size(), 1));
    const double wanted =
        stations * PROOF_CHARS * SMP_BITS_PER_CHAR / std::max(bRate, 1) / PROOF_SHARE;
    return std::clamp(static_cast<uint64_t>(wanted * US_PER_S), PROOF_MIN_US, PROOF_MAX_US);
}

int Ask(SMP_Sampler *sampler, const UCM_Block &block, uint8_t *bytes)
{
    if (!sampler->store.items[block.items[0]].isTMS) {
        const SMP_Line &line = sampler->line;
        // When a proof is due soon, the last block of a row can be that for its station.
        const double sinceUs = static_cast<double>(line.nowUs() - sampler->provenUs);
        const bool isProving = line.readProving != nullptr && sampler->stations.size() == 1 &&
                               sampler->next + 1 == sampler->plan.size() &&
                               sinceUs >= PROOF_SOON * static_cast<double>(ProofPeriodUs(*sampler));
        const auto read = isProving ? line.readProving : line.read;
        const int result = read(block.station, block.address, block.size, bytes);
        sampler->hasProofCome = isProving && result > 0;
        return result;
    }
    uint32_t word = 0;
    const int result = sampler->line.readTMS(block.station, block.address, &word);
    TXT_PutLittle(bytes, 8, word);
    return result;
}

// One block of the plan, or its failure.
void ReadBlock(SMP_Sampler *sampler)
{
    const UCM_Block block = sampler->plan[sampler->next];
    SMP_Station *station = StationOf(sampler, block.station);
    // A silent station's items fail at once, for the time it was given to recover.
    const uint64_t beginUs = sampler->line.nowUs();
    if (station->isSilent && beginUs < station->askAgainUs) {
        SetBlock(sampler, block, nullptr, static_cast<int64_t>(beginUs),
                 SMP_StateOf(&sampler->store, station->reason));
        ++sampler->next;
        return;
    }
    // Doubts are counted from the first exchange of what will be proven together.
    std::vector<uint8_t> bytes(std::max<size_t>(block.size, 8));
    if (sampler->held.empty() && !sampler->isAnyAsked)
        sampler->doubts = sampler->line.doubts();
    sampler->isAnyAsked = true;
    const int result = Ask(sampler, block, bytes.data());
    const uint64_t endUs = sampler->line.nowUs();
    const int64_t middleUs = static_cast<int64_t>((beginUs + endUs) / 2);
    const bool isRefused = result < 0 && sampler->line.cause() == UCM_CAUSE_REFUSED;
    // A refusal is an answer: the station is there, and what it refuses is the block's affair.
    if (result < 0 && !isRefused) {
        NoteSilence(sampler, station, endUs, endUs - beginUs);
    } else {
        if (station->isSilent)
            Tell(*sampler, "Station " + std::to_string(station->number) + " answers again.");
        station->isSilent = false;
    }
    if (isRefused && block.items.size() > 1) {
        SMP_PartBlock(sampler, endUs);
        return;
    }
    if (result >= 0)
        sampler->totals.chars += SMP_CountChars(*sampler, block);
    SetBlock(sampler, block, bytes.data(), middleUs,
             result >= 0 ? SMP_GOOD : SMP_StateOf(&sampler->store, sampler->line.failure()));
    ++sampler->next;
}

int CheckItems(const std::vector<SMP_Item> &items)
{
    return items.empty() || items.size() > SMP_ITEMS_MAX ? SMP_ERR_ITEMS : 0;
}

} // namespace

int SMP_Start(SMP_Sampler *sampler, const std::vector<SMP_Item> &items, int periodMs,
              const SMP_Listener &listener, size_t samplesMax, const SMP_Line *line)
{
    if (CheckItems(items) != 0)
        return SMP_ERR_ITEMS;
    if (periodMs < 0 || periodMs > SMP_PERIOD_MAX_MS)
        return SMP_ERR_PERIOD;
    *sampler = SMP_Sampler();
    if (line != nullptr)
        sampler->line = *line;
    sampler->listener = listener;
    sampler->periodMs = periodMs;
    sampler->isRunning = true;
    sampler->startUs = sampler->dueUs = sampler->provenUs = sampler->line.nowUs();
    sampler->doubts = sampler->line.doubts();
    SMP_SetStoreItems(&sampler->store, items, samplesMax);
    sampler->isAlone.assign(items.size(), 0);
    sampler->previous.assign(items.size(), {0, 0, UINT8_MAX});
    SMP_MakePlan(sampler);
    return 0;
}

int SMP_Change(SMP_Sampler *sampler, const std::vector<SMP_Item> &items)
{
    if (CheckItems(items) != 0)
        return SMP_ERR_ITEMS;
    // Proven first, under the items they were read for.
    sampler->row.clear();
    sampler->isInRow = false;
    if (!sampler->held.empty())
        ProveAndGiveOut(sampler);
    SMP_SetStoreItems(&sampler->store, items, sampler->store.samplesMax);
    sampler->isAlone.assign(items.size(), 0);
    sampler->previous.assign(items.size(), {0, 0, UINT8_MAX});
    SMP_MakePlan(sampler);
    return 0;
}

void SMP_Stop(SMP_Sampler *sampler)
{
    if (!sampler->isRunning)
        return;
    sampler->row.clear();
    if (!sampler->held.empty())
        ProveAndGiveOut(sampler);
    sampler->totals.elapsedUs = sampler->line.nowUs() - sampler->startUs;
    sampler->isRunning = false;
}

int64_t SMP_Step(SMP_Sampler *sampler)
{
    if (!sampler->isRunning)
        return SMP_IDLE;
    const uint64_t nowUs = sampler->line.nowUs();
    sampler->totals.elapsedUs = nowUs - sampler->startUs;
    // A proof goes first: it is due when the last block has brought it, when the line is idle, or
    // when a hundredth of the line's time is there for one.
    const bool isWaiting = !sampler->held.empty();
    const uint64_t sinceProofUs = nowUs - sampler->provenUs;
    const bool isIdle = !sampler->isInRow && nowUs < sampler->dueUs;
    if (isWaiting && (sampler->hasProofCome ||
                      sinceProofUs >= (isIdle ? PROOF_IDLE_US : ProofPeriodUs(*sampler)))) {
        ProveAndGiveOut(sampler);
        return 0;
    }
    if (isIdle) {
        const uint64_t waitUs = sampler->dueUs - nowUs;
        return static_cast<int64_t>(isWaiting ? std::min(waitUs, PROOF_IDLE_US - sinceProofUs)
                                              : waitUs);
    }
    if (!sampler->isInRow)
        BeginRow(sampler, nowUs);
    if (sampler->next < sampler->plan.size())
        ReadBlock(sampler);
    if (sampler->next >= sampler->plan.size())
        EndRow(sampler, sampler->line.nowUs());
    return 0;
}

void SMP_DropHeld(SMP_Sampler *sampler, const std::string &reason)
{
    FailHeld(sampler, reason);
    GiveOut(sampler);
}
