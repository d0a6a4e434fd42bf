// One mutex guards `door`, and it is the only one of program and view. Every function that touches
// `door` locks first and calls nobody who could come back here while it holds the lock: the view is
// woken and signals are answered outside it.
#include "runtime/model/door.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

#include "platform/system.h"
#include "ui/ui_table.h"

namespace {

struct Door {
    std::mutex mutex;
    std::condition_variable came; // an event has
    VIEW_Batch changes;           // that the view has not fetched
    bool hasChanges = false;
    uint32_t stamp = 0, fetchedStamp = 0; // the program's count with `changes`; as fetched last
    std::deque<VIEW_Event> events;
    std::vector<int> cancelled; // progress boxes
    VIEW_Busy busy;
    VIEW_Counters counters;
};
Door door;
// Read in every wait for the port: a lock there would cost more than the whole question. What
// stands behind them is changed under the lock, they follow it.
std::atomic<bool> hasEvents{false}, hasCancelled{false};
std::atomic<int> urgentWaiting{0};
// Of an interrupt: it came, somebody asked and has seen it, it broke off a callback.
std::atomic<bool> isInterrupted{false}, isInterruptSeen{false}, wasInterrupted{false};

// Whether a row of the table of urgent wishes means the event. A row names a menu item, a
// control that was committed, or a panel that is to be closed.
bool IsUrgent(const VIEW_Event &event)
{
    if (event.kind == VIEW_EVENT_END)
        return true;
    for (int i = 0; i < UI_cnUrgent; i++) {
        const UI_Urgent &row = UI_aUrgent[i];
        const bool isItem = event.kind == VIEW_EVENT_MENU && row.item != 0;
        const bool isControl = event.kind == VIEW_EVENT_CONTROL && row.control != 0;
        const bool isPanel = event.kind == VIEW_EVENT_PANEL && row.control == 0 && row.item == 0;
        const bool isMeant = (isItem && event.item == row.item) ||
                             (isControl && event.event == EVENT_COMMIT &&
                              event.panel == row.panel && event.control == row.control) ||
                             (isPanel && event.event == EVENT_CLOSE && event.panel == row.panel);
        // Below zero: whatever the value. Else the one state of a switch or mark that ends
        // something.
        if (isMeant && (row.value < 0 || row.value == event.value))
            return true;
    }
    return false;
}

// Tells where things stand now, so that an older one of the same need not be kept.
bool IsState(const VIEW_Event &event)
{
    if (event.kind == VIEW_EVENT_CONTROL)
        return event.event == EVENT_VAL_CHANGED;
    return event.kind == VIEW_EVENT_FOCUS || event.kind == VIEW_EVENT_SCROLLED ||
           event.kind == VIEW_EVENT_PLACED || event.kind == VIEW_EVENT_COLUMNS ||
           event.kind == VIEW_EVENT_LAYOUT ||
           (event.kind == VIEW_EVENT_PANEL && event.event == EVENT_PANEL_SIZE);
}

// About the same thing, whatever they say of it.
bool IsSame(const VIEW_Event &one, const VIEW_Event &other)
{
    return one.kind == other.kind && one.event == other.event && one.panel == other.panel &&
           one.control == other.control &&
           (one.kind != VIEW_EVENT_LAYOUT || one.text == other.text);
}

// Under the lock. False when the event was refused.
bool Enqueue(const VIEW_Event &event)
{
    door.counters.posted++;
    // A cancelled box is a state that is looked up rather than an event with a turn.
    if (event.kind == VIEW_EVENT_CANCEL) {
        door.cancelled.push_back(event.id);
        hasCancelled = true;
        door.counters.handled++;
        return true;
    }
    VIEW_Event stamped = event;
    stamped.seen = door.fetchedStamp;
    // The clicks of one who thinks the first was not seen are one wish.
    const bool isUrgent = IsUrgent(event);
    const bool isRepeatedWish =
        isUrgent && !door.events.empty() && IsSame(door.events.back(), event) &&
        door.events.back().item == event.item && door.events.back().value == event.value;
    if (MDL_CoalesceEvents(&door.events, stamped) || isRepeatedWish) {
        door.counters.handled++;
        return true;
    }
    // What says where things stand must arrive, or the two sides would differ from then on. The
    // bound counts what the program has taken over and not handled as well.
    const bool mustPass = IsState(event) || event.kind == VIEW_EVENT_ANSWER ||
                          event.kind == VIEW_EVENT_CALL || isUrgent;
    const uint64_t waiting = door.counters.posted - door.counters.handled;
    if (waiting > VIEW_EVENTS_MAX && !mustPass) {
        door.counters.posted--;
        door.counters.refused++;
        return false;
    }
    door.events.push_back(std::move(stamped));
    if (isUrgent)
        urgentWaiting++;
    hasEvents = true;
    return true;
}

} // namespace

// --- the view's side ----------------------------------------------------------------------

bool VIEW_Fetch(VIEW_Batch *batch)
{
    const std::lock_guard<std::mutex> lock(door.mutex);
    if (!door.hasChanges)
        return false;
    *batch = std::move(door.changes);
    door.changes = VIEW_Batch();
    door.hasChanges = false;
    door.fetchedStamp = door.stamp; // what is posted from now on knows all of this
    door.counters.fetched++;
    return true;
}

