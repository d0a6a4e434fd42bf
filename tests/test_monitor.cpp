// The console as a user meets it: transcripts of typed lines against a simulated
// target, line entry, history, the word gate and the link.
#include "support/console_rig.h"

#include "app/main_panel.h"
#include "comm/communication.h"
#include "console/monitor/completion.h"
#include "console/monitor/text_box.h"
#include "watch/list/list_file.h"
#include "watch/list/litem.h"

#include <algorithm>
#include <filesystem>

namespace {

using Monitor = ConsoleRig;

// --- transcripts -------------------------------------------------------------------------

// A transcript holds typed lines ("> "), orders to the rig ("# "), and between them the
// text the box must show.
struct Transcript : ConsoleRig, testing::WithParamInterface<std::string> {
    void Obey(const std::string &order)
    {
        std::istringstream words(order);
        std::string verb;
        words >> verb;
        if (verb == "poke") {
            uint32_t address = 0;
            unsigned byte = 0;
            words >> std::hex >> address;
            std::vector<uint8_t> bytes;
            while (words >> byte)
                bytes.push_back(static_cast<uint8_t>(byte));
            Poke(address, bytes);
        } else if (verb == "tms") {
            uint32_t address = 0;
            uint32_t value = 0;
            words >> std::hex >> address >> value;
            SIM_PokeTMS(target, STATION, address, value);
        } else if (verb == "modbus") {
            ChangeProtocol();
        } else if (verb == "gate") {
            VR_isFullCommandSet = false;
        } else {
            ADD_FAILURE() << order;
        }
    }
};

std::string GetTranscriptPath(const std::string &name)
{
    return TRANSCRIPTS_DIR "/" + name + ".txt";
}

TEST_P(Transcript, BoxShowsIt)
{
    WriteMap("small.m66");
    std::ifstream file(GetTranscriptPath(GetParam()));
    ASSERT_TRUE(file.is_open());
    std::string expected, shown, line;
    while (std::getline(file, line)) {
        expected += line + "\n";
        if (line.compare(0, 2, "# ") == 0)
            Obey(line.substr(2));
        else if (line.compare(0, 2, "> ") == 0)
            Type(line.substr(2));
        else
            continue;
        shown += line + "\n" + NewText();
    }
    EXPECT_EQ(shown, expected);
}

// Every file of the folder.
std::vector<std::string> FindTranscripts()
{
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(TRANSCRIPTS_DIR))
        names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

INSTANTIATE_TEST_SUITE_P(Files, Transcript, testing::ValuesIn(FindTranscripts()),
                         [](const auto &name) { return name.param; });

// --- line entry ----------------------------------------------------------------------------

TEST_F(Monitor, HistoryHoldsTenLinesAndRunsDownToTheOlder)
{
    for (int i = 1; i <= 11; i++)
        Type("station " + std::to_string(i));
    EXPECT_EQ(aOldCommand[0], "station 11");
    const struct {
        int key;
        const char *field;
    } steps[] = {{KEY_UP, ""},
                 {KEY_DOWN, "station 11"},
                 {KEY_DOWN, "station 10"},
                 {KEY_DOWN, "station 9"},
                 {KEY_UP, "station 10"},
                 {KEY_ESC, ""},
                 {KEY_DOWN, "station 11"}};
    for (const auto &step : steps) {
        HL_Key(PANEL_CONSOLE, CONSOLE_INPUT, step.key);
        EXPECT_EQ(Field(), step.field) << step.key;
    }
    // The oldest line that is still kept ends the way back.
    for (int i = 0; i < 20; i++)
        HL_Key(PANEL_CONSOLE, CONSOLE_INPUT, KEY_DOWN);
    EXPECT_EQ(Field(), "station 3");
}

TEST_F(Monitor, LongLines)
{
    const std::string fits = "msg " + std::string(200, 'x');
    Type(fits);
    EXPECT_EQ(aOldCommand[0], fits.substr(0, HISTORY_CHARS));
    NewText();
    const std::string tooLong(LINE_CHARS_MAX + 1, 'x');
    Type(tooLong);
    EXPECT_EQ(NewText(), "The line is longer than 500 characters and was not run.\n");
    EXPECT_EQ(Field(), tooLong) << "the user may cut it";
}

TEST_F(Monitor, TextIsBoundedAndCanBeSavedAndCopied)
{
    for (int i = 0; i < CONSOLE_LINES_MAX + 600; i++)
        PrintMonStr("line " + std::to_string(i));
    const std::vector<std::string> lines = HL_GetLines(PANEL_CONSOLE, CONSOLE_BOX);
    EXPECT_GE(lines.size(), static_cast<size_t>(CONSOLE_LINES_MAX));
    EXPECT_LT(lines.size(), static_cast<size_t>(CONSOLE_LINES_MAX) + 300);
    EXPECT_EQ(lines.back(), "line 5599");
    ResetTextBox(PANEL_CONSOLE, CONSOLE_BOX, "");
    PrintMonStr("one\ntwo");
    HL_ClickMenu(ITEM_COPY_CONSOLE);
    EXPECT_EQ(HL_GetClipboard(), "one\ntwo");
    EXPECT_EQ(CON_SaveText("text.txt"), 0);
    EXPECT_EQ(ReadFile("text.txt"), "one\r\ntwo\r\n");
    EXPECT_EQ(CON_SaveText("no/such/folder.txt"), -1);
}

TEST_F(Monitor, CompletesCommandsScriptsAndNames)
{
    WriteMap("small.m66");
    Type("m small.m66");
    WriteFileText("first.scr", "");
    WriteFileText("final.scr", "");
    const struct {
        const char *line;
        std::string candidates;
        int start;
    } cases[] = {
        {"pro", "procesor", 0},
        {"l",
         "language ldcmpldx ldx2vldx listvars load loadcsv loadcsvn l3erase l3read l3test l3verify "
         "l3write",
         0},
        {"!fi", "final.scr first.scr", 1},
        {"write 2, 5, n", "nCount", 12},
        {"dump awT", "awTable", 5},
        {"zz", "", 0}};
    for (const auto &c : cases) {
        std::vector<std::string> found;
        EXPECT_EQ(CON_Complete(c.line, std::string(c.line).size(), &found), c.start) << c.line;
        std::istringstream words(c.candidates);
        std::vector<std::string> expected{std::istream_iterator<std::string>(words), {}};
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(found, expected) << c.line;
    }
    VR_isFullCommandSet = false;
    std::vector<std::string> admitted;
    CON_Complete("l", 1, &admitted);
    EXPECT_EQ(admitted.size(), 5u) << "what the gate refuses is not offered";
    NewText();
    HL_SetUserVal(PANEL_CONSOLE, CONSOLE_INPUT, "!f");
    HL_Key(PANEL_CONSOLE, CONSOLE_INPUT, KEY_TAB);
    EXPECT_EQ(Field(), "!fi");
    EXPECT_EQ(NewText(), " final.scr first.scr\n");
}

// --- the link ---------------------------------------------------------------------------------

TEST_F(Monitor, AsksForAnotherPortAndUsesIt)
{
    ncom = 8; // nothing there
    unsetenv("VIREO2_COM8");
    HL_PushAnswer(1, "9");
    HL_PushAnswer(1, std::to_string(RIG_PORT));
    EXPECT_EQ(Run("write 2, 1234H, 8100H"), "write 2, 1234H, 8100H -> OK!\n");
    EXPECT_EQ(HL_GetPopups().size(), 2u);
    EXPECT_EQ(ncom, RIG_PORT);
    EXPECT_EQ(Peek(0x8100, 2), (std::vector<uint8_t>{0x34, 0x12}));
    EXPECT_FALSE(UCM_IsOpened()) << "held for the line only";
}

TEST_F(Monitor, CancelledQuestionReportsThePort)
{
    ncom = 8;
    unsetenv("VIREO2_COM8");
    HL_PushAnswer(0);
    const std::string why = "Error opening serial port: COM8.\n\n" + UCM_PortName(8) +
                            ": port is not available: no such device\n";
    EXPECT_EQ(Run("write 2, 1, 8100H"), why);
    EXPECT_EQ(nASC_Opened, 0);
    // The TMS monitor does not ask, and can be left all the same.
    command = CMD_TMS;
    EXPECT_EQ(Run("d 400"), why);
    Type("x");
    EXPECT_EQ(command, CMD_C166);
}

// What a new setting drags along, and that a refused one leaves everything as it was.
TEST_F(Monitor, ProcessorAndPortChangeWithAllThatHangsOnThem)
{
    WriteFileText("w.dbg", "DPP0, u2\nePWM1_TBCTL, u2\neCAP6_ECCTL1, u2\n");
    ASSERT_EQ(dat2litems("w.dbg"), 0);
    constexpr uint32_t NONE = LITEM_NO_ADDRESS;
    const struct {
        const char *line;
        int item; // checked afterwards
        uint32_t first, second, third;
    } steps[] = {{"procesor 166", ITEM_CPU_C166, 0xFE00, NONE, NONE},
                 {"procesor 28335", ITEM_CPU_F283XX, NONE, 0xD000, 0xD568},
                 {"procesor 2803", ITEM_CPU_F283XX, NONE, 0xD000, 0xD568},
                 {"procesor 167", ITEM_CPU_C167, 0xFE00, NONE, NONE}};
    for (const auto &step : steps) {
        Run(step.line);
        VR_ShowSettings();
        EXPECT_EQ(UiItemAttribute(step.item, ATTR_CHECKED), 1) << step.line;
        EXPECT_EQ(aLItems[0].address, step.first) << step.line;
        EXPECT_EQ(aLItems[1].address, step.second) << step.line;
        EXPECT_EQ(aLItems[2].address, step.third) << step.line;
    }
    VIR2_StartPeriodicASC();
    ASSERT_EQ(isTimer, 1);
    for (const char *line : {"compar 7, 9600", "compar 0, 57600", "compar 9, 1200"}) {
        Run(line);
        EXPECT_EQ(ncom * 100000 + bRate, 709600) << line;
        EXPECT_EQ(isTimer + UCM_IsOpened(), 2) << line;
    }
    EXPECT_EQ(Run("write 1, 7, 8100H"), "write 1, 7, 8100H -> OK!\n") << "on the new link";
    EXPECT_TRUE(UCM_IsOpened()) << "what was switched on stays on";
    unsetenv("VIREO2_COM8");
    Run("compar 8, 19200");
    EXPECT_EQ(isTimer + UCM_IsOpened(), 0) << "nothing is there";
}

TEST_F(Monitor, ValueEntryEndsOnFailure)
{
    struct {
        const char *enter, *value;
        int mode; // afterwards
    } const cases[] = {{"wi 8100", "32767", CMD_WRITE_C166},  {"wi 8100", "32768", CMD_C166},
                       {"wi 8100", "-32768", CMD_WRITE_C166}, {"wu 8100", "-1", CMD_C166},
                       {"wu 8100", "65535", CMD_WRITE_C166},  {"wx 8100", "10000", CMD_C166},
                       {"wf 8100", "1.5e", CMD_C166},         {"wf 8100", "1e40", CMD_C166},
                       {"wi 8100", "12 13", CMD_C166},        {"wi 8100", "0x10", CMD_WRITE_C166}};
    for (const auto &c : cases) {
        command = CMD_C166;
        Type(c.enter);
        Type(c.value);
        EXPECT_EQ(command, c.mode) << c.enter << " " << c.value;
    }
    // Only the signed kind knows the prefixes of other bases.
    struct {
        const char *enter, *value;
        uint8_t held;
    } const bases[] = {{"wi 8100", "010", 8},
                       {"wi 8100", "-0x10", 0xF0},
                       {"wi 8100", "0x1f", 31},
                       {"wu 8100", "010", 10},
                       {"wx 8100", "010", 16}};
    for (const auto &c : bases) {
        command = CMD_C166;
        Type(c.enter);
        Type(c.value);
        EXPECT_EQ(Peek(0x8100, 1)[0], c.held) << c.enter << " " << c.value;
    }
    // A TMS entry that fails leads to the C166 monitor.
    SIM_Options silent;
    silent.demo = false;
    silent.mailbox = false;
    SIM_SetFaults(target, silent);
    command = CMD_TMS;
    Type("wi 400");
    NewText();
    EXPECT_EQ(Run("5"), "\nHardware not responding.\n");
    EXPECT_EQ(command, CMD_C166);
    EXPECT_EQ(Prompt(), "S166 >");
}

} // namespace
