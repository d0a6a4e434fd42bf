// Graphs: what is drawn and measured of long histories against every sample looked at, settings,
// and the window by clicks against the simulated target.
#include "graphs/window.h"
#include "support/watch_fixture.h"
#include "watch/list/list_view.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <random>

namespace {

constexpr double GAP = std::numeric_limits<double>::quiet_NaN();
constexpr int64_t ORIGIN_US = 5000000;

// --- histories --------------------------------------------------------------------------------

struct History {
    SMP_Store store;
    GRH_Index index;
    std::vector<double> times, values; // what is to come out
    std::mt19937 random{7};

    explicit History(size_t samplesMax)
    {
        SMP_Item item;
        item.name = "nSine";
        item.address = 0x8000;
        SST_SetItems(&store, {item}, samplesMax);
    }
    // Ten milliseconds apart; one of 40 fails.
    void add(size_t count)
    {
        const uint8_t failed = SST_StateOf(&store, "no answer");
        for (size_t i = 0; i < count; ++i) {
            const auto number = static_cast<int64_t>(times.size());
            const auto value = static_cast<int16_t>(random() % 20000 - 10000);
            SMP_Sample sample;
            sample.timeUs = ORIGIN_US + 10000 * number;
            sample.bits = static_cast<uint16_t>(value);
            sample.state = random() % 40 == 0 ? failed : SMP_GOOD;
            SST_Add(&store, 0, sample);
            times.push_back(static_cast<double>(number) / 100);
            values.push_back(sample.state == SMP_GOOD ? 0.5 * value - 3 : GAP);
        }
        GRH_Update(store, 0, &index);
    }
};

constexpr GRH_Scale SCALE = {0.5, -3};

TEST(GraphHistory, EveryColumnHasItsExtremesAndGaps)
{
    History history(3000);
    for (const size_t more : {70u, 2000u, 1500u, 4000u}) { // the ring turns over
        history.add(more);
        const double first = history.times[static_cast<size_t>(history.store.rings[0].first)];
        const double last = history.times.back();
        for (const auto &[from, to] : {std::pair(first, last), {last - 9.13, last - 2.7}}) {
            constexpr int COLUMNS = 23;
            GRH_Points points;
            GRH_Draw(history.store, 0, history.index, ORIGIN_US, from, to,
                     GRH_ColumnS(history.store, 0, ORIGIN_US, from, to, COLUMNS), 1, SCALE,
                     &points);
            const std::vector<double> &times = points.times, &values = points.values;
            ASSERT_TRUE(std::is_sorted(times.begin(), times.end()));
            ASSERT_LE(times.size(), 3 * (COLUMNS + 3u) + 46u);
            const double width = (to - from) / COLUMNS;
            for (double left = std::ceil(from / width) * width; left + width < to; left += width) {
                const auto extremes = [&](const std::vector<double> &x,
                                          const std::vector<double> &y) {
                    std::pair<double, double> both(INFINITY, -INFINITY);
                    bool hasGap = false;
                    for (size_t i = 0; i < x.size(); ++i) {
                        if (x[i] < first || std::floor(x[i] / width) != std::round(left / width))
                            continue;
                        hasGap = hasGap || std::isnan(y[i]);
                        both.first = y[i] < both.first ? y[i] : both.first;
                        both.second = y[i] > both.second ? y[i] : both.second;
                    }
                    return std::pair(both, hasGap);
                };
                ASSERT_EQ(extremes(times, values), extremes(history.times, history.values))
                    << more << " " << left;
            }
        }
    }
}

TEST(GraphHistory, MeasuresWhatEverySampleSays)
{
    History history(60000);
    history.add(50000);
    for (const auto &[from, to] : {std::pair(0.0, 499.99), {3.005, 480.0}, {10.0, 12.0}}) {
        double count = 0, sum = 0, squares = 0, low = INFINITY, high = -INFINITY, failed = 0;
        for (size_t i = 0; i < history.times.size(); ++i) {
            if (history.times[i] < from || history.times[i] > to)
                continue;
            if (std::isnan(history.values[i])) {
                failed++;
                continue;
            }
            count++;
            sum += history.values[i];
            squares += history.values[i] * history.values[i];
            low = std::min(low, history.values[i]);
            high = std::max(high, history.values[i]);
        }
        const GRH_Measures m =
            GRH_Measure(history.store, 0, history.index, ORIGIN_US, from, to, SCALE);
        EXPECT_EQ(static_cast<double>(m.count), count);
        EXPECT_EQ(static_cast<double>(m.failed), failed);
        EXPECT_EQ(m.min, low);
        EXPECT_EQ(m.max, high);
        EXPECT_NEAR(m.mean, sum / count, 1e-6);
        EXPECT_NEAR(m.rms, std::sqrt(squares / count), 1e-6);
        EXPECT_NEAR(m.deviation, std::sqrt(squares / count - sum / count * sum / count), 1e-6);
        EXPECT_EQ(m.hasShape, to - from < 100);
    }
    const std::vector<double> times = {0, 1, 2, 3, 4}, line = {5, GAP, 1, -1, -3};
    EXPECT_NEAR(GRH_MeasureCurve(times, line, 0, 4).slope, -2, 1e-12);
    // Another item in its place begins anew.
    SMP_Item other = history.store.items[0];
    other.address = 0x9000;
    SST_SetItems(&history.store, {other}, 60000);
    GRH_Update(history.store, 0, &history.index);
    EXPECT_TRUE(history.index.blocks.empty());
}

// What was drawn before is kept; the picture is the one that would be drawn from nothing.
TEST(GraphSource, ALivePictureIsTheSameAsOneDrawnAnew)
{
    for (const double width : {1.0, 37.0}) { // every sample, and columns
        GRA_Setup setup;
        setup.curves.resize(2);
        setup.curves[1].scale = SCALE;
        GRS_Source source;
        std::vector<SMP_Item> items(2);
        items[1].address = 2;
        SST_SetItems(&source.sampler.store, items, 45000); // the ring turns over
        source.indexes.resize(2);
        source.originUs = ORIGIN_US;
        std::mt19937 random(3);
        int64_t timeUs = ORIGIN_US;
        for (int picture = 0; picture < 300; ++picture) {
            timeUs += picture % 50 == 0 ? 5000000 : 0; // nothing was sampled
            for (int row = 0; row < 171; ++row, timeUs += 1000)
                for (size_t i = 0; i < 2; ++i)
                    SST_Add(&source.sampler.store, i,
                            {timeUs, random() % 1000, static_cast<uint8_t>(random() % 50 == 0)});
            for (size_t i = 0; i < 2; ++i)
                GRH_Update(source.sampler.store, i, &source.indexes[i]);
            const double last = static_cast<double>(timeUs - 1000 - ORIGIN_US) / 1e6;
            std::vector<GRH_Points> grown, anew;
            ASSERT_EQ(GRS_Draw(&source, setup, last - width, last, &grown), 0);
            if (picture % 20 != 19)
                continue;
            const GRS_Live kept = source.live;
            source.live = GRS_Live();
            ASSERT_EQ(GRS_Draw(&source, setup, last - width, last, &anew), 0);
            source.live = kept;
            for (size_t i = 0; i < 2; ++i) {
                const auto inView = [&](const GRH_Points &points) {
                    std::vector<std::pair<double, std::string>> seen;
                    for (size_t k = 0; k < points.times.size(); ++k)
                        if (points.times[k] >= last - width)
                            seen.emplace_back(points.times[k], std::to_string(points.values[k]));
                    return seen;
                };
                ASSERT_EQ(inView(grown[i]), inView(anew[i])) << picture;
                ASSERT_TRUE(std::is_sorted(grown[i].times.begin(), grown[i].times.end()));
                ASSERT_LT(grown[i].times.size(), 15000u) << "a picture's, not a history's";
            }
        }
    }
}

// --- settings -----------------------------------------------------------------------------------

class GraphWindow : public WatchTest {
protected:
    void SetUp() override
    {
        WatchTest::SetUp();
        options.demo = true;
        HL_PushAnswer(1, write("empty.graph", ""));
        GRW_FileCB(PANEL_GRAPH, STRIP_OPEN_SETUP, EVENT_COMMIT, 0);
        addSymbol("nSine", 0x8010);
        addSymbol("wRamp", 0x8012);
        addItem("nSine,i2");
        addItem("wRamp,u2");
        addItem("[8002],u2");
    }
    void TearDown() override
    {
        GRW_OnQuit();
    }
    void open(const std::vector<int> &lines)
    {
        VR_isWatchView = true;
        ResetLItemsDisplay();
        HL_SelectLines(PANEL_MAIN, MAIN_LIST, lines);
        HL_SetUserVal(PANEL_GRAPH, STRIP_PERIOD, SMP_FAST); // no wait for a clock
        ASSERT_EQ(HL_ClickMenu(ITEM_GRAPH), 0);
    }
    static void press(int control)
    {
        EXPECT_EQ(HL_CommitControl(PANEL_GRAPH, control), 0) << control;
    }
    static uint64_t samplesOf(size_t curve)
    {
        const SMP_Store &store = GRW_GetSource().sampler.store;
        return curve < store.rings.size() ? store.rings[curve].end : 0;
    }
    // Ticks until the first curve has so many more samples.
    static void sample(uint64_t count)
    {
        const uint64_t wanted = samplesOf(0) + count;
        for (int ticks = 0; ticks < 100000 && samplesOf(0) < wanted; ++ticks)
            GRW_TimerCB(PANEL_GRAPH, STRIP_TIMER, EVENT_TIMER_TICK, 0);
        ASSERT_GE(samplesOf(0), wanted);
    }
    static std::vector<UI_Plot> plots()
    {
        GRW_GraphCB(PANEL_GRAPH, STRIP_GRAPH, EVENT_VAL_CHANGED, 0);
        std::vector<UI_Plot> all;
        GetGraphPlots(PANEL_GRAPH, STRIP_GRAPH, &all);
        return all;
    }
    static UI_GraphView view()
    {
        UI_GraphView now;
        GetGraphView(PANEL_GRAPH, STRIP_GRAPH, &now);
        return now;
    }
};

TEST_F(GraphWindow, SettingsComeBackAndBadLinesAreNamed)
{
    GRA_Setup setup;
    setup.periodMs = 20;
    setup.windowS = 300;
    setup.layout = GRAPH_STACKED;
    setup.foreign = {"; mine", "later, 5"};
    for (const char *name : {"nSine", "a,\"b\"", "[0x8002]"}) {
        GRA_Curve curve;
        curve.item.name = name;
        curve.item.address = name[0] == '[' ? 0x8002 : SMP_NO_ADDRESS;
        curve.item.type = 'u';
        curve.item.station = 3;
        curve.scale = {-0.1, 7};
        curve.unit = "m,s";
        curve.pane = 2;
        setup.curves.push_back(curve);
    }
    const std::string file = path("a.graph");
    ASSERT_EQ(GRA_SaveSetup(file, setup), 0);
    const std::string text = ReadFileText(file);
    GRA_Setup loaded;
    std::vector<std::string> problems;
    ASSERT_EQ(GRA_LoadSetup(file, &loaded, &problems), 0);
    EXPECT_TRUE(problems.empty()) << problems[0];
    ASSERT_EQ(GRA_SaveSetup(file, loaded), 0);
    EXPECT_EQ(ReadFileText(file), text);
    ASSERT_EQ(loaded.curves.size(), 3u);
    EXPECT_EQ(loaded.curves[0].item.address, 0x8010u) << "found in the map";
    EXPECT_EQ(loaded.curves[1].item.address, SMP_NO_ADDRESS);
    EXPECT_EQ(loaded.curves[2].item.address, 0x8002u);
    EXPECT_EQ(loaded.curves[1].unit, "m,s");
    EXPECT_EQ(loaded.curves[1].scale.factor, -0.1);
    const char *const bad[] = {"period, -1",
                               "window, 0.5",
                               "layout, 3",
                               "curve, 2, x, u, 2, 1",
                               "curve, 1, x, q, 2, 1",
                               "curve, 1, x, u, 3, 1",
                               "unit, 1, V",
                               "scale, 1, 2",
                               "trigger",
                               "trigger, mark if x > 1"};
    for (const char *line : bad) {
        problems.clear();
        ASSERT_EQ(GRA_LoadSetup(write("b.graph", std::string(line) + "\r\n"), &loaded, &problems),
                  0);
        ASSERT_EQ(problems.size(), 1u) << line;
        EXPECT_EQ(problems[0], "line 1: " + std::string(line));
        EXPECT_TRUE(loaded.curves.empty());
    }
    problems.clear();
    write("twice.graph", "curve, 1, x, u, 2, 1\r\ncurve, 1, y, u, 2, 1\r\n");
    ASSERT_EQ(GRA_LoadSetup(path("twice.graph"), &loaded, &problems), 0);
    EXPECT_EQ(problems.size(), 1u);
    ASSERT_EQ(loaded.curves.size(), 1u);
    EXPECT_EQ(loaded.curves[0].item.name, "x");
    EXPECT_EQ(GRA_LoadSetup(path("none.graph"), &loaded, &problems), -1);
}

// --- the window
// -----------------------------------------------------------------------------------

TEST_F(GraphWindow, SelectedLinesBecomeCurves)
{
    ASSERT_TRUE(connect());
    open({0, 1});
    ASSERT_EQ(GRW_GetSetup().curves.size(), 2u);
    sample(30);
    std::vector<UI_Plot> shown = plots();
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0].name, "nSine");
    EXPECT_GE(shown[0].x->size(), 30u);
    EXPECT_TRUE(view().isFollowing);
    EXPECT_NEAR(view().x.max, shown[0].x->back(), 0.2);
    EXPECT_NEAR(view().x.max - view().x.min, 10, 1e-6);
    // One more, and those that are there go on.
    const uint64_t before = samplesOf(0);
    open({1, 2});
    ASSERT_EQ(GRW_GetSetup().curves.size(), 3u);
    EXPECT_GE(samplesOf(0), before);
    sample(5);
    EXPECT_GT(samplesOf(2), 0u);
    // Paused, the picture stands and sampling goes on.
    press(STRIP_PAUSE);
    const double right = view().x.max;
    sample(10);
    plots();
    EXPECT_EQ(view().x.max, right);
    press(STRIP_PAUSE);
    sample(5);
    plots();
    EXPECT_GT(view().x.max, right);
    // The factor of one curve; what is no number is refused.
    ASSERT_EQ(HL_EditCell(PANEL_GRAPH, STRIP_CURVES, 1, 2, "0.001"), 0);
    ASSERT_EQ(HL_EditCell(PANEL_GRAPH, STRIP_CURVES, 1, 2, "0"), 0);
    ASSERT_EQ(HL_EditCell(PANEL_GRAPH, STRIP_CURVES, 0, 4, "33"), 0);
    EXPECT_EQ(GRW_GetSetup().curves[1].scale.factor, 0.001);
    EXPECT_LT(plots()[1].high, 66);
    HL_SelectLines(PANEL_GRAPH, STRIP_CURVES, {0, 2});
    HL_Key(PANEL_GRAPH, STRIP_CURVES, KEY_DELETE);
    ASSERT_EQ(GRW_GetSetup().curves.size(), 1u);
    EXPECT_EQ(GRW_GetSetup().curves[0].item.name, "wRamp");
    sample(3);
}

