// Parameters, the command engine and script files.
#include "support/console_rig.h"

#include "console/script/script_command.h"

namespace {

// --- parameters --------------------------------------------------------------------------

TEST(ScriptParameter, Integers)
{
    const struct {
        const char *text;
        uint32_t code;
        int result;
        uint32_t value, flags;
    } cases[] = {{"5", 0x4, 1, 5, 0x4},
                 {"5 , 6", 0x4, 0, 5, 0x4},
                 {"1FH", 0x4, 1, 0x1F, 0x4},
                 {"0ffh", 0x4, 1, 0xFF, 0x6},
                 {"0x1F", 0x4, 1, 0x1F, 0x4},
                 {"-0X80 ,", 0x4, 0, 0xFFFFFF80, 0x5},
                 {"0x", 0x4, 0, 0, 0x4}, // the "x" is left for the caller to refuse
                 {"127", 0x5, 1, 127, 0x4},
                 {"-128", 0x4, 1, 0xFFFFFF80, 0x5},
                 {"255", 0x4, 1, 255, 0x6},
                 {"32767", 0x9, 1, 32767, 0x8},
                 {"-32768", 0x8, 1, 0xFFFF8000, 0x9},
                 {"65535", 0xA, 1, 65535, 0xA},
                 {"2147483647", 0x11, 1, 0x7FFFFFFF, 0x10},
                 {"-2147483648", 0x10, 1, 0x80000000, 0x11},
                 {"4294967295", 0x12, 1, 0xFFFFFFFF, 0x12},
                 {"0FFFFFFFFH", 0x10, 1, 0xFFFFFFFF, 0x12},
                 {"8000H", 0xB0, 1, 0x8000, 0x92}};
    for (const auto &c : cases) {
        const char *cursor = c.text;
        ScrPar par;
        ASSERT_EQ(ScrGetPar(&cursor, &par, c.code), c.result) << c.text;
        EXPECT_EQ(par.value, c.value) << c.text;
        // Above the signed range a 4-byte address is flagged like any other integer.
        EXPECT_EQ(par.flags, c.value == 0x8000 ? 0x90u : c.flags) << c.text;
    }
    const std::vector<std::pair<uint32_t, std::vector<std::string>>> refused = {
        {0x5, {"0x80", "128"}},
        {0x10,
         {"0x100000000", "-2147483649", "4294967296", "99999999999999999999", "0100000000H", "",
          "-", "+5", "x"}},
        {0x4, {"-129", "256"}},
        {0x6, {"-1"}},
        {0x9, {"32768"}},
        {0x8, {"-8001H"}},
        {0xA, {"65536"}},
        {0x11, {"2147483648"}}};
    for (const auto &[code, texts] : refused)
        for (const std::string &text : texts) {
            const char *cursor = text.c_str();
            ScrPar par;
            EXPECT_EQ(ScrGetPar(&cursor, &par, code), -1) << text;
            EXPECT_EQ(cursor, text.c_str()) << text;
        }
}

TEST(ScriptParameter, NamesTextsAndFloats)
{
    const std::string long239(239, 'a');
    const std::string long240(240, 'a');
    const struct {
        std::string text;
        uint32_t code;
        int result;
        std::string parsed;
        int index, offset;
        std::string rest;
    } cases[] = {{"awTable , u2", 0xB0, 0, "awTable", 0, 0, " , u2"},
                 {"&rec.item", 0x20, 1, "&rec.item", 0, 0, ""},
                 {"@x", 0x20, 1, "@x", 0, 0, ""},
                 {"a[3]", 0x20, 0, "a", 0, 0, "[3]"},
                 {"a[ 3 ] - 10H", 0x6020, 1, "a", 3, -16, ""},
                 {"a[0x3]+0x10", 0x6020, 1, "a", 3, 16, ""},
                 {"a+0", 0x4020, 1, "a", 0, 0, ""},
                 {"\"a b, c\",5", 0x20, 0, "a b, c", 0, 0, ",5"},
                 {"\"" + long239 + "\"", 0x20, 1, long239, 0, 0, ""},
                 {long239, 0x20, 1, long239, 0, 0, ""},
                 {" c:\\my file.txt  , 5", 0x400, 0, "c:\\my file.txt", 0, 0, ", 5"},
                 {"", 0x400, 1, "", 0, 0, ""},
                 {"'a, b',x", 0x800, 0, "a, b", 0, 0, ",x"},
                 {"'a", 0x400, 1, "'a", 0, 0, ""},
                 {"Really stop? ", 0x800, 1, "Really stop?", 0, 0, ""}};
    for (const auto &c : cases) {
        const char *cursor = c.text.c_str();
        ScrPar par;
        ASSERT_EQ(ScrGetPar(&cursor, &par, c.code), c.result) << c.text;
        EXPECT_EQ(par.text, c.parsed);
        EXPECT_EQ(par.index, c.index) << c.text;
        EXPECT_EQ(par.offset, c.offset) << c.text;
        EXPECT_EQ(cursor, c.rest) << c.text;
    }
    const std::vector<std::pair<uint32_t, std::vector<std::string>>> refused = {
        {0x2020, {"a[3", "a[-1]"}},
        {0x4020, {"a+", "a+2147483648"}},
        {0x20, {"1a", "&", "\"open", "\"" + long240 + "\"", long240}},
        {0x400, {"\"" + long239, long240}},
        {0x800, {"\"" + long240}}};
    for (const auto &[code, texts] : refused)
        for (const std::string &text : texts) {
            const char *cursor = text.c_str();
            ScrPar par;
            EXPECT_EQ(ScrGetPar(&cursor, &par, code), -1) << text;
        }
    const struct {
        const char *text;
        int result;
        double value;
    } floats[] = {{"1.5", 1, 1.5},  {"-2e3", 1, -2000}, {"+.5", -1, 0}, {"7.", 1, 7},
                  {"1e999", -1, 0}, {"1e", 0, 1},       {"nan", -1, 0}};
    for (const auto &c : floats) {
        const char *cursor = c.text;
        ScrPar par;
        ASSERT_EQ(ScrGetPar(&cursor, &par, PAR_FLOAT), c.result) << c.text;
        EXPECT_EQ(par.fvalue, c.value) << c.text;
    }
}

// --- the engine -----------------------------------------------------------------------------

std::string externLine;

int TakeLine(ScrPar *par)
{
    externLine = par[0].text;
    return 7;
}

TEST(ScriptCommand, Refusals)
{
    const std::string name78(78, 'n');
    const ScrRow rows[] = {{TakeLine, "whole", {PAR_EXTERN}},
                           {TakeLine, "two", {PAR_BYTE, PAR_RAW}},
                           {TakeLine, "none", {}}};
    const struct {
        std::string line;
        int result;
        const char *message;
    } cases[] = {{"; two 1", 0, ""},
                 {"", SCR_UNKNOWN, ""},
                 {"7", SCR_UNKNOWN, ""},
                 {"tw 1, a", SCR_UNKNOWN, ""},
                 {name78, SCR_UNKNOWN, ""},
                 {name78 + "n", SCR_ERR_LONG_NAME, "Error in ExecScrCmd: command too long."},
                 {"  TWO 1 , a", 7, ""},
                 {"two 1", SCR_ERR_SPLITTER, "Error in ExecScrCmd: syntax - bad splitter."},
                 {"two 1 a", SCR_ERR_SPLITTER, "Error in ExecScrCmd: syntax - bad splitter."},
                 {"two", SCR_ERR_PARAMETER, "Error in ExecScrCmd: bad parameter type."},
                 {"two 256, a", SCR_ERR_PARAMETER, "Error in ExecScrCmd: bad parameter type."},
                 {"two 1, a, b", SCR_ERR_TOO_MANY, "Error in ExecScrCmd: too many parameters."},
                 {"none 1", SCR_ERR_TOO_MANY, "Error in ExecScrCmd: too many parameters."},
                 {"none  ", 7, ""},
                 {"whole " + std::string(232, 'x'), 7, ""},
                 {"whole " + std::string(233, 'x'), SCR_ERR_LONG_LINE,
                  "Error in ExecScrCmd: extern command too long."}};
    for (const auto &c : cases) {
        szScrFnErrMsg.clear();
        EXPECT_EQ(ExecScrCmd(c.line.c_str(), rows, 3), c.result) << c.line;
        EXPECT_EQ(szScrFnErrMsg, c.message) << c.line;
    }
    EXPECT_EQ(externLine, "whole " + std::string(232, 'x'));
}

// --- script files -----------------------------------------------------------------------------

using Script = ConsoleRig;

TEST_F(Script, RunsJumpsAndEnds)
{
    const std::string ok = "station 2 -> OK!\n";
    const std::string bad =
        "ERROR - station: cislo stanice ma byt od 0 do 15.\nstation 99 -> Error!\n";
    const std::string longLine(LINE_CHARS_MAX - 4, 'x');
    const struct {
        const char *what;
        std::string text;
        int result;
        std::string shown;
    } cases[] = {{"empty", "", 0, ""},
                 {"comments and labels", " ; note\n\nLabel :\nEnd:\n\tstation 2\n", 0, ok},
                 {"any line end, none at the end", "station 2\r\n\r;\n\rstation 2", 0, ok + ok},
                 {"forward", "goto end\nstation 99\nend :\nstation 2\n", 0, ok},
                 {"no way back", "top:\nstation 2\ngoto top\nstation 2\n", -5, ok},
                 {"no label", "goto\t5\n", -3, ""},
                 {"error", "station 2\nstation 99\nstation 2\n", -4, ok + bad},
                 {"handled", "station 99\nstation 3\nOnError :\nstation 2\nstation 99\n", -7,
                  bad + ok + bad},
                 {"handled twice", "station 99\nOnError:\nstation 99\nOnError:\nstation 2\n", 0,
                  bad + bad + ok},
                 {"case of OnError", "station 99\nonerror:\nstation 2\n", -3, bad},
                 {"unknown words are errors", "nonsense\nstation 3\nOnError:\nstation 2\n", 0,
                  "Unknown command. Try 'h' for help.\n" + ok},
                 {"exit", "station 2\nexit\nstation 99\n", 0, ok + "exit -> OK!\n"},
                 {"500 characters", "msg " + longLine + "\n", -3,
                  "Error in ExecScrCmd: bad parameter type.\nmsg " + longLine + " -> Error!\n"},
                 {"501 characters", "msg x" + longLine + "\n", -3,
                  "The line is longer than 500 characters and was not run.\n"},
                 {"501 characters handled", "msg x" + longLine + longLine + "\nOnError:\nstation 2",
                  0, "The line is longer than 500 characters and was not run.\n" + ok},
                 {"a long comment", ";" + longLine + longLine + "\nstation 2", 0, ok}};
    for (const auto &c : cases) {
        WriteFileText("case.scr", c.text);
        NewText();
        EXPECT_EQ(ExecMonScript("case", PANEL_CONSOLE), c.result) << c.what;
        EXPECT_EQ(NewText(), c.shown) << c.what;
    }
    EXPECT_EQ(ExecMonScript("nowhere", PANEL_CONSOLE), -1);
    EXPECT_EQ(SCR_GetResultText(-4), "Error in the script file on line 3.");
    EXPECT_EQ(SCR_GetResultText(-1), "Could not open the script file.");
    EXPECT_EQ(SCR_GetResultText(0), "");
}

TEST_F(Script, QuestionsChooseTheWay)
{
    WriteFileText("ask.scr", "qst 'Go on, now?', \"No, stop\", Stop\nstation 2\ngoto End\n"
                             "Stop :\nstation 5\nEnd:\nmsg done, \n");
    const struct {
        int button, station;
    } answers[] = {{1, 2}, {0, 5}};
    for (const auto &answer : answers) {
        HL_PushAnswer(answer.button);
        EXPECT_EQ(ExecMonScript("ask.scr", PANEL_CONSOLE), -9) << "the comma after msg is too much";
        EXPECT_EQ(STATION, answer.station);
    }
    EXPECT_EQ(HL_GetPopups()[0], "Question: Go on, now?");
    WriteFileText("lost.scr", "qst a, b, Nowhere\nstation 1\n");
    EXPECT_EQ(ExecMonScript("lost.scr", PANEL_CONSOLE), -3);
    EXPECT_EQ(STATION, 5) << "nothing ran past the jump";
    WriteFileText("say.scr", "msg Done.\n");
    EXPECT_EQ(ExecMonScript("say.scr", PANEL_CONSOLE), 0);
    EXPECT_EQ(HL_GetPopups().back(), "message: Done.");
}

TEST_F(Script, StartedFromTheConsoleKeepsStationAndLink)
{
    WriteFileText("inner.scr", "station 4\nwrite 2, 7, 8100H\nwrite 2, 8, 8102H\n");
    EXPECT_EQ(Run("!inner"),
              "station 4 -> OK!\nwrite 2, 7, 8100H -> OK!\nwrite 2, 8, 8102H -> OK!\n");
    EXPECT_EQ(STATION, 1);
    STATION = 4;
    EXPECT_EQ(Peek(0x8100, 4), (std::vector<uint8_t>{7, 0, 8, 0}));
    EXPECT_EQ(nASC_Opened, 0);
    EXPECT_FALSE(UCM_IsOpened());
}

TEST_F(Script, NewSettingsTakeEffectInTheMiddle)
{
    // Port 8 does not exist: the line after compar fails, the one after the second works.
    unsetenv("VIREO2_COM8");
    WriteFileText("ports.scr", "write 1, 1, 8100H\ncompar 8, 9600\nwrite 1, 2, 8100H\nOnError:\n"
                               "compar 7, 9600\nwrite 1, 3, 8100H\n");
    EXPECT_EQ(ExecMonScript("ports.scr", PANEL_CONSOLE), 0);
    EXPECT_EQ(bRate, 9600);
    EXPECT_EQ(Peek(0x8100, 1)[0], 3);
    EXPECT_FALSE(UCM_IsOpened());
}

TEST_F(Script, ScriptsThatStartThemselvesEnd)
{
    WriteFileText("loop.scr", "!loop\n");
    EXPECT_EQ(ExecMonScript("loop.scr", PANEL_CONSOLE), -3);
    EXPECT_EQ(NewText().substr(0, 40), "Too many scripts are started by scripts.");
    WriteFileText("good.scr", "station 2\n");
    EXPECT_EQ(ExecMonScript("good.scr", PANEL_CONSOLE), 0);
}

// However often and deep: the lines of all inner scripts have one bound, which each run from
// the outside has anew.
TEST_F(Script, WorkOfInnerScriptsIsBounded)
{
    std::string inner;
    for (int i = 0; i < SCRIPT_INNER_LINES_MAX / 2; i++)
        inner += ";\n";
    WriteFileText("inner.scr", inner);
    WriteFileText("twice.scr", "!inner\n!inner\n");
    EXPECT_EQ(ExecMonScript("twice.scr", PANEL_CONSOLE), 0);
    EXPECT_EQ(ExecMonScript("twice.scr", PANEL_CONSOLE), 0) << "counted from the outermost script";
    WriteFileText("more.scr", "!inner\n!inner\nstation 2\n!sets\nstation 5\n");
    WriteFileText("sets.scr", "station 4\n");
    NewText();
    EXPECT_EQ(ExecMonScript("more.scr", PANEL_CONSOLE), -6);
    EXPECT_EQ(NewText(), "station 2 -> OK!\nToo many lines in scripts that are started by "
                         "scripts.\nsets, line 1: station 4\n"
                         "Error in the script file on line 2.\n");
    EXPECT_EQ(STATION, 2);
}

TEST_F(Script, AFailureNamesTheLineThatAskedForTheJump)
{
    WriteFileText("ask.scr", "station 2\nqst Go on?, No, Nowhere\nstation 3\nstation 4\n");
    NewText();
    EXPECT_EQ(SCR_RunAndReport("ask.scr", PANEL_CONSOLE), -4);
    EXPECT_TRUE(Has(NewText(), "ask.scr, line 2: qst Go on?, No, Nowhere\n"));
}

} // namespace
