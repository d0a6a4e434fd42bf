// Recordings: what is written, when it reaches the disk, what a cut, a full disk or a clock that
// is set does to it, and what is read back; triggers; CSV files of other tools.
#include "sampler/record_job.h"
#include "sampler/recording.h"
#include "support/scratch.h"
#include "support/text_checks.h"

#include <cmath>
#include <csignal>
#include <sys/resource.h>

namespace {

// 21 November 2025, 10:01:14.123: the 21st in every zone but the easternmost.
int64_t utcMs = 1763719274123;

SMP_Item Item(const std::string &name, char type = 'i', int size = 2)
{
    SMP_Item item;
    item.name = name;
    item.address = 0x8002;
    item.type = type;
    item.size = size;
    return item;
}

struct Recording : testing::Test {
    const ScratchFolder folder{true};
    SMP_Store store;
    REC_Recorder recorder;
    REC_Options options;
    std::vector<SMP_Item> items = {Item("nSine"), Item("a, \"b\"", 'f', 4)};

    Recording()
    {
        utcMs = 1763719274123;
        options.path = "run.csv";
        options.utcMs = [] { return utcMs; };
    }
    ~Recording() override
    {
        REC_Close(&recorder);
    }
    int Put(int64_t timeUs, uint64_t value, bool isSecondGood = true)
    {
        const uint8_t failed = SMP_StateOf(&store, "no answer");
        const SMP_Sample row[] = {{timeUs, value, SMP_GOOD},
                                  {timeUs, 0x3DCCCCCD, isSecondGood ? SMP_GOOD : failed}};
        return REC_PutRow(&recorder, timeUs, row, store);
    }
    static std::string Rows(const std::string &path = "run.csv")
    {
        const std::string text = ReadFileText(path);
        return text.substr(text.find("time,iso"));
    }
    static REC_Recording Open(const std::string &text)
    {
        WriteFileText("open.csv", text);
        REC_Recording recording;
        std::string problem;
        EXPECT_EQ(REC_OpenRecording("open.csv", &recording, &problem), 0) << problem;
        return recording;
    }
    static REC_Curves All(const REC_Recording &recording, size_t pointsMax = 100000)
    {
        std::vector<size_t> columns;
        for (size_t i = 0; i < recording.columns.size(); ++i)
            columns.push_back(i);
        REC_Curves curves;
        EXPECT_EQ(REC_ReadCurves(recording, -1e300, 1e300, columns, pointsMax, &curves), 0);
        return curves;
    }
};

} // namespace

TEST_F(Recording, holdsHeadRowsFailuresAndNotes)
{
    ASSERT_EQ(REC_Open(&recorder, options, items, 7000000), 0);
    EXPECT_EQ(Put(7000250, 0xFFFE), 0);
    EXPECT_EQ(Put(8500000, 5, false), 0);
    EXPECT_EQ(Put(9500000, 6, false), 0);
    EXPECT_EQ(REC_PutNote(&recorder, 9600000, "marker", "door\nopen"), 0);
    utcMs += 2600;
    EXPECT_EQ(REC_Flush(&recorder, 9600000), 0);
    const std::string text = ReadFileText("run.csv"); // while it is open: a kill leaves this
    for (const char *line : {"; Vireo2 recording 1\r\n", "; start, 2025-11-21T10:01:14.123Z\r\n",
                             "; item, 1, nSine\r\n", "; type, 2, f\r\n",
                             "; address, 1, 0x008002\r\n", "; station, 1, 1\r\n"})
        EXPECT_TRUE(Has(text, line)) << line;
    std::string rows = Rows();
    EXPECT_EQ(rows.substr(0, rows.find("T")),
              "time,iso,nSine,\"a, \"\"b\"\"\"\r\n0.000250,2025-11-21");
    EXPECT_TRUE(Has(rows, ",-2,0.1\r\n"));
    EXPECT_TRUE(Has(rows, "; 1.500000, failed, a, \"b\": no answer\r\n1.500000,"));
    EXPECT_TRUE(Has(rows, ",5,\r\n2.500000,")) << "told once";
    EXPECT_TRUE(Has(rows, "; 2.600000, marker, door.open\r\n"));
    const REC_Recording read = Open(text);
    ASSERT_EQ(read.columns.size(), 2u);
    EXPECT_EQ(read.columns[1].name, "a, \"b\"");
    EXPECT_EQ(read.columns[0].type, "i2");
    EXPECT_EQ(read.notes.back().text, "door.open");
    EXPECT_DOUBLE_EQ(read.notes.back().time, 2.6);
    const REC_Curves curves = All(read);
    EXPECT_EQ(curves.values[0], (std::vector<double>{-2, 5, 6}));
    EXPECT_TRUE(std::isnan(curves.values[1][1]));
    EXPECT_EQ(REC_Open(&recorder, options, items, 0), REC_ERR_EXISTS);
}

