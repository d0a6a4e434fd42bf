// Graphs: their settings, and the window by clicks against the simulated target.
#include "comm/mr166_link.h"
#include "graphs/window.h"
#include "support/watch_fixture.h"
#include "watch/list/list_view.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <random>

namespace {

// --- settings -----------------------------------------------------------------------------------

class GraphWindow : public WatchTest {
protected:
    void SetUp() override
    {
        WatchTest::SetUp();
        options.demo = true;
        HL_PushAnswer(1, write("empty.graph", ""));
        GRA_FileCB(PANEL_GRAPH, STRIP_OPEN_SETUP, EVENT_COMMIT, 0);
        addSymbol("nSine", 0x8010);
        addSymbol("wRamp", 0x8012);
        addItem("nSine,i2");
        addItem("wRamp,u2");
        addItem("[8002],u2");
    }
    void TearDown() override
    {
        GRA_OnQuit();
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
        const SMP_Store &store = GRA_GetSource().sampler.store;
        return curve < store.rings.size() ? store.rings[curve].end : 0;
    }
    // Ticks until the first curve has so many more samples.
    static void sample(uint64_t count)
    {
        const uint64_t wanted = samplesOf(0) + count;
        for (int ticks = 0; ticks < 100000 && samplesOf(0) < wanted; ++ticks)
            GRA_TimerCB(PANEL_GRAPH, STRIP_TIMER, EVENT_TIMER_TICK, 0);
        ASSERT_GE(samplesOf(0), wanted);
    }
    static std::vector<UI_Plot> plots()
    {
        GRA_GraphCB(PANEL_GRAPH, STRIP_GRAPH, EVENT_VAL_CHANGED, 0);
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
        curve.unit = "-m,s"; // a spreadsheet would run it: it comes back without its mark
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
    EXPECT_EQ(loaded.curves[1].unit, "-m,s");
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
    ASSERT_EQ(GRA_GetSetup().curves.size(), 2u);
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
    ASSERT_EQ(GRA_GetSetup().curves.size(), 3u);
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
    EXPECT_EQ(GRA_GetSetup().curves[1].scale.factor, 0.001);
    EXPECT_LT(plots()[1].high, 66);
    HL_SelectLines(PANEL_GRAPH, STRIP_CURVES, {0, 2});
    HL_Key(PANEL_GRAPH, STRIP_CURVES, KEY_DELETE);
    ASSERT_EQ(GRA_GetSetup().curves.size(), 1u);
    EXPECT_EQ(GRA_GetSetup().curves[0].item.name, "wRamp");
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
    EXPECT_EQ(GRA_GetSource().sampler.totals.failed, static_cast<uint64_t>(gaps));
    // A name that no map knows any more is sampled as failed, and comes back.
    SYM_SortByName(aVarNode, nNodes);
    const int known = nNodes;
    nNodes = 0;
    const uint64_t failed = GRA_GetSource().sampler.totals.failed;
    for (int ticks = 0; ticks < 100000 && GRA_GetSource().sampler.totals.failed == failed; ++ticks)
        GRA_TimerCB(PANEL_GRAPH, STRIP_TIMER, EVENT_TIMER_TICK, 0);
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
    EXPECT_FALSE(GRA_GetSource().recorder.isOn);
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
        ASSERT_TRUE(GRA_GetSource().isFile) << name;
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
    ASSERT_EQ(GRA_GetSource().markers.size(), 1u);
    EXPECT_EQ(GRA_GetSource().markers[0].text, "here");
    HL_PushAnswer(1, write("bad.csv", "hello\r\n"));
    press(STRIP_OPEN_DATA);
    EXPECT_EQ(GRA_GetSource().recording.path, path("run.csv")) << "the last one stays";
    // Curves of the watch list need communication: without it the recording keeps its names.
    VIR2_StopPeriodicASC();
    HL_PushAnswer(0);
    open({1});
    ASSERT_TRUE(GRA_GetSource().isFile);
    ASSERT_EQ(GRA_GetSetup().curves.size(), 2u);
    EXPECT_EQ(plots()[0].name, "nSine");
    VIR2_StartPeriodicASC();
    // A recorded name is sampled again at a press of Start.
    press(STRIP_START);
    sample(3);
    EXPECT_FALSE(GRA_GetSource().isFile);
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
    EXPECT_FALSE(GRA_GetSource().recorder.file.isOpen) << "waits";
    sample(20);
    EXPECT_TRUE(GRA_GetSource().recorder.file.isOpen);
    const size_t markers = GRA_GetSource().markers.size();
    EXPECT_GT(markers, 0u);
    EXPECT_NEAR(GRA_GetSource().markers.back().time, view().x.max, 1);
    failWith(0, 70);
    sample(5);
    SIM_SetErrorCode(target, 0, 0);
    EXPECT_FALSE(GRA_GetSource().recorder.file.isOpen);
    EXPECT_TRUE(GRA_GetSource().recorder.isOn) << "waits for the next start";
    REC_Recording recorded;
    std::string problem;
    ASSERT_EQ(REC_OpenRecording(path("t.csv"), &recorded, &problem), 0) << problem;
    EXPECT_GT(recorded.rows, 5u);
    ASSERT_GT(recorded.notes.size(), 2u);
    EXPECT_EQ(recorded.notes.front().text, "start when wRamp >= 0");
    EXPECT_EQ(recorded.notes.back().text, "stop when wRamp fails");
    press(STRIP_RECORD);
    EXPECT_FALSE(GRA_GetSource().recorder.isOn);
    // Kept with the settings; a bad line is named.
    const std::string text = GRA_GetSetup().triggers;
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
// A source with little memory, whose past goes to files of 2,000 bytes.
class GraphPast : public GraphWindow {
protected:
    GRA_Setup setup;
    GRA_Source source;
    double from = 0, last = 0; // of what is there
    std::vector<GRA_Points> curves;

    void SetUp() override
    {
        GraphWindow::SetUp();
        Mr166_nTimeoutMs = PATIENT_MS; // a failed row would be a gap
        ASSERT_TRUE(connect());
        setup.periodMs = 2; // more rows than are drawn one by one would say nothing
        setup.curves.resize(1);
        setup.curves[0].item = SMP_FromWatch(aLItems[1]);
        setup.curves[0].scale = {2, 0};
        source.past.folder = path("cache");
        source.past.partBytes = 2000;
        source.samplesMax = 100;
    }
    void TearDown() override
    {
        GRA_StopSource(&source);
        GraphWindow::TearDown();
    }
    long countFiles()
    {
        std::error_code none;
        const std::filesystem::directory_iterator files(path("cache"), none);
        return std::distance(begin(files), end(files));
    }
    void sampleUntil(uint64_t rows)
    {
        while (source.sampler.totals.rows < rows)
            ASSERT_GE(GRA_StepSource(&source), 0);
        ASSERT_TRUE(GRA_GetSourceExtent(source, &from, &last));
    }
};

TEST_F(GraphPast, WhatHasLeftMemoryIsReadFromDisk)
{
    ASSERT_EQ(GRA_StartSource(&source, setup), 0);
    sampleUntil(20);
    EXPECT_EQ(countFiles(), 0) << "a short session writes nothing";
    sampleUntil(400);
    EXPECT_GT(countFiles(), 1);
    ASSERT_EQ(GRA_DrawSource(&source, setup, from, last, &curves), 0);
    ASSERT_EQ(curves[0].times.size(), source.sampler.totals.rows) << "none twice, none missing";
    // Where a file ends and memory begins, too.
    for (size_t i = 1; i < curves[0].times.size(); ++i)
        ASSERT_LT(curves[0].times[i - 1], curves[0].times[i]) << i;
    const auto isOdd = [](double value) { return std::fmod(value, 2) != 0; };
    EXPECT_TRUE(std::none_of(curves[0].values.begin(), curves[0].values.end(), isOdd)) << "times 2";
    // Drawn while it grows, and once more from nothing.
    sampleUntil(450);
    std::vector<GRA_Points> grown, anew;
    GRA_DrawSource(&source, setup, last - 0.15, last, &grown);
    source.live = GRA_Live();
    GRA_DrawSource(&source, setup, last - 0.15, last, &anew);
    EXPECT_EQ(grown[0].times, anew[0].times);
    // What is saved holds every row, wherever it is.
    std::string problem;
    ASSERT_EQ(GRA_SaveCsv(path("all.csv"), source, setup, from, last, &problem), 0) << problem;
    REC_Recording saved;
    ASSERT_EQ(REC_OpenRecording(path("all.csv"), &saved, &problem), 0);
    EXPECT_EQ(saved.rows, source.sampler.totals.rows);
    std::vector<GRA_Measures> measures;
    EXPECT_EQ(GRA_MeasureSource(&source, setup, from, last, &measures), -1)
        << "not all is in memory";
    EXPECT_EQ(GRA_MeasureSource(&source, setup, last - 0.001, last, &measures), 0);
}

TEST_F(GraphPast, AnotherCurveHasNoneAndTheFirstKeepsItsOwn)
{
    ASSERT_EQ(GRA_StartSource(&source, setup), 0);
    sampleUntil(300);
    setup.curves.resize(2);
    setup.curves[1].item = SMP_FromWatch(aLItems[2]);
    ASSERT_EQ(GRA_StartSource(&source, setup), 0);
    sampleUntil(600);
    ASSERT_EQ(GRA_DrawSource(&source, setup, from, last, &curves), 0);
    EXPECT_EQ(curves[0].times.size(), source.sampler.totals.rows);
    EXPECT_LT(curves[1].times.size(), curves[0].times.size());
}

TEST_F(GraphPast, TheOldestFilesGoWithTheBeginning)
{
    source.past.partBytes = 500;
    ASSERT_EQ(GRA_StartSource(&source, setup), 0);
    sampleUntil(150);
    const double first = from;
    sampleUntil(900);
    EXPECT_LE(countFiles(), static_cast<long>(GRA_PAST_PARTS_MAX));
    EXPECT_GT(from, first);
    GRA_ClearSource(&source);
    EXPECT_EQ(countFiles(), 0);
}

TEST_F(GraphPast, WithoutADiskItIsSaidOnceAndSamplingGoesOn)
{
    source.past.folder = write("file", "") + "/none";
    ASSERT_EQ(GRA_StartSource(&source, setup), 0);
    sampleUntil(150);
    EXPECT_NE(source.message.find("not kept any more"), std::string::npos) << source.message;
    source.message.clear();
    sampleUntil(200);
    EXPECT_EQ(source.message, "");
}

} // namespace
