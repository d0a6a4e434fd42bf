// Reading a part of a recording back: from its picture where that is fine enough, else from
// the file. Points come in pairs, least and greatest of so many rows, with the times of the first
// and the last of them: drawn, the stroke covers what the rows covered.
#include "platform/plain_file.h"
#include "platform/system.h"
#include "sampler/recording.h"
#include "sampler/recording_rows.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int64_t PROGRESS_BYTES = 4 << 20;

struct Curves {
    REC_Curves *out;
    const std::vector<size_t> *columns;
    uint64_t rowsPerPair = 0; // of points; 0: every row is a point
    uint64_t rowsInPair = 0;
    double timeMin = 0, timeMax = 0;
    std::vector<double> low, high;
};

void AddPoint(REC_Curves *curves, double time, const std::vector<double> &values)
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

// The stretches between two times, and how many rows they have.
uint64_t FindStretches(const REC_Recording &recording, double from, double to, size_t *first,
                       size_t *last)
{
    *first = recording.stretches.size();
    *last = 0;
    // All are looked at: times of a foreign file may go back.
    for (size_t s = 0; s < recording.stretches.size(); ++s) {
        const REC_Stretch &stretch = recording.stretches[s];
        if (stretch.timeMax < from || stretch.timeMin > to)
            continue;
        *first = std::min(*first, s);
        *last = s;
    }
    uint64_t rows = 0;
    for (size_t s = *first; s <= *last && s < recording.stretches.size(); ++s)
        rows += recording.stretches[s].rows;
    return rows;
}

void CopyPicture(const REC_Recording &recording, size_t first, size_t last, Curves *curves)
{
    const size_t columns = recording.columns.size();
    std::vector<double> low(curves->columns->size()), high(low.size());
    for (size_t s = first; s <= last; ++s) {
        for (size_t i = 0; i < low.size(); ++i) {
            low[i] = static_cast<double>(recording.least[s * columns + (*curves->columns)[i]]);
            high[i] = static_cast<double>(recording.greatest[s * columns + (*curves->columns)[i]]);
        }
        const REC_Stretch &stretch = recording.stretches[s];
        AddToPair(curves, stretch.timeMin, stretch.timeMax, stretch.rows, low, high);
    }
}

int CopyRows(std::FILE *file, const REC_Recording &recording, size_t first, size_t last,
             Curves *curves, REC_ReadProgress progress, void *context)
{
    const bool isLast = last + 1 == recording.stretches.size();
    const int64_t begin = recording.stretches[first].offset;
    const int64_t end = isLast ? recording.end : recording.stretches[last + 1].offset;
    REC_LineReader reader;
    REC_FileLine line;
    REC_RowPass pass;
    if (!REC_StartLines(&reader, file, begin))
        return REC_READ_ERR_OPEN;
    // The clock as it stood in front of this stretch: midnights before it are not seen here.
    pass.clock = {recording.stretches[first].clockBefore, recording.stretches[first].dayOffset};
    std::vector<double> values(curves->columns->size());
    int64_t told = begin;
    while (REC_NextLine(&reader, REC_LINE_MAX, &line) && line.offset < end) {
        if (progress != nullptr && line.offset - told >= PROGRESS_BYTES) {
            told = line.offset;
            if (!progress(context, static_cast<int>(100 * (told - begin) / (end - begin))))
                return REC_READ_ERR_CANCELLED;
        }
        double time = 0;
        if (REC_IsComment(line) || line.isTooLong || REC_IsCutRow(line, recording) ||
            !REC_ReadRow(line, recording, &pass, &time))
            continue;
        time = REC_ShownTime(recording, time, &pass.clock);
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

uint64_t REC_CountRows(const REC_Recording &recording, double from, double to)
{
    size_t first = 0, last = 0;
    return FindStretches(recording, from, to, &first, &last);
}

int REC_ReadCurves(const REC_Recording &recording, double from, double to,
                   const std::vector<size_t> &columns, size_t pointsMax, REC_Curves *curves,
                   REC_ReadProgress progress, void *context)
{
    *curves = REC_Curves();
    curves->values.resize(columns.size());
    size_t first = 0, last = 0;
    const uint64_t rows = FindStretches(recording, from, to, &first, &last);
    if (rows == 0)
        return 0;
    const uint64_t pairs = std::max<size_t>(pointsMax / 2, 1);
    Curves work;
    work.out = curves;
    work.columns = &columns;
    // Rounded up, so that there are never more points than were asked for.
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
            return REC_READ_ERR_OPEN;
        result = CopyRows(file, recording, first, last, &work, progress, context);
        std::fclose(file);
    }
    EndPair(&work);
    return result;
}
