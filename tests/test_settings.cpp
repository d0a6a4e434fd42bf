// The settings file: every key read and written, files that are odd or hostile, and
// that a failed save leaves the old file alone.
#include <gtest/gtest.h>

#include "app/VR.h"
#include "runtime/headless/headless.h"
#include "support/scratch.h"
#include "support/ui_reading.h"
#include "symbols/mapfile.h"
#include "symbols/varnode.h"
#include "watch/list/litem.h"

namespace {

// The storage class stands in column 46.
const std::string MAP_LINE = "0FA00H   counter" + std::string(30, ' ') + "NDATA\n";

class Settings : public testing::Test {
protected:
    void SetUp() override
    {
        HL_Reset();
        ASSERT_EQ(0, HL_LoadAllPanels());
        mainPanel = 13;
        Forget();
    }
    void TearDown() override
    {
        Forget();
        HL_Reset();
    }
    static void Forget()
    {
        Procesor = CPU_C166;
        VR_nProtocol = PROTOCOL_MR166;
        ncom = STATION = Option_AutoOff = Option_ComWin32 = 1;
        bRate = 19200;
        VR_enAppMode = MODE_NORMAL;
        nDebugFileNames = openStruct = nLItems = openLItems = 0;
        szaDebugFileNames = {};
        szDebugFileName.clear();
        szMapFileName.clear();
        VR_isFullCommandSet = VR_isFullOnce = VR_isWatchView = false;
    }
    // Reads settings and gives what a save makes of them.
    static std::string Round(const std::string &text)
    {
        Forget();
        WriteFileText("Vireo2.ini", text);
        EXPECT_EQ(0, OpenIniFile(mainPanel));
        EXPECT_EQ(0, SaveIniFile());
        return ReadFileText("Vireo2.ini");
    }
    const ScratchFolder folder{true};
};

const std::string DEFAULTS = "r, AC166\nt, COM166\no+\nm\nd\nb, 19200\np, 1\ns, 1\nCOM, WIN32\n";

TEST_F(Settings, EveryKeySurvives)
{
    WriteFileText("a.m66", MAP_LINE);
    WriteFileText("w.dbg", "counter, u2\n");
    const std::string all = "r, AC167\nt, MODBUS\no-\nm, a.m66\nd0, w.dbg\nd1, x.dbg\nd2, y.dbg\n"
                            "b, 57600\np, 12\ns, 7\nCOM, NI\nfull\nview, watch\n";
    EXPECT_EQ(all, Round(all));
    VR_isWatchView = false;
    EXPECT_EQ("a.m66", szMapFileName);
    VR_isFullOnce = true; // --full as well: what the file says stays
    ASSERT_EQ(0, OpenIniFile(mainPanel));
    EXPECT_FALSE(VR_isFullOnce);
    EXPECT_EQ(0xFA00u, aLItems[0].address);
    std::string stamp;
    EXPECT_EQ(0, GetFileStamp(&stamp, "a.m66"));
    EXPECT_EQ(stamp, szMapFileStamp);
    VR_isFullOnce = true; // an option of one run
    EXPECT_EQ(0, SaveIniFile());
    EXPECT_EQ(std::string::npos, ReadFileText("Vireo2.ini").find("full"));
    openStruct = OPEN_FROM_MEMORY;
    EXPECT_EQ(0, SaveIniFile());
    EXPECT_NE(std::string::npos, ReadFileText("Vireo2.ini").find("\nm\n"));
}

TEST_F(Settings, LinesMeanWhatTheySay)
{
    const struct {
        const char *line, *changed, *to;
    } cases[] = {{"r, F2803x\n", "AC166", "F2803x"},
                 {"r,F283xx\r\n", "AC166", "F283xx"},
                 {"  b ,  9600 , ignored \n", "19200", "9600"},
                 {"b, 9600 ; slow\n", "19200", "9600"},
                 {"b, fast\n", "19200", "0"},
                 {"b, 9600\nb, 38400\n", "19200", "38400"},
                 {"b, 99999999999999999999\n", "19200", "2147483647"},
                 {"COM, win32\n", "WIN32", "NI"},
                 {"o-\no+\no-\n", "o+", "o-"},
                 {"s, 3\rp, 2\r", "p, 1\ns, 1", "p, 2\ns, 3"},
                 {"\xEF\xBB\xBFs, 3\n", "s, 1", "s, 3"},
                 {"s, 3", "s, 1", "s, 3"}};
    for (const auto &c : cases) {
        std::string expected = DEFAULTS;
        expected.replace(expected.find(c.changed), std::string(c.changed).size(), c.to);
        EXPECT_EQ(expected, Round(c.line)) << c.line;
    }
    for (const char *line : {"r, F28335\n", "b, 1, 2, 3\n", "B, 9600\n", "t, modbus\n",
                             "d0, missing.dbg\nm, missing.m66\nmt, missing.m28xt\n",
                             "d12, x\nd, \n;d1, x\n,\n,,\n", "d1\nd2,\nd3, ; none\n"})
        EXPECT_EQ(DEFAULTS, Round(line)) << line;
}

TEST_F(Settings, HostileFilesKeepWhatIsValid)
{
    EXPECT_EQ(DEFAULTS, Round(""));
    std::string binary;
    for (int i = 0; i < 70000; i++)
        binary += static_cast<char>(i * 7 + i / 256);
    Round(binary + "\ns, 9\n");
    EXPECT_EQ(9, STATION);
    Round(std::string("s, 5\0, 8\np, 3\n", 14));
    EXPECT_EQ(5, STATION);
    EXPECT_EQ(3, ncom);
    // The tail of a line that is too long is no line of its own.
    for (const char *tail : {"b, 9600\n", " b, 9600\n"})
        EXPECT_EQ(DEFAULTS, Round(";" + std::string(510, 'x') + tail));
    EXPECT_EQ(DEFAULTS,
              Round("d0, " + std::string(300, 'p') + "\nm, " + std::string(600, 'p') + "\n"));
}

TEST_F(Settings, TenRecentLinesGiveEight)
{
    std::string text;
    for (int i = 1; i <= 9; i++)
        text += "d" + std::to_string(i) + ", f" + std::to_string(i) + "\n";
    Round(text + "d9, f10\n");
    EXPECT_EQ(8, nDebugFileNames);
    EXPECT_EQ("f1", szaDebugFileNames[0]);
    EXPECT_EQ("f8", szaDebugFileNames[7]);
    EXPECT_EQ("f10", szaDebugFileNames[8]);
}

TEST_F(Settings, PathsWithSeparatorsAndGreatLengthAreFoundAgain)
{
    const std::string deep(120, 'd');
    std::filesystem::create_directories(deep);
    for (const std::string &path :
         {std::string("a, b; c.dbg"), deep + "/" + std::string(100, 'w')}) {
        WriteFileText(path, "[100], u2\n");
        EXPECT_NE(std::string::npos, Round("d0, " + path + "\n").find("\nd0, " + path + "\n"));
        EXPECT_EQ(1, nLItems);
    }
    WriteFileText("w.dbg", "[100], u2\n");
    Round("d0, w.dbg, anything ; comment\n");
    EXPECT_EQ("w.dbg", szDebugFileName);
}

TEST_F(Settings, MapReaderIsThatOfTheProcessorSoFar)
{
    WriteFileText("t.map", "0000C002   _speed\n");
    Round("m, t.map\nr, F283xx\n");
    EXPECT_EQ(0, nNodes) << "read as a C166 map";
    Round("r, F283xx\nm, t.map\n");
    ASSERT_EQ(1, nNodes);
    EXPECT_EQ(0x18004u, aVarNode[0].addr);
    Round("mt, t.map\n");
    EXPECT_EQ("t.map", szMapFileName);
}

TEST_F(Settings, FailedSaveLeavesTheOldFile)
{
    WriteFileText("Vireo2.ini", "s, 9\n");
    ASSERT_EQ(0, OpenIniFile(mainPanel));
    // The folder is gone: nothing can be written beside the old file.
    std::filesystem::rename(folder.path, folder.path + ".away");
    EXPECT_EQ(-1, SaveIniFile());
    EXPECT_EQ("Error open Ini file", UiText(mainPanel, 9));
    std::filesystem::rename(folder.path + ".away", folder.path);
    EXPECT_EQ("s, 9\n", ReadFileText("Vireo2.ini"));
}

} // namespace
