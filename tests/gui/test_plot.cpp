// The graph control under mouse and keys: what the user does is drawn at once and handed in.
#include "gui/gui_support.h"

#include "runtime/qt/plot_widget.h"

#include <cmath>

namespace {

UI_Plot MakePlot(int handle, const std::string &name, double offset)
{
    std::vector<double> x(1000), y(1000);
    for (size_t i = 0; i < x.size(); ++i) {
        x[i] = static_cast<double>(i);
        y[i] = offset + std::sin(x[i] / 50);
    }
    UI_Plot plot;
    plot.handle = handle;
    plot.name = name;
    plot.x = std::make_shared<const std::vector<double>>(x);
    plot.y = std::make_shared<const std::vector<double>>(y);
    return plot;
}

class Plot : public ViewTest {
protected:
    PlotWidget *plot = nullptr;

    void SetUp() override
    {
        ViewTest::SetUp();
        GuiShow(PANEL_SCOPE);
        plot = GuiWidget<PlotWidget>(PANEL_SCOPE, SCOPE_GRAPH);
        ASSERT_NE(plot, nullptr);
        VIEW_Batch batch;
        VIEW_Graph graph;
        graph.panel = PANEL_SCOPE;
        graph.control = SCOPE_GRAPH;
        graph.mask = VIEW_GRAPH_PLOTS | VIEW_GRAPH_VIEW;
        graph.plots = {MakePlot(1, "nSine", 0), MakePlot(2, "nOther", 10)};
        graph.view.x.max = 999;
        graph.view.y[0].min = -2;
        graph.view.y[0].max = 12;
        batch.graphs = {graph};
        QTV_Draw(batch);
        plot->replot();
        GuiSettle();
        guiEvents.clear();
    }
    static UI_GraphView handedIn()
    {
        const auto events = GuiEventsOf(PANEL_SCOPE, SCOPE_GRAPH, EVENT_VAL_CHANGED);
        EXPECT_FALSE(events.empty());
        return events.empty() || !events.back().view ? UI_GraphView() : *events.back().view;
    }
    QPoint center() const
    {
        return plot->axisRect()->rect().center();
    }
};

TEST_F(Plot, ZoomsWithTheWheelAndComesBack)
{
    QWheelEvent wheel(center(), plot->mapToGlobal(center()), QPoint(), QPoint(0, 120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(plot, &wheel);
    UI_GraphView view = handedIn();
    EXPECT_FALSE(view.isXFitted);
    EXPECT_GT(view.x.min, 0);
    EXPECT_LT(view.x.max, 999);
    QTest::keyClick(plot, Qt::Key_X); // locks the axis
    QTest::keyClick(plot, Qt::Key_Plus);
    EXPECT_EQ(handedIn().x.min, view.x.min);
    EXPECT_GT(handedIn().y[0].min, view.y[0].min);
    QTest::keyClick(plot, Qt::Key_X);
    QTest::keyClick(plot, Qt::Key_Home);
    view = handedIn();
    EXPECT_TRUE(view.isXFitted);
    EXPECT_EQ(view.x.min, 0);
    EXPECT_EQ(view.x.max, 999);
}

TEST_F(Plot, CursorsAndLegend)
{
    QTest::keyClick(plot, Qt::Key_1);
    const UI_Cursor cursor = handedIn().cursors[0];
    ASSERT_TRUE(cursor.isShown);
    QTest::keyClick(plot, Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(handedIn().cursors[0].index, cursor.index + 1);
    const QPoint at(static_cast<int>(plot->xAxis->coordToPixel(cursor.x + 1)), center().y());
    QTest::mousePress(plot, Qt::LeftButton, {}, at);
    QTest::mouseMove(plot, QPoint(static_cast<int>(plot->xAxis->coordToPixel(100)), at.y()));
    QTest::mouseRelease(plot, Qt::LeftButton, {}, at);
    EXPECT_NEAR(handedIn().cursors[0].x, 100, 5);
    EXPECT_EQ(handedIn().x.min, 0) << "the curves stayed where they were";
    const QRect item = plot->legend->item(1)->outerRect();
    QTest::mouseClick(plot, Qt::LeftButton, {}, item.center());
    EXPECT_EQ(handedIn().hidden, std::vector<int>{2});
    QTest::mouseClick(plot, Qt::LeftButton, {}, item.center());
    EXPECT_TRUE(handedIn().hidden.empty());
}

TEST_F(Plot, PanesAreZoomedOneByOneAndAnEmptyGraphNotAtAll)
{
    VIEW_Batch batch;
    VIEW_Graph graph;
    graph.panel = PANEL_SCOPE;
    graph.control = SCOPE_GRAPH;
    graph.mask = VIEW_GRAPH_PLOTS;
    graph.plots = {MakePlot(1, "nSine", 0), MakePlot(2, "nOther", 10)};
    graph.plots[1].pane = 1;
    batch.graphs = {graph};
    QTV_Draw(batch);
    QTest::keyClick(plot, Qt::Key_L);
    EXPECT_EQ(handedIn().layout, GRAPH_OVERLAID);
    EXPECT_EQ(plot->axisRectCount(), 1);
    QTest::keyClick(plot, Qt::Key_L);
    ASSERT_EQ(plot->axisRectCount(), 2);
    plot->replot();
    const UI_GraphView before = handedIn();
    const QRect lower = plot->axisRect(1)->rect();
    EXPECT_GT(lower.top(), plot->axisRect(0)->bottom());
    const auto turnWheel = [&] {
        QWheelEvent wheel(lower.center(), plot->mapToGlobal(lower.center()), QPoint(),
                          QPoint(0, 120), Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(plot, &wheel);
    };
    turnWheel();
    EXPECT_EQ(handedIn().y[0].max, before.y[0].max);
    EXPECT_LT(handedIn().y[1].max - handedIn().y[1].min, before.y[1].max - before.y[1].min);
    EXPECT_EQ(handedIn().x.min, before.x.min);
    graph.plots.clear();
    batch.graphs = {graph};
    QTV_Draw(batch);
    guiEvents.clear();
    turnWheel();
    QTest::keyClick(plot, Qt::Key_Plus);
    EXPECT_TRUE(GuiEventsOf(PANEL_SCOPE, SCOPE_GRAPH, EVENT_VAL_CHANGED).empty());
}

TEST_F(Plot, PicturesAreWritten)
{
    const ScratchFolder folder;
    for (const char *name : {"curves.png", "curves.pdf", "curves.svg"}) {
        const std::string path = (folder / name).string();
        ASSERT_TRUE(plot->saveTo(QString::fromStdString(path))) << name;
        EXPECT_GT(ReadFileText(path).size(), 1000u) << name;
    }
    EXPECT_FALSE(plot->saveTo(QString::fromStdString((folder / "no" / "x.png").string())));
}

} // namespace
