// What the benches share: an end with a reason, the best or the median of several rounds, a
// simulated target behind the port that the link opens, and the table of what part of the
// wire's speed was reached. Header only, as each bench is a program of its own.
#ifndef BENCH_BENCH_H
#define BENCH_BENCH_H

#include "comm/ucm.h"
#include "platform/system.h"
#include "settings/settings.h"
#include "sim/sim.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

constexpr int BEN_PORT = 9, BEN_BAUD = 115200;
constexpr double BEN_BITS_PER_CHAR = 11; // of both protocols

[[noreturn]] inline void BEN_Fail(const std::string &what)
{
    std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, what.c_str());
    std::exit(1);
}

template <typename Work> double BEN_Seconds(Work work)
{
    const uint64_t start = PLT_TickUs();
    work();
    return static_cast<double>(PLT_TickUs() - start) / 1e6;
}

// The best counts: what else the machine does is not measured.
template <typename Work> double BEN_BestSeconds(int rounds, Work work)
{
    double best = BEN_Seconds(work);
    for (int round = 1; round < rounds; ++round)
        best = std::min(best, BEN_Seconds(work));
    return best;
}

inline double BEN_Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

struct BEN_Cost {
    double totalMs = 0, worstMs = 0;
    int count = 0;

    void Add(double ms)
    {
        totalMs += ms;
        worstMs = std::max(worstMs, ms);
        ++count;
    }
    double MeanMs() const
    {
        return totalMs / count;
    }
};

inline SIM_Target *BEN_StartTarget(const SIM_Options &options)
{
    std::string error;
    SIM_Target *target = SIM_Start(options, &error);
    if (target == nullptr)
        BEN_Fail(error);
    setenv(("VIREO2_COM" + std::to_string(BEN_PORT)).c_str(), SIM_DevicePath(target), 1);
    return target;
}

// The settings say the same as the open link: what plans by characters reads them.
inline void BEN_OpenLine(int protocol)
{
    VR_nProtocol = static_cast<int16_t>(protocol);
    ncom = BEN_PORT;
    bRate = BEN_BAUD;
    if (UCM_Open(protocol, BEN_PORT, BEN_BAUD) < 0)
        BEN_Fail("the port cannot be opened");
}

// A target without live variables at `baud`, 0 for as fast as the machine, and the link to it.
inline SIM_Target *BEN_StartLine(int protocol, int baud)
{
    SIM_Options options;
    options.modbus = protocol == PROTOCOL_MODBUS;
    options.demo = false;
    options.baud = baud;
    SIM_Target *target = BEN_StartTarget(options);
    BEN_OpenLine(protocol);
    return target;
}

inline void BEN_StopLine(SIM_Target *target)
{
    UCM_Close();
    SIM_Stop(target);
}

inline double BEN_WireSeconds(double chars)
{
    return chars * BEN_BITS_PER_CHAR / BEN_BAUD;
}

inline void BEN_PrintWireHead(const char *title)
{
    std::printf("%-36s %10s %10s %10s\n", title, "wire s", "taken s", "% of wire");
}

inline void BEN_PrintWire(const char *what, double limit, double seconds)
{
    std::printf("%-36s %10.3f %10.3f %10.2f\n", what, limit, seconds, 100 * limit / seconds);
}

#endif
