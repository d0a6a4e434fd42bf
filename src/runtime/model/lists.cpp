// Lists and rings: their lines, columns and cells, and what is selected. Nothing is handed over
// here, not even now and then: a list in the middle of being filled would flicker.
#include "runtime/model/model.h"

#include <algorithm>

#include "runtime/list_columns.h"

namespace {

// What `use` answers for a list or ring, for a line of one, for a list alone; or why there is
// none. Columns, cells and several selected lines are a list's, not a ring's.
template <class Use> int OnList(int panel, int control, Use use)
{
    return MDL_OnKind(panel, control, {UIK_LIST, UIK_RING}, use);
}

template <class Use> int OnTable(int panel, int control, Use use)
{
    return MDL_OnKind(panel, control, {UIK_LIST}, use);
}

int Count(const MDL_Control &list)
{
    return static_cast<int>(list.lines.size());
}

template <class Use> int OnLine(int panel, int control, int index, Use use)
{
    return OnList(panel, control, [&](MDL_Control *list) -> int {
        if (index < 0 || index >= Count(*list))
            return UIE_BAD_INDEX;
        const auto useLine = [&](VIEW_Line *line) { return use(list, line); };
        return MDL_AnswerOf(useLine, &list->lines[static_cast<size_t>(index)]);
    });
}

// What the user selects before the view has shown a new selection of the program's counts no
// more. One that is set to what is shown is no new one: lists are refilled all the time.
void OutdateSelection(MDL_Control *list)
{
    if (list->current != list->shownCurrent || list->selected != list->shownSelected)
        MDL_Outdate(list);
}

// A ring's value is that of its chosen line.
void Select(MDL_Control *list, int index)
{
    list->isLoose = false;
    list->current = index;
    list->selected.clear();
    if (index < 0)
        return;
    list->selected.push_back(index);
    if (list->row->kind == UIK_RING)
        list->state.value = list->lines[static_cast<size_t>(index)].value;
}

// Whether two lines are about the same thing: what follows the first column may change.
bool IsSameLine(const VIEW_Line &line, const std::string &label, int value)
{
    const size_t length = std::min(line.label.find('\033'), line.label.size());
    const size_t other = std::min(label.find('\033'), label.size());
    return line.value == value && length == other &&
           line.label.compare(0, length, label, 0, length) == 0;
}

} // namespace

int ClearListCtrl(int panel, int control)
{
    return OnList(panel, control, [&](MDL_Control *list) {
        list->lines.clear();
        Select(list, -1);
        // What was shown stays known: lines that come again keep number, selection and place.
        if (list->linesInView == 0)
            list->firstVisible = 0; // no window that would keep its place
        list->isRefilled = list->isLoose = true;
        list->listMask |= VIEW_LIST_LINES;
    });
}

int InsertListItem(int panel, int control, int index, const std::string &label, int value)
{
    return OnList(panel, control, [&](MDL_Control *list) -> int {
        if (index < -1 || index > Count(*list))
            return UIE_BAD_INDEX;
        const int at = index == -1 ? Count(*list) : index;
        list->isRefilled = list->isRefilled && at == Count(*list);
        // A line that comes again in its place when the list is filled anew keeps its number.
        const auto place = static_cast<size_t>(at);
        const bool isAgain = list->isRefilled && place < list->shown.size() &&
                             IsSameLine(list->shown[place], label, value);
        VIEW_Line line;
        line.id = isAgain ? list->shown[place].id : ++MDL_GetState().lineId;
        line.label = label;
        line.value = value;
        list->lines.insert(list->lines.begin() + at, std::move(line));
        for (int &selected : list->selected) // they move along with their lines
            selected += selected >= at;
        if (list->current >= at)
            list->current++;
        else if (list->row->kind == UIK_RING && list->current < 0)
            Select(list, 0); // a ring always shows one of its lines
        list->listMask |= VIEW_LIST_LINES;
        return 0;
    });
}

int ReplaceListItem(int panel, int control, int index, const std::string &label, int value)
{
    return OnLine(panel, control, index, [&](MDL_Control *list, VIEW_Line *line) {
        if (line->label == label && line->value == value && line->cells.empty())
            return;
        if (!IsSameLine(*line, label, value))
            line->id = ++MDL_GetState().lineId;
        line->label = label;
        line->value = value;
        line->cells.clear(); // they belonged to the old label
        list->listMask |= VIEW_LIST_LINES;
    });
}

