// The list control: what is repainted, what is kept, what the user's actions report.
#include <QScrollBar>
#include <QSignalSpy>

#include "gui/gui_support.h"

namespace {

constexpr int LINES = 500;
constexpr int ROW_PIXELS = 18;

std::string Label(int line, int value)
{
    return "wName" + std::to_string(line) + "\033p300l012340  u2: " + std::to_string(value);
}

void Fill(const std::vector<int> &values)
{
    ClearListCtrl(PANEL_MAIN, MAIN_LIST);
    for (size_t i = 0; i < values.size(); i++) {
        const int line = static_cast<int>(i);
        InsertListItem(PANEL_MAIN, MAIN_LIST, -1, Label(line, values[i]), line);
    }
}

// The area of a widget that paint events ask for.
class PaintWatch : public QObject {
public:
    QRegion painted;
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            painted += static_cast<QPaintEvent *>(event)->region();
        return false;
    }
};

class FaceListTest : public FaceTest {
protected:
    void SetUp() override
    {
        FaceTest::SetUp();
        list = GuiWidget<LineList>(PANEL_MAIN, MAIN_LIST);
        GuiShow(PANEL_MAIN);
        Fill(values);
        GuiSettle();
    }
    int FirstVisible()
    {
        int line = -1;
        GetCtrlAttribute(PANEL_MAIN, MAIN_LIST, ATTR_FIRST_VISIBLE_LINE, &line);
        return line;
    }
    int Selected()
    {
        int line = -2;
        GetCtrlIndex(PANEL_MAIN, MAIN_LIST, &line);
        return line;
    }

    LineList *list = nullptr;
    std::vector<int> values = std::vector<int>(LINES, 0);
};

TEST_F(FaceListTest, RepaintsOnlyWhatDiffersAndKeepsItsPlace)
{
    SetCtrlIndex(PANEL_MAIN, MAIN_LIST, 250);
    SetCtrlAttribute(PANEL_MAIN, MAIN_LIST, ATTR_FIRST_VISIBLE_LINE, 245);
    GuiSettle();
    QSignalSpy changed(list->model(), &QAbstractItemModel::dataChanged);
    QSignalSpy inserted(list->model(), &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(list->model(), &QAbstractItemModel::rowsRemoved);
    PaintWatch watch;
    list->viewport()->installEventFilter(&watch);

    Fill(values);
    GuiSettle();
    EXPECT_EQ(changed.count(), 0);
    EXPECT_TRUE(watch.painted.isEmpty()) << "an unchanged list is not painted at all";

    values[3] = values[248] = values[499] = 77; // one of them in view
    Fill(values);
    GuiSettle();
    EXPECT_EQ(changed.count(), 3);
    EXPECT_EQ(inserted.count() + removed.count(), 0);
    EXPECT_EQ(watch.painted.boundingRect().top(), 3 * ROW_PIXELS);
    EXPECT_EQ(watch.painted.boundingRect().height(), ROW_PIXELS);
    EXPECT_EQ(Selected(), 250);
    EXPECT_EQ(FirstVisible(), 245);
    list->viewport()->removeEventFilter(&watch);
    EXPECT_TRUE(guiEvents.empty());
}

TEST_F(FaceListTest, FollowsGrowingAndShrinking)
{
    SetCtrlIndex(PANEL_MAIN, MAIN_LIST, 400);
    values.resize(100);
    Fill(values);
    GuiSettle();
    EXPECT_EQ(list->model()->rowCount(), 100);
    EXPECT_EQ(Selected(), -1) << "the selected line is gone";
    EXPECT_EQ(FirstVisible(), 87) << "13 lines fit: the last is at the bottom";
    values.resize(120);
    Fill(values);
    DeleteListItem(PANEL_MAIN, MAIN_LIST, 0, 2);
    ReplaceListItem(PANEL_MAIN, MAIN_LIST, 0, "x", 42);
    GuiSettle();
    EXPECT_EQ(list->model()->rowCount(), 118);
    EXPECT_EQ(list->model()->index(0, 0).data().toString(), "x");
    int value = 0;
    EXPECT_EQ(GetValueFromIndex(PANEL_MAIN, MAIN_LIST, 0, &value), 0);
    EXPECT_EQ(value, 42);
    EXPECT_EQ(GetValueFromIndex(PANEL_MAIN, MAIN_LIST, 117, &value), 0);
    EXPECT_EQ(value, 119);
    SetCtrlAttribute(PANEL_MAIN, MAIN_LIST, ATTR_FIRST_VISIBLE_LINE, 5000);
    EXPECT_EQ(FirstVisible(), 105);
}

TEST_F(FaceListTest, KeepsItsPlaceWhileTheConsoleViewCoversIt)
{
    SetCtrlAttribute(PANEL_MAIN, MAIN_LIST, ATTR_FIRST_VISIBLE_LINE, 30);
    DisplayPanel(PANEL_CONSOLE);
    GuiSettle();
    values[31] = 5;
    Fill(values);
    SetCtrlAttribute(PANEL_MAIN, MAIN_LIST, ATTR_FIRST_VISIBLE_LINE, FirstVisible());
    GuiSettle();
    HidePanel(PANEL_CONSOLE);
    GuiSettle();
    EXPECT_EQ(FirstVisible(), 30);
}

TEST_F(FaceListTest, ReportsTheUsersActions)
{
    const QPoint third = list->visualRect(list->model()->index(2, 0)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, third);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, third);
    QContextMenuEvent context(QContextMenuEvent::Mouse,
                              list->visualRect(list->model()->index(4, 0)).center());
    QApplication::sendEvent(list->viewport(), &context);
    std::vector<int> kinds;
    for (const GuiEvent &event : guiEvents)
        kinds.push_back(event.event);
    EXPECT_EQ(kinds, (std::vector<int>{EVENT_VAL_CHANGED, EVENT_LEFT_DOUBLE_CLICK,
                                       EVENT_VAL_CHANGED, EVENT_RIGHT_CLICK}));
    EXPECT_EQ(Selected(), 4);
}

TEST_F(FaceListTest, IsWorkedFromTheKeyboard)
{
    SetActiveCtrl(PANEL_MAIN, MAIN_COMM);
    SetActiveCtrl(PANEL_MAIN, MAIN_LIST);
    EXPECT_EQ(Selected(), 0) << "a list that gets the focus shows where it is";
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_PageDown);
    EXPECT_EQ(Selected(), 13);
    QTest::keyClick(list, Qt::Key_End);
    EXPECT_EQ(Selected(), LINES - 1);
    EXPECT_EQ(FirstVisible(), LINES - 13);
    list->keyboardSearch(QString()); // forget what an earlier search typed
    QTest::keyClicks(list, "wName37");
    EXPECT_EQ(Selected(), 37);
    guiEvents.clear();
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_EQ(guiEvents.back(), (GuiEvent{PANEL_MAIN, MAIN_LIST, EVENT_COMMIT, 0}));
}

TEST_F(FaceListTest, ShowsTips)
{
    SetListItemTip(PANEL_MAIN, MAIN_LIST, 7, "raw 0x12");
    GuiSettle();
    EXPECT_EQ(list->model()->index(7, 0).data(Qt::ToolTipRole).toString(), "raw 0x12");
    ReplaceListItem(PANEL_MAIN, MAIN_LIST, 7, "new", 7);
    GuiSettle();
    EXPECT_EQ(list->model()->index(7, 0).data(Qt::ToolTipRole).toString(), "raw 0x12");
}

} // namespace
