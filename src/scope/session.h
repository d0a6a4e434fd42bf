// The steps a user takes with the target's scope, for whichever generation it is: find it,
// set it up, run, force, upload. Each step says what it does and how it ended through
// SCP_View; the scope's window and the console program call the same steps.
#ifndef SCOPE_SESSION_H
#define SCOPE_SESSION_H

#include "scope/setup.h"

#include <string>

// Said by the steps, the window and the console program.
constexpr char SCP_NO_CHANNEL[] = "No channel is on.";
constexpr char SCP_NO_TRIGGER[] = "No trigger (try snap).";
constexpr char SCP_UPLOADING[] = "Uploading ...";

struct SCP_View { // each may be null
    void (*status)(const std::string &text);
    // The setup names another scope than the processor's default: which one is meant. Called
    // with the setup's in *id; false when the user has cancelled.
    bool (*askId)(const std::string &defaultId, std::string *id);
    SX_Progress progress;
};

enum SCP_State {
    SCP_UNKNOWN = -1, // no answer, or no init yet
    SCP_COMPLETE = 0,
    SCP_ARMED = 1,    // waits for the trigger
    SCP_TRIGGERED = 2 // samples what follows the trigger
};

// Finds the scope and tells it the setup's channels. 0, or negative after a status text.
// The setup takes over another name the user has chosen.
int SCP_Init(SCP_Setup *setup, const SCP_View &view);
// Each writes its part of the setup. 0, or -1 after a status text.
int SCP_SetChannels(const SCP_Setup &setup, const SCP_View &view);
int SCP_SetTrigger(const SCP_Setup &setup, const SCP_View &view); // mode, level, position
int SCP_SetSubPeriod(const SCP_Setup &setup, const SCP_View &view);
int SCP_SetAll(const SCP_Setup &setup, const SCP_View &view); // all three, ends at a failure

int SCP_Run(const SCP_View &view);
int SCP_Snap(const SCP_View &view); // does not wait for the trigger
// 0, or what S3_ReadData says; SX_awData and the records hold the samples then.
int SCP_Upload(const SCP_View &view);
SCP_State SCP_GetState();
// What the recording in the target was run with, whatever has been set since: with it an upload
// is labelled. Before the first run what the target was told last.
const SCP_Setup &SCP_GetRunSetup();

// The trigger's slope argument that compares as channel 1's type does.
int SCP_SlopeOf(int type);

#endif
