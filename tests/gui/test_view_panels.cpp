// Panels and controls: what is drawn of the program's changes, what the user's doing hands
// in, how the windows behave, and whether everything can be read.
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSpinBox>
#include <QSplitter>
#include <QWindow>

#include "gui/gui_support.h"
#include "runtime/qt/look.h"
#include "runtime/qt/toggle_switch.h"

namespace {

const QSize SMALLEST_SCREEN(800, 600);

TEST_F(ViewTest, LoadsEveryPanelWithEveryControlOfTheTable)
{
    for (int i = 0; i < UI_cnControls; i++) {
        const UI_Control &row = UI_aControls[i];
        if (UI_GetFirstAlike(row.panel) != row.panel)
            continue; // of an inspector's other windows, loaded when needed
        QTV_Control *control = QTV_FindControl(row.panel, row.control);
        ASSERT_TRUE(control) << row.name;
        if (row.kind != UIK_TIMER) {
            ASSERT_TRUE(control->widget) << row.name;
            EXPECT_EQ(QTV_ControlOf(control->widget), control) << row.name;
        }
    }
}

// A window's own, and apart from them those of the connect page, which covers the rest.
QStringList AccessTexts(PanelWindow *window, bool isConnectPage)
{
    QStringList texts;
    const QList<QWidget *> widgets = window->findChildren<QWidget *>();
    for (const QWidget *widget : widgets)
        if (widget->window() == window && !widget->inherits("QMenu") &&
            GuiWindow(PANEL_CONNECT)->isAncestorOf(widget) == isConnectPage)
            texts << widget->property("text").toString();
    if (const QMenuBar *bar = window->findChild<QMenuBar *>()) {
        for (const QAction *menu : bar->actions())
            texts << menu->text();
    }
    return texts;
}

TEST_F(ViewTest, GivesNoAccessKeyOfAWindowTwice)
{
    int nKeys = 0;
    for (int panel = 0; panel < UI_cnPanels; panel++)
        for (const bool isConnectPage : {false, true}) {
            QMap<QString, QString> owners;
            PanelWindow *window = GuiWindow(UI_aPanels[panel].panel);
            if (window == nullptr)
                continue; // of a layout that was seen
            for (const QString &text : AccessTexts(window, isConnectPage)) {
                const QString key = QKeySequence::mnemonic(text).toString();
                EXPECT_TRUE(key.isEmpty() || !owners.contains(key))
                    << UI_aPanels[panel].title << ", " << key.toStdString() << ": "
                    << text.toStdString() << " and " << owners[key].toStdString();
                owners[key] = text;
                nKeys += !key.isEmpty();
            }
        }
    EXPECT_GT(nKeys, 100);
    const QList<QMenu *> all = GuiWindow(PANEL_MAIN)->findChildren<QMenu *>();
    for (const QMenu *menu : all) {
        QStringList keys;
        const QList<QAction *> actions = menu->actions();
        for (const QAction *action : actions)
            if (!QKeySequence::mnemonic(action->text()).isEmpty())
                keys << QKeySequence::mnemonic(action->text()).toString();
        EXPECT_EQ(keys.removeDuplicates(), 0) << menu->title().toStdString();
    }
}

TEST_F(ViewTest, DrawsWhatTheProgramSetsAndReportsNothingOfIt)
{
    GuiDraw(PANEL_MAIN, MAIN_COMM, VIEW_CTRL_VALUE, [](VIEW_Control &c) { c.value = 1; });
    GuiDraw(PANEL_MAIN, MAIN_FM_SAMPLES, VIEW_CTRL_VALUE, [](VIEW_Control &c) { c.number = 20; });
    GuiDraw(PANEL_MAIN, MAIN_MEM_ADDR, VIEW_CTRL_VALUE, [](VIEW_Control &c) { c.text = "12AB"; });
    GuiDrawList(PANEL_MAIN, MAIN_MEM_MODE, VIEW_LIST_LINES | VIEW_LIST_SELECTION,
                [](VIEW_List &list) {
                    list.count = 2;
                    list.changed = {{0, {1, "C166", 40, "", {}}}, {1, {2, "TMS320", 41, "", {}}}};
                    list.current = 0;
                });
    GuiDraw(PANEL_MAIN, MAIN_MEM_MODE, VIEW_CTRL_VALUE, [](VIEW_Control &c) { c.value = 41; });
    GuiDraw(PANEL_MAIN, MAIN_BTN_EDIT, VIEW_CTRL_LABEL | VIEW_CTRL_DIMMED | VIEW_CTRL_TOOLTIP,
            [](VIEW_Control &c) {
                c.label = "Save & __edit";
                c.isDimmed = true;
                c.tooltip = "tip";
            });
    GuiDraw(PANEL_MAIN, 999, VIEW_CTRL_VALUE, [](VIEW_Control &c) { c.value = 1; });
    EXPECT_TRUE(GuiWidget<ToggleSwitch>(PANEL_MAIN, MAIN_COMM)->isChecked());
    EXPECT_EQ(GuiWidget<QSpinBox>(PANEL_MAIN, MAIN_FM_SAMPLES)->value(), 20);
    EXPECT_EQ(GuiText(PANEL_MAIN, MAIN_MEM_ADDR), "12AB");
    EXPECT_EQ(GuiWidget<QComboBox>(PANEL_MAIN, MAIN_MEM_MODE)->currentText(), "TMS320");
    auto *edit = GuiWidget<QPushButton>(PANEL_MAIN, MAIN_BTN_EDIT);
    EXPECT_EQ(edit->text(), "Save && &edit");
    EXPECT_FALSE(edit->isEnabled());
    EXPECT_EQ(edit->toolTip(), "tip");
    EXPECT_TRUE(guiEvents.empty());
}

TEST_F(ViewTest, HandsInWhatTheUserDoesWithTheValueItLeft)
{
    GuiShow(PANEL_MAIN);
    GuiDraw(PANEL_MAIN, MAIN_COMM, VIEW_CTRL_VALUE, [](VIEW_Control &c) { c.value = 0; });
    GuiDraw(PANEL_MAIN, MAIN_FM_SAMPLES, VIEW_CTRL_VALUE, [](VIEW_Control &c) { c.number = 20; });
    GuiDraw(PANEL_MAIN, MAIN_MEM_ADDR, VIEW_CTRL_VALUE, [](VIEW_Control &c) { c.text = "1"; });
    GuiDraw(PANEL_MAIN, MAIN_BTN_SAVE, VIEW_CTRL_DIMMED,
            [](VIEW_Control &c) { c.isDimmed = false; });
    guiEvents.clear();
    QTest::mouseClick(GuiWidget(PANEL_MAIN, MAIN_COMM), Qt::LeftButton);
    QTest::mouseClick(GuiWidget(PANEL_MAIN, MAIN_BTN_SAVE), Qt::LeftButton);
    GuiWidget<QSpinBox>(PANEL_MAIN, MAIN_FM_SAMPLES)->stepUp();
    auto *address = GuiWidget<QLineEdit>(PANEL_MAIN, MAIN_MEM_ADDR);
    address->setFocus();
    QTest::keyClicks(address, "0");
    QTest::keyClick(address, Qt::Key_Return);
    ASSERT_EQ(guiEvents.size(), 5u);
    const struct {
        int control, event;
    } expected[] = {{MAIN_COMM, EVENT_COMMIT},
                    {MAIN_BTN_SAVE, EVENT_COMMIT},
                    {MAIN_FM_SAMPLES, EVENT_VAL_CHANGED},
                    {MAIN_MEM_ADDR, EVENT_VAL_CHANGED},
                    {MAIN_MEM_ADDR, EVENT_COMMIT}};
    for (size_t i = 0; i < guiEvents.size(); i++) {
        EXPECT_EQ(guiEvents[i].control, expected[i].control) << i;
        EXPECT_EQ(guiEvents[i].event, expected[i].event) << i;
    }
    EXPECT_EQ(guiEvents[0].value, 1);
    EXPECT_EQ(guiEvents[2].number, 21);
    EXPECT_EQ(guiEvents[3].text, "10");

    QTV_postTo = [](const VIEW_Event &) { return false; };
    auto *comm = GuiWidget<ToggleSwitch>(PANEL_MAIN, MAIN_COMM);
    QTest::mouseClick(comm, Qt::LeftButton);
    EXPECT_TRUE(comm->isChecked()) << "a refused click leaves the switch as it was";
}

TEST_F(ViewTest, TheConsoleCoversTheWatchViewAndKeepsItsInputInTheWindow)
{
    GuiShow(PANEL_MAIN);
    PanelWindow *main = GuiWindow(PANEL_MAIN);
    EXPECT_EQ(main->size(), QSize(780, 491));
    const auto showConsole = [](bool isShown) {
        GuiDrawPanel(PANEL_CONSOLE, VIEW_PANEL_VISIBLE,
                     [isShown](VIEW_Panel &panel) { panel.isVisible = isShown; });
        GuiSettle();
    };
    QWidget *input = GuiWidget(PANEL_CONSOLE, CONSOLE_INPUT);
    for (const QSize size :
         {QSize(780, 491), QSize(1500, 1100), QSize(800, 560), QSize(780, 491)}) {
        main->resize(size);
        showConsole(true);
        EXPECT_FALSE(GuiWidget(PANEL_MAIN, MAIN_LIST)->isVisible());
        EXPECT_TRUE(input->hasFocus());
        EXPECT_TRUE(GuiWidget(PANEL_MAIN, MAIN_MESSAGE)->isVisible());
        EXPECT_TRUE(main->rect().contains(QRect(input->mapTo(main, QPoint()), input->size())))
            << size.height();
        showConsole(false);
        EXPECT_TRUE(GuiWidget(PANEL_MAIN, MAIN_LIST)->isVisible());
    }
}

TEST_F(ViewTest, WindowsAskBeforeTheyCloseAndEscapeNeverEndsTheProgram)
{
    GuiShow(PANEL_MAIN);
    GuiWindow(PANEL_MAIN)->close();
    EXPECT_TRUE(GuiWindow(PANEL_MAIN)->isVisible()) << "the program decides";
    EXPECT_EQ(GuiEventsOf(PANEL_MAIN, 0, EVENT_CLOSE).size(), 1u);
    QTest::keyClick(GuiWidget(PANEL_MAIN, MAIN_LIST), Qt::Key_Escape);
    EXPECT_EQ(GuiEventsOf(PANEL_MAIN, 0, EVENT_CLOSE).size(), 1u)
        << "Escape never ends the program";

    PanelWindow *scope = GuiWindow(PANEL_SCOPE);
    GuiShow(PANEL_SCOPE);
    EXPECT_EQ(scope->windowHandle()->transientParent(), GuiWindow(PANEL_MAIN)->windowHandle());
    QTest::keyClick(scope->focusWidget(), Qt::Key_Escape);
    EXPECT_EQ(GuiEventsOf(PANEL_SCOPE, 0, EVENT_CLOSE).size(), 1u);
}

TEST_F(ViewTest, WindowsRememberTheirPlaceAndStayOnTheScreen)
{
    GuiShow(PANEL_MAIN);
    PanelWindow *scope = GuiWindow(PANEL_SCOPE);
    GuiShow(PANEL_SCOPE);
    static std::vector<VIEW_Event> placed;
    placed.clear();
    QTV_postTo = [](const VIEW_Event &event) {
        const bool isPlace = event.kind == VIEW_EVENT_PLACED || event.event == EVENT_PANEL_SIZE;
        if (isPlace && event.panel == PANEL_SCOPE)
            placed.push_back(event);
        return true;
    };
    scope->move(40, 50);
    scope->resize(790, 590);
    EXPECT_TRUE(QTest::qWaitFor([] { return placed.size() >= 2; }));
    EXPECT_EQ(placed[0].kind, VIEW_EVENT_PLACED);
    EXPECT_EQ(placed[0].rect.left, 40);
    EXPECT_EQ(placed[0].rect.width, 790);
    EXPECT_EQ(placed[1].event, EVENT_PANEL_SIZE);
    const auto place = [](int left, int top) {
        GuiDrawPanel(PANEL_SCOPE, VIEW_PANEL_PLACE, [left, top](VIEW_Panel &panel) {
            panel.rect.left = left;
            panel.rect.top = top;
        });
    };
    place(60, 70);
    EXPECT_EQ(scope->pos(), QPoint(60, 70));
    place(20000, 70);
    EXPECT_EQ(scope->pos(), QPoint(60, 70)) << "that screen is gone";
    scope->setShown(false);
    scope->resize(5000, 300);
    scope->setShown(true);
    EXPECT_LT(scope->width(), 5000) << "no wider than the screen";
    EXPECT_TRUE(scope->screen()->availableGeometry().contains(scope->frameGeometry()));
}

TEST_F(ViewTest, AMaximisedWindowKeepsThePlaceItHad)
{
    GuiShow(PANEL_MAIN);
    PanelWindow *scope = GuiWindow(PANEL_SCOPE);
    GuiShow(PANEL_SCOPE);
    static std::vector<VIEW_Event> placed;
    placed.clear();
    QTV_postTo = [](const VIEW_Event &event) {
        if (event.kind == VIEW_EVENT_PLACED || event.kind == VIEW_EVENT_LAYOUT)
            placed.push_back(event);
        return true;
    };
    scope->move(40, 50);
    EXPECT_TRUE(QTest::qWaitFor([] { return !placed.empty(); }));
    placed.clear();
    scope->setWindowState(Qt::WindowMaximized);
    EXPECT_TRUE(QTest::qWaitFor([] { return !placed.empty(); }));
    QTest::qWait(100); // longer than a report of its place would take
    ASSERT_EQ(placed.size(), 1u) << "a window that fills the screen keeps the place it had";
    EXPECT_EQ(placed[0].text, "17.maximized");
    EXPECT_EQ(placed[0].widths, std::vector<int>{1});
}

TEST_F(ViewTest, SplittersKeepTheSizesThatTheUserGaveThem)
{
    GuiShow(PANEL_MAIN);
    auto *split = GuiWindow(PANEL_MAIN)->findChild<QSplitter *>("split");
    ASSERT_TRUE(split);
    VIEW_Batch batch;
    batch.layouts = {{"13.split", {50, 150}}, {"13.split", {100, 100, 100}}, {"other", {1}}};
    QTV_Draw(batch);
    EXPECT_LT(split->sizes()[0], 300) << "as in the last run; other counts are another layout's";
    const QList<int> dragged = {split->sizes()[0] + 30, split->sizes()[1] - 30};
    split->setSizes(dragged);
    EXPECT_TRUE(guiEvents.empty() || guiEvents.back().kind != VIEW_EVENT_LAYOUT)
        << "only the user's doing is kept";
    emit split->splitterMoved(dragged[0], 1);
    ASSERT_FALSE(guiEvents.empty());
    EXPECT_EQ(guiEvents.back().text, "13.split");
    const QList<int> sizes = split->sizes();
    EXPECT_EQ(guiEvents.back().widths, std::vector<int>(sizes.begin(), sizes.end()));
}

TEST_F(ViewTest, EveryPanelFitsTheSmallestScreenWithoutCuttingItsTextsOff)
{
    for (int i = 0; i < UI_cnPanels; i++) {
        PanelWindow *window = GuiWindow(UI_aPanels[i].panel);
        if (window == nullptr)
            continue; // of a layout that was seen
        const QSize least = window->minimumSizeHint().expandedTo(window->minimumSize());
        EXPECT_LE(least.width(), SMALLEST_SCREEN.width()) << UI_aPanels[i].name;
        EXPECT_LE(least.height(), SMALLEST_SCREEN.height()) << UI_aPanels[i].name;
        if (window->isWindow()) {
            window->resize(least);
            GuiShow(UI_aPanels[i].panel);
        }
        const QList<QWidget *> widgets = window->findChildren<QWidget *>();
        for (QWidget *widget : widgets) {
            const bool isText = widget->inherits("QAbstractButton") || widget->inherits("QLabel");
            const bool isElastic = widget->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored;
            if (!isText || isElastic || !widget->isVisible() || widget->window() != window)
                continue;
            auto *label = qobject_cast<QLabel *>(widget);
            if (label && label->wordWrap())
                continue;
            EXPECT_GE(widget->width(), widget->minimumSizeHint().width())
                << UI_aPanels[i].name << ": " << widget->objectName().toStdString();
            EXPECT_TRUE(
                window->rect().contains(QRect(widget->mapTo(window, QPoint()), widget->size())))
                << UI_aPanels[i].name << ": " << widget->objectName().toStdString();
        }
    }
}

QPalette DarkPalette()
{
    QPalette dark;
    const struct {
        QPalette::ColorRole role;
        QRgb color;
    } rows[] = {{QPalette::Window, 0xFF2B2B2B},       {QPalette::WindowText, 0xFFE6E6E6},
                {QPalette::Base, 0xFF1E1E1E},         {QPalette::Text, 0xFFE6E6E6},
                {QPalette::Button, 0xFF3A3A3A},       {QPalette::ButtonText, 0xFFE6E6E6},
                {QPalette::Highlight, 0xFF2F65A0},    {QPalette::HighlightedText, 0xFFFFFFFF},
                {QPalette::AlternateBase, 0xFF262626}};
    for (const auto &row : rows)
        dark.setColor(row.role, QColor::fromRgba(row.color));
    return dark;
}

TEST_F(ViewTest, EverythingCanBeReadOnLightAndDark)
{
    EXPECT_NEAR(QTV_GetContrast(Qt::white, Qt::black), 21.0, 0.01);
    EXPECT_NEAR(QTV_GetContrast(QColor(0x77, 0x77, 0x77), Qt::white), 4.48, 0.01);
    GuiShow(PANEL_MAIN);
    const QPalette usual = QApplication::palette();
    // RUN, Error, Error TMS; written, not held, plain.
    const int meant[] = {0x008000, 0xFF0000, 0xFFAA00, 0x1F8A4C, 0xB35C00, 0xC01C28, 0x1E2A36};
    for (const QPalette &palette : {usual, DarkPalette()}) {
        QApplication::setPalette(palette);
        GuiSettle();
        auto *status = GuiWidget<QLabel>(PANEL_MAIN, MAIN_STATUS);
        const QColor ground = status->parentWidget()->palette().color(QPalette::Window);
        EXPECT_EQ(ground, palette.color(QPalette::Window));
        for (const int color : meant) {
            GuiDraw(PANEL_MAIN, MAIN_STATUS, VIEW_CTRL_COLOR,
                    [color](VIEW_Control &c) { c.color = color; });
            const QColor pen = status->palette().color(QPalette::WindowText);
            EXPECT_GE(QTV_GetContrast(pen, ground), 4.5) << std::hex << color;
        }
        const QList<QLabel *> labels = GuiWindow(PANEL_MAIN)->findChildren<QLabel *>();
        for (const QLabel *label : labels) {
            const QColor pen = label->palette().color(QPalette::Active, QPalette::WindowText);
            EXPECT_GE(QTV_GetContrast(pen, ground), 4.5) << label->objectName().toStdString();
        }
        const QTV_LineColors lines = QTV_MakeLineColors(palette);
        for (int i = 0; i < LG_COUNT; i++)
            for (int tone = 0; tone < LT_COUNT; tone++)
                EXPECT_GE(QTV_GetContrast(lines.text[i][tone], lines.ground[i]), 4.5)
                    << i << " " << tone;
    }
    // A colour the program gave while it was light follows when the desktop turns dark.
    QApplication::setPalette(usual);
    GuiSettle();
    GuiDraw(PANEL_MAIN, MAIN_STATUS, VIEW_CTRL_COLOR, [](VIEW_Control &c) { c.color = 0x008000; });
    QApplication::setPalette(DarkPalette());
    GuiSettle();
    const QWidget *status = GuiWidget(PANEL_MAIN, MAIN_STATUS);
    EXPECT_GE(QTV_GetContrast(status->palette().color(QPalette::WindowText),
                              DarkPalette().color(QPalette::Window)),
              4.5);
    QApplication::setPalette(usual);
    GuiSettle();
}

} // namespace
