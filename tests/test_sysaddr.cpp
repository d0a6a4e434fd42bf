// Address texts, near pointers and the way back to names, without a target; reads,
// writes and the TMS320 mailbox against the simulated one.
#include "comm/sysaddr.h"

#include <cstring>

#include "comm/tms_mailbox.h"
#include "support/watch_fixture.h"
#include "symbols/addr_name.h"
#include "watch/list/read_item.h"

namespace {

class SysAddr : public WatchTest {
protected:
    void SetUp() override
    {
        WatchTest::SetUp();
        addSymbol("Motor", 0x8000);
        addSymbol("pTable", 0x8010);
        addSymbol("TooHigh", 0x2000000);
        addRegister("DPP0", 0xFE00);
        addRegister("Motor", 0x1234); // the map comes first
        addTmsSymbol("speed", 0x400);
    }
};

TEST_F(SysAddr, AddressTexts)
{
    const struct {
        const char *text;
        uint32_t address;
        int station;
    } cases[] = {{"$1F00 ", 0x1F00, -1},
                 {"0X12ab", 0x12AB, -1},
                 {"0xFFFFFF", 0xFFFFFF, -1},
                 {"7:0x100", 0x100, 7},
                 {" 12 : Motor", 0x8000, 12},
                 {":Motor", 0x8000, 0},
                 {"Motor", 0x8000, -1},
                 {"Motor + 4", 0x8004, -1},
                 {"DPP0", 0xFE00, -1},
                 {"&speed", 0x400, -1},
                 {"99999999999999999999:Motor", 0x8000, INT32_MAX}};
    for (const auto &c : cases) {
        int station = -7;
        EXPECT_EQ(GetSysAddrM(c.text, &station), c.address) << c.text;
        EXPECT_EQ(station, c.station) << c.text;
        EXPECT_EQ(GetSysAddr(c.text), c.address) << c.text;
    }
    for (const char *refused : {"0x12G4", "0x", "0x0x10", "0100", "0x1000000", "0x112345678",
                                "7 0x100", "&Motor", "TooHigh", ""}) {
        int station = -7;
        EXPECT_EQ(GetSysAddrM(refused, &station), ADDR_NONE) << refused;
        EXPECT_EQ(station, -1) << refused;
        EXPECT_EQ(GetSysAddr(refused), ADDR_NONE) << refused;
    }
    const char *text = " 7 0x100";
    const char *cursor = text;
    EXPECT_EQ(GetStationModifier(&cursor), -1);
    EXPECT_EQ(cursor, text);
}

TEST_F(SysAddr, ClosedTablesResolveNothing)
{
    openStruct = 0;
    EXPECT_EQ(GetSysAddr("Motor"), 0x1234u); // the register of that name
    openStruct166 = 0;
    EXPECT_EQ(GetSysAddr("Motor"), ADDR_NONE);
    openTMSStruct = 0;
    EXPECT_EQ(GetSysAddr("&speed"), ADDR_NONE);
}

TEST_F(SysAddr, FirstAlternativeThatResolves)
{
    int station = 0;
    EXPECT_EQ(GetAltSysAddrM("None,,5:Nothing, 3:Motor ,0x10", &station), 0x8000u);
    EXPECT_EQ(station, 3);
    EXPECT_EQ(GetAltSysAddrM("None", &station), ADDR_NONE);
    EXPECT_EQ(station, -1);
    EXPECT_EQ(GetAltSysAddr((std::string(2000, 'x') + ",0x10").c_str()), 0x10u);
}

TEST_F(SysAddr, NearPointers)
{
    for (uint16_t i = 0; i < 4; ++i)
        awQRDPP[i] = i;
    EXPECT_EQ(QuickNearToHuge(0xC123), 0xC123u);
    awQRDPP[3] = 0x40;
    EXPECT_EQ(QuickNearToHuge(0xC123), 0x100123u);
}

TEST_F(SysAddr, NamesOfAddresses)
{
    std::string text;
    EXPECT_EQ(RegAddrToName(0xFE00, &text), 0);
    EXPECT_EQ(text, "DPP0");
    EXPECT_EQ(RegAddrToName(0xFE01, &text), 0);
    EXPECT_EQ(text, "DPP0+1");
    EXPECT_EQ(RegAddrToName(0xFE02, &text), -1);
    EXPECT_EQ(text, "");
    EXPECT_EQ(VarAddrToName(0x8003, &text), 0);
    EXPECT_EQ(text, "Motor+3");
    EXPECT_EQ(VarAddrToName(0x9010, &text), 0);
    EXPECT_EQ(text, "09010h (==pTable+4096)");
    EXPECT_EQ(VarAddrToName(0x10, &text), -1);
}

TEST_F(SysAddr, ReadsThroughPagePointers)
{
    ASSERT_TRUE(connect());
    awQRDPP[3] = 0x1234;
    const uint8_t pages[8] = {0, 0, 1, 0, 2, 0, 0x40, 0};
    const uint8_t pointer[2] = {0x23, 0xC1};
    SIM_Poke(target, STATION, 0xFE00, pages, sizeof pages);
    SIM_Poke(target, STATION, 0x8010, pointer, sizeof pointer);
    ASSERT_EQ(UpdateQuickDPP(), 0);
    EXPECT_EQ(QuickRefNearPtrVar("pTable"), 0x100123u);

    const uint16_t written = 0xBEEF;
    uint16_t read = 0;
    EXPECT_GE(WriteQuickSysNRef("pTable", &written, 2), 0);
    SIM_Peek(target, STATION, 0x100123, &read, 2);
    EXPECT_EQ(read, written);
    read = 0;
    EXPECT_GE(ReadQuickSysNRef("5:pTable", &read, 2), 0); // the station is ignored
    EXPECT_EQ(read, written);
    EXPECT_EQ(ReadSysVar("Nothing", &read, 2), -1);

    silenceOthers(0);
    EXPECT_EQ(UpdateQuickDPP(), -1);
    EXPECT_EQ(awQRDPP[3], 0x40); // as it was
    EXPECT_EQ(QuickRefNearPtrVar("pTable"), ADDR_NONE);
    EXPECT_EQ(WriteQuickSysNRef("pTable", &written, 2), -1) << "nothing written is no success";
    EXPECT_EQ(ReadQuickSysNRef("pTable", &read, 2), -1);
}

TEST_F(SysAddr, BusyMailboxEndsAfterItsPolls)
{
    ASSERT_TRUE(connect());
    options.mailbox = false;
    SIM_SetFaults(target, options);
    addItem("&[400], u4");
    uint32_t value = 0;
    uint8_t byte = 0;
    ASSERT_EQ(UCM_Read(STATION, 0, 1, &byte), 0); // in step from here on
    uint64_t before = SIM_GetCounters(target).requests;
    EXPECT_EQ(readTMS(0, &value), -2);
    EXPECT_EQ(SIM_GetCounters(target).requests - before, 2u + 10u);
    before = SIM_GetCounters(target).requests;
    EXPECT_EQ(TMS_WriteWord(STATION, 0x400, 1, nullptr), TMS_ERR_BUSY);
    EXPECT_EQ(SIM_GetCounters(target).requests - before, 3u + 20u);
}

TEST_F(SysAddr, MailboxNamesTheWordThatFailed)
{
    ASSERT_TRUE(connect());
    failWith(8, 70);
    uint32_t failedAt = 0;
    EXPECT_EQ(TMS_WriteWord(STATION, 0x400, 1, &failedAt), TMS_ERR_SEND);
    EXPECT_EQ(failedAt, TMS_BOX_ADDRESS);
    failWith(8, 0);
    failWith(0, 70);
    EXPECT_EQ(TMS_WriteWord(STATION, 0x400, 1, &failedAt), TMS_ERR_POLL);
    addItem("&[400], u4");
    uint32_t value = 0;
    EXPECT_EQ(readTMS(0, &value), -1);
}

TEST_F(SysAddr, ItemsReadTheirStationAndSize)
{
    ASSERT_TRUE(connect());
    const uint8_t bytes[8] = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88};
    SIM_Poke(target, 3, 0x8200, bytes, sizeof bytes);
    addSymbol("Far", 0x8200);
    const struct {
        const char *line;
        uint32_t low, high;
    } cases[] = {{"3:Far, u1", 0x11, 0},
                 {"3:Far, u2", 0x2211, 0},
                 {"3:Far, u4", 0x44332211, 0},
                 {"3:Far, u8", 0x44332211, 0x88776655}};
    for (int i = 0; i < 4; ++i) {
        addItem(cases[i].line);
        ASSERT_EQ(RFR_ReadItemNow(i), 0) << cases[i].line;
        EXPECT_EQ(aLItems[i].value, cases[i].low);
        EXPECT_EQ(aLItems[i].valueHigh, cases[i].high);
    }
    EXPECT_EQ(RFR_ReadItemNow(4), -4);
    EXPECT_EQ(RFR_ReadItemNow(-1), -4);
}

