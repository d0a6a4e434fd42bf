// A conversation with the service terminal of a target's program: characters come out of one
// ring of its block and go into the other, step by step, each once and in order. Knows no
// window and no clock; its owner steps it and shows what is new.
#ifndef TERMINAL_SERVICE_H
#define TERMINAL_SERVICE_H

#include "terminal/sender.h"

#include <string>

constexpr char TSV_NAME[] = "Term166"; // of its block, unless somebody says another

struct TSV_Session {
    TBK_Place place;
    bool isOpen = false;    // a good block was found there
    bool wasOpen = false;   // once, at this place: `block` tells a restart
    TBK_Service block;      // as last proven
    uint32_t readIndex = 0; // all in front of it has been received
    // The index was written without an answer: the target may still have this one.
    bool isReadInDoubt = false;
    uint32_t readBefore = 0;
    int unsteady = 0;           // readings in a row that did not fit together
    bool isInterrupted = false; // TSV_Interrupt: the sender knows no index
    TSN_Sender sender;
    uint64_t received = 0, sent = 0; // bytes
};

// What one step has brought.
struct TSV_News {
    std::string received;   // as the target wrote it
    std::string taken;      // what waited and the target has now
    std::string message;    // what went wrong or is worth knowing, "" when nothing
    bool isLineBad = false; // nothing was heard: the next step had better wait a while
};

// Begins with nothing received and nothing waiting; the line is not used yet.
void TSV_Begin(TSV_Session *session, const TBK_Place &place);
// One look at the block: at most TSV_STEP_BYTES each way. A block that is not good closes the
// session, and a later step opens it again once it is.
constexpr uint32_t TSV_STEP_BYTES = 128;
void TSV_Step(TSV_Session *session, TSV_News *news);
// The line is given up for a while, and it may be another target that is found next. What
// was received stays received; nothing waits any more. How many bytes were forgotten.
size_t TSV_Interrupt(TSV_Session *session);
// There is more to do at once than to wait for what the target does.
bool TSV_IsBusy(const TSV_Session &session);

// The texts that both kinds of terminal say.
std::string TSV_NoBlockText(const TBK_Place &place, int result);
std::string TSV_RestartText(size_t forgotten);
std::string TSV_LineText();
std::string TSV_ForeignText(size_t forgotten);

// The service terminal without a window (talk.cpp): a line for the target of the station, and what
// it answers, for the console and scripts. The link is the caller's.
// A program without windows: term166 shows in the console what the target writes.
extern bool TLK_isWithoutWindow;
// Sends a text (UTF-8, "" for nothing) and lets `print` have each line that comes, until the
// target is quiet for a second, ten seconds at most. Not while the window talks. 0, or -1 with the
// reason in *problem.
int TLK_Talk(const std::string &text, void (*print)(const std::string &line), std::string *problem);

#endif
