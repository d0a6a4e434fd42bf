// The lines of a record's tree. A value is shown from the last set of live reads or not at all:
// what could not be read, or not proven, leaves its cell empty.
#include "inspect/record_view.h"

#include <algorithm>

#include "comm/communication.h"
#include "comm/sysaddr.h"
#include "inspect/inspectors.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/addr_name.h"
#include "ui/resource.h"
#include "watch/value/write_value.h"
#include "watch/windows/selector_row.h"

namespace {

constexpr uint32_t PAGE_POINTERS = 4, PAGE_BYTES = 2;
constexpr uint32_t HALF_BYTES = 4; // an item keeps a value of 8 bytes in two halves
constexpr uint32_t HALF_BITS = 32;
constexpr char INDENT[] = "   ";

bool GetNumber(const INS_RecordView &view, const INS_Node &node, LItem *item)
{
    if (node.size == 0)
        return false;
    const uint32_t low = std::min<uint32_t>(node.size, HALF_BYTES);
    if (!CODE_GetLive(view.live, node.address, low, &item->value))
        return false;
    return node.size <= HALF_BYTES || CODE_GetLive(view.live, node.address + HALF_BYTES,
                                                   node.size - HALF_BYTES, &item->valueHigh);
}

std::string FormatValue(const INS_RecordView &view, const INS_Node &node, bool *isRead)
{
    LItem item = INS_MakeNodeItem(node);
    *isRead = GetNumber(view, node, &item);
    if (node.size == 0)
        return INS_FormatParts(node);
    if (!*isRead)
        return "";
    if (node.kind == INS_NODE_BIT) {
        const uint32_t half = node.bit < HALF_BITS ? item.value : item.valueHigh;
        return (half >> node.bit % HALF_BITS & 1) != 0 ? "1" : "0";
    }
    // An item is born without a value, and its text would say so.
    item.isValueGood = true;
    std::string text = VAL_GetValueText(item);
    if (node.kind != INS_NODE_POINTER)
        return text;
    // By the page pointers that were read with it.
    const uint32_t target = INS_GetPointerTarget(item.value);
    const std::string name = target == ADDR_NONE ? "nothing" : SYM_AddressToName(target);
    return text + (name.empty() ? "" : " -> " + name);
}

std::vector<UI_Cell> MakeCells(const INS_RecordView &view, const INS_Node &node)
{
    // The list is no tree control: marks and indents show the levels.
    const char *mark = !INS_CanOpenNode(node) ? "  " : node.isOpen ? "- " : "+ ";
    std::string name;
    for (int i = 0; i < node.depth; ++i)
        name += INDENT;
    bool isRead = false;
    const std::string value = FormatValue(view, node, &isRead);
    const std::string place = SYM_AddressToName(node.address);
    return {{name + mark + node.name, UIS_NORMAL, node.expression},
            {value, isRead || node.size == 0 ? UIS_NORMAL : UIS_DIM, ""},
            {INS_FormatType(node), UIS_DIM, ""},
            {SEL_AddressText(node.address), UIS_DIM, place}};
}

// The page pointers are read and proven together with the pointers that need them: those of an
// earlier read may be another task's.
void WantPages(CODE_LiveReads *set)
{
    if (!IsWordAddressing(Procesor))
        CODE_WantLive(set, GetSysAddr("DPP0"), PAGE_POINTERS * PAGE_BYTES);
}

// Into the place where pointers look them up. All four or none; true on a processor without them.
bool StorePages(const CODE_LiveReads &set)
{
    uint32_t pages[PAGE_POINTERS];
    for (uint32_t i = 0; i < PAGE_POINTERS; ++i)
        if (!CODE_GetLive(set, GetSysAddr("DPP0") + i * PAGE_BYTES, PAGE_BYTES, &pages[i]))
            return IsWordAddressing(Procesor);
    for (uint32_t i = 0; i < PAGE_POINTERS; ++i)
        awQRDPP[i] = static_cast<uint16_t>(pages[i]);
    return true;
}

} // namespace

void INS_ShowRecordOutcome(const INS_RecordView &view, const std::string &text, int color)
{
    SetCtrlAttribute(view.panel, RECORD_MESSAGE, ATTR_TEXT_COLOR, color);
    SetCtrlVal(view.panel, RECORD_MESSAGE, text);
}

