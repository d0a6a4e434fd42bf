// A file says nothing of its form: the separator comes from the first line, the column of the times
// from the names, what a time looks like from the first row. Rows are read in place, without a
// copy of their cells, for there may be millions.
#include "sampler/csv_table.h"

#include "text/words.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr size_t NUMBER_CHARS_MAX = 60; // of one with a decimal comma
constexpr double DAY_S = 86400, HOUR_S = 3600, MINUTE_S = 60;

// Names of a column of times, the likeliest first; small letters, without a unit.
const char *const TIME_NAMES[] = {"time",  "t",       "timestamp", "datetime", "date time", "zeit",
                                  "clock", "elapsed", "seconds",   "sec",      "date",      "ts"};
struct UnitRow {
    const char *name;
    double seconds;
};
const UnitRow UNITS[] = {{"s", 1},     {"sec", 1},   {"seconds", 1}, {"ms", 1e-3}, {"msec", 1e-3},
                         {"us", 1e-6}, {"ns", 1e-9}, {"min", 60},    {"h", 3600}};

// "Time [ms]", "time(ms)", "t_ms" and "t/ms" are a name and a unit.
void SplitUnit(const std::string &column, std::string *name, std::string *unit)
{
    std::string text = TXT_Trim(column);
    for (char &c : text) // not the locale's idea of small letters
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
    const size_t at = text.find_first_of("[(_/");
    *name = TXT_Trim(text.substr(0, at));
    *unit = "";
    if (at == std::string::npos)
        return;
    const size_t end = text.find_first_of(")]", at);
    *unit = TXT_Trim(text.substr(at + 1, end == std::string::npos ? end : end - at - 1));
}

REC_CellPiece Trimmed(REC_CellPiece cell)
{
    while (cell.begin < cell.end && (*cell.begin == ' ' || *cell.begin == '\t'))
        ++cell.begin;
    while (cell.begin < cell.end && (cell.end[-1] == ' ' || cell.end[-1] == '\t'))
        --cell.end;
    return cell;
}

// The next digits as a number, and the cursor behind them; false when there are none.
bool ReadDigits(const char **cursor, const char *end, int *number)
{
    const auto result = std::from_chars(*cursor, end, *number);
    const bool isGood = result.ec == std::errc() && **cursor != '-';
    *cursor = result.ptr;
    return isGood;
}

// "13:05", "13:05:07", "13:05:07,5": seconds since midnight.
bool ReadClock(const char **cursor, const char *end, double *seconds)
{
    int hour = 0, minute = 0;
    if (*cursor == end || !ReadDigits(cursor, end, &hour) || *cursor == end || **cursor != ':')
        return false;
    ++*cursor;
    if (*cursor == end || !ReadDigits(cursor, end, &minute) || hour > 23 || minute > 59)
        return false;
    *seconds = hour * HOUR_S + minute * MINUTE_S;
    if (*cursor == end || **cursor != ':')
        return true;
    const char *begin = ++*cursor;
    while (*cursor < end &&
           ((**cursor >= '0' && **cursor <= '9') || **cursor == '.' || **cursor == ','))
        ++*cursor;
    const double second = REC_ParseCellNumber({begin, *cursor});
    *seconds += second;
    return second >= 0 && second < MINUTE_S + 1; // a leap second is written as 60
}

// Days since 1970 of a date of the Gregorian calendar: years counted from March, so that the
// day that comes and goes is the last of one. (The program's own calendar begins in 2000.)
int DaysSince1970(int year, int month, int day)
{
    const int shifted = month > 2 ? year : year - 1;
    const int months = month > 2 ? month - 3 : month + 9;
    return 365 * shifted + shifted / 4 - shifted / 100 + shifted / 400 + (153 * months + 2) / 5 +
           day - 1 - 719468;
}

// "2026-11-21", "2026/11/21", "21.11.2026".
bool ReadDate(const char **cursor, const char *end, int *days)
{
    int parts[3] = {0, 0, 0};
    char mark = 0;
    for (int i = 0; i < 3; ++i) {
        if (*cursor == end || !ReadDigits(cursor, end, &parts[i]))
            return false;
        if (i == 2)
            break;
        if (*cursor == end || (i == 1 && **cursor != mark))
            return false;
        mark = *(*cursor)++;
    }
    // The mark says the order; month, day, year with slashes cannot be told from it and fails.
    if (mark == '.')
        std::swap(parts[0], parts[2]);
    else if (mark != '-' && mark != '/')
        return false;
    if (parts[0] < 1900 || parts[0] > 9999 || parts[1] < 1 || parts[1] > 12 || parts[2] < 1 ||
        parts[2] > 31)
        return false;
    *days = DaysSince1970(parts[0], parts[1], parts[2]);
    return true;
}

// "Z", "+01:00" or nothing.
bool ReadZone(const char *cursor, const char *end, double *seconds)
{
    *seconds = 0;
    if (cursor == end || (*cursor == 'Z' && cursor + 1 == end))
        return true;
    if (*cursor != '+' && *cursor != '-')
        return false;
    const double sign = *cursor++ == '-' ? -1 : 1;
    const bool isGood = ReadClock(&cursor, end, seconds) && cursor == end;
    *seconds *= sign;
    return isGood;
}

double DateTimeSeconds(REC_CellPiece cell)
{
    const char *cursor = cell.begin;
    int days = 0;
    double clock = 0, zone = 0;
    if (!ReadDate(&cursor, cell.end, &days))
        return NOT_A_NUMBER;
    if (cursor < cell.end) {
        if (*cursor != 'T' && *cursor != ' ')
            return NOT_A_NUMBER;
        ++cursor;
        if (!ReadClock(&cursor, cell.end, &clock) || !ReadZone(cursor, cell.end, &zone))
            return NOT_A_NUMBER;
    }
    return days * DAY_S + clock - zone;
}

