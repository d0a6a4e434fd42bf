// The items are sorted, and the cheapest cover of the first so many is made out of those of
// fewer: every item is tried as the end of a block, so no greedy choice has to be right.
#include "comm/grouping.h"

#include "settings/settings.h"

#include <algorithm>
#include <tuple>

namespace {

constexpr uint64_t IMPOSSIBLE = UINT64_MAX;
constexpr uint64_t BLOCK_WEIGHT = 1 << 20; // of a character against a block

// mr166: a byte is two characters; a write has sixteen bytes, however many of them count.
// Modbus: a register is two bytes and two characters.
struct ProtocolRow {
    int protocol;
    UCM_WireCosts read, write;
};
constexpr ProtocolRow PROTOCOL_ROWS[] = {
    {PROTOCOL_MR166, {18 + 10, 1, 2, 64}, {48 + 10, 1, 0, 16}}, // a request and its answer
    {PROTOCOL_MODBUS, {17 + 5, 2, 2, 216}, {13 + 8, 2, 2, 216}},
};

const ProtocolRow &RowOf(int protocol)
{
    return protocol == PROTOCOL_MODBUS ? PROTOCOL_ROWS[1] : PROTOCOL_ROWS[0];
}

// Reading a register can act (a receive buffer is emptied, a flag cleared): these are read
// when they are asked for and never because they lie between others. Byte addresses.
struct RegisterRow {
    bool isWordAddressing;
    UCM_Range range;
};
constexpr RegisterRow REGISTER_ROWS[] = {
    {false, {0xEF00, 0xF1FF}}, // CAN, extended registers
    {false, {0xFE00, 0xFFFF}}, // registers
    {true, {0x1000, 0x3FFF}},  // peripheral frame 0
    {true, {0xA000, 0xFFFF}},  // peripheral frames 1 to 3
};

// Data is counted in whole units: half a register costs a whole one.
uint64_t ExchangeChars(const UCM_WireCosts &wire, uint32_t count)
{
    return wire.exchange + uint64_t{(count + wire.unit - 1) / wire.unit} * wire.unitChars;
}

// 64 bits wide, because an item may end at the very end of the numbers.
uint64_t EndOf(const UCM_BlockItem &item)
{
    return uint64_t{item.address} + item.size;
}

// Whether one block may reach over the bytes from here to there.
bool MayBridge(uint64_t from, uint64_t to, const UCM_BlockRules &rules)
{
    if (from >= to)
        return true;
    if (!rules.areGapsAllowed)
        return false;
    return std::none_of(rules.noGaps.begin(), rules.noGaps.end(), [&](const UCM_Range &range) {
        return from <= range.last && to > range.first;
    });
}

struct Span {
    uint64_t address = 0, size = 0;
};

// One item, with whatever lies within it, is asked for exactly as it is.
Span SpanOf(const UCM_BlockItem &first, uint64_t end, uint32_t largest, uint32_t align)
{
    if (end - first.address == largest || align < 2)
        return {first.address, end - first.address};
    const uint64_t begin = first.address - first.address % align;
    return {begin, (end + align - 1) / align * align - begin};
}

// The least costs of covering the first so many of the sorted items, and where the last block
// of that cover begins. Blocks of neighbours in the order are enough: an item of another block
// that lies between those of this one can always change over without making either longer.
struct Cover {
    uint64_t cost = IMPOSSIBLE;
    size_t lastFrom = 0;
};

std::vector<Cover> FindCovers(const std::vector<UCM_BlockItem> &sorted, const UCM_WireCosts &wire,
                              const UCM_BlockRules &rules)
{
    const uint32_t spanMax = rules.spanMax != 0 ? rules.spanMax : wire.blockMax;
    std::vector<Cover> covers(sorted.size() + 1);
    covers[0].cost = 0;
    for (size_t from = 0; from < sorted.size(); ++from) {
        uint64_t end = sorted[from].address;
        uint32_t largest = 0;
        for (size_t last = from; last < sorted.size(); ++last) {
            const UCM_BlockItem &item = sorted[last];
            if (item.station != sorted[from].station || !MayBridge(end, item.address, rules))
                break;
            end = std::max(end, EndOf(item));
            largest = std::max(largest, item.size);
            const Span span = SpanOf(sorted[from], end, largest, rules.align);
            if (span.size > std::max(spanMax, largest))
                break;
            // Of equal characters the fewer blocks win: each has its turn-around as well.
            const uint64_t chars = UCM_CountBlockChars(wire, static_cast<uint32_t>(span.size));
            const uint64_t cost = covers[from].cost + chars * BLOCK_WEIGHT + 1;
            if (cost < covers[last + 1].cost)
                covers[last + 1] = {cost, from};
        }
    }
    return covers;
}

} // namespace

UCM_WireCosts UCM_ReadWire(int protocol)
{
    return RowOf(protocol).read;
}

UCM_WireCosts UCM_WriteWire(int protocol)
{
    return RowOf(protocol).write;
}

UCM_BlockRules UCM_ReadRules(int processor)
{
    UCM_BlockRules rules;
    const bool isWordAddressing = IsWordAddressing(processor);
    rules.align = isWordAddressing ? 2 : 1;
    for (const RegisterRow &row : REGISTER_ROWS)
        if (row.isWordAddressing == isWordAddressing)
            rules.noGaps.push_back(row.range);
    return rules;
}

uint64_t UCM_CountBlockChars(const UCM_WireCosts &wire, uint32_t count)
{
    const uint32_t rest = count % wire.blockMax; // no exchange for nothing
    return count / wire.blockMax * ExchangeChars(wire, wire.blockMax) +
           (rest != 0 ? ExchangeChars(wire, rest) : 0);
}

std::vector<UCM_Block> UCM_PlanBlocks(const std::vector<UCM_BlockItem> &items,
                                      const UCM_WireCosts &wire, const UCM_BlockRules &rules)
{
    std::vector<size_t> order(items.size());
    for (size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        const UCM_BlockItem &left = items[a], &right = items[b];
        return std::tie(left.station, left.address, left.size) <
               std::tie(right.station, right.address, right.size);
    });
    std::vector<UCM_BlockItem> sorted;
    for (const size_t index : order)
        sorted.push_back(items[index]);
    const std::vector<Cover> covers = FindCovers(sorted, wire, rules);
    // The covers know where their last block begins: the plan is read off from its end.
    std::vector<UCM_Block> plan;
    for (size_t end = sorted.size(); end > 0; end = covers[end].lastFrom) {
        UCM_Block block;
        const size_t from = covers[end].lastFrom;
        uint64_t spanEnd = 0;
        uint32_t largest = 0;
        for (size_t i = from; i < end; ++i) {
            spanEnd = std::max(spanEnd, EndOf(sorted[i]));
            largest = std::max(largest, sorted[i].size);
            block.items.push_back(order[i]);
        }
        const Span span = SpanOf(sorted[from], spanEnd, largest, rules.align);
        block.station = sorted[from].station;
        block.address = static_cast<uint32_t>(span.address);
        block.size = static_cast<uint32_t>(span.size);
        plan.push_back(block);
    }
    std::reverse(plan.begin(), plan.end());
    return plan;
}

uint64_t UCM_CountPlanChars(const std::vector<UCM_Block> &plan, const UCM_WireCosts &wire)
{
    uint64_t chars = 0;
    for (const UCM_Block &block : plan)
        chars += UCM_CountBlockChars(wire, block.size);
    return chars;
}
