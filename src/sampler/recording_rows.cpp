// Lines as they come: nothing here knows more of the file than its head and the clock of the row
// before.
#include "sampler/recording_rows.h"

#include "text/words.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

constexpr const char *NO_VALUES[] = {"iso", "sample"}; // columns of ours that are no values
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double DAY_S = 86400;
constexpr double NIGHT_S = DAY_S / 2; // a clock that goes back further has passed midnight
constexpr double TIME_MAX_S = 1e15;   // beyond that a double has no seconds

// The part up to the next comma, without blanks, taken off the front.
std::string CutPart(std::string *text)
{
    const size_t comma = text->find(',');
    const std::string part = WRD_Trim(text->substr(0, comma));
    *text = comma == std::string::npos ? "" : WRD_Trim(text->substr(comma + 1));
    return part;
}

} // namespace

std::string RRW_TextOf(const LBK_Line &line)
{
    return std::string(line.begin, line.end);
}

bool RRW_IsComment(const LBK_Line &line)
{
    return *line.begin == ';' || *line.begin == '#';
}

void RRW_ReadComment(const LBK_Line &line, RDR_Recording *recording, RRW_Pass *pass)
{
    std::string text(line.begin + 1, line.end);
    const std::string key = CutPart(&text);
    const double time = CVT_Number({key.data(), key.data() + key.size()});
    if (!std::isnan(time) && recording->notes.size() < RDR_NOTES_MAX) {
        RDR_Note note;
        note.time = time;
        note.kind = CutPart(&text);
        note.text = text;
        recording->notes.push_back(note);
    }
    // Of the two starts the local one is what people know.
    if (key == "local" || key == "taken" || (key == "start" && recording->start.empty()))
        recording->start = text;
    if (key != "type" && key != "unit")
        return;
    const std::string numberText = CutPart(&text);
    size_t number = 0;
    std::from_chars(numberText.data(), numberText.data() + numberText.size(), number);
    if (number < 1 || number > RDR_COLUMNS_MAX)
        return;
    pass->head.resize(std::max(pass->head.size(), number));
    (key == "type" ? pass->head[number - 1].type : pass->head[number - 1].unit) = text;
}

int RRW_ReadHead(const LBK_Line &line, const RRW_Pass &pass, RDR_Recording *recording,
                 std::string *problem)
{
    CVT_Table &table = recording->table;
    const bool isOurs = recording->isOurs;
    if (CVT_ReadColumns(RRW_TextOf(line), isOurs, &table, problem) != 0)
        return RDR_ERR_NO_TABLE;
    for (size_t cell = 0; cell < table.names.size(); ++cell) {
        const std::string &name = table.names[cell];
        const bool isNoValue = isOurs && (name == NO_VALUES[0] || name == NO_VALUES[1]);
        if (cell == table.timeCell || isNoValue || recording->columns.size() == RDR_COLUMNS_MAX)
            continue;
        const size_t number = recording->columns.size();
        RDR_Column column;
        if (number < pass.head.size())
            column = pass.head[number];
        column.name = WRD_Visible(name);
        recording->columns.push_back(column);
        recording->cellOf.push_back(cell);
    }
    if (!recording->columns.empty())
        return 0;
    *problem = "it has no column beside the times";
    return RDR_ERR_NO_TABLE;
}

bool RRW_IsCut(const LBK_Line &line, const RDR_Recording &recording)
{
    return !line.isWhole && recording.isOurs;
}

bool RRW_ReadRow(const LBK_Line &line, const RDR_Recording &recording, RRW_Pass *pass, double *time)
{
    // Others' rows may lack cells at the end; ours that do were damaged.
    const CVT_Table &table = recording.table;
    if (!CVT_SplitRow(line.begin, line.end, table.separator, &pass->cells) ||
        pass->cells.size() > table.names.size() || pass->cells.size() <= table.timeCell ||
        (recording.isOurs && pass->cells.size() != table.names.size()))
        return false;
    *time = CVT_Time(table, pass->cells[table.timeCell]);
    if (std::isnan(*time) || std::fabs(*time) > TIME_MAX_S)
        return false;
    pass->values.resize(recording.columns.size());
    for (size_t i = 0; i < recording.columns.size(); ++i) {
        const size_t cell = recording.cellOf[i];
        pass->values[i] = cell < pass->cells.size() ? CVT_Number(pass->cells[cell]) : NOT_A_NUMBER;
    }
    return true;
}

double RRW_ShownTime(const RDR_Recording &recording, double time, RRW_Clock *clock)
{
    if (recording.table.form == CVT_CLOCK) {
        // A little back is a disorder of the file; NaN, before the first row, compares as no.
        if (time + clock->dayOffset < clock->last - NIGHT_S)
            clock->dayOffset += DAY_S;
        time += clock->dayOffset;
        clock->last = time;
    }
    return time - recording.origin;
}
