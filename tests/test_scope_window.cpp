// Curves as the model keeps them and as they are thinned for the screen, what is measured on
// them, and the scope's window by clicks against the simulated target's scope.
#include "runtime/plot_thin.h"
#include "scope/measure.h"
#include "scope/session.h"
#include "scope/window.h"
#include "support/watch_fixture.h"

#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr double GAP = std::numeric_limits<double>::quiet_NaN();

UI_Samples Share(std::vector<double> values)
{
    return std::make_shared<const std::vector<double>>(std::move(values));
}

UI_Plot MakePlot(std::vector<double> x, std::vector<double> y)
{
    UI_Plot plot;
    plot.x = Share(std::move(x));
    plot.y = Share(std::move(y));
    return plot;
}

UI_GraphView ViewOf()
{
    UI_GraphView view;
    EXPECT_EQ(GetGraphView(PANEL_SCOPE, SCOPE_GRAPH, &view), 0);
    return view;
}

class Graph : public ProgramTest {
protected:
    Graph()
    {
        EXPECT_EQ(HL_LoadAllPanels(), 0);
    }
};

TEST_F(Graph, FitsWhatIsVisibleAndKeepsTheUsersZoom)
{
    const int first = PlotXY(PANEL_SCOPE, SCOPE_GRAPH, MakePlot({0, 1, 2}, {-10, GAP, 10}));
    const int second = PlotXY(PANEL_SCOPE, SCOPE_GRAPH, MakePlot({1, 2, 5}, {0, 0, 100}));
    ASSERT_GT(first, 0);
    ASSERT_NE(second, first);
    UI_GraphView view = ViewOf();
    EXPECT_EQ(view.x.min, 0);
    EXPECT_EQ(view.x.max, 5);
    EXPECT_NEAR(view.y[0].min, -15.5, 1e-9);
    EXPECT_NEAR(view.y[0].max, 105.5, 1e-9);
    view.hidden = {second};
    ASSERT_EQ(HL_SetGraphView(PANEL_SCOPE, SCOPE_GRAPH, view), 0);
    EXPECT_EQ(ViewOf().x.max, 2);
    view.isXFitted = view.isYFitted = false;
    view.x.min = 0.5;
    ASSERT_EQ(HL_SetGraphView(PANEL_SCOPE, SCOPE_GRAPH, view), 0);
    ASSERT_EQ(ReplacePlot(PANEL_SCOPE, SCOPE_GRAPH, first, MakePlot({7, 8}, {1, 2})), 0);
    EXPECT_EQ(ViewOf().x.min, 0.5) << "new samples do not move what the user looks at";
}

TEST_F(Graph, RefusesWhatCannotBeDrawn)
{
    EXPECT_EQ(PlotXY(PANEL_SCOPE, SCOPE_GRAPH, MakePlot({1, 2}, {1})), UIE_BAD_INDEX);
    EXPECT_EQ(PlotXY(PANEL_SCOPE, SCOPE_GRAPH, UI_Plot()), UIE_BAD_INDEX);
    EXPECT_EQ(PlotXY(PANEL_SCOPE, SCOPE_CHANNELS, MakePlot({1}, {1})), UIE_BAD_TYPE);
    EXPECT_EQ(DeleteGraphPlot(PANEL_SCOPE, SCOPE_GRAPH, 5), UIE_BAD_INDEX);
    for (int i = 0; i < GRAPH_PLOTS_MAX; ++i)
        ASSERT_GT(PlotXY(PANEL_SCOPE, SCOPE_GRAPH, MakePlot({1}, {1})), 0);
    EXPECT_EQ(PlotXY(PANEL_SCOPE, SCOPE_GRAPH, MakePlot({1}, {1})), UIE_BAD_INDEX);
    UI_GraphView view = ViewOf();
    EXPECT_LT(view.y[0].min, 1) << "a flat curve has room around it";
    EXPECT_GT(view.y[0].max, 1);
    view.isXFitted = view.isYFitted = false;
    for (const double limit : {view.x.max, view.x.max + 1, GAP}) {
        view.x.min = limit;
        EXPECT_EQ(SetGraphView(PANEL_SCOPE, SCOPE_GRAPH, view), UIE_BAD_INDEX) << limit;
    }
}

