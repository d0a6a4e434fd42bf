// A target with a small map and type map, and headers and data files of sets for it.
#ifndef TESTS_SUPPORT_SETS_RIG_H
#define TESTS_SUPPORT_SETS_RIG_H

#include "sets/data.h"
#include "sets/set.h"
#include "sets/value.h"
#include "support/console_rig.h"
#include "symbols/mapfile.h"
#include "symbols/typemap.h"

constexpr char HEAD[] = "// Uploader v1.00\r\n// date = 31-12-2015, time = 23:59:59\r\n";

// wGain 8100h u2, nLow 8102h i2, fLimit 8104h, dwTime 8108h u4, byMode 810Ch, byteless x 810Eh
// and qwId 8110h (8 bytes) by type map; aw[3] 8120h; st 8130h {nA; union{w; b[2]}; f}.
class Sets : public ConsoleRig {
protected:
    void SetUp() override
    {
        ConsoleRig::SetUp();
        const struct {
            const char *address, *name;
        } symbols[] = {{"08100H", "wGain"},  {"08102H", "nLow"},   {"08104H", "fLimit"},
                       {"08108H", "dwTime"}, {"0810CH", "byMode"}, {"0810EH", "x"},
                       {"08110H", "qwId"},   {"08120H", "aw"},     {"08130H", "st"},
                       {"08200H", "wCopy"},  {"08220H", "awCopy"}};
        std::string map;
        for (const auto &symbol : symbols) {
            const std::string line = std::string(symbol.address) + "   " + symbol.name;
            map += line + std::string(46 - line.size(), ' ') + "NDATA\n";
        }
        WriteFileText("m.m66", map);
        ASSERT_EQ(map2node("m.m66"), 0);
        WriteFileText("t.tmf", "## 3 VARS\n1: 'aw' _@0x20000003_@0x142\n2: 'st' _@0x38000001\n"
                               "3: 'qwId' _@0x442\n## 0 TYPES\n## 2 STRUCTS\n# 1 / 3:\n"
                               "'nA' _@0x122\n'un' _@0x30000002\n'f' _@0x204\n# 2 / 2:\n"
                               "'byFirst' _@0xC2\n'w' _@0x142\n");
        ASSERT_EQ(TMF_LoadMap("t.tmf"), 0);
    }
    // What the header is refused for; "" when it is good.
    std::string Header(const std::string &text)
    {
        WriteFileText("h.ulh", text);
        PST_Problems problems;
        const int result = PST_ReadHeader("h.ulh", &set, &problems);
        EXPECT_EQ(result == 0, problems.count == 0);
        return PST_FormatProblems(problems);
    }
    // The same for a data file against the set; its first line here is the third.
    std::string Data(const std::string &text, const char *head = HEAD, const char *end = "// end")
    {
        WriteFileText("d.ldx", head + text + end);
        PST_Problems problems;
        if (PST_ReadData("d.ldx", &file, &problems) == 0)
            PST_Bind(set, file, &values, nullptr, &problems);
        return PST_FormatProblems(problems);
    }
    std::string Names() const
    {
        std::string text;
        for (const PST_Entry &entry : set.entries)
            text += std::string(PST_CastOf(entry.type)) + entry.name + " ";
        return text;
    }
    PST_Set set;
    PST_File file;
    PST_Image values;
};

// The first values are in the target, and s.ldx has them by the header s.ulh.
class SetTransfer : public Sets {
protected:
    void SetUp() override
    {
        Sets::SetUp();
        Poke(0x8100, {1, 0, 2, 0, 0, 0, 0x80, 0x3F}); // wGain 1, nLow 2, fLimit 1
        Poke(0x8120, {1, 2, 3, 4, 5, 6});
        Poke(0x8200, {1, 0});
        Poke(0x8220, {1, 2, 3, 4, 5, 6});
        WriteFileText("s.ulh", "wGain, max 500\nwCopy = wGain\nnLow, readonly\nfLimit, stop\n"
                               "aw\nawCopy = aw\narea 8130h, length 20\n");
        EXPECT_NE(Run("upload s.ulh, s.ldx").find("-> OK!"), std::string::npos);
    }
    void Edit(const std::string &from, const std::string &to)
    {
        std::string text = ReadFileText("s.ldx");
        ASSERT_NE(text.find(from), std::string::npos) << text;
        WriteFileText("s.ldx", text.replace(text.find(from), from.size(), to));
    }
};

#endif
