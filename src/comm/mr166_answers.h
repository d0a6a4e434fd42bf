// Whose answer is it? Sorts the characters of an mr166 line into frames and looks each answer
// up in the book of open ones. Owns that book and the frame that has begun. Only the exchange
// (mr166_try.cpp, mr166_exchange.cpp) calls this.
#ifndef COMM_MR166_ANSWERS_H
#define COMM_MR166_ANSWERS_H

#include "comm/in_step.h"
#include "comm/mr166_driver.h"

extern STEP_Line Mr166_line; // which answers may still come, by station

// How the waiting for an answer goes on after a character.
struct Mr166_Judgement {
    enum Kind { WAIT, ACCEPTED, REFUSED, PROOF, ECHO, UNSOUND } kind = WAIT;
    int code = 0;         // of the answer check, of a frame that was none's answer
    bool isOlder = false; // an answer to an older request: the partner works them off
};

// Command and data bytes are all that tells the answers of one station apart.
STEP_Shape Mr166_ShapeOf(int command, unsigned dataBytes);
unsigned Mr166_ExpectedData(const Mr166_Request &request); // bytes of the answer
STEP_Shape Mr166_ShapeOfAnswerTo(const Mr166_Request &request);

void Mr166_ResetAnswers();                            // drops the frame that has begun
size_t Mr166_CountBegunAnswer();                      // its characters
int Mr166_CheckBegunAnswer(int station, int command); // the answer check's code for it
// Sorts one character. `request` is the one waited for, null while nobody waits. An accepted
// answer is put where the answer check puts it: Mr166_abyRcv, Mr166_abyRcvData, cnRcvData.
Mr166_Judgement Mr166_JudgeByte(char byte, const Mr166_Request *request, int station);
// Characters nobody waits for: what was left over, or what a strict reading refused.
void Mr166_SortLeftOver(const char *bytes, size_t count, int station);
// Before a request: what waits then says that the line is out of step.
void Mr166_ClearInput(const Mr166_Driver &driver, int station);

#endif
