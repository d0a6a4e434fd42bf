// `save` and `load` of 4,096 elements over a paced line against the time the characters
// of their blocks take on the wire.
#include "app/rooms.h"
#include "bench.h"
#include "console/monitor/monitor.h"
#include "runtime/headless/headless.h"
#include "ui/resource.h"

namespace {

constexpr uint32_t ELEMENTS = 4096;
constexpr int ROUNDS = 3;

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

void Measure(const Case &c)
{
    const std::string line = std::string(c.command) + " 8000H, " + c.type + ", " +
                             std::to_string(ELEMENTS) + ", bench_transfer.txt";
    const double seconds = BEN_BestSeconds(ROUNDS, [&] {
        if (RunMonitor(consolePanel, line.c_str()) < 0)
            BEN_Fail(szScrFnErrMsg);
    });
    BEN_PrintWire((std::string(c.command) + " " + c.type).c_str(),
                  BEN_WireSeconds(c.bytes / c.blockBytes * c.blockChars), seconds);
}

} // namespace

int main()
{
    SIM_Options options;
    options.baud = BEN_BAUD;
    options.demo = false;
    SIM_Target *target = BEN_StartTarget(options);
    VR_ConnectRooms();
    HL_Reset();
    if (HL_LoadAllPanels() < 0)
        BEN_Fail("a panel could not be loaded");
    mainPanel = PANEL_MAIN;
    consolePanel = PANEL_CONSOLE;
    UCM_Init();
    UCM_UseWin32(1);
    ncom = BEN_PORT;
    bRate = BEN_BAUD;
    STATION = 1;
    VR_isFullCommandSet = true;
    BEN_PrintWireHead("4,096 elements at 115200 baud");
    for (const Case &c : CASES)
        Measure(c);
    std::remove("bench_transfer.txt");
    SIM_Stop(target);
    return 0;
}
