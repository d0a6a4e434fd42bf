// What the user sees of a value: formats, list lines, status, memory box and frequency
// meter over sweeps on the simulated target; and values written to it.
#include "watch/list/read_item.h"

#include <cmath>
#include <cstring>

#include "support/watch_fixture.h"
#include "watch/list/freq_meter.h"
#include "watch/list/list_view.h"
#include "watch/list/typed_item.h"
#include "watch/value/tms_float.h"
#include "watch/value/value_types.h"
#include "watch/value/write_value.h"
#include "watch/windows/mem_box.h"

namespace {

LItem itemOf(char type, int size, uint64_t value, const char *name = "A")
{
    LItem item;
    item.name = name;
    item.type = type;
    item.size = size;
    item.value = static_cast<uint32_t>(value);
    item.valueHigh = static_cast<uint32_t>(value >> 32);
    return item;
}

uint32_t BitsOf(float number)
{
    uint32_t bits;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

class Refresh : public WatchTest {
protected:
    // Ticks until the next complete sweep is drawn, which takes `ticks` of them.
    void sweep(int ticks)
    {
        for (int i = 0; i < ticks; ++i)
            timerCB(PANEL_MAIN, MAIN_TIMER, EVENT_TIMER_TICK, 0);
    }

    std::string status()
    {
        return UiText(PANEL_MAIN, MAIN_STATUS);
    }

    std::string line(int index)
    {
        return HL_GetLabels(PANEL_MAIN, MAIN_LIST).at(static_cast<size_t>(index));
    }
};

TEST_F(Refresh, ValueTexts)
{
    const struct {
        char type;
        int size;
        uint64_t value;
        const char *text;
    } cases[] = {{'x', 1, 0xFFA, "FAh"},
                 {'x', 2, 0xA, "000Ah"},
                 {'x', 4, 0xABCDEF01, "ABCDEF01h"},
                 {'x', 8, 0xABCDEF0122334455, "ABCDEF0122334455h"},
                 {'u', 1, 0x1FF, "255"},
                 {'u', 2, 7, "    7"},
                 {'u', 4, 0xFFFFFFFF, "4294967295"},
                 {'u', 8, UINT64_MAX, "18446744073709551615"},
                 {'i', 1, 0x80, "-128"},
                 {'i', 1, 0xFF, "  -1"},
                 {'i', 2, 0xFFFF, "    -1"},
                 {'i', 4, 0xFFFFFFFF, "         -1"},
                 {'i', 8, UINT64_MAX, "                   -1"},
                 {'i', 4, 0x80000000, "-2147483648"},
                 {'i', 8, 1ULL << 63, " -9223372036854775808"},
                 {'f', 4, 0x3FC00000, "1.5"},
                 {'f', 4, 0xFF800000, "-inf"},
                 {'f', 4, 0x7FC00000, "nan"},
                 {'f', 4, 0x00000001, "1.4013e-45"},
                 {'b', 1, 0x5C, "0101 1100 b"},
                 {'t', 4, 0xFF000000 + 1501, "01d 01h 01m"},
                 {'f', 2, 1, ""},
                 {'b', 4, 1, ""},
                 {'t', 1, 1, ""},
                 {'u', 3, 1, ""}};
    for (const auto &c : cases) {
        std::string text = "=";
        const int length = FormatLItemVal(&text, itemOf(c.type, c.size, c.value));
        EXPECT_EQ(text, std::string("=") + c.text) << c.type << c.size;
        EXPECT_EQ(length, static_cast<int>(text.size()) - 1);
    }
    std::string text;
    FormatLItemVal(&text, itemOf('f', 4, 0xFF800000, "&A"));
    EXPECT_EQ(text, "-1");
}

TEST_F(Refresh, Rates)
{
    const struct {
        int size;
        uint32_t previous, value;
        uint16_t from, to;
        const char *text;
    } cases[] = {{1, 250, 4, 100, 200, "   100.000 Hz"},
                 {2, 65530, 10, 65500, 464, "    32.000 Hz"},
                 {4, 0xFFFFFFFF, 1, 0, 1000, "     2.000 Hz"},
                 {8, 0, 500, 0, 1000, "     0.000 Hz"},
                 {2, 0, 500, 77, 77, "  -999.000 Hz"}};
    for (const auto &c : cases) {
        LItem item = itemOf('p', c.size, c.value);
        item.previousValue = c.previous;
        item.previousReadTick = c.from;
        item.readTick = c.to;
        std::string text;
        FormatLItemVal(&text, item);
        EXPECT_EQ(text, c.text);
    }
}

TEST_F(Refresh, TmsFloats)
{
    const struct {
        uint32_t ieee, tms;
    } cases[] = {{BitsOf(1.0f), 0x00000000},     {BitsOf(-1.0f), 0xFF800000},
                 {BitsOf(0.0f), 0x80000000},     {BitsOf(-0.0f), 0x80000000},
                 {BitsOf(1.5f), 0x00400000},     {BitsOf(-1.5f), 0x00C00000},
                 {BitsOf(INFINITY), 0x7F7FFFFF}, {0xFF800000, 0x7F7FFFFF},
                 {0x7FC00000, 0x7F7FFFFF},       {0xFFC00000, 0x7F800000}};
    for (const auto &c : cases)
        EXPECT_EQ(IEEE_TMS(c.ieee), c.tms) << std::hex << c.ieee;
    EXPECT_EQ(TMS_IEEE(0x80123456), 0.0);
    EXPECT_EQ(TMS_IEEE(0x7F800000), -INFINITY); // -2 x 2^127 is more than a single holds
    // The value by the format's definition: mantissa 01.f or 10.f times a power of two.
    for (uint32_t bits = 0x82000001; bits > 0x80FFFFFF || bits < 0x7F000000; bits += 0x00345671) {
        const int exponent = static_cast<int8_t>(bits >> 24);
        const double fraction = (bits & 0x7FFFFF) / 8388608.0;
        const double expected = std::ldexp(bits & 0x800000 ? fraction - 2 : fraction + 1, exponent);
        ASSERT_EQ(TMS_IEEE(bits), expected) << std::hex << bits;
        ASSERT_EQ(IEEE_TMS(BitsOf(static_cast<float>(expected))), bits) << std::hex << bits;
    }
}

TEST_F(Refresh, TypesByName)
{
    const struct {
        const char *name;
        const char *before, *after; // type and size; "" = not recognised
    } cases[] = {{"wCount", "i2", "u2"},
                 {"DLLD_wCount", "i2", "u2"},
                 {"abyBuf", "i2", "u1"},
                 {"cnt", "i2", ""},
                 {"c", "u2", "i1"},
                 {"Motor_u4", "i2", "u4"},
                 {"nnPos", "u2", "i4"},
                 {"M1_af4Curve", "i2", "f4"},
                 {"dw_x", "p2", "p4"},
                 {"byMask", "b1", "b1"},
                 {"wMask", "b1", "u2"},
                 {"fRaw", "x4", "f4"},
                 {"aX_wSpeed", "i2", ""},
                 {"Speed", "i2", ""},
                 {"nSpeedw", "u2", "i2"},
                 {"word", "i2", ""},
                 {"", "i2", ""},
                 {"W", "i2", ""},
                 {"Motor_3wSpeed", "i2", ""}};
    for (const auto &c : cases) {
        LItem item = itemOf(c.before[0], c.before[1] - '0', 0);
        EXPECT_EQ(DetectTypeByName(&item, c.name), *c.after != '\0') << c.name;
        EXPECT_EQ(item.type + std::to_string(item.size), *c.after ? c.after : c.before) << c.name;
    }
    EXPECT_EQ(is_id_type("wCount", ""), 0);
}

TEST_F(Refresh, AnotherListBeginsAnotherSweep)
{
    ASSERT_TRUE(connect());
    sweep(1);
    EXPECT_EQ(HL_GetLabels(PANEL_MAIN, MAIN_LIST), std::vector<std::string>{"none"});
    ASSERT_EQ(load("[8000], u1\n[8010], u1\n[8020], u1\n[8030], u1\n"), 0);
    // Another list in the middle of a sweep, or communication off and on: the sweep begins
    // anew, and what had failed in the old one is no failure of the new one.
    for (const bool isReload : {true, false}) {
        sweep(1);
        failWith(0, 70);
        sweep(1);
        EXPECT_EQ(eTMS, -1);
        failWith(0, 0);
        if (isReload) {
            ASSERT_EQ(load("[8000], u1\n[8010], u1\n[8020], u1\n"), 0);
            ResetLItemsDisplay();
        } else {
            VIR2_StopPeriodicASC();
            VIR2_StartPeriodicASC();
            EXPECT_EQ(nErrors, 0);
        }
        for (LItem &item : aLItems)
            item.isValueGood = false;
        sweep(3);
        EXPECT_EQ(status(), "RUN");
        EXPECT_TRUE(aLItems[0].isValueGood && aLItems[1].isValueGood && aLItems[2].isValueGood);
    }
}

TEST_F(Refresh, ListLines)
{
    ASSERT_TRUE(connect());
    poke(0x2001, 200, 1);
    SIM_PokeTMS(target, STATION, 0x400, 0x00400000);
    addItem("Var, [2001], u1");
    addItem("Nobody, u2");
    addItem("&[400], f");
    sweep(3);
    EXPECT_EQ(line(0), "Var\033p300l002001  u1: 200");
    EXPECT_EQ(line(1), "Nobody\033p300l??????  u2: Address?65535 (!)");
    EXPECT_EQ(line(2), "&\033p300l000400  f4: 1.5");
    EXPECT_EQ(status(), "RUN"); // an unknown name is no fault of the link
    EXPECT_NE(isTimer, 0);
    EXPECT_TRUE(Has(HL_GetTip(PANEL_MAIN, MAIN_LIST, 1), "not resolved"));
    Procesor = CPU_F283XX;
    sweep(3);
    EXPECT_EQ(line(0), "Var\033p300l001000.hi u1: 200");
    EXPECT_EQ(line(2), "&\033p300l000200  f4: 1.5");
}

TEST_F(Refresh, SilentTms320SwitchesOffAfterMoreThanThreeFailedReads)
{
    ASSERT_TRUE(connect());
    addItem("&[400], u4");
    options.mailbox = false;
    SIM_SetFaults(target, options);
    for (int i = 1; i <= 3; ++i) {
        sweep(1);
        EXPECT_EQ(status(), "Error TMS");
        EXPECT_NE(isTimer, 0);
    }
    sweep(1);
    EXPECT_EQ(isTimer, 0);
    EXPECT_EQ(nErrors, 0);
}

TEST_F(Refresh, MemoryBox)
{
    ASSERT_TRUE(connect());
    addItem("[8000], i2");
    addItem("&[400], f");
    const uint8_t bytes[] = {0x41, 0x00, 0xFF, 0xFF, 0x7E, 0x7F, 0x80, 0x00, 0x34, 0x12};
    SIM_Poke(target, STATION, 0x8000, bytes, sizeof bytes);
    SIM_PokeTMS(target, STATION, 0x401, 0x00400000);
    SetCtrlVal(PANEL_MAIN, MAIN_MEM_SWITCH, 1);
    SetCtrlVal(PANEL_MAIN, MAIN_MEM_ADDR, "  8000");
    sweep(2);
    std::vector<std::string> lines = HL_GetLines(PANEL_MAIN, MAIN_MEM_BOX);
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[1], "00008000( +0):  41 00 FF FF 7E 7F 80 00 34 12 00 00 00 00 00 00"
                        "  A...~...4.......");
    EXPECT_EQ(lines[4].substr(0, 15), "00008030(+48): ");
    SetCtrlVal(PANEL_MAIN, MAIN_MEM_TYPED, 1);
    sweep(2);
    lines = HL_GetLines(PANEL_MAIN, MAIN_MEM_BOX);
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[0], " int:   2B");
    EXPECT_EQ(lines[2], " 008000 ( +0):           65       008008 ( +8):         4660");
    EXPECT_EQ(lines[3], " 008002 ( +2):           -1       00800a (+10):            0");
    HL_SelectLine(PANEL_MAIN, MAIN_LIST, 1);
    SetCtrlVal(PANEL_MAIN, MAIN_MEM_ADDR, "400");
    sweep(2);
    lines = HL_GetLines(PANEL_MAIN, MAIN_MEM_BOX);
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[3],
              " 00000401 ( +1):|  00400000        4194304         4194304             1.5");
    EXPECT_EQ(UiValue(PANEL_MAIN, MAIN_MEM_MODE), 1);
    EXPECT_EQ(ReadMemory(0xFFFFF2, 0), -1);
    EXPECT_EQ(ReadMemory(0x1000000, 1), -2);
}

