#include "support/flash_builder.h"

#include "calendar/archive.h"
#include "comm/ucm.h"
#include "support/program_state.h"
#include "symbols/flash_files.h"
#include "symbols/flash_info.h"
#include "symbols/mapfile.h"
#include "symbols/packed_names.h"
#include "symbols/typemap.h"
#include "symbols/varexpr.h"
#include "symbols/zip_types.h"
#include "text/txfrw.h"
#include "watch/list/litem.h"

#include <cstring>
#include <map>
#include <random>
#include <unistd.h>

namespace {

constexpr uint32_t BASE = 0x1C000;
std::string image; // what stands in memory from BASE on

int ReadImage(uint32_t address, uint32_t count, void *buffer)
{
    if (address < BASE || address - BASE > image.size() || count > image.size() - (address - BASE))
        return -1;
    std::memcpy(buffer, image.data() + (address - BASE), count);
    return 0;
}

const uint8_t *BytesOf(const std::string &text)
{
    return reinterpret_cast<const uint8_t *>(text.data());
}

const char TYPES[] = "## 4 VARS\n"
                     "0: 'speed' _@0x20000004_@0x122\n"
                     "1: 'speed_ref' _@0x38000001\n"
                     "2: 'flags' _@0x27FFFFFF_@0x242\n"
                     "3: 'next' _@0x28000000_@0x38000002\n"
                     "## 0 TYPES\n"
                     "## 2 STRUCTS\n"
                     "# 1 / 2:\n"
                     "'low' _@0x142\n"
                     "'parts' _@0x20000003_@0x38000002\n"
                     "# 2 / 1:\n"
                     "'x' _@0x204\n";
const FlashVars VARS = {{0x3F0000, "_c_int00"}, {0xC000, "_flags"},     {0xC002, "_next"},
                        {0xC010, "_speed"},     {0xC020, "_speed_ref"}, {0x7FFFFF, "_speed_ref2"}};

class FlashInfo : public ProgramTest {
protected:
    FlashInfo()
    {
        Procesor = CPU_F283XX;
        MFS_reader = ReadImage;
        EXPECT_EQ(loadTypes(TYPES), 0);
    }
    ~FlashInfo() override
    {
        MFS_reader = targetReader;
    }
    static void clear()
    {
        TMF_CleanTables();
        FreeNodes(aVarNode, &nNodes);
        FreeNodes(aVarTMSNode, &nTMSNodes);
        openStruct = openTMSStruct = OPEN_NONE;
    }
    static int loadTypes(const std::string &text)
    {
        const int handle = TXFRW_Create("types", "r", text.data(), text.size());
        const int result = TMF_LoadMapFrw(handle);
        TXFRW_Close(handle);
        return result;
    }
    // Everything the type map says, as text; names as the map has them.
    static std::string describe()
    {
        std::string text;
        const auto add = [&text](const char *name, const TMF_Decl &decl) {
            text += std::string(name) + FLB_PackCode(static_cast<uint32_t>(decl.codes));
            for (int i = 0; i < decl.codes; i++)
                text += FLB_PackCode(decl.chain[i]);
            text += "\n";
        };
        for (const auto &var : VARS) {
            const TMF_Decl *decl = TMF_FindVarDecl(var.second.c_str());
            if (decl != nullptr)
                add(var.second.c_str(), *decl);
        }
        return text + FLB_PackStructs();
    }
    static void expectNodes(const VarNode *table, int count, uint32_t bytesPerAddress = 2)
    {
        std::map<std::string, uint32_t> expected, got;
        for (const auto &var : VARS)
            expected[var.second] = bytesPerAddress * var.first;
        for (int i = 0; i < count; i++)
            got[table[i].name] = table[i].addr;
        EXPECT_EQ(got, expected);
        EXPECT_TRUE(std::is_sorted(table, table + count, [](const VarNode &a, const VarNode &b) {
            return std::strcmp(a.name, b.name) < 0;
        }));
    }
    static int find(const char *name, int32_t *length)
    {
        return MFS_FindFile(name, BASE, BASE + static_cast<uint32_t>(image.size()), length);
    }
    static inline const MFS_Reader targetReader = MFS_reader;
    const std::string typesBefore = (loadTypes(TYPES), describe());
};

TEST(PackedNames, CodesAndForms)
{
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";
    for (unsigned code = 0; code < 64; code++)
        EXPECT_EQ(Decode6b(code), code == 0 ? '\0' : alphabet[code - 1]);
    std::string name;
    EXPECT_EQ(DecodeStr6b(&name, BytesOf(std::string("\x81\0\0", 3)), 3), 3);
    EXPECT_EQ(name, "AB");
    const struct {
        int form;
        std::string source;
        int used;
        const char *name; // the name before is "_speed"
    } cases[] = {{0, std::string("\x82x\0y", 4), 3, "\x82x"},
                 {0, "no end", -1, ""},
                 {1, std::string("abc\0", 4), 4, "abc"},
                 {1, std::string("\x86_ref\0", 6), 6, "_speed_ref"},
                 {1, std::string("\xFFX\0", 3), 3, "_speedX"}, // no more than there is
                 {1, std::string("\x80X\0", 3), 3, "X"},
                 {1, "\x86", -1, ""},
                 {2, std::string("_\x81\0\0", 4), 4, "_AB"},
                 {2, std::string("\x82\x81\0\0", 4), 4, "_sAB"},
                 {2, std::string("\0zz", 3), 1, ""},
                 {2, std::string("_\x81\0", 3), -1, ""}, // two codes, neither the end
                 {2, "_\x81", -1, ""},
                 {2, "", -1, ""}};
    for (const auto &c : cases) {
        name = "_speed";
        const int used = UnpackVarName(&name, BytesOf(c.source), c.source.size(), c.form);
        EXPECT_EQ(used, c.used) << testing::PrintToString(c.source);
        if (used >= 0) {
            EXPECT_EQ(name, c.name);
        }
    }
    std::mt19937 random(3);
    for (int round = 0; round < 500; round++) {
        std::string wanted;
        for (size_t length = random() % 64; length > 0; length--)
            wanted += alphabet[random() % alphabet.size()];
        const std::string packed = FLB_Pack6b(wanted);
        EXPECT_EQ(DecodeStr6b(&name, BytesOf(packed), packed.size()),
                  static_cast<int>(packed.size()));
        EXPECT_EQ(name, wanted);
    }
}

TEST(ZipTypes, Declarations)
{
    const struct {
        const char *source, *decoded; // null: refused
    } cases[] = {{"v\202BA", "'v' _@0x2000040"},
                 {"abc\240E\200Ei", "'abc' _@0x20000004_@0x122"},
                 {"v\xFF"
                  "//////",
                  nullptr}, // more than 24 bits
                 {"v\xFF"
                  "////",
                  "'v' _@0x7FFFFFFF"},
                 {"v\200AAAAAB", "'v' _@0x1"},
                 {"v\200AAAAAAB", nullptr}, // a seventh digit
                 {"v\x80", nullptr},
                 {"v\x80"
                  ".",
                  nullptr},
                 {"v", nullptr},
                 {"\200B", nullptr}};
    for (const auto &c : cases) {
        std::string decoded;
        EXPECT_EQ(DecodeZipVar(&decoded, c.source), c.decoded != nullptr ? 0 : -1) << c.source;
        if (c.decoded != nullptr) {
            EXPECT_EQ(decoded, c.decoded);
        }
    }
}

TEST_F(FlashInfo, HeadersAreChecked)
{
    const std::string good = FLB_Header(';', "prjinfo.map28x", 0xABC, '\x01');
    const struct {
        size_t at;
        std::string change;
        bool isValid;
    } cases[] = {
        {0, "M", true},       {7, "1", false},
        {8, ".", false},      {9, "00000g", false},
        {9, "00000a", false}, {9, " 00ABC", false},
        {16, ".info", true},  {16, "..nfo", false},
        {16, ".\xFF", false}, {16, "pr info", false},
        {31, "x", false},     {30, "x", true},
        {30, "xy", false},    {16, ".\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", false},
        {16, "\xFF", false},  {15, "A", true}};
    for (const auto &c : cases) {
        std::string header = good, name = "before";
        header.replace(c.at, c.change.size(), c.change);
        int32_t length = 0;
        uint8_t flags = 0;
        EXPECT_EQ(GetHeaderInfo(BytesOf(header), &name, &length, &flags), c.isValid ? 0 : -1)
            << c.at << c.change;
        EXPECT_EQ(length, c.isValid ? 0xABC : -1);
        EXPECT_EQ(flags, c.isValid ? BytesOf(header)[15] : 0xFE);
        EXPECT_EQ(name.empty(), !c.isValid);
    }
}

TEST_F(FlashInfo, DirectoryIsWalked)
{
    const std::string first = FLB_File("a.txt", "first\n"),
                      deleted = FLB_File("b", "old\n", '\xFE');
    const std::string second = FLB_File("b", "new one\n");
    int32_t length;
    image = "pad" + first + deleted + "gap" + second + std::string(64, '\xFF');
    ASSERT_EQ(find("b", &length), static_cast<int>(BASE + 3 + first.size() + deleted.size() + 35));
    EXPECT_EQ(length, 8);
    EXPECT_EQ(find("c", &length), -1);
    EXPECT_EQ(length, -1);
    EXPECT_EQ(MFS_FindFile("a.txt", BASE, BASE + 64, &length), -1); // a range too short
    const int text = MFS_LoadFrw("a.txt", BASE, BASE + static_cast<uint32_t>(image.size()));
    EXPECT_STREQ(TXFRW_GetLinePtr(text, 0), "first");
    TXFRW_Close(text);
    const std::string whole = image;
    image[3 + 32 + 6 + 20] ^= 1; // the name in the first trailer
    EXPECT_EQ(find("a.txt", &length), -1);
    EXPECT_EQ(find("b", &length) > 0, true); // trailers count for the wanted file only
    image = whole;
    image.replace(3 + 9, 6, "FFFFFF"); // a size that leads out of the range
    EXPECT_EQ(find("b", &length), -1);
    image = whole;
    EXPECT_EQ(MFS_FindFile("b", BASE, BASE + 100000, &length) > 0, true);
    EXPECT_EQ(MFS_FindFile("c", BASE - 1, BASE + 100000, &length), MFS_ERR_COMMUNICATION);
    image.assign(200, '\xFF');
    EXPECT_EQ(MFS_FindDirectory(BASE, BASE + 100), -1) << "an erased flash has none";
}

int reads;
int ReadCounted(uint32_t address, uint32_t count, void *buffer)
{
    ++reads;
    return ReadImage(address, count, buffer);
}

// A flash full of empty files is left after a bounded number of exchanges, both ways, and
// before that whenever the user says so.
TEST_F(FlashInfo, WalksAreBoundedAndCanBeCancelled)
{
    const std::string empty = FLB_File("e", "", '\xFE');
    image.clear();
    for (int i = 0; i < 3 * MFS_FILES_MAX; i++)
        image += empty;
    const uint32_t end = BASE + static_cast<uint32_t>(image.size());
    MFS_reader = ReadCounted;
    int32_t length;
    const struct {
        int cancelAt, result, most; // most exchanges
    } cases[] = {{0, MFS_ERR_TOO_MANY, 2 * MFS_FILES_MAX},
                 {1, MFS_ERR_CANCELLED, 20},
                 {20, MFS_ERR_CANCELLED, 60}};
    for (const auto &c : cases) {
        for (const bool isBack : {false, true}) {
            reads = 0;
            HL_CancelProgressAt(c.cancelAt);
            const int result =
                isBack ? MFS_FindDirectory(BASE, end) : MFS_FindFile("x", BASE, end, &length);
            EXPECT_EQ(result, c.result) << isBack;
            EXPECT_GT(reads, c.cancelAt) << isBack;
            EXPECT_LE(reads, c.most) << isBack;
        }
    }
    HL_CancelProgressAt(0);
    EXPECT_EQ(LoadFMap283xx(BASE, end), MFS_VAR_MAP_ERR_TOO_MANY);
    EXPECT_STRNE(MFS_GetErrorText(MFS_VAR_MAP_ERR_TOO_MANY), "");
    // Not one file fewer is found than the bound allows.
    image = image.substr(0, empty.size() * (MFS_FILES_MAX - 1)) + FLB_File("x", "text") +
            std::string(64, '\xFF');
    const uint32_t last = BASE + static_cast<uint32_t>(image.size());
    EXPECT_GT(MFS_FindFile("x", BASE, last, &length), 0);
    EXPECT_EQ(MFS_FindDirectory(BASE, last - 64), static_cast<int32_t>(BASE));
}

TEST_F(FlashInfo, MapsComeBackAsPacked)
{
    for (int form = 0; form < 3; form++) {
        ASSERT_EQ(loadTypes(TYPES), 0);
        image = FLB_Directory(VARS, form) + std::string(100, '\xFF');
        ASSERT_EQ(
            loadTypes("## 1 VARS\n1: 'z' _@0x122\n## 0 TYPES\n## 1 STRUCTS\n#1/1:\n'z' _@0x122"),
            0);
        const uint32_t end = BASE + static_cast<uint32_t>(image.size());
        ASSERT_EQ(LoadFMap283xx(BASE, end), static_cast<int>(VARS.size())) << form;
        expectNodes(aVarNode, nNodes);
        EXPECT_EQ(describe(), typesBefore);
        EXPECT_EQ(inStruct("_speed_ref.parts[2].x", aVarNode, nNodes), 2 * 0xC020u + 2 + 2 + 8);
    }
}

// Each chip has its flash elsewhere, and each station its own.
TEST_F(FlashInfo, TargetsFlashAndSavedArchiveBringTheMaps)
{
    const std::string directory = FLB_Directory(VARS, 2), other = FLB_File("b", "other");
    SIM_Options options;
    options.demo = false;
    SIM_Target *target = SIMT_Start(7, options);
    ASSERT_NE(target, nullptr);
    const struct {
        int processor, station;
        uint32_t end; // of the files
    } chips[] = {{CPU_F283XX, 0, 0x67FF00}, {CPU_F2803X, 3, 0x7EFF00}};
    for (const auto &chip : chips) {
        const int elsewhere = chip.station == 0 ? 3 : 0;
        SIM_Poke(target, chip.station, chip.end - static_cast<uint32_t>(directory.size()),
                 directory.data(), directory.size());
        SIM_Poke(target, elsewhere, chip.end - static_cast<uint32_t>(other.size()), other.data(),
                 other.size());
    }
    MFS_reader = targetReader;
    for (const auto &chip : chips) {
        Procesor = chip.processor;
        STATION = chip.station;
        ASSERT_EQ(UCM_Open(PROTOCOL_MR166, 7, 115200), 0);
        clear();
        EXPECT_EQ(fl2node(MFS_AT_1C000), MFS_ERR_NO_MAP);
        EXPECT_EQ(openStruct, OPEN_NONE);
        STATION = chip.station == 0 ? 3 : 0;
        EXPECT_EQ(fl2node(MFS_AT_END), MFS_ERR_NO_MAP);
        STATION = chip.station;
        EXPECT_EQ(fl2node(MFS_AT_END), 0) << chip.processor;
        EXPECT_EQ(openStruct, OPEN_FROM_MEMORY);
        UCM_Close();
        EXPECT_EQ(fl2node(MFS_AT_END), MFS_VAR_MAP_ERR_COMMUNICATION);
        expectNodes(aVarNode, nNodes); // still those
        EXPECT_EQ(describe(), typesBefore);
    }
    STATION = 1;
    SIMT_Stop(7, target);

    const std::string path = testing::TempDir() + std::to_string(getpid()) + "saved.qar";
    ASSERT_EQ(SaveFlash(path.c_str()), 0);
    clear();
    EXPECT_EQ(TMSmap2node(path.c_str()), 0);
    EXPECT_EQ(openStruct, OPEN_MAP_FILE);
    expectNodes(aVarNode, nNodes);
    EXPECT_EQ(describe(), typesBefore);
    clear();
    Procesor = CPU_C167; // the map is then that of the TMS320 behind the station
    EXPECT_EQ(TMSmap2node(path.c_str()), 0);
    EXPECT_EQ(nNodes, 0);
    EXPECT_EQ(openTMSStruct, OPEN_MAP_FILE);
    expectNodes(aVarTMSNode, nTMSNodes, 1); // as the mailbox counts
    std::ofstream(path, std::ios::binary) << "QAR1/1;5;0x00000000;\"" MFS_VAR_MAP "\"\n12345";
    Procesor = CPU_F283XX;
    EXPECT_LT(TMSmap2node(path.c_str()), 0);
    std::remove(path.c_str());
}

TEST_F(FlashInfo, DamageLeavesTheTablesAsTheyWere)
{
    const std::string map = FLB_File(MFS_VAR_MAP, FLB_PackVarMap(VARS, 0));
    const std::string decls = FLB_File(MFS_TYPE_DECLS, FLB_PackDecls(VARS));
    const std::string structs = FLB_File(MFS_TYPE_STRUCTS, FLB_PackStructs());
    const auto mapOf = [](const std::string &text) { return FLB_File(MFS_VAR_MAP, text); };
    const struct {
        std::string directory;
        int result;
    } cases[] = {{map + decls + structs, static_cast<int>(VARS.size())},
                 {map, static_cast<int>(VARS.size())}, // names without types
                 {decls + structs, MFS_ERR_NO_MAP},
                 {mapOf("no address\n"), MFS_ERR_NO_MAP},
                 {mapOf("#2\nabcd\x90zz"), MFS_ERR_NO_MAP},
                 {mapOf("#1\n00C000 " + std::string(65, 'n') + "\n"), MFS_ERR_NO_MAP},
                 {mapOf("7FFFFF ok\n800000 far\n"), MFS_ERR_ADDRESS},
                 {map + decls, MFS_ERR_TYPES},
                 {map + FLB_File(MFS_TYPE_DECLS, "v\x80\n") + structs, MFS_ERR_TYPES},
                 {map + FLB_File(MFS_TYPE_DECLS, std::string(8, '\n')) + structs, MFS_ERR_TYPES},
                 {map + decls + FLB_File(MFS_TYPE_STRUCTS, "#2\nv\201A\n"), MFS_ERR_TYPES},
                 {map + FLB_File(MFS_TYPE_MAP, "## 1 VARS\n"), MFS_ERR_TYPES},
                 {map + FLB_File(MFS_TYPE_MAP, TYPES), static_cast<int>(VARS.size())}};
    for (const auto &c : cases) {
        FreeNodes(aVarNode, &nNodes);
        AddMapVar(0x100, "before");
        image = c.directory + std::string(100, '\xFF');
        const uint32_t end = BASE + static_cast<uint32_t>(image.size());
        EXPECT_EQ(LoadFMap283xx(BASE, end), c.result) << c.directory;
        EXPECT_EQ(nNodes, c.result > 0 ? c.result : 1);
        EXPECT_EQ(inStruct("before", aVarNode, nNodes), c.result > 0 ? 0xFFFFFFFFu : 0x100u);
        EXPECT_EQ(describe(), typesBefore);
    }
}

} // namespace
