// The mr166 link against the simulated target, and against answers no sound target gives.
#include "support/link_fixture.h"

#include "platform/system.h"

#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <thread>
#include <unistd.h>

namespace {

struct Counts {
    uint32_t ok = EC_dwMsgOk, time = EC_wTimeErr, frame = EC_wFrameErr, repeat = EC_dwBlkRpt;
};

struct BothDrivers : LinkTest, testing::WithParamInterface<int> {
    void open(uint32_t timeoutMs = PATIENT_MS)
    {
        Mr166_nTimeoutMs = timeoutMs;
        MrASC_UseWin32(GetParam());
        if (target == nullptr)
            plug();
        ASSERT_EQ(MrASC_Open(LINK_PORT, LINK_BAUD), 0);
    }
};
std::string DriverName(const testing::TestParamInfo<int> &driver)
{
    return driver.param ? "Win32" : "RunTime";
}
INSTANTIATE_TEST_SUITE_P(Link, BothDrivers, testing::Values(0, 1), DriverName);

TEST_P(BothDrivers, OpenFailuresHaveTheirCodesAndLeaveItClosed)
{
    MrASC_UseWin32(GetParam());
    const int unavailable = GetParam() ? -30 : -22;
    plug();
    MrASC_nCom = 5;
    EXPECT_EQ(MrASC_Open(GetParam() ? 256 : 99, LINK_BAUD), -38);
    EXPECT_EQ(MrASC_Open(-1, LINK_BAUD), -38);
    EXPECT_EQ(MrASC_Open(98, LINK_BAUD), unavailable);
    EXPECT_EQ(MrASC_Open(LINK_PORT, 12345), GetParam() ? -32 : -22);
    SER_Handle other = SER_INVALID;
    ASSERT_EQ(SER_Open(LINK_PORT, &other), SER_OK);
    EXPECT_EQ(MrASC_Open(LINK_PORT, LINK_BAUD), unavailable);
    SER_Close(other);
    EXPECT_EQ(MrASC_IsOpened(), 0);
    EXPECT_EQ(MrASC_nCom, 5);
    EXPECT_EQ(MrASC_Open(LINK_PORT, LINK_BAUD), 0);
    EXPECT_EQ(MrASC_Open(LINK_PORT, LINK_BAUD), 0); // closes the open one first
    EXPECT_EQ(MrASC_nCom, LINK_PORT);
    EXPECT_EQ(MR166_hCom != SER_INVALID, GetParam() != 0);
}

TEST_P(BothDrivers, RefusesArgumentsBeforeAnythingIsSent)
{
    open();
    const int refused = GetParam() ? 0 : -20;
    const struct {
        int station, command;
        uint32_t address;
        uint16_t word;
        int result;
        uint16_t state;
    } cases[] = {{16, 0, 0, 1, refused, 3},     {-1, 0, 0, 1, refused, 3},
                 {1, 16, 0, 1, refused, 3},     {1, 8, 0, 0, refused, 3},
                 {1, 8, 0, 17, refused, 3},     {1, 0, 0x1000000, 1, 0, 0x55},
                 {16, 0, 0x1000000, 1, 0, 0x55}};
    const char data[17] = "";
    for (const auto &item : cases) {
        wMr166State = 0x55;
        nMr166Err = 0;
        EXPECT_EQ(mr166Message(item.station, item.command, item.address, item.word, data),
                  item.result);
        EXPECT_EQ(nMr166Err, -20);
        EXPECT_EQ(wMr166State, item.state);
    }
    EXPECT_EQ(requests(), 0u);
    MrASC_Close();
    EXPECT_EQ(mr166Message(1, 0, 0, 1, nullptr), 0);
    EXPECT_EQ(nMr166Err, -21);
    EXPECT_EQ(wMr166State, 3);
    EXPECT_EQ(Mr166MessageW32NA(1, 0, 0, 1, nullptr), 0);
    EXPECT_EQ(wMr166State, 4);
}

TEST_P(BothDrivers, BlocksOfATransfer)
{
    open();
    prove(2);
    const struct {
        uint32_t count;
        unsigned writes, reads; // several blocks have a proof behind them
    } cases[] = {{0, 0, 0},      {1, 1, 1},          {16, 1, 1},          {17, 2 + 1, 1},
                 {64, 4 + 1, 1}, {65, 5 + 1, 2 + 1}, {300, 19 + 1, 5 + 1}};
    for (const auto &item : cases) {
        std::vector<uint8_t> out(item.count + 1, 0x5A), in(item.count + 1, 0xEE);
        const uint64_t before = requests();
        ASSERT_EQ(Mr166_Write(2, 0x7000, item.count, out.data()), 0);
        EXPECT_EQ(requests() - before, item.writes) << item.count;
        ASSERT_EQ(Mr166_Read(2, 0x7000, item.count, in.data()), 0);
        EXPECT_EQ(requests() - before, item.writes + item.reads) << item.count;
        EXPECT_EQ(std::memcmp(in.data(), out.data(), item.count), 0);
        EXPECT_EQ(in.back(), 0xEE) << "written beyond the end";
    }
}

TEST_P(BothDrivers, StepwiseTransfersEndWithOneMoreStepForNothing)
{
    open(HASTY_MS * 10);
    const std::vector<uint8_t> memory = fill(200);
    uint8_t got[200] = {};
    uint8_t *to = got;
    uint32_t address = 0, count = 128;
    prove(1);
    const uint64_t asked = requests();
    EXPECT_EQ(Mr166_ReadBg(1, &address, &count, &to), 0);
    EXPECT_EQ(Mr166_ReadBg(1, &address, &count, &to), 0);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(Mr166_ReadBg(1, &address, &count, &to), 1);
    EXPECT_EQ(address, 128u);
    EXPECT_EQ(to, got + 128);
    count = 63;
    EXPECT_EQ(Mr166_ReadBg(1, &address, &count, &to), 1);
    EXPECT_EQ(std::memcmp(got, memory.data(), 191), 0);
    EXPECT_EQ(requests() - asked, 4u);

    const uint8_t *from = memory.data();
    address = 0x900, count = 17;
    EXPECT_EQ(Mr166_WriteBg(1, &address, &count, &from), 0);
    EXPECT_EQ(Mr166_WriteBg(1, &address, &count, &from), 1);
    EXPECT_EQ(from, memory.data() + 17);
    SIM_Peek(target, 1, 0x900, got, 17);
    EXPECT_EQ(std::memcmp(got, memory.data(), 17), 0);
    const Counts before;
    EXPECT_EQ(Mr166_WriteBg(1, &address, &count, &from), -1);
    EXPECT_EQ(nMr166Err, -20);
    EXPECT_EQ(EC_dwBlkRpt - before.repeat, 4u);
    EXPECT_EQ(address, 0x911u);
}

TEST_P(BothDrivers, SilenceIsTriedAgainAndCounted)
{
    options.silentAfter = 0;
    open(HASTY_MS);
    for (const unsigned repeats : {0u, 3u}) {
        Mr166_CnBlkRpt = static_cast<int16_t>(repeats);
        const Counts before;
        const uint64_t asked = requests();
        uint8_t byte = 0;
        EXPECT_EQ(Mr166_Read(1, 0, 1, &byte), -1);
        EXPECT_EQ(nMr166Err, -9);
        EXPECT_EQ(wMr166State, 0xFFFF);
        EXPECT_EQ(EC_wTimeErr - before.time, repeats + 1);
        EXPECT_EQ(EC_dwBlkRpt - before.repeat, repeats + 1);
        EXPECT_EQ(EC_wFrameErr, before.frame);
        // The target's thread may lag behind the short time-out.
        for (uint32_t ms = 0; ms < PATIENT_MS && requests() - asked <= repeats; ++ms)
            PLT_SleepMs(1);
        EXPECT_EQ(requests() - asked, repeats + 1);
    }
}

TEST_P(BothDrivers, UnpluggedInTheMiddleAndPluggedInAgain)
{
    open(60000); // a port that is gone must not be waited for
    std::vector<uint8_t> memory = fill(64), got(64);
    ASSERT_EQ(Mr166_Read(1, 0, 64, got.data()), 0);
    const uint32_t start = PLT_TickMs();
    std::thread puller([this] {
        PLT_SleepMs(20);
        unplug();
    });
    int result = 0;
    while (result == 0)
        result = Mr166_Read(1, 0, 64, got.data());
    puller.join();
    EXPECT_EQ(Mr166_nFault, MR166_FAULT_GONE);
    EXPECT_EQ(Mr166_Read(1, 0, 64, got.data()), -1);
    EXPECT_LT(PLT_TickMs() - start, 60000u);
    EXPECT_EQ(MrASC_Open(LINK_PORT, LINK_BAUD), GetParam() ? -30 : -22);
    plug();
    memory = fill(64);
    ASSERT_EQ(MrASC_Open(LINK_PORT, LINK_BAUD), 0);
    EXPECT_EQ(Mr166_Read(1, 0, 64, got.data()), 0);
    EXPECT_EQ(got, memory);
}

TEST_F(LinkTest, TheDriverChangesWithThePort)
{
    plug();
    EXPECT_EQ(MrASC_UseWin32(0), 0);
    EXPECT_EQ(MrASC_IsOpened(), 0);
    ASSERT_EQ(MrASC_Open(LINK_PORT, LINK_BAUD), 0);
    EXPECT_EQ(MR166_hCom, SER_INVALID);
    EXPECT_EQ(MrASC_UseWin32(77), 0);
    EXPECT_EQ(MR166_isWin32, 1);
    EXPECT_NE(MR166_hCom, SER_INVALID);
    EXPECT_EQ(mr166Message(1, 0, 0, 1, nullptr), 1);
    unplug();
    EXPECT_EQ(MrASC_UseWin32(0), -22);
    EXPECT_EQ(MrASC_IsOpened(), 0);
}

TEST_F(LinkTest, RequestsWithoutAnAwaitedAnswer)
{
    plug();
    ASSERT_EQ(MrASC_Open(LINK_PORT, LINK_BAUD), 0);
    ASSERT_EQ(SER_SetTimeouts(MR166_hCom, HASTY_MS, PATIENT_MS), SER_OK);
    const Counts before;
    EXPECT_EQ(Mr166MessageW32NA(3, 8, 0x40, 2, "ab"), 1);
    EXPECT_EQ(Mr166MessageW32NA(3, 8, 0x40, 17, "ab"), -20);
    EXPECT_EQ(Mr166MessageW32NA(16, 1, 0x40, 2, nullptr), -20);
    EXPECT_EQ(Mr166MessageW32NA(1, 1, 0x1000000, 2, nullptr), 0);
    uint8_t got[2];
    SIM_Peek(target, 3, 0x40, got, 2);
    EXPECT_EQ(std::memcmp(got, "ab", 2), 0);
    EXPECT_EQ(EC_dwMsgOk, before.ok);
    EXPECT_EQ(EC_wTimeErr + EC_wFrameErr, before.time + before.frame);
}

// --- answers that no sound target gives ------------------------------------------------

std::string Answer(const std::string &digits);

// Answers every read of one byte with the same characters and others as a target should.
struct FixedReplier {
    int master = posix_openpt(O_RDWR | O_NOCTTY);
    int stop[2] = {-1, -1};
    std::thread thread;

