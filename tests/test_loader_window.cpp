// The loader window by clicks, against a simulated boot-strap loader on a pseudo terminal.
#include <cmath>
#include <functional>

#include "comm/mr166_link.h"
#include "loader/window.h"
#include "sim/loader.h"
#include "support/console_rig.h"

namespace {

using Texts = std::vector<std::string>;

// 4 bytes at 0x10, then `count` records of 16 bytes at 0x10000.
std::string MakeHex(int count)
{
    std::string text = ":04001000DEADBEEFB4\n:020000040001F9\n";
    for (int i = 0; i < count; i++) {
        int sum = 16 + (i >> 4) + (i << 4 & 0xFF);
        char line[64];
        int length = std::snprintf(line, sizeof line, ":10%04X00", i << 4);
        for (int j = 0; j < 16; j++, sum += i * 7 & 0xFF)
            length += std::snprintf(line + length, 8, "%02X", i * 7 & 0xFF);
        std::snprintf(line + length, 8, "%02X\n", -sum & 0xFF);
        text += line;
    }
    return text + ":00000001FF\n";
}

struct LoaderWindow : ConsoleRig {
    static constexpr int RECORDS = 120;

    void SetUp() override
    {
        ConsoleRig::SetUp();
        PlugLoader();
        LDR_ResetWindow();
        WriteFileText("a.hex", MakeHex(RECORDS));
        ASSERT_EQ(0, HL_ClickMenu(ITEM_LOADER));
        EXPECT_EQ(HL_DIMMED, Click(LOADER_PROGRAM)) << "nothing to program yet";
    }
    void TearDown() override
    {
        LDR_ResetWindow();
    }
    static int Click(int control)
    {
        return HL_CommitControl(PANEL_LOADER, control);
    }
    static void Choose(const std::string &name)
    {
        HL_PushAnswer(1, name);
        EXPECT_EQ(0, Click(LOADER_CHOOSE));
    }
    static std::string Text(int control)
    {
        return UiText(PANEL_LOADER, control);
    }
    static bool Says(int control, const std::string &part)
    {
        return Text(control).find(part) != std::string::npos;
    }
    // The first letter of each step's state.
    static std::string Steps()
    {
        std::string states;
        std::vector<UI_Cell> cells;
        for (int i = 0; GetListCells(PANEL_LOADER, LOADER_STEPS, i, &cells) == 0; i++)
            states += cells[1].text.empty() ? '-' : cells[1].text[0];
        return states;
    }
    static std::string Styles() // of the bar from left to right
    {
        std::string styles;
        std::vector<UI_Segment> segments;
        EXPECT_EQ(0, GetBarSegments(PANEL_LOADER, LOADER_BAR, &segments));
        for (const UI_Segment &segment : segments)
            styles += "w.x.v"[segment.style & (UIS_DIM | UIS_WARNING | UIS_GOOD)];
        return styles;
    }
    void WithLoader(const std::function<void(SIM_Loader *)> &use)
    {
        SIM_WithLoader(target, use);
    }
    uint32_t Erases()
    {
        uint32_t erases = 0;
        WithLoader([&](SIM_Loader *loader) { erases = loader->erases; });
        return erases;
    }
    // Whether the flash holds the first `records` records and nothing behind them.
    bool Holds(int records)
    {
        bool isEqual = true;
        WithLoader([&](SIM_Loader *loader) {
            for (int i = 0; i < (RECORDS + 1) * 16; i++) {
                const int wanted = i / 16 < records ? i / 16 * 7 & 0xFF : 0xFF;
                isEqual = isEqual && loader->flash[static_cast<size_t>(0x10000 + i)] == wanted;
            }
        });
        return isEqual;
    }
};

TEST_F(LoaderWindow, ProgramsByClicksAndPutsThePortBack)
{
    ASSERT_EQ(0, UCM_Open(PROTOCOL_MR166, RIG_PORT, 115200));
    const int wait = TerminalWait();
    Choose("a.hex");
    EXPECT_EQ((Texts{"0x000010-0x000013, 4 bytes", "0x010000-0x01077F, 1920 bytes"}),
              HL_GetLabels(PANEL_LOADER, LOADER_CONTENTS));
    EXPECT_EQ("..", Styles());
    EXPECT_EQ("0x01FFFF", Text(LOADER_BAR_LAST));
    ncom = 3; // chosen while the other port is open: the open one is used, and named
    HL_ClickMenu(ITEM_LOADER);
    EXPECT_EQ("COM7, 115200 baud", Text(LOADER_PORT));

    HL_PushAnswer(0);
    EXPECT_EQ(0, Click(LOADER_PROGRAM));
    EXPECT_EQ("Flash loader: Erase the whole flash of the target on COM7 and program\na.hex\nto "
              "0x000010-0x01077F (1924 bytes)?",
              HL_GetPopups().back());
    WithLoader([](SIM_Loader *loader) { EXPECT_EQ(0u, loader->done); });
    EXPECT_EQ("", Text(LOADER_RESULT));

    HL_PushAnswer(1);
    EXPECT_EQ(0, Click(LOADER_PROGRAM));
    EXPECT_TRUE(Holds(RECORDS));
    EXPECT_EQ("ddddd", Steps());
    EXPECT_EQ("vv", Styles());
    EXPECT_EQ("Done: 1924 bytes in the flash, read back and equal to the file.",
              Text(LOADER_RESULT));
    EXPECT_EQ("", Text(LOADER_PROGRESS));
    EXPECT_EQ(5u, HL_GetLines(PANEL_LOADER, LOADER_LOG).size());
    EXPECT_EQ(wait, TerminalWait());
    EXPECT_TRUE(UCM_IsOpened() && wMrOpenFlag);

    // The same without erasing or reading back: no question, nothing left to be written.
    HL_Toggle(PANEL_LOADER, LOADER_ERASE);
    HL_Toggle(PANEL_LOADER, LOADER_READ_BACK);
    const size_t popups = HL_GetPopups().size();
    EXPECT_EQ(0, Click(LOADER_PROGRAM));
    EXPECT_EQ("ddldl", Steps());
    EXPECT_EQ("ww", Styles());
    EXPECT_TRUE(Says(LOADER_RESULT, "not read back"));
    EXPECT_EQ(popups, HL_GetPopups().size());
}

TEST_F(LoaderWindow, CancelledGoesOnWithoutErasingUnlessTheUserWantsIt)
{
    Choose("a.hex");
    for (const bool isAnew : {false, true}) {
        const uint32_t erases = Erases();
        HL_CancelProgressAt(30);
        HL_PushAnswer(1);
        Click(LOADER_PROGRAM);
        HL_CancelProgressAt(0);
        EXPECT_EQ(erases + 1, Erases());
        EXPECT_FALSE(Holds(RECORDS));
        EXPECT_EQ("Cancelled.", Text(LOADER_RESULT));
        EXPECT_TRUE(Says(LOADER_FLASH, "The flash holds the file up to 0x010"))
            << Text(LOADER_FLASH);
        EXPECT_EQ("dddff", Steps());
        EXPECT_EQ(0u, Styles().find("vv")) << Styles();
        EXPECT_EQ('.', Styles().back());

        HL_PushAnswer(0); // closed: nothing happens
        Click(LOADER_PROGRAM);
        EXPECT_TRUE(Has(HL_GetPopups().back(), "Go on, or begin anew?"));
        EXPECT_EQ("Cancelled.", Text(LOADER_RESULT));

        HL_PushAnswer(isAnew ? 2 : 1);
        if (isAnew)
            HL_PushAnswer(1); // erasing is asked for all the same
        Click(LOADER_PROGRAM);
        EXPECT_TRUE(Holds(RECORDS));
        EXPECT_EQ(isAnew ? "ddddd" : "ddldd", Steps());
        EXPECT_EQ("vv", Styles());
        EXPECT_EQ(erases + (isAnew ? 2 : 1), Erases());
        EXPECT_EQ(0, HL_CountAnswers());
    }
}

TEST_F(LoaderWindow, AFileWithAProblemNeverReachesTheTarget)
{
    Choose("a.hex");
    WriteFileText("bad.hex", ":01001000DE11\n:01001000529D\n:01001100529D\n");
    Choose("bad.hex");
    const Texts lines = HL_GetLabels(PANEL_LOADER, LOADER_CONTENTS);
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(0u, lines[0].find("line 2: ")) << lines[0];
    std::vector<UI_Cell> cells;
    EXPECT_EQ(0, GetListCells(PANEL_LOADER, LOADER_CONTENTS, 0, &cells));
    EXPECT_EQ(UIS_WARNING, cells[0].style);
    EXPECT_TRUE(Says(LOADER_RESULT, "The file cannot be programmed: problems found: "));
    EXPECT_EQ("", Styles());
    EXPECT_EQ(HL_DIMMED, Click(LOADER_PROGRAM));
    EXPECT_EQ(HL_DIMMED, Click(LOADER_COMPARE));
    Choose("a.hex");
    WriteFileText("a.hex", MakeHex(3)); // by somebody else meanwhile
    HL_PushAnswer(1);
    Click(LOADER_PROGRAM);
    EXPECT_EQ("The file has changed, or is gone, since it was checked.", Text(LOADER_RESULT));
    EXPECT_EQ("The flash was not changed.", Text(LOADER_FLASH));
    EXPECT_EQ("f----", Steps());
    WithLoader([](SIM_Loader *loader) { EXPECT_EQ(0u, loader->done); });
}

TEST_F(LoaderWindow, VerifyTellsTheTruthAndChangesNothing)
{
    const auto spoil = [this](size_t address) {
        WithLoader([&](SIM_Loader *loader) { loader->flash[address] ^= 0x01; });
    };
    Choose("a.hex");
    HL_Toggle(PANEL_LOADER, LOADER_READ_BACK);
    HL_PushAnswer(1);
    Click(LOADER_PROGRAM);
    Click(LOADER_COMPARE);
    EXPECT_TRUE(Says(LOADER_RESULT, "read back and equal")) << "though not wished when writing";
    EXPECT_EQ("ddlld", Steps());
    EXPECT_EQ("vv", Styles());

    spoil(0x10015);
    Click(LOADER_COMPARE);
    EXPECT_EQ("The flash differs from the file: 0x010015 should hold 07 and holds 06.",
              Text(LOADER_RESULT));
    EXPECT_EQ("The flash was not changed.", Text(LOADER_FLASH)) << "and not 'holds the file'";
    EXPECT_EQ("ddllf", Steps());
    EXPECT_EQ("..x", Styles());

    // An interrupted run: what is found there counts more than what was written.
    HL_CancelProgressAt(30);
    HL_PushAnswer(1);
    Click(LOADER_PROGRAM);
    HL_CancelProgressAt(0);
    ASSERT_TRUE(Says(LOADER_FLASH, "holds the file up to 0x010")) << Text(LOADER_FLASH);
    Click(LOADER_COMPARE);
    EXPECT_TRUE(Says(LOADER_FLASH, "Programming can go on")) << Text(LOADER_FLASH);
    spoil(0x12);
    Click(LOADER_COMPARE);
    EXPECT_TRUE(Says(LOADER_FLASH, "must be erased"));
}

TEST_F(LoaderWindow, FailuresAreSaidAndKnownWhenTheWindowComesBack)
{
    Choose("a.hex");
    WithLoader([](SIM_Loader *loader) { loader->faults.eraseAnswer = 0xE4; });
    for (const int port : {RIG_PORT, 99}) {
        ncom = port;
        HL_PushAnswer(1);
        Click(LOADER_PROGRAM);
        EXPECT_TRUE(Says(LOADER_FLASH, "erase it again")) << "also when the port has gone since";
    }
    EXPECT_TRUE(Says(LOADER_RESULT, "The port cannot be used: "));
    HL_ClosePanel(PANEL_LOADER);
    HL_ClickMenu(ITEM_LOADER);
    EXPECT_EQ("df---", Steps());
}

TEST(LoaderBar, ShowsManyRangesWithinItsBounds)
{
    LDR_Job job;
    EXPECT_EQ(0x10000u, LDR_GetBarSpan(job));
    EXPECT_TRUE(LDR_MakeBarSegments(job).empty());
    HEX_Record record;
    record.length = 16;
    for (uint32_t gap = 1; record.address < 0xFFF000; record.address += 16 + gap, gap += 3)
        job.plan.push_back(record);
    record.address = 0xFFFFF0;
    job.plan.push_back(record);
    job.result = LDR_ERR_DIFFERENT;
    job.difference.address = 0xFFFFFF;
    EXPECT_EQ(0x1000000u, LDR_GetBarSpan(job));
    std::vector<UI_Segment> segments = LDR_MakeBarSegments(job);
    EXPECT_LE(segments.size(), 1030u);
    EXPECT_EQ(1.0, segments.back().last);
    HL_Reset();
    ASSERT_EQ(0, HL_LoadAllPanels());
    EXPECT_EQ(0, SetBarSegments(PANEL_LOADER, LOADER_BAR, segments));
    EXPECT_EQ(UIE_BAD_TYPE, SetBarSegments(PANEL_LOADER, LOADER_FILE, segments));
    for (const double last : {1.1, 0.4, static_cast<double>(NAN)}) {
        segments[0].first = 0.5;
        segments[0].last = last;
        EXPECT_EQ(UIE_BAD_INDEX, SetBarSegments(PANEL_LOADER, LOADER_BAR, segments)) << last;
    }
}

} // namespace
