// The log window as a user sees it: from the simulated target, from files, and from both.
#include "logger/log_window.h"

#include "logger/dlld_record.h"
#include "logger/log_window_lines.h"
#include "runtime/list_columns.h"
#include "support/log_target.h"

namespace {

constexpr int PANEL = PANEL_DATA_LOG;

uint32_t Stamp(int month, int day, int hour)
{
    return DLLD_MakeStamp({2015, month, day, hour, 0, 0, DTTM_DECODED});
}

struct LogWindow : LogRig {
    void SetUp() override
    {
        LogRig::SetUp();
        ASSERT_EQ(HL_ClickMenu(ITEM_DATA_LOG), 0);
        if (IsComparing())
            HL_CommitControl(PANEL, LOG_COMPARE);
        PutRecIds(1, {{0x20, "Drive;speed:i2 rpm"}});
    }
    void TearDown() override
    {
        // What the window keeps outlives a test: it is left with an empty log.
        if (IsComparing())
            HL_CommitControl(PANEL, LOG_COMPARE);
        WriteLog("empty.bin", LogBuilder().Finish(20));
        LOGV_ShowFile("empty.bin");
    }
    static bool IsComparing()
    {
        return UiText(PANEL, LOG_STATE).find(" (other)") != std::string::npos;
    }
    static LogBuilder Sample()
    {
        return LogBuilder()
            .Text("Beta", Stamp(7, 1, 12))
            .Add(1, {1, 2, 3}, Stamp(7, 1, 11))
            .Add(0x20, {1500}, Stamp(1, 2, 3))
            .Text("alpha", Stamp(10, 25, 1));
    }
    static void WriteLog(const char *path, const DLLD_Log &log)
    {
        const std::vector<uint8_t> bytes = LogBytes(log);
        WriteFileText(path, std::string(bytes.begin(), bytes.end()));
    }
    void Open(const char *path, const DLLD_Log &log)
    {
        WriteLog(path, log);
        HL_PushAnswer(1, path);
        ASSERT_EQ(HL_CommitControl(PANEL, LOG_OPEN), 0);
    }
    static std::string Lines(int list = LOG_LIST)
    {
        std::string text;
        for (const std::string &label : HL_GetLabels(PANEL, list))
            text += UI_JoinColumns(label, ",") + "\n";
        return text;
    }
    static bool StateSays(const std::string &text)
    {
        return UiText(PANEL, LOG_STATE).find(text) != std::string::npos;
    }
    static void Type(int control, const char *text)
    {
        ASSERT_EQ(HL_SetUserVal(PANEL, control, std::string(text)), 0);
    }
};

const std::string BETA = "2015-07-01 13:00:00,text,Beta\n",
                  DRIVE = "2015-01-02 03:00:00,Drive,speed = 1500 rpm\n",
                  HEX = "2015-01-02 03:00:00,20h,05DC\n",
                  JUNK = "2015-07-01 12:00:00,junk,6 words\n",
                  ALPHA = "2015-10-25 02:00:00,text,alpha\n";

} // namespace

TEST_F(LogWindow, ReadsFromTheTargetOrLeavesWhatItShows)
{
    EXPECT_EQ(HL_GetLabels(PANEL, LOG_VARIABLE), std::vector<std::string>{"_DL_log"});
    PutLog(Sample().Finish(2000, LOG_BUFFER_AT / 2));
    HL_CommitControl(PANEL, LOG_READ); // communication is off: the answer is no
    EXPECT_EQ(Lines(), "");
    HL_PushAnswer(1);
    HL_CommitControl(PANEL, LOG_READ);
    EXPECT_EQ(Lines(), BETA + DRIVE + ALPHA);
    EXPECT_TRUE(StateSays("_DL_log of station 1: 3 of 4 messages.")) << UiText(PANEL, LOG_STATE);
    EXPECT_FALSE(StateSays("descriptions"));
    HL_SelectLine(PANEL, LOG_LIST, 1);
    EXPECT_EQ(Lines(LOG_DETAIL), "Local time,2015-01-02 03:00:00\n"
                                 "Time as logged,2015-01-02 03:00:00\n"
                                 "Type,Drive (20h)\nPlace,word 21, 4 words\n"
                                 "speed,1500 rpm\nWords,EE20 BDD8 0F00 05DC\n");
    // Neither a cancelled nor a failed reading takes away what is there.
    PutLog(LogBuilder().Text("new").Finish(2000, LOG_BUFFER_AT / 2));
    const size_t popups = HL_GetPopups().size();
    HL_CancelProgressAt(2);
    HL_CommitControl(PANEL, LOG_READ);
    HL_CancelProgressAt(0);
    EXPECT_TRUE(StateSays("cancelled"));
    EXPECT_EQ(HL_GetPopups().size(), popups);
    Poke(LOG_BUFFER_AT + 8, {'x'});
    HL_CommitControl(PANEL, LOG_READ);
    EXPECT_TRUE(StateSays("could not be read"));
    EXPECT_EQ(HL_GetPopups().size(), popups + 1);
    EXPECT_EQ(Lines(), BETA + DRIVE + ALPHA);
    Poke(LOG_BUFFER_AT + 8, {'L'});
    HL_CommitControl(PANEL, LOG_READ);
    EXPECT_EQ(Lines(), "2015-03-01 10:20:30,text,new\n");
}

