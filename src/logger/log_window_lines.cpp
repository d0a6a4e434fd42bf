// A line is a message of either log; cells come from views that show every message in the
// log's order, so that a line is found by its row however it is filtered and sorted.
#include "logger/log_window_lines.h"

#include <algorithm>

#include "logger/dlld_record.h"
#include "runtime/userint.h"
#include "ui/resource.h"

LOGV_Side LOGV_sides[2];
bool LOGV_isComparing = false;
std::vector<LOGV_Line> LOGV_lines;
size_t LOGV_firstLine = 0;
std::string LOGV_notice;

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
        isShown[side].resize(LOGV_sides[side].log.rows.size());
        for (const uint32_t row : LOGV_sides[side].view.shown)
            isShown[side][row] = true;
    }
    for (const LOGV_Pair &pair : LOGV_Compare(LOGV_sides[0].log, LOGV_sides[1].log)) {
        LOGV_Line line;
        line.side = pair.rowA < 0 ? 1 : 0;
        line.row = static_cast<uint32_t>(pair.rowA < 0 ? pair.rowB : pair.rowA);
        line.isBoth = pair.rowA >= 0 && pair.rowB >= 0;
        if (isShown[line.side][line.row])
            LOGV_lines.push_back(line);
    }
}

// Its place among all lines; -1 for none. The list knows those of its page only.
int64_t GetSelected()
{
    int index = -1;
    GetCtrlIndex(PANEL, LOG_LIST, &index);
    const size_t line = LOGV_firstLine + static_cast<size_t>(std::max(index, 0));
    return index < 0 || line >= LOGV_lines.size() ? -1 : static_cast<int64_t>(line);
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

bool LOGV_HasLog()
{
    return !LOGV_sides[0].log.rows.empty() || !LOGV_sides[0].log.words.empty();
}

const LOGV_Row &LOGV_GetSideRow(const LOGV_Line &line)
{
    return LOGV_sides[line.side].log.rows[line.row];
}

const char *LOGV_GetPresence(const LOGV_Line &line)
{
    return line.isBoth ? "both" : line.side == 0 ? "only this" : "only other";
}

std::string LOGV_FormatCount(size_t count)
{
    std::string text = std::to_string(count);
    // From the end, so that the places in front of it stay what they are.
    for (size_t at = text.size(); at > 3; at -= 3)
        text.insert(at - 3, ",");
    return text;
}

void LOGV_SetColumns()
{
    constexpr int PRESENCE_PIXELS = 90, TIME_PIXELS = 160, TYPE_PIXELS = 120;
    std::vector<UI_Column> columns(3);
    columns[0] = {"Time", TIME_PIXELS};
    columns[1] = {"Type", TYPE_PIXELS};
    columns[2] = {"Text"};
    if (LOGV_isComparing)
        columns.insert(columns.begin(), {"In", PRESENCE_PIXELS});
    SetListColumns(PANEL, LOG_LIST, columns);
}

void LOGV_ShowDetails()
{
    // Made for one line only: all its fields in all forms would be much for a page of lines.
    ClearListCtrl(PANEL, LOG_DETAIL);
    const int64_t selected = GetSelected();
    SetCtrlAttribute(PANEL, LOG_COPY, ATTR_DIMMED, selected < 0);
    if (selected < 0)
        return;
    const LOGV_Line &line = LOGV_lines[static_cast<size_t>(selected)];
    for (LOGV_Detail detail : LOGV_GetDetails(LOGV_sides[line.side].log, LOGV_GetSideRow(line))) {
        const bool isCut = detail.value.size() > DETAIL_CHARS_MAX;
        if (isCut)
            detail.value.resize(DETAIL_CHARS_MAX);
        // An escape would begin a column of the list.
        std::replace(detail.value.begin(), detail.value.end(), '\033', ' ');
        InsertListItem(PANEL, LOG_DETAIL, -1,
                       detail.name + "\033p130l" + detail.value + (isCut ? " ..." : ""), 0);
    }
}

void LOGV_ShowState()
{
    std::string text = NO_LOG;
    if (LOGV_HasLog()) {
        const size_t all = LOGV_sides[0].log.rows.size();
        text = LOGV_sides[0].log.name + ": ";
        if (LOGV_isComparing)
            text = LOGV_sides[0].log.name + " (this) and " + LOGV_sides[1].log.name +
                   " (other): " + LOGV_FormatCount(LOGV_lines.size()) + " messages, " +
                   LOGV_FormatCount(static_cast<size_t>(
                       std::count_if(LOGV_lines.begin(), LOGV_lines.end(),
                                     [](const LOGV_Line &l) { return !l.isBoth; }))) +
                   " of them in one only.";
        else
            text +=
                LOGV_FormatCount(LOGV_lines.size()) + " of " + LOGV_FormatCount(all) + " messages.";
        if (LOGV_lines.size() > LOGV_PAGE_LINES)
            text +=
                " Listed: " + LOGV_FormatCount(LOGV_firstLine + 1) + " to " +
                LOGV_FormatCount(std::min(LOGV_firstLine + LOGV_PAGE_LINES, LOGV_lines.size())) +
                ".";
        if (NeedsDescriptions(LOGV_sides[0].log))
            text += std::string("\n") + NO_DESCRIPTIONS;
    }
    // The button knows whether the map describes a log: it is dimmed when the list of them is
    // filled.
    int cannotRead = 0;
    if (GetCtrlAttribute(PANEL, LOG_READ, ATTR_DIMMED, &cannotRead) >= 0 && cannotRead != 0)
        text += std::string("\n") + NO_NAMES;
    if (!LOGV_notice.empty())
        text += "\n" + LOGV_notice;
    SetCtrlVal(PANEL, LOG_STATE, text);
    SetCtrlAttribute(PANEL, LOG_PREVIOUS, ATTR_DIMMED, LOGV_firstLine == 0);
    SetCtrlAttribute(PANEL, LOG_NEXT, ATTR_DIMMED,
                     LOGV_firstLine + LOGV_PAGE_LINES >= LOGV_lines.size());
    SetCtrlAttribute(PANEL, LOG_COMPARE, ATTR_DIMMED, !LOGV_HasLog());
    // A comparison is in the order of time, and no table of one log.
    SetCtrlAttribute(PANEL, LOG_EXPORT, ATTR_DIMMED, !LOGV_HasLog() || LOGV_isComparing);
    for (const int control : {LOG_SORT, LOG_DESCENDING})
        SetCtrlAttribute(PANEL, control, ATTR_DIMMED, LOGV_isComparing);
}

void LOGV_ShowLine(size_t line)
{
    // Pages begin at fixed lines, so that Next and Previous meet the same ones again.
    LOGV_firstLine = line / LOGV_PAGE_LINES * LOGV_PAGE_LINES;
    const size_t end = std::min(LOGV_firstLine + LOGV_PAGE_LINES, LOGV_lines.size());
    ClearListCtrl(PANEL, LOG_LIST);
    for (size_t i = LOGV_firstLine; i < end; i++) {
        const LOGV_Line &shown = LOGV_lines[i];
        const LOGV_View &cells = LOGV_sides[shown.side].cells;
        // An escape and "p90l" begin a column of the list there.
        std::string label;
        if (LOGV_isComparing)
            label = std::string(LOGV_GetPresence(shown)) + "\033p90l";
        label += LOGV_GetCell(cells, shown.row, LOGV_TIME) + "\033p250l";
        label += LOGV_GetCell(cells, shown.row, LOGV_TYPE) + "\033p370l";
        label += LOGV_GetCell(cells, shown.row, LOGV_TEXT);
        InsertListItem(PANEL, LOG_LIST, -1, label, 0);
    }
    if (line < LOGV_lines.size()) {
        const int index = static_cast<int>(line - LOGV_firstLine);
        SetListSelection(PANEL, LOG_LIST, {index});
        SetCtrlIndex(PANEL, LOG_LIST, index);
        SetCtrlAttribute(PANEL, LOG_LIST, ATTR_FIRST_VISIBLE_LINE,
                         std::max(0, index - LINES_ABOVE));
    }
    LOGV_ShowDetails();
    LOGV_ShowState();
}

void LOGV_Refill()
{
    const int64_t selected = GetSelected();
    LOGV_Line kept;
    if (selected >= 0)
        kept = LOGV_lines[static_cast<size_t>(selected)];
    LOGV_lines.clear();
    if (LOGV_isComparing)
        CollectCompared();
    else
        for (const uint32_t row : LOGV_sides[0].view.shown)
            LOGV_lines.push_back({0, false, row});
    // The chosen message is found again, wherever filter and order put it.
    const auto found =
        std::find_if(LOGV_lines.begin(), LOGV_lines.end(), [&](const LOGV_Line &line) {
            return line.side == kept.side && line.row == kept.row;
        });
    LOGV_ShowLine(selected < 0 || found == LOGV_lines.end()
                      ? 0
                      : static_cast<size_t>(found - LOGV_lines.begin()));
}
