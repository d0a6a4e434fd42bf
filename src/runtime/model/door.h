// The program's side of the door (runtime/view.h): the two queues. The only place with a
// mutex. Changes that were not fetched yet are merged, so that the queue holds at most one
// entry for each thing a user can see.
#ifndef RUNTIME_MODEL_DOOR_H
#define RUNTIME_MODEL_DOOR_H

#include <deque>
#include <string>

#include "runtime/view.h"

void DOOR_Reset();
// Merges changes into what the view has not fetched yet, and wakes it. `stamp` is the
// program's count of value changes they bring the view up to.
void DOOR_Put(VIEW_Batch &&changes, uint32_t stamp);
// What DOOR_Put does to the batch that waits; takes `fresh` apart. Neither locks nor wakes.
void DOOR_Merge(VIEW_Batch *old, VIEW_Batch &fresh);
// Moves the events that have come to the end of *queue. False when there were none; costs
// next to nothing then.
bool DOOR_FetchEvents(std::deque<VIEW_Event> *queue);
// Replaces the last event of a queue by one that says the same of a later moment (a value,
// a place). False when it has to stand on its own.
bool DOOR_Coalesce(std::deque<VIEW_Event> *queue, const VIEW_Event &event);
// Waits until an event comes, at most until PLT_TickUs() reaches `untilUs`.
void DOOR_WaitEvent(uint64_t untilUs);
void DOOR_CountHandled();

void DOOR_SetBusy(bool isBusy); // now; forgets the text
void DOOR_SetBusyText(const std::string &text);

bool DOOR_IsCancelled(int progress);
void DOOR_ForgetCancel(int progress);
// An urgent event waits, a progress box was cancelled, or an interrupt came.
bool DOOR_IsBreakWished();
void DOOR_EndUrgent(const VIEW_Event &event); // it has had its turn
// The callback has ended. An interrupt that nobody in it asked for ends the program.
void DOOR_EndInterrupt();
// Whether an interrupt has broken off a callback since this was asked last.
bool DOOR_TakeInterrupt();
// From the thread that watches signals: an interrupt breaks what is running, or ends an
// idle program; anything else ends it.
void DOOR_OnSignal(bool isInterrupt);

#endif
