// Starts and stops a simulated target for a test and names it to the program as port n.
#ifndef SIM_FIXTURE_H
#define SIM_FIXTURE_H

#include "sim/sim.h"

#include <cstdio>
#include <cstdlib>
#include <string>

// The target's device as serial port `port` through the environment; null when no pseudo
// terminal can be had.
inline SIM_Target *SIMT_Start(int port, const SIM_Options &options)
{
    std::string error;
    SIM_Target *target = SIM_Start(options, &error);
    if (!target) {
        fprintf(stderr, "simulated target: %s\n", error.c_str());
        return nullptr;
    }
    setenv(("VIREO2_COM" + std::to_string(port)).c_str(), SIM_DevicePath(target), 1);
    return target;
}

inline void SIMT_Stop(int port, SIM_Target *target)
{
    unsetenv(("VIREO2_COM" + std::to_string(port)).c_str());
    SIM_Stop(target);
}

#endif