TEST_F(GraphWindow, FailedSamplesAreGapsWithAReason)
{
    ASSERT_TRUE(connect());
    open({0});
    sample(10);
    failWith(0, 70);
    sample(5);
    SIM_SetErrorCode(target, 0, 0);
    sample(10);
    const std::vector<UI_Plot> shown = plots();
    const auto gaps = std::count_if(shown[0].y->begin(), shown[0].y->end(),
                                    [](double y) { return std::isnan(y); });
    EXPECT_GE(gaps, 5);
    EXPECT_GE(static_cast<long>(shown[0].y->size()), gaps + 20);
    EXPECT_EQ(GRW_GetSource().sampler.totals.failed, static_cast<uint64_t>(gaps));
    // A name that no map knows any more is sampled as failed, and comes back.
    VRN_SortByName(aVarNode, nNodes);
    const int known = nNodes;
    nNodes = 0;
    const uint64_t failed = GRW_GetSource().sampler.totals.failed;
    for (int ticks = 0; ticks < 100000 && GRW_GetSource().sampler.totals.failed == failed; ++ticks)
        GRW_TimerCB(PANEL_GRAPH, STRIP_TIMER, EVENT_TIMER_TICK, 0);
    nNodes = known;
    EXPECT_TRUE(Has(UiText(PANEL_GRAPH, STRIP_MESSAGE), "No map knows 'nSine'"));
}

