// The statistics and trace windows as a user sees them, against a simulated target with
// faults: the right figures and words at once, nothing recorded while closed.
#include "comm/communication.h"
#include "comm/failures.h"
#include "comm/mr166_link.h"
#include "comm/trace.h"
#include "comm/ucm.h"
#include "diagnostics/statistics_panel.h"
#include "diagnostics/trace_panel.h"
#include "runtime/list_columns.h"
#include "support/program_state.h"

namespace {

constexpr int PORT = 63;
constexpr int OTHER_STATION = 7; // nobody there

struct DiagPanels : TargetTest {
    DiagPanels() : TargetTest(PORT)
    {
        options.stations = 1u << 1;
    }
    void SetUp() override
    {
        ASSERT_EQ(0, HL_LoadAllPanels());
        UCM_recS.tries = 0; // one try a block
        plug();
    }
    void TearDown() override
    {
        HL_ClosePanel(PANEL_TRACE);
    }
    // Opens the link with a time-out and sends `count` reads of two bytes.
    void Exchange(int count, int station = 1, uint32_t timeoutMs = PATIENT_MS)
    {
        Mr166_nTimeoutMs = timeoutMs;
        ASSERT_EQ(0, UCM_Open(PROTOCOL_MR166, PORT, 19200));
        for (int i = 0; i < count; ++i)
            Read(station);
    }
    static void Read(int station = 1)
    {
        uint8_t bytes[2];
        UCM_Read(station, 0x100, sizeof bytes, bytes);
    }
    static std::string Figure(int control)
    {
        return UiText(PANEL_STATISTICS, control);
    }
    static std::vector<std::string> Lines(int panel, int control)
    {
        std::vector<std::string> lines;
        for (const std::string &label : HL_GetLabels(panel, control))
            lines.push_back(UI_JoinColumns(label, "|"));
        return lines;
    }
    static void Record(int count, bool isGood = true)
    {
        TRC_Record record;
        record.request = "made up";
        record.result = isGood ? "answered" : "wrong station in the answer";
        record.isGood = isGood;
        for (int i = 0; i < count; ++i)
            TRC_Add(record);
    }
};

TEST_F(DiagPanels, StatisticsShowFiguresAtOnceAndReset)
{
    Exchange(3);
    Exchange(1, OTHER_STATION, HASTY_MS);
    ASSERT_EQ(0, HL_ClickMenu(ITEM_STATISTICS));
    EXPECT_EQ("3", Figure(STATISTICS_ANSWERED));
    EXPECT_EQ("1", Figure(STATISTICS_TIMEOUTS));
    EXPECT_EQ("1", Figure(STATISTICS_REPEATED));
    EXPECT_EQ("25.00 %", Figure(STATISTICS_SHARE));
    EXPECT_EQ(0u, Figure(STATISTICS_LAST).find("no answer, 20"));
    ASSERT_EQ(1u, Lines(PANEL_STATISTICS, STATISTICS_CAUSES).size());
    EXPECT_EQ(std::vector<std::string>{"1|-1|transfer failed, every try of a block"},
              Lines(PANEL_STATISTICS, STATISTICS_COUNTERS));

    EXPECT_EQ(0, HL_FireTimer(PANEL_STATISTICS, STATISTICS_TIMER)) << "communication is off";
    Exchange(1);
    EXPECT_EQ("3", Figure(STATISTICS_ANSWERED)) << "shown by the timer only";
    ResumeTimerCallbacks();
    EXPECT_EQ(1, HL_FireTimer(PANEL_STATISTICS, STATISTICS_TIMER));
    EXPECT_EQ("4", Figure(STATISTICS_ANSWERED));
    EXPECT_NE(0u, Figure(STATISTICS_LAST).find("none")) << "a good message does not hide it";

    HL_CommitControl(PANEL_STATISTICS, STATISTICS_COPY);
    EXPECT_TRUE(Has(HL_GetClipboard(), "Messages answered\t4\n"));
    HL_CommitControl(PANEL_STATISTICS, STATISTICS_RESET);
    for (const int control : {STATISTICS_ANSWERED, STATISTICS_TIMEOUTS, STATISTICS_REPEATED})
        EXPECT_EQ("0", Figure(control));
    EXPECT_EQ("-", Figure(STATISTICS_SHARE));
    EXPECT_EQ("none", Figure(STATISTICS_LAST));
    EXPECT_TRUE(Lines(PANEL_STATISTICS, STATISTICS_CAUSES).empty());
    EXPECT_TRUE(Lines(PANEL_STATISTICS, STATISTICS_COUNTERS).empty());

    HL_ClosePanel(PANEL_STATISTICS);
    Exchange(1);
    DIA_RefreshStatistics();
    DIA_RefreshTrace();
    EXPECT_EQ("0", Figure(STATISTICS_ANSWERED)) << "nothing is done for a closed window";
}

struct FaultCase {
    const char *name;
    void (*set)(SIM_Options *options);
    int isWin32;
    int station;
    uint32_t timeoutMs;
    bool isGood;
    const char *result; // in the trace's line
    const char *advice;
};
const FaultCase FAULT_CASES[] = {
    {"good", [](SIM_Options *) {}, 1, 1, PATIENT_MS, true, "answered|station 1: read 2 bytes at",
     "Every message was answered"},
    {"silent", [](SIM_Options *) {}, 1, OTHER_STATION, HASTY_MS, false,
     "no answer (!)|station 7: ", "never an answer"},
    {"damaged", [](SIM_Options *o) { o->corrupt = 1; }, 1, 1, PATIENT_MS, false, "answer damaged (",
     "Every answer is damaged"},
    {"echo", [](SIM_Options *o) { o->echo = true; }, 1, 1, PATIENT_MS, false,
     "The line echoes what is sent: switch Win32 services off. (!)",
     "run-time driver skips the echo"},
    {"echo skipped", [](SIM_Options *o) { o->echo = true; }, 0, 1, PATIENT_MS, true,
     "answered (echo of the request seen)", "Every message was answered"}};

TEST_F(DiagPanels, EachFaultIsNamedAndExplained)
{
    for (const FaultCase &fault : FAULT_CASES) {
        SCOPED_TRACE(fault.name);
        SIM_Options faults = options;
        fault.set(&faults);
        UCM_Close();
        unplug(); // a late answer of the case before must not be taken for this one's
        target = SIMT_Start(PORT, faults);
        ASSERT_NE(nullptr, target);
        UCM_ResetStatistics();
        MrASC_UseWin32(fault.isWin32);
        HL_ClickMenu(ITEM_TRACE);
        Exchange(1, fault.station, fault.timeoutMs);
        HL_ClickMenu(ITEM_TRACE); // a window that is open is brought to the front and up to date
        HL_ClickMenu(ITEM_STATISTICS);

        const std::vector<std::string> lines = Lines(PANEL_TRACE, TRACE_LIST);
        ASSERT_GE(lines.size(), 2u); // a line that answers is proven to be in step first
        EXPECT_TRUE(Has(lines[0], "|opened|COM63 at 19200 baud"));
        EXPECT_TRUE(Has(lines.back(), fault.result));
        EXPECT_EQ(fault.isGood, lines.back().find("(!)") == std::string::npos);
        EXPECT_EQ(static_cast<int>(lines.size()) - 1, UiSelected(PANEL_TRACE, TRACE_LIST));
        EXPECT_TRUE(Has(UiText(PANEL_TRACE, TRACE_DETAIL), "\n  > 02 "));
        const std::string advice = Figure(STATISTICS_ADVICE);
        EXPECT_TRUE(Has(advice, fault.advice));
        EXPECT_FALSE(Has(advice, "\n")) << "one advice, not several: ";
        HL_ClosePanel(PANEL_TRACE);
    }
}

TEST_F(DiagPanels, NothingIsRecordedWhileClosedAndTheLastFailureIsSeen)
{
    EXPECT_FALSE(TRC_isOn);
    HL_ClickMenu(ITEM_TRACE);
    EXPECT_TRUE(TRC_isOn);
    ncom = PORT;
    VIR2_StartPeriodicASC();
    Exchange(1);
    VIR2_StopPeriodicASC(); // no timer will tick any more
    EXPECT_EQ(8u, Lines(PANEL_TRACE, TRACE_LIST).size())
        << "twice opened and closed, three probes, one read";
    HL_ClosePanel(PANEL_TRACE);
    EXPECT_FALSE(TRC_isOn);
    EXPECT_EQ(0u, TRC_Count());
    Exchange(1);
    HL_ClickMenu(ITEM_TRACE);
    EXPECT_TRUE(Lines(PANEL_TRACE, TRACE_LIST).empty());
    EXPECT_EQ(0u, UiText(PANEL_TRACE, TRACE_DETAIL).find("Nothing has gone over the line"));
    EXPECT_EQ(HL_DIMMED, HL_CommitControl(PANEL_TRACE, TRACE_COPY));
}

TEST_F(DiagPanels, ListIsBoundedFollowsTheEndAndKeepsAnOlderSelection)
{
    const int capacity = static_cast<int>(TRACE_CAPACITY);
    HL_ClickMenu(ITEM_TRACE);
    Record(capacity - 1);
    DIA_RefreshTrace();
    EXPECT_EQ(capacity - 2, UiSelected(PANEL_TRACE, TRACE_LIST));

    HL_SelectLine(PANEL_TRACE, TRACE_LIST, 100);
    const std::string detail = UiText(PANEL_TRACE, TRACE_DETAIL);
    SetCtrlAttribute(PANEL_TRACE, TRACE_LIST, ATTR_FIRST_VISIBLE_LINE, 95);
    Record(41, false);
    DIA_RefreshTrace();
    EXPECT_EQ(capacity, static_cast<int>(Lines(PANEL_TRACE, TRACE_LIST).size()));
    EXPECT_EQ(60, UiSelected(PANEL_TRACE, TRACE_LIST));
    EXPECT_EQ(55, UiAttribute(PANEL_TRACE, TRACE_LIST, ATTR_FIRST_VISIBLE_LINE));
    EXPECT_EQ(detail, UiText(PANEL_TRACE, TRACE_DETAIL));
    Record(61);
    DIA_RefreshTrace();
    EXPECT_EQ(0, UiSelected(PANEL_TRACE, TRACE_LIST))
        << "the selected exchange is gone: the oldest takes its place";
    EXPECT_NE(detail, UiText(PANEL_TRACE, TRACE_DETAIL));

    HL_Toggle(PANEL_TRACE, TRACE_FAILURES);
    EXPECT_EQ(41u, Lines(PANEL_TRACE, TRACE_LIST).size());
    HL_SelectLine(PANEL_TRACE, TRACE_LIST, 40); // the newest: follows again
    Record(1);
    Record(1, false);
    DIA_RefreshTrace();
    EXPECT_EQ(41, UiSelected(PANEL_TRACE, TRACE_LIST));
    HL_Toggle(PANEL_TRACE, TRACE_FAILURES);
    EXPECT_EQ(capacity - 1, UiSelected(PANEL_TRACE, TRACE_LIST));

    HL_CommitControl(PANEL_TRACE, TRACE_CLEAR);
    EXPECT_TRUE(Lines(PANEL_TRACE, TRACE_LIST).empty());
    Record(1, false);
    Record(1);
    DIA_RefreshTrace();
    EXPECT_EQ(1, UiSelected(PANEL_TRACE, TRACE_LIST));
    EXPECT_TRUE(Has(Lines(PANEL_TRACE, TRACE_LIST)[0], "(!)")) << "in their order again";
}

TEST_F(DiagPanels, PauseCopyAndSave)
{
    HL_ClickMenu(ITEM_TRACE);
    Exchange(1);
    HL_CommitControl(PANEL_TRACE, TRACE_PAUSE);
    std::string label;
    GetCtrlAttribute(PANEL_TRACE, TRACE_PAUSE, ATTR_LABEL_TEXT, &label);
    EXPECT_EQ("Resu__me", label);
    EXPECT_FALSE(TRC_isOn);
    Read();
    DIA_RefreshTrace();
    EXPECT_EQ(5u, Lines(PANEL_TRACE, TRACE_LIST).size());
    EXPECT_EQ(0u, UiText(PANEL_TRACE, TRACE_COUNT).find("Paused: 5 of at most 2000"));

    HL_CommitControl(PANEL_TRACE, TRACE_COPY);
    EXPECT_EQ(UiText(PANEL_TRACE, TRACE_DETAIL) + "\n", HL_GetClipboard());
    HL_CommitControl(PANEL_TRACE, TRACE_COPY_ALL);
    EXPECT_EQ(DIA_GetTraceText(), HL_GetClipboard());

    const ScratchFolder folder;
    HL_PushAnswer(1, (folder / "t.txt").string());
    HL_CommitControl(PANEL_TRACE, TRACE_SAVE);
    const std::string saved = ReadFileText(folder / "t.txt");
    EXPECT_TRUE(Has(saved, "station 1: read 2 bytes at 0x000100: answered"));
    EXPECT_TRUE(Has(saved, "\r\n  = 2 bytes: 00 00\r\n"));
    HL_PushAnswer(1, (folder / "missing/t.txt").string());
    HL_CommitControl(PANEL_TRACE, TRACE_SAVE);
    EXPECT_EQ("Error: Could not write the file " + (folder / "missing/t.txt").string() + ".",
              HL_GetPopups().back());

    HL_CommitControl(PANEL_TRACE, TRACE_PAUSE);
    Read();
    DIA_RefreshTrace();
    EXPECT_EQ(6u, Lines(PANEL_TRACE, TRACE_LIST).size());
}

TEST(Failures, ManyCausesAreCountedTogetherAtTheEnd)
{
    FAIL_Reset();
    for (size_t i = 0; i < FAIL_CAUSES_MAX + 10; ++i)
        FAIL_Note("cause " + std::to_string(i));
    EXPECT_EQ(FAIL_CAUSES_MAX, FAIL_Count());
    EXPECT_EQ(11u, FAIL_CountOf(FAIL_OTHER_CAUSES));
    FAIL_Note("cause 3");
    EXPECT_EQ("cause 3", FAIL_Last()->text);
    EXPECT_EQ(2u, FAIL_Last()->count);
    FAIL_Reset();
    EXPECT_EQ(nullptr, FAIL_Last());
}

} // namespace
