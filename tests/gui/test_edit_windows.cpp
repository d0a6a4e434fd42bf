// Adding, editing, writing and undoing in the real windows, on the example project and a
// simulated target.
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <filesystem>
#include <fstream>

#include "gui/gui_support.h"
#include "settings/settings.h"
#include "watch/list/list_file.h"
#include "watch/list/litem.h"

namespace {

constexpr uint32_t TABLE_ADDRESS = 0x8140; // awTable of the example's map

class EditWindows : public GuiProgramTest {
protected:
    void SetUp() override
    {
        GuiProgramTest::SetUp();
        list = GuiWidget<LineList>(PANEL_MAIN, MAIN_LIST);
        onProgram([] { SetCtrlIndex(PANEL_MAIN, MAIN_LIST, 0); });
        list->setFocus();
        ASSERT_TRUE(settle());
    }
    static void press(QWidget *widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(widget, key, modifiers);
        GuiSettle();
        ASSERT_TRUE(settle());
    }
    static bool waitForWindow(int panel)
    {
        return QTest::qWaitFor([panel] { return GuiWindow(panel)->isVisible(); }, PATIENCE_MS) &&
               QTest::qWaitForWindowActive(GuiWindow(panel));
    }
    QString name(int row) const
    {
        return list->lines()->cell(row, 0).text;
    }
    int count() const
    {
        return list->lines()->rowCount();
    }
    LineList *list = nullptr;
};

TEST_F(EditWindows, AnItemIsAddedFromItsCompletion)
{
    press(list, Qt::Key_Insert);
    ASSERT_TRUE(waitForWindow(PANEL_ITEM));
    auto *field = GuiWidget<QLineEdit>(PANEL_ITEM, WITEM_NAME);
    ASSERT_TRUE(QTest::qWaitFor([field] { return field->hasFocus(); }, PATIENCE_MS));
    QTest::keyClicks(field, "AW");
    ASSERT_TRUE(
        QTest::qWaitFor([] { return QApplication::activePopupWidget() != nullptr; }, PATIENCE_MS))
        << "completions in either case of letters";
    QWidget *offered = QApplication::activePopupWidget();
    press(offered, Qt::Key_Down);
    press(offered, Qt::Key_Return);
    EXPECT_EQ(field->text(), "awTable");
    ASSERT_TRUE(GuiWindow(PANEL_ITEM)->isVisible()) << "Enter took the completion only";
    EXPECT_EQ(GuiText(PANEL_ITEM, WITEM_PLACE), "Address 0x008140");

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
    std::string added;
    onProgram([&] { added = LIT_FileLine(aLItems[1]); });
    EXPECT_EQ(added, "awTable, x2");
    EXPECT_EQ(list->currentRow(), 1);
}

TEST_F(EditWindows, LinesAreRemovedAndPutBack)
{
    const QString first = name(0);
    const int before = count();
    press(list, Qt::Key_Delete);
    EXPECT_EQ(count(), before - 1);
    press(list, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(count(), before);
    EXPECT_EQ(name(0), first);
    press(list, Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(name(1), first);

    GuiRightClick(list, QPoint(20, 27));
    ASSERT_TRUE(
        QTest::qWaitFor([] { return QApplication::activePopupWidget() != nullptr; }, PATIENCE_MS));
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    QTest::mouseClick(menu, Qt::LeftButton, {},
                      menu->actionGeometry(QTV_MenuAction(ITEM_REMOVE)).center());
    ASSERT_TRUE(settle());
    EXPECT_EQ(count(), before - 1);
    EXPECT_NE(name(1), first);

    auto *address = GuiWidget<QLineEdit>(PANEL_MAIN, MAIN_MEM_ADDR);
    address->setText("12");
    address->setFocus();
    address->home(false);
    press(address, Qt::Key_Delete);
    EXPECT_EQ(address->text(), "2") << "in a field the key edits the field";
    EXPECT_EQ(count(), before - 1);
}

TEST_F(EditWindows, AValueIsWrittenAndReadBack)
{
    QTest::mouseClick(GuiWidget(PANEL_MAIN, MAIN_COMM), Qt::LeftButton);
    press(list, Qt::Key_Insert);
    ASSERT_TRUE(waitForWindow(PANEL_ITEM));
    QTest::keyClicks(GuiWidget(PANEL_ITEM, WITEM_NAME), "awTable");
    press(GuiWidget(PANEL_ITEM, WITEM_NAME), Qt::Key_Return);
    EXPECT_EQ(name(1), "awTable");

    press(list, Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(waitForWindow(PANEL_VALUE));
    auto *value = GuiWidget<QLineEdit>(PANEL_VALUE, VALUE_NEW);
    QTest::keyClicks(value, "4711");
    press(value, Qt::Key_Return);
    EXPECT_EQ(GuiText(PANEL_VALUE, VALUE_RESULT), "OK: Written. The target holds 4711.");
    uint8_t held[2] = {};
    SIM_Peek(target, 1, TABLE_ADDRESS, held, sizeof held);
    EXPECT_EQ(held[0] | held[1] << 8, 4711);
    held[0] = 0;
    SIM_Poke(target, 1, TABLE_ADDRESS, held, sizeof held);
    EXPECT_TRUE(
        QTest::qWaitFor([] { return GuiText(PANEL_VALUE, VALUE_HEX) == "0x1200"; }, PATIENCE_MS))
        << "live with the list";
    press(value, Qt::Key_Escape);
    EXPECT_FALSE(GuiWindow(PANEL_VALUE)->isVisible());
}

TEST_F(EditWindows, TurningBackAsksAboutAFileThatAnEditorChanged)
{
    press(list, Qt::Key_F3);
    ASSERT_TRUE(waitForWindow(PANEL_ITEM));
    std::string path;
    onProgram([&] { path = szDebugFileName; });
    std::ofstream(path) << "awTable, u2\n";
    const auto stamp = std::filesystem::last_write_time(path);
    std::filesystem::last_write_time(path, stamp + std::chrono::seconds(7));
    GuiWindow(PANEL_MAIN)->activateWindow();
    QDialog *question = GuiDialog();
    ASSERT_TRUE(question);
    const QString text = question->property("text").toString();
    EXPECT_TRUE(text.startsWith("The watch list has changed on disk.")) << qPrintable(text);
    GuiClickButton(question, "Yes");
    EXPECT_TRUE(QTest::qWaitFor([this] { return count() == 1; }, PATIENCE_MS));
}

} // namespace
