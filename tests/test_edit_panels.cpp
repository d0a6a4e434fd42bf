// The windows that edit the watch list and the target's memory, as a user works them:
// what they show, what they refuse in which words, what reaches the simulated target.

#include "runtime/list_columns.h"
#include "support/watch_fixture.h"
#include "symbols/typemap.h"
#include "text/bytes.h"
#include "watch/list/debug_file.h"
#include "watch/list/edit.h"
#include "watch/list/list_view.h"
#include "watch/main_window.h"
#include "watch/value/value_types.h"
#include "watch/windows/item_panel.h"
#include "watch/windows/mem_box.h"
#include "watch/windows/name_completion.h"

namespace {

using Texts = std::vector<std::string>;

class EditPanels : public WatchViewTest {
protected:
    static Texts items()
    {
        Texts lines;
        for (int i = 0; i < nLItems; ++i)
            lines.push_back(LIT_FileLine(aLItems[i]));
        return lines;
    }

    static void typeName(const std::string &name)
    {
        ASSERT_EQ(HL_SetUserVal(PANEL_ITEM, WITEM_NAME, name), 0);
    }

    static std::string suggested()
    {
        return static_cast<char>(UiValue(PANEL_ITEM, WITEM_TYPE)) +
               std::to_string(UiValue(PANEL_ITEM, WITEM_SIZE));
    }

