// What being out of step costs, in virtual time (the same on every machine): the time from a
// lost answer to the next good value against the time-out, the share of exchanges that
// are probes or repetitions on good and bad lines, and what no rule can see, in wrong values.
#include "comm/mr166_link.h"
#include "comm/ucm.h"
#include "virtual_line.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr int ITEMS = 13, SWEEPS = 2000, ROUNDS_MAX = 3;

struct Case {
    const char *name;
    VL_Schedule schedule;
};

struct Figures {
    uint64_t right = 0, wrong = 0, missing = 0, reads = 0;
    double worstMs = 0, sumMs = 0; // of reads that met a failure
    uint64_t failures = 0;
};

void ReadSweep(Figures *figures)
{
    uint8_t bytes[ITEMS][2];
    bool isRead[ITEMS] = {};
    int proof = UCM_READ_AGAIN;
    for (int round = 0; round < ROUNDS_MAX && proof == UCM_READ_AGAIN; ++round) {
        for (uint32_t i = 0; i < ITEMS; ++i) {
            const uint64_t start = VL_NowUs();
            const uint32_t failed = EC_dwBlkRpt;
            isRead[i] = UCM_Read(1, 0x1000 + 2 * i, 2, bytes[i]) >= 0;
            ++figures->reads;
            if (EC_dwBlkRpt == failed || !isRead[i])
                continue;
            const double ms = static_cast<double>(VL_NowUs() - start) / 1000;
            figures->sumMs += ms;
            figures->worstMs = std::max(figures->worstMs, ms);
            ++figures->failures;
        }
        proof = UCM_Prove();
    }
    for (uint32_t i = 0; i < ITEMS; ++i) {
        const bool isGood = bytes[i][0] == VL_Memory(1, 0x1000 + 2 * i) &&
                            bytes[i][1] == VL_Memory(1, 0x1001 + 2 * i);
        if (proof != UCM_PROVEN || !isRead[i])
            ++figures->missing;
        else
            ++(isGood ? figures->right : figures->wrong);
    }
}

VL_Schedule Line(double delayMin, double delayMax, double loss, double damage, double duplicate)
{
    VL_Schedule schedule;
    schedule.delayMin = delayMin * VL_TIMEOUT_MS;
    schedule.delayMax = delayMax * VL_TIMEOUT_MS;
    schedule.loss = loss;
    schedule.damage = damage;
    schedule.duplicate = duplicate;
    return schedule;
}

} // namespace

int main()
{
    const Case cases[] = {
        {"good", Line(.01, .02, 0, 0, 0)},
        {"5 % lost", Line(.01, .02, .05, 0, 0)},
        {"5 % lost, 5 % damaged", Line(.01, .02, .05, .05, 0)},
        {"answers after 0.5 to 2.2 time-outs", Line(.5, 2.2, 0, 0, 0)},
        {"5 % repeated", Line(.01, .02, 0, 0, .05)},
        {"5 % repeated and 5 % lost", Line(.01, .02, .05, 0, .05)},
    };
    std::printf("%-36s %8s %6s %8s %10s %12s %12s\n", "line", "right", "wrong", "missing",
                "exchanges", "mean after", "worst after");
    std::printf("%-36s %8s %6s %8s %10s %12s %12s\n", "", "", "", "", "per read", "a failure",
                "(time-outs)");
    for (const Case &line : cases) {
        VL_Start(line.schedule, 5);
        UCM_Init();
        Mr166_nTimeoutMs = VL_TIMEOUT_MS;
        MrASC_UseWin32(1);
        if (UCM_Open(1, 1, 19200) != 0)
            return 1;
        Figures figures;
        for (int i = 0; i < SWEEPS; ++i) {
            ReadSweep(&figures);
            VL_Pass(3.0 * VL_TIMEOUT_MS);
        }
        const double mean =
            figures.failures > 0 ? figures.sumMs / static_cast<double>(figures.failures) : 0;
        std::printf("%-36s %8llu %6llu %8llu %10.3f %12.2f %12.2f\n", line.name,
                    static_cast<unsigned long long>(figures.right),
                    static_cast<unsigned long long>(figures.wrong),
                    static_cast<unsigned long long>(figures.missing),
                    static_cast<double>(VL_counters.requests) / static_cast<double>(figures.reads),
                    mean / VL_TIMEOUT_MS, figures.worstMs / VL_TIMEOUT_MS);
        UCM_Close();
    }
    return 0;
}
