// Rows of CSV files: comma between cells, a cell with a comma or a quote stands in quotes
// and its quotes are doubled.
#ifndef TEXT_CSV_ROW_H
#define TEXT_CSV_ROW_H

#include <string>
#include <vector>

// The cells without their quotes. False, *cells undefined, when a quote is not closed or
// text follows a closing one.
bool TXT_SplitCsvRow(const std::string &row, std::vector<std::string> *cells);

#endif
