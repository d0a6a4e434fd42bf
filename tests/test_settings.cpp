// The settings file: every key read and written, files that are odd or hostile, and
// that a failed save leaves the old file alone.
#include <cstring>
#include <sys/stat.h>

#include "app/ini_file.h"
#include "app/rooms.h"
#include "app/startup.h"
#include "comm/communication.h"
#include "support/program_state.h"
#include "symbols/mapfile.h"
#include "symbols/typemap.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"
#include "watch/list/litem.h"
#include "watch/windows/map_loading.h"

namespace {

// The storage class stands in column 46.
const std::string MAP_LINE = "0FA00H   counter" + std::string(30, ' ') + "NDATA\n";
const char TYPES[] = "## 1 VARS\n1: 'counter' _@0x122\n## 0 TYPES\n## 1 STRUCTS\n# 1 / 1:\n"
                     "'x' _@0x122\n";

class Settings : public ProgramTest {
protected:
    Settings()
    {
        EXPECT_EQ(0, HL_LoadAllPanels());
    }
    static void Forget()
    {
        ResetProgram();
        HL_LoadAllPanels();
    }
    // Reads settings and gives what a save makes of them.
    static std::string Round(const std::string &text)
    {
        Forget();
        WriteFileText("Vireo2.ini", text);
        EXPECT_EQ(0, OpenIniFile(mainPanel));
        EXPECT_EQ(0, SaveIniFile());
        return Saved();
    }
    // The file, each of whose lines must end in CR LF, without the CRs.
    static std::string Saved()
    {
        std::string text = ReadFileText("Vireo2.ini");
        for (size_t i = text.find('\n'); i != std::string::npos; i = text.find('\n', i)) {
            EXPECT_TRUE(i > 0 && text[i - 1] == '\r') << text;
            text.erase(i - 1, 1);
        }
        return text;
    }
    static std::string Message()
    {
        return UiText(mainPanel, MAIN_MESSAGE);
    }
    const ScratchFolder folder{true};
};

const std::string DEFAULTS = "r, AC166\nt, COM166\no+\nm\nd\nb, 19200\np, 1\ns, 1\nCOM, WIN32\n";

TEST_F(Settings, EveryKeySurvives)
{
    WriteFileText("a.m66", MAP_LINE);
    WriteFileText("w.dbg", "counter, u2\n");
    const std::string all = "r, AC167\nt, MODBUS\no-\nm, a.m66\nd0, w.dbg\nd1, x.dbg\nd2, y.dbg\n"
                            "b, 57600\np, 12\ns, 7\nCOM, NI\nfull\nview, watch\n"
                            "m2, t.map\ntm, t.tmf\nset, s.ulh\necho\n";
    WriteFileText("t.map", "0000C002   _speed\n");
    WriteFileText("t.tmf", TYPES);
    EXPECT_EQ(all, Round(all));
    VR_isWatchView = false;
    Option_Echo = 0;
    EXPECT_EQ("a.m66", szMapFileName);
    EXPECT_EQ(0xC002u, inStruct("&_speed", aVarTMSNode, nTMSNodes));
    EXPECT_EQ(1, TMF_cnDefVars);
    EXPECT_EQ("", Message());
    VR_isFullOnce = true; // --full as well: what the file says stays
    ASSERT_EQ(0, OpenIniFile(mainPanel));
    EXPECT_FALSE(VR_isFullOnce);
    EXPECT_EQ(0xFA00u, aLItems[0].address);
    std::string stamp;
    EXPECT_EQ(0, GetFileStamp(&stamp, "a.m66"));
    EXPECT_EQ(stamp, szMapFileStamp);
    VR_isFullOnce = true; // an option of one run
    EXPECT_EQ(0, SaveIniFile());
    EXPECT_FALSE(Has(Saved(), "full"));
    openStruct = OPEN_FROM_MEMORY;
    EXPECT_EQ(0, SaveIniFile());
    EXPECT_TRUE(Has(Saved(), "\nm\n"));
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
                             "d12, x\nd, \n;d1, x\n,\n,,\n", "d1\nd2,\nd3, ; none\n"})
        EXPECT_EQ(DEFAULTS, Round(line)) << line;
}

TEST_F(Settings, HostileFilesKeepWhatIsValid)
{
    std::string binary;
    for (int i = 0; i < 70000; i++)
        binary += static_cast<char>(i * 7 + i / 256);
    Round(binary + std::string("\ns, 5\0, 8\np, 3\n", 15));
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
         {std::string("a, b; c.dbg"), deep + "/" + std::string(100, 'w'), std::string("w.dbg")}) {
        WriteFileText(path, "[100], u2\n");
        EXPECT_TRUE(Has(Round("d0, " + path + "\n"), "\nd0, " + path + "\n"));
        EXPECT_EQ(1, nLItems);
    }
    Round("d0, w.dbg, anything ; comment\n");
    EXPECT_EQ("w.dbg", szDebugFileName);
    // Of a file that is not there now nobody can tell where its name ends: the comma stays.
    WriteFileText("a, b.dbg", "");
    Round("d1, gone, old.dbg\nd2, w.dbg, x\nd3, a, b.dbg ; one name\nd4, gone.dbg ; was here\n");
    EXPECT_TRUE(Has(Saved(), "\nd1, gone, old.dbg\nd2, w.dbg\nd3, a, b.dbg\nd4, gone.dbg\n"));
}

