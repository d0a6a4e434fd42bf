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
std::atomic<bool> hasEvents{false}, isInterrupted{false}, hasCancelled{false};
std::atomic<int> urgentWaiting{0};

template <class Record> Record *FindRecord(std::vector<Record> &records, int panel, int control)
{
    for (Record &record : records)
        if (record.panel == panel && record.control == control)
            return &record;
    return nullptr;
}

// --- merging: what is newer wins ----------------------------------------------------------

template <class Value> void Overwrite(unsigned mask, unsigned bit, Value *old, Value &fresh)
{
    if (mask & bit)
        *old = std::move(fresh);
}

void MergePanel(VIEW_Panel *old, VIEW_Panel &fresh)
{
    const unsigned mask = fresh.mask;
    old->mask |= mask;
    Overwrite(mask, VIEW_PANEL_LOADED, &old->parent, fresh.parent);
    Overwrite(mask, VIEW_PANEL_VISIBLE, &old->isVisible, fresh.isVisible);
    Overwrite(mask, VIEW_PANEL_TITLE, &old->title, fresh.title);
    Overwrite(mask, VIEW_PANEL_SIZABLE, &old->isSizable, fresh.isSizable);
    Overwrite(mask, VIEW_PANEL_FOCUS, &old->focus, fresh.focus);
    Overwrite(mask, VIEW_PANEL_PLACE, &old->rect.left, fresh.rect.left);
    Overwrite(mask, VIEW_PANEL_PLACE, &old->rect.top, fresh.rect.top);
    Overwrite(mask, VIEW_PANEL_SIZE, &old->rect.width, fresh.rect.width);
    Overwrite(mask, VIEW_PANEL_SIZE, &old->rect.height, fresh.rect.height);
}

void MergePanels(std::vector<VIEW_Panel> *old, std::vector<VIEW_Panel> &fresh)
{
    for (VIEW_Panel &panel : fresh) {
        const auto found = std::find_if(old->begin(), old->end(), [&](const VIEW_Panel &other) {
            return other.panel == panel.panel;
        });
        if (found == old->end()) {
            old->push_back(std::move(panel));
            continue;
        }
        MergePanel(&*found, panel);
        if (panel.mask & (VIEW_PANEL_VISIBLE | VIEW_PANEL_RAISED))
            std::rotate(found, found + 1, old->end()); // shown last, drawn last
    }
}

void MergeControl(VIEW_Control *old, VIEW_Control &fresh)
{
    const unsigned mask = fresh.mask;
    old->mask |= mask;
    Overwrite(mask, VIEW_CTRL_VALUE, &old->value, fresh.value);
    Overwrite(mask, VIEW_CTRL_VALUE, &old->number, fresh.number);
    Overwrite(mask, VIEW_CTRL_VALUE, &old->text, fresh.text);
    Overwrite(mask, VIEW_CTRL_DIMMED, &old->isDimmed, fresh.isDimmed);
    Overwrite(mask, VIEW_CTRL_VISIBLE, &old->isVisible, fresh.isVisible);
    Overwrite(mask, VIEW_CTRL_COLOR, &old->color, fresh.color);
    Overwrite(mask, VIEW_CTRL_LABEL, &old->label, fresh.label);
    Overwrite(mask, VIEW_CTRL_TOOLTIP, &old->tooltip, fresh.tooltip);
    Overwrite(mask, VIEW_CTRL_MODE, &old->canType, fresh.canType);
    Overwrite(mask, VIEW_CTRL_COMPLETION, &old->hasCompletion, fresh.hasCompletion);
    Overwrite(mask, VIEW_CTRL_RECT, &old->rect, fresh.rect);
}

typedef std::vector<std::pair<int, VIEW_Line>> ChangedLines;

// Both by rising place.
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
    const unsigned mask = fresh.mask;
    if (mask & VIEW_LIST_LINES) {
        old->changed = MergeLines(old->changed, fresh.changed, fresh.count);
        old->count = fresh.count;
    }
    old->mask |= mask;
    Overwrite(mask, VIEW_LIST_COLUMNS, &old->columns, fresh.columns);
    Overwrite(mask, VIEW_LIST_SELECTION, &old->current, fresh.current);
    Overwrite(mask, VIEW_LIST_SELECTION, &old->selected, fresh.selected);
    Overwrite(mask, VIEW_LIST_FIRST, &old->firstVisible, fresh.firstVisible);
}

