// The window of a device's parameters: what a user presses, and the questions before anything is
// written. Table and editor are modules of their own.
#include "sets/window.h"

#include "comm/communication.h"
#include "comm/ucm.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "sets/backup.h"
#include "sets/editor.h"
#include "sets/form.h"
#include "sets/header.h"
#include "sets/listing.h"
#include "sets/value.h"
#include "sets/window_table.h"
#include "settings/settings.h"
#include "text/words.h"
#include "ui/resource.h"

#include <filesystem>

namespace {

constexpr size_t CHANGES_ASKED_MAX = 12; // listed in a question
constexpr int BAD_COLOR = 0xB00000;
const char TITLE[] = "Parameters";

PST_Form form;
std::string headerPath;
uint32_t symbols = 0; // stamp of the names the form was made with
int station = -1;     // that the device's values are of

// A progress box that appears with the first step.
struct Meter {
    int dialog = 0;
};

bool StepMeter(void *context, size_t done, size_t total, const char *what)
{
    Meter *meter = static_cast<Meter *>(context);
    if (meter->dialog == 0)
        meter->dialog = CreateProgressDialog(TITLE, what);
    // A step may be announced before its number is known.
    const int percent = total > 0 ? static_cast<int>(100 * done / total) : 0;
    // Also Ctrl-C and switching off end it.
    return UpdateProgressDialog(meter->dialog, percent, what) == 1 || IsBreakWished();
}

void EndMeter(const Meter &meter)
{
    if (meter.dialog != 0)
        DiscardProgressDialog(meter.dialog);
}

void ShowResult(const std::string &text, bool isBad)
{
    SetCtrlVal(PANEL_CONFIG, CONFIG_RESULT, WRD_Visible(text));
    SetCtrlAttribute(PANEL_CONFIG, CONFIG_RESULT, ATTR_TEXT_COLOR, isBad ? BAD_COLOR : 0);
}

int IsOnlyMarked()
{
    int isOn = 0;
    GetCtrlVal(PANEL_CONFIG, CONFIG_ONLY_MARKED, &isOn);
    return isOn;
}

std::string FirstLines(const std::vector<std::string> &lines, size_t max)
{
    std::string text;
    for (size_t i = 0; i < lines.size() && i < max; ++i)
        text += lines[i] + "\n";
    if (lines.size() > max)
        text += "... and " + std::to_string(lines.size() - max) + " more\n";
    return text;
}

// All of them in the pop-up, because they are mended in an editor; the window keeps the gist.
void ShowProblems(const std::string &what, const PST_Problems &problems)
{
    ShowResult(what, true);
    std::vector<std::string> lines;
    for (const PST_Problem &problem : problems.list) {
        PST_Problems one;
        one.Add(problem.file, problem.line, problem.text);
        std::string line = PST_FormatProblems(one);
        line.pop_back();
        lines.push_back(line);
    }
    MessagePopup(TITLE, what + "\n\n" + FirstLines(lines, CHANGES_ASKED_MAX));
}

void ShowState()
{
    std::string text = UCM_IsOpened() != 0 ? UCM_PortName(ncom) + " is open" : "the port is closed";
    text += ", station " + std::to_string(STATION);
    SetCtrlVal(PANEL_CONFIG, CONFIG_STATE, text);
    SetCtrlAttribute(PANEL_CONFIG, CONFIG_TERMINAL, ATTR_LABEL_TEXT,
                     UCM_IsOpened() != 0 ? "__Close port" : "Open __port");
}

void ShowButtons()
{
    const bool isOpen = form.isOpen;
    for (const int control : {CONFIG_READ, CONFIG_LOAD, CONFIG_COMPARE, CONFIG_DETAILS})
        SetCtrlAttribute(PANEL_CONFIG, control, ATTR_DIMMED, isOpen ? 0 : 1);
    size_t changed = 0, known = 0;
    for (uint32_t i = 0; i < form.set.entries.size(); ++i) {
        changed += PST_IsChanged(form, i);
        known += PST_FormValue(form, i).isThere;
    }
    for (const int control : {CONFIG_SAVE, CONFIG_PRINT})
        SetCtrlAttribute(PANEL_CONFIG, control, ATTR_DIMMED, known > 0 ? 0 : 1);
    int line = -1;
    GetCtrlIndex(PANEL_CONFIG, CONFIG_LIST, &line);
    const int entry = CFT_GetEntry(line);
    const bool isOneChanged = entry >= 0 && PST_IsChanged(form, static_cast<uint32_t>(entry));
    SetCtrlAttribute(PANEL_CONFIG, CONFIG_WRITE_ONE, ATTR_DIMMED, isOneChanged ? 0 : 1);
    SetCtrlAttribute(PANEL_CONFIG, CONFIG_WRITE_ALL, ATTR_DIMMED, changed > 0 ? 0 : 1);
    SetCtrlAttribute(PANEL_CONFIG, CONFIG_WRITE_ALL, ATTR_LABEL_TEXT,
                     changed > 0 ? "Write __changed (" + std::to_string(changed) + ")"
                                 : "Write __changed");
}

void ShowTable()
{
    const size_t count = CFT_ShowEntries(form, IsOnlyMarked() != 0);
    if (count > CFT_ROWS_MAX)
        ShowResult("The first " + std::to_string(CFT_ROWS_MAX) + " of " + std::to_string(count) +
                       " values are shown: choose a group.",
                   false);
    ShowButtons();
}

void Refresh()
{
    CFT_ShowGroups(form);
    ShowTable();
    ShowState();
    CFE_Refresh();
}

bool OpenHeader(const std::string &path)
{
    PST_Problems problems;
    if (PST_OpenForm(path, &form, &problems) != 0) {
        ShowProblems("The header '" + path + "' was not opened.", problems);
        return false;
    }
    headerPath = path;
    symbols = PST_SymbolsStamp();
    station = STATION;
    SetCtrlVal(PANEL_CONFIG, CONFIG_HEADER, path);
    SetCtrlVal(PANEL_CONFIG, CONFIG_FILE, "");
    ShowResult(std::to_string(form.set.entries.size()) + " values" +
                   (form.set.device.empty() ? "" : " of " + form.set.device) +
                   ". Read all shows what the target holds.",
               false);
    Refresh();
    return true;
}

// Addresses and the target's values are worth something only as long as names, processor and
// station are those they were made with. False when the form cannot be had any more.
bool FollowChanges()
{
    if (!form.isOpen)
        return false;
    const bool areNamesNew = symbols != PST_SymbolsStamp();
    if (!areNamesNew && station == STATION)
        return true;
    PST_Problems problems;
    const int result = PST_ReopenForm(&form, &problems);
    symbols = PST_SymbolsStamp();
    station = STATION;
    if (result != 0) {
        form = PST_Form();
        Refresh();
        ShowProblems("The header no longer fits the loaded map.", problems);
        return false;
    }
    ShowResult(areNamesNew ? "The map has changed: the header was read again."
                           : "Another station is selected: its values have not been read yet.",
               false);
    Refresh();
    return true;
}

// In configuration mode nobody else opens the port, and no timer reads a watch list.
bool EnsureLink()
{
    const bool isOn = VR_enAppMode != MODE_CONFIGURATION
                          ? VR_EnsureCom()
                          : UCM_IsOpened() != 0 || Check_ASC_Open(VR_OpenLink()) >= 0;
    ShowState();
    return isOn;
}

void ReadAll()
{
    if (!FollowChanges() || !EnsureLink())
        return;
    Meter meter;
    std::string why;
    SetBusyText("reading the parameters");
    const int result = PST_ReadDevice(form.set, &form.device, {&meter, StepMeter}, &why);
    EndMeter(meter);
    std::string text = std::to_string(form.set.entries.size()) + " values read from station " +
                       std::to_string(STATION) + ".";
    for (const std::string &line :
         result == PST_OK ? PST_MirrorRemarks(form.set, form.device) : std::vector<std::string>())
        text += " " + line;
    ShowResult(result == PST_OK ? text : why, result != PST_OK);
    Refresh();
}

// The question shows what is written, and whether the machine has to stand.
bool IsWriteWished(const PST_Restore &job)
{
    bool needsStop = false;
    for (const uint32_t place : job.writes) {
        const PST_Entry &entry = job.set.entries[job.set.places[place].entry];
        needsStop = needsStop || PST_AttributesOf(job.set, entry).needsStop;
    }
    std::string question = "Write to station " + std::to_string(STATION) + "?\n\n" +
                           FirstLines(PST_RestoreChanges(job), CHANGES_ASKED_MAX);
    if (needsStop)
        question += "\nThe machine must stand while this is written.";
    return ConfirmPopup(TITLE, question) == 1;
}

bool WriteEntries(const std::vector<uint32_t> &entries)
{
    if (!FollowChanges() || !EnsureLink())
        return false;
    Meter meter;
    const PST_Progress progress = {&meter, StepMeter};
    PST_Restore job;
    int result = PST_PrepareWrite(&form, entries, &job, progress);
    EndMeter(meter);
    // Nothing to write is a success: the target holds what was wished.
    if (result != PST_OK || job.writes.empty() || !IsWriteWished(job)) {
        ShowResult(result != PST_OK     ? job.why + " " + PST_NOTHING_WRITTEN
                   : job.writes.empty() ? "The target holds these values already."
                                        : PST_NOTHING_WRITTEN,
                   result != PST_OK);
        Refresh();
        return result == PST_OK && job.writes.empty();
    }
    // The first box went before the question: two would lie over each other.
    meter = Meter();
    SetBusyText("writing the parameters");
    result = PST_RunRestore(&job, progress);
    EndMeter(meter);
    PST_FinishWrite(&form, job);
    std::string text;
    for (const std::string &line : PST_RestoreResult(job, result))
        text += (text.empty() ? "" : " ") + line;
    ShowResult(text, result != PST_OK);
    Refresh();
    return result == PST_OK;
}

int SelectedEntry()
{
    int line = -1;
    GetCtrlIndex(PANEL_CONFIG, CONFIG_LIST, &line);
    return CFT_GetEntry(line);
}

bool WriteOne(uint32_t entry)
{
    return WriteEntries({entry});
}

void OpenEditor()
{
    CFE_Open({&form, Refresh, WriteOne}, SelectedEntry());
}

// --- files -----------------------------------------------------------------------------

void LoadFile(bool isEdit)
{
    std::string path;
    if (!FollowChanges() ||
        FileSelectPopup("", "*.ldx", "*.ldx", isEdit ? "Load data file" : "Compare with data file",
                        FILE_LOAD, &path) == VAL_NO_FILE_SELECTED)
        return;
    PST_Problems problems;
    if (PST_LoadIntoForm(&form, path, isEdit, &problems) != 0) {
        ShowProblems("The file '" + path + "' was not loaded.", problems);
        return;
    }
    SetCtrlVal(PANEL_CONFIG, CONFIG_FILE,
               "File: " + std::filesystem::u8path(path).filename().u8string());
    ShowResult(isEdit ? "Loaded: what differs from the target is marked and not written yet."
                      : "What differs from the target is marked.",
               false);
    Refresh();
}

// What the form shows: typed values, else the target's.
PST_Image ShownValues()
{
    PST_Image values(form.set.entries.size());
    for (uint32_t i = 0; i < values.size(); ++i)
        values[i] = PST_FormValue(form, i);
    return values;
}

void SaveFile()
{
    std::string path;
    if (FileSelectPopup("", "parameters.ldx", "*.ldx", "Save data file", FILE_SAVE, &path) ==
        VAL_NO_FILE_SELECTED)
        return;
    const int result = PST_WriteData(path, form.set, ShownValues(), {});
    ShowResult("'" + path + "' " + (result == 0 ? "is saved." : PST_WriteErrorText(result)),
               result != 0);
}

void Print()
{
    std::string pattern, path;
    if (FileSelectPopup("", "*.tldx", "*.tldx", "Template of the page", FILE_LOAD, &pattern) ==
            VAL_NO_FILE_SELECTED ||
        FileSelectPopup("", "parameters.html", "*.html", "Save page", FILE_SAVE, &path) ==
            VAL_NO_FILE_SELECTED)
        return;
    PST_Problems problems;
    const std::vector<PST_File> files = {PST_MakeFile(form.set, ShownValues())};
    if (PST_WriteListing(pattern, files, Option_nLanguage, path, &problems) != 0) {
        ShowProblems("No page was written.", problems);
        return;
    }
    ShowResult("The page '" + path + "' is written.", false);
    if (ConfirmPopup(TITLE, "The page is written. Open it now, to be printed?") == 1 &&
        PLT_OpenInViewer(path) != 0)
        ShowResult("'" + path + "' could not be opened.", true);
}

} // namespace

