// What a script line costs beyond reading it and printing its report: scripts of 10,000
// lines that touch no target, against the same lines read and the same number of lines
// printed without running anything. Rounds alternate; medians count.
#include "app/rooms.h"
#include "bench.h"
#include "console/monitor/monitor.h"
#include "console/script/script.h"
#include "runtime/headless/headless.h"
#include "text/txfr.h"
#include "ui/resource.h"

namespace {

constexpr int LINES = 10000;
constexpr int ROUNDS = 15;
constexpr double LINES_PER_SECOND_AIM = 100000;
const char SCRIPT[] = "bench_script.scr";

struct Kind {
    const char *name;
    const char *lines[4]; // repeated to the end
    int reports;          // lines of the four that print
};
const Kind KINDS[] = {
    {"commands", {"language EN", "language CZ", "station 1", "language EN"}, 4},
    {"settings that change", {"station 1", "station 2", "station 3", "station 4"}, 4},
    {"comments and labels", {"; a comment", "Label :", "", "; another"}, 0},
};

void WriteScript(const Kind &kind)
{
    std::FILE *file = std::fopen(SCRIPT, "wb");
    if (file == nullptr)
        BEN_Fail("the script could not be written");
    for (int i = 0; i < LINES; i++)
        std::fprintf(file, "%s\n", kind.lines[i % 4]);
    std::fclose(file);
}

double RunScript(const Kind &)
{
    const uint64_t start = PLT_TickUs();
    if (ExecMonScript(SCRIPT, consolePanel) != 0)
        BEN_Fail("the script failed");
    return static_cast<double>(PLT_TickUs() - start);
}

double ReadAndPrint(const Kind &kind)
{
    const uint64_t start = PLT_TickUs();
    const int file = TXFR_Open(SCRIPT);
    char line[LINE_CHARS_MAX];
    for (int i = 0; TXFR_RdLine(file, line, sizeof line) >= 0; i++)
        if (i % 4 < kind.reports)
            PrintMonStr(std::string(line) + " -> OK!");
    return static_cast<double>(PLT_TickUs() - start);
}

void Compare(const Kind &kind)
{
    WriteScript(kind);
    std::vector<double> floor, script;
    for (int round = 0; round < ROUNDS; round++) {
        script.push_back(RunScript(kind));
        floor.push_back(ReadAndPrint(kind));
    }
    const double rate = LINES / BEN_Median(script) * 1e6;
    std::printf("%-24s %12.0f %12.0f %10.2f %10.2f\n", kind.name, LINES / BEN_Median(floor) * 1e6,
                rate, BEN_Median(script) / BEN_Median(floor), rate / LINES_PER_SECOND_AIM);
}

} // namespace

int main()
{
    VR_ConnectRooms();
    HL_Reset();
    if (HL_LoadAllPanels() < 0)
        BEN_Fail("a panel could not be loaded");
    mainPanel = PANEL_MAIN;
    consolePanel = PANEL_CONSOLE;
    UCM_Init();
    std::FILE *out = std::fopen("/dev/null", "w");
    HL_SetStreams(out, nullptr);
    VR_isFullCommandSet = true;
    std::printf("%-24s %12s %12s %10s %10s\n", "10,000 lines", "floor l/s", "script l/s", "ratio",
                "of aim");
    for (const Kind &kind : KINDS)
        Compare(kind);
    std::remove(SCRIPT);
    return 0;
}
