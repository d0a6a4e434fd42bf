#include "watch/list/list_view.h"

#include <algorithm>
#include <cstdio>

#include "app/VR.h"
#include "runtime/userint.h"
#include "ui/resource.h"
#include "watch/list/litem.h"
#include "watch/list/refresh.h"

namespace {

const char ADDRESS_COLUMN[] = "\033p300l"; // the column escape: 300 pixels, left-aligned

std::string shownTips[LITEMS_MAX]; // what the list has as tips, to leave equal ones alone

// Address as the processor counts: bytes, or the halves of 16-bit words.
std::string addressText(uint32_t address, int processor)
{
    char text[24];
    if (!IsWordAddressing(processor))
        std::snprintf(text, sizeof text, "%06X  ", address);
    else
        std::snprintf(text, sizeof text, "%06X%s ", address / 2, address % 2 ? ".hi" : " ");
    return text;
}

std::string nameLine(const LItem &item)
{
    char address[16] = "Error";
    if (item.address != LITEM_NO_ADDRESS)
        std::snprintf(address, sizeof address, "%02X", item.address);
    return item.name + ADDRESS_COLUMN + address;
}

int lineCount()
{
    int count = 0;
    GetNumListItems(mainPanel, MAIN_LIST, &count);
    return count;
}

void showTip(int index)
{
    const std::string &reason = aLItems[index].reason;
    SetListItemTip(mainPanel, MAIN_LIST, index, reason);
    shownTips[index] = reason;
}

void fillNames()
{
    ClearListCtrl(mainPanel, MAIN_LIST);
    for (int i = 0; i < nLItems; ++i) {
        InsertListItem(mainPanel, MAIN_LIST, -1, nameLine(aLItems[i]), i);
        shownTips[i].clear();
    }
    VR_EnableControls();
}

} // namespace

std::string LSV_ValueLine(const LItem &item, int processor)
{
    std::string line = item.name;
    line += ADDRESS_COLUMN;
    const bool isResolved = item.address != LITEM_NO_ADDRESS;
    line += isResolved ? addressText(item.address, processor) : "??????  ";
    line += item.type;
    line += static_cast<char>('0' + item.size % 10);
    line += ": ";
    if (!isResolved)
        line += "Address?";
    // A line that was out of sight so far has no value, and no 0 to be taken for one.
    if (item.isValueGood || item.readError != 0 || !isResolved)
        FormatLItemVal(&line, item);
    if (item.readError == 1)
        line += " (!)";
    return line;
}

void LSV_ShowValues()
{
    const bool isRefill = lineCount() != nLItems;
    if (isRefill)
        ClearListCtrl(mainPanel, MAIN_LIST);
    std::string shown;
    for (int i = 0; i < nLItems; ++i) {
        const std::string line = LSV_ValueLine(aLItems[i], Procesor);
        bool isNew = isRefill;
        if (isRefill) {
            InsertListItem(mainPanel, MAIN_LIST, -1, line, i);
        } else if (GetLabelFromIndex(mainPanel, MAIN_LIST, i, &shown) < 0 || shown != line) {
            ReplaceListItem(mainPanel, MAIN_LIST, i, line, i);
            isNew = true;
        }
        if (isNew || shownTips[i] != aLItems[i].reason)
            showTip(i);
    }
}

void LSV_ShowAddresses()
{
    if (nLItems == 0)
        return;
    const int selected = LSV_Selected();
    const int first = LSV_FirstVisible();
    fillNames();
    LSV_Select(selected);
    SetCtrlAttribute(mainPanel, MAIN_LIST, ATTR_FIRST_VISIBLE_LINE, first);
}

void LSV_ShowNone()
{
    std::string shown;
    if (lineCount() == 1 && GetLabelFromIndex(mainPanel, MAIN_LIST, 0, &shown) >= 0 &&
        shown == "none")
        return;
    ClearListCtrl(mainPanel, MAIN_LIST);
    InsertListItem(mainPanel, MAIN_LIST, -1, "none", 0);
}

int LSV_Selected()
{
    int line = 0;
    if (GetCtrlIndex(mainPanel, MAIN_LIST, &line) < 0)
        line = 0;
    return std::max(line, 0);
}

int LSV_FirstVisible()
{
    int line = 0;
    if (GetCtrlAttribute(mainPanel, MAIN_LIST, ATTR_FIRST_VISIBLE_LINE, &line) < 0)
        line = 0;
    return std::clamp(line, 0, std::max(nLItems - 1, 0));
}

void LSV_Select(int line)
{
    const int last = lineCount() - 1;
    if (last >= 0)
        SetCtrlIndex(mainPanel, MAIN_LIST, std::clamp(line, 0, last));
}

void VR_FillDebugItems()
{
    if (openLItems)
        fillNames();
}

void ResetLItemsDisplay()
{
    fillNames();
}