bool VIEW_Post(const VIEW_Event &event)
{
    bool isAccepted = false;
    {
        const std::lock_guard<std::mutex> lock(door.mutex);
        isAccepted = Enqueue(event);
    }
    door.came.notify_one(); // one thread waits at most: the program's
    return isAccepted;
}

void VIEW_GetBusy(VIEW_Busy *busy)
{
    const std::lock_guard<std::mutex> lock(door.mutex);
    *busy = door.busy;
}

void VIEW_GetCounters(VIEW_Counters *counters)
{
    const std::lock_guard<std::mutex> lock(door.mutex);
    *counters = door.counters;
}

// --- the program's side -------------------------------------------------------------------

// Only with the last one: an event in between may have been meant for the earlier state.
bool MDL_CoalesceEvents(std::deque<VIEW_Event> *queue, const VIEW_Event &event)
{
    if (!IsState(event) || queue->empty() || !IsSame(queue->back(), event))
        return false;
    queue->back() = event;
    return true;
}

void MDL_ResetDoor()
{
    const std::lock_guard<std::mutex> lock(door.mutex);
    door.changes = VIEW_Batch();
    door.hasChanges = false;
    door.stamp = door.fetchedStamp = 0;
    door.events.clear();
    door.cancelled.clear();
    door.busy = VIEW_Busy();
    door.counters = VIEW_Counters();
    hasEvents = isInterrupted = isInterruptSeen = wasInterrupted = hasCancelled = false;
    urgentWaiting = 0;
}

void MDL_HandOver(VIEW_Batch &&changes, uint32_t stamp)
{
    bool wasEmpty = false;
    {
        const std::lock_guard<std::mutex> lock(door.mutex);
        wasEmpty = !door.hasChanges;
        MDL_Merge(&door.changes, changes);
        door.hasChanges = true;
        door.stamp = stamp;
    }
    // Outside the lock: a view on this thread fetches in there. Once is enough until it has.
    if (wasEmpty)
        VIEW_Wake();
}

bool MDL_FetchEvents(std::deque<VIEW_Event> *queue)
{
    if (!hasEvents)
        return false;
    const std::lock_guard<std::mutex> lock(door.mutex);
    // A value typed while the program held an earlier one of the same field counts as one.
    for (VIEW_Event &event : door.events) {
        if (MDL_CoalesceEvents(queue, event))
            door.counters.handled++;
        else
            queue->push_back(std::move(event));
    }
    door.events.clear();
    hasEvents = false;
    return true;
}

void MDL_WaitEvent(uint64_t untilUs)
{
    const uint64_t now = PLT_TickUs();
    std::unique_lock<std::mutex> lock(door.mutex);
    if (untilUs > now)
        door.came.wait_for(lock, std::chrono::microseconds(untilUs - now),
                           [] { return !door.events.empty(); });
}

void MDL_CountHandledEvents()
{
    const std::lock_guard<std::mutex> lock(door.mutex);
    door.counters.handled++;
}

void MDL_SetDoorBusy(bool isBusy)
{
    const std::lock_guard<std::mutex> lock(door.mutex);
    door.busy = {isBusy, PLT_TickMs(), ""};
    door.counters.callbacks += isBusy ? 1 : 0;
}

void MDL_SetDoorBusyText(const std::string &text)
{
    const std::lock_guard<std::mutex> lock(door.mutex);
    door.busy.text = text;
}

bool MDL_IsProgressCancelled(int progress)
{
    if (!hasCancelled)
        return false;
    const std::lock_guard<std::mutex> lock(door.mutex);
    return std::count(door.cancelled.begin(), door.cancelled.end(), progress) > 0;
}

void MDL_ForgetCancel(int progress)
{
    const std::lock_guard<std::mutex> lock(door.mutex);
    std::vector<int> &all = door.cancelled;
    all.erase(std::remove(all.begin(), all.end(), progress), all.end());
    hasCancelled = !all.empty();
}

bool MDL_IsBreakPosted()
{
    if (isInterrupted)
        isInterruptSeen = true; // whoever asks ends what is running: it has done its work
    return urgentWaiting > 0 || hasCancelled || isInterrupted;
}

void MDL_EndUrgent(const VIEW_Event &event)
{
    if (IsUrgent(event))
        urgentWaiting--;
}

void MDL_EndInterrupt()
{
    if (!isInterrupted.exchange(false))
        return;
    // The platform ends the process at a second signal unless it hears that the first was heeded.
    if (isInterruptSeen.exchange(false))
        PLT_SignalHeard();
    else
        MDL_OnSignal(false);
}

bool MDL_FetchInterrupt()
{
    return wasInterrupted.exchange(false);
}

void MDL_OnSignal(bool isInterrupt)
{
    VIEW_Busy busy;
    VIEW_GetBusy(&busy);
    if (isInterrupt && busy.isBusy) { // breaks off the callback, not the program
        isInterrupted = wasInterrupted = true;
        return;
    }
    VIEW_Post(VIEW_MakeEvent(VIEW_EVENT_END));
}
