// The log of the example's target in the real window: read, filtered by typing, looked at.
#include <QLineEdit>
#include <QPushButton>

#include "gui/gui_support.h"
#include "symbols/typemap.h"

namespace {

using LogWindow = GuiProgramTest;

} // namespace

TEST_F(LogWindow, ReadsFiltersAndShowsFields)
{
    onProgram([] { EXPECT_EQ(TMF_OpenMap("demo.tmf"), 0); });
    QTest::keyClick(GuiWindow(PANEL_MAIN), Qt::Key_G, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_TRUE(
        QTest::qWaitFor([] { return GuiWindow(PANEL_DATA_LOG)->isVisible(); }, PATIENCE_MS));
    ASSERT_TRUE(settle());
    auto *list = GuiWidget<LineList>(PANEL_DATA_LOG, LOG_LIST);
    auto *detail = GuiWidget<LineList>(PANEL_DATA_LOG, LOG_DETAIL);
    QTest::mouseClick(GuiWidget<QPushButton>(PANEL_DATA_LOG, LOG_READ), Qt::LeftButton);
    GuiClickButton(GuiDialog(), "Yes"); // communication is to be switched on
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->lines()->rowCount() > 0; }, PATIENCE_MS));
    ASSERT_TRUE(settle());
    const int all = list->lines()->rowCount();
    const QString type = list->lines()->cell(0, 1).text;
    QTest::keyClicks(GuiWidget<QLineEdit>(PANEL_DATA_LOG, LOG_FILTER), type.toUpper());
    ASSERT_TRUE(settle());
    EXPECT_GT(list->lines()->rowCount(), 0);
    EXPECT_LT(list->lines()->rowCount(), all);
    list->setFocus();
    QTest::keyClick(list, Qt::Key_End);
    ASSERT_TRUE(settle());
    EXPECT_EQ(list->currentRow(), list->lines()->rowCount() - 1);
    EXPECT_EQ(detail->lines()->cell(0, 1).text, list->lines()->cell(list->currentRow(), 0).text);
}
