#include "watch/list/debug_file.h"

#include "app/VR.h"
#include "platform/safe_file.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "watch/list/edit.h"
#include "watch/list/litem.h"

namespace {

const char FILE_TYPES[] = "*.dbg;*.dat";
const char FILE_PATTERN[] = "*.d*";

struct FileTime {
    int hour, minute, second;
};
FileTime lastSeen = {0, 0, 0};

bool readTime(const std::string &path, FileTime *time)
{
    PLT_FileStamp stamp;
    if (path.empty() || PLT_GetFileStamp(path, &stamp) != 0)
        return false;
    *time = {stamp.hour, stamp.minute, stamp.second};
    return true;
}

bool isListEmpty()
{
    if (openLItems || nLItems > 0)
        return false;
    Error("Error: debug file empty.");
    return true;
}

std::string cannotOpen(const std::string &path)
{
    return "Cannot open file '" + path + "'.";
}

// Loads a file as the current one. 0, or -2 with a message and nothing changed.
int loadAsCurrent(const std::string &path)
{
    if (dat2litems(path.c_str()) != 0) {
        VR_ShowMessage(cannotOpen(path));
        return -2;
    }
    szDebugFileName = path;
    IsDBGChange = 0;
    EDT_ForgetUndo();
    SetMainPanelTitle();
    return 0;
}

} // namespace

void DBG_RememberStamp(const std::string &path)
{
    readTime(path, &lastSeen);
}

int IsDbgFileChanged()
{
    FileTime time;
    if (!readTime(szDebugFileName, &time))
        return 0;
    const bool isSame = time.hour == lastSeen.hour && time.minute == lastSeen.minute &&
                        time.second == lastSeen.second;
    lastSeen = time;
    return isSame ? 0 : 1;
}

int DBG_WriteFile(const std::string &path)
{
    SafeFile safe;
    if (SAF_Open(&safe, path, "wb") != 0)
        return -1;
    bool isWritten = true;
    for (int i = 0; i < nLItems; ++i) {
        const std::string line = LIT_FileLine(aLItems[i]) + "\r\n";
        isWritten &= std::fwrite(line.data(), 1, line.size(), safe.file) == line.size();
    }
    if (!isWritten) {
        SAF_Cancel(&safe);
        return -2;
    }
    return SAF_Commit(&safe) == 0 ? 0 : -2;
}

int SaveDbg(int panel)
{
    if (isListEmpty())
        return -1;
    if (szDebugFileName.empty())
        return SaveDbgAs(panel);
    const int result = DBG_WriteFile(szDebugFileName);
    if (result != 0) {
        Error(result == -1 ? cannotOpen(szDebugFileName)
                           : "Cannot write file '" + szDebugFileName + "'.");
        return -1;
    }
    DBG_RememberStamp(szDebugFileName);
    openLItems = 1;
    IsDBGChange = 0;
    SetMainPanelTitle();
    return 1;
}

int SaveDbgAs(int panel)
{
    if (isListEmpty())
        return -1;
    std::string path;
    const std::string proposal = szDebugFileName.empty() ? FILE_PATTERN : szDebugFileName;
    if (FileSelectPopup(PLT_CurrentDir(), proposal, FILE_TYPES, "Save Debug file", FILE_SAVE,
                        &path) <= VAL_NO_FILE_SELECTED)
        return 0;
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
    return answer == VAL_EXISTING_FILE_SELECTED ? loadAsCurrent(path) : -1;
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

int DBG_CheckReload(int /*panel*/)
{
    static bool isAsking = false; // the question itself activates the window again
    if (isAsking || !IsDbgFileChanged())
        return 0;
    isAsking = true;
    std::string question = "The debug file has changed on disk. Load it again?";
    if (IsDBGChange)
        question += "\nUnsaved changes of the watch list will be lost.";
    const int isWanted = ConfirmPopup("Vireo2", question);
    isAsking = false;
    if (isWanted != 1)
        return 0;
    if (loadAsCurrent(std::string(szDebugFileName)) != 0)
        return -2;
    ResetLItemsDisplay();
    return 1;
}

int DBG_Open(const std::string &path)
{
    if (DbgChngSafety() != 0)
        return -1;
    return loadAsCurrent(path);
}

int anRecentItems[RECENT_MAX] = {};

namespace {

// After a load or save under another name: the recent files and what hangs on the name.
void showName()
{
    if (!szDebugFileName.empty())
        AddDebugFileName(szDebugFileName);
    SetMainPanelAttributes();
}

void showLoaded()
{
    ResetLItemsDisplay();
    showName();
}

void openWithDialog(int panel)
{
    if (DbgChngSafety() == 0 && LoadDbgFile(panel) == 0)
        showLoaded();
}

void editInEditor()
{
    if (szDebugFileName.empty())
        VR_ShowMessage("There is no debug file to edit.");
    else if (PLT_OpenInEditor(szDebugFileName) != 0)
        VR_ShowMessage("The editor could not be started.");
}

void save(int panel)
{
    const std::string nameBefore = szDebugFileName;
    if (SaveDbg(panel) == 1 && szDebugFileName != nameBefore)
        showName();
}

} // namespace

void OpenDatCB(int /*menuBar*/, int /*item*/)
{
    openWithDialog(mainPanel);
}

void SaveDbgCB(int /*menuBar*/, int /*item*/)
{
    save(mainPanel);
}

void SaveDbgAsCB(int /*menuBar*/, int /*item*/)
{
    if (SaveDbgAs(mainPanel) == 1)
        showName();
}

void ReloadDbgCB(int /*menuBar*/, int /*item*/)
{
    openWithDialog(mainPanel);
}

void EditDbgCB(int /*menuBar*/, int /*item*/)
{
    editInEditor();
}

void MenuReopenFileCB(int /*menuBar*/, int item)
{
    for (int i = 0; i < RECENT_MAX && i < nDebugFileNames; ++i) {
        if (anRecentItems[i] == 0 || anRecentItems[i] != item)
            continue;
        const std::string path = szaDebugFileNames[static_cast<size_t>(i)];
        if (DBG_Open(path) == 0)
            showLoaded();
        return;
    }
}

int RldDbgBtnCB(int panel, int /*control*/, int event, int /*data*/)
{
    if (event == EVENT_COMMIT)
        openWithDialog(panel);
    return 0;
}

int DbgFileBtnCB(int /*panel*/, int /*control*/, int event, int /*data*/)
{
    if (event == EVENT_COMMIT)
        editInEditor();
    return 0;
}

int SaveDbgBtnCB(int panel, int /*control*/, int event, int /*data*/)
{
    if (event == EVENT_COMMIT)
        save(panel);
    return 0;
}
