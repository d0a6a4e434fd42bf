// Lists and rings: their lines and the selected one.
#include "runtime/headless/hl_state.h"

namespace {

HL_Control *FindList(int panel, int control, int *error)
{
    HL_Control *list = HL_FindControl(panel, control, error);
    if (list && !HL_HasLines(*list)) {
        *error = UIE_BAD_TYPE;
        return nullptr;
    }
    return list;
}

int Count(const HL_Control &list)
{
    return static_cast<int>(list.lines.size());
}

HL_Line *FindLine(int panel, int control, int index, int *error)
{
    HL_Control *list = FindList(panel, control, error);
    if (!list)
        return nullptr;
    if (index < 0 || index >= Count(*list)) {
        *error = UIE_BAD_INDEX;
        return nullptr;
    }
    return &list->lines[static_cast<size_t>(index)];
}

// A ring's value is that of its chosen line.
void Select(HL_Control *list, int index)
{
    list->selected = index;
    if (list->row->kind == UIK_RING && index >= 0)
        list->value = list->lines[static_cast<size_t>(index)].value;
}

} // namespace

int ClearListCtrl(int panel, int control)
{
    int error = 0;
    HL_Control *list = FindList(panel, control, &error);
    if (list) {
        list->lines.clear();
        list->selected = -1;
        list->firstVisible = 0;
    }
    return error;
}

int InsertListItem(int panel, int control, int index, const std::string &label, int value)
{
    int error = 0;
    HL_Control *list = FindList(panel, control, &error);
    if (!list)
        return error;
    if (index < -1 || index > Count(*list))
        return UIE_BAD_INDEX;
    const int at = index == -1 ? Count(*list) : index;
    list->lines.insert(list->lines.begin() + at, HL_Line{label, value, ""});
    if (list->selected >= at)
        list->selected++;
    else if (list->row->kind == UIK_RING && list->selected < 0)
        Select(list, 0); // a ring always shows one of its lines
    return 0;
}

int ReplaceListItem(int panel, int control, int index, const std::string &label, int value)
{
    int error = 0;
    HL_Line *line = FindLine(panel, control, index, &error);
    if (line) {
        line->label = label;
        line->value = value;
    }
    return error;
}

int DeleteListItem(int panel, int control, int index, int count)
{
    int error = 0;
    if (!FindLine(panel, control, index, &error))
        return error;
    HL_Control *list = FindList(panel, control, &error);
    if (count < 0 || count > Count(*list) - index)
        return UIE_BAD_INDEX;
    list->lines.erase(list->lines.begin() + index, list->lines.begin() + index + count);
    if (list->selected >= index + count)
        list->selected -= count;
    else if (list->selected >= Count(*list))
        list->selected = Count(*list) - 1;
    return 0;
}

int GetNumListItems(int panel, int control, int *count)
{
    int error = 0;
    const HL_Control *list = FindList(panel, control, &error);
    if (list)
        *count = Count(*list);
    return error;
}

int GetCtrlIndex(int panel, int control, int *index)
{
    int error = 0;
    const HL_Control *list = FindList(panel, control, &error);
    if (list)
        *index = list->selected;
    return error;
}

int SetCtrlIndex(int panel, int control, int index)
{
    int error = 0;
    if (!FindLine(panel, control, index, &error))
        return error;
    Select(FindList(panel, control, &error), index);
    return 0;
}

int GetLabelFromIndex(int panel, int control, int index, std::string *label)
{
    int error = 0;
    const HL_Line *line = FindLine(panel, control, index, &error);
    if (line)
        *label = line->label;
    return error;
}

int GetValueFromIndex(int panel, int control, int index, int *value)
{
    int error = 0;
    const HL_Line *line = FindLine(panel, control, index, &error);
    if (line)
        *value = line->value;
    return error;
}

int SetListItemTip(int panel, int control, int index, const std::string &tip)
{
    int error = 0;
    HL_Line *line = FindLine(panel, control, index, &error);
    if (line)
        line->tip = tip;
    return error;
}
