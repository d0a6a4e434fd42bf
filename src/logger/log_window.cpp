// What a user does with whole logs in the window: reads, opens, compares, copies and exports them.
// What narrows and orders their lines is in log_window_filter.cpp.
#include "logger/log_window.h"

#include <cstdint>
#include <numeric>
#include <vector>

#include "comm/communication.h"
#include "logger/dlld.h"
#include "logger/dlld_record.h"
#include "logger/log_view.h"
#include "logger/log_window_lines.h"
#include "platform/plain_file.h"
#include "platform/safe_file.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "ui/resource.h"

namespace {

constexpr int PANEL = PANEL_DATA_LOG;

// Takes over the log as one of the two sides. The views point into it and are made anew.
void Attach(int index, LOGV_Log *log)
{
    LOGV_Side &side = LOGV_sides[index];
    side.log = std::move(*log);
    LOGV_Attach(&side.view, &side.log);
    side.cells = side.view;
    side.cells.shown.resize(side.log.rows.size());
    std::iota(side.cells.shown.begin(), side.cells.shown.end(), 0u);
    side.view.isLocalTime = side.cells.isLocalTime = LOGV_IsLocalTime();
    LOGV_lines.clear(); // they name rows of the log that was there
    LOGV_FillTypes();
    LOGV_SortLines();
    LOGV_ApplyFilter();
}

// A saved log, or one message that says which of the ways to fail it was.
int OpenLog(const std::string &path, LOGV_Log *log)
{
    const int result = LOGV_Open(path, log);
    if (result == DLLD_ERR_OPEN)
        MessagePopup("Error", "Could not open the file " + path + ".");
    else if (result == DLLD_ERR_FILE)
        MessagePopup("Error", PLT_ReadFailureText(path));
    else if (result < 0)
        MessagePopup("Error", "The file " + path +
                                  " holds no log: its header is not one, or names another length.");
    return result;
}

bool SelectFile(const char *title, std::string *path)
{
    return FileSelectPopup("", "*.bin", "*.bin", title, FILE_LOAD, path) != CON_NO_FILE_SELECTED;
}

void ShowComparison()
{
    SetCtrlAttribute(PANEL, LOG_COMPARE, ATTR_LABEL_TEXT,
                     LOGV_isComparing ? "End co__mparison" : "Co__mpare...");
    LOGV_SetColumns();
}

// The logs that the map knows now; the chosen one stays chosen.
void FillVariables()
{
    const std::vector<std::string> names = LOGV_FindTargetLogs();
    std::string chosen;
    int index = -1, choice = 0;
    GetCtrlIndex(PANEL, LOG_VARIABLE, &index);
    if (index >= 0)
        GetLabelFromIndex(PANEL, LOG_VARIABLE, index, &chosen);
    ClearListCtrl(PANEL, LOG_VARIABLE);
    for (size_t i = 0; i < names.size(); i++) {
        InsertListItem(PANEL, LOG_VARIABLE, -1, names[i], static_cast<int>(i));
        if (names[i] == chosen)
            choice = static_cast<int>(i);
    }
    if (names.empty())
        InsertListItem(PANEL, LOG_VARIABLE, -1, "no log in the map", -1);
    SetCtrlIndex(PANEL, LOG_VARIABLE, choice);
    SetCtrlAttribute(PANEL, LOG_READ, ATTR_DIMMED, names.empty());
}

// The descriptions first: with them the log is decoded.
int ReadFromTarget(const std::string &name, LOGV_Log *log)
{
    LOGV_UseTarget();
    // Those of another target would put wrong names to the numbers.
    if (!DLLD_GetHost().hasRecIds)
        DLLD_ClearRecIds();
    else if (DLLD_ReadARecId() < 0)
        return -1;
    DLLD_Log words;
    if (DLLD_ReadLog(name, &words) < 0)
        return -1;
    return LOGV_Decode(std::move(words), name + " of station " + std::to_string(STATION), log);
}

void CopySelected()
{
    std::vector<int> indices;
    GetListSelection(PANEL, LOG_LIST, &indices);
    // Indices count in the page that is listed.
    std::string text;
    for (const int index : indices) {
        const LOGV_Line &line = LOGV_lines[LOGV_firstLine + static_cast<size_t>(index)];
        if (LOGV_isComparing)
            text += std::string(LOGV_GetPresence(line)) + "\t";
        text += LOGV_CopyLines(LOGV_sides[line.side].cells, {line.row});
    }
    if (!text.empty())
        ClipboardPutText(text);
}

} // namespace

