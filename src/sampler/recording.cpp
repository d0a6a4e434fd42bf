#include "sampler/recording.h"

#include "platform/plain_file.h"
#include "platform/system.h"
#include "sampler/line_blocks.h"
#include "text/words.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

constexpr const char *OUR_FIRST_LINES[] = {"; Vireo2 recording", "; Vireo2 scope"};
constexpr const char *NO_VALUES[] = {"iso", "sample"}; // columns of ours that are no values
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr float NO_FLOAT = std::numeric_limits<float>::quiet_NaN();
constexpr size_t PICTURE_NUMBERS_MAX = 4000000; // of all columns, least and greatest alike
constexpr double DAY_S = 86400;
constexpr double NIGHT_S = DAY_S / 2; // a clock that goes back further has passed midnight
constexpr int64_t PROGRESS_BYTES = 4 << 20;
constexpr double TIME_MAX_S = 1e15; // beyond that a double has no seconds

// A clock without a date begins anew at midnight: where it stood, and the days before.
struct Clock {
    double last = NOT_A_NUMBER, dayOffset = 0;
};

// Going through a file once, or through a part of it.
struct Pass {
    bool hasTable = false, hasForm = false;
    std::vector<CVT_Piece> cells;
    std::vector<double> values; // of the row, a number a column
    Clock clock;
};

std::string TextOf(const LBK_Line &line)
{
    return std::string(line.begin, line.end);
}

bool IsComment(const LBK_Line &line)
{
    return *line.begin == ';' || *line.begin == '#';
}

// The part up to the next comma, without blanks, taken off the front.
std::string TakePart(std::string *text)
{
    const size_t comma = text->find(',');
    const std::string part = WRD_Trim(text->substr(0, comma));
    *text = comma == std::string::npos ? "" : WRD_Trim(text->substr(comma + 1));
    return part;
}

struct HeadNotes { // of columns, known before the columns are
    std::vector<RDR_Column> columns;
};

// "; start, 2026-...", "; type, 1, u2", "; 12.5, marker, text".
void ReadComment(const LBK_Line &line, RDR_Recording *recording, HeadNotes *head)
{
    std::string text(line.begin + 1, line.end);
    const std::string key = TakePart(&text);
    const double time = CVT_Number({key.data(), key.data() + key.size()});
    if (!std::isnan(time) && recording->notes.size() < RDR_NOTES_MAX) {
        RDR_Note note;
        note.time = time;
        note.kind = TakePart(&text);
        note.text = text;
        recording->notes.push_back(note);
    }
    if (key == "local" || key == "taken" || (key == "start" && recording->start.empty()))
        recording->start = text;
    if (key != "type" && key != "unit")
        return;
    const std::string numberText = TakePart(&text);
    size_t number = 0;
    std::from_chars(numberText.data(), numberText.data() + numberText.size(), number);
    if (number < 1 || number > RDR_COLUMNS_MAX)
        return;
    head->columns.resize(std::max(head->columns.size(), number));
    (key == "type" ? head->columns[number - 1].type : head->columns[number - 1].unit) = text;
}

int ReadHead(const LBK_Line &line, const HeadNotes &head, RDR_Recording *recording,
             std::string *problem)

{
    CVT_Table &table = recording->table;
    const bool isOurs = recording->isOurs;
    if (CVT_ReadColumns(TextOf(line), isOurs, &table, problem) != 0)
        return RDR_ERR_NO_TABLE;
    for (size_t cell = 0; cell < table.names.size(); ++cell) {
        const std::string &name = table.names[cell];
        const bool isNoValue = isOurs && (name == NO_VALUES[0] || name == NO_VALUES[1]);
        if (cell == table.timeCell || isNoValue || recording->columns.size() == RDR_COLUMNS_MAX)
            continue;
        const size_t number = recording->columns.size();
        RDR_Column column;
        if (number < head.columns.size())
            column = head.columns[number];
        column.name = WRD_Visible(name);
        recording->columns.push_back(column);
        recording->cellOf.push_back(cell);
    }
    if (!recording->columns.empty())
        return 0;
    *problem = "it has no column beside the times";
    return RDR_ERR_NO_TABLE;
}

// The last line of a recording that was cut may end in the middle of a number.
bool IsCutRow(const LBK_Line &line, const RDR_Recording &recording)
{
    return !line.isWhole && recording.isOurs;
}

