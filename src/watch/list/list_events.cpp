#include "watch/list/list_events.h"

#include <algorithm>
#include <vector>

#include "comm/communication.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/edit.h"
#include "watch/list/edit_history.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/main_window.h"
#include "watch/value/write_value.h"
#include "watch/windows/item_panel.h"
#include "watch/windows/memory_panel.h"
#include "watch/windows/value_panel.h"

namespace {

constexpr int DROP_FACTOR = 65536; // what a drop reports: source * DROP_FACTOR + target

// The line that an action is about; -1 while the list is empty.
int ActedOn()
{
    return nLItems > 0 ? LSV_Selected() : -1;
}

void Report(int result)
{
    if (result < 0)
        VR_ShowMessage(EDT_ErrorText(result));
}

// A text typed into a cell of the table.
void EditCell()
{
    int index = -1, column = -1;
    std::string text, message;
    if (GetEditedCell(mainPanel, MAIN_LIST, &index, &column, &text) < 0 || index >= nLItems)
        return;
    if (column == LSV_COMMENT)
        Report(EDT_SetComment(index, text));
    if (column != LSV_VALUE)
        return;
    // The checks, the write and the reading back of the value window. What cannot be a value
    // is refused before anybody is asked about communication.
    uint64_t bits = 0;
    const int parsed = VAL_ParseFor(aLItems[index], text, &bits, &message);
    if (parsed == VAL_WRITE_OK && !VR_EnsureCom())
        message = "The value was not written: communication is off.";
    else if (parsed == VAL_WRITE_OK)
        VAL_Write(index, text, &message);
    VR_ShowMessage(LIT_Label(aLItems[index]) + ": " + message);
}

// A line that belongs to the selection takes all of it along. Dragged down they stand behind
// the line they were dropped on, dragged up in front of it.
void Drop(int source, int target)
{
    const std::vector<int> lines = LSV_SelectedLines();
    const auto isSelected = [&lines](int line) {
        return std::binary_search(lines.begin(), lines.end(), line);
    };
    if (lines.size() > 1 && isSelected(source) && !isSelected(target))
        Report(EDT_GatherLines(lines, target > source ? target + 1 : target));
    else if (lines.size() <= 1 || !isSelected(source))
        Report(EDT_Move(source, target));
}

void ShowAgain(const char *how, int (*again)(std::string *what))
{
    std::string what;
    const int result = again(&what);
    VR_ShowMessage(result < 0 ? EDT_ErrorText(result) : how + what + ".");
}

} // namespace

void LSV_Enable()
{
    int memoryLines = 0;
    const bool hasMemory =
        GetNumTextBoxLines(mainPanel, MAIN_MEM_BOX, &memoryLines) >= 0 && memoryLines > 0;
    const bool isInView = VR_isWatchView, hasItems = nLItems > 0;
    const bool hasLine = isInView && hasItems, hasTwoLines = isInView && nLItems > 1;
    const struct {
        int item;
        bool isOn;
    } rows[] = {
        {ITEM_ADD, isInView},
        {ITEM_EDIT, hasLine},
        {ITEM_REMOVE, hasLine},
        {ITEM_UNDO, isInView && EDT_CanUndo()},
        {ITEM_REDO, isInView && EDT_CanRedo()},
        {ITEM_MOVE_UP, hasTwoLines},
        {ITEM_MOVE_DOWN, hasTwoLines},
        {ITEM_WRITE_VALUE, hasLine},
        {ITEM_OTHER_BASE, hasLine},
        {ITEM_COMMENT, hasLine},
        {ITEM_MEMORY, true},
        // These change nothing, and need no line in sight.
        {ITEM_COPY_LIST, hasItems},
        {ITEM_COPY_MEMORY, hasMemory},
        {ITEM_SNAPSHOT, hasItems},
    };
    const int menuBar = GetPanelMenuBar(mainPanel);
    for (const auto &row : rows)
        SetMenuBarAttribute(menuBar, row.item, ATTR_DIMMED, !row.isOn);
    WIN_RefreshValue(); // which shows one of these lines
}

int LSV_ListCB(int /*panel*/, int /*control*/, int event, int data)
{
    switch (event) {
    case EVENT_COMMIT: // Enter
    case EVENT_LEFT_DOUBLE_CLICK:
        LSV_WriteCB(0, ITEM_WRITE_VALUE);
        break;
    case EVENT_RIGHT_CLICK:
        LSV_Enable(); // the click may have selected another line
        RunPopupMenu(GetPanelMenuBar(mainPanel), MENU_EDIT);
        break;
    case EVENT_CELL_EDITED:
        EditCell();
        break;
    case EVENT_DROPPED:
        Drop(data / DROP_FACTOR, data % DROP_FACTOR);
        break;
    default:
        break;
    }
    return 0;
}

void LSV_AddCB(int /*menuBar*/, int /*item*/)
{
    WIN_OpenAddItem();
}

void LSV_EditCB(int /*menuBar*/, int /*item*/)
{
    if (ActedOn() >= 0)
        WIN_OpenEditItem(ActedOn());
}

void LSV_UndoCB(int /*menuBar*/, int /*item*/)
{
    ShowAgain("Undone: ", EDT_Undo);
}

void LSV_RedoCB(int /*menuBar*/, int /*item*/)
{
    ShowAgain("Done again: ", EDT_Redo);
}

void LSV_OtherBaseCB(int /*menuBar*/, int /*item*/)
{
    for (const int line : LSV_SelectedLines()) {
        LItem &item = aLItems[line];
        if (item.type == 'i' || item.type == 'u' || item.type == 'x') // the others have no base
            item.isOtherBase = !item.isOtherBase;
    }
    if (readLItems) // else no value is shown yet
        LSV_ShowValues();
}

void LSV_RemoveCB(int /*menuBar*/, int /*item*/)
{
    const std::vector<int> lines = LSV_SelectedLines();
    if (lines.empty())
        return;
    const bool isOne = lines.size() == 1;
    const std::string what = // before it is gone
        isOne ? LIT_Label(aLItems[lines[0]]) : std::to_string(lines.size()) + " items";
    const int result = EDT_RemoveLines(lines);
    Report(result);
    if (result == 0)
        VR_ShowMessage("Removed: " + what + ". Ctrl+Z puts " + (isOne ? "it" : "them") + " back.");
}

void LSV_MoveCB(int /*menuBar*/, int item)
{
    const std::vector<int> lines = LSV_SelectedLines();
    const int by = item == ITEM_MOVE_UP ? -1 : 1;
    // At the end of the list the key does nothing, without a message each time it repeats.
    if (!lines.empty() && lines.front() + by >= 0 && lines.back() + by < nLItems)
        Report(EDT_MoveLines(lines, by));
}

void LSV_CommentCB(int /*menuBar*/, int /*item*/)
{
    const int line = ActedOn();
    if (line < 0)
        return;
    // While the question is open the list may be loaded or edited from elsewhere.
    const EDT_Reference reference = EDT_Refer(line);
    std::string comment = aLItems[line].comment;
    if (PromptPopup("Comment", "Comment on " + TXT_Visible(reference.label), &comment,
                    LITEM_LINE_MAX) >= 0)
        Report(EDT_SetComment(EDT_Find(reference), comment));
}

void LSV_WriteCB(int /*menuBar*/, int /*item*/)
{
    if (ActedOn() >= 0)
        WIN_OpenValue(ActedOn());
}

void LSV_MemoryCB(int /*menuBar*/, int /*item*/)
{
    WIN_OpenMemory(ActedOn());
}
