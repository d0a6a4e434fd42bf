// Text boxes, completion, keys on their way to the widgets, and the menu bar.
#include <QAction>
#include <QComboBox>
#include <QCompleter>
#include <QDir>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMessageBox>
#include <QScrollBar>
#include <QTemporaryDir>

#include "gui/gui_support.h"
#include "runtime/qt/port_menu.h"

namespace {

QString BoxText()
{
    return GuiWidget<TextBox>(PANEL_CONSOLE, CONSOLE_BOX)->toPlainText();
}

TEST_F(ViewTest, ATextBoxGrowsAtItsEndAndLosesItsTop)
{
    const struct {
        const char *text;
        bool isReset;
        const char *shown;
    } steps[] = {{"one\r\ntw", false, "one\ntw"},
                 {"o\n", false, "one\ntwo"},
                 {"three", false, "one\ntwo\nthree"},
                 {"\nfour\n", false, "one\ntwo\nthree\nfour"},
                 {"\nnew", true, "\nnew"},
                 {"er\n\n", false, "\nnewer\n"},
                 {"", true, ""},
                 {"a", false, "a"}};
    for (const auto &step : steps) {
        GuiDrawText(PANEL_CONSOLE, CONSOLE_BOX, step.text, step.isReset);
        EXPECT_EQ(BoxText(), step.shown) << step.text;
    }
    VIEW_Batch batch;
    batch.boxes.push_back({PANEL_CONSOLE, CONSOLE_BOX, false, "\nb\nc\nd\n", 2, -1});
    QTV_Draw(batch);
    EXPECT_EQ(BoxText(), "c\nd");
    std::string many;
    for (int i = 0; i < UI_BOX_LINES_MAX + 10; i++)
        many += std::to_string(i) + "\n";
    GuiDrawText(PANEL_CONSOLE, CONSOLE_BOX, many, true);
    EXPECT_EQ(GuiWidget<TextBox>(PANEL_CONSOLE, CONSOLE_BOX)->blockCount(), UI_BOX_LINES_MAX);
    EXPECT_TRUE(BoxText().startsWith("10\n"));
}

TEST_F(ViewTest, ATextBoxFollowsItsEndUnlessTheUserLooksElsewhere)
{
    GuiShow(PANEL_MAIN);
    GuiDrawPanel(PANEL_CONSOLE, VIEW_PANEL_VISIBLE,
                 [](VIEW_Panel &panel) { panel.isVisible = true; });
    GuiSettle();
    auto *box = GuiWidget<TextBox>(PANEL_CONSOLE, CONSOLE_BOX);
    for (int i = 0; i < 200; i++)
        GuiDrawText(PANEL_CONSOLE, CONSOLE_BOX, std::to_string(i) + "\n", false);
    QScrollBar *bar = box->verticalScrollBar();
    EXPECT_EQ(bar->value(), bar->maximum());
    EXPECT_GT(bar->maximum(), 100);
    bar->setValue(50);
    GuiDrawText(PANEL_CONSOLE, CONSOLE_BOX, "new\n", false);
    EXPECT_EQ(bar->value(), 50);
    VIEW_Batch batch;
    batch.boxes.push_back({PANEL_CONSOLE, CONSOLE_BOX, false, "", 0, 200});
    QTV_Draw(batch);
    EXPECT_EQ(bar->value(), bar->maximum());
    for (const int height : {600, 450}) {
        GuiWindow(PANEL_MAIN)->resize(780, height);
        GuiSettle();
        EXPECT_EQ(bar->value(), bar->maximum()) << "another size, still at the end";
    }
}

TEST_F(ViewTest, CompletionsComeWhenTheyComeAndOnlyIfTheyStillFit)
{
    GuiShow(PANEL_ITEM);
    auto *field = GuiWidget<QLineEdit>(PANEL_ITEM, WITEM_NAME);
    GuiDraw(PANEL_ITEM, WITEM_NAME, VIEW_CTRL_COMPLETION,
            [](VIEW_Control &c) { c.hasCompletion = true; });
    field->clear();
    field->setFocus();
    QTest::keyClicks(field, "aw");
    EXPECT_EQ(GuiEventsOf(PANEL_ITEM, WITEM_NAME, EVENT_VAL_CHANGED).back().text, "aw");
    EXPECT_FALSE(field->completer()->popup()->isVisible()) << "nothing known yet";
    const auto offer = [](const char *typed) {
        VIEW_Batch batch;
        batch.completions.push_back({PANEL_ITEM, WITEM_NAME, typed, {"awTable", "awTail"}});
        QTV_Draw(batch);
    };
    offer("a");
    EXPECT_FALSE(field->completer()->popup()->isVisible()) << "an answer to less than was typed";
    offer("aw");
    QWidget *offered = field->completer()->popup();
    ASSERT_TRUE(offered->isVisible());
    guiEvents.clear();
    QTest::keyClick(offered, Qt::Key_Down);
    QTest::keyClick(offered, Qt::Key_Return);
    GuiSettle();
    EXPECT_EQ(field->text(), "awTable");
    EXPECT_EQ(GuiEventsOf(PANEL_ITEM, WITEM_NAME, EVENT_VAL_CHANGED).back().text, "awTable");
    EXPECT_TRUE(GuiEventsOf(PANEL_ITEM, WITEM_NAME, EVENT_COMMIT).empty())
        << "Enter took the completion only";
    GuiDraw(PANEL_ITEM, WITEM_NAME, VIEW_CTRL_COMPLETION,
            [](VIEW_Control &c) { c.hasCompletion = false; });
}

TEST_F(ViewTest, EnterInAnOpenRingClosesTheRingOnly)
{
    GuiShow(PANEL_ITEM);
    GuiDrawList(PANEL_ITEM, WITEM_TYPE, VIEW_LIST_LINES | VIEW_LIST_SELECTION, [](VIEW_List &list) {
        list.count = 2;
        list.changed = {{0, {1, "u", 'u', "", {}}}, {1, {2, "x", 'x', "", {}}}};
        list.current = 0;
    });
    auto *type = GuiWidget<QComboBox>(PANEL_ITEM, WITEM_TYPE);
    type->setFocus();
    type->showPopup();
    GuiSettle();
    guiEvents.clear();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    GuiSettle();
    EXPECT_EQ(type->currentText(), "x");
    EXPECT_TRUE(GuiEventsOf(PANEL_ITEM, WITEM_TYPE, EVENT_KEYPRESS).empty())
        << "the window has no Enter";
    QTest::keyClick(type, Qt::Key_Return);
    EXPECT_EQ(GuiEventsOf(PANEL_ITEM, WITEM_TYPE, EVENT_KEYPRESS).size(), 1u);
}

TEST_F(ViewTest, TranslatesKeys)
{
    const struct {
        int qtKey;
        Qt::KeyboardModifiers modifiers;
        const char *text;
        int code;
    } rows[] = {
        {Qt::Key_A, Qt::NoModifier, "a", 'a'},
        {Qt::Key_A, Qt::ShiftModifier, "A", 'A'},
        {Qt::Key_S, Qt::ControlModifier, "\x13", KEY_CTRL | 'S'},
        {Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier, "\x13", KEY_CTRL | KEY_SHIFT | 'S'},
        {Qt::Key_F1, Qt::NoModifier, "", KEY_F1},
        {Qt::Key_F12, Qt::AltModifier, "", KEY_ALT | (KEY_F1 + 11)},
        {Qt::Key_Enter, Qt::KeypadModifier, "\r", KEY_ENTER},
        {Qt::Key_Backtab, Qt::ShiftModifier, "", KEY_SHIFT | KEY_TAB},
        {Qt::Key_Up, Qt::ShiftModifier, "", KEY_SHIFT | KEY_UP},
        {Qt::Key_Shift, Qt::ShiftModifier, "", 0},
        {Qt::Key_Aacute, Qt::NoModifier, "\xC3\xA1", 0}};
    for (const auto &row : rows)
        EXPECT_EQ(QTV_KeyCode(row.qtKey, row.modifiers, row.text), row.code) << row.qtKey;
}

TEST_F(ViewTest, TheKeyTableSaysWhoGetsAKeyAndWhatIsLeftForTheWidget)
{
    GuiShow(PANEL_MAIN);
    QWidget *field = GuiWidget(PANEL_MAIN, MAIN_MEM_ADDR);
    field->setFocus();
    QTest::keyClick(field, Qt::Key_Home);
    QTest::keyClicks(field, "1");
    EXPECT_TRUE(GuiEventsOf(PANEL_MAIN, MAIN_MEM_ADDR, EVENT_KEYPRESS).empty());
    QTest::keyClick(field, Qt::Key_Down);
    ASSERT_EQ(GuiEventsOf(PANEL_MAIN, 0, EVENT_KEYPRESS).size(), 1u);
    EXPECT_EQ(GuiEventsOf(PANEL_MAIN, 0, EVENT_KEYPRESS)[0].value, KEY_DOWN);

    GuiDrawPanel(PANEL_CONSOLE, VIEW_PANEL_VISIBLE,
                 [](VIEW_Panel &panel) { panel.isVisible = true; });
    auto *input = GuiWidget<QLineEdit>(PANEL_CONSOLE, CONSOLE_INPUT);
    input->setFocus();
    input->clear();
    QTest::keyClicks(input, "x");
    guiEvents.clear();
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Tab})
        QTest::keyClick(input, key);
    const std::vector<VIEW_Event> keys = GuiEventsOf(PANEL_CONSOLE, CONSOLE_INPUT, EVENT_KEYPRESS);
    ASSERT_EQ(keys.size(), 2u);
    EXPECT_EQ(keys[0].value, KEY_UP);
    EXPECT_EQ(keys[1].text, "x") << "with what stands in the field";
    EXPECT_TRUE(input->hasFocus()) << "swallowed: the keyboard did not move on";
    GuiDrawPanel(PANEL_CONSOLE, VIEW_PANEL_VISIBLE,
                 [](VIEW_Panel &panel) { panel.isVisible = false; });

    auto *save = GuiWidget(PANEL_MAIN, MAIN_BTN_SAVE);
    GuiDraw(PANEL_MAIN, MAIN_BTN_SAVE, VIEW_CTRL_DIMMED,
            [](VIEW_Control &c) { c.isDimmed = false; });
    save->setFocus();
    QTest::keyClick(save, Qt::Key_Down);
    EXPECT_TRUE(save->hasFocus()) << "arrows do not walk from button to button";
}

