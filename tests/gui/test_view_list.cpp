// The list control: what is repainted, what is kept, what the user's actions hand in.
#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalSpy>

#include "gui/gui_support.h"
#include "runtime/qt/line_delegate.h"

namespace {

constexpr int LINES = 500;
constexpr int ROW_PIXELS = 18;
constexpr int VALUE_COLUMN = 3;

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

class ViewListTest : public ViewTest {
protected:
    void SetUp() override
    {
        ViewTest::SetUp();
        list = GuiWidget<LineList>(PANEL_MAIN, MAIN_LIST);
        GuiShow(PANEL_MAIN);
        GuiDrawList(PANEL_MAIN, MAIN_LIST, VIEW_LIST_COLUMNS, [](VIEW_List &change) {
            change.columns = {
                {"Name", 120, UIA_LEFT, false, false}, {"Address", 80, UIA_LEFT, false, false},
                {"Type", 40, UIA_LEFT, false, false},  {"Value", 200, UIA_POINT, true, false},
                {"Age", 150, UIA_RIGHT, false, true},  {"Comment", 100, UIA_LEFT, false, false}};
        });
        drawLines(0, LINES, "0");
        select(-1);
        GuiSettle();
        guiEvents.clear();
    }
    static VIEW_Line line(int index, const std::string &value, unsigned style = UIS_NORMAL)
    {
        VIEW_Line made;
        made.id = static_cast<uint32_t>(1000 + index);
        made.cells = {{"wName" + std::to_string(index), UIS_NORMAL, ""},
                      {"012340", UIS_NORMAL, ""},
                      {index % 2 ? "f4" : "u2", UIS_NORMAL, ""},
                      {value, style, ""}};
        return made;
    }
    static void drawLines(int first, int end, const std::string &value, int count = LINES)
    {
        GuiDrawList(PANEL_MAIN, MAIN_LIST, VIEW_LIST_LINES, [&](VIEW_List &change) {
            change.count = count;
            for (int i = first; i < end; i++)
                change.changed.push_back({i, line(i, value)});
        });
    }
    static void drawLine(const VIEW_Line &shown, int index, int count = LINES)
    {
        GuiDrawList(PANEL_MAIN, MAIN_LIST, VIEW_LIST_LINES, [&](VIEW_List &change) {
            change.count = count;
            change.changed = {{index, shown}};
        });
    }
    static void select(int row)
    {
        GuiDrawList(PANEL_MAIN, MAIN_LIST, VIEW_LIST_SELECTION, [row](VIEW_List &change) {
            change.current = row;
            if (row >= 0)
                change.selected = {row};
        });
    }
    static void scroll(int row)
    {
        GuiDrawList(PANEL_MAIN, MAIN_LIST, VIEW_LIST_FIRST,
                    [row](VIEW_List &change) { change.firstVisible = row; });
    }
    static VIEW_Event last(int event)
    {
        const std::vector<VIEW_Event> found = GuiEventsOf(PANEL_MAIN, MAIN_LIST, event);
        EXPECT_FALSE(found.empty()) << "no event " << event;
        return found.empty() ? VIEW_Event() : found.back();
    }
    QPoint middle(int row, int column = 0) const
    {
        return list->visualRect(list->model()->index(row, column)).center();
    }
    QLineEdit *cellField() const
    {
        return list->viewport()->findChild<QLineEdit *>();
    }