int INS_GetSelectedNode(const INS_RecordView &view)
{
    int line = -1;
    GetCtrlIndex(view.panel, RECORD_LIST, &line);
    return line < static_cast<int>(view.tree.nodes.size()) ? line : -1;
}

void INS_EnableRecordButtons(const INS_RecordView &view)
{
    const int line = INS_GetSelectedNode(view);
    const INS_Node *node = line >= 0 ? &view.tree.nodes[static_cast<size_t>(line)] : nullptr;
    SetCtrlAttribute(view.panel, RECORD_OPEN, ATTR_DIMMED,
                     node == nullptr || !INS_CanOpenNode(*node));
    // What lies behind a pointer has no name that the watch list could keep.
    SetCtrlAttribute(view.panel, RECORD_ADD, ATTR_DIMMED,
                     node == nullptr || node->kind != INS_NODE_VALUE || node->expression.empty());
}

void INS_ShowTree(INS_RecordView *view, int selected)
{
    // All anew: opening and closing move every line behind.
    ClearListCtrl(view->panel, RECORD_LIST);
    for (size_t i = 0; i < view->tree.nodes.size(); ++i) {
        InsertListItem(view->panel, RECORD_LIST, -1, view->tree.nodes[i].name, 0);
        SetListCells(view->panel, RECORD_LIST, static_cast<int>(i),
                     MakeCells(*view, view->tree.nodes[i]));
    }
    if (selected >= 0)
        SetCtrlIndex(view->panel, RECORD_LIST, selected);
    INS_EnableRecordButtons(*view);
}

bool INS_RefreshRecord(INS_RecordView *view)
{
    int first = 0, end = 0;
    std::string cause;
    // Only what is in view costs messages; an opened array may have hundreds of lines.
    INS_GetLinesInView(view->panel, RECORD_LIST, static_cast<int>(view->tree.nodes.size()), &first,
                       &end);
    view->live = CODE_LiveReads();
    bool hasPointers = false;
    for (int i = first; i < end; ++i) {
        const INS_Node &node = view->tree.nodes[static_cast<size_t>(i)];
        hasPointers = hasPointers || node.kind == INS_NODE_POINTER;
        if (node.size > 0)
            CODE_WantLive(&view->live, node.address, node.size);
    }
    if (view->live.wanted.empty())
        return true;
    if (hasPointers)
        WantPages(&view->live);
    const bool isGood = CODE_ReadLive(&view->live, STATION, &cause) == 0;
    StorePages(view->live);
    const bool wasFailing = view->failedMs != 0;
    view->failedMs = isGood ? 0 : std::max(PLT_TickMs(), 1u); // the clock may stand at 0
    for (int i = first; i < end; ++i)
        SetListCells(view->panel, RECORD_LIST, i,
                     MakeCells(*view, view->tree.nodes[static_cast<size_t>(i)]));
    // A good refresh takes its own failure away and leaves every other message standing.
    if (isGood && wasFailing)
        INS_ShowRecordOutcome(*view, "");
    else if (!isGood)
        INS_ShowRecordOutcome(*view, "Not read: " + cause + ".", COLOR_BAD);
    return isGood;
}

bool INS_FollowPointer(INS_RecordView *view, const INS_Node &node, uint32_t *target)
{
    // Not the value on the screen: the pointer may have moved since.
    std::string cause = "the page pointers cannot be read";
    CODE_LiveReads pointer;
    uint32_t value = 0;
    CODE_WantLive(&pointer, node.address, node.size);
    WantPages(&pointer);
    if (!VR_EnsureCom()) {
        INS_ShowRecordOutcome(*view, std::string("Not read: ") + COM_OFF_TEXT, COLOR_BAD);
        return false;
    }
    if (CODE_ReadLive(&pointer, STATION, &cause) != 0 || !StorePages(pointer) ||
        !CODE_GetLive(pointer, node.address, node.size, &value)) {
        INS_ShowRecordOutcome(*view, "Not read: " + cause + ".", COLOR_BAD);
        return false;
    }
    *target = INS_GetPointerTarget(value);
    if (*target == ADDR_NONE)
        INS_ShowRecordOutcome(*view, "The pointer leads nowhere.");
    return *target != ADDR_NONE;
}
