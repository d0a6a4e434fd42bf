#include "inspect/record_inspector.h"

#include <algorithm>
#include <cstdio>

#include "comm/communication.h"
#include "comm/sysaddr.h"
#include "inspect/record_tree.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/addr_name.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"
#include "ui/resource.h"
#include "watch/value/write_value.h"
#include "watch/windows/name_completion.h"
#include "watch/windows/outcome_colors.h"
#include "watch/windows/selector_row.h"

namespace {

constexpr int PANEL = PANEL_RECORD;
constexpr double PERIOD_S = 0.5;
constexpr uint32_t PAUSE_MS = 3000; // after a refresh that failed
constexpr uint32_t PAGE_POINTERS = 4, PAGE_BYTES = 2;
constexpr int LINES_WITHOUT_VIEW = 60;
constexpr int COLUMN_VALUE = 1;
constexpr char INDENT[] = "   ";

RCT_Tree tree;
std::string shown; // expression
int shownStation = -1;
std::string shownTypes; // maps that the tree was built from
LVR_Set live;
uint32_t failedMs = 0; // when the last refresh failed; 0 = it did not

void ShowOutcome(const std::string &text, int color = COLOR_PLAIN)
{
    SetCtrlAttribute(PANEL, RECORD_MESSAGE, ATTR_TEXT_COLOR, color);
    SetCtrlVal(PANEL, RECORD_MESSAGE, text);
}

int GetLine()
{
    int line = -1;
    GetCtrlIndex(PANEL, RECORD_LIST, &line);
    return line < static_cast<int>(tree.nodes.size()) ? line : -1;
}

// --- lines ------------------------------------------------------------------------------

bool GetNumber(const RCT_Node &node, LItem *item)
{
    if (node.size == 0)
        return false;
    const uint32_t low = std::min<uint32_t>(node.size, 4);
    if (!LVR_Get(live, node.address, low, &item->value))
        return false;
    return node.size <= 4 || LVR_Get(live, node.address + 4, node.size - 4, &item->valueHigh);
}

std::string FormatValue(const RCT_Node &node, bool *isRead)
{
    LItem item = RCT_MakeItem(node);
    *isRead = GetNumber(node, &item);
    if (node.kind != RCT_VALUE && node.kind != RCT_POINTER)
        return RCT_FormatParts(node);
    if (!*isRead)
        return "";
    item.isValueGood = true;
    std::string text = WRV_ValueText(item);
    if (node.kind != RCT_POINTER)
        return text;
    const uint32_t target = RCT_GetTarget(item.value);
    const std::string name = target == ADDR_NONE ? "nothing" : SYM_AddressToName(target);
    return text + (name.empty() ? "" : " -> " + name);
}

std::vector<UI_Cell> MakeCells(const RCT_Node &node)
{
    const char *mark = node.kind == RCT_VALUE || node.kind == RCT_OTHER ? "  "
                       : node.isOpen                                    ? "- "
                                                                        : "+ ";
    std::string name;
    for (int i = 0; i < node.depth; ++i)
        name += INDENT;
    bool isRead = false;
    const std::string value = FormatValue(node, &isRead);
    const std::string place = SYM_AddressToName(node.address);
    return {{name + mark + node.name, UIS_NORMAL, node.expression},
            {value, isRead || node.size == 0 ? UIS_NORMAL : UIS_DIM, ""},
            {RCT_FormatType(node), UIS_DIM, ""},
            {SEL_AddressText(node.address), UIS_DIM, place}};
}

void EnableButtons()
{
    const int line = GetLine();
    const RCT_Node *node = line >= 0 ? &tree.nodes[static_cast<size_t>(line)] : nullptr;
    SetCtrlAttribute(PANEL, RECORD_OPEN, ATTR_DIMMED,
                     node == nullptr || node->kind == RCT_VALUE || node->kind == RCT_OTHER);
    SetCtrlAttribute(PANEL, RECORD_ADD, ATTR_DIMMED,
                     node == nullptr || node->kind != RCT_VALUE || node->expression.empty());
}

void ShowTree(int selected)
{
    ClearListCtrl(PANEL, RECORD_LIST);
    for (size_t i = 0; i < tree.nodes.size(); ++i) {
        InsertListItem(PANEL, RECORD_LIST, -1, tree.nodes[i].name, 0);
        SetListCells(PANEL, RECORD_LIST, static_cast<int>(i), MakeCells(tree.nodes[i]));
    }
    if (selected >= 0)
        SetCtrlIndex(PANEL, RECORD_LIST, selected);
    EnableButtons();
}

// --- reading ----------------------------------------------------------------------------

void GetView(int *first, int *end)
{
    int lines = 0;
    *first = 0;
    GetCtrlAttribute(PANEL, RECORD_LIST, ATTR_FIRST_VISIBLE_LINE, first);
    GetCtrlAttribute(PANEL, RECORD_LIST, ATTR_LINES_IN_VIEW, &lines);
    *first = std::max(*first, 0);
    *end = std::min(*first + (lines > 0 ? lines : LINES_WITHOUT_VIEW),
                    static_cast<int>(tree.nodes.size()));
}

// The page pointers are read and proven together with the pointers that need them.
void WantPages(LVR_Set *set)
{
    if (!IsWordAddressing(Procesor))
        LVR_Want(set, GetSysAddr("DPP0"), PAGE_POINTERS * PAGE_BYTES);
}

bool TakePages(const LVR_Set &set)
{
    uint32_t pages[PAGE_POINTERS];
    for (uint32_t i = 0; i < PAGE_POINTERS; ++i)
        if (!LVR_Get(set, GetSysAddr("DPP0") + i * PAGE_BYTES, PAGE_BYTES, &pages[i]))
            return IsWordAddressing(Procesor);
    for (uint32_t i = 0; i < PAGE_POINTERS; ++i)
        awQRDPP[i] = static_cast<uint16_t>(pages[i]);
    return true;
}

bool Refresh()
{
    int first = 0, end = 0;
    std::string cause;
    GetView(&first, &end);
    live = LVR_Set();
    bool hasPointers = false;
    for (int i = first; i < end; ++i) {
        const RCT_Node &node = tree.nodes[static_cast<size_t>(i)];
        hasPointers = hasPointers || node.kind == RCT_POINTER;
        if (node.size > 0)
            LVR_Want(&live, node.address, node.size);
    }
    if (live.wanted.empty())
        return true;
    if (hasPointers)
        WantPages(&live);
    const bool isGood = LVR_Read(&live, STATION, &cause) == 0;
    TakePages(live);
    const bool wasFailing = failedMs != 0;
    failedMs = isGood ? 0 : std::max(PLT_TickMs(), 1u);
    for (int i = first; i < end; ++i)
        SetListCells(PANEL, RECORD_LIST, i, MakeCells(tree.nodes[static_cast<size_t>(i)]));
    if (isGood && wasFailing)
        ShowOutcome("");
    else if (!isGood)
        ShowOutcome("Not read: " + cause + ".", COLOR_BAD);
    return isGood;
}

std::string GetTypes()
{
    return szMapFileName + "\n" + TMF_szFileName + "\n" + std::to_string(nNodes) + " " +
           std::to_string(TMF_cnDefVars) + " " + std::to_string(TMF_cnDefStructCts) + " " +
           std::to_string(Procesor);
}

void Inspect(const std::string &expression)
{
    RCT_Tree fresh;
    std::string cause;
    if (RCT_Build(expression, &fresh, &cause) != 0) {
        ShowOutcome("Not shown: " + cause + ".", COLOR_BAD);
        return;
    }
    tree = fresh;
    shown = expression;
    shownStation = STATION;
    shownTypes = GetTypes();
    live = LVR_Set();
    ShowOutcome("");
    ShowTree(0);
    if (isTimer != 0)
        Refresh();
}

// --- what the user does -----------------------------------------------------------------

// Where the pointer leads is read now: it may have moved since.
bool FollowPointer(const RCT_Node &node, uint32_t *target)
{
    std::string cause;
    LVR_Set pointer;
    uint32_t value = 0;
    LVR_Want(&pointer, node.address, node.size);
    WantPages(&pointer);
    if (!VR_EnsureCom()) {
        ShowOutcome(std::string("Not read: ") + COM_OFF_TEXT, COLOR_BAD);
        return false;
    }
    if (LVR_Read(&pointer, STATION, &cause) != 0 || !TakePages(pointer) ||
        !LVR_Get(pointer, node.address, node.size, &value)) {
        ShowOutcome("Not read: " + (cause.empty() ? "the page pointers cannot be read" : cause) +
                        ".",
                    COLOR_BAD);
        return false;
    }
    *target = RCT_GetTarget(value);
    if (*target == ADDR_NONE)
        ShowOutcome("The pointer leads nowhere.");
    return *target != ADDR_NONE;
}

void Toggle()
{
    const int line = GetLine();
    if (line < 0)
        return;
    const auto index = static_cast<size_t>(line);
    const RCT_Node node = tree.nodes[index];
    uint32_t target = ADDR_NONE;
    std::string cause;
    if (node.kind == RCT_VALUE || node.kind == RCT_OTHER)
        return;
    if (node.isOpen)
        RCT_Close(&tree, index);
    else if (node.kind == RCT_POINTER && !FollowPointer(node, &target))
        return;
    else if (RCT_Open(&tree, index, target, &cause) != 0) {
        ShowOutcome("Not opened: " + cause + ".", COLOR_BAD);
        return;
    }
    ShowOutcome("");
    ShowTree(line);
    if (isTimer != 0)
        Refresh();
}

void AddToWatch()
{
    const int line = GetLine();
    if (line >= 0 && !tree.nodes[static_cast<size_t>(line)].expression.empty())
        SEL_AddToWatch(tree.nodes[static_cast<size_t>(line)].expression, PANEL, RECORD_MESSAGE);
}

void EditValue()
{
    int line = -1, column = -1;
    std::string text, message;
    if (GetEditedCell(PANEL, RECORD_LIST, &line, &column, &text) < 0 || column != COLUMN_VALUE ||
        line < 0 || line >= static_cast<int>(tree.nodes.size()))
        return;
    const RCT_Node &node = tree.nodes[static_cast<size_t>(line)];
    LItem item = RCT_MakeItem(node);
    if (node.kind != RCT_VALUE)
        ShowOutcome("Only a single value can be written.", COLOR_BAD);
    else if (!VR_EnsureCom())
        ShowOutcome(std::string("Not changed: ") + COM_OFF_TEXT, COLOR_BAD);
    else {
        const int result = WRV_WriteUnlisted(&item, text, &message);
        Refresh();
        ShowOutcome(message, result == WRV_OK ? COLOR_GOOD : result > 0 ? COLOR_WARN : COLOR_BAD);
    }
}

void Prepare()
{
    std::vector<UI_Column> columns;
    if (GetListColumns(PANEL, RECORD_LIST, &columns) < 0 || columns.empty()) {
        UI_Column value;
        value.title = "Value";
        value.width = 180;
        value.isEditable = true;
        SetListColumns(
            PANEL, RECORD_LIST,
            {{"Name", 240, UIA_LEFT}, value, {"Type", 160, UIA_LEFT}, {"Address", 80, UIA_LEFT}});
    }
    SetCtrlCompletion(PANEL, RECORD_PLACE, NCM_CompleteCB);
    SetCtrlAttribute(PANEL, RECORD_TIMER, ATTR_INTERVAL, PERIOD_S);
}

} // namespace

