// The structure selector: the members of one structure or the elements of one array at a
// time, named by a path. Enter goes a level down, Backspace a level up; the path field
// takes any expression. The top level, with an empty path, lists what has parts.
#include <algorithm>
#include <cstdlib>
#include <vector>

#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/typemap.h"
#include "symbols/typemap_list.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/windows/selector_row.h"
#include "watch/windows/selectors.h"

namespace {

constexpr int PANEL = PANEL_STRUCT_SELECTOR;
// Pixels; the captions above the list stand at the same places.
constexpr int OFFSET_COLUMN = 180;
constexpr int ADDRESS_COLUMN = 248;
constexpr int SIZE_COLUMN = 324;
constexpr int DECLARATION_COLUMN = 384;

// What one level shows.
struct Level {
    std::string path; // "" = every variable with parts
    std::vector<TMF_ListRow> rows;
    uint32_t first = 0;    // of the elements listed
    uint32_t elements = 0; // of an array in all, 0 for a structure
};
Level level;

// Where the last selection ("[3]" or ".member") of a path begins; npos = none.
size_t LastSelection(const std::string &path)
{
    return path.find_last_of(".[");
}

// False, and *built as it was, when the path has no parts.
bool BuildLevel(const std::string &path, uint32_t first, Level *built)
{
    Level next;
    next.path = path;
    if (path.empty()) {
        next.rows = TMF_ListVariables("");
        next.rows.erase(std::remove_if(next.rows.begin(), next.rows.end(),
                                       [](const TMF_ListRow &row) { return !row.hasParts; }),
                        next.rows.end());
    } else {
        next.rows = TMF_ListParts(path.c_str(), first);
        if (next.rows.empty())
            return false;
    }
    uint32_t chain[TMF_CHAIN_SIZE];
    uint32_t offset = 0, stride = 0;
    if (TMF_GetEfType(path.c_str(), chain, &offset) == 0 &&
        TMF_GetArrayInfo(chain, &next.elements, &stride) == 0) {
        next.first = first;
        for (TMF_ListRow &row : next.rows) // "int16_t [3]" would look like an array
            row.declaration = TMF_FormatDecl("", chain + 1);
    } else {
        next.elements = 0;
    }
    *built = next;
    return true;
}

std::string RowLabel(const TMF_ListRow &row, uint32_t start)
{
    // The last part of its path, ".member" without the dot and "[3]" with its brackets.
    const size_t at = LastSelection(row.expression);
    const size_t begin = at == std::string::npos ? 0 : row.expression[at] == '.' ? at + 1 : at;
    const uint32_t unit = IsWordAddressing(Procesor) ? 2 : 1; // as addresses are shown
    const std::string offset =
        level.path.empty() ? "" : TXT_Format("+0x%X", (row.address - start) / unit);
    return row.expression.substr(begin) + SEL_Column(OFFSET_COLUMN, offset) +
           SEL_Column(ADDRESS_COLUMN, SEL_AddressText(row.address)) +
           SEL_Column(SIZE_COLUMN, SEL_SizeText(row.size)) +
           SEL_Column(DECLARATION_COLUMN, row.declaration);
}

const TMF_ListRow *SelectedRow()
{
    int line = -1;
    GetCtrlIndex(PANEL, STRSEL_LIST, &line);
    if (line < 0 || line >= static_cast<int>(level.rows.size()))
        return nullptr;
    return &level.rows[static_cast<size_t>(line)];
}

void ShowSelected()
{
    const TMF_ListRow *row = SelectedRow();
    SetCtrlAttribute(PANEL, STRSEL_COPY, ATTR_DIMMED, row == nullptr);
    SetCtrlAttribute(PANEL, STRSEL_ADD, ATTR_DIMMED, row == nullptr || !SEL_CanWatch(*row));
    SetCtrlAttribute(PANEL, STRSEL_OPEN, ATTR_DIMMED, row == nullptr || !row->hasParts);
    if (row != nullptr)
        SetCtrlVal(PANEL, STRSEL_DETAIL, SEL_Describe(*row));
    else
        SetCtrlVal(PANEL, STRSEL_DETAIL,
                   TMF_cnDefVars == 0 ? "No type map is loaded: File, Open type map."
                                      : "No variable of the map has members.");
}

void ShowRange()
{
    const auto count = static_cast<uint32_t>(level.rows.size());
    const bool isPaged = level.elements > TMF_LIST_ELEMENTS_MAX;
    std::string text = std::to_string(count) + (level.path.empty() ? " variables" : " members");
    if (level.elements > 0)
        text = "[" + std::to_string(level.first) + "] to [" +
               std::to_string(level.first + count - 1) + "] of " + std::to_string(level.elements);
    SetCtrlVal(PANEL, STRSEL_COUNT, text);
    for (const int button : {STRSEL_PREVIOUS, STRSEL_NEXT})
        SetCtrlAttribute(PANEL, button, ATTR_VISIBLE, isPaged);
    SetCtrlAttribute(PANEL, STRSEL_PREVIOUS, ATTR_DIMMED, level.first == 0);
    SetCtrlAttribute(PANEL, STRSEL_NEXT, ATTR_DIMMED, level.first + count >= level.elements);
    SetCtrlAttribute(PANEL, STRSEL_UP, ATTR_DIMMED, level.path.empty());
}

// Shows `level` with the row of an expression, else the first one, selected.
void ShowLevel(const std::string &selected)
{
    const uint32_t origin = level.path.empty() ? 0 : inStruct(level.path.c_str(), aVarNode, nNodes);
    SetCtrlVal(PANEL, STRSEL_PATH, level.path);
    ClearListCtrl(PANEL, STRSEL_LIST);
    int line = 0;
    for (size_t i = 0; i < level.rows.size(); ++i) {
        const int at = static_cast<int>(i);
        InsertListItem(PANEL, STRSEL_LIST, -1, RowLabel(level.rows[i], origin), at);
        if (level.rows[i].expression == selected)
            line = at;
    }
    if (!level.rows.empty()) {
        SetCtrlIndex(PANEL, STRSEL_LIST, line);
        if (line == 0) // another level: the scroll of the one before means nothing
            SetCtrlAttribute(PANEL, STRSEL_LIST, ATTR_FIRST_VISIBLE_LINE, 0);
    }
    ShowRange();
    ShowSelected();
}

bool ShowPath(const std::string &path, uint32_t first, const std::string &selected)
{
    if (!BuildLevel(path, first, &level))
        return false;
    ShowLevel(selected);
    return true;
}

// Shows the level that a path stands on, with the path selected: of an array the page on which
// its index is.
bool ShowLevelOf(const std::string &path)
{
    const size_t at = LastSelection(path);
    if (at == std::string::npos)
        return ShowPath("", 0, path);
    uint32_t index = 0;
    if (path[at] == '[')
        index = static_cast<uint32_t>(std::strtoul(path.c_str() + at + 1, nullptr, 0));
    return ShowPath(path.substr(0, at), index - index % TMF_LIST_ELEMENTS_MAX, path);
}

void GoUp()
{
    if (!level.path.empty())
        ShowLevelOf(std::string(level.path)); // a copy: showing a level sets it
}

// What a user typed: a level, or a plain member, which is then selected on its level.
bool GoTo(const std::string &text)
{
    const std::string path = TXT_Trim(text);
    if (ShowPath(path, 0, ""))
        return true;
    uint32_t offset = 0;
    const bool isMember = LastSelection(path) != std::string::npos &&
                          TMF_GetEfType(path.c_str(), nullptr, &offset) == 0;
    if (isMember && ShowLevelOf(path))
        return true;
    SetCtrlVal(PANEL, STRSEL_DETAIL, "No structure or array has this name: " + path);
    return false;
}

void OpenSelected()
{
    const TMF_ListRow *row = SelectedRow();
    if (row != nullptr && row->hasParts)
        ShowPath(std::string(row->expression), 0, ""); // a copy: the row goes with its level
}

void AddSelected()
{
    if (const TMF_ListRow *row = SelectedRow())
        SEL_AddToWatch(row->expression, PANEL, STRSEL_DETAIL);
}

void CopySelected()
{
    const TMF_ListRow *row = SelectedRow();
    if (row != nullptr && ClipboardPutText(row->expression) == 0)
        SetCtrlVal(PANEL, STRSEL_DETAIL, "Copied: " + row->expression);
}

struct ActionRow {
    int code; // control or key
    void (*act)();
};
const ActionRow BUTTONS[] = {
    {STRSEL_UP, GoUp},
    {STRSEL_ADD, AddSelected},
    {STRSEL_OPEN, OpenSelected},
    {STRSEL_COPY, CopySelected},
    {STRSEL_CLOSE, [] { HidePanel(PANEL); }},
    {STRSEL_PREVIOUS,
     [] { ShowPath(std::string(level.path), level.first - TMF_LIST_ELEMENTS_MAX, ""); }},
    {STRSEL_NEXT,
     [] { ShowPath(std::string(level.path), level.first + TMF_LIST_ELEMENTS_MAX, ""); }},
};
const ActionRow LIST_KEYS[] = {{KEY_BACKSPACE, GoUp}, {KEY_LEFT, GoUp}, {KEY_RIGHT, OpenSelected}};

template <size_t N> int ActOn(const ActionRow (&rows)[N], int code)
{
    for (const ActionRow &row : rows) {
        if (row.code != code)
            continue;
        row.act();
        return 1;
    }
    return 0;
}

} // namespace

