// Which neighbours are transferred together, against every way there is.
#include "comm/grouping.h"
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

uint64_t CostOfSets(const std::vector<UCM_BlockItem> &items, const std::vector<size_t> &setOf,
                    size_t sets, const UCM_WireCosts &wire, const UCM_BlockRules &rules)
{
    uint64_t cost = 0;
    for (size_t set = 0; set < sets; ++set) {
        uint32_t begin = UINT32_MAX, end = 0, largest = 0;
        int station = -1;
        for (size_t i = 0; i < items.size(); ++i) {
            if (setOf[i] != set)
                continue;
            if (station >= 0 && station != items[i].station)
                return UINT64_MAX;
            station = items[i].station;
            begin = std::min(begin, items[i].address);
            end = std::max(end, items[i].address + items[i].size);
            largest = std::max(largest, items[i].size);
        }
        const uint32_t first = begin, last = end; // a word's other half is no gap
        if (end - begin > largest) {
            begin -= begin % rules.align;
            end += (rules.align - end % rules.align) % rules.align;
            if (end - begin > std::max(wire.blockMax, largest))
                return UINT64_MAX;
        }
        for (uint32_t byte = first; byte < last && end - begin > largest; ++byte) {
            const auto covers = [&](size_t i) {
                return setOf[i] == set && items[i].address <= byte &&
                       byte < items[i].address + items[i].size;
            };
            bool isItem = false;
            for (size_t i = 0; i < items.size(); ++i)
                isItem = isItem || covers(i);
            for (const UCM_Range &range : rules.noGaps)
                if (!isItem && range.first <= byte && byte <= range.last)
                    return UINT64_MAX;
            if (!isItem && !rules.areGapsAllowed)
                return UINT64_MAX;
        }
        cost += UCM_CountBlockChars(wire, end - begin);
    }
    return cost;
}

// Every partition of the items into sets.
uint64_t CheapestOfAll(const std::vector<UCM_BlockItem> &items, std::vector<size_t> *setOf,
                       size_t sets, const UCM_WireCosts &wire, const UCM_BlockRules &rules)
{
    if (setOf->size() == items.size())
        return CostOfSets(items, *setOf, sets, wire, rules);
    uint64_t least = UINT64_MAX;
    for (size_t set = 0; set <= sets; ++set) {
        setOf->push_back(set);
        least = std::min(least, CheapestOfAll(items, setOf, std::max(sets, set + 1), wire, rules));
        setOf->pop_back();
    }
    return least;
}

bool IsCovered(const std::vector<UCM_BlockItem> &items, const std::vector<UCM_Block> &plan)
{
    std::vector<int> seen(items.size(), 0);
    for (const UCM_Block &block : plan)
        for (const size_t i : block.items) {
            ++seen[i];
            if (items[i].station != block.station || items[i].address < block.address ||
                items[i].address + items[i].size > block.address + block.size)
                return false;
        }
    return std::all_of(seen.begin(), seen.end(), [](int count) { return count == 1; });
}

} // namespace

TEST(grouping, noOtherGroupingIsCheaper)
{
    std::mt19937 random(11);
    const UCM_WireCosts wires[] = {UCM_ReadWire(PROTOCOL_MR166), UCM_ReadWire(PROTOCOL_MODBUS),
                                   UCM_WriteWire(PROTOCOL_MR166)};
    for (int round = 0; round < 600; ++round) {
        const UCM_WireCosts &wire = wires[round % 3];
        UCM_BlockRules rules;
        rules.areGapsAllowed = round % 3 != 2;
        rules.align = round % 5 == 0 ? 2 : 1;
        if (!rules.areGapsAllowed)
            rules.align = 1;
        if (round % 4 == 0)
            rules.noGaps = {{110, 118}};
        std::vector<UCM_BlockItem> items(1 + random() % 7);
        const uint32_t reach = round / 12 % 2 != 0 ? 60 : 400;
        for (UCM_BlockItem &item : items)
            item = {random() % 8 == 0 ? 1 : 0, static_cast<uint32_t>(100 + random() % reach),
                    1u << random() % (round % 7 == 0 ? 6 : 4)};
        const std::vector<UCM_Block> plan = UCM_PlanBlocks(items, wire, rules);
        std::vector<size_t> setOf;
        ASSERT_TRUE(IsCovered(items, plan)) << round;
        ASSERT_EQ(UCM_CountPlanChars(plan, wire), CheapestOfAll(items, &setOf, 0, wire, rules))
            << round;
    }
}

TEST(grouping, theGapThatPays)
{
    struct Case {
        const char *what;
        int protocol;
        std::vector<UCM_BlockItem> items;
        std::vector<uint32_t> sizes; // of the blocks
    };
    const Case cases[] = {
        {"14 bytes cost as much as another exchange",
         PROTOCOL_MR166,
         {{1, 0, 2}, {1, 16, 2}},
         {18}},
        {"15 cost more", PROTOCOL_MR166, {{1, 0, 2}, {1, 17, 2}}, {2, 2}},
        {"22 over registers", PROTOCOL_MODBUS, {{1, 0, 2}, {1, 24, 2}}, {26}},
        {"24 over registers", PROTOCOL_MODBUS, {{1, 0, 2}, {1, 26, 2}}, {2, 2}},
        {"stations apart", PROTOCOL_MR166, {{1, 0, 2}, {2, 2, 2}}, {2, 2}},
        {"no more than a block", PROTOCOL_MR166, {{1, 0, 60}, {1, 60, 8}}, {60, 8}},
        {"one that is larger", PROTOCOL_MR166, {{1, 0, 200}, {1, 200, 2}}, {200, 2}},
        {"at the end of the numbers", PROTOCOL_MR166, {{1, 0xFFFFFFFC, 4}, {1, 0, 4}}, {4, 4}},
    };
    for (const Case &row : cases) {
        std::vector<uint32_t> sizes;
        for (const UCM_Block &block :
             UCM_PlanBlocks(row.items, UCM_ReadWire(row.protocol), UCM_BlockRules()))
            sizes.push_back(block.size);
        EXPECT_EQ(sizes, row.sizes) << row.what;
    }
    EXPECT_TRUE(UCM_PlanBlocks({}, UCM_ReadWire(PROTOCOL_MR166), UCM_BlockRules()).empty());
    // Characters of whole transfers: requests, answers, data.
    EXPECT_EQ(UCM_CountBlockChars(UCM_ReadWire(PROTOCOL_MR166), 65), 18u + 10 + 128 + 18 + 10 + 2);
    EXPECT_EQ(UCM_CountBlockChars(UCM_WriteWire(PROTOCOL_MR166), 17), 2u * (48 + 10));
    EXPECT_EQ(UCM_CountBlockChars(UCM_ReadWire(PROTOCOL_MODBUS), 217), 17u + 5 + 216 + 17 + 5 + 2);
    EXPECT_EQ(UCM_CountBlockChars(UCM_WriteWire(PROTOCOL_MODBUS), 3), 13u + 8 + 4);
}
