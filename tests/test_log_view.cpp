// A log as a table: what its lines show, in which order, and which of them.
#include "logger/log_view.h"

#include "logger/dlld_record.h"
#include "support/log_builder.h"
#include "support/program_state.h"

namespace {

uint32_t Stamp(int month, int day, int hour, int minute = 0)
{
    return DLLD_MakeStamp({2015, month, day, hour, minute, 0, DTTM_DECODED});
}

struct LogView : ProgramTest {
    const ScratchFolder folder{true};
    LOGV_Log log;
    LOGV_View view;

    LogView()
    {
        DLLD_SetRecId(0, 0x20, "Drive;speed:i2 rpm;state:u2{off,Run}");
        EXPECT_EQ(LOGV_Decode(Sample().Finish(100), "sample", &log), 0);
        LOGV_Attach(&view, &log);
    }
    static LogBuilder Sample()
    {
        return LogBuilder()
            .Text("Beta, \"x\"", Stamp(7, 1, 12))
            .Add(1, {1, 2, 3}, Stamp(7, 1, 11))
            .Add(0x20, {1500, 1}, Stamp(1, 2, 3))
            .Add(0x33, {0xABCD, 0}, Stamp(7, 1, 12))
            .Raw({0x0A20, 7})
            .Text("alpha\nbeta", Stamp(10, 25, 1, 30))
            .Add(0x20, {0xFFFF, 0, 9}, Stamp(12, 31, 23));
    }
    std::string Texts()
    {
        std::string text;
        for (size_t line = 0; line < view.shown.size(); line++)
            text += LOGV_GetCell(view, line, LOGV_TEXT) + "|";
        return text;
    }
    std::string Filtered(const std::string &text, uint32_t from = 0, uint32_t to = UINT32_MAX)
    {
        LOGV_Filter filter = LOGV_MakeFilter();
        filter.text = text;
        filter.from = from;
        filter.to = to;
        LOGV_SetFilter(&view, filter);
        return Texts();
    }
};

const std::string BETA = "Beta, \"x\"|", DRIVE = "speed = 1500 rpm, state = 1 Run|",
                  HEX = "ABCD 0000|", SHORT = "too short for a time: 0A20 0007|",
                  ALPHA = "alpha beta|", LAST = "speed = -1 rpm, state = 0 off, 0009|";

} // namespace

TEST_F(LogView, LinesAndFilters)
{
    EXPECT_EQ(Texts(), BETA + DRIVE + HEX + SHORT + ALPHA + LAST);
    // As the user types, widens, and turns to something else.
    EXPECT_EQ(Filtered("b"), BETA + HEX + ALPHA);
    EXPECT_EQ(Filtered("bE"), BETA + ALPHA);
    EXPECT_EQ(Filtered("beta"), BETA + ALPHA);
    EXPECT_EQ(Filtered("beta,"), BETA);
    EXPECT_EQ(Filtered("beta"), BETA + ALPHA);
    EXPECT_EQ(Filtered("dRiVe"), DRIVE + SHORT + LAST); // by the type's name
    EXPECT_EQ(Filtered("a|s"), "");
    EXPECT_EQ(Filtered("xspeed"), ""); // texts do not run into one another
    EXPECT_EQ(Filtered("", Stamp(7, 1, 12), Stamp(10, 25, 1, 30)), BETA + HEX + ALPHA);
    EXPECT_EQ(Filtered("", Stamp(7, 1, 12) + 1, Stamp(10, 25, 1, 30) - 1), "");
    LOGV_Filter filter = LOGV_MakeFilter();
    filter.hidden[0x20] = filter.hidden[DLLD_TEXT] = true;
    filter.hidden[DLLD_JUNK] = false;
    LOGV_SetFilter(&view, filter);
    EXPECT_EQ(Texts(), "6 words|" + HEX);
    EXPECT_EQ(LOGV_GetCell(view, 0, LOGV_TYPE) + LOGV_GetCell(view, 1, LOGV_TYPE), "junk33h");
    EXPECT_EQ(LOGV_GetCell(view, 1, LOGV_PLACE), "30");
}

