#include <algorithm>

#include "support/program_state.h"
#include "symbols/mapfile.h"
#include "symbols/typemap.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"
#include "watch/list/litem.h"
#include "watch/windows/map_loading.h"

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

class MapFiles : public ProgramTest {
protected:
    MapFiles()
    {
        Procesor = CPU_C167;
    }
    const char *Write(const std::string &text)
    {
        WriteFileText(path, text);
        return path.c_str();
    }
    uint32_t Address(const char *name)
    {
        return inStruct(name, aVarNode, nNodes);
    }
    const ScratchFolder folder;
    const std::string path = folder.path + "/test.map";
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
        {Columns({{0, "0FA00H"}, {9, "SYMBOL"}, {18, "float"}, {31, "x"}}, 32), "x"},
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
        const int expected = row.name != nullptr ? 0 : SYM_MAP_ERR_NO_SYMBOL;
        ASSERT_EQ(expected, ReadMap(Write(row.line + "\r\n"))) << row.line;
        if (row.name == nullptr)
            continue;
        ASSERT_EQ(1, nNodes) << row.line;
        EXPECT_STREQ(row.name, aVarNode[0].name) << row.line;
        ASSERT_EQ(SYM_MAP_SYMBOL, SYM_ParseC166MapLine(row.line.c_str(), &address, &name));
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

// Newer linkers write the page in front.
TEST_F(MapFiles, TakesTMSLinesWithPages)
{
    Procesor = CPU_F2803X;
    const std::string text = "GLOBAL SYMBOLS: SORTED ALPHABETICALLY BY Name\r\n\r\n"
                             "page  address   name                \r\n"
                             "----  -------   ----                \r\n"
                             "1     00000bc0  AdcMirror           \r\n"
                             "0     003f4000  C$$EXIT             \r\n"
                             "abs   00000400  __STACK_END         \r\n"
                             "12    0000c002 _speed\r\n"
                             "1     8000c004  _far\r\n"
                             "abs   ffffffff  ___binit__\r\n"
                             "1234  0000c006  _no_page\r\n"
                             "bss   0000c008  _no_word\r\n"
                             "0     0000c00a  00000d67  main.obj (.text)\r\n"
                             "0     0000c00c0 _nine\r\n"
                             "1     0000c00e\r\n"
                             "1     00000bc0  AdcMirror           \r\n";
    ASSERT_EQ(0, Read_TMS_Map(Write(text)));
    ASSERT_EQ(3, nNodes);
    EXPECT_EQ(0x1780u, Address("AdcMirror"));
    EXPECT_EQ(0x800u, Address("__STACK_END"));
    EXPECT_EQ(0x18004u, Address("_speed"));
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
    ASSERT_EQ(0, TMF_LoadMap(Write("## 1 VARS\n1: 'far' _@0x38000001\n## 0 TYPES\n## 1 STRUCTS\n"
                                   "# 1 / 3:\n'a' _@0x122\n'b' _@0x28000000_@0x1\n'c' _@0x122\n")));
    EXPECT_EQ(0xC006u, inStruct("&_far.c", aVarTMSNode, nTMSNodes)); // 4-byte pointers
}

TEST_F(MapFiles, AFileThatCannotBeReadChangesNothing)
{
    ASSERT_EQ(0, map2node(Write(Columns({{0, "0FA00H"}, {9, "own"}, {46, "NDATA"}}))));
    const struct {
        int processor, result;
        std::string file; // a name without blanks, or a text
    } cases[] = {
        {CPU_C167, SYM_MAP_ERR_OPEN, "no/such/file"},
        {CPU_C167, SYM_MAP_ERR_OPEN, testing::TempDir()}, // a folder
        {CPU_C167, SYM_MAP_ERR_OPEN, "/dev/zero"},
        {CPU_F283XX, SYM_MAP_ERR_OPEN, "/dev/zero"},
        {CPU_C167, SYM_MAP_ERR_NO_SYMBOL, " "},
        {CPU_C167, SYM_MAP_ERR_NO_SYMBOL, "speed, u2 ; a list\n[0FA00H], u2\n"},
        {CPU_C167, SYM_MAP_ERR_NO_SYMBOL, "0000C002   _other_processors\n"},
        {CPU_F2803X, SYM_MAP_ERR_NO_SYMBOL, Columns({{0, "0FA00H"}, {9, "c"}, {46, "NDATA"}})},
        {CPU_C167, SYM_MAP_ERR_NO_SYMBOL, std::string(3000, '\0') + " " + std::string(9000, 'H')}};
    for (const auto &c : cases) {
        const bool isText = c.file.find(' ') != std::string::npos;
        Procesor = c.processor;
        const std::string file = isText ? Write(c.file) : c.file;
        const int result =
            c.processor != CPU_C167 ? TMSmap2node(file.c_str()) : map2node(file.c_str());
        EXPECT_EQ(c.result, result) << c.file;
        EXPECT_EQ(0xFA00u, Address("own"));
        EXPECT_EQ(path, mapFile);
        EXPECT_EQ(OPEN_MAP_FILE, openStruct);
    }
    // A map behind the station is not lost either, and no reader keeps its file open.
    Procesor = CPU_C167;
    ASSERT_EQ(0, TMSmap2node(Write("0000C002   _far\n")));
    for (int i = 0; i < 250; ++i)
        ASSERT_EQ(SYM_MAP_ERR_NO_SYMBOL, TMSmap2node(Write("no map")));
    ASSERT_EQ(0, map2node(Write(Columns({{0, "0FA02H"}, {9, "own"}, {46, "NDATA"}}))));
    EXPECT_EQ(0xC002u, inStruct("&_far", aVarTMSNode, nTMSNodes));
}

// A TMS320 map lists its symbols by name and again by address.
TEST_F(MapFiles, CountsWhatDoesNotFitInOneMessageAndDoublesNot)
{
    const struct {
        int symbols, lists, longNames;
        std::vector<std::string> parts; // of the one message
    } cases[] = {{3000, 2, 0, {}},
                 {NODES_MAX, 3, 0, {}},
                 {NODES_MAX + 12, 2, 0, {"has 12 symbols more than the table can hold (5000)"}},
                 {1, 2, 1, {"more than 64 characters: 1 symbol."}},
                 {NODES_MAX + 1, 2, 3, {"has 1 symbols more", "characters: 3 symbols."}}};
    Procesor = CPU_F283XX;
    for (const auto &c : cases) {
        HL_Reset();
        std::string text;
        for (int i = 0; i < c.symbols * c.lists; ++i) {
            char line[40];
            std::snprintf(line, sizeof line, "%08X   v%d\n", 0xC000 + i % c.symbols, i % c.symbols);
            text += line;
        }
        for (int i = 0; i < c.longNames * 2; ++i)
            text +=
                "0000C002   " + std::string(static_cast<size_t>(65 + i % c.longNames), 'n') + "\n";
        ASSERT_EQ(0, Read_TMS_Map(Write(text)));
        EXPECT_EQ(std::min(c.symbols, NODES_MAX), nNodes);
        EXPECT_EQ(2u * (0xC000u + static_cast<uint32_t>(c.symbols - 1) % NODES_MAX),
                  Address(("v" + std::to_string((c.symbols - 1) % NODES_MAX)).c_str()));
        ASSERT_EQ(c.parts.empty() ? 0u : 1u, HL_GetPopups().size());
        for (const std::string &part : c.parts)
            EXPECT_TRUE(Has(HL_GetPopups()[0], part));
    }
    // The names at the end of C166 lines are the only ones that can be too long there.
    Procesor = CPU_C167;
    const std::string name(70, 'n');
    Write(Columns({{0, "0FA00H"}, {9, "own"}, {46, "NDATA"}}) + "\n" +
          Columns({{0, "0FA00H"}, {9, "SYMBOL"}, {18, "float"}, {31, name.c_str()}}) + "\n" +
          Columns({{0, "0FA00H"}, {9, "SYMBOL"}, {18, "label"}, {31, name.c_str()}}) + "\n");
    HL_Reset();
    ASSERT_EQ(0, ReadMap(path.c_str()));
    EXPECT_EQ(1, nNodes);
    ASSERT_EQ(1u, HL_GetPopups().size());
    EXPECT_TRUE(Has(HL_GetPopups()[0], "characters: 1 symbol."));
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
