// Windows that look into a target, and the simulated one, as a user meets them.
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>

#include "app/main_panel.h"
#include "app/options.h"
#include "gui/gui_support.h"
#include "settings/settings.h"
#include "simulator/target.h"

namespace {

class InspectWindows : public GuiProgramTest {
protected:
    static void open(void (*openWindow)(), int panel)
    {
        onProgram(openWindow);
        ASSERT_TRUE(waitFor([panel] {
            const PanelWindow *window = GuiWindow(panel);
            return window && window->isVisible();
        }));
        ASSERT_TRUE(settle());
    }
    static void enter(int panel, int control, const QString &text)
    {
        auto *field = GuiWidget<QLineEdit>(panel, control);
        field->setText(text); // not typed: nothing is offered
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

TEST_F(InspectWindows, DebuggerFollowsACallWithTheKeyboard)
{
    switchOn();
    open([] { WindowCB(0, ITEM_DEBUGGER); }, PANEL_DEBUGGER);
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
    open([] { WindowCB(0, ITEM_SIMULATOR); }, PANEL_SIMULATOR);
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