TEST_F(Recording, aClockThatIsSetBackLeavesTheTimesInOrder)
{
    ASSERT_EQ(REC_Open(&recorder, options, items, 0), 0);
    for (int second = 1; second < 10; ++second) {
        utcMs += second == 5 ? -3600000 + 1000 : 1000;
        Put(second * 1000000, static_cast<uint64_t>(second));
        REC_Flush(&recorder, second * 1000000);
    }
    REC_Close(&recorder);
    const std::string rows = Rows();
    EXPECT_TRUE(Has(rows, "clock, the system's clock is -3600.0 s off"));
    const REC_Recording read = Open(ReadFileText("run.csv"));
    EXPECT_EQ(read.rows, 9u);
    EXPECT_EQ(read.backward, 0u);
    EXPECT_EQ(read.notes.size(), 1u);
}

TEST_F(Recording, filesFollowEachOtherBySizeTimeAndItems)
{
    options.rotateBytes = 1500;
    ASSERT_EQ(REC_Open(&recorder, options, items, 0), 0);
    std::vector<std::string> paths = {recorder.path};
    size_t rows = 0;
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(Put(i * 1000, static_cast<uint64_t>(i)), 0);
        if (recorder.path != paths.back())
            paths.push_back(recorder.path);
    }
    ASSERT_EQ(REC_ChangeItems(&recorder, {items[0]}, 100000), 0);
    paths.push_back(recorder.path);
    ASSERT_EQ(Put(100000, 100), 0);
    REC_Close(&recorder);
    EXPECT_EQ(recorder.files, paths.size());
    EXPECT_GT(paths.size(), 4u);
    double last = -1;
    for (const std::string &path : paths) { // one second: the names differ all the same
        const REC_Recording read = Open(ReadFileText(path));
        EXPECT_EQ(read.columns.size(), path == paths.back() ? 1u : 2u);
        EXPECT_GT(read.timeMin, last);
        last = read.timeMax;
        rows += read.rows;
        EXPECT_LT(ReadFileText(path).size(), 1700u);
    }
    EXPECT_EQ(rows, 101u);
    options.rotateBytes = 0;
    options.rotateMinutes = 1;
    options.path = "timed.csv";
    ASSERT_EQ(REC_Open(&recorder, options, items, 0), 0);
    const std::string first = recorder.path;
    Put(59999999, 1);
    EXPECT_EQ(recorder.path, first);
    Put(60000000, 1);
    EXPECT_NE(recorder.path, first);
}

TEST_F(Recording, aFullDiskEndsItAndKeepsWhatIsThere)
{
    ASSERT_EQ(REC_Open(&recorder, options, items, 0), 0);
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small = {4096, before.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    int result = 0, rows = 0;
    for (; rows < 1000 && result == 0; ++rows) {
        result = Put(rows * 1000, 1);
        result = result == 0 ? REC_Flush(&recorder, rows * 1000) : result;
    }
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, SIG_DFL);
    EXPECT_EQ(result, REC_ERR_WRITE);
    EXPECT_FALSE(recorder.isOpen);
    EXPECT_TRUE(Has(recorder.problem, "run.csv"));
    EXPECT_EQ(Put(0, 1), 0); // and nothing more happens
    const REC_Recording read = Open(ReadFileText("run.csv"));
    EXPECT_GE(read.rows + 2, static_cast<uint64_t>(rows));
}

TEST_F(Recording, opensUpToAnyCutAndInventsNoValue)
{
    ASSERT_EQ(REC_Open(&recorder, options, items, 0), 0);
    for (int i = 0; i < 8; ++i)
        Put(i * 1000000, static_cast<uint64_t>(1000 + i), i % 5 != 0);
    REC_Close(&recorder);
    const std::string text = ReadFileText("run.csv");
    for (size_t size = text.find("time,iso") + 30; size < text.size(); ++size) {
        const REC_Recording read = Open(text.substr(0, size));
        const REC_Curves curves = All(read);
        ASSERT_EQ(read.badLines, 0u) << size;
        ASSERT_EQ(curves.times.size(), read.rows) << size;
        for (size_t row = 0; row < curves.times.size(); ++row)
            ASSERT_EQ(curves.values[0][row], 1000 + static_cast<double>(row)) << size;
    }
}

