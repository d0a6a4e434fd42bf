// The terminals: what a block may say, characters that go exactly once over a bad line, targets
// that start anew, and both windows with the simulated target's menu and display.
#include "comm/communication.h"
#include "comm/mr166_link.h"
#include "platform/system.h"
#include "runtime/lcd_text.h"
#include "support/console_rig.h"
#include "symbols/mapfile.h"
#include "symbols/varnode.h"
#include "terminal/code_pages.h"
#include "terminal/lcd.h"
#include "terminal/screen.h"
#include "terminal/service.h"
#include "terminal/window.h"
#include "text/bytes.h"
#include "watch/list/refresh.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

constexpr uint32_t PLACE = 0x8400, OUT_SIZE = 20, IN_SIZE = 7;

std::vector<uint8_t> MakeHead(std::vector<uint16_t> words)
{
    std::vector<uint8_t> head(28);
    for (size_t i = 0; i < words.size(); ++i)
        TXT_PutLittle(head.data() + 2 * i, 2, words[i]);
    return head;
}

TEST(TerminalBlock, IsCheckedBeforeItIsBelieved)
{
    const struct {
        uint32_t address;
        std::vector<uint16_t> words; // id, version, session, lost, out: size, w, in: size, r, out
                                     // r, its session, in w, its session
        int result;
    } services[] = {
        {PLACE, {0x7166, 0x0100, 1, 0, 20, 19, 2, 1, 0, 1, 1, 1}, 0},
        {PLACE, {0x7166, 0x01FF, 1, 0, 4096, 4095, 4096, 0, 4095, 1, 0, 1}, 0},
        {PLACE, {0x7165, 0x0100, 1, 0, 20, 0, 7, 0, 0, 1, 0, 1}, TRM_BLOCK_ERR_ID},
        {PLACE, {0x7166, 0x0200, 1, 0, 20, 0, 7, 0, 0, 1, 0, 1}, TRM_BLOCK_ERR_VERSION},
        {PLACE, {0x7166, 0x0100, 1, 0, 1, 0, 7, 0, 0, 1, 0, 1}, TRM_BLOCK_ERR_SIZE},
        {PLACE, {0x7166, 0x0100, 1, 0, 20, 0, 4097, 0, 0, 1, 0, 1}, TRM_BLOCK_ERR_SIZE},
        {PLACE, {0x7166, 0x0100, 1, 0, 20, 20, 7, 0, 0, 1, 0, 1}, TRM_BLOCK_ERR_INDEX},
        {PLACE, {0x7166, 0x0100, 1, 0, 20, 0, 7, 0, 0, 1, 7, 1}, TRM_BLOCK_ERR_INDEX},
        {PLACE, {0x7166, 0x0100, 1, 0, 20, 0, 7, 0, 20, 9, 7, 9}, 0}, // of another run
        {0xFFFFCD, {0x7166, 0x0100, 1, 0, 20, 0, 7, 0, 0, 1, 0, 1}, 0},
        {0xFFFFCE, {0x7166, 0x0100, 1, 0, 20, 0, 7, 0, 0, 1, 0, 1}, TRM_BLOCK_ERR_PLACE}};
    for (const auto &row : services) {
        TRM_ServiceBlock block;
        EXPECT_EQ(row.result,
                  TRM_ParseServiceBlock(row.address, MakeHead(row.words).data(), &block));
        EXPECT_EQ(row.result == 0, TRM_BlockErrorText(row.result).empty());
        EXPECT_EQ(row.result == 0, block.session == 1);
    }
    const struct {
        uint16_t shape, keySize, keyWrite; // rows and columns
        int result;
    } displays[] = {{0x1404, 16, 15, 0},
                    {0x5010, 2, 0, 0},
                    {0x1400, 16, 0, TRM_BLOCK_ERR_SIZE},
                    {0x0004, 16, 0, TRM_BLOCK_ERR_SIZE},
                    {0x1411, 16, 0, TRM_BLOCK_ERR_SIZE},
                    {0x5104, 16, 0, TRM_BLOCK_ERR_SIZE},
                    {0x1404, 16, 16, TRM_BLOCK_ERR_INDEX},
                    {0x1404, 0, 0, TRM_BLOCK_ERR_SIZE}};
    for (const auto &row : displays) {
        TRM_LcdBlock block;
        const std::vector<uint8_t> head = MakeHead(
            {0x71CD, 0x0100, 1, 0, row.shape, 0, 0, row.keySize, 0, 0, 0, 0, row.keyWrite, 1});
        EXPECT_EQ(row.result, TRM_ParseLcdBlock(PLACE, head.data(), &block));
    }
    const TRM_Ring wrapped = {0, 0, 20, 3, 17};
    EXPECT_EQ(6u, TRM_CountPending(wrapped));
    EXPECT_EQ(13u, TRM_CountRoom(wrapped));
}

