// The graph's window as a user meets it: from the menu to curves.
#include "gui/gui_support.h"
#include "runtime/qt/plot_widget.h"

namespace {

class CurveWindows : public GuiProgramTest {
protected:
    static bool waitFor(const std::function<bool()> &isTrue)
    {
        return QTest::qWaitFor(isTrue, PATIENCE_MS);
    }
};

} // namespace

TEST_F(CurveWindows, GraphFollowsUntilItIsDragged)
{
    plug();
    QTest::keyClick(GuiWindow(PANEL_MAIN), Qt::Key_G, Qt::ControlModifier);
    GuiClickButton(GuiDialog(), "Yes");
    ASSERT_TRUE(waitFor([] { return GuiWindow(PANEL_GRAPH)->isVisible(); }));
    auto *plot = GuiWidget<PlotWidget>(PANEL_GRAPH, STRIP_GRAPH);
    const auto newest = [=] { return plot->xAxis->range().upper; };
    ASSERT_TRUE(waitFor([=] { return plot->plottableCount() == 1 && newest() > 0.3; }));
    // A turn of the wheel stays, whatever new samples come meanwhile.
    const double width = plot->xAxis->range().size();
    const QPoint center = plot->axisRect()->rect().center();
    QWheelEvent wheel(center, plot->mapToGlobal(center), QPoint(), QPoint(0, 120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(plot, &wheel);
    const double before = newest();
    ASSERT_TRUE(waitFor([=] { return newest() > before + 0.3; }));
    EXPECT_LT(plot->xAxis->range().size(), width * 0.9);
    QTest::mousePress(plot, Qt::LeftButton, {}, center);
    QTest::mouseMove(plot, center + QPoint(40, 0));
    QTest::mouseRelease(plot, Qt::LeftButton, {}, center + QPoint(40, 0));
    ASSERT_TRUE(settle());
    const double still = newest();
    QTest::qWait(300);
    EXPECT_EQ(newest(), still);
    EXPECT_FALSE(plot->view().isFollowing);
    QTest::keyClick(plot, Qt::Key_End);
    EXPECT_TRUE(waitFor([=] { return newest() > still + 0.2; }));
}
