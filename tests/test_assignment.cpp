// Assignment lines, labels and type codes.
#include "symbols/assignment.h"

#include <gtest/gtest.h>

namespace {

TEST(Assignment, Casts)
{
    const struct {
        const char *text;
        int32_t code;
    } cases[] = {{"(u1)", 0x06},       {"( byte )", 0x06}, {"(word)", 0x06}, {"(u2)x", 0x0A},
                 {"(u4)", 0x12},       {"(i1)", 0x05},     {"(i2)", 0x09},   {"(i4)", 0x11},
                 {"(float) ", 0x1000}, {"(f4)", -1},       {"(u2", -1},      {"u2)", -1},
                 {"(u22)", -1},        {"()", -1},         {"", -1}};
    for (const auto &c : cases)
        EXPECT_EQ(StrToATP(c.text), c.code) << c.text;
}

TEST(Assignment, Prefixes)
{
    const struct {
        const char *name;
        int32_t code;
    } cases[] = {{"", 0},           {"n", 0x09},       {"nCount", 0x09},   {"n_x", 0x09},
                 {"fGain", 0x1000}, {"wStatus", 0x0A}, {"xPos", 0},        {"dwMask", 0x12},
                 {"u4x", 0x12},     {"nnPos", 0x11},   {"i4x", 0x11},      {"byMode", 0x06},
                 {"u1x", 0x06},     {"i2x", 0x09},     {"i1x", 0x05},      {"u2x", 0x0A},
                 {"f4x", 0x1000},   {"flags", 0x1000}, {"rsName", 0x8800}, {"szName", 0x800},
                 {"count", 0},      {"n1", 0}};
    for (const auto &c : cases)
        EXPECT_EQ(GetPfxType(c.name), c.code) << c.name;
    EXPECT_EQ(GetPfx2Type("drive.axis.wStatus[2] = 5"), 0x0A);
    EXPECT_EQ(GetPfx2Type("wStatus.x = 5"), 0) << "the last component counts";
    EXPECT_EQ(GetPfx2Type("(i1) wStatus"), 0x05);
}

TEST(Assignment, SizesAndTexts)
{
    const struct {
        uint32_t code;
        int size;
        const char *text;
    } cases[] = {{0x05, 1, "(i1)"},   {0x09, 2, "(i2)"},    {0x11, 4, "(i4)"},   {0x06, 1, "(u1)"},
                 {0x0A, 2, "(u2)"},   {0x12, 4, "(u4)"},    {0x1000, 4, "(f4)"}, {0x800, 0, "(sz)"},
                 {0x8800, 0, "(rs)"}, {0x25, 1, "(i1 ID)"}, {0x20, 0, "(ID)"},   {0, 0, "()"},
                 {0x100A, 2, "()"}};
    for (const auto &c : cases) {
        std::string text;
        ATP_toStr(c.code, &text);
        EXPECT_EQ(text, c.text);
        EXPECT_EQ(ATP_SizeOf(c.code), c.size) << c.text;
    }
}

TEST(Assignment, Lines)
{
    const int32_t i2 = ATP_I2;
    const struct {
        const char *line;
        int kind;
        const char *name;
        uint32_t type; // of the target
        uint32_t value;
    } cases[] = {{"wStatus = 5", SYM_ASSIGN_VALUE, "wStatus", 0x0A, 5},
                 {"nnCounter = -1", SYM_ASSIGN_VALUE, "nnCounter", 0x11, 0xFFFFFFFF},
                 {"dwMask = 0FFH", SYM_ASSIGN_VALUE, "dwMask", 0x12, 0xFF},
                 {" pos=32767 ", SYM_ASSIGN_VALUE, "pos", 0x09, 32767},
                 {"pos = 32768", SYM_ASSIGN_NONE, "", 0, 0}, // the default type is i2
                 {"(word) x = 300", SYM_ASSIGN_NONE, "", 0, 0},
                 {"(word) x = 255", SYM_ASSIGN_VALUE, "x", 0x06, 255},
                 {"(u1) x = -1", SYM_ASSIGN_NONE, "", 0, 0},
                 {"(bogus) x = 7", SYM_ASSIGN_VALUE, "x", 0x09, 7},
                 {"(u1 x = 7", SYM_ASSIGN_NONE, "", 0, 0},
                 {"Start :", SYM_ASSIGN_LABEL, "Start", 0, 0},
                 {"Start : now", SYM_ASSIGN_NONE, "", 0, 0},
                 {"(u2) Start :", SYM_ASSIGN_NONE, "", 0, 0},
                 {"wStatus 5", SYM_ASSIGN_NONE, "", 0, 0},
                 {"wStatus =", SYM_ASSIGN_NONE, "", 0, 0},
                 {"wStatus = 5 6", SYM_ASSIGN_NONE, "", 0, 0},
                 {"", SYM_ASSIGN_NONE, "", 0, 0},
                 {"= 5", SYM_ASSIGN_NONE, "", 0, 0}};
    for (const auto &c : cases) {
        ScrPar records[SYM_ASSIGN_RECORDS];
        ASSERT_EQ(ParseAssn2(c.line, records, i2), c.kind) << c.line;
        if (c.kind == SYM_ASSIGN_NONE)
            continue;
        EXPECT_STREQ(records[0].text, c.name) << c.line;
        EXPECT_EQ(records[0].flags, c.type | PAR_NAME) << c.line;
        EXPECT_EQ(records[1].value, c.value) << c.line;
    }
}

TEST(Assignment, PlacesAndNamedValues)
{
    ScrPar records[SYM_ASSIGN_RECORDS];
    ASSERT_EQ(ParseAssn2("&rec.wItem[3] - 10H = other + 2", records, 0), SYM_ASSIGN_VALUE);
    EXPECT_STREQ(records[0].text, "&rec.wItem");
    EXPECT_EQ(records[0].index, 3);
    EXPECT_EQ(records[0].offset, -16);
    EXPECT_EQ(records[1].flags, PAR_NAME);
    EXPECT_STREQ(records[1].text, "other");
    EXPECT_EQ(records[1].offset, 2);
    ASSERT_EQ(ParseAssn2("fGain = -2.5e-1", records, 0), SYM_ASSIGN_VALUE);
    EXPECT_EQ(records[1].fvalue, -0.25);
}

} // namespace