double ClockSeconds(REC_CellPiece cell)
{
    double seconds = 0;
    const char *cursor = cell.begin;
    return ReadClock(&cursor, cell.end, &seconds) && cursor == cell.end ? seconds : NOT_A_NUMBER;
}

// The likeliest name wins wherever it stands. A unit nobody knows leaves the scale.
int FindTimeCell(const REC_Table &table, double *scale)
{
    for (const char *wanted : TIME_NAMES)
        for (size_t i = 0; i < table.names.size(); ++i) {
            std::string name, unit;
            SplitUnit(table.names[i], &name, &unit);
            if (name != wanted)
                continue;
            for (const UnitRow &row : UNITS)
                if (unit == row.name)
                    *scale = row.seconds;
            return static_cast<int>(i);
        }
    return -1;
}

} // namespace

bool REC_SplitTableRow(const char *begin, const char *end, char separator,
                       std::vector<REC_CellPiece> *cells)
{
    cells->clear();
    for (const char *at = begin;; ++at) {
        REC_CellPiece cell = {at, end};
        if (at < end && *at == '"') {
            const char *cellEnd = at + 1;
            cell.begin = cellEnd;
            while (cellEnd < end && (*cellEnd != '"' || (cellEnd + 1 < end && cellEnd[1] == '"')))
                cellEnd += *cellEnd == '"' ? 2 : 1;
            if (cellEnd >= end)
                return false;
            cell.end = cellEnd;
            at = std::find(cellEnd, end, separator);
        } else {
            const void *found =
                at < end ? std::memchr(at, separator, static_cast<size_t>(end - at)) : nullptr;
            at = found != nullptr ? static_cast<const char *>(found) : end;
            cell.end = at;
        }
        if (cells->size() == REC_CELLS_MAX) // no table of values: give up before memory does
            return false;
        cells->push_back(cell);
        if (at == end)
            return true;
    }
}

double REC_ParseCellNumber(REC_CellPiece cell)
{
    cell = Trimmed(cell);
    if (cell.begin < cell.end && *cell.begin == '+')
        ++cell.begin;
    const size_t size = static_cast<size_t>(cell.end - cell.begin);
    double number = 0;
    const auto result = std::from_chars(cell.begin, cell.end, number);
    if (result.ec == std::errc() && result.ptr == cell.end && size > 0)
        return std::isfinite(number) ? number : NOT_A_NUMBER;
    // Once more with a point, for a decimal comma; on the stack, because rows are many.
    const void *comma = size > 0 ? std::memchr(cell.begin, ',', size) : nullptr;
    if (comma == nullptr || size >= NUMBER_CHARS_MAX)
        return NOT_A_NUMBER;
    char text[NUMBER_CHARS_MAX];
    std::memcpy(text, cell.begin, size);
    text[static_cast<const char *>(comma) - cell.begin] = '.';
    const auto again = std::from_chars(text, text + size, number);
    const bool isGood =
        again.ec == std::errc() && again.ptr == text + size && std::isfinite(number);
    return isGood ? number : NOT_A_NUMBER;
}

double REC_ParseCellTime(const REC_Table &table, REC_CellPiece cell)
{
    cell = Trimmed(cell);
    if (table.form == REC_TIME_DATE)
        return DateTimeSeconds(cell);
    return table.form == REC_TIME_CLOCK ? ClockSeconds(cell)
                                        : REC_ParseCellNumber(cell) * table.scale;
}

int REC_ReadTableColumns(const std::string &line, bool isOurs, REC_Table *table,
                         std::string *problem)
{
    // A comma last: it may be the decimal one in a file with another separator.
    for (const char separator : {'\t', ';', ','})
        if (!isOurs && line.find(separator) != std::string::npos) {
            table->separator = separator;
            break;
        }
    std::vector<REC_CellPiece> cells;
    if (!REC_SplitTableRow(line.data(), line.data() + line.size(), table->separator, &cells) ||
        cells.size() < 2) {
        *problem = "it is no table: its first line has no columns";
        return -1;
    }
    bool isRow = true; // nothing but numbers and times: there are no names
    for (const REC_CellPiece &cell : cells) {
        const REC_CellPiece bare = Trimmed(cell);
        std::string name(bare.begin, bare.end); // a quote within quotes stands twice
        for (size_t at = 0; (at = name.find("\"\"", at)) != std::string::npos; ++at)
            name.erase(at, 1);
        table->names.push_back(name);
        isRow = isRow && (!std::isnan(REC_ParseCellNumber(bare)) ||
                          !std::isnan(ClockSeconds(bare)) || !std::isnan(DateTimeSeconds(bare)));
    }
    table->hasNames = !isRow;
    if (isRow) {
        for (size_t i = 0; i < table->names.size(); ++i)
            table->names[i] = "column " + std::to_string(i + 1);
        return 0;
    }
    const int timeCell = FindTimeCell(*table, &table->scale);
    if (timeCell < 0) {
        *problem = "none of its columns is named \"time\"";
        return -1;
    }
    table->timeCell = static_cast<size_t>(timeCell);
    return 0;
}

bool REC_ReadTableForm(const std::string &row, REC_Table *table)
{
    std::vector<REC_CellPiece> cells;
    if (!REC_SplitTableRow(row.data(), row.data() + row.size(), table->separator, &cells) ||
        cells.size() <= table->timeCell)
        return false;
    // None of the three reads what another one writes.
    for (const REC_TimeForm form : {REC_TIME_NUMBER, REC_TIME_CLOCK, REC_TIME_DATE}) {
        table->form = form;
        if (!std::isnan(REC_ParseCellTime(*table, cells[table->timeCell])))
            return true;
    }
    return false;
}