// A target whose firmware is the test itself.
struct Conversation : TargetTest {
    TRM_ServiceSession session;
    TRM_ServiceNews news;
    std::string received, typed; // by the program, by the target
    std::string messages;

    Conversation() : TargetTest(RIG_PORT)
    {
        Procesor = CPU_C167;
        ncom = RIG_PORT;
        bRate = 115200;
    }
    void SetUp() override
    {
        plug();
        StartFirmware(1);
        VIR2_StartPeriodicASC();
        ASSERT_EQ(1, isTimer);
        TRM_BeginService(&session, {PLACE, STATION});
    }
    void StartFirmware(uint16_t number)
    {
        std::vector<uint8_t> head = MakeHead({0x7166, 0x0100, number, 0, OUT_SIZE, 0, IN_SIZE, 0});
        head.resize(16); // the rest is the program's
        poke(PLACE, head);
    }
    uint32_t Word(uint32_t offset)
    {
        return static_cast<uint32_t>(TXT_GetLittle(peek(PLACE + offset, 2).data(), 2));
    }
    uint32_t Index(uint32_t offset)
    {
        return Word(offset + 2) == Word(4) ? Word(offset) : 0;
    }
    // As much as fits goes out, what is there comes in.
    void RunFirmware(std::string *output)
    {
        uint32_t write = Word(10);
        while (!output->empty() && (write + 1) % OUT_SIZE != Index(16)) {
            poke(PLACE + 24 + write, static_cast<uint8_t>(output->front()), 1);
            output->erase(0, 1);
            write = (write + 1) % OUT_SIZE;
        }
        poke(PLACE + 10, write, 2);
        uint32_t read = Word(14);
        for (; read != Index(20); read = (read + 1) % IN_SIZE)
            typed += static_cast<char>(peek(PLACE + 24 + OUT_SIZE + read, 1)[0]);
        poke(PLACE + 14, read, 2);
    }
    void Step()
    {
        TRM_StepService(&session, &news);
        received += news.received;
        messages += news.message;
    }
};

TEST_F(Conversation, LosesAndDoublesNothingOnABadLine)
{
    std::string output, sent;
    for (int i = 0; i < 4; ++i)
        output += "line " + std::to_string(i) + "\r\n";
    sent = output;
    const std::string all = output;
    Step();
    ASSERT_TRUE(session.isOpen) << messages;
    ASSERT_TRUE(TRM_AddToSender(&session.sender, sent));
    Mr166_nTimeoutMs = HASTY_MS;
    UCM_recS.tries = 0; // nothing is repeated below: every lost answer is the terminal's affair
    options.drop = 0.1;
    SIM_SetFaults(target, options);
    for (int i = 0; i < 3000 && (received.size() < all.size() || typed.size() < all.size()); ++i) {
        RunFirmware(&output);
        Step();
    }
    EXPECT_EQ(all, received);
    EXPECT_EQ(all, typed);
    EXPECT_EQ(std::string::npos, messages.find("else")) << messages;
}

