// The selectors as a user drives them, on the example project.
#include "runtime/list_columns.h"
#include "support/watch_fixture.h"
#include "symbols/mapfile.h"
#include "symbols/typemap.h"
#include "symbols/varexpr.h"
#include "watch/main_window.h"
#include "watch/windows/map_loading.h"
#include "watch/windows/selectors.h"

namespace {

const std::string EXAMPLES = EXAMPLES_DIR "/";

class Selectors : public WatchTest {
protected:
    void SetUp() override
    {
        WatchTest::SetUp();
        ASSERT_EQ(ReadMap((EXAMPLES + "demo.m66").c_str()), 0);
        openStruct = OPEN_MAP_FILE;
        ASSERT_EQ(TMF_OpenMap((EXAMPLES + "demo.tmf").c_str()), 0);
        SEL_SymbolsChanged();
    }

    static std::string names(int panel, int list)
    {
        std::string text;
        for (const std::string &label : HL_GetLabels(panel, list))
            text += label.substr(0, label.find('\033')) + " ";
        return text;
    }

    static std::string filtered(const std::string &filter)
    {
        HL_SetUserVal(PANEL_VAR_SELECTOR, VARSEL_FILTER, filter);
        return names(PANEL_VAR_SELECTOR, VARSEL_LIST);
    }

