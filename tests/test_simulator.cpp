// A program of ours as a child, and the simulator window: a target started, reached, made
// faulty and lost, and the settings of before afterwards.
#include <csignal>
#include <filesystem>
#include <fstream>

#include "comm/communication.h"
#include "comm/mr166_link.h"
#include "platform/child.h"
#include "platform/system.h"
#include "simulator/target.h"
#include "support/console_rig.h"
#include "support/text_checks.h"

namespace {

constexpr int LOOKS_MAX = 3000; // of 10 ms; never reached by a program that works

template <class Condition> bool WaitFor(Condition isTrue)
{
    for (int i = 0; i < LOOKS_MAX && !isTrue(); i++)
        PLT_SleepMs(10);
    return isTrue();
}

TEST(ChildProgram, TalksInLinesAndEnds)
{
    EXPECT_EQ(nullptr, PLT_StartChild({"/nowhere/at-all"}, nullptr));
    const char SCRIPT[] = "read line; echo got $line >&2; i=0; while [ $i -lt 2500 ]; do echo $i; "
                          "i=$((i+1)); done; printf last; read line && exec sleep 1000";
    PLT_Child *child =
        PLT_StartChild({"/bin/sh", "-c", "read line; echo got $line >&2; read line"}, nullptr);
    ASSERT_NE(nullptr, child);
    std::deque<std::string> lines;
    EXPECT_EQ(0, PLT_SendLineToChild(child, "a line"));
    ASSERT_TRUE(WaitFor([&] {
        PLT_FetchChildLines(child, &lines);
        return !lines.empty();
    }));
    EXPECT_EQ("got a line", lines[0]);
    EXPECT_TRUE(PLT_IsChildRunning(child));
    PLT_StopChild(child); // the end of its input

    child = PLT_StartChild({"/bin/sh", "-c", SCRIPT}, nullptr);
    PLT_SendLineToChild(child, "x\ny"); // and it goes on to sleep
    lines.clear();
    size_t lost = 0;
    PLT_SleepMs(50);
    ASSERT_TRUE(WaitFor([&] {
        lost += PLT_FetchChildLines(child, &lines);
        return lost + lines.size() >= 2501;
    }));
    EXPECT_EQ("2499", lines.back());
    PLT_StopChild(child); // the hard way

    child = PLT_StartChild({"/bin/sh", "-c", "printf 'no end'"}, nullptr);
    ASSERT_TRUE(WaitFor([&] { return !PLT_IsChildRunning(child); }));
    EXPECT_EQ(-1, PLT_SendLineToChild(child, "nobody listens"));
    lines.clear();
    PLT_FetchChildLines(child, &lines);
    EXPECT_EQ(1u, lines.size());
    PLT_StopChild(child);
}

struct Simulator : ConsoleRig {
    void SetUp() override
    {
        ConsoleRig::SetUp();
        ncom = 12;
        STATION = 1;
        bRate = 57600;
        HL_ClickMenu(ITEM_SIMULATOR);
    }
    static void Press(int control)
    {
        HL_CommitControl(PANEL_SIMULATOR, control);
    }
    static void Choose(int control, int value)
    {
        HL_SetUserVal(PANEL_SIMULATOR, control, value);
        HL_CommitControl(PANEL_SIMULATOR, control);
    }
    static std::string Message()
    {
        return UiText(PANEL_SIMULATOR, SIMUL_MESSAGE);
    }
    static bool CanRead(uint32_t address)
    {
        uint8_t bytes[2];
        return UCM_Read(STATION, address, sizeof bytes, bytes) >= 0;
    }
    static std::string GetLogCell(int line, size_t column)
    {
        std::vector<UI_Cell> cells;
        GetListCells(PANEL_SIMULATOR, SIMUL_LOG, line, &cells);
        return column < cells.size() ? cells[column].text : "<none>";
    }
    static void KillTarget()
    {
        for (const auto &task : std::filesystem::directory_iterator("/proc/self/task")) {
            std::ifstream children(task.path() / "children");
            for (pid_t id = 0; children >> id;)
                kill(id, SIGKILL);
        }
    }
};

TEST_F(Simulator, IsReachedMadeFaultyAndLeft)
{
    Press(SIMUL_CONNECT); // starts it, too
    ASSERT_EQ("Connected.", Message());
    EXPECT_EQ(1, isTimer);
    EXPECT_NE(12, ncom);
    EXPECT_TRUE(Has(UiText(PANEL_MAIN, MAIN_STATE), "\nSIMULATED TARGET. Map"));
    EXPECT_EQ(1, UiAttribute(PANEL_SIMULATOR, SIMUL_STATIONS, ATTR_DIMMED));
    EXPECT_EQ(1, UiAttribute(PANEL_SIMULATOR, SIMUL_REFUSE, ATTR_DIMMED)) << "Modbus alone";
    AddMapVar(0x8000, "nFast");
    SortMapByName();
    SortMapNdxByAddr();
    openStruct = OPEN_MAP_FILE;
    ASSERT_TRUE(CanRead(0x8000));
    ASSERT_TRUE(WaitFor([] {
        HL_FireTimer(PANEL_SIMULATOR, SIMUL_TIMER);
        return Has(GetLogCell(0, 1), "address 008000");
    })) << GetLogCell(0, 1);
    EXPECT_EQ("nFast", GetLogCell(0, 2));
    EXPECT_EQ("answered", GetLogCell(0, 3));
    EXPECT_TRUE(Has(UiText(PANEL_SIMULATOR, SIMUL_STATE), "not answered as they should be: 0. "));

    HL_SetUserVal(PANEL_SIMULATOR, SIMUL_DROP, 100);
    EXPECT_EQ("100 %", UiText(PANEL_SIMULATOR, SIMUL_DROP_TEXT));
    Mr166_nTimeoutMs = HASTY_MS;
    EXPECT_TRUE(WaitFor([] { return !CanRead(0x8000); }));
    EXPECT_TRUE(WaitFor([] {
        HL_FireTimer(PANEL_SIMULATOR, SIMUL_TIMER);
        return !Has(UiText(PANEL_SIMULATOR, SIMUL_STATE), "should be: 0. ");
    }));
    Press(SIMUL_NO_FAULTS);
    EXPECT_EQ("0 %", UiText(PANEL_SIMULATOR, SIMUL_DROP_TEXT));
    Mr166_nTimeoutMs = PATIENT_MS;
    EXPECT_TRUE(WaitFor([] { return CanRead(0x8000); }));
    Press(SIMUL_COPY);
    EXPECT_TRUE(Has(HL_GetClipboard(), "dropped\n"));

    Press(SIMUL_CONNECT);
    EXPECT_EQ(12, ncom);
    EXPECT_EQ(57600, bRate);
    EXPECT_EQ(0, isTimer) << "nothing goes to a real target by itself";
    EXPECT_FALSE(Has(UiText(PANEL_MAIN, MAIN_STATE), "SIMULATED"));
    EXPECT_TRUE(TGT_IsStarted());
}

TEST_F(Simulator, ChoosesAStationAndSaysWhenItIsLost)
{
    Choose(SIMUL_PROTOCOL, PROTOCOL_MODBUS);
    HL_SetUserVal(PANEL_SIMULATOR, SIMUL_STATIONS, std::string("1-x"));
    Press(SIMUL_START);
    EXPECT_EQ("Not started: vireo2-target: bad value for --stations: 1-x.", Message());
    HL_SetUserVal(PANEL_SIMULATOR, SIMUL_STATIONS, std::string(" 3,5-6"));
    STATION = 5;
    Press(SIMUL_CONNECT);
    ASSERT_EQ("Connected.", Message());
    EXPECT_EQ(5, STATION) << "one of those";
    Press(SIMUL_CONNECT);
    STATION = 1;
    Press(SIMUL_CONNECT);
    EXPECT_EQ(3, STATION);
    EXPECT_EQ(PROTOCOL_MODBUS, VR_nProtocol);
    EXPECT_TRUE(CanRead(0x8000));
    VIR2_StopPeriodicASC(); // the window's timer stands still
    KillTarget();
    ASSERT_TRUE(WaitFor([] {
        HL_ActivatePanel(PANEL_SIMULATOR); // any event: the program looks at its queue
        return !TGT_IsStarted();
    }));
    EXPECT_EQ(0u, Message().find("The simulated target has ended by itself"));
    EXPECT_EQ(Message(), UiText(PANEL_MAIN, MAIN_MESSAGE));
    EXPECT_EQ(1, STATION);
    EXPECT_EQ(12, ncom);
    EXPECT_EQ(PROTOCOL_MR166, VR_nProtocol);
    EXPECT_EQ(0, isTimer);
}

} // namespace
