// HEX lines to their codes, whole files with every fault a file can have, and srecord as
// the second opinion on what a file means.
#include "loader/hex_file.h"
#include "support/scratch.h"
#include "text/txfr.h"

#include <cstdlib>
#include <random>

namespace {

using Bytes = std::vector<uint8_t>;

TEST(HexLine, DigitsGoToTheirValueOrCode)
{
    const struct {
        const char *text;
        int n, upper, both;
        uint32_t value;
    } cases[] = {{"1F", 2, 0, 0, 0x1F}, {"1f", 2, -2, 0, 0x1F},
                 {"fG", 2, -2, -1, 0},  {"Gf", 2, -1, -1, 0},
                 {"9", 2, -1, -1, 0},   {"09AF", 4, 0, 0, 0x9AF},
                 {"@0", 2, -1, -1, 0},  {"0:", 2, -1, -1, 0},
                 {"`0", 2, -1, -1, 0},  {"FFFFFFFF", 8, 0, 0, 0xFFFFFFFF}};
    for (const auto &c : cases) {
        for (const bool isUpper : {true, false}) {
            uint32_t value = 77;
            const int wanted = isUpper ? c.upper : c.both;
            EXPECT_EQ(wanted, isUpper ? IHEX167_GetUHEXN(c.text, c.n, &value)
                                      : IHEX167_GetUHEXNi(c.text, c.n, &value))
                << c.text;
            EXPECT_EQ(wanted == 0 ? c.value : 77u, value) << c.text;
        }
    }
}

TEST(HexLine, LinesGoToTheirCodes)
{
    const std::string fits = ":79" + std::string(248, '0'); // one character too few for its count
    const struct {
        std::string line;
        int result;
        uint32_t base;
    } cases[] = {{":00000001FF", 999, 0x50000},
                 {":01000001FFFF", -11, 0x50000},
                 {":020000040001F9", 1, 0x10000},
                 {":020000021000EC", 1, 0x10000},
                 {":02000004FFFFFC", 1, 0xFFFF0000},
                 {":0400000300003800C1", -111, 0x50000},
                 {":04000005000000CD2A", -111, 0x50000},
                 {":0300000400000000F9", -3, 0x50000},
                 {":03000004000000F9", -8, 0x50000}, // a base of three bytes
                 {":03000002000000FB", -8, 0x50000},
                 {":0200100012345800", -3, 0x50000},
                 {":02001000123459", -8, 0x50000},
                 {":020010001234A8", 0, 0x50000},
                 {":020010001234a8", -7, 0x50000},
                 {":02001000123GA8", -7, 0x50000},
                 {":02001a001234A8", -4, 0x50000},
                 {":020010a01234A8", -5, 0x50000},
                 {":0a0010001234A8", -2, 0x50000},
                 {":", -2, 0x50000},
                 {":0", -2, 0x50000},
                 {"", -1, 0x50000},
                 {"020010001234A8", -1, 0x50000},
                 {" :020010001234A8", -1, 0x50000},
                 {":000000000", -3, 0x50000},
                 {":0000000000 ", -3, 0x50000},
                 {":00000001FF" + std::string(300, '0'), -1, 0x50000},
                 {fits, -3, 0x50000}};
    const ScratchFolder folder;
    for (const auto &c : cases) {
        WriteFileText(folder / "a.hex", c.line + "\r\n");
        const int file = TXFR_Open((folder / "a.hex").c_str());
        IHEX167_Block block;
        block.length = 9;
        uint32_t base = 0x50000;
        EXPECT_EQ(c.result, IHEX167_Parse_line(&block, file, &base)) << c.line;
        EXPECT_EQ(c.base, base) << c.line;
        EXPECT_EQ(c.result == 0 ? 2 : 0, block.length) << c.line;
        if (c.result == 0) {
            EXPECT_EQ(0x50010u, block.address);
            EXPECT_EQ(Bytes({0x12, 0x34}), Bytes(block.data, block.data + 2));
        }
        TXFR_Close(file);
    }
    WriteFileText(folder / "a.hex", ":020000040001F9\n:0100100055 9A\n:010010005599");
    const int file = TXFR_Open((folder / "a.hex").c_str());
    IHEX167_Block block;
    uint32_t base = 0;
    const int wanted[] = {1, -3, -8, 998, 998};
    for (const int result : wanted)
        EXPECT_EQ(result, IHEX167_Parse_line(&block, file, &base));
}

IHEX167_Block MakeBlock(uint32_t address, int length, uint8_t first)
{
    IHEX167_Block block;
    block.address = address;
    block.length = static_cast<uint16_t>(length);
    for (int i = 0; i < length && i < 255; i++)
        block.data[i] = static_cast<uint8_t>(first + i);
    return block;
}

TEST(HexLine, BlocksJoinWithoutGapUpTo255)
{
    const struct {
        int to, from;
        uint32_t at;
        int result, length;
    } cases[] = {{0, 16, 0x900, 0, 16},   {16, 16, 0x110, 0, 32},    {16, 16, 0x111, -1, 16},
                 {16, 16, 0x10F, -1, 16}, {155, 100, 0x19B, 0, 255}, {156, 100, 0x19C, -1, 156},
                 {16, 0, 0x110, -1, 16},  {16, 256, 0x110, -1, 16},  {256, 1, 0x200, -1, 256}};
    for (const auto &c : cases) {
        IHEX167_Block to = MakeBlock(0x100, c.to, 0);
        const IHEX167_Block from = MakeBlock(c.at, c.from, static_cast<uint8_t>(c.to));
        EXPECT_EQ(c.result, IHEX167_Join_block(&to, &from)) << c.to << " " << c.from;
        const IHEX167_Block wanted = MakeBlock(c.to == 0 ? c.at : 0x100, c.length, 0);
        EXPECT_EQ(c.length, to.length);
        if (c.length <= 255) {
            EXPECT_EQ(1, IHEX167_Is_block_eq(&to, &wanted)) << c.to << " " << c.from;
        }
    }
    EXPECT_EQ(0, IHEX167_Is_block_ok(nullptr));
}

// --- whole files -----------------------------------------------------------------------------

TEST(HexFile, FaultsAreNamedWithTheirLines)
{
    const std::string end = ":00000001FF\r\n", data = ":020010001234A8\r\n";
    const struct {
        std::string text;
        int result;
        std::vector<std::string> problems;
    } cases[] = {
        {data + end, 0, {}},
        {data + end + "anything\n", 0, {}},
        {data, -2, {"line 1: the end record is missing: the file may be cut off"}},
        {"", -2, {"the end record is missing: the file may be cut off", "the file holds no data"}},
        {end, -2, {"the file holds no data"}},
        {data + data + end, -2, {"line 2: 0x000010 is also in line 1"}},
        {":01001100AA44\n" + data + end, -2, {"line 2: 0x000011 is also in line 1"}},
        {":01001200AA43\n" + data + end, 0, {}},
        {":020010001234a8\nx\n\n" + data + ":02001200123459\n" + end,
         -2,
         {"line 1: lower-case hexadecimal digit",
          "line 2: no record: the line does not begin with \":\"", "line 3: empty line",
          "line 5: wrong check sum 59, should be A6"}},
        {data + ":0400000500001234B1\n" + end,
         0,
         {"line 2: start address record, not needed for a flash"}},
        {data + ":00001300ED\n" + end, 0, {"line 2: a record without data"}},
        {data + ":00000009F7\n" + end, -2, {"line 2: unknown record type 09"}},
        {data + ":0100000100FE\n" + end, -2, {"line 2: end record with data"}},
        {data + ":0300000400FF00FA\n" + end,
         -2,
         {"line 2: a base address record must hold 2 bytes"}},
        {data + ":02001200123G\n" + end,
         -2,
         {"line 2: 13 characters, but a record of 2 bytes has 15"}},
        {data + ":0200120012-3A6\n" + end, -2, {"line 2: not a hexadecimal digit"}},
        {":0200000400FFFB\n:01FFFF00AA57\n" + end, 0, {}},
        {":0200000400FFFB\n:02FFFF00AA5501\n" + end,
         -2,
         {"line 2: address 0xFFFFFF is outside of the target"}},
        {":020000040100F9\n:01000000AA55\n" + end,
         -2,
         {"line 2: address 0x1000000 is outside of the target"}},
        {data + std::string(600, ':') + "\n" + end,
         -2,
         {"line 2: line too long for any record; reading ends here"}}};
    const ScratchFolder folder;
    for (const auto &c : cases) {
        WriteFileText(folder / "a.hex", c.text);
        HEX_File file;
        EXPECT_EQ(c.result, HEX_Read((folder / "a.hex").string(), &file)) << c.text;
        std::vector<std::string> found;
        for (const HEX_Problem &problem : file.problems)
            found.push_back(HEX_FormatProblem(problem));
        EXPECT_EQ(c.problems, found) << c.text;
    }
    HEX_File file;
    EXPECT_EQ(HEX_ERR_OPEN, HEX_Read((folder / "none.hex").string(), &file));
    std::string many;
    for (int i = 0; i < 1000; i++)
        many += "x\n";
    WriteFileText(folder / "a.hex", many);
    HEX_Read((folder / "a.hex").string(), &file);
    EXPECT_EQ(HEX_PROBLEMS_MAX, file.problems.size());
    EXPECT_EQ(1002u, file.fatal);
}

TEST(HexFile, AChangeOnTheDiskIsSeen)
{
    const ScratchFolder folder;
    const std::string path = (folder / "a.hex").string();
    WriteFileText(path, ":020010001234A8\n:00000001FF\n");
    HEX_File file;
    ASSERT_EQ(0, HEX_Read(path, &file));
    WriteFileText(path, ":020010001234A8\r\n:00000001FF\r\n");
    EXPECT_EQ(1, HEX_IsUnchanged(file)) << "the same data";
    for (const char *text : {":020010001235A7\n:00000001FF\n", ":020011001234A7\n:00000001FF\n",
                             ":020010001234A8\n", ""}) {
        WriteFileText(path, text);
        EXPECT_EQ(0, HEX_IsUnchanged(file)) << text;
    }
    std::filesystem::remove(path);
    EXPECT_EQ(0, HEX_IsUnchanged(file));
}

// --- srecord -----------------------------------------------------------------------------------

struct Srecord : testing::Test {
    const ScratchFolder folder{true};
    std::mt19937 generator{2026};