TEST_F(ViewTest, MenusHaveEveryItemOfTheTable)
{
    for (int i = 0; i < UI_cnMenuItems; i++) {
        const UI_MenuItem &row = UI_aMenuItems[i];
        if (row.item == 0)
            continue;
        const QAction *action = QTV_MenuAction(row.item);
        ASSERT_TRUE(action) << row.item;
        EXPECT_EQ(action->isSeparator(), row.text[0] == '\0') << row.item;
        EXPECT_EQ(action->shortcut().isEmpty(), row.shortcut == 0) << row.item;
    }
    EXPECT_EQ(QTV_MenuAction(ITEM_SAVE_AS)->shortcut(), QKeySequence("Ctrl+Shift+S"));
}

TEST_F(ViewTest, MenusTakeItemsInAndOut)
{
    GuiShow(PANEL_MAIN);
    VIEW_Batch batch;
    batch.items.resize(1);
    VIEW_MenuItem &item = batch.items[0];
    item.item = 1000;
    item.isNew = true;
    item.menu = MENU_FILE;
    item.before = ITEM_RECENT_END;
    item.text = "__1 /a__b&c.dbg";
    item.shortcut = KEY_F1 + 10;
    item.isCheckable = item.isChecked = true;
    QTV_Draw(batch);
    QAction *action = QTV_MenuAction(1000);
    ASSERT_TRUE(action);
    EXPECT_EQ(action->text(), "&1 /a__b&&c.dbg");
    const QList<QAction *> items = qobject_cast<QMenu *>(action->parent())->actions();
    EXPECT_EQ(items.indexOf(action) + 1, items.indexOf(QTV_MenuAction(ITEM_RECENT_END)));
    guiEvents.clear();
    QTest::keyClick(GuiWindow(PANEL_MAIN), Qt::Key_F11);
    ASSERT_EQ(guiEvents.size(), 1u);
    EXPECT_EQ(guiEvents[0].kind, VIEW_EVENT_MENU);
    EXPECT_EQ(guiEvents[0].item, 1000);
    EXPECT_EQ(guiEvents[0].value, 1) << "as it was";
    EXPECT_TRUE(action->isChecked()) << "a click does not move the mark: the program does";
    item.isDimmed = true;
    QTV_Draw(batch);
    QTest::keyClick(GuiWindow(PANEL_MAIN), Qt::Key_F11);
    EXPECT_EQ(guiEvents.size(), 1u);
    item.isGone = true;
    QTV_Draw(batch);
    EXPECT_FALSE(QTV_MenuAction(1000));
}