TEST_F(LogView, SortsAndKeepsTheOrderOfEquals)
{
    const struct {
        LOGV_Column column;
        bool isDown;
        std::string texts;
    } cases[] = {
        {LOGV_TIME, false, SHORT + DRIVE + BETA + HEX + ALPHA + LAST},
        {LOGV_TIME, true, LAST + ALPHA + BETA + HEX + DRIVE + SHORT},
        {LOGV_TYPE, false, HEX + DRIVE + SHORT + LAST + BETA + ALPHA},
        {LOGV_TEXT, false, HEX + ALPHA + BETA + LAST + DRIVE + SHORT},
        {LOGV_PLACE, true, LAST + ALPHA + SHORT + HEX + DRIVE + BETA},
        {LOGV_PLACE, false, BETA + DRIVE + HEX + SHORT + ALPHA + LAST},
    };
    for (const auto &c : cases) {
        LOGV_Sort(&view, c.column, c.isDown);
        EXPECT_EQ(Texts(), c.texts) << c.column << c.isDown;
    }
    LOGV_Sort(&view, LOGV_TIME, true);
    EXPECT_EQ(Filtered("beta"), ALPHA + BETA); // a filter keeps the order
    EXPECT_EQ(Filtered(""), LAST + ALPHA + BETA + HEX + DRIVE + SHORT);
}

TEST_F(LogView, JumpsToATime)
{
    EXPECT_EQ(LOGV_FindTime(view, 0), 3);
    EXPECT_EQ(LOGV_FindTime(view, Stamp(1, 2, 3)), 1);
    EXPECT_EQ(LOGV_FindTime(view, Stamp(1, 2, 3) + 1), 0);
    EXPECT_EQ(LOGV_FindTime(view, Stamp(7, 1, 12) + 1), 4);
    EXPECT_EQ(LOGV_FindTime(view, UINT32_MAX), 5); // behind the last one: the last one
    Filtered("nothing");
    EXPECT_EQ(LOGV_FindTime(view, 0), -1);
}

TEST_F(LogView, LocalTime)
{
    // Summer, winter, the last of summer time, and a message without a time.
    EXPECT_EQ(LOGV_GetCell(view, 0, LOGV_TIME), "2015-07-01 13:00:00");
    EXPECT_EQ(LOGV_GetCell(view, 1, LOGV_TIME), "2015-01-02 03:00:00");
    EXPECT_EQ(LOGV_GetCell(view, 4, LOGV_TIME), "2015-10-25 02:30:00");
    EXPECT_EQ(LOGV_GetCell(view, 3, LOGV_TIME), "");
    view.isLocalTime = false;
    EXPECT_EQ(LOGV_GetCell(view, 0, LOGV_TIME), "2015-07-01 12:00:00");
    const DateTime summer = {2015, 7, 1, 13, 0, 0, 0}, twice = {2015, 10, 25, 2, 30, 0, 0};
    EXPECT_EQ(LOGV_ToStamp(view, summer, false), Stamp(7, 1, 13));
    view.isLocalTime = true;
    EXPECT_EQ(LOGV_ToStamp(view, summer, false), Stamp(7, 1, 12));
    EXPECT_EQ(LOGV_ToStamp(view, twice, false), Stamp(10, 25, 1, 30));
    EXPECT_EQ(LOGV_ToStamp(view, twice, true), Stamp(10, 25, 2, 30));
}

