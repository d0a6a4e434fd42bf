// What the watch list tells a user about its values: fresh, old, failed or not read at all;
// nothing before it is proven; and the same for what leaves the program.

#include "app/ini_file.h"
#include "platform/system.h"
#include "runtime/view.h"
#include "support/watch_fixture.h"
#include "watch/list/age.h"
#include "watch/list/freq_meter.h"
#include "watch/list/list_view.h"
#include "watch/list/read_item.h"
#include "watch/main_window.h"
#include "watch/value/write_value.h"
#include "watch/windows/outcome_colors.h"

namespace {

using Texts = std::vector<std::string>;

class WatchTruth : public WatchTest {
protected:
    void SetUp() override
    {
        WatchTest::SetUp();
        VR_isWatchView = true;
        VR_EnableControls();
    }

    static void tick(int count)
    {
        for (int i = 0; i < count; ++i)
            timerCB(PANEL_MAIN, MAIN_TIMER, EVENT_TIMER_TICK, 0);
    }

    // Anonymous items of two bytes, 0x8000 and on, in the list and on the screen.
    void loadItems(int count, const std::string &more = "")
    {
        std::string text;
        for (int i = 0; i < count; ++i) {
            char line[24];
            std::snprintf(line, sizeof line, "[%X], u2\n", 0x8000 + 2 * i);
            text += line;
        }
        ASSERT_EQ(load(text + more), 0);
        ResetLItemsDisplay();
    }

    static std::string status()
    {
        return UiText(PANEL_MAIN, MAIN_STATUS);
    }

    static UI_Cell value(int index)
    {
        std::vector<UI_Cell> cells;
        EXPECT_EQ(GetListCells(PANEL_MAIN, MAIN_LIST, index, &cells), 0);
        return cells.size() > LSV_VALUE ? cells[LSV_VALUE] : UI_Cell();
    }

