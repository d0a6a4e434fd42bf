// Arrays and memory between target and files: every format, every file that is not
// what it should be, and targets and disks that fail on the way.
#include "support/console_rig.h"

#include <csignal>
#include <cstring>
#include <sys/resource.h>

#include "symbols/mapfile.h"

namespace {

using Transfer = ConsoleRig;

std::string Header(const std::string &type, int count)
{
    return "Ulozeni pole: '8000[" + std::to_string(count) + "]', typ: " + type + ".\n";
}

// As it stands in a file.
std::string CrLf(const std::string &text)
{
    std::string lines;
    for (const char c : text)
        lines += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return lines;
}

TEST_F(Transfer, SavedArraysLoadBack)
{
    const struct {
        const char *type, *upper;
        std::vector<uint8_t> bytes;
        const char *lines;
    } cases[] = {{"i1", "I1", {0x80, 0x7F, 0xFF, 0x00}, "-128\n127\n-1\n0\n"},
                 {"u1", "U1", {0x80, 0x7F, 0xFF, 0x00}, "128\n127\n255\n0\n"},
                 {"i2", "I2", {0x00, 0x80, 0xFF, 0x7F}, "-32768\n32767\n"},
                 {"u2", "U2", {0x00, 0x80, 0xFF, 0xFF}, "32768\n65535\n"},
                 {"i4", "I4", {0, 0, 0, 0x80, 0xFF, 0xFF, 0xFF, 0x7F}, "-2147483648\n2147483647\n"},
                 {"u4", "U4", {0, 0, 0, 0x80, 0xFF, 0xFF, 0xFF, 0xFF}, "2147483648\n4294967295\n"},
                 {"F4", "F4", {0, 0, 0x80, 0x3F, 0, 0, 0x20, 0xC1}, "1\n-10\n"}};
    for (const auto &c : cases) {
        const int count = static_cast<int>(std::count(c.lines, c.lines + strlen(c.lines), '\n'));
        const std::string arguments =
            std::string(", ") + c.type + ", " + std::to_string(count) + ", a.txt";
        Poke(0x8000, c.bytes);
        Run("save 8000H" + arguments);
        EXPECT_EQ(ReadFile("a.txt"), CrLf(Header(c.upper, count) + c.lines));
        Run("load 9000H" + arguments);
        EXPECT_EQ(Peek(0x9000, c.bytes.size()), c.bytes) << c.type;
    }
}

TEST_F(Transfer, BigArraysGoInBlocks)
{
    std::vector<uint8_t> bytes(1000);
    for (size_t i = 0; i < bytes.size(); i++)
        bytes[i] = static_cast<uint8_t>(i * 7);
    Poke(0x8000, bytes);
    Run("save 8000H, u2, 500, a.txt");
    Run("load 9000H, u2, 500, a.txt");
    EXPECT_EQ(Peek(0x9000, 1000), bytes);
    Run("binsave 8000H, 1000, a.bin");
    Run("binload 0A000H, 1000, a.bin");
    EXPECT_EQ(Peek(0xA000, 1000), bytes);
}

TEST_F(Transfer, SaveCountsBytesInSixteenBits)
{
    Run("save 8000H, i2, 40000, a.txt");
    const std::string text = ReadFile("a.txt");
    EXPECT_EQ(text.substr(0, text.find('\n') + 1), CrLf(Header("I2", 40000)));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1 + (80000 - 65536) / 2);
}

