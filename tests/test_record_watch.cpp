// Recording the watch list: in the window, by the timer, and with the console program, which is
// killed, unplugged and interrupted; and the faster sweeps, which read neighbours together.

#include <csignal>
#include <fcntl.h>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

#include "app/rooms.h"
#include "comm/mr166_link.h"
#include "sampler/record_job.h"
#include "sampler/record_watch.h"
#include "sampler/recording.h"
#include "support/watch_fixture.h"
#include "watch/list/list_view.h"
#include "watch/main_window.h"

namespace {

class RecordWatch : public WatchTest {
protected:
    void SetUp() override
    {
        WatchTest::SetUp();
        VR_ConnectRooms();
        VR_isWatchView = true;
        Option_AutoOff = 0;
    }
    void TearDown() override
    {
        HL_PushAnswer(1);
        REC_StopWatch();
    }
    static void tick(int count)
    {
        for (int i = 0; i < count; ++i)
            timerCB(PANEL_MAIN, MAIN_TIMER, EVENT_TIMER_TICK, 0);
    }
    REC_Recording open(const std::string &name)
    {
        REC_Recording recording;
        std::string problem;
        EXPECT_EQ(REC_OpenRecording(name, &recording, &problem), 0) << problem;
        return recording;
    }
};

} // namespace

TEST_F(RecordWatch, TheMenuRecordsMarksAndFollowsTheList)
{
    ASSERT_EQ(load("[0x8000], u2\n[0x8002], i2\n[0x9000], u1\n"), 0);
    ResetLItemsDisplay();
    ASSERT_TRUE(connect());
    poke(0x8002, 0xFFFF, 2);
    REC_ShowCommunication();
    EXPECT_EQ(UiItemAttribute(ITEM_RECORD_MARK, ATTR_DIMMED), 1);
    HL_PushAnswer(1, "mark when [0x8000] jumps");
    HL_PushAnswer(1, "mark when [0x8000] > 5");
    HL_ClickMenu(ITEM_RECORD_WHEN);
    EXPECT_EQ(HL_CountAnswers(), 0) << "the wrong one was asked for again";
    HL_PushAnswer(1, path("r.csv"));
    HL_ClickMenu(ITEM_RECORD);
    ASSERT_TRUE(REC_IsWatchRecorded());
    EXPECT_EQ(UiItemAttribute(ITEM_RECORD, ATTR_CHECKED), 1);
    EXPECT_EQ(UiItemAttribute(ITEM_RECORD_MARK, ATTR_DIMMED), 0);
    tick(6);
    HL_PushAnswer(1, "door opened");
    HL_ClickMenu(ITEM_RECORD_MARK);
    ASSERT_EQ(load("[0x8000], u2\n"), 0); // another list: its columns go into another file
    REC_RecordWatch();
    const std::string message = UiText(PANEL_MAIN, MAIN_MESSAGE);
    EXPECT_TRUE(Has(message, "goes on in " + path("r-")));
    VIR2_StopPeriodicASC();
    HL_ClickMenu(ITEM_RECORD);
    EXPECT_FALSE(REC_IsWatchRecorded());
    EXPECT_EQ(UiItemAttribute(ITEM_RECORD, ATTR_CHECKED), 0);
    const REC_Recording first = open(path("r.csv"));
    ASSERT_EQ(first.columns.size(), 3u);
    ASSERT_GE(first.rows, 1u);
    REC_Curves curves;
    REC_ReadCurves(first, 0, 1e9, {1}, 1000, &curves);
    EXPECT_EQ(curves.values[0][0], -1);
    ASSERT_EQ(first.notes.size(), 2u);
    EXPECT_EQ(first.notes[0].kind + first.notes[0].text, "markerdoor opened");
    const REC_Recording second =
        open(message.substr(message.find(path("r-")), path("r-20260101-000000.csv").size()));
    EXPECT_EQ(second.columns.size(), 1u);
    EXPECT_EQ(second.notes.back().text, "communication was switched off");
}

TEST_F(RecordWatch, FasterSweepsAskForNeighboursTogether)
{
    std::string list;
    for (int i = 0; i < 12; ++i)
        list += "[0x" + std::to_string(8000 + 2 * i) + "], u2\n";
    addSymbol("wTwo", 0x8000);
    ASSERT_EQ(load(list + "2:wTwo, u2\n"), 0);
    ResetLItemsDisplay();
    Mr166_nTimeoutMs = 5000; // a late answer on a busy machine is no refusal
    ASSERT_TRUE(connect());
    for (const int rate : {10, 0}) {
        for (uint32_t i = 0; i < 12; ++i)
            poke(i < 5 ? 0x8000 + 2 * i : 0x8010 + 2 * (i - 5),
                 1000 * (i + 1) + static_cast<uint32_t>(rate), 2);
        Option_nSweepRate = rate;
        RFR_BeginSweep();
        const uint64_t before = SIM_GetCounters(target).requests;
        const uint32_t reads = aLItems[12].goodReads;
        int ticks = 0;
        for (; ticks < 13 && aLItems[12].goodReads == reads; ++ticks)
            tick(1);
        EXPECT_EQ(ticks, rate == 0 ? 2 : 13); // a slot a line, or none without a request
        EXPECT_LE(SIM_GetCounters(target).requests - before, 2u + 8u)
            << "blocks, probes of the opened port, proofs";
        for (uint32_t i = 0; i < 5; ++i)
            EXPECT_EQ(aLItems[i].value, 1000 * (i + 1) + static_cast<uint32_t>(rate)) << i;
    }
}

