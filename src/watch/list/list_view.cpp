// Each line is kept twice: as its text, which is the label underneath, and as the cells of the
// table that the window draws. Both are handed over only when something differs.
#include "watch/list/list_view.h"

#include <algorithm>

#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/addr_name.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/age.h"
#include "watch/list/litem.h"
#include "watch/main_window.h"
#include "watch/value/value_types.h"

namespace {

const char ADDRESS_COLUMN[] = "\033p300l"; // the column escape: 300 pixels, left-aligned
const char UNRESOLVED_ADDRESS[] = "??????";

// What a line shows beside its text, to leave equal ones alone: a sweep over 500 lines costs
// the view nothing while no value changes.
struct ShownLine {
    unsigned style = UIS_NORMAL;
    std::string tip, age, comment;
    uint32_t goodReads = 0;
    std::string value;
};
ShownLine shownLines[LITEMS_MAX];

// Address as the processor counts: bytes, or the halves of 16-bit words.
std::string AddressText(uint32_t address, int processor)
{
    if (!IsWordAddressing(processor))
        return TXT_Format("%06X  ", address);
    return TXT_Format("%06X%s ", address / 2, address % 2 ? ".hi" : " ");
}

// In the base that the user has chosen for this line.
std::string ValueText(const LItem &item)
{
    // A line that was out of sight so far has no value, and no 0 to be taken for one.
    if (!item.isValueGood && item.readError == 0 && item.address != LITEM_NO_ADDRESS)
        return "";
    LItem shown = item;
    if (item.isOtherBase)
        shown.type = item.type == 'x' ? 'u' : 'x';
    std::string text;
    FormatLItemVal(&text, shown);
    return text;
}

int LineCount()
{
    int count = 0;
    GetNumListItems(mainPanel, MAIN_LIST, &count);
    return count;
}

// The table's columns in the order of LSV_Column, once: widths that the user has given stay.
void EnsureColumns()
{
    std::vector<UI_Column> columns;
    if (GetListColumns(mainPanel, MAIN_LIST, &columns) < 0 || !columns.empty())
        return;
    // Title, width in pixels, alignment, editable, and spare: not in a narrow window.
    columns = {{"Name", 240, UIA_LEFT, false, false}, {"Address", 76, UIA_LEFT, false, false},
               {"Type", 44, UIA_LEFT, false, false},  {"Value", 200, UIA_POINT, true, false},
               {"Age", 64, UIA_LEFT, false, true},    {"Comment", 0, UIA_LEFT, true, true}};
    SetListColumns(mainPanel, MAIN_LIST, columns);
}

std::vector<UI_Cell> CellsOf(const LItem &item, const ShownLine &line)
{
    std::vector<UI_Cell> cells(LSV_COLUMNS);
    const bool isResolved = item.address != LITEM_NO_ADDRESS;
    cells[LSV_NAME] = {TXT_Visible(item.name), UIS_NORMAL, line.comment}; // for narrow windows
    cells[LSV_ADDRESS].text =
        isResolved ? TXT_Trim(AddressText(item.address, Procesor)) : UNRESOLVED_ADDRESS;
    // An item by address shows what lies there, one by name where in it.
    if (isResolved && !LIT_IsTMS(item))
        cells[LSV_ADDRESS].tip = SYM_AddressToName(item.address);
    cells[LSV_TYPE].text = item.type + std::to_string(item.size);
    cells[LSV_VALUE] = {line.value, line.style, line.tip};
    cells[LSV_AGE] = {line.age, UIS_DIM, line.tip};
    cells[LSV_COMMENT] = {line.comment, UIS_NORMAL, line.comment};
    return cells;
}

// The list anew, without values: names, plain addresses and comments.
void FillNames()
{
    EnsureColumns();
    ClearListCtrl(mainPanel, MAIN_LIST);
    for (int i = 0; i < nLItems; ++i) {
        const LItem &item = aLItems[i];
        const std::string name = TXT_Visible(item.name), comment = TXT_Visible(item.comment);
        const std::string address =
            item.address == LITEM_NO_ADDRESS ? "Error" : TXT_Format("%02X", item.address);
        InsertListItem(mainPanel, MAIN_LIST, -1, name + ADDRESS_COLUMN + address, i);
        std::vector<UI_Cell> cells(LSV_COLUMNS);
        cells[LSV_NAME] = {name, UIS_NORMAL, comment};
        cells[LSV_ADDRESS].text = address;
        cells[LSV_COMMENT] = {comment, UIS_NORMAL, comment};
        SetListCells(mainPanel, MAIN_LIST, i, cells);
        shownLines[i] = ShownLine(); // nothing of before counts as a change
    }
    VR_EnableControls();
}

// Puts one line of text in place; its cells go with it.
void PutLine(int index, const std::string &label, bool isNew)
{
    const LItem &item = aLItems[index];
    ShownLine line;
    line.style = LSV_ValueStyle(item);
    line.tip = item.reason.empty() ? RFR_AgeTip(item) : item.reason;
    line.age = RFR_IsOld(item) ? RFR_AgeText(item) : "";
    line.value = (item.address == LITEM_NO_ADDRESS ? "Address?" : "") + TXT_Trim(ValueText(item)) +
                 (item.readError ? " (!)" : "");
    line.comment = TXT_Visible(item.comment);
    line.goodReads = item.goodReads;
    ShownLine &before = shownLines[index];
    // Marked for a moment: another value than before of a line that had one. Counted in good
    // reads, for a line may be drawn several times between two of them.
    if (line.style == UIS_NORMAL && before.goodReads != 0 && before.goodReads < item.goodReads &&
        before.value != line.value)
        line.style |= UIS_CHANGED;
    if (!isNew && line.style == before.style && line.tip == before.tip && line.age == before.age &&
        line.value == before.value && line.comment == before.comment)
        return;
    ReplaceListItem(mainPanel, MAIN_LIST, index, label, index);
    SetListCells(mainPanel, MAIN_LIST, index, CellsOf(item, line));
    SetListItemTip(mainPanel, MAIN_LIST, index, line.tip);
    before = line;
}

} // namespace