int LOGV_ShowFile(const std::string &path)
{
    LOGV_Log log;
    const int result = OpenLog(path, &log);
    if (result == 0)
        Attach(0, &log);
    return result;
}

void LOGV_OpenCB(int, int)
{
    int columns = 0;
    std::vector<UI_Column> shown;
    if (GetListColumns(PANEL, LOG_LIST, &shown) >= 0)
        columns = static_cast<int>(shown.size());
    // Only the first time: a window that is shown again keeps what it showed.
    if (columns == 0) {
        SetCtrlVal(PANEL, LOG_LOCAL, 1);
        ShowComparison();
        LOGV_FillTypes();
    }
    FillVariables();
    LOGV_ShowDetails();
    LOGV_ShowState();
    DisplayPanel(PANEL);
    SetActivePanel(PANEL);
}

int LOGV_PanelCB(int, int event, int data)
{
    if (event == EVENT_ACTIVATED) { // another map may have been loaded
        FillVariables();
        LOGV_ShowState();
    }
    if (event == EVENT_CLOSE || (event == EVENT_KEYPRESS && data == KEY_ESC)) {
        HidePanel(PANEL);
        return 1;
    }
    if (event == EVENT_KEYPRESS && data >= (KEY_CTRL | '1') && data <= (KEY_CTRL | '4')) {
        LOGV_SortByKey(data - (KEY_CTRL | '1'));
        return 1;
    }
    return 0;
}

int LOGV_ReadCB(int, int, int event, int)
{
    int index = -1;
    std::string name;
    if (event != EVENT_COMMIT || GetCtrlIndex(PANEL, LOG_VARIABLE, &index) < 0 || index < 0 ||
        GetLabelFromIndex(PANEL, LOG_VARIABLE, index, &name) < 0 || !VR_EnsureCom())
        return 0;
    LOGV_Log log;
    if (ReadFromTarget(name, &log) == 0) {
        Attach(0, &log);
        return 0;
    }
    // The log that is shown stays: half of another one would say less.
    LOGV_notice = DLLD_IsCancelled() ? "Reading was cancelled." : "The log could not be read.";
    LOGV_ShowState();
    return 0;
}

int LOGV_OpenFileCB(int, int, int event, int)
{
    std::string path;
    if (event == EVENT_COMMIT && SelectFile("Open a saved log", &path))
        LOGV_ShowFile(path);
    return 0;
}

int LOGV_CompareCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    std::string path;
    LOGV_Log log;
    if (LOGV_isComparing) {
        LOGV_isComparing = false;
        LOGV_sides[1] = LOGV_Side();
        LOGV_lines.clear(); // they name rows of the other log as well
        ShowComparison();
        LOGV_FillTypes();
        LOGV_ApplyFilter();
    } else if (SelectFile("Compare with a saved log", &path) && OpenLog(path, &log) == 0) {
        // Before the log is attached: that fills the list, which has a column more now.
        LOGV_isComparing = true;
        ShowComparison();
        Attach(1, &log);
    }
    return 0;
}

int LOGV_ListCB(int, int, int event, int data)
{
    if (event == EVENT_VAL_CHANGED)
        LOGV_ShowDetails();
    if (event != EVENT_KEYPRESS || data != (KEY_CTRL | 'C'))
        return 0;
    CopySelected();
    return 1;
}

int LOGV_PageCB(int, int control, int event, int)
{
    const bool isNext = control == LOG_NEXT;
    if (event != EVENT_COMMIT ||
        (isNext ? LOGV_firstLine + LOGV_PAGE_LINES >= LOGV_lines.size() : LOGV_firstLine == 0))
        return 0;
    LOGV_ShowLine(isNext ? LOGV_firstLine + LOGV_PAGE_LINES : LOGV_firstLine - LOGV_PAGE_LINES);
    return 0;
}

int LOGV_CopyCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT)
        CopySelected();
    return 0;
}

int LOGV_ExportCB(int, int, int event, int)
{
    // The button is dimmed then, but a click may have been on its way already.
    std::string path;
    if (event != EVENT_COMMIT || !LOGV_HasLog() || LOGV_isComparing ||
        FileSelectPopup("", "log.csv", "*.csv", "Export the filtered messages", FILE_SAVE, &path) ==
            CON_NO_FILE_SELECTED)
        return 0;
    if (LOGV_SaveCsv(LOGV_sides[0].view, path) < 0) {
        MessagePopup("Error", PLT_SaveFailureText(path));
        return 0;
    }
    LOGV_notice = LOGV_FormatCount(LOGV_lines.size()) + " messages were written to " + path + ".";
    LOGV_ShowState();
    return 0;
}
