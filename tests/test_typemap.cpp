#include "support/program_state.h"
#include "symbols/addr_name.h"
#include "symbols/mapfile.h"
#include "symbols/typemap.h"
#include "symbols/typemap_list.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"
#include "text/txfr.h"
#include "watch/list/litem.h"

namespace {

constexpr uint32_t NONE = 0xFFFFFFFFu;

// One variable of every shape. Structures: 1 a byte and a word, 2 nested, 3 union, 4 itself.
const char SHAPES[] = "## 9 VARS\n"
                      "1: 'speed' _@0x20000004_@0x122\n"
                      "2: 'pair' _@0x38000001\n"
                      "3: 'grid' _@0x20000002_@0x20000003_@0x242  \n"
                      "4: 'deep' _@0x38000002\n"
                      "5: 'loop' _@0x38000004\n"
                      "6: 'pfn' _@0x28000000_@0x18000000_@0x1\n"
                      "7 : 'code' _@0x18000000_@0x1\n"
                      "8: 'row' _@0x28000000_@0x20000008_@0x204\n"
                      "9: 'ptrs' _@0x20000002_@0x28000000_@0x38000001\n"
                      "## 2 TYPES\n"
                      "1: 'PAIR' _@0x38000001\n"
                      "2: '' _@0x122\n"
                      "## 4 STRUCTS\n"
                      "# 1 / 2:\n"
                      " 'b' _@0xC2\n"
                      " 'w' _@0x142\n"
                      "# 2 / 3:\n"
                      " 'head' _@0xA2\n"
                      " 'items' _@0x20000003_@0x38000001\n"
                      " 'u' _@0x30000003\n"
                      "# 3 / 2:\n"
                      " 'all' _@0x242\n"
                      " 'part' _@0x20000006_@0xC2\n"
                      "# 4 / 1:\n"
                      " 'self' _@0x38000004\n";

class TypeMaps : public ProgramTest {
protected:
    TypeMaps()
    {
        Procesor = CPU_C167;
    }
    int Load(const std::string &text)
    {
        WriteFileText(path, text);
        return TMF_LoadMap(path.c_str());
    }
    std::string With(const std::string &from, const std::string &to)
    {
        std::string text = SHAPES;
        return text.replace(text.find(from), from.size(), to);
    }
    const ScratchFolder folder;
    const std::string path = folder.path + "/test.tmf";
};

TEST_F(TypeMaps, LoadsWholeOrNotAtAll)
{
    ASSERT_EQ(0, Load(SHAPES));
    EXPECT_EQ(9, TMF_cnDefVars);
    const std::string name64(64, 'n');
    const struct {
        const char *from;
        std::string to;
        int result;
    } cases[] = {{"## 9 VARS", "## 0 VARS", -1},
                 {"## 9 VARS", "## 09 VARS", -1},
                 {"## 9 VARS", "## 999999999 VARS", -1}, // a count that lies costs no memory
                 {"## 9 VARS", "##9VARS", 0},
                 {"## 2 TYPES", "## 2TYPES", -1},
                 {"## 4 STRUCTS", "## 5 STRUCTS", -1},
                 {"# 1 / 2:", "# 77 / 2:", 0},
                 {"# 1 / 2:", "# 1 / 3:", -1},
                 {"# 1 / 2:", "# 1 / 2: x", -1},
                 {"'pair'", "''", -1},
                 {"'pair'", "'2pair'", -1},
                 {"'pair'", "'" + name64 + "'", 0},
                 {"'pair'", "'" + name64 + "n'", -1},
                 {"_@0x242  \n", "_@0x242 x\n", -1},
                 {"_@0x242  \n", "_@0x242 _@0x1\n", -1},
                 {"_@0x242  \n", "_@242\n", -1},
                 {"2: 'pair'", "'pair'", -1},
                 {"3: 'grid'", "\n3: 'grid'", -1},
                 {" 'w' _@0x142", " 1: 'w' _@0x142", -1}};
    for (const auto &row : cases) {
        EXPECT_EQ(row.result, Load(With(row.from, row.to))) << row.from << " -> " << row.to;
        EXPECT_EQ(row.result == 0 ? 9 : 0, TMF_cnDefVars) << row.to;
        EXPECT_EQ(row.result == 0 ? 4 : 0, TMF_cnDefStructCts) << row.to;
    }
    std::string chain;
    for (int i = 0; i < 10; ++i)
        chain += "_@0x20000002";
    ASSERT_EQ(0, Load(With("_@0x38000001\n3", chain + "\n3"))); // the tenth code is ignored
    EXPECT_EQ(TMF_CODES_MAX, TMF_paDefVars[1].codes);
    EXPECT_EQ(0,
              Load("## 1 VARS\n1: 'a' _@0x122\n## 0 TYPES\n## 1 STRUCTS\n# 1 / 1:\n'm' _@0x122"));
    EXPECT_EQ(0, TMF_cnDefTypes);
}

TEST_F(TypeMaps, ReadsStreamsAndRefusesLongLines)
{
    auto loadStream = [this](const std::string &text) {
        WriteFileText(path, text);
        const int handle = TXFR_Open(path.c_str());
        const int result = TMF_LoadVarTable(handle) == 0 && TMF_LoadTypeTable(handle) == 0
                               ? TMF_LoadStructTable(handle)
                               : -1;
        TXFR_Close(handle);
        return result;
    };
    EXPECT_EQ(0, loadStream(SHAPES));
    EXPECT_EQ(4, TMF_cnDefStructCts);
    const std::string line = "3: 'grid' _@0x20000002_@0x20000003_@0x242";
    EXPECT_EQ(
        0, loadStream(With("_@0x242  \n", "_@0x242" + std::string(498 - line.size(), ' ') + "\n")));
    EXPECT_EQ(-1, loadStream(
                      With("_@0x242  \n", "_@0x242" + std::string(499 - line.size(), ' ') + "\n")));
    std::string large = "## 10000 VARS\n"; // more lines than a text in memory holds
    for (int i = 0; i < 10000; ++i)
        large += "1: 'v" + std::to_string(i) + "' _@0x122\n";
    EXPECT_EQ(0, Load(large + "## 0 TYPES\n## 1 STRUCTS\n# 1 / 1:\n 'm' _@0x122\n"));
    EXPECT_NE(nullptr, TMF_FindVarDecl("v9999"));
}

TEST_F(TypeMaps, ChecksTypeCodes)
{
    ASSERT_EQ(0, Load(SHAPES));
    for (uint32_t code : {0x001u, 0x0A2u, 0x0C2u, 0x122u, 0x204u, 0x404u}) {
        EXPECT_TRUE(TMF_IsElemTypeOk(code)) << std::hex << code;
        EXPECT_TRUE(TMF_IsTTypeOk(code)) << std::hex << code;
    }
    for (uint32_t code :
         {0x021u, 0x081u, 0x0E2u, 0x1A2u, 0x022u, 0x082u, 0x224u, 0x004u, 0x123u, 0x12Au, 0x922u,
          0x40000122u, 0x80000122u, 0xA8000000u, 0x30000000u, 0x38000005u, 0x08000000u}) {
        EXPECT_FALSE(TMF_IsElemTypeOk(code)) << std::hex << code;
        EXPECT_FALSE(TMF_IsTTypeOk(code)) << std::hex << code;
    }
    for (uint32_t code : {0x18000000u, 0x20000000u, 0x28000000u, 0x68000000u, 0x38000004u}) {
        EXPECT_FALSE(TMF_IsElemTypeOk(code)) << std::hex << code;
        EXPECT_TRUE(TMF_IsTTypeOk(code)) << std::hex << code;
    }
    const int sizes[] = {0, 1, 2, 0, 4, 0, 0, 0, 8};
    for (uint32_t bits = 0; bits < 9; ++bits)
        EXPECT_EQ(sizes[bits], TMF_GetElemSize(bits << 7)) << bits;
}

TEST_F(TypeMaps, ComputesSizesAndAlignments)
{
    ASSERT_EQ(0, Load(SHAPES));
    const struct {
        int processor;
        std::vector<uint32_t> chain;
        int result;
        uint32_t kind;
        int size, count, alignment;
    } cases[] = {
        {CPU_C167, {0x122}, 0, 0x122, 2, 1, 2},
        {CPU_C167, {0xC2}, 0, 0xC2, 1, 1, 1},
        {CPU_F283XX, {0xC2}, 0, 0xC2, 1, 1, 2},
        {CPU_F283XX, {0x242}, 0, 0x242, 4, 1, 4},
        {CPU_C167, {0x20000004, 0x122}, 0, 0x122, 2, 4, 2},
        {CPU_C167, {0x20000002, 0x20000003, 0x242}, 0, 0x20000242, 12, 2, 2},
        {CPU_C167, {0x20000002, 0x20000001, 0x242}, 0, 0x242, 4, 2, 2},
        {CPU_C167, {0x20000000, 0x122}, 0, 0x122, 2, 0, 2},
        {CPU_C167, {0x20000002, 0x20000000, 0x122}, -1, 0, 0, 0, 1},
        {CPU_C167, {0x28000000, 0x122}, 0, 0x28000000, 2, 1, 2},
        {CPU_F2803X, {0x28000000, 0x18000000, 1}, 0, 0x28000000, 4, 1, 4},
        {CPU_C167, {0x18000000, 1}, -1, 0, 0, 0, 1},
        {CPU_F283XX, {0x18000000, 1}, -1, 0, 0, 0, 2},
        {CPU_C167, {0x38000001}, 0, 0x38000000, 4, 1, 2},
        {CPU_C167, {0x30000003}, 0, 0x38000000, 6, 1, 2},
        {CPU_C167, {0x38000002}, 0, 0x38000000, 20, 1, 2}, // 1 +1, 3 * 4, 6
        {CPU_C167, {0x20000003, 0x38000001}, 0, 0x38000000, 4, 3, 2},
        {CPU_F283XX, {0x38000002}, 0, 0x38000000, 24, 1, 4},
        {CPU_C167, {0x38000004}, -1, 0, 0, 0, 1}, // holds itself
        {CPU_C167, {0x38000005}, -1, 0, 0, 0, 1},
        {CPU_C167, {0x38000000}, -1, 0, 0, 0, 1},
        {CPU_C167, {0x27FFFFFF, 0x20000004, 0x442}, -1, 0, 0, 0, 1}, // larger than any memory
        {CPU_C167, {0}, -1, 0, 0, 0, 1}};
    for (const auto &row : cases) {
        std::vector<uint32_t> chain = row.chain;
        chain.push_back(0);
        uint32_t kind = 7;
        int32_t size = 7, count = 7, alignment = 7;
        Procesor = row.processor;
        const int result = TMF_GetTypeInfo(chain.data(), &kind, &size, &count, &alignment, 0);
        EXPECT_EQ(row.result, result) << std::hex << chain[0];
        EXPECT_EQ(row.kind, kind) << std::hex << chain[0];
        EXPECT_EQ(row.size, size) << std::hex << chain[0];
        EXPECT_EQ(row.count, count) << std::hex << chain[0];
        EXPECT_EQ(row.alignment, alignment) << std::hex << chain[0];
    }
}

TEST_F(TypeMaps, LimitsNestingAndSharedStructuresCostNothing)
{
    for (int levels : {20, 21}) {
        std::string text = "## 1 VARS\n1: 'top' _@0x38000001\n## 0 TYPES\n## " +
                           std::to_string(levels) + " STRUCTS\n";
        for (int i = 1; i < levels; ++i) {
            char code[16];
            std::snprintf(code, sizeof code, "0x%X", 0x38000001u + static_cast<unsigned>(i));
            text += "# 1 / 1:\n 'm' _@" + std::string(code) + "\n";
        }
        ASSERT_EQ(0, Load(text + "# 1 / 1:\n 'last' _@0x122\n"));
        uint32_t kind = 0;
        int32_t size = 0, count = 0, alignment = 0;
        const uint32_t chain[] = {0x38000001, 0}, second[] = {0x38000002, 0};
        EXPECT_EQ(0, TMF_GetTypeInfo(second, &kind, &size, &count, &alignment, 0));
        EXPECT_EQ(levels == 20 ? 0 : -1,
                  TMF_GetTypeInfo(chain, &kind, &size, &count, &alignment, 0));
        EXPECT_EQ(-1, TMF_GetTypeInfo(second, &kind, &size, &count, &alignment, 2));
    }
    // Structure i holds structure i + 1 sixty-four times: resolving each anew would take
    // 64^6 steps.
    std::string wide = "## 1 VARS\n1: 'top' _@0x38000001\n## 0 TYPES\n## 7 STRUCTS\n";
    for (int i = 1; i <= 7; ++i) {
        wide += "# 1 / 64:\n";
        for (int m = 0; m < 64; ++m)
            wide += " 'm' _@0x" + std::string(i == 7 ? "122" : "3800000" + std::to_string(i + 1)) +
                    "\n";
    }
    ASSERT_EQ(0, Load(wide));
    AddMapVar(0x100, "top");
    EXPECT_EQ(NONE, inStruct("top.m", aVarNode, nNodes)); // larger than any memory
    TMF_BuildSVNodes(aVarNode, nNodes);
    EXPECT_EQ(1, TMF_cnSVNode);
}

TEST_F(TypeMaps, CapsTheMembersOfHugeArrays)
{
    ASSERT_EQ(0, Load(With("_@0x20000003_@0x38000001", "_@0x20100000_@0x38000001")));
    AddMapVar(0x1000, "deep");
    AddMapVar(0x2000, "pair");
    SortMapByName();
    EXPECT_EQ(-1, TMF_BuildSVNodes(aVarNode, nNodes));
    EXPECT_EQ(TMF_SVNODES_MAX, TMF_cnSVNode);
    EXPECT_EQ(1u, HL_GetPopups().size());
}

TEST_F(TypeMaps, ResolvesMembersAndIndexes)
{
    ASSERT_EQ(0, Load(SHAPES));
    for (const char *name : {"speed", "pair", "_grid", "deep", "loop", "row", "ptrs", "plain"})
        AddMapVar(0x1000, name);
    SortMapByName();
    const struct {
        const char *text;
        uint32_t address;
    } cases[] = {{"speed[3]", 0x1006},
                 {"speed[0x2] + 4", 0x1008},
                 {"pair.w", 0x1002},
                 {"3:&pair.w-2", 0x1000},
                 {"pair . w", 0x1002},
                 {"_grid[1][2]", 0x1014},
                 {"_grid[1]", 0x100C},
                 {"deep.items[2].w", 0x100C},
                 {"deep.items [ 1 ].b", 0x1006},
                 {"deep.u.part[5]", 0x1013},
                 {"deep.u.all", 0x100E},
                 {"loop", 0x1000},
                 {"ptrs[1]", 0x1002},
                 {"plain", 0x1000}};
    for (const auto &row : cases)
        EXPECT_EQ(row.address, inStruct(row.text, aVarNode, nNodes)) << row.text;
    // What a pointer points to is not known here.
    for (const char *text : {"speed[4]", "speed[-1]", "speed[]", "speed[4294967297]", "speed.x",
                             "pair.W", "pair.w.x", "pair[0]", "_grid[1][3]", "deep.items.b",
                             "loop.self", "row[0]", "ptrs[1].w", "plain.x", "plain[0]"})
        EXPECT_EQ(NONE, inStruct(text, aVarNode, nNodes)) << text;
    uint32_t chain[TMF_CHAIN_SIZE];
    EXPECT_EQ(0, TMF_TypeSubst("PAIR", chain));
    EXPECT_EQ(0x38000001u, chain[0]);
    EXPECT_TRUE(TMF_IsStructName("PAIR"));
    EXPECT_FALSE(TMF_IsStructName("pair"));
    EXPECT_EQ(0x38000001u, TMF_GetRootStruct("pair"));
    EXPECT_EQ(0u, TMF_GetRootAStruct("pair"));
}

TEST_F(TypeMaps, DeclaresTypesAndSuggestsWatchItems)
{
    ASSERT_EQ(0, Load(SHAPES));
    const struct {
        const char *name, *declaration;
        char type; // 0: none
        int size;
    } cases[] = {{"speed", "int16_t speed[4]", 'i', 2}, {"pair", "PAIR pair", 0, 0},
                 {"pair.b", "uint8_t pair.b", 'u', 1},  {"grid", "uint32_t grid[2][3]", 'u', 4},
                 {"deep", "struct #2 deep", 0, 0},      {"deep.u", "union #3 deep.u", 0, 0},
                 {"pfn", "void (*pfn)()", 'x', 2},      {"code", "void code()", 0, 0},
                 {"row", "float (*row)[8]", 'x', 2},    {"ptrs", "PAIR *ptrs[2]", 'x', 2},
                 {"ptrs[0]", "PAIR *ptrs[0]", 'x', 2}};
    for (const auto &row : cases) {
        uint32_t chain[TMF_CHAIN_SIZE], offset = 0;
        char type = 0;
        int size = 0;
        ASSERT_EQ(0, TMF_GetEfType(row.name, chain, &offset)) << row.name;
        EXPECT_EQ(row.declaration, TMF_FormatDecl(row.name, chain));
        EXPECT_EQ(row.type != 0 ? 0 : -1, TMF_SuggestItem(row.name, &type, &size)) << row.name;
        EXPECT_EQ(row.type, type) << row.name;
        EXPECT_EQ(row.size, size) << row.name;
    }
}

TEST_F(TypeMaps, ListsTheDemoAndNamesItsMembersByAddress)
{
    ASSERT_EQ(0, map2node(EXAMPLES_DIR "/demo.m66"));
    nLItems = 1;
    aLItems[0].name = "DRV_stParams.stLimits.stPeak.nY";
    ASSERT_EQ(0, TMF_OpenMap(EXAMPLES_DIR "/demo.tmf"));
    EXPECT_EQ(0x823Eu, aLItems[0].address); // resolved again

    EXPECT_TRUE(TMF_ListParts("wRamp").empty());

    const struct {
        uint32_t address;
        const char *name;
    } cases[] = {{0x8222, "DRV_stParams"},
                 {0x8224, "DRV_stParams.nKi"},
                 {0x822E, "DRV_stParams.astRamp[1].nY"},
                 {0x8238, "DRV_stParams.stLimits.anHigh"},
                 {0x8001, "byFlags"}};
    for (const auto &row : cases) {
        uint32_t address = row.address;
        std::string name;
        EXPECT_EQ(0, MapAddrToId(&name, &address));
        EXPECT_EQ(row.name, name);
        EXPECT_EQ(row.address, inStruct(row.name, aVarNode, nNodes));
    }
    for (int i = 0; i < TMF_cnSVNode; ++i)
        EXPECT_EQ(TMF_paSVNode[i].addr, inStruct(TMF_paSVNode[i].name, aVarNode, nNodes))
            << TMF_paSVNode[i].name;
}

} // namespace