    static unsigned style(int index)
    {
        return value(index).style & ~UIS_CHANGED;
    }
};

constexpr unsigned FAILED = UIS_WARNING | UIS_STRUCK;
constexpr unsigned NOT_READ = UIS_DIM | UIS_STRUCK;

TEST_F(WatchTruth, AFailingLineIsMarkedAtThatMoment)
{
    ASSERT_TRUE(connect());
    Option_AutoOff = 0;
    loadItems(5);
    poke(0x8000, 7, 2);
    tick(5);
    EXPECT_EQ(status(), "RUN");
    EXPECT_EQ(style(0), UIS_NORMAL);
    silenceOthers(0);
    tick(1);
    EXPECT_EQ(status(), "Error") << "one tick after the target fell silent";
    EXPECT_EQ(UiAttribute(PANEL_MAIN, MAIN_STATUS, ATTR_TEXT_COLOR), 0xFF0000);
    EXPECT_EQ(HL_GetLabels(PANEL_MAIN, MAIN_LIST)[0], "\033p300l008000  u2: 65535 (!)");
    EXPECT_EQ(value(0).text, "65535 (!)");
    EXPECT_EQ(style(0), FAILED);
    EXPECT_EQ(value(0).tip, "no answer");
    EXPECT_EQ(HL_GetTip(PANEL_MAIN, MAIN_LIST, 0), "no answer");
    EXPECT_EQ(style(1), UIS_NORMAL) << "it was not asked yet";
    silenceOthers(0xFFFF);
    tick(10);
    EXPECT_EQ(status(), "RUN");
    EXPECT_EQ(nErrors, 0) << "a good sweep ends the count to auto-off";
    EXPECT_EQ(HL_GetTip(PANEL_MAIN, MAIN_LIST, 0), "");
}

TEST_F(WatchTruth, OldValuesAreGreyAndSayHowOld)
{
    ASSERT_TRUE(connect());
    loadItems(15, "3:Far, [8000], u2\n");
    tick(13);
    SetCtrlAttribute(PANEL_MAIN, MAIN_LIST, ATTR_FIRST_VISIBLE_LINE, 3);
    for (int sweep = 1; sweep <= RFR_AGE_SWEEPS_MAX; ++sweep)
        tick(13);
    EXPECT_EQ(style(0), UIS_NORMAL) << "three sweeps are not too many";
    tick(13);
    EXPECT_EQ(style(0), UIS_DIM);
    EXPECT_EQ(value(0).tip.rfind("Old: read at ", 0), 0u) << value(0).tip;
    EXPECT_TRUE(Has(value(0).tip, " s ago."));
    EXPECT_EQ(style(3), UIS_NORMAL);

    // Another station is selected: what is shown is still the first one's, but for the item
    // that names its own.
    HL_ClickMenu(ITEM_STATION_FIRST + 2);
    EXPECT_EQ(style(3), UIS_DIM);
    EXPECT_TRUE(Has(value(3).tip, "from station 1"));
    EXPECT_EQ(style(15), UIS_NORMAL);
    tick(13);
    EXPECT_EQ(style(3), UIS_NORMAL);

    const struct {
        const char *what;
        void (*act)();
    } ends[] = {{"switched off", [] { VIR2_StopPeriodicASC(); }},
                {"auto-off", [] { VR_AutoOff("a test"); }}};
    for (const auto &end : ends) {
        end.act();
        EXPECT_EQ(style(3), UIS_DIM) << end.what;
        EXPECT_TRUE(Has(value(3).tip, "before communication was switched off"));
        VIR2_StartPeriodicASC();
        tick(12);
        EXPECT_EQ(style(3), UIS_DIM) << "on again, and not read yet: " << end.what;
        tick(1);
        EXPECT_EQ(style(3), UIS_NORMAL) << end.what;
        EXPECT_EQ(value(3).tip, "") << end.what;
    }
}

TEST_F(WatchTruth, RunNeedsAGoodRead)
{
    ASSERT_TRUE(connect());
    ASSERT_EQ(load("Nobody, u2\n&NobodyElse, f\n"), 0);
    for (int sweep = 0; sweep < 3; ++sweep)
        tick(2);
    EXPECT_EQ(status(), "Error");
    EXPECT_NE(isTimer, 0) << "the link is not to blame";
    EXPECT_EQ(nErrors, 0);

    // A place that the target does not have is a failed read like another.
    ASSERT_EQ(load("[8000], u2\nAway, [1000000], u2\n"), 0);
    Option_AutoOff = 0;
    tick(2);
    EXPECT_EQ(status(), "Error");
    EXPECT_EQ(nErrors, 1);
    EXPECT_TRUE(Has(value(1).tip, "outside the target's memory"));
    Option_AutoOff = 1;
    tick(2);
    EXPECT_EQ(isTimer, 0);
    EXPECT_TRUE(Has(UiText(PANEL_MAIN, MAIN_MESSAGE), "Away: "));
}

TEST_F(WatchTruth, NumbersThatNobodyReadAreStruckThrough)
{
    ASSERT_TRUE(connect());
    Option_AutoOff = 0;
    ASSERT_EQ(load("[8000], p2\n7:Time, [8000], t\n[8000], i1\n"), 0);
    silenceOthers(1u << 1);
    tick(3);
    EXPECT_EQ(value(0).text, "-999.000 Hz");
    EXPECT_EQ(style(0), NOT_READ) << "a rate takes two reads";
    EXPECT_EQ(value(1).text, "11650d 20h 15m (!)");
    EXPECT_EQ(style(1), FAILED);
    EXPECT_EQ(style(2), UIS_NORMAL);
    PLT_SleepMs(2); // of two reads within one tick there is no rate either
    tick(3);
    EXPECT_EQ(style(0), UIS_NORMAL);
    EXPECT_EQ(value(0).text, "0.000 Hz");
}

TEST_F(WatchTruth, NothingIsShownBeforeItIsProven)
{
    ASSERT_TRUE(connect());
    Option_AutoOff = 0;
    loadItems(3);
    tick(3);
    poke(0x8000, 1234, 2);
    tick(2);
    EXPECT_EQ(aLItems[0].value, 0u) << "read, but the sweep is not over";
    EXPECT_EQ(value(0).text, "0");
    // The target answers the last item of the sweep, but not what comes behind it.
    options.silentAfter = 1;
    SIM_SetFaults(target, options);
    UCM_recS.tries = 0;
    tick(1);
    EXPECT_EQ(status(), "Error");
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(style(i), FAILED) << i;
        EXPECT_NE(value(i).tip, "") << i;
    }
    EXPECT_EQ(nErrors, 3);
    options.silentAfter = -1;
    SIM_SetFaults(target, options);
    tick(3);
    EXPECT_EQ(value(0).text, "1234");
    EXPECT_EQ(status(), "RUN");
}

