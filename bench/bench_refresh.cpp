// What a tick of the watch list costs beyond the exchange with the target: 500 items,
// the simulated target as the other side, both measured in one run by turns. Prints the
// processor time of this thread; the aim is under 1 ms beyond the exchange.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "app/rooms.h"
#include "comm/communication.h"
#include "comm/ucm.h"
#include "runtime/headless/headless.h"
#include "settings/settings.h"
#include "sim/sim.h"
#include "ui/resource.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/list/refresh.h"
#include "watch/value/value_types.h"

namespace {

constexpr int PORT = 4;
constexpr int SWEEPS = 300;
constexpr uint32_t LIVE_ADDRESS = 0x8000; // values that move, so that lines change

double ThreadMs()
{
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

void FillList()
{
    const char *const types[] = {"u2", "i4", "x4", "f", "b", "t", "p2", "u8"};
    for (nLItems = 0; nLItems < LITEMS_MAX; ++nLItems) {
        LItem &item = aLItems[nLItems];
        item.name = "Module_Variable" + std::to_string(nLItems);
        item.address = item.givenAddress = LIVE_ADDRESS + static_cast<uint32_t>(nLItems % 8) * 4;
        VTY_SetFromField(&item, types[nLItems % 8]);
    }
}

struct Cost {
    double totalMs = 0, worstMs = 0;
    int count = 0;

    void add(double ms)
    {
        totalMs += ms;
        worstMs = std::max(worstMs, ms);
        ++count;
    }
    double mean() const
    {
        return totalMs / count;
    }
};

double ExchangeMs(int index)
{
    uint8_t bytes[8];
    const LItem &item = aLItems[index];
    const double start = ThreadMs();
    UCM_Read(STATION, item.address, static_cast<uint32_t>(item.size), bytes);
    return ThreadMs() - start;
}

double TickMs()
{
    const double start = ThreadMs();
    timerCB(PANEL_MAIN, MAIN_TIMER, EVENT_TIMER_TICK, 0);
    return ThreadMs() - start;
}

void PrintRow(const char *what, const Cost &cost)
{
    std::printf("%-28s %8.4f ms mean %8.4f ms worst  (%d)\n", what, cost.mean(), cost.worstMs,
                cost.count);
}

} // namespace

int main()
{
    std::string error;
    SIM_Target *target = SIM_Start(SIM_Options(), &error);
    if (!target) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 1;
    }
    setenv("VIREO2_COM4", SIM_DevicePath(target), 1);
    VR_ConnectRooms();
    HL_Reset();
    HL_LoadAllPanels();
    mainPanel = PANEL_MAIN;
    ncom = PORT;
    VIR2_StartPeriodicASC();
    FillList();
    Cost exchange, tick, sweepEnd;
    for (int sweep = 0; sweep < SWEEPS && isTimer; ++sweep) {
        for (int i = 0; i < SWEEP_LINES; ++i) {
            exchange.add(ExchangeMs(i));
            (i == SWEEP_LINES - 1 ? sweepEnd : tick).add(TickMs());
        }
    }
    UCM_Close();
    SIM_Stop(target);
    if (sweepEnd.count != SWEEPS) {
        std::fprintf(stderr, "communication was switched off\n");
        return 1;
    }
    PrintRow("exchange alone", exchange);
    PrintRow("tick within a sweep", tick);
    PrintRow("tick that ends a sweep", sweepEnd);
    const double perTick = (tick.totalMs + sweepEnd.totalMs) / (tick.count + sweepEnd.count);
    std::printf("mean tick : exchange         %8.2f\n", perTick / exchange.mean());
    std::printf("end of sweep beyond exchange %8.4f ms mean\n", sweepEnd.mean() - exchange.mean());
    return 0;
}
