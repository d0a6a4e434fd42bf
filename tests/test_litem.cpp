// The debug file read and written, the change question, and editing of the list.

#include "platform/system.h"
#include "support/watch_fixture.h"
#include "symbols/mapfile.h"
#include "symbols/typemap.h"
#include "watch/list/age.h"
#include "watch/list/debug_file.h"
#include "watch/list/edit_history.h"
#include "watch/list/item_names.h"
#include "watch/list/list_view.h"
#include "watch/list/snapshot.h"

namespace {

constexpr uint32_t NONE = LITEM_NO_ADDRESS;

class LItems : public WatchTest {
protected:
    std::string saved()
    {
        szDebugFileName = path("saved.dbg");
        EXPECT_EQ(SaveDbg(mainPanel), 1);
        return ReadFileText(szDebugFileName);
    }
};

TEST_F(LItems, LinesAndTheirSavedForm)
{
    addSymbol("Known", 0x300);
    addTmsSymbol("Speed", 0x700);
    const struct {
        const char *line, *name;
        uint32_t address;
        char type;
        int size, station, isExplicit;
        const char *saved;
    } cases[] = {{"[12AB], x", "", 0x12AB, 'x', 2, -1, 0, "[0x12AB], x2"},
                 {"&Temp, f", "&Temp", NONE, 'f', 4, -1, 0, "&Temp, f"},
                 {"&Speed, u2", "&Speed", 0x700, 'u', 4, -1, 0, "&Speed, u4"},
                 {"&[8000], x", "&", 0x8000, 'x', 4, -1, 0, "&[0x8000], x4"},
                 {"&Temp, [0x10], i", "&Temp", 0x10, 'i', 4, -1, 1, "&Temp, [0x10], i4"},
                 {"Cnt, p8", "Cnt", NONE, 'p', 8, -1, 0, "Cnt, p8"},
                 {"Cnt, p3", "Cnt", NONE, 'p', 2, -1, 0, "Cnt, p2"},
                 {"Cnt, q", "Cnt", NONE, 'i', 2, -1, 0, "Cnt, i2"},
                 {"Cnt,", "Cnt", NONE, 'i', 2, -1, 0, "Cnt, i2"},
                 {"Cnt, b4", "Cnt", NONE, 'b', 1, -1, 0, "Cnt, b1"},
                 {"Cnt, t2", "Cnt", NONE, 't', 4, -1, 0, "Cnt, t"},
                 {"\t 3 : Motor ,u2 ", "3 : Motor", NONE, 'u', 2, 3, 0, "3 : Motor, u2"},
                 {"3:Known, u2", "3:Known", 0x300, 'u', 2, 3, 0, "3:Known, u2"},
                 {"16:Motor, u2", "16:Motor", NONE, 'u', 2, -1, 0, "16:Motor, u2"},
                 {"Known, [0x100], u1", "Known", 0x300, 'u', 1, -1, 0, "Known, u1"},
                 {"Name, [0x100, u1", "Name", 0x100, 'u', 1, -1, 1, "Name, [0x100], u1"},
                 {"Name, [zz], u1", "Name", 0, 'u', 1, -1, 1, "Name, [0x0], u1"},
                 {"[123456789], u1", "", NONE, 'u', 1, -1, 0, "[0xFFFFFFFF], u1"}};
    for (const auto &c : cases) {
        ASSERT_EQ(load(c.line), 0) << c.line;
        ASSERT_EQ(nLItems, 1) << c.line;
        EXPECT_EQ(saved(), std::string(c.saved) + "\r\n") << c.line;
        const LItem &item = aLItems[0];
        EXPECT_EQ(item.name, c.name);
        EXPECT_EQ(item.address, c.address) << c.line;
        EXPECT_EQ(item.type, c.type) << c.line;
        EXPECT_EQ(item.size, c.size) << c.line;
        EXPECT_EQ(item.station, c.station) << c.line;
        EXPECT_EQ(item.explicitAddress, c.isExplicit) << c.line;
        // What was saved loads as the same item.
        ASSERT_EQ(load(ReadFileText(szDebugFileName)), 0);
        EXPECT_EQ(LIT_FileLine(aLItems[0]), c.saved);
    }
    for (const char *line :
         {"Name", "Name, u1, u2", "Name, [1], u1, u2", "[12AB]", "[], u2", " ; Name, u2"}) {
        ASSERT_EQ(load(line), 0) << line;
        EXPECT_EQ(nLItems, 0) << line;
        EXPECT_EQ(saved(), line); // the user's all the same
    }
}

TEST_F(LItems, TmsLineWithoutItemWidensTheOneBefore)
{
    ASSERT_EQ(load("&Lone\nCnt, u1\n&Temp\n"), 0);
    ASSERT_EQ(nLItems, 1);
    EXPECT_EQ(aLItems[0].size, 4);
}

TEST_F(LItems, ValidLinesOfBadFilesAreKept)
{
    const struct {
        const char *what;
        std::string text;
        int items;
        const char *first;
    } cases[] = {{"empty", "", 0, ""},
                 {"only comments", ";a\r\n\r\n;b\r\n", 0, ""},
                 {"CR only", "A, u1\rB, u2\r", 2, "A"},
                 {"mixed ends, no last one", "A, u1\n\rB, u2\r\nC, u4", 3, "A"},
                 {"NUL bytes", std::string("A, u1\nB\0, u1\nC, u2\n", 19), 2, "A"},
                 {"binary", std::string("\xFF\xFE\x01\0\0\x80,\n", 8) + "A, u1\n", 1, "A"},
                 {"goes on as the next line", std::string(511, ' ') + "A, u1\n", 1, "A"},
                 {"name cut to a field", std::string(130, 'n') + ", u1\n", 1,
                  "nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn"
                  "nnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnnn"}};
    for (const auto &c : cases) {
        ASSERT_EQ(load(c.text), 0) << c.what;
        EXPECT_EQ(nLItems, c.items) << c.what;
        EXPECT_EQ(nLItems > 0 ? aLItems[0].name : "", c.first) << c.what;
    }
    EXPECT_EQ(dat2litems(path("missing.dbg").c_str()), -2);
    EXPECT_EQ(nLItems, 1); // as it was
}

TEST_F(LItems, ItemBeyondTheTableStopsTheLoad)
{
    addSymbol("A", 0x100);
    std::string text;
    for (int i = 0; i < LITEMS_MAX; ++i)
        text += "A, u1\n";
    ASSERT_EQ(load(text), 0);
    EXPECT_EQ(nLItems, LITEMS_MAX);
    EXPECT_EQ(aLItems[LITEMS_MAX - 1].address, 0x100u);
    EXPECT_TRUE(HL_GetPopups().empty());
    openLItems = 0;
    ASSERT_EQ(load(text + "A, u1\n"), 0);
    EXPECT_EQ(nLItems, LITEMS_MAX);
    EXPECT_EQ(aLItems[0].address, NONE);
    EXPECT_EQ(openLItems, 0);
    ASSERT_EQ(HL_GetPopups().size(), 1u);
    EXPECT_EQ(HL_GetPopups()[0], "Error: Too many debug vars.");
}

TEST_F(LItems, AnotherMapKeepsGivenAddresses)
{
    addSymbol("Old", 0x100);
    addTmsSymbol("Speed", 0x700);
    ASSERT_EQ(load("Old, u1\n[1234], u2\nName, [0x50], u4\n&Speed, f\n&[8000], x\n"), 0);
    FreeNodes(aVarNode, &nNodes);
    addSymbol("Other", 0x200);
    CleanLItems();
    EXPECT_EQ(aLItems[1].address, NONE);
    completeLItems(aVarNode, nNodes);
    EXPECT_EQ(aLItems[0].address, NONE);
    EXPECT_EQ(aLItems[1].address, 0x1234u);
    EXPECT_EQ(aLItems[1].explicitAddress, 0);
    EXPECT_EQ(aLItems[2].address, 0x50u);
    EXPECT_EQ(aLItems[2].explicitAddress, 1);
    EXPECT_EQ(aLItems[3].address, NONE); // until the debug file is loaded again
    EXPECT_EQ(aLItems[4].address, NONE);
    EXPECT_EQ(saved(), "Old, u1\n[0x1234], u2\nName, [0x50], u4\n&Speed, f\n&[0x8000], x4\n");
}

TEST_F(LItems, AnotherMapShowsItsAddressesAtOnce)
{
    ASSERT_EQ(load("Other, u1\nOwn, u1\n"), 0);
    ResetLItemsDisplay();
    HL_SelectLine(PANEL_MAIN, MAIN_LIST, 1);
    const std::string map = "0FA00H   Own" + std::string(34, ' ') + "NDATA\n";
    ASSERT_EQ(map2node(write("own.m66", map).c_str()), 0);
    EXPECT_EQ(HL_GetLabels(PANEL_MAIN, MAIN_LIST).at(1), "Own\033p300lFA00");
    EXPECT_EQ(UiSelected(PANEL_MAIN, MAIN_LIST), 1);

    addTmsSymbol("Rec", 0x700);
    ASSERT_EQ(load("&Rec.b, u4\n&Rec, u4\n"), 0);
    EXPECT_EQ(aLItems[0].address, NONE);
    const std::string types = "## 1 VARS\n1: 'Rec' _@0x38000001\n## 0 TYPES\n## 1 STRUCTS\n"
                              "# 1 / 2:\n'a' _@0x222\n'b' _@0x222\n";
    ASSERT_EQ(TMF_OpenMap(write("types.tmf", types).c_str()), 0);
    EXPECT_EQ(aLItems[0].address, 0x702u); // members are found at once
    EXPECT_EQ(aLItems[1].address, 0x700u);
    TMF_CleanTables();
}

TEST_F(LItems, AnotherProcessorHasItsOwnRegisters)
{
    addRegister("S1CON", 0xFFB8);
    addTmsSymbol("Speed", 0x700);
    ASSERT_EQ(load("S1CON, x\nS1CON, [0x50], x\n[0x60], x\n&Speed, f\n"), 0);
    EXPECT_EQ(aLItems[1].address, 0xFFB8u);
    FreeNodes(aVarNode166, &nNodes166);
    openStruct166 = 0;
    VR_ResolveWatchList();
    EXPECT_EQ(aLItems[0].address, NONE); // nothing else lies there under that name
    EXPECT_EQ(aLItems[2].address, 0x60u);
    EXPECT_EQ(aLItems[3].address, 0x700u);
}

TEST_F(LItems, SavingRefusesWithOneMessageAndKeepsTheName)
{
    EXPECT_EQ(SaveDbg(mainPanel), -1);
    EXPECT_EQ(SaveDbgAs(mainPanel), -1);
    EXPECT_EQ(HL_GetPopups().back(), "Error: Error: debug file empty.");
    ASSERT_EQ(load(";nothing\n"), 0);
    EXPECT_EQ(saved(), ";nothing\n"); // an empty list that was loaded may be saved
    IsDBGChange = 1;
    const std::string name = path("no/such/folder.dbg");
    HL_PushAnswer(1, name);
    const std::string before = szDebugFileName;
    EXPECT_EQ(SaveDbgAs(mainPanel), 1);
    EXPECT_EQ(HL_GetPopups().back(), "Error: Cannot open file '" + name + "'.");
    EXPECT_EQ(szDebugFileName, before);
    EXPECT_EQ(IsDBGChange, 1);
}

TEST_F(LItems, ChangeQuestion)
{
    ASSERT_EQ(load("A, u1\n"), 0);
    EXPECT_EQ(DbgChngSafety(), 0);
    EXPECT_TRUE(HL_GetPopups().empty());
    const struct {
        int button;
        const char *file; // "" = no folder to save in
        int result, isStillChanged;
    } cases[] = {{1, "list.dbg", 0, 0},
                 {1, "no/such/list.dbg", -1, 1},
                 {2, "list.dbg", 0, 0},
                 {3, "list.dbg", -1, 1},
                 {0, "list.dbg", -1, 1}};
    for (const auto &c : cases) {
        IsDBGChange = 1;
        szDebugFileName = path(c.file);
        HL_PushAnswer(c.button);
        EXPECT_EQ(DbgChngSafety(), c.result) << c.button << c.file;
        EXPECT_EQ(IsDBGChange, c.isStillChanged) << c.button << c.file;
    }
    // Nameless: the choice of a name may be cancelled as well.
    szDebugFileName.clear();
    HL_PushAnswer(1);
    HL_PushAnswer(0);
    EXPECT_EQ(DbgChngSafety(), -1);
}

TEST_F(LItems, OpenReopenAndReload)
{
    const std::string first = write("first.dbg", "A, u1\nB, [10], u2\n");
    const std::string second = write("second.dbg", "C, u1\n");
    HL_PushAnswer(1, first);
    OpenDatCB(0, ITEM_OPEN);
    EXPECT_EQ(szDebugFileName, first);
    EXPECT_EQ(HL_GetLabels(PANEL_MAIN, MAIN_LIST),
              (std::vector<std::string>{"A\033p300lError", "B\033p300l10"}));
    HL_PushAnswer(1, second);
    OpenDatCB(0, ITEM_OPEN);
    ASSERT_EQ(nDebugFileNames, 2);
    HL_ClickMenu(anRecentItems[1]);
    EXPECT_EQ(szDebugFileName, first);
    EXPECT_EQ(szaDebugFileNames[0], first);
    MenuReopenFileCB(0, 4711); // no such entry
    EXPECT_EQ(szDebugFileName, first);

    // Unsaved changes and a cancelled question leave everything alone.
    ASSERT_EQ(EDT_Remove(0), 0);
    HL_PushAnswer(3);
    HL_CommitControl(PANEL_MAIN, MAIN_BTN_RELOAD);
    EXPECT_EQ(nLItems, 1);
    std::filesystem::remove(second);
    HL_PushAnswer(2);
    HL_ClickMenu(anRecentItems[1]);
    EXPECT_EQ(szDebugFileName, first);
    EXPECT_EQ(UiText(PANEL_MAIN, MAIN_MESSAGE), "Cannot open file '" + second + "'.");
    EXPECT_EQ(szaDebugFileNames[0] + szaDebugFileNames[1], first + second) << "and stay in order";
}

TEST_F(LItems, FileChangedOnDisk)
{
    szDebugFileName = write("list.dbg", "A, u1\n");
    ASSERT_EQ(dat2litems(szDebugFileName.c_str()), 0);
    EXPECT_EQ(IsDbgFileChanged(), 0);
    const auto touch = [this](int seconds) {
        write("list.dbg", "B, u1\n");
        namespace fs = std::filesystem;
        fs::last_write_time(szDebugFileName,
                            fs::file_time_type::clock::now() + std::chrono::seconds(seconds));
    };
    touch(7);
    HL_PushAnswer(0);
    EXPECT_EQ(LIT_CheckReload(mainPanel), 0);
    EXPECT_EQ(aLItems[0].name, "A");
    EXPECT_EQ(LIT_CheckReload(mainPanel), 0); // asked once a change
    EXPECT_EQ(HL_GetPopups().size(), 1u);
    touch(19);
    HL_PushAnswer(1);
    EXPECT_EQ(LIT_CheckReload(mainPanel), 1);
    EXPECT_EQ(aLItems[0].name, "B");
    ASSERT_EQ(SaveDbg(mainPanel), 1); // our own saving is no change
    EXPECT_EQ(IsDbgFileChanged(), 0);
    std::filesystem::remove(szDebugFileName);
    EXPECT_EQ(IsDbgFileChanged(), 0);
}

TEST_F(LItems, AddingItems)
{
    addSymbol("DLLD_wCount", 0x300);
    addSymbol("Rec", 0x400);
    const struct {
        const char *text, *type;
        const char *saved;
    } cases[] = {{" DLLD_wCount ", "", "DLLD_wCount, u2"},
                 {"3:Rec.fSpeed", "", "3:Rec.fSpeed, f"},
                 {"cnt", "", "cnt, i2"},
                 {"&dwLoad", "u2", "&dwLoad, u4"},
                 {"[1F00]", "x8", "[0x1F00], x8"},
                 {"$1F00", "b", "[0x1F00], b1"},
                 {"&0x1F00", "f", "&[0x1F00], f"}};
    for (const auto &c : cases) {
        nLItems = IsDBGChange = 0;
        EXPECT_EQ(EDT_AddText(c.text, c.type, EDT_AT_END), 0) << c.text;
        EXPECT_EQ(IsDBGChange, 1) << c.text;
        ASSERT_EQ(nLItems, 1) << c.text;
        EXPECT_EQ(LIT_FileLine(aLItems[0]), c.saved);
        ASSERT_EQ(load(std::string(c.saved) + "\n"), 0);
        EXPECT_EQ(LIT_FileLine(aLItems[0]), c.saved);
    }
    nLItems = IsDBGChange = 0;
    const std::vector<std::tuple<int, const char *, std::vector<const char *>>> refused = {
        {EDT_ERR_ADDRESS, "u2", {"0x1000000", "[zz]"}},
        {EDT_ERR_NAME, "u2", {"", "&", "a,b", "a;b", "a\nb"}},
        {EDT_ERR_TYPE, "u3", {"Rec"}},
        {EDT_ERR_TYPE, "f2", {"Rec"}},
        {EDT_ERR_TYPE, "b", {"&Rec"}}};
    for (const auto &[error, type, texts] : refused)
        for (const char *text : texts)
            EXPECT_EQ(EDT_AddText(text, type, EDT_AT_END), error) << text;
    for (const int error : {EDT_ERR_ADDRESS, EDT_ERR_NAME, EDT_ERR_TYPE})
        EXPECT_STRNE(EDT_ErrorText(error), "");
    EXPECT_EQ(nLItems + IsDBGChange, 0);
    nLItems = LITEMS_MAX;
    EXPECT_EQ(EDT_AddText("Rec", "u2", 0), EDT_ERR_FULL);
}

TEST_F(LItems, EveryEditIsUndoneAndRedone)
{
    addSymbol("A", 0x100);
    const std::string start = "A, u1\nB, u1\nC, u1\nD, u1\n";
    const auto list = [] {
        std::string text;
        for (int i = 0; i < nLItems; ++i)
            text += LIT_FileLine(aLItems[i]) + "\n";
        return text;
    };
    const struct {
        int (*edit)();
        const char *what, *after;
    } edits[] = {
        {[] { return EDT_Move(0, 2); }, "move A", "B, u1\nC, u1\nA, u1\nD, u1\n"},
        {[] { return EDT_Move(3, 0); }, "move D", "D, u1\nB, u1\nC, u1\nA, u1\n"},
        {[] { return EDT_Remove(1); }, "remove B", "D, u1\nC, u1\nA, u1\n"},
        {[] {
             return EDT_RemoveLines({2, 0});
         },
         "remove 2 items", "C, u1\n"},
        {[] { return EDT_AddText("E", "x4", 0) == 0 ? 0 : -1; }, "add E", "E, x4\nC, u1\n"},
        {[] { return EDT_SetType(1, "i2"); }, "change C", "E, x4\nC, i2\n"},
        {[] { return EDT_Change(0, "3:A", "u2"); }, "change E", "3:A, u2\nC, i2\n"},
        {[] { return EDT_Change(1, "F", "i2"); }, "change C", "3:A, u2\nF, i2\n"},
        {[] { return EDT_AddText("G", "u1", EDT_AT_END) == 2 ? 0 : -1; }, "add G",
         "3:A, u2\nF, i2\nG, u1\n"},
        {[] {
             return EDT_MoveLines({2, 1}, -1);
         },
         "move 2 items", "F, i2\nG, u1\n3:A, u2\n"},
        {[] {
             return EDT_MoveLines({0, 1}, 1);
         },
         "move 2 items", "3:A, u2\nF, i2\nG, u1\n"},
    };
    ASSERT_EQ(load(start), 0);
    EDT_ForgetEdits();
    std::string what;
    for (const auto &row : edits) {
        ASSERT_EQ(row.edit(), 0) << row.what;
        EXPECT_EQ(list(), row.after) << row.what;
    }
    EXPECT_EQ(HL_GetLabels(PANEL_MAIN, MAIN_LIST).size(), 3u);
    const int count = static_cast<int>(sizeof edits / sizeof edits[0]);
    for (int i = count - 1; i >= 0; --i) {
        ASSERT_GE(EDT_Undo(&what), 0);
        EXPECT_EQ(what, edits[i].what);
        EXPECT_EQ(list(), i > 0 ? edits[i - 1].after : start) << what;
    }
    for (const auto &row : edits) {
        ASSERT_GE(EDT_Redo(&what), 0);
        EXPECT_EQ(list(), row.after) << row.what;
    }
    EXPECT_EQ(EDT_Redo(&what), EDT_ERR_NOTHING);
    EDT_Undo(&what);
    EDT_Remove(0);
    EXPECT_FALSE(EDT_CanRedo()) << "after another edit there is nothing to go forward to";
}

TEST_F(LItems, ANewNameTakesNoAddressOrStationFromTheOldOne)
{
    addSymbol("A", 0x300);
    ASSERT_EQ(load("15:Far, [100], u2\n"), 0);
    EXPECT_EQ(LIT_Station(aLItems[0]), 15);
    EXPECT_EQ(aLItems[0].address, 0x100u);
    ASSERT_EQ(EDT_Change(0, "A", "u2"), 0);
    EXPECT_EQ(LIT_Station(aLItems[0]), STATION);
    EXPECT_EQ(aLItems[0].address, 0x300u);
    EXPECT_EQ(LIT_FileLine(aLItems[0]), "A, u2");
}

TEST_F(LItems, ARefusedEditChangesNothing)
{
    ASSERT_EQ(load("A, u1\nB, u1\nC, u1\n"), 0);
    EDT_ForgetEdits();
    std::string what;
    EXPECT_EQ(EDT_Undo(&what), EDT_ERR_NOTHING);
    EXPECT_EQ(EDT_Move(0, 3), EDT_ERR_INDEX);
    EXPECT_EQ(EDT_RemoveLines({0, 3}), EDT_ERR_INDEX);
    EXPECT_EQ(EDT_MoveLines({0, 1}, -1), EDT_ERR_INDEX);
    ASSERT_EQ(nLItems, 3);
    EXPECT_EQ(aLItems[0].name + aLItems[1].name + aLItems[2].name, "ABC");
    EXPECT_FALSE(EDT_CanUndo());
}

TEST_F(LItems, WhatComesBackHasTheAddressOfTheMapThatIsThereNow)
{
    addSymbol("A", 0x100);
    ASSERT_EQ(load("A, u1\n"), 0);
    std::string what;
    EDT_Remove(0);
    aVarNode[0].addr = 0x222;
    EXPECT_EQ(EDT_Undo(&what), 0);
    EXPECT_EQ(aLItems[0].address, 0x222u);
}

TEST_F(LItems, AnotherTypeForgetsTheValue)
{
    ASSERT_EQ(load("A, [10], u1\n"), 0);
    aLItems[0].isValueGood = true;
    EXPECT_EQ(EDT_SetType(0, "x4"), 0);
    EXPECT_FALSE(aLItems[0].isValueGood) << "one byte says nothing about four";
    EXPECT_EQ(EDT_SetType(0, "y4"), EDT_ERR_TYPE);
    EXPECT_EQ(EDT_Change(0, "a,b", "x4"), EDT_ERR_NAME);
    EXPECT_EQ(LIT_FileLine(aLItems[0]), "A, [0x10], x4");
}

TEST_F(LItems, Snapshot)
{
    ASSERT_EQ(load("A, [10], u1\n&B\"q, x\nRate, [20], p4\nWide, [30], i8\n"), 0);
    for (const int index : {0, 2, 3})
        RFR_StampAge(&aLItems[index], STATION);
    aLItems[0].value = 7;
    aLItems[0].isValueGood = aLItems[2].isValueGood = aLItems[3].isValueGood = true;
    aLItems[1].reason = "no, answer";
    aLItems[2].value = 9; // read once: no rate yet
    aLItems[3].value = 5;
    aLItems[3].valueHigh = 0x80000000;
    EXPECT_EQ(LSV_SnapshotText({0, 1}), "Name\tAddress\tType\tValue\tState\n"
                                        "A\t0x000010\tu1\t7\tok\n&B\"q\t\tx4\t\tno, answer\n");
    ASSERT_EQ(LSV_SaveSnapshotCsv(path("list.csv")), 0);
    EXPECT_EQ(ReadFileText(path("list.csv")),
              "name,address,type,size,value,raw,state\r\n"
              "A,0x000010,u,1,7,7,ok\r\n"
              "\"&B\"\"q\",,x,4,,,\"no, answer\"\r\n"
              "Rate,0x000020,p,4,,9,ok\r\n"
              "Wide,0x000030,i,8,-9223372036854775803,9223372036854775813,ok\r\n");
    EXPECT_EQ(LSV_SaveSnapshotCsv(path("no/such/list.csv")), -1);
}

} // namespace
