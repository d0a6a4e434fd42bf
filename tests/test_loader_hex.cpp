// HEX lines to their codes, whole files with every fault a file can have, and srecord as
// the second opinion on what a file means.
#include "loader/hex_file.h"
#include "support/scratch.h"
#include "text/txfr.h"

#include <cstring>
#include <random>
#include <sstream>

namespace {

TEST(HexLine, LinesGoToTheirCodes)
{
    uint32_t value = 77;
    EXPECT_EQ(-2, IHEX167_GetUHEXN("1f", 2, &value));
    EXPECT_EQ(-1, IHEX167_GetUHEXNi("fG", 2, &value));
    EXPECT_EQ(77u, value) << "only success changes it";
    EXPECT_EQ(0, IHEX167_GetUHEXNi("fF09", 4, &value));
    EXPECT_EQ(0xFF09u, value);
    // Lines, each with its code, from a base of 0x50000. The last two are as long as a line
    // may be, but for its count, and longer.
    std::istringstream cases(
        ":00000001FF 999 :01000001FFFF -11 :0400000300003800C1 -111 :04000005000000CD2A -111 "
        ":03000004000000F9 -8 :03000002000000FB -8 :020010001234A800 -3 :02001000123459 -8 "
        ":020010001234A8 0 :020010001234a8 -7 :02001000123GA8 -7 :02001a001234A8 -4 "
        ":020010a01234A8 -5 :0a0010001234A8 -2 : -2 x020010001234A8 -1 :79" +
        std::string(248, '0') + " -3 :00000001FF" + std::string(300, '0') + " -1");
    const ScratchFolder folder;
    IHEX167_Block block;
    const auto parse = [&](const std::string &line, uint32_t *base) {
        WriteFileText(folder / "a.hex", line + "\r\n");
        const int file = TXFR_Open((folder / "a.hex").c_str());
        block.length = 9;
        const int result = IHEX167_Parse_line(&block, file, base);
        if (line.size() < 250) {
            IHEX167_Block next;
            EXPECT_EQ(IHEX_FILE_END, IHEX167_Parse_line(&next, file, base));
        }
        TXFR_Close(file);
        return result;
    };
    std::string line;
    for (int code = 0; cases >> line >> code;) {
        uint32_t base = 0x50000;
        EXPECT_EQ(code, parse(line, &base)) << line;
        EXPECT_EQ(0x50000u, base) << line;
        EXPECT_EQ(code == 0 ? 2 : 0, block.length) << line;
        EXPECT_TRUE(code != 0 || (block.address == 0x50010 && block.data[1] == 0x34));
    }
    EXPECT_EQ(-1, parse("", &value));
    EXPECT_EQ(1, parse(":020000040001F9", &value));
    EXPECT_EQ(0x10000u, value);
    EXPECT_EQ(1, parse(":020000021000EC", &value));
    EXPECT_EQ(0x10000u, value);
    EXPECT_EQ(1, parse(":02000004FFFFFC", &value));
    EXPECT_EQ(0xFFFF0000u, value);
}

TEST(HexLine, BlocksJoinWithoutGapUpTo255)
{
    const struct {
        uint16_t to, from;
        uint32_t at;
        int result;
    } cases[] = {{0, 16, 0x900, 0},   {16, 16, 0x110, 0},   {16, 16, 0x111, -1},
                 {16, 16, 0x10F, -1}, {155, 100, 0x19B, 0}, {156, 100, 0x19C, -1},
                 {16, 0, 0x110, -1},  {16, 256, 0x110, -1}, {256, 1, 0x200, -1}};
    for (const auto &c : cases) {
        IHEX167_Block to = {0x100, c.to, {1}}, from = {c.at, c.from, {2}};
        EXPECT_EQ(c.result, IHEX167_Join_block(&to, &from)) << c.to << " " << c.from;
        EXPECT_EQ(c.result == 0 ? c.to + c.from : c.to, to.length);
        EXPECT_EQ(c.to == 0 ? c.at : 0x100u, to.address);
        EXPECT_TRUE(c.result != 0 || to.data[c.to] == 2);
    }
    const IHEX167_Block a = {1, 2, {3, 4, 5}}, b = {1, 2, {3, 4, 6}}, c = {1, 2, {3, 5}};
    EXPECT_EQ(1, IHEX167_Is_block_eq(&a, &b)) << "beyond its length a block has no bytes";
    EXPECT_EQ(0, IHEX167_Is_block_eq(&a, &c));
}

// --- whole files -----------------------------------------------------------------------------

TEST(HexFile, FaultsAreNamedWithTheirLines)
{
    const std::string end = ":00000001FF\r\n", data = ":020010001234A8\r\n",
                      high = ":0200000400FFFB\n";
    std::string many;
    for (int i = 0; i < 1000; i++)
        many += "x\n";
    const struct {
        std::string text, problems; // those that are fatal end in "!"
    } cases[] = {
        {data + end + "anything\n", ""},
        {data, "line 1: the end record is missing: the file may be cut off!"},
        {end, "the file holds no data!"},
        {data + data + end, "line 2: 0x000010 is also in line 1!"},
        {":01001100AA44\n" + data + end, "line 2: 0x000011 is also in line 1!"},
        {":01001200AA43\n" + data + end, ""},
        {":020010001234a8\nx\n\n" + data + ":02001200123459\n" + end,
         "line 1: lower-case hexadecimal digit!line 2: no record: the line does not begin with "
         "\":\"!line 3: empty line!line 5: wrong check sum 59, should be A6!"},
        {data + ":0400000500001234B1\n" + end,
         "line 2: start address record, not needed for a flash"},
        {data + ":00001300ED\n" + end, "line 2: a record without data"},
        {data + ":00000009F7\n" + end, "line 2: unknown record type 09!"},
        {data + ":0100000100FE\n" + end, "line 2: end record with data!"},
        {data + ":0300000400FF00FA\n" + end, "line 2: a base address record must hold 2 bytes!"},
        {data + ":02001200123G\n" + end, "line 2: 13 characters, but a record of 2 bytes has 15!"},
        {data + ":0200120012-3A6\n" + end, "line 2: not a hexadecimal digit!"},
        {high + ":01FFFF00AA57\n" + end, ""},
        {high + ":02FFFF00AA5501\n" + end, "line 2: address 0xFFFFFF is outside of the target!"},
        {data + std::string(600, ':') + "\n" + end,
         "line 2: line too long for any record; reading ends here!"},
        {many, "1002"}};
    const ScratchFolder folder;
    const std::string path = (folder / "a.hex").string();
    HEX_File file;
    for (const auto &c : cases) {
        WriteFileText(path, c.text);
        const int result = HEX_Read(path, &file);
        std::string found;
        for (const HEX_Problem &problem : file.problems)
            found += HEX_FormatProblem(problem) + (problem.isFatal ? "!" : "");
        EXPECT_EQ(c.problems, file.fatal > HEX_PROBLEMS_MAX ? std::to_string(file.fatal) : found);
        EXPECT_EQ(file.fatal > 0 ? HEX_ERR_PROBLEMS : 0, result) << c.text;
    }
    EXPECT_EQ(HEX_PROBLEMS_MAX, file.problems.size());
    WriteFileText(path, data + end);
    HEX_Read(path, &file);
    EXPECT_EQ(1, HEX_IsUnchanged(file));
    WriteFileText(path, ":020011001234A7\n" + end);
    EXPECT_EQ(0, HEX_IsUnchanged(file)) << "the same data elsewhere";
    std::filesystem::remove(path);
    EXPECT_EQ(HEX_ERR_OPEN, HEX_Read(path, &file));
}

// --- srecord -----------------------------------------------------------------------------------

struct Srecord : testing::Test {
    const ScratchFolder folder{true};
    std::mt19937 generator{2026};

