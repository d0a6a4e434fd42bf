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
    const std::string part = TXT_Trim(text->substr(0, comma));
    *text = comma == std::string::npos ? "" : TXT_Trim(text->substr(comma + 1));
    return part;
}

} // namespace

std::string REC_TextOf(const REC_FileLine &line)
{
    return std::string(line.begin, line.end);
}

bool REC_IsComment(const REC_FileLine &line)
{
    return *line.begin == ';' || *line.begin == '#';
}

void REC_ReadComment(const REC_FileLine &line, REC_Recording *recording, REC_RowPass *pass)
{
    std::string text(line.begin + 1, line.end);
    const std::string key = CutPart(&text);
    const double time = REC_ParseCellNumber({key.data(), key.data() + key.size()});
    if (!std::isnan(time) && recording->notes.size() < REC_NOTES_MAX) {
        REC_Note note;
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
    if (number < 1 || number > REC_COLUMNS_MAX)
        return;
    pass->head.resize(std::max(pass->head.size(), number));
    (key == "type" ? pass->head[number - 1].type : pass->head[number - 1].unit) = text;
}

int REC_ReadHead(const REC_FileLine &line, const REC_RowPass &pass, REC_Recording *recording,
                 std::string *problem)
{
    REC_Table &table = recording->table;
    const bool isOurs = recording->isOurs;
    if (REC_ReadTableColumns(REC_TextOf(line), isOurs, &table, problem) != 0)
        return REC_READ_ERR_NO_TABLE;
    for (size_t cell = 0; cell < table.names.size(); ++cell) {
        const std::string &name = table.names[cell];
        const bool isNoValue = isOurs && (name == NO_VALUES[0] || name == NO_VALUES[1]);
        if (cell == table.timeCell || isNoValue || recording->columns.size() == REC_COLUMNS_MAX)
            continue;
        const size_t number = recording->columns.size();
        REC_Column column;
        if (number < pass.head.size())
            column = pass.head[number];
        column.name = TXT_Visible(name);
        recording->columns.push_back(column);
        recording->cellOf.push_back(cell);
    }
    if (!recording->columns.empty())
        return 0;
    *problem = "it has no column beside the times";
    return REC_READ_ERR_NO_TABLE;
}

bool REC_IsCutRow(const REC_FileLine &line, const REC_Recording &recording)
{
    return !line.isWhole && recording.isOurs;
}

bool REC_ReadRow(const REC_FileLine &line, const REC_Recording &recording, REC_RowPass *pass,
                 double *time)
{
    // Others' rows may lack cells at the end; ours that do were damaged.
    const REC_Table &table = recording.table;
    if (!REC_SplitTableRow(line.begin, line.end, table.separator, &pass->cells) ||
        pass->cells.size() > table.names.size() || pass->cells.size() <= table.timeCell ||
        (recording.isOurs && pass->cells.size() != table.names.size()))
        return false;
    *time = REC_ParseCellTime(table, pass->cells[table.timeCell]);
    if (std::isnan(*time) || std::fabs(*time) > TIME_MAX_S)
        return false;
    pass->values.resize(recording.columns.size());
    for (size_t i = 0; i < recording.columns.size(); ++i) {
        const size_t cell = recording.cellOf[i];
        pass->values[i] =
            cell < pass->cells.size() ? REC_ParseCellNumber(pass->cells[cell]) : NOT_A_NUMBER;
    }
    return true;
}

double REC_ShownTime(const REC_Recording &recording, double time, REC_RowClock *clock)
{
    if (recording.table.form == REC_TIME_CLOCK) {
        // A little back is a disorder of the file; NaN, before the first row, compares as no.
        if (time + clock->dayOffset < clock->last - NIGHT_S)
            clock->dayOffset += DAY_S;
        time += clock->dayOffset;
        clock->last = time;
    }
    return time - recording.origin;
}
