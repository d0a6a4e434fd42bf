#include "sampler/sampler.h"

#include "comm/failures.h"
#include "comm/tms_mailbox.h"
#include "comm/ucm.h"
#include "platform/system.h"
#include "settings/settings.h"
#include "text/bytes.h"
#include "watch/list/read_item.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint32_t ADDRESS_END = 0x1000000; // of target addresses
constexpr double BITS_PER_CHAR = 11;        // of both protocols
constexpr uint64_t SECOND_US = 1000000;

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
constexpr uint64_t TOGETHER_MIN_US = 10 * SECOND_US, TOGETHER_MAX_US = 600 * SECOND_US;

const char FIRST_OF_RATE[] = "a rate needs two values";

// --- the line as it is --------------------------------------------------------------------
std::string lastFailure;
UCM_Cause lastCause = UCM_CAUSE_OTHER;

template <typename Read> int ReadNoting(Read read, std::string (*reason)(int result))
{
    UCM_Statistics before;
    UCM_GetStatistics(&before);
    const int result = read();
    if (result < 0) {
        lastFailure = reason(result);
        lastCause = UCM_CauseSince(before);
    }
    return result;
}

int ReadLine(int station, uint32_t address, uint32_t count, void *buffer)
{
    return ReadNoting([&] { return UCM_Read(station, address, count, buffer); },
                      [](int) { return UCM_LastErrorText(); });
}

int ReadLineProving(int station, uint32_t address, uint32_t count, void *buffer)
{
    return ReadNoting([&] { return UCM_ReadProving(station, address, count, buffer); },
                      [](int) { return UCM_LastErrorText(); });
}

int ReadLineTMS(int station, uint32_t address, uint32_t *value)
{
    return ReadNoting([&] { return TMS_ReadWord(station, address, TMS_POLLS_ITEM, value); },
                      [](int result) { return TMS_ErrorText(result); });
}

int ProveLine()
{
    const int result = UCM_Prove();
    if (result == UCM_NOT_PROVEN)
        lastFailure = UCM_LastErrorText();
    return result;
}

// --- the plan ------------------------------------------------------------------------------
bool IsReadable(const SMP_Item &item)
{
    return item.address < ADDRESS_END && item.size >= 1 && item.size <= 8;
}

uint64_t CharsOf(const SMP_Sampler &sampler, const GRP_Block &block)
{
    const GRP_Wire read = GRP_ReadWire(sampler.protocol);
    if (!sampler.store.items[block.items[0]].isTMS)
        return GRP_CountChars(read, block.size);
    // Address and command go in, the busy flag is polled, the word comes out.
    return 2 * GRP_CountChars(GRP_WriteWire(sampler.protocol), 4) + GRP_CountChars(read, 2) +
           GRP_CountChars(read, 4);
}

void MakePlan(SMP_Sampler *sampler)
{
    sampler->protocol = VR_nProtocol;
    sampler->processor = Procesor;
    sampler->next = 0;
    sampler->plan.clear();
    std::vector<GRP_Item> together;
    std::vector<size_t> indices;
    const std::vector<SMP_Item> &items = sampler->store.items;
    for (size_t i = 0; i < items.size(); ++i) {
        if (!IsReadable(items[i]))
            continue;
        const uint32_t size = static_cast<uint32_t>(items[i].size);
        if (items[i].isTMS || sampler->isAlone[i]) {
            sampler->plan.push_back({items[i].station, items[i].address, size, {i}});
            continue;
        }
        together.push_back({items[i].station, items[i].address, size});
        indices.push_back(i);
    }
    for (GRP_Block &block :
         GRP_Plan(together, GRP_ReadWire(VR_nProtocol), GRP_ReadRules(Procesor))) {
        for (size_t &item : block.items)
            item = indices[item];
        sampler->plan.push_back(std::move(block));
    }
}