TEST_F(Refresh, FrequencyMeter)
{
    ASSERT_TRUE(connect());
    addItem("[8000], u1");
    addItem("Nobody, u1");
    SetCtrlVal(PANEL_MAIN, MAIN_FM_SWITCH, 1);
    SetCtrlVal(PANEL_MAIN, MAIN_FM_SAMPLES, 3);
    for (const int sample : {250, 254, 2, 6}) { // over the end of a byte, 4 each
        EXPECT_EQ(UiText(PANEL_MAIN, MAIN_FM_FREQ), "");
        poke(0x8000, static_cast<uint64_t>(sample), 1);
        sweep(2);
    }
    const std::string frequency = UiText(PANEL_MAIN, MAIN_FM_FREQ);
    const std::string period = UiText(PANEL_MAIN, MAIN_FM_PERIOD);
    double f = 0, t = 0;
    ASSERT_EQ(std::sscanf(frequency.c_str(), "f = %lf Hz", &f), 1) << frequency;
    ASSERT_EQ(std::sscanf(period.c_str(), "T = %lf s", &t), 1) << period;
    EXPECT_NEAR(f * t, 1, 1e-4);
    const double elapsedMs = 12 * 1000 / f; // 12 counts in at least 10 ms
    EXPECT_GE(elapsedMs, 9.99);
    EXPECT_NEAR(elapsedMs, std::round(elapsedMs), 0.05);
    ASSERT_EQ(EDT_SetType(0, "u4"), 0); // its bytes above the old one are no counts
    poke(0x8000, 0x500000008, 8);
    sweep(2);
    poke(0x8000, 0x50000000B, 8);
    sweep(2);
    EXPECT_EQ(FM_dwDelta, 3u);
    HL_SelectLine(PANEL_MAIN, MAIN_LIST, 1);
    sweep(1);
    EXPECT_EQ(UiAttribute(PANEL_MAIN, MAIN_FM_FREQ, ATTR_DIMMED), 1);
}

