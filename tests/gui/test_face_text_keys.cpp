// Text boxes, keys on their way past the callbacks, and the menu bar.
#include <QAction>
#include <QDir>
#include <QMenu>
#include <QScrollBar>
#include <QTemporaryDir>

#include "gui/gui_support.h"
#include "runtime/qt/port_menu.h"

namespace {

std::vector<std::string> Lines()
{
    int count = -1;
    GetNumTextBoxLines(PANEL_CONSOLE, CONSOLE_BOX, &count);
    std::vector<std::string> lines(static_cast<size_t>(count));
    for (int i = 0; i < count; i++)
        GetTextBoxLine(PANEL_CONSOLE, CONSOLE_BOX, i, &lines[static_cast<size_t>(i)]);
    return lines;
}

using Strings = std::vector<std::string>;

TEST_F(FaceTest, TextBoxKeepsLines)
{
    EXPECT_EQ(Lines(), Strings());
    SetCtrlVal(PANEL_CONSOLE, CONSOLE_BOX, "one\r\ntw");
    SetCtrlVal(PANEL_CONSOLE, CONSOLE_BOX, "o\n");
    SetCtrlVal(PANEL_CONSOLE, CONSOLE_BOX, "three");
    EXPECT_EQ(Lines(), (Strings{"one", "two", "three"}));
    InsertTextBoxLine(PANEL_CONSOLE, CONSOLE_BOX, -1, "four");
    InsertTextBoxLine(PANEL_CONSOLE, CONSOLE_BOX, 0, "zero");
    EXPECT_EQ(Lines(), (Strings{"zero", "one", "two", "three", "four"}));
    SetCtrlVal(PANEL_CONSOLE, CONSOLE_BOX, "five");
    DeleteTextBoxLines(PANEL_CONSOLE, CONSOLE_BOX, 1, 3);
    EXPECT_EQ(Lines(), (Strings{"zero", "four", "five"}));
    DeleteTextBoxLines(PANEL_CONSOLE, CONSOLE_BOX, 2, -1);
    EXPECT_EQ(Lines(), (Strings{"zero", "four"}));
    DeleteTextBoxLines(PANEL_CONSOLE, CONSOLE_BOX, 0, -1);
    EXPECT_EQ(Lines(), Strings());
    ResetTextBox(PANEL_CONSOLE, CONSOLE_BOX, "\nnew");
    EXPECT_EQ(Lines(), (Strings{"", "new"}));
}

TEST_F(FaceTest, TextBoxFollowsItsEndUnlessTheUserLooksElsewhere)
{
    GuiShow(PANEL_MAIN);
    DisplayPanel(PANEL_CONSOLE);
    auto *box = GuiWidget<TextBox>(PANEL_CONSOLE, CONSOLE_BOX);
    for (int i = 0; i < 200; i++)
        InsertTextBoxLine(PANEL_CONSOLE, CONSOLE_BOX, -1, std::to_string(i));
    QScrollBar *bar = box->verticalScrollBar();
    EXPECT_EQ(bar->value(), bar->maximum());
    EXPECT_GT(bar->maximum(), 100);
    bar->setValue(50);
    InsertTextBoxLine(PANEL_CONSOLE, CONSOLE_BOX, -1, "new");
    EXPECT_EQ(bar->value(), 50);
    SetCtrlAttribute(PANEL_CONSOLE, CONSOLE_BOX, ATTR_FIRST_VISIBLE_LINE, 200);
    EXPECT_EQ(bar->value(), bar->maximum());
}

TEST_F(FaceTest, TextBoxIsBounded)
{
    std::string text;
    for (int i = 0; i < TextBox::MAX_LINES + 10; i++)
        text += std::to_string(i) + "\n";
    SetCtrlVal(PANEL_CONSOLE, CONSOLE_BOX, text);
    int count = 0;
    GetNumTextBoxLines(PANEL_CONSOLE, CONSOLE_BOX, &count);
    EXPECT_EQ(count, TextBox::MAX_LINES);
    GetTextBoxLine(PANEL_CONSOLE, CONSOLE_BOX, 0, &text);
    EXPECT_EQ(text, "10");
}

TEST_F(FaceTest, TextBoxKeepsTheSelectionWhenRefilledAlike)
{
    auto *box = GuiWidget<TextBox>(PANEL_MAIN, MAIN_MEM_BOX);
    const auto refill = [] {
        ResetTextBox(PANEL_MAIN, MAIN_MEM_BOX, "");
        SetCtrlVal(PANEL_MAIN, MAIN_MEM_BOX, "\n00012340: 11 22");
        SetCtrlVal(PANEL_MAIN, MAIN_MEM_BOX, "\n00012350: 33 44");
        GuiSettle();
    };
    refill();
    box->selectAll();
    const QString selected = box->textCursor().selectedText();
    EXPECT_EQ(selected.size(), 32);
    refill();
    EXPECT_EQ(box->textCursor().selectedText(), selected);
    ResetTextBox(PANEL_MAIN, MAIN_MEM_BOX, "");
    GuiSettle();
}

TEST_F(FaceTest, TranslatesKeys)
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
        EXPECT_EQ(FACE_KeyCode(row.qtKey, row.modifiers, row.text), row.code) << row.qtKey;
}

