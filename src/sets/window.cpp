// What the window of a device's parameters shows and which form it is: the header, the names it was
// made with, files beside it. Table and editor are modules of their own; what goes over the line is
// in window_device.cpp.
#include "sets/window.h"

#include "comm/ucm.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "sets/editor.h"
#include "sets/listing.h"
#include "sets/window_parts.h"
#include "sets/window_table.h"
#include "settings/settings.h"
#include "text/words.h"
#include "ui/resource.h"

#include <filesystem>

PST_Form CFW_form;

namespace {

constexpr size_t LINES_ASKED_MAX = 12; // a pop-up of more is higher than a small screen
constexpr int BAD_COLOR = 0xB00000;

std::string headerPath;
uint32_t symbols = 0; // stamp of the names the form was made with
int station = -1;     // that the device's values are of

// In the pop-up, with their lines, because they are mended in an editor; the window keeps the gist.
void ShowProblems(const std::string &what, const PST_Problems &problems)
{
    CFW_ShowResult(what, true);
    std::vector<std::string> lines;
    for (const PST_Problem &problem : problems.list) {
        PST_Problems one;
        one.Add(problem.file, problem.line, problem.text);
        std::string line = PST_FormatProblems(one);
        line.pop_back(); // its end
        lines.push_back(line);
    }
    MessagePopup(CFW_TITLE, what + "\n\n" + CFW_FirstLines(lines));
}

void ShowButtons()
{
    // What cannot be done now is dimmed; the number on the button says what a press would write.
    const bool isOpen = CFW_form.isOpen;
    for (const int control : {CONFIG_READ, CONFIG_LOAD, CONFIG_COMPARE, CONFIG_DETAILS})
        SetCtrlAttribute(PANEL_CONFIG, control, ATTR_DIMMED, isOpen ? 0 : 1);
    size_t changed = 0, known = 0;
    for (uint32_t i = 0; i < CFW_form.set.entries.size(); ++i) {
        changed += PST_IsChanged(CFW_form, i);
        known += PST_FormValue(CFW_form, i).isThere;
    }
    for (const int control : {CONFIG_SAVE, CONFIG_PRINT})
        SetCtrlAttribute(PANEL_CONFIG, control, ATTR_DIMMED, known > 0 ? 0 : 1);
    const int entry = CFW_GetSelected();
    const bool isOneChanged = entry >= 0 && PST_IsChanged(CFW_form, static_cast<uint32_t>(entry));
    SetCtrlAttribute(PANEL_CONFIG, CONFIG_WRITE_ONE, ATTR_DIMMED, isOneChanged ? 0 : 1);
    SetCtrlAttribute(PANEL_CONFIG, CONFIG_WRITE_ALL, ATTR_DIMMED, changed > 0 ? 0 : 1);
    SetCtrlAttribute(PANEL_CONFIG, CONFIG_WRITE_ALL, ATTR_LABEL_TEXT,
                     changed > 0 ? "Write __changed (" + std::to_string(changed) + ")"
                                 : "Write __changed");
}

void ShowTable()
{
    int isOnlyMarked = 0;
    GetCtrlVal(PANEL_CONFIG, CONFIG_ONLY_MARKED, &isOnlyMarked);
    const size_t count = CFW_ShowEntries(CFW_form, isOnlyMarked != 0);
    if (count > CFW_ROWS_MAX)
        CFW_ShowResult("The first " + std::to_string(CFW_ROWS_MAX) + " of " +
                           std::to_string(count) + " values are shown: choose a group.",
                       false);
    ShowButtons();
}

void OpenHeader(const std::string &path)
{
    PST_Problems problems;
    if (PST_OpenForm(path, &CFW_form, &problems) != 0) {
        ShowProblems("The header '" + path + "' was not opened.", problems);
        return;
    }
    // Only now: a header with a fault leaves the one that is open, and the settings remember it.
    headerPath = path;
    symbols = PST_SymbolsStamp();
    station = STATION;
    SetCtrlVal(PANEL_CONFIG, CONFIG_HEADER, path);
    SetCtrlVal(PANEL_CONFIG, CONFIG_FILE, "");
    CFW_ShowResult(std::to_string(CFW_form.set.entries.size()) + " values" +
                       (CFW_form.set.device.empty() ? "" : " of " + CFW_form.set.device) +
                       ". Read all shows what the target holds.",
                   false);
    CFW_Refresh();
}

void OpenEditor()
{
    // By name: when map or station have changed, the form is made anew in front of the writing, and
    // the number that the editor shows may then be another parameter's.
    const auto write = [](uint32_t entry) {
        const std::string name = CFW_form.set.entries[entry].name;
        if (!CFW_FollowChanges())
            return false;
        const auto found = CFW_form.set.byName.find(name);
        return found != CFW_form.set.byName.end() && CFW_WriteEntries({found->second});
    };
    CFW_OpenEditor({&CFW_form, CFW_Refresh, write}, CFW_GetSelected());
}

void LoadFile(bool isEdit)
{
    // The file is bound to the names as they are now.
    std::string path;
    if (!CFW_FollowChanges() ||
        FileSelectPopup("", "*.ldx", "*.ldx", isEdit ? "Load data file" : "Compare with data file",
                        FILE_LOAD, &path) == CON_NO_FILE_SELECTED)
        return;
    PST_Problems problems;
    if (PST_LoadIntoForm(&CFW_form, path, isEdit, &problems) != 0) {
        ShowProblems("The file '" + path + "' was not loaded.", problems);
        return;
    }
    SetCtrlVal(PANEL_CONFIG, CONFIG_FILE,
               "File: " + std::filesystem::u8path(path).filename().u8string());
    CFW_ShowResult(isEdit ? "Loaded: what differs from the target is marked and not written yet."
                          : "What differs from the target is marked.",
                   false);
    CFW_Refresh();
}

// What the form shows: typed values, else the target's.
PST_Image ShownValues()
{
    PST_Image values(CFW_form.set.entries.size());
    for (uint32_t i = 0; i < values.size(); ++i)
        values[i] = PST_FormValue(CFW_form, i);
    return values;
}

void SaveFile()
{
    std::string path;
    if (FileSelectPopup("", "parameters.ldx", "*.ldx", "Save data file", FILE_SAVE, &path) ==
        CON_NO_FILE_SELECTED)
        return;
    const int result = PST_WriteData(path, CFW_form.set, ShownValues(), {});
    CFW_ShowResult("'" + path + "' " + (result == 0 ? "is saved." : PST_WriteErrorText(result)),
                   result != 0);
}

void Print()
{
    std::string pattern, path;
    if (FileSelectPopup("", "*.tldx", "*.tldx", "Template of the page", FILE_LOAD, &pattern) ==
            CON_NO_FILE_SELECTED ||
        FileSelectPopup("", "parameters.html", "*.html", "Save page", FILE_SAVE, &path) ==
            CON_NO_FILE_SELECTED)
        return;
    // As a file that stands on no disk: what is typed and not written yet is printed, too.
    PST_Problems problems;
    const std::vector<PST_File> files = {PST_MakeFile(CFW_form.set, ShownValues())};
    if (PST_WriteListing(pattern, files, Option_nLanguage, path, &problems) != 0) {
        ShowProblems("No page was written.", problems);
        return;
    }
    CFW_ShowResult("The page '" + path + "' is written.", false);
    if (ConfirmPopup(CFW_TITLE, "The page is written. Open it now, to be printed?") == 1 &&
        PLT_OpenInViewer(path) != 0)
        CFW_ShowResult("'" + path + "' could not be opened.", true);
}

} // namespace

