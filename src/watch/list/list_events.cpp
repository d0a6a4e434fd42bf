#include "watch/list/list_events.h"

#include "app/VR.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "ui/resource.h"
#include "watch/list/edit.h"
#include "watch/windows/item_panel.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/windows/mem_box.h"
#include "watch/windows/memory_panel.h"
#include "watch/list/snapshot.h"
#include "watch/windows/value_panel.h"

namespace {

constexpr int DROP_FACTOR = 65536; // what a drop reports: source * DROP_FACTOR + target

// The line that an action is about; -1 while the list is empty.
int actedOn()
{
    return nLItems > 0 ? LSV_Selected() : -1;
}

bool always()
{
    return true;
}

bool isInView()
{
    return VR_isWatchView;
}

bool hasLine()
{
    return VR_isWatchView && nLItems > 0;
}

bool hasTwoLines()
{
    return VR_isWatchView && nLItems > 1;
}

bool hasItems()
{
    return nLItems > 0;
}

bool hasRemoved()
{
    return VR_isWatchView && EDT_CanUndo();
}

bool hasMemory()
{
    int lines = 0;
    return GetNumTextBoxLines(mainPanel, MAIN_MEM_BOX, &lines) >= 0 && lines > 0;
}

struct EnableRow {
    int item;
    bool (*isOn)();
};
const EnableRow enableRows[] = {
    {ITEM_ADD, isInView},          {ITEM_EDIT, hasLine},        {ITEM_REMOVE, hasLine},
    {ITEM_UNDO, hasRemoved},       {ITEM_MOVE_UP, hasTwoLines}, {ITEM_MOVE_DOWN, hasTwoLines},
    {ITEM_WRITE_VALUE, hasLine},   {ITEM_MEMORY, always},       {ITEM_COPY_LIST, hasItems},
    {ITEM_COPY_MEMORY, hasMemory}, {ITEM_SNAPSHOT, hasItems},
};

void report(int result)
{
    if (result < 0)
        VR_ShowMessage(EDT_ErrorText(result));
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
    case EVENT_DROPPED:
        report(EDT_Move(data / DROP_FACTOR, data % DROP_FACTOR));
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
    if (actedOn() >= 0)
        ITP_OpenEdit(actedOn());
}

void LEV_RemoveCB(int /*menuBar*/, int /*item*/)
{
    const int index = actedOn();
    if (index < 0)
        return;
    const std::string label = LIT_Label(aLItems[index]);
    const int result = EDT_Remove(index);
    report(result);
    if (result == 0)
        VR_ShowMessage("Removed: " + label + ". Ctrl+Z puts it back.");
}

void LEV_MoveCB(int /*menuBar*/, int item)
{
    const int from = actedOn();
    const int to = item == ITEM_MOVE_UP ? from - 1 : from + 1;
    if (from >= 0 && to >= 0 && to < nLItems)
        report(EDT_Move(from, to));
}

void LEV_WriteCB(int /*menuBar*/, int /*item*/)
{
    if (actedOn() >= 0)
        VLP_Open(actedOn());
}

void LEV_MemoryCB(int /*menuBar*/, int /*item*/)
{
    MMP_Open(actedOn());
}

void LEV_CopyListCB(int /*menuBar*/, int /*item*/)
{
    if (ClipboardPutText(SNP_Text()) == 0)
        VR_ShowMessage("Copied: " + std::to_string(nLItems) + " items.");
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
    const int result = SNP_SaveCsv(path);
    if (result == 0)
        VR_ShowMessage("Saved: " + path);
    else
        MessagePopup("Error", "Could not write the file " + path + ".");
}