TEST_F(FaceTest, OffersKeysToTheControlThenToThePanel)
{
    GuiShow(PANEL_MAIN);
    QWidget *field = GuiWidget(PANEL_MAIN, MAIN_MEM_ADDR);
    field->setFocus();
    QTest::keyClick(field, Qt::Key_Home);
    EXPECT_EQ(guiEvents,
              (std::vector<GuiEvent>{{PANEL_MAIN, MAIN_MEM_ADDR, EVENT_KEYPRESS, KEY_HOME},
                                     {PANEL_MAIN, 0, EVENT_KEYPRESS, KEY_HOME}}));
    guiEvents.clear();
    guiAnswer = [](const GuiEvent &) { return 1; };
    SetCtrlVal(PANEL_MAIN, MAIN_MEM_ADDR, "");
    QTest::keyClicks(field, "1");
    QTest::keyClick(field, Qt::Key_Return);
    QTest::keyClick(field, Qt::Key_Tab);
    EXPECT_EQ(guiEvents.size(), 3u) << "swallowed: neither typed nor committed";
    std::string text = "?";
    GetCtrlVal(PANEL_MAIN, MAIN_MEM_ADDR, &text);
    EXPECT_EQ(text, "");
    EXPECT_EQ(GetActiveCtrl(PANEL_MAIN), MAIN_MEM_ADDR);
}

TEST_F(FaceTest, ArrowsDoNotWalkFromButtonToButton)
{
    GuiShow(PANEL_MAIN);
    SetCtrlAttribute(PANEL_MAIN, MAIN_BTN_SAVE, ATTR_DIMMED, 0);
    SetActiveCtrl(PANEL_MAIN, MAIN_BTN_SAVE);
    QTest::keyClick(GuiWidget(PANEL_MAIN, MAIN_BTN_SAVE), Qt::Key_Down);
    EXPECT_EQ(GetActiveCtrl(PANEL_MAIN), MAIN_BTN_SAVE);
    EXPECT_EQ(guiEvents.back(), (GuiEvent{PANEL_MAIN, 0, EVENT_KEYPRESS, KEY_DOWN}));
}

std::vector<int> clickedItems;

void NoteItem(int, int item)
{
    clickedItems.push_back(item);
}

TEST_F(FaceTest, MenusHaveEveryItemOfTheTable)
{
    for (int i = 0; i < UI_cnMenuItems; i++) {
        const UI_MenuItem &row = UI_aMenuItems[i];
        if (row.item == 0)
            continue;
        const QAction *action = FACE_MenuAction(row.item);
        ASSERT_TRUE(action) << row.item;
        EXPECT_EQ(action->isSeparator(), row.text[0] == '\0') << row.item;
        EXPECT_EQ(action->shortcut().isEmpty(), row.shortcut == 0) << row.item;
    }
    EXPECT_EQ(FACE_MenuAction(ITEM_SAVE_AS)->shortcut(), QKeySequence("Ctrl+Shift+S"));
    EXPECT_EQ(FACE_MenuAction(ITEM_HELP)->shortcut(), QKeySequence("F1"));
}

