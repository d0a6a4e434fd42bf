// Adding, editing, writing and undoing in the real windows, on the example project and a
// simulated target.
#include <QApplication>
#include <QComboBox>
#include <QCompleter>
#include <QLineEdit>
#include <QMenu>
#include <filesystem>
#include <fstream>

#include "app/VR.h"
#include "gui/gui_support.h"
#include "watch/list/litem.h"

namespace {

constexpr uint32_t TABLE_ADDRESS = 0x8140; // awTable of the example's map

class EditWindows : public GuiProgramTest {
protected:
    void SetUp() override
    {
        GuiProgramTest::SetUp();
        list = GuiWidget<LineList>(PANEL_MAIN, MAIN_LIST);
        SetActiveCtrl(PANEL_MAIN, MAIN_LIST);
        SetCtrlIndex(PANEL_MAIN, MAIN_LIST, 0);
    }
    static void press(QWidget *widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(widget, key, modifiers);
        GuiSettle();
    }
    static bool waitForWindow(int panel)
    {
        return QTest::qWaitForWindowActive(GuiWindow(panel));
    }
    LineList *list = nullptr;
};

TEST_F(EditWindows, AnItemIsAddedFromItsCompletion)
{
    press(list, Qt::Key_Insert);
    ASSERT_TRUE(waitForWindow(PANEL_ITEM));
    auto *name = GuiWidget<QLineEdit>(PANEL_ITEM, WITEM_NAME);
    QTest::keyClicks(name, "AW");
    QWidget *offered = QApplication::activePopupWidget();
    ASSERT_TRUE(offered) << "completions in either case of letters";
    press(offered, Qt::Key_Down);
    press(offered, Qt::Key_Return);
    EXPECT_EQ(name->text(), "awTable");
    ASSERT_TRUE(GuiWindow(PANEL_ITEM)->isVisible()) << "Enter took the completion only";
    EXPECT_EQ(UiText(PANEL_ITEM, WITEM_PLACE), "Address 0x008140");

    auto *type = GuiWidget<QComboBox>(PANEL_ITEM, WITEM_TYPE);
    EXPECT_EQ(type->currentText(), "u   unsigned");
    type->setFocus();
    type->showPopup();
    GuiSettle();
    press(QApplication::focusWidget(), Qt::Key_Down);
    press(QApplication::focusWidget(), Qt::Key_Return);
    ASSERT_TRUE(GuiWindow(PANEL_ITEM)->isVisible()) << "Enter closed the open ring only";
    EXPECT_EQ(type->currentText(), "x   hexadecimal");
    press(type, Qt::Key_Return);
    EXPECT_FALSE(GuiWindow(PANEL_ITEM)->isVisible());
    EXPECT_EQ(LIT_FileLine(aLItems[1]), "awTable, x2");
    EXPECT_EQ(list->selected(), 1);
}

TEST_F(EditWindows, LinesAreRemovedAndPutBack)
{
    const std::string first = aLItems[0].name;
    const int count = nLItems;
    press(list, Qt::Key_Delete);
    EXPECT_EQ(nLItems, count - 1);
    press(list, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(nLItems, count);
    EXPECT_EQ(aLItems[0].name, first);
    press(list, Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(aLItems[1].name, first);

    QContextMenuEvent context(QContextMenuEvent::Mouse, QPoint(20, 27));
    QApplication::sendEvent(list->viewport(), &context);
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    QTest::mouseClick(menu, Qt::LeftButton, {},
                      menu->actionGeometry(FACE_MenuAction(ITEM_REMOVE)).center());
    GuiSettle();
    EXPECT_EQ(nLItems, count - 1);
    EXPECT_NE(aLItems[1].name, first);

    auto *address = GuiWidget<QLineEdit>(PANEL_MAIN, MAIN_MEM_ADDR);
    address->setText("12");
    address->setFocus();
    address->home(false);
    press(address, Qt::Key_Delete);
    EXPECT_EQ(address->text(), "2") << "in a field the key edits the field";
    EXPECT_EQ(nLItems, count - 1);
}

TEST_F(EditWindows, AValueIsWrittenAndReadBack)
{
    QTest::mouseClick(GuiWidget(PANEL_MAIN, MAIN_COMM), Qt::LeftButton);
    ASSERT_TRUE(isTimer);
    press(list, Qt::Key_Insert);
    ASSERT_TRUE(waitForWindow(PANEL_ITEM));
    QTest::keyClicks(GuiWidget(PANEL_ITEM, WITEM_NAME), "awTable");
    press(GuiWidget(PANEL_ITEM, WITEM_NAME), Qt::Key_Return);
    EXPECT_EQ(aLItems[1].name, "awTable");

    press(list, Qt::Key_Return);
    ASSERT_TRUE(waitForWindow(PANEL_VALUE));
    auto *value = GuiWidget<QLineEdit>(PANEL_VALUE, VALUE_NEW);
    QTest::keyClicks(value, "4711");
    press(value, Qt::Key_Return);
    EXPECT_EQ(UiText(PANEL_VALUE, VALUE_RESULT), "OK: Written. The target holds 4711.");
    uint8_t held[2] = {};
    SIM_Peek(target, 1, TABLE_ADDRESS, held, sizeof held);
    EXPECT_EQ(held[0] | held[1] << 8, 4711);
    held[0] = 0;
    SIM_Poke(target, 1, TABLE_ADDRESS, held, sizeof held);
    EXPECT_TRUE(
        QTest::qWaitFor([] { return UiText(PANEL_VALUE, VALUE_HEX) == "0x1200"; }, PATIENCE_MS))
        << "live with the list";
    press(value, Qt::Key_Escape);
    EXPECT_FALSE(GuiWindow(PANEL_VALUE)->isVisible());
}

TEST_F(EditWindows, TurningBackAsksAboutAFileThatAnEditorChanged)
{
    press(list, Qt::Key_F2);
    ASSERT_TRUE(waitForWindow(PANEL_ITEM));
    std::ofstream(szDebugFileName) << "awTable, u2\n";
    const auto stamp = std::filesystem::last_write_time(szDebugFileName);
    std::filesystem::last_write_time(szDebugFileName, stamp + std::chrono::seconds(7));
    QString question;
    GuiAnswerNext([&](QWidget *popup) {
        question = popup->property("text").toString();
        GuiClickButton(popup, "Yes");
    });
    GuiWindow(PANEL_MAIN)->activateWindow();
    EXPECT_TRUE(QTest::qWaitFor([] { return nLItems == 1; }, PATIENCE_MS));
    EXPECT_TRUE(question.startsWith("The debug file has changed on disk.")) << qPrintable(question);
}

} // namespace
