// A line is a message of either log; cells come from views that show every message in the
// log's order, so that a line is found by its row however it is filtered and sorted.
#include "logger/log_window_lines.h"

#include <algorithm>

#include "logger/dlld_record.h"
#include "runtime/userint.h"
#include "ui/resource.h"

LGW_Side LGW_sides[2];
bool LGW_isComparing = false;
std::vector<LGW_Line> LGW_lines;
size_t LGW_firstLine = 0;
std::string LGW_notice;

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

// Both logs' messages by time, each once; the filter works on both.
void CollectCompared()
{
    std::vector<bool> isShown[2];
    for (int side = 0; side < 2; side++) {
        isShown[side].resize(LGW_sides[side].log.rows.size());
        for (const uint32_t row : LGW_sides[side].view.shown)
            isShown[side][row] = true;
    }
    for (const LOGV_Pair &pair : LOGV_Compare(LGW_sides[0].log, LGW_sides[1].log)) {
        LGW_Line line;
        line.side = pair.rowA < 0 ? 1 : 0;
        line.row = static_cast<uint32_t>(pair.rowA < 0 ? pair.rowB : pair.rowA);
        line.isBoth = pair.rowA >= 0 && pair.rowB >= 0;
        if (isShown[line.side][line.row])
            LGW_lines.push_back(line);
    }
}

// Its place among all lines; -1 for none. The list knows those of its page only.
int64_t GetSelected()
{
    int index = -1;
    GetCtrlIndex(PANEL, LOG_LIST, &index);
    const size_t line = LGW_firstLine + static_cast<size_t>(std::max(index, 0));
    return index < 0 || line >= LGW_lines.size() ? -1 : static_cast<int64_t>(line);
}

// A type that only a description of its record could explain.
bool NeedsDescriptions(const LOGV_Log &log)
{
    return DLLD_nDimARecId == 0 &&
           std::any_of(log.rows.begin(), log.rows.end(), [](const LOGV_Row &row) {
               return row.type != DLLD_JUNK && row.type != DLLD_TEXT && row.type != DLLD_BSTAMP;
           });
}

} // namespace

bool LGW_HasLog()
{
    return !LGW_sides[0].log.rows.empty() || !LGW_sides[0].log.words.empty();
}

const LOGV_Row &LGW_GetRow(const LGW_Line &line)
{
    return LGW_sides[line.side].log.rows[line.row];
}

const char *LGW_GetPresence(const LGW_Line &line)
{
    return line.isBoth ? "both" : line.side == 0 ? "only this" : "only other";
}

std::string LGW_FormatCount(size_t count)
{
    std::string text = std::to_string(count);
    // From the end, so that the places in front of it stay what they are.
    for (size_t at = text.size(); at > 3; at -= 3)
        text.insert(at - 3, ",");
    return text;
}

void LGW_SetColumns()
{
    constexpr int PRESENCE_PIXELS = 90, TIME_PIXELS = 160, TYPE_PIXELS = 120;
    std::vector<UI_Column> columns(3);
    columns[0] = {"Time", TIME_PIXELS};
    columns[1] = {"Type", TYPE_PIXELS};
    columns[2] = {"Text"};
    if (LGW_isComparing)
        columns.insert(columns.begin(), {"In", PRESENCE_PIXELS});
    SetListColumns(PANEL, LOG_LIST, columns);
}

void LGW_ShowDetails()
{
    // Made for one line only: all its fields in all forms would be much for a page of lines.
    ClearListCtrl(PANEL, LOG_DETAIL);
    const int64_t selected = GetSelected();
    SetCtrlAttribute(PANEL, LOG_COPY, ATTR_DIMMED, selected < 0);
    if (selected < 0)
        return;
    const LGW_Line &line = LGW_lines[static_cast<size_t>(selected)];
    for (LOGV_Detail detail : LOGV_GetDetails(LGW_sides[line.side].log, LGW_GetRow(line))) {
        const bool isCut = detail.value.size() > DETAIL_CHARS_MAX;
        if (isCut)
            detail.value.resize(DETAIL_CHARS_MAX);
        // An escape would begin a column of the list.
        std::replace(detail.value.begin(), detail.value.end(), '\033', ' ');
        InsertListItem(PANEL, LOG_DETAIL, -1,
                       detail.name + "\033p130l" + detail.value + (isCut ? " ..." : ""), 0);
    }
}