std::string LSV_ValueLine(const LItem &item, int processor)
{
    const bool isResolved = item.address != LITEM_NO_ADDRESS;
    std::string line = TXT_Visible(item.name) + ADDRESS_COLUMN;
    line +=
        isResolved ? AddressText(item.address, processor) : std::string(UNRESOLVED_ADDRESS) + "  ";
    line += item.type;
    line += static_cast<char>('0' + item.size % 10);
    line += isResolved ? ": " : ": Address?";
    line += ValueText(item);
    if (item.readError == 1)
        line += " (!)";
    return line;
}

unsigned LSV_ValueStyle(const LItem &item)
{
    if (item.readError != 0)
        return UIS_WARNING | UIS_STRUCK;
    if (!LIT_HasNumber(item))
        return UIS_DIM | UIS_STRUCK;
    return RFR_IsOld(item) ? UIS_DIM : UIS_NORMAL;
}

void LSV_ShowValues()
{
    EnsureColumns();
    // Lines are filled in place: selection and scroll stay. Another number of them is a new list.
    const bool isRefill = LineCount() != nLItems;
    const int selected = LSV_Selected(), first = LSV_FirstVisible();
    if (isRefill)
        ClearListCtrl(mainPanel, MAIN_LIST);
    for (int i = 0; i < nLItems; ++i) {
        const std::string line = LSV_ValueLine(aLItems[i], Procesor);
        if (isRefill)
            InsertListItem(mainPanel, MAIN_LIST, -1, line, i);
        std::string shown;
        const bool isSame =
            !isRefill && GetLabelFromIndex(mainPanel, MAIN_LIST, i, &shown) >= 0 && shown == line;
        PutLine(i, line, !isSame);
    }
    if (!isRefill)
        return;
    LSV_Select(selected);
    SetCtrlAttribute(mainPanel, MAIN_LIST, ATTR_FIRST_VISIBLE_LINE, first);
}

void LSV_ShowLine(int index)
{
    if (index < 0 || index >= nLItems || LineCount() != nLItems) // not yet filled
        return;
    PutLine(index, LSV_ValueLine(aLItems[index], Procesor), true);
}

void LSV_ShowAddresses()
{
    if (nLItems == 0)
        return;
    const int selected = LSV_Selected();
    const int first = LSV_FirstVisible();
    FillNames();
    LSV_Select(selected);
    SetCtrlAttribute(mainPanel, MAIN_LIST, ATTR_FIRST_VISIBLE_LINE, first);
}

void LSV_ShowNone()
{
    // Asked at every tick: the line is put there once.
    std::string shown;
    if (LineCount() == 1 && GetLabelFromIndex(mainPanel, MAIN_LIST, 0, &shown) >= 0 &&
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

int LSV_LinesInView()
{
    int lines = 0;
    GetCtrlAttribute(mainPanel, MAIN_LIST, ATTR_LINES_IN_VIEW, &lines);
    return lines > 0 ? lines : SWEEP_LINES;
}

void LSV_Select(int line)
{
    const int last = LineCount() - 1;
    if (last >= 0)
        SetCtrlIndex(mainPanel, MAIN_LIST, std::clamp(line, 0, last));
}

std::vector<int> LSV_SelectedLines()
{
    std::vector<int> lines;
    if (nLItems == 0)
        return lines;
    GetListSelection(mainPanel, MAIN_LIST, &lines);
    lines.erase(std::remove_if(lines.begin(), lines.end(), [](int i) { return i >= nLItems; }),
                lines.end());
    if (lines.empty())
        lines.push_back(std::min(LSV_Selected(), nLItems - 1));
    return lines;
}

void LSV_SelectLines(const std::vector<int> &lines)
{
    if (lines.empty())
        return;
    LSV_Select(lines.front()); // first: it would end a selection of several
    SetListSelection(mainPanel, MAIN_LIST, lines);
}

void VR_FillDebugItems()
{
    if (openLItems)
        FillNames();
}

void ResetLItemsDisplay()
{
    FillNames();
}
