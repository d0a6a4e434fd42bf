// The array and record inspectors on the example project: what is in view is read, what is
// written is read back, and pointers, unions and sizes end where they must.
#include "comm/communication.h"
#include "inspect/array_inspector.h"
#include "inspect/array_place.h"
#include "inspect/element.h"
#include "inspect/inspectors.h"
#include "inspect/record_inspector.h"
#include "inspect/record_tree.h"
#include "support/console_rig.h"
#include "symbols/mapfile.h"
#include "symbols/typemap.h"
#include "text/words.h"
#include "watch/list/litem.h"

#include <algorithm>
#include <cstring>

namespace {

const std::string EXAMPLES = EXAMPLES_DIR "/";

struct Inspectors : ConsoleRig {
    void SetUp() override
    {
        ConsoleRig::SetUp();
        SIMT_Stop(RIG_PORT, target);
        target = SIMT_Start(RIG_PORT, SIM_Options()); // the demo
        initRgMap(CPU_C167);
        ASSERT_EQ(0, ReadMap((EXAMPLES + "demo.m66").c_str()));
        openStruct = OPEN_MAP_FILE;
        ASSERT_EQ(0, TMF_OpenMap((EXAMPLES + "demo.tmf").c_str()));
        HL_SetDefaultAnswer(HL_ANSWER_YES);
        VIR2_StartPeriodicASC();
        ASSERT_EQ(1, isTimer);
    }
    void TearDown() override
    {
        ResetProgram();
    }
    static std::string GetCell(int panel, int list, int line, size_t column)
    {
        std::vector<UI_Cell> cells;
        GetListCells(panel, list, line, &cells);
        return column < cells.size() ? cells[column].text : "<none>";
    }
    static int Count(int panel, int list)
    {
        int count = -1;
        GetNumListItems(panel, list, &count);
        return count;
    }
    static void Name(int panel, const std::string &text)
    {
        HL_SetUserVal(panel, 1, text);
        HL_CommitControl(panel, 1);
    }
    void Open(int line)
    {
        HL_SelectLine(PANEL_RECORD, RECORD_LIST, line);
        HL_Key(PANEL_RECORD, RECORD_LIST, KEY_RIGHT);
    }
};

struct ArrayPlace : ProgramTest {};

TEST_F(ArrayPlace, IsNamedOrTyped)
{
    const struct {
        const char *text;
        uint32_t rows, columns; // 0: refused
    } cases[] = {{"$8140, u2, 32", 32, 1},
                 {"$8140, i4, 2, 8", 2, 8},
                 {"$8140 ,f4, 3 , 2", 3, 2},
                 {"$8140, u1, 4, 100", 400, 1},
                 {"$0, u1, 16777216", 16777216, 1},
                 {"$1, u1, 16777216", 0, 0},
                 {"$8140, u4, 134000000", 0, 0},
                 {"$8140, u2, 65536, 65536", 0, 0},
                 {"$8140, u2, 0", 0, 0},
                 {"$8140, u2, -1", 0, 0},
                 {"$8140, u3, 4", 0, 0},
                 {"$8140, u2", 0, 0},
                 {"$8140, u2, 3, 4, 5", 4, 5},
                 {"$8140, u2, 3, 4, 0", 0, 0},
                 {"$8140, u8, 100000, 1000, 2", 0, 0},
                 {"nothing, u2, 3", 0, 0},
                 {"&x, u2, 3", 0, 0},
                 {"", 0, 0}};
    for (const auto &row : cases) {
        INS_Array array;
        std::string cause;
        ASSERT_EQ(row.rows == 0, INS_ParsePlace(row.text, "", &array, &cause) != 0) << row.text;
        EXPECT_EQ(row.rows == 0, !cause.empty());
        if (row.rows != 0) {
            EXPECT_EQ(row.rows, array.rows) << row.text;
            EXPECT_EQ(row.columns, array.columns) << row.text;
        }
    }
}

TEST_F(Inspectors, ArraysAreReadEditedAndSaved)
{
    HL_ClickMenu(ITEM_ARRAY);
    Name(PANEL_ARRAY, "afCurve");
    EXPECT_EQ("f4 [16] at 0x008180", UiText(PANEL_ARRAY, ARRAY_STATE));
    EXPECT_EQ("0.75", GetCell(PANEL_ARRAY, ARRAY_LIST, 3, 1));
    HL_EditCell(PANEL_ARRAY, ARRAY_LIST, 3, 1, "1.5\t-2 ; 7");
    EXPECT_EQ("OK: Elements written and read back: 3.", UiText(PANEL_ARRAY, ARRAY_MESSAGE));
    EXPECT_EQ("-2", GetCell(PANEL_ARRAY, ARRAY_LIST, 4, 1));
    EXPECT_EQ("7", GetCell(PANEL_ARRAY, ARRAY_LIST, 5, 1));
    EXPECT_EQ("1.5", GetCell(PANEL_ARRAY, ARRAY_LIST, 6, 1)) << "0.25 * 6, untouched";
    HL_EditCell(PANEL_ARRAY, ARRAY_LIST, 14, 1, "1 2 3");
    EXPECT_EQ(0u, UiText(PANEL_ARRAY, ARRAY_MESSAGE).find("REFUSED")) << "one too many";
    HL_EditCell(PANEL_ARRAY, ARRAY_LIST, 0, 1, "1 x");
    EXPECT_EQ("REFUSED: Nothing was written: value 2, 'x', is no number.",
              UiText(PANEL_ARRAY, ARRAY_MESSAGE));
    EXPECT_EQ("0", GetCell(PANEL_ARRAY, ARRAY_LIST, 0, 1));

    // Two dimensions: rows as lines, columns as columns, a curve each.
    Name(PANEL_ARRAY, "$8140, u2, 8, 4");
    EXPECT_EQ("49", GetCell(PANEL_ARRAY, ARRAY_LIST, 1, 4)) << "7 * 7";
    HL_EditCell(PANEL_ARRAY, ARRAY_LIST, 1, 4, "1000");
    EXPECT_EQ((std::vector<uint8_t>{0xE8, 0x03}), Peek(0x814E, 2));
    HL_CommitControl(PANEL_ARRAY, ARRAY_CURVE);
    std::vector<UI_Plot> plots;
    GetGraphPlots(PANEL_ARRAY, ARRAY_GRAPH, &plots);
    ASSERT_EQ(4u, plots.size());
    EXPECT_EQ(1000, (*plots[3].y)[1]);
    EXPECT_EQ(8u, plots[3].y->size());

    // A file goes out and comes back; one that does not fit changes nothing.
    HL_PushAnswer(1, "array.csv");
    HL_CommitControl(PANEL_ARRAY, ARRAY_SAVE);
    const std::string saved = ReadFile("array.csv");
    EXPECT_EQ(0u, saved.find("; $8140, u2, 8, 4, u2\r\n0,1,4,9\r\n16,25,36,1000\r\n")) << saved;
    Poke(0x8140, {9, 9, 9, 9});
    HL_PushAnswer(1, "array.csv");
    HL_CommitControl(PANEL_ARRAY, ARRAY_LOAD);
    EXPECT_EQ("OK: Elements written and read back: 32.", UiText(PANEL_ARRAY, ARRAY_MESSAGE));
    EXPECT_EQ((std::vector<uint8_t>{0, 0, 1, 0}), Peek(0x8140, 4));
    WriteFileText("short.csv", saved.substr(0, saved.rfind(',')));
    Poke(0x8140, {9, 9});
    HL_PushAnswer(1, "short.csv");
    HL_CommitControl(PANEL_ARRAY, ARRAY_LOAD);
    EXPECT_EQ("REFUSED: Nothing was written: the file holds another number of values than 32.",
              UiText(PANEL_ARRAY, ARRAY_MESSAGE));
    EXPECT_EQ((std::vector<uint8_t>{9, 9}), Peek(0x8140, 2));
}

TEST_F(Inspectors, ALargeArrayReadsOnlyWhatIsInView)
{
    HL_ClickMenu(ITEM_ARRAY);
    const uint64_t before = SIM_GetCounters(target).requests;
    Name(PANEL_ARRAY, "$10000, u4, 4000000");
    EXPECT_EQ(1000, Count(PANEL_ARRAY, ARRAY_LIST));
    EXPECT_LT(SIM_GetCounters(target).requests - before, 10u);
    EXPECT_EQ("0", GetCell(PANEL_ARRAY, ARRAY_LIST, 0, 1));
    EXPECT_EQ("", GetCell(PANEL_ARRAY, ARRAY_LIST, 900, 1)) << "not in view, not read";
    HL_CommitControl(PANEL_ARRAY, ARRAY_NEXT);
    EXPECT_EQ("[1000]", GetCell(PANEL_ARRAY, ARRAY_LIST, 0, 0));
    HL_CommitControl(PANEL_ARRAY, ARRAY_CURVE);
    EXPECT_EQ("More than 65536 elements: name a part of the array.",
              UiText(PANEL_ARRAY, ARRAY_MESSAGE));
    SIM_Options faults;
    faults.silentAfter = 0;
    SIM_SetFaults(target, faults);
    HL_FireTimer(PANEL_ARRAY, ARRAY_TIMER);
    EXPECT_EQ("Not read: no answer.", UiText(PANEL_ARRAY, ARRAY_MESSAGE));
    EXPECT_EQ("", GetCell(PANEL_ARRAY, ARRAY_LIST, 0, 1)) << "no value without an answer";
}

TEST_F(Inspectors, RecordsOpenLevelByLevel)
{
    HL_ClickMenu(ITEM_RECORD_INSPECTOR);
    Name(PANEL_RECORD, "DRV_stParams");
    EXPECT_EQ(7, Count(PANEL_RECORD, RECORD_LIST));
    EXPECT_EQ("- DRV_stParams", GetCell(PANEL_RECORD, RECORD_LIST, 0, 0));
    EXPECT_EQ("{ 6 members }", GetCell(PANEL_RECORD, RECORD_LIST, 0, 1));
    EXPECT_EQ("250", GetCell(PANEL_RECORD, RECORD_LIST, 1, 1));
    EXPECT_EQ("union of 2", GetCell(PANEL_RECORD, RECORD_LIST, 3, 1));
    Open(3);
    EXPECT_EQ("258", GetCell(PANEL_RECORD, RECORD_LIST, 4, 1)) << "0x0102";
    EXPECT_EQ(GetCell(PANEL_RECORD, RECORD_LIST, 4, 3), GetCell(PANEL_RECORD, RECORD_LIST, 5, 3))
        << "members of a union lie over one another";
    Open(1); // 250 = 1111 1010b
    EXPECT_EQ("0", GetCell(PANEL_RECORD, RECORD_LIST, 2, 1));
    EXPECT_EQ("1", GetCell(PANEL_RECORD, RECORD_LIST, 3, 1));
    EXPECT_EQ("bit 15", TXT_Trim(GetCell(PANEL_RECORD, RECORD_LIST, 17, 0)));
    HL_EditCell(PANEL_RECORD, RECORD_LIST, 3, 1, "0");
    EXPECT_EQ("Only a single value can be written.", UiText(PANEL_RECORD, RECORD_MESSAGE));
    HL_SelectLine(PANEL_RECORD, RECORD_LIST, 1);
    HL_Key(PANEL_RECORD, RECORD_LIST, KEY_LEFT);
    HL_EditCell(PANEL_RECORD, RECORD_LIST, 1, 1, "-7");
    EXPECT_EQ("-7", GetCell(PANEL_RECORD, RECORD_LIST, 1, 1));
    EXPECT_EQ((std::vector<uint8_t>{0xF9, 0xFF}), Peek(0x8222, 2));
    HL_EditCell(PANEL_RECORD, RECORD_LIST, 1, 1, "70000");
    EXPECT_EQ("-7", GetCell(PANEL_RECORD, RECORD_LIST, 1, 1)) << "out of range";
    HL_SelectLine(PANEL_RECORD, RECORD_LIST, 4);
    HL_CommitControl(PANEL_RECORD, RECORD_ADD);
    ASSERT_EQ(1, nLItems);
    EXPECT_EQ("DRV_stParams.unMode.wAll", aLItems[0].name);
    HL_SelectLine(PANEL_RECORD, RECORD_LIST, 3);
    HL_Key(PANEL_RECORD, RECORD_LIST, KEY_LEFT);
    EXPECT_EQ(7, Count(PANEL_RECORD, RECORD_LIST));
    Name(PANEL_RECORD, "nothing");
    EXPECT_EQ("Not shown: no loaded map knows 'nothing'.", UiText(PANEL_RECORD, RECORD_MESSAGE));
    EXPECT_EQ(7, Count(PANEL_RECORD, RECORD_LIST)) << "what is shown stays";

    Name(PANEL_RECORD, "pwTable");
    EXPECT_EQ("8140h -> awTable", GetCell(PANEL_RECORD, RECORD_LIST, 0, 1));
    const uint8_t nine[] = {9, 0};
    SIM_Poke(target, STATION, 0x8140, nine, sizeof nine);
    Open(0);
    EXPECT_EQ("*pwTable", GetCell(PANEL_RECORD, RECORD_LIST, 1, 0).substr(5));
    EXPECT_EQ("9", GetCell(PANEL_RECORD, RECORD_LIST, 1, 1));
    // In another station a pointer that was followed leads elsewhere, and pages are its own.
    const uint8_t page[] = {5, 0};
    SIM_Poke(target, STATION + 1, 0xFE04, page, sizeof page); // DPP2
    STATION++;
    HL_FireTimer(PANEL_RECORD, RECORD_TIMER);
    EXPECT_EQ(1, Count(PANEL_RECORD, RECORD_LIST)) << "built anew";
    EXPECT_EQ(std::string::npos, GetCell(PANEL_RECORD, RECORD_LIST, 0, 1).find("awTable"));
}

TEST_F(Inspectors, SlicesOfMoreDimensionsAndWideElements)
{
    HL_ClickMenu(ITEM_ARRAY);
    Name(PANEL_ARRAY, "$8140, u2, 2, 3, 2, 2");
    EXPECT_EQ("u2 [0 of 2][0 of 3][2][2] at 0x008140 awTable", UiText(PANEL_ARRAY, ARRAY_STATE));
    const auto slice = [](const std::string &text) {
        HL_SetUserVal(PANEL_ARRAY, ARRAY_SLICE, text);
        HL_CommitControl(PANEL_ARRAY, ARRAY_SLICE);
        return UiText(PANEL_ARRAY, ARRAY_STATE);
    };
    EXPECT_EQ("u2 [1 of 2][2 of 3][2][2] at 0x008168 awTable+40", slice("[1][2]"));
    EXPECT_EQ("441", GetCell(PANEL_ARRAY, ARRAY_LIST, 0, 2)) << "element 21";
    HL_Key(PANEL_ARRAY, ARRAY_SLICE, KEY_UP); // from the last one to the first
    EXPECT_EQ("0, 0", UiText(PANEL_ARRAY, ARRAY_SLICE));
    HL_Key(PANEL_ARRAY, ARRAY_SLICE, KEY_DOWN);
    HL_Key(PANEL_ARRAY, ARRAY_SLICE, KEY_DOWN);
    EXPECT_EQ("1, 1", UiText(PANEL_ARRAY, ARRAY_SLICE));
    for (const char *bad : {"1, 3", "x", "0, 0, 0", "-1"})
        EXPECT_EQ("u2 [1 of 2][1 of 3][2][2] at 0x008160 awTable+32", slice(bad)) << bad;
    HL_EditCell(PANEL_ARRAY, ARRAY_LIST, 1, 2, "7");
    EXPECT_EQ((std::vector<uint8_t>{7, 0}), Peek(0x8166, 2));

    Name(PANEL_ARRAY, "$8008, u8, 1"); // counts on by itself
    HL_EditCell(PANEL_ARRAY, ARRAY_LIST, 0, 1, "1");
    EXPECT_EQ("DIFFERENT: Written, but element 0 holds another value now.",
              UiText(PANEL_ARRAY, ARRAY_MESSAGE));
    Name(PANEL_ARRAY, "$9F00, i8, 2");
    HL_EditCell(PANEL_ARRAY, ARRAY_LIST, 0, 1, "-2 9223372036854775807");
    EXPECT_EQ("OK: Elements written and read back: 2.", UiText(PANEL_ARRAY, ARRAY_MESSAGE));
    EXPECT_EQ("-2", GetCell(PANEL_ARRAY, ARRAY_LIST, 0, 1));
    EXPECT_EQ("9223372036854775807", GetCell(PANEL_ARRAY, ARRAY_LIST, 1, 1));
    Name(PANEL_ARRAY, "$9F00, u8, 2");
    EXPECT_EQ("18446744073709551614", GetCell(PANEL_ARRAY, ARRAY_LIST, 0, 1));
    const struct {
        const char *type, *text;
        ArrayParse result;
        uint64_t bits;
    } cases[] = {{"f8", "-1.5", ARRAY_OK, 0xBFF8000000000000},
                 {"F8", "0.1", ARRAY_OK, 0x3FB999999999999A},
                 {"f8", "1e400", ARRAY_OUT_OF_RANGE, 0},
                 {"f8", "nan", ARRAY_NO_VALUE, 0},
                 {"f8", "1e", ARRAY_NO_VALUE, 0},
                 {"i8", "9223372036854775808", ARRAY_OUT_OF_RANGE, 0},
                 {"u8", "18446744073709551615", ARRAY_OK, UINT64_MAX},
                 {"u8", "-1", ARRAY_NO_VALUE, 0},
                 {"u8", "0x1", ARRAY_NO_VALUE, 0}};
    for (const auto &row : cases) {
        const ArrayType &type = *INS_FindElement(row.type);
        uint64_t bits = 0;
        uint8_t bytes[INS_ELEMENT_BYTES_MAX] = {};
        EXPECT_EQ(row.result, INS_ParseElement(type, row.text, bytes)) << row.text;
        std::memcpy(&bits, bytes, sizeof bits);
        EXPECT_EQ(row.bits, bits) << row.text;
        if (row.result == ARRAY_OK) {
            EXPECT_EQ(row.text, INS_FormatElement(type, bytes));
        }
    }
}

TEST_F(Inspectors, TenWindowsEachWithItsOwn)
{
    for (int i = 0; i < 6; i++)
        INS_OpenArray("$8140, u2, " + std::to_string(i + 2));
    INS_OpenArray("$8140, u2, 4"); // is open
    for (const char *name : {"DRV_stParams", "pwTable", "awTable", "afCurve"})
        INS_OpenRecord(name);
    EXPECT_EQ(2, Count(PANEL_ARRAY, ARRAY_LIST));
    EXPECT_EQ(7, Count(PANEL_ARRAY_MORE + 4, ARRAY_LIST));
    EXPECT_EQ(7, Count(PANEL_RECORD, RECORD_LIST));
    EXPECT_EQ(17, Count(PANEL_RECORD_MORE + 2, RECORD_LIST));
    HL_ClickMenu(ITEM_ARRAY);
    ASSERT_FALSE(HL_GetPopups().empty());
    EXPECT_EQ("Inspectors: Ten inspectors are open. Close the window of one first.",
              HL_GetPopups().back());
    // A closed one makes room, and its window comes back empty.
    HL_Key(PANEL_ARRAY_MORE, ARRAY_PLACE, KEY_ESC);
    EXPECT_EQ(nullptr, INS_Find(PANEL_ARRAY_MORE));
    EXPECT_EQ(0, std::count(std::begin(INS_anPanels), std::end(INS_anPanels), PANEL_ARRAY_MORE));
    INS_OpenArray("");
    EXPECT_EQ(0, Count(PANEL_ARRAY_MORE, ARRAY_LIST));
    Name(PANEL_ARRAY_MORE, "afCurve");
    EXPECT_EQ("0.75", GetCell(PANEL_ARRAY_MORE, ARRAY_LIST, 3, 1));
    HL_EditCell(PANEL_ARRAY_MORE, ARRAY_LIST, 3, 1, "3.5");
    EXPECT_EQ("3.5", GetCell(PANEL_ARRAY_MORE, ARRAY_LIST, 3, 1));
    HL_FireTimer(PANEL_RECORD_MORE + 2, RECORD_TIMER);
    EXPECT_EQ("3.5", GetCell(PANEL_RECORD_MORE + 2, RECORD_LIST, 4, 1));
    EXPECT_EQ("1", GetCell(PANEL_ARRAY, ARRAY_LIST, 1, 1)) << "another array";
}

// A list whose last member leads back to the first, and a type map that goes away meanwhile.
TEST_F(Inspectors, PointersInACircleEnd)
{
    WriteFileText("circle.tmf", "## 1 VARS\r\n1: 'wCount' _@0x38000001\r\n## 0 TYPES\r\n"
                                "## 1 STRUCTS\r\n# 1 / 2:\r\n  'nValue' _@0x122\r\n"
                                "  'pNext' _@0x28000000_@0x38000001\r\n");
    ASSERT_EQ(0, TMF_OpenMap("circle.tmf"));
    const uint32_t place = 0x9F00;
    const VarNode *node = SYM_MapNodeAtOrAfter(0x8002);
    ASSERT_STREQ("wCount", node->name);
    aVarNode[node - aVarNode].addr = place;
    SortMapNdxByAddr();
    const uint8_t bytes[] = {5, 0, 0x00, 0x9F}; // pNext: itself
    SIM_Poke(target, STATION, place, bytes, sizeof bytes);
    HL_ClickMenu(ITEM_RECORD_INSPECTOR);
    Name(PANEL_RECORD, "wCount");
    int opened = 0;
    for (int line = 2; opened < 100; ++opened) {
        const int before = Count(PANEL_RECORD, RECORD_LIST);
        Open(line);
        if (Count(PANEL_RECORD, RECORD_LIST) == before)
            break;
        line += GetCell(PANEL_RECORD, RECORD_LIST, line, 0).find("*") == std::string::npos ? 1 : 2;
    }
    EXPECT_GT(opened, 10);
    EXPECT_LT(opened, 25);
    EXPECT_EQ("Not opened: more than 20 levels are not shown.",
              UiText(PANEL_RECORD, RECORD_MESSAGE));
    const uint8_t nothing[] = {0, 0};
    SIM_Poke(target, STATION, place + 2, nothing, sizeof nothing);
    Name(PANEL_RECORD, "wCount");
    Open(2);
    EXPECT_EQ("The pointer leads nowhere.", UiText(PANEL_RECORD, RECORD_MESSAGE));
    TMF_CleanTables();
    HL_FireTimer(PANEL_RECORD, RECORD_TIMER);
    INS_RecordNamesChanged();
    EXPECT_EQ(0, Count(PANEL_RECORD, RECORD_LIST)) << "nothing of the old types is shown";
}

} // namespace
