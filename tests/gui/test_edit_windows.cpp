// Adding, editing, writing and undoing in the real windows, on the example project and a
// simulated target.
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>

#include "gui/gui_support.h"
#include "settings/settings.h"
#include "watch/list/list_file.h"
#include "watch/list/litem.h"

namespace {

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

} // namespace
