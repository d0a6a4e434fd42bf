// The target's memory as a user sees and changes it: the memory window and the memory box.

#include "runtime/list_columns.h"
#include "support/watch_fixture.h"
#include "watch/list/list_view.h"
#include "watch/list/refresh.h"
#include "watch/main_window.h"
#include "watch/windows/mem_box.h"
#include "watch/windows/outcome_colors.h"

namespace {

using Texts = std::vector<std::string>;

class Memory : public WatchViewTest {
protected:
    static std::string readMemory(const std::string &address, int count)
    {
        HL_SetUserVal(PANEL_MEMORY, MEMORY_COUNT, count);
        HL_SetUserVal(PANEL_MEMORY, MEMORY_ADDRESS, address);
        HL_Key(PANEL_MEMORY, MEMORY_ADDRESS, KEY_ENTER);
        return UiText(PANEL_MEMORY, MEMORY_RESULT);
    }

    static std::string writeLine(const std::string &bytes)
    {
        HL_SetUserVal(PANEL_MEMORY, MEMORY_LINE, bytes);
        HL_Key(PANEL_MEMORY, MEMORY_LINE, KEY_ENTER);
        return UiText(PANEL_MEMORY, MEMORY_RESULT);
    }

    static Texts memoryLines()
    {
        Texts lines;
        for (const std::string &label : HL_GetLabels(PANEL_MEMORY, MEMORY_LIST))
            lines.push_back(UI_JoinColumns(label, "|"));
        return lines;
    }

