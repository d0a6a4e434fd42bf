// From the marks in the model to a batch for the view. Nothing is compared but lists: whoever
// changes a thing marks it, and the mark goes when the batch has it.
#include "runtime/model/model.h"

#include <algorithm>

#include "platform/system.h"
#include "runtime/model/door.h"

namespace {

constexpr uint64_t FLUSH_EVERY_US = 30000; // the eye takes it for at once

bool IsEqual(const UI_Cell &one, const UI_Cell &other)
{
    return one.text == other.text && one.style == other.style && one.tip == other.tip;
}

bool IsEqual(const VIEW_Line &one, const VIEW_Line &other)
{
    return one.id == other.id && one.label == other.label && one.value == other.value &&
           one.tip == other.tip &&
           std::equal(one.cells.begin(), one.cells.end(), other.cells.begin(), other.cells.end(),
                      [](const UI_Cell &a, const UI_Cell &b) { return IsEqual(a, b); });
}

// A list that was emptied and filled again keeps the selection on the lines that are
// there again, unless the program has said otherwise.
void KeepSelection(MDL_Control *list)
{
    if (!list->isLoose)
        return;
    list->isLoose = false;
    // Where the line that was shown at `index` stands now, by its number; -1 = nowhere.
    const auto again = [&](int index) {
        if (index < 0 || index >= static_cast<int>(list->shown.size()))
            return -1;
        const uint32_t id = list->shown[static_cast<size_t>(index)].id;
        for (size_t i = 0; i < list->lines.size(); i++)
            if (list->lines[i].id == id)
                return static_cast<int>(i);
        return -1;
    };
    list->selected.clear();
    for (const int index : list->shownSelected)
        if (again(index) >= 0)
            list->selected.push_back(again(index));
    if (again(list->shownCurrent) >= 0)
        list->current = again(list->shownCurrent);
    std::sort(list->selected.begin(), list->selected.end());
}

// A list of 500 lines is refilled once a second and a handful of its values differ: only they
// cross, and `shown` follows.
void DiffLines(MDL_Control *list, VIEW_List *change)
{
    for (size_t i = 0; i < list->lines.size(); i++) {
        const VIEW_Line &line = list->lines[i];
        if (i < list->shown.size() && IsEqual(line, list->shown[i]))
            continue;
        change->changed.emplace_back(static_cast<int>(i), line);
        if (i < list->shown.size())
            list->shown[i] = line;
        else
            list->shown.push_back(line);
    }
    // Lines at the end that are gone are in no `changed`: the count says so.
    const bool isShorter = list->shown.size() > list->lines.size();
    list->shown.resize(list->lines.size());
    if (change->changed.empty() && !isShorter)
        change->mask &= ~static_cast<unsigned>(VIEW_LIST_LINES);
}

bool IsSelectionNew(const MDL_Control &list)
{
    return list.current != list.shownCurrent || list.selected != list.shownSelected;
}

void CollectList(MDL_Control *list, VIEW_Batch *batch)
{
    KeepSelection(list);
    VIEW_List change;
    change.panel = list->row->panel;
    change.control = list->row->control;
    change.mask = list->listMask;
    list->listMask = 0;
    change.count = static_cast<int>(list->lines.size());
    if (change.mask & VIEW_LIST_LINES)
        DiffLines(list, &change);
    if (IsSelectionNew(*list))
        change.mask |= VIEW_LIST_SELECTION;
    if (change.mask & VIEW_LIST_SELECTION) // clicks made before it are about another picture
        MDL_Outdate(list);
    change.current = list->shownCurrent = list->current;
    change.selected = list->shownSelected = list->selected;
    change.columns = list->columns;
    change.firstVisible = list->firstVisible;
    if (change.mask != 0)
        batch->lists.push_back(std::move(change));
}

void CollectControl(MDL_Control *control, bool hasLists, VIEW_Batch *batch)
{
    if (control->state.mask != 0) {
        batch->controls.push_back(control->state);
        control->state.mask = 0;
    }
    // Selecting marks nothing: the lists are few, and comparing costs less than a mark forgotten.
    if (hasLists && (control->listMask != 0 || control->isLoose || IsSelectionNew(*control)))
        CollectList(control, batch);
    if (control->isBoxChanged) {
        control->boxChange.panel = control->row->panel;
        control->boxChange.control = control->row->control;
        batch->boxes.push_back(std::move(control->boxChange));
        control->boxChange = VIEW_TextBox();
        control->isBoxChanged = false;
    }
    if (control->graphMask != 0) {
        batch->graphs.push_back({control->row->panel, control->row->control, control->graphMask,
                                 control->plots, control->axes, control->graph});
        control->graphMask = 0;
    }
}

void CollectPanels(MDL_State *state, VIEW_Batch *batch)
{
    const auto collect = [&](MDL_Panel &panel) {
        if (panel.state.mask != 0)
            batch->panels.push_back(panel.state);
        panel.state.mask = 0;
    };
    int error = 0;
    // Those that were not shown or hidden first; the others in the order in which it happened,
    // so that the window that was opened last comes out in front.
    for (MDL_Panel &panel : state->panels)
        if (!std::count(state->shownOrder.begin(), state->shownOrder.end(), panel.row->panel))
            collect(panel);
    for (const int number : state->shownOrder)
        if (MDL_Panel *panel = MDL_FindPanel(number, &error))
            collect(*panel);
    state->shownOrder.clear();
}

// The view is not to be woken for nothing, sixty times a second.
bool IsEmpty(const VIEW_Batch &batch)
{
    return batch.panels.empty() && batch.items.empty() && batch.controls.empty() &&
           batch.lists.empty() && batch.boxes.empty() && batch.graphs.empty() &&
           batch.completions.empty() && batch.progress.empty() && batch.popupMenu == 0 &&
           batch.question.id == 0 && batch.closedQuestion == 0 && batch.layouts.empty() &&
           !batch.hasClipboard && !batch.isBeep && batch.helpFile.empty() && !batch.isEnded;
}

} // namespace

void MDL_Outdate(MDL_Control *control)
{
    control->stamp = ++MDL_GetState().stamp;
}

void MDL_MarkValue(MDL_Control *control)
{
    control->state.mask |= VIEW_CTRL_VALUE;
    MDL_Outdate(control);
    MDL_FlushNowAndThen();
}

void MDL_Flush(bool hasLists)
{
    MDL_State &state = MDL_GetState();
    VIEW_Batch batch = std::move(state.extra);
    state.extra = VIEW_Batch();
    CollectPanels(&state, &batch);
    for (MDL_Item &item : state.items) {
        if (item.isChanged)
            batch.items.push_back(item.state);
        item.isChanged = item.state.isNew = false;
    }
    for (const MDL_Item &gone : state.goneItems)
        batch.items.push_back(gone.state);
    state.goneItems.clear();
    for (MDL_Panel &panel : state.panels)
        if (panel.isLoaded)
            for (MDL_Control &control : panel.controls)
                CollectControl(&control, hasLists, &batch);
    state.flushedUs = PLT_TickUs();
    // The stamp counts up to here: a list in the middle of being filled stays marked, and gets
    // its own stamp when it goes.
    if (!IsEmpty(batch))
        MDL_HandOver(std::move(batch), state.stamp);
}

void MDL_FlushNowAndThen()
{
    // At the end of a callback everything goes anyway: this is for those that take long.
    const MDL_State &state = MDL_GetState();
    if (state.depth == 0 || PLT_TickUs() - state.flushedUs >= FLUSH_EVERY_US)
        MDL_Flush(false);
}