    static std::string writeValue(const std::string &value)
    {
        HL_SetUserVal(PANEL_VALUE, VALUE_NEW, value);
        HL_Key(PANEL_VALUE, VALUE_NEW, KEY_ENTER);
        return UiText(PANEL_VALUE, VALUE_RESULT);
    }
};

TEST_F(EditPanels, MenuOffersWhatHasSomethingToActOn)
{
    for (const int item : {ITEM_EDIT, ITEM_REMOVE, ITEM_UNDO, ITEM_MOVE_UP, ITEM_WRITE_VALUE,
                           ITEM_COPY_LIST, ITEM_COPY_MEMORY, ITEM_SNAPSHOT})
        EXPECT_TRUE(UiItemAttribute(item, ATTR_DIMMED)) << item;
    EXPECT_FALSE(UiItemAttribute(ITEM_ADD, ATTR_DIMMED));
    addItem("wSpeed, u2");
    ResetLItemsDisplay();
    EXPECT_FALSE(UiItemAttribute(ITEM_REMOVE, ATTR_DIMMED));
    EXPECT_TRUE(UiItemAttribute(ITEM_MOVE_UP, ATTR_DIMMED)) << "there is only one line";

    HL_Event(PANEL_MAIN, MAIN_LIST, EVENT_RIGHT_CLICK, 0);
    EXPECT_EQ(HL_GetPopupMenu(), MENU_EDIT);
    VR_isWatchView = false;
    VR_EnableControls();
    HL_Key(PANEL_MAIN, 0, KEY_DELETE);
    EXPECT_EQ(nLItems, 1) << "nothing removes a line that is out of sight";
}

TEST_F(EditPanels, LinesMoveGoAndComeBack)
{
    load("wSpeed, u2\nnnCount, i4\nabyRing, u1\n");
    ResetLItemsDisplay();
    HL_SelectLine(PANEL_MAIN, MAIN_LIST, 0);
    HL_Key(PANEL_MAIN, MAIN_LIST, KEY_ALT | KEY_UP);
    HL_Key(PANEL_MAIN, MAIN_LIST, KEY_ALT | KEY_DOWN);
    EXPECT_EQ(items(), (Texts{"nnCount, i4", "wSpeed, u2", "abyRing, u1"}));
    HL_Event(PANEL_MAIN, MAIN_LIST, EVENT_DROPPED, 2 * 65536 + 0);
    EXPECT_EQ(items(), (Texts{"abyRing, u1", "nnCount, i4", "wSpeed, u2"}));
    EXPECT_EQ(IsDBGChange, 1);

    HL_SelectLine(PANEL_MAIN, MAIN_LIST, 1);
    HL_Key(PANEL_MAIN, MAIN_LIST, KEY_DELETE);
    EXPECT_EQ(items(), (Texts{"abyRing, u1", "wSpeed, u2"}));
    EXPECT_EQ(UiText(PANEL_MAIN, MAIN_MESSAGE), "Removed: nnCount. Ctrl+Z puts it back.");
    HL_Key(PANEL_MAIN, MAIN_LIST, KEY_CTRL | 'Z');
    EXPECT_EQ(items(), (Texts{"abyRing, u1", "nnCount, i4", "wSpeed, u2"}));
    HL_Key(PANEL_MAIN, MAIN_LIST, KEY_CTRL | 'Z');
    HL_Key(PANEL_MAIN, MAIN_LIST, KEY_CTRL | 'Z');
    EXPECT_EQ(items(), (Texts{"wSpeed, u2", "nnCount, i4", "abyRing, u1"}));
    EXPECT_TRUE(UiItemAttribute(ITEM_UNDO, ATTR_DIMMED));
}

TEST_F(EditPanels, SelectedLinesAreDraggedTogether)
{
    const struct {
        std::vector<int> selected;
        int source, target;
        const char *order; // the items' names afterwards, those selected in capitals
    } drags[] = {
        {{1, 3}, 1, 4, "aceBDf"}, {{1, 3}, 3, 0, "BDacef"}, {{0, 2, 5}, 2, 3, "bdACFe"},
        {{1, 2}, 1, 2, "aBCdef"}, {{4, 5}, 4, 1, "aEFbcd"}, {{1, 3}, 0, 2, "bcAdef"}, // not of them
    };
    const auto order = [] {
        std::string names;
        for (int i = 0; i < nLItems; ++i)
            names += aLItems[i].name;
        for (const int line : LSV_SelectedLines())
            names[static_cast<size_t>(line)] =
                static_cast<char>(names[static_cast<size_t>(line)] - 'a' + 'A');
        return names;
    };
    for (const auto &drag : drags) {
        load("a, u1\nb, u1\nc, u1\nd, u1\ne, u1\nf, u1\n");
        ResetLItemsDisplay();
        HL_SelectLines(PANEL_MAIN, MAIN_LIST, drag.selected);
        const std::string before = order();
        HL_Event(PANEL_MAIN, MAIN_LIST, EVENT_DROPPED, drag.source * 65536 + drag.target);
        EXPECT_EQ(order(), drag.order) << before << drag.source << drag.target;
        std::string what;
        if (IsDBGChange) {
            EDT_Undo(&what);
            EXPECT_EQ(LIT_Label(aLItems[0]) + LIT_Label(aLItems[5]), "af") << "one edit";
            IsDBGChange = 0;
        }
    }
}

TEST_F(EditPanels, AMessageFadesOnceItIsNoLongerTrue)
{
    const auto shown = [] {
        int color = -1;
        GetCtrlAttribute(PANEL_MAIN, MAIN_MESSAGE, ATTR_TEXT_COLOR, &color);
        return UiText(PANEL_MAIN, MAIN_MESSAGE) + (color == 0 ? "" : " (old)");
    };
    load("wSpeed, u2\nnnCount, i4\nabyRing, u1\n");
    ResetLItemsDisplay();
    HL_SelectLine(PANEL_MAIN, MAIN_LIST, 1);
    HL_Key(PANEL_MAIN, MAIN_LIST, KEY_DELETE);
    const std::string removed = "Removed: nnCount. Ctrl+Z puts it back.";
    EXPECT_EQ(shown(), removed);
    EDT_Move(0, 1);
    EXPECT_EQ(shown(), removed + " (old)") << "Ctrl+Z means another edit now";
    EDT_Move(0, 1);
    EXPECT_EQ(shown(), "");
    SetMainPanelAttributes();
    VR_ShowMessage("about the link", WIN_TOPIC_LINK);
    EDT_Move(0, 1);
    EXPECT_EQ(shown(), "about the link");
    ncom = 7;
    SetMainPanelAttributes();
    EXPECT_EQ(shown(), "about the link (old)");
    VR_ShowMessage("news");
    EXPECT_EQ(shown(), "news");
}

TEST_F(EditPanels, TheSelectionIsHandedToOtherWindows)
{
    load("wSpeed, u2\nnnCount, i4\nabyRing, u1\n");
    ResetLItemsDisplay();
    HL_SelectLines(PANEL_MAIN, MAIN_LIST, {0, 2});
    const std::vector<EDT_Reference> kept = SEL_GetWatchSelection();
    ASSERT_EQ(kept.size(), 2u);
    EXPECT_EQ(kept[0].label, "wSpeed");
    EXPECT_EQ(kept[1].label, "abyRing");
    HL_SelectLine(PANEL_MAIN, MAIN_LIST, 1);
    HL_Key(PANEL_MAIN, MAIN_LIST, KEY_DELETE);
    EXPECT_EQ(EDT_Find(kept[1]), 1) << "it has moved up";
    VR_isWatchView = false;
    EXPECT_TRUE(SEL_GetWatchSelection().empty()) << "out of sight";
}

TEST_F(EditPanels, AddingSuggestsATypeUntilOneIsChosen)
{
    const std::string types = "## 1 VARS\n1: 'nnCount' _@0x20000004_@0x204\n## 0 TYPES\n"
                              "## 1 STRUCTS\n# 1 / 1:\n'm' _@0x122\n";
    ASSERT_EQ(TMF_LoadMap(write("types.tmf", types).c_str()), 0);
    HL_ClickMenu(ITEM_ADD);
    ASSERT_TRUE(UiPanelAttribute(PANEL_ITEM, ATTR_VISIBLE));
    const struct {
        const char *name, *type, *place;
    } cases[] = {
        {"wSpeed", "u2", "Address 0x000300"},
        {"nnCount+2", "i4", "Address 0x000306"},
        {"nnCount[1]", "f4", "Address 0x000308"}, // the type map knows better
        {"3:abyRing", "u1", "Address 0x000308 in station 3"},
        {"&fCurrent", "f4", "TMS320 word address 0x700"},
        {"&wWord", "u4",
         "No loaded map knows this name. The item stays without an address until "
         "one does."},
        {"$1F00", "i2", "Address 0x001F00"},
        {"$1000000", "i2", "The address must be a hexadecimal number below 0x1000000."},
        {"", "i2", "A name from the map, or an address such as $1F00; 3: in front for station 3."}};
    for (const auto &row : cases) {
        typeName(row.name);
        EXPECT_EQ(suggested(), row.type) << row.name;
        EXPECT_EQ(UiText(PANEL_ITEM, WITEM_PLACE), row.place) << row.name;
    }
    HL_SetUserVal(PANEL_ITEM, WITEM_TYPE, 'b');
    EXPECT_EQ(suggested(), "b1");
    EXPECT_TRUE(UiAttribute(PANEL_ITEM, WITEM_SIZE, ATTR_DIMMED)) << "bits are one byte";
    HL_SetUserVal(PANEL_ITEM, WITEM_TYPE, 'x');
    HL_SetUserVal(PANEL_ITEM, WITEM_SIZE, 4);
    typeName("wSpeed");
    EXPECT_EQ(suggested(), "x4") << "what the user chose stays";
    HL_Key(PANEL_ITEM, WITEM_NAME, KEY_ENTER);
    EXPECT_FALSE(UiPanelAttribute(PANEL_ITEM, ATTR_VISIBLE));
    EXPECT_EQ(items(), (Texts{"wSpeed, x4"}));
}

TEST_F(EditPanels, AddingSaysWhatIsWrongAndKeepsItsPlace)
{
    load("wSpeed, u2\nnnCount, i4\n");
    ResetLItemsDisplay();
    HL_SelectLine(PANEL_MAIN, MAIN_LIST, 0);
    HL_Key(PANEL_MAIN, MAIN_LIST, KEY_INSERT);
    typeName("a;b");
    HL_Key(PANEL_ITEM, WITEM_TYPE, KEY_ENTER);
    EXPECT_TRUE(UiPanelAttribute(PANEL_ITEM, ATTR_VISIBLE));
    EXPECT_EQ(UiText(PANEL_ITEM, WITEM_ERROR), EDT_ErrorText(EDT_ERR_NAME));
    EXPECT_TRUE(HL_GetPopups().empty());
    typeName("[0x1F00]");
    EXPECT_EQ(UiText(PANEL_ITEM, WITEM_ERROR), "");
    HL_CommitControl(PANEL_ITEM, WITEM_OK);
    EXPECT_EQ(items(), (Texts{"wSpeed, u2", "[0x1F00], i2", "nnCount, i4"}));
    HL_ClickMenu(ITEM_ADD);
    typeName("zzz");
    EXPECT_EQ(HL_Key(PANEL_ITEM, WITEM_NAME, KEY_ESC), 1);
    EXPECT_FALSE(UiPanelAttribute(PANEL_ITEM, ATTR_VISIBLE));
    EXPECT_EQ(nLItems, 3);
}

TEST_F(EditPanels, EditingChangesTheItemItWasOpenedFor)
{
    load("Known, [0x100], u1\nwSpeed, u2\n");
    ResetLItemsDisplay();
    HL_SelectLine(PANEL_MAIN, MAIN_LIST, 0);
    HL_Key(PANEL_MAIN, MAIN_LIST, KEY_F1 + 2);
    EXPECT_EQ(UiText(PANEL_ITEM, WITEM_NAME), "Known");
    EXPECT_EQ(suggested(), "u1");
    HL_SetUserVal(PANEL_ITEM, WITEM_TYPE, 'x');
    EDT_Move(0, 1); // as by drag and drop meanwhile
    HL_CommitControl(PANEL_ITEM, WITEM_OK);
    EXPECT_EQ(items(), (Texts{"wSpeed, u2", "Known, [0x100], x1"}));

    HL_ClickMenu(ITEM_EDIT);
    typeName("2:$200");
    HL_CommitControl(PANEL_ITEM, WITEM_OK);
    EXPECT_EQ(UiText(PANEL_ITEM, WITEM_ERROR), "") << UiText(PANEL_ITEM, WITEM_PLACE);
    HL_SelectLine(PANEL_MAIN, MAIN_LIST, 0);
    HL_ClickMenu(ITEM_EDIT);
    EDT_Remove(0);
    HL_CommitControl(PANEL_ITEM, WITEM_OK);
    EXPECT_EQ(UiText(PANEL_ITEM, WITEM_ERROR), EDT_ErrorText(EDT_ERR_INDEX));
}

TEST_F(EditPanels, NamesAreCompleted)
{
    addSymbol("wSpeedMax", 0x30A);
    addSymbol("_wSpare", 0x30C);
    addRegister("WDTCON", 0xFFAE);
    const struct {
        const char *typed;
        Texts offered;
    } cases[] = {{"ws", {"_wSpare", "wSpeed", "wSpeedMax"}},
                 {"W", {"WDTCON", "_wSpare", "wSpeed", "wSpeedMax"}},
                 {"3: wSpeed", {"3: wSpeed", "3: wSpeedMax"}},
                 {"&f", {"&fCurrent"}},
                 {"nnCount", {}},
                 {"", {}},
                 {"3:", {}}};
    HL_ClickMenu(ITEM_ADD);
    for (const auto &row : cases) {
        typeName(row.typed);
        EXPECT_EQ(HL_Complete(PANEL_ITEM, WITEM_NAME), row.offered) << row.typed;
    }
    for (int i = 0; i < 300; ++i)
        addSymbol(("many" + std::to_string(i)).c_str(), 0x1000);
    EXPECT_EQ(WIN_CompleteName("many").size(), COMPLETIONS_MAX);
}

TEST_F(EditPanels, ValueEditorShowsEveryForm)
{
    const struct {
        const char *type;
        uint32_t low, high;
        const char *decimal, *hex, *binary, *single;
    } cases[] = {
        {"i1", 0xFE, 0, "-2", "0xFE", "1111 1110", "-"},
        {"u2", 0xFFFE, 0, "65534", "0xFFFE", "1111 1111 1111 1110", "-"},
        {"x4", 0xBF800000, 0, "3212836864", "0xBF800000", "1011 1111 1000 0000 0000 0000 0000 0000",
         "-1"},
        {"f", 0x3DCCCCCD, 0, "0.100000001", "0x3DCCCCCD", "0011 1101 1100 1100 1100 1100 1100 1101",
         "0.100000001"},
        {"i8", 1, 0x80000000, "-9223372036854775807", "0x8000000000000001",
         "1000 0000 0000 0000 0000 0000 0000 0000\n0000 0000 0000 0000 0000 0000 0000 0001", "-"}};
    for (const auto &row : cases) {
        LItem item;
        VAL_SetFromField(&item, row.type);
        EXPECT_EQ(VAL_DecimalForm(item), "-") << "not read yet";
        item.value = row.low;
        item.valueHigh = row.high;
        item.isValueGood = true;
        EXPECT_EQ(VAL_DecimalForm(item), row.decimal) << row.type;
        EXPECT_EQ(VAL_HexForm(item), row.hex) << row.type;
        EXPECT_EQ(VAL_BinaryForm(item), row.binary) << row.type;
        EXPECT_EQ(VAL_FloatForm(item), row.single) << row.type;
    }
}

TEST_F(EditPanels, ValueIsWrittenReadBackAndFollowsItsItem)
{
    load("wSpeed, u2\n2:nnCount, i4\nNowhere, u2\n");
    ResetLItemsDisplay();
    HL_SelectLine(PANEL_MAIN, MAIN_LIST, 0);
    HL_Key(PANEL_MAIN, MAIN_LIST, KEY_ENTER);
    ASSERT_TRUE(UiPanelAttribute(PANEL_VALUE, ATTR_VISIBLE));
    EXPECT_EQ(UiText(PANEL_VALUE, VALUE_SHOWN), "not read yet");
    EXPECT_EQ(writeValue("70000"), "REFUSED: '70000' is out of range: 0 to 65535.");
    EXPECT_TRUE(HL_GetPopups().empty()) << "no question for what cannot be written";
    EXPECT_EQ(writeValue("7"), "REFUSED: The value was not written: communication is off.");
    EXPECT_EQ(HL_GetPopups().back(), "Message: Enable communication?");

    target = SIMT_Start(PORT, options);
    ncom = PORT;
    HL_PushAnswer(1);
    EXPECT_EQ(writeValue("1000"), "OK: Written. The target holds 1000.");
    EXPECT_EQ(peek(0x300, 2), (std::vector<uint8_t>{0xE8, 0x03}));
    EXPECT_EQ(UiText(PANEL_VALUE, VALUE_HEX), "0x03E8");
    EXPECT_EQ(UiText(PANEL_VALUE, VALUE_NEW), "") << "ready for the next one";

    EDT_Move(0, 2);
    EXPECT_EQ(writeValue("2"), "OK: Written. The target holds 2.");
    EXPECT_EQ(aLItems[2].value, 2u);
    poke(0x300, {0x34, 0x12});
    HL_CommitControl(PANEL_VALUE, VALUE_READ);
    EXPECT_EQ(UiText(PANEL_VALUE, VALUE_DECIMAL), "4660");
    poke(0x300, {0x35, 0x12});
    for (int tick = 0; tick < 4; ++tick)
        HL_FireTimer(PANEL_MAIN, MAIN_TIMER);
    EXPECT_EQ(UiText(PANEL_VALUE, VALUE_DECIMAL), "4661") << "live with the list";

    EDT_Remove(2);
    EXPECT_EQ(UiText(PANEL_VALUE, VALUE_RESULT), "The item is no longer in the watch list.");
    EXPECT_EQ(HL_CommitControl(PANEL_VALUE, VALUE_WRITE), HL_DIMMED);
    HL_Key(PANEL_MAIN, MAIN_LIST, KEY_CTRL | 'Z');
    EXPECT_FALSE(UiAttribute(PANEL_VALUE, VALUE_WRITE, ATTR_DIMMED));
    EXPECT_EQ(UiText(PANEL_VALUE, VALUE_RESULT), "");
    EXPECT_EQ(HL_Key(PANEL_VALUE, VALUE_NEW, KEY_ESC), 1);
    EXPECT_FALSE(UiPanelAttribute(PANEL_VALUE, ATTR_VISIBLE));
}

TEST_F(EditPanels, AnItemIsAddedWhereItIsAskedFor)
{
    const struct {
        int position;
        Texts after;
    } cases[] = {{WIN_ITEM_BEFORE, {"A, u1", "new, u1", "B, u1", "C, u1"}},
                 {WIN_ITEM_AFTER, {"A, u1", "B, u1", "new, u1", "C, u1"}},
                 {WIN_ITEM_AT_END, {"A, u1", "B, u1", "C, u1", "new, u1"}}};
    for (const auto &c : cases) {
        load("A, u1\nB, u1\nC, u1\n");
        ResetLItemsDisplay();
        HL_SelectLine(PANEL_MAIN, MAIN_LIST, 1);
        HL_ClickMenu(ITEM_ADD);
        typeName("new");
        HL_SetUserVal(PANEL_ITEM, WITEM_TYPE, 'u');
        HL_SetUserVal(PANEL_ITEM, WITEM_SIZE, 1);
        HL_SetUserVal(PANEL_ITEM, WITEM_POSITION, c.position);
        HL_CommitControl(PANEL_ITEM, WITEM_OK);
        EXPECT_EQ(items(), c.after) << c.position;
    }
}

TEST_F(EditPanels, TurningToTheWindowAsksOnceAboutAChangedFile)
{
    const std::string file = write("list.dbg", "wSpeed, u2\n");
    HL_PushAnswer(1, file);
    LoadDbgFile(PANEL_MAIN);
    HL_ActivatePanel(PANEL_MAIN);
    EXPECT_EQ(HL_GetPopups().size(), 1u) << "the choice of the file only";
    const auto other = std::filesystem::last_write_time(file) - std::chrono::seconds(7);
    write("list.dbg", "nnCount, i4\n");
    std::filesystem::last_write_time(file, other);
    HL_PushAnswer(1);
    HL_ActivatePanel(PANEL_MAIN);
    HL_ActivatePanel(PANEL_MAIN);
    EXPECT_EQ(HL_GetPopups().size(), 2u) << "the choice of the file, and one question";
    EXPECT_EQ(items(), (Texts{"nnCount, i4"}));
}

} // namespace
