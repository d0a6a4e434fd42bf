// The window of a record inspector: what the user does with the tree that record_view.cpp shows.
#include "inspect/record_inspector.h"

#include "comm/communication.h"
#include "comm/sysaddr.h"
#include "inspect/inspectors.h"
#include "inspect/record_view.h"
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
#include "watch/windows/selector_row.h"

namespace {

constexpr double PERIOD_S = 0.5;
constexpr uint32_t PAUSE_MS = 3000; // after a refresh that failed
constexpr int COLUMN_VALUE = 1;

INS_RecordView *FindView(int panel)
{
    const INS_Inspector *inspector = INS_Find(panel);
    return inspector != nullptr ? inspector->record.get() : nullptr;
}

// What the tree was built from. Counts go along with the names: a file that was read again has
// the same name, and a target's own project information has none.
std::string DescribeTypes()
{
    return szMapFileName + "\n" + TMF_szFileName + "\n" + std::to_string(nNodes) + " " +
           std::to_string(TMF_cnDefVars) + " " + std::to_string(TMF_cnDefStructCts) + " " +
           std::to_string(Procesor);
}

// What is shown stays when the expression is not good. (By value: it may be view->shown itself.)
void Inspect(INS_RecordView *view, std::string expression)
{
    INS_Tree fresh;
    std::string cause;
    if (INS_BuildTree(expression, &fresh, &cause) != 0) {
        INS_ShowRecordOutcome(*view, "Not shown: " + cause + ".", COLOR_BAD);
        return;
    }
    view->tree = fresh;
    view->shown = expression;
    SetPanelAttribute(view->panel, ATTR_TITLE, "Record " + TXT_Visible(expression));
    // What the tree holds for: with another station or other types it is built anew.
    view->shownStation = STATION;
    view->shownTypes = DescribeTypes();
    view->live = CODE_LiveReads();
    INS_ShowRecordOutcome(*view, "");
    INS_ShowTree(view, 0);
    if (isTimer != 0)
        INS_RefreshRecord(view);
}

void ShowNothing(INS_RecordView *view)
{
    view->tree.nodes.clear(); // nothing of old types may be looked up any more
    SetPanelAttribute(view->panel, ATTR_TITLE, "Record");
    INS_ShowTree(view, -1);
}

// Opens or closes the selected line. Of a pointer it is asked in the target where it leads.
void Toggle(INS_RecordView *view)
{
    const int line = INS_GetSelectedNode(*view);
    if (line < 0)
        return;
    const auto index = static_cast<size_t>(line);
    // A copy, since opening moves the nodes.
    const INS_Node node = view->tree.nodes[index];
    uint32_t target = ADDR_NONE;
    std::string cause;
    if (!INS_CanOpenNode(node))
        return;
    // Closing drops what lies below; opened again, it is made and read anew.
    if (node.isOpen)
        INS_CloseNode(&view->tree, index);
    else if (node.kind == INS_NODE_POINTER && !INS_FollowPointer(view, node, &target))
        return;
    else if (INS_OpenNode(&view->tree, index, target, &cause) != 0) {
        INS_ShowRecordOutcome(*view, "Not opened: " + cause + ".", COLOR_BAD);
        return;
    }
    INS_ShowRecordOutcome(*view, "");
    INS_ShowTree(view, line);
    if (isTimer != 0)
        INS_RefreshRecord(view);
}

void EditValue(INS_RecordView *view)
{
    int line = -1, column = -1;
    std::string text, message;
    if (GetEditedCell(view->panel, RECORD_LIST, &line, &column, &text) < 0 ||
        column != COLUMN_VALUE || line < 0 || line >= static_cast<int>(view->tree.nodes.size()))
        return;
    const INS_Node &node = view->tree.nodes[static_cast<size_t>(line)];
    if (node.kind != INS_NODE_VALUE) {
        INS_ShowRecordOutcome(*view, "Only a single value can be written.", COLOR_BAD);
        return;
    }
    if (!VR_EnsureCom()) {
        INS_ShowRecordOutcome(*view, std::string("Not changed: ") + COM_OFF_TEXT, COLOR_BAD);
        return;
    }
    // Written like a value of the watch list, with its range check and its read-back.
    LItem item = INS_MakeNodeItem(node);
    const int result = VAL_WriteUnlisted(&item, text, &message);
    // Refreshed before the outcome is told, or a failure to refresh would be all that is seen.
    INS_RefreshRecord(view);
    const int color = result == VAL_WRITE_OK ? COLOR_GOOD : result > 0 ? COLOR_WARN : COLOR_BAD;
    INS_ShowRecordOutcome(*view, message, color);
}

// A window is given its list's columns once: after that they have the widths the user gave them.
void PrepareWindow(int panel)
{
    std::vector<UI_Column> columns;
    if (GetListColumns(panel, RECORD_LIST, &columns) < 0 || columns.empty()) {
        UI_Column value;
        value.title = "Value";
        value.width = 180;
        value.isEditable = true;
        SetListColumns(
            panel, RECORD_LIST,
            {{"Name", 240, UIA_LEFT}, value, {"Type", 160, UIA_LEFT}, {"Address", 80, UIA_LEFT}});
    }
    SetCtrlCompletion(panel, RECORD_PLACE, WIN_CompleteNameCB);
    SetCtrlAttribute(panel, RECORD_TIMER, ATTR_INTERVAL, PERIOD_S);
    SetCtrlVal(panel, RECORD_PLACE, "");
}

} // namespace

