#include <algorithm>
#include <cstring>
#include <random>

#include "support/program_state.h"
#include "symbols/addr_name.h"
#include "symbols/typemap.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"

namespace {

constexpr uint32_t NONE = 0xFFFFFFFFu;

class VarNodes : public ProgramTest {
protected:
    VarNodes()
    {
        Procesor = CPU_C167;
    }
    void Fill(const std::vector<std::pair<const char *, uint32_t>> &nodes)
    {
        for (const auto &node : nodes)
            ASSERT_EQ(0, AddMapVar(node.second, node.first));
        SortMapByName();
    }
};

std::vector<std::pair<std::string, uint32_t>> Snapshot(const VarNode *table, int count)
{
    std::vector<std::pair<std::string, uint32_t>> nodes;
    for (int i = 0; i < count; ++i)
        nodes.emplace_back(table[i].name, table[i].addr);
    return nodes;
}

TEST_F(VarNodes, SortsLikeASwappingSelectionSort)
{
    std::mt19937 random(7);
    for (int round = 0; round < 400; ++round) {
        const int count = static_cast<int>(random() % 60);
        const auto names = 1 + random() % 12; // few names: many equal ones
        for (int i = 0; i < count; ++i)
            AddMapVar(static_cast<uint32_t>(i), ("n" + std::to_string(random() % names)).c_str());
        auto expected = Snapshot(aVarNode, nNodes);
        for (size_t i = 0; i < expected.size(); ++i) {
            size_t smallest = i;
            for (size_t k = i + 1; k < expected.size(); ++k)
                if (expected[k].first < expected[smallest].first)
                    smallest = k;
            std::swap(expected[i], expected[smallest]);
        }
        SortMapByName();
        ASSERT_EQ(expected, Snapshot(aVarNode, nNodes)) << "round " << round;
        const int wanted = static_cast<int>(random() % names);
        const std::string name = "n" + std::to_string(wanted);
        const auto first = std::find_if(expected.begin(), expected.end(),
                                        [&](const auto &node) { return node.first == name; });
        EXPECT_EQ(first == expected.end() ? NONE : first->second,
                  inStruct(name.c_str(), aVarNode, nNodes));
        FreeNodes(aVarNode, &nNodes);
    }
}

TEST_F(VarNodes, KeepsEqualNamesOfDifferentAddressesOnly)
{
    Fill({{"b", 2}, {"a", 1}, {"a", 1}, {"b", 3}, {"a", 1}});
    SYM_RemoveDuplicates(aVarNode, &nNodes);
    EXPECT_EQ((std::vector<std::pair<std::string, uint32_t>>{{"a", 1}, {"b", 3}, {"b", 2}}),
              Snapshot(aVarNode, nNodes));
}

TEST_F(VarNodes, RefusesWhatDoesNotFit)
{
    const std::string name64(64, 'x');
    EXPECT_EQ(0, AddMapVar(1, (name64 + " rest").c_str()));
    EXPECT_EQ(-1, AddMapVar(1, (name64 + "x").c_str()));
    EXPECT_EQ(-1, AddMapVar(1, "+name"));
    EXPECT_EQ(0, AddMapVarS("0FA00H  x", "?name"));
    EXPECT_EQ(0xFA00u, aVarNode[1].addr);
    while (AddMapVar(1, "filler") == 0) {
    }
    EXPECT_EQ(NODES_MAX, nNodes);
}

TEST_F(VarNodes, ResolvesExpressions)
{
    Fill({{"speed", 0x1000}, {"_speed?x", 0x2000}});
    const struct {
        const char *text;
        uint32_t address;
    } cases[] = {{"speed", 0x1000},       {"&speed + 0x10", 0x1010}, {"speed-4", 0xFFC},
                 {"speed + 10H", 0x1010}, {"speed + - 4", NONE},     {"speed+ 12 ", 0x100C},
                 {"3:speed", 0x1000},     {" 12 : & speed", 0x1000}, {"&3:speed", 0x1000},
                 {":speed", 0x1000},      {"16:speed", NONE},        {"_speed?x", 0x2000},
                 {"0x1F00", 0x1F00},      {"&0X1f00", 0x1F00},       {"0FA00H", 0xFA00},
                 {"1:9ah", 0x9A},         {"FA00H", NONE},           {"Speed", NONE},
                 {"speed.x", NONE},       {"speed [1]", NONE},       {"speed->x", NONE},
                 {"speed + 1F", NONE},    {"speed+", NONE},          {"", NONE},
                 {"0x100000010", NONE},   {"0100000010H", NONE},     {"speed + 4294967312", NONE}};
    for (const auto &row : cases)
        EXPECT_EQ(row.address, inStruct(row.text, aVarNode, nNodes)) << row.text;
    EXPECT_EQ(NONE, inStruct(std::string(5000, 's').c_str(), aVarNode, nNodes));
}

TEST_F(VarNodes, NamesTheNodeAtOrAfterAnAddress)
{
    Fill({{"low", 0x100}, {"high", 0x200}, {"twin", 0x200}});
    SYM_AddNode(aVarNode166, &nNodes166, 0x180, "REG", nullptr);
    SYM_AddNode(aVarNode166, &nNodes166, 0x200, "HIDDEN", nullptr);
    SortMapNdxByAddr();
    const struct {
        uint32_t address;
        const char *name;
        uint32_t found;
    } cases[] = {{0, "low", 0x100},      {0x100, "low", 0x100},  {0x101, "REG", 0x180},
                 {0x181, "high", 0x200}, {0x200, "high", 0x200}, {0x201, "", NONE},
                 {0xFFFFFFFF, "", NONE}};
    for (const auto &row : cases) {
        uint32_t address = row.address;
        std::string name = "?";
        EXPECT_EQ(row.name[0] != '\0' ? 0 : -1, MapAddrToId(&name, &address));
        EXPECT_EQ(row.name, name) << row.address;
        EXPECT_EQ(row.found, address) << row.address;
    }
    FreeNodes(aVarNode, &nNodes); // an empty table gives no answer
    uint32_t address = 0x100;
    std::string name;
    EXPECT_EQ(0, MapAddrToId(&name, &address));
    EXPECT_EQ("REG", name);
}

TEST_F(VarNodes, WalksNamesByWildcard)
{
    Fill({{"spin", 1}, {"speed", 2}, {"stop", 3}, {"sp", 4}});
    const struct {
        const char *wildcard;
        std::vector<std::string> names;
    } cases[] = {{"sp*", {"sp", "speed", "spin"}},
                 {"sp", {"sp"}},
                 {"*", {"sp", "speed", "spin", "stop"}},
                 {"s*p", {"sp", "speed", "spin", "stop"}}, // a star takes any rest
                 {"x*", {}}};
    for (const auto &row : cases) {
        std::vector<std::string> names;
        const char *name = nullptr;
        int position = 0;
        while (RdTblVarName(row.wildcard, &name, aVarNode, nNodes, &position) == 0)
            names.push_back(name);
        EXPECT_EQ(row.names, names) << row.wildcard;
        EXPECT_EQ(-1, position);
        EXPECT_EQ(-1, RdTblVarName(row.wildcard, &name, aVarNode, nNodes, &position));
    }
}

} // namespace