void RCI_Open(const std::string &expression)
{
    Prepare();
    DisplayPanel(PANEL);
    SetActivePanel(PANEL);
    SetActiveCtrl(PANEL, RECORD_PLACE);
    if (!expression.empty())
        SetCtrlVal(PANEL, RECORD_PLACE, expression);
    if (!expression.empty())
        Inspect(expression);
    EnableButtons();
}

void RCI_NamesChanged()
{
    if (tree.nodes.empty() || shownTypes == GetTypes())
        return;
    tree.nodes.clear(); // nothing of the old types may be looked up any more
    ShowTree(-1);
    Inspect(shown);
}

void RCI_OpenCB(int, int)
{
    int line = -1;
    GetCtrlIndex(mainPanel, MAIN_LIST, &line);
    const bool isItem = line >= 0 && line < nLItems && !LIT_IsTMS(aLItems[line]);
    std::string name = isItem ? aLItems[line].name : "";
    // Of a member, the whole record.
    RCI_Open(name.substr(0, name.find_first_of(".[+ ")));
}

int RCI_PanelCB(int panel, int event, int data)
{
    if (event != EVENT_CLOSE && !(event == EVENT_KEYPRESS && data == KEY_ESC))
        return 0;
    HidePanel(panel);
    return 1;
}