    LineList *list = nullptr;
};

TEST_F(ViewListTest, RepaintsOnlyWhatDiffersAndKeepsItsPlace)
{
    select(250);
    scroll(245);
    GuiSettle();
    QSignalSpy changed(list->model(), &QAbstractItemModel::dataChanged);
    PaintWatch watch;
    list->viewport()->installEventFilter(&watch);
    drawLines(0, LINES, "0");
    GuiSettle();
    EXPECT_EQ(changed.count(), 0);
    EXPECT_TRUE(watch.painted.isEmpty()) << "an unchanged list is not painted at all";
    for (const int index : {3, 248, 499}) // one of them in view
        drawLine(line(index, "7"), index);
    GuiSettle();
    EXPECT_EQ(changed.count(), 3);
    EXPECT_EQ(watch.painted.boundingRect().top(), 3 * ROW_PIXELS);
    EXPECT_LE(watch.painted.boundingRect().height(), ROW_PIXELS + 1) << "and a grid line";
    EXPECT_EQ(list->currentRow(), 250);
    EXPECT_EQ(list->firstVisible(), 245);
    list->viewport()->removeEventFilter(&watch);
    EXPECT_TRUE(GuiEventsOf(PANEL_MAIN, MAIN_LIST, EVENT_VAL_CHANGED).empty())
        << "the program's selecting is not reported";
}

TEST_F(ViewListTest, ShowsThirteenLinesAtFirstAndFollowsItsLength)
{
    EXPECT_EQ(list->linesInView(), 13);
    select(400);
    drawLines(0, 0, "", 100);
    EXPECT_EQ(list->lines()->rowCount(), 100);
    EXPECT_EQ(list->currentRow(), -1) << "the selected line is gone, no neighbour takes its place";
    EXPECT_EQ(list->firstVisible(), 87) << "13 lines fit: the last is at the bottom";
    drawLines(100, 120, "x", 120);
    EXPECT_EQ(list->lines()->cell(119, VALUE_COLUMN).text, "x");
    scroll(5000);
    EXPECT_EQ(list->firstVisible(), 107);
    EXPECT_TRUE(GuiEventsOf(PANEL_MAIN, MAIN_LIST, EVENT_VAL_CHANGED).empty());
}

TEST_F(ViewListTest, HandsInWhatTheUserDoesWithTheLineItIsAbout)
{
    const QPoint third = middle(2);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, third);
    EXPECT_EQ(last(EVENT_VAL_CHANGED).line.id, 1002u);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ShiftModifier, middle(4));
    const VIEW_Event several = last(EVENT_VAL_CHANGED);
    EXPECT_EQ(several.line.index, 4);
    ASSERT_EQ(several.selected.size(), 3u);
    EXPECT_EQ(several.selected[1].id, 1003u);
    GuiRightClick(list, middle(3));
    EXPECT_EQ(last(EVENT_RIGHT_CLICK).selected.size(), 3u) << "on one of them: all stay";
    GuiRightClick(list, middle(6));
    EXPECT_EQ(last(EVENT_RIGHT_CLICK).selected.size(), 1u);
    EXPECT_EQ(last(EVENT_RIGHT_CLICK).line.id, 1006u);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, third);
    EXPECT_EQ(last(EVENT_LEFT_DOUBLE_CLICK).line.id, 1002u);
    guiEvents.clear();
    list->verticalScrollBar()->setValue(40);
    ASSERT_EQ(guiEvents.size(), 1u);
    EXPECT_EQ(guiEvents[0].kind, VIEW_EVENT_SCROLLED);
    EXPECT_EQ(guiEvents[0].value, 40);
    EXPECT_EQ(guiEvents[0].extra, 13);
}

TEST_F(ViewListTest, IsWorkedFromTheKeyboard)
{
    GuiWidget(PANEL_MAIN, MAIN_COMM)->setFocus();
    list->setFocus();
    EXPECT_EQ(list->currentRow(), 0) << "a list that gets the focus shows where it is";
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_PageDown);
    EXPECT_EQ(list->currentRow(), 14);
    QTest::keyClick(list, Qt::Key_End);
    EXPECT_EQ(list->currentRow(), LINES - 1);
    EXPECT_EQ(list->firstVisible(), LINES - 13);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, middle(LINES - 1, VALUE_COLUMN));
    list->keyboardSearch(QString()); // forget what an earlier search typed
    QTest::keyClicks(list, "wName37");
    EXPECT_EQ(list->currentRow(), 37) << "by name, wherever the mouse was";
}

TEST_F(ViewListTest, EditsAValueInPlaceWhileTheListGoesOn)
{
    for (const Qt::Key key : {Qt::Key_F2, Qt::Key_Return}) {
        list->setFocus();
        select(5);
        QTest::keyClick(list, key);
        ASSERT_TRUE(cellField()) << key;
        EXPECT_EQ(cellField()->text(), "0");
        QTest::keyClicks(cellField(), "12.");
        drawLines(0, LINES, "99");
        EXPECT_EQ(cellField()->text(), "12.") << "a sweep does not take the typing away";
        QTest::keyClicks(cellField(), "5");
        QTest::keyClick(cellField(), Qt::Key_Return);
        GuiSettle();
        const VIEW_Event edited = last(EVENT_CELL_EDITED);
        EXPECT_EQ(edited.line.id, 1005u);
        EXPECT_EQ(edited.column, VALUE_COLUMN);
        EXPECT_EQ(edited.text, "12.5");
        EXPECT_EQ(list->lines()->cell(5, VALUE_COLUMN).text, "99") << "until the program has it";
        EXPECT_FALSE(cellField());
        drawLines(0, LINES, "0");
        guiEvents.clear();
    }
    QTest::keyClick(list, Qt::Key_F2);
    QTest::keyClicks(cellField(), "1");
    QTest::keyClick(cellField(), Qt::Key_Escape);
    GuiSettle();
    EXPECT_TRUE(GuiEventsOf(PANEL_MAIN, MAIN_LIST, EVENT_CELL_EDITED).empty());

    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, middle(5, VALUE_COLUMN));
    ASSERT_TRUE(cellField());
    drawLine(line(77, "1"), 5); // another line has come to this place
    GuiSettle();
    EXPECT_FALSE(cellField()) << "what is typed must not go to another line";
    EXPECT_TRUE(GuiEventsOf(PANEL_MAIN, MAIN_LIST, EVENT_CELL_EDITED).empty());
}

