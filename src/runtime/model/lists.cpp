// Lists and rings: their lines, columns and cells, and what is selected.
#include "runtime/model/model.h"

#include <algorithm>

#include "runtime/list_columns.h"

namespace {

// What `use` answers for a list or ring, or why there is none.
template <class Use> int OnList(int panel, int control, Use use)
{
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        return MDL_HasLines(*c) ? use(c) : UIE_BAD_TYPE;
    });
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
        return use(list, &list->lines[static_cast<size_t>(index)]);
    });
}

// Columns, cells and several selected lines are a list's, not a ring's.
template <class Use> int OnTable(int panel, int control, Use use)
{
    return OnList(panel, control, [&](MDL_Control *list) -> int {
        return list->row->kind == UIK_LIST ? use(list) : UIE_BAD_TYPE;
    });
}

// What the user selects before the view has shown a new selection of the program's counts no
// more. One that is set to what is shown is no new one: lists are refilled all the time.
void Outdate(MDL_Control *list)
{
    if (list->current != list->shownCurrent || list->selected != list->shownSelected)
        list->stamp = ++MDL_GetState().stamp;
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

// A line that comes again in its place when the list is filled anew keeps its number.
uint32_t NumberFor(const MDL_Control &list, int at, const std::string &label, int value)
{
    const size_t place = static_cast<size_t>(at);
    if (list.isRefilled && place < list.shown.size() && IsSameLine(list.shown[place], label, value))
        return list.shown[place].id;
    return ++MDL_GetState().lineId;
}

std::vector<UI_Cell> CellsOf(const VIEW_Line &line)
{
    if (!line.cells.empty())
        return line.cells;
    std::vector<UI_Cell> cells;
    for (const UIC_Column &column : UIC_SplitColumns(line.label))
        cells.push_back({column.text, UIS_NORMAL, ""});
    return cells;
}

} // namespace

int ClearListCtrl(int panel, int control)
{
    return OnList(panel, control, [&](MDL_Control *list) {
        list->lines.clear();
        Select(list, -1);
        if (list->linesInView == 0)
            list->firstVisible = 0; // no window that would keep its place
        list->isRefilled = list->isLoose = true;
        list->listMask |= VIEW_LIST_LINES;
        return 0;
    });
}

int InsertListItem(int panel, int control, int index, const std::string &label, int value)
{
    return OnList(panel, control, [&](MDL_Control *list) -> int {
        if (index < -1 || index > Count(*list))
            return UIE_BAD_INDEX;
        const int at = index == -1 ? Count(*list) : index;
        list->isRefilled = list->isRefilled && at == Count(*list);
        VIEW_Line line;
        line.id = NumberFor(*list, at, label, value);
        line.label = label;
        line.value = value;
        list->lines.insert(list->lines.begin() + at, std::move(line));
        for (int &selected : list->selected)
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
            return 0;
        if (!IsSameLine(*line, label, value))
            line->id = ++MDL_GetState().lineId;
        line->label = label;
        line->value = value;
        line->cells.clear();
        list->listMask |= VIEW_LIST_LINES;
        return 0;
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
    return OnList(panel, control, [&](MDL_Control *list) {
        *count = Count(*list);
        return 0;
    });
}

int GetCtrlIndex(int panel, int control, int *index)
{
    MDL_CatchUp();
    return OnList(panel, control, [&](MDL_Control *list) {
        *index = list->current;
        return 0;
    });
}

int SetCtrlIndex(int panel, int control, int index)
{
    return OnLine(panel, control, index, [&](MDL_Control *list, VIEW_Line *) {
        Select(list, index);
        Outdate(list);
        return 0;
    });
}

int GetLabelFromIndex(int panel, int control, int index, std::string *label)
{
    return OnLine(panel, control, index, [&](MDL_Control *, VIEW_Line *line) {
        *label = line->label;
        return 0;
    });
}

int GetValueFromIndex(int panel, int control, int index, int *value)
{
    return OnLine(panel, control, index, [&](MDL_Control *, VIEW_Line *line) {
        *value = line->value;
        return 0;
    });
}

int SetListItemTip(int panel, int control, int index, const std::string &tip)
{
    return OnLine(panel, control, index, [&](MDL_Control *list, VIEW_Line *line) {
        line->tip = tip;
        list->listMask |= VIEW_LIST_LINES;
        return 0;
    });
}

int SetListColumns(int panel, int control, const std::vector<UI_Column> &columns)
{
    return OnTable(panel, control, [&](MDL_Control *list) {
        list->columns = columns;
        list->listMask |= VIEW_LIST_COLUMNS;
        return 0;
    });
}

int GetListColumns(int panel, int control, std::vector<UI_Column> *columns)
{
    MDL_CatchUp();
    return OnTable(panel, control, [&](MDL_Control *list) {
        *columns = list->columns;
        return 0;
    });
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
        *cells = CellsOf(*line);
        return 0;
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
        if (!std::count(indices.begin(), indices.end(), list->current))
            list->current = indices.empty() ? -1 : indices.front();
        Outdate(list);
        return 0;
    });
}

int GetListSelection(int panel, int control, std::vector<int> *indices)
{
    MDL_CatchUp();
    return OnTable(panel, control, [&](MDL_Control *list) {
        *indices = list->selected;
        return 0;
    });
}

int GetEditedCell(int panel, int control, int *index, int *column, std::string *text)
{
    return OnTable(panel, control, [&](MDL_Control *list) -> int {
        if (MDL_GetState().handled != list || list->edited.event != EVENT_CELL_EDITED)
            return UIE_BAD_INDEX;
        *index = list->edited.line.index;
        *column = list->edited.column;
        *text = list->edited.text;
        return 0;
    });
}
