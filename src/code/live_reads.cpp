// What is wanted is planned as blocks; where some of it is known only after the rest was read, that
// is read in a second step, and the proof at the end holds for both.
#include "code/live_reads.h"

#include <algorithm>

#include "comm/grouping.h"
#include "comm/ucm.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "text/bytes.h"

namespace {

constexpr int ROUNDS_MAX = 3; // of reading again what is in doubt
constexpr uint32_t NUMBER_BYTES_MAX = 4;
constexpr uint32_t SHARE_BYTES = 16; // larger pieces are planned in such, for any block to hold

// Blocks of the second reading may span those of the first, so more than one is looked into.
bool FindByte(const CODE_LiveReads &set, uint32_t address, uint8_t *byte)
{
    for (auto block = set.blocks.upper_bound(address); block != set.blocks.begin();) {
        --block;
        const uint32_t at = address - block->first;
        if (at < block->second.size()) {
            *byte = block->second[at];
            return true;
        }
    }
    return false;
}

// The last message is the proof of all, where it can be. The longest is the best for that: it has
// the most lengths to choose from, and with one that follows it at once no message more is needed.
void PutProvingLast(std::vector<CODE_LivePiece> *plan)
{
    const auto longest = std::max_element(
        plan->begin(), plan->end(),
        [](const CODE_LivePiece &a, const CODE_LivePiece &b) { return a.size < b.size; });
    if (longest == plan->end())
        return;
    CODE_LivePiece last = *longest;
    auto next = plan->erase(longest);
    if (next != plan->end() && next->address == last.address + last.size) {
        last.size += next->size;
        plan->erase(next);
    }
    plan->push_back(last);
}

bool ReadBlocks(CODE_LiveReads *set, int station, bool isLast)
{
    std::vector<CODE_LivePiece> plan = CODE_PlanLive(*set);
    if (isLast)
        PutProvingLast(&plan);
    for (size_t i = 0; i < plan.size(); ++i) {
        const CODE_LivePiece &piece = plan[i];
        std::vector<uint8_t> bytes(piece.size);
        const auto read = isLast && i + 1 == plan.size() ? UCM_ReadProving : UCM_Read;
        if (read(station, piece.address, piece.size, bytes.data()) < 0)
            return false;
        set->blocks[piece.address] = std::move(bytes);
    }
    return true;
}

} // namespace

void CODE_WantLive(CODE_LiveReads *set, uint32_t address, uint32_t size)
{
    if (address < ADDR_LIMIT && size <= ADDR_LIMIT - address)
        set->wanted.push_back({address, size});
}

std::vector<CODE_LivePiece> CODE_PlanLive(const CODE_LiveReads &set)
{
    std::vector<UCM_BlockItem> items;
    for (const CODE_LivePiece &piece : set.wanted)
        for (uint32_t at = 0; at < piece.size; at += SHARE_BYTES) {
            const uint32_t size = std::min(SHARE_BYTES, piece.size - at);
            // Of what the first step has read already, nothing is read again.
            uint8_t byte = 0;
            uint32_t known = 0;
            while (known < size && FindByte(set, piece.address + at + known, &byte))
                ++known;
            if (known < size)
                items.push_back({0, piece.address + at, size});
        }
    std::vector<CODE_LivePiece> plan;
    for (const UCM_Block &block :
         UCM_PlanBlocks(items, UCM_ReadWire(VR_nProtocol), UCM_ReadRules(Procesor)))
        plan.push_back({block.address, block.size});
    return plan;
}

int CODE_ReadLive(CODE_LiveReads *set, int station, std::string *cause,
                  const std::function<void(CODE_LiveReads *set)> &wantMore)
{
    // In doubt all of it is read again, pointers first: they may have been the doubtful part.
    int proof = UCM_READ_AGAIN;
    for (int round = 0; round < ROUNDS_MAX && proof == UCM_READ_AGAIN; ++round) {
        set->blocks.clear();
        bool isGood = ReadBlocks(set, station, wantMore == nullptr);
        if (isGood && wantMore != nullptr) {
            wantMore(set);
            isGood = ReadBlocks(set, station, true);
        }
        if (!isGood) {
            *cause = UCM_LastErrorText();
            set->blocks.clear();
            return -1;
        }
        proof = UCM_Prove();
    }
    if (proof == UCM_PROVEN)
        return 0;
    *cause = proof == UCM_READ_AGAIN ? UCM_REPEATED_TEXT : UCM_LastErrorText();
    set->blocks.clear();
    return -1;
}

bool CODE_GetLive(const CODE_LiveReads &set, uint32_t address, uint32_t size, uint32_t *value)
{
    uint8_t bytes[NUMBER_BYTES_MAX];
    if (size < 1 || size > NUMBER_BYTES_MAX)
        return false;
    for (uint32_t i = 0; i < size; ++i) // a number may lie across two blocks
        if (!FindByte(set, address + i, &bytes[i]))
            return false;
    *value = static_cast<uint32_t>(TXT_GetLittle(bytes, size));
    return true;
}
