// A recording as a user asks for it: a sampler feeds a recorder, triggers start and stop it or
// set markers, the reasons of gaps are noted in the file. The windows and the console program
// drive the same job; they step it and show what it tells. A running job stays where it is.
#ifndef SAMPLER_RECORD_JOB_H
#define SAMPLER_RECORD_JOB_H

#include "sampler/armed_recorder.h"
#include "sampler/sampler.h"

#include <string>
#include <vector>

struct REC_JobListener {
    void (*message)(const std::string &text) = nullptr; // one line for the user
    void (*beep)() = nullptr;
};

struct REC_Job {
    SMP_Sampler sampler;
    REC_ArmedRecorder recorder;
    bool isRunning = false;
    std::string problem; // why it ended by itself, "" when it did not

    // The rest is the job's own.
    REC_JobListener listener;
    int64_t flushedUs = 0;
};

// Starts sampling, and recording unless a trigger is to start that. 0, or -1 with the reason
// in *problem; REC_ERR_EXISTS when the file is there and may not be replaced.
int REC_StartJob(REC_Job *job, const std::vector<SMP_Item> &items, int periodMs,
                 const REC_Options &options, const std::vector<SMP_Trigger> &triggers,
                 const REC_JobListener &listener, std::string *problem,
                 const SMP_Line *line = nullptr);
// As SMP_Step; SMP_IDLE once the job has ended, by REC_StopJob, a full disk or a trigger.
int64_t REC_StepJob(REC_Job *job);
// Other items from now on, when they are others: another file goes on.
void REC_FollowJob(REC_Job *job, const std::vector<SMP_Item> &items);
void REC_NoteInJob(REC_Job *job, const std::string &kind, const std::string &text);
// Communication was switched off: what is not proven by now never will be.
void REC_InterruptJob(REC_Job *job, const std::string &reason);
int REC_StopJob(REC_Job *job); // 0, or REC_ERR_WRITE: job->problem
// "1200 rows, 36000 samples, 119.8 samples a second, 97.5 % of the line, 3 failed".
std::string REC_JobSummary(const REC_Job &job, int baud);

#endif
