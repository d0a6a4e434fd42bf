// Two stacks of edits: what was done, and what was taken back since the last new edit. An
// edit moves from one to the other whole and is never changed.
#include "watch/list/edit_history.h"

#include <algorithm>
#include <utility>

#include "watch/list/item_names.h"

namespace {

std::vector<EDT_Edit> done, undone;

// An item that comes back may have been away while another map was loaded, and what was
// held for it belongs to a read of then.
void SetItem(int index, const LItem &item)
{
    aLItems[index] = item;
    aLItems[index].isHeld = false;
    LIT_ResolveAnew(&aLItems[index]);
}

EDT_Step Inverse(const EDT_Step &step)
{
    EDT_Step inverse = step;
    if (step.kind == EDT_INSERT)
        inverse.kind = EDT_REMOVE;
    else if (step.kind == EDT_REMOVE)
        inverse.kind = EDT_INSERT;
    else if (step.kind == EDT_MOVE)
        std::swap(inverse.index, inverse.to);
    std::swap(inverse.before, inverse.after);
    return inverse;
}

} // namespace

void EDT_ApplyStep(const EDT_Step &step)
{
    LItem *const place = aLItems + step.index, *const end = aLItems + nLItems;
    switch (step.kind) {
    case EDT_INSERT:
        // Whoever made the step has seen that there is room.
        std::move_backward(place, end, end + 1);
        ++nLItems;
        SetItem(step.index, step.after);
        break;
    case EDT_REMOVE:
        std::move(place + 1, end, place);
        aLItems[--nLItems] = LItem();
        break;
    case EDT_REPLACE:
        SetItem(step.index, step.after);
        break;
    case EDT_MOVE: // those between make room by one place
        if (step.index < step.to)
            std::rotate(place, place + 1, aLItems + step.to + 1);
        else
            std::rotate(aLItems + step.to, place, place + 1);
        break;
    }
}

void EDT_RecordStep(const EDT_Edit &edit)
{
    undone.clear();
    done.push_back(edit);
    if (done.size() > EDT_EDITS_MAX)
        done.erase(done.begin());
}

const EDT_Edit *EDT_UndoStep()
{
    if (done.empty())
        return nullptr;
    undone.push_back(std::move(done.back()));
    done.pop_back();
    const EDT_Edit &edit = undone.back();
    // Backwards: the index of a step holds only in the list that the steps before it left.
    for (auto step = edit.steps.rbegin(); step != edit.steps.rend(); ++step)
        EDT_ApplyStep(Inverse(*step));
    return &edit;
}

const EDT_Edit *EDT_RedoStep()
{
    if (undone.empty())
        return nullptr;
    done.push_back(std::move(undone.back()));
    undone.pop_back();
    const EDT_Edit &edit = done.back();
    for (const EDT_Step &step : edit.steps)
        EDT_ApplyStep(step);
    return &edit;
}

bool EDT_CanUndo()
{
    return !done.empty();
}

bool EDT_CanRedo()
{
    return !undone.empty();
}

void EDT_ForgetEdits()
{
    done.clear();
    undone.clear();
}
