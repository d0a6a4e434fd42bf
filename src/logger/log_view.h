// A log as a table: rows of time, type and text, filtered, sorted and searched. Knows no
// window: whoever shows a log holds a LOGV_Log and a LOGV_View of it and asks for the cells
// it draws. Uses the table of record ids at the moment a log is decoded.
//
// Stamps are standard time. A view shows them as local time, with summer time, or as logged.
#ifndef LOGGER_LOG_VIEW_H
#define LOGGER_LOG_VIEW_H

#include <bitset>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "logger/dlld.h"
#include "logger/dlld_message.h"

struct LOGV_Row {
    int32_t start = 0; // in the log's words
    int32_t length = 0;
    uint32_t stamp = 0; // 0: the message is too short to have a time
    uint32_t textAt = 0, textLength = 0;
    uint8_t type = 0;
};

struct LOGV_Log {
    std::string name; // what the user calls it
    DLLD_Log words;
    std::vector<LOGV_Row> rows;         // in the buffer's order, junk included
    std::string texts;                  // of all rows
    std::string folded;                 // the same in lower case, which searches and sorts look at
    std::vector<std::string> typeNames; // by type
};

// 0, or -1: bad header, the log is then as it was.
int LOGV_Decode(DLLD_Log words, const std::string &name, LOGV_Log *log);
// A saved ".bin". 0 or DLLD_ERR_..., the log is then as it was.
int LOGV_Open(const std::string &path, LOGV_Log *log);
std::string_view LOGV_GetText(const LOGV_Log &log, const LOGV_Row &row);
DLLD_Msg LOGV_GetMsg(const LOGV_Log &log, const LOGV_Row &row);

enum LOGV_Column { LOGV_PLACE, LOGV_TIME, LOGV_TYPE, LOGV_TEXT };

struct LOGV_Filter {
    std::bitset<256> hidden;            // types that are not shown
    uint32_t from = 0, to = UINT32_MAX; // stamps
    std::string text;                   // somewhere in type or text, in either case
};
LOGV_Filter LOGV_MakeFilter(); // everything but junk

struct LOGV_View {
    const LOGV_Log *log = nullptr; // must outlive the view
    LOGV_Filter filter;
    LOGV_Column sortColumn = LOGV_PLACE;
    bool isDescending = false;
    bool isLocalTime = true;
    std::vector<uint32_t> shown; // indexes of rows, in the order of the lines
};

void LOGV_Attach(LOGV_View *view, const LOGV_Log *log); // with LOGV_MakeFilter, unsorted
// A text that only grows is looked for in the shown lines alone.
void LOGV_SetFilter(LOGV_View *view, const LOGV_Filter &filter);
void LOGV_Sort(LOGV_View *view, LOGV_Column column, bool isDescending);
// The line with the earliest time not before `stamp`, else with the latest; -1 without lines.
int64_t LOGV_FindTime(const LOGV_View &view, uint32_t stamp);
// A time as the user types it, as the stamp of a filter's end or of a jump. Of the two hours
// that one hour in October stands for, the first, or for an `isEnd` the second.
uint32_t LOGV_ToStamp(const LOGV_View &view, DateTime shownTime, bool isEnd);
// The same from text: "2015-03-01 10:20:30", or its beginning, whose missing parts are the
// earliest there are, or with `isEnd` the latest. 0, or -1: no time, or one outside 2000 to 2135.
int LOGV_ParseTime(const LOGV_View &view, const std::string &text, bool isEnd, uint32_t *stamp);

// Cells. `line` counts in view.shown.
std::string LOGV_GetCell(const LOGV_View &view, size_t line, LOGV_Column column);
// Lines with tabs between their cells, for the clipboard.
std::string LOGV_CopyLines(const LOGV_View &view, const std::vector<size_t> &lines);
// The shown lines. 0, or -1: a file that was there is untouched.
int LOGV_SaveCsv(const LOGV_View &view, const std::string &path);

struct LOGV_Detail {
    std::string name;
    std::string value;
};
// All there is to say of one message: its fields, and its words as they stand in the log.
std::vector<LOGV_Detail> LOGV_GetDetails(const LOGV_Log &log, const LOGV_Row &row);

// A message of log a, of log b, or of both; -1 where there is none.
struct LOGV_Pair {
    int64_t rowA = -1;
    int64_t rowB = -1;
};
// Messages are the same when type, time and content are, wherever they stand and whatever
// value replaces their zeros. Ordered by time; junk is left out.
std::vector<LOGV_Pair> LOGV_Compare(const LOGV_Log &a, const LOGV_Log &b);

#endif