    uint32_t random()
    {
        return static_cast<uint32_t>(generator());
    }

    void SetUp() override
    {
        ASSERT_EQ(0, std::system("command -v srec_cat >/dev/null 2>&1")) << "srecord is missing";
    }
    // A few stretches of random bytes, apart from each other, below `end`.
    void MakeImage(uint32_t end)
    {
        std::string command;
        for (int i = 0; i < 4; i++) {
            const uint32_t room = end / 4,
                           first = room * static_cast<uint32_t>(i) + random() % (room / 2);
            std::string bytes(1 + random() % 3000, '\0');
            for (char &byte : bytes)
                byte = static_cast<char>(random());
            WriteFileText("part" + std::to_string(i), bytes);
            command += " part" + std::to_string(i) + " -binary -offset " + std::to_string(first);
        }
        ASSERT_EQ(0,
                  std::system(("srec_cat" + command + " -o image.srec -motorola 2>log").c_str()));
    }
};

TEST_F(Srecord, ReadsWhatItWrites)
{
    const struct {
        const char *format;
        uint32_t end;
    } formats[] = {{"-intel", 0x1000000}, {"-intel -address-length=3", 0xF0000}};
    for (int round = 0; round < 60; round++) {
        const auto &format = formats[round % 2];
        MakeImage(format.end);
        // The line length is what makes records of so many bytes.
        const unsigned bytes = round < 4 ? 255 - static_cast<unsigned>(round) : 1 + random() % 255;
        const std::string make = std::string("srec_cat image.srec -motorola -o a.hex ") +
                                 format.format + " -line-length=" + std::to_string(11 + 2 * bytes) +
                                 " 2>log";
        ASSERT_EQ(0, std::system(make.c_str()));
        HEX_File file;
        ASSERT_EQ(0, HEX_Read("a.hex", &file))
            << bytes << " " << (file.problems.empty() ? "" : HEX_FormatProblem(file.problems[0]));
        size_t longest = 0;
        std::string command;
        for (size_t i = 0; i < file.ranges.size(); i++) {
            std::string text;
            for (const HEX_Record &record : file.records)
                if (record.address >= file.ranges[i].first &&
                    record.address <= file.ranges[i].last) {
                    text.append(reinterpret_cast<const char *>(&file.data[record.dataAt]),
                                record.length);
                    longest = std::max<size_t>(longest, record.length);
                }
            WriteFileText("range" + std::to_string(i), text);
            command += " range" + std::to_string(i) + " -binary -offset " +
                       std::to_string(file.ranges[i].first);
        }
        EXPECT_EQ(bytes, longest) << "records of the length asked for";
        EXPECT_EQ(
            0, std::system(("srec_cmp image.srec -motorola '('" + command + " ')' 2>log").c_str()))
            << bytes;
    }
}

TEST_F(Srecord, ReadsWhatWeWrite)
{
    const struct {
        uint32_t address;
        size_t count;
    } cases[] = {{0, 1}, {0x1FFF8, 40}, {0xFFFE, 0x10005}, {0xFFFFF0, 16}, {5, 11}, {0x10000, 256}};
    for (const auto &c : cases) {
        std::string bytes(c.count, '\0');
        for (char &byte : bytes)
            byte = static_cast<char>(random());
        WriteFileText("a.bin", bytes);
        ASSERT_EQ(0, HEX_Save("a.hex", c.address, reinterpret_cast<const uint8_t *>(bytes.data()),
                              bytes.size()));
        EXPECT_EQ(0, std::system(("srec_cmp a.hex -intel a.bin -binary -offset " +
                                  std::to_string(c.address))
                                     .c_str()))
            << c.address;
        HEX_File file;
        ASSERT_EQ(0, HEX_Read("a.hex", &file));
        for (const HEX_Record &record : file.records)
            EXPECT_EQ(record.address / 16, (record.address + record.length - 1) / 16);
        EXPECT_EQ(0u, ReadFileText("a.hex").find(":02000004")) << "a base from the first line on";
    }
    EXPECT_EQ(-1, HEX_Save("no/such.hex", 0, nullptr, 0));
}

} // namespace
