// What a user does in the log window: logs come and go, are filtered, sorted, compared.
#include "logger/log_window.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <vector>

#include "comm/communication.h"
#include "logger/dlld.h"
#include "logger/dlld_record.h"
#include "logger/log_target.h"
#include "logger/log_time.h"
#include "logger/log_view.h"
#include "logger/log_window_lines.h"
#include "platform/plain_file.h"
#include "platform/safe_file.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "ui/resource.h"

namespace {

constexpr int PANEL = PANEL_DATA_LOG;

std::string GetText(int control)
{
    std::string text;
    GetCtrlVal(PANEL, control, &text);
    return text;
}

int GetValue(int control)
{
    int value = 0;
    GetCtrlVal(PANEL, control, &value);
    return value;
}

// The chosen entry of a ring; `other` when it has none.
int GetChoice(int ring, int other)
{
    int index = -1, value = other;
    if (GetCtrlIndex(PANEL, ring, &index) < 0 || index < 0)
        return other;
    GetValueFromIndex(PANEL, ring, index, &value);
    return value;
}

// --- filter -----------------------------------------------------------------------------

void FillTypes()
{
    const int chosen = GetChoice(LOG_TYPE, LGW_ALL_BUT_JUNK);
    std::bitset<256> present;
    for (const LGW_Side &side : LGW_sides)
        for (const LOGV_Row &row : side.log.rows)
            present[row.type] = true;
    ClearListCtrl(PANEL, LOG_TYPE);
    InsertListItem(PANEL, LOG_TYPE, -1, "all types but junk", LGW_ALL_BUT_JUNK);
    InsertListItem(PANEL, LOG_TYPE, -1, "all types", LGW_ALL);
    int index = chosen == LGW_ALL ? 1 : 0, count = 2;
    for (int type = 0; LGW_HasLog() && type < 256; type++) {
        const auto at = static_cast<size_t>(type);
        if (!present[at])
            continue;
        InsertListItem(PANEL, LOG_TYPE, -1, LGW_sides[0].log.typeNames[at], type);
        if (type == chosen)
            index = count;
        count++;
    }
    SetCtrlIndex(PANEL, LOG_TYPE, index);
}

// The time in a field; `open` when it is empty or no time, which is said.
uint32_t GetBound(int control, bool isEnd, uint32_t open)
{
    const std::string text = GetText(control);
    uint32_t stamp = open;
    if (text.find_first_not_of(' ') == std::string::npos)
        return open;
    if (LGM_ParseTime(LGW_sides[0].view, text, isEnd, &stamp) < 0)
        LGW_notice = "'" + text + "' is no time such as 2015-03-01 10:20, and limits nothing.";
    return stamp;
}

void ApplyFilter()
{
    LGW_notice.clear();
    if (!LGW_HasLog()) {
        LGW_ShowState();
        return;
    }
    LOGV_Filter filter = LOGV_MakeFilter();
    const int type = GetChoice(LOG_TYPE, LGW_ALL_BUT_JUNK);
    // One type, or all of them, junk as well.
    if (type != LGW_ALL_BUT_JUNK)
        filter.hidden.reset();
    if (type >= 0) {
        filter.hidden.set();
        filter.hidden[static_cast<size_t>(type)] = false;
    }
    filter.text = GetText(LOG_FILTER);
    filter.from = GetBound(LOG_FROM, false, 0);
    filter.to = GetBound(LOG_TO, true, UINT32_MAX);
    for (LGW_Side &side : LGW_sides)
        if (side.view.log != nullptr)
            LOGV_SetFilter(&side.view, filter);
    LGW_Refill();
}

void Sort()
{
    if (LGW_HasLog())
        LOGV_Sort(&LGW_sides[0].view, static_cast<LOGV_Column>(GetChoice(LOG_SORT, LOGV_PLACE)),
                  GetValue(LOG_DESCENDING) != 0);
}

// --- logs come and go -------------------------------------------------------------------

void Attach(int index, LOGV_Log *log)
{
    LGW_Side &side = LGW_sides[index];
    side.log = std::move(*log);
    LOGV_Attach(&side.view, &side.log);
    side.cells = side.view;
    side.cells.shown.resize(side.log.rows.size());
    std::iota(side.cells.shown.begin(), side.cells.shown.end(), 0u);
    side.view.isLocalTime = side.cells.isLocalTime = GetValue(LOG_LOCAL) != 0;
    LGW_lines.clear(); // they name rows of the log that was there
    FillTypes();
    Sort();
    ApplyFilter();
}

int OpenLog(const std::string &path, LOGV_Log *log)
{
    const int result = LOGV_Open(path, log);
    if (result == DLLD_ERR_OPEN)
        MessagePopup("Error", "Could not open the file " + path + ".");
    else if (result == DLLD_ERR_FILE)
        MessagePopup("Error", PLF_FailureText(path));
    else if (result < 0)
        MessagePopup("Error", "The file " + path +
                                  " holds no log: its header is not one, or names another length.");
    return result;
}

bool SelectFile(const char *title, std::string *path)
{
    return FileSelectPopup("", "*.bin", "*.bin", title, FILE_LOAD, path) != VAL_NO_FILE_SELECTED;
}

void ShowComparison()
{
    SetCtrlAttribute(PANEL, LOG_COMPARE, ATTR_LABEL_TEXT,
                     LGW_isComparing ? "End co__mparison" : "Co__mpare...");
    LGW_SetColumns();
}

// The logs that the map knows now; the chosen one stays chosen.
void FillVariables()
{
    const std::vector<std::string> names = LGT_FindLogs();
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
    LGT_UseTarget();
    if (!DLLD_GetHost().hasRecIds)
        DLLD_ClearRecIds();
    else if (DLLD_ReadARecId() < 0)
        return -1;
    DLLD_Log words;
    if (DLLD_ReadLog(name, &words) < 0)
        return -1;
    return LOGV_Decode(std::move(words), name + " of station " + std::to_string(STATION), log);
}

// Again the column that is sorted by: the other way round.
void SortByKey(int column)
{
    if (LGW_isComparing)
        return;
    const bool isAgain = GetChoice(LOG_SORT, LOGV_PLACE) == column;
    SetCtrlVal(PANEL, LOG_DESCENDING, isAgain && GetValue(LOG_DESCENDING) == 0 ? 1 : 0);
    SetCtrlIndex(PANEL, LOG_SORT, column);
    Sort();
    LGW_Refill();
}

void CopySelected()
{
    std::vector<int> indices;
    GetListSelection(PANEL, LOG_LIST, &indices);
    std::string text;
    for (const int index : indices) {
        const LGW_Line &line = LGW_lines[LGW_firstLine + static_cast<size_t>(index)];
        if (LGW_isComparing)
            text += std::string(LGW_GetPresence(line)) + "\t";
        text += LOGV_CopyLines(LGW_sides[line.side].cells, {line.row});
    }
    if (!text.empty())
        ClipboardPutText(text);
}

// The line with the earliest time not before the stamp, else the latest.
size_t FindTime(uint32_t stamp)
{
    if (!LGW_isComparing)
        return static_cast<size_t>(std::max<int64_t>(LOGV_FindTime(LGW_sides[0].view, stamp), 0));
    const auto found = std::find_if(LGW_lines.begin(), LGW_lines.end(), [&](const LGW_Line &line) {
        return LGW_GetRow(line).stamp >= stamp;
    });
    // Later than all: the last line is the nearest.
    return found == LGW_lines.end() ? LGW_lines.size() - 1
                                    : static_cast<size_t>(found - LGW_lines.begin());
}

} // namespace