void TMF_CreateStructSelector()
{
    // The path may name nothing any more, or an array that is shorter now.
    const TMF_ListRow *row = SelectedRow();
    const std::string selected = row != nullptr ? row->expression : "";
    if (!ShowPath(std::string(level.path), level.first, selected))
        ShowPath("", 0, "");
}

int TMF_DisplayStructSelector(const std::string &expression)
{
    TMF_CreateStructSelector();
    const bool isFound = GoTo(expression);
    DisplayPanel(PANEL);
    SetActivePanel(PANEL);
    SetActiveCtrl(PANEL, level.rows.empty() ? STRSEL_PATH : STRSEL_LIST);
    return isFound ? 0 : -1;
}

void SEL_StructureOpenCB(int, int)
{
    TMF_DisplayStructSelector("");
}

int SEL_StructurePathCB(int, int, int event, int data)
{
    if (event == EVENT_COMMIT) {
        std::string text;
        GetCtrlVal(PANEL, STRSEL_PATH, &text);
        if (GoTo(text))
            SetActiveCtrl(PANEL, STRSEL_LIST);
    } else if (event == EVENT_KEYPRESS && data == KEY_DOWN) {
        SetActiveCtrl(PANEL, STRSEL_LIST);
        return 1;
    }
    return 0;
}

int SEL_StructureListCB(int, int, int event, int data)
{
    if (event == EVENT_KEYPRESS)
        return ActOn(LIST_KEYS, data);
    if (event == EVENT_VAL_CHANGED)
        ShowSelected();
    if (event != EVENT_COMMIT && event != EVENT_LEFT_DOUBLE_CLICK)
        return 0;
    // Enter goes on down as long as there is a level, and adds where there is none.
    const TMF_ListRow *row = SelectedRow();
    if (row != nullptr && row->hasParts)
        OpenSelected();
    else
        AddSelected();
    return 0;
}

int SEL_StructureButtonCB(int, int control, int event, int)
{
    if (event == EVENT_COMMIT)
        ActOn(BUTTONS, control);
    return 0;
}