TEST_F(GraphWindow, WhatIsRecordedAndExportedOpensAgain)
{
    ASSERT_TRUE(connect());
    open({0, 2});
    HL_PushAnswer(1, path("run.csv"));
    press(STRIP_RECORD);
    sample(20);
    HL_SetUserVal(PANEL_GRAPH, STRIP_TEXT, "here");
    press(STRIP_MARKER);
    sample(20);
    press(STRIP_START); // stops, and ends the recording behind what was still to be proven
    EXPECT_FALSE(GRW_GetSource().recorder.isOn);
    const std::vector<UI_Plot> live = plots();
    UI_GraphView all = view();
    all.isXFitted = true;
    all.isFollowing = false;
    HL_SetGraphView(PANEL_GRAPH, STRIP_GRAPH, all);
    HL_PushAnswer(1, path("view.csv"));
    press(STRIP_SAVE_DATA);
    for (const char *name : {"run.csv", "view.csv"}) {
        HL_PushAnswer(1, path(name));
        press(STRIP_OPEN_DATA);
        ASSERT_TRUE(GRW_GetSource().isFile) << name;
        const std::vector<UI_Plot> read = plots();
        ASSERT_EQ(read.size(), 2u);
        EXPECT_EQ(read[0].name, "nSine");
        ASSERT_GE(read[0].y->size(), 40u) << name;
        // The newest last; a column of a picture keeps only its least and greatest sample.
        EXPECT_NEAR(read[0].y->back(), live[0].y->back(), 10) << name;
        EXPECT_TRUE(view().isXFitted);
    }
    HL_PushAnswer(1, path("run.csv"));
    press(STRIP_OPEN_DATA);
    ASSERT_EQ(GRW_GetSource().markers.size(), 1u);
    EXPECT_EQ(GRW_GetSource().markers[0].text, "here");
    HL_PushAnswer(1, write("bad.csv", "hello\r\n"));
    press(STRIP_OPEN_DATA);
    EXPECT_EQ(GRW_GetSource().recording.path, path("run.csv")) << "the last one stays";
    // Curves of the watch list need communication: without it the recording keeps its names.
    VIR2_StopPeriodicASC();
    HL_PushAnswer(0);
    open({1});
    ASSERT_TRUE(GRW_GetSource().isFile);
    ASSERT_EQ(GRW_GetSetup().curves.size(), 2u);
    EXPECT_EQ(plots()[0].name, "nSine");
    VIR2_StartPeriodicASC();
    // A recorded name is sampled again at a press of Start.
    press(STRIP_START);
    sample(3);
    EXPECT_FALSE(GRW_GetSource().isFile);
}