int LGW_ShowFile(const std::string &path)
{
    LOGV_Log log;
    const int result = OpenLog(path, &log);
    if (result == 0)
        Attach(0, &log);
    return result;
}

void LGW_OpenCB(int, int)
{
    int columns = 0;
    std::vector<UI_Column> shown;
    if (GetListColumns(PANEL, LOG_LIST, &shown) >= 0)
        columns = static_cast<int>(shown.size());
    // Only the first time: a window that is shown again keeps what it showed.
    if (columns == 0) {
        SetCtrlVal(PANEL, LOG_LOCAL, 1);
        ShowComparison();
        FillTypes();
    }
    FillVariables();
    LGW_ShowDetails();
    LGW_ShowState();
    DisplayPanel(PANEL);
    SetActivePanel(PANEL);
}

int LGW_PanelCB(int, int event, int data)
{
    if (event == EVENT_ACTIVATED) { // another map may have been loaded
        FillVariables();
        LGW_ShowState();
    }
    if (event == EVENT_CLOSE || (event == EVENT_KEYPRESS && data == KEY_ESC)) {
        HidePanel(PANEL);
        return 1;
    }
    if (event == EVENT_KEYPRESS && data >= (KEY_CTRL | '1') && data <= (KEY_CTRL | '4')) {
        SortByKey(data - (KEY_CTRL | '1'));
        return 1;
    }
    return 0;
}

