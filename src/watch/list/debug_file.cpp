// Menu items and buttons do the same things and share them here. What opens a file asks about
// unsaved changes first, and shows the new list only once it is loaded.
#include "watch/list/debug_file.h"

#include <algorithm>

#include "comm/communication.h"
#include "platform/plain_file.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "text/words.h"
#include "watch/list/edit.h"
#include "watch/list/edit_history.h"
#include "watch/list/list_file.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/main_window.h"

int anRecentItems[RECENT_MAX] = {};

namespace {

const char FILE_TYPES[] = "*.dbg;*.dat";
const char FILE_PATTERN[] = "*.d*";

bool IsListEmpty()
{
    if (openLItems || nLItems > 0)
        return false;
    Error("Error: debug file empty.");
    return true;
}

std::string CannotOpen(const std::string &path)
{
    return "Cannot open file '" + path + "'.";
}

// A file of another kind is chosen easily, and would empty the list.
bool MayEmptyList(const std::string &path)
{
    return ConfirmPopup("Vireo2",
                        "The file '" + TXT_Visible(path) +
                            "' holds no watch item. Replace the list of " +
                            std::to_string(nLItems) + " items all the same?",
                        UI_DEFAULT_NO) == 1;
}

// Loads a file as the current one. 0, or -2 with nothing changed, and said unless the user chose
// it.
int LoadAsCurrent(const std::string &path)
{
    WIN_Outdate(WIN_TOPIC_LIST);
    const int result = LIT_LoadFile(path, MayEmptyList);
    if (result == LIT_FILE_ERR_OPEN) {
        // " It is a folder, device or pipe."; nothing for a file that is simply not there.
        const std::string why = PLT_WhyUnreadable(path);
        const bool isMissing = why == PLT_FileErrorText(PLT_FILE_ERR_OPEN);
        VR_ShowMessage(CannotOpen(path) + (isMissing ? "" : " It " + why + "."), WIN_TOPIC_LIST);
    }
    if (result != 0)
        return -2;
    szDebugFileName = path;
    IsDBGChange = 0;
    EDT_ForgetEdits(); // they were made on another list
    SetMainPanelTitle();
    return 0;
}

// After a load or save under another name: the recent files and what hangs on the name.
void ShowName()
{
    if (!szDebugFileName.empty())
        AddDebugFileName(szDebugFileName);
    SetMainPanelAttributes();
}

void ShowLoaded()
{
    ResetLItemsDisplay();
    ShowName();
}

} // namespace

int SaveDbg(int panel)
{
    if (IsListEmpty())
        return -1;
    if (szDebugFileName.empty())
        return SaveDbgAs(panel);
    const int result = LIT_WriteFile(szDebugFileName);
    if (result != 0) {
        Error(result == -1 ? CannotOpen(szDebugFileName)
                           : "Cannot write file '" + szDebugFileName + "'.");
        return -1;
    }
    LIT_RememberFileStamp(szDebugFileName); // our own write is no change on disk
    openLItems = 1;
    IsDBGChange = 0;
    SetMainPanelTitle();
    return 1;
}

int SaveDbgAs(int panel)
{
    if (IsListEmpty())
        return -1;
    std::string path;
    const std::string proposal = szDebugFileName.empty() ? FILE_PATTERN : szDebugFileName;
    if (FileSelectPopup(PLT_CurrentDir(), proposal, FILE_TYPES, "Save Debug file", FILE_SAVE,
                        &path) <= CON_NO_FILE_SELECTED)
        return 0;
    // Under a name that cannot be written nothing would be saved later, either.
    const std::string previousName = szDebugFileName;
    szDebugFileName = path;
    if (SaveDbg(panel) != 1)
        szDebugFileName = previousName;
    return 1;
}

int LoadDbgFile(int /*panel*/)
{
    const bool isNamed = !szDebugFileName.empty();
    std::string path;
    const int answer =
        FileSelectPopup(isNamed ? "" : PLT_CurrentDir(), isNamed ? szDebugFileName : FILE_PATTERN,
                        isNamed ? FILE_PATTERN : FILE_TYPES, "Open Icon", FILE_LOAD, &path);
    return answer == CON_EXISTING_FILE_SELECTED ? LoadAsCurrent(path) : -1;
}

