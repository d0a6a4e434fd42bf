// Headers and data files of variable sets, and the way of the values to the target and back.
#include "app/rooms.h"
#include "sets/backup.h"
#include "sets/data.h"
#include "sets/form.h"
#include "sets/header.h"
#include "sets/restore.h"
#include "sets/value.h"
#include "sets/window.h"
#include "support/console_rig.h"
#include "symbols/mapfile.h"
#include "symbols/typemap.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

const char HEAD[] = "// Uploader v1.00\r\n// date = 31-12-2015, time = 23:59:59\r\n";

// wGain 8100h u2, nLow 8102h i2, fLimit 8104h, dwTime 8108h u4, byMode 810Ch, byteless x 810Eh
// and qwId 8110h (8 bytes) by type map; aw[3] 8120h; st 8130h {nA; union{w; b[2]}; f}.
class Sets : public ConsoleRig {
protected:
    void SetUp() override
    {
        ConsoleRig::SetUp();
        const struct {
            const char *address, *name;
        } symbols[] = {{"08100H", "wGain"},  {"08102H", "nLow"},   {"08104H", "fLimit"},
                       {"08108H", "dwTime"}, {"0810CH", "byMode"}, {"0810EH", "x"},
                       {"08110H", "qwId"},   {"08120H", "aw"},     {"08130H", "st"},
                       {"08200H", "wCopy"},  {"08220H", "awCopy"}};
        std::string map;
        for (const auto &symbol : symbols) {
            const std::string line = std::string(symbol.address) + "   " + symbol.name;
            map += line + std::string(46 - line.size(), ' ') + "NDATA\n";
        }
        WriteFileText("m.m66", map);
        ASSERT_EQ(map2node("m.m66"), 0);
        WriteFileText("t.tmf", "## 3 VARS\n1: 'aw' _@0x20000003_@0x142\n2: 'st' _@0x38000001\n"
                               "3: 'qwId' _@0x442\n## 0 TYPES\n## 2 STRUCTS\n# 1 / 3:\n"
                               "'nA' _@0x122\n'un' _@0x30000002\n'f' _@0x204\n# 2 / 2:\n"
                               "'byFirst' _@0xC2\n'w' _@0x142\n");
        ASSERT_EQ(TMF_LoadMap("t.tmf"), 0);
    }
    void TearDown() override
    {
        TMF_CleanTables();
        ConsoleRig::TearDown();
    }
    // What the header is refused for; "" when it is good.
    std::string Header(const std::string &text)
    {
        WriteFileText("h.ulh", text);
        PST_Problems problems;
        const int result = PST_ReadHeader("h.ulh", &set, &problems);
        EXPECT_EQ(result == 0, problems.count == 0);
        return PST_FormatProblems(problems);
    }
    // The same for a data file against the set; its first line here is the third.
    std::string Data(const std::string &text, const char *head = HEAD, const char *end = "// end")
    {
        WriteFileText("d.ldx", head + text + end);
        PST_Problems problems;
        if (PST_ReadData("d.ldx", &file, &problems) == 0)
            PST_Bind(set, file, &values, nullptr, &problems);
        return PST_FormatProblems(problems);
    }
    std::string Names() const
    {
        std::string text;
        for (const PST_Entry &entry : set.entries)
            text += std::string(PST_CastOf(entry.type)) + entry.name + " ";
        return text;
    }
    PST_Set set;
    PST_File file;
    PST_Image values;
};

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
        EXPECT_NE(Header(c.header).find(c.says), std::string::npos) << c.header << "\n"
                                                                    << Header(c.header);
    EXPECT_NE(Header(std::string(1001, 'a')).find("more than 1000 characters"), std::string::npos);
    EXPECT_NE(Header("area 0h, length 1048576\nwGain").find("65536 values"), std::string::npos);
    std::string many;
    for (int i = 0; i < 100000; i++)
        many += "nope" + std::to_string(i) + "\n";
    EXPECT_NE(Header(many).find("line 50: "), std::string::npos);
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
        EXPECT_NE(Data(c.text).find(c.says), std::string::npos) << c.text << "\n" << Data(c.text);
    for (const char *head : {"", "// Uploader v1.00\r\n",
                             "// Uploader v1.00\r\n// date = 32-12-2015, time = 23:59:59\r\n",
                             "// Uploader v1.00\r\n// date = 31-12-2015, time = 24:00:00\r\n"})
        EXPECT_NE(Data("byMode = 1\r\n", head), "") << head;
    std::string many;
    for (int i = 0; i < 100000; i++)
        many += "nope" + std::to_string(i) + " = 1\r\n";
    EXPECT_NE(Data(many).find("line 65539: More than 65536 values"), std::string::npos);
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
        ASSERT_NE(PST_FormatProblems(problems).find("cut.ldx, line "), std::string::npos) << length;
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

