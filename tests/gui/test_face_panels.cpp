// Panels and controls against the tables: numbers, values, attributes, windows.
#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QSpinBox>

#include "gui/gui_support.h"
#include "runtime/qt/toggle_switch.h"

namespace {

constexpr int NOWHERE = 999;

TEST_F(FaceTest, LoadsEveryPanelWithEveryControlOfTheTable)
{
    for (int i = 0; i < UI_cnControls; i++) {
        const UI_Control &row = UI_aControls[i];
        FaceControl *control = nullptr;
        ASSERT_EQ(FACE_FindControl(row.panel, row.control, &control), 0) << row.name;
        if (row.kind != UIK_TIMER) {
            EXPECT_TRUE(control->widget) << row.name;
            if (control->widget)
                EXPECT_EQ(FACE_ControlOf(control->widget), control) << row.name;
        }
    }
}

TEST_F(FaceTest, GivesNoAccessKeyOfTheMainPanelTwice)
{
    QStringList texts;
    const QList<QWidget *> widgets = GuiWindow(PANEL_MAIN)->findChildren<QWidget *>();
    for (const QWidget *widget : widgets)
        if (!GuiWindow(PANEL_CONSOLE)->isAncestorOf(widget) && !widget->inherits("QMenu"))
            texts << widget->property("text").toString();
    const QList<QAction *> menus = GuiWindow(PANEL_MAIN)->findChild<QMenuBar *>()->actions();
    for (const QAction *menu : menus)
        texts << menu->text();
    QMap<QString, QString> owners;
    for (const QString &text : texts) {
        const QString key = QKeySequence::mnemonic(text).toString();
        EXPECT_TRUE(key.isEmpty() || !owners.contains(key))
            << key.toStdString() << ": " << text.toStdString() << " and "
            << owners[key].toStdString();
        owners[key] = text;
    }
    EXPECT_GT(owners.size(), menus.size());
}

TEST_F(FaceTest, AnswersWrongNumbersAndKindsWithCodes)
{
    int value = 0;
    std::string text;
    EXPECT_EQ(LoadPanel(0, NOWHERE), UIE_NO_PANEL);
    EXPECT_EQ(LoadPanel(NOWHERE, PANEL_CONSOLE), UIE_NO_PANEL);
    EXPECT_EQ(DisplayPanel(NOWHERE), UIE_NO_PANEL);
    EXPECT_EQ(SetCtrlVal(PANEL_MAIN, NOWHERE, 1), UIE_NO_CONTROL);
    EXPECT_EQ(SetCtrlVal(PANEL_MAIN, MAIN_STATE, 1), UIE_BAD_TYPE);
    EXPECT_EQ(SetCtrlVal(PANEL_MAIN, MAIN_COMM, "on"), UIE_BAD_TYPE);
    EXPECT_EQ(GetCtrlVal(PANEL_MAIN, MAIN_BTN_SAVE, &value), UIE_BAD_TYPE);
    EXPECT_EQ(SetCtrlVal(PANEL_MAIN, MAIN_MEM_MODE, 7), UIE_BAD_INDEX);
    EXPECT_EQ(SetCtrlIndex(PANEL_MAIN, MAIN_LIST, 0), UIE_BAD_INDEX);
    EXPECT_EQ(ClearListCtrl(PANEL_MAIN, MAIN_MESSAGE), UIE_BAD_TYPE);
    EXPECT_EQ(SetCtrlAttribute(PANEL_MAIN, MAIN_TIMER, ATTR_INTERVAL, 0.0), UIE_BAD_TYPE);
    EXPECT_EQ(SetCtrlAttribute(PANEL_MAIN, MAIN_TIMER, ATTR_VISIBLE, 1), UIE_BAD_ATTRIBUTE);
    EXPECT_EQ(SetCtrlAttribute(PANEL_MAIN, MAIN_LIST, ATTR_HEIGHT, 9), UIE_BAD_TYPE); // in a layout
    EXPECT_EQ(InsertTextBoxLine(PANEL_CONSOLE, CONSOLE_BOX, 5, "x"), UIE_BAD_INDEX);
    EXPECT_EQ(GetTextBoxLine(PANEL_CONSOLE, CONSOLE_BOX, 0, &text), UIE_BAD_INDEX);
    EXPECT_EQ(GetPanelMenuBar(PANEL_VALUE), UIE_NO_ITEM);
    EXPECT_EQ(SetMenuBarAttribute(PANEL_MAIN, NOWHERE, ATTR_DIMMED, 1), UIE_NO_ITEM);
    EXPECT_EQ(SetMenuBarAttribute(PANEL_VALUE, ITEM_OPEN, ATTR_DIMMED, 1), UIE_NO_PANEL);
}

TEST_F(FaceTest, ReportsWhatTheUserDoesAndNotWhatTheProgramDoes)
{
    GuiShow(PANEL_MAIN);
    SetCtrlVal(PANEL_MAIN, MAIN_COMM, 1);
    SetCtrlVal(PANEL_MAIN, MAIN_FM_SAMPLES, 20);
    SetCtrlVal(PANEL_MAIN, MAIN_MEM_ADDR, "12AB");
    SetCtrlVal(PANEL_MAIN, MAIN_MEM_MODE, 1);
    EXPECT_TRUE(guiEvents.empty());

    QTest::mouseClick(GuiWidget(PANEL_MAIN, MAIN_COMM), Qt::LeftButton);
    QTest::mouseClick(GuiWidget(PANEL_MAIN, MAIN_BTN_SAVE), Qt::LeftButton);
    GuiWidget<QSpinBox>(PANEL_MAIN, MAIN_FM_SAMPLES)->stepUp();
    QTest::keyClicks(GuiWidget(PANEL_MAIN, MAIN_MEM_ADDR), "0");
    const std::vector<GuiEvent> expected = {{PANEL_MAIN, MAIN_COMM, EVENT_COMMIT, 0},
                                            {PANEL_MAIN, MAIN_BTN_SAVE, EVENT_COMMIT, 0},
                                            {PANEL_MAIN, MAIN_FM_SAMPLES, EVENT_VAL_CHANGED, 0},
                                            {PANEL_MAIN, MAIN_MEM_ADDR, EVENT_VAL_CHANGED, 0}};
    guiEvents.erase(std::remove_if(guiEvents.begin(), guiEvents.end(),
                                   [](const GuiEvent &e) { return e.event == EVENT_KEYPRESS; }),
                    guiEvents.end());
    EXPECT_EQ(guiEvents, expected);

    int isOn = 1, samples = 0, mode = 0;
    std::string address;
    GetCtrlVal(PANEL_MAIN, MAIN_COMM, &isOn);
    GetCtrlVal(PANEL_MAIN, MAIN_FM_SAMPLES, &samples);
    GetCtrlVal(PANEL_MAIN, MAIN_MEM_ADDR, &address);
    GetCtrlVal(PANEL_MAIN, MAIN_MEM_MODE, &mode);
    EXPECT_EQ(isOn, 0);
    EXPECT_EQ(samples, 21);
    EXPECT_EQ(address, "12AB0");
    EXPECT_EQ(mode, 1);
}

TEST_F(FaceTest, KeepsAttributes)
{
    int value = 0;
    std::string text;
    for (const int attribute : {ATTR_DIMMED, ATTR_VISIBLE}) {
        for (const int wanted : {1, 0, 1}) {
            EXPECT_EQ(SetCtrlAttribute(PANEL_MAIN, MAIN_BTN_EDIT, attribute, wanted), 0);
            EXPECT_EQ(GetCtrlAttribute(PANEL_MAIN, MAIN_BTN_EDIT, attribute, &value), 0);
            EXPECT_EQ(value, wanted) << attribute;
        }
    }
    SetCtrlAttribute(PANEL_MAIN, MAIN_BTN_EDIT, ATTR_DIMMED, 0);
    SetCtrlAttribute(PANEL_MAIN, MAIN_STATUS, ATTR_TEXT_COLOR, 0xFFAA00);
    GetCtrlAttribute(PANEL_MAIN, MAIN_STATUS, ATTR_TEXT_COLOR, &value);
    EXPECT_EQ(value, 0xFFAA00);
    SetCtrlAttribute(PANEL_MAIN, MAIN_BTN_EDIT, ATTR_LABEL_TEXT, "Save & __edit");
    GetCtrlAttribute(PANEL_MAIN, MAIN_BTN_EDIT, ATTR_LABEL_TEXT, &text);
    EXPECT_EQ(text, "Save & __edit");
    EXPECT_EQ(GuiWidget<QPushButton>(PANEL_MAIN, MAIN_BTN_EDIT)->text(), "Save && &edit");
    SetPanelAttribute(PANEL_MAIN, ATTR_TITLE, "Vireo2 * a[*].dbg ");
    GetPanelAttribute(PANEL_MAIN, ATTR_TITLE, &text);
    EXPECT_EQ(text, "Vireo2 * a[*].dbg ");
}

TEST_F(FaceTest, PutsTheConsoleUnderTheMenuBarAndOverTheWatchView)
{
    GuiShow(PANEL_MAIN);
    PanelWindow *window = GuiWindow(PANEL_MAIN);
    EXPECT_EQ(window->size(), QSize(780, 491));
    EXPECT_EQ(window->findChild<QMenuBar *>()->geometry(), QRect(0, 0, 780, 21));
    SetPanelPos(PANEL_CONSOLE, 21, 1);
    DisplayPanel(PANEL_CONSOLE);
    EXPECT_EQ(GuiWindow(PANEL_CONSOLE)->pos(), QPoint(1, 21));
    EXPECT_EQ(GetActiveCtrl(PANEL_CONSOLE), CONSOLE_INPUT);
    EXPECT_FALSE(GuiWidget(PANEL_MAIN, MAIN_LIST)->isVisible());

    SetPanelAttribute(PANEL_MAIN, ATTR_SIZABLE, 1);
    SetPanelAttribute(PANEL_MAIN, ATTR_HEIGHT, 300);
    SetCtrlAttribute(PANEL_CONSOLE, CONSOLE_INPUT, ATTR_TOP, 300 - 42);
    EXPECT_EQ(GuiWidget(PANEL_CONSOLE, CONSOLE_INPUT)->y(), 258);
    GuiSettle();
    EXPECT_TRUE(guiEvents.empty()) << "the program's own resizing is not reported";
    window->resize(780, 320);
    GuiSettle();
    EXPECT_EQ(guiEvents, (std::vector<GuiEvent>{{PANEL_MAIN, 0, EVENT_PANEL_SIZE, 0}}));

    HidePanel(PANEL_CONSOLE);
    SetPanelAttribute(PANEL_MAIN, ATTR_HEIGHT, 491);
    SetPanelAttribute(PANEL_MAIN, ATTR_SIZABLE, 0);
    EXPECT_EQ(window->minimumHeight(), window->maximumHeight());
    EXPECT_TRUE(GuiWidget(PANEL_MAIN, MAIN_LIST)->isVisible());
}

TEST_F(FaceTest, ClosesAWindowOnlyWhenTheProgramHasNoSayInIt)
{
    GuiShow(PANEL_MAIN);
    GuiWindow(PANEL_MAIN)->close();
    EXPECT_EQ(guiEvents, (std::vector<GuiEvent>{{PANEL_MAIN, 0, EVENT_CLOSE, 0}}));
    EXPECT_TRUE(GuiWindow(PANEL_MAIN)->isVisible());
    QTest::keyClick(GuiWidget(PANEL_MAIN, MAIN_LIST), Qt::Key_Escape);
    EXPECT_TRUE(GuiWindow(PANEL_MAIN)->isVisible());
    GuiShow(PANEL_SCOPE);
    QTest::keyClick(GuiWindow(PANEL_SCOPE), Qt::Key_Escape);
    EXPECT_FALSE(GuiWindow(PANEL_SCOPE)->isVisible());
}

TEST_F(FaceTest, ReportsACloseThatComesInTheMiddleOfWorkAfterwards)
{
    GuiShow(PANEL_MAIN);
    {
        const FaceBusy busy;
        GuiWindow(PANEL_MAIN)->close();
        ProcessSystemEvents();
        EXPECT_TRUE(guiEvents.empty());
    }
    EXPECT_TRUE(QTest::qWaitFor([] { return !guiEvents.empty(); }));
    EXPECT_EQ(guiEvents.front().event, EVENT_CLOSE);
}

TEST_F(FaceTest, TicksOnlyWhileResumedAndNeverInsideACallback)
{
    SetCtrlAttribute(PANEL_MAIN, MAIN_TIMER, ATTR_INTERVAL, 0.005);
    QTest::qWait(30);
    EXPECT_TRUE(guiEvents.empty());
    int depth = 0, deepest = 0;
    guiAnswer = [&](const GuiEvent &) {
        deepest = std::max(deepest, ++depth);
        for (int i = 0; i < 5; i++) {
            QTest::qSleep(5);
            ProcessSystemEvents();
        }
        return --depth;
    };
    ResumeTimerCallbacks();
    EXPECT_TRUE(QTest::qWaitFor([] { return guiEvents.size() >= 3; }));
    SuspendTimerCallbacks();
    const size_t before = guiEvents.size();
    QTest::qWait(30);
    EXPECT_EQ(guiEvents.size(), before);
    EXPECT_EQ(deepest, 1);
}

TEST_F(FaceTest, EndsTheLoopWithTheLastCodeGiven)
{
    QTimer::singleShot(0, [] {
        QuitUserInterface(3);
        QuitUserInterface(5);
    });
    EXPECT_EQ(RunUserInterface(), 5);
    QuitUserInterface(7); // before the loop: it does not start
    EXPECT_EQ(RunUserInterface(), 7);
}

} // namespace