TEST_F(Transfer, HexLinesEndAtMultiplesOf16)
{
    Poke(0x1008, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    const struct {
        const char *arguments, *text;
    } cases[] = {{"1008H, 16", "001008 0102030405060708\r\n001010 090A000000000000"},
                 {"1000H, 16", "001000 00000000000000000102030405060708\r\n"},
                 {"100FH, 2", "00100F 08\r\n001010 09"},
                 {"1000H, 0", ""}};
    for (const auto &c : cases) {
        Run(std::string("xsave ") + c.arguments + ", x.txt");
        EXPECT_EQ(ReadFile("x.txt"), c.text) << c.arguments;
    }
}

TEST_F(Transfer, BadFilesLeaveTheTargetAlone)
{
    const char *const LOAD = "load 9000H, u2, 2", *const CSV = "loadcsv 9000H, i1, 2",
                      *const CSVN = "loadcsvn 9000H, i1, 4, 2";
    const char *const HEADER_FAULT = "Load: Soubor 'f' ma neplatnou hlavicku.";
    const char *const TYPE_FAULT = "Load: typ ulozenych dat neodpovida parametrum prikazu.";
    const char *const COUNT_FAULT =
        "LoadCSVN: chybny pocet polozek specifikovany 1. radkem souboru 'f'.";
    const std::string good = Header("U2", 2);
    const struct {
        const char *command;
        std::string text;
        const char *message;
    } cases[] = {
        {LOAD, "", HEADER_FAULT},
        {LOAD, "Ulozeni pole 'a[2]', typ: U2.\n1\n2\n", HEADER_FAULT},
        {LOAD, "Ulozeni pole: 'a[02]', typ: U2.\n1\n2\n", HEADER_FAULT},
        {LOAD, "Ulozeni pole: 'a[2]', typ: U2\n1\n2\n", HEADER_FAULT},
        {LOAD, "Ulozeni pole: 'a[1000000]', typ: U2.\n1\n2\n",
         "Load: Soubor 'f' deklaruje prilis mnoho prvku."},
        {LOAD, Header("U2", 1) + "1\n2\n", "Load: Soubor 'f' deklaruje malo prvku."},
        {LOAD, Header("I2", 2) + "1\n2\n", TYPE_FAULT},
        {LOAD, Header("F2", 2) + "1\n2\n", TYPE_FAULT},
        {LOAD, good + "1\n", "Load: Chyba pri cteni souboru 'f', (radek 3)."},
        {LOAD, good + "1\n2,\n", "Load: chyba v souboru 'f', na radku 3."},
        {LOAD, good + "1\n65536\n", "Load: chyba v souboru 'f', na radku 3."},
        {LOAD, good + "-1\n2\n", "Load: chyba v souboru 'f', na radku 2."},
        {LOAD, good + std::string(600, '1') + "\n2\n", "Load: chyba v souboru 'f', na radku 2."},
        {CSV, "127\n\n", "LoadCSV: chyba pri cteni 'f' (radek 2)."},
        {CSV, "1\n2\n\nx\n", "LoadCSV: chyba pri cteni 'f' (radek 4)."},
        {CSV, "127\n128\n", "LoadCSV: chyba v souboru 'f', na radku 2."},
        {CSV, "-129\n1\n", "LoadCSV: chyba v souboru 'f', na radku 1."},
        {"loadcsv 9000H, i4, 1", "2147483648", "LoadCSV: chyba v souboru 'f', na radku 1."},
        {"loadcsv 9000H, u4, 1", "4294967296", "LoadCSV: chyba v souboru 'f', na radku 1."},
        {"loadcsv 9000H, u4, 1", "99999999999999999999",
         "LoadCSV: chyba v souboru 'f', na radku 1."},
        {"loadcsv 9000H, f4, 1", "1e39", "LoadCSV: chyba v souboru 'f', na radku 1."},
        {"loadcsv 9000H, f4, 1", "1.5 e3", "LoadCSV: chyba pri cteni 'f' (radek 1)."},
        {"loadcsv 9000H, f4, 1", "1e", "LoadCSV: chyba pri cteni 'f' (radek 1)."},
        {CSVN, "", "LoadCSVN: chyba pri cteni 'f' (radek 1)."},
        {CSVN, "x\n1\n", "LoadCSVN: chyba pri cteni 'f' (radek 1)."},
        {CSVN, "1\n1\n", COUNT_FAULT},
        {CSVN, "5\n1\n2\n3\n4\n5\n", COUNT_FAULT},
        {CSVN, "99999999999\n", COUNT_FAULT},
        {CSVN, "3\n1\n2\n", "LoadCSVN: chyba pri cteni 'f' (radek 4)."}};
    for (const auto &c : cases) {
        WriteFileText("f", c.text);
        const std::string shown = Run(std::string(c.command) + ", f");
        EXPECT_TRUE(Has(shown, std::string("ERROR - ") + c.message + "\n")) << c.text;
        EXPECT_EQ(Peek(0x9000, 8), std::vector<uint8_t>(8, 0)) << c.text;
    }
}

TEST_F(Transfer, GoodListsLoad)
{
    WriteFileText("f", " +1 \r\n-2\r\n3\r\n4\r\n\r\n");
    Run("loadcsv 9000H, i2, 3, f");
    EXPECT_EQ(Peek(0x9000, 8), (std::vector<uint8_t>{1, 0, 0xFE, 0xFF, 3, 0, 0, 0}));
    WriteFileText("f", "2\n 1.5\n-25e-1 "); // as few as are allowed
    Run("loadcsvn 9100H, f4, 8, 2, f");
    EXPECT_EQ(Peek(0x9100, 8), (std::vector<uint8_t>{0, 0, 0xC0, 0x3F, 0, 0, 0x20, 0xC0}));
    // Names with indexes of their own, as a quoted name leaves them in a header.
    WriteFileText("f", "Ulozeni pole: 'rec[2].a[1]', typ: U1.\r\n9\r\n");
    EXPECT_EQ(Run("load 9200H, u1, 1, f"),
              "Zapis do pole: '0x9200[1]'\n\nload 9200H, u1, 1, f -> OK!\n");
    EXPECT_EQ(Peek(0x9200, 1)[0], 9);
}

TEST_F(Transfer, FailuresOnTheWayKeepTheOldFile)
{
    UCM_recS.tries = 0; // one wait for the dead target is enough
    WriteFileText("in.bin", std::string(4096, 'x'));
    WriteFileText(
        "in.txt", Header("U1", 1000) + [] {
            std::string lines;
            for (int i = 0; i < 1000; i++)
                lines += "1\n";
            return lines;
        }());
    const struct {
        const char *command, *linkMessage, *cancelMessage;
    } cases[] = {
        {"save 8000H, u1, 4096, f", "Save: chyba v komunikaci", "Save: preruseno uzivatelem."},
        {"dump 8000H, u1, 4096", "Save: chyba v komunikaci", "Dump: preruseno uzivatelem."},
        {"binsave 8000H, 4096, f", "BinSave: communication failure.",
         "BinSave: cancelled by the user."},
        {"xsave 8000H, 4096, f", "XSave: communication failure.", "XSave: cancelled by the user."},
        {"binload 8000H, 4096, in.bin", "BinLoad: communication failure.",
         "BinLoad: cancelled by the user."},
        {"load 8000H, u1, 1000, in.txt", "Load: chyba pri zapisu dat do systemu. ",
         "Load: preruseno uzivatelem."}};
    WriteFileText("f", "old");
    for (const auto &c : cases) {
        SIM_Options dying;
        dying.demo = false;
        SIM_SetFaults(target, dying);
        HL_CancelProgressAt(2);
        const std::string cancelled = Run(c.command);
        EXPECT_TRUE(Has(cancelled, std::string("ERROR - ") + c.cancelMessage));
        HL_CancelProgressAt(0);
        dying.silentAfter = 5;
        SIM_SetFaults(target, dying);
        const std::string failed = Run(c.command);
        EXPECT_TRUE(Has(failed, std::string("ERROR - ") + c.linkMessage));
        EXPECT_EQ(ReadFile("f"), "old") << c.command;
    }
    // Nothing is left beside the final names either.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 3);
}

TEST_F(Transfer, FullDisk)
{
    const struct {
        const char *command, *message;
    } cases[] = {{"save 8000H, u1, 64, f", "ERROR - Save: chyba pri zapisu do souboru f."},
                 {"binsave 8000H, 4096, f", "ERROR - BinSave: file write failure."},
                 {"xsave 8000H, 64, f", "ERROR - XSave: file write failure."},
                 {"si 8000, f, 20", "Could not write f"}};
    WriteFileText("f", "old");
    // Files stop growing as on a full disk.
    rlimit unlimited;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &unlimited), 0);
    const auto oldHandler = signal(SIGXFSZ, SIG_IGN);
    for (const auto &c : cases) {
        const rlimit full = {10, unlimited.rlim_max};
        setrlimit(RLIMIT_FSIZE, &full);
        const std::string shown = Run(c.command);
        setrlimit(RLIMIT_FSIZE, &unlimited);
        EXPECT_TRUE(Has(shown, c.message));
        EXPECT_EQ(ReadFile("f"), "old") << c.command;
    }
    signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 1);
}