void CFW_ShowResult(const std::string &text, bool isBad)
{
    SetCtrlVal(PANEL_CONFIG, CONFIG_RESULT, TXT_Visible(text));
    SetCtrlAttribute(PANEL_CONFIG, CONFIG_RESULT, ATTR_TEXT_COLOR, isBad ? BAD_COLOR : 0);
}

void CFW_ShowState()
{
    std::string text = UCM_IsOpened() != 0 ? UCM_PortName(ncom) + " is open" : "the port is closed";
    text += ", station " + std::to_string(STATION);
    SetCtrlVal(PANEL_CONFIG, CONFIG_STATE, text);
    SetCtrlAttribute(PANEL_CONFIG, CONFIG_TERMINAL, ATTR_LABEL_TEXT,
                     UCM_IsOpened() != 0 ? "__Close port" : "Open __port");
}

int CFW_GetSelected()
{
    int line = -1;
    GetCtrlIndex(PANEL_CONFIG, CONFIG_LIST, &line);
    return CFW_GetEntry(line);
}

std::string CFW_FirstLines(const std::vector<std::string> &lines)
{
    std::string text;
    for (size_t i = 0; i < lines.size() && i < LINES_ASKED_MAX; ++i)
        text += lines[i] + "\n";
    if (lines.size() > LINES_ASKED_MAX)
        text += "... and " + std::to_string(lines.size() - LINES_ASKED_MAX) + " more\n";
    return text;
}

