// Windows that look into a target or write it, and the simulated one, as a user meets them.
#include <QAbstractItemView>
#include <QCompleter>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>

#include "app/main_panel.h"
#include "app/options.h"
#include "gui/gui_support.h"
#include "runtime/qt/plot_widget.h"
#include "settings/settings.h"
#include "simulator/target.h"
#include "watch/windows/map_loading.h"

namespace {

class InspectWindows : public GuiProgramTest {
protected:
    // A window that the menu's keys open, on an empty watch list line.
    void open(Qt::Key key, int panel)
    {
        GuiWindow(PANEL_MAIN)->activateWindow(); // whose shortcuts these are
        ASSERT_TRUE(waitFor([] { return GuiWindow(PANEL_MAIN)->isActiveWindow(); }));
        QTest::keyClick(GuiWindow(PANEL_MAIN), key, Qt::ControlModifier | Qt::ShiftModifier);
        SCOPED_TRACE(panel);
        ASSERT_TRUE(waitFor([panel] {
            const PanelWindow *window = GuiWindow(panel);
            return window && window->isVisible();
        }));
        ASSERT_TRUE(settle());
    }
    static void enter(int panel, int control, const QString &text)
    {
        auto *field = GuiWidget<QLineEdit>(panel, control);
        field->selectAll();
        QTest::keyClicks(field, text);
        ASSERT_TRUE(settle());
        if (field->completer()) // else Enter takes what it offers
            field->completer()->popup()->hide();
        QTest::keyClick(field, Qt::Key_Enter);
        ASSERT_TRUE(settle());
    }
    static bool waitFor(const std::function<bool()> &isTrue)
    {
        return QTest::qWaitFor(isTrue, PATIENCE_MS);
    }
    static QString cell(int panel, int list, int row, int column)
    {
        return GuiWidget<LineList>(panel, list)->lines()->cell(row, column).text;
    }
    void switchOn()
    {
        onProgram([] { ConnectCB(0, ITEM_CONNECT); });
        ASSERT_EQ(1, isTimer);
    }
};

TEST_F(InspectWindows, TwoArraysEachInItsWindow)
{
    switchOn();
    onProgram([] {
        std::string message;
        EXPECT_EQ(WIN_OpenTypeMap("demo.tmf", &message), 0) << message;
        SetCtrlIndex(PANEL_MAIN, MAIN_LIST, -1);
    });
    open(Qt::Key_A, PANEL_ARRAY);
    enter(PANEL_ARRAY, ARRAY_PLACE, "afCurve");
    open(Qt::Key_A, PANEL_ARRAY_MORE);
    enter(PANEL_ARRAY_MORE, ARRAY_PLACE, "$8140, u2, 2, 3, 2");
    EXPECT_EQ(GuiWindow(PANEL_ARRAY)->windowTitle(), "Array afCurve");
    ASSERT_TRUE(waitFor([] { return cell(PANEL_ARRAY_MORE, ARRAY_LIST, 1, 2) == "9"; }));
    EXPECT_EQ(cell(PANEL_ARRAY, ARRAY_LIST, 3, 1), "0.75");
    auto *slice = GuiWidget<QLineEdit>(PANEL_ARRAY_MORE, ARRAY_SLICE);
    EXPECT_TRUE(slice->isVisible());
    EXPECT_FALSE(GuiWidget<QLineEdit>(PANEL_ARRAY, ARRAY_SLICE)->isVisible());
    QTest::keyClick(slice, Qt::Key_Up);
    ASSERT_TRUE(waitFor([] { return cell(PANEL_ARRAY_MORE, ARRAY_LIST, 0, 1) == "36"; }));
    QTest::mouseClick(GuiWidget<QPushButton>(PANEL_ARRAY_MORE, ARRAY_CURVE), Qt::LeftButton);
    auto *plot = GuiWidget<PlotWidget>(PANEL_ARRAY_MORE, ARRAY_GRAPH);
    ASSERT_TRUE(waitFor([=] { return plot->plottableCount() == 2; }));
    EXPECT_EQ(GuiWidget<PlotWidget>(PANEL_ARRAY, ARRAY_GRAPH)->plottableCount(), 0);
    GuiWindow(PANEL_ARRAY)->close();
    ASSERT_TRUE(waitFor([] { return !GuiWindow(PANEL_ARRAY)->isVisible(); }));
    EXPECT_TRUE(GuiWindow(PANEL_ARRAY_MORE)->isVisible());
}

TEST_F(InspectWindows, DebuggerFollowsACallWithTheKeyboard)
{
    switchOn();
    open(Qt::Key_D, PANEL_DEBUGGER);
    enter(PANEL_DEBUGGER, DEBUG_PLACE, "$21000");
    auto *code = GuiWidget<LineList>(PANEL_DEBUGGER, DEBUG_CODE);
    ASSERT_TRUE(waitFor([=] { return code->lines()->rowCount() == 100; }));
    code->setFocus();
    for (int i = 0; i < 4; i++)
        QTest::keyClick(code, Qt::Key_Down);
    ASSERT_TRUE(settle());
    QTest::keyClick(code, Qt::Key_Right);
    ASSERT_TRUE(waitFor([] { return cell(PANEL_DEBUGGER, DEBUG_CODE, 0, 0) == "021020"; }));
    QTest::keyClick(code, Qt::Key_Left);
    ASSERT_TRUE(waitFor([] { return cell(PANEL_DEBUGGER, DEBUG_CODE, 0, 0) == "021000"; }));
    ASSERT_TRUE(settle());
    EXPECT_EQ(code->currentRow(), 4);
}

TEST_F(InspectWindows, SimulatedTargetIsSpoiledByASlider)
{
    onProgram([] { WindowCB(0, ITEM_SIMULATOR); });
    ASSERT_TRUE(waitFor([] { return GuiWindow(PANEL_SIMULATOR)->isVisible(); }));
    auto *connectButton = GuiWidget<QPushButton>(PANEL_SIMULATOR, SIMUL_CONNECT);
    QTest::mouseClick(connectButton, Qt::LeftButton);
    ASSERT_TRUE(waitFor([] { return GuiText(PANEL_MAIN, MAIN_STATE).contains("SIMULATED"); }))
        << GuiText(PANEL_SIMULATOR, SIMUL_MESSAGE).toStdString();
    auto *log = GuiWidget<LineList>(PANEL_SIMULATOR, SIMUL_LOG);
    ASSERT_TRUE(waitFor([=] { return log->lines()->rowCount() > 20; }));
    auto *slider = GuiWidget<QSlider>(PANEL_SIMULATOR, SIMUL_DROP);
    slider->setFocus();
    QTest::keyClick(slider, Qt::Key_End);
    ASSERT_TRUE(waitFor([] { return GuiText(PANEL_SIMULATOR, SIMUL_DROP_TEXT) == "100 %"; }));
    ASSERT_TRUE(waitFor([=] { return log->lines()->cell(0, 3).text == "dropped"; }));
    QTest::mouseClick(GuiWidget<QPushButton>(PANEL_SIMULATOR, SIMUL_NO_FAULTS), Qt::LeftButton);
    ASSERT_TRUE(waitFor([=] { return slider->value() == 0; }));
    QTest::mouseClick(connectButton, Qt::LeftButton);
    ASSERT_TRUE(waitFor([] { return !GuiText(PANEL_MAIN, MAIN_STATE).contains("SIMULATED"); }));
    onProgram([] { TGT_Stop(); });
}

} // namespace
