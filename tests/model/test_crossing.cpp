// What becomes of events that cross the program's own changes, of questions, urgent wishes
// and coalesced changes. Everything on one thread: events are posted where a window's
// thread would have posted them, in the middle of a callback.
#include "model/crossing.h"

namespace {

TEST_F(Crossing, ValuesAreSeenBeforeTheirTurnAndCalledInTheirTurn)
{
    program.onControl = [](int control, int event, int) {
        if (control == BUTTON) {
            Type("typed while the callback ran");
            Type("and on");
        }
        heard.push_back((control == BUTTON       ? "button "
                         : event == EVENT_COMMIT ? "enter "
                                                 : "") +
                        Field());
        return 0;
    };
    VIEW_Post(Event(BUTTON, EVENT_COMMIT));
    HandleAll();
    EXPECT_EQ((Texts{"button and on", "and on"}), heard);

    // What was entered is what stood there when Enter was pressed.
    heard.clear();
    Type("one");
    Type("one", EVENT_COMMIT);
    Type("one and two");
    EXPECT_EQ("one and two", Field());
    HandleAll();
    EXPECT_EQ((Texts{"one", "enter one", "one and two"}), heard);
    EXPECT_EQ("one and two", Field());

    // What was seen once stays seen, whichever event has its turn.
    heard.clear();
    Type("a");
    VIEW_Post(Event(BUTTON, EVENT_COMMIT));
    Type("ab");
    EXPECT_EQ("ab", Field());
    program.onControl = [](int control, int, int) {
        heard.push_back((control == BUTTON ? "button " : "") + Field());
        return 0;
    };
    HandleAll();
    EXPECT_EQ((Texts{"a", "button ab", "ab"}), heard);
}

TEST_F(Crossing, TheProgramsLaterValueWinsAndIsShownAgain)
{
    program.onControl = [](int, int, int) {
        heard.push_back(Field());
        return 0;
    };
    Type("user");
    SetCtrlVal(WINDOW, FIELD, "program");
    HandleAll();
    EXPECT_TRUE(heard.empty()) << "an event about a text that is gone";
    EXPECT_EQ("program", Field());
    const VIEW_Batch batch = Fetch();
    ASSERT_EQ(1u, batch.controls.size());
    EXPECT_TRUE(batch.controls[0].mask & VIEW_CTRL_VALUE);
    EXPECT_EQ("program", batch.controls[0].text) << "drawn over what the user typed";

    Type("user again");
    SetCtrlVal(WINDOW, FIELD, "program"); // is there already
    HandleAll();
    EXPECT_EQ("user again", Field());
    VIEW_Event flip = Event(SWITCH, EVENT_COMMIT);
    flip.value = 1;
    VIEW_Post(flip);
    SetCtrlVal(WINDOW, SWITCH, 0);
    int value = 0;
    HandleAll();
    GetCtrlVal(WINDOW, SWITCH, &value);
    EXPECT_EQ(1, value) << "it was off already";
    Click(0, MDL_GetState().panels[0].controls[LIST - 1].lines[0].id);
    SetCtrlIndex(WINDOW, LIST, 2);
    EXPECT_EQ(2, Selected()) << "before the view knows";
    HandleAll();
    EXPECT_EQ(2, Selected());
    Fetch();
    Type("late");
    SetCtrlAttribute(WINDOW, FIELD, ATTR_DIMMED, 1);
    HandleAll();
    EXPECT_EQ("user again", Field());
    EXPECT_TRUE(Fetch().controls[0].mask & VIEW_CTRL_VALUE);
}

TEST_F(Crossing, ClicksFollowTheirLineOrAreDropped)
{
    program.onControl = [](int, int event, int data) {
        std::string label;
        GetLabelFromIndex(WINDOW, LIST, Selected(), &label);
        heard.push_back(event == EVENT_DROPPED ? "drop " + std::to_string(data) : label);
        return 0;
    };
    const std::vector<VIEW_Line> &lines = MDL_GetState().panels[0].controls[LIST - 1].lines;
    const uint32_t b = lines[1].id;
    const struct {
        const char *what;
        void (*change)();
        Texts heard;
    } cases[] = {
        {"nothing", [] {}, {"b"}},
        {"a line above is gone", [] { DeleteListItem(WINDOW, LIST, 0, 1); }, {"b"}},
        {"one came above", [] { InsertListItem(WINDOW, LIST, 0, "x", 0); }, {"b"}},
        {"the line is gone", [] { DeleteListItem(WINDOW, LIST, 1, 1); }, {}},
        {"filled with the same",
         [] {
             Fill({"a", "b\033p9lnew value", "c"});
         },
         {"b\033p9lnew value"}},
        {"filled with others",
         [] {
             Fill({"a", "c", "b"});
         },
         {}},
        {"another in its place", [] { ReplaceListItem(WINDOW, LIST, 1, "y", 0); }, {}},
    };
    for (const auto &row : cases) {
        MDL_Reset();
        LoadPanel(0, WINDOW);
        Fill({"a", "b", "c"});
        Fetch();
        heard.clear();
        Click(1, b, EVENT_LEFT_DOUBLE_CLICK);
        row.change();
        HandleAll();
        EXPECT_EQ(row.heard, heard) << row.what;
        const VIEW_Batch batch = Fetch();
        const bool isShownAgain =
            !batch.lists.empty() && (batch.lists[0].mask & VIEW_LIST_SELECTION);
        EXPECT_EQ(row.heard.empty(), isShownAgain) << row.what;
    }
}

TEST_F(Crossing, RefillingKeepsTheSelectionOnItsLineAndTellsWhatDiffers)
{
    const uint32_t c = MDL_GetState().panels[0].controls[LIST - 1].lines[2].id;
    Click(2, c);
    HandleAll();
    Fill({"a", "b\033p5l2", "c"});
    EXPECT_EQ(-1, Selected()) << "until the list is whole again";
    const VIEW_Batch batch = Fetch();
    ASSERT_EQ(1u, batch.lists.size());
    EXPECT_EQ(static_cast<unsigned>(VIEW_LIST_LINES), batch.lists[0].mask);
    ASSERT_EQ(1u, batch.lists[0].changed.size());
    EXPECT_EQ(1, batch.lists[0].changed[0].first);
    EXPECT_EQ(2, Selected());
    Fill({"a", "b"});
    const VIEW_Batch shorter = Fetch();
    EXPECT_EQ(2, shorter.lists[0].count);
    EXPECT_EQ(-1, shorter.lists[0].current);
    EXPECT_EQ(-1, Selected());
    Fill({"a", "b", "c"});
    EXPECT_EQ(1u, Fetch().lists[0].changed.size()) << "had been forgotten";

    // Two changes that nobody has fetched in between.
    InsertListItem(WINDOW, LIST, -1, "d", 0);
    MDL_Flush();
    DeleteListItem(WINDOW, LIST, 3, 1);
    ReplaceListItem(WINDOW, LIST, 0, "a\033p5l1", 0);
    const VIEW_Batch merged = Fetch();
    EXPECT_EQ(3, merged.lists[0].count);
    ASSERT_EQ(1u, merged.lists[0].changed.size());
    EXPECT_EQ(0, merged.lists[0].changed[0].first);

    ClearListCtrl(WINDOW, LIST);
    InsertListItem(WINDOW, LIST, -1, "a", 0);
    InsertListItem(WINDOW, LIST, 0, "a", 0);
    const std::vector<VIEW_Line> &lines = MDL_GetState().panels[0].controls[LIST - 1].lines;
    EXPECT_NE(lines[0].id, lines[1].id) << "two lines that look the same are two";
}

TEST_F(Crossing, TablesHaveCellsAndSeveralSelectedLines)
{
    program.onControl = [](int control, int event, int column) {
        int index = 0, at = 0;
        std::string text;
        if (event == EVENT_CELL_EDITED && GetEditedCell(WINDOW, control, &index, &at, &text) == 0)
            heard.push_back(std::to_string(index) + std::to_string(column + at) + text);
        return 0;
    };
    ASSERT_EQ(
        0, SetListColumns(WINDOW, LIST, {{"Name", 100, UIA_LEFT}, {"Value", 50, UIA_POINT, true}}));
    ReplaceListItem(WINDOW, LIST, 1, "b\033p100l7", 0);
    std::vector<UI_Cell> cells;
    GetListCells(WINDOW, LIST, 1, &cells);
    ASSERT_EQ(2u, cells.size());
    EXPECT_EQ("7", cells[1].text) << "the label's columns until there are cells";
    SetListCells(WINDOW, LIST, 1,
                 {{"b", UIS_DIM, ""}, {"8", UIS_STRUCK | UIS_WARNING, "no answer"}});
    const VIEW_Batch batch = Fetch();
    EXPECT_EQ(2u, batch.lists[0].columns.size());
    EXPECT_EQ("no answer", batch.lists[0].changed[0].second.cells[1].tip);

    const std::vector<VIEW_Line> lines = MDL_GetState().panels[0].controls[LIST - 1].lines;
    VIEW_Event select = Event(LIST, EVENT_VAL_CHANGED);
    select.line = {2, lines[2].id};
    select.selected = {{2, lines[2].id}, {0, lines[0].id}};
    VIEW_Post(select);
    VIEW_Event edit = Event(LIST, EVENT_CELL_EDITED);
    edit.line = {1, lines[1].id};
    edit.column = 1;
    edit.text = "42";
    VIEW_Post(edit);
    VIEW_Event widths;
    widths.kind = VIEW_EVENT_COLUMNS;
    widths.panel = WINDOW;
    widths.control = LIST;
    widths.widths = {80, 70};
    VIEW_Post(widths);
    DeleteListItem(WINDOW, LIST, 0, 1);
    HandleAll();
    EXPECT_EQ((Texts{"0242"}), heard) << "the edited line has moved up";
    std::vector<int> selected;
    GetListSelection(WINDOW, LIST, &selected);
    EXPECT_EQ((std::vector<int>{1}), selected);
    EXPECT_EQ(1, Selected());
    std::vector<UI_Column> columns;
    GetListColumns(WINDOW, LIST, &columns);
    EXPECT_EQ(70, columns[1].width);
    EXPECT_EQ(UIE_BAD_INDEX, SetListSelection(WINDOW, LIST, {0, 2}));
    int number = 0;
    std::string text;
    EXPECT_EQ(UIE_BAD_INDEX, GetEditedCell(WINDOW, LIST, &number, &number, &text));
}

TEST_F(Crossing, PlacesAndScrollingAreTheUsers)
{
    int value = -1;
    GetPanelAttribute(WINDOW, ATTR_IS_PLACED, &value);
    EXPECT_EQ(0, value);
    VIEW_Event event;
    event.kind = VIEW_EVENT_PLACED;
    event.panel = WINDOW;
    event.rect = {10, 20, 300, 400};
    VIEW_Post(event);
    event.kind = VIEW_EVENT_SCROLLED;
    event.control = LIST;
    event.value = 1;
    event.extra = 2;
    VIEW_Post(event);
    event.kind = VIEW_EVENT_FOCUS;
    event.control = FIELD;
    VIEW_Post(event);
    GetPanelAttribute(WINDOW, ATTR_IS_PLACED, &value);
    EXPECT_EQ(1, value);
    GetPanelAttribute(WINDOW, ATTR_TOP, &value);
    EXPECT_EQ(20, value);
    GetCtrlAttribute(WINDOW, LIST, ATTR_LINES_IN_VIEW, &value);
    EXPECT_EQ(2, value);
    GetCtrlAttribute(WINDOW, LIST, ATTR_FIRST_VISIBLE_LINE, &value);
    EXPECT_EQ(1, value);
    EXPECT_EQ(FIELD, GetActiveCtrl(WINDOW));
    Fill({"a", "b", "c"});
    GetCtrlAttribute(WINDOW, LIST, ATTR_FIRST_VISIBLE_LINE, &value);
    EXPECT_EQ(1, value) << "refilling keeps the place";
    DeleteListItem(WINDOW, LIST, 0, 1);
    GetCtrlAttribute(WINDOW, LIST, ATTR_FIRST_VISIBLE_LINE, &value);
    EXPECT_EQ(0, value) << "all lines are in view";
    VIEW_Batch batch = Fetch();
    EXPECT_TRUE(batch.panels.empty()) << "what the user did is not done to the user again";
    EXPECT_EQ(static_cast<unsigned>(VIEW_LIST_LINES), batch.lists[0].mask);
}

TEST_F(Crossing, ManyChangesAreOneAndABoxStaysBounded)
{
    for (int i = 0; i < 1000; i++) {
        SetCtrlVal(WINDOW, COUNT, i);
        MDL_Flush();
    }
    SetCtrlVal(WINDOW, BOX, "one that leaves before the text is too long\nanother\n");
    DeleteTextBoxLines(WINDOW, BOX, 0, 1);
    for (int i = 0; i < 60000; i++)
        InsertTextBoxLine(WINDOW, BOX, -1, std::string(100, '-') + std::to_string(i));
    DeleteTextBoxLines(WINDOW, BOX, 0, 10);
    VIEW_Batch batch = Fetch();
    ASSERT_EQ(1u, batch.controls.size());
    EXPECT_EQ(100, batch.controls[0].number) << "within the field's bounds";
    ASSERT_EQ(1u, batch.boxes.size());
    EXPECT_LT(batch.boxes[0].text.size(), 5u * 1024 * 1024);
    EXPECT_TRUE(batch.boxes[0].isReset);
    EXPECT_EQ(10, batch.boxes[0].dropped);
    EXPECT_EQ("59999\n", batch.boxes[0].text.substr(batch.boxes[0].text.size() - 6));
    int count = 0;
    GetNumTextBoxLines(WINDOW, BOX, &count);
    EXPECT_EQ(UI_BOX_LINES_MAX - 10, count);

    const int item = NewMenuItem(WINDOW, MENU, "new", ITEM_END, 0, nullptr);
    MDL_Flush();
    DiscardMenuItem(WINDOW, item);
    EXPECT_TRUE(Fetch().items.empty()) << "came and went unseen";
}

} // namespace