TEST_F(Refresh, TypedValues)
{
    uint64_t bits = 0;
    std::string message;
    const struct {
        const char *type, *text;
        uint64_t bits;
    } cases[] = {{"i2", "-32768", 0x8000},
                 {"i2", " 0xFFFF ", 0xFFFF},
                 {"i2", "-0100", 0xFF9C}, // no octal
                 {"u8", "017", 17},
                 {"i2", "0FFh", 0xFF},
                 {"i2", "0b101", 5},
                 {"i8", "-9223372036854775808", 1ULL << 63},
                 {"u1", "255", 255},
                 {"u8", "18446744073709551615", UINT64_MAX},
                 {"p4", "4294967295", 0xFFFFFFFF},
                 {"x2", "1F", 0x1F},
                 {"x2", "b", 0xB},
                 {"b", "0101 1100 b", 0x5C},
                 {"b", "5Ch", 0x5C},
                 {"f", "-1.5e0", 0xBFC00000},
                 {"f", "+2", 0x40000000},
                 {"t", "1d 1h 1m", 1501},
                 {"t", "2h", 120}};
    for (const auto &c : cases) {
        LItem item;
        VAL_SetFromField(&item, c.type);
        EXPECT_EQ(VAL_ParseFor(item, c.text, &bits, &message), VAL_WRITE_OK)
            << c.type << ' ' << c.text;
        EXPECT_EQ(bits, c.bits) << c.type << ' ' << c.text;
    }
    const struct {
        int result;
        const char *type;
        std::vector<const char *> texts;
    } refused[] = {{VAL_WRITE_ERR_RANGE, "i2", {"-32769", "32768", "0x10000"}},
                   {VAL_WRITE_ERR_RANGE, "i8", {"9223372036854775808"}},
                   {VAL_WRITE_ERR_RANGE, "u1", {"256", "-1"}},
                   {VAL_WRITE_ERR_RANGE, "u8", {"18446744073709551616"}},
                   {VAL_WRITE_ERR_RANGE, "x2", {"10000"}},
                   {VAL_WRITE_ERR_RANGE, "b", {"1 0000 0000"}},
                   {VAL_WRITE_ERR_RANGE, "f", {"4e38", "1e999"}},
                   {VAL_WRITE_ERR_RANGE, "t", {"16777216", "20000d"}},
                   {VAL_WRITE_ERR_TEXT, "u1", {"1e2", "", "0x", "12 3"}},
                   {VAL_WRITE_ERR_TEXT, "u8", {"18446744073709551616z"}},
                   {VAL_WRITE_ERR_TEXT, "b", {"12", "b"}},
                   {VAL_WRITE_ERR_TEXT, "f", {"1,5", "nan"}},
                   {VAL_WRITE_ERR_TEXT, "t", {"1h 5", "5m 1h"}}};
    for (const auto &c : refused)
        for (const char *text : c.texts) {
            LItem item;
            VAL_SetFromField(&item, c.type);
            message.clear();
            EXPECT_EQ(VAL_ParseFor(item, text, &bits, &message), c.result) << c.type << ' ' << text;
            EXPECT_NE(message, "") << text;
        }
    VAL_ParseFor(itemOf('i', 2, 0), "70000", &bits, &message);
    EXPECT_TRUE(Has(message, "-32768 to 32767"));
    EXPECT_EQ(VAL_ParseFor(itemOf('f', 4, 0, "&A"), "-1", &bits, &message), 0);
    EXPECT_EQ(bits, 0xFF800000);
}