TEST_F(Recording, filesOfOtherToolsOpen)
{
    struct Case {
        const char *what, *text;
        std::vector<double> times, first;
    };
    const double no = NAN;
    const Case cases[] = {
        {"semicolons and decimal commas",
         "Zeit [ms];U\n0;1,5\n500;-2,25\n",
         {0, 0.5},
         {1.5, -2.25}},
        {"dates",
         "date time,x\n2026-11-21 23:59:59.5,1\n2026-11-22T00:00:01,2\n",
         {0, 1.5},
         {1, 2}},
        {"zones",
         "x,Timestamp\n1,2026-11-21T10:00:00+01:00\n2,2026-11-21T09:00:02Z\n",
         {0, 2},
         {1, 2}},
        {"German dates",
         "t\tx\r\n28.02.2024 23:00:00\t1\r\n01.03.2024 00:00:00\t2\r\n",
         {0, 90000},
         {1, 2}},
        {"a clock over midnight",
         "time,x\n23:59:59,1\n00:00:01,2\n12:00:00,3\n",
         {0, 2, 43201},
         {1, 2, 3}},
        {"no names", "0.5,10\n0.75,20\n", {0.5, 0.75}, {10, 20}},
        {"comments, holes, short rows",
         "# made by hand\ntime,x,y\n1,,3\n2\nrubbish,1,2\n3,4,5,6,7\n5,\"7\",8\n",
         {1, 2, 5},
         {no, no, 7}},
        {"mark of UTF-8, no last line end", "\xEF\xBB\xBFtime,x\n1,2\n3,4", {1, 3}, {2, 4}},
        {"mark of UTF-8, no names",
         "\xEF\xBB\xBF"
         "1,2\n3,4\n",
         {1, 3},
         {2, 4}},
        {"a scope's",
         "; Vireo2 scope 1\r\n; taken, now\r\n; unit, 1, "
         "A\r\nsample,time,i\r\n0,-0.5,7\r\n1,0,8\r\n",
         {-0.5, 0},
         {7, 8}},
    };
    for (const Case &row : cases) {
        const REC_Recording read = Open(row.text);
        const REC_Curves curves = All(read);
        EXPECT_EQ(curves.times, row.times) << row.what;
        ASSERT_EQ(curves.values[0].size(), row.first.size()) << row.what;
        for (size_t i = 0; i < row.first.size(); ++i)
            EXPECT_TRUE(std::isnan(row.first[i]) ? std::isnan(curves.values[0][i])
                                                 : curves.values[0][i] == row.first[i])
                << row.what;
    }
    REC_Recording kept = Open("time,x\n1,2\n");
    std::string problem;
    for (const char *text :
         {"", "hello\n", "a,b\nc,d\n", "time\n1\n", "time,x\n", "; only\n", "\0\0\0\0,\0\n"}) {
        WriteFileText("open.csv", text);
        EXPECT_EQ(REC_OpenRecording("open.csv", &kept, &problem), REC_READ_ERR_NO_TABLE) << text;
        EXPECT_EQ(kept.rows, 1u) << "as it was";
    }
    EXPECT_EQ(REC_OpenRecording("nowhere.csv", &kept, &problem), REC_READ_ERR_OPEN);
}