void INS_OpenRecord(const std::string &expression)
{
    // A window of the same record, or one that shows none yet.
    INS_Inspector *inspector =
        INS_Open(PANEL_RECORD, PANEL_RECORD_MORE, RECORD_PLACE, [&](const INS_Inspector &open) {
            return open.record != nullptr &&
                   (open.record->tree.nodes.empty() || open.record->shown == expression);
        });
    if (inspector == nullptr)
        return;
    if (inspector->record == nullptr) {
        inspector->record = std::make_shared<INS_RecordView>();
        inspector->record->panel = inspector->panel;
        PrepareWindow(inspector->panel);
        INS_ShowRecordOutcome(*inspector->record, "");
        ShowNothing(inspector->record.get());
    }
    if (expression.empty()) // just a window; what it shows stays
        return;
    SetCtrlVal(inspector->panel, RECORD_PLACE, expression);
    Inspect(inspector->record.get(), expression);
}

void INS_RecordNamesChanged()
{
    for (INS_Inspector *inspector : Inspectors) {
        INS_RecordView *view = inspector != nullptr ? inspector->record.get() : nullptr;
        if (view == nullptr || view->tree.nodes.empty() || view->shownTypes == DescribeTypes())
            continue;
        // An expression that the new types do not know leaves the window empty, with the reason.
        ShowNothing(view);
        Inspect(view, view->shown);
    }
}

void INS_RecordOpenCB(int, int)
{
    int line = -1;
    GetCtrlIndex(mainPanel, MAIN_LIST, &line);
    const bool isItem = line >= 0 && line < nLItems && !LIT_IsTMS(aLItems[line]);
    std::string name = isItem ? aLItems[line].name : "";
    // Of a member, the whole record; of a single value nothing.
    const std::string whole = name.substr(0, name.find_first_of(".[+ "));
    INS_Tree found;
    std::string cause;
    // Tried out first: a window that opens with an error is of no use.
    const bool hasParts = INS_BuildTree(whole, &found, &cause) == 0 && !found.nodes.empty() &&
                          found.nodes[0].kind != INS_NODE_VALUE;
    INS_OpenRecord(hasParts ? whole : "");
}

int INS_RecordPlaceCB(int panel, int control, int event, int)
{
    std::string text;
    INS_RecordView *view = FindView(panel);
    if (view != nullptr && event == EVENT_COMMIT && GetCtrlVal(panel, control, &text) >= 0)
        Inspect(view, text);
    return 0;
}

int INS_RecordListCB(int panel, int, int event, int data)
{
    INS_RecordView *view = FindView(panel);
    if (view == nullptr)
        return 0;
    const int line = INS_GetSelectedNode(*view);
    const INS_Node *node = line >= 0 ? &view->tree.nodes[static_cast<size_t>(line)] : nullptr;
    if (event == EVENT_VAL_CHANGED) {
        INS_EnableRecordButtons(*view);
        // What lies at the line, unless there is a failure to be read.
        if (node != nullptr && view->failedMs == 0) {
            const std::string name = SYM_AddressToName(node->address);
            INS_ShowRecordOutcome(*view, "0x" + SEL_AddressText(node->address) +
                                             (name.empty() ? "" : " " + name));
        }
    } else if (event == EVENT_CELL_EDITED) {
        EditValue(view);
    } else if (event == EVENT_KEYPRESS && (data == KEY_RIGHT || data == KEY_LEFT)) {
        // Right opens and Left closes; on a line that is so already they do nothing.
        if (node != nullptr && node->isOpen == (data == KEY_LEFT))
            Toggle(view);
    } else if (event == EVENT_LEFT_DOUBLE_CLICK || event == EVENT_COMMIT) {
        // Of a value this begins to edit it; its bits open by key and button only.
        if (node != nullptr && node->kind != INS_NODE_VALUE)
            Toggle(view);
    }
    return event == EVENT_KEYPRESS ? 1 : 0;
}

int INS_RecordButtonCB(int panel, int control, int event, int)
{
    INS_RecordView *view = FindView(panel);
    if (view == nullptr || event != EVENT_COMMIT)
        return 0;
    const int line = INS_GetSelectedNode(*view);
    // Only what has an expression can be named in the list; bits and targets of pointers have none.
    if (control == RECORD_OPEN)
        Toggle(view);
    else if (control == RECORD_ADD && line >= 0 &&
             !view->tree.nodes[static_cast<size_t>(line)].expression.empty())
        SEL_AddToWatch(view->tree.nodes[static_cast<size_t>(line)].expression, panel,
                       RECORD_MESSAGE);
    return 0;
}

int INS_RecordTimerCB(int panel, int, int, int)
{
    INS_RecordView *view = FindView(panel);
    if (view == nullptr || isTimer == 0 || view->tree.nodes.empty())
        return 0;
    const bool isPausing = view->failedMs != 0 && PLT_TickMs() - view->failedMs < PAUSE_MS;
    if (isPausing)
        return 0;
    // In another station the pointers that were followed lead elsewhere: the tree is built anew.
    if (view->shownStation != STATION)
        Inspect(view, view->shown);
    else
        INS_RefreshRecord(view);
    return 0;
}
