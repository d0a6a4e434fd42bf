// A recording as a user asks for it: a sampler feeds a recorder, triggers start and stop it or
// set markers, the reasons of gaps are noted in the file. The windows and the console program
// drive the same job; they step it and show what it tells. A running job stays where it is.
#ifndef SAMPLER_RECORD_JOB_H
#define SAMPLER_RECORD_JOB_H

#include "sampler/armed_recorder.h"
#include "sampler/sampler.h"

#include <string>
#include <vector>

struct RCJ_Listener {
    void (*message)(const std::string &text) = nullptr; // one line for the user
    void (*beep)() = nullptr;
};

struct RCJ_Job {
    SMP_Sampler sampler;
    ARC_Recorder recorder;
    bool isRunning = false;
    std::string problem; // why it ended by itself, "" when it did not

    // The rest is the job's own.
    RCJ_Listener listener;
    int64_t flushedUs = 0;
};

// Starts sampling, and recording unless a trigger is to start that. 0, or -1 with the reason
// in *problem; REC_ERR_EXISTS when the file is there and may not be replaced.
int RCJ_Start(RCJ_Job *job, const std::vector<SMP_Item> &items, int periodMs,
              const REC_Options &options, const std::vector<TRG_Trigger> &triggers,
              const RCJ_Listener &listener, std::string *problem, const SMP_Line *line = nullptr);
// As SMP_Step; SMP_IDLE once the job has ended, by RCJ_Stop, a full disk or a trigger.
int64_t RCJ_Step(RCJ_Job *job);
// Other items from now on, when they are others: another file goes on.
void RCJ_Follow(RCJ_Job *job, const std::vector<SMP_Item> &items);
void RCJ_Note(RCJ_Job *job, const std::string &kind, const std::string &text);
// Communication was switched off: what is not proven by now never will be.
void RCJ_Interrupt(RCJ_Job *job, const std::string &reason);
int RCJ_Stop(RCJ_Job *job); // 0, or REC_ERR_WRITE: job->problem
// "1200 rows, 36000 samples, 119.8 samples a second, 97.5 % of the line, 3 failed".
std::string RCJ_Summary(const RCJ_Job &job, int baud);

#endif
