// The running target: what the caller's side (sim.cpp) and the target's own thread
// (service.cpp) share. `lock` guards everything but the line.
#ifndef SIM_TARGET_H
#define SIM_TARGET_H

#include "faults.h"
#include "frame.h"
#include "line.h"
#include "loader.h"
#include "sim.h"
#include "station.h"

#include <cstdio>
#include <mutex>
#include <thread>

constexpr int SIM_STATIONS = 16;
constexpr int SIM_COMMANDS = 16;

struct SIM_Target {
    SIM_Options options;
    SIM_Line line;
    std::thread thread;
    FILE *log = nullptr;
    int64_t startNs = 0;

    mutable std::mutex lock;
    SIM_Station stations[SIM_STATIONS];
    SIM_Counters counters;
    std::mt19937 random;
    long answersLeft = -1; // until the target falls silent; -1 = never
    int errorCodes[SIM_COMMANDS] = {0};
    SIM_Loader loader; // in use with options.loader
};

// The thread's body: serves requests until the line is woken.
void SIM_Serve(SIM_Target *target);
void SIM_ServeModbus(SIM_Target *target);
void SIM_ServeLoader(SIM_Target *target); // of a target that runs its boot-strap loader

// Writes the loader's flash to its file. Only when the thread has ended.
bool SIM_SaveFlash(SIM_Target *target, std::string *error);

// A two-wire line gives back what is sent on it. What one read brought is echoed up to the end of
// a request before that is answered, and the rest when all is read.
struct SIM_Echo {
    bool isOn = false;
    size_t done = 0;    // bytes of this read
    int64_t fromNs = 0; // when the next one passes the wire
};
SIM_Echo SIM_BeginEcho(SIM_Target *target);
// Echoes what `bytes` has up to `end`. False when the target is to end.
bool SIM_EchoUpTo(SIM_Target *target, SIM_Echo *echo, const uint8_t *bytes, size_t end);

// What happens to an answer of either protocol, counted; a dropped one has no characters left.
SIM_Fate SIM_DecideFate(SIM_Target *target, uint8_t *frame, size_t *count);
const char *SIM_FateText(SIM_Fate fate); // as the log has it

// Seconds since the start.
double SIM_Elapsed(const SIM_Target *target);

#endif
