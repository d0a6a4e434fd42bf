// What is in view as rows of a file: from the recording that is shown, or from what has left the
// sampler's memory and what is in it. All rows are there before the file is begun.
#include "graphs/source.h"

#include "platform/safe_file.h"
#include "scope/setup.h"
#include "text/words.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr double US_PER_S = 1e6;

// Rows of one time and a number a curve; NaN is an empty cell.
struct Table {
    std::vector<double> times;
    std::vector<std::vector<double>> values; // one a curve
};

// A round of the sampler is one sample of each curve: counted from the newest, samples of one
// round have one number, also where a curve was added later.
void CollectSamples(const GRA_Source &source, double from, double to, Table *table)
{
    const SMP_Store &store = source.sampler.store;
    uint64_t rounds = 0;
    for (const SMP_Ring &ring : store.rings)
        rounds = std::max(rounds, ring.end - ring.first);
    for (uint64_t back = rounds; back > 0; --back) {
        double time = 0, count = 0;
        std::vector<double> row(store.rings.size(), NAN);
        for (size_t i = 0; i < store.rings.size(); ++i) {
            const SMP_Ring &ring = store.rings[i];
            if (back > ring.end - ring.first)
                continue;
            const SMP_Sample sample = SMP_GetSample(store, i, ring.end - back);
            // The mean of the round's moments so far.
            time +=
                (static_cast<double>(sample.timeUs - source.originUs) / US_PER_S - time) / ++count;
            if (sample.state == SMP_GOOD)
                row[i] = SMP_Number(store.items[i], sample.bits);
        }
        if (time < from || time > to)
            continue;
        table->times.push_back(time);
        for (size_t i = 0; i < row.size() && i < table->values.size(); ++i)
            table->values[i].push_back(row[i]);
    }
}

// What has left memory stands in front of it. False when it is too much.
bool CollectPast(const GRA_Source &source, double from, double to, Table *table)
{
    double oldest = 0;
    REC_Curves rows;
    if (!GRA_FindOldest(source, &oldest) || from >= oldest)
        return true;
    if (!GRA_ReadPastRows(source.past, source.sampler.store.items, from, std::min(to, oldest),
                          GRA_EXPORT_ROWS_MAX, &rows))
        return false;
    for (size_t row = 0; row < rows.times.size(); ++row) {
        if (rows.times[row] < from || rows.times[row] > to || rows.times[row] >= oldest)
            continue;
        table->times.push_back(rows.times[row]);
        for (size_t i = 0; i < rows.values.size() && i < table->values.size(); ++i)
            table->values[i].push_back(rows.values[i][row]);
    }
    return true;
}

// Thinned rows are refused: a file of least and greatest would look like all samples.
bool CollectFile(const GRA_Source &source, double from, double to, Table *table)
{
    std::vector<size_t> columns(table->values.size());
    std::iota(columns.begin(), columns.end(), size_t{0});
    REC_Curves curves;
    if (REC_ReadCurves(source.recording, from, to, columns, GRA_EXPORT_ROWS_MAX, &curves) < 0 ||
        curves.isDecimated)
        return false;
    table->times = curves.times;
    table->values = curves.values;
    return true;
}

// A recording's head, so that the file opens as one; the numbers below are scaled already, and
// the scale is a note for people.
std::string Head(const GRA_Setup &setup)
{
    std::string head = "; Vireo2 graph, values as shown\r\n", names = "time";
    for (size_t i = 0; i < setup.curves.size(); ++i) {
        const GRA_Curve &curve = setup.curves[i];
        const std::string number = std::to_string(i + 1);
        if (!curve.unit.empty())
            head += "; unit, " + number + ", " + TXT_Visible(curve.unit) + "\r\n";
        if (curve.scale.factor != 1 || curve.scale.offset != 0)
            head += "; scale, " + number + ", " + SCP_NumberText(curve.scale.factor) + ", " +
                    SCP_NumberText(curve.scale.offset) + "\r\n";
        names += "," + TXT_QuoteCsv(curve.item.name);
    }
    return head + names + "\r\n";
}

} // namespace

int GRA_SaveCsv(const std::string &path, const GRA_Source &source, const GRA_Setup &setup,
                double from, double to, std::string *problem)
{
    Table table;
    table.values.resize(setup.curves.size());
    const bool isCollected = source.isFile ? CollectFile(source, from, to, &table)
                                           : CollectPast(source, from, to, &table);
    if (!source.isFile && isCollected)
        CollectSamples(source, from, to, &table);
    if (!isCollected) {
        *problem = "There are more than " + std::to_string(GRA_EXPORT_ROWS_MAX) +
                   " rows in view: zoom in to save them.";
        return -1;
    }
    // Text for text as it was drawn; what failed is an empty cell, and so is a curve that came
    // later.
    SafeFile safe;
    *problem = PLT_SaveFailureText(path);
    if (PLT_BeginSave(&safe, path, "wb") != 0)
        return -1;
    std::fputs(Head(setup).c_str(), safe.file);
    for (size_t row = 0; row < table.times.size(); ++row) {
        std::string line = SCP_NumberText(table.times[row]);
        for (size_t i = 0; i < table.values.size(); ++i) {
            const GRA_Scale &scale = setup.curves[i].scale;
            const double value = row < table.values[i].size() ? table.values[i][row] : NAN;
            line += ",";
            if (std::isfinite(value))
                line += SCP_NumberText(value * scale.factor + scale.offset);
        }
        std::fputs((line + "\r\n").c_str(), safe.file);
    }
    if (std::ferror(safe.file) == 0)
        return PLT_CommitSave(&safe);
    PLT_CancelSave(&safe);
    return -1;
}