TEST_F(RecordWatch, ABlockThatIsRefusedIsAskedForOneByOne)
{
    ASSERT_EQ(load("[0x8000], u2\n[0x8002], u2\n"), 0);
    ResetLItemsDisplay();
    ASSERT_TRUE(connect());
    Option_nSweepRate = 10;
    tick(2);
    SIM_SetErrorCode(target, 0, 70);
    UCM_recS.tries = 0;
    RFR_BeginSweep();
    const uint64_t before = SIM_GetCounters(target).requests;
    tick(1);
    EXPECT_GE(SIM_GetCounters(target).requests - before, 3u);
    EXPECT_EQ(aLItems[0].readError + aLItems[1].readError, 2);
}

namespace {

// A console program that records, as its own process.
struct RecordProgram : testing::Test {
    const ScratchFolder folder;
    SIM_Target *target = nullptr;
    pid_t child = -1;

    void SetUp() override
    {
        WriteFileText(folder / "list.dbg", "[0x8000], u2\n[0x8010], i2\n[0x8004], p4\n");
        WriteFileText(folder / "Vireo2.ini", "r, AC167\nb, 115200\np, 1\ns, 1\n");
        setenv("VIREO2_COM1", (folder / "port").c_str(), 1);
        Plug();
    }
    void TearDown() override
    {
        if (child > 0)
            End(SIGKILL);
        SIM_Stop(target);
        unsetenv("VIREO2_COM1");
    }
    void Plug()
    {
        std::string error;
        target = SIM_Start(SIM_Options(), &error);
        ASSERT_TRUE(target) << error;
        unlink((folder / "port").c_str());
        ASSERT_EQ(symlink(SIM_DevicePath(target), (folder / "port").c_str()), 0);
    }
    void Begin(const std::vector<std::string> &arguments)
    {
        child = fork();
        if (child != 0)
            return;
        std::vector<char *> argv = {const_cast<char *>("vireo2-console")};
        for (const std::string &argument : arguments)
            argv.push_back(const_cast<char *>(argument.c_str()));
        argv.push_back(nullptr);
        const int output = open((folder / "err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
        if (chdir(folder.path.c_str()) != 0 || dup2(output, 2) < 0)
            _exit(99);
        execv(BINARY_DIR "/vireo2-console", argv.data());
        _exit(99);
    }
    int End(int signal)
    {
        int status = 0;
        if (signal != 0)
            kill(child, signal);
        waitpid(child, &status, 0);
        child = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    // Until the file says so; bounded, for a program that never does.
    bool WaitFor(const std::string &text, const std::string &name = "r.csv")
    {
        for (int i = 0; i < 4000; ++i, usleep(10000))
            if (std::filesystem::exists(folder / name) &&
                ReadFileText(folder / name).find(text) != std::string::npos)
                return true;
        return false;
    }
    REC_Recording Read()
    {
        REC_Recording recording;
        std::string problem;
        EXPECT_EQ(REC_OpenRecording(folder / "r.csv", &recording, &problem), 0) << problem;
        return recording;
    }
};

} // namespace

TEST_F(RecordProgram, AKillLeavesAFileThatOpens)
{
    std::mt19937 random(5);
    for (int round = 0; round < 20; ++round) {
        std::filesystem::remove(folder / "r.csv");
        Begin({"--record", "r.csv", "--watch", "list.dbg", "--fast"});
        ASSERT_TRUE(WaitFor("\r\n0."));
        usleep(static_cast<useconds_t>(random() % 700000));
        End(SIGKILL);
        const REC_Recording recording = Read();
        ASSERT_GT(recording.rows, 0u) << round;
        ASSERT_EQ(recording.badLines + recording.backward, 0u) << round;
    }
}

TEST_F(RecordProgram, AnUnpluggedPortIsAGapAndTheFileGoesOn)
{
    Begin({"--record", "r.csv", "--watch", "list.dbg", "--period", "50", "--trigger",
           "stop when [0x8010] < 40000"});
    ASSERT_TRUE(WaitFor("\r\n; ")) << "the trigger ends it at its first row";
    EXPECT_EQ(End(0), 0);
    std::filesystem::remove(folder / "r.csv");
    Begin({"--record", "r.csv", "--watch", "list.dbg", "--period", "50"});
    ASSERT_TRUE(WaitFor("\r\n0."));
    SIM_Stop(target);
    ASSERT_TRUE(WaitFor("gap, the port is gone"));
    const uint64_t rows = Read().rows;
    Plug();
    ASSERT_TRUE(WaitFor("gap, the port is back"));
    for (int i = 0; i < 1000 && Read().rows < rows + 5; ++i)
        usleep(10000);
    EXPECT_EQ(End(SIGTERM), 0);
    EXPECT_GE(Read().rows, rows + 5);
    const std::string said = ReadFileText(folder / "err");
    EXPECT_TRUE(Has(said, "samples a second"));
    // The file is there now: it is kept, and that is no success.
    Begin({"--no", "--record", "r.csv", "--watch", "list.dbg", "--duration", "1"});
    EXPECT_EQ(End(0), 1);
    EXPECT_GE(Read().rows, rows + 5);
    for (const char *wrong : {"--fast", "--rotate=5GB", "--period=0", "--duration=x"}) {
        Begin({wrong, "--watch", "list.dbg"});
        EXPECT_EQ(End(0), 2) << wrong;
    }
}