TEST_F(LogView, LeavesAsTextAndDetails)
{
    Filtered("beta");
    EXPECT_EQ(LOGV_CopyLines(view, {1, 0}), "2015-10-25 02:30:00\ttext\talpha beta\n"
                                            "2015-07-01 13:00:00\ttext\tBeta, \"x\"\n");
    ASSERT_EQ(LOGV_SaveCsv(view, "a.csv"), 0);
    EXPECT_EQ(ReadFileText("a.csv"), "; log sample\r\n; 2 of 7 messages, local time\r\n"
                                     "time,type,text\r\n"
                                     "2015-07-01 13:00:00,\"text\",\"Beta, \"\"x\"\"\"\r\n"
                                     "2015-10-25 02:30:00,\"text\",\"alpha beta\"\r\n");
    EXPECT_EQ(LOGV_SaveCsv(view, "none/a.csv"), -1);
    log.texts.replace(log.texts.find("alpha beta"), 1, "="); // a spreadsheet's formula
    ASSERT_EQ(LOGV_SaveCsv(view, "a.csv"), 0);
    EXPECT_NE(ReadFileText("a.csv").find(",\"'=lpha beta\"\r\n"), std::string::npos);
    const auto details = [](const LOGV_Log &of, size_t row) {
        std::string text;
        for (const LOGV_Detail &detail : LOGV_GetDetails(of, of.rows[row]))
            text += detail.name + "=" + detail.value + "|";
        return text;
    };
    EXPECT_EQ(details(log, 2), "Local time=2015-01-02 03:00:00|Time as logged=2015-01-02 03:00:00|"
                               "Type=Drive (20h)|Place=word 24, 5 words|speed=1500 rpm|"
                               "state=1 Run|Words=EE20 BDD8 0F00 05DC 0001|");
    EXPECT_TRUE(Has(details(log, 4),
                    "Local time=|Time as logged=|Type=Drive (20h)|Place=word 36, 2 "
                    "words|Words=0A20 0007|"));
    LOGV_Log other;
    ASSERT_EQ(LOGV_Decode(LogBuilder().Add(0x10, {1, 0, 2, 0, 3, 0, 4, 0, 5}).Finish(), "", &other),
              0);
    EXPECT_TRUE(Has(details(other, 0), "|S=0005h(ctl,run)|t=1 s|Err=00000002h|IErr=00000003h|"
                                       "Warn=00000004h|"));
    EXPECT_EQ(LOGV_GetText(other, other.rows[0]),
              "S=0005h(ctl,run), t=1s, Err=00000002h, IErr=00000003h, Warn=00000004h");
}

TEST_F(LogView, ComparesLogs)
{
    // The other log has lost its oldest, holds a new one, another value for a zero, another
    // place for all, one text twice.
    LOGV_Log other;
    const DLLD_Log words = LogBuilder()
                               .Add(0x20, {0xFFFF, 0, 9}, Stamp(12, 31, 23), 0x55)
                               .Text("Beta, \"x\"", Stamp(7, 1, 12))
                               .Text("Beta, \"x\"", Stamp(7, 1, 12))
                               .Add(0x33, {0xABCD, 1}, Stamp(7, 1, 12))
                               .Raw({0x0B20, 7})
                               .Finish();
    ASSERT_EQ(LOGV_Decode(words, "", &other), 0);
    std::string text;
    for (const LOGV_Pair &pair : LOGV_Compare(log, other))
        text += std::to_string(pair.rowA) + ":" + std::to_string(pair.rowB) + " ";
    EXPECT_EQ(text, "4:4 2:-1 0:1 -1:2 3:-1 -1:3 5:-1 6:0 ");
    EXPECT_EQ(LOGV_Compare(log, log).size(), 6u); // all but the junk, each with itself
    LOGV_Log cut, whole;
    ASSERT_EQ(LOGV_Decode(LogBuilder().Text("ab").Finish(), "", &cut), 0);
    ASSERT_EQ(LOGV_Decode(LogBuilder().Text("abcd").Finish(), "", &whole), 0);
    EXPECT_EQ(LOGV_Compare(cut, whole).size(), 2u);
}