TEST_F(Transfer, FailedWriteSaysSo)
{
    SIM_SetErrorCode(target, 8, 100);
    EXPECT_EQ(
        Run("write 2, 1, 8100H"),
        "ERROR - write: Selhani komunikace. (target error code 100)\nwrite 2, 1, 8100H ->Error\n");
    EXPECT_EQ(Run("l 8100, none"), "\nLoad ...\nCould not open none\n");
    WriteFileText("f", "int\n5\n");
    EXPECT_EQ(Run("l 8100, f"), "\nLoad ...\n0 of 1 bytes written.\nMessage not succesful (Address "
                                "008100).\nCause: target error code 100.\n");
}

// Nothing reaches the target of a value or stretch that does not fit.
TEST_F(Transfer, WriteRefusesWhatDoesNotFit)
{
    Poke(0xFFFFFE, {7, 8});
    Poke(0x8100, {9, 9});
    const struct {
        const char *line, *says;
    } refused[] = {{"write 2, 99999, 8100H", "hodnota ma byt od -32768 do 65535."},
                   {"write 2, -32769, 8100H", "hodnota ma byt od -32768 do 65535."},
                   {"write 1, 300, 8100H", "hodnota ma byt od -128 do 255."},
                   {"writeNA 1, -129, 8100H", "hodnota ma byt od -128 do 255."},
                   {"write 2, 1, 0FFFFFFH", "posledni byte lezi za adresou FFFFFF."},
                   {"write 4, 1, 0FFFFFDH", "posledni byte lezi za adresou FFFFFF."}};
    for (const auto &c : refused)
        EXPECT_TRUE(Has(Run(c.line), c.says)) << c.line;
    EXPECT_EQ(Peek(0xFFFFFE, 2), (std::vector<uint8_t>{7, 8}));
    EXPECT_EQ(Peek(0x8100, 2), (std::vector<uint8_t>{9, 9}));
    for (const char *line :
         {"write 2, 65535, 8100H", "write 2, -32768, 8100H", "write 1, 255, 8100H",
          "write 1, -128, 8100H", "write 2, 1, 0FFFFFEH", "write 4, -1, 8100H"})
        EXPECT_EQ(Run(line), std::string(line) + " -> OK!\n");
}

