// Headers and data files of variable sets.
#include "support/sets_rig.h"

namespace {

TEST_F(Sets, HeaderNamesEverySingleValue)
{
    const struct {
        const char *header, *names;
    } cases[] = {
        {"wGain", "(u2)wGain "},
        {"; remark\n(i2) wGain // another", "(i2)wGain "},
        {"aw", "(u2)aw[0] (u2)aw[1] (u2)aw[2] "},
        {"aw [ 1 ]", "(u2)aw[1] "},
        {"(i2) aw", "(i2)aw[0] (i2)aw[1] (i2)aw[2] "},
        {"(u1) byMode, count 2", "(u1)byMode[0] (u1)byMode[1] "},
        {"st", "(i2)st.nA (u2)st.un.w (float)st.f "}, // of the union what fills it
        {"st.f", "(float)st.f "},
        {"qwId", "(u4)qwId (u4)qwId+4 "},
        {"(u4) wGain + 8", "(u4)wGain+8 "},
        {"area 8108h, length 24", "008108h 008110h "},
        {"area st, length 4", "008130h "},
        {"Limits :\nfLimit", "(float)fLimit "},
        {"aw\nwCopy+16743930 = aw", "(u2)aw[0] (u2)aw[1] (u2)aw[2] "}, // up to the last byte
    };
    for (const auto &c : cases) {
        EXPECT_EQ(Header(c.header), "") << c.header;
        EXPECT_EQ(Names(), c.names) << c.header;
    }
}

TEST_F(Sets, HeaderFaultsAreNamedWithTheirLine)
{
    WriteFileText("loop.ulh", "wGain\ninclude \"h.ulh\"\n");
    WriteFileText("bad.ulh", "\n\nnope\n");
    const struct {
        const char *header, *says;
    } cases[] = {
        {"wGain\nnope", "h.ulh, line 2: 'nope' is not in the loaded map"},
        {"x", "line 1: The type of 'x' is not known"},
        {"(u3) wGain", "line 1: '(u3)' is no type"},
        {"wGain\nwGain", "line 2: 'wGain' is named twice"},
        {"wGain\n(u1) wGain+1", "line 2: 'wGain+1' and 'wGain' lie over one another"},
        {"area 8100h, length 4\nwGain", "lie over one another"},
        {"wGain\narea 8100h, length 4", "lie over one another"},
        {"(u4) wGain+16744190", "lies beyond the target's memory"},
        {"(u4) aw", "wider than the variable"},
        {"wGain = 70000", "'70000' is no value of type u2 (0 to 65535)"},
        {"wGain = 5, max 4", "The default: 5 lies above the limit 4"},
        {"wGain, min 5, max 4", "lower limit lies above"},
        {"wGain, factor 0", "cannot be 0"},
        {"wGain, unit %", "text in quotes"},
        {"wGain, colour \"red\"", "'colour \"red\"' is not known"},
        {"wGain,", "missing behind the comma"},
        {"wGain =", "value behind '=' is missing"},
        {"8100h", "An address is an area"},
        {"area 8100h", "An area is"},
        {"area wGain, length 0", "no count"},
        {"wCopy = wGain\nwGain", "must stand above its mirror"},
        {"wGain\n(u1) wCopy = wGain", "must have the type"},
        {"aw\nwCopy+16743934 = aw", "lies beyond"},
        {"wGain\nwGain = wGain", "lie over one another"},
        {"include \"none.ulh\"\nwGain", "line 1: 'none.ulh' cannot be opened"},
        {"include \"loop.ulh\"", "loop.ulh, line 2: 'h.ulh' includes itself"},
        {"wGain\ninclude \"bad.ulh\"\nalso", "bad.ulh, line 3: 'nope'"},
        {"", "The header names nothing"},
        {"area 0h, length 1048577", "is no count"},
    };
    for (const auto &c : cases)
        EXPECT_TRUE(Has(Header(c.header), c.says)) << c.header;
    EXPECT_TRUE(Has(Header(std::string(1001, 'a')), "more than 1000 characters"));
    EXPECT_TRUE(Has(Header("area 0h, length 1048576\nwGain"), "65536 values"));
    std::string many;
    for (int i = 0; i < 100000; i++)
        many += "nope" + std::to_string(i) + "\n";
    EXPECT_TRUE(Has(Header(many), "line 50: "));
}

TEST_F(Sets, DataFaultsAreNamedWithTheirLine)
{
    ASSERT_EQ(Header("wGain, min 10, max 200\nfLimit, max 0.1\nbyMode\narea 8130h, length 4"), "");
    const struct {
        const char *text, *says;
    } cases[] = {
        {"nope = 1\r\n", "d.ldx, line 3: 'nope' does not belong to the set"},
        {"\r\n(u2) wGain = 9\r\n", "line 4: 'wGain': 9 lies below the limit 10"},
        {"wGain = 201\r\n", "201 lies above the limit 200"},
        {"fLimit = 0.11\r\n", "above the limit 0.1"},
        {"(i2) wGain = 20\r\n", "(i2) does not fit: the header says (u2)"},
        {"byMode = 256\r\n", "'256' is no value of type u1 (0 to 255)"},
        {"byMode = -1\r\n", "is no value"},
        {"byMode = 1.5\r\n", "is no value"},
        {"byMode = wGain\r\n", "is no value"},
        {"byMode = 1, max 3\r\n", "one value"},
        {"byMode\r\n", "one value"},
        {"byMode = 1\r\nbyMode = 1\r\n", "line 4: 'byMode' has a value already, in line 3"},
        {"(u4) fLimit = 5\r\n", "is no value of type float"}, // bits only of what is no number
        {"fLimit = 1e39\r\n", "is no value"},
        {"008130h = 01 02 03\r\n", "has 4 bytes, not 3"},
        {"008130h = 01 02 03 GG\r\n", "is no byte"},
        {"(u1) 008130h = 01 02 03 04\r\n", "Bytes have no type"},
        {"// end\r\nbyMode = 1\r\n", "goes on behind its end"},
    };
    for (const auto &c : cases)
        EXPECT_TRUE(Has(Data(c.text), c.says)) << c.text;
    for (const char *head : {"", "// Uploader v1.00\r\n",
                             "// Uploader v1.00\r\n// date = 32-12-2015, time = 23:59:59\r\n",
                             "// Uploader v1.00\r\n// date = 31-12-2015, time = 24:00:00\r\n"})
        EXPECT_NE(Data("byMode = 1\r\n", head), "") << head;
    std::string many;
    for (int i = 0; i < 100000; i++)
        many += "nope" + std::to_string(i) + " = 1\r\n";
    EXPECT_TRUE(Has(Data(many), "line 65539: More than 65536 values"));
}

TEST_F(Sets, FileCutAnywhereIsRefused)
{
    ASSERT_EQ(Header("wGain\nfLimit\naw"), "");
    PST_Image image(set.entries.size());
    for (PST_Held &held : image)
        held.isThere = true;
    ASSERT_EQ(PST_WriteData("whole.ldx", set, image, {}), 0);
    const std::string whole = ReadFileText("whole.ldx");
    PST_Problems none;
    ASSERT_EQ(PST_ReadData("whole.ldx", &file, &none), 0);
    ASSERT_EQ(whole.substr(whole.size() - 8), "// end\r\n");
    for (size_t length = 0; length < whole.size() - 2; length++) {
        WriteFileText("cut.ldx", whole.substr(0, length));
        PST_Problems problems;
        ASSERT_NE(PST_ReadData("cut.ldx", &file, &problems), 0) << length;
        ASSERT_TRUE(Has(PST_FormatProblems(problems), "cut.ldx, line ")) << length;
    }
}

// Every float, and the ends of every type, must come back as they were.
TEST_F(Sets, ValuesComeBackBitForBit)
{
    ASSERT_EQ(Header("fLimit\n(i1) byMode\nnLow\nwGain\ndwTime\n(i4) st.f"), "");
    uint32_t random = 12345;
    for (int round = 0; round < 20000; round++) {
        random = random * 1664525u + 1013904223u;
        for (const PST_Entry &entry : set.entries) {
            PST_Bytes bytes = {}, back = {};
            uint32_t bits = round < 4 ? (round & 1 ? 0x80000000u : 0x7FFFFFFFu) : random;
            if (round == 2)
                bits = 0x7F800000;
            for (size_t i = 0; i < entry.size; i++)
                bytes[i] = static_cast<uint8_t>(bits >> 8 * (i + 4 - entry.size));
            const std::string line = PST_AssignmentText(entry, bytes);
            const size_t equals = line.find(" = ");
            const std::string cast = line.substr(0, line.find(')') + 1);
            std::string why;
            ASSERT_EQ(PST_ParseValue(entry, cast, line.substr(equals + 3), &back, &why), 0)
                << line << why;
            ASSERT_EQ(bytes, back) << line;
        }
    }
}

TEST_F(Sets, FormShowsAndTakesUnits)
{
    ASSERT_EQ(Header("nLow, factor 0.1\nfLimit, factor 1000\nwGain, factor -2"), "");
    const struct {
        size_t entry;
        double factor;
        const char *typed;
        int result;
        double number;
        const char *shown;
    } cases[] = {{0, 0.1, "12.3", 0, 123, "12.3"}, {0, 0.1, " -0.04 ", 0, 0, "0"},
                 {0, 0.1, "3276.8", -1, 0, ""},    {0, 0.1, "-3276.8", 0, -32768, "-3276.8"},
                 {0, 1, "0FFh", 0, 255, "255"},    {1, 1000, "1500", 0, 1.5, "1500"},
                 {0, 0.1, "twelve", -1, 0, ""},    {2, -2, "-10", 0, 5, "-10"},
                 {1, 1, "1e39", -1, 0, ""}};
    for (const auto &c : cases) {
        PST_Bytes bytes = {};
        std::string why;
        const PST_Entry &entry = set.entries[c.entry];
        EXPECT_EQ(PST_ParseShown(entry, c.factor, c.typed, &bytes, &why), c.result) << c.typed;
        if (c.result == 0) {
            EXPECT_EQ(PST_Number(entry.type, bytes), c.number) << c.typed;
            EXPECT_EQ(PST_ShownText(entry, c.factor, bytes), c.shown);
        } else {
            EXPECT_NE(why, "");
        }
    }
}

} // namespace
