// The model seen from a terminal: what a wrong number answers, what each kind of control
// takes, and that keys, questions and timers behave as in a window.

#include "runtime/list_columns.h"
#include "support/program_state.h"
#include "ui/ui_table.h"

namespace {

class Headless : public ProgramTest {
protected:
    Headless()
    {
        EXPECT_EQ(0, HL_LoadAllPanels());
    }
};

TEST_F(Headless, TablesAreSound)
{
    for (int i = 0; i < UI_cnControls; i++) {
        int visible = 0;
        EXPECT_EQ(0, GetPanelAttribute(UI_aControls[i].panel, ATTR_VISIBLE, &visible))
            << UI_aControls[i].name;
        for (int j = 0; j < i; j++)
            EXPECT_FALSE(UI_aControls[i].panel == UI_aControls[j].panel &&
                         (UI_aControls[i].control == UI_aControls[j].control ||
                          std::string(UI_aControls[i].name) == UI_aControls[j].name))
                << UI_aControls[i].name;
    }
    for (int i = 0; i < UI_cnMenuItems; i++)
        for (int j = 0; j < i; j++) {
            EXPECT_TRUE(UI_aMenuItems[i].item == 0 ||
                        UI_aMenuItems[i].item != UI_aMenuItems[j].item);
            EXPECT_TRUE(UI_aMenuItems[i].shortcut == 0 ||
                        UI_aMenuItems[i].shortcut != UI_aMenuItems[j].shortcut)
                << UI_aMenuItems[i].text;
        }
}

const UI_Control *FindControl(int panel, int control)
{
    for (int i = 0; i < UI_cnControls; i++)
        if (UI_aControls[i].panel == panel && UI_aControls[i].control == control)
            return &UI_aControls[i];
    return nullptr;
}

TEST_F(Headless, RowsOfTheOtherTablesMeanSomething)
{
    for (int i = 0; i < UI_cnKeys; i++) {
        const UI_KeyRow &row = UI_aKeys[i];
        const UI_Control *control = FindControl(row.panel, row.control);
        EXPECT_LE(row.first, row.last) << i;
        EXPECT_TRUE(row.control == 0 || (control && control->callback)) << i;
        for (int j = 0; j < i; j++) // the first would hide the second
            EXPECT_FALSE(row.panel == UI_aKeys[j].panel && row.control == UI_aKeys[j].control &&
                         row.first <= UI_aKeys[j].last && row.last >= UI_aKeys[j].first)
                << i;
    }
    for (int i = 0; i < UI_cnRingEntries; i++)
        EXPECT_EQ(UIK_RING,
                  FindControl(UI_aRingEntries[i].panel, UI_aRingEntries[i].control)->kind);
    for (int i = 0; i < UI_cnNumbers; i++)
        EXPECT_EQ(UIK_NUMBER, FindControl(UI_aNumbers[i].panel, UI_aNumbers[i].control)->kind);
    for (int i = 0; i < UI_cnUrgent; i++) {
        const UI_Urgent &row = UI_aUrgent[i];
        int value = 0;
        EXPECT_TRUE(row.control == 0 || FindControl(row.panel, row.control)) << i;
        EXPECT_TRUE(row.item == 0 ||
                    GetMenuBarAttribute(UI_nMenuPanel, row.item, ATTR_DIMMED, &value) == 0)
            << i;
    }
    EXPECT_EQ(UIK_TEXTBOX, FindControl(UI_nPrintPanel, UI_nPrintControl)->kind);
}

TEST_F(Headless, KeysGoToTheControlThenToThePanelThenToTheMenu)
{
    EXPECT_EQ(1, HL_Key(PANEL_STRUCT_SELECTOR, STRSEL_PATH, KEY_DOWN));
    EXPECT_EQ(STRSEL_LIST, GetActiveCtrl(PANEL_STRUCT_SELECTOR)) << "the control's";
    DisplayPanel(PANEL_VALUE);
    EXPECT_EQ(1, HL_Key(PANEL_VALUE, VALUE_NEW, KEY_ESC));
    EXPECT_EQ(0, UiPanelAttribute(PANEL_VALUE, ATTR_VISIBLE)) << "the panel's";
    HL_Key(PANEL_MAIN, MAIN_LIST, KEY_CTRL | KEY_SHIFT | 'M');
    EXPECT_EQ(1, UiPanelAttribute(PANEL_MEMORY, ATTR_VISIBLE)) << "the menu's";
    SetCtrlAttribute(PANEL_STRUCT_SELECTOR, STRSEL_PATH, ATTR_DIMMED, 1);
    EXPECT_EQ(HL_DIMMED, HL_Key(PANEL_STRUCT_SELECTOR, STRSEL_PATH, KEY_DOWN));
    EXPECT_EQ(HL_DIMMED, HL_SetUserVal(PANEL_STRUCT_SELECTOR, STRSEL_PATH, "x"));
}

TEST_F(Headless, AWindowHasOneFocusWhateverStandsInIt)
{
    HL_Reset();
    ASSERT_EQ(PANEL_MAIN, LoadPanel(0, PANEL_MAIN));
    ASSERT_EQ(PANEL_CONSOLE, LoadPanel(PANEL_MAIN, PANEL_CONSOLE));
    ASSERT_EQ(PANEL_VALUE, LoadPanel(0, PANEL_VALUE));
    SetActiveCtrl(PANEL_VALUE, VALUE_NEW);
    SetActiveCtrl(PANEL_MAIN, MAIN_LIST);
    SetActiveCtrl(PANEL_CONSOLE, CONSOLE_INPUT);
    EXPECT_EQ(0, GetActiveCtrl(PANEL_MAIN));
    SetActiveCtrl(PANEL_MAIN, MAIN_LIST);
    EXPECT_EQ(0, GetActiveCtrl(PANEL_CONSOLE));
    EXPECT_EQ(VALUE_NEW, GetActiveCtrl(PANEL_VALUE)) << "another window has its own";
}

bool TypeLine(std::string *line)
{
    static const std::vector<std::string> LINES = {"perhaps", "n", "7", "", "."};
    static size_t next = 0;
    *line = LINES[next++ % LINES.size()];
    return true;
}

TEST_F(Headless, QuestionsAreAskedAtATerminalAndNamedInAPipe)
{
    std::FILE *err = std::tmpfile();
    HL_SetStreams(nullptr, err);
    EXPECT_EQ(0, ConfirmPopup("T", "piped?"));
    HL_SetAsker(TypeLine);
    EXPECT_EQ(2, GenericMessagePopup("T", "which?", {"__Yes", "__No"}, nullptr, 0)) << "asks again";
    std::string text = "3";
    EXPECT_EQ(1, GenericMessagePopup("T", "port?", {"Retry", "Cancel"}, &text, 5));
    EXPECT_EQ("7", text);
    EXPECT_EQ(0, PromptPopup("T", "keep?", &text, 5));
    EXPECT_EQ("7", text);
    EXPECT_LT(PromptPopup("T", "cancel?", &text, 5), 0);
    HL_SetDefaultAnswer(HL_ANSWER_YES);
    EXPECT_EQ(1, ConfirmPopup("T", "standing?")) << "asks nobody";
    std::rewind(err);
    char shown[512];
    EXPECT_EQ("T: piped?\n(answered: No)\nT: which?\n(1 Yes, 2 No) (1 Yes, 2 No) "
              "T: port?\n[3] (a single point cancels) T: keep?\n[7] (a single point cancels) "
              "T: cancel?\n[7] (a single point cancels) T: standing?\n",
              std::string(shown, std::fread(shown, 1, sizeof shown, err)));
    HL_SetStreams(nullptr, nullptr);
    std::fclose(err);
}

TEST_F(Headless, WrongNumbersAndKindsAreErrors)
{
    int number = 0;
    double real = 0;
    std::string text;
    EXPECT_EQ(UIE_NO_PANEL, SetCtrlVal(99, 1, 1));
    EXPECT_EQ(UIE_NO_CONTROL, SetCtrlVal(PANEL_MAIN, 99, 1));
    EXPECT_EQ(UIE_BAD_TYPE, SetCtrlVal(PANEL_MAIN, MAIN_COMM, "x"));
    EXPECT_EQ(UIE_BAD_TYPE, SetCtrlVal(PANEL_MAIN, MAIN_STATUS, 1));
    EXPECT_EQ(UIE_BAD_TYPE, GetCtrlVal(PANEL_MAIN, MAIN_COMM, &real));
    EXPECT_EQ(UIE_BAD_TYPE, GetCtrlVal(PANEL_MAIN, MAIN_LIST, &text));
    EXPECT_EQ(UIE_BAD_TYPE, ClearListCtrl(PANEL_MAIN, MAIN_MEM_BOX));
    EXPECT_EQ(UIE_BAD_TYPE, InsertTextBoxLine(PANEL_MAIN, MAIN_LIST, -1, "x"));
    EXPECT_EQ(UIE_BAD_INDEX, InsertListItem(PANEL_MAIN, MAIN_LIST, 1, "x", 0));
    EXPECT_EQ(UIE_BAD_INDEX, SetCtrlIndex(PANEL_MAIN, MAIN_LIST, 0));
    EXPECT_EQ(UIE_BAD_INDEX, GetTextBoxLine(PANEL_MAIN, MAIN_MEM_BOX, 0, &text));
    EXPECT_EQ(UIE_BAD_ATTRIBUTE, SetCtrlAttribute(PANEL_MAIN, MAIN_LIST, ATTR_INTERVAL, 1.0));
    EXPECT_EQ(UIE_BAD_ATTRIBUTE, SetCtrlAttribute(PANEL_MAIN, MAIN_TIMER, ATTR_DIMMED, 1));
    EXPECT_EQ(UIE_BAD_ATTRIBUTE, SetPanelAttribute(PANEL_MAIN, ATTR_CHECKED, 1));
    EXPECT_EQ(UIE_NO_ITEM, SetMenuBarAttribute(PANEL_MAIN, 999, ATTR_CHECKED, 1));
    EXPECT_EQ(UIE_NO_PANEL, SetMenuBarAttribute(PANEL_CONSOLE, ITEM_OPEN, ATTR_CHECKED, 1));
    EXPECT_EQ(UIE_NO_ITEM, NewMenuItem(PANEL_MAIN, MENU_HELP, "x", ITEM_RECENT_END, 0, nullptr));
    HL_Reset();
    EXPECT_EQ(UIE_NOT_LOADED, GetCtrlVal(PANEL_MAIN, MAIN_COMM, &number));
    EXPECT_EQ(UIE_NOT_LOADED, LoadPanel(PANEL_MAIN, PANEL_CONSOLE));
}

TEST_F(Headless, ConsoleBoxPrintsWhatItShows)
{
    std::FILE *out = std::tmpfile();
    HL_SetStreams(out, nullptr);
    EXPECT_EQ(0, InsertTextBoxLine(PANEL_CONSOLE, CONSOLE_BOX, -1, "one\ntwo"));
    EXPECT_EQ(0, SetCtrlVal(PANEL_CONSOLE, CONSOLE_BOX, "op"));
    EXPECT_EQ(0, SetCtrlVal(PANEL_CONSOLE, CONSOLE_BOX, "en\n"));
    EXPECT_EQ(0, InsertTextBoxLine(PANEL_MAIN, MAIN_MEM_BOX, -1, "elsewhere"));
    EXPECT_EQ((std::vector<std::string>{"one", "two", "open"}),
              HL_GetLines(PANEL_CONSOLE, CONSOLE_BOX));
    std::rewind(out);
    char text[64];
    EXPECT_EQ("one\ntwo\nopen\n", std::string(text, std::fread(text, 1, sizeof text, out)));
    HL_SetStreams(nullptr, nullptr);
    std::fclose(out);
}

TEST_F(Headless, QuestionsTakeQueueThenStandingAnswer)
{
    std::string text = "proposal";
    EXPECT_EQ(0, ConfirmPopup("T", "safe?"));
    EXPECT_LT(PromptPopup("T", "text?", &text, 5), 0);
    EXPECT_EQ("proposal", text);
    EXPECT_EQ(0, GenericMessagePopup("T", "which?", {"__Yes", "__No"}, nullptr, 0));
    EXPECT_EQ(CON_NO_FILE_SELECTED, FileSelectPopup("", "*", "*", "T", FILE_SAVE, &text));

    HL_PushAnswer(1);
    HL_PushAnswer(1, "123456");
    EXPECT_EQ(1, ConfirmPopup("T", "queued?"));
    EXPECT_EQ(0, PromptPopup("T", "text?", &text, 5));
    EXPECT_EQ("12345", text);
    HL_PushAnswer(1, "/nonexistent/file");
    EXPECT_EQ(CON_NO_FILE_SELECTED, FileSelectPopup("", "*", "*", "T", FILE_LOAD, &text));
    EXPECT_EQ(0, HL_CountAnswers());

    HL_SetDefaultAnswer(HL_ANSWER_YES);
    EXPECT_EQ(1, ConfirmPopup("T", "yes?"));
    EXPECT_EQ(0, GenericMessagePopup("T", "again?", {"__Retry", "__Cancel"}, &text, 5))
        << "a retry without a new text would never end";
    HL_SetDefaultAnswer(HL_ANSWER_NO);
    EXPECT_EQ(2, GenericMessagePopup("T", "which?", {"__Yes", "__No", "__Cancel"}, nullptr, 0));
    EXPECT_EQ("T: safe?", HL_GetPopups().front());
}

int ticks;
TEST_F(Headless, LoopRunsItsDriverAndTimersWaitUntilResumed)
{
    EXPECT_EQ(0, HL_FireTimer(PANEL_MAIN, MAIN_TIMER)) << "the program starts suspended";
    EXPECT_EQ(UIE_BAD_TYPE, HL_FireTimer(PANEL_MAIN, MAIN_LIST));
    ResumeTimerCallbacks();
    EXPECT_EQ(0, SetCtrlAttribute(PANEL_MAIN, MAIN_TIMER, ATTR_INTERVAL, 0.001));
    HL_SetDriver([] {
        ticks = HL_WaitTimer(PANEL_MAIN, MAIN_TIMER, nullptr);
        return 7;
    });
    EXPECT_EQ(7, RunUserInterface());
    EXPECT_EQ(1, ticks);
    EXPECT_EQ(0, HL_WaitTimer(PANEL_MAIN, MAIN_TIMER, [] { return true; }));
    QuitUserInterface(3);
    EXPECT_EQ(3, RunUserInterface()) << "a loop that was left before it began ends at once";
}

TEST(ListColumns, EscapesStartColumnsAndAnythingElseIsText)
{
    const struct {
        const char *label, *joined;
    } cases[] = {{"name\033p300lFA00", "name|FA00"},
                 {"\033p1l\033p2lx", "||x"},
                 {"plain", "plain"},
                 {"a\033p300", "a\033p300"},
                 {"a\033pl", "a\033pl"},
                 {"a\033p123456lb", "a\033p123456lb"}};
    for (const auto &c : cases)
        EXPECT_EQ(c.joined, UI_JoinColumns(c.label, "|"));
    EXPECT_EQ(300, UI_SplitColumns("name\033p300lFA00")[1].left);
}

} // namespace
