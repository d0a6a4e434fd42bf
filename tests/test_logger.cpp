// Log buffers, messages, record descriptions and the files made of them.
#include "logger/dlld.h"

#include "logger/dlld_print.h"
#include "logger/dlld_record.h"
#include "support/log_builder.h"
#include "support/program_state.h"

namespace {

// The record table empty and a target of bytes before and after.
struct Logger : ProgramTest {
    const ScratchFolder folder{true};
    Logger()
    {
        DLLD_SetHost(DLLD_Host());
    }
    static std::string Listing(LogBuilder log)
    {
        EXPECT_EQ(DLLD_SaveStdLogFe("a.slog", log.Finish()), 0);
        return ReadFileText("a.slog");
    }
};

const char HEAD[] = "\n2015-03-01 10:20:30 MsgType=";

// What a record's description makes of a content, or where it is wrong.
std::string Describe(const std::string &text, const std::vector<uint16_t> &content)
{
    DLLD_Record record;
    int errorAt = 0;
    if (DLLD_CreateRecordDescriptor(text, &record, &errorAt) < 0)
        return "wrong at " + std::to_string(errorAt);
    const DLLD_Log log = LogBuilder().Add(0x20, content).Finish();
    std::string out;
    DLLD_FPrintRecordCts(record, {log.data() + 8, static_cast<int32_t>(3 + content.size())}, &out);
    return out;
}

} // namespace

TEST_F(Logger, HeaderTest)
{
    DLLD_Log log = LogBuilder().Finish(100, 0x12345);
    EXPECT_EQ(DLLD_TestLogHeader(log.data(), 0x12345, 100), 0);
    EXPECT_EQ(DLLD_TestLogHeader(log.data(), DLLD_ANY_ADDRESS, 100), 0);
    EXPECT_EQ(DLLD_TestLogHeader(log.data(), 0x12346, 100), -1);
    EXPECT_EQ(DLLD_TestLogHeader(log.data(), 0x12345, 99), -1);
    DLLD_Host host;
    host.isWordAddressing = true;
    DLLD_SetHost(host);
    EXPECT_EQ(DLLD_TestLogHeader(log.data(), 0x2468A, 100), 0);
    EXPECT_EQ(DLLD_TestLogHeader(log.data(), 0x12345, 100), -1);
    for (size_t word = 4; word < 7; word++)
        for (const int bit : {0x0001, 0x0100, 0x2000}) { // another letter, another case
            log[word] = static_cast<uint16_t>(log[word] ^ bit);
            EXPECT_EQ(DLLD_TestLogHeader(log.data(), DLLD_ANY_ADDRESS, 100), -1) << word << bit;
            log[word] = static_cast<uint16_t>(log[word] ^ bit);
        }
    const struct {
        int64_t words;
        int result;
    } sizes[] = {{7, -1}, {8, 0}, {524288, 0}, {524289, -1}, {-100, -1}, {0x100000064, -1}};
    for (const auto &size : sizes) {
        log[2] = static_cast<uint16_t>(size.words & 0xFFFF);
        log[3] = static_cast<uint16_t>(size.words >> 16 & 0xFFFF);
        EXPECT_EQ(DLLD_TestLogHeader(log.data(), DLLD_ANY_ADDRESS, size.words), size.result);
    }
}

TEST_F(Logger, FindsMessagesBetweenZeros)
{
    const uint16_t words[] = {0, 0, 5, 6, 0, 7, 0, 0, 8};
    EXPECT_EQ(DLLD_MsgStartNdx(words, 9, 0) * 10 + DLLD_MsgWLen(words, 9, 2), 22);
    EXPECT_EQ(DLLD_MsgStartNdx(words, 9, 4) * 10 + DLLD_MsgWLen(words, 9, 5), 51);
    EXPECT_EQ(DLLD_MsgStartNdx(words, 9, 8) * 10 + DLLD_MsgWLen(words, 9, 8), 81);
    EXPECT_EQ(DLLD_MsgStartNdx(words, 8, 6), -1); // nothing but zeros up to the end
    EXPECT_EQ(DLLD_MsgWLen(words, 9, 4), 0);
    for (const auto &bad : {std::pair(9, 9), {9, -1}, {-1, 0}, {0, 0}, {524289, 0}}) {
        EXPECT_EQ(DLLD_MsgStartNdx(words, bad.first, bad.second), -1) << bad.first;
        EXPECT_EQ(DLLD_MsgWLen(words, bad.first, bad.second), 0) << bad.first;
    }
}