TEST_F(GraphWindow, TriggersMarkStartAndStop)
{
    ASSERT_TRUE(connect());
    open({1});
    sample(3);
    HL_PushAnswer(1, "explode when wRamp fails"); // asked again
    HL_PushAnswer(1, "start when wRamp >= 0; mark when wRamp changes; stop when wRamp fails");
    press(STRIP_WHEN);
    HL_PushAnswer(1, path("t.csv"));
    press(STRIP_RECORD);
    EXPECT_FALSE(GRW_GetSource().recorder.file.isOpen) << "waits";
    sample(20);
    EXPECT_TRUE(GRW_GetSource().recorder.file.isOpen);
    const size_t markers = GRW_GetSource().markers.size();
    EXPECT_GT(markers, 0u);
    EXPECT_NEAR(GRW_GetSource().markers.back().time, view().x.max, 1);
    failWith(0, 70);
    sample(5);
    SIM_SetErrorCode(target, 0, 0);
    EXPECT_FALSE(GRW_GetSource().recorder.file.isOpen);
    EXPECT_TRUE(GRW_GetSource().recorder.isOn) << "waits for the next start";
    RDR_Recording recorded;
    std::string problem;
    ASSERT_EQ(RDR_Open(path("t.csv"), &recorded, &problem), 0) << problem;
    EXPECT_GT(recorded.rows, 5u);
    ASSERT_GT(recorded.notes.size(), 2u);
    EXPECT_EQ(recorded.notes.front().text, "start when wRamp >= 0");
    EXPECT_EQ(recorded.notes.back().text, "stop when wRamp fails");
    press(STRIP_RECORD);
    EXPECT_FALSE(GRW_GetSource().recorder.isOn);
    // Kept with the settings; a bad line is named.
    const std::string text = GRW_GetSetup().triggers;
    HL_PushAnswer(1, path("t.graph"));
    press(STRIP_SAVE_SETUP);
    GRA_Setup loaded;
    std::vector<std::string> problems;
    ASSERT_EQ(GRA_LoadSetup(path("t.graph"), &loaded, &problems), 0);
    EXPECT_EQ(loaded.triggers, text);
    EXPECT_TRUE(problems.empty());
}