TEST_F(WatchTruth, WhatAnotherReaderIsToldConcernsTheSweepToo)
{
    ASSERT_TRUE(connect());
    loadItems(2);
    tick(2);
    poke(0x8000, 100, 2);
    tick(1); // held back: 100
    options.repeat = 1;
    SIM_SetFaults(target, options);
    uint8_t byte = 0;
    UCM_Read(1, 0x9000, 1, &byte);
    UCM_Read(1, 0x9000, 1, &byte);
    ASSERT_NE(UCM_Prove(), UCM_PROVEN);
    options.repeat = 0;
    SIM_SetFaults(target, options);
    poke(0x8000, 101, 2);
    tick(1);
    EXPECT_EQ(value(0).text, "101") << "it was read again";
    EXPECT_EQ(status(), "RUN");
}

TEST_F(WatchTruth, ASweepCoversTheLinesInView)
{
    ASSERT_TRUE(connect());
    loadItems(40);
    tick(12);
    EXPECT_EQ(status(), "");
    tick(1);
    EXPECT_EQ(status(), "RUN") << "thirteen lines while the window says nothing";
    EXPECT_TRUE(aLItems[12].isValueGood);
    EXPECT_EQ(aLItems[13].goodReads, 0u) << "there is no fourteenth line";
    tick(1);
    EXPECT_TRUE(aLItems[0].isHeld) << "but the first one again";

    VIEW_Event event;
    event.kind = VIEW_EVENT_SCROLLED;
    event.panel = PANEL_MAIN;
    event.control = MAIN_LIST;
    event.value = 10;
    event.extra = 25;
    VIEW_Post(event);
    EXPECT_EQ(LSV_LinesInView(), 25);
    RFR_BeginSweep();
    tick(25);
    EXPECT_TRUE(aLItems[34].isValueGood);
    EXPECT_EQ(aLItems[35].goodReads, 0u);
    EXPECT_DOUBLE_EQ(RFR_Period(), 1.0 / 25);
}

TEST_F(WatchTruth, TheSweepRateIsChosenAndKept)
{
    const struct {
        int item;
        double period;
        const char *line;
    } cases[] = {{ITEM_RATE_FIRST + 1, 1.0 / 26, "rate, 2\r\n"},
                 {ITEM_RATE_FIRST + 3, 1.0 / 130, "rate, 10\r\n"},
                 {ITEM_RATE_LAST, 0.001, "rate, fast\r\n"},
                 {ITEM_RATE_FIRST, 1.0 / 13, ""}};
    const std::filesystem::path start = std::filesystem::current_path();
    std::filesystem::current_path(folder.path);
    OpenIniFile(PANEL_MAIN); // there is none yet
    for (const auto &c : cases) {
        HL_ClickMenu(c.item);
        EXPECT_DOUBLE_EQ(RFR_Period(), c.period) << c.line;
        for (int item = ITEM_RATE_FIRST; item <= ITEM_RATE_LAST; ++item)
            EXPECT_EQ(UiItemAttribute(item, ATTR_CHECKED), item == c.item) << item;
        SaveIniFile();
        const std::string saved = ReadFileText(path("Vireo2.ini"));
        EXPECT_EQ(saved.find("rate") != std::string::npos, *c.line != '\0') << saved;
        EXPECT_TRUE(Has(saved, c.line));
        const int32_t chosen = Option_nSweepRate;
        Option_nSweepRate = 1;
        OpenIniFile(PANEL_MAIN);
        EXPECT_EQ(Option_nSweepRate, chosen);
    }
    Option_nSweepRate = 1;
    for (const char *line : {"rate, 3\n", "rate, 0\n", "rate, x\n", "rate\n"}) {
        write("Vireo2.ini", line);
        OpenIniFile(PANEL_MAIN);
        EXPECT_EQ(Option_nSweepRate, 1) << line;
    }
    std::filesystem::current_path(start);
}

