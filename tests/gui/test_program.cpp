// The whole desktop program on the example project and a simulated target: what a user
// clicks and types, and what then stands on the screen.
#include <QAbstractItemView>
#include <QAction>
#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QScrollBar>
#include <QTimer>

#include "app/VR.h"
#include "gui/gui_support.h"
#include "support/sim_fixture.h"
#include "watch/list/edit.h"
#include "watch/list/litem.h"

namespace {

class ProgramTest : public GuiProgramTest {
protected:
    void clickCommunication()
    {
        QTest::mouseClick(GuiWidget(PANEL_MAIN, MAIN_COMM), Qt::LeftButton);
    }
    static std::string line(int index)
    {
        std::string label;
        GetLabelFromIndex(PANEL_MAIN, MAIN_LIST, index, &label);
        return label;
    }
    static bool waitForText(int control, const std::string &wanted)
    {
        return QTest::qWaitFor([&] { return UiText(PANEL_MAIN, control) == wanted; }, PATIENCE_MS);
    }
};

TEST_F(ProgramTest, ShowsLiveValuesAndSurvivesAnUnpluggedTarget)
{
    ASSERT_GT(nLItems, 2);
    EXPECT_EQ(UiValue(PANEL_MAIN, MAIN_COMM), 0);
    EXPECT_EQ(UiValue(PANEL_MAIN, MAIN_STOPPED), 1);
    EXPECT_EQ(UiValue(PANEL_MAIN, MAIN_LED_MAPFILE), 1);

    clickCommunication();
    ASSERT_TRUE(waitForText(MAIN_STATUS, "RUN"));
    EXPECT_EQ(UiValue(PANEL_MAIN, MAIN_STOPPED), 0);
    const std::string before = line(0);
    EXPECT_NE(before.find("wRamp\033p300l"), std::string::npos);
    EXPECT_TRUE(QTest::qWaitFor([&] { return line(0) != before; }, PATIENCE_MS));
    EXPECT_EQ(before.find("(!)"), std::string::npos);

    Option_AutoOff = 1;
    unplug();
    EXPECT_TRUE(QTest::qWaitFor([] { return isTimer == 0; }, PATIENCE_MS));
    EXPECT_EQ(UiValue(PANEL_MAIN, MAIN_COMM), 0);
    EXPECT_EQ(UiValue(PANEL_MAIN, MAIN_STOPPED), 1);

    target = SIMT_Start(PORT, SIM_Options());
    ASSERT_TRUE(target);
    clickCommunication();
    EXPECT_TRUE(waitForText(MAIN_STATUS, "RUN"));
}

TEST_F(ProgramTest, ArrowsMoveTheSelectionFromAnywhereByOne)
{
    SetCtrlIndex(PANEL_MAIN, MAIN_LIST, 1);
    const struct {
        int focus, key, selected;
    } steps[] = {{MAIN_LIST, Qt::Key_Down, 2},
                 {MAIN_LIST, Qt::Key_Up, 1},
                 {MAIN_COMM, Qt::Key_Down, 2},
                 {MAIN_MEM_ADDR, Qt::Key_Down, 3},
                 {MAIN_COMM, Qt::Key_Up, 2}};
    for (const auto &step : steps) {
        SetActiveCtrl(PANEL_MAIN, step.focus);
        QTest::keyClick(GuiWidget(PANEL_MAIN, step.focus), Qt::Key(step.key));
        EXPECT_EQ(UiSelected(PANEL_MAIN, MAIN_LIST), step.selected) << step.focus;
    }
}

TEST_F(ProgramTest, ConsoleTakesLinesAndRemembersThem)
{
    QTest::keyClick(GuiWindow(PANEL_MAIN), Qt::Key_K, Qt::ControlModifier);
    auto *input = GuiWidget<QLineEdit>(PANEL_CONSOLE, CONSOLE_INPUT);
    ASSERT_TRUE(input->isVisible());
    EXPECT_EQ(GetActiveCtrl(PANEL_CONSOLE), CONSOLE_INPUT);
    QTest::keyClicks(input, "station 2");
    QTest::keyClick(input, Qt::Key_Return);
    EXPECT_EQ(STATION, 2);
    EXPECT_EQ(input->text(), "");
    const std::string shown = UiText(PANEL_CONSOLE, CONSOLE_BOX);
    const std::string answer = "station 2 -> OK!";
    EXPECT_EQ(shown.find(answer), shown.rfind(answer)) << "Enter counts once";
    EXPECT_NE(shown.find(answer), std::string::npos);
    QTest::keyClick(input, Qt::Key_Down);
    EXPECT_EQ(input->text(), "station 2");
    QTest::keyClick(input, Qt::Key_Escape);
    EXPECT_EQ(input->text(), "");
    QTest::keyClick(GuiWindow(PANEL_MAIN), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(input->isVisible());
    EXPECT_EQ(GuiWindow(PANEL_MAIN)->size(), QSize(780, 491));
}

TEST_F(ProgramTest, ScrolledLinesAreReadAndTheListIsSavedAndReopened)
{
    clickCommunication();
    ASSERT_TRUE(waitForText(MAIN_STATUS, "RUN"));
    const int last = nLItems - 1;
    EXPECT_FALSE(aLItems[last].isValueGood) << "out of sight";
    auto *list = GuiWidget<QAbstractItemView>(PANEL_MAIN, MAIN_LIST);
    list->verticalScrollBar()->setValue(list->verticalScrollBar()->maximum());
    EXPECT_TRUE(QTest::qWaitFor([last] { return aLItems[last].isValueGood; }, PATIENCE_MS));

    GuiAnswerNext([](QWidget *popup) {
        popup->findChild<QLineEdit *>("fileNameEdit")->setText("copy.dbg");
        static_cast<QDialog *>(popup)->accept();
    });
    QTest::keyClick(GuiWindow(PANEL_MAIN), Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(QFile::exists("copy.dbg"));
    EXPECT_NE(szDebugFileName.find("copy.dbg"), std::string::npos);
    GuiShow(PANEL_MAIN);
    EXPECT_EQ(szaDebugFileNames[1], "demo.dbg");
    QTest::keyClick(GuiWindow(PANEL_MAIN), Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(szDebugFileName, "demo.dbg");
    EXPECT_EQ(nLItems, last + 1);
}

TEST_F(ProgramTest, AsksBeforeItEnds)
{
    const auto answer = [](const char *button) {
        IsDBGChange = 1;
        GuiShow(PANEL_MAIN);
        GuiAnswerNext([button](QWidget *popup) { GuiClickButton(popup, button); });
    };
    answer("Cancel");
    GuiWindow(PANEL_MAIN)->close();
    EXPECT_TRUE(GuiWindow(PANEL_MAIN)->isVisible());
    EXPECT_EQ(IsDBGChange, 1);
    const auto quit = [] {
        QTest::keyClick(GuiWindow(PANEL_MAIN), Qt::Key_Q, Qt::ControlModifier);
    };
    EDT_Remove(0);
    const std::string comment = "; ";
    for (const char *button : {"No", "Yes"}) {
        answer(button);
        QTimer::singleShot(0, quit);
        EXPECT_EQ(RunUserInterface(), 0);
        EXPECT_EQ(IsDBGChange, 0) << button;
        const std::string saved = ReadFileText("demo.dbg");
        EXPECT_EQ(saved.find(comment) == std::string::npos, button == std::string("Yes"))
            << "a saved list has no comments";
    }
}

} // namespace
