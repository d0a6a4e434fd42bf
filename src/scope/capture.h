// One recording of the scope as values a person reads: every sample the target sent, scaled
// and with its time. What windows and files show; independent of the target once made.
#ifndef SCOPE_CAPTURE_H
#define SCOPE_CAPTURE_H

#include "scope/setup.h"

#include <string>
#include <vector>

struct SCP_Trace {
    std::string name, unit;
    int type = SX_I2;
    double factor = 1, offset = 0; // already applied to the samples
    std::vector<double> samples;   // NaN where there is none
};

struct SCP_Capture {
    std::string id, taken; // scope's name; local time of the upload, "2026-11-21 13:05:00"
    double rate = 1;       // samples a second
    int subPd = 1;
    int mode = 0, slope = 1;
    double level = 0, position = 50;
    int triggerAt = 0; // index of the sample at time 0; -1: the one before the first
    std::vector<SCP_Trace> traces;
};

constexpr int CAPTURE_SAMPLES_MAX = 100000; // a row each; more in a file is refused

// From the last upload, by the setup it was run with (SCP_GetRunSetup). Channels that are off,
// blocked or without values are left out.
SCP_Capture SCP_MakeCapture(const SCP_Setup &setup);
// Seconds from the trigger to sample `index`.
double SCP_TimeOf(const SCP_Capture &capture, size_t index);

// CSV, see docs/manual/reference/formats.md. 0, or -1: the old file is untouched. "-" writes to
// standard output.
int SCP_SaveCapture(const std::string &path, const SCP_Capture &capture);
// 0, or -1 with the reason in *problem; the capture is as it was.
int SCP_LoadCapture(const std::string &path, SCP_Capture *capture, std::string *problem);

#endif
