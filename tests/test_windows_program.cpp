// The Windows console program under Wine, against the simulated target: the Win32
// serial driver opens, sets up, writes and reads a port for real.

#include <algorithm>
#include <sys/wait.h>

#include "sim/sim.h"
#include "support/scratch.h"
#include "support/skip.h"
#include "support/text_checks.h"

namespace {

namespace fs = std::filesystem;

constexpr uint32_t COUNTER_ADDRESS = 0x8000;
constexpr uint32_t SETPOINT_ADDRESS = 0x8010;

std::string ReadText(const fs::path &path)
{
    std::string all = ReadFileText(path);
    all.erase(std::remove(all.begin(), all.end(), '\r'), all.end());
    return all;
}

// A Wine prefix is slow to make: one is kept in the build folder.
std::string WinePrefix()
{
    return (fs::path(BINARY_DIR).parent_path() / "wine-prefix").string();
}

class WindowsProgram : public testing::Test {
protected:
    void SetUp() override
    {
        if (std::system("command -v wine >/dev/null 2>&1") != 0)
            SKIP_BUT_FAIL_IN_CI("Wine is not installed");
        if (!fs::exists(WINDOWS_CONSOLE))
            SKIP_BUT_FAIL_IN_CI("The windows preset has not been built");
        setenv("WINEPREFIX", WinePrefix().c_str(), 1);
        setenv("WINEDEBUG", "-all", 1);
        setenv("WINEDLLOVERRIDES", "mscoree,mshtml=", 1);
        unsetenv("DISPLAY");
        const bool isPrefixMade = fs::exists(WinePrefix() + "/dosdevices");
        ASSERT_TRUE(isPrefixMade || std::system("wineboot -i >/dev/null 2>&1") == 0);
        std::string error;
        SIM_Options options;
        options.demo = false;
        target = SIM_Start(options, &error);
        ASSERT_TRUE(target) << error;
        const fs::path port = WinePrefix() + "/dosdevices/com12";
        fs::remove(port);
        fs::create_symlink(SIM_DevicePath(target), port);
        std::ofstream(folder / "Vireo2.ini")
            << "r, AC167\no-\np, 12\nb, 115200\ns, 1\nCOM, WIN32\n";
    }
    void TearDown() override
    {
        if (target)
            SIM_Stop(target);
    }
    // Exit code of the program; what it said is left in `out` and `err`.
    int Run(const std::string &arguments, const std::string &input = "")
    {
        std::ofstream(folder / "in") << input;
        const std::string line = "cd '" + folder.path + "' && wine '" WINDOWS_CONSOLE "' " +
                                 arguments + " <in >out 2>err";
        const int status = std::system(line.c_str());
        out = ReadText(folder / "out");
        err = ReadText(folder / "err");
        return WEXITSTATUS(status);
    }

    const ScratchFolder folder;
    SIM_Target *target = nullptr;
    std::string out, err;
};

TEST_F(WindowsProgram, WatchesWritesAndMissesAPortThroughTheWin32Driver)
{
    const uint8_t counter[] = {0x39, 0x30};
    SIM_Poke(target, 1, COUNTER_ADDRESS, counter, sizeof counter);
    std::ofstream(folder / "list.dbg") << "[8000], u2\r\n2:[8000], u2\r\n[8000], x2\r\n";
    ASSERT_EQ(0, Run("--watch list.dbg --sweeps 2 --format csv")) << err;
    EXPECT_TRUE(Has(out, "1,,0x008000,u,2,12345,12345,0\n")) << err;
    EXPECT_TRUE(Has(out, "2,,0x008000,x,2,3039h,12345,0\n"));

    ASSERT_EQ(0, Run("--full", "write 2, 4660, 8010H\nbinsave 8000H, 200, memory.bin\n")) << err;
    uint8_t written[2] = {};
    SIM_Peek(target, 1, SETPOINT_ADDRESS, written, sizeof written);
    EXPECT_EQ(0x34, written[0]);
    EXPECT_EQ(0x12, written[1]);
    const std::string memory = ReadText(folder / "memory.bin");
    ASSERT_EQ(200u, memory.size()) << out << err;
    EXPECT_EQ(std::string("\x39\x30", 2), memory.substr(0, 2));
    EXPECT_EQ(0u, SIM_GetCounters(target).malformed);

    // In the same test: two at a time would take each other's port from the Wine prefix.
    // Wine sets a pseudo terminal's parity once only: a new one for each opening.
    const auto plugModbus = [&] {
        SIM_Stop(target);
        SIM_Options options;
        options.demo = false;
        options.modbus = true;
        std::string error;
        target = SIM_Start(options, &error);
        ASSERT_TRUE(target) << error;
        fs::remove(WinePrefix() + "/dosdevices/com12");
        fs::create_symlink(SIM_DevicePath(target), WinePrefix() + "/dosdevices/com12");
        SIM_Poke(target, 1, COUNTER_ADDRESS, counter, sizeof counter);
    };
    plugModbus();
    std::ofstream(folder / "Vireo2.ini") << "r, AC167\nt, MODBUS\no-\np, 12\nb, 115200\ns, 1\n";
    ASSERT_EQ(0, Run("--watch list.dbg --sweeps 2 --format csv")) << err;
    EXPECT_TRUE(Has(out, "2,,0x008000,u,2,12345,12345,0\n")) << err;
    plugModbus();
    std::ofstream(folder / "job.scr") << "write 2, 4660, 8010H\nbinsave 8000H, 433, memory.bin\n"
                                         "mbread 3, 16384, 1\n";
    ASSERT_EQ(0, Run("--full job.scr")) << out << err;
    SIM_Peek(target, 1, SETPOINT_ADDRESS, written, sizeof written);
    EXPECT_EQ(0x12, written[1]);
    EXPECT_EQ(433u, ReadText(folder / "memory.bin").size());
    EXPECT_TRUE(Has(out, "3039h   12345     12345\n"));
    EXPECT_EQ(0u, SIM_GetCounters(target).malformed);

    // Behind the network: the sockets of Windows.
    SIM_Stop(target);
    SIM_Options remote;
    remote.demo = false;
    remote.tcp = "0";
    std::string error;
    target = SIM_Start(remote, &error);
    ASSERT_TRUE(target) << error;
    SIM_Poke(target, 1, COUNTER_ADDRESS, counter, sizeof counter);
    setenv("VIREO2_COM5", SIM_DevicePath(target), 1);
    std::ofstream(folder / "Vireo2.ini") << "r, AC167\no-\np, 5\nb, 115200\ns, 1\nCOM, WIN32\n";
    EXPECT_EQ(0, Run("--watch list.dbg --sweeps 2 --format csv")) << err;
    EXPECT_TRUE(Has(out, "2,,0x008000,u,2,12345,12345,0\n")) << err;
    EXPECT_EQ(0, Run("--full", "write 2, 22136, 8010H\nbinsave 8000H, 300, memory.bin\n")) << err;
    unsetenv("VIREO2_COM5");
    SIM_Peek(target, 1, SETPOINT_ADDRESS, written, sizeof written);
    EXPECT_EQ(0x56, written[1]);
    EXPECT_EQ(300u, ReadText(folder / "memory.bin").size());

    std::ofstream(folder / "Vireo2.ini") << "r, AC167\np, 77\nb, 115200\ns, 1\nCOM, WIN32\n";
    EXPECT_EQ(1, Run("--watch list.dbg --sweeps 1"));
    EXPECT_TRUE(Has(err, "Error opening serial port 'COM77'.\n(port is not available)")) << out;
}

} // namespace
