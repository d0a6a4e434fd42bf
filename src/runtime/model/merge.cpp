// Changes that meet older ones the view has not fetched: what is newer wins, so that a busy
// program and a slow view cost one entry a thing and no more. A record holds the whole state of
// its thing, and its mask says what the view must look at: the newer record with both masks.
// Plain functions on batches: door.cpp holds the lock.
#include "runtime/model/door.h"

#include <algorithm>

namespace {

constexpr size_t BOX_TEXT_MAX = 4 * 1024 * 1024; // bytes of one text box that wait at most

template <class Record> void MergeWhole(Record *old, Record &fresh)
{
    fresh.mask |= old->mask;
    *old = std::move(fresh);
}

// A list brings only the lines that differ from what was handed over before, so the older lines
// still count where no newer one stands in their place.
void MergeList(VIEW_List *old, VIEW_List &fresh)
{
    std::vector<std::pair<int, VIEW_Line>> merged;
    const auto keep = [&](std::pair<int, VIEW_Line> &line) {
        if (line.first < fresh.count) // of lines behind the end nothing stays
            merged.push_back(std::move(line));
    };
    // Both are by rising place, and so is what comes of them.
    auto next = fresh.changed.begin();
    for (auto &line : old->changed) {
        while (next != fresh.changed.end() && next->first < line.first)
            keep(*next++);
        if (next == fresh.changed.end() || next->first != line.first)
            keep(line);
    }
    while (next != fresh.changed.end())
        keep(*next++);
    fresh.changed = std::move(merged);
    MergeWhole(old, fresh);
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
    if (old->text.size() <= BOX_TEXT_MAX)
        return;
    // A window that does not fetch must not cost memory without end: what has scrolled out of
    // a full box is forgotten, and with it whatever stood before. Half of it at once, so that the
    // next lines do not move megabytes each.
    const size_t half = old->text.size() - BOX_TEXT_MAX / 2;
    const size_t feed = old->text.find('\n', half);
    old->text.erase(0, feed == std::string::npos ? half : feed + 1);
    old->isReset = true;
    old->dropped = 0;
}

// Whatever is new goes to the end, in the order it came.
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

// The view shows panels in the order of the batch, and the one shown last comes out in front.
void MergePanels(std::vector<VIEW_Panel> *old, std::vector<VIEW_Panel> &fresh)
{
    const auto isSame = [](const VIEW_Panel &a, const VIEW_Panel &b) { return a.panel == b.panel; };
    MergeAll(old, fresh, isSame, [&](VIEW_Panel *was, VIEW_Panel &now) {
        const bool isShown = now.mask & (VIEW_PANEL_VISIBLE | VIEW_PANEL_RAISED);
        MergeWhole(was, now);
        const auto at = old->begin() + (was - old->data());
        if (isShown)
            std::rotate(at, at + 1, old->end());
    });
}

void MergeItems(std::vector<VIEW_MenuItem> *old, std::vector<VIEW_MenuItem> &fresh)
{
    const auto isSame = [](const VIEW_MenuItem &a, const VIEW_MenuItem &b) {
        return a.item == b.item;
    };
    MergeAll(old, fresh, isSame, [](VIEW_MenuItem *was, VIEW_MenuItem &now) {
        now.isNew = was->isNew || now.isNew; // the view must still insert it
        *was = std::move(now);
    });
    // One that came and went is nothing the view need know.
    old->erase(std::remove_if(old->begin(), old->end(),
                              [](const VIEW_MenuItem &item) { return item.isNew && item.isGone; }),
               old->end());
}

} // namespace

void MDL_Merge(VIEW_Batch *old, VIEW_Batch &fresh)
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
    for (UI_Layout &layout : fresh.layouts)
        old->layouts.push_back(std::move(layout));

    // Of the rest there is one of a kind: a new one takes the place, none leaves it alone.
    if (fresh.popupMenu != 0)
        old->popupMenu = fresh.popupMenu;
    if (fresh.question.id != 0)
        old->question = std::move(fresh.question);
    if (fresh.closedQuestion != 0)
        old->closedQuestion = fresh.closedQuestion;
    if (old->question.id == old->closedQuestion) // opened and closed unseen
        old->question = VIEW_Question();
    if (fresh.hasClipboard)
        old->clipboard = std::move(fresh.clipboard);
    old->hasClipboard |= fresh.hasClipboard;
    old->isBeep |= fresh.isBeep;
    if (!fresh.helpFile.empty())
        old->helpFile = std::move(fresh.helpFile);
    if (fresh.isEnded)
        old->exitCode = fresh.exitCode;
    old->isEnded |= fresh.isEnded;
}