int DeleteListItem(int panel, int control, int index, int count)
{
    return OnLine(panel, control, index, [&](MDL_Control *list, VIEW_Line *) -> int {
        if (count < 0 || count > Count(*list) - index)
            return UIE_BAD_INDEX;
        const auto first = list->lines.begin() + index;
        list->lines.erase(first, first + count);
        std::vector<int> selected;
        for (const int line : list->selected)
            if (line < index || line >= index + count)
                selected.push_back(line < index ? line : line - count);
        list->selected = selected;
        // The line that moves up into the place of a deleted one becomes the current one, so that
        // Delete can be pressed again.
        if (list->current >= index + count)
            list->current -= count;
        else if (list->current >= Count(*list))
            Select(list, Count(*list) - 1);
        list->isRefilled = false;
        list->listMask |= VIEW_LIST_LINES;
        return 0;
    });
}

int GetNumListItems(int panel, int control, int *count)
{
    return OnList(panel, control, [&](MDL_Control *list) { *count = Count(*list); });
}

int GetCtrlIndex(int panel, int control, int *index)
{
    MDL_CatchUp();
    return OnList(panel, control, [&](MDL_Control *list) { *index = list->current; });
}

int SetCtrlIndex(int panel, int control, int index)
{
    return OnLine(panel, control, index, [&](MDL_Control *list, VIEW_Line *) {
        Select(list, index);
        OutdateSelection(list);
    });
}

int GetLabelFromIndex(int panel, int control, int index, std::string *label)
{
    return OnLine(panel, control, index,
                  [&](MDL_Control *, VIEW_Line *line) { *label = line->label; });
}

int GetValueFromIndex(int panel, int control, int index, int *value)
{
    return OnLine(panel, control, index,
                  [&](MDL_Control *, VIEW_Line *line) { *value = line->value; });
}

int SetListItemTip(int panel, int control, int index, const std::string &tip)
{
    return OnLine(panel, control, index, [&](MDL_Control *list, VIEW_Line *line) {
        line->tip = tip;
        list->listMask |= VIEW_LIST_LINES;
    });
}

int SetListColumns(int panel, int control, const std::vector<UI_Column> &columns)
{
    return OnTable(panel, control, [&](MDL_Control *list) {
        list->columns = columns;
        list->listMask |= VIEW_LIST_COLUMNS;
    });
}

int GetListColumns(int panel, int control, std::vector<UI_Column> *columns)
{
    MDL_CatchUp();
    return OnTable(panel, control, [&](MDL_Control *list) { *columns = list->columns; });
}

int SetListCells(int panel, int control, int index, const std::vector<UI_Cell> &cells)
{
    return OnLine(panel, control, index, [&](MDL_Control *list, VIEW_Line *line) -> int {
        if (list->row->kind != UIK_LIST)
            return UIE_BAD_TYPE;
        line->cells = cells;
        list->listMask |= VIEW_LIST_LINES;
        return 0;
    });
}

int GetListCells(int panel, int control, int index, std::vector<UI_Cell> *cells)
{
    return OnLine(panel, control, index, [&](MDL_Control *, VIEW_Line *line) {
        *cells = line->cells;
        if (!cells->empty())
            return;
        for (const UI_LabelColumn &column : UI_SplitColumns(line->label))
            cells->push_back({column.text, UIS_NORMAL, ""});
    });
}

int SetListSelection(int panel, int control, const std::vector<int> &indices)
{
    return OnTable(panel, control, [&](MDL_Control *list) -> int {
        for (const int index : indices)
            if (index < 0 || index >= Count(*list))
                return UIE_BAD_INDEX;
        list->isLoose = false;
        list->selected = indices;
        std::sort(list->selected.begin(), list->selected.end());
        list->selected.erase(std::unique(list->selected.begin(), list->selected.end()),
                             list->selected.end());
        // The keyboard stays where it is as long as that line is among them.
        if (!std::count(indices.begin(), indices.end(), list->current))
            list->current = indices.empty() ? -1 : indices.front();
        OutdateSelection(list);
        return 0;
    });
}

int GetListSelection(int panel, int control, std::vector<int> *indices)
{
    MDL_CatchUp();
    return OnTable(panel, control, [&](MDL_Control *list) { *indices = list->selected; });
}

int GetEditedCell(int panel, int control, int *index, int *column, std::string *text)
{
    return OnTable(panel, control, [&](MDL_Control *list) -> int {
        // Afterwards the line may be another one.
        if (MDL_GetState().handled != list || list->edited.event != EVENT_CELL_EDITED)
            return UIE_BAD_INDEX;
        *index = list->edited.line.index;
        *column = list->edited.column;
        *text = list->edited.text;
        return 0;
    });
}
