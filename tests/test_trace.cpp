// The wire trace: what a record says, the bounds of the ring, the sink.
#include "support/link_fixture.h"

#include <regex>

namespace {

void Collect(const std::string &text, void *all)
{
    *static_cast<std::string *>(all) += text;
}

// Times and durations made equal, and without the probes, whose lengths are drawn by lot.
std::string Steady(const std::string &all)
{
    const std::regex probe("#[^\n]*is it in step[^\n]*: answered[^\n]*\n(  [^\n]*\n)*");
    const std::string text = std::regex_replace(all, probe, "");
    const std::regex stamp("#[0-9]+ [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}");
    const std::regex duration("\\([0-9]+\\.[0-9]{3} ms\\)");
    return std::regex_replace(std::regex_replace(text, stamp, "#N T"), duration, "(D)");
}

TEST_F(LinkTest, TheSinkTellsEveryExchange)
{
    std::string all;
    plug();
    TRC_SetSink(Collect, &all);
    MrASC_UseWin32(0);
    ASSERT_EQ(UCM_Open(1, LINK_PORT, 9600), 0);
    EXPECT_EQ(UCM_Write(2, 0x1234, 2, "Hi"), 0);
    options.echo = true;
    SIM_SetFaults(target, options);
    uint8_t got[2];
    EXPECT_EQ(UCM_Read(2, 0x1234, 2, got), 0);
    options.echo = false;
    SIM_SetFaults(target, options);
    SIM_SetErrorCode(target, 4, 80);
    EXPECT_EQ(UCM_EmuCom166Msg(2, 4, 0, 0xBEEF, nullptr), 0);
    UCM_Close();
    EXPECT_EQ(UCM_Open(1, LINK_PORT, 12345), -22);
    EXPECT_EQ(Steady(all), R"(#N T COM61 at 9600 baud, run-time driver: opened
#N T station 2: write at 0x001234 2 bytes: 48 69: answered (D)
  > 1A 32 38 33 34 31 32 30 30 30 32 34 38 36 39 41 35 41 35 41 35 41 35 41 35 41 35 41 35 41 35 41 35 41 35 41 35 41 35 41 35 41 35 35 45 39 44 03  |.28341200024869A5A5A5A5A5A5A5A5A5A5A5A5A5A55E9D.|
  < 06 32 38 30 30 39 32 37 43 03  |.2800927C.|
#N T station 2: read 2 bytes at 0x001234: answered (echo of the request seen) (D)
  > 02 32 30 33 34 31 32 30 30 30 32 30 30 38 38 44 31 03  |.20341200020088D1.|
  < 02 32 30 33 34 31 32 30 30 30 32 30 30 38 38 44 31 03 06 32 30 30 32 34 38 36 39 44 37 37 36 03  |.20341200020088D1..20024869D776.|
  = 2 bytes: 48 69
#N T station 2: command 4 at 0x000000 with 0xBEEF: target error code 80 (D)
  > 02 32 34 30 30 30 30 30 30 45 46 42 45 44 37 34 41 03  |.24000000EFBED74A.|
  < 06 32 34 35 30 34 37 46 35 03  |.245047F5.|
#N T COM61 at 9600 baud, run-time driver: closed
#N T COM61 at 12345 baud, run-time driver: baud rate is not supported by the device
)");
}

TEST(Trace, KeepsWhatFitsAndSaysWhatDoesNot)
{
    TRC_Bytes bytes;
    const std::string flood(200, '~');
    TRC_Append(&bytes, flood.data(), flood.size());
    TRC_Append(&bytes, flood.data(), flood.size());
    EXPECT_EQ(bytes.count, TRC_BYTES_MAX);
    const std::string text = TRC_FormatBytes(bytes);
    EXPECT_EQ(text.substr(text.size() - 14), "| and 140 more");
    EXPECT_EQ(TRC_FormatBytes(TRC_Bytes()), " ||");
}

} // namespace