// A block that was refused may hold a byte that cannot be read: its items go on one by one,
// and for a while they stay so.
void PartBlock(SMP_Sampler *sampler, uint64_t nowUs)
{
    const GRP_Block block = sampler->plan[sampler->next];
    std::vector<GRP_Block> singles;
    for (const size_t i : block.items) {
        const SMP_Item &item = sampler->store.items[i];
        singles.push_back({item.station, item.address, static_cast<uint32_t>(item.size), {i}});
        sampler->isAlone[i] = 1;
    }
    const auto at = sampler->plan.begin() + static_cast<std::ptrdiff_t>(sampler->next);
    sampler->plan.insert(sampler->plan.erase(at), singles.begin(), singles.end());
    sampler->apartUs = std::min(std::max(2 * sampler->apartUs, TOGETHER_MIN_US), TOGETHER_MAX_US);
    sampler->togetherUs = nowUs + sampler->apartUs;
}

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

void NoteAnswer(SMP_Sampler *sampler, SMP_Station *station)
{
    if (station->isSilent)
        Tell(*sampler, "Station " + std::to_string(station->number) + " answers again.");
    station->isSilent = false;
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
uint64_t BitsOf(double number)
{
    uint64_t bits;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

// A count becomes its change a second since the good one before.
void MakeRate(SMP_Sampler *sampler, size_t i, SMP_Sample *sample)
{
    SMP_Sample &before = sampler->previous[i];
    const SMP_Sample count = *sample;
    const uint64_t mask = UINT64_MAX >> (64 - 8 * sampler->store.items[i].size);
    const int64_t elapsedUs = count.timeUs - before.timeUs;
    if (count.state == SMP_GOOD && before.state == SMP_GOOD && elapsedUs > 0)
        sample->bits = BitsOf(static_cast<double>((count.bits - before.bits) & mask) * 1e6 /
                              static_cast<double>(elapsedUs));
    else if (count.state == SMP_GOOD)
        sample->state = SST_StateOf(&sampler->store, FIRST_OF_RATE);
    before = count;
}

// By its samples' own times: from these the store finds the row of a recording again.
int64_t MiddleOf(const SMP_Sample *samples, size_t count)
{
    const auto isEarlier = [](const SMP_Sample &a, const SMP_Sample &b) {
        return a.timeUs < b.timeUs;
    };
    const auto ends = std::minmax_element(samples, samples + count, isEarlier);
    return ends.first->timeUs + (ends.second->timeUs - ends.first->timeUs) / 2;
}

void GiveOut(SMP_Sampler *sampler)
{
    const size_t count = sampler->store.items.size();
    std::vector<SMP_Sample> held = std::move(sampler->held);
    sampler->held.clear();
    for (size_t row = 0; row < held.size(); row += count) {
        SMP_Sample *samples = &held[row];
        for (size_t i = 0; i < count; ++i) {
            if (SMP_IsRate(sampler->store.items[i]))
                MakeRate(sampler, i, &samples[i]);
            SST_Add(&sampler->store, i, samples[i]);
            sampler->totals.failed += samples[i].state != SMP_GOOD;
        }
        ++sampler->totals.rows;
        sampler->totals.samples += count;
        if (sampler->listener.row != nullptr)
            sampler->listener.row(sampler->listener.context, *sampler,
                                  {MiddleOf(samples, count), samples, count});
    }
    if (!held.empty() && sampler->listener.published != nullptr)
        sampler->listener.published(sampler->listener.context);
}

// The row that is being read counts among what waits.
void FailHeld(SMP_Sampler *sampler, const std::string &reason)
{
    const uint8_t state = SST_StateOf(&sampler->store, reason);
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
        MakePlan(sampler);
    SMP_Sample unread;
    unread.timeUs = static_cast<int64_t>(nowUs);
    unread.state = SST_StateOf(&sampler->store, RDI_NOT_RESOLVED);
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
    if (!sampler->isAnyAsked)
        sampler->dueUs = std::max(sampler->dueUs, nowUs + NOTHING_READ_US);
}

void SetBlock(SMP_Sampler *sampler, const GRP_Block &block, const uint8_t *bytes, int64_t timeUs,
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
                ? BYT_GetLittle(bytes + (item.isTMS ? 0 : item.address - block.address), size)
                : 0;
    }
}

uint64_t ProofPeriodUs(const SMP_Sampler &sampler)
{
    const double stations = static_cast<double>(std::max<size_t>(sampler.stations.size(), 1));
    const double wanted = stations * PROOF_CHARS * BITS_PER_CHAR / std::max(bRate, 1) / PROOF_SHARE;
    return std::clamp(static_cast<uint64_t>(wanted * 1e6), PROOF_MIN_US, PROOF_MAX_US);
}

int Ask(SMP_Sampler *sampler, const GRP_Block &block, uint8_t *bytes)
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
    BYT_PutLittle(bytes, 8, word);
    return result;
}