void LGW_ShowState()
{
    std::string text = NO_LOG;
    if (LGW_HasLog()) {
        const size_t all = LGW_sides[0].log.rows.size();
        text = LGW_sides[0].log.name + ": ";
        if (LGW_isComparing)
            text = LGW_sides[0].log.name + " (this) and " + LGW_sides[1].log.name +
                   " (other): " + LGW_FormatCount(LGW_lines.size()) + " messages, " +
                   LGW_FormatCount(static_cast<size_t>(
                       std::count_if(LGW_lines.begin(), LGW_lines.end(),
                                     [](const LGW_Line &l) { return !l.isBoth; }))) +
                   " of them in one only.";
        else
            text +=
                LGW_FormatCount(LGW_lines.size()) + " of " + LGW_FormatCount(all) + " messages.";
        if (LGW_lines.size() > LGW_PAGE_LINES)
            text += " Listed: " + LGW_FormatCount(LGW_firstLine + 1) + " to " +
                    LGW_FormatCount(std::min(LGW_firstLine + LGW_PAGE_LINES, LGW_lines.size())) +
                    ".";
        if (NeedsDescriptions(LGW_sides[0].log))
            text += std::string("\n") + NO_DESCRIPTIONS;
    }
    // The button knows whether the map describes a log: it is dimmed when the list of them is
    // filled.
    int cannotRead = 0;
    if (GetCtrlAttribute(PANEL, LOG_READ, ATTR_DIMMED, &cannotRead) >= 0 && cannotRead != 0)
        text += std::string("\n") + NO_NAMES;
    if (!LGW_notice.empty())
        text += "\n" + LGW_notice;
    SetCtrlVal(PANEL, LOG_STATE, text);
    SetCtrlAttribute(PANEL, LOG_PREVIOUS, ATTR_DIMMED, LGW_firstLine == 0);
    SetCtrlAttribute(PANEL, LOG_NEXT, ATTR_DIMMED,
                     LGW_firstLine + LGW_PAGE_LINES >= LGW_lines.size());
    SetCtrlAttribute(PANEL, LOG_COMPARE, ATTR_DIMMED, !LGW_HasLog());
    // A comparison is in the order of time, and no table of one log.
    SetCtrlAttribute(PANEL, LOG_EXPORT, ATTR_DIMMED, !LGW_HasLog() || LGW_isComparing);
    for (const int control : {LOG_SORT, LOG_DESCENDING})
        SetCtrlAttribute(PANEL, control, ATTR_DIMMED, LGW_isComparing);
}

void LGW_ShowLine(size_t line)
{
    // Pages begin at fixed lines, so that Next and Previous meet the same ones again.
    LGW_firstLine = line / LGW_PAGE_LINES * LGW_PAGE_LINES;
    const size_t end = std::min(LGW_firstLine + LGW_PAGE_LINES, LGW_lines.size());
    ClearListCtrl(PANEL, LOG_LIST);
    for (size_t i = LGW_firstLine; i < end; i++) {
        const LGW_Line &shown = LGW_lines[i];
        const LOGV_View &cells = LGW_sides[shown.side].cells;
        // An escape and "p90l" begin a column of the list there.
        std::string label;
        if (LGW_isComparing)
            label = std::string(LGW_GetPresence(shown)) + "\033p90l";
        label += LOGV_GetCell(cells, shown.row, LOGV_TIME) + "\033p250l";
        label += LOGV_GetCell(cells, shown.row, LOGV_TYPE) + "\033p370l";
        label += LOGV_GetCell(cells, shown.row, LOGV_TEXT);
        InsertListItem(PANEL, LOG_LIST, -1, label, 0);
    }
    if (line < LGW_lines.size()) {
        const int index = static_cast<int>(line - LGW_firstLine);
        SetListSelection(PANEL, LOG_LIST, {index});
        SetCtrlIndex(PANEL, LOG_LIST, index);
        SetCtrlAttribute(PANEL, LOG_LIST, ATTR_FIRST_VISIBLE_LINE,
                         std::max(0, index - LINES_ABOVE));
    }
    LGW_ShowDetails();
    LGW_ShowState();
}

void LGW_Refill()
{
    const int64_t selected = GetSelected();
    LGW_Line kept;
    if (selected >= 0)
        kept = LGW_lines[static_cast<size_t>(selected)];
    LGW_lines.clear();
    if (LGW_isComparing)
        CollectCompared();
    else
        for (const uint32_t row : LGW_sides[0].view.shown)
            LGW_lines.push_back({0, false, row});
    // The chosen message is found again, wherever filter and order put it.
    const auto found = std::find_if(LGW_lines.begin(), LGW_lines.end(), [&](const LGW_Line &line) {
        return line.side == kept.side && line.row == kept.row;
    });
    LGW_ShowLine(selected < 0 || found == LGW_lines.end()
                     ? 0
                     : static_cast<size_t>(found - LGW_lines.begin()));
}