TEST_F(Logger, TimeStamps)
{
    const struct {
        uint32_t stamp;
        const char *text;
    } cases[] = {{STAMP_2015, "2015-03-01 10:20:30"},
                 {0, "2000-01-01 00:00:00"},
                 {0x00000001, "2000-01-01 00:00:02"},
                 {0xFF000000 + 12 * 31 * 43200 - 1, "2255-12-31 23:59:58"},
                 {0x14000000 + 12 * 31 * 43200, "2020-13-01 00:00:00"}, // nothing is checked
                 {0x14FFFFFF, "2020-13-17 08:40:30"}};
    for (const auto &c : cases) {
        DateTime time;
        std::string text;
        EXPECT_EQ(CvtAMCBIOS_time(c.stamp, &time), 1);
        DLLD_AppendTime(time, &text);
        EXPECT_EQ(text, c.text);
        EXPECT_EQ(time.kind, DTTM_DECODED);
        EXPECT_EQ(DLLD_MakeStamp(time), c.stamp) << c.text;
    }
    EXPECT_EQ(DLLD_MakeStamp({2256, 1, 1, 0, 0, 0, 3}), 0u);
}

TEST_F(Logger, EveryReplacementValueGivesTheZerosBack)
{
    for (int z = 0; z < 256; z++) {
        const uint16_t other = z == 7 ? 8 : 7, zero = z == 0 ? other : 0; // 0 replaces nothing
        const DLLD_Log log = LogBuilder().Add(0x20, {other, zero, 0x0100}, 1, z).Finish();
        const DLLD_Msg msg = {log.data() + 8, 6};
        EXPECT_EQ(DLLD_GetZ(msg), z);
        EXPECT_EQ(DLLD_GetWord(msg, 3), other);
        EXPECT_EQ(DLLD_GetDWord(msg, 4), 0x01000000u | zero) << z;
    }
    EXPECT_EQ(DLLD_GetZR_DW(0x1234, 0x0005, 5), 0x12340000u);
    EXPECT_EQ(DLLD_GetZR_DW(0x0005, 0x1234, 5), 0x1234u);
    // The stamp is no content: its words stand as they are.
    const DLLD_Log log = LogBuilder().Add(2, {}, 0x0F000005, 5).Finish();
    EXPECT_EQ(DLLD_GetStamp({log.data() + 8, 3}), 0x0F000005u);
}

TEST_F(Logger, ListsEachMessageByItsType)
{
    const std::string head = HEAD;
    const std::vector<uint16_t> state = {60, 0, 0x40, 0, 0, 0x8000, 1, 2};
    const auto stamp = [&](uint16_t s) {
        std::vector<uint16_t> content = state;
        content.push_back(s);
        return LogBuilder().Add(DLLD_BSTAMP, content);
    };
    const std::string rest = ", t=60s,  Err=00000040h,  IErr=80000000h,  Warn=00020001h";
    const struct {
        LogBuilder log;
        std::string text;
    } cases[] = {
        {LogBuilder(), ""},
        {LogBuilder().Raw({0x0102}), ""}, // too short to have a time
        {LogBuilder().Raw({0x0102, 1}), ""},
        {LogBuilder().Add(2, {}), head + "02 Text: ''"},
        {LogBuilder().Text("a b!"), head + "02 Text: 'a b!'"},
        {LogBuilder().Add(2, {'x', 0, 'y' << 8}), head + "02 Text: 'xy'"},
        {LogBuilder().Add(1, {1, 2}).Text("k"), head + "02 Text: 'k'"}, // junk is left out
        {stamp(0x0005), head + "10 #BSTAMP\n    S=0005h(ctl,run)" + rest},
        {stamp(0x0100), head + "10 #BSTAMP\n    S=0100h" + rest},
        {stamp(0x00FF),
         head + "10 #BSTAMP\n    S=00FFh(ctl,rdy,run,err,warn,usr1,usr2,usr3)" + rest},
        {stamp(0x0080), head + "10 #BSTAMP\n    S=0080h(usr3)" + rest},
        {stamp(0), head + "10 #BSTAMP\n    S=0000h" + rest},
        // One of 11 words lacks its state, one of 10 is no status stamp.
        {LogBuilder().Add(0x10, state), head + "10 #BSTAMP\n    S=0000h" + rest},
        {LogBuilder().Add(0x10, {1, 2, 3, 4, 5, 6, 7}), head + "10 "},
        {LogBuilder().Add(0x33, {}), head + "33 MsgStart=ee"},
        {LogBuilder().Add(0, {1, 0, 0xABCD, 4, 5, 6, 7, 8, 9, 10}),
         head + "00 MsgStart=ee\n    0001 0000 ABCD 0004 0005 0006 0007 0008 0009 \n    000A "},
        {LogBuilder().Add(0x33, {0xFFFF}, 0x14FFFFFF),
         "\n2020-13-17 08:40:30 MsgType=33 MsgStart=ee\n    FFFF "},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Listing(c.log), c.text);
    // The last message runs to the end of the log, without a zero behind it.
    LogBuilder full = LogBuilder().Text("one").Text("last");
    full.log.pop_back();
    EXPECT_EQ(Listing(full), head + "02 Text: 'one'" + head + "02 Text: 'last'");
    ASSERT_EQ(DLLD_SaveHexLogFe("a.hex", LogBuilder().Add(1, {9}).Text("ab").Finish()), 0);
    EXPECT_EQ(ReadFileText("a.hex"), head + "02 MsgStart=ee\n    6261 ");
    std::string junk;
    const DLLD_Log log = LogBuilder().Add(1, {}).Finish();
    DLLD_FPrintMsgCts({log.data() + 8, 3}, &junk);
    EXPECT_EQ(junk, "JUNK");
}