TEST_F(Conversation, SaysWhatHappenedToTheTarget)
{
    std::string output = "before";
    RunFirmware(&output);
    Step();
    EXPECT_EQ("before", received);
    TRM_AddToSender(&session.sender, "0123456789"); // more than the ring has room for
    Step();
    EXPECT_EQ("012345", news.taken);
    StartFirmware(2);
    output = "anew";
    RunFirmware(&output);
    Step();
    EXPECT_EQ("The target's program has started anew. Not sent any more: 4 characters.",
              news.message);
    EXPECT_EQ("beforeanew", received);
    Step();
    RunFirmware(&output);
    EXPECT_EQ("", typed) << "nothing of the old run";
    poke(PLACE + 6, 300, 2);
    Step();
    EXPECT_EQ("The target's ring was full: 300 characters are lost.", news.message);
    poke(PLACE + 20, 2 << 16 | 3, 4); // somebody else's text
    TRM_AddToSender(&session.sender, "mine");
    Step();
    EXPECT_EQ("Somebody else writes to this terminal too. Not sent any more: 4 characters.",
              news.message);
    poke(PLACE + 16, 2, 2);
    Step();
    EXPECT_EQ("Somebody else reads this terminal too: characters are missing.", news.message);
    poke(PLACE + 10, OUT_SIZE, 2);
    Step();
    EXPECT_EQ("There is no terminal at 0x008400 of station 1: an index lies outside of its ring.",
              news.message);
    EXPECT_FALSE(session.isOpen);
    Step();
    EXPECT_EQ("", news.message) << "said once";
    received.clear();
    StartFirmware(3);
    output = "good";
    RunFirmware(&output);
    Step();
    EXPECT_TRUE(session.isOpen);
    EXPECT_EQ("good", received.substr(received.size() - 4));
}

// The same after a while without the line, perhaps with another target behind it.
TEST_F(Conversation, IsInterruptedWithoutSendingToStrangers)
{
    Step();
    TRM_AddToSender(&session.sender, "0123456789");
    EXPECT_EQ(10u, TRM_InterruptService(&session));
    poke(PLACE + 20, 1 << 16 | 5, 4);
    poke(PLACE + 14, 5, 2);
    Step();
    Step();
    EXPECT_EQ(5u, Word(20));
    EXPECT_EQ("", messages);
}

// --- windows and command ---------------------------------------------------------------------

struct Terminals : ConsoleRig {
    void SetUp() override
    {
        options.demo = true;
        ConsoleRig::SetUp();
        ASSERT_EQ(0, ReadMap(EXAMPLES_DIR "/demo.m66"));
        openStruct = OPEN_MAP_FILE;
        HL_SetDefaultAnswer(HL_ANSWER_YES);
    }
    void TearDown() override
    {
        HL_ClosePanel(PANEL_TERMINAL);
        HL_ClosePanel(PANEL_LCD);
        HL_CommitControl(PANEL_TERMINAL, TERM_CLEAR);
        ConsoleRig::TearDown();
    }
    // Ticks until it is so; a target that answers needs a few only.
    static bool Tick(int panel, int timer, const std::function<bool()> &isDone)
    {
        for (int i = 0; i < 3000 && !isDone(); ++i) {
            PLT_SleepMs(2);
            HL_FireTimer(panel, timer);
        }
        return isDone();
    }
    static bool Shows(const std::string &text)
    {
        return Tick(PANEL_MAIN, MAIN_TIMER, [&] {
            return UiText(PANEL_TERMINAL, TERM_SCREEN).find(text) != std::string::npos;
        });
    }
    static std::string Message()
    {
        return UiText(PANEL_TERMINAL, TERM_MESSAGE);
    }
    static void EnterLine(const std::string &text)
    {
        HL_SetUserVal(PANEL_TERMINAL, TERM_LINE, text);
        HL_CommitControl(PANEL_TERMINAL, TERM_LINE);
    }
    uint32_t Get(uint32_t address, size_t size)
    {
        return static_cast<uint32_t>(TXT_GetLittle(Peek(address, size).data(), size));
    }
};