TEST_F(Graph, PanesHaveLimitsOfTheirOwn)
{
    UI_Plot low = MakePlot({0, 1}, {0, 10}), high = MakePlot({0, 9}, {1000, 2000});
    high.pane = 3;
    const int handle = PlotXY(PANEL_SCOPE, SCOPE_GRAPH, low);
    ASSERT_GT(PlotXY(PANEL_SCOPE, SCOPE_GRAPH, high), 0);
    EXPECT_NEAR(ViewOf().y[0].max, 2100, 1e-9) << "together they share an axis";
    UI_GraphView view = ViewOf();
    view.layout = GRAPH_STACKED;
    ASSERT_EQ(HL_SetGraphView(PANEL_SCOPE, SCOPE_GRAPH, view), 0);
    EXPECT_NEAR(ViewOf().y[0].max, 10.5, 1e-9);
    EXPECT_NEAR(ViewOf().y[3].min, 950, 1e-9);
    // Following keeps the width and the newest sample at the right, whatever else the user sets.
    view.isXFitted = false;
    view.isFollowing = true;
    view.x = {0, 4};
    ASSERT_EQ(HL_SetGraphView(PANEL_SCOPE, SCOPE_GRAPH, view), 0);
    EXPECT_EQ(ViewOf().x.min, 5);
    high.pane = 32;
    EXPECT_EQ(PlotXY(PANEL_SCOPE, SCOPE_GRAPH, high), UIE_BAD_INDEX);
    // New samples of a curve do not undo what the user does in the meantime.
    ASSERT_EQ(ReplacePlot(PANEL_SCOPE, SCOPE_GRAPH, handle, MakePlot({0, 20}, {-5, 5})), 0);
    EXPECT_EQ(ViewOf().x.min, 16);
    EXPECT_NEAR(ViewOf().y[0].min, -5.5, 1e-9);
}

TEST_F(Graph, CursorsStandOnSamples)
{
    const int handle = PlotXY(PANEL_SCOPE, SCOPE_GRAPH, MakePlot({0, 1, 3}, {5, 6, 7}));
    const struct {
        double x;
        int index;
    } cases[] = {{-9, 0}, {0.4, 0}, {0.6, 1}, {1.9, 1}, {2.1, 2}, {99, 2}};
    for (const auto &c : cases) {
        UI_GraphView view = ViewOf();
        view.cursors[1].isShown = true;
        view.cursors[1].plot = handle;
        view.cursors[1].x = c.x;
        ASSERT_EQ(HL_SetGraphView(PANEL_SCOPE, SCOPE_GRAPH, view), 0);
        const UI_Cursor cursor = ViewOf().cursors[1];
        EXPECT_EQ(cursor.index, c.index) << c.x;
        EXPECT_EQ(cursor.y, 5 + c.index);
    }
    ASSERT_EQ(DeleteGraphPlot(PANEL_SCOPE, SCOPE_GRAPH, 0), 0);
    EXPECT_FALSE(ViewOf().cursors[1].isShown);
}

