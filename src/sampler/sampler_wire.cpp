// What the sampler asks of the line: how it is reached, in which blocks, and what those cost. A
// plan belongs to a protocol and a processor; whoever uses it looks whether they have changed.
#include "sampler/sampler.h"

#include "comm/failures.h"
#include "comm/tms_mailbox.h"
#include "comm/ucm.h"
#include "platform/system.h"
#include "settings/settings.h"

#include <algorithm>

namespace {

constexpr uint32_t ADDRESS_END = 0x1000000; // of target addresses
constexpr double US_PER_S = 1e6;
constexpr uint64_t TOGETHER_MIN_US = 10000000;  // items that were parted stay so at least,
constexpr uint64_t TOGETHER_MAX_US = 600000000; // and at most

// Why the last read or proof failed: kept at once, for the next exchange overwrites what the layer
// below knows of it.
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

} // namespace

const SMP_Line SMP_LINE = {ReadLine,
                           ReadLineTMS,
                           ProveLine,
                           UCM_CountDoubts,
                           [] { return lastFailure; },
                           [] { return lastCause; },
                           PLT_TickUs,
                           ReadLineProving};

uint64_t SMP_CountChars(const SMP_Sampler &sampler, const UCM_Block &block)
{
    const UCM_WireCosts read = UCM_ReadWire(sampler.protocol);
    if (!sampler.store.items[block.items[0]].isTMS)
        return UCM_CountBlockChars(read, block.size);
    // Address and command go in, the busy flag is polled, the word comes out.
    return 2 * UCM_CountBlockChars(UCM_WriteWire(sampler.protocol), 4) +
           UCM_CountBlockChars(read, 2) + UCM_CountBlockChars(read, 4);
}

void SMP_MakePlan(SMP_Sampler *sampler)
{
    sampler->protocol = VR_nProtocol;
    sampler->processor = Procesor;
    sampler->next = 0;
    sampler->plan.clear();
    // By itself goes what travels through a mailbox, a word each, and what was refused in a block.
    std::vector<UCM_BlockItem> together;
    std::vector<size_t> indices;
    const std::vector<SMP_Item> &items = sampler->store.items;
    for (size_t i = 0; i < items.size(); ++i) {
        // An item without a place fails without being asked for; so does one of no known size.
        if (items[i].address >= ADDRESS_END || items[i].size < 1 || items[i].size > 8)
            continue;
        const uint32_t size = static_cast<uint32_t>(items[i].size);
        if (items[i].isTMS || sampler->isAlone[i]) {
            sampler->plan.push_back({items[i].station, items[i].address, size, {i}});
            continue;
        }
        together.push_back({items[i].station, items[i].address, size});
        indices.push_back(i);
    }
    // The plan counts the items it was given; the sampler all of them.
    for (UCM_Block &block :
         UCM_PlanBlocks(together, UCM_ReadWire(VR_nProtocol), UCM_ReadRules(Procesor))) {
        for (size_t &item : block.items)
            item = indices[item];
        sampler->plan.push_back(std::move(block));
    }
}

void SMP_PartBlock(SMP_Sampler *sampler, uint64_t nowUs)
{
    // A copy: its place in the plan is given to the single ones.
    const UCM_Block block = sampler->plan[sampler->next];
    std::vector<UCM_Block> singles;
    for (const size_t i : block.items) {
        const SMP_Item &item = sampler->store.items[i];
        singles.push_back({item.station, item.address, static_cast<uint32_t>(item.size), {i}});
        sampler->isAlone[i] = 1;
    }
    const auto at = sampler->plan.begin() + static_cast<std::ptrdiff_t>(sampler->next);
    sampler->plan.insert(sampler->plan.erase(at), singles.begin(), singles.end());
    // Twice as long each time: a byte that can never be read costs ever fewer refusals.
    sampler->apartUs = std::min(std::max(2 * sampler->apartUs, TOGETHER_MIN_US), TOGETHER_MAX_US);
    sampler->togetherUs = nowUs + sampler->apartUs;
}

double SMP_RowsPerSecondMax(const SMP_Sampler &sampler, int baud)
{
    uint64_t chars = 0;
    for (const UCM_Block &block : sampler.plan)
        chars += SMP_CountChars(sampler, block);
    return chars == 0 ? 0 : baud / SMP_BITS_PER_CHAR / static_cast<double>(chars);
}

double SMP_WireShare(const SMP_Sampler &sampler, int baud)
{
    if (sampler.totals.elapsedUs == 0)
        return 0;
    return static_cast<double>(sampler.totals.chars) * SMP_BITS_PER_CHAR / baud * US_PER_S /
           static_cast<double>(sampler.totals.elapsedUs);
}
