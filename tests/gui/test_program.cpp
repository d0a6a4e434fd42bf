// The whole desktop program on the example project and a simulated target, the program on
// its own thread: what a user clicks and types, and what then stands in the window.
#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextBrowser>

#include "gui/gui_support.h"
#include "runtime/qt/led_label.h"
#include "runtime/qt/toggle_switch.h"
#include "settings/settings.h"

namespace {

class ProgramTest : public GuiProgramTest {
protected:
    void SetUp() override
    {
        GuiProgramTest::SetUp();
        list = GuiWidget<LineList>(PANEL_MAIN, MAIN_LIST);
    }
    static void clickCommunication()
    {
        QTest::mouseClick(GuiWidget(PANEL_MAIN, MAIN_COMM), Qt::LeftButton);
    }
    // The line as it stands in the window: all its cells.
    QString line(int row) const
    {
        QString text;
        for (int i = 0; i < list->lines()->columnCount(); i++)
            text += list->lines()->cell(row, i).text + "|";
        return text;
    }
    static bool waitForText(int control, const QString &wanted)
    {
        return QTest::qWaitFor([&] { return GuiText(PANEL_MAIN, control) == wanted; }, PATIENCE_MS);
    }
    static bool isOn(int control)
    {
        return GuiWidget<LedLabel>(PANEL_MAIN, control)->isOn();
    }
    static void press(QWidget *widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(widget, key, modifiers);
        ASSERT_TRUE(settle());
    }

    LineList *list = nullptr;
};

TEST_F(ProgramTest, ShowsLiveValues)
{
    ASSERT_GT(list->lines()->rowCount(), 2);
    EXPECT_TRUE(isOn(MAIN_STOPPED));
    EXPECT_TRUE(isOn(MAIN_LED_MAPFILE));
    clickCommunication();
    ASSERT_TRUE(waitForText(MAIN_STATUS, "RUN"));
    EXPECT_FALSE(isOn(MAIN_STOPPED));
    const QString before = line(0);
    EXPECT_TRUE(before.startsWith("wRamp|")) << before.toStdString();
    EXPECT_TRUE(QTest::qWaitFor([&] { return line(0) != before; }, PATIENCE_MS));
    EXPECT_FALSE(before.contains("(!)"));
}

// The program is held in a callback for as long as the test wants: whatever the window
// does meanwhile it does without the program.
TEST_F(ProgramTest, TheWindowNeverWaitsForTheProgram)
{
    std::atomic<bool> isHeld{false}, isReleased{false};
    startOnProgram([&] {
        SetBusyText("waiting for station 9");
        isHeld = true;
        while (!isReleased)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return isHeld.load(); }, PATIENCE_MS));
    VIEW_Busy before, after;
    VIEW_GetBusy(&before);
    list->select({0}, 0);
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Down);
    EXPECT_EQ(list->currentRow(), 1);
    list->verticalScrollBar()->setValue(2);
    EXPECT_EQ(list->firstVisible(), qMin(2, list->verticalScrollBar()->maximum()));
    auto *address = GuiWidget<QLineEdit>(PANEL_MAIN, MAIN_MEM_ADDR);
    address->setFocus();
    QTest::keyClicks(address, "12AB");
    EXPECT_EQ(address->text(), "12AB");
    auto *comm = GuiWidget<ToggleSwitch>(PANEL_MAIN, MAIN_COMM);
    QTest::mouseClick(comm, Qt::LeftButton);
    EXPECT_TRUE(comm->isChecked());
    GuiWindow(PANEL_MAIN)->resize(900, 620);
    auto *bar = GuiWindow(PANEL_MAIN)->findChild<QMenuBar *>();
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(bar->actions()[0]).center());
    GuiSettle();
    ASSERT_TRUE(QApplication::activePopupWidget());
    QApplication::activePopupWidget()->close();
    auto *busy = GuiWindow(PANEL_MAIN)->findChild<QLabel *>("busy");
    EXPECT_TRUE(QTest::qWaitFor([&] { return busy->text().startsWith("waiting for station 9"); },
                                PATIENCE_MS));

    VIEW_GetBusy(&after);
    EXPECT_TRUE(after.isBusy && after.sinceMs == before.sinceMs) << "in the same callback still";
    isReleased = true;
    ASSERT_TRUE(settle());
    EXPECT_TRUE(waitForText(MAIN_STATUS, "RUN")) << "what was clicked meanwhile happens now";
    std::string typed;
    onProgram([&] { GetCtrlVal(PANEL_MAIN, MAIN_MEM_ADDR, &typed); });
    EXPECT_EQ(typed, "12AB");
    EXPECT_TRUE(QTest::qWaitFor([&] { return busy->text().isEmpty(); }, PATIENCE_MS));
    GuiWindow(PANEL_MAIN)->resize(780, 491);
}