int RCI_PlaceCB(int, int, int event, int)
{
    std::string text;
    if (event == EVENT_COMMIT && GetCtrlVal(PANEL, RECORD_PLACE, &text) >= 0)
        Inspect(text);
    return 0;
}

int RCI_ListCB(int, int, int event, int data)
{
    if (event == EVENT_VAL_CHANGED)
        EnableButtons();
    else if (event == EVENT_CELL_EDITED)
        EditValue();
    else if (event == EVENT_KEYPRESS && (data == KEY_RIGHT || data == KEY_LEFT)) {
        const int line = GetLine();
        const bool isOpen = line >= 0 && tree.nodes[static_cast<size_t>(line)].isOpen;
        if (line >= 0 && isOpen == (data == KEY_LEFT))
            Toggle();
    } else if (event == EVENT_LEFT_DOUBLE_CLICK || event == EVENT_COMMIT)
        Toggle();
    return event == EVENT_KEYPRESS ? 1 : 0;
}

int RCI_ButtonCB(int, int control, int event, int)
{
    if (event == EVENT_COMMIT && control == RECORD_OPEN)
        Toggle();
    else if (event == EVENT_COMMIT && control == RECORD_ADD)
        AddToWatch();
    return 0;
}

// A tree of another station or of other types is built anew.
int RCI_TimerCB(int, int, int, int)
{
    int isVisible = 0;
    GetPanelAttribute(PANEL, ATTR_VISIBLE, &isVisible);
    const bool isPausing = failedMs != 0 && PLT_TickMs() - failedMs < PAUSE_MS;
    if (isVisible == 0 || isTimer == 0 || isPausing || tree.nodes.empty())
        return 0;
    if (shownStation != STATION)
        Inspect(shown);
    else
        Refresh();
    return 0;
}