// A window that does not fetch must not cost memory without end: what has scrolled out of
// a full box is forgotten, and with it whatever stood before.
void BoundBox(VIEW_TextBox *box)
{
    if (box->text.size() <= BOX_TEXT_MAX)
        return;
    size_t from = box->text.size() - BOX_TEXT_MAX / 2;
    const size_t feed = box->text.find('\n', from);
    from = feed == std::string::npos ? from : feed + 1;
    box->text.erase(0, from);
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

void MergeItems(std::vector<VIEW_MenuItem> *old, std::vector<VIEW_MenuItem> &fresh)
{
    for (VIEW_MenuItem &item : fresh) {
        const auto found = std::find_if(old->begin(), old->end(), [&](const VIEW_MenuItem &other) {
            return other.item == item.item;
        });
        if (found == old->end()) {
            old->push_back(std::move(item));
        } else if (found->isNew && item.isGone) {
            old->erase(found); // the view never knew it
        } else {
            item.isNew = found->isNew || item.isNew;
            *found = std::move(item);
        }
    }
}

void MergeProgress(std::vector<VIEW_Progress> *old, std::vector<VIEW_Progress> &fresh)
{
    for (VIEW_Progress &box : fresh) {
        const auto found = std::find_if(old->begin(), old->end(), [&](const VIEW_Progress &other) {
            return other.id == box.id;
        });
        if (found == old->end())
            old->push_back(std::move(box));
        else
            *found = std::move(box);
    }
}

template <class Record, class Merge>
void MergeRecords(std::vector<Record> *old, std::vector<Record> &fresh, Merge merge)
{
    for (Record &record : fresh) {
        if (Record *found = FindRecord(*old, record.panel, record.control))
            merge(found, record);
        else
            old->push_back(std::move(record));
    }
}

void MergeRest(VIEW_Batch *old, VIEW_Batch &fresh)
{
    if (fresh.popupMenu != 0)
        old->popupMenu = fresh.popupMenu;
    if (fresh.question.id != 0)
        old->question = std::move(fresh.question);
    if (fresh.closedQuestion != 0) {
        old->closedQuestion = fresh.closedQuestion;
        if (old->question.id == fresh.closedQuestion)
            old->question = VIEW_Question();
    }
    if (fresh.hasClipboard) {
        old->hasClipboard = true;
        old->clipboard = std::move(fresh.clipboard);
    }
    if (fresh.isEnded) {
        old->isEnded = true;
        old->exitCode = fresh.exitCode;
    }
}

void Merge(VIEW_Batch *old, VIEW_Batch &fresh)
{
    MergePanels(&old->panels, fresh.panels);
    MergeItems(&old->items, fresh.items);
    MergeRecords(&old->controls, fresh.controls, MergeControl);
    MergeRecords(&old->lists, fresh.lists, MergeList);
    MergeRecords(&old->boxes, fresh.boxes, MergeBox);
    MergeRecords(&old->completions, fresh.completions,
                 [](VIEW_Completion *was, VIEW_Completion &now) { *was = std::move(now); });
    MergeProgress(&old->progress, fresh.progress);
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
           (event.kind == VIEW_EVENT_PANEL && event.event == EVENT_PANEL_SIZE);
}

bool IsSame(const VIEW_Event &one, const VIEW_Event &other)
{
    return one.kind == other.kind && one.event == other.event && one.panel == other.panel &&
           one.control == other.control;
}

// What says where things stand must arrive, or the two sides would differ from then on.
bool MustPass(const VIEW_Event &event)
{
    return IsState(event) || event.kind == VIEW_EVENT_ANSWER || IsUrgent(event);
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
    hasEvents = isInterrupted = hasCancelled = false;
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

bool DOOR_TakeEvents(std::deque<VIEW_Event> *queue)
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
    return urgentWaiting > 0 || hasCancelled || isInterrupted;
}

void DOOR_EndUrgent(const VIEW_Event &event)
{
    if (IsUrgent(event))
        urgentWaiting--;
}

void DOOR_EndInterrupt()
{
    isInterrupted = false;
}

void DOOR_OnSignal(bool isInterrupt)
{
    VIEW_Busy busy;
    VIEW_GetBusy(&busy);
    if (isInterrupt && busy.isBusy) {
        isInterrupted = true;
        return;
    }
    VIEW_Event event;
    event.kind = VIEW_EVENT_END;
    VIEW_Post(event);
}