TEST(PlotThin, ColumnsHoldEveryExtreme)
{
    constexpr size_t COUNT = 5000;
    constexpr int PIXELS = 97;
    std::mt19937 random(1);
    std::vector<double> x(COUNT), y(COUNT);
    for (size_t i = 0; i < COUNT; ++i) {
        x[i] = static_cast<double>(i);
        y[i] = random() % 50 == 0 ? GAP : static_cast<double>(random() % 100000);
    }
    const PLOT_ThinCurve curve = PLOT_MakeThinCurve(Share(x), Share(y));
    for (const auto &[from, to] : {std::pair(0.0, 4999.0),
                                   {130.5, 4711.0},
                                   {-500.0, 900.0},
                                   {4990.0, 9000.0},
                                   {6000.0, 7000.0}}) {
        std::vector<PLOT_Column> columns;
        PLOT_ThinOut(curve, from, to, PIXELS, &columns);
        size_t seen = 0;
        for (const PLOT_Column &column : columns) {
            double low = INFINITY, high = -INFINITY;
            const double left = from + (to - from) * column.pixel / PIXELS;
            const double right = from + (to - from) * (column.pixel + 1) / PIXELS;
            const bool isLast = column.pixel == PIXELS - 1;
            for (size_t i = 0; i < COUNT; ++i) {
                if (x[i] < left || x[i] > right || (x[i] == right && !isLast))
                    continue;
                ++seen;
                low = y[i] < low ? y[i] : low;
                high = y[i] > high ? y[i] : high;
            }
            EXPECT_EQ(column.low, low) << from << " pixel " << column.pixel;
            EXPECT_EQ(column.high, high) << from << " pixel " << column.pixel;
        }
        const double inside = std::min(to, 4999.0) - std::ceil(std::max(from, 0.0)) + 1;
        EXPECT_EQ(static_cast<double>(seen), std::max(0.0, inside)) << "no sample falls between";
    }
}

TEST(ScopeMeasure, ReadsWhatABenchInstrumentReads)
{
    std::vector<double> x(1001), sine(1001), pulse(1001), noisy(1001);
    for (size_t i = 0; i < x.size(); ++i) {
        x[i] = static_cast<double>(i) * 0.001;
        sine[i] = 3 + 2 * std::sin(2 * M_PI * 10 * x[i]);
        pulse[i] = i % 100 < 25 ? 5 : 1;
        noisy[i] = pulse[i] + (i % 2 ? 0.1 : -0.1);
    }
    sine[500] = GAP;
    const struct {
        const std::vector<double> *y;
        double min, max, mean, rms, period, duty;
    } cases[] = {{&sine, 1, 5, 3, std::sqrt(11), 0.1, 0.5},
                 {&pulse, 1, 5, 2, std::sqrt(7), 0.1, 0.25},
                 {&noisy, 0.9, 5.1, 2, std::sqrt(7.01), 0.1, 0.25}};
    for (const auto &c : cases) {
        const SCP_Measures m = SCP_Measure(x, *c.y, 0, 1);
        EXPECT_NEAR(m.min, c.min, 0.001);
        EXPECT_NEAR(m.max, c.max, 0.001);
        EXPECT_NEAR(m.mean, c.mean, 0.01);
        EXPECT_NEAR(m.rms, c.rms, 0.01);
        EXPECT_NEAR(m.period, c.period, 0.0005);
        EXPECT_NEAR(m.duty, c.duty, 0.01);
    }
    EXPECT_EQ(SCP_Measure(x, sine, 0.5, 0.5).count, 0u); // the gap alone
    EXPECT_EQ(SCP_Measure(x, sine, 0.1, 0.2).count, 101u);
    EXPECT_EQ(SCP_Measure(x, sine, 0.1, 0.2).period, 0) << "one swing has no second rise";
    EXPECT_EQ(SCP_Measure(x, sine, 2, 3).count, 0u);
}

TEST(ScopeSpectrum, FindsLinesBetweenTheBins)
{
    constexpr double RATE = 5000;
    for (const size_t count : {500u, 997u, 4096u}) {
        for (const double wanted : {50.0, 333.3, 1234.5}) {
            std::vector<double> samples(count);
            for (size_t i = 0; i < count; ++i)
                samples[i] = 100 + 7 * std::sin(2 * M_PI * wanted * static_cast<double>(i) / RATE);
            SCP_Spectrum spectrum;
            ASSERT_EQ(SCP_MakeSpectrum(samples, RATE, &spectrum), 0);
            EXPECT_NEAR(spectrum.peakHz, wanted, 0.6) << count;
            EXPECT_NEAR(spectrum.peak, 7, 0.3) << count << " " << wanted;
            EXPECT_EQ(spectrum.frequencies.size(), spectrum.amplitudes.size());
            samples[3] = GAP;
            EXPECT_EQ(SCP_MakeSpectrum(samples, RATE, &spectrum), -1);
        }
    }
    SCP_Spectrum still;
    ASSERT_EQ(SCP_MakeSpectrum(std::vector<double>(100, 3.0), RATE, &still), 0);
    EXPECT_NEAR(still.peak, 0, 1e-12);
}

