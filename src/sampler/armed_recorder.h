// A recorder with triggers: rows go in, and conditions on them start and stop the recording, set
// markers and beep. Whoever samples feeds one: a recording of the watch list, or a graph.
#ifndef SAMPLER_ARMED_RECORDER_H
#define SAMPLER_ARMED_RECORDER_H

#include "sampler/recorder.h"
#include "sampler/sampler.h"
#include "sampler/trigger.h"

#include <string>
#include <vector>

// Who is told, within REC_PutArmedRow. Entries may be null.
struct REC_ArmedListener {
    void *context = nullptr;
    void (*message)(void *context, const std::string &text) = nullptr; // one line for the user
    void (*beep)(void *context) = nullptr;
    void (*marker)(void *context, int64_t timeUs, const std::string &text) = nullptr;
};

struct REC_ArmedRecorder {
    REC_Recorder file;
    bool isOn = false; // it records, or waits for the trigger that starts it
    std::vector<SMP_Trigger> triggers;
    REC_ArmedListener listener;
    uint64_t rows = 0, markers = 0; // of all files since REC_BeginArmed

    // The rest is its own.
    REC_Options options;
    bool hasBegun = false; // a file has been opened: the next gets a time stamp
};

// Records from now on, or from the moment a trigger says so, when there is one that starts. 0,
// or a code of REC_Open: file.problem.
int REC_BeginArmed(REC_ArmedRecorder *recorder, const REC_Options &options,
                   const std::vector<SMP_Item> &items, int64_t nowUs);
// A row, whether it records or not. A disk that is full ends it: file.problem.
void REC_PutArmedRow(REC_ArmedRecorder *recorder, const SMP_Store &store, const SMP_Row &row);
// 0, or REC_ERR_WRITE.
int REC_EndArmed(REC_ArmedRecorder *recorder);

#endif