int DbgChngSafety()
{
    if (!IsDBGChange)
        return 0;
    enum { YES = 1, NO = 2 };
    const int answer = GenericMessagePopup("Vireo2", "Save changes in debug file before closing?",
                                           {"__Yes", "__No", "__Cancel"}, nullptr, 0);
    if (answer == NO) {
        IsDBGChange = 0;
        SetMainPanelTitle();
        return 0;
    }
    if (answer != YES)
        return -1;
    const int result = SaveDbg(mainPanel);
    if (!IsDBGChange)
        return 0;
    if (result != 0) // not when the user cancelled the choice of a name
        Error("Error saving Debug file");
    return -1;
}

int LIT_CheckReload(int /*panel*/)
{
    static bool isAsking = false; // the question itself activates the window again
    if (isAsking || !IsDbgFileChanged())
        return 0;
    isAsking = true;
    std::string question = "The watch list has changed on disk. Load it again?";
    if (IsDBGChange)
        question += "\nUnsaved changes of the watch list will be lost.";
    const int isWanted = ConfirmPopup("Vireo2", question);
    isAsking = false;
    if (isWanted != 1)
        return 0;
    // A copy, for loading sets the name.
    if (LoadAsCurrent(std::string(szDebugFileName)) != 0)
        return -2;
    ResetLItemsDisplay();
    return 1;
}

int LIT_OpenFile(const std::string &path)
{
    if (DbgChngSafety() != 0)
        return -1;
    return LoadAsCurrent(path);
}

void OpenDatCB(int /*menuBar*/, int /*item*/)
{
    if (DbgChngSafety() == 0 && LoadDbgFile(mainPanel) == 0)
        ShowLoaded();
}

void SaveDbgCB(int /*menuBar*/, int /*item*/)
{
    const std::string nameBefore = szDebugFileName; // without one, saving asks for it
    if (SaveDbg(mainPanel) == 1 && szDebugFileName != nameBefore)
        ShowName();
}

void SaveDbgAsCB(int /*menuBar*/, int /*item*/)
{
    if (SaveDbgAs(mainPanel) == 1)
        ShowName();
}

void ReloadNowCB(int /*menuBar*/, int /*item*/)
{
    if (!szDebugFileName.empty() && LIT_OpenFile(std::string(szDebugFileName)) == 0)
        ShowLoaded();
}

void EditDbgCB(int /*menuBar*/, int /*item*/)
{
    if (szDebugFileName.empty())
        VR_ShowMessage("There is no watch list file to edit.");
    else if (PLT_OpenInEditor(szDebugFileName) != 0)
        VR_ShowMessage("The editor could not be started.");
}

void MenuReopenFileCB(int /*menuBar*/, int item)
{
    for (int i = 0; i < RECENT_MAX && i < nDebugFileNames; ++i) {
        // 0: the menu has no entry for it.
        if (anRecentItems[i] == 0 || anRecentItems[i] != item)
            continue;
        const std::string path = szaDebugFileNames[static_cast<size_t>(i)]; // opening sorts them
        if (LIT_OpenFile(path) == 0)
            ShowLoaded();
        return;
    }
}

int RldDbgBtnCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    if (event == EVENT_COMMIT) // the dialog proposes the present file
        OpenDatCB(0, 0);
    return 0;
}

int DbgFileBtnCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    if (event == EVENT_COMMIT)
        EditDbgCB(0, 0);
    return 0;
}

int SaveDbgBtnCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    if (event == EVENT_COMMIT)
        SaveDbgCB(0, 0);
    return 0;
}

void AddDebugFileName(const std::string &path)
{
    if (path.size() >= PATH_MAX_CHARS) // the settings would not be read back with it
        return;
    const auto begin = szaDebugFileNames.begin();
    auto place = std::find(begin, begin + nDebugFileNames, path);
    if (place == begin + nDebugFileNames) {
        if (nDebugFileNames < RECENT_MAX)
            nDebugFileNames++;
        else
            place--; // the oldest falls off
        *place = path;
    }
    std::rotate(begin, place, place + 1); // to the front, the others in their order
}