// --- the window ------------------------------------------------------------------------------

class ScopeWindow : public WatchTest {
protected:
    const ScratchFolder current{true};

    void SetUp() override
    {
        WatchTest::SetUp();
        SX_isInitDone = 0;
        options.demo = true;
        DTSC_LoadSettings(); // none: defaults
        DTSC_Opened();
    }
    void TearDown() override
    {
        DTSC_OnQuit();
    }
    static void press(int control)
    {
        EXPECT_EQ(HL_CommitControl(PANEL_SCOPE, control), 0) << control;
    }
    static void type(int control, const std::string &text)
    {
        EXPECT_EQ(HL_SetUserVal(PANEL_SCOPE, control, text), 0) << control;
    }
    static std::string shown(int control)
    {
        return UiText(PANEL_SCOPE, control);
    }
    void find()
    {
        ASSERT_TRUE(connect());
        addSymbol("nFast", 0x8036);
        addSymbol("SCP3_rScope", 0x9100);
        type(SCOPE_ID, "SCP3_rScope");
        type(SCOPE_PLACE, "nFast");
        HL_PushAnswer(2); // the name that stands in the field
        press(SCOPE_INIT);
        ASSERT_EQ(SX_isInitDone, 1) << shown(SCOPE_MESSAGE);
    }
    // Until the run is over; false when it never ends.
    bool run()
    {
        SX_isUploadDone = 0;
        press(SCOPE_RUN);
        for (const uint32_t begin = PLT_TickMs(); PLT_TickMs() - begin < 60000;) {
            if (DTSC_TimerCB(PANEL_SCOPE, SCOPE_TIMER, EVENT_TIMER_TICK, 0) < 0)
                return false;
            if (SX_isUploadDone != 0)
                return true;
        }
        return false;
    }
};

TEST_F(ScopeWindow, RecordsBetweenRunAndCurve)
{
    find();
    EXPECT_EQ(shown(SCOPE_MESSAGE), "Scope 'SCP3_rScope'. Type: 4 channels * 500 values");
    ASSERT_EQ(HL_GetPopups().size(), 1u);
    EXPECT_TRUE(Has(HL_GetPopups()[0], "Scope ID setup: "));
    EXPECT_EQ(shown(SCOPE_RATE), "5000 Hz, 0.1 s");
    type(SCOPE_FACTOR, "0.5");
    type(SCOPE_LEVEL, "400");
    press(SCOPE_LEVEL);
    EXPECT_EQ(shown(SCOPE_MESSAGE), "Trigger level set.");
    ASSERT_TRUE(run()) << shown(SCOPE_MESSAGE);
    EXPECT_EQ(shown(SCOPE_STATE), "complete");
    std::vector<UI_Plot> plots;
    ASSERT_EQ(GetGraphPlots(PANEL_SCOPE, SCOPE_GRAPH, &plots), 0);
    ASSERT_EQ(plots.size(), 1u);
    EXPECT_EQ(plots[0].name, "nFast");
    const size_t trigger = 249;
    EXPECT_EQ((*plots[0].x)[trigger], 0);
    EXPECT_GE((*plots[0].y)[trigger], 200) << "half of the level";
    EXPECT_LT((*plots[0].y)[trigger - 1], 200);
    std::vector<UI_Cell> cells;
    ASSERT_EQ(GetListCells(PANEL_SCOPE, SCOPE_MEASURES, 0, &cells), 0);
    ASSERT_EQ(cells.size(), 9u);
    const double least = std::stod(cells[1].text), greatest = std::stod(cells[2].text);
    EXPECT_NEAR(std::stod(cells[3].text), greatest - least, 1);
    EXPECT_NEAR(std::stod(cells[6].text), 0.02, 0.001);
    EXPECT_NEAR(std::stod(cells[7].text), 50, 1) << "Hz";
    UI_GraphView view = ViewOf();
    EXPECT_EQ(view.level.value, 200);
    // Dragged, the level is told in the target's counts, the position in percent.
    view.level.value = 50;
    view.position.value = (*plots[0].x)[0] + 0.02;
    ASSERT_EQ(HL_SetGraphView(PANEL_SCOPE, SCOPE_GRAPH, view), 0);
    EXPECT_EQ(shown(SCOPE_LEVEL), "100");
    EXPECT_EQ(DTSC_GetSetup().position, 20);
}

