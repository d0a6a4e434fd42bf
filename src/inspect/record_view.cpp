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

bool GetNumber(const RCI_View &view, const RCT_Node &node, LItem *item)
{
    if (node.size == 0)
        return false;
    const uint32_t low = std::min<uint32_t>(node.size, HALF_BYTES);
    if (!LVR_Get(view.live, node.address, low, &item->value))
        return false;
    return node.size <= HALF_BYTES ||
           LVR_Get(view.live, node.address + HALF_BYTES, node.size - HALF_BYTES, &item->valueHigh);
}

std::string FormatValue(const RCI_View &view, const RCT_Node &node, bool *isRead)
{
    LItem item = RCT_MakeItem(node);
    *isRead = GetNumber(view, node, &item);
    if (node.size == 0)
        return RCT_FormatParts(node);
    if (!*isRead)
        return "";
    if (node.kind == RCT_BIT) {
        const uint32_t half = node.bit < HALF_BITS ? item.value : item.valueHigh;
        return (half >> node.bit % HALF_BITS & 1) != 0 ? "1" : "0";
    }
    // An item is born without a value, and its text would say so.
    item.isValueGood = true;
    std::string text = WRV_ValueText(item);
    if (node.kind != RCT_POINTER)
        return text;
    const uint32_t target = RCT_GetTarget(item.value);
    const std::string name = target == ADDR_NONE ? "nothing" : SYM_AddressToName(target);
    return text + (name.empty() ? "" : " -> " + name);
}

std::vector<UI_Cell> MakeCells(const RCI_View &view, const RCT_Node &node)
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

// The page pointers are read and proven together with the pointers that need them: those of an
// earlier read may be another task's.
void WantPages(LVR_Set *set)
{
    if (!IsWordAddressing(Procesor))
        LVR_Want(set, GetSysAddr("DPP0"), PAGE_POINTERS * PAGE_BYTES);
}

// Into the place where pointers look them up. All four or none; true on a processor without them.
bool StorePages(const LVR_Set &set)
{
    uint32_t pages[PAGE_POINTERS];
    for (uint32_t i = 0; i < PAGE_POINTERS; ++i)
        if (!LVR_Get(set, GetSysAddr("DPP0") + i * PAGE_BYTES, PAGE_BYTES, &pages[i]))
            return IsWordAddressing(Procesor);
    for (uint32_t i = 0; i < PAGE_POINTERS; ++i)
        awQRDPP[i] = static_cast<uint16_t>(pages[i]);
    return true;
}

} // namespace

void RCI_ShowOutcome(const RCI_View &view, const std::string &text, int color)
{
    SetCtrlAttribute(view.panel, RECORD_MESSAGE, ATTR_TEXT_COLOR, color);
    SetCtrlVal(view.panel, RECORD_MESSAGE, text);
}

int RCI_GetSelected(const RCI_View &view)
{
    int line = -1;
    GetCtrlIndex(view.panel, RECORD_LIST, &line);
    return line < static_cast<int>(view.tree.nodes.size()) ? line : -1;
}

void RCI_EnableButtons(const RCI_View &view)
{
    const int line = RCI_GetSelected(view);
    const RCT_Node *node = line >= 0 ? &view.tree.nodes[static_cast<size_t>(line)] : nullptr;
    SetCtrlAttribute(view.panel, RECORD_OPEN, ATTR_DIMMED, node == nullptr || !RCT_CanOpen(*node));
    // What lies behind a pointer has no name that the watch list could keep.
    SetCtrlAttribute(view.panel, RECORD_ADD, ATTR_DIMMED,
                     node == nullptr || node->kind != RCT_VALUE || node->expression.empty());
}

void RCI_ShowTree(RCI_View *view, int selected)
{
    ClearListCtrl(view->panel, RECORD_LIST);
    for (size_t i = 0; i < view->tree.nodes.size(); ++i) {
        InsertListItem(view->panel, RECORD_LIST, -1, view->tree.nodes[i].name, 0);
        SetListCells(view->panel, RECORD_LIST, static_cast<int>(i),
                     MakeCells(*view, view->tree.nodes[i]));
    }
    if (selected >= 0)
        SetCtrlIndex(view->panel, RECORD_LIST, selected);
    RCI_EnableButtons(*view);
}

bool RCI_Refresh(RCI_View *view)
{
    int first = 0, end = 0;
    std::string cause;
    INS_GetLinesInView(view->panel, RECORD_LIST, static_cast<int>(view->tree.nodes.size()), &first,
                       &end);
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
    StorePages(view->live);
    const bool wasFailing = view->failedMs != 0;
    view->failedMs = isGood ? 0 : std::max(PLT_TickMs(), 1u); // the clock may stand at 0
    for (int i = first; i < end; ++i)
        SetListCells(view->panel, RECORD_LIST, i,
                     MakeCells(*view, view->tree.nodes[static_cast<size_t>(i)]));
    // A good refresh takes its own failure away and leaves every other message standing.
    if (isGood && wasFailing)
        RCI_ShowOutcome(*view, "");
    else if (!isGood)
        RCI_ShowOutcome(*view, "Not read: " + cause + ".", COLOR_BAD);
    return isGood;
}

bool RCI_FollowPointer(RCI_View *view, const RCT_Node &node, uint32_t *target)
{
    // Not the value on the screen: the pointer may have moved since.
    std::string cause = "the page pointers cannot be read";
    LVR_Set pointer;
    uint32_t value = 0;
    LVR_Want(&pointer, node.address, node.size);
    WantPages(&pointer);
    if (!VR_EnsureCom()) {
        RCI_ShowOutcome(*view, std::string("Not read: ") + COM_OFF_TEXT, COLOR_BAD);
        return false;
    }
    if (LVR_Read(&pointer, STATION, &cause) != 0 || !StorePages(pointer) ||
        !LVR_Get(pointer, node.address, node.size, &value)) {
        RCI_ShowOutcome(*view, "Not read: " + cause + ".", COLOR_BAD);
        return false;
    }
    *target = RCT_GetTarget(value);
    if (*target == ADDR_NONE)
        RCI_ShowOutcome(*view, "The pointer leads nowhere.");
    return *target != ADDR_NONE;
}
