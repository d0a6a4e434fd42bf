// What narrows and orders the list of the log window: types, text, times, columns, and the jump to
// a time. The fields are read when they are used and kept nowhere else.
#include "logger/log_window.h"

#include <algorithm>
#include <cstdint>

#include "logger/log_view.h"
#include "logger/log_window_lines.h"
#include "runtime/userint.h"
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

// The time in a field; `open` when it is empty or no time, which is said. Nobody is stopped by
// a message: he may be in the middle of typing it.
uint32_t GetBound(int control, bool isEnd, uint32_t open)
{
    const std::string text = GetText(control);
    uint32_t stamp = open;
    if (text.find_first_not_of(' ') == std::string::npos)
        return open;
    if (LOGV_ParseTime(LOGV_sides[0].view, text, isEnd, &stamp) < 0)
        LOGV_notice = "'" + text + "' is no time such as 2015-03-01 10:20, and limits nothing.";
    return stamp;
}

} // namespace

void LOGV_FillTypes()
{
    // Those that occur in the shown logs: of 256 there are seldom ten.
    const int chosen = GetChoice(LOG_TYPE, LOGV_ALL_BUT_JUNK);
    std::bitset<256> present;
    for (const LOGV_Side &side : LOGV_sides)
        for (const LOGV_Row &row : side.log.rows)
            present[row.type] = true;
    ClearListCtrl(PANEL, LOG_TYPE);
    InsertListItem(PANEL, LOG_TYPE, -1, "all types but junk", LOGV_ALL_BUT_JUNK);
    InsertListItem(PANEL, LOG_TYPE, -1, "all types", LOGV_ALL);
    int index = chosen == LOGV_ALL ? 1 : 0, count = 2;
    for (int type = 0; LOGV_HasLog() && type < 256; type++) {
        const auto at = static_cast<size_t>(type);
        if (!present[at])
            continue;
        InsertListItem(PANEL, LOG_TYPE, -1, LOGV_sides[0].log.typeNames[at], type);
        if (type == chosen)
            index = count;
        count++;
    }
    SetCtrlIndex(PANEL, LOG_TYPE, index);
}

void LOGV_ApplyFilter()
{
    LOGV_notice.clear();
    if (!LOGV_HasLog()) {
        LOGV_ShowState();
        return;
    }
    // Both sides by the same one: a comparison lists what is left of both.
    LOGV_Filter filter = LOGV_MakeFilter();
    const int type = GetChoice(LOG_TYPE, LOGV_ALL_BUT_JUNK);
    // The filter begins without junk. One type, or all of them, junk as well.
    if (type != LOGV_ALL_BUT_JUNK)
        filter.hidden.reset();
    if (type >= 0) {
        filter.hidden.set();
        filter.hidden[static_cast<size_t>(type)] = false;
    }
    filter.text = GetText(LOG_FILTER);
    filter.from = GetBound(LOG_FROM, false, 0);
    filter.to = GetBound(LOG_TO, true, UINT32_MAX);
    for (LOGV_Side &side : LOGV_sides)
        if (side.view.log != nullptr)
            LOGV_SetFilter(&side.view, filter);
    LOGV_Refill();
}

void LOGV_SortLines()
{
    // The first log only: two of them are listed in the order of time.
    if (LOGV_HasLog())
        LOGV_Sort(&LOGV_sides[0].view, static_cast<LOGV_Column>(GetChoice(LOG_SORT, LOGV_PLACE)),
                  GetValue(LOG_DESCENDING) != 0);
}

void LOGV_SortByKey(int column)
{
    if (LOGV_isComparing)
        return;
    // Again the column that is sorted by: the other way round.
    const bool isAgain = GetChoice(LOG_SORT, LOGV_PLACE) == column;
    SetCtrlVal(PANEL, LOG_DESCENDING, isAgain && GetValue(LOG_DESCENDING) == 0 ? 1 : 0);
    SetCtrlIndex(PANEL, LOG_SORT, column);
    LOGV_SortLines();
    LOGV_Refill();
}

bool LOGV_IsLocalTime()
{
    return GetValue(LOG_LOCAL) != 0;
}

int LOGV_FilterCB(int, int, int event, int)
{
    if (event == EVENT_VAL_CHANGED || event == EVENT_COMMIT)
        LOGV_ApplyFilter();
    return 0;
}

int LOGV_SortCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT && event != EVENT_VAL_CHANGED)
        return 0;
    LOGV_SortLines();
    LOGV_Refill();
    return 0;
}

int LOGV_LocalCB(int, int, int event, int)
{
    if (event != EVENT_COMMIT)
        return 0;
    for (LOGV_Side &side : LOGV_sides)
        side.view.isLocalTime = side.cells.isLocalTime = LOGV_IsLocalTime();
    LOGV_ApplyFilter(); // what stands in From and To means other times now
    return 0;
}

int LOGV_JumpCB(int, int, int event, int)
{
    uint32_t stamp = 0;
    if (event != EVENT_COMMIT || LOGV_lines.empty())
        return 0;
    const std::string text = GetText(LOG_JUMP);
    LOGV_notice.clear();
    if (LOGV_ParseTime(LOGV_sides[0].view, text, false, &stamp) < 0) {
        LOGV_notice = "'" + text + "' is no time such as 2015-03-01 10:20.";
        LOGV_ShowState();
        return 0;
    }
    // The line with the earliest time not before the stamp; later than all: the nearest is the
    // last one. A comparison is in the order of time, a single log in any.
    size_t line = 0;
    if (LOGV_isComparing) {
        const auto found =
            std::find_if(LOGV_lines.begin(), LOGV_lines.end(),
                         [&](const LOGV_Line &l) { return LOGV_GetSideRow(l).stamp >= stamp; });
        line = static_cast<size_t>(found - LOGV_lines.begin());
        line = std::min(line, LOGV_lines.size() - 1);
    } else {
        line = static_cast<size_t>(std::max<int64_t>(LOGV_FindTime(LOGV_sides[0].view, stamp), 0));
    }
    LOGV_ShowLine(line);
    SetActiveCtrl(PANEL, LOG_LIST);
    return 0;
}
