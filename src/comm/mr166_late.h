// Late answers. An answer carries neither an address nor a number: one that comes after
// its time-out looks like the answer to the next request of the same station, command
// and size, and would put a wrong value on the screen. After a time-out the link
// therefore lets the line settle before it asks for something else. A repetition of the
// same request needs no rest (either answer is right), and a line that answers in time
// never waits.
#ifndef COMM_MR166_LATE_H
#define COMM_MR166_LATE_H

// Before the request in the send buffer goes out: discards what earlier, unanswered
// requests may still bring. Returns at once unless one is outstanding.
void MrLATE_Settle();
void MrLATE_Sent();     // the request in the send buffer has gone out
void MrLATE_Missed();   // its answer did not come, or what came was not its answer
void MrLATE_Answered(); // an answer came; of repetitions others may follow
void MrLATE_Forget();   // the port is gone: nothing can come any more

#endif