int LGW_ReadCB(int, int, int event, int)
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
    LGW_notice = DLLD_IsCancelled() ? "Reading was cancelled." : "The log could not be read.";
    LGW_ShowState();
    return 0;
}

int LGW_OpenFileCB(int, int, int event, int)
{
    std::string path;
    if (event == EVENT_COMMIT && SelectFile("Open a saved log", &path))
        LGW_ShowFile(path);
    return 0;
}

int LGW_CompareCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    std::string path;
    LOGV_Log log;
    if (LGW_isComparing) {
        LGW_isComparing = false;
        LGW_sides[1] = LGW_Side();
        LGW_lines.clear(); // they name rows of the other log as well
        ShowComparison();
        FillTypes();
        ApplyFilter();
    } else if (SelectFile("Compare with a saved log", &path) && OpenLog(path, &log) == 0) {
        LGW_isComparing = true;
        ShowComparison();
        Attach(1, &log);
    }
    return 0;
}

int LGW_FilterCB(int, int, int event, int)
{
    if (event == EVENT_VAL_CHANGED || event == EVENT_COMMIT)
        ApplyFilter();
    return 0;
}

int LGW_SortCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT && event != EVENT_VAL_CHANGED)
        return 0;
    Sort();
    LGW_Refill();
    return 0;
}

int LGW_LocalCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    for (LGW_Side &side : LGW_sides)
        side.view.isLocalTime = side.cells.isLocalTime = GetValue(LOG_LOCAL) != 0;
    ApplyFilter(); // its times mean something else now
    return 0;
}

int LGW_ListCB(int, int, int event, int data)
{
    if (event == EVENT_VAL_CHANGED)
        LGW_ShowDetails();
    if (event != EVENT_KEYPRESS || data != (KEY_CTRL | 'C'))
        return 0;
    CopySelected();
    return 1;
}

int LGW_PageCB(int, int control, int event, int)
{
    const bool isNext = control == LOG_NEXT;
    if (event != EVENT_COMMIT ||
        (isNext ? LGW_firstLine + LGW_PAGE_LINES >= LGW_lines.size() : LGW_firstLine == 0))
        return 0;
    LGW_ShowLine(isNext ? LGW_firstLine + LGW_PAGE_LINES : LGW_firstLine - LGW_PAGE_LINES);
    return 0;
}

int LGW_JumpCB(int, int, int event, int)
{
    uint32_t stamp = 0;
    if (event != EVENT_COMMIT || LGW_lines.empty())
        return 0;
    const std::string text = GetText(LOG_JUMP);
    LGW_notice.clear();
    if (LGM_ParseTime(LGW_sides[0].view, text, false, &stamp) < 0) {
        LGW_notice = "'" + text + "' is no time such as 2015-03-01 10:20.";
        LGW_ShowState();
        return 0;
    }
    LGW_ShowLine(FindTime(stamp));
    SetActiveCtrl(PANEL, LOG_LIST);
    return 0;
}

int LGW_CopyCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT)
        CopySelected();
    return 0;
}

int LGW_ExportCB(int, int, int event, int)
{
    std::string path;
    if (event != EVENT_COMMIT || !LGW_HasLog() || LGW_isComparing ||
        FileSelectPopup("", "log.csv", "*.csv", "Export the filtered messages", FILE_SAVE, &path) ==
            VAL_NO_FILE_SELECTED)
        return 0;
    if (LOGV_SaveCsv(LGW_sides[0].view, path) < 0) {
        MessagePopup("Error", SAF_FailureText(path));
        return 0;
    }
    LGW_notice = LGW_FormatCount(LGW_lines.size()) + " messages were written to " + path + ".";
    LGW_ShowState();
    return 0;
}
