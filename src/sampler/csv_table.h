// The columns of a CSV file and the times in it, whoever wrote it: separator, decimal comma,
// which column has the time and in what form. Texts only; files are read by recording.cpp.
#ifndef SAMPLER_CSV_TABLE_H
#define SAMPLER_CSV_TABLE_H

#include <cstddef>
#include <string>
#include <vector>

enum REC_TimeForm {
    REC_TIME_NUMBER, // in some unit
    REC_TIME_CLOCK,  // 13:05:07.5
    REC_TIME_DATE    // 2026-11-21T13:05:07.5+01:00, 2026-11-21 13:05, 21.11.2026 13:05:07
};

struct REC_Table {
    char separator = ',';
    std::vector<std::string> names; // of all cells
    bool hasNames = false;          // false: the first line was a row already
    size_t timeCell = 0;
    REC_TimeForm form = REC_TIME_NUMBER;
    double scale = 1; // of a number to seconds
};
constexpr size_t REC_CELLS_MAX = 520;

// From the first line that is no comment. 0, or -1 with the reason in *problem.
int REC_ReadTableColumns(const std::string &line, bool isOurs, REC_Table *table,
                         std::string *problem);
// The form of the times, from the first row. False when it has none.
bool REC_ReadTableForm(const std::string &row, REC_Table *table);

struct REC_CellPiece {
    const char *begin, *end;
};
// The cells of a row where they stand, quotes left out; false when a quote is not closed.
bool REC_SplitTableRow(const char *begin, const char *end, char separator,
                       std::vector<REC_CellPiece> *cells);
// A number as people and tools write it, with a decimal point or comma. NaN when it is none.
double REC_ParseCellNumber(REC_CellPiece cell);
// Seconds; since midnight or since 1970 by the form. NaN when it is no time.
double REC_ParseCellTime(const REC_Table &table, REC_CellPiece cell);

#endif
