// Every edit is written down as steps first (edit_history.h) and done by carrying them out, so
// that doing, undoing and doing again take the same way.
#include "watch/list/edit.h"

#include <algorithm>
#include <cctype>

#include "settings/settings.h"
#include "text/words.h"
#include "watch/list/edit_history.h"
#include "watch/list/list_file.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/main_window.h"

namespace {

bool IsIndex(int index)
{
    return index >= 0 && index < nLItems;
}

// What the window shows after any edit, with the line that it was about selected.
void ShowChanged(int line)
{
    IsDBGChange = 1;
    WIN_Outdate(WIN_TOPIC_LIST); // before a caller says what was done
    SetMainPanelTitle();
    // A list that was never read has no values to show yet.
    if (readLItems && nLItems > 0)
        LSV_ShowValues();
    else
        ResetLItemsDisplay();
    LSV_Select(line);
    VR_EnableControls(); // undo and redo among them
}

// Does the steps of one edit, which undo takes back as a whole.
void MakeEdit(const EDT_Edit &edit, int line)
{
    for (const EDT_Step &step : edit.steps)
        EDT_ApplyStep(step);
    EDT_RecordStep(edit);
    ShowChanged(line);
}

EDT_Step StepOf(EDT_EditKind kind, int index)
{
    EDT_Step step;
    step.kind = kind;
    step.index = index;
    if (kind == EDT_REMOVE || kind == EDT_REPLACE) // what undo puts back
        step.before = aLItems[index];
    return step;
}

void Replace(int index, const LItem &item)
{
    EDT_Step step = StepOf(EDT_REPLACE, index);
    step.after = item;
    MakeEdit({"change " + LIT_Label(step.before), {step}}, index);
}

// Sorted, each once. False when one is no line of the list, or there is none.
bool NormalLines(std::vector<int> *lines)
{
    std::sort(lines->begin(), lines->end());
    lines->erase(std::unique(lines->begin(), lines->end()), lines->end());
    return !lines->empty() && IsIndex(lines->front()) && IsIndex(lines->back());
}

// After an edit was taken back or done again: the line that it was about.
int ShowAgain(const EDT_Edit &edit, std::string *what)
{
    *what = edit.what;
    // It may have been the last line, and be gone now.
    const int line = std::clamp(edit.steps.back().index, 0, std::max(nLItems - 1, 0));
    ShowChanged(line);
    return line;
}

std::string CountOrLabel(const std::vector<int> &lines)
{
    return lines.size() == 1 ? LIT_Label(aLItems[lines[0]])
                             : std::to_string(lines.size()) + " items";
}

int InsertItem(const LItem &item, int position)
{
    if (nLItems >= LITEMS_MAX)
        return EDT_ERR_FULL;
    if (position == EDT_AT_END)
        position = nLItems;
    if (position < 0 || position > nLItems)
        return EDT_ERR_INDEX;
    EDT_Step step = StepOf(EDT_INSERT, position);
    step.after = item;
    MakeEdit({"add " + LIT_Label(item), {step}}, position);
    return position;
}

} // namespace

int EDT_AddByName(const std::string &name, const std::string &typeField, int position)
{
    LItem item;
    const int result = EDT_ParseName(name, typeField, &item);
    return result == 0 ? InsertItem(item, position) : result;
}

int EDT_AddText(const std::string &text, const std::string &typeField, int position)
{
    LItem item;
    const int result = EDT_Parse(text, typeField, &item);
    return result == 0 ? InsertItem(item, position) : result;
}

int EDT_Change(int index, const std::string &text, const std::string &typeField)
{
    if (!IsIndex(index))
        return EDT_ERR_INDEX;
    // Parsed anew, a name would lose the address that was given with it.
    if (TXT_Trim(text) == LIT_Label(aLItems[index]))
        return typeField == EDT_TypeField(aLItems[index]) ? 0 : EDT_SetType(index, typeField);
    LItem item;
    const int result = EDT_Parse(text, typeField, &item);
    if (result != 0)
        return result;
    item.fileLine = aLItems[index].fileLine; // the comment there is still its own
    item.comment = aLItems[index].comment;
    Replace(index, item);
    return 0;
}

EDT_Reference EDT_Refer(int index)
{
    EDT_Reference reference;
    if (IsIndex(index))
        reference = {index, LIT_Label(aLItems[index])};
    return reference;
}

int EDT_Find(const EDT_Reference &reference)
{
    // Of several items with the same label the one that was meant, as long as it stays there.
    if (IsIndex(reference.index) && LIT_Label(aLItems[reference.index]) == reference.label)
        return reference.index;
    for (int i = 0; i < nLItems; ++i)
        if (LIT_Label(aLItems[i]) == reference.label)
            return i;
    return -1;
}

