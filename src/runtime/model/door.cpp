#include "runtime/model/door.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

#include "platform/system.h"
#include "ui/ui_table.h"

namespace {

constexpr size_t BOX_TEXT_MAX = 4 * 1024 * 1024; // bytes of one text box that wait at most

struct Door {
    std::mutex mutex;
    std::condition_variable came;
    VIEW_Batch changes;
    bool hasChanges = false;
    uint32_t stamp = 0, fetchedStamp = 0;
    std::deque<VIEW_Event> events;
    std::vector<int> cancelled; // progress boxes
    VIEW_Busy busy;
    VIEW_Counters counters;
};
Door door;
// Read in every wait for the port: must cost nothing.
std::atomic<bool> hasEvents{false}, isInterrupted{false}, isInterruptSeen{false},
    wasInterrupted{false}, hasCancelled{false};
std::atomic<int> urgentWaiting{0};

// --- merging: what is newer wins ----------------------------------------------------------
// A record holds the whole state of its thing, and a mask of what the view must look at.

template <class Record> void MergeWhole(Record *old, Record &fresh)
{
    fresh.mask |= old->mask;
    *old = std::move(fresh);
}

typedef std::vector<std::pair<int, VIEW_Line>> ChangedLines;

// Both by rising place; of lines behind the end nothing stays.
ChangedLines MergeLines(ChangedLines &old, ChangedLines &fresh, int count)
{
    ChangedLines merged;
    auto next = fresh.begin();
    const auto put = [&](std::pair<int, VIEW_Line> &line) {
        if (line.first < count)
            merged.push_back(std::move(line));
    };
    for (auto &line : old) {
        while (next != fresh.end() && next->first < line.first)
            put(*next++);
        if (next == fresh.end() || next->first != line.first)
            put(line);
    }
    while (next != fresh.end())
        put(*next++);
    return merged;
}

void MergeList(VIEW_List *old, VIEW_List &fresh)
{
    fresh.changed = MergeLines(old->changed, fresh.changed, fresh.count);
    MergeWhole(old, fresh);
}

// A window that does not fetch must not cost memory without end: what has scrolled out of
// a full box is forgotten, and with it whatever stood before.
void BoundBox(VIEW_TextBox *box)
{
    if (box->text.size() <= BOX_TEXT_MAX)
        return;
    const size_t half = box->text.size() - BOX_TEXT_MAX / 2;
    const size_t feed = box->text.find('\n', half);
    box->text.erase(0, feed == std::string::npos ? half : feed + 1);
    box->isReset = true;
    box->dropped = 0;
}

void MergeBox(VIEW_TextBox *old, VIEW_TextBox &fresh)
{
    if (fresh.isReset) {
        *old = std::move(fresh);
    } else {
        old->text += fresh.text;
        old->dropped += fresh.dropped;
        if (fresh.firstVisible >= 0)
            old->firstVisible = fresh.firstVisible;
    }
    BoundBox(old);
}

template <class Record, class IsSame, class Merge>
void MergeAll(std::vector<Record> *old, std::vector<Record> &fresh, IsSame isSame, Merge merge)
{
    for (Record &record : fresh) {
        const auto found = std::find_if(old->begin(), old->end(),
                                        [&](const Record &other) { return isSame(record, other); });
        if (found == old->end())
            old->push_back(std::move(record));
        else
            merge(&*found, record);
    }
}

template <class Record> bool IsSameControl(const Record &one, const Record &other)
{
    return one.panel == other.panel && one.control == other.control;
}

void MergePanels(std::vector<VIEW_Panel> *old, std::vector<VIEW_Panel> &fresh)
{
    const auto isSame = [](const VIEW_Panel &a, const VIEW_Panel &b) { return a.panel == b.panel; };
    MergeAll(old, fresh, isSame, [&](VIEW_Panel *was, VIEW_Panel &now) {
        const bool isShown = now.mask & (VIEW_PANEL_VISIBLE | VIEW_PANEL_RAISED);
        MergeWhole(was, now);
        if (isShown) // last, drawn last
            std::rotate(old->begin() + (was - old->data()), old->begin() + (was - old->data()) + 1,
                        old->end());
    });
}

void MergeItems(std::vector<VIEW_MenuItem> *old, std::vector<VIEW_MenuItem> &fresh)
{
    const auto isSame = [](const VIEW_MenuItem &a, const VIEW_MenuItem &b) {
        return a.item == b.item;
    };
    MergeAll(old, fresh, isSame, [](VIEW_MenuItem *was, VIEW_MenuItem &now) {
        now.isNew = was->isNew || now.isNew;
        *was = std::move(now);
    });
    // One that came and went is nothing the view need know.
    old->erase(std::remove_if(old->begin(), old->end(),
                              [](const VIEW_MenuItem &item) { return item.isNew && item.isGone; }),
               old->end());
}

void MergeRest(VIEW_Batch *old, VIEW_Batch &fresh)
{
    if (fresh.popupMenu != 0)
        old->popupMenu = fresh.popupMenu;
    if (fresh.question.id != 0)
        old->question = std::move(fresh.question);
    if (fresh.closedQuestion != 0)
        old->closedQuestion = fresh.closedQuestion;
    if (old->question.id == old->closedQuestion)
        old->question = VIEW_Question();
    if (fresh.hasClipboard)
        old->clipboard = std::move(fresh.clipboard);
    old->hasClipboard |= fresh.hasClipboard;
    old->isBeep |= fresh.isBeep;
    for (UI_Layout &layout : fresh.layouts)
        old->layouts.push_back(std::move(layout));
    if (!fresh.helpFile.empty())
        old->helpFile = std::move(fresh.helpFile);
    if (fresh.isEnded)
        old->exitCode = fresh.exitCode;
    old->isEnded |= fresh.isEnded;
}

void Merge(VIEW_Batch *old, VIEW_Batch &fresh)
{
    const auto replace = [](auto *was, auto &now) { *was = std::move(now); };
    MergePanels(&old->panels, fresh.panels);
    MergeItems(&old->items, fresh.items);
    MergeAll(&old->controls, fresh.controls, IsSameControl<VIEW_Control>, MergeWhole<VIEW_Control>);
    MergeAll(&old->lists, fresh.lists, IsSameControl<VIEW_List>, MergeList);
    MergeAll(&old->boxes, fresh.boxes, IsSameControl<VIEW_TextBox>, MergeBox);
    MergeAll(&old->graphs, fresh.graphs, IsSameControl<VIEW_Graph>, MergeWhole<VIEW_Graph>);
    MergeAll(&old->completions, fresh.completions, IsSameControl<VIEW_Completion>, replace);
    MergeAll(
        &old->progress, fresh.progress,
        [](const VIEW_Progress &a, const VIEW_Progress &b) { return a.id == b.id; }, replace);
    MergeRest(old, fresh);
}

// --- events -----------------------------------------------------------------------------------

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

bool IsSame(const VIEW_Event &one, const VIEW_Event &other)
{
    return one.kind == other.kind && one.event == other.event && one.panel == other.panel &&
           one.control == other.control &&
           (one.kind != VIEW_EVENT_LAYOUT || one.text == other.text);
}

// What says where things stand must arrive, or the two sides would differ from then on.
bool MustPass(const VIEW_Event &event)
{
    return IsState(event) || event.kind == VIEW_EVENT_ANSWER || event.kind == VIEW_EVENT_CALL ||
           IsUrgent(event);
}

// The clicks of one who thinks the first was not seen are one wish.
bool IsRepeatedWish(const VIEW_Event &event)
{
    return IsUrgent(event) && !door.events.empty() && IsSame(door.events.back(), event) &&
           door.events.back().item == event.item && door.events.back().value == event.value;
}

bool Enqueue(const VIEW_Event &event)
{
    door.counters.posted++;
    if (event.kind == VIEW_EVENT_CANCEL) {
        door.cancelled.push_back(event.id);
        hasCancelled = true;
        door.counters.handled++;
        return true;
    }
    VIEW_Event stamped = event;
    stamped.seen = door.fetchedStamp;
    if (DOOR_Coalesce(&door.events, stamped) || IsRepeatedWish(stamped)) {
        door.counters.handled++;
        return true;
    }
    const uint64_t waiting = door.counters.posted - door.counters.handled;
    if (waiting > VIEW_EVENTS_MAX && !MustPass(event)) {
        door.counters.posted--;
        door.counters.refused++;
        return false;
    }
    door.events.push_back(std::move(stamped));
    if (IsUrgent(event))
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
    door.fetchedStamp = door.stamp;
    door.counters.fetched++;
    return true;
}

bool VIEW_Post(const VIEW_Event &event)
{
    bool isTaken = false;
    {
        const std::lock_guard<std::mutex> lock(door.mutex);
        isTaken = Enqueue(event);
    }
    door.came.notify_one();
    return isTaken;
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

bool DOOR_Coalesce(std::deque<VIEW_Event> *queue, const VIEW_Event &event)
{
    if (!IsState(event) || queue->empty() || !IsSame(queue->back(), event))
        return false;
    queue->back() = event;
    return true;
}

void DOOR_Reset()
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

void DOOR_Put(VIEW_Batch &&changes, uint32_t stamp)
{
    bool wasEmpty = false;
    {
        const std::lock_guard<std::mutex> lock(door.mutex);
        wasEmpty = !door.hasChanges;
        Merge(&door.changes, changes);
        door.hasChanges = true;
        door.stamp = stamp;
    }
    if (wasEmpty)
        VIEW_Wake();
}

bool DOOR_FetchEvents(std::deque<VIEW_Event> *queue)
{
    if (!hasEvents)
        return false;
    const std::lock_guard<std::mutex> lock(door.mutex);
    for (VIEW_Event &event : door.events) {
        if (DOOR_Coalesce(queue, event))
            door.counters.handled++;
        else
            queue->push_back(std::move(event));
    }
    door.events.clear();
    hasEvents = false;
    return true;
}

void DOOR_WaitEvent(uint64_t untilUs)
{
    const uint64_t now = PLT_TickUs();
    std::unique_lock<std::mutex> lock(door.mutex);
    if (untilUs > now)
        door.came.wait_for(lock, std::chrono::microseconds(untilUs - now),
                           [] { return !door.events.empty(); });
}

void DOOR_CountHandled()
{
    const std::lock_guard<std::mutex> lock(door.mutex);
    door.counters.handled++;
}

void DOOR_SetBusy(bool isBusy)
{
    const std::lock_guard<std::mutex> lock(door.mutex);
    door.busy = {isBusy, PLT_TickMs(), ""};
    door.counters.callbacks += isBusy ? 1 : 0;
}

void DOOR_SetBusyText(const std::string &text)
{
    const std::lock_guard<std::mutex> lock(door.mutex);
    door.busy.text = text;
}

bool DOOR_IsCancelled(int progress)
{
    if (!hasCancelled)
        return false;
    const std::lock_guard<std::mutex> lock(door.mutex);
    return std::count(door.cancelled.begin(), door.cancelled.end(), progress) > 0;
}

void DOOR_ForgetCancel(int progress)
{
    const std::lock_guard<std::mutex> lock(door.mutex);
    std::vector<int> &all = door.cancelled;
    all.erase(std::remove(all.begin(), all.end(), progress), all.end());
    hasCancelled = !all.empty();
}

bool DOOR_IsBreakWished()
{
    if (isInterrupted)
        isInterruptSeen = true;
    return urgentWaiting > 0 || hasCancelled || isInterrupted;
}

void DOOR_EndUrgent(const VIEW_Event &event)
{
    if (IsUrgent(event))
        urgentWaiting--;
}

void DOOR_EndInterrupt()
{
    if (!isInterrupted.exchange(false))
        return;
    if (isInterruptSeen.exchange(false))
        PLT_SignalHeard();
    else
        DOOR_OnSignal(false);
}

bool DOOR_TakeInterrupt()
{
    return wasInterrupted.exchange(false);
}

void DOOR_OnSignal(bool isInterrupt)
{
    VIEW_Busy busy;
    VIEW_GetBusy(&busy);
    if (isInterrupt && busy.isBusy) {
        isInterrupted = wasInterrupted = true;
        return;
    }
    VIEW_Event event;
    event.kind = VIEW_EVENT_END;
    VIEW_Post(event);
}
