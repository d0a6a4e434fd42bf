#include "code/live_reads.h"

#include <algorithm>

#include "comm/ucm.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "text/bytes.h"

namespace {

// A message costs about as much as so many bytes of an answer: a smaller gap is read along.
constexpr uint32_t GAP_MAX = 12;
constexpr int ROUNDS_MAX = 3;
constexpr uint32_t NUMBER_BYTES_MAX = 4;
// Special function registers and peripherals: a gap there may hold what must not be read.
constexpr uint32_t SPECIAL_FIRST = 0xEF00, SPECIAL_LAST = 0xFFFF;
constexpr uint32_t RAM_FIRST = 0xF600, RAM_LAST = 0xFDFF;

// The TMS320's peripherals lie all over its lower memory.
bool IsPlain(uint32_t address)
{
    if (IsWordAddressing(Procesor))
        return false;
    return address < SPECIAL_FIRST || address > SPECIAL_LAST ||
           (address >= RAM_FIRST && address <= RAM_LAST);
}

bool MayBridge(uint32_t end, uint32_t next)
{
    return next <= end || (next - end <= GAP_MAX && IsPlain(end) && IsPlain(next - 1));
}

bool ReadBlocks(LVR_Set *set, int station, const std::vector<LVR_Piece> &plan)
{
    set->blocks.clear();
    for (const LVR_Piece &piece : plan) {
        std::vector<uint8_t> &bytes = set->blocks[piece.address];
        bytes.resize(piece.size);
        if (UCM_Read(station, piece.address, piece.size, bytes.data()) < 0)
            return false;
    }
    return true;
}

} // namespace

void LVR_Want(LVR_Set *set, uint32_t address, uint32_t size)
{
    if (address < ADDR_LIMIT && size <= ADDR_LIMIT - address)
        set->wanted.push_back({address, size});
}

std::vector<LVR_Piece> LVR_Plan(const LVR_Set &set)
{
    std::vector<LVR_Piece> wanted = set.wanted, stretches, plan;
    std::sort(wanted.begin(), wanted.end(),
              [](const LVR_Piece &a, const LVR_Piece &b) { return a.address < b.address; });
    for (const LVR_Piece &piece : wanted) {
        LVR_Piece *last = stretches.empty() ? nullptr : &stretches.back();
        if (last != nullptr && MayBridge(last->address + last->size, piece.address))
            last->size = std::max(last->size, piece.address + piece.size - last->address);
        else
            stretches.push_back(piece);
    }
    for (const LVR_Piece &stretch : stretches)
        for (uint32_t at = 0; at < stretch.size; at += LVR_BLOCK_MAX)
            plan.push_back({stretch.address + at, std::min(LVR_BLOCK_MAX, stretch.size - at)});
    return plan;
}

int LVR_Read(LVR_Set *set, int station, std::string *cause)
{
    const std::vector<LVR_Piece> plan = LVR_Plan(*set);
    int proof = UCM_READ_AGAIN;
    for (int round = 0; round < ROUNDS_MAX && proof == UCM_READ_AGAIN; ++round) {
        if (!ReadBlocks(set, station, plan)) {
            *cause = UCM_LastErrorText();
            set->blocks.clear();
            return -1;
        }
        proof = UCM_Prove();
    }
    if (proof == UCM_PROVEN)
        return 0;
    *cause = "the line repeats answers";
    set->blocks.clear();
    return -1;
}

bool LVR_Get(const LVR_Set &set, uint32_t address, uint32_t size, uint32_t *value)
{
    uint8_t bytes[NUMBER_BYTES_MAX];
    if (size < 1 || size > NUMBER_BYTES_MAX)
        return false;
    for (uint32_t i = 0; i < size; ++i) { // a number may lie across two blocks
        auto block = set.blocks.upper_bound(address + i);
        if (block == set.blocks.begin())
            return false;
        --block;
        const uint32_t at = address + i - block->first;
        if (at >= block->second.size())
            return false;
        bytes[i] = block->second[at];
    }
    *value = static_cast<uint32_t>(BYT_GetLittle(bytes, size));
    return true;
}
