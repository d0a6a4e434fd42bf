// The files of the window: the settings beside the program, which come and go with it, and what
// the user opens and saves by name. What cannot be read leaves the window as it was.
#include "scope/window.h"

#include "platform/plain_file.h"
#include "platform/safe_file.h"
#include "platform/settings_place.h"
#include "runtime/userint.h"
#include "scope/measure.h"
#include "scope/window_parts.h"
#include "ui/resource.h"

#include <algorithm>

namespace {

constexpr const char *SETTINGS_FILE = "DtaScope.ini";

std::string settingsPath = SETTINGS_FILE;
bool isSettingsRead = false; // or there were none: they may be written

void OpenSetup()
{
    std::string path;
    std::vector<std::string> problems;
    if (FileSelectPopup("", "*.ini", "*.ini", "Open scope settings", FILE_LOAD, &path) ==
        CON_NO_FILE_SELECTED)
        return;
    if (SCP_LoadSetup(path, &SCP_windowState.setup, &problems) != 0) {
        MessagePopup("Error", PLT_ReadFailureText(path));
        return;
    }
    SX_isInitDone = 0; // it may name another scope
    SCP_Stop();
    SCP_ShowSetup();
    // Told last, with the rest on the screen: saving would write the default in their place.
    std::string text;
    for (const std::string &problem : problems)
        text += problem + "\n";
    if (!text.empty())
        MessagePopup("Scope settings", text);
}

void SaveSetup()
{
    std::string path;
    if (FileSelectPopup("", "scope.ini", "*.ini", "Save scope settings", FILE_SAVE, &path) ==
        CON_NO_FILE_SELECTED)
        return;
    if (SCP_SaveSetup(path, SCP_windowState.setup) != 0)
        MessagePopup("Error", PLT_SaveFailureText(path));
}

void OpenData(SCP_Capture *into)
{
    std::string path, problem;
    if (FileSelectPopup("", "*.csv", "*.csv", SCP_OPEN_TEXT, FILE_LOAD, &path) ==
        CON_NO_FILE_SELECTED)
        return;
    if (SCP_LoadCapture(path, into, &problem) != 0) {
        MessagePopup("Error", problem);
        return;
    }
    SCP_ShowCurves();
    SCP_ShowButtons();
}

void SaveData()
{
    std::string path;
    if (FileSelectPopup("", "scope.csv", "*.csv", "Save recording", FILE_SAVE, &path) ==
        CON_NO_FILE_SELECTED)
        return;
    if (SCP_SaveCapture(path, SCP_windowState.capture) != 0)
        MessagePopup("Error", PLT_SaveFailureText(path));
}

} // namespace

int DTSC_LoadSettings()
{
    // Read where they are; written where this user may write, which can be another folder.
    const PLT_SettingsPlace place = PLT_FindSettingsPlace(SETTINGS_FILE);
    settingsPath = place.write;
    SCP_windowState = SCP_WindowState(); // a window that was never opened
    const bool isThere = PLT_FileExists(place.read);
    std::vector<std::string> problems;
    const int result = isThere ? SCP_LoadSetup(place.read, &SCP_windowState.setup, &problems) : 0;
    isSettingsRead = result == 0;
    if (result != 0)
        SCP_ShowStatus("DtaScope.ini cannot be read: it will not be written.");
    else if (!problems.empty())
        SCP_ShowStatus("DtaScope.ini, " + problems[0]);
    return result;
}

int DTSC_SaveSettings()
{
    // Whoever never used the scope gets no file of it.
    const SCP_Setup &setup = SCP_windowState.setup;
    const bool isUsed = !setup.lines.empty() || !setup.id.empty() ||
                        std::any_of(setup.channels.begin(), setup.channels.end(),
                                    [](const SCP_ChannelSetup &c) { return !c.place.empty(); });
    if (!isSettingsRead || !isUsed)
        return 0;
    return SCP_SaveSetup(settingsPath, setup);
}

int DTSC_FileCB(int, int control, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    switch (control) {
    case SCOPE_OPEN_SETUP:
        OpenSetup();
        break;
    case SCOPE_SAVE_SETUP:
        SaveSetup();
        break;
    case SCOPE_OPEN_DATA:
        OpenData(&SCP_windowState.capture);
        break;
    case SCOPE_SAVE_DATA:
        SaveData();
        break;
    default: // SCOPE_REFERENCE
        OpenData(&SCP_windowState.reference);
        break;
    }
    return 0;
}
