// The debug file as its user keeps it: what saving leaves alone, what loading says and asks,
// and files that are none.
#include <random>
#include <sys/stat.h>

#include "support/watch_fixture.h"
#include "text/words.h"
#include "watch/list/debug_file.h"
#include "watch/list/list_view.h"
#include "watch/main_window.h"

namespace {

class ListFiles : public WatchTest {
protected:
    // What a save makes of the list now.
    std::string saved()
    {
        EXPECT_EQ(LIT_WriteFile(path("saved.dbg")), 0);
        return ReadFileText(path("saved.dbg"));
    }
    std::string names()
    {
        std::string text;
        for (int i = 0; i < nLItems; ++i)
            text += aLItems[i].name;
        return text;
    }
    std::string message()
    {
        return UiText(PANEL_MAIN, MAIN_MESSAGE);
    }
    // A file of the user's, saved as it is loaded.
    std::string round(const std::string &text)
    {
        EXPECT_EQ(load(text), 0);
        return saved();
    }
};

TEST_F(ListFiles, SavingLeavesTheUsersWorkAlone)
{
    const struct {
        const char *what, *text;
        std::string saved; // "=": as it was
    } cases[] = {{"comments and blank lines",
                  "; head\r\n\r\nA, u1\r\n  ; deep\r\n\r\nB, u2\r\n;end\r\n", "="},
                 {"no last line end", "A, u1\r\n; end", "="},
                 {"a last item without one gets it", "A, u1\nB, u2", "A, u1\nB, u2\n"},
                 {"line ends as they are", "A, u1\n;\r\n;\rB, u2\rC, x4\n\r", "="},
                 {"comments behind items", "A, u1 ; a, b\nB, u2\t;b;c\n", "="},
                 {"items as described", "  A ,u1;a\n[100] , x ;b\n", "A, u1;a\n[0x100], x2 ;b\n"},
                 {"lines that gave nothing", "A\nA, u1\na, b, c\n[], u2\n", "="},
                 {"a byte order mark", "\xEF\xBB\xBF; head\nA, u1\n", "="},
                 {"a byte order mark and an item",
                  "\xEF\xBB\xBF"
                  "A, u1\n",
                  "="},
                 {"a mark of width", "A, u1\n&Lone\nB, u1\n", "A, u4\n&Lone\nB, u1\n"},
                 {"only comments", ";a\n\n;b", "="},
                 {"nothing", "", "="}};
    for (const auto &c : cases) {
        const std::string expected = c.saved == "=" ? c.text : c.saved;
        EXPECT_EQ(round(c.text), expected) << c.what;
        EXPECT_EQ(saved(), expected) << "saved again: " << c.what;
        EXPECT_EQ(round(expected), expected) << c.what;
    }
    // Bytes that are no text stay when no item stands in them.
    for (const std::string &odd :
         {std::string("A, u1\n;\0\xFF\0\n\0\n", 13), std::string("A, u1\n\0\0", 8),
          std::string("\0", 1), std::string("\xEF\xBB\xBF")})
        EXPECT_EQ(round(odd), odd);
    // Long lines go on as the next one and mean the same after saving.
    for (const std::string &text :
         {std::string(511, ' ') + "A, u1\nB, u2\n", "A,u1;" + std::string(506, 'c') + "\nB, u2\n",
          "A, u1 ;" + std::string(600, 'c') + "\nB, u2\n"}) {
        const std::string once = round(text);
        EXPECT_EQ(names(), "AB");
        EXPECT_EQ(round(once), once);
        EXPECT_EQ(names(), "AB");
        EXPECT_EQ(std::count(once.begin(), once.end(), 'c'),
                  std::count(text.begin(), text.end(), 'c'));
    }
}

TEST_F(ListFiles, EditedItemsFindTheirPlace)
{
    const std::string text = "; head\nA, u1 ;a\n; two\nB, u2 ;b\n; three\nC, u4 ;c\n; tail";
    const struct {
        const char *what;
        void (*edit)();
        const char *saved;
    } cases[] = {
        {"removed", [] { EDT_Remove(1); }, "; head\nA, u1 ;a\n; two\n; three\nC, u4 ;c\n; tail"},
        {"put back",
         [] {
             std::string what;
             EDT_Remove(1), EDT_Undo(&what);
         },
         "; head\nA, u1 ;a\n; two\nB, u2 ;b\n; three\nC, u4 ;c\n; tail"},
        {"moved down", [] { EDT_Move(0, 2); },
         "; head\n; two\nB, u2 ;b\n; three\nC, u4 ;c\nA, u1 ;a\n; tail"},
        {"moved up", [] { EDT_Move(2, 0); },
         "; head\nC, u4 ;c\nA, u1 ;a\n; two\nB, u2 ;b\n; three\n; tail"},
        {"added behind", [] { EDT_AddText("N", "x2", EDT_AT_END); },
         "; head\nA, u1 ;a\n; two\nB, u2 ;b\n; three\nC, u4 ;c\nN, x2\n; tail"},
        {"added in front", [] { EDT_AddText("N", "x2", 0); },
         "; head\nN, x2\nA, u1 ;a\n; two\nB, u2 ;b\n; three\nC, u4 ;c\n; tail"},
        {"changed", [] { EDT_Change(1, "N", "f"), EDT_SetType(0, "i4"), EDT_Change(2, "M", "u4"); },
         "; head\nA, i4 ;a\n; two\nN, f ;b\n; three\nM, u4 ;c\n; tail"},
        {"all removed, one added",
         [] {
             while (nLItems > 0)
                 EDT_Remove(0);
             EDT_AddText("N", "u1", 0);
         },
         "; head\n; two\n; three\n; tail\nN, u1\n"}};
    for (const auto &c : cases) {
        ASSERT_EQ(load(text), 0);
        c.edit();
        const std::string list = names();
        EXPECT_EQ(saved(), c.saved) << c.what;
        EXPECT_EQ(saved(), c.saved) << "and again: " << c.what;
        ASSERT_EQ(dat2litems(path("saved.dbg").c_str()), 0);
        EXPECT_EQ(names(), list) << c.what;
    }
    // A line that widens the item before it must not widen another one.
    ASSERT_EQ(load("A, u1\n&Lone\nB, u1\n"), 0);
    EDT_Move(0, 1);
    EXPECT_EQ(saved(), "&Lone\nB, u1\nA, u4\n");
    ASSERT_EQ(load("B, u1\nA, u1\n&Lone\n"), 0);
    EDT_Move(1, 0);
    EXPECT_EQ(saved(), "A, u4\nB, u1\n; &Lone\n");
    ASSERT_EQ(load("A, u1\n\n; b\n"), 0);
    EDT_AddText("N", "x2", EDT_AT_END);
    EXPECT_EQ(saved(), "A, u1\nN, x2\n\n; b\n") << "two ends of lines are no pair";
    // A list that came from no file has lines as this program writes them.
    ResetProgram();
    EDT_AddText("N", "u1", 0);
    EXPECT_EQ(saved(), "N, u1\r\n");
}

TEST_F(ListFiles, WhatTheListCannotHoldStaysInTheFile)
{
    std::string text;
    for (int i = 0; i < LITEMS_MAX + 20; ++i)
        text += "A, u1\n; " + std::to_string(i) + "\n";
    EXPECT_EQ(round(text), text);
    EXPECT_EQ(nLItems, LITEMS_MAX);
}

TEST_F(ListFiles, OddLinesAreNamedOnce)
{
    const struct {
        const char *text, *says;
    } cases[] = {{"A, u1\nB, b4\n[12], x\n\n; c\nC, t2x\nD,\n&E, f\n", ""},
                 {"A\n", "list.dbg: line 1 gives no item or a bad type or address."},
                 {"A, u1\nB, q\r\nC, u3\rD, [zz], u1\n[1G], u1\n[1000000], u1\n[FFFFFF], u1\n"
                  "a, b, c, d\n&L\n",
                  "list.dbg: lines 2, 3, 4, 5, 6, 8, 9 give no item or a bad type or address."},
                 {"a\na\na\na\na\na\na\na\na\na\na\na\n",
                  "list.dbg: lines 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 and 2 more give no item or a bad "
                  "type or address."}};
    for (const auto &c : cases) {
        SetCtrlVal(PANEL_MAIN, MAIN_MESSAGE, std::string());
        ASSERT_EQ(load(c.text), 0);
        EXPECT_EQ(message(), c.says) << c.text;
    }
    // Numbers are those that an editor shows, whatever the lines' length.
    load(std::string(1200, ' ') + "\nA\n");
    EXPECT_EQ(message(), "list.dbg: line 2 gives no item or a bad type or address.");
}

TEST_F(ListFiles, AnEmptyFileAsksBeforeItReplacesAList)
{
    const std::string full = write("full.dbg", "A, u1\n"), empty = write("empty.dbg", "; none\n");
    ASSERT_EQ(LIT_OpenFile(empty), 0); // nothing to lose
    ASSERT_EQ(LIT_OpenFile(full), 0);
    EXPECT_TRUE(HL_GetPopups().empty());
    HL_PushAnswer(0);
    EXPECT_EQ(LIT_OpenFile(empty), -2);
    EXPECT_EQ(names() + szDebugFileName, "A" + full);
    EXPECT_EQ(saved(), "A, u1\n");
    HL_PushAnswer(1);
    EXPECT_EQ(LIT_OpenFile(empty), 0);
    EXPECT_EQ(nLItems, 0);
    EXPECT_EQ(szDebugFileName, empty);
    EXPECT_EQ(HL_GetPopups().size(), 2u);
}

TEST_F(ListFiles, CommentsAreShownEditedAndSavedInTheirLine)
{
    ASSERT_EQ(load("; head\r\nA, u1 \t;  one; two \r\nB, u2\r\nC, u4;\r\n"), 0);
    ResetLItemsDisplay();
    LSV_ShowValues();
    const auto comment = [](int row) {
        std::vector<UI_Cell> cells;
        GetListCells(PANEL_MAIN, MAIN_LIST, row, &cells);
        return cells.at(LSV_COMMENT).text;
    };
    EXPECT_EQ(comment(0), "one; two");
    HL_EditCell(PANEL_MAIN, MAIN_LIST, 0, LSV_COMMENT, " three\t");
    HL_EditCell(PANEL_MAIN, MAIN_LIST, 1, LSV_COMMENT, "new\nline");
    EXPECT_EQ(comment(0) + "|" + comment(1) + "|" + comment(2), "three|new line|");
    EXPECT_EQ(IsDBGChange, 1);
    EXPECT_EQ(saved(), "; head\r\nA, u1 \t; three\r\nB, u2 ; new line\r\nC, u4;\r\n");
    EDT_Move(0, 2);
    EXPECT_EQ(saved(), "; head\r\nB, u2 ; new line\r\nC, u4;\r\nA, u1 \t; three\r\n");
    EXPECT_EQ(EDT_SetComment(2, std::string(500, 'c')), EDT_ERR_COMMENT);
    std::string what;
    for (int i = 0; i < 3; ++i)
        EDT_Undo(&what);
    EXPECT_EQ(saved(), "; head\r\nA, u1 \t;  one; two \r\nB, u2\r\nC, u4;\r\n")
        << "as it was, to the blank";
    EDT_SetComment(0, "");
    EDT_Change(1, "D", "u1");
    EXPECT_EQ(saved(), "; head\r\nA, u1\r\nD, u1\r\nC, u4;\r\n");
    // The rest of a comment that was longer than a line is no item without its beginning.
    ASSERT_EQ(load("A, u1 ;" + std::string(600, 'c') + "\nB, u2\n"), 0);
    EDT_SetComment(0, "");
    EXPECT_EQ(saved(), "A, u1\n; " + std::string(96, 'c') + "\nB, u2\n");
}

TEST_F(ListFiles, WhatIsNoFileIsRefusedWithOneMessage)
{
    const std::string pipe = path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    ASSERT_EQ(load("A, u1\n"), 0);
    for (const std::string &name : {pipe, folder.path, std::string("/dev/zero")}) {
        EXPECT_EQ(LIT_OpenFile(name), -2);
        EXPECT_EQ(message(), "Cannot open file '" + name + "'. It is a folder, device or pipe.");
    }
    EXPECT_EQ(names(), "A");
    EXPECT_TRUE(HL_GetPopups().empty());
}

// A name is a line of somebody's file: it must not steer the list or a terminal.
TEST_F(ListFiles, NamesAreShownWithoutControlCharacters)
{
    ASSERT_EQ(load("A\033p5l\033[2J, u1\n"), 0);
    ResetLItemsDisplay();
    EXPECT_EQ(HL_GetLabels(PANEL_MAIN, MAIN_LIST).at(0), "A.p5l.[2J\033p300lError");
    EXPECT_EQ(LIT_Label(aLItems[0]), "A.p5l.[2J");
    EXPECT_EQ(saved(), "A\033p5l\033[2J, u1\n");
    szDebugFileName = "a\033b";
    SetMainPanelTitle();
    VR_ShowMessage("a\033b\nc");
    EXPECT_EQ(message(), "a.b\nc");
    for (const char *cell : {"=cmd|x!A1", "+1+1", "-2+3", "@SUM(A1)", "\t=1", "-2 +3", "-1x"})
        EXPECT_EQ(TXT_QuoteCsv(cell)[0] == '"' ? TXT_QuoteCsv(cell).substr(1, 1)
                                               : TXT_QuoteCsv(cell).substr(0, 1),
                  "'")
            << cell;
    for (const char *cell : {"-12.5", "+3", "-999.000 Hz", "", "a=b", "-1e-7"})
        EXPECT_EQ(TXT_QuoteCsv(cell), cell);
    EXPECT_EQ(TXT_QuoteCsv("=a,\"b\""), "\"'=a,\"\"b\"\"\"");
}

} // namespace