TEST_F(WatchTruth, CopiesAndSnapshotsReadEveryItem)
{
    ASSERT_TRUE(connect());
    loadItems(40, "2:Other, [8000], u8\n7:Absent, [8000], u2\n");
    for (int i = 0; i < 40; ++i)
        poke(static_cast<uint32_t>(0x8000 + 2 * i), static_cast<uint64_t>(500 + i), 2);
    poke(0x8000, 0x8877665544332211, 8, 2);
    silenceOthers(1u << 1 | 1u << 2);
    HL_PushAnswer(1, path("list.csv"));
    HL_ClickMenu(ITEM_SNAPSHOT);
    const std::string csv = ReadFileText(path("list.csv"));
    EXPECT_TRUE(Has(csv, "\r\n,0x008000,u,2,500,500,ok\r\n"));
    EXPECT_TRUE(Has(csv, "\r\n,0x00804E,u,2,539,539,ok\r\n"));
    EXPECT_TRUE(
        Has(csv, "\r\n2:Other,0x008000,u,8,9833440827789222417,9833440827789222417,ok\r\n"));
    EXPECT_TRUE(Has(csv, "\r\n7:Absent,0x008000,u,2,,,no answer\r\n"));

    // Of several selected lines only those; and none of it when the user cancels.
    poke(0x8000, 77, 2);
    HL_SelectLines(PANEL_MAIN, MAIN_LIST, {0, 40});
    HL_ClickMenu(ITEM_COPY_LIST);
    EXPECT_EQ(HL_GetClipboard(), "Name\tAddress\tType\tValue\tState\n\t0x008000\tu2\t77\tok\n"
                                 "2:Other\t0x008000\tu8\t9833440827789222417\tok\n");
    const std::string before = HL_GetClipboard();
    poke(0x8000, 78, 2);
    HL_CancelProgressAt(3);
    HL_ClickMenu(ITEM_COPY_LIST);
    EXPECT_EQ(HL_GetClipboard(), before);
    EXPECT_EQ(UiText(PANEL_MAIN, MAIN_MESSAGE), "Cancelled: Copy the list.");

    // Without communication every value says that it is old.
    VIR2_StopPeriodicASC();
    HL_SelectLine(PANEL_MAIN, MAIN_LIST, 0);
    HL_PushAnswer(0);
    HL_ClickMenu(ITEM_COPY_LIST);
    EXPECT_FALSE(Has(HL_GetClipboard(), "\tok\n"));
    // What the cancelled reading had begun is as it was before, like the rest.
    EXPECT_FALSE(Has(HL_GetClipboard(), "cancelled"));
    EXPECT_TRUE(Has(HL_GetClipboard(), "u2\t77\tOld: read at "));
    EXPECT_TRUE(Has(HL_GetClipboard(), "u2\t502\tOld: read at "));
}

TEST_F(WatchTruth, ASnapshotThatCannotBeWrittenSaysSo)
{
    loadItems(1);
    HL_PushAnswer(1, path("no/such/list.csv"));
    HL_ClickMenu(ITEM_SNAPSHOT);
    EXPECT_EQ(HL_GetPopups().back(),
              "Error: Could not write the file " + path("no/such/list.csv") + ".");
}