TEST_F(ScopeWindow, WhatFailsLeavesTheLastRecording)
{
    options.delayMs = 15; // long enough for a progress box
    find();
    ASSERT_TRUE(run());
    const std::vector<double> samples = DTSC_GetCapture().traces.at(0).samples;
    const auto isKept = [&] { return DTSC_GetCapture().traces.at(0).samples == samples; };
    HL_PushAnswer(1, write("bad.csv", "; Vireo2 scope 1\r\n; rate, 5000\r\nsample,ti"));
    press(SCOPE_OPEN_DATA);
    EXPECT_TRUE(Has(HL_GetPopups().back(), "is not of a scope recording"));
    press(SCOPE_SNAP);
    while (SCP_GetState() != SCP_COMPLETE) {
    }
    HL_CancelProgressAt(1);
    press(SCOPE_UPLOAD);
    EXPECT_EQ(shown(SCOPE_MESSAGE), "Upload cancelled.");
    EXPECT_TRUE(isKept());
    options.silentAfter = 20; // the target dies in the middle
    UCM_recS.tries = 0;
    SIM_SetFaults(target, options);
    press(SCOPE_UPLOAD);
    EXPECT_EQ(shown(SCOPE_MESSAGE), "Upload error.");
    press(SCOPE_RUN);
    EXPECT_EQ(shown(SCOPE_MESSAGE), "Error: could not set channel X1.");
    EXPECT_EQ(UiAttribute(PANEL_SCOPE, SCOPE_RUN, ATTR_DIMMED), 0) << "usable";
    EXPECT_TRUE(isKept());
    // Another station has not been asked yet.
    STATION = 2;
    press(SCOPE_UPLOAD);
    EXPECT_EQ(SX_isInitDone, 0);
    EXPECT_EQ(HL_CommitControl(PANEL_SCOPE, SCOPE_UPLOAD), HL_DIMMED);
}

// As on a bench: Single stops, Normal arms again, Auto does not wait for ever.
TEST_F(ScopeWindow, ModesDecideWhatFollowsARecording)
{
    find();
    const struct {
        int mode;
        const char *level, *label;
    } cases[] = {{0, "400", "__Run"}, {1, "400", "__Stop"}, {2, "2000", "__Stop"}};
    for (const auto &c : cases) {
        type(SCOPE_LEVEL, c.level);
        press(SCOPE_LEVEL);
        ASSERT_EQ(HL_SetUserVal(PANEL_SCOPE, SCOPE_MODE, c.mode), 0);
        ASSERT_TRUE(run()) << c.mode;
        std::string label;
        GetCtrlAttribute(PANEL_SCOPE, SCOPE_RUN, ATTR_LABEL_TEXT, &label);
        EXPECT_EQ(label, c.label) << c.mode;
        if (c.mode != 0)
            press(SCOPE_RUN);
    }
    EXPECT_EQ(DTSC_GetCapture().triggerAt, 0) << "nothing had triggered the last one";
    EXPECT_EQ(shown(SCOPE_STATE), "stopped");
}

// What is edited behind a run belongs to the next one.
TEST_F(ScopeWindow, ARecordingHasTheNamesItWasRunWith)
{
    find();
    ASSERT_TRUE(run());
    addSymbol("byOther", 0x8002);
    type(SCOPE_PLACE, "byOther");
    ASSERT_EQ(HL_SetUserVal(PANEL_SCOPE, SCOPE_TYPE, SX_F4), 0);
    ASSERT_EQ(HL_SetUserVal(PANEL_SCOPE, SCOPE_SUB, 4), 0);
    press(SCOPE_SUB);
    for (const bool isAgainFound : {false, true}) {
        if (isAgainFound) {
            HL_PushAnswer(2);
            press(SCOPE_INIT);
        }
        press(SCOPE_UPLOAD);
        ASSERT_EQ(DTSC_GetCapture().traces.size(), 1u);
        EXPECT_EQ(DTSC_GetCapture().traces[0].name, "nFast");
        EXPECT_EQ(DTSC_GetCapture().traces[0].type, SX_I2);
        EXPECT_EQ(DTSC_GetCapture().rate, 5000);
    }
}