TEST_F(Transfer, WhatReachesBeyondTheMemoryIsRefusedBeforeAnythingIsSent)
{
    WriteFileText("f", "int\n1\n2\n3\n");
    WriteFileText("g", "float\n1\n");
    const struct {
        int mode;
        const char *lines[2];
    } cases[] = {{CMD_C166, {"l FFFFFE, f", ""}},     {CMD_C166, {"l FFFFFD, g", ""}},
                 {CMD_C166, {"wu FFFFFF", "5"}},      {CMD_C166, {"wf FFFFFD", "5"}},
                 {CMD_C166, {"si FFFFF9, h, 2", ""}}, {CMD_C166, {"si 0, h, 262145", ""}},
                 {CMD_C166, {"d 1000000", ""}},       {CMD_TMS, {"d FFFFFD", ""}},
                 {CMD_TMS, {"wi 1000000", "5"}},      {CMD_TMS, {"l FFFFFE, f", ""}},
                 {CMD_TMS, {"sf FFFFFF, h, 2", ""}}};
    Run("d 1000"); // the port's opening
    const uint64_t before = SIM_GetCounters(target).requests;
    for (const auto &c : cases) {
        command = c.mode;
        Type(c.lines[0]);
        if (*c.lines[1] != '\0')
            Type(c.lines[1]);
        const std::string shown = NewText();
        EXPECT_TRUE(shown.find("beyond FFFFFF") != std::string::npos ||
                    shown.find("At most") != std::string::npos)
            << c.lines[0] << shown;
    }
    EXPECT_EQ(SIM_GetCounters(target).requests, before);
    EXPECT_EQ(ReadFile("h"), "<none>");
    command = CMD_C166;
    EXPECT_EQ(Run("si 3FFFC, h, 3"), "Store DPM memory...\n");
    EXPECT_EQ(ReadFile("h"), "int\r\n0\r\n") << "a store ends with the first 256 KiB";
}

