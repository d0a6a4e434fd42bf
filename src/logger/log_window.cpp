// What the log window shows: the lines of one log, or of two that are compared. A line is a
// message of either; cells come from views that show every message in the log's order, so
// that a line is found by its row however it is filtered and sorted.
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
#include "runtime/userint.h"
#include "settings/settings.h"
#include "ui/resource.h"

namespace {

constexpr int PANEL = PANEL_DATA_LOG;
constexpr size_t DETAIL_CHARS_MAX = 2000; // a stretch of junk may be a megabyte of words
constexpr int LINES_ABOVE = 3;            // kept in view above a line that was jumped to
const char NO_LOG[] = "No log yet: read one from the target, or open a saved file.";
const char NO_NAMES[] =
    "No log can be read: the map and type map, if they are loaded, describe none.";
const char NO_DESCRIPTIONS[] =
    "The descriptions of its records are not known, their contents are shown as hexadecimal "
    "words: they stand on the target, and are read from it together with a log.";

struct Side {
    LOGV_Log log;
    LOGV_View view;  // filtered and sorted
    LOGV_View cells; // every row, where a line is a row
};
Side sides[2]; // the log, and the one it is compared with
bool isComparing = false;

struct Line {
    uint8_t side = 0;
    bool isBoth = false;
    uint32_t row = 0;
};
std::vector<Line> lines;
size_t firstLine = 0; // of the page
std::string notice;   // of the last thing that was done

bool HasLog()
{
    return !sides[0].log.rows.empty() || !sides[0].log.words.empty();
}

const LOGV_Row &GetRow(const Line &line)
{
    return sides[line.side].log.rows[line.row];
}

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

std::string FormatCount(size_t count)
{
    std::string text = std::to_string(count);
    for (size_t at = text.size(); at > 3; at -= 3)
        text.insert(at - 3, ",");
    return text;
}

// --- the lines --------------------------------------------------------------------------

// Both logs' messages by time, each once; the filter works on both.
void CollectCompared()
{
    std::vector<bool> isShown[2];
    for (int side = 0; side < 2; side++) {
        isShown[side].resize(sides[side].log.rows.size());
        for (const uint32_t row : sides[side].view.shown)
            isShown[side][row] = true;
    }
    for (const LOGV_Pair &pair : LOGV_Compare(sides[0].log, sides[1].log)) {
        Line line;
        line.side = pair.rowA < 0 ? 1 : 0;
        line.row = static_cast<uint32_t>(pair.rowA < 0 ? pair.rowB : pair.rowA);
        line.isBoth = pair.rowA >= 0 && pair.rowB >= 0;
        if (isShown[line.side][line.row])
            lines.push_back(line);
    }
}

void CollectLines()
{
    lines.clear();
    if (isComparing) {
        CollectCompared();
        return;
    }
    lines.resize(sides[0].view.shown.size());
    for (size_t i = 0; i < lines.size(); i++)
        lines[i].row = sides[0].view.shown[i];
}

const char *GetPresence(const Line &line)
{
    return line.isBoth ? "both" : line.side == 0 ? "only this" : "only other";
}

std::string MakeLabel(const Line &line)
{
    const LOGV_View &cells = sides[line.side].cells;
    std::string label = isComparing ? std::string(GetPresence(line)) + "\033p90l" : "";
    label += LOGV_GetCell(cells, line.row, LOGV_TIME);
    label += "\033p250l" + LOGV_GetCell(cells, line.row, LOGV_TYPE);
    return label + "\033p370l" + LOGV_GetCell(cells, line.row, LOGV_TEXT);
}

void SetColumns()
{
    constexpr int PRESENCE_PIXELS = 90, TIME_PIXELS = 160, TYPE_PIXELS = 120;
    std::vector<UI_Column> columns(3);
    columns[0] = {"Time", TIME_PIXELS};
    columns[1] = {"Type", TYPE_PIXELS};
    columns[2] = {"Text"};
    if (isComparing)
        columns.insert(columns.begin(), {"In", PRESENCE_PIXELS});
    SetListColumns(PANEL, LOG_LIST, columns);
}

int64_t GetSelected()
{
    int index = -1;
    GetCtrlIndex(PANEL, LOG_LIST, &index);
    const size_t line = firstLine + static_cast<size_t>(std::max(index, 0));
    return index < 0 || line >= lines.size() ? -1 : static_cast<int64_t>(line);
}

void ShowDetails()
{
    ClearListCtrl(PANEL, LOG_DETAIL);
    const int64_t selected = GetSelected();
    SetCtrlAttribute(PANEL, LOG_COPY, ATTR_DIMMED, selected < 0);
    if (selected < 0)
        return;
    const Line &line = lines[static_cast<size_t>(selected)];
    for (LOGV_Detail detail : LOGV_GetDetails(sides[line.side].log, GetRow(line))) {
        const bool isCut = detail.value.size() > DETAIL_CHARS_MAX;
        if (isCut)
            detail.value.resize(DETAIL_CHARS_MAX);
        std::replace(detail.value.begin(), detail.value.end(), '\033', ' ');
        InsertListItem(PANEL, LOG_DETAIL, -1,
                       detail.name + "\033p130l" + detail.value + (isCut ? " ..." : ""), 0);
    }
}

// A type that only a description of its record could explain.
bool NeedsDescriptions(const LOGV_Log &log)
{
    return DLLD_nDimARecId == 0 &&
           std::any_of(log.rows.begin(), log.rows.end(), [](const LOGV_Row &row) {
               return row.type != DLLD_JUNK && row.type != DLLD_TEXT && row.type != DLLD_BSTAMP;
           });
}

void ShowState()
{
    std::string text = NO_LOG;
    if (HasLog()) {
        const size_t all = sides[0].log.rows.size();
        text = sides[0].log.name + ": ";
        if (isComparing)
            text = sides[0].log.name + " (this) and " + sides[1].log.name +
                   " (other): " + FormatCount(lines.size()) + " messages, " +
                   FormatCount(static_cast<size_t>(std::count_if(
                       lines.begin(), lines.end(), [](const Line &l) { return !l.isBoth; }))) +
                   " of them in one only.";
        else
            text += FormatCount(lines.size()) + " of " + FormatCount(all) + " messages.";
        if (lines.size() > LGW_PAGE_LINES)
            text += " Listed: " + FormatCount(firstLine + 1) + " to " +
                    FormatCount(std::min(firstLine + LGW_PAGE_LINES, lines.size())) + ".";
        if (NeedsDescriptions(sides[0].log))
            text += std::string("\n") + NO_DESCRIPTIONS;
    }
    int cannotRead = 0;
    if (GetCtrlAttribute(PANEL, LOG_READ, ATTR_DIMMED, &cannotRead) >= 0 && cannotRead != 0)
        text += std::string("\n") + NO_NAMES;
    if (!notice.empty())
        text += "\n" + notice;
    SetCtrlVal(PANEL, LOG_STATE, text);
    SetCtrlAttribute(PANEL, LOG_PREVIOUS, ATTR_DIMMED, firstLine == 0);
    SetCtrlAttribute(PANEL, LOG_NEXT, ATTR_DIMMED, firstLine + LGW_PAGE_LINES >= lines.size());
    SetCtrlAttribute(PANEL, LOG_COMPARE, ATTR_DIMMED, !HasLog());
    // A comparison is in the order of time, and no table of one log.
    SetCtrlAttribute(PANEL, LOG_EXPORT, ATTR_DIMMED, !HasLog() || isComparing);
    for (const int control : {LOG_SORT, LOG_DESCENDING})
        SetCtrlAttribute(PANEL, control, ATTR_DIMMED, isComparing);
}

// Lists the page with the line and selects it.
void ShowLine(size_t line)
{
    firstLine = line / LGW_PAGE_LINES * LGW_PAGE_LINES;
    const size_t end = std::min(firstLine + LGW_PAGE_LINES, lines.size());
    ClearListCtrl(PANEL, LOG_LIST);
    for (size_t i = firstLine; i < end; i++)
        InsertListItem(PANEL, LOG_LIST, -1, MakeLabel(lines[i]), 0);
    if (line < lines.size()) {
        const int index = static_cast<int>(line - firstLine);
        SetListSelection(PANEL, LOG_LIST, {index});
        SetCtrlIndex(PANEL, LOG_LIST, index);
        SetCtrlAttribute(PANEL, LOG_LIST, ATTR_FIRST_VISIBLE_LINE,
                         std::max(0, index - LINES_ABOVE));
    }
    ShowDetails();
    ShowState();
}

// Lists what the filter lets through; the selected message stays selected if it is there.
void Refill()
{
    const int64_t selected = GetSelected();
    Line kept;
    if (selected >= 0)
        kept = lines[static_cast<size_t>(selected)];
    CollectLines();
    const auto found = std::find_if(lines.begin(), lines.end(), [&](const Line &line) {
        return line.side == kept.side && line.row == kept.row;
    });
    ShowLine(selected < 0 || found == lines.end() ? 0 : static_cast<size_t>(found - lines.begin()));
}

// --- filter -----------------------------------------------------------------------------

void FillTypes()
{
    const int chosen = GetChoice(LOG_TYPE, LGW_ALL_BUT_JUNK);
    std::bitset<256> present;
    for (const Side &side : sides)
        for (const LOGV_Row &row : side.log.rows)
            present[row.type] = true;
    ClearListCtrl(PANEL, LOG_TYPE);
    InsertListItem(PANEL, LOG_TYPE, -1, "all types but junk", LGW_ALL_BUT_JUNK);
    InsertListItem(PANEL, LOG_TYPE, -1, "all types", LGW_ALL);
    int index = chosen == LGW_ALL ? 1 : 0, count = 2;
    for (int type = 0; HasLog() && type < 256; type++) {
        const auto at = static_cast<size_t>(type);
        if (!present[at])
            continue;
        InsertListItem(PANEL, LOG_TYPE, -1, sides[0].log.typeNames[at], type);
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
    if (LGM_ParseTime(sides[0].view, text, isEnd, &stamp) < 0)
        notice = "'" + text + "' is no time such as 2015-03-01 10:20, and limits nothing.";
    return stamp;
}

void ApplyFilter()
{
    notice.clear();
    if (!HasLog()) {
        ShowState();
        return;
    }
    LOGV_Filter filter = LOGV_MakeFilter();
    const int type = GetChoice(LOG_TYPE, LGW_ALL_BUT_JUNK);
    if (type != LGW_ALL_BUT_JUNK)
        filter.hidden.reset();
    if (type >= 0) {
        filter.hidden.set();
        filter.hidden[static_cast<size_t>(type)] = false;
    }
    filter.text = GetText(LOG_FILTER);
    filter.from = GetBound(LOG_FROM, false, 0);
    filter.to = GetBound(LOG_TO, true, UINT32_MAX);
    for (Side &side : sides)
        if (side.view.log != nullptr)
            LOGV_SetFilter(&side.view, filter);
    Refill();
}

void Sort()
{
    if (HasLog())
        LOGV_Sort(&sides[0].view, static_cast<LOGV_Column>(GetChoice(LOG_SORT, LOGV_PLACE)),
                  GetValue(LOG_DESCENDING) != 0);
}

// --- logs come and go -------------------------------------------------------------------

void Attach(int index, LOGV_Log *log)
{
    Side &side = sides[index];
    side.log = std::move(*log);
    LOGV_Attach(&side.view, &side.log);
    side.cells = side.view;
    side.cells.shown.resize(side.log.rows.size());
    std::iota(side.cells.shown.begin(), side.cells.shown.end(), 0u);
    side.view.isLocalTime = side.cells.isLocalTime = GetValue(LOG_LOCAL) != 0;
    lines.clear(); // they name rows of the log that was there
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
        MessagePopup("Error", "Could not read the file " + path + " to its end.");
    else if (result < 0)
        MessagePopup("Error", "The file " + path +
                                  " holds no log: its header is not one, or names another length.");
    return result;
}

bool SelectFile(const char *title, std::string *path)
{
    return FileSelectPopup("", "*.bin", "*.bin", title, FILE_LOAD, path) != VAL_NO_FILE_SELECTED;
}

void EndComparison()
{
    isComparing = false;
    sides[1] = Side();
    lines.clear();
}

void ShowComparison()
{
    SetCtrlAttribute(PANEL, LOG_COMPARE, ATTR_LABEL_TEXT,
                     isComparing ? "End co__mparison" : "Co__mpare...");
    SetColumns();
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

void Close()
{
    HidePanel(PANEL);
}

// Again the column that is sorted by: the other way round.
void SortByKey(int column)
{
    if (isComparing)
        return;
    const bool isAgain = GetChoice(LOG_SORT, LOGV_PLACE) == column;
    SetCtrlVal(PANEL, LOG_DESCENDING, isAgain && GetValue(LOG_DESCENDING) == 0 ? 1 : 0);
    SetCtrlIndex(PANEL, LOG_SORT, column);
    Sort();
    Refill();
}

void CopySelected()
{
    std::vector<int> indices;
    GetListSelection(PANEL, LOG_LIST, &indices);
    std::string text;
    for (const int index : indices) {
        const Line &line = lines[firstLine + static_cast<size_t>(index)];
        if (isComparing)
            text += std::string(GetPresence(line)) + "\t";
        text += LOGV_CopyLines(sides[line.side].cells, {line.row});
    }
    if (!text.empty())
        ClipboardPutText(text);
}

// The line with the earliest time not before the stamp, else the latest.
size_t FindTime(uint32_t stamp)
{
    if (!isComparing)
        return static_cast<size_t>(std::max<int64_t>(LOGV_FindTime(sides[0].view, stamp), 0));
    const auto found = std::find_if(lines.begin(), lines.end(),
                                    [&](const Line &line) { return GetRow(line).stamp >= stamp; });
    return found == lines.end() ? lines.size() - 1 : static_cast<size_t>(found - lines.begin());
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
    if (columns == 0) {
        SetCtrlVal(PANEL, LOG_LOCAL, 1);
        ShowComparison();
        FillTypes();
    }
    FillVariables();
    ShowDetails();
    ShowState();
    DisplayPanel(PANEL);
    SetActivePanel(PANEL);
}

int LGW_PanelCB(int, int event, int data)
{
    if (event == EVENT_ACTIVATED) { // another map may have been loaded
        FillVariables();
        ShowState();
    }
    if (event == EVENT_CLOSE || (event == EVENT_KEYPRESS && data == KEY_ESC)) {
        Close();
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
    notice = DLLD_IsCancelled() ? "Reading was cancelled." : "The log could not be read.";
    ShowState();
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
    if (isComparing) {
        EndComparison();
        ShowComparison();
        FillTypes();
        ApplyFilter();
    } else if (SelectFile("Compare with a saved log", &path) && OpenLog(path, &log) == 0) {
        isComparing = true;
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
    Refill();
    return 0;
}

int LGW_LocalCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    for (Side &side : sides)
        side.view.isLocalTime = side.cells.isLocalTime = GetValue(LOG_LOCAL) != 0;
    ApplyFilter(); // its times mean something else now
    return 0;
}

int LGW_ListCB(int, int, int event, int data)
{
    if (event == EVENT_VAL_CHANGED)
        ShowDetails();
    if (event != EVENT_KEYPRESS || data != (KEY_CTRL | 'C'))
        return 0;
    CopySelected();
    return 1;
}

int LGW_PageCB(int, int control, int event, int)
{
    const bool isNext = control == LOG_NEXT;
    if (event != EVENT_COMMIT ||
        (isNext ? firstLine + LGW_PAGE_LINES >= lines.size() : firstLine == 0))
        return 0;
    ShowLine(isNext ? firstLine + LGW_PAGE_LINES : firstLine - LGW_PAGE_LINES);
    return 0;
}

int LGW_JumpCB(int, int, int event, int)
{
    uint32_t stamp = 0;
    if (event != EVENT_COMMIT || lines.empty())
        return 0;
    const std::string text = GetText(LOG_JUMP);
    notice.clear();
    if (LGM_ParseTime(sides[0].view, text, false, &stamp) < 0) {
        notice = "'" + text + "' is no time such as 2015-03-01 10:20.";
        ShowState();
        return 0;
    }
    ShowLine(FindTime(stamp));
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
    if (event != EVENT_COMMIT || !HasLog() || isComparing ||
        FileSelectPopup("", "log.csv", "*.csv", "Export the filtered messages", FILE_SAVE, &path) ==
            VAL_NO_FILE_SELECTED)
        return 0;
    if (LOGV_SaveCsv(sides[0].view, path) < 0) {
        MessagePopup("Error", "Could not write the file " + path + ".");
        return 0;
    }
    notice = FormatCount(lines.size()) + " messages were written to " + path + ".";
    ShowState();
    return 0;
}
