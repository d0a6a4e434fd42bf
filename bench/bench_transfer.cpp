// `save` and `load` of 4,096 elements over a paced line against the time the characters
// of their blocks take on the wire.
#include "app/VR.h"
#include "comm/ucm.h"
#include "console/monitor/monitor.h"
#include "platform/system.h"
#include "runtime/headless/headless.h"
#include "sim/sim.h"
#include "ui/resource.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr int PORT = 9;
constexpr int BAUD = 115200;
constexpr double BITS_PER_CHAR = 11;
constexpr uint32_t ELEMENTS = 4096;
constexpr int ROUNDS = 3; // the best counts: what else the machine does is not measured

struct Case {
    const char *command; // its arguments follow
    const char *type;
    uint32_t bytes;
    uint32_t blockBytes; // of the wire
    uint32_t blockChars; // request and answer
};
const Case CASES[] = {
    {"save", "u2", 2 * ELEMENTS, 64, 18 + 138},
    {"load", "u2", 2 * ELEMENTS, 16, 48 + 10},
    {"save", "f4", 4 * ELEMENTS, 64, 18 + 138},
    {"load", "f4", 4 * ELEMENTS, 16, 48 + 10},
};

[[noreturn]] void Fail(const char *what)
{
    std::fprintf(stderr, "bench_transfer: %s\n", what);
    std::exit(1);
}

double TakeSeconds(const std::string &line)
{
    const uint64_t start = PLT_TickUs();
    if (RunMonitor(consolePanel, line.c_str()) < 0)
        Fail(szScrFnErrMsg.c_str());
    return static_cast<double>(PLT_TickUs() - start) / 1e6;
}

void Measure(const Case &c)
{
    const std::string line = std::string(c.command) + " 8000H, " + c.type + ", " +
                             std::to_string(ELEMENTS) + ", bench_transfer.txt";
    double seconds = TakeSeconds(line);
    for (int round = 1; round < ROUNDS; round++)
        seconds = std::min(seconds, TakeSeconds(line));
    const double limit = c.bytes / c.blockBytes * c.blockChars * BITS_PER_CHAR / BAUD;
    std::printf("%s %-20s %10.3f %10.3f %10.2f\n", c.command, c.type, limit, seconds,
                100 * limit / seconds);
}

} // namespace

int main()
{
    SIM_Options options;
    options.baud = BAUD;
    options.demo = false;
    std::string error;
    SIM_Target *target = SIM_Start(options, &error);
    if (target == nullptr)
        Fail(error.c_str());
    setenv(("VIREO2_COM" + std::to_string(PORT)).c_str(), SIM_DevicePath(target), 1);
    HL_Reset();
    if (HL_LoadAllPanels() < 0)
        Fail("a panel could not be loaded");
    mainPanel = PANEL_MAIN;
    consolePanel = PANEL_CONSOLE;
    UCM_Init();
    UCM_UseWin32(1);
    ncom = PORT;
    bRate = BAUD;
    STATION = 1;
    VR_isFullCommandSet = true;
    std::printf("%-25s %10s %10s %10s\n", "4,096 elements at 115200", "wire s", "taken s",
                "% of wire");
    for (const Case &c : CASES)
        Measure(c);
    std::remove("bench_transfer.txt");
    SIM_Stop(target);
    return 0;
}
