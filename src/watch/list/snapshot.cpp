#include "watch/list/snapshot.h"

#include <cstdio>
#include <numeric>

#include "comm/communication.h"
#include "platform/safe_file.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "text/words.h"
#include "watch/list/age.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/list/read_item.h"
#include "watch/main_window.h"
#include "watch/value/value_types.h"
#include "watch/windows/mem_box.h"

namespace {

std::string AddressOf(const LItem &item)
{
    return item.address == LITEM_NO_ADDRESS ? "" : TXT_Format("0x%06X", item.address);
}

// A value that was never read, or not the last time, is no value.
std::string ValueOf(const LItem &item)
{
    std::string text;
    if (LIT_HasNumber(item))
        FormatLItemVal(&text, item);
    return TXT_Trim(text);
}

// Of good values whether they are of now; of the others why there is none.
std::string StateOf(const LItem &item)
{
    if (item.isValueGood)
        return RFR_IsOld(item) ? RFR_AgeTip(item) : "ok";
    return item.reason.empty() ? "not read" : item.reason;
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
    const int result = RFR_ReadAllItems(AdvanceProgress);
    DiscardProgressDialog(progress);
    LSV_ShowValues(); // also of a read that was cancelled: some lines are new
    readLItems = 1;
    if (result < 0)
        VR_ShowMessage("Cancelled: " + title + ".");
    return result == 0;
}

} // namespace

std::string LSV_SnapshotText(const std::vector<int> &lines)
{
    std::string text = "Name\tAddress\tType\tValue\tState\n";
    for (const int index : lines) {
        const LItem &item = aLItems[index];
        // A tab or line feed in a name would shift what follows it in a spreadsheet.
        text += TXT_Visible(item.name) + '\t' + AddressOf(item) + '\t' + item.type +
                std::to_string(item.size) + '\t' + ValueOf(item) + '\t' +
                TXT_Visible(StateOf(item)) + '\n';
    }
    return text;
}

std::string LSV_SnapshotCsv()
{
    std::string text = "name,address,type,size,value,raw,state\r\n";
    for (int i = 0; i < nLItems; ++i) {
        const LItem &item = aLItems[i];
        // A rate has bits before it has a value.
        const std::string raw = item.isValueGood ? std::to_string(LIT_Bits(item)) : "";
        text += TXT_QuoteCsv(item.name) + ',' + AddressOf(item) + ',' + item.type + ',' +
                std::to_string(item.size) + ',' + TXT_QuoteCsv(ValueOf(item)) + ',' + raw + ',' +
                TXT_QuoteCsv(StateOf(item)) + "\r\n";
    }
    return text;
}

int LSV_SaveSnapshotCsv(const std::string &path)
{
    SafeFile safe;
    if (PLT_BeginSave(&safe, path, "wb") != 0)
        return -1;
    const std::string text = LSV_SnapshotCsv();
    if (std::fwrite(text.data(), 1, text.size(), safe.file) != text.size()) {
        PLT_CancelSave(&safe);
        return -2;
    }
    return PLT_CommitSave(&safe) == 0 ? 0 : -2;
}

void LSV_CopyListCB(int /*menuBar*/, int /*item*/)
{
    std::vector<int> lines = LSV_SelectedLines();
    // One line is selected at any time: it is no wish for that line alone.
    if (lines.size() < 2) {
        lines.resize(static_cast<size_t>(nLItems));
        std::iota(lines.begin(), lines.end(), 0);
    }
    if (ReadForExport("Copy the list") && ClipboardPutText(LSV_SnapshotText(lines)) == 0)
        VR_ShowMessage("Copied: " + std::to_string(lines.size()) + " items.");
}

void LSV_CopyMemoryCB(int /*menuBar*/, int /*item*/)
{
    if (ClipboardPutText(WIN_MemoryBoxText()) == 0)
        VR_ShowMessage("Copied: the memory box.");
}

void LSV_SnapshotCB(int /*menuBar*/, int /*item*/)
{
    std::string path;
    if (FileSelectPopup(PLT_CurrentDir(), "snapshot.csv", "*.csv", "Save snapshot", FILE_SAVE,
                        &path) <= CON_NO_FILE_SELECTED)
        return;
    if (!ReadForExport("Save a snapshot"))
        return;
    if (LSV_SaveSnapshotCsv(path) == 0)
        VR_ShowMessage("Saved: " + path);
    else
        MessagePopup("Error", PLT_SaveFailureText(path));
}
