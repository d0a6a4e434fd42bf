// One try of an mr166 request: sent, its answer read and checked, the outcome counted and
// put into the link's variables. In step the answer is read as the driver reads it, and
// failures have the driver's codes; otherwise characters are sorted and only what can be
// nobody else's answer is accepted. Only mr166_exchange.cpp calls this.
#ifndef COMM_MR166_TRY_H
#define COMM_MR166_TRY_H

#include "comm/mr166_answers.h"
#include "comm/mr166_driver.h"

constexpr int MRTRY_STATIONS = 16;

enum class Mr166_ReadingKind { REQUEST, REPETITION, PROBE };
enum class Mr166_Examined { GOOD, REFUSED, BAD_ARGUMENT };

struct Mr166_Reading {
    Mr166_Judgement::Kind kind = Mr166_Judgement::WAIT; // still WAIT: the time is over
    int code = 0;                                       // of the first frame that answered nothing
    bool isGone = false, isEchoSeen = false;
};

// What forbids the request before anything is sent. `closedState` is what a closed port
// leaves behind in wMr166State.
Mr166_Examined Mr166_ExamineAnswer(const Mr166_Driver &driver, const Mr166_Request &request,
                                   uint16_t closedState);
// Sends the request; everything that can come of it is in the book from here on.
bool Mr166_SendTry(const Mr166_Driver &driver, const Mr166_Request &request, bool isProbe);

// Reads the way the driver reads a line that is in step. 1 answered, 0 failed.
int Mr166_ReadInStep(const Mr166_Driver &driver, const Mr166_Request &request);
// Sorts what comes until the answer is there or the time is over. A probe's wait ends with
// any probe's answer, because that may be proof enough.
Mr166_Reading Mr166_ReadSorted(const Mr166_Driver &driver, const Mr166_Request &request,
                               Mr166_ReadingKind sending);
int Mr166_FinishSorted(const Mr166_Request &request, const Mr166_Reading &reading); // 1 or 0

int Mr166_RefuseTry(int code); // sets the link's error variables; the code
int Mr166_CancelTry();         // the user broke off; 0
// Where a read of the station was answered last. Whether there is such a place.
bool Mr166_GoodAddress(int station, uint32_t *address);
void Mr166_NoteOpenedDriver(); // forgets what was known of the line

#endif