    static std::string boxLine(size_t line)
    {
        const Texts lines = HL_GetLines(PANEL_MAIN, MAIN_MEM_BOX);
        return lines.size() > line ? lines[line] : "";
    }
};

TEST_F(Memory, MemoryIsReadInLines)
{
    ASSERT_TRUE(connect());
    poke(0x300, {'H', 'i', 0x00, 0xFF});
    HL_ClickMenu(ITEM_MEMORY);
    EXPECT_EQ(readMemory("wSpeed", 18), "Read 18 bytes from station 1.");
    EXPECT_EQ(memoryLines(),
              (Texts{"000300|48 69 00 FF 00 00 00 00 00 00 00 00 00 00 00 00|Hi..............",
                     "000310|00 00|.."}));
    EXPECT_EQ(UiText(PANEL_MEMORY, MEMORY_LINE), "48 69 00 FF 00 00 00 00 00 00 00 00 00 00 00 00");
    HL_CommitControl(PANEL_MEMORY, MEMORY_COPY);
    EXPECT_EQ(HL_GetClipboard().substr(0, 13), "000300\t48 69 ");

    Procesor = CPU_F283XX;
    EXPECT_EQ(readMemory("3:$301", 2), "Read 2 bytes from station 3.");
    EXPECT_EQ(UiText(PANEL_MEMORY, MEMORY_PLACE),
              "Byte address 0x000301, word address 0x000180.hi, station 3: wSpeed+1");
    EXPECT_EQ(memoryLines(), (Texts{"000180.hi|00 00|.."}));

    const struct {
        const char *address;
        int count;
        const char *says;
    } refused[] = {{"nobody", 4, "'nobody' is no address, and no loaded map knows such a name."},
                   {"16:$300", 4, "Stations are 0 to 15."},
                   {"$FFFFF0", 17, "The range ends beyond the target's memory."},
                   {"&fCurrent", 4,
                    "The memory of a TMS320 behind a station is not bytes: use a watch item "
                    "or the memory box."}};
    for (const auto &row : refused)
        EXPECT_EQ(readMemory(row.address, row.count), row.says);
    EXPECT_EQ(memoryLines().size(), 1u) << "what was read stays";
    silenceOthers(1u << 1);
    EXPECT_EQ(readMemory("4:$300", 4), "Not read: no answer.");
    EXPECT_TRUE(memoryLines().empty());
    EXPECT_TRUE(UiAttribute(PANEL_MEMORY, MEMORY_WRITE, ATTR_DIMMED));
}

TEST_F(Memory, MemoryIsGreyOnceItIsOld)
{
    ASSERT_TRUE(connect());
    const auto looks = [](int line) {
        std::vector<UI_Cell> cells;
        GetListCells(PANEL_MEMORY, MEMORY_LIST, line, &cells);
        return cells.empty()               ? "none"
               : cells[1].style != UIS_DIM ? "fresh"
                                           : cells[1].tip.substr(0, 13);
    };
    HL_ClickMenu(ITEM_MEMORY);
    readMemory("3:wSpeed", 20);
    EXPECT_EQ(looks(1), "fresh");
    HL_SetUserVal(PANEL_MEMORY, MEMORY_ADDRESS, "3:wSpee");
    EXPECT_EQ(looks(1), "Old: read at ") << "not the place that the field names";
    HL_SetUserVal(PANEL_MEMORY, MEMORY_ADDRESS, "3:wSpeed");
    EXPECT_EQ(looks(0), "fresh");
    VIR2_StopPeriodicASC();
    EXPECT_EQ(looks(0), "Old: read at ");
    ASSERT_TRUE(connect());
    EXPECT_EQ(looks(0), "Old: read at ") << "nobody has read it since";
    readMemory("3:wSpeed", 20);
    EXPECT_EQ(looks(0), "fresh");
}

TEST_F(Memory, MemoryWritesOnlyWhatWasChanged)
{
    ASSERT_TRUE(connect());
    poke(0x400, {1, 2, 3, 4, 5, 6});
    HL_ClickMenu(ITEM_MEMORY);
    readMemory("$400", 6);
    poke(0x401, {0x22}); // the target goes on running
    EXPECT_EQ(writeLine("0A 02 03 04 0E 0F"), "OK: Written and read back: 3 bytes.");
    EXPECT_EQ(peek(0x400, 6), (std::vector<uint8_t>{0x0A, 0x22, 3, 4, 0x0E, 0x0F}));
    EXPECT_EQ(memoryLines(), (Texts{"000400|0A 22 03 04 0E 0F|.\"...."}));
    EXPECT_EQ(writeLine("0a22030 40e0f"), "REFUSED: '0 ' is no byte: two hexadecimal digits each.");
    EXPECT_EQ(writeLine("0A 22 03"), "REFUSED: The line has 6 bytes, not 3.");
    EXPECT_EQ(writeLine("0a2203040e0f"), "Nothing to write: the bytes are as they were read.");
    failWith(8, 66);
    EXPECT_EQ(writeLine("00 22 03 04 0E 0F").rfind("FAILED: Not written, or only in part: ", 0),
              0u);
    EXPECT_EQ(UiText(PANEL_MEMORY, MEMORY_LINE), "00 22 03 04 0E 0F") << "kept for another try";
}

TEST_F(Memory, MemoryIsWrittenToTheStationAndPlaceThatAreShown)
{
    ASSERT_TRUE(connect());
    for (const int chip : {CPU_C166, CPU_F283XX, CPU_F2803X}) {
        Procesor = chip;
        STATION = 1;
        for (const int station : {1, 3, 5})
            poke(0x300, {static_cast<uint8_t>(station), 9}, station);
        HL_ClickMenu(ITEM_MEMORY);
        EXPECT_EQ(readMemory("3:wSpeed", 2), "Read 2 bytes from station 3.");
        EXPECT_EQ(writeLine("33 09"), "OK: Written and read back: 1 byte.");
        EXPECT_EQ(peek(0x300, 1, 3), (std::vector<uint8_t>{0x33}));
        EXPECT_EQ(peek(0x300, 1, 1), (std::vector<uint8_t>{1}));

        // Neither another place in the field nor another selected station moves the write.
        const std::string place = chip == CPU_C166 ? "byte address 0x000300"
                                                   : "byte address 0x000300, word address 0x000180";
        HL_SetUserVal(PANEL_MEMORY, MEMORY_ADDRESS, "5:wSpeed");
        EXPECT_EQ(writeLine("44 09"), "REFUSED: The bytes are those of " + place +
                                          ", station 3: press Read for the place above.");
        readMemory("wSpeed", 2);
        STATION = 5;
        EXPECT_EQ(writeLine("55 09"), "REFUSED: The bytes are those of " + place +
                                          ", station 1: press Read for the place above.");
        for (const int station : {1, 5})
            EXPECT_EQ(peek(0x300, 1, station)[0], station);
    }
}

TEST_F(Memory, MemoryBoxShowsThePlaceThatIsNamed)
{
    ASSERT_TRUE(connect());
    addSymbol("ADC", 0x400);
    load("[8000], u2\n&fCurrent, f\n");
    ResetLItemsDisplay();
    poke(0x300, 0x11, 1);
    poke(0x400, 0x22, 1);
    poke(0xADD, 0x33, 1);
    poke(0x300, 0x44, 1, 3);
    SIM_PokeTMS(target, STATION, 0x700, 0x55);
    SIM_PokeTMS(target, STATION, 0x300, 0x66);
    SIM_PokeTMS(target, 3, 0x700, 0x77);
    SIM_PokeTMS(target, 3, 0x300, 0x88);
    SetCtrlVal(PANEL_MAIN, MAIN_MEM_SWITCH, 1);
    const struct {
        int selected;
        const char *typed;
        size_t line;
        const char *shows; // the line begins with
    } cases[] = {
        {0, "wSpeed", 1, "00000300( +0):  11"},
        {0, " 300 ", 1, "00000300( +0):  11"},
        {0, "3:300", 1, "00000300( +0):  44"},
        {0, "3:wSpeed", 1, "00000300( +0):  44"},
        {0, "$300", 1, "00000300( +0):  11"},
        {0, "ADC", 1, "00000400( +0):  22"}, // a name before a number
        {0, "ADD", 1, "00000add( +0):  33"},
        {0, "&fCurrent", 2, " 00000700 ( +0):|  00000055"}, // whatever is selected
        {1, "wSpeed", 1, "00000300( +0):  11"},
        {1, "300", 2, " 00000300 ( +0):|  00000066"}, // a bare number goes with the item
        {0, "FACEmask", 1, " 'FACEmask' is no address, and no loaded map knows such a name."},
        {0, "16:300", 1, " Stations are 0 to 15."},
        {0, "3:", 1, " An address or a name is missing behind the station."},
        {0, "1000000", 1, " The address is outside the target's memory."},
        {0, "123456789123456789", 1, " The address is outside the target's memory."},
        {1, "3:&fCurrent", 2, " 00000700 ( +0):|  00000077"},
        {1, "3:300", 2, " 00000300 ( +0):|  00000088"},
    };
    for (const auto &c : cases) {
        HL_SelectLine(PANEL_MAIN, MAIN_LIST, c.selected);
        SetCtrlVal(PANEL_MAIN, MAIN_MEM_ADDR, c.typed);
        for (int i = 0; i < 2; ++i)
            timerCB(PANEL_MAIN, MAIN_TIMER, EVENT_TIMER_TICK, 0);
        EXPECT_EQ(boxLine(c.line).rfind(c.shows, 0), 0u) << c.typed << ": " << boxLine(c.line);
    }

    const auto color = [] { return UiAttribute(PANEL_MAIN, MAIN_MEM_BOX, ATTR_TEXT_COLOR); };
    HL_SelectLine(PANEL_MAIN, MAIN_LIST, 0);
    HL_SetUserVal(PANEL_MAIN, MAIN_MEM_ADDR, "300");
    EXPECT_EQ(color(), COLOR_OLD) << "the bytes are still those of the last place";
    HL_CommitControl(PANEL_MAIN, MAIN_MEM_ADDR);
    EXPECT_EQ(boxLine(1).rfind("00000300( +0):  11", 0), 0u) << "Enter reads at once";
    EXPECT_EQ(color(), COLOR_PLAIN);
    VIR2_StopPeriodicASC();
    EXPECT_EQ(color(), COLOR_OLD);
}

TEST_F(Memory, TheMemoryBoxIsCopiedAsATable)
{
    load("wSpeed, u2\n");
    ResetLItemsDisplay();
    ASSERT_TRUE(connect());
    poke(0x300, {'A', ' ', ' ', 'B', '-', '-', '-'}); // no rule under a heading
    const struct {
        int isTyped;
        const char *tabbed;
    } boxes[] = {{0,
                  "00000300( +0):\t41\t20\t20\t42\t2D\t2D\t2D\t00\t00\t00\t00\t00\t00\t00\t00\t00\t"
                  "A  B---.........\n"},
                 {1, "uns:\t2B\n000300 ( +0):\t8257\t000308 ( +8):\t0\n"}};
    for (const auto &row : boxes) {
        SetCtrlVal(PANEL_MAIN, MAIN_MEM_TYPED, row.isTyped);
        ResetTextBox(PANEL_MAIN, MAIN_MEM_BOX, "");
        ReadMemory(0x300, 0);
        EXPECT_EQ(WIN_MemoryBoxText().rfind(row.tabbed, 0), 0u) << WIN_MemoryBoxText();
    }
    ResetTextBox(PANEL_MAIN, MAIN_MEM_BOX, "");
    aLItems[0].name = "&fCurrent";
    readTMSMemory(0x700);
    const std::string table = WIN_MemoryBoxText();
    EXPECT_EQ(table.substr(0, table.find('\n')), "ADDR:\thex:\tlong:\tunsign. long:\tTMS float:");
}

} // namespace
