// The line: a wire to the program (wire.h), and the clock of a line on which every character
// takes its time. All times are nanoseconds of the monotonic clock. Used by the target's
// thread only, except SIM_WakeLine.
#ifndef SIM_LINE_H
#define SIM_LINE_H

#include "wire.h"

struct SIM_Line {
    SIM_Wire *wire = nullptr; // owned
    std::string device;       // what the program opens
    int64_t charNs = 0;       // time of one character, 0 = no pacing
    int64_t receiveNs = 0;    // when the last character received had passed the wire
    int64_t sendNs = 0;       // when the last character sent will have passed the wire
    int64_t lateNs = 0;       // by how much the last sending missed its own deadline
};

// A pseudo terminal, or with `tcp` ("[host:]port") a port of the network. baud 0 = no pacing;
// link "" = none. False with a message in *error, nothing left open.
bool SIM_OpenLine(SIM_Line *line, int baud, const std::string &tcp, const std::string &link,
                  std::string *error);
void SIM_CloseLine(SIM_Line *line);

// Ends every wait on the line, now and from now on. Any thread.
void SIM_WakeLine(SIM_Line *line);

// Waits for characters. Returns their number, 0 when there were none after all, -1 when the
// line was woken.
int SIM_ReadLine(SIM_Line *line, uint8_t *bytes, size_t capacity);
// To be called for each character read, in order: moves the receiving clock over it.
void SIM_PassReceived(SIM_Line *line);

// Sends so that the first character starts at startNs or when the wire is free, and none
// arrives before its time. False when the line was woken meanwhile.
bool SIM_SendLine(SIM_Line *line, const uint8_t *bytes, size_t count, int64_t startNs);
bool SIM_WaitUntil(SIM_Line *line, int64_t timeNs);

#endif
