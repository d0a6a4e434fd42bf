// The way of a set's values to the target and back, by command and by window.
#include "app/rooms.h"
#include "sets/restore.h"
#include "sets/window.h"
#include "support/sets_rig.h"

#include <algorithm>
#include <cstring>

namespace {

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
        EXPECT_TRUE(Has(text, line)) << line;
    EXPECT_EQ(Peek(0x8100, 4), (std::vector<uint8_t>{0x2C, 1, 2, 0}));
    EXPECT_EQ(Peek(0x8200, 2), (std::vector<uint8_t>{0x2C, 1}));
    EXPECT_EQ(Peek(0x8220, 6), (std::vector<uint8_t>{1, 2, 3, 4, 9, 0}));
    HL_PushAnswer(1);
    Run("download s.ulh, s.undo.ldx, 0");
    EXPECT_EQ(Peek(0x8100, 2), (std::vector<uint8_t>{1, 0}));
    EXPECT_EQ(Peek(0x8220, 6), (std::vector<uint8_t>{1, 2, 3, 4, 5, 6}));
    // A second time there is nothing to ask and nothing to undo.
    EXPECT_TRUE(Has(Run("download s.ulh, s.undo.ldx, 0"), "Nothing to write"));
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
        EXPECT_TRUE(Has(text, c.says)) << c.to;
        EXPECT_TRUE(Has(text, "->Error"));
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
    EXPECT_TRUE(Has(text, "made with another map, m.m66"));
    EXPECT_TRUE(Has(text, "is of a F283xx, the selected processor is AC167"));
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
        EXPECT_TRUE(Has(result, "not written: "));
        EXPECT_TRUE(Has(result, "in doubt"));
        EXPECT_TRUE(Has(result, "no answer"));
        EXPECT_TRUE(Has(ReadFileText(job.undoPath), "wGain = 1 "));
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
    EXPECT_TRUE(Has(lines[1], "something else now: wGain."));
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
        EXPECT_TRUE(Has(Result(), c.says));
    }
    HL_EditCell(PANEL_CONFIG, CONFIG_LIST, Line("wGain"), 1, "300");
    HL_EditCell(PANEL_CONFIG, CONFIG_LIST, Line("fLimit"), 1, "2");
    EXPECT_EQ(Row("wGain"), "wGain|* 300||1|| … 500|||");
    EXPECT_EQ(Peek(0x8100, 2), (std::vector<uint8_t>{1, 0}));
    HL_SelectLine(PANEL_CONFIG, CONFIG_LIST, Line("wGain"));
    HL_CommitControl(PANEL_CONFIG, CONFIG_WRITE_ONE); // nobody says yes
    EXPECT_EQ(Result(), "Nothing was written.");
    EXPECT_TRUE(Has(HL_GetPopups().back(), "wGain: 1 -> 300\nwCopy: 1 -> 300"));
    HL_PushAnswer(1);
    HL_CommitControl(PANEL_CONFIG, CONFIG_WRITE_ONE);
    EXPECT_EQ(Row("wGain"), "wGain|300||300|| … 500|||");
    EXPECT_EQ(Peek(0x8200, 2), (std::vector<uint8_t>{0x2C, 1}));
    EXPECT_EQ(Peek(0x8104, 4), (std::vector<uint8_t>{0, 0, 0x80, 0x3F})); // still only typed
    HL_PushAnswer(1);
    HL_CommitControl(PANEL_CONFIG, CONFIG_WRITE_ALL);
    EXPECT_TRUE(Has(HL_GetPopups().back(), "The machine must stand"));
    EXPECT_EQ(Peek(0x8104, 4), (std::vector<uint8_t>{0, 0, 0, 0x40}));
}

TEST_F(SetWindow, EachGroupHasItsHeadings)
{
    WriteFileText("g.ulh", "group \"A\"\nLimits:\nwGain\ngroup \"B\"\nLimits:\nfLimit\n");
    CFW_SetHeader("g.ulh");
    HL_ClickMenu(ITEM_CONFIG);
    EXPECT_EQ(HL_GetLabels(PANEL_CONFIG, CONFIG_LIST),
              (std::vector<std::string>{"A", "  Limits", "wGain", "B", "  Limits", "fLimit"}));
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
    EXPECT_TRUE(Has(ReadFileText("saved.ldx"), "wGain = 7 "));
    HL_PushAnswer(1, EXAMPLES_DIR "/listing.tldx");
    HL_PushAnswer(1, "page.html");
    HL_PushAnswer(0);
    HL_CommitControl(PANEL_CONFIG, CONFIG_PRINT);
    EXPECT_TRUE(Has(ReadFileText("page.html"), "wGain"));
    const std::string loaded = UiText(PANEL_CONFIG, CONFIG_FILE);
    WriteFileText("bad.ldx", "nothing");
    HL_PushAnswer(1, "bad.ldx");
    HL_CommitControl(PANEL_CONFIG, CONFIG_LOAD);
    EXPECT_EQ(UiText(PANEL_CONFIG, CONFIG_FILE), loaded);
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
    // Read again with the map, the header puts another parameter in wGain's place.
    WriteFileText("s.ulh", "area 8400h, length 4\n" + ReadFileText("s.ulh"));
    HL_PushAnswer(1);
    HL_CommitControl(PANEL_CONFIG, CONFIG_WRITE_ALL);
    EXPECT_EQ(Peek(0x8300, 2), (std::vector<uint8_t>{0x2C, 1}));
    EXPECT_EQ(Peek(0x8100, 2), (std::vector<uint8_t>{1, 0}));
    WriteFileText("m3.m66", map.replace(map.find("wGain"), 5, "wOther"));
    ASSERT_EQ(map2node("m3.m66"), 0);
    HL_ActivatePanel(PANEL_CONFIG);
    EXPECT_TRUE(Has(Result(), "no longer fits"));
    EXPECT_TRUE(HL_GetLabels(PANEL_CONFIG, CONFIG_LIST).empty());
}

// A group that another one's name begins with is not inside of it.
TEST_F(SetWindow, GroupsStandBelowTheOnesTheyLieIn)
{
    WriteFileText("g.ulh", "group \"Motor\"\nwGain\ngroup \"Motors\"\nnLow\n"
                           "group \"Motor/Limits\"\nfLimit\n");
    CFW_SetHeader("g.ulh");
    CFW_Opened();
    EXPECT_EQ(HL_GetLabels(PANEL_CONFIG, CONFIG_GROUPS),
              (std::vector<std::string>{"All", "Motor", "   Limits", "Motors"}));
    HL_SelectLine(PANEL_CONFIG, CONFIG_GROUPS, 1);
    EXPECT_EQ(HL_GetLabels(PANEL_CONFIG, CONFIG_LIST),
              (std::vector<std::string>{"wGain", "Motor/Limits", "fLimit"}));
}

TEST_F(SetWindow, EditorShowsOneParameterAndTakesItsValue)
{
    HL_CommitControl(PANEL_CONFIG, CONFIG_READ);
    HL_SelectLine(PANEL_CONFIG, CONFIG_LIST, Line("wGain"));
    HL_CommitControl(PANEL_CONFIG, CONFIG_DETAILS);
    EXPECT_EQ(UiText(PANEL_CONFIG_EDIT, CFGEDIT_DEVICE), "1");
    HL_SetUserVal(PANEL_CONFIG_EDIT, CFGEDIT_NEW, "600");
    HL_CommitControl(PANEL_CONFIG_EDIT, CFGEDIT_TAKE);
    EXPECT_TRUE(Has(UiText(PANEL_CONFIG_EDIT, CFGEDIT_HINT), "above the limit"));
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