TEST_F(Transfer, BinLoadTellsOfAnotherLength)
{
    WriteFileText("in.bin", "abcd");
    EXPECT_TRUE(Has(Run("binload 8000H, 3, in.bin"), "longer than 3 bytes"));
    EXPECT_TRUE(Has(Run("binload 8000H, 5, in.bin"), "shorter than 5 bytes"));
    EXPECT_FALSE(Has(Run("binload 8000H, 4, in.bin"), "Warning"));
}

TEST_F(Transfer, DumpOfANameReadsItsStation)
{
    WriteMap("p.m66");
    Run("m p.m66");
    const uint8_t here[] = {0x11}, there[] = {0x33};
    SIM_Poke(target, 1, 0x8102, here, 1);
    SIM_Poke(target, 3, 0x8102, there, 1);
    EXPECT_TRUE(Has(Run("dn 3:byMode"), "008102: |   33"));
    EXPECT_TRUE(Has(Run("dn byMode"), "008102: |   11"));
}

TEST_F(Transfer, MapsNeedNoPort)
{
    WriteMap("p.m66");
    ncom = 9; // nothing is there
    EXPECT_FALSE(Has(Run("m p.m66"), "COM9"));
    EXPECT_EQ(nNodes, 4);
    EXPECT_TRUE(Has(Run("hexload none.hex"), "COM9"));
}

TEST_F(Transfer, NumberFilesThatAreNone)
{
    const struct {
        const char *text, *shown;
    } cases[] = {{"int\n5\n\n7\n", "\nLoad ...\n"}, // the first line without a number ends it
                 {"int\n5\n3000000000\n", "\nLoad ...\nLine 3 of the file is not a value.\n"},
                 {"float\n1.5\nabc\n", "\nLoad ...\nLine 3 of the file is not a value.\n"},
                 {"float\n1e99\n", "\nLoad ...\nLine 2 of the file is not a value.\n"}};
    for (const auto &c : cases) {
        WriteFileText("f", c.text);
        EXPECT_EQ(Run("l 8100, f"), c.shown) << c.text;
    }
}

// An address of another memory must not be taken for one of this station's.
TEST_F(Transfer, NamesElsewhereAreRefused)
{
    WriteMap("small.m66");
    Run("m small.m66");
    ASSERT_GE(TMSmap2node(EXAMPLES_DIR "/demo28.m28xt"), 0);
    const char *const good[] = {"awTable", "\"1: awTable\"", "\"0x8140\""};
    const char *const bad[] = {"&_fGain", "\"2:awTable\"", "\"2:0x8140\""};
    for (const char *name : good)
        EXPECT_TRUE(Has(Run(std::string("dump ") + name + ", u1, 1"), "OK!"));
    for (const char *name : bad)
        EXPECT_EQ(Run(std::string("write 1, 5, ") + name).find("ERROR - write: Neplatne"), 0u);
    EXPECT_EQ(Peek(0x8140, 1)[0], 0);
}

// The last byte of a target's memory is a byte like any other; there is none behind it.
TEST_F(Transfer, EndsWithTheLastByte)
{
    WriteFileText("two.csv", "1\n2\n");
    WriteFileText("two.bin", "ab");
    const struct {
        std::string before, behind;
        const char *fits, *tooFar;
    } cases[] = {{"save ", ", u2, 2, f", "0FFFFFCH", "0FFFFFDH"},
                 {"dump ", ", i1, 3", "0FFFFFDH", "0FFFFFEH"},
                 {"loadcsv ", ", u4, 2, two.csv", "0FFFFF8H", "0FFFFF9H"},
                 {"binsave ", ", 1, f", "0FFFFFFH", "1000000H"},
                 {"xsave ", ", 2, f", "0FFFFFEH", "0FFFFFFH"},
                 {"binload ", ", 2, two.bin", "0FFFFFEH", "0FFFFFFH"},
                 {"write 4, 1, ", "", "0FFFFFCH", "0FFFFFDH"},
                 {"set (u2) $", " = 1", "FFFFFE", "FFFFFF"}};
    for (const auto &c : cases) {
        EXPECT_TRUE(Has(Run(c.before + c.fits + c.behind), "-> OK!")) << c.before;
        const uint64_t asked = SIM_GetCounters(target).requests;
        EXPECT_EQ(Run(c.before + c.tooFar + c.behind).find("ERROR - "), 0u) << c.before;
        EXPECT_EQ(SIM_GetCounters(target).requests, asked) << c.before;
    }
}

} // namespace