TEST_F(FaceTest, MenusTakeItemsInAndOut)
{
    GuiShow(PANEL_MAIN);
    clickedItems.clear();
    const int menuBar = GetPanelMenuBar(PANEL_MAIN);
    const int item = NewMenuItem(menuBar, MENU_FILE, "__1 /tmp/a__b&c.dbg", ITEM_RECENT_END,
                                 KEY_F1 + 10, NoteItem);
    ASSERT_GE(item, 1000);
    QAction *action = FACE_MenuAction(item);
    EXPECT_EQ(action->text(), "&1 /tmp/a__b&&c.dbg");
    auto *menu = qobject_cast<QMenu *>(action->parent());
    const QList<QAction *> items = menu->actions();
    EXPECT_EQ(items.indexOf(action) + 1, items.indexOf(FACE_MenuAction(ITEM_RECENT_END)));

    SetMenuBarAttribute(menuBar, item, ATTR_CHECKED, 1);
    QTest::keyClick(GuiWindow(PANEL_MAIN), Qt::Key_F11);
    EXPECT_EQ(clickedItems, std::vector<int>{item});
    int isChecked = 0;
    GetMenuBarAttribute(menuBar, item, ATTR_CHECKED, &isChecked);
    EXPECT_EQ(isChecked, 1) << "a click does not move the mark: the program does";

    SetMenuBarAttribute(menuBar, item, ATTR_DIMMED, 1);
    QTest::keyClick(GuiWindow(PANEL_MAIN), Qt::Key_F11);
    EXPECT_EQ(clickedItems.size(), 1u);
    EXPECT_EQ(DiscardMenuItem(menuBar, item), 0);
    EXPECT_EQ(DiscardMenuItem(menuBar, item), UIE_NO_ITEM);
    EXPECT_EQ(NewMenuItem(menuBar, MENU_HELP, "x", ITEM_OPEN, 0, nullptr), UIE_NO_ITEM);
}

TEST_F(FaceTest, PortMenuTellsWhatStandsBehindANumber)
{
    QTemporaryDir folder;
    QFile device(folder.filePath("tty"));
    ASSERT_TRUE(device.open(QIODevice::WriteOnly));
    qputenv("VIREO2_COM3", QFile::encodeName(device.fileName()));
    qputenv("VIREO2_COM4", "/nowhere/at/all");
    auto *menu = qobject_cast<QMenu *>(FACE_MenuAction(ITEM_PORT_FIRST)->parent());
    emit menu->aboutToShow();
    EXPECT_TRUE(FACE_MenuAction(ITEM_PORT_FIRST + 2)->text().startsWith("COM&3 "));
    EXPECT_TRUE(FACE_MenuAction(ITEM_PORT_FIRST + 2)->text().endsWith("/tty"));
    EXPECT_EQ(FACE_MenuAction(ITEM_PORT_FIRST + 3)->text(), "COM&4");
    qunsetenv("VIREO2_COM3");
    qunsetenv("VIREO2_COM4");
}

TEST_F(FaceTest, AssigningAPortReplacesItsLinkOrSaysWhyNot)
{
    QTemporaryDir folder;
    QFile first(folder.filePath("first")), second(folder.filePath("second"));
    ASSERT_TRUE(first.open(QIODevice::WriteOnly) && second.open(QIODevice::WriteOnly));
    const QByteArray before = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder.path()));
    EXPECT_EQ(FACE_AssignPort(6, first.fileName()), 0);
    EXPECT_EQ(FACE_DescribePort(6), QFileInfo(first).canonicalFilePath());
    EXPECT_EQ(FACE_AssignPort(6, second.fileName()), 0);
    EXPECT_EQ(FACE_DescribePort(6), QFileInfo(second).canonicalFilePath());

    // A file where a folder is needed: nobody, not even root, can write there.
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(first.fileName()));
    QString said;
    GuiAnswerNext([&](QWidget *popup) {
        said = popup->property("text").toString();
        GuiClickButton(popup, "OK");
    });
    EXPECT_EQ(FACE_AssignPort(6, second.fileName()), -1);
    EXPECT_TRUE(said.startsWith("Cannot write the link ")) << said.toStdString();
    before.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", before);
}

} // namespace