TEST_F(SysAddr, FailedItemSaysWhy)
{
    ASSERT_TRUE(connect());
    addItem("[8000], u2");
    addItem("Nobody, u2");
    ASSERT_EQ(RFR_ReadItemNow(0), 0);
    const uint64_t before = SIM_GetCounters(target).requests;
    EXPECT_EQ(RFR_ReadItemNow(1), -1);
    EXPECT_EQ(SIM_GetCounters(target).requests, before);
    EXPECT_TRUE(Has(aLItems[1].reason, "not resolved"));

    aLItems[0].valueHigh = 5;
    failWith(0, 70);
    EXPECT_EQ(RFR_ReadItemNow(0), -1);
    EXPECT_EQ(aLItems[0].value, 0xFFFFFFFFu);
    EXPECT_EQ(aLItems[0].valueHigh, 0u);
    EXPECT_EQ(aLItems[0].readError, 1);
    EXPECT_TRUE(Has(aLItems[0].reason, "70"));
    failWith(0, 0);
    ASSERT_EQ(RFR_ReadItemNow(0), 0);
    EXPECT_EQ(aLItems[0].readError, 0);
    EXPECT_EQ(aLItems[0].reason, "");
    // No rate from a value that was never read, or so long ago that the tick came round.
    EXPECT_EQ(aLItems[0].readTick, aLItems[0].previousReadTick);
    aLItems[0].readTick = static_cast<uint16_t>(aLItems[0].readTick - 1000);
    aLItems[0].lastReadMs -= 66536;
    ASSERT_EQ(RFR_ReadItemNow(0), 0);
    EXPECT_EQ(aLItems[0].readTick, aLItems[0].previousReadTick);
}

} // namespace