TEST_F(ViewTest, ThePortMenuTellsWhatStandsBehindANumber)
{
    QTemporaryDir folder;
    QFile device(folder.filePath("tty"));
    ASSERT_TRUE(device.open(QIODevice::WriteOnly));
    qputenv("VIREO2_COM3", QFile::encodeName(device.fileName()));
    qputenv("VIREO2_COM4", "/nowhere/at/all");
    auto *menu = qobject_cast<QMenu *>(QTV_MenuAction(ITEM_PORT_FIRST)->parent());
    emit menu->aboutToShow();
    EXPECT_TRUE(QTV_MenuAction(ITEM_PORT_FIRST + 2)->text().startsWith("COM&3 "));
    EXPECT_TRUE(QTV_MenuAction(ITEM_PORT_FIRST + 2)->text().endsWith("/tty"));
    EXPECT_EQ(QTV_MenuAction(ITEM_PORT_FIRST + 3)->text(), "COM&4");
    qunsetenv("VIREO2_COM3");
    qunsetenv("VIREO2_COM4");
}

TEST_F(ViewTest, AssigningAPortReplacesItsLinkOrSaysWhyNot)
{
    QTemporaryDir folder;
    QFile first(folder.filePath("first")), second(folder.filePath("second"));
    ASSERT_TRUE(first.open(QIODevice::WriteOnly) && second.open(QIODevice::WriteOnly));
    const QByteArray before = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder.path()));
    EXPECT_EQ(QTV_AssignPort(6, first.fileName()), 0);
    EXPECT_EQ(QTV_DescribePort(6), QFileInfo(first).canonicalFilePath());
    EXPECT_EQ(QTV_AssignPort(6, second.fileName()), 0);
    EXPECT_EQ(QTV_DescribePort(6), QFileInfo(second).canonicalFilePath());

    // A file where a folder is needed: nobody, not even root, can write there.
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(first.fileName()));
    EXPECT_EQ(QTV_AssignPort(6, second.fileName()), -1);
    auto *box = qobject_cast<QMessageBox *>(GuiDialog());
    ASSERT_TRUE(box);
    EXPECT_TRUE(box->text().startsWith("Cannot write the link ")) << box->text().toStdString();
    GuiClickButton(box, "OK");
    before.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", before);
}

} // namespace