void CFW_Refresh()
{
    // Groups first: the table shows the one that is chosen in them.
    CFW_ShowGroups(CFW_form);
    ShowTable();
    CFW_ShowState();
    CFW_RefreshEditor();
}

bool CFW_FollowChanges()
{
    if (!CFW_form.isOpen)
        return false;
    // A station has the same places, but its values are others: what was read is gone in both
    // cases.
    const bool areNamesNew = symbols != PST_SymbolsStamp();
    if (!areNamesNew && station == STATION)
        return true;
    PST_Problems problems;
    const int result = PST_ReopenForm(&CFW_form, &problems);
    symbols = PST_SymbolsStamp();
    station = STATION;
    // Nothing of the old form may be left to be written: its addresses are another program's.
    if (result != 0) {
        CFW_form = PST_Form();
        CFW_Refresh();
        ShowProblems("The header no longer fits the loaded map.", problems);
        return false;
    }
    CFW_ShowResult(areNamesNew ? "The map has changed: the header was read again."
                               : "Another station is selected: its values have not been read yet.",
                   false);
    CFW_Refresh();
    return true;
}

const std::string &CFW_GetHeader()
{
    return headerPath;
}

// Of the settings file: the form is read when its window is opened, with the map that is there
// then.
void CFW_SetHeader(const std::string &path)
{
    headerPath = path;
    CFW_form = PST_Form();
}

void CFW_Opened()
{
    CFW_PrepareTable();
    // The button opens the port where there is no main window to do it.
    SetCtrlAttribute(PANEL_CONFIG, CONFIG_TERMINAL, ATTR_VISIBLE,
                     VR_enAppMode == MODE_CONFIGURATION ? 1 : 0);
    if (CFW_form.isOpen)
        CFW_FollowChanges();
    else if (!headerPath.empty())
        OpenHeader(headerPath);
    else
        CFW_ShowResult("Open a header (.ulh): it names the parameters of the device.", false);
    CFW_Refresh();
}

void CFW_Activated()
{
    if (CFW_form.isOpen)
        CFW_FollowChanges();
    CFW_ShowState();
}

int CFW_OpenCB(int, int, int event, int)
{
    std::string path;
    if (event == EVENT_COMMIT && FileSelectPopup("", "*.ulh", "*.ulh", "Open header", FILE_LOAD,
                                                 &path) != CON_NO_FILE_SELECTED)
        OpenHeader(path);
    return 0;
}

int CFW_GroupsCB(int, int, int event, int)
{
    if (event == EVENT_VAL_CHANGED || event == EVENT_COMMIT)
        ShowTable();
    return 0;
}

int CFW_ListCB(int panel, int control, int event, int)
{
    int line = -1, column = -1;
    std::string text;
    // Another line: "Write this" is about another value, and the editor follows.
    if (event == EVENT_VAL_CHANGED) {
        ShowButtons();
        CFW_RefreshEditor();
    } else if (event == EVENT_LEFT_DOUBLE_CLICK) {
        OpenEditor();
    } else if (event == EVENT_CELL_EDITED &&
               GetEditedCell(panel, control, &line, &column, &text) == 0) {
        const int entry = CFW_GetEntry(line);
        if (entry < 0 || column != CFW_COLUMN_VALUE)
            return 0;
        // The star marks what is typed; it is no part of it.
        const size_t begin = text.find_first_not_of("* ");
        // An empty text takes the typed value back.
        const std::string why = PST_EditForm(&CFW_form, static_cast<uint32_t>(entry),
                                             begin == std::string::npos ? "" : text.substr(begin));
        CFW_ShowResult(why, true);
        CFW_Refresh();
    }
    return 0;
}

int CFW_MarkedCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT)
        ShowTable();
    return 0;
}

int CFW_FileCB(int, int control, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    if (control == CONFIG_SAVE)
        SaveFile();
    else if (control == CONFIG_PRINT)
        Print();
    else
        LoadFile(control == CONFIG_LOAD);
    return 0;
}

int CFW_DetailsCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT)
        OpenEditor();
    return 0;
}
