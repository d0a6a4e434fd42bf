// The program's side of the door (runtime/view.h): the two queues. The only place with a
// mutex. Changes that were not fetched yet are merged, so that the queue holds at most one
// entry for each thing a user can see.
#ifndef RUNTIME_MODEL_DOOR_H
#define RUNTIME_MODEL_DOOR_H

#include <deque>
#include <string>

#include "runtime/view.h"

void MDL_ResetDoor();
// Merges changes into what the view has not fetched yet, and wakes it. `stamp` is the
// program's count of value changes they bring the view up to.
void MDL_HandOver(VIEW_Batch &&changes, uint32_t stamp);
// What MDL_HandOver does to the batch that waits; takes `fresh` apart. Neither locks nor wakes.
void MDL_Merge(VIEW_Batch *old, VIEW_Batch &fresh);
// Moves the events that have come to the end of *queue. False when there were none; costs
// next to nothing then.
bool MDL_FetchEvents(std::deque<VIEW_Event> *queue);
// Replaces the last event of a queue by one that says the same of a later moment (a value,
// a place). False when it has to stand on its own.
bool MDL_CoalesceEvents(std::deque<VIEW_Event> *queue, const VIEW_Event &event);
// Waits until an event comes, at most until PLT_TickUs() reaches `untilUs`.
void MDL_WaitEvent(uint64_t untilUs);
void MDL_CountHandledEvents();

void MDL_SetDoorBusy(bool isBusy); // now; forgets the text
void MDL_SetDoorBusyText(const std::string &text);

bool MDL_IsProgressCancelled(int progress);
void MDL_ForgetCancel(int progress);
// An urgent event waits, a progress box was cancelled, or an interrupt came.
bool MDL_IsBreakPosted();
void MDL_EndUrgent(const VIEW_Event &event); // it has had its turn
// The callback has ended. An interrupt that nobody in it asked for ends the program.
void MDL_EndInterrupt();
// Whether an interrupt has broken off a callback since this was asked last.
bool MDL_FetchInterrupt();
// From the thread that watches signals: an interrupt breaks what is running, or ends an
// idle program; anything else ends it.
void MDL_OnSignal(bool isInterrupt);

#endif
