#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <unistd.h>

#include "app/VR.h"
#include "runtime/headless/headless.h"
#include "symbols/mapfile.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"
#include "watch/list/litem.h"

namespace {

constexpr uint32_t NONE = 0xFFFFFFFFu;

// A line with words at given columns.
std::string Columns(std::initializer_list<std::pair<size_t, const char *>> words, size_t length = 0)
{
    std::string line;
    for (const auto &word : words) {
        line.resize(word.first, ' ');
        line += word.second;
    }
    if (line.size() < length)
        line.resize(length, ' ');
    return line;
}

class MapFiles : public testing::Test {
protected:
    void SetUp() override
    {
        HL_Reset();
        Procesor = CPU_C167;
        Clear();
    }
    void TearDown() override
    {
        Clear();
        std::remove(path.c_str());
    }
    void Clear()
    {
        TMF_CleanTables();
        FreeNodes(aVarNode, &nNodes);
        FreeNodes(aVarTMSNode, &nTMSNodes);
        openStruct = openTMSStruct = OPEN_NONE;
        szMapFileName.clear();
        mapFile.clear();
        nLItems = 0;
    }
    const char *Write(const std::string &text)
    {
        std::ofstream(path, std::ios::binary) << text;
        return path.c_str();
    }
    uint32_t Address(const char *name)
    {
        return inStruct(name, aVarNode, nNodes);
    }
    const std::string path = testing::TempDir() + std::to_string(getpid()) + "test.map";
};

TEST_F(MapFiles, TakesC166LinesByTheirColumns)
{
    const std::string name64(64, 'n');
    const struct {
        std::string line;
        const char *name; // null: no node
    } cases[] = {
        {Columns({{0, "0FA00H"}, {9, "counter"}, {46, "NDATA"}}), "counter"},
        {Columns({{0, "FA00AH"}, {9, "counter"}, {46, "FCONST"}, {59, "?x"}}), "counter"},
        {Columns({{0, "0FA00h"}, {9, "counter"}, {59, "?FD0?xyz"}}), "counter"},
        {Columns({{0, "0FA00H"}, {9, "counter"}, {46, "XDATA"}, {59, "?FD?xyz"}}), "counter"},
        {Columns({{0, "0FA00H"}, {9, "counter"}, {46, "NDATAX"}, {59, "?ND?xyz"}}), nullptr},
        {Columns({{0, "0FA00H"}, {9, "DPP0"}, {40, "word"}}), "DPP0"},
        {Columns({{0, "0FA00H"}, {9, "DPP0"}, {40, "NULL"}}), "DPP0"},
        {Columns({{0, "0FA00H"}, {9, "ZERO"}, {40, "bit"}}), nullptr},
        {Columns({{0, "0FA00H"}, {9, "counter"}, {40, "word"}}, 45), nullptr},
        {Columns({{0, "0FA00H"}, {9, "SYMBOL"}, {18, "float"}, {31, "ratio"}}), "ratio"},
        {Columns({{0, "0FA00H"}, {9, "SYMBOL"}, {18, "label"}, {31, "ratio"}}), nullptr},
        {Columns({{0, "0FA00H"}, {9, "SYMBOL"}, {18, "long"}, {31, ""}}), nullptr},
        {Columns({{0, "0FA0H"}, {9, "counter"}, {46, "NDATA"}}), nullptr},
        {Columns({{0, "0FA00"}, {9, "counter"}, {46, "NDATA"}}), nullptr},
        {Columns({{0, "0FA00H"}, {10, "counter"}, {46, "NDATA"}}), nullptr},
        {Columns({{0, "0FA00H"}, {9, "cou-nter"}, {46, "NDATA"}}), nullptr},
        {Columns({{0, "0FA00H"}, {9, "x"}}, 31), nullptr},
        {"", nullptr}};
    for (const auto &row : cases) {
        uint32_t address = 0;
        const char *name = nullptr;
        ASSERT_EQ(0, ReadMap(Write(row.line + "\r\n"))) << row.line;
        ASSERT_EQ(row.name != nullptr ? 1 : 0, nNodes) << row.line;
        if (row.name == nullptr)
            continue;
        EXPECT_STREQ(row.name, aVarNode[0].name) << row.line;
        ASSERT_TRUE(MAP_ParseC166Line(row.line.c_str(), &address, &name));
        EXPECT_EQ(aVarNode[0].addr, address);
    }
    EXPECT_TRUE(isID166(name64.c_str()));
    EXPECT_FALSE(isID166((name64 + "n").c_str()));
}

TEST_F(MapFiles, TakesTMSLinesByTheirColumns)
{
    Procesor = CPU_F283XX;
    const std::string text = "0000C002   _speed\n"  // column 11
                             "0000c004    _ramp\r"  // column 12
                             "8000C002   _far\n"    // first digit is no 0
                             "0000C0020  _nine\n"   // nine digits
                             "0000C006  _early\n"   // column 10
                             "0000C008     _late\n" // column 13
                             "00000400      10 (00000400)     __stack\n"
                             "0000C00A   9lives\n"
                             "0000C002   _speed\n"; // listed again by address
    ASSERT_EQ(0, Read_TMS_Map(Write(text)));
    ASSERT_EQ(2, nNodes);
    EXPECT_EQ(0x18004u, Address("_speed"));
    EXPECT_EQ(0x18008u, Address("_ramp"));
}

TEST_F(MapFiles, KeepsTMSSymbolsApartWhileAC166IsSelected)
{
    ASSERT_EQ(0, map2node(Write(Columns({{0, "0FA00H"}, {9, "own"}, {46, "NDATA"}}))));
    nLItems = 2;
    aLItems[0].name = "own";
    aLItems[1].name = "&_far";
    aLItems[1].address = NONE;
    ASSERT_EQ(0, TMSmap2node(Write("0000C002   _far\n")));
    EXPECT_EQ(0xFA00u, Address("own"));
    EXPECT_EQ(NONE, Address("_far"));
    EXPECT_EQ(OPEN_MAP_FILE, openTMSStruct);
    EXPECT_EQ(0xC002u, inStruct("&_far", aVarTMSNode, nTMSNodes)); // the mailbox takes words
    EXPECT_EQ(0xC002u, aLItems[1].address);
    ASSERT_EQ(0, TMSmap2node(Write("0000C002   _other\n")));
    EXPECT_EQ(NONE, aLItems[1].address); // not what stands there now
    ASSERT_EQ(0, TMSmap2node(Write("0000C002   _far\n")));
    std::ofstream(path, std::ios::binary) << "## 1 VARS\n1: 'far' _@0x38000001\n## 0 TYPES\n"
                                             "## 1 STRUCTS\n# 1 / 3:\n'a' _@0x122\n"
                                             "'b' _@0x28000000_@0x1\n'c' _@0x122\n";
    ASSERT_EQ(0, TMF_LoadMap(path.c_str()));
    EXPECT_EQ(0xC006u, inStruct("&_far.c", aVarTMSNode, nTMSNodes)); // 4-byte pointers
}

TEST_F(MapFiles, AFileThatCannotBeReadChangesNothing)
{
    ASSERT_EQ(0, map2node(Write(Columns({{0, "0FA00H"}, {9, "own"}, {46, "NDATA"}}))));
    EXPECT_EQ(-2, map2node("no/such/file"));
    EXPECT_EQ(-2, map2node(testing::TempDir().c_str())); // a folder
    EXPECT_EQ(0xFA00u, Address("own"));
    EXPECT_EQ(path, mapFile);
    EXPECT_EQ(OPEN_MAP_FILE, openStruct);
    // What opens but holds no symbol is an empty map; binary and endless lines do no harm.
    EXPECT_EQ(0, map2node(Write(std::string(3000, '\0') + std::string(9000, 'H'))));
    EXPECT_EQ(0, nNodes);
}

TEST_F(MapFiles, CountsWhatDoesNotFitInOneMessage)
{
    std::string text;
    for (int i = 0; i < NODES_MAX + 12; ++i)
        text +=
            Columns({{0, "0FA00H"}, {9, ("v" + std::to_string(i)).c_str()}, {46, "NDATA"}}) + "\n";
    ASSERT_EQ(0, ReadMap(Write(text)));
    EXPECT_EQ(NODES_MAX, nNodes);
    ASSERT_EQ(1u, HL_GetPopups().size());
    EXPECT_NE(std::string::npos, HL_GetPopups()[0].find("has 12 symbols more"));
}

TEST_F(MapFiles, LoadsByDialogAndReloadsWithout)
{
    EXPECT_EQ(-1, LoadMap(LOADMAP_C166)); // cancelled
    const std::string line = Columns({{0, "0FA00H"}, {9, "own"}, {46, "NDATA"}});
    HL_PushAnswer(1, Write(line));
    nLItems = 1;
    aLItems[0].name = "own";
    OpenMapCB(0, 0);
    EXPECT_EQ(path, szMapFileName);
    EXPECT_EQ(0xFA00u, aLItems[0].address);
    std::string stamp;
    ASSERT_EQ(0, GetFileStamp(&stamp, path.c_str()));
    EXPECT_EQ(stamp, szMapFileStamp);
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    EXPECT_EQ(6, std::sscanf(stamp.c_str(), "%4d-%2d-%2d/%2d:%2d:%2d", &year, &month, &day, &hour,
                             &minute, &second));
    EXPECT_EQ(19u, stamp.size());
    EXPECT_EQ(-1, GetFileStamp(&stamp, "no/such/file"));

    Write("1" + line.substr(1));
    const size_t questions = HL_GetPopups().size();
    MapBtnCB(0, 0, EVENT_COMMIT, 0);
    EXPECT_EQ(0x1FA00u, aLItems[0].address);
    EXPECT_EQ(questions, HL_GetPopups().size());
    std::remove(path.c_str()); // gone: the dialog comes, and is cancelled
    ReloadMapFile(0, 0);
    EXPECT_EQ(questions + 1, HL_GetPopups().size());
    EXPECT_EQ(0x1FA00u, Address("own"));
}

} // namespace