TEST_F(Logger, DescribedRecords)
{
    const struct {
        const char *text;
        std::vector<uint16_t> content;
        const char *items;
    } cases[] = {
        {"Drive", {}, "Drive"},
        {"D;a:i1;b:u1;c:i2;d:u2",
         {0xFE80, 0x8000, 0xFFFF},
         "D\n\ta = -128\n\tb = 254\n\tc = -32768\n\td = 65535"},
        {"D;a:i4;b:u4;c:x4;d:x1",
         {0, 0x8000, 0xFFFF, 0xFFFF, 0xBEEF, 0xDEAD, 0x0F},
         "D\n\ta = -2147483648\n\tb = 4294967295\n\tc = 3735928559(DEADBEEFh)\n\td = 15(Fh)"},
        {"D;f:f4 A", {0, 0xC120}, "D\n\tf = -10 A"},
        {"D;a:i2/10 Hz;b:i2*0.5;c:f4*100 %",
         {0xFF9C, 7, 0, 0x3F00},
         "D\n\ta = -10 Hz\n\tb = 3.5\n\tc = 50 %"},
        // A byte alone takes its word; filler is not shown.
        {"D;a:u1;b:u2;:u1;c:u1;:u2;d:u1",
         {0x5501, 2, 0x0304, 9, 0x6606},
         "D\n\ta = 1\n\tb = 2\n\tc = 3\n\td = 6"},
        {"D;s:i2{off,run,-1=lost,5=a b}", {1}, "D\n\ts = 1 run"},
        {"D;s:i2{off,run,-1=lost,5=a b,last}", {0xFFFF}, "D\n\ts = -1 lost"},
        {"D;s:i2{5=a b,last}", {6}, "D\n\ts = 6 last"},
        {"D;s:u1{off} x", {2}, "D\n\ts = 2 x"},
        {"D;b:u2(rdy,run,4-6=mode,15=err)", {0x80B1}, "D\n\tb = 32945(80B1h) rdy mode=3 err"},
        {"D;b:u4(0-31=all)", {1, 0x8000}, "D\n\tb = 2147483649(80000001h) all=2147483649"},
        // A message that ends before its record, and one that goes on behind it.
        {"D;a:u2;b:u4;c:u1", {1, 2}, "D\n\ta = 1\n\tb = ???\n\tc = ???"},
        {"D;a:u1", {0x0201, 3}, "D\n\ta = 1\n    0003 "},
        {"D;a.b/c:u2", {4}, "D\n\ta.b/c = 4"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Describe(c.text, c.content), c.items) << c.text;
    // No descriptions; "!" marks where they stop being one.
    for (std::string text :
         {"!", "D;!", "D;a!", "D;a:!u3", "D;a:u2!x", "D;a:u2;b:!", "D;a:u2*!", "D;a:u2/0!",
          "D;a:u2{off!", "D;a:u2(off!}", "D;a:u1(8=!x)", "D;a:u1(5-3=!x)", "D;a:i2!(x)",
          "D;a:f4!{x}", "D;a:u2{99999999999!=x}", "D;!\ta:u2", "D!:u2"}) {
        const size_t at = text.find('!');
        text.erase(at, 1);
        EXPECT_EQ(Describe(text, {}), "wrong at " + std::to_string(at + 1)) << text;
    }
    EXPECT_EQ(Describe(std::string(127, 'a'), {}), "wrong at 1");
}

TEST_F(Logger, TextsOfTheTarget)
{
    const struct {
        std::string bytes;
        int result;
        const char *text;
    } cases[] = {{{"a\0b\0\0\0c\0", 8}, 0, "ab"},
                 {{"abc\0de", 6}, 0, "abc"},
                 {{"ab\0\0", 4}, 0, "ab"},
                 {{"\0\0a\0", 4}, 0, ""},
                 {{"a\0b\0", 4}, -1, "ab"},
                 {"ab", -1, "ab"},
                 {"", -1, ""}};
    for (const auto &c : cases) {
        std::string text;
        const auto *bytes = reinterpret_cast<const uint8_t *>(c.bytes.data());
        EXPECT_EQ(DLLD_ReduceStr(bytes, c.bytes.size(), &text), c.result) << c.text;
        EXPECT_EQ(text, c.text);
    }
}

TEST_F(Logger, RecordTable)
{
    EXPECT_EQ(DLLD_SetRecId(255, 1, "D"), -1);
    EXPECT_EQ(DLLD_SetRecId(-1, 1, "D"), -1);
    EXPECT_EQ(DLLD_nDimARecId, 0);
    EXPECT_EQ(DLLD_SetRecId(0, 0x20, "One;a:u1"), 0);
    EXPECT_EQ(DLLD_SetRecId(1, 0x20, "Second;a:u2"), 0); // the first entry counts
    EXPECT_EQ(DLLD_SetRecId(2, 0x21, "Two;b:u2"), 0);
    EXPECT_EQ(DLLD_SetRecId(3, 0x20, ";c:u1;d:u2"), 0); // goes on behind a
    EXPECT_EQ(DLLD_SetRecId(4, 0x21, ";c:u9"), -1);     // and spoils what it continues
    EXPECT_EQ(DLLD_SetRecId(5, 0x22, ""), -1);
    EXPECT_EQ(DLLD_SetRecId(6, 0x120, "Far;a:u2"), 0);      // no message has such a type
    EXPECT_EQ(DLLD_SetRecId(7, DLLD_TEXT, "Text;a:u2"), 0); // texts stay texts
    EXPECT_EQ(DLLD_nDimARecId, 8);
    EXPECT_EQ(DLLD_FindRecord(0x21), nullptr);
    EXPECT_EQ(DLLD_FindRecord(0x22), nullptr);
    EXPECT_EQ(DLLD_FindRecord(0x23), nullptr);
    const std::string head = HEAD;
    EXPECT_EQ(Listing(LogBuilder().Add(0x20, {0x0201, 3}).Add(0x21, {7}).Text("ab")),
              head + "20 One\n\ta = 1\n\tc = 2\n\td = 3" + head + "21 MsgStart=ee\n    0007 " +
                  head + "02 Text: 'ab'");
    DLLD_ClearRecIds();
    EXPECT_EQ(DLLD_FindRecord(0x20), nullptr);
}

TEST_F(Logger, RawFilesComeBackOrAreRefused)
{
    const DLLD_Log log = LogBuilder().Text("x").Add(0x20, {0}).Finish(50, 0xABCD);
    ASSERT_EQ(DLLD_SaveBinLogFe("a.bin", log), 0);
    DLLD_Log read;
    ASSERT_EQ(DLLD_ReadBinLogFe("a.bin", &read), 0);
    EXPECT_EQ(read, log);
    const std::string good = ReadFileText("a.bin");
    EXPECT_EQ(good.substr(8, 6), "LOGOS:");
    const std::string bad[] = {"",
                               good.substr(0, 16),
                               good.substr(0, 15),
                               good + "x",
                               good.substr(0, 9) + "o" + good.substr(10),
                               std::string(2 * 524288 + 2, '\0')};
    for (const std::string &bytes : bad) {
        WriteFileText("bad.bin", bytes);
        EXPECT_EQ(DLLD_ReadBinLogFe("bad.bin", &read), DLLD_ERR_HEADER) << bytes.size();
        EXPECT_EQ(read, log);
    }
    EXPECT_EQ(DLLD_ReadBinLogFe("none.bin", &read), DLLD_ERR_OPEN);
    EXPECT_EQ(DLLD_ReadBinLogFe(".", &read), DLLD_ERR_FILE);
    DLLD_Log damaged = log;
    damaged[5]++;
    EXPECT_EQ(DLLD_SaveBinLogFe("a.bin", damaged), DLLD_ERR_HEADER);
    EXPECT_EQ(DLLD_SaveStdLogFe("a.slog", damaged), -1);
    EXPECT_EQ(DLLD_SaveBinLogFe("none/a.bin", log), DLLD_ERR_OPEN);
    EXPECT_EQ(DLLD_SaveStdLogFe("none/a.slog", log), -1);
    EXPECT_EQ(ReadFileText("a.bin"), good);
    EXPECT_FALSE(std::filesystem::exists("a.slog"));
    // The largest log there is.
    const DLLD_Log large = LogBuilder().Text("x").Finish(524288);
    ASSERT_EQ(DLLD_SaveBinLogFe("large.bin", large), 0);
    ASSERT_EQ(DLLD_ReadBinLogFe("large.bin", &read), 0);
    EXPECT_EQ(read, large);
}