// One block of the plan, or its failure.
void ReadBlock(SMP_Sampler *sampler)
{
    const GRP_Block block = sampler->plan[sampler->next];
    SMP_Station *station = StationOf(sampler, block.station);
    const uint64_t beginUs = sampler->line.nowUs();
    if (station->isSilent && beginUs < station->askAgainUs) {
        SetBlock(sampler, block, nullptr, static_cast<int64_t>(beginUs),
                 SST_StateOf(&sampler->store, station->reason));
        ++sampler->next;
        return;
    }
    std::vector<uint8_t> bytes(std::max<size_t>(block.size, 8));
    if (sampler->held.empty() && !sampler->isAnyAsked)
        sampler->doubts = sampler->line.doubts();
    sampler->isAnyAsked = true;
    const int result = Ask(sampler, block, bytes.data());
    const uint64_t endUs = sampler->line.nowUs();
    const int64_t middleUs = static_cast<int64_t>((beginUs + endUs) / 2);
    const bool isRefused = result < 0 && sampler->line.cause() == UCM_CAUSE_REFUSED;
    if (result < 0 && !isRefused)
        NoteSilence(sampler, station, endUs, endUs - beginUs);
    else
        NoteAnswer(sampler, station);
    if (isRefused && block.items.size() > 1) {
        PartBlock(sampler, endUs);
        return;
    }
    if (result >= 0)
        sampler->totals.chars += CharsOf(*sampler, block);
    SetBlock(sampler, block, bytes.data(), middleUs,
             result >= 0 ? SMP_GOOD : SST_StateOf(&sampler->store, sampler->line.failure()));
    ++sampler->next;
}

int CheckItems(const std::vector<SMP_Item> &items)
{
    return items.empty() || items.size() > SMP_ITEMS_MAX ? SMP_ERR_ITEMS : 0;
}

} // namespace

const SMP_Line SMP_LINE = {ReadLine,
                           ReadLineTMS,
                           ProveLine,
                           UCM_CountDoubts,
                           [] { return lastFailure; },
                           [] { return lastCause; },
                           PLT_TickUs,
                           ReadLineProving};

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
    SST_SetItems(&sampler->store, items, samplesMax);
    sampler->isAlone.assign(items.size(), 0);
    sampler->previous.assign(items.size(), {0, 0, UINT8_MAX});
    MakePlan(sampler);
    return 0;
}

int SMP_Change(SMP_Sampler *sampler, const std::vector<SMP_Item> &items)
{
    if (CheckItems(items) != 0)
        return SMP_ERR_ITEMS;
    sampler->row.clear();
    sampler->isInRow = false;
    if (!sampler->held.empty())
        ProveAndGiveOut(sampler);
    SST_SetItems(&sampler->store, items, sampler->store.samplesMax);
    sampler->isAlone.assign(items.size(), 0);
    sampler->previous.assign(items.size(), {0, 0, UINT8_MAX});
    MakePlan(sampler);
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

double SMP_RowsPerSecondMax(const SMP_Sampler &sampler, int baud)
{
    uint64_t chars = 0;
    for (const GRP_Block &block : sampler.plan)
        chars += CharsOf(sampler, block);
    return chars == 0 ? 0 : baud / BITS_PER_CHAR / static_cast<double>(chars);
}

double SMP_WireShare(const SMP_Sampler &sampler, int baud)
{
    if (sampler.totals.elapsedUs == 0)
        return 0;
    return static_cast<double>(sampler.totals.chars) * BITS_PER_CHAR / baud * 1e6 /
           static_cast<double>(sampler.totals.elapsedUs);
}