TEST_F(Settings, MapReaderIsThatOfTheProcessorSoFar)
{
    WriteFileText("t.map", "0000C002   _speed\n");
    Round("m, t.map\nr, F283xx\n");
    EXPECT_EQ(0, nNodes) << "read as a C166 map";
    EXPECT_EQ("Map file 't.map' holds no symbol for the selected processor.", Message());
    Round("r, F283xx\nm, t.map\n");
    ASSERT_EQ(1, nNodes);
    EXPECT_EQ(0x18004u, aVarNode[0].addr);
    Round("mt, t.map\n");
    EXPECT_EQ("t.map", szMapFileName);
}

// A drive that is not plugged in must not cost the user the names on it; both are said, and
// the second does not hide the first.
TEST_F(Settings, FilesThatCannotBeHadAreSaidAndKept)
{
    const std::string kept = "r, AC166\nt, COM166\no+\nm, missing.m66\nd0, x, y ; z.dbg\n"
                             "b, 19200\np, 1\ns, 1\nCOM, WIN32\nm2, missing.map\ntm, missing.tmf\n";
    EXPECT_EQ(kept, Round(kept));
    EXPECT_EQ("Map file 'missing.m66' cannot be opened. Watch list 'x, y' cannot be opened. "
              "Map file 'missing.map' cannot be opened. "
              "Type map file 'missing.tmf' cannot be opened.",
              Message());
    EXPECT_EQ(kept, Round(Saved()));
    EXPECT_EQ("", szMapFileName + szDebugFileName + TMS_mapFile + TMF_szFileName);
    // What takes the place replaces the name; what was there before comes back by itself.
    WriteFileText("a.m66", MAP_LINE);
    WriteFileText("w.dbg", "counter, u2\n");
    WriteFileText("t.map", "0000C002   _speed\n");
    WriteFileText("t.tmf", TYPES);
    ASSERT_EQ(0, map2node("a.m66"));
    szMapFileName = "a.m66";
    szDebugFileName = "w.dbg";
    ASSERT_EQ(0, TMSmap2node("t.map"));
    ASSERT_EQ(0, TMF_OpenMap("t.tmf"));
    ASSERT_EQ(0, SaveIniFile());
    EXPECT_FALSE(Has(Saved(), "missing"));
    EXPECT_TRUE(Has(Saved(), "\nm2, t.map\ntm, t.tmf\n"));
    // The second map waits while a TMS320 is selected.
    const std::string waiting = "r, F283xx\nm2, t.map\n";
    EXPECT_TRUE(Has(Round(waiting), "\nm2, t.map\n"));
    EXPECT_EQ("", Message());
    EXPECT_EQ(0, nNodes);
    Round("m, /dev/zero\nd0, .\nm2, a\033]0;b\n");
    EXPECT_EQ(
        "Map file '/dev/zero' is a folder, device or pipe. Watch list '.' is a folder, device or "
        "pipe. Map file 'a.]0' cannot be opened.",
        Message());
}

TEST_F(Settings, NumbersThatCannotBeMeantAreSaidWithTheirLine)
{
    const struct {
        const char *text, *says;
    } cases[] = {{"s, 15\nb, 110\np, 256\n", ""},
                 {"s, 0\nb, 4000000\np, 1\n", ""},
                 {"s, 16\n", "Vireo2.ini, line 1: station 16 is outside 0 to 15."},
                 {"\ns, -1\n", "Vireo2.ini, line 2: station -1 is outside 0 to 15."},
                 {"s, 250\nt, MODBUS\n", ""},
                 {"t, MODBUS\ns, 251\n", "Vireo2.ini, line 2: station 251 is outside 1 to 250."},
                 {"s, 0\nt, MODBUS\n", "Vireo2.ini, line 1: station 0 is outside 1 to 250."},
                 {"s, 99\ns, 3\n", ""},
                 {";\n\nb, fast\np, 0\n",
                  "Vireo2.ini, line 3: baud rate 0 is outside 110 to 4000000. "
                  "Vireo2.ini, line 4: port 0 is outside 1 to 256."}};
    for (const auto &c : cases) {
        Round(c.text);
        EXPECT_EQ(c.says, Message()) << c.text;
        EXPECT_EQ(c.says, APP_GetRangeProblem());
    }
    STATION = 3; // changed by the user since
    ncom = 4;
    EXPECT_EQ("Vireo2.ini, line 3: baud rate 0 is outside 110 to 4000000.", APP_GetRangeProblem());
    // Said again when communication is switched on.
    SetCtrlVal(mainPanel, MAIN_MESSAGE, std::string());
    VR_ConnectRooms();
    VIR2_StartPeriodicASC();
    VIR2_StopPeriodicASC();
    EXPECT_EQ(APP_GetRangeProblem(), Message());
}