TEST_F(ScopeWindow, ComparesWithAReferenceAndShowsTheSpectrum)
{
    find();
    ASSERT_TRUE(run());
    const std::string file = path("reference.csv");
    HL_PushAnswer(1, file);
    press(SCOPE_SAVE_DATA);
    HL_PushAnswer(1, file);
    press(SCOPE_REFERENCE);
    std::vector<UI_Plot> plots;
    GetGraphPlots(PANEL_SCOPE, SCOPE_GRAPH, &plots);
    ASSERT_EQ(plots.size(), 2u);
    EXPECT_EQ(plots[1].name, "nFast (reference)");
    EXPECT_TRUE(plots[1].isDashed);
    EXPECT_EQ(*plots[1].y, *plots[0].y);
    EXPECT_EQ(plots[1].pane, plots[0].pane);
    // 50 Hz of 1000 with a third harmonic.
    ASSERT_EQ(HL_SetUserVal(PANEL_SCOPE, SCOPE_SHOWN, 0), 0);
    GetGraphPlots(PANEL_SCOPE, SCOPE_GRAPH, &plots);
    ASSERT_EQ(plots.size(), 2u);
    const auto top = std::max_element(plots[0].y->begin(), plots[0].y->end());
    EXPECT_NEAR((*plots[0].x)[static_cast<size_t>(top - plots[0].y->begin())], 50, 6);
    EXPECT_FALSE(ViewOf().level.isShown) << "a level is no frequency";
    EXPECT_EQ(ViewOf().x.max, 2500);
    // Back, the curves are in view again.
    ASSERT_EQ(HL_SetUserVal(PANEL_SCOPE, SCOPE_SHOWN, -1), 0);
    EXPECT_NEAR(ViewOf().x.max, 0.05, 0.001);
}

TEST_F(ScopeWindow, SettingsAreKeptAndBadFieldsRefused)
{
    EXPECT_EQ(DTSC_SaveSettings(), 0);
    EXPECT_FALSE(std::filesystem::exists("DtaScope.ini")) << "nothing was set";
    HL_SelectLine(PANEL_SCOPE, SCOPE_CHANNELS, 2);
    type(SCOPE_PLACE, "nSine");
    type(SCOPE_UNIT, "V");
    for (const char *bad : {"", "0", "1,5", "x", "inf"})
        type(SCOPE_FACTOR, bad);
    EXPECT_EQ(DTSC_GetSetup().channels[2].factor, 1);
    type(SCOPE_OFFSET, "-2.5");
    ASSERT_EQ(HL_SetUserVal(PANEL_SCOPE, SCOPE_SUB, 4), 0);
    ASSERT_EQ(DTSC_SaveSettings(), 0);
    HL_Reset();
    HL_LoadAllPanels();
    ASSERT_EQ(DTSC_LoadSettings(), 0);
    DTSC_Opened();
    EXPECT_EQ(DTSC_GetSetup().channels[2].offset, -2.5);
    EXPECT_EQ(DTSC_GetSetup().channels[2].unit, "V");
    EXPECT_EQ(UiValue(PANEL_SCOPE, SCOPE_SUB), 4);
    // One that cannot be read is not written over.
    std::filesystem::remove("DtaScope.ini");
    std::filesystem::create_directory("DtaScope.ini");
    EXPECT_EQ(DTSC_LoadSettings(), -1);
    EXPECT_EQ(DTSC_SaveSettings(), 0);
    EXPECT_TRUE(std::filesystem::is_directory("DtaScope.ini"));
}

} // namespace
