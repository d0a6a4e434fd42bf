#include "watch/list/edit_history.h"

#include <algorithm>

namespace {

std::vector<HIS_Edit> done, undone;

// An item that comes back may have been away while another map was loaded.
void SetItem(int index, const LItem &item)
{
    aLItems[index] = item;
    aLItems[index].isHeld = false;
    LIT_ResolveAnew(&aLItems[index]);
}

void Insert(int index, const LItem &item)
{
    std::move_backward(aLItems + index, aLItems + nLItems, aLItems + nLItems + 1);
    ++nLItems;
    SetItem(index, item);
}

void Remove(int index)
{
    std::move(aLItems + index + 1, aLItems + nLItems, aLItems + index);
    aLItems[--nLItems] = LItem();
}

void Move(int from, int to)
{
    LItem *const begin = aLItems;
    if (from < to)
        std::rotate(begin + from, begin + from + 1, begin + to + 1);
    else
        std::rotate(begin + to, begin + from, begin + from + 1);
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
    switch (step.kind) {
    case HIS_INSERT:
        Insert(step.index, step.after);
        break;
    case HIS_REMOVE:
        Remove(step.index);
        break;
    case HIS_REPLACE:
        SetItem(step.index, step.after);
        break;
    case HIS_MOVE:
        Move(step.index, step.to);
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
