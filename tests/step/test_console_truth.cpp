// What the console's commands print, save and report as written, on lines that repeat, lose,
// damage and delay answers: right, or refused. In virtual time, by lots drawn from a seed.
#include "comm/mr166_link.h"
#include "comm/ucm.h"
#include "console/monitor/monitor.h"
#include "runtime/model/door.h"
#include "runtime/userint.h"
#include "support/program_state.h"
#include "ui/resource.h"
#include "virtual_line.h"

#include <set>
#include <sstream>

namespace {

constexpr uint32_t EXCHANGES_OF_PROOF = 1;
int triesLeft = 0; // until the interrupt

struct Truth : ProgramTest {
    const ScratchFolder folder{true};

    void SetUp() override
    {
        ASSERT_EQ(HL_LoadAllPanels(), 0);
        VR_isFullCommandSet = true;
        STATION = 1;
        Procesor = CPU_C167;
        start(VL_Schedule(), 1);
    }
    ~Truth() override
    {
        UCM_SetListener(UCM_Listener());
    }
    // A line that was just opened, and stays open from command to command.
    void start(const VL_Schedule &schedule, uint32_t seed)
    {
        VL_Start(schedule, seed);
        UCM_Init();
        Mr166_nTimeoutMs = VL_TIMEOUT_MS;
        UCM_UseWin32(static_cast<int>(seed % 2));
        ASSERT_EQ(UCM_Open(1, 1, 19200), 0);
        isTimer = 1;
    }
    // Typed lines, separated by ";", in the monitor of the C166 or (mode 1) of the TMS320.
    std::string run(int mode, const std::string &lines)
    {
        command = mode;
        ResetTextBox(PANEL_CONSOLE, CONSOLE_BOX, "");
        std::istringstream all(lines);
        for (std::string line; std::getline(all, line, ';');) {
            HL_SetUserVal(PANEL_CONSOLE, CONSOLE_INPUT, line);
            HL_Key(PANEL_CONSOLE, CONSOLE_INPUT, KEY_ENTER);
        }
        std::string text;
        for (const std::string &line : HL_GetLines(PANEL_CONSOLE, CONSOLE_BOX))
            text += line + "\n";
        return text;
    }
};

bool IsFailure(const std::string &text)
{
    for (const char *sign : {"Error", "ERROR", "succesful", "responding", "ancelled"})
        if (text.find(sign) != std::string::npos)
            return true;
    return false;
}

struct Reading {
    int mode;
    const char *line;
    uint32_t exchanges; // that it takes on a good line, its proof not counted
};
const Reading READINGS[] = {
    {CMD_C166, "d 1000", 8},
    {CMD_C166, "dx 1000", 8},
    {CMD_C166, "dump 1000H, u1, 300", 5},
    {CMD_C166, "save 1000H, u2, 100, f", 4},
    {CMD_C166, "binsave 1000H, 60, f", 1},
    {CMD_C166, "xsave 1000H, 60, f", 1},
    {CMD_C166, "si 1000, f, 20", 20},
    {CMD_C166, "sf 1000, f, 5", 20},
    {CMD_TMS, "d 400, 8", 32},
    {CMD_TMS, "sf 400, f, 8", 32},
};

// Every line that it prints stands in what a good line shows, too, or tells of a failure.
void ExpectLinesOf(const std::string &whole, const std::string &shown, const std::string &what)
{
    std::istringstream good(whole), all(shown);
    std::set<std::string> allowed{""};
    for (std::string line; std::getline(good, line);)
        allowed.insert(line);
    for (std::string line; std::getline(all, line);)
        EXPECT_TRUE(allowed.count(line) > 0 || IsFailure(line) || line.rfind("Cause: ", 0) == 0 ||
                    line.back() == '|')
            << what << ": " << line;
}

// Lines that repeat some or most answers, and lines that lose, damage and delay them.
VL_Schedule BadLine(uint32_t seed)
{
    VL_Schedule bad;
    const double duplicates[] = {0.01, 0, 0, 0.6};
    bad.duplicate = duplicates[seed % 4];
    bad.loss = seed % 4 == 1 ? 0.04 : 0;
    bad.damage = seed % 4 == 2 ? 0.04 : 0;
    bad.delayMax = seed % 8 < 4 ? 0.5 : VL_TIMEOUT_MS * 0.9;
    return bad;
}

TEST_F(Truth, WhatIsReadIsRightOrRefusedAndPaysOneProof)
{
    for (const Reading &reading : READINGS) {
        run(reading.mode, reading.line);
        const uint64_t before = VL_counters.requests;
        const std::string whole = run(reading.mode, reading.line);
        EXPECT_EQ(VL_counters.requests - before, reading.exchanges + EXCHANGES_OF_PROOF)
            << reading.line;
        const std::string file = std::filesystem::exists("f") ? ReadFileText("f") : "";
        int good = 0;
        for (uint32_t seed = 0; seed < 60; seed++) {
            start(BadLine(seed), seed);
            WriteFileText("f", "old");
            const std::string shown = run(reading.mode, reading.line);
            const std::string what = reading.line + (" seed " + std::to_string(seed));
            ExpectLinesOf(whole, shown, what);
            const bool isGood = shown == whole;
            good += isGood ? 1 : 0;
            EXPECT_TRUE(isGood || IsFailure(shown)) << what << shown;
            EXPECT_EQ(ReadFileText("f"), isGood && !file.empty() ? file : "old") << what;
        }
        EXPECT_GT(good, 20) << reading.line << ": a repeated answer is read again";
        std::filesystem::remove("f");
        start(VL_Schedule(), 1);
    }
}

TEST_F(Truth, WhatIsReportedAsWrittenIsThere)
{
    const struct {
        int mode;
        const char *line, *head; // of the file
        uint32_t exchanges, values;
    } cases[] = {{CMD_C166, "write 2, %, 2000H", "", 1, 1},
                 {CMD_C166, "wu 2000;%;", "", 1, 1},
                 {CMD_C166, "binload 2000H, 100, f", "", 7, 100},
                 {CMD_C166, "loadcsv 2000H, u1, 50, f", "", 4, 50},
                 {CMD_C166, "l 2000, f", "int\n", 60, 60},
                 {CMD_TMS, "wu 400;%;", "", 4, 1},
                 {CMD_TMS, "l 400, f", "int\n", 40, 10}};
    for (const auto &c : cases) {
        uint64_t exchanges = 0;
        int good = 0;
        for (uint32_t seed = 0; seed < 60; seed++) {
            start(seed == 0 ? VL_Schedule() : BadLine(seed), seed);
            uint8_t probed = 0;
            UCM_Read(1, 0, 1, &probed); // the opening pays its own proofs
            UCM_Prove();
            std::vector<uint32_t> values(c.values);
            std::string text = c.head, line = c.line;
            const bool isBinary = line.rfind("binload", 0) == 0;
            for (uint32_t &value : values) {
                value = VL_Random(200) + 1;
                text += isBinary ? std::string(1, static_cast<char>(value))
                                 : std::to_string(value) + "\n";
            }
            WriteFileText("f", text);
            if (line.find('%') != std::string::npos)
                line.replace(line.find('%'), 1, std::to_string(values[0]));
            const uint64_t before = VL_counters.requests;
            const std::string shown = run(c.mode, line);
            exchanges = seed == 0 ? VL_counters.requests - before : exchanges;
            if (IsFailure(shown))
                continue;
            ++good;
            for (uint32_t i = 0; i < values.size(); i++)
                EXPECT_EQ(c.mode == CMD_TMS ? VL_TmsWord(0x400 + i) : VL_Memory(1, 0x2000 + i),
                          values[i])
                    << line << " seed " << seed << shown;
        }
        EXPECT_EQ(exchanges, c.exchanges + EXCHANGES_OF_PROOF) << c.line;
        EXPECT_GT(good, 10) << c.line;
    }
}

// All that was asked for has come, but the proof does not: as if nothing had.
TEST_F(Truth, WhatCannotBeProvenIsNotShown)
{
    VL_Schedule dead;
    dead.loss = 2;
    UCM_Listener listener;
    listener.isBreak = [] {
        VL_Schedule silent;
        silent.loss = 2;
        if (triesLeft-- == 0)
            VL_Change(silent);
        return false;
    };
    for (const Reading &reading : READINGS) {
        run(reading.mode, reading.line);
        WriteFileText("f", "old");
        UCM_SetListener(listener);
        triesLeft = static_cast<int>(reading.exchanges);
        const std::string unproven = run(reading.mode, reading.line);
        UCM_SetListener(UCM_Listener());
        start(dead, 1);
        const std::string none = run(reading.mode, reading.line);
        EXPECT_EQ(unproven.substr(0, unproven.find("Cause: ")),
                  none.substr(0, none.find("Cause: ")));
        EXPECT_TRUE(Has(unproven, "no answer"));
        EXPECT_EQ(ReadFileText("f"), "old") << reading.line;
        start(VL_Schedule(), 1);
    }
}

// Ctrl-C in the middle of each ends it there, says so and leaves the file; the next one works.
TEST_F(Truth, AnInterruptEndsACommandBetweenTwoExchanges)
{
    UCM_Listener listener;
    listener.isBreak = [] {
        if (--triesLeft == 0)
            MDL_OnSignal(true);
        return IsBreakWished();
    };
    UCM_SetListener(listener);
    WriteFileText(
        "many", "int\n" + [] {
            std::string lines;
            for (int i = 0; i < 50; i++)
                lines += "1\n";
            return lines;
        }());
    std::vector<Reading> all(std::begin(READINGS), std::end(READINGS));
    all.push_back({CMD_C166, "l 2000, many", 50});
    all.push_back({CMD_C166, "!script", 7});
    WriteFileText("script.scr", "write 1, 1, 2000H\ndump 1000H, u1, 300\nOnError:\nmsg no\n");
    for (const Reading &reading : all) {
        WriteFileText("f", "old");
        const uint64_t before = VL_counters.requests;
        triesLeft = reading.exchanges > 1 ? 3 : 1;
        const std::string shown = run(reading.mode, reading.line);
        EXPECT_TRUE(shown.find("ancelled") != std::string::npos ||
                    shown.find("preruseno") != std::string::npos)
            << reading.line << shown;
        EXPECT_LE(VL_counters.requests - before, 2u) << reading.line;
        EXPECT_EQ(ReadFileText("f"), "old") << reading.line;
        EXPECT_FALSE(IsFailure(run(CMD_C166, "d 1000")));
    }
    EXPECT_TRUE(HL_GetPopups().empty()) << "the script went on at its label";
}

} // namespace
