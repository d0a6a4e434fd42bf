// The Modbus master: bytes of each request, the check of each answer, memory through the
// reserved registers, reasons in words and the trace.
#include "comm/modbus_listen.h"
#include "support/modbus_fixture.h"
#include "support/modbus_line.h"

#include <numeric>

namespace {

struct ModbusLineTest : ModbusTest {
    ModbusLineTest()
    {
        scripted = ScriptedLine();
        MBM_line = &SCRIPTED_LINE;
        MBM_NoteOpened();
        MBM_isOpen = 1;
        UCM_recS.protocol = 2;
        UCM_recS.opened = 1;
    }
    ~ModbusLineTest() override
    {
        MBM_isOpen = 0;
        UCM_recS.opened = 0;
        MBM_line = &MBM_SERIAL_LINE;
    }
};

uint16_t registersOut[MBM_READ_MAX];

int Ask(int function, int slave, int start, int quantity, const uint16_t *values = nullptr)
{
    const MBM_Part from = {static_cast<uint16_t>(start), static_cast<uint16_t>(quantity),
                           registersOut};
    const MBM_Part to = {static_cast<uint16_t>(start), static_cast<uint16_t>(quantity),
                         const_cast<uint16_t *>(values)};
    return MBM_MasterFN(function, slave, values ? nullptr : &from, values ? &to : nullptr);
}

TEST_F(ModbusLineTest, BytesOfEachRequest)
{
    const uint16_t values[] = {0x0102, 0xFFEE};
    MBM_SendFN1(1, 0x13, 0x25);
    MBM_SendFN2(2, 0xC4, 2000);
    MBM_SendFN3(1, 0, 10);
    MBM_SendFN4(4, 0xFFFF, 125);
    MBM_SendFN6(1, 1, 3);
    MBM_SendFN16(250, 0xFFFD, 2, values);
    MBM_SendFN23(5, 0xFF00, 125, 0xFFFB, 2, values);
    const std::string expected = FromHex("01 01 0013 0025*") + FromHex("02 02 00C4 07D0*") +
                                 FromHex("01 03 0000 000A C5CD") + // as printed in the books
                                 FromHex("04 04 FFFF 007D*") + FromHex("01 06 0001 0003 980B") +
                                 FromHex("FA 10 FFFD 0002 04 0102 FFEE*") +
                                 FromHex("05 17 FF00 007D FFFB 0002 04 0102 FFEE*");
    EXPECT_EQ(scripted.sent, expected);
    const std::vector<uint16_t> many(MBM_WRITE_MAX, 0x5AA5);
    scripted.sent.clear();
    EXPECT_EQ(MBM_SendFN16(1, 0, MBM_WRITE_MAX, many.data()), 0);
    EXPECT_EQ(scripted.sent.size(), 7u + 246 + 2);
    EXPECT_EQ(MBM_cnLastSend, 255);
}

TEST_F(ModbusLineTest, ARequestThatGoesOutInPartIsNotSent)
{
    ASSERT_EQ(MBM_SendFN3(1, 0, 1), 0); // the line is proven by it
    MBM_Line choked = SCRIPTED_LINE;
    choked.write = [](const void *, size_t count) { return static_cast<int>(count) - 1; };
    MBM_line = &choked;
    EXPECT_EQ(MBM_SendFN3(1, 0, 1), -1);
    EXPECT_EQ(MBM_nFault, MBM_FAULT_SEND);
    EXPECT_EQ(MBM_cnLastSend, 0);
}

// A line that never falls silent proves nothing, and what it said is nobody's answer later.
TEST_F(ModbusLineTest, ChatterIsForgotten)
{
    static const std::string sound = FromHex("01 03 02 1234*"),
                             request = FromHex("01 03 0010 0001*");
    MBM_Line chatter = SCRIPTED_LINE;
    chatter.readSome = [](void *buffer, size_t, unsigned) {
        return static_cast<int>(sound.copy(static_cast<char *>(buffer), sound.size()));
    };
    MBM_line = &chatter;
    EXPECT_EQ(MBM_ProveBySilence(1), MBM_FAULT_STEP);
    MBM_line = &SCRIPTED_LINE;
    std::vector<uint8_t> answer;
    EXPECT_EQ(MBM_Listen(
                  reinterpret_cast<const uint8_t *>(request.data()), request.size(),
                  [](const uint8_t *) { return true; }, &answer),
              MBM_EX_SILENT);
}

TEST_F(ModbusLineTest, NothingIsSentForAQuantityOutOfRange)
{
    const uint16_t values[MBM_READ_MAX + 1] = {};
    for (const int bad : {-1, 0, 2001, 65536 + 1}) {
        EXPECT_EQ(MBM_SendFN1(1, 0, bad), -1);
        EXPECT_EQ(MBM_SendFN2(1, 0, bad), -1);
    }
    for (const int bad : {0, 126, 256 + 1}) {
        EXPECT_EQ(MBM_SendFN3(1, 0, bad), -1);
        EXPECT_EQ(MBM_SendFN4(1, 0, bad), -1);
        EXPECT_EQ(MBM_SendFN16(1, 0, bad, values), -1);
        EXPECT_EQ(MBM_SendFN23(1, 0, bad, 0, 2, values), -1);
    }
    EXPECT_EQ(MBM_SendFN16(1, 0, 124, values), -1);
    EXPECT_EQ(MBM_SendFN23(1, 0, 1, 0, 122, values), -1);
    EXPECT_EQ(MBM_SendFN23(1, 0, 1, 0, 0, values), -1);
    EXPECT_EQ(MBM_nFnCode, -1);
    EXPECT_EQ(MBM_SendFrame(998), -1);
    EXPECT_EQ(MBM_nFault, MBM_FAULT_ARGUMENT);
    // A missing part, and functions the master does not know.
    EXPECT_EQ(MBM_MasterFN(3, 1, nullptr, nullptr), -1);
    EXPECT_EQ(Ask(MBM_FN_READ_WRITE, 1, 0, 1), -1);
    EXPECT_EQ(Ask(5, 1, 0, 1), -1);
    EXPECT_EQ(scripted.sent, "");
    MBM_isOpen = 0;
    EXPECT_EQ(MBM_SendFN3(1, 0, 1), -1);
    EXPECT_EQ(MBM_nFault, MBM_FAULT_CLOSED);
    EXPECT_EQ(MBM_ReceiveFN(), -1);
    EXPECT_EQ(scripted.sent, "");
}

// Requests go to slave 1 from 0x10 on; of registers three, of bits twelve are wanted.
TEST_F(ModbusLineTest, EachAnswerGetsItsResultAndReason)
{
    const struct {
        int function;
        const char *answer;
        int result, reason, fault;
        int timeOuts; // reads that ended with one
    } cases[] = {
        {3, "01 03 06 0001 0203 FFFE*", 3, 0, 0, 0},
        {4, "01 04 06 0001 0203 FFFE*", 3, 0, 0, 0},
        {1, "01 01 02 CD 0B*", 12, 0, 0, 0},
        {2, "01 02 02 CD 0B*", 12, 0, 0, 0},
        {6, "01 06 0010 0009*", 0, 0, 0, 0},
        {6, "01 06 0011 0008*", 0, 0, 0, 0}, // what is confirmed is not compared
        {16, "01 10 0010 0003*", 0, 0, 0, 0},
        {16, "01 10 0011 0003*", -1, 0xFB, 0xFB, 0},
        {16, "01 10 0010 0103*", -1, 0xFB, 0xFB, 0},
        {16, "01 10 0010 0002*", -1, 0xFB, 0xFB, 0},
        {16, "01 10 0010 0003 0000", -1, 0xFB, 0xFB, 0},
        {3, "", -1, 0xFF, 0xFF, 1},
        {3, "01 03 06 00", -1, 0xFF, MBM_FAULT_CUT, 1},
        {3, "02 03 06 0001 0203 FFFE*", -1, 0xFE, 0xFE, 1},
        {3, "01 04 06 0001 0203 FFFE*", -1, 0xFE, 0xFE, 1},
        {3, "01 84 02*", -1, 0xFE, 0xFE, 1},
        {3, "01 83 02*", -1, 2, 0x102, 0},
        {23, "01 97 FA*", -1, 0xFA, 0x1FA, 0},
        {3, "01 83 00*", -1, 0, 0x100, 0}, // nonsense, but no good answer
        {3, "01 83 02 0000", -1, 0xFD, 0xFD, 1},
        {3, "01 03 04 0001 0203*", -1, 0xFC, 0xFC, 1},
        {3, "01 03 08 0001 0203 0405 0607*", -1, 0xFC, 0xFC, 1},
        {1, "01 01 01 CD*", -1, 0xFC, 0xFC, 1},
        {3, "01 03 06 0001 0203 FFFF 0000", -1, 0xFB, 0xFB, 0},
        {3, "01 03 06 0001 0203", -1, 0xFB, 0xFB, 1},
        {1, "01 01 02 CD 0B 0000", -1, 0xFB, 0xFB, 0},
        {3, "01 03 0010 0003*", -1, 0xFC, MBM_FAULT_ECHO, 1},
    };
    const uint16_t values[] = {9, 9, 9};
    for (const auto &item : cases) {
        scripted = ScriptedLine();
        MBM_NoteOpened();
        scripted.answers = {FromHex(item.answer)};
        MBM_byExCode = 0;
        std::fill_n(registersOut, 4, uint16_t{0xAAAA});
        const bool isBits = item.function < 3;
        int result = 0;
        if (item.function == 23) {
            const MBM_Part from = {0x10, 3, registersOut};
            uint16_t zero[2] = {};
            const MBM_Part to = {0x10, 2, zero};
            result = MBM_MasterFN(23, 1, &from, &to);
        } else {
            result =
                Ask(item.function, 1, 0x10, isBits ? 12 : 3, item.function > 4 ? values : nullptr);
        }
        EXPECT_EQ(result, item.result) << item.answer;
        EXPECT_EQ(MBM_byExCode, item.reason) << item.answer;
        EXPECT_EQ(MBM_nFault, item.fault) << item.answer;
        EXPECT_EQ(scripted.reads, item.timeOuts) << item.answer;
        EXPECT_EQ(scripted.input, "") << item.answer;
        const uint16_t first = item.result == 3 ? 0x0001 : item.result == 12 ? 0xCD0B : 0xAAAA;
        const uint16_t third = item.result == 3 ? 0xFFFE : 0xAAAA;
        EXPECT_EQ(registersOut[0], first) << item.answer;
        EXPECT_EQ(registersOut[2], third) << item.answer;
        EXPECT_EQ(registersOut[3], 0xAAAA) << item.answer;
    }
}

TEST_F(ModbusLineTest, AnEchoIsReadBeforeTheAnswerAndOnlyThen)
{
    const std::string request = FromHex("01 03 0010 0003*"), answer = "01 03 06 0001 0002 0003*";
    MBM_isEcho = 1;
    const struct {
        std::string line;
        int result, fault, timeOuts;
    } cases[] = {
        {request + FromHex(answer), 3, 0, 0},
        {FromHex(answer), -1, MBM_FAULT_NO_ECHO, 1},
        {request.substr(0, 5), -1, MBM_FAULT_NO_ECHO, 1},
        {request, -1, MBM_EX_SILENT, 1},
        {"", -1, MBM_EX_SILENT, 1}, // one time-out and not two
    };
    for (const auto &item : cases) {
        scripted = ScriptedLine();
        MBM_NoteOpened();
        scripted.answers = {item.line};
        EXPECT_EQ(Ask(MBM_FN_HOLDING, 1, 0x10, 3), item.result);
        EXPECT_EQ(MBM_nFault, item.fault);
        EXPECT_EQ(scripted.reads, item.timeOuts);
        EXPECT_EQ(scripted.input, "");
    }
}

TEST_F(ModbusLineTest, MemoryIsCarriedThroughReservedRegisters)
{
    uint8_t bytes[300];
    std::iota(bytes, bytes + 300, uint8_t{1});
    scripted.answers = {FromHex("01 10 FFFB 0004*"), FromHex("01 10 FFFD 006E*"),
                        FromHex("01 10 FFFD 002C*")};
    EXPECT_EQ(UCM_Write(1, 0xABCDEF, 3, bytes), 0);
    EXPECT_EQ(scripted.sent, FromHex("01 10 FFFB 0004 08 00AB CDEF 0201 0003*"));
    scripted.sent.clear();
    EXPECT_EQ(UCM_Write(1, 0x8000, 300, bytes), 0);
    EXPECT_EQ(scripted.sent.size(), 7u + 220 + 2 + 7 + 88 + 2);
    EXPECT_EQ(scripted.sent.substr(0, 13), FromHex("01 10 FFFD 006E DC 0000 8000 0201"));
    EXPECT_EQ(scripted.sent.substr(229, 13), FromHex("01 10 FFFD 002C 58 0000 80D8 DAD9"));

    // A byte of an odd count alone in its register; its neighbour is not touched.
    scripted.sent.clear();
    scripted.answers = {FromHex("07 17 02 7755*"), FromHex("07 17 04 2211 4433*")};
    uint8_t got[6] = {0, 0, 0, 0, 0, 0xEE};
    EXPECT_GE(UCM_Read(7, 0x100, 1, got), 0);
    EXPECT_EQ(scripted.sent, FromHex("07 17 FF00 0001 FFFB 0002 04 0000 0100*"));
    EXPECT_EQ(got[0], 0x55);
    EXPECT_EQ(got[1], 0);
    EXPECT_GE(UCM_Read(7, 0x101, 4, got + 1), 0);
    EXPECT_EQ(memcmp(got, "\x55\x11\x22\x33\x44\xEE", 6), 0);
}

TEST_F(ModbusLineTest, OneBlockAStep)
{
    uint8_t bytes[433] = {};
    uint32_t address = 0x100, count = 433;
    uint8_t *to = bytes;
    const std::string block = FromHex("01 17 D8" + std::string(432, '1') + "*");
    scripted.answers = {block, block, FromHex("01 17 02 2200*")};
    EXPECT_EQ(UCM_ReadBg(1, &address, &count, &to), 0);
    EXPECT_EQ(UCM_ReadBg(1, &address, &count, &to), 0);
    EXPECT_EQ(UCM_ReadBg(1, &address, &count, &to), 1);
    EXPECT_EQ(address, 0x100u + 433);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(to, bytes + 433);
    // Even a block that fails is passed, and a full last block is the end.
    const uint8_t *from = bytes;
    address = 0, count = 432;
    UCM_recS.tries = 2;
    EXPECT_EQ(UCM_WriteBg(1, &address, &count, &from), -1);
    EXPECT_EQ(count, 216u);
    scripted.answers = {FromHex("01 10 FFFD 006E*")};
    EXPECT_EQ(UCM_WriteBg(1, &address, &count, &from), 1);
    EXPECT_EQ(address, 432u);
    EXPECT_EQ(UCM_WriteBlkMBM(1, 0, 0, bytes), -20);
    EXPECT_EQ(UCM_WriteBlkMBM(1, 0, 247, bytes), -20);
    EXPECT_EQ(UCM_recS.errors[20], 0);
}

TEST_F(ModbusLineTest, CommandsOfTheOtherProtocolAreEmulated)
{
    uint8_t bytes[2] = {0x11, 0x22};
    scripted.answers = {FromHex("01 10 FFFD 0003*"), FromHex("01 10 FFFB 0003*"),
                        FromHex("01 17 04 4433 6655*")};
    EXPECT_EQ(UCM_EmuCom166Msg(1, 4, 0x8000, 0x1234, nullptr), 1);
    EXPECT_EQ(UCM_EmuCom166Msg(1, 8, 0x8000, 1, bytes), 1);
    EXPECT_EQ(scripted.sent, FromHex("01 10 FFFD 0003 06 0000 8000 1234*") +
                                 FromHex("01 10 FFFB 0003 06 0000 8000 0011*"));
    uint8_t got[4];
    EXPECT_EQ(UCM_EmuCom166Msg(1, 0, 0x8000, 4, got), 1);
    EXPECT_EQ(memcmp(got, "\x33\x44\x55\x66", 4), 0);
    scripted.sent.clear();
    for (const int command : {1, 2, 3, 5, 15})
        EXPECT_EQ(UCM_EmuCom166Msg(1, command, 0, 0, bytes), 0);
    for (const int slave : {0, 251, -1}) {
        EXPECT_EQ(UCM_EmuCom166Msg(slave, 4, 0, 0, nullptr), 0);
        EXPECT_EQ(UCM_LastErrorText(), "bad slave address (1 to 250)");
        EXPECT_EQ(UCM_Read(slave, 0, 1, got), -20);
        EXPECT_EQ(UCM_Write(slave, 0, 1, got), -20);
    }
    EXPECT_EQ(UCM_EmuCom166MsgNA(1, 4, 0, 0, nullptr), -20);
    EXPECT_EQ(scripted.sent, "");
}

TEST_F(ModbusLineTest, ExceptionEndsATransferWithItsReasonAndSilenceCostsEachTryOnce)
{
    uint8_t bytes[433];
    UCM_ResetStatistics();
    const std::string refusal = FromHex("01 97 02*");
    scripted.answers = {FromHex("01 17 D8" + std::string(432, '1') + "*"), refusal, refusal,
                        refusal};
    EXPECT_EQ(UCM_Read(1, 0x100, 433, bytes), -1);
    EXPECT_EQ(UCM_LastErrorText(), "exception 2 (no such address)");
    EXPECT_EQ(scripted.sent.size(), 4u * 17);
    EXPECT_EQ(UCM_recS.errors[1], 3);
    EXPECT_EQ(scripted.reads, 0);
    scripted.nowMs = 0;
    EXPECT_EQ(UCM_Read(2, 0x100, 1, bytes), -1);
    EXPECT_EQ(UCM_LastErrorText(), "no answer");
    // Tries, each with one time-out.
    EXPECT_EQ(static_cast<uint32_t>(scripted.reads) + scripted.nowMs / MBM_nTimeoutMs, 3u);
    UCM_Statistics seen;
    UCM_GetStatistics(&seen);
    EXPECT_EQ(seen.answered, 1u);
    EXPECT_EQ(seen.timeouts, 3u);
    EXPECT_EQ(seen.damaged, 3u);
    EXPECT_EQ(seen.repeated, 6u);
    EXPECT_EQ(FAIL_CountOf("exception 2"), 3u);
}

TEST_F(ModbusLineTest, TraceDecodesFrames)
{
    const struct {
        void (*ask)();
        const char *answer, *request, *decoded;
    } cases[] = {
        {[] { Ask(3, 9, 100, 2); }, "09 03 04 0001 0002*",
         "slave 9: read holding registers (3), 2 from 0x0064, CRC good",
         "slave 9, 4 bytes, CRC good"},
        {[] { Ask(1, 9, 100, 2); }, "09 01 01 03 0000",
         "slave 9: read coils (1), 2 from 0x0064, CRC good", "slave 9, 1 bytes, CRC bad"},
        {[] {
             const uint16_t value = 0xAB;
             Ask(6, 9, 100, 1, &value);
         },
         "09 06 0064 00AB*", "slave 9: write one register (6), 171 into 0x0064, CRC good",
         "slave 9, confirmed, CRC good"},
        {[] {
             uint8_t bytes[5] = {};
             UCM_ReadBlkMBM(9, 0x123456, 5, bytes);
         },
         "09 97 04*",
         "slave 9: read and write registers (23), 3 from 0xFF00, memory read of 5 bytes at "
         "0x123456, CRC good",
         "slave 9, exception 4, CRC good"},
        {[] {
             const uint8_t bytes[4] = {};
             UCM_WriteBlkMBM(9, 0x8000, 4, bytes);
         },
         "09 10 FFFD 0004*",
         "slave 9: write registers (16), 4 from 0xFFFD, memory write of 4 bytes at 0x008000, "
         "CRC good",
         "slave 9, confirmed, CRC good"},
    };
    TRC_Enable(20);
    UCM_recS.tries = 1;
    for (const auto &item : cases) {
        scripted.answers = {FromHex(item.answer)};
        TRC_Clear();
        item.ask();
        ASSERT_GE(TRC_Count(), 1u);
        const TRC_Record &record = *TRC_Get(TRC_Count() - 1);
        EXPECT_EQ(record.request.substr(0, record.request.find(", gap")), item.request);
        EXPECT_EQ(record.answer.substr(0, record.answer.find(", gap")), item.decoded);
        EXPECT_TRUE(Has(record.answer, " characters"));
        EXPECT_EQ(record.received.count, FromHex(item.answer).size());
        EXPECT_EQ(record.result, MBM_ErrorText(MBM_nFault));
    }
}

// --- against the simulated slave --------------------------------------------------------------

TEST_F(ModbusTest, OpeningReportsWhatIsWrongAndStoppingUnplugs)
{
    EXPECT_EQ(MBM_Open(256, 9600, MBM_PARITY_EVEN), MBM_ERR_PORT);
    EXPECT_EQ(MBM_Open(MODBUS_PORT, 9600, MBM_PARITY_EVEN), MBM_ERR_OPEN);
    EXPECT_EQ(UCM_Open(2, MODBUS_PORT, 9600), -22);
    EXPECT_EQ(UCM_recS.errors[22], 1);
    EXPECT_EQ(UCM_LastErrorText(), "port is not available");
    plug();
    EXPECT_EQ(MBM_Open(MODBUS_PORT, 12345, MBM_PARITY_ODD), MBM_ERR_SET);
    EXPECT_EQ(MBM_isOpen, 0);
    for (int i = 0; i < 3; i++) // parity is asked for every time
        EXPECT_EQ(UCM_Open(2, MODBUS_PORT, MODBUS_BAUD), 0);
    EXPECT_EQ(UCM_UseWin32(0), -20);
    EXPECT_FALSE(UCM_IsGone());
    unplug();
    EXPECT_TRUE(UCM_IsGone());
    uint8_t byte;
    EXPECT_EQ(UCM_Read(1, 0, 1, &byte), -1);
    EXPECT_EQ(UCM_LastErrorText(), "port is gone");
}

// The answer that proves is one that was wanted anyway, and its bytes are those of the place.
TEST_F(ModbusTest, AReadThatProvesCostsNoProbe)
{
    plug();
    uint8_t held[300], got[300];
    for (size_t i = 0; i < sizeof held; ++i)
        held[i] = static_cast<uint8_t>(i * 7 + i / 256);
    SIM_Poke(target, 1, 0x20001, held, sizeof held);
    ASSERT_EQ(UCM_ReadProven(1, 0x20001, 2, got), 0);
    const struct {
        uint32_t size;
        uint64_t requests; // with the proof
    } cases[] = {{300, 2}, {216, 2}, {40, 2}, {2, 2}};
    for (const auto &c : cases) {
        const uint64_t before = SIM_GetCounters(target).requests;
        EXPECT_EQ(UCM_ReadProving(1, 0x20001, c.size, got), c.size > 2 ? 1 : 0);
        EXPECT_EQ(UCM_Prove(), UCM_PROVEN);
        EXPECT_TRUE(std::equal(got, got + c.size, held)) << c.size;
        EXPECT_EQ(SIM_GetCounters(target).requests - before, c.requests) << c.size;
    }
}

} // namespace