    static std::string lastItem()
    {
        return nLItems == 0 ? "" : LIT_FileLine(aLItems[nLItems - 1]);
    }
};

TEST(VariableFilter, PartsAndWildcards)
{
    const struct {
        const char *filter, *name;
        bool isMatch;
    } cases[] = {{"", "x", true},
                 {"speed", "DRV_nSpeedRef", true},
                 {"SPEEDS", "nSpeed", false},
                 {"n*", "nSpeed", true},
                 {"n*", "DRV_nSpeed", false},
                 {"*ref", "nSpeedRef", true},
                 {"*ref", "nRefs", false},
                 {"d*n*f", "DRV_nnNf", true},
                 {"d*n*f", "DRV_nnNfx", false},
                 {"*", "", true},
                 {"a*b", "ab", true},
                 {"**x", "y", false}};
    for (const auto &c : cases)
        EXPECT_EQ(SEL_IsMatch(c.filter, c.name), c.isMatch) << c.filter << " " << c.name;
}

TEST_F(Selectors, VariablesAreFoundAndAddedFromTheKeyboard)
{
    HL_ClickMenu(ITEM_VARIABLES);
    EXPECT_TRUE(UiPanelAttribute(PANEL_VAR_SELECTOR, ATTR_VISIBLE));
    EXPECT_EQ(GetActiveCtrl(PANEL_VAR_SELECTOR), VARSEL_FILTER);
    EXPECT_EQ(UiText(PANEL_VAR_SELECTOR, VARSEL_COUNT), "99 of 99 variables");
    EXPECT_EQ(filtered("speed"), "DRV_nSpeedMax DRV_nSpeedRef ");
    EXPECT_EQ(filtered("aw*"), "awTable awWave ");
    EXPECT_EQ(HL_GetLabels(PANEL_VAR_SELECTOR, VARSEL_LIST)[0],
              "awTable\033p240l008140\033p316l    64\033p376luint16_t awTable[2][16]");
    // Down moves into the list, typing goes back to the filter, Up leaves the list.
    HL_Key(PANEL_VAR_SELECTOR, VARSEL_FILTER, KEY_DOWN);
    EXPECT_EQ(GetActiveCtrl(PANEL_VAR_SELECTOR), VARSEL_LIST);
    HL_SelectLine(PANEL_VAR_SELECTOR, VARSEL_LIST, 1);
    HL_CommitControl(PANEL_VAR_SELECTOR, VARSEL_LIST);
    EXPECT_EQ(lastItem(), "awWave, u2");
    EXPECT_EQ(aLItems[0].address, 0x8040u);
    HL_Key(PANEL_VAR_SELECTOR, VARSEL_LIST, KEY_BACKSPACE);
    EXPECT_EQ(UiText(PANEL_VAR_SELECTOR, VARSEL_FILTER), "aw");
    HL_Key(PANEL_VAR_SELECTOR, VARSEL_LIST, 't');
    EXPECT_EQ(names(PANEL_VAR_SELECTOR, VARSEL_LIST), "awTable ");
    EXPECT_EQ(GetActiveCtrl(PANEL_VAR_SELECTOR), VARSEL_FILTER);

    const struct {
        const char *filter, *item;
    } added[] = {{"cTrim", "cTrim, i1"},   {"qnEn*", "qnEnergy, i8"}, {"fLimit", "fLimit, f"},
                 {"pwTab", "pwTable, x2"}, {"dpp1", "DPP1, i2"},      {"fGamma", "afGamma, f"}};
    for (const auto &c : added) {
        filtered(c.filter);
        HL_Key(PANEL_VAR_SELECTOR, VARSEL_FILTER, KEY_ENTER);
        EXPECT_EQ(lastItem(), c.item);
    }
    filtered("DRV_byPhase");
    HL_CommitControl(PANEL_VAR_SELECTOR, VARSEL_COPY);
    EXPECT_EQ(HL_GetClipboard(), "DRV_byPhase");
    EXPECT_EQ(filtered("nothing like it"), "");
    EXPECT_EQ(HL_CommitControl(PANEL_VAR_SELECTOR, VARSEL_ADD), HL_DIMMED);
    HL_Key(PANEL_VAR_SELECTOR, VARSEL_FILTER, KEY_ENTER); // nothing to add
    EXPECT_EQ(nLItems, 7);
    HL_Key(PANEL_VAR_SELECTOR, VARSEL_LIST, KEY_ESC);
    EXPECT_FALSE(UiPanelAttribute(PANEL_VAR_SELECTOR, ATTR_VISIBLE));
}

TEST_F(Selectors, OtherSourcesAndChangedMaps)
{
    HL_ClickMenu(ITEM_VARIABLES);
    addRegister("T3CON", 0xFF42);
    addTmsSymbol("_wSpeed", 0x400);
    HL_SetUserVal(PANEL_VAR_SELECTOR, VARSEL_SOURCE, SEL_SOURCE_REGISTERS);
    HL_CommitControl(PANEL_VAR_SELECTOR, VARSEL_SOURCE);
    EXPECT_EQ(names(PANEL_VAR_SELECTOR, VARSEL_LIST), "T3CON ");
    HL_CommitControl(PANEL_VAR_SELECTOR, VARSEL_ADD);
    EXPECT_EQ(aLItems[0].address, 0xFF42u);
    HL_SetUserVal(PANEL_VAR_SELECTOR, VARSEL_SOURCE, SEL_SOURCE_TMS);
    HL_CommitControl(PANEL_VAR_SELECTOR, VARSEL_SOURCE);
    EXPECT_TRUE(UiAttribute(PANEL_VAR_SELECTOR, VARSEL_MEMBERS, ATTR_DIMMED));
    EXPECT_EQ(UiText(PANEL_VAR_SELECTOR, VARSEL_DETAIL), "&_wSpeed  (adds as u4)");
    HL_CommitControl(PANEL_VAR_SELECTOR, VARSEL_ADD);
    EXPECT_EQ(aLItems[1].name, "&_wSpeed");
    EXPECT_EQ(aLItems[1].address, 0x400u);
    EXPECT_EQ(lastItem(), "&_wSpeed, u4");

    // A full list is said where the user looks.
    while (nLItems < LITEMS_MAX)
        ASSERT_GE(EDT_AddByName("wCount", "u2", EDT_AT_END), 0);
    HL_CommitControl(PANEL_VAR_SELECTOR, VARSEL_ADD);
    EXPECT_EQ(UiText(PANEL_VAR_SELECTOR, VARSEL_DETAIL), EDT_ErrorText(EDT_ERR_FULL));

    // Another map shows at once in the open window, and its absence, too.
    HL_SetUserVal(PANEL_VAR_SELECTOR, VARSEL_SOURCE, SEL_SOURCE_MAP);
    FreeNodes(aVarNode, &nNodes);
    addSymbol("wNew", 0x9000);
    SetMainPanelAttributes();
    EXPECT_EQ(names(PANEL_VAR_SELECTOR, VARSEL_LIST), "wNew ");
    FreeNodes(aVarNode, &nNodes);
    SetMainPanelAttributes();
    EXPECT_TRUE(Has(UiText(PANEL_VAR_SELECTOR, VARSEL_DETAIL), "No map"));
}

TEST_F(Selectors, StructuresAreWalkedDownAndUp)
{
    HL_ClickMenu(ITEM_VARIABLES);
    filtered("stParams");
    EXPECT_TRUE(UiAttribute(PANEL_VAR_SELECTOR, VARSEL_ADD, ATTR_DIMMED));
    HL_Key(PANEL_VAR_SELECTOR, VARSEL_FILTER, KEY_ENTER); // a structure opens
    EXPECT_TRUE(UiPanelAttribute(PANEL_STRUCT_SELECTOR, ATTR_VISIBLE));
    EXPECT_EQ(nLItems, 0);
    EXPECT_EQ(names(PANEL_STRUCT_SELECTOR, STRSEL_LIST), "nKp nKi unMode astRamp fScale stLimits ");
    EXPECT_EQ(HL_GetLabels(PANEL_STRUCT_SELECTOR, STRSEL_LIST)[4],
              "fScale\033p180l+0xE\033p248l008230\033p324l     4\033p384lfloat fScale");
    HL_SelectLine(PANEL_STRUCT_SELECTOR, STRSEL_LIST, 3);
    HL_CommitControl(PANEL_STRUCT_SELECTOR, STRSEL_LIST);
    HL_SelectLine(PANEL_STRUCT_SELECTOR, STRSEL_LIST, 1);
    HL_Event(PANEL_STRUCT_SELECTOR, STRSEL_LIST, EVENT_LEFT_DOUBLE_CLICK, 0);
    HL_SelectLine(PANEL_STRUCT_SELECTOR, STRSEL_LIST, 1);
    HL_CommitControl(PANEL_STRUCT_SELECTOR, STRSEL_ADD);
    EXPECT_EQ(lastItem(), "DRV_stParams.astRamp[1].nY, i2");
    EXPECT_EQ(aLItems[0].address, 0x822Eu);
    const char *const paths[] = {"DRV_stParams.astRamp", "DRV_stParams", "", ""};
    for (const char *path : paths) {
        HL_Key(PANEL_STRUCT_SELECTOR, STRSEL_LIST, KEY_BACKSPACE);
        EXPECT_EQ(UiText(PANEL_STRUCT_SELECTOR, STRSEL_PATH), path);
    }
    EXPECT_TRUE(UiAttribute(PANEL_STRUCT_SELECTOR, STRSEL_UP, ATTR_DIMMED));
    EXPECT_EQ(names(PANEL_STRUCT_SELECTOR, STRSEL_LIST).substr(0, 13), "DRV_stParams ");
    EXPECT_EQ(UiSelected(PANEL_STRUCT_SELECTOR, STRSEL_LIST), 0); // where one came from

    const struct {
        const char *typed, *path, *first; // the first line, or the selected one's expression
    } expressions[] = {{" DRV_stParams.stLimits ", "DRV_stParams.stLimits", "anLow"},
                       {"awTable[1]", "awTable[1]", "[0]"},
                       {"DRV_stParams.unMode.wAll", "DRV_stParams.unMode", "wAll"},
                       {"awTable[2]", "DRV_stParams.unMode", "wAll"}, // outside: nothing changes
                       {"nothing", "DRV_stParams.unMode", "wAll"}};
    for (const auto &c : expressions) {
        HL_SetUserVal(PANEL_STRUCT_SELECTOR, STRSEL_PATH, c.typed);
        HL_Key(PANEL_STRUCT_SELECTOR, STRSEL_PATH, KEY_ENTER);
        const std::string list = names(PANEL_STRUCT_SELECTOR, STRSEL_LIST);
        EXPECT_EQ(list.substr(0, list.find(' ')), c.first) << c.typed;
        HL_CommitControl(PANEL_STRUCT_SELECTOR, STRSEL_COPY);
        EXPECT_EQ(HL_GetClipboard(),
                  std::string(c.path) + (c.first[0] == '[' ? "" : ".") + c.first);
    }
}

TEST_F(Selectors, PlacesInStructuresAreWordsOnATms320)
{
    for (const int item : {ITEM_CPU_F283XX, ITEM_CPU_F2803X}) {
        HL_ClickMenu(item);
        EXPECT_EQ(TMF_DisplayStructSelector("DRV_stParams"), 0);
        const std::vector<std::string> labels = HL_GetLabels(PANEL_STRUCT_SELECTOR, STRSEL_LIST);
        ASSERT_EQ(labels.size(), 6u);
        // In words; the float and what follows it stand on even ones there.
        const char *const places[] = {"+0x0|004111", "+0x1|004112", "+0x2|004113",
                                      "+0x4|004115", "+0x8|004119", "+0xA|00411B"};
        for (size_t i = 0; i < labels.size(); ++i) {
            const std::string row = UI_JoinColumns(labels[i], "|");
            EXPECT_TRUE(Has(row, places[i]));
        }
    }
}

TEST_F(Selectors, LargeArraysComeInPages)
{
    ASSERT_EQ(TMF_OpenMap(write("large.tmf", "## 1 VARS\n1: 'abyLog' _@0x200009C4_@0xC2\n"
                                             "## 0 TYPES\n## 1 STRUCTS\n# 1 / 1:\n 'x' _@0xC2\n")
                              .c_str()),
              0);
    EXPECT_EQ(TMF_DisplayStructSelector("abyLog"), 0);
    const struct {
        int button;
        const char *range, *first;
    } steps[] = {{STRSEL_PREVIOUS, "[0] to [999] of 2500", "[0]"}, // dimmed
                 {STRSEL_NEXT, "[1000] to [1999] of 2500", "[1000]"},
                 {STRSEL_NEXT, "[2000] to [2499] of 2500", "[2000]"},
                 {STRSEL_NEXT, "[2000] to [2499] of 2500", "[2000]"}, // dimmed
                 {STRSEL_PREVIOUS, "[1000] to [1999] of 2500", "[1000]"}};
    for (const auto &step : steps) {
        HL_CommitControl(PANEL_STRUCT_SELECTOR, step.button);
        EXPECT_EQ(UiText(PANEL_STRUCT_SELECTOR, STRSEL_COUNT), step.range);
        const std::string label = HL_GetLabels(PANEL_STRUCT_SELECTOR, STRSEL_LIST)[0];
        EXPECT_EQ(label.substr(0, label.find('\033')), step.first);
    }
    EXPECT_EQ(TMF_DisplayStructSelector("abyLog[2345]"), 0);
    HL_CommitControl(PANEL_STRUCT_SELECTOR, STRSEL_ADD);
    EXPECT_EQ(lastItem(), "abyLog[2345], u1");
    EXPECT_EQ(aLItems[0].address, 0x20000u + 2345);
}

TEST_F(Selectors, TypeMapsAreOpenedAndReloadedFromTheMenu)
{
    const std::string bad = write("bad.tmf", "## 1 VARS\n1: 'x' nonsense\n");
    HL_PushAnswer(1, bad);
    HL_ClickMenu(ITEM_OPEN_TYPE_MAP);
    EXPECT_EQ(UiText(PANEL_MAIN, MAIN_MESSAGE),
              "Error: Could not open type map file " + bad + ", line 2.");
    EXPECT_EQ(TMF_OpenMap("no/such/file"), -1);
    EXPECT_EQ(TMF_cnDefVars, 58); // the loaded one stays
    HL_PushAnswer(1, EXAMPLES + "demo.tmf");
    HL_ClickMenu(ITEM_OPEN_TYPE_MAP);
    const std::string good = UiText(PANEL_MAIN, MAIN_MESSAGE);
    EXPECT_EQ(good, "Type map: " + EXAMPLES + "demo.tmf, 58 variables, 5 structures.");
    EXPECT_TRUE(Has(UiText(PANEL_MAIN, MAIN_STATE), "; types: 58 variables, 5 structures"));
    // One key reads map and types again; a map that is gone does not take the types along.
    szMapFileName = EXAMPLES + "demo.m66";
    FreeNodes(aVarNode, &nNodes);
    TMF_CleanTables();
    ReloadMapFile(0, 0);
    EXPECT_EQ(inStruct("DRV_stParams.stLimits.stPeak.nX", aVarNode, nNodes), 0x823Cu);
}

} // namespace