TEST_F(Terminals, ServiceTerminalTalksWithTheTargetsMenu)
{
    HL_ClickMenu(ITEM_TERMINAL);
    ASSERT_TRUE(Shows("? this menu\n> ")) << Message();
    const uint32_t mode = Get(0x8102, 1);
    HL_Key(PANEL_TERMINAL, TERM_SCREEN, '3');
    ASSERT_TRUE(Shows("3\nbyMode is "));
    EXPECT_EQ(mode ^ 1, Get(0x8102, 1));
    HL_Key(PANEL_TERMINAL, TERM_SCREEN, '2');
    ASSERT_TRUE(Shows("wGain (0 to 999): "));
    HL_Key(PANEL_TERMINAL, TERM_SCREEN, '9');
    HL_Key(PANEL_TERMINAL, TERM_SCREEN, KEY_BACKSPACE);
    EnterLine("77");
    ASSERT_TRUE(Shows("wGain (0 to 999): 77\nset"));
    EXPECT_EQ(77u, Get(0x8100, 2));
    EXPECT_EQ("", UiText(PANEL_TERMINAL, TERM_LINE));

    EnterLine("\xD0\x96");
    EXPECT_EQ("Not sent: characters that ISO-8859-1 does not have: 1.", Message());
    EXPECT_EQ("\xD0\x96", UiText(PANEL_TERMINAL, TERM_LINE)) << "kept";

    HL_PushAnswer(1, "log.txt");
    HL_Toggle(PANEL_TERMINAL, TERM_LOG);
    EnterLine("4");
    ASSERT_TRUE(Shows("40 the quick brown fox jumps over the lazy dog\n> "));
    HL_Toggle(PANEL_TERMINAL, TERM_LOG);
    const std::string log = ReadFile("log.txt");
    for (int i = 1; i <= 40; ++i) {
        char line[80];
        std::snprintf(line, sizeof line, "  %02d the quick brown fox jumps over the lazy dog\r\n",
                      i);
        EXPECT_NE(std::string::npos, log.find(line)) << line;
    }
    // Lines that were sent come back, and behind them what was being typed.
    HL_SetUserVal(PANEL_TERMINAL, TERM_LINE, "draft");
    const struct {
        int key;
        const char *line;
    } keys[] = {{KEY_DOWN, "draft"}, {KEY_UP, "4"},   {KEY_UP, "77"},
                {KEY_UP, "77"},      {KEY_DOWN, "4"}, {KEY_DOWN, "draft"}};
    for (const auto &row : keys) {
        HL_Key(PANEL_TERMINAL, TERM_LINE, row.key);
        EXPECT_EQ(row.line, UiText(PANEL_TERMINAL, TERM_LINE));
    }
    VIR2_StopPeriodicASC();
    EXPECT_NE(std::string::npos, UiText(PANEL_TERMINAL, TERM_STATE).find("Closed"));
    HL_Key(PANEL_TERMINAL, TERM_SCREEN, '3');
    EXPECT_EQ(std::string("Not sent: ") + COM_OFF_TEXT, Message());
    VIR2_StartPeriodicASC();
    HL_CommitControl(PANEL_TERMINAL, TERM_CLEAR);
    ASSERT_TRUE(Tick(PANEL_MAIN, MAIN_TIMER, [] {
        return UiText(PANEL_TERMINAL, TERM_STATE).find("Connected") != std::string::npos;
    }));
    EXPECT_EQ("", UiText(PANEL_TERMINAL, TERM_SCREEN)) << "nothing again, and no 3 from before";
    HL_SetUserVal(PANEL_TERMINAL, TERM_PLACE, "$9900");
    HL_CommitControl(PANEL_TERMINAL, TERM_PLACE);
    ASSERT_TRUE(Tick(PANEL_MAIN, MAIN_TIMER, [] { return !Message().empty(); }));
    EXPECT_NE(std::string::npos, Message().find("its first word is not the terminal's"));
}

TEST_F(Terminals, LongTextsAreSeenSentAndStopped)
{
    HL_ClickMenu(ITEM_TERMINAL);
    ASSERT_TRUE(Shows("> "));
    ClipboardPutText("?\r\n?\n");
    ProcessSystemEvents();
    HL_Toggle(PANEL_TERMINAL, TERM_ECHO);
    HL_CommitControl(PANEL_TERMINAL, TERM_PASTE);
    EXPECT_EQ("?\n?", UiText(PANEL_TERMINAL_ENTRY, ENTRY_TEXT).substr(0, 3));
    EXPECT_EQ("Lines to send: 2.", UiText(PANEL_TERMINAL_ENTRY, ENTRY_STATE));
    HL_CommitControl(PANEL_TERMINAL_ENTRY, ENTRY_SEND);
    const auto ends = [](const std::string &text) {
        return Tick(PANEL_MAIN, MAIN_TIMER, [&] {
            return UiText(PANEL_TERMINAL_ENTRY, ENTRY_STATE).find(text) != std::string::npos;
        });
    };
    EXPECT_TRUE(ends("All of it is sent."));
    ClipboardPutText(std::string(1000, 'x'));
    ProcessSystemEvents();
    HL_CommitControl(PANEL_TERMINAL, TERM_PASTE);
    HL_CommitControl(PANEL_TERMINAL_ENTRY, ENTRY_SEND);
    EXPECT_TRUE(ends(" of 1000 characters."));
    HL_CommitControl(PANEL_TERMINAL_ENTRY, ENTRY_STOP);
    EXPECT_NE(std::string::npos,
              UiText(PANEL_TERMINAL_ENTRY, ENTRY_STATE).find("Stopped. Not sent: "));
    EXPECT_TRUE(Tick(PANEL_MAIN, MAIN_TIMER, [] {
        return UiText(PANEL_TERMINAL, TERM_STATE).find("waiting") == std::string::npos;
    }));
    WriteFileText("huge.txt", std::string(70000, 'x'));
    HL_PushAnswer(1, "huge.txt");
    HL_CommitControl(PANEL_TERMINAL_ENTRY, ENTRY_FILE);
    EXPECT_EQ("huge.txt is too large.", UiText(PANEL_TERMINAL_ENTRY, ENTRY_STATE));
    EXPECT_EQ(1, UiAttribute(PANEL_TERMINAL_ENTRY, ENTRY_SEND, ATTR_DIMMED) |
                     !UiText(PANEL_TERMINAL_ENTRY, ENTRY_TEXT).empty());
}