    uint32_t Random(uint32_t below)
    {
        return static_cast<uint32_t>(generator()) % below;
    }
    std::string MakeBytes(size_t count)
    {
        std::string bytes(count, '\0');
        for (char &byte : bytes)
            byte = static_cast<char>(Random(256));
        return bytes;
    }
};

TEST_F(Srecord, WritesWhatWeRead)
{
    for (unsigned length = 1; length <= 255; length += length < 251 ? 5 : 1) {
        const uint32_t room = length % 2 == 0 ? 0x400000 : 0x3C000; // linear, segmented
        std::string command = "srec_cat", parts[4];
        uint32_t at[4];
        for (uint32_t i = 0; i < 4; i++) {
            parts[i] = MakeBytes(260 + Random(3000));
            at[i] = room * i + Random(room / 2);
            WriteFileText("part" + std::to_string(i), parts[i]);
            command += " part" + std::to_string(i) + " -binary -offset " + std::to_string(at[i]);
        }
        command += " -o a.hex -intel -address-length=" + std::to_string(length % 2 == 0 ? 4 : 3) +
                   " -line-length=" + std::to_string(11 + 2 * length);
        ASSERT_EQ(0, std::system((command + " 2>log").c_str())) << "srecord is missing?";
        HEX_File file;
        ASSERT_EQ(0, HEX_Read("a.hex", &file)) << length;
        ASSERT_EQ(4u, file.ranges.size());
        size_t longest = 0;
        for (const HEX_Record &record : file.records) {
            const uint32_t part = record.address / room, from = record.address - at[part];
            ASSERT_LE(from + record.length, parts[part].size());
            EXPECT_EQ(0, std::memcmp(&file.data[record.dataAt], &parts[part][from], record.length));
            longest = std::max<size_t>(longest, record.length);
        }
        EXPECT_EQ(length, longest);
        for (int i = 0; i < 4; i++)
            EXPECT_EQ(at[i] + parts[i].size() - 1, file.ranges[static_cast<size_t>(i)].last);
    }
}

TEST_F(Srecord, ReadsWhatWeWrite)
{
    const struct {
        uint32_t address;
        size_t count;
    } cases[] = {{0, 1}, {0x1FFF8, 40}, {0xFFFE, 0x10005}, {0xFFFFF0, 16}, {5, 11}, {0x10000, 256}};
    for (const auto &c : cases) {
        const std::string bytes = MakeBytes(c.count);
        WriteFileText("a.bin", bytes);
        ASSERT_EQ(0, HEX_Save("a.hex", c.address, reinterpret_cast<const uint8_t *>(bytes.data()),
                              bytes.size()));
        const std::string compare = "srec_cmp a.hex -intel a.bin -binary -offset ";
        EXPECT_EQ(0, std::system((compare + std::to_string(c.address)).c_str())) << c.address;
    }
    EXPECT_EQ(-1, HEX_Save("no/such.hex", 0, nullptr, 0));
}

} // namespace
