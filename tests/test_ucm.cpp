// The unified layer: dispatch by protocol, error counters, reasons in words, statistics.
#include "support/link_fixture.h"

#include <cstring>

namespace {

uint32_t Counted()
{
    uint32_t sum = 0;
    for (const uint16_t count : UCM_recS.errors)
        sum += count;
    return sum;
}

TEST_F(LinkTest, CounterOfEachResult)
{
    const struct {
        int result, returned, counter; // counter 0: none
    } cases[] = {{0, 0, 0},       {5, 5, 0},           {-1, -1, 1},      {-99, -99, 99},
                 {-100, -100, 0}, {-32768, -32768, 0}, {0x1FFFF, -1, 1}, {32767, 32767, 0}};
    for (const auto &item : cases) {
        UCM_ClearErrorCounter();
        EXPECT_EQ(UCM_CountErr(item.result), item.returned);
        EXPECT_EQ(Counted(), item.counter ? 1u : 0u) << item.result;
        EXPECT_EQ(UCM_recS.errors[item.counter], item.counter ? 1 : 0) << item.result;
    }
    UCM_recS.errors[1] = UINT16_MAX;
    UCM_CountErr(-1);
    EXPECT_EQ(UCM_recS.errors[1], 0);
}

TEST_F(LinkTest, OpeningRecordsAndCounts)
{
    plug();
    EXPECT_EQ(UCM_Open(1, LINK_PORT, LINK_BAUD), 0);
    EXPECT_EQ(UCM_IsOpened(), 1);
    EXPECT_EQ(UCM_recS.port, LINK_PORT);
    EXPECT_EQ(UCM_Read(16, 0, 1, nullptr), -20);
    EXPECT_EQ(UCM_recS.errors[20], 1);
    EXPECT_EQ(UCM_Open(3, LINK_PORT, LINK_BAUD), -20); // closes, clears, records nothing
    EXPECT_EQ(Counted(), 0u);
    EXPECT_EQ(UCM_IsOpened(), 0);
    EXPECT_EQ(MrASC_IsOpened(), 0);
    EXPECT_EQ(UCM_recS.protocol, 1);
    EXPECT_EQ(UCM_Open(1, 256, LINK_BAUD), -38);
    EXPECT_EQ(UCM_recS.errors[38], 1);
    EXPECT_EQ(UCM_IsOpened(), 0);
    EXPECT_EQ(UCM_LastErrorText(), "bad port number");
    EXPECT_EQ(UCM_Open(1, LINK_PORT, LINK_BAUD), 0);
    UCM_Close();
    EXPECT_EQ(UCM_recS.port, 0);
    EXPECT_EQ(MrASC_IsOpened(), 0);
    EXPECT_EQ(UCM_Open(1, LINK_PORT, LINK_BAUD), 0);
    unplug();
    EXPECT_EQ(UCM_UseWin32(0), -22) << "it cannot be opened with the other driver";
    EXPECT_EQ(UCM_IsOpened(), 0);
}

TEST_F(LinkTest, StationsAndOperationsOfEachProtocol)
{
    plug();
    uint8_t byte = 0, *to = &byte;
    const uint8_t *from = &byte;
    uint32_t address = 0, count = 1;
    ASSERT_EQ(UCM_Open(1, LINK_PORT, LINK_BAUD), 0);
    EXPECT_EQ(UCM_Read(0, 0, 1, &byte), 0);
    for (const int station : {-1, 16, 250}) {
        EXPECT_EQ(UCM_Write(station, 0, 1, &byte), -20);
        EXPECT_EQ(UCM_ReadBg(station, &address, &count, &to), -20);
        EXPECT_EQ(UCM_WriteBg(station, &address, &count, &from), -20);
        EXPECT_EQ(UCM_EmuCom166Msg(station, 4, 0, 1, nullptr), -20);
        EXPECT_EQ(UCM_EmuCom166MsgNA(station, 4, 0, 1, nullptr), -20);
    }
    EXPECT_EQ(UCM_recS.errors[20], 15);
    EXPECT_EQ(UCM_EmuCom166Msg(15, 4, 0x10, 0x1234, nullptr), 1);
    EXPECT_EQ(UCM_Read(15, 0x10, 1, &byte), 0);
    EXPECT_EQ(byte, 0x34);
    EXPECT_EQ(UCM_ReadBg(15, &address, &count, &to), 1);
    UCM_recS.protocol = 7;
    EXPECT_EQ(UCM_Read(1, 0, 1, &byte), -20);
    EXPECT_EQ(UCM_recS.errors[20], 15);
}

TEST_F(LinkTest, TriesReasonsAndStatistics)
{
    plug();
    Mr166_nTimeoutMs = 10 * HASTY_MS; // the port takes it when it is opened
    ASSERT_EQ(UCM_Open(1, LINK_PORT, LINK_BAUD), 0);
    UCM_ResetStatistics();
    uint8_t bytes[8] = {};
    EXPECT_EQ(UCM_Write(1, 0, 8, bytes), 0);
    EXPECT_EQ(UCM_LastErrorText(), "");
    UCM_recS.tries = 1;
    const struct {
        int silentAfter;
        uint32_t stations;
        int code;
        const char *reason;
    } cases[] = {{0, 0xFFFF, 0, "no answer"},
                 {-1, 0, 0, "no answer"},
                 {-1, 0xFFFF, 66, "target error code 66"}};
    for (const auto &item : cases) {
        SIM_Options faults;
        faults.silentAfter = item.silentAfter;
        faults.stations = item.stations;
        SIM_SetFaults(target, faults);
        SIM_SetErrorCode(target, 0, item.code);
        Mr166_nTimeoutMs = item.code == 0 ? HASTY_MS : 10 * HASTY_MS;
        EXPECT_EQ(UCM_Read(1, 0, 8, bytes), -1);
        EXPECT_EQ(UCM_LastErrorText(), item.reason);
    }
    UCM_Read(99, 0, 8, bytes);
    EXPECT_EQ(UCM_LastErrorText(), "bad station number or protocol");
    UCM_Statistics seen;
    UCM_GetStatistics(&seen);
    EXPECT_EQ(seen.answered, 1u);
    EXPECT_EQ(seen.timeouts, 4u);
    EXPECT_EQ(seen.damaged, 4u); // two settle what was open before
    EXPECT_EQ(seen.repeated, 8u);
    EXPECT_EQ(seen.errors[1], 3);
    EXPECT_EQ(seen.errors[20], 1);
    UCM_ResetStatistics();
    UCM_GetStatistics(&seen);
    EXPECT_EQ(seen.answered + seen.timeouts + seen.damaged + seen.repeated, 0u);
    EXPECT_EQ(Counted(), 0u);
    UCM_Close();
    EXPECT_EQ(UCM_Read(1, 0, 8, bytes), -1);
    EXPECT_EQ(UCM_LastErrorText(), "port is not open");
}

} // namespace