TEST_F(Terminals, DisplayShowsThePictureAndTakesEachKeyOnce)
{
    HL_ClickMenu(ITEM_LCD);
    const auto shows = [](const std::string &text) {
        return Tick(PANEL_LCD, LCD_TIMER,
                    [&] { return UiText(PANEL_LCD, LCD_SCREEN).find(text) != std::string::npos; });
    };
    ASSERT_TRUE(shows("VIREO2 DEMO 01")) << UiText(PANEL_LCD, LCD_MESSAGE);
    EXPECT_EQ(LCD_SCREEN, GetActiveCtrl(PANEL_LCD)) << "keys go to the target from the start";
    EXPECT_TRUE(shows("\xEE\x80\x81"
                      "C"))
        << "its own degree sign";
    const UI_LcdPicture picture = UI_ParseLcd(UiText(PANEL_LCD, LCD_SCREEN));
    EXPECT_EQ(4u, picture.rows.size());
    EXPECT_EQ(20u, picture.rows[3].size());
    EXPECT_EQ(2, picture.cursorRow);
    EXPECT_EQ(9, picture.cursorColumn);
    EXPECT_TRUE(picture.isLit);
    EXPECT_EQ(0x0C, picture.glyphs[8]);
    EXPECT_EQ(1, UiAttribute(PANEL_LCD, LCD_KEY_FIRST + 22, ATTR_DIMMED)) << "no such key there";
    for (int i = 0; i < 5; ++i)
        HL_CommitControl(PANEL_LCD, LCD_KEY_FIRST + 12);
    HL_Key(PANEL_LCD, LCD_SCREEN, KEY_DOWN);
    HL_Key(PANEL_LCD, LCD_SCREEN, KEY_F1 + 1); // the light
    EXPECT_TRUE(shows("Gain   104 %"));
    EXPECT_TRUE(shows("C      ")) << "released";
    EXPECT_EQ(104u, Get(0x8100, 2));
    EXPECT_FALSE(UI_ParseLcd(UiText(PANEL_LCD, LCD_SCREEN)).isLit);
    HL_CommitControl(PANEL_LCD, LCD_COPY);
    EXPECT_NE(std::string::npos, HL_GetClipboard().find("VIREO2 DEMO 01"));
    VIR2_StopPeriodicASC();
    EXPECT_FALSE(UI_ParseLcd(UiText(PANEL_LCD, LCD_SCREEN)).isLit);
    EXPECT_EQ(std::string::npos, UiText(PANEL_LCD, LCD_SCREEN).find("VIREO2"))
        << "what stands there now is not known";
}

TEST_F(Terminals, CommandSendsALineAndPrintsTheAnswer)
{
    EXPECT_NE(std::string::npos, Run("term166 ?").find(" ? this menu\n"));
    const uint32_t mode = Get(0x8102, 1);
    EXPECT_NE(std::string::npos, Run("term166 \"3\"").find(" byMode is "));
    EXPECT_EQ(mode ^ 1, Get(0x8102, 1));
    FreeNodes(aVarNode, &nNodes);
    EXPECT_NE(std::string::npos, Run("term166 x").find("ERROR - term166: 'Term166' is no address"));
    EXPECT_EQ(0, UCM_IsOpened());
}

} // namespace
