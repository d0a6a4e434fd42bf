// Frames of the mr166 protocol: check value, building, and the order of the answer check.
#include "comm/mr166_frame.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

// The rule itself, one bit at a time.
uint16_t CheckValueByBits(const std::string &bytes)
{
    unsigned value = 1;
    for (const char byte : bytes) {
        for (int bit = 0; bit < 8; ++bit) {
            const bool isOut = (value & 0x8000) != 0;
            value = ((value << 1) & 0xFFFF) | ((static_cast<unsigned char>(byte) >> bit) & 1);
            value ^= isOut ? 0x1083 : 0;
        }
    }
    return static_cast<uint16_t>(value);
}

std::string WithTail(const std::string &head)
{
    char tail[5];
    char *cursor = tail;
    wordToHex(CheckValueByBits(head), &cursor);
    tail[4] = 3;
    return head + std::string(tail, 5);
}

std::string Ans(const std::string &digits)
{
    return WithTail('\x06' + digits);
}

int Check(const std::string &answer, int station, int command)
{
    std::memcpy(Mr166_abyRcv, answer.data(), answer.size());
    cbRcv = static_cast<uint16_t>(answer.size());
    return chkAnsFrm(station, command);
}

std::string Sent()
{
    return std::string(Mr166_abySnd, cbSnd);
}

TEST(Frame, CheckValueByTableIsTheRuleByBits)
{
    EXPECT_EQ(getCRC16("", 0), 0x0001);
    EXPECT_EQ(getCRC16("\x80", 1), 0x0101);
    std::string bytes;
    unsigned random = 1;
    for (int i = 0; i < 3000; ++i) {
        random = random * 1103515245u + 12345u;
        bytes += static_cast<char>(random >> 16);
        ASSERT_EQ(getCRC16(bytes.data(), static_cast<uint16_t>(bytes.size())),
                  CheckValueByBits(bytes))
            << i;
    }
}

TEST(Frame, FieldsLeastSignificantByteFirst)
{
    char text[13] = {};
    char *cursor = text;
    wordToHex(0x1234, &cursor);
    addrToHex(0x0ABCDE, &cursor);
    byteToHex(0x0F, &cursor);
    EXPECT_STREQ(text, "3412DEBC0A0F");
    EXPECT_EQ(cursor, text + 12);
    EXPECT_EQ(hexToWord(text), 0x1234);
    for (int value = 0; value < 256; ++value) {
        cursor = text;
        byteToHex(static_cast<uint8_t>(value), &cursor);
        EXPECT_EQ(hexToByte(text), value);
    }
    EXPECT_EQ(chkHexArea(16, "0123456789ABCDEF"), 1);
    for (const char *bad : {"/", ":", "@", "G", "a", "f", "\xC1"})
        EXPECT_EQ(chkHexArea(1, bad), 0) << bad;
}

TEST(Frame, ShortRequest)
{
    makeSFrm(1, 0, 0x000100, 64);
    EXPECT_EQ(Sent(), WithTail('\x02' + std::string("100001004000")));
    makeSFrm(15, 4, 0xFFFFFE, 0xABCD);
    EXPECT_EQ(Sent(), WithTail('\x02' + std::string("F4FEFFFFCDAB")));
    EXPECT_EQ(cbSnd, 18);
}

TEST(Frame, LongRequestIsPadded)
{
    std::string padding;
    for (int i = 0; i < 15; ++i)
        padding += "A5";
    ASSERT_EQ(makeLFrm(2, 8, 0x123456, 1, "\x7E"), 1);
    EXPECT_EQ(Sent(), WithTail('\x1A' + ("28563412017E" + padding)));
    ASSERT_EQ(makeLFrm(2, 8, 0, 16, "0123456789ABCDEF"), 1);
    EXPECT_EQ(Sent(), WithTail('\x1A' + std::string("280000001030313233343536373839414243444546")));
    EXPECT_EQ(cbSnd, 48);
    EXPECT_EQ(makeLFrm(2, 8, 0, 0, "x"), 0);
    EXPECT_EQ(makeLFrm(2, 8, 0, 17, "0123456789ABCDEFG"), 0);
    EXPECT_EQ(makeLFrm(2, 8, 0, 1, nullptr), 0);
}

TEST(Frame, AnswerCheckByItsFirstFailingTest)
{
    const std::string good = Ans("10021234");
    std::string badCheck = good, badHex = good, badEnd = good, badStart = good;
    badCheck[5] = '2';
    badHex[6] = 'a';
    badEnd.back() = 4;
    badStart[0] = 2;
    std::string everything = badHex;
    everything[0] = 2;
    everything.back() = 4;
    const struct {
        const char *what;
        std::string answer;
        int station, command, result;
    } cases[] = {{"sound", good, 1, 0, 2},
                 {"no data", Ans("1000"), 1, 0, 0},
                 {"nine characters", good.substr(0, 9), 1, 0, -1},
                 {"start before end and digits", everything, 1, 0, -2},
                 {"start", badStart, 1, 0, -2},
                 {"end", badEnd, 1, 0, -3},
                 {"lower case", badHex, 1, 0, -4},
                 {"check value before station", badCheck, 2, 0, -5},
                 {"station before command", good, 2, 1, -6},
                 {"command", good, 1, 1, -7},
                 {"least error code", Ans("1041"), 1, 0, -65},
                 {"error code before length", Ans("10FF1234"), 1, 0, -255},
                 {"count above the data", Ans("10031234"), 1, 0, -8},
                 {"count below the data", Ans("10011234"), 1, 0, -8},
                 {"64 announced and missing", Ans("1040"), 1, 0, -8},
                 {"odd digit", Ans("100212345"), 1, 0, -8}};
    for (const auto &item : cases)
        EXPECT_EQ(Check(item.answer, item.station, item.command), item.result) << item.what;
    ASSERT_EQ(Check(good, 1, 0), 2);
    EXPECT_EQ(Mr166_abyRcvData[0], 0x12);
    EXPECT_EQ(Mr166_abyRcvData[1], 0x34);
}

} // namespace