const std::string &CFW_GetHeader()
{
    return headerPath;
}

// Of the settings file: the form is read when its window is opened, with the map that is there
// then.
void CFW_SetHeader(const std::string &path)
{
    headerPath = path;
    form = PST_Form();
}

void CFW_Opened()
{
    CFT_Prepare();
    SetCtrlAttribute(PANEL_CONFIG, CONFIG_TERMINAL, ATTR_VISIBLE,
                     VR_enAppMode == MODE_CONFIGURATION ? 1 : 0);
    if (form.isOpen)
        FollowChanges();
    else if (!headerPath.empty())
        OpenHeader(headerPath);
    else
        ShowResult("Open a header (.ulh): it names the parameters of the device.", false);
    Refresh();
}

void CFW_Activated()
{
    if (form.isOpen)
        FollowChanges();
    ShowState();
}

int CFW_OpenCB(int, int, int event, int)
{
    std::string path;
    if (event == EVENT_COMMIT && FileSelectPopup("", "*.ulh", "*.ulh", "Open header", FILE_LOAD,
                                                 &path) != VAL_NO_FILE_SELECTED)
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
    if (event == EVENT_VAL_CHANGED) {
        ShowButtons();
        CFE_Refresh();
    } else if (event == EVENT_LEFT_DOUBLE_CLICK) {
        OpenEditor();
    } else if (event == EVENT_CELL_EDITED &&
               GetEditedCell(panel, control, &line, &column, &text) == 0) {
        const int entry = CFT_GetEntry(line);
        if (entry < 0 || column != CFT_VALUE)
            return 0;
        // The star marks what is typed; it is no part of it.
        const size_t begin = text.find_first_not_of("* ");
        const std::string why = PST_EditForm(&form, static_cast<uint32_t>(entry),
                                             begin == std::string::npos ? "" : text.substr(begin));
        ShowResult(why, true);
        Refresh();
    }
    return 0;
}

int CFW_MarkedCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT)
        ShowTable();
    return 0;
}

int CFW_ReadCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT)
        ReadAll();
    return 0;
}

int CFW_WriteCB(int, int control, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    std::vector<uint32_t> entries;
    const int selected = SelectedEntry();
    if (control == CONFIG_WRITE_ONE && selected >= 0)
        entries.push_back(static_cast<uint32_t>(selected));
    for (uint32_t i = 0; control == CONFIG_WRITE_ALL && i < form.set.entries.size(); ++i)
        if (PST_IsChanged(form, i))
            entries.push_back(i);
    if (!entries.empty())
        WriteEntries(entries);
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

int CFW_TerminalCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    if (UCM_IsOpened() != 0)
        UCM_Close();
    else
        (void)Check_ASC_Open(UCM_Open(VR_nProtocol, ncom, bRate));
    ShowState();
    return 0;
}

int CFW_DetailsCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT)
        OpenEditor();
    return 0;
}
