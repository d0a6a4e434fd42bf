// Characters on their way into a ring of the target: each goes exactly once. What is put into
// the ring counts for the target only when the index behind it is written, an absolute number
// that may be written twice; whether an unanswered write of it arrived, the index tells that is
// read next. A sender belongs to one session with one block.
#ifndef TERMINAL_SENDER_H
#define TERMINAL_SENDER_H

#include "terminal/block.h"

#include <cstdint>
#include <string>

constexpr size_t TRM_WAITING_MAX = 0x10000; // bytes that may wait for room

struct TRM_Sender {
    std::string waiting;   // bytes the target has not got, the first of them perhaps on their way
    uint32_t index = 0;    // the write index as the target last had it
    uint32_t onTheWay = 0; // bytes whose index was written without an answer
};

// Nothing waits; the ring's write index is the one to go on from.
void TRM_BeginSender(TRM_Sender *sender, const TRM_Ring &ring);
// Adds bytes to what waits. false: they are too many, and none was added.
bool TRM_AddToSender(TRM_Sender *sender, const std::string &bytes);
// Forgets what waits, but for what may be in the target already. How many bytes were forgotten.
size_t TRM_CancelSender(TRM_Sender *sender);

enum {
    TRM_SEND_ERR_LINE = -1,    // a message failed; go on with the ring as it is read next
    TRM_SEND_ERR_FOREIGN = -2, // somebody else has moved the index: the sender has begun anew
};
// Sends what fits, by a ring as it was just read and proven. *taken, what the target has got by
// now that waited before. 0 or a code.
int TRM_SendCharacters(TRM_Sender *sender, int station, uint16_t session, const TRM_Ring &ring,
                       std::string *taken);

#endif
