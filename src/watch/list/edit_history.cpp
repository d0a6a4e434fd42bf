// Two stacks of edits: what was done, and what was taken back since the last new edit. An
// edit moves from one to the other whole and is never changed.
#include "watch/list/edit_history.h"

#include <algorithm>
#include <utility>

#include "watch/list/item_names.h"

namespace {

std::vector<HIS_Edit> done, undone;

// An item that comes back may have been away while another map was loaded, and what was
// held for it belongs to a read of then.
void SetItem(int index, const LItem &item)
{
    aLItems[index] = item;
    aLItems[index].isHeld = false;
    LIT_ResolveAnew(&aLItems[index]);
}

HIS_Step Inverse(const HIS_Step &step)
{
    HIS_Step inverse = step;
    if (step.kind == HIS_INSERT)
        inverse.kind = HIS_REMOVE;
    else if (step.kind == HIS_REMOVE)
        inverse.kind = HIS_INSERT;
    else if (step.kind == HIS_MOVE)
        std::swap(inverse.index, inverse.to);
    std::swap(inverse.before, inverse.after);
    return inverse;
}

} // namespace

void HIS_Apply(const HIS_Step &step)
{
    LItem *const place = aLItems + step.index, *const end = aLItems + nLItems;
    switch (step.kind) {
    case HIS_INSERT:
        std::move_backward(place, end,
                           end + 1); // whoever made the step has seen that there is room
        ++nLItems;
        SetItem(step.index, step.after);
        break;
    case HIS_REMOVE:
        std::move(place + 1, end, place);
        aLItems[--nLItems] = LItem();
        break;
    case HIS_REPLACE:
        SetItem(step.index, step.after);
        break;
    case HIS_MOVE: // those between make room by one place
        if (step.index < step.to)
            std::rotate(place, place + 1, aLItems + step.to + 1);
        else
            std::rotate(aLItems + step.to, place, place + 1);
        break;
    }
}

void HIS_Record(const HIS_Edit &edit)
{
    undone.clear();
    done.push_back(edit);
    if (done.size() > HIS_EDITS_MAX)
        done.erase(done.begin());
}

const HIS_Edit *HIS_Undo()
{
    if (done.empty())
        return nullptr;
    undone.push_back(std::move(done.back()));
    done.pop_back();
    const HIS_Edit &edit = undone.back();
    // Backwards: the index of a step holds only in the list that the steps before it left.
    for (auto step = edit.steps.rbegin(); step != edit.steps.rend(); ++step)
        HIS_Apply(Inverse(*step));
    return &edit;
}

const HIS_Edit *HIS_Redo()
{
    if (undone.empty())
        return nullptr;
    done.push_back(std::move(undone.back()));
    undone.pop_back();
    const HIS_Edit &edit = done.back();
    for (const HIS_Step &step : edit.steps)
        HIS_Apply(step);
    return &edit;
}

bool HIS_CanUndo()
{
    return !done.empty();
}

bool HIS_CanRedo()
{
    return !undone.empty();
}

void HIS_Forget()
{
    done.clear();
    undone.clear();
}