// The mailbox is asked at the item's station, whichever is selected.
TEST_F(Refresh, TheMailboxOfAnotherStationIsThatStations)
{
    ASSERT_TRUE(connect());
    addTmsSymbol("Torque", 0x400);
    SIM_PokeTMS(target, STATION, 0x400, 111);
    SIM_PokeTMS(target, STATION + 1, 0x400, 222);
    ASSERT_EQ(load("&Torque, u4\n"), 0);
    aLItems[0].station = STATION + 1;
    ASSERT_EQ(RFR_ReadItemNow(0), 0);
    EXPECT_EQ(aLItems[0].value, 222u);
    std::string message;
    EXPECT_EQ(VAL_Write(0, "333", &message), VAL_WRITE_OK) << message;
    EXPECT_EQ(SIM_PeekTMS(target, STATION + 1, 0x400), 333u);
    EXPECT_EQ(SIM_PeekTMS(target, STATION, 0x400), 111u);
    EXPECT_EQ(STATION, 1);
}

TEST_F(Refresh, WritingValues)
{
    ASSERT_TRUE(connect());
    poke(0x8000, 0xAAAAAAAAAAAAAAAA, 8);
    SIM_PokeTMS(target, STATION, 0x400, 0x99000000);
    const struct {
        const char *line, *text;
        uint64_t memory; // 8 bytes at 0x8000 of station 1 afterwards
    } cases[] = {{"[8000], i2", "-2", 0xAAAAAAAAAAAAFFFE},
                 {"[8000], t", "3", 0xAAAAAAAAAA000003}, // the high byte is no minutes
                 {"[8000], u8", "1", 1},
                 {"[8001], b", "1111 0000", 0xF001}};
    uint8_t first = 0;
    ASSERT_EQ(UCM_Read(STATION, 0, 1, &first), 0); // in step from here on
    for (const auto &c : cases) {
        ASSERT_EQ(load(std::string(c.line) + "\n"), 0);
        std::string message;
        EXPECT_EQ(VAL_Write(0, c.text, &message), VAL_WRITE_OK) << message;
        uint64_t memory = 0;
        SIM_Peek(target, STATION, 0x8000, &memory, sizeof memory);
        EXPECT_EQ(memory, c.memory) << c.line;
    }
    std::string message;
    ASSERT_EQ(load("&[400], t\n5:Far, [8000], u2\nNobody, u2\n"), 0);
    EXPECT_EQ(VAL_Write(0, "2m", &message), VAL_WRITE_OK) << message;
    EXPECT_EQ(SIM_PeekTMS(target, STATION, 0x400), 0x99000002u);
    EXPECT_EQ(VAL_Write(1, "258", &message), VAL_WRITE_OK);
    EXPECT_EQ(message, "Written. The target holds 258.");
    uint8_t byte = 0;
    SIM_Peek(target, 5, 0x8001, &byte, 1);
    EXPECT_EQ(byte, 1);
    EXPECT_EQ(VAL_Write(2, "1", &message), VAL_WRITE_ERR_ADDRESS);
    const int last = EDT_AddText("$FFFFFD", "u4", EDT_AT_END);
    const uint64_t before = SIM_GetCounters(target).requests;
    EXPECT_EQ(VAL_Write(last, "1", &message), VAL_WRITE_ERR_ADDRESS) << "it would end beyond";
    EXPECT_EQ(SIM_GetCounters(target).requests, before);
    EDT_Remove(last);
    EXPECT_EQ(VAL_Write(3, "1", &message), VAL_WRITE_ERR_INDEX);
    failWith(0, 70);
    EXPECT_EQ(VAL_Write(1, "2", &message), VAL_WRITE_ERR_READ_BACK);
    failWith(8, 70);
    EXPECT_EQ(VAL_Write(1, "2", &message), VAL_WRITE_ERR_WRITE);
    EXPECT_TRUE(Has(message, "not written"));
}

} // namespace
