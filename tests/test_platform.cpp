// Serial ports on pseudo terminals, saving without loss, starting programs.
#include "platform/safe_file.h"
#include "platform/serial.h"
#include "platform/system.h"
#include "support/scratch.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int PORT = 71;
constexpr int PATIENCE_MS = 5000;

// A pseudo terminal whose other end the test holds.
struct Line : testing::Test {
    int master = -1;
    SER_Handle port = SER_INVALID;

    void SetUp() override
    {
        master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
        ASSERT_GE(master, 0);
        ASSERT_EQ(grantpt(master), 0);
        ASSERT_EQ(unlockpt(master), 0);
        setenv("VIREO2_COM71", ptsname(master), 1);
        ASSERT_EQ(SER_Open(PORT, &port), SER_OK);
        ASSERT_EQ(SER_Configure(port, SER_Settings()), SER_OK);
        ASSERT_EQ(SER_SetTimeouts(port, 100, 100), SER_OK);
    }
    void TearDown() override
    {
        SER_Close(port);
        if (master >= 0)
            close(master);
        unsetenv("VIREO2_COM71");
    }
    void arrive(const std::string &bytes)
    {
        ASSERT_EQ(write(master, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
        while (SER_BytesWaiting(port) < static_cast<int>(bytes.size()))
            PLT_SleepMs(1);
    }
};

TEST_F(Line, IsRawBothWays)
{
    const std::string all = std::string("\x00\x03\r\n\x11\x13\x1A\xFF", 8);
    char got[8];
    arrive(all);
    EXPECT_EQ(SER_Read(port, got, 8), 8);
    EXPECT_EQ(std::string(got, 8), all);
    EXPECT_EQ(SER_Write(port, all.data(), 8), 8);
    EXPECT_EQ(read(master, got, 8), 8);
    EXPECT_EQ(std::string(got, 8), all);
}

TEST_F(Line, ReadsEndWithWhatCame)
{
    char got[8];
    for (const unsigned total : {0u, 30u, 100u}) { // by poll and by the terminal itself
        ASSERT_EQ(SER_SetTimeouts(port, total, 100), SER_OK);
        EXPECT_EQ(SER_Read(port, got, 8), 0) << total;
        arrive("abc");
        EXPECT_EQ(SER_Read(port, got, 8), 3) << total;
    }
    arrive("old");
    EXPECT_EQ(SER_DropInput(port), SER_OK);
    arrive("new");
    EXPECT_EQ(SER_ReadSome(port, got, 2, PATIENCE_MS), 2);
    EXPECT_EQ(got[0], 'n');
    EXPECT_EQ(SER_ReadSome(port, got, 8, 0), 1);
    EXPECT_EQ(SER_ReadSome(port, got, 8, 0), 0);
}

TEST_F(Line, WriteToALineThatTakesNothingEnds)
{
    const std::string flood(1 << 20, 'x');
    const int wrote = SER_Write(port, flood.data(), flood.size());
    EXPECT_GT(wrote, 0);
    EXPECT_LT(wrote, 1 << 20);
}

TEST_F(Line, IsExclusiveUntilClosed)
{
    SER_Handle second = SER_INVALID;
    EXPECT_EQ(SER_Open(PORT, &second), SER_ERR_OPEN);
    SER_Close(port);
    EXPECT_EQ(SER_Open(PORT, &second), SER_OK);
    SER_Close(second);
    EXPECT_EQ(SER_Read(second, &second, 1), SER_ERR_IO);
}

TEST_F(Line, SaysWhyItCannotBeOpened)
{
    const ScratchFolder folder;
    const std::string locked = folder / "locked", text = folder / "text";
    WriteFileText(text, "");
    WriteFileText(locked, "");
    chmod(locked.c_str(), 0);
    chmod(folder.path.c_str(), 0755);
    const struct {
        std::string device;
        SER_Why why;
    } cases[] = {{ptsname(master), SER_WHY_BUSY},  {folder / "nothing", SER_WHY_MISSING},
                 {text, SER_WHY_MISSING},          {"/dev/null", SER_WHY_MISSING},
                 {text + "/below", SER_WHY_OTHER}, {locked, SER_WHY_ACCESS}};
    for (const auto &c : cases) {
        const bool isRoot = c.why == SER_WHY_ACCESS && geteuid() == 0;
        setenv("VIREO2_COM71", c.device.c_str(), 1);
        SER_Handle second = SER_INVALID;
        EXPECT_TRUE(!isRoot || seteuid(65534) == 0); // root may do everything
        EXPECT_EQ(SER_Open(PORT, &second), SER_ERR_OPEN) << c.device;
        EXPECT_TRUE(!isRoot || seteuid(0) == 0);
        EXPECT_EQ(SER_LastReason(), c.why) << c.device;
    }
    SER_Settings odd;
    odd.baud = 12345;
    EXPECT_EQ(SER_Configure(port, odd), SER_ERR_SET);
    EXPECT_EQ(SER_LastReason(), SER_WHY_BAUD);
}

TEST_F(Line, RefusesWhatNoUartDoes)
{
    SER_Settings settings;
    for (const uint32_t baud : {0u, 1u, 12345u, 4294967295u}) {
        settings.baud = baud;
        EXPECT_EQ(SER_Configure(port, settings), SER_ERR_SET) << baud;
    }
    settings = SER_Settings();
    settings.dataBits = 9;
    EXPECT_EQ(SER_Configure(port, settings), SER_ERR_SET);
}

TEST_F(Line, SaysThatTheDeviceIsGone)
{
    char got[8];
    arrive("x");
    ASSERT_EQ(SER_SetTimeouts(port, 25000, 25000), SER_OK); // must not be waited out
    close(master);
    master = -1;
    EXPECT_EQ(SER_Read(port, got, 8), SER_ERR_IO);
    EXPECT_EQ(SER_ReadSome(port, got, 8, 600000), SER_ERR_IO);
    EXPECT_EQ(SER_Write(port, got, 8), SER_ERR_IO);
    EXPECT_LT(SER_BytesWaiting(port), 0);
}

TEST(DevicePath, EnvironmentThenLinkThenSystem)
{
    const ScratchFolder dir;
    setenv("XDG_CONFIG_HOME", dir.path.c_str(), 1);
    EXPECT_EQ(SER_DevicePath(72), "/dev/ttyS71");
    const std::string ports = PLT_ConfigDir() + "/ports";
    ASSERT_EQ(PLT_MakeDirs(ports), 0);
    ASSERT_EQ(symlink("/dev/unplugged", (ports + "/COM72").c_str()), 0);
    EXPECT_EQ(SER_DevicePath(72), ports + "/COM72");
    setenv("VIREO2_COM72", "/dev/elsewhere", 1);
    EXPECT_EQ(SER_DevicePath(72), "/dev/elsewhere");
    unsetenv("VIREO2_COM72");
    SER_Handle port = 0;
    EXPECT_EQ(SER_Open(72, &port), SER_ERR_OPEN);
    setenv("VIREO2_COM72", "/dev/null", 1); // opens, but is no terminal
    EXPECT_EQ(SER_Open(72, &port), SER_ERR_OPEN);
    EXPECT_EQ(port, SER_INVALID);
    unsetenv("VIREO2_COM72");
    unsetenv("XDG_CONFIG_HOME");
}

int Save(const std::string &path, const std::string &text, bool isKept)
{
    SafeFile safe;
    if (PLT_BeginSave(&safe, path, "wb") != 0)
        return -1;
    std::fwrite(text.data(), 1, text.size(), safe.file);
    if (isKept)
        return PLT_CommitSave(&safe);
    PLT_CancelSave(&safe);
    return 0;
}

TEST(SafeFile, OldOrNewButNeverHalf)
{
    const ScratchFolder dir;
    const std::string path = dir.path + "/list.dbg", link = dir.path + "/link";
    ASSERT_EQ(Save(path, "one", true), 0);
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    ASSERT_EQ(symlink("list.dbg", link.c_str()), 0);
    EXPECT_EQ(Save(path, "dropped", false), 0);
    EXPECT_EQ(ReadFileText(path), "one");
    EXPECT_EQ(Save(link, "two", true), 0); // the file behind the link, which stays
    struct stat status;
    ASSERT_EQ(lstat(link.c_str(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0640u);
    EXPECT_EQ(ReadFileText(path), "two");
    EXPECT_EQ(Save(dir.path, "x", true), -1);
    EXPECT_EQ(Save("/dev/full", "x", true), -1);
    EXPECT_EQ(Save(dir.path + "/none/list", "x", true), -1);
    // A disk that fills up while writing: the stream is bad by the time of the commit.
    SafeFile safe;
    ASSERT_EQ(PLT_BeginSave(&safe, path, "wb"), 0);
    const std::string temp = safe.tempPath;
    ASSERT_NE(std::freopen("/dev/full", "wb", safe.file), nullptr);
    std::fputs("three", safe.file);
    EXPECT_EQ(PLT_CommitSave(&safe), -1);
    EXPECT_EQ(ReadFileText(path), "two");
    EXPECT_NE(access(temp.c_str(), F_OK), 0);
}

TEST(SafeFile, TemporaryFilesAreMadeAnewAndCleanedUp)
{
    const ScratchFolder dir;
    const std::string path = dir.path + "/list.dbg", victim = dir.path + "/victim";
    const std::string own = path + "." + std::to_string(PLT_ProcessId());
    const auto exists = [](const std::string &name) { return access(name.c_str(), F_OK) == 0; };
    // A link that waits where the new text goes is not written through, nor removed.
    WriteFileText(victim, "precious");
    ASSERT_EQ(symlink("victim", (own + ".tmp").c_str()), 0);
    ASSERT_EQ(Save(path, "one", true), 0);
    EXPECT_EQ(ReadFileText(path), "one");
    EXPECT_EQ(ReadFileText(victim), "precious");
    EXPECT_EQ(unlink((own + ".tmp").c_str()), 0);

    // What a dead process has left goes, also one that had our number; another file's and a
    // living process's stay, and so does one that is being written.
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    const std::string dead = "." + std::to_string(child) + ".tmp";
    const std::vector<std::string> stale = {path + dead, own + ".tmp", own + "-3.tmp"};
    const std::vector<std::string> others = {dir.path + "/list.dbg2" + dead,
                                             path + ".1.tmp",
                                             path + "..tmp",
                                             path + ".x1.tmp",
                                             path + "." + std::to_string(child) + "-.tmp",
                                             path + dead + ".txt"};
    for (const std::string &name : stale)
        WriteFileText(name, "half");
    for (const std::string &name : others)
        WriteFileText(name, "mine");
    SafeFile open;
    ASSERT_EQ(PLT_BeginSave(&open, path, "wb"), 0);
    const std::string held = open.tempPath;
    ASSERT_EQ(Save(path, "two", true), 0);
    EXPECT_EQ(ReadFileText(path), "two");
    for (const std::string &name : stale)
        EXPECT_TRUE(name == held || !exists(name)) << name;
    for (const std::string &name : others)
        EXPECT_EQ(ReadFileText(name), "mine") << name;
    std::fputs("three", open.file);
    EXPECT_EQ(PLT_CommitSave(&open), 0);
    EXPECT_EQ(ReadFileText(path), "three");
    EXPECT_FALSE(exists(held));
}

TEST(SafeFile, LongNamesAreSavedAndCleanedUpToo)
{
    const ScratchFolder dir;
    const std::string first = dir.path + "/" + std::string(254, 'n') + "1";
    const std::string second = dir.path + "/" + std::string(254, 'n') + "2";
    SafeFile one, two;
    ASSERT_EQ(PLT_BeginSave(&one, first, "wb"), 0);
    ASSERT_EQ(PLT_BeginSave(&two, second, "wb"), 0);
    EXPECT_NE(one.tempPath, two.tempPath);
    std::fputs("1", one.file);
    std::fputs("2", two.file);
    EXPECT_EQ(PLT_CommitSave(&one) + PLT_CommitSave(&two), 0);
    EXPECT_EQ(ReadFileText(first) + ReadFileText(second), "12");
    EXPECT_EQ(Save(dir.path + "/" + std::string(256, 'n'), "x", true), -1); // the system's limit
}

TEST(SafeFile, WriteProtectedFilesAreReplacedOnlyOnDemand)
{
    const ScratchFolder dir;
    const std::string path = dir.path + "/list.dbg";
    static int asked;
    static bool answer;
    WriteFileText(path, "kept");
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    EXPECT_EQ(Save(path, "new", true), -1); // nobody to ask
    PLT_SetSaveQuestion([](const std::string &name) {
        asked += name.find("list.dbg") != std::string::npos;
        return answer;
    });
    for (const bool yes : {false, true}) {
        answer = yes;
        EXPECT_EQ(Save(path, "new", true), yes ? 0 : -1);
        EXPECT_EQ(ReadFileText(path), yes ? "new" : "kept");
    }
    PLT_SetSaveQuestion(nullptr);
    EXPECT_EQ(asked, 2);
    struct stat status;
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0444u);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path), {}), 1);
}