// F1 is answered inside the program; the reader finds chapters and words.
TEST_F(ProgramTest, HelpOpensInsideTheProgramAndIsSearched)
{
    WriteFileText("help.md", "# Vireo2 help\n\nFirst words.\n\n## Keys\n\nF9 begins.\n\n"
                             "```\n  F1  this help\n```\n\n## Last\n\nF9 again.\n");
    press(GuiWindow(PANEL_MAIN), Qt::Key_F1);
    auto *help = GuiWindow(PANEL_MAIN)->findChild<QWidget *>("help");
    ASSERT_TRUE(help && help->isVisible());
    EXPECT_GT(help->findChild<QListWidget *>("contents")->count(), 10) << "the program's own";
    onProgram([] { ShowHelpText("help.md"); });
    auto *contents = help->findChild<QListWidget *>("contents");
    auto *text = help->findChild<QTextBrowser *>("text");
    auto *search = help->findChild<QLineEdit *>("search");
    ASSERT_EQ(contents->count(), 3);
    contents->setCurrentRow(2);
    EXPECT_EQ(text->textCursor().block().text(), "Last");
    QTest::keyClicks(search, "f9"); // behind the last one found, then from the beginning
    EXPECT_EQ(text->textCursor().block().text(), "F9 again.");
    QTest::keyClick(search, Qt::Key_Return);
    EXPECT_EQ(text->textCursor().block().text(), "F9 begins.");
    QTest::keyClicks(search, "9");
    EXPECT_FALSE(text->textCursor().hasSelection());
    onProgram([] { ShowHelpText("no-such-file.md"); });
    EXPECT_TRUE(text->toPlainText().contains("cannot be read"));
    QTest::keyClick(search, Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([help] { return !help->isVisible(); }, PATIENCE_MS));
    help->resize(700, 400);
    help->show();
    help->move(30, 40);
    std::vector<UI_Layout> layouts;
    onProgram([&] { GetViewLayouts(&layouts); });
    ASSERT_EQ(layouts.size(), 1u);
    layouts[0].numbers.resize(4);
    EXPECT_EQ(layouts[0].numbers, (std::vector<int>{30, 40, 700, 400}));
}

// Pages that the first one lists: links between them, back and forward, a search through all.
TEST_F(ProgramTest, HelpIsABookOfPages)
{
    QDir().mkpath("more");
    WriteFileText("book.md", "# Book\n\n- [Start](start.md)\n\n## Rest\n\n- [Far](more/far.md)\n");
    WriteFileText("start.md", "# Start\n\n[there](more/far.md#the-end-2) and [out](../x.md), "
                              "[net](http://localhost/)\n");
    std::string far = "# Far\n\n";
    for (int i = 0; i < 200; i++)
        far += "line\n\n";
    WriteFileText("more/far.md", far + "## The end, 2\n\n`zebra` *crossing*\n");
    onProgram([] { ShowHelpText("book.md"); });
    auto *help = GuiWindow(PANEL_MAIN)->findChild<QWidget *>("help");
    auto *contents = help->findChild<QListWidget *>("contents");
    auto *text = help->findChild<QTextBrowser *>("text");
    auto *search = help->findChild<QLineEdit *>("search");
    ASSERT_EQ(contents->count(), 4) << "contents, two pages, the heading over one";
    contents->setCurrentRow(1);
    EXPECT_TRUE(text->toPlainText().startsWith("Start"));
    for (const char *nowhere : {"../x.md", "http://localhost/more/far.md", "/etc/passwd"}) {
        emit text->anchorClicked(QUrl(nowhere));
        EXPECT_TRUE(text->toPlainText().startsWith("Start")) << nowhere;
    }
    emit text->anchorClicked(QUrl("more/far.md#the-end-2"));
    EXPECT_EQ(text->textCursor().block().text(), "The end, 2");
    EXPECT_GT(text->verticalScrollBar()->value(), 100);
    EXPECT_EQ(contents->count(), 5) << "with the heading of the open page";
    QTest::mouseClick(help->findChild<QWidget *>("back"), Qt::LeftButton);
    EXPECT_TRUE(text->toPlainText().startsWith("Start"));
    QTest::keyClicks(search, "zebra crossing");
    EXPECT_EQ(text->textCursor().selectedText(), "zebra crossing");
    QTest::mouseClick(help->findChild<QWidget *>("back"), Qt::LeftButton);
    EXPECT_TRUE(text->toPlainText().startsWith("Start")) << "one step, not one a page looked at";
    QTest::keyClicks(search, "s");
    EXPECT_FALSE(text->textCursor().hasSelection());
    EXPECT_TRUE(text->toPlainText().startsWith("Start"));
    help->close();
}

TEST_F(ProgramTest, ArrowsMoveTheSelectionFromAnywhereByOne)
{
    onProgram([] { SetCtrlIndex(PANEL_MAIN, MAIN_LIST, 1); });
    const struct {
        int focus;
        Qt::Key key;
        int selected;
    } steps[] = {{MAIN_LIST, Qt::Key_Down, 2},
                 {MAIN_LIST, Qt::Key_Up, 1},
                 {MAIN_COMM, Qt::Key_Down, 2},
                 {MAIN_MEM_ADDR, Qt::Key_Down, 3},
                 {MAIN_COMM, Qt::Key_Up, 2}};
    for (const auto &step : steps) {
        GuiWidget(PANEL_MAIN, step.focus)->setFocus();
        press(GuiWidget(PANEL_MAIN, step.focus), step.key);
        EXPECT_EQ(list->currentRow(), step.selected) << step.focus;
    }
}

} // namespace