// A row's time and values. False when it is none.
bool ReadRow(const LBK_Line &line, const RDR_Recording &recording, Pass *pass, double *time)
{
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

// Seconds as they are shown.
double ShownTime(const RDR_Recording &recording, double time, Clock *clock)
{
    if (recording.table.form == CVT_CLOCK) {
        if (time + clock->dayOffset < clock->last - NIGHT_S)
            clock->dayOffset += DAY_S;
        time += clock->dayOffset;
        clock->last = time;
    }
    return time - recording.origin;
}

// --- the decimated picture -----------------------------------------------------------------
void Widen(float *least, float *greatest, float low, float high)
{
    if (std::isnan(*least) || low < *least)
        *least = low;
    if (std::isnan(*greatest) || high > *greatest)
        *greatest = high;
}

// Two stretches become one.
void HalvePicture(RDR_Recording *recording)
{
    const size_t columns = recording->columns.size();
    std::vector<RDR_Stretch> &stretches = recording->stretches;
    const size_t halved = (stretches.size() + 1) / 2;
    for (size_t to = 0; to < halved; ++to) {
        const size_t from = 2 * to;
        RDR_Stretch joined = stretches[from];
        for (size_t c = 0; c < columns; ++c) {
            recording->least[to * columns + c] = recording->least[from * columns + c];
            recording->greatest[to * columns + c] = recording->greatest[from * columns + c];
        }
        if (from + 1 < stretches.size()) {
            const RDR_Stretch &second = stretches[from + 1];
            joined.rows += second.rows;
            joined.timeMin = std::min(joined.timeMin, second.timeMin);
            joined.timeMax = std::max(joined.timeMax, second.timeMax);
            for (size_t c = 0; c < columns; ++c) {
                const float low = recording->least[(from + 1) * columns + c];
                if (!std::isnan(low))
                    Widen(&recording->least[to * columns + c],
                          &recording->greatest[to * columns + c], low,
                          recording->greatest[(from + 1) * columns + c]);
            }
        }
        stretches[to] = joined;
    }
    stretches.resize(halved);
    recording->least.resize(halved * columns);
    recording->greatest.resize(halved * columns);
    recording->rowsPerStretch *= 2;
}

size_t StretchesMax(size_t columns)
{
    return std::clamp<size_t>(PICTURE_NUMBERS_MAX / (2 * columns), 2, RDR_STRETCHES_MAX);
}

void AddRow(RDR_Recording *recording, int64_t offset, double time,
            const std::vector<double> &values, const Clock &before)
{
    const size_t columns = recording->columns.size();
    std::vector<RDR_Stretch> &stretches = recording->stretches;
    if (stretches.empty() || stretches.back().rows >= recording->rowsPerStretch) {
        if (stretches.size() >= StretchesMax(columns))
            HalvePicture(recording);
        if (stretches.empty() || stretches.back().rows >= recording->rowsPerStretch) {
            stretches.push_back({offset, 0, time, time, before.dayOffset, before.last});
            recording->least.insert(recording->least.end(), columns, NO_FLOAT);
            recording->greatest.insert(recording->greatest.end(), columns, NO_FLOAT);
        }
    }
    RDR_Stretch &stretch = stretches.back();
    ++stretch.rows;
    stretch.timeMin = std::min(stretch.timeMin, time);
    stretch.timeMax = std::max(stretch.timeMax, time);
    const size_t base = (stretches.size() - 1) * columns;
    for (size_t c = 0; c < columns; ++c)
        if (!std::isnan(values[c])) {
            const float value = static_cast<float>(values[c]);
            Widen(&recording->least[base + c], &recording->greatest[base + c], value, value);
        }
    recording->backward += recording->rows > 0 && time < recording->timeMax;
    recording->timeMin = recording->rows > 0 ? std::min(recording->timeMin, time) : time;
    recording->timeMax = recording->rows > 0 ? std::max(recording->timeMax, time) : time;
    ++recording->rows;
}

void AddLine(const LBK_Line &line, Pass *pass, RDR_Recording *recording)
{
    double time = 0;
    const bool isCut = IsCutRow(line, *recording);
    recording->isCut = recording->isCut || isCut;
    if (!pass->hasForm && !line.isTooLong)
        pass->hasForm = CVT_ReadForm(TextOf(line), &recording->table);
    if (isCut || line.isTooLong || !pass->hasForm || !ReadRow(line, *recording, pass, &time)) {
        recording->badLines += !isCut;
        return;
    }
    if (recording->rows == 0 && recording->table.form != CVT_NUMBER) {
        const CVT_Piece cell = pass->cells[recording->table.timeCell];
        recording->origin = time;
        if (recording->start.empty())
            recording->start = WRD_Visible(std::string(cell.begin, cell.end));
    }
    const Clock before = pass->clock;
    AddRow(recording, line.offset, ShownTime(*recording, time, &pass->clock), pass->values, before);
}

int GoThrough(std::FILE *file, int64_t size, RDR_Recording *recording, std::string *problem,
              RDR_Progress progress, void *context)
{
    LBK_Reader reader;
    LBK_Line line;
    HeadNotes head;
    Pass pass;
    int64_t told = 0;
    bool isFirst = true;
    LBK_Start(&reader, file, 0);
    while (LBK_Next(&reader, RDR_LINE_MAX, &line)) {
        recording->end = line.offset + (line.end - line.begin);
        if (progress != nullptr && recording->end - told >= PROGRESS_BYTES) {
            told = recording->end;
            if (!progress(context, static_cast<int>(std::min<int64_t>(100 * told / size, 100)))) {
                *problem = "cancelled";
                return RDR_ERR_CANCELLED;
            }
        }
        if (isFirst && line.end - line.begin >= 3 &&
            std::memcmp(line.begin, "\xEF\xBB\xBF", 3) == 0)
            line.begin += 3; // the mark of UTF-8
        for (const char *ours : OUR_FIRST_LINES)
            if (isFirst && TextOf(line).compare(0, std::strlen(ours), ours) == 0)
                recording->isOurs = true;
        isFirst = false;
        if (line.begin == line.end)
            continue;
        if (IsComment(line)) {
            ReadComment(line, recording, &head);
            continue;
        }
        if (!pass.hasTable) {
            pass.hasTable = true;
            const int result = ReadHead(line, head, recording, problem);
            if (result != 0)
                return result;
            if (recording->table.hasNames) // else this line is a row already
                continue;
        }
        AddLine(line, &pass, recording);
    }
    // One of ours may have been ended before its first row.
    if (recording->rows > 0 || (recording->isOurs && pass.hasTable))
        return 0;
    *problem = pass.hasTable ? "it has no rows" : "it is no table";
    return RDR_ERR_NO_TABLE;
}

// --- reading back --------------------------------------------------------------------------
struct Curves {
    RDR_Curves *out;
    const std::vector<size_t> *columns;
    uint64_t rowsPerPair = 0; // of points; 0: every row is a point
    uint64_t rowsInPair = 0;
    double timeMin = 0, timeMax = 0;
    std::vector<double> low, high;
};

void AddPoint(RDR_Curves *curves, double time, const std::vector<double> &values)
{
    curves->times.push_back(time);
    for (size_t i = 0; i < values.size(); ++i)
        curves->values[i].push_back(values[i]);
}

void EndPair(Curves *curves)
{
    if (curves->rowsInPair == 0)
        return;
    AddPoint(curves->out, curves->timeMin, curves->low);
    AddPoint(curves->out, curves->timeMax, curves->high);
    curves->rowsInPair = 0;
}

void AddToPair(Curves *curves, double timeMin, double timeMax, uint64_t rows,
               const std::vector<double> &low, const std::vector<double> &high)
{
    if (curves->rowsInPair == 0) {
        curves->timeMin = timeMin;
        curves->timeMax = timeMax;
        curves->low = low;
        curves->high = high;
    }
    curves->timeMin = std::min(curves->timeMin, timeMin);
    curves->timeMax = std::max(curves->timeMax, timeMax);
    for (size_t i = 0; i < low.size(); ++i) {
        curves->low[i] = std::fmin(curves->low[i], low[i]); // NaN gives way
        curves->high[i] = std::fmax(curves->high[i], high[i]);
    }
    curves->rowsInPair += rows;
    if (curves->rowsInPair >= curves->rowsPerPair)
        EndPair(curves);
}

bool IsWithin(const RDR_Stretch &stretch, double from, double to)
{
    return stretch.timeMax >= from && stretch.timeMin <= to;
}

void CopyPicture(const RDR_Recording &recording, size_t first, size_t last, Curves *curves)
{
    const size_t columns = recording.columns.size();
    std::vector<double> low(curves->columns->size()), high(low.size());
    for (size_t s = first; s <= last; ++s) {
        for (size_t i = 0; i < low.size(); ++i) {
            low[i] = static_cast<double>(recording.least[s * columns + (*curves->columns)[i]]);
            high[i] = static_cast<double>(recording.greatest[s * columns + (*curves->columns)[i]]);
        }
        const RDR_Stretch &stretch = recording.stretches[s];
        AddToPair(curves, stretch.timeMin, stretch.timeMax, stretch.rows, low, high);
    }
}

int CopyRows(std::FILE *file, const RDR_Recording &recording, size_t first, size_t last,
             Curves *curves, RDR_Progress progress, void *context)
{
    const bool isLast = last + 1 == recording.stretches.size();
    const int64_t begin = recording.stretches[first].offset;
    const int64_t end = isLast ? recording.end : recording.stretches[last + 1].offset;
    LBK_Reader reader;
    LBK_Line line;
    Pass pass;
    if (!LBK_Start(&reader, file, begin))
        return RDR_ERR_OPEN;
    pass.clock = {recording.stretches[first].clockBefore, recording.stretches[first].dayOffset};
    std::vector<double> values(curves->columns->size());
    int64_t told = begin;
    while (LBK_Next(&reader, RDR_LINE_MAX, &line) && line.offset < end) {
        if (progress != nullptr && line.offset - told >= PROGRESS_BYTES) {
            told = line.offset;
            if (!progress(context, static_cast<int>(100 * (told - begin) / (end - begin))))
                return RDR_ERR_CANCELLED;
        }
        double time = 0;
        if (IsComment(line) || line.isTooLong || IsCutRow(line, recording) ||
            !ReadRow(line, recording, &pass, &time))
            continue;
        time = ShownTime(recording, time, &pass.clock);
        for (size_t i = 0; i < values.size(); ++i)
            values[i] = pass.values[(*curves->columns)[i]];
        if (curves->rowsPerPair == 0)
            AddPoint(curves->out, time, values);
        else
            AddToPair(curves, time, time, 1, values, values);
    }
    return 0;
}

} // namespace

