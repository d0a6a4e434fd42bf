// What a tick of the watch list costs beyond the exchange with the target: 500 items,
// the simulated target as the other side, both measured in one run by turns. Prints the
// processor time of this thread; the aim is under 1 ms beyond the exchange.
#include <ctime>

#include "app/rooms.h"
#include "bench.h"
#include "comm/communication.h"
#include "runtime/headless/headless.h"
#include "ui/resource.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/list/refresh.h"
#include "watch/value/value_types.h"

namespace {

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
        VAL_SetFromField(&item, types[nLItems % 8]);
    }
}

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

void PrintRow(const char *what, const BEN_Cost &cost)
{
    std::printf("%-28s %8.4f ms mean %8.4f ms worst  (%d)\n", what, cost.MeanMs(), cost.worstMs,
                cost.count);
}

} // namespace

int main()
{
    SIM_Target *target = BEN_StartTarget(SIM_Options());
    VR_ConnectRooms();
    HL_Reset();
    HL_LoadAllPanels();
    mainPanel = PANEL_MAIN;
    ncom = BEN_PORT;
    VIR2_StartPeriodicASC();
    FillList();
    BEN_Cost exchange, tick, sweepEnd;
    for (int sweep = 0; sweep < SWEEPS && isTimer; ++sweep) {
        for (int i = 0; i < SWEEP_LINES; ++i) {
            exchange.Add(ExchangeMs(i));
            (i == SWEEP_LINES - 1 ? sweepEnd : tick).Add(TickMs());
        }
    }
    BEN_StopLine(target);
    if (sweepEnd.count != SWEEPS)
        BEN_Fail("communication was switched off");
    PrintRow("exchange alone", exchange);
    PrintRow("tick within a sweep", tick);
    PrintRow("tick that ends a sweep", sweepEnd);
    const double perTick = (tick.totalMs + sweepEnd.totalMs) / (tick.count + sweepEnd.count);
    std::printf("mean tick : exchange         %8.2f\n", perTick / exchange.MeanMs());
    std::printf("end of sweep beyond exchange %8.4f ms mean\n",
                sweepEnd.MeanMs() - exchange.MeanMs());
    return 0;
}