TEST_F(LogWindow, OpensFilesAndSaysWhatIsMissing)
{
    Open("a.bin", Sample().Finish(100));
    EXPECT_EQ(Lines(), BETA + HEX + ALPHA);
    EXPECT_TRUE(StateSays("a.bin: 3 of 4 messages.\nThe descriptions of its records"));
    const size_t popups = HL_GetPopups().size();
    DLLD_Log bad = Sample().Finish(100);
    bad[4] = 'x';
    Open("bad.bin", bad);
    LOGV_ShowFile("none.bin");
    ASSERT_EQ(HL_GetPopups().size(), popups + 3) << "each question and each message once";
    EXPECT_TRUE(Has(HL_GetPopups()[popups + 1], "bad.bin holds no log"));
    EXPECT_TRUE(Has(HL_GetPopups()[popups + 2], "Could not open the file none.bin"));
    EXPECT_EQ(Lines(), BETA + HEX + ALPHA);
    Open("known.bin", LogBuilder().Text("only text").Finish(100));
    EXPECT_FALSE(StateSays("descriptions"));
}

TEST_F(LogWindow, FiltersWhileTypingSortsAndJumps)
{
    Open("a.bin", Sample().Finish(100));
    HL_SelectLine(PANEL, LOG_LIST, 2);
    Type(LOG_FILTER, "al");
    EXPECT_EQ(Lines(), ALPHA);
    Type(LOG_FILTER, "");
    EXPECT_EQ(UiSelected(PANEL, LOG_LIST), 2) << "the message stays selected";
    Type(LOG_FROM, "2015-07");
    Type(LOG_TO, "2015-07-01"); // and all of that day
    EXPECT_EQ(Lines(), BETA);
    Type(LOG_FROM, "2015-13");
    Type(LOG_TO, "x");
    EXPECT_EQ(Lines(), BETA + HEX + ALPHA);
    EXPECT_TRUE(StateSays("'x' is no time"));
    // Types: the two collections, then those that are there.
    EXPECT_EQ(HL_GetLabels(PANEL, LOG_TYPE),
              (std::vector<std::string>{"all types but junk", "all types", "junk", "text", "20h"}));
    HL_SelectLine(PANEL, LOG_TYPE, 1);
    EXPECT_EQ(Lines(), BETA + JUNK + HEX + ALPHA);
    HL_SelectLine(PANEL, LOG_TYPE, 0);
    HL_Key(PANEL, LOG_LIST, KEY_CTRL | '2');
    HL_Key(PANEL, LOG_LIST, KEY_CTRL | '2');
    EXPECT_EQ(Lines(), ALPHA + BETA + HEX);
    HL_Key(PANEL, LOG_LIST, KEY_CTRL | '4');
    EXPECT_EQ(Lines(), HEX + ALPHA + BETA);
    Type(LOG_JUMP, "2015-07-01 13:00:01");
    HL_CommitControl(PANEL, LOG_JUMP);
    EXPECT_EQ(UiSelected(PANEL, LOG_LIST), 1);
    HL_SelectLines(PANEL, LOG_LIST, {0, 2});
    HL_Key(PANEL, LOG_LIST, KEY_CTRL | 'C');
    EXPECT_EQ(HL_GetClipboard(),
              "2015-01-02 03:00:00\t20h\t05DC\n2015-07-01 13:00:00\ttext\tBeta\n");
    HL_Toggle(PANEL, LOG_LOCAL);
    EXPECT_EQ(Lines().substr(Lines().size() - 30), "2015-07-01 12:00:00,text,Beta\n");
    HL_Toggle(PANEL, LOG_LOCAL);
    HL_PushAnswer(1, "out.csv");
    HL_CommitControl(PANEL, LOG_EXPORT);
    EXPECT_TRUE(Has(ReadFile("out.csv"), "; log a.bin\r\n; 3 of 4 messages, local time\r\n"));
}