std::vector<EDT_Reference> SEL_GetWatchSelection()
{
    std::vector<EDT_Reference> lines;
    if (!VR_isWatchView)
        return lines;
    for (const int line : LSV_SelectedLines())
        lines.push_back(EDT_Refer(line));
    return lines;
}

int EDT_Remove(int index)
{
    return EDT_RemoveLines({index});
}

int EDT_RemoveLines(std::vector<int> lines)
{
    if (!NormalLines(&lines))
        return EDT_ERR_INDEX;
    EDT_Edit edit;
    edit.what = "remove " + CountOrLabel(lines);
    for (auto line = lines.rbegin(); line != lines.rend(); ++line) // the last first: indices hold
        edit.steps.push_back(StepOf(EDT_REMOVE, *line));
    MakeEdit(edit, lines.front());
    return 0;
}

int EDT_Move(int from, int to)
{
    if (!IsIndex(from) || !IsIndex(to))
        return EDT_ERR_INDEX;
    if (from == to)
        return 0;
    EDT_Step step = StepOf(EDT_MOVE, from);
    step.to = to;
    MakeEdit({"move " + LIT_Label(aLItems[from]), {step}}, to);
    return 0;
}

int EDT_MoveLines(std::vector<int> lines, int by)
{
    if ((by != 1 && by != -1) || !NormalLines(&lines) || !IsIndex(lines.front() + by) ||
        !IsIndex(lines.back() + by))
        return EDT_ERR_INDEX;
    EDT_Edit edit;
    edit.what = "move " + CountOrLabel(lines);
    // The one in front goes first, so that no line jumps over another selected one.
    if (by > 0)
        std::reverse(lines.begin(), lines.end());
    for (const int line : lines) {
        EDT_Step step = StepOf(EDT_MOVE, line);
        step.to = line + by;
        edit.steps.push_back(step);
    }
    MakeEdit(edit, lines.front() + by);
    // An edit selects one line; here all that were moved stay selected, for the next step.
    for (int &line : lines)
        line += by;
    LSV_SelectLines(lines);
    VR_EnableControls();
    return 0;
}

int EDT_GatherLines(std::vector<int> lines, int gap)
{
    if (!NormalLines(&lines) || gap < 0 || gap > nLItems)
        return EDT_ERR_INDEX;
    EDT_Edit edit;
    edit.what = "move " + CountOrLabel(lines);
    const auto addMove = [&edit](int from, int to) {
        EDT_Step step = StepOf(EDT_MOVE, from);
        step.to = to;
        if (from != to)
            edit.steps.push_back(step);
    };
    // From the gap outwards: a move leaves the places of those that follow alone.
    const auto behind = std::lower_bound(lines.begin(), lines.end(), gap);
    int to = gap;
    for (auto line = behind; line != lines.begin();)
        addMove(*--line, --to);
    const int first = to;
    to = gap;
    for (auto line = behind; line != lines.end(); ++line)
        addMove(*line, to++);
    if (edit.steps.empty())
        return 0;
    MakeEdit(edit, first);
    for (size_t i = 0; i < lines.size(); ++i)
        lines[i] = first + static_cast<int>(i);
    LSV_SelectLines(lines);
    VR_EnableControls();
    return 0;
}

int EDT_Undo(std::string *what)
{
    const EDT_Edit *edit = EDT_UndoStep();
    return edit != nullptr ? ShowAgain(*edit, what) : EDT_ERR_NOTHING;
}

int EDT_Redo(std::string *what)
{
    const EDT_Edit *edit = EDT_RedoStep();
    return edit != nullptr ? ShowAgain(*edit, what) : EDT_ERR_NOTHING;
}

int EDT_SetType(int index, const std::string &typeField)
{
    if (!IsIndex(index))
        return EDT_ERR_INDEX;
    LItem item = aLItems[index];
    const int result = EDT_ApplyType(&item, typeField);
    if (result != 0)
        return result;
    // A value of another type says nothing about this one.
    item.value = item.valueHigh = item.previousValue = 0;
    item.readTick = item.previousReadTick = 0;
    item.readError = 0;
    item.isValueGood = item.isHeld = false;
    item.reason.clear();
    Replace(index, item);
    return 0;
}

int EDT_SetComment(int index, const std::string &comment)
{
    if (!IsIndex(index))
        return EDT_ERR_INDEX;
    LItem item = aLItems[index];
    item.comment = comment;
    for (char &c : item.comment)
        if (std::iscntrl(static_cast<unsigned char>(c)))
            c = ' ';
    item.comment = TXT_Trim(item.comment);
    // Longer, and the rest would come back as the next line.
    constexpr size_t AROUND_MAX = 16; // semicolon and blanks
    if (LIT_FileLine(item).size() + AROUND_MAX + item.comment.size() > LITEM_LINE_MAX)
        return EDT_ERR_COMMENT;
    if (item.comment != aLItems[index].comment)
        Replace(index, item);
    return 0;
}
