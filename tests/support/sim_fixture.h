// Starts and stops a simulated target for a test and names it to the program as port n.
#ifndef SIM_FIXTURE_H
#define SIM_FIXTURE_H

#include "sim/sim.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

// The target's device as serial port `port` through the environment; null when no pseudo
// terminal can be had. By a link of this process's own: the system gives a device's number to the
// next who asks, and a program that waits for its port to come back would open a stranger's.
inline SIM_Target *SIMT_Start(int port, SIM_Options options)
{
    const std::string name = "vireo2-" + std::to_string(getpid()) + "-" + std::to_string(port);
    std::string error;
    if (options.tcp.empty())
        options.link = (std::filesystem::temp_directory_path() / name).string();
    SIM_Target *target = SIM_Start(options, &error);
    if (!target) {
        fprintf(stderr, "simulated target: %s\n", error.c_str());
        return nullptr;
    }
    setenv(("VIREO2_COM" + std::to_string(port)).c_str(),
           options.tcp.empty() ? options.link.c_str() : SIM_DevicePath(target), 1);
    return target;
}

inline void SIMT_Stop(int port, SIM_Target *target)
{
    unsetenv(("VIREO2_COM" + std::to_string(port)).c_str());
    SIM_Stop(target);
}

#endif
