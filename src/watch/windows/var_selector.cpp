// The variable selector. Typing goes to the filter wherever the focus is, Down moves into
// the list, Enter adds. The rows of a source are collected once; a change of the filter
// only picks from them.
#include <algorithm>
#include <cctype>
#include <vector>

#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/typemap_list.h"
#include "symbols/varnode.h"
#include "ui/resource.h"
#include "watch/windows/selector_row.h"
#include "watch/windows/selectors.h"

namespace {

constexpr int PANEL = PANEL_VAR_SELECTOR;
// Pixels; the captions above the list stand at the same places.
constexpr int ADDRESS_COLUMN = 240;
constexpr int SIZE_COLUMN = 316;
constexpr int DECLARATION_COLUMN = 376;

struct SourceRow {
    SEL_VariableSource source;
    const char *label;
    const char *noun; // of what is counted
    const char *none; // shown when there is nothing
};
const SourceRow SOURCES[] = {
    {SEL_SOURCE_MAP, "Map variables", "variables", "No map is loaded: File, Open map file."},
    {SEL_SOURCE_REGISTERS, "Processor registers", "registers", "No registers for this processor."},
    {SEL_SOURCE_TMS, "TMS320 variables", "variables",
     "No TMS320 map is loaded beside the map: console command \"mt file\"."},
};

struct Selector {
    std::vector<TMF_ListRow> rows;
    std::vector<std::string> names; // of the rows, in lower case
    std::vector<int> shown;         // rows that the filter lets through
    std::string filter;             // that `shown` was picked with
    bool isStale = true;            // rows are not those of the tables
};
Selector selector;

std::string LowerCase(std::string text)
{
    for (char &c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// Both in lower case. "*" stands for any run of characters; on a mismatch the last one takes one
// more.
bool IsFoldedMatch(const std::string &filter, const std::string &text)
{
    if (filter.find('*') == std::string::npos)
        return text.find(filter) != std::string::npos;
    const char *pattern = filter.c_str(), *name = text.c_str();
    const char *star = nullptr, *resume = nullptr;
    while (*name != '\0') {
        if (*pattern == '*') {
            star = pattern++;
            resume = name;
        } else if (*pattern == *name) {
            ++pattern;
            ++name;
        } else if (star != nullptr) {
            pattern = star + 1;
            name = ++resume;
        } else {
            return false;
        }
    }
    while (*pattern == '*')
        ++pattern;
    return *pattern == '\0';
}

const SourceRow &ChosenSource()
{
    int value = SEL_SOURCE_MAP;
    GetCtrlVal(PANEL, VARSEL_SOURCE, &value);
    for (const SourceRow &row : SOURCES)
        if (row.source == value)
            return row;
    return SOURCES[0];
}

void AppendNodes(const VarNode *table, int count, const char *prefix,
                 std::vector<TMF_ListRow> *rows)
{
    for (int i = 0; i < count; ++i) {
        TMF_ListRow row;
        row.expression = std::string(prefix) + table[i].name;
        row.address = table[i].addr;
        rows->push_back(row);
    }
}

void CollectRows()
{
    selector.rows.clear();
    switch (ChosenSource().source) {
    case SEL_SOURCE_MAP:
        selector.rows = TMF_ListVariables("");
        break;
    case SEL_SOURCE_REGISTERS: // no type map knows these two
        AppendNodes(aVarNode166, nNodes166, "", &selector.rows);
        break;
    case SEL_SOURCE_TMS:
        AppendNodes(aVarTMSNode, nTMSNodes, "&", &selector.rows);
        break;
    }
    selector.names.clear(); // folded here once, and not at every key
    for (const TMF_ListRow &row : selector.rows)
        selector.names.push_back(LowerCase(row.expression));
    selector.isStale = false;
}

// A TMS320 behind a station counts words whatever the station counts.
std::string RowLabel(const TMF_ListRow &row)
{
    const bool isTMS = row.expression[0] == '&';
    const uint32_t scale = isTMS && IsWordAddressing(Procesor) ? 2 : 1;
    const bool hasType = row.declaration != row.expression;
    return row.expression + SEL_Column(ADDRESS_COLUMN, SEL_AddressText(row.address * scale)) +
           SEL_Column(SIZE_COLUMN, SEL_SizeText(row.size)) +
           SEL_Column(DECLARATION_COLUMN, hasType ? row.declaration : "");
}

int SelectedLine()
{
    int line = -1;
    GetCtrlIndex(PANEL, VARSEL_LIST, &line);
    return line;
}

const TMF_ListRow *SelectedRow()
{
    const int line = SelectedLine();
    if (line < 0 || line >= static_cast<int>(selector.shown.size()))
        return nullptr;
    return &selector.rows[static_cast<size_t>(selector.shown[static_cast<size_t>(line)])];
}

void ShowSelected()
{
    const TMF_ListRow *row = SelectedRow();
    SetCtrlAttribute(PANEL, VARSEL_COPY, ATTR_DIMMED, row == nullptr);
    SetCtrlAttribute(PANEL, VARSEL_ADD, ATTR_DIMMED, row == nullptr || !SEL_CanWatch(*row));
    SetCtrlAttribute(PANEL, VARSEL_MEMBERS, ATTR_DIMMED, row == nullptr || !row->hasParts);
    if (row != nullptr)
        SetCtrlVal(PANEL, VARSEL_DETAIL, SEL_Describe(*row));
    else
        SetCtrlVal(PANEL, VARSEL_DETAIL,
                   selector.rows.empty() ? ChosenSource().none : "No name matches the filter.");
}

// The line that was selected stays selected if the filter lets it through.
void FillList()
{
    const TMF_ListRow *before = SelectedRow();
    const std::string kept = before != nullptr ? before->expression : "";
    if (selector.isStale)
        CollectRows();
    GetCtrlVal(PANEL, VARSEL_FILTER, &selector.filter);
    const std::string filter = LowerCase(selector.filter);
    selector.shown.clear();
    ClearListCtrl(PANEL, VARSEL_LIST);
    int line = 0;
    for (size_t i = 0; i < selector.rows.size(); ++i) {
        if (!IsFoldedMatch(filter, selector.names[i]))
            continue;
        if (selector.rows[i].expression == kept)
            line = static_cast<int>(selector.shown.size());
        selector.shown.push_back(static_cast<int>(i));
        InsertListItem(PANEL, VARSEL_LIST, -1, RowLabel(selector.rows[i]), static_cast<int>(i));
    }
    if (!selector.shown.empty()) {
        SetCtrlIndex(PANEL, VARSEL_LIST, line);
        if (line == 0) // another filter: the scroll of the one before means nothing
            SetCtrlAttribute(PANEL, VARSEL_LIST, ATTR_FIRST_VISIBLE_LINE, 0);
    }
    SetCtrlVal(PANEL, VARSEL_COUNT,
               std::to_string(selector.shown.size()) + " of " +
                   std::to_string(selector.rows.size()) + " " + ChosenSource().noun);
    ShowSelected();
}

void SetFilter(const std::string &text)
{
    SetCtrlVal(PANEL, VARSEL_FILTER, text);
    FillList();
}

void OpenMembers()
{
    const TMF_ListRow *row = SelectedRow();
    if (row != nullptr && row->hasParts)
        TMF_DisplayStructSelector(row->expression);
}

void AddSelected()
{
    const TMF_ListRow *row = SelectedRow();
    if (row == nullptr)
        return;
    if (SEL_CanWatch(*row))
        SEL_AddToWatch(row->expression, PANEL, VARSEL_DETAIL);
    else // a structure: one of its members is meant
        OpenMembers();
}

void CopySelected()
{
    const TMF_ListRow *row = SelectedRow();
    if (row != nullptr && ClipboardPutText(row->expression) == 0)
        SetCtrlVal(PANEL, VARSEL_DETAIL, "Copied: " + row->expression);
}

// Who types while the list has the focus means the filter, and goes on there. 1 when the key was
// for it.
int OnListKey(int key)
{
    std::string filter = selector.filter;
    if (key == KEY_UP && SelectedLine() <= 0) { // above the first line
        SetActiveCtrl(PANEL, VARSEL_FILTER);
        return 1;
    }
    if (key >= ' ' && key < 0x7F)
        filter += static_cast<char>(key);
    else if (key == KEY_BACKSPACE && !filter.empty())
        filter.pop_back();
    else
        return 0;
    SetActiveCtrl(PANEL, VARSEL_FILTER);
    SetFilter(filter);
    return 1;
}

struct ButtonRow {
    int control;
    void (*act)();
};
const ButtonRow BUTTONS[] = {
    {VARSEL_ADD, AddSelected},
    {VARSEL_MEMBERS, OpenMembers},
    {VARSEL_COPY, CopySelected},
    {VARSEL_CLOSE, [] { HidePanel(PANEL); }},
};

bool IsVisible(int panel)
{
    int value = 0;
    return GetPanelAttribute(panel, ATTR_VISIBLE, &value) >= 0 && value != 0;
}

} // namespace

bool SEL_IsMatch(const std::string &filter, const std::string &name)
{
    return IsFoldedMatch(LowerCase(filter), LowerCase(name));
}

void SEL_SymbolsChanged()
{
    selector.isStale = true; // a window that is hidden collects them when it is opened
    if (IsVisible(PANEL))
        FillList();
    if (IsVisible(PANEL_STRUCT_SELECTOR))
        TMF_CreateStructSelector();
}

void SEL_VariableOpenCB(int, int)
{
    int count = 0;
    GetNumListItems(PANEL, VARSEL_SOURCE, &count);
    if (count == 0) // opened for the first time
        for (const SourceRow &row : SOURCES)
            InsertListItem(PANEL, VARSEL_SOURCE, -1, row.label, row.source);
    SetFilter("");
    DisplayPanel(PANEL);
    SetActivePanel(PANEL);
    SetActiveCtrl(PANEL, VARSEL_FILTER);
}

int SEL_VariableFilterCB(int, int, int event, int data)
{
    if (event == EVENT_VAL_CHANGED)
        FillList();
    else if (event == EVENT_COMMIT) // the first match without leaving the filter
        AddSelected();
    if (event != EVENT_KEYPRESS || data != KEY_DOWN)
        return 0;
    if (!selector.shown.empty()) {
        SetCtrlIndex(PANEL, VARSEL_LIST, std::max(SelectedLine(), 0));
        SetActiveCtrl(PANEL, VARSEL_LIST);
    }
    return 1;
}

int SEL_VariableListCB(int, int, int event, int data)
{
    if (event == EVENT_KEYPRESS)
        return OnListKey(data);
    if (event == EVENT_VAL_CHANGED)
        ShowSelected();
    else if (event == EVENT_COMMIT || event == EVENT_LEFT_DOUBLE_CLICK)
        AddSelected();
    return 0;
}

int SEL_VariableSourceCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT) {
        selector.isStale = true;
        FillList();
    }
    return 0;
}

int SEL_VariableButtonCB(int, int control, int event, int)
{
    for (const ButtonRow &row : BUTTONS)
        if (event == EVENT_COMMIT && row.control == control)
            row.act();
    return 0;
}