int RDR_Open(const std::string &path, RDR_Recording *recording, std::string *problem,
             RDR_Progress progress, void *context)
{
    std::FILE *file = nullptr;
    int64_t size = 0;
    const int result = PLT_OpenPlainFile(path, &file, &size);
    if (result != 0) {
        *problem = path + ": " + PLF_ErrorText(result) + ".";
        return RDR_ERR_OPEN;
    }
    RDR_Recording opened;
    opened.path = path;
    const int read =
        GoThrough(file, std::max<int64_t>(size, 1), &opened, problem, progress, context);
    std::fclose(file);
    if (read != 0) {
        *problem = path + ": " + *problem + ".";
        return read;
    }
    *recording = std::move(opened);
    return 0;
}

int RDR_Read(const RDR_Recording &recording, double from, double to,
             const std::vector<size_t> &columns, size_t pointsMax, RDR_Curves *curves,
             RDR_Progress progress, void *context)
{
    *curves = RDR_Curves();
    curves->values.resize(columns.size());
    size_t first = recording.stretches.size(), last = 0;
    uint64_t rows = 0;
    for (size_t s = 0; s < recording.stretches.size(); ++s)
        if (IsWithin(recording.stretches[s], from, to)) {
            first = std::min(first, s);
            last = s;
        }
    if (first == recording.stretches.size())
        return 0;
    for (size_t s = first; s <= last; ++s)
        rows += recording.stretches[s].rows;
    const uint64_t pairs = std::max<size_t>(pointsMax / 2, 1);
    Curves work;
    work.out = curves;
    work.columns = &columns;
    work.rowsPerPair = rows <= pointsMax ? 0 : (rows + pairs - 1) / pairs;
    curves->isDecimated = work.rowsPerPair != 0;
    int result = 0;
    // The picture will do where it is as fine as what is wanted.
    if (curves->isDecimated && recording.rowsPerStretch <= work.rowsPerPair) {
        CopyPicture(recording, first, last, &work);
    } else {
        std::FILE *file = nullptr;
        int64_t size = 0;
        if (PLT_OpenPlainFile(recording.path, &file, &size) != 0)
            return RDR_ERR_OPEN;
        result = CopyRows(file, recording, first, last, &work, progress, context);
        std::fclose(file);
    }
    EndPair(&work);
    return result;
}