TEST_F(WatchTruth, FrequencyMeterNeverMixesTwoVariables)
{
    ASSERT_TRUE(connect());
    loadItems(2, "&[8000], u4\n");
    SetCtrlVal(PANEL_MAIN, MAIN_FM_SWITCH, 1);
    SetCtrlVal(PANEL_MAIN, MAIN_FM_SAMPLES, 5);
    poke(0x8000, 100, 2);
    poke(0x8002, 40000, 2);
    SIM_PokeTMS(target, STATION, 0x8000, 9);
    tick(3);
    poke(0x8000, 103, 2);
    tick(3);
    EXPECT_EQ(FM_dwDelta, 3u);
    for (const int other : {1, 2}) {
        HL_SelectLine(PANEL_MAIN, MAIN_LIST, other);
        tick(3);
        tick(3);
        EXPECT_EQ(FM_dwDelta, 0u) << "the step from one variable to the other is no count";
        HL_SelectLine(PANEL_MAIN, MAIN_LIST, 0);
        tick(3);
    }
    EDT_Remove(0); // the next line's variable comes into this one
    tick(3);
    EXPECT_EQ(FM_dwDelta, 0u);
    EDT_Change(0, "$8000", "u2"); // and another one is named
    tick(3);
    EXPECT_EQ(FM_dwDelta, 0u);
    HL_ClickMenu(ITEM_STATION_FIRST + 2); // and another station's
    tick(3);
    EXPECT_EQ(FM_dwDelta, 0u);
    EXPECT_EQ(FM_nPeriod, 0);
}

TEST_F(WatchTruth, ValuesAreEditedInPlaceAndShownInEitherBase)
{
    ASSERT_TRUE(connect());
    loadItems(2, "2:Far, [8000], x2\n");
    tick(3);
    HL_EditCell(PANEL_MAIN, MAIN_LIST, 2, LSV_VALUE, "1F");
    EXPECT_EQ(value(2).text, "001Fh");
    uint16_t word = 0;
    SIM_Peek(target, 2, 0x8000, &word, sizeof word);
    EXPECT_EQ(word, 0x1F);
    SIM_Peek(target, 1, 0x8000, &word, sizeof word);
    EXPECT_EQ(word, 0) << "the other station is left alone";
    HL_EditCell(PANEL_MAIN, MAIN_LIST, 0, LSV_VALUE, "70000");
    EXPECT_TRUE(Has(UiText(PANEL_MAIN, MAIN_MESSAGE), "0 to 65535"));
    HL_EditCell(PANEL_MAIN, MAIN_LIST, 0, LSV_VALUE, "010");
    EXPECT_EQ(value(0).text, "10") << "a leading zero does not make it octal";

    HL_SelectLines(PANEL_MAIN, MAIN_LIST, {0, 2});
    HL_Key(PANEL_MAIN, MAIN_LIST, KEY_F1 + 3);
    EXPECT_EQ(value(0).text, "000Ah");
    EXPECT_EQ(value(1).text, "0");
    EXPECT_EQ(value(2).text, "31");
    HL_Key(PANEL_MAIN, MAIN_LIST, KEY_DELETE);
    EXPECT_EQ(nLItems, 1);
    HL_Key(PANEL_MAIN, MAIN_LIST, KEY_CTRL | 'Z');
    EXPECT_EQ(nLItems, 3);
    EXPECT_EQ(UiText(PANEL_MAIN, MAIN_MESSAGE), "Undone: remove 2 items.");
    HL_Key(PANEL_MAIN, MAIN_LIST, KEY_CTRL | 'Y');
    EXPECT_EQ(nLItems, 1);
    EXPECT_TRUE(UiItemAttribute(ITEM_REDO, ATTR_DIMMED));
}

} // namespace
