// A conversation with the service terminal of a target's program: characters come out of one
// ring of its block and go into the other, step by step, each once and in order. Knows no
// window and no clock; its owner steps it and shows what is new.
#ifndef TERMINAL_SERVICE_H
#define TERMINAL_SERVICE_H

#include "terminal/sender.h"

#include <string>

constexpr char TRM_SERVICE_NAME[] = "Term166"; // of its block, unless somebody says another

struct TRM_ServiceSession {
    TRM_BlockPlace place;
    bool isOpen = false;    // a good block was found there
    bool wasOpen = false;   // once, at this place: `block` tells a restart
    TRM_ServiceBlock block; // as last proven
    uint32_t readIndex = 0; // all in front of it has been received
    // The index was written without an answer: the target may still have this one.
    bool isReadInDoubt = false;
    uint32_t readBefore = 0;
    int unsteady = 0;           // readings in a row that did not fit together
    bool isInterrupted = false; // TRM_InterruptService: the sender knows no index
    TRM_Sender sender;
    uint64_t received = 0, sent = 0; // bytes
};

// What one step has brought.
struct TRM_ServiceNews {
    std::string received;   // as the target wrote it
    std::string taken;      // what waited and the target has now
    std::string message;    // what went wrong or is worth knowing, "" when nothing
    bool isLineBad = false; // nothing was heard: the next step had better wait a while
};

// Begins with nothing received and nothing waiting; the line is not used yet.
void TRM_BeginService(TRM_ServiceSession *session, const TRM_BlockPlace &place);
// One look at the block: at most TRM_STEP_BYTES each way. A block that is not good closes the
// session, and a later step opens it again once it is.
constexpr uint32_t TRM_STEP_BYTES = 128;
void TRM_StepService(TRM_ServiceSession *session, TRM_ServiceNews *news);
// The line is given up for a while, and it may be another target that is found next. What
// was received stays received; nothing waits any more. How many bytes were forgotten.
size_t TRM_InterruptService(TRM_ServiceSession *session);
// There is more to do at once than to wait for what the target does.
bool TRM_IsServiceBusy(const TRM_ServiceSession &session);

// The texts that both kinds of terminal say.
std::string TRM_NoBlockText(const TRM_BlockPlace &place, int result);
std::string TRM_RestartText(size_t forgotten);
std::string TRM_LineText();
std::string TRM_ForeignText(size_t forgotten);

// The service terminal without a window (talk.cpp): a line for the target of the station, and what
// it answers, for the console and scripts. The link is the caller's.
// A program without windows: term166 shows in the console what the target writes.
extern bool TRM_isWithoutWindow;
// Sends a text (UTF-8, "" for nothing) and lets `print` have each line that comes, until the
// target is quiet for a second, ten seconds at most. Not while the window talks. 0, or -1 with the
// reason in *problem.
int TRM_Talk(const std::string &text, void (*print)(const std::string &line), std::string *problem);

#endif