// Names come from foreign project folders: none may act as an option of the program that
// is to show the file.
TEST(Launch, FileNamesAreNeverOptions)
{
    const ScratchFolder dir(true);
    WriteFileText("show", "#!/bin/sh\nprintf '%s\\n' \"$@\" > out.part; mv out.part out\n");
    ASSERT_EQ(chmod("show", 0755), 0);
    WriteFileText("xdg-open", ReadFileText("show"));
    ASSERT_EQ(chmod("xdg-open", 0755), 0);
    setenv("DISPLAY", ":none", 1);
    setenv("VISUAL", (dir.path + "/show --wait").c_str(), 1);
    const std::string path = std::getenv("PATH");
    setenv("PATH", (dir.path + ":" + path).c_str(), 1);
    const struct {
        int (*open)(const std::string &);
        const char *name, *given;
    } cases[] = {{PLT_OpenInEditor, "-c:!touch owned", "--wait\n./-c:!touch owned\n"},
                 {PLT_OpenInEditor, "+1", "--wait\n./+1\n"},
                 {PLT_OpenInEditor, "/abs", "--wait\n/abs\n"},
                 {PLT_OpenInViewer, "http://x", "./http://x\n"}};
    for (const auto &c : cases) {
        std::filesystem::remove("out");
        EXPECT_EQ(c.open(c.name), 0);
        for (int ms = 0; ms < PATIENCE_MS && ReadFileText("out").empty(); ++ms)
            PLT_SleepMs(1);
        EXPECT_EQ(ReadFileText("out"), c.given);
    }
    setenv("PATH", path.c_str(), 1);
    unsetenv("VISUAL");
    unsetenv("DISPLAY");
}

TEST(Launch, KeepsArgumentsTogetherAndLeavesNothingBehind)
{
    const ScratchFolder dir;
    const std::string from = dir.path + "/a b;touch $HOME", to = dir.path + "/it's here";
    std::ofstream(from) << "text";
    EXPECT_EQ(PLT_Launch("cp '" + from + "' \"" + to + "\""), 0);
    for (int ms = 0; ms < PATIENCE_MS && ReadFileText(to).empty(); ++ms)
        PLT_SleepMs(1);
    EXPECT_EQ(ReadFileText(to), "text");
    EXPECT_EQ(PLT_Launch("no-such-program-anywhere x"), -1);
    EXPECT_EQ(PLT_Launch(""), -1);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

} // namespace