TEST_F(Recording, aLargeFileIsSeenWholeAndInDetailInBoundedMemory)
{
    std::string text = "time,x,flat\n";
    constexpr int ROWS = 300000;
    for (int i = 0; i < ROWS; ++i)
        text += std::to_string(i) + "," + (i == 123457 ? "1e6" : i % 2 != 0 ? "-1" : "1") + ",5\n";
    const REC_Recording read = Open(text);
    EXPECT_EQ(read.rows, static_cast<uint64_t>(ROWS));
    EXPECT_LE(read.stretches.size(), REC_STRETCHES_MAX);
    uint64_t inPicture = 0;
    for (const REC_Stretch &stretch : read.stretches)
        inPicture += stretch.rows;
    EXPECT_EQ(inPicture, read.rows);
    REC_Curves curves;
    // A single sample in 300,000 is seen in 1,000 points, from the picture and from the file.
    for (const size_t points : {size_t{1000}, size_t{200000}}) {
        ASSERT_EQ(REC_ReadCurves(read, 0, ROWS, {0}, points, &curves), 0);
        EXPECT_TRUE(curves.isDecimated);
        EXPECT_LE(curves.times.size(), points + 2);
        EXPECT_EQ(*std::max_element(curves.values[0].begin(), curves.values[0].end()), 1e6);
        EXPECT_EQ(*std::min_element(curves.values[0].begin(), curves.values[0].end()), -1);
        EXPECT_TRUE(std::is_sorted(curves.times.begin(), curves.times.end()));
    }
    ASSERT_EQ(REC_ReadCurves(read, 123456, 123458, {0, 1}, 1000, &curves), 0);
    EXPECT_FALSE(curves.isDecimated);
    const auto at = std::find(curves.times.begin(), curves.times.end(), 123457.0);
    ASSERT_NE(at, curves.times.end());
    EXPECT_EQ(curves.values[0][static_cast<size_t>(at - curves.times.begin())], 1e6);
    EXPECT_LT(curves.times.size(), 40u);
    REC_Recording other;
    std::string problem;
    WriteFileText("large.csv", text + text.substr(12) + text.substr(12));
    EXPECT_EQ(REC_OpenRecording("large.csv", &other, &problem, [](void *, int) { return false; }),
              REC_READ_ERR_CANCELLED);
    EXPECT_TRUE(other.columns.empty());
    ASSERT_EQ(REC_OpenRecording("large.csv", &other, &problem), 0);
    EXPECT_GT(other.backward, 0u);
    WriteFileText("long.csv", "time,x\n1,2\n" + std::string(5 * REC_LINE_MAX, '7') + ",9\n3,4\n");
    ASSERT_EQ(REC_OpenRecording("long.csv", &other, &problem), 0);
    EXPECT_EQ(other.rows, 2u);
    EXPECT_EQ(other.badLines, 1u);
}

TEST(Trigger, firesWhenItsConditionBegins)
{
    struct Case {
        const char *line;
        std::vector<double> values; // NaN: the read failed
        const char *fires;          // a character a sample
    };
    const double no = NAN;
    const Case cases[] = {
        {"mark when x > 900", {901, 950, 900, 901}, "!..!"},
        {"mark when x>=900", {899, 900, no, 900, 0, 900}, ".!...!"},
        {"mark when x < 0", {1, -1, -1, 1, -1}, ".!..!"},
        {"mark when x <= 0", {1, 0}, ".!"},
        {"mark when x = 3", {3, 3, 4, 3}, "!..!"},
        {"mark when x <> 3", {3, 4, 5, 3, 9}, ".!..!"},
        {"mark when x rises 10", {11, 9, 10, 12, 9, no, 11}, "..!...!"},
        {"mark when x falls 10", {11, 9, 8, 12, 10}, ".!..!"},
        {"mark when x changes", {5, 5, 6, no, 6, 7}, "..!..!"},
        {"mark when x fails", {no, no, 1, no}, "!..!"},
        {"mark when y > 0", {5, 5}, ".."},
    };
    for (const Case &row : cases) {
        SMP_Trigger trigger;
        std::string problem, fires;
        ASSERT_EQ(SMP_ParseTrigger(row.line, &trigger, &problem), 0) << row.line << problem;
        for (const double value : row.values) {
            const int whole = std::isnan(value) ? 0 : static_cast<int>(value);
            const SMP_Sample sample = {0, static_cast<uint64_t>(whole),
                                       static_cast<uint8_t>(std::isnan(value))};
            fires += SMP_FeedTrigger(&trigger, {Item("x")}, &sample) ? '!' : '.';
        }
        EXPECT_EQ(fires, row.fires) << row.line;
    }
    SMP_Trigger trigger;
    std::string problem;
    for (const char *line :
         {"", "mark", "jump when x > 1", "mark if x > 1", "mark when x > ", "mark when x > 1 2",
          "mark when x fails 3", "mark when x >> 1", "mark when x > nan"})
        EXPECT_EQ(SMP_ParseTrigger(line, &trigger, &problem), -1) << line;
}
