// The columns of a CSV file and the times in it, whoever wrote it: separator, decimal comma,
// which column has the time and in what form. Texts only; files are read by recording.cpp.
#ifndef SAMPLER_CSV_TABLE_H
#define SAMPLER_CSV_TABLE_H

#include <cstddef>
#include <string>
#include <vector>

enum CVT_TimeForm {
    CVT_NUMBER, // in some unit
    CVT_CLOCK,  // 13:05:07.5
    CVT_DATE    // 2026-11-21T13:05:07.5+01:00, 2026-11-21 13:05, 21.11.2026 13:05:07
};

struct CVT_Table {
    char separator = ',';
    std::vector<std::string> names; // of all cells
    bool hasNames = false;          // false: the first line was a row already
    size_t timeCell = 0;
    CVT_TimeForm form = CVT_NUMBER;
    double scale = 1; // of a number to seconds
};
constexpr size_t CVT_CELLS_MAX = 520;

// From the first line that is no comment. 0, or -1 with the reason in *problem.
int CVT_ReadColumns(const std::string &line, bool isOurs, CVT_Table *table, std::string *problem);
// The form of the times, from the first row. False when it has none.
bool CVT_ReadForm(const std::string &row, CVT_Table *table);

struct CVT_Piece {
    const char *begin, *end;
};
// The cells of a row where they stand, quotes left out; false when a quote is not closed.
bool CVT_SplitRow(const char *begin, const char *end, char separator,
                  std::vector<CVT_Piece> *cells);
// A number as people and tools write it, with a decimal point or comma. NaN when it is none.
double CVT_Number(CVT_Piece cell);
// Seconds; since midnight or since 1970 by the form. NaN when it is no time.
double CVT_Time(const CVT_Table &table, CVT_Piece cell);

#endif
