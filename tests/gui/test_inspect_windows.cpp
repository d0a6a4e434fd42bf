// Windows that look into a target or write it, and the simulated one, as a user meets them.
#include <QAbstractItemView>
#include <QCompleter>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSlider>

#include "app/main_panel.h"
#include "app/options.h"
#include "gui/gui_support.h"
#include "runtime/qt/plot_widget.h"
#include "sets/window.h"
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

// Opened, looked into and written to with the keyboard alone; the target says what has arrived.
TEST_F(InspectWindows, RecordIsOpenedAndEdited)
{
    switchOn();
    onProgram([] {
        std::string message;
        EXPECT_EQ(WIN_OpenTypeMap("demo.tmf", &message), 0) << message;
        SetCtrlIndex(PANEL_MAIN, MAIN_LIST, -1);
    });
    open(Qt::Key_T, PANEL_RECORD);
    enter(PANEL_RECORD, RECORD_PLACE, "DRV_stParams");
    auto *list = GuiWidget<LineList>(PANEL_RECORD, RECORD_LIST);
    ASSERT_TRUE(waitFor([] { return cell(PANEL_RECORD, RECORD_LIST, 1, 1) == "250"; }));
    EXPECT_EQ(list->lines()->rowCount(), 7);
    list->setFocus();
    for (int i = 0; i < 3; i++)
        QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Right);
    ASSERT_TRUE(waitFor([=] { return list->lines()->rowCount() > 7; })) << "the union is open";
    ASSERT_TRUE(waitFor([] { return cell(PANEL_RECORD, RECORD_LIST, 4, 1) == "258"; }));
    QTest::keyClick(list, Qt::Key_Down); // to its first member
    ASSERT_TRUE(settle());
    QTest::keyClick(list, Qt::Key_F2);
    auto *field = list->viewport()->findChild<QLineEdit *>();
    ASSERT_TRUE(field);
    field->selectAll();
    QTest::keyClicks(field, "-2"); // unsigned: refused, and nothing is written
    QTest::keyClick(field, Qt::Key_Enter);
    ASSERT_TRUE(settle());
    EXPECT_EQ(cell(PANEL_RECORD, RECORD_LIST, 4, 1), "258");
    QTest::keyClick(list, Qt::Key_F2);
    field = list->viewport()->findChild<QLineEdit *>();
    ASSERT_TRUE(field);
    field->selectAll();
    QTest::keyClicks(field, "4660");
    QTest::keyClick(field, Qt::Key_Enter);
    ASSERT_TRUE(waitFor([] { return cell(PANEL_RECORD, RECORD_LIST, 4, 1) == "4660"; }))
        << GuiText(PANEL_RECORD, RECORD_MESSAGE).toStdString();
    const uint32_t place = cell(PANEL_RECORD, RECORD_LIST, 4, 3).toUInt(nullptr, 16);
    uint8_t bytes[2] = {};
    onProgram([&] { SIM_Peek(target, STATION, place, bytes, sizeof bytes); });
    EXPECT_EQ(bytes[0] | bytes[1] << 8, 0x1234);
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

TEST_F(InspectWindows, DeviceConfigurationWritesWhatWasTypedIntoItsTable)
{
    constexpr uint32_t GAIN = 0x8100, GAIN_MIRROR = 0x8300;
    const auto word = [this](uint32_t address) {
        uint8_t bytes[2];
        SIM_Peek(target, 1, address, bytes, sizeof bytes);
        return bytes[0] | bytes[1] << 8;
    };
    const uint8_t before[] = {100, 0, 7, 0};
    SIM_Poke(target, 1, GAIN, before, sizeof before);
    SIM_Poke(target, 1, GAIN_MIRROR, before, 2);
    switchOn();
    onProgram([] {
        std::string message;
        EXPECT_EQ(WIN_OpenTypeMap("demo.tmf", &message), 0) << message;
        CFW_SetHeader("demo.ulh");
    });
    open(Qt::Key_P, PANEL_CONFIG);
    auto *list = GuiWidget<LineList>(PANEL_CONFIG, CONFIG_LIST);
    int row = 0;
    while (row < list->lines()->rowCount() && list->lines()->cell(row, 0).text != "wGain")
        row++;
    ASSERT_LT(row, list->lines()->rowCount()) << GuiText(PANEL_CONFIG, CONFIG_RESULT).toStdString();
    const auto value = [row] { return cell(PANEL_CONFIG, CONFIG_LIST, row, 1); };
    EXPECT_EQ(value(), "") << "nothing is shown that was not read";
    auto *writeAll = GuiWidget<QPushButton>(PANEL_CONFIG, CONFIG_WRITE_ALL);
    QTest::mouseClick(GuiWidget(PANEL_CONFIG, CONFIG_READ), Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return value() == "100"; }))
        << GuiText(PANEL_CONFIG, CONFIG_RESULT).toStdString();
    EXPECT_FALSE(writeAll->isEnabled());

    list->setFocus();
    list->select({row}, row);
    QTest::keyClick(list, Qt::Key_F2);
    auto *field = list->findChild<QLineEdit *>();
    ASSERT_TRUE(field);
    QTest::keyClicks(field, "401");
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_TRUE(waitFor(
        [] { return GuiText(PANEL_CONFIG, CONFIG_RESULT).contains("above the limit 400"); }));
    ASSERT_TRUE(settle());
    QTest::keyClick(list, Qt::Key_F2);
    field = list->findChild<QLineEdit *>();
    ASSERT_TRUE(field);
    QTest::keyClicks(field, "350");
    QTest::keyClick(field, Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return value() == "* 350"; })) << value().toStdString();
    EXPECT_EQ(word(GAIN), 100) << "typed is not written";

    ASSERT_TRUE(waitFor([=] { return writeAll->isEnabled(); }));
    EXPECT_EQ(writeAll->text().remove('&'), "Write changed (1)");
    QTest::mouseClick(writeAll, Qt::LeftButton);
    QDialog *question = GuiDialog();
    ASSERT_TRUE(question);
    const auto *box = qobject_cast<QMessageBox *>(question);
    EXPECT_TRUE(box && box->text().contains("wGain: 100 -> 350"));
    GuiClickButton(question, "Yes");
    ASSERT_TRUE(waitFor([&] { return value() == "350"; })) << value().toStdString();
    EXPECT_EQ(word(GAIN), 350);
    EXPECT_EQ(word(GAIN_MIRROR), 350);
    EXPECT_EQ(word(GAIN + 2), 7) << "its neighbour is not touched";
    onProgram([] { CFW_SetHeader(""); });
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