// What could not be read is not written over, and what says the same already is not written.
TEST_F(Settings, SavingTouchesNoFileItDoesNotKnow)
{
    WriteFileText("Vireo2.ini", "s, 9\n");
    std::filesystem::resize_file("Vireo2.ini", 1 << 21);
    EXPECT_EQ(-2, OpenIniFile(mainPanel));
    EXPECT_TRUE(Has(Message(), "is too large: the settings will not be saved."));
    EXPECT_EQ(1, STATION);
    EXPECT_EQ(-1, SaveIniFile());
    EXPECT_EQ("Error open Ini file", Message());
    EXPECT_EQ("s, 9\n", ReadFileText("Vireo2.ini").substr(0, 5));
    std::filesystem::remove("Vireo2.ini");
    ASSERT_EQ(0, mkfifo("Vireo2.ini", 0600));
    EXPECT_EQ(-2, OpenIniFile(mainPanel)); // at once
    EXPECT_EQ(-1, SaveIniFile());
    std::filesystem::remove("Vireo2.ini");

    Round("s, 9\n");
    ASSERT_EQ(0, chmod("Vireo2.ini", 0444));
    EXPECT_EQ(0, SaveIniFile());
    STATION = 8; // a write-protected file: the user says no, then yes
    VR_ConnectRooms();
    HL_PushAnswer(0);
    EXPECT_EQ(-1, SaveIniFile());
    HL_PushAnswer(1);
    EXPECT_EQ(0, SaveIniFile());
    EXPECT_TRUE(Has(Saved(), "\ns, 8\n"));
    EXPECT_EQ(2u, HL_GetPopups().size());
}

// Nobody, not even root, makes a file in /proc.
TEST_F(Settings, AFolderThatCannotBeWrittenMovesThemToTheUsersOwn)
{
    const std::filesystem::path config = folder / "o\xC5\xBEivlé nastavení, 2";
    const char *const before = std::getenv("XDG_CONFIG_HOME");
    const std::string kept = before != nullptr ? before : "";
    setenv("XDG_CONFIG_HOME", config.c_str(), 1);
    std::filesystem::current_path("/proc");
    const std::string path = config / "vireo2/Vireo2.ini";
    EXPECT_EQ(-2, OpenIniFile(mainPanel));
    EXPECT_EQ("Settings are kept in '" + path + "': this folder cannot be written.", Message());
    STATION = 7;
    szDebugFileName = "list.dbg"; // the next start may be elsewhere
    EXPECT_EQ(0, SaveIniFile());
    EXPECT_TRUE(Has(ReadFileText(path), "\nd0, /proc/list.dbg\r\n"));
    Forget();
    EXPECT_EQ(0, OpenIniFile(mainPanel));
    EXPECT_EQ(7, STATION);
    // A folder of one's own keeps its own.
    std::filesystem::current_path(folder.path);
    Forget();
    EXPECT_EQ(-2, OpenIniFile(mainPanel));
    EXPECT_EQ(1, STATION);
    EXPECT_EQ("", Message());
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator("."), {})) << "no traces";
    if (before != nullptr)
        setenv("XDG_CONFIG_HOME", kept.c_str(), 1);
    else
        unsetenv("XDG_CONFIG_HOME");
}

TEST_F(Settings, FailedSaveLeavesTheOldFile)
{
    WriteFileText("Vireo2.ini", "s, 9\n");
    ASSERT_EQ(0, OpenIniFile(mainPanel));
    // The folder is gone: nothing can be written beside the old file.
    std::filesystem::rename(folder.path, folder.path + ".away");
    EXPECT_EQ(-1, SaveIniFile());
    EXPECT_EQ("Error open Ini file", UiText(mainPanel, 9));
    // A program that ends so says it to those who started it.
    QuitUserInterface(0);
    EXPECT_EQ(0, ExitApplication(mainPanel));
    EXPECT_EQ(1, RunUserInterface());
    std::filesystem::rename(folder.path + ".away", folder.path);
    EXPECT_EQ("s, 9\n", ReadFileText("Vireo2.ini"));
    ASSERT_EQ(0, ExitApplication(mainPanel));
    EXPECT_EQ(0, RunUserInterface());
    EXPECT_TRUE(Has(Saved(), "\ns, 9\n"));
    // Written whole beside the old file, never in place: who reads it meanwhile has a whole one.
    std::FILE *reader = std::fopen("Vireo2.ini", "rb");
    STATION = 5;
    ASSERT_EQ(0, SaveIniFile());
    char old[400] = "";
    EXPECT_GT(std::fread(old, 1, sizeof old - 1, reader), 0u);
    EXPECT_NE(nullptr, std::strstr(old, "\ns, 9\r\n"));
    std::fclose(reader);
}

} // namespace
