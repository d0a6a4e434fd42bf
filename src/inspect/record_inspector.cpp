#include "inspect/record_inspector.h"

#include <algorithm>
#include <cstdio>

#include "comm/communication.h"
#include "comm/sysaddr.h"
#include "inspect/inspectors.h"
#include "inspect/record_tree.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/addr_name.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/value/write_value.h"
#include "watch/windows/name_completion.h"
#include "watch/windows/outcome_colors.h"
#include "watch/windows/selector_row.h"

namespace {

constexpr double PERIOD_S = 0.5;
constexpr uint32_t PAUSE_MS = 3000; // after a refresh that failed
constexpr uint32_t PAGE_POINTERS = 4, PAGE_BYTES = 2;
constexpr int LINES_WITHOUT_VIEW = 60;
constexpr int COLUMN_VALUE = 1;
constexpr char INDENT[] = "   ";

RCI_View *FindView(int panel)
{
    const INS_Inspector *inspector = INS_Find(panel);
    return inspector != nullptr ? inspector->record.get() : nullptr;
}

void ShowOutcome(const RCI_View *view, const std::string &text, int color = COLOR_PLAIN)
{
    SetCtrlAttribute(view->panel, RECORD_MESSAGE, ATTR_TEXT_COLOR, color);
    SetCtrlVal(view->panel, RECORD_MESSAGE, text);
}

int GetLine(const RCI_View *view)
{
    int line = -1;
    GetCtrlIndex(view->panel, RECORD_LIST, &line);
    return line < static_cast<int>(view->tree.nodes.size()) ? line : -1;
}

// --- lines ------------------------------------------------------------------------------

bool GetNumber(const RCI_View *view, const RCT_Node &node, LItem *item)
{
    if (node.size == 0)
        return false;
    const uint32_t low = std::min<uint32_t>(node.size, 4);
    if (!LVR_Get(view->live, node.address, low, &item->value))
        return false;
    return node.size <= 4 || LVR_Get(view->live, node.address + 4, node.size - 4, &item->valueHigh);
}

std::string FormatValue(const RCI_View *view, const RCT_Node &node, bool *isRead)
{
    LItem item = RCT_MakeItem(node);
    *isRead = GetNumber(view, node, &item);
    if (node.size == 0)
        return RCT_FormatParts(node);
    if (!*isRead)
        return "";
    if (node.kind == RCT_BIT)
        return ((node.bit < 32 ? item.value : item.valueHigh) >> node.bit % 32 & 1) != 0 ? "1"
                                                                                         : "0";
    item.isValueGood = true;
    std::string text = WRV_ValueText(item);
    if (node.kind != RCT_POINTER)
        return text;
    const uint32_t target = RCT_GetTarget(item.value);
    const std::string name = target == ADDR_NONE ? "nothing" : SYM_AddressToName(target);
    return text + (name.empty() ? "" : " -> " + name);
}

std::vector<UI_Cell> MakeCells(const RCI_View *view, const RCT_Node &node)
{
    const char *mark = !RCT_CanOpen(node) ? "  " : node.isOpen ? "- " : "+ ";
    std::string name;
    for (int i = 0; i < node.depth; ++i)
        name += INDENT;
    bool isRead = false;
    const std::string value = FormatValue(view, node, &isRead);
    const std::string place = SYM_AddressToName(node.address);
    return {{name + mark + node.name, UIS_NORMAL, node.expression},
            {value, isRead || node.size == 0 ? UIS_NORMAL : UIS_DIM, ""},
            {RCT_FormatType(node), UIS_DIM, ""},
            {SEL_AddressText(node.address), UIS_DIM, place}};
}

void EnableButtons(const RCI_View *view)
{
    const int line = GetLine(view);
    const RCT_Node *node = line >= 0 ? &view->tree.nodes[static_cast<size_t>(line)] : nullptr;
    SetCtrlAttribute(view->panel, RECORD_OPEN, ATTR_DIMMED, node == nullptr || !RCT_CanOpen(*node));
    SetCtrlAttribute(view->panel, RECORD_ADD, ATTR_DIMMED,
                     node == nullptr || node->kind != RCT_VALUE || node->expression.empty());
}

// What lies at the selected line, unless there is a failure to be read.
void ShowWhere(const RCI_View *view)
{
    const int line = GetLine(view);
    if (line < 0 || view->failedMs != 0)
        return;
    const uint32_t address = view->tree.nodes[static_cast<size_t>(line)].address;
    const std::string name = SYM_AddressToName(address);
    ShowOutcome(view, "0x" + SEL_AddressText(address) + (name.empty() ? "" : " " + name));
}

void ShowTree(RCI_View *view, int selected)
{
    ClearListCtrl(view->panel, RECORD_LIST);
    for (size_t i = 0; i < view->tree.nodes.size(); ++i) {
        InsertListItem(view->panel, RECORD_LIST, -1, view->tree.nodes[i].name, 0);
        SetListCells(view->panel, RECORD_LIST, static_cast<int>(i),
                     MakeCells(view, view->tree.nodes[i]));
    }
    if (selected >= 0)
        SetCtrlIndex(view->panel, RECORD_LIST, selected);
    EnableButtons(view);
}

// --- reading ----------------------------------------------------------------------------

void GetView(const RCI_View *view, int *first, int *end)
{
    int lines = 0;
    *first = 0;
    GetCtrlAttribute(view->panel, RECORD_LIST, ATTR_FIRST_VISIBLE_LINE, first);
    GetCtrlAttribute(view->panel, RECORD_LIST, ATTR_LINES_IN_VIEW, &lines);
    *first = std::max(*first, 0);
    *end = std::min(*first + (lines > 0 ? lines : LINES_WITHOUT_VIEW),
                    static_cast<int>(view->tree.nodes.size()));
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

bool Refresh(RCI_View *view)
{
    int first = 0, end = 0;
    std::string cause;
    GetView(view, &first, &end);
    view->live = LVR_Set();
    bool hasPointers = false;
    for (int i = first; i < end; ++i) {
        const RCT_Node &node = view->tree.nodes[static_cast<size_t>(i)];
        hasPointers = hasPointers || node.kind == RCT_POINTER;
        if (node.size > 0)
            LVR_Want(&view->live, node.address, node.size);
    }
    if (view->live.wanted.empty())
        return true;
    if (hasPointers)
        WantPages(&view->live);
    const bool isGood = LVR_Read(&view->live, STATION, &cause) == 0;
    TakePages(view->live);
    const bool wasFailing = view->failedMs != 0;
    view->failedMs = isGood ? 0 : std::max(PLT_TickMs(), 1u);
    for (int i = first; i < end; ++i)
        SetListCells(view->panel, RECORD_LIST, i,
                     MakeCells(view, view->tree.nodes[static_cast<size_t>(i)]));
    if (isGood && wasFailing)
        ShowOutcome(view, "");
    else if (!isGood)
        ShowOutcome(view, "Not read: " + cause + ".", COLOR_BAD);
    return isGood;
}

std::string GetTypes()
{
    return szMapFileName + "\n" + TMF_szFileName + "\n" + std::to_string(nNodes) + " " +
           std::to_string(TMF_cnDefVars) + " " + std::to_string(TMF_cnDefStructCts) + " " +
           std::to_string(Procesor);
}

void Inspect(RCI_View *view, std::string expression)
{
    RCT_Tree fresh;
    std::string cause;
    if (RCT_Build(expression, &fresh, &cause) != 0) {
        ShowOutcome(view, "Not shown: " + cause + ".", COLOR_BAD);
        return;
    }
    view->tree = fresh;
    view->shown = expression;
    SetPanelAttribute(view->panel, ATTR_TITLE, "Record " + WRD_Visible(expression));
    view->shownStation = STATION;
    view->shownTypes = GetTypes();
    view->live = LVR_Set();
    ShowOutcome(view, "");
    ShowTree(view, 0);
    if (isTimer != 0)
        Refresh(view);
}

// --- what the user does -----------------------------------------------------------------

// Where the pointer leads is read now: it may have moved since.
bool FollowPointer(RCI_View *view, const RCT_Node &node, uint32_t *target)
{
    std::string cause;
    LVR_Set pointer;
    uint32_t value = 0;
    LVR_Want(&pointer, node.address, node.size);
    WantPages(&pointer);
    if (!VR_EnsureCom()) {
        ShowOutcome(view, std::string("Not read: ") + COM_OFF_TEXT, COLOR_BAD);
        return false;
    }
    if (LVR_Read(&pointer, STATION, &cause) != 0 || !TakePages(pointer) ||
        !LVR_Get(pointer, node.address, node.size, &value)) {
        ShowOutcome(
            view, "Not read: " + (cause.empty() ? "the page pointers cannot be read" : cause) + ".",
            COLOR_BAD);
        return false;
    }
    *target = RCT_GetTarget(value);
    if (*target == ADDR_NONE)
        ShowOutcome(view, "The pointer leads nowhere.");
    return *target != ADDR_NONE;
}

void Toggle(RCI_View *view)
{
    const int line = GetLine(view);
    if (line < 0)
        return;
    const auto index = static_cast<size_t>(line);
    const RCT_Node node = view->tree.nodes[index];
    uint32_t target = ADDR_NONE;
    std::string cause;
    if (!RCT_CanOpen(node))
        return;
    if (node.isOpen)
        RCT_Close(&view->tree, index);
    else if (node.kind == RCT_POINTER && !FollowPointer(view, node, &target))
        return;
    else if (RCT_Open(&view->tree, index, target, &cause) != 0) {
        ShowOutcome(view, "Not opened: " + cause + ".", COLOR_BAD);
        return;
    }
    ShowOutcome(view, "");
    ShowTree(view, line);
    if (isTimer != 0)
        Refresh(view);
}

void AddToWatch(RCI_View *view)
{
    const int line = GetLine(view);
    if (line >= 0 && !view->tree.nodes[static_cast<size_t>(line)].expression.empty())
        SEL_AddToWatch(view->tree.nodes[static_cast<size_t>(line)].expression, view->panel,
                       RECORD_MESSAGE);
}

void EditValue(RCI_View *view)
{
    int line = -1, column = -1;
    std::string text, message;
    if (GetEditedCell(view->panel, RECORD_LIST, &line, &column, &text) < 0 ||
        column != COLUMN_VALUE || line < 0 || line >= static_cast<int>(view->tree.nodes.size()))
        return;
    const RCT_Node &node = view->tree.nodes[static_cast<size_t>(line)];
    LItem item = RCT_MakeItem(node);
    if (node.kind != RCT_VALUE)
        ShowOutcome(view, "Only a single value can be written.", COLOR_BAD);
    else if (!VR_EnsureCom())
        ShowOutcome(view, std::string("Not changed: ") + COM_OFF_TEXT, COLOR_BAD);
    else {
        const int result = WRV_WriteUnlisted(&item, text, &message);
        Refresh(view);
        ShowOutcome(view, message,
                    result == WRV_OK ? COLOR_GOOD
                    : result > 0     ? COLOR_WARN
                                     : COLOR_BAD);
    }
}

// What a new window shows.
void Prepare(RCI_View *view)
{
    std::vector<UI_Column> columns;
    if (GetListColumns(view->panel, RECORD_LIST, &columns) < 0 || columns.empty()) {
        UI_Column value;
        value.title = "Value";
        value.width = 180;
        value.isEditable = true;
        SetListColumns(
            view->panel, RECORD_LIST,
            {{"Name", 240, UIA_LEFT}, value, {"Type", 160, UIA_LEFT}, {"Address", 80, UIA_LEFT}});
    }
    SetCtrlCompletion(view->panel, RECORD_PLACE, NCM_CompleteCB);
    SetCtrlAttribute(view->panel, RECORD_TIMER, ATTR_INTERVAL, PERIOD_S);
}

void ShowNothing(RCI_View *view)
{
    view->tree.nodes.clear(); // nothing of old types may be looked up any more
    SetPanelAttribute(view->panel, ATTR_TITLE, "Record");
    ShowTree(view, -1);
}

} // namespace

void RCI_Open(const std::string &expression)
{
    INS_Inspector *inspector =
        INS_Open(PANEL_RECORD, PANEL_RECORD_MORE, RECORD_PLACE, [&](const INS_Inspector &open) {
            return open.record != nullptr &&
                   (open.record->tree.nodes.empty() || open.record->shown == expression);
        });
    if (inspector == nullptr)
        return;
    if (inspector->record == nullptr) {
        inspector->record = std::make_shared<RCI_View>();
        inspector->record->panel = inspector->panel;
        Prepare(inspector->record.get());
        SetCtrlVal(inspector->panel, RECORD_PLACE, "");
        ShowOutcome(inspector->record.get(), "");
        ShowNothing(inspector->record.get());
    }
    if (expression.empty())
        return;
    SetCtrlVal(inspector->panel, RECORD_PLACE, expression);
    Inspect(inspector->record.get(), expression);
}

void RCI_NamesChanged()
{
    for (INS_Inspector *inspector : Inspectors) {
        RCI_View *view = inspector != nullptr ? inspector->record.get() : nullptr;
        if (view == nullptr || view->tree.nodes.empty() || view->shownTypes == GetTypes())
            continue;
        ShowNothing(view);
        Inspect(view, view->shown);
    }
}

void RCI_OpenCB(int, int)
{
    int line = -1;
    GetCtrlIndex(mainPanel, MAIN_LIST, &line);
    const bool isItem = line >= 0 && line < nLItems && !LIT_IsTMS(aLItems[line]);
    std::string name = isItem ? aLItems[line].name : "";
    // Of a member, the whole record; of a single value nothing.
    const std::string whole = name.substr(0, name.find_first_of(".[+ "));
    RCT_Tree found;
    std::string cause;
    const bool hasParts = RCT_Build(whole, &found, &cause) == 0 && !found.nodes.empty() &&
                          found.nodes[0].kind != RCT_VALUE;
    RCI_Open(hasParts ? whole : "");
}

int RCI_PlaceCB(int panel, int control, int event, int)
{
    std::string text;
    RCI_View *view = FindView(panel);
    if (view != nullptr && event == EVENT_COMMIT && GetCtrlVal(panel, control, &text) >= 0)
        Inspect(view, text);
    return 0;
}

int RCI_ListCB(int panel, int, int event, int data)
{
    RCI_View *view = FindView(panel);
    if (view == nullptr)
        return 0;
    if (event == EVENT_VAL_CHANGED) {
        EnableButtons(view);
        ShowWhere(view);
    } else if (event == EVENT_CELL_EDITED)
        EditValue(view);
    else if (event == EVENT_KEYPRESS && (data == KEY_RIGHT || data == KEY_LEFT)) {
        const int line = GetLine(view);
        const bool isOpen = line >= 0 && view->tree.nodes[static_cast<size_t>(line)].isOpen;
        if (line >= 0 && isOpen == (data == KEY_LEFT))
            Toggle(view);
    } else if (event == EVENT_LEFT_DOUBLE_CLICK || event == EVENT_COMMIT) {
        // Of a value this begins to edit it.
        const int line = GetLine(view);
        if (line >= 0 && view->tree.nodes[static_cast<size_t>(line)].kind != RCT_VALUE)
            Toggle(view);
    }
    return event == EVENT_KEYPRESS ? 1 : 0;
}

int RCI_ButtonCB(int panel, int control, int event, int)
{
    RCI_View *view = FindView(panel);
    if (view != nullptr && event == EVENT_COMMIT && control == RECORD_OPEN)
        Toggle(view);
    else if (view != nullptr && event == EVENT_COMMIT && control == RECORD_ADD)
        AddToWatch(view);
    return 0;
}

// A tree of another station or of other types is built anew.
int RCI_TimerCB(int panel, int, int, int)
{
    RCI_View *view = FindView(panel);
    if (view == nullptr || isTimer == 0 || view->tree.nodes.empty())
        return 0;
    const bool isPausing = view->failedMs != 0 && PLT_TickMs() - view->failedMs < PAUSE_MS;
    if (isPausing)
        return 0;
    if (view->shownStation != STATION)
        Inspect(view, view->shown);
    else
        Refresh(view);
    return 0;
}
