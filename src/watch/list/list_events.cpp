#include "watch/list/list_events.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "comm/communication.h"
#include "platform/safe_file.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/words.h"
#include "ui/resource.h"
#include "watch/list/edit.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/list/read_item.h"
#include "watch/list/snapshot.h"
#include "watch/main_window.h"
#include "watch/value/write_value.h"
#include "watch/windows/item_panel.h"
#include "watch/windows/mem_box.h"
#include "watch/windows/memory_panel.h"
#include "watch/windows/value_panel.h"

namespace {

constexpr int DROP_FACTOR = 65536; // what a drop reports: source * DROP_FACTOR + target

// The line that an action is about; -1 while the list is empty.
int ActedOn()
{
    return nLItems > 0 ? LSV_Selected() : -1;
}

bool Always()
{
    return true;
}

bool IsInView()
{
    return VR_isWatchView;
}

bool HasLine()
{
    return VR_isWatchView && nLItems > 0;
}

bool HasTwoLines()
{
    return VR_isWatchView && nLItems > 1;
}

bool HasItems()
{
    return nLItems > 0;
}

bool HasEdit()
{
    return VR_isWatchView && EDT_CanUndo();
}

bool HasUndone()
{
    return VR_isWatchView && EDT_CanRedo();
}

bool HasMemory()
{
    int lines = 0;
    return GetNumTextBoxLines(mainPanel, MAIN_MEM_BOX, &lines) >= 0 && lines > 0;
}

struct EnableRow {
    int item;
    bool (*isOn)();
};
const EnableRow enableRows[] = {
    {ITEM_ADD, IsInView},          {ITEM_EDIT, HasLine},        {ITEM_REMOVE, HasLine},
    {ITEM_UNDO, HasEdit},          {ITEM_REDO, HasUndone},      {ITEM_MOVE_UP, HasTwoLines},
    {ITEM_MOVE_DOWN, HasTwoLines}, {ITEM_WRITE_VALUE, HasLine}, {ITEM_OTHER_BASE, HasLine},
    {ITEM_MEMORY, Always},         {ITEM_COPY_LIST, HasItems},  {ITEM_COPY_MEMORY, HasMemory},
    {ITEM_SNAPSHOT, HasItems},     {ITEM_COMMENT, HasLine},
};

void Report(int result)
{
    if (result < 0)
        VR_ShowMessage(EDT_ErrorText(result));
}

int progress = -1; // handle of the progress box while the list is read

bool AdvanceProgress(int index)
{
    return UpdateProgressDialog(progress, 100 * index / nLItems, LIT_Label(aLItems[index])) <= 0;
}

// Reads every item before they leave the program. False, and said, when the user has
// cancelled. Without communication they leave as they are, each with its age.
bool ReadForExport(const std::string &title)
{
    if (!VR_EnsureCom())
        return true;
    progress = CreateProgressDialog(title, "");
    const int result = RDI_ReadAll(AdvanceProgress);
    DiscardProgressDialog(progress);
    LSV_ShowValues();
    readLItems = 1;
    if (result < 0)
        VR_ShowMessage("Cancelled: " + title + ".");
    return result == 0;
}

// A value typed into its cell: the checks, the write and the reading back of the value window.
void WriteCell(int index, const std::string &text)
{
    std::string message;
    uint64_t bits = 0;
    const int parsed = WRV_Parse(aLItems[index], text, &bits, &message);
    if (parsed == WRV_OK && !VR_EnsureCom())
        message = "The value was not written: communication is off.";
    else if (parsed == WRV_OK)
        WRV_Write(index, text, &message);
    VR_ShowMessage(LIT_Label(aLItems[index]) + ": " + message);
}

void EditCell()
{
    int index = -1, column = -1;
    std::string text;
    if (GetEditedCell(mainPanel, MAIN_LIST, &index, &column, &text) < 0 || index >= nLItems)
        return;
    if (column == LSV_VALUE)
        WriteCell(index, text);
    else if (column == LSV_COMMENT)
        Report(EDT_SetComment(index, text));
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

bool IsNumberType(char type)
{
    return type == 'i' || type == 'u' || type == 'x';
}

void ShowAgain(const char *how, int (*again)(std::string *what))
{
    std::string what;
    const int result = again(&what);
    VR_ShowMessage(result < 0 ? EDT_ErrorText(result) : how + what + ".");
}

} // namespace

void LEV_Enable()
{
    const int menuBar = GetPanelMenuBar(mainPanel);
    for (const EnableRow &row : enableRows)
        SetMenuBarAttribute(menuBar, row.item, ATTR_DIMMED, !row.isOn());
    VLP_Refresh();
}

int LEV_ListCB(int /*panel*/, int /*control*/, int event, int data)
{
    switch (event) {
    case EVENT_COMMIT:
    case EVENT_LEFT_DOUBLE_CLICK:
        LEV_WriteCB(0, ITEM_WRITE_VALUE);
        break;
    case EVENT_RIGHT_CLICK:
        LEV_Enable();
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

void LEV_AddCB(int /*menuBar*/, int /*item*/)
{
    ITP_OpenAdd();
}

void LEV_EditCB(int /*menuBar*/, int /*item*/)
{
    if (ActedOn() >= 0)
        ITP_OpenEdit(ActedOn());
}

void LEV_UndoCB(int /*menuBar*/, int /*item*/)
{
    ShowAgain("Undone: ", EDT_Undo);
}

void LEV_RedoCB(int /*menuBar*/, int /*item*/)
{
    ShowAgain("Done again: ", EDT_Redo);
}

void LEV_OtherBaseCB(int /*menuBar*/, int /*item*/)
{
    for (const int line : LSV_SelectedLines())
        if (IsNumberType(aLItems[line].type))
            aLItems[line].isOtherBase = !aLItems[line].isOtherBase;
    if (readLItems)
        LSV_ShowValues();
}

void LEV_RemoveCB(int /*menuBar*/, int /*item*/)
{
    const std::vector<int> lines = LSV_SelectedLines();
    if (lines.empty())
        return;
    const bool isOne = lines.size() == 1;
    const std::string what =
        isOne ? LIT_Label(aLItems[lines[0]]) : std::to_string(lines.size()) + " items";
    const int result = EDT_RemoveLines(lines);
    Report(result);
    if (result == 0)
        VR_ShowMessage("Removed: " + what + ". Ctrl+Z puts " + (isOne ? "it" : "them") + " back.");
}

void LEV_MoveCB(int /*menuBar*/, int item)
{
    const std::vector<int> lines = LSV_SelectedLines();
    const int by = item == ITEM_MOVE_UP ? -1 : 1;
    if (!lines.empty() && lines.front() + by >= 0 && lines.back() + by < nLItems)
        Report(EDT_MoveLines(lines, by));
}

void LEV_CommentCB(int /*menuBar*/, int /*item*/)
{
    const int line = ActedOn();
    if (line < 0)
        return;
    const EDT_Reference reference = EDT_Refer(line);
    std::string comment = aLItems[line].comment;
    if (PromptPopup("Comment", "Comment on " + WRD_Visible(reference.label), &comment,
                    LITEM_LINE_MAX) >= 0)
        Report(EDT_SetComment(EDT_Find(reference), comment));
}

void LEV_WriteCB(int /*menuBar*/, int /*item*/)
{
    if (ActedOn() >= 0)
        VLP_Open(ActedOn());
}

void LEV_MemoryCB(int /*menuBar*/, int /*item*/)
{
    MMP_Open(ActedOn());
}

void LEV_CopyListCB(int /*menuBar*/, int /*item*/)
{
    std::vector<int> lines = LSV_SelectedLines();
    if (lines.size() < 2) {
        lines.resize(static_cast<size_t>(nLItems));
        std::iota(lines.begin(), lines.end(), 0);
    }
    if (ReadForExport("Copy the list") && ClipboardPutText(SNP_Text(lines)) == 0)
        VR_ShowMessage("Copied: " + std::to_string(lines.size()) + " items.");
}

void LEV_CopyMemoryCB(int /*menuBar*/, int /*item*/)
{
    if (ClipboardPutText(MBX_TabbedText()) == 0)
        VR_ShowMessage("Copied: the memory box.");
}

void LEV_SnapshotCB(int /*menuBar*/, int /*item*/)
{
    std::string path;
    if (FileSelectPopup(PLT_CurrentDir(), "snapshot.csv", "*.csv", "Save snapshot", FILE_SAVE,
                        &path) <= VAL_NO_FILE_SELECTED)
        return;
    if (!ReadForExport("Save a snapshot"))
        return;
    const int result = SNP_SaveCsv(path);
    if (result == 0)
        VR_ShowMessage("Saved: " + path);
    else
        MessagePopup("Error", SAF_FailureText(path));
}
