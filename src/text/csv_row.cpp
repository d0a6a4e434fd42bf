// One pass over the row: a cell ends at its comma, or at its closing quote, behind which only a
// comma or the end may stand.
#include "text/csv_row.h"

bool TXT_SplitCsvRow(const std::string &row, std::vector<std::string> *cells)
{
    cells->clear();
    size_t at = 0;
    for (;;) {
        std::string cell;
        if (at < row.size() && row[at] == '"') {
            bool isClosed = false;
            for (++at; at < row.size() && !isClosed; ++at) {
                const bool isDoubled = row[at] == '"' && row.compare(at, 2, "\"\"") == 0;
                isClosed = row[at] == '"' && !isDoubled;
                if (!isClosed)
                    cell += row[at];
                at += isDoubled ? 1 : 0; // two quotes are one of the text
            }
            if (!isClosed || (at < row.size() && row[at] != ','))
                return false;
        } else {
            const size_t comma = row.find(',', at);
            cell = row.substr(at, comma == std::string::npos ? comma : comma - at);
            at = comma == std::string::npos ? row.size() : comma;
        }
        cells->push_back(cell);
        if (at >= row.size())
            return true;
        ++at; // the comma; behind a last one stands an empty cell
        if (at == row.size()) {
            cells->push_back("");
            return true;
        }
    }
}