class SetTransfer : public Sets {
protected:
    void SetUp() override
    {
        Sets::SetUp();
        Poke(0x8100, {1, 0, 2, 0, 0, 0, 0x80, 0x3F}); // wGain 1, nLow 2, fLimit 1
        Poke(0x8120, {1, 2, 3, 4, 5, 6});
        Poke(0x8200, {1, 0});
        Poke(0x8220, {1, 2, 3, 4, 5, 6});
        WriteFileText("s.ulh", "wGain, max 500\nwCopy = wGain\nnLow, readonly\nfLimit, stop\n"
                               "aw\nawCopy = aw\narea 8130h, length 20\n");
        EXPECT_NE(Run("upload s.ulh, s.ldx").find("-> OK!"), std::string::npos);
    }
    void Edit(const std::string &from, const std::string &to)
    {
        std::string text = ReadFileText("s.ldx");
        ASSERT_NE(text.find(from), std::string::npos) << text;
        WriteFileText("s.ldx", text.replace(text.find(from), from.size(), to));
    }
};

TEST_F(SetTransfer, DownloadWritesDifferencesAndMirrorsAndKeepsWhatWasBefore)
{
    Edit("wGain = 1", "wGain = 300");
    Edit("aw[2] = 1541", "aw[2] = 9");
    Edit("nLow = 2", "nLow = 3");
    HL_PushAnswer(1);
    const std::string text = Run("download s.ulh, s.ldx, 0");
    for (const char *line :
         {"wGain: 1 -> 300", "wCopy: 1 -> 300", "aw[2]: 1541 -> 9", "awCopy[2]: 1541 -> 9",
          "'nLow' is read-only and will not be written", "s.ldx, line ",
          "4 values written, read back and good.", "'s.undo.ldx'", "-> OK!"})
        EXPECT_NE(text.find(line), std::string::npos) << line << "\n" << text;
    EXPECT_EQ(Peek(0x8100, 4), (std::vector<uint8_t>{0x2C, 1, 2, 0}));
    EXPECT_EQ(Peek(0x8200, 2), (std::vector<uint8_t>{0x2C, 1}));
    EXPECT_EQ(Peek(0x8220, 6), (std::vector<uint8_t>{1, 2, 3, 4, 9, 0}));
    HL_PushAnswer(1);
    Run("download s.ulh, s.undo.ldx, 0");
    EXPECT_EQ(Peek(0x8100, 2), (std::vector<uint8_t>{1, 0}));
    EXPECT_EQ(Peek(0x8220, 6), (std::vector<uint8_t>{1, 2, 3, 4, 5, 6}));
    // A second time there is nothing to ask and nothing to undo.
    EXPECT_NE(Run("download s.ulh, s.undo.ldx, 0").find("Nothing to write"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists("s.undo.undo-2.ldx"));
}

TEST_F(SetTransfer, NothingIsWrittenBeforeAllIsCheckedAndAgreedTo)
{
    const struct {
        const char *from, *to, *says;
    } cases[] = {
        {"wGain = 1", "wGain = 501", "line 9: 'wGain': 501 lies above the limit 500"},
        {"aw[2] = 1541", "aw[2] = 70000", "no value of type u2"},
        {"// end", "// en", "is not whole"},
        {"(float) fLimit = 1 ", "fLimi = 1 ", "'fLimi' does not belong to the set"},
        {"wGain = 1", "wGain = 2", "Nothing was written"}, // nobody says yes
    };
    const std::string good = ReadFileText("s.ldx");
    const std::vector<uint8_t> before = Peek(0x8100, 0x200);
    for (const auto &c : cases) {
        WriteFileText("s.ldx", good);
        Edit(c.from, c.to);
        const std::string text = Run("download s.ulh, s.ldx, 1");
        EXPECT_NE(text.find(c.says), std::string::npos) << c.to << "\n" << text;
        EXPECT_NE(text.find("->Error"), std::string::npos);
        EXPECT_EQ(Peek(0x8100, 0x200), before);
        EXPECT_FALSE(std::filesystem::exists("s.undo.ldx"));
    }
}

TEST_F(SetTransfer, AnotherMapOrProcessorIsSaidBeforeTheQuestion)
{
    Edit("wGain = 1", "wGain = 2");
    Edit("processor = AC167", "processor = F283xx");
    WriteFileText("m2.m66",
                  ReadFileText("m.m66") + "09000H   other" + std::string(32, ' ') + "NDATA\n");
    ASSERT_EQ(map2node("m2.m66"), 0);
    const std::string text = Run("download s.ulh, s.ldx, 0");
    EXPECT_NE(text.find("made with another map, m.m66"), std::string::npos) << text;
    EXPECT_NE(text.find("is of a F283xx, the selected processor is AC167"), std::string::npos);
}

// The target falls silent in the middle: what is said to be written is there, the rest is as
// it was or in doubt, the undo file has all of it, and the same download again goes on.
TEST_F(SetTransfer, TargetThatDiesOnTheWayLeavesATrueReport)
{
    Edit("wGain = 1", "wGain = 300");
    Edit("fLimit = 1 ", "fLimit = 2 ");
    Edit("aw[2] = 1541", "aw[2] = 9");
    ASSERT_GE(UCM_Open(VR_nProtocol, ncom, bRate), 0);
    for (const long answers : {1, 3}) {
        PST_Restore job;
        ASSERT_EQ(PST_PrepareRestore("s.ulh", "s.ldx", false, &job, {}), PST_OK);
        SIM_Options dies;
        dies.silentAfter = answers;
        SIM_SetFaults(target, dies);
        EXPECT_EQ(PST_RunRestore(&job, {}), PST_ERR_LINK);
        SIM_SetFaults(target, {});
        size_t acknowledged = 0;
        for (const uint32_t place : job.writes) {
            const PST_Place &at = job.set.places[place];
            const PST_Entry &entry = job.set.entries[at.entry];
            const PST_State state = job.states[place];
            const std::vector<uint8_t> now = Peek(at.address, entry.size);
            const uint8_t *const expected = state == PST_UNTOUCHED
                                                ? job.before[place].bytes.data()
                                                : job.wanted[at.entry].bytes.data();
            acknowledged += state == PST_UNREAD || state == PST_WRITTEN;
            if (state == PST_IN_DOUBT)
                continue;
            EXPECT_EQ(std::memcmp(now.data(), expected, entry.size), 0)
                << PST_PlaceName(job.set, place);
        }
        EXPECT_EQ(acknowledged, static_cast<size_t>(answers));
        std::string result;
        for (const std::string &line : PST_RestoreResult(job, PST_ERR_LINK))
            result += line + "\n";
        EXPECT_NE(result.find("not written: "), std::string::npos) << result;
        EXPECT_NE(result.find("in doubt"), std::string::npos);
        EXPECT_NE(result.find("no answer"), std::string::npos);
        EXPECT_NE(ReadFileText(job.undoPath).find("wGain = 1 "), std::string::npos);
        std::filesystem::rename(job.undoPath, "first.ldx");
        Poke(0x8100, {1, 0, 2, 0, 0, 0, 0x80, 0x3F});
        Poke(0x8200, {1, 0});
    }
    PST_Restore again;
    ASSERT_EQ(PST_PrepareRestore("s.ulh", "s.ldx", false, &again, {}), PST_OK);
    EXPECT_EQ(PST_RunRestore(&again, {}), PST_OK);
    EXPECT_EQ(Peek(0x8220, 6), (std::vector<uint8_t>{1, 2, 3, 4, 9, 0}));
    EXPECT_TRUE(PST_Differences(again).size() == again.writes.size());
}

// What the target changes by itself is not taken for written; the others are.
TEST_F(SetTransfer, ValueThatDoesNotStayIsNamed)
{
    Edit("fLimit = 1 ", "fLimit = 2 ");
    ASSERT_GE(UCM_Open(VR_nProtocol, ncom, bRate), 0);
    PST_Restore job;
    ASSERT_EQ(PST_PrepareRestore("s.ulh", "s.ldx", true, &job, {}), PST_OK);
    ASSERT_EQ(job.writes.size(), 11u); // all but the read-only one
    struct Meddler {
        SIM_Target *target;
        size_t steps;
    } meddler = {target, 0};
    // While the last block waits, the first value changes.
    const auto meddle = [](void *context, size_t done, size_t total, const char *) {
        Meddler *m = static_cast<Meddler *>(context);
        const uint8_t other[] = {7, 7};
        if (done + 1 == total)
            SIM_Poke(m->target, 1, 0x8100, other, sizeof other);
        m->steps++;
        return false;
    };
    EXPECT_EQ(PST_RunRestore(&job, {&meddler, meddle}), PST_ERR_VALUES);
    EXPECT_GT(meddler.steps, 3u);
    const std::vector<std::string> lines = PST_RestoreResult(job, PST_ERR_VALUES);
    EXPECT_EQ(lines[0], "10 values written, read back and good.");
    EXPECT_NE(lines[1].find("something else now: wGain."), std::string::npos) << lines[1];
    // Cancelled before the first block: nothing has happened.
    Poke(0x8104, {9, 9, 9, 9});
    ASSERT_EQ(PST_PrepareRestore("s.ulh", "s.ldx", false, &job, {}), PST_OK);
    const auto stop = [](void *, size_t, size_t, const char *) { return true; };
    EXPECT_EQ(PST_RunRestore(&job, {nullptr, stop}), PST_ERR_CANCELLED);
    EXPECT_EQ(Peek(0x8104, 4), (std::vector<uint8_t>{9, 9, 9, 9}));
}

class SetWindow : public SetTransfer {
protected:
    void SetUp() override
    {
        SetTransfer::SetUp();
        VR_ConnectRooms();
        ASSERT_GE(UCM_Open(VR_nProtocol, ncom, bRate), 0);
        isTimer = 1;
        CFW_SetHeader("s.ulh");
        HL_ClickMenu(ITEM_CONFIG);
    }
    void TearDown() override
    {
        CFW_GetForm() = PST_Form();
        SetTransfer::TearDown();
    }
    // The row of a name, its cells with "|" between them.
    std::string Row(const std::string &name)
    {
        std::vector<UI_Cell> cells;
        std::string text;
        GetListCells(PANEL_CONFIG, CONFIG_LIST, Line(name), &cells);
        for (const UI_Cell &cell : cells)
            text += cell.text + "|";
        return text;
    }
    static int Line(const std::string &name)
    {
        const std::vector<std::string> labels = HL_GetLabels(PANEL_CONFIG, CONFIG_LIST);
        return static_cast<int>(std::find(labels.begin(), labels.end(), name) - labels.begin());
    }
    static std::string Result()
    {
        return UiText(PANEL_CONFIG, CONFIG_RESULT);
    }
};

TEST_F(SetWindow, ValuesAreReadTypedAndWrittenWithTheirMirrors)
{
    EXPECT_EQ(Row("wGain"), "wGain||||| … 500|||");
    HL_CommitControl(PANEL_CONFIG, CONFIG_READ);
    EXPECT_EQ(Row("wGain"), "wGain|1||1|| … 500|||");
    EXPECT_EQ(UiAttribute(PANEL_CONFIG, CONFIG_WRITE_ALL, ATTR_DIMMED), 1);
    const struct {
        const char *name, *typed, *says;
    } refused[] = {{"wGain", "501", "above the limit"},
                   {"wGain", "x", "no value of type u2"},
                   {"nLow", "1", "read-only"}};
    for (const auto &c : refused) {
        HL_EditCell(PANEL_CONFIG, CONFIG_LIST, Line(c.name), 1, c.typed);
        EXPECT_NE(Result().find(c.says), std::string::npos) << Result();
    }
    HL_EditCell(PANEL_CONFIG, CONFIG_LIST, Line("wGain"), 1, "300");
    HL_EditCell(PANEL_CONFIG, CONFIG_LIST, Line("fLimit"), 1, "2");
    EXPECT_EQ(Row("wGain"), "wGain|* 300||1|| … 500|||");
    EXPECT_EQ(Peek(0x8100, 2), (std::vector<uint8_t>{1, 0}));
    HL_SelectLine(PANEL_CONFIG, CONFIG_LIST, Line("wGain"));
    HL_CommitControl(PANEL_CONFIG, CONFIG_WRITE_ONE); // nobody says yes
    EXPECT_EQ(Result(), "Nothing was written.");
    EXPECT_NE(HL_GetPopups().back().find("wGain: 1 -> 300\nwCopy: 1 -> 300"), std::string::npos);
    HL_PushAnswer(1);
    HL_CommitControl(PANEL_CONFIG, CONFIG_WRITE_ONE);
    EXPECT_EQ(Row("wGain"), "wGain|300||300|| … 500|||");
    EXPECT_EQ(Peek(0x8200, 2), (std::vector<uint8_t>{0x2C, 1}));
    EXPECT_EQ(Peek(0x8104, 4), (std::vector<uint8_t>{0, 0, 0x80, 0x3F})); // still only typed
    HL_PushAnswer(1);
    HL_CommitControl(PANEL_CONFIG, CONFIG_WRITE_ALL);
    EXPECT_NE(HL_GetPopups().back().find("The machine must stand"), std::string::npos);
    EXPECT_EQ(Peek(0x8104, 4), (std::vector<uint8_t>{0, 0, 0, 0x40}));
}

TEST_F(SetWindow, FilesAreLoadedComparedSavedAndPrinted)
{
    HL_CommitControl(PANEL_CONFIG, CONFIG_READ);
    Edit("wGain = 1", "wGain = 7");
    HL_PushAnswer(1, "s.ldx");
    HL_CommitControl(PANEL_CONFIG, CONFIG_COMPARE);
    EXPECT_EQ(Row("wGain"), "wGain|1||1|≠ 7| … 500|||");
    HL_Toggle(PANEL_CONFIG, CONFIG_ONLY_MARKED);
    EXPECT_EQ(HL_GetLabels(PANEL_CONFIG, CONFIG_LIST), std::vector<std::string>{"wGain"});
    HL_Toggle(PANEL_CONFIG, CONFIG_ONLY_MARKED);
    HL_PushAnswer(1, "s.ldx");
    HL_CommitControl(PANEL_CONFIG, CONFIG_LOAD);
    EXPECT_EQ(Row("wGain"), "wGain|* 7||1|≠ 7| … 500|||");
    HL_PushAnswer(1, "saved.ldx");
    HL_CommitControl(PANEL_CONFIG, CONFIG_SAVE);
    EXPECT_NE(ReadFileText("saved.ldx").find("wGain = 7 "), std::string::npos);
    HL_PushAnswer(1, EXAMPLES_DIR "/listing.tldx");
    HL_PushAnswer(1, "page.html");
    HL_PushAnswer(0);
    HL_CommitControl(PANEL_CONFIG, CONFIG_PRINT);
    EXPECT_NE(ReadFileText("page.html").find("wGain"), std::string::npos);
    WriteFileText("bad.ldx", "nothing");
    HL_PushAnswer(1, "bad.ldx");
    HL_CommitControl(PANEL_CONFIG, CONFIG_LOAD);
    EXPECT_EQ(Row("wGain"), "wGain|* 7||1|≠ 7| … 500|||"); // as it was
}

// What was read belongs to one station and one map; an address may be another thing's by now.
TEST_F(SetWindow, AnotherStationOrMapEndsWhatWasRead)
{
    HL_CommitControl(PANEL_CONFIG, CONFIG_READ);
    HL_EditCell(PANEL_CONFIG, CONFIG_LIST, Line("wGain"), 1, "300");
    STATION = 2;
    HL_ActivatePanel(PANEL_CONFIG);
    EXPECT_EQ(Row("wGain"), "wGain|* 300|||| … 500|||");
    STATION = 1;
    std::string map = ReadFileText("m.m66");
    map.replace(map.find("08100H"), 6, "08300H"); // wGain lies elsewhere in the new build
    WriteFileText("m2.m66", map);
    ASSERT_EQ(map2node("m2.m66"), 0);
    HL_PushAnswer(1);
    HL_CommitControl(PANEL_CONFIG, CONFIG_WRITE_ALL);
    EXPECT_EQ(Peek(0x8300, 2), (std::vector<uint8_t>{0x2C, 1}));
    EXPECT_EQ(Peek(0x8100, 2), (std::vector<uint8_t>{1, 0}));
    WriteFileText("m3.m66", map.replace(map.find("wGain"), 5, "wOther"));
    ASSERT_EQ(map2node("m3.m66"), 0);
    HL_ActivatePanel(PANEL_CONFIG);
    EXPECT_NE(Result().find("no longer fits"), std::string::npos);
    EXPECT_TRUE(HL_GetLabels(PANEL_CONFIG, CONFIG_LIST).empty());
}

TEST_F(SetWindow, EditorShowsOneParameterAndTakesItsValue)
{
    HL_CommitControl(PANEL_CONFIG, CONFIG_READ);
    HL_SelectLine(PANEL_CONFIG, CONFIG_LIST, Line("wGain"));
    HL_CommitControl(PANEL_CONFIG, CONFIG_DETAILS);
    EXPECT_EQ(UiText(PANEL_CONFIG_EDIT, CFGEDIT_DEVICE), "1");
    HL_SetUserVal(PANEL_CONFIG_EDIT, CFGEDIT_NEW, "600");
    HL_CommitControl(PANEL_CONFIG_EDIT, CFGEDIT_TAKE);
    EXPECT_NE(UiText(PANEL_CONFIG_EDIT, CFGEDIT_HINT).find("above the limit"), std::string::npos);
    HL_SetUserVal(PANEL_CONFIG_EDIT, CFGEDIT_NEW, "40");
    HL_CommitControl(PANEL_CONFIG_EDIT, CFGEDIT_TAKE);
    EXPECT_EQ(Row("wGain"), "wGain|* 40||1|| … 500|||");
    HL_PushAnswer(1);
    HL_CommitControl(PANEL_CONFIG_EDIT, CFGEDIT_WRITE);
    EXPECT_EQ(Peek(0x8100, 2), (std::vector<uint8_t>{40, 0}));
    HL_SelectLine(PANEL_CONFIG, CONFIG_LIST, Line("nLow"));
    EXPECT_EQ(UiText(PANEL_CONFIG_EDIT, CFGEDIT_NAME), "nLow");
    EXPECT_EQ(UiAttribute(PANEL_CONFIG_EDIT, CFGEDIT_WRITE, ATTR_DIMMED), 1);
}

} // namespace
