// What the user does with debug files: menu items and buttons.
#include "app/VR.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "watch/debug_file.h"
#include "watch/litem.h"

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