TEST_F(ViewListTest, EditsTheCellThatWasPointedAtAndLeavesOtherKeysAlone)
{
    GuiDrawList(PANEL_MAIN, MAIN_LIST, VIEW_LIST_COLUMNS, [](VIEW_List &change) {
        change.columns.resize(3);
        for (UI_Column &column : change.columns)
            column.width = 100;
        change.columns[1].isEditable = change.columns[2].isEditable = true;
    });
    drawLines(0, LINES, "7");
    select(2);
    list->setFocus();
    for (const Qt::KeyboardModifier modifier :
         {Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier}) {
        QKeyEvent key(QEvent::ShortcutOverride, Qt::Key_F2, modifier);
        key.ignore();
        QApplication::sendEvent(list, &key);
        EXPECT_FALSE(key.isAccepted()) << "a menu may have it";
        QTest::keyClick(list, Qt::Key_F2, modifier);
        EXPECT_FALSE(list->isEditing());
    }
    const struct {
        int clicked, edited;
    } cells[] = {{0, 1}, {2, 2}, {1, 1}};
    for (const auto &cell : cells) {
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, middle(2, cell.clicked));
        QTest::keyClick(list, Qt::Key_F2);
        ASSERT_TRUE(cellField());
        QTest::keyClicks(cellField(), "5");
        QTest::keyClick(cellField(), Qt::Key_Return);
        GuiSettle();
        EXPECT_EQ(last(EVENT_CELL_EDITED).column, cell.edited);
    }
}

TEST_F(ViewListTest, PutsDecimalPointsBelowEachOtherWithinAType)
{
    const auto *delegate = static_cast<LineDelegate *>(list->itemDelegate());
    // u2 has even places, f4 odd ones.
    const char *const values[] = {"1", "2.5", "12345", "-1000.25", "7", "0x1F", "text"};
    for (int i = 0; i < 7; i++)
        drawLine(line(i, values[i]), i);
    list->repaint();
    const auto width = [this](int row) {
        return list->lines()->cell(row, VALUE_COLUMN).beforePoint;
    };
    EXPECT_GT(width(0), 0);
    EXPECT_NEAR(width(2), 5 * width(0), 0.01) << "digits of one width";
    EXPECT_EQ(delegate->pointPlace(0, VALUE_COLUMN), width(2));
    EXPECT_NEAR(delegate->pointPlace(1, VALUE_COLUMN), 5 * width(0), 0.01) << "with its sign";
    EXPECT_EQ(width(5), -1) << "hexadecimal";
    EXPECT_EQ(width(6), -1);
    GuiSettle();
    PaintWatch watch;
    list->viewport()->installEventFilter(&watch);
    drawLine(line(8, "1234567"), 8);
    GuiSettle();
    EXPECT_TRUE(watch.painted.contains(middle(2, VALUE_COLUMN))) << "its point has moved along";
    EXPECT_NEAR(delegate->pointPlace(2, VALUE_COLUMN), 7 * width(0), 0.01);
    list->viewport()->removeEventFilter(&watch);
}

TEST_F(ViewListTest, HasColumnsTheUserDragsAndSpareOnesForWideWindows)
{
    QHeaderView *header = list->horizontalHeader();
    EXPECT_TRUE(header->isVisible());
    EXPECT_TRUE(list->isColumnHidden(4)) << "no room at first";
    GuiWindow(PANEL_MAIN)->resize(1400, 700);
    GuiSettle();
    EXPECT_FALSE(list->isColumnHidden(4));
    EXPECT_GT(list->linesInView(), 20);
    guiEvents.clear();
    header->resizeSection(0, 177);
    ASSERT_FALSE(guiEvents.empty());
    EXPECT_EQ(guiEvents[0].kind, VIEW_EVENT_COLUMNS);
    EXPECT_EQ(guiEvents[0].widths[0], 177);
    GuiWindow(PANEL_MAIN)->resize(780, 491);
    GuiSettle();
}

TEST_F(ViewListTest, ShowsLabelsInColumnsWhereTheProgramNamesNone)
{
    auto *trace = GuiWidget<LineList>(PANEL_TRACE, TRACE_LIST);
    EXPECT_EQ(trace->lines()->headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(), "Result");
    EXPECT_EQ(trace->columnWidth(0), 104);
    GuiDrawList(PANEL_TRACE, TRACE_LIST, VIEW_LIST_LINES, [](VIEW_List &change) {
        VIEW_Line line;
        line.label = "12:00\033p90lgood\033p370lRead\033p500lmore";
        line.tip = "raw 0x12";
        change.count = 1;
        change.changed = {{0, line}};
    });
    EXPECT_EQ(trace->lines()->cell(0, 2).text, "Read");
    EXPECT_EQ(trace->lines()->cell(0, 3).text, "more") << "one column more than there are titles";
    EXPECT_EQ(trace->model()->index(0, 1).data(Qt::ToolTipRole).toString(), "raw 0x12");
    GuiDrawList(PANEL_TRACE, TRACE_LIST, VIEW_LIST_LINES,
                [](VIEW_List &change) { change.count = 0; });
}

} // namespace