TEST_F(LogWindow, ShowsALongLogInPages)
{
    constexpr uint32_t COUNT_OF_ALL = 2 * LOGV_PAGE_LINES + 1;
    LogBuilder log;
    for (uint32_t i = 0; i < COUNT_OF_ALL; i++)
        log.Add(0x20, {static_cast<uint16_t>(i + 1)}, STAMP_2015 + i);
    Open("long.bin", log.Finish());
    EXPECT_EQ(HL_GetLabels(PANEL, LOG_LIST).size(), size_t(LOGV_PAGE_LINES));
    EXPECT_TRUE(StateSays("10,001 of 10,001 messages. Listed: 1 to 5,000."));
    EXPECT_EQ(UiAttribute(PANEL, LOG_PREVIOUS, ATTR_DIMMED), 1);
    HL_CommitControl(PANEL, LOG_NEXT);
    HL_CommitControl(PANEL, LOG_NEXT);
    EXPECT_EQ(HL_GetLabels(PANEL, LOG_LIST).size(), 1u);
    EXPECT_EQ(UiAttribute(PANEL, LOG_NEXT, ATTR_DIMMED), 1);
    HL_SelectLine(PANEL, LOG_LIST, 0);
    EXPECT_TRUE(Has(Lines(LOG_DETAIL), "2711")); // 10,001
    HL_CommitControl(PANEL, LOG_PREVIOUS);
    EXPECT_TRUE(StateSays("Listed: 5,001 to 10,000."));
    Type(LOG_JUMP, "2015-03-01 14:13:50"); // 7,000 stamps behind the first
    HL_CommitControl(PANEL, LOG_JUMP);
    EXPECT_TRUE(StateSays("Listed: 5,001 to 10,000."));
    EXPECT_EQ(UiSelected(PANEL, LOG_LIST), 2000);
    Type(LOG_JUMP, "2016");
    HL_CommitControl(PANEL, LOG_JUMP);
    EXPECT_TRUE(StateSays("Listed: 10,001 to 10,001."));
}

TEST_F(LogWindow, ComparesWithAFile)
{
    Open("a.bin", Sample().Finish(100));
    WriteLog("b.bin",
             LogBuilder().Text("Beta", Stamp(7, 1, 12)).Text("c", Stamp(8, 1, 1)).Finish());
    HL_PushAnswer(1, "b.bin");
    HL_CommitControl(PANEL, LOG_COMPARE);
    EXPECT_EQ(Lines(), "only this," + HEX + "both," + BETA +
                           "only other,2015-08-01 02:00:00,text,c\nonly this," + ALPHA);
    EXPECT_TRUE(StateSays("4 messages, 3 of them in one only."));
    EXPECT_EQ(UiAttribute(PANEL, LOG_EXPORT, ATTR_DIMMED), 1);
    const struct {
        const char *typed;
        int line;
    } jumps[] = {{"2015-08", 2}, {"2014", 0}, {"2016", 3}}; // behind the last one: the last one
    for (const auto &jump : jumps) {
        Type(LOG_JUMP, jump.typed);
        HL_CommitControl(PANEL, LOG_JUMP);
        EXPECT_EQ(UiSelected(PANEL, LOG_LIST), jump.line) << jump.typed;
    }
    HL_CommitControl(PANEL, LOG_COMPARE); // ends it
    EXPECT_EQ(Lines(), BETA + HEX + ALPHA);
}