// Without any recording of the user's. Curves come and go, and files that are full are followed
// by others.
TEST_F(GraphWindow, WhatHasLeftMemoryIsReadFromDisk)
{
    ASSERT_TRUE(connect());
    GRA_Setup setup;
    setup.periodMs = 2; // more rows than are drawn one by one would say nothing
    setup.curves.resize(1);
    setup.curves[0].item = SMP_FromWatch(aLItems[1]);
    setup.curves[0].scale = {2, 0};
    const std::string cacheFolder = path("cache");
    const auto countFiles = [&] {
        std::error_code none;
        const std::filesystem::directory_iterator files(cacheFolder, none);
        return std::distance(begin(files), end(files));
    };
    GRS_Source source;
    source.past.folder = cacheFolder;
    source.past.partBytes = 2000;
    const auto sampleUntil = [&](uint64_t rows) {
        while (source.sampler.totals.rows < rows)
            ASSERT_GE(GRS_Step(&source), 0);
    };
    ASSERT_EQ(GRS_Start(&source, setup), 0);
    sampleUntil(20);
    EXPECT_EQ(countFiles(), 0) << "a short session writes nothing";
    GRS_Stop(&source);
    source.samplesMax = 100;
    ASSERT_EQ(GRS_Start(&source, setup), 0);
    sampleUntil(400);
    EXPECT_GT(countFiles(), 1);
    double from = 0, last = 0;
    ASSERT_TRUE(GRS_GetExtent(source, &from, &last));
    std::vector<GRH_Points> curves;
    ASSERT_EQ(GRS_Draw(&source, setup, from, last, &curves), 0);
    ASSERT_EQ(curves[0].times.size(), source.sampler.totals.rows) << "none twice, none missing";
    // Where a file ends and memory begins, too.
    for (size_t i = 1; i < curves[0].times.size(); ++i)
        ASSERT_LT(curves[0].times[i - 1], curves[0].times[i]) << i;
    const auto isOdd = [](double value) { return std::fmod(value, 2) != 0; };
    EXPECT_TRUE(std::none_of(curves[0].values.begin(), curves[0].values.end(), isOdd)) << "times 2";
    // Drawn while it grows, and once more from nothing.
    sampleUntil(450);
    ASSERT_TRUE(GRS_GetExtent(source, &from, &last));
    std::vector<GRH_Points> grown, anew;
    GRS_Draw(&source, setup, last - 0.15, last, &grown);
    source.live = GRS_Live();
    GRS_Draw(&source, setup, last - 0.15, last, &anew);
    EXPECT_EQ(grown[0].times, anew[0].times);
    // What is saved holds every row, wherever it is.
    std::string problem;
    ASSERT_EQ(GRX_Save(path("all.csv"), source, setup, from, last, &problem), 0) << problem;
    RDR_Recording saved;
    ASSERT_EQ(RDR_Open(path("all.csv"), &saved, &problem), 0);
    EXPECT_EQ(saved.rows, source.sampler.totals.rows);
    std::vector<GRH_Measures> measures;
    EXPECT_EQ(GRS_Measure(&source, setup, from, last, &measures), -1) << "not all is in memory";
    EXPECT_EQ(GRS_Measure(&source, setup, last - 0.001, last, &measures), 0);
    // Another curve has no past; the first one keeps its own.
    setup.curves.resize(2);
    setup.curves[1].item = SMP_FromWatch(aLItems[2]);
    ASSERT_EQ(GRS_Start(&source, setup), 0);
    sampleUntil(700);
    ASSERT_TRUE(GRS_GetExtent(source, &from, &last));
    ASSERT_EQ(GRS_Draw(&source, setup, from, last, &curves), 0);
    EXPECT_EQ(curves[0].times.size(), source.sampler.totals.rows);
    EXPECT_LT(curves[1].times.size(), curves[0].times.size());
    // Disk is bounded: the oldest files go, with the beginning.
    sampleUntil(2000);
    EXPECT_LE(countFiles(), static_cast<long>(GPA_PARTS_MAX));
    double later = 0;
    ASSERT_TRUE(GRS_GetExtent(source, &later, &last));
    EXPECT_GT(later, from);
    GRS_Clear(&source);
    EXPECT_EQ(countFiles(), 0);
    // No disk: said once, and sampling goes on.
    source.samplesMax = 100;
    source.past.folder = write("file", "") + "/none";
    ASSERT_EQ(GRS_Start(&source, setup), 0);
    sampleUntil(150);
    EXPECT_NE(source.message.find("not kept any more"), std::string::npos) << source.message;
    source.message.clear();
    sampleUntil(200);
    EXPECT_EQ(source.message, "");
    GRS_Stop(&source);
}

} // namespace