    explicit FixedReplier(const std::string &answer)
    {
        EXPECT_EQ(grantpt(master) + unlockpt(master) + pipe(stop), 0);
        setenv("VIREO2_COM61", ptsname(master), 1);
        const int slave = open(ptsname(master), O_RDWR | O_NOCTTY); // keeps the line up
        thread = std::thread([this, answer, slave] {
            char c = 0;
            struct pollfd fds[2] = {{stop[0], POLLIN, 0}, {master, POLLIN, 0}};
            std::string request;
            while (poll(fds, 2, -1) > 0 && fds[0].revents == 0 && read(master, &c, 1) == 1) {
                request += c;
                if (c != MR166_END)
                    continue;
                const unsigned count = hexToByte(request.c_str() + 9);
                const std::string probed = Answer(request.substr(1, 2) + request.substr(9, 2) +
                                                  std::string(2 * count, '0'));
                const std::string &sent = count == 1 ? answer : probed;
                (void)!write(master, sent.data(), sent.size());
                request.clear();
            }
            close(slave);
        });
    }
    ~FixedReplier()
    {
        close(stop[1]);
        thread.join();
        close(stop[0]);
        close(master);
        unsetenv("VIREO2_COM61");
    }
};

std::string Answer(const std::string &digits)
{
    std::string head = "\x06" + digits;
    char tail[5];
    char *cursor = tail;
    wordToHex(getCRC16(head.data(), static_cast<uint16_t>(head.size())), &cursor);
    return head + std::string(tail, 4) + MR166_END;
}

TEST_F(LinkTest, StrangeAnswers)
{
    const std::string foreign = Answer("2001FF"), endless = "\x06" + std::string(400, '1');
    const struct {
        const char *what;
        std::string bytes;
        int isWin32, error, fault;
    } cases[] = {{"noise first", "?" + Answer("1001FF"), 0, -2, -2},
                 {"noise first", "?" + Answer("1001FF"), 1, -2, -2},
                 {"no end in sight", endless, 0, -3, -3},
                 {"no end in sight", endless, 1, -3, -3},
                 {"another station", foreign, 0, -6, -6},
                 {"another station", foreign, 1, -6, -6},
                 {"another command", Answer("1101FF"), 0, -7, -7},
                 {"fewer bytes than asked for", Answer("1000"), 0, 0, MR166_FAULT_COUNT},
                 {"more bytes than asked for", Answer("1002FFFF"), 0, 0, MR166_FAULT_COUNT},
                 {"half an answer", "\00610", 0, -9, -9},
                 {"half an answer", "\00610", 1, -1, -1}};
    Mr166_CnBlkRpt = 0;
    Mr166_nTimeoutMs = 200;
    for (const auto &item : cases) {
        const FixedReplier replier(item.bytes);
        MrASC_UseWin32(item.isWin32);
        ASSERT_EQ(MrASC_Open(LINK_PORT, LINK_BAUD), 0);
        const Counts before;
        uint8_t got = 0xEE;
        EXPECT_EQ(Mr166_Read(1, 0, 1, &got), -1) << item.what;
        EXPECT_EQ(nMr166Err, item.error) << item.what << item.isWin32;
        EXPECT_EQ(Mr166_nFault, item.fault) << item.what << item.isWin32;
        EXPECT_EQ(got, 0xEE) << item.what;
        EXPECT_EQ(EC_dwBlkRpt - before.repeat, 1u);
        EXPECT_EQ(EC_wTimeErr + EC_wFrameErr - before.time - before.frame,
                  item.error < 0 ? 1u : 0u);
        MrASC_Close();
    }
}

TEST_F(LinkTest, CountersStopOrWrapAtTheirMaximum)
{
    const FixedReplier replier("?");
    MrASC_UseWin32(0);
    ASSERT_EQ(MrASC_Open(LINK_PORT, LINK_BAUD), 0);
    EC_wFrameErr = UINT16_MAX;
    EXPECT_EQ(mr166Message(1, 0, 0, 1, nullptr), 0);
    EXPECT_EQ(EC_wFrameErr, 0); // a wrong start character wraps
    MrASC_Close();

    const FixedReplier other(Answer("2001FF"));
    ASSERT_EQ(MrASC_Open(LINK_PORT, LINK_BAUD), 0);
    EC_wFrameErr = UINT16_MAX;
    EXPECT_EQ(mr166Message(1, 0, 0, 1, nullptr), 0);
    EXPECT_EQ(EC_wFrameErr, UINT16_MAX); // a refused answer stops
    EC_dwMsgOk = UINT32_MAX;
    EXPECT_EQ(mr166Message(2, 0, 0, 1, nullptr), 1);
    EXPECT_EQ(EC_dwMsgOk, UINT32_MAX);
    EC_dwMsgOk = 0;
    EC_wFrameErr = 0;
}

} // namespace
