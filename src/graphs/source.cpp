#include "graphs/source.h"

#include "platform/system.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr int COLUMNS = 1200;       // of the picture's width; a screen has hardly more
constexpr int COARSE_COLUMNS = 300; // of what lies beyond it on either side
constexpr double US_PER_S = 1e6, ROUNDING_US = 2;
constexpr double PAUSE_ROUNDS = 3;                // without a sample: nothing was sampled there
constexpr size_t STORE_BYTES = size_t{400} << 20; // all curves together
constexpr size_t MEASURED_ROWS_MAX = 200000;

int64_t NowUs()
{
    return static_cast<int64_t>(PLT_TickUs());
}

// --- what the sampler tells -----------------------------------------------------------------

void PutRow(void *context, const SMP_Sampler &sampler, const SMP_Row &row)
{
    auto *source = static_cast<GRS_Source *>(context);
    source->isFresh = true;
    if (source->recorder.isOpen &&
        REC_PutRow(&source->recorder, row.timeUs, row.samples, sampler.store) < 0)
        source->message = source->recorder.problem;
}

void Flush(void *context)
{
    auto *source = static_cast<GRS_Source *>(context);
    if (source->recorder.isOpen && REC_Flush(&source->recorder, NowUs()) < 0)
        source->message = source->recorder.problem;
}

void PutMessage(void *context, const std::string &text)
{
    static_cast<GRS_Source *>(context)->message = text;
}

std::vector<SMP_Item> ItemsOf(const GRA_Setup &setup)
{
    std::vector<SMP_Item> items;
    for (const GRA_Curve &curve : setup.curves) {
        items.push_back(curve.item);
        items.back().unit = curve.unit;
    }
    return items;
}

// --- points ---------------------------------------------------------------------------------

// Behind what is there already: stretches overlap by a sample.
void Append(const std::vector<double> &times, const std::vector<double> &values, double from,
            double to, GRS_Points *points)
{
    for (size_t i = 0; i < times.size(); ++i) {
        if (times[i] < from || times[i] > to ||
            (!points->times.empty() && times[i] <= points->times.back()))
            continue;
        points->times.push_back(times[i]);
        points->values.push_back(values[i]);
    }
}

// When the oldest round in memory was sampled, as a recording has it: the middle of the round, in
// whole microseconds. False while nothing has fallen out.
bool FindOldest(const GRS_Source &source, double *seconds)
{
    const SMP_Store &store = source.sampler.store;
    int64_t firstUs = INT64_MAX, lastUs = INT64_MIN;
    for (size_t i = 0; i < store.rings.size(); ++i) {
        const SMP_Ring &ring = store.rings[i];
        if (ring.first == 0 || ring.first == ring.end)
            continue;
        const int64_t timeUs = SST_Get(store, i, ring.first).timeUs;
        firstUs = std::min(firstUs, timeUs);
        lastUs = std::max(lastUs, timeUs);
    }
    if (firstUs > lastUs)
        return false;
    // Less a little: this very round is not to come from the recording, too.
    *seconds =
        (static_cast<double>(firstUs + (lastUs - firstUs) / 2 - source.originUs) - ROUNDING_US) /
        US_PER_S;
    return true;
}

// The recording is read anew only when more has fallen out of memory than it knew of.
bool ReadPast(GRS_Past *past, double oldest)
{
    if (past->path.empty())
        return false;
    std::string problem;
    if (!past->isRead || past->begin + past->recording.timeMax < oldest)
        past->isRead = RDR_Open(past->path, &past->recording, &problem) == 0;
    return past->isRead;
}

// A stretch of one recorded column behind what is there already.
void AppendPast(const GRS_Past &past, size_t column, const GRH_Scale &scale, double from, double to,
                size_t pointsMax, GRS_Points *points)
{
    RDR_Curves read;
    if (from >= to || RDR_Read(past.recording, from - past.begin, to - past.begin, {column},
                               pointsMax, &read) < 0)
        return;
    for (double &time : read.times)
        time += past.begin;
    for (double &value : read.values[0])
        value = value * scale.factor + scale.offset;
    Append(read.times, read.values[0], -INFINITY, to, points);
}

// What lies before the oldest sample in memory. Columns are found by their names: others may
// have come since.
void DrawPast(GRS_Source *source, const GRA_Setup &setup, double from, double to,
              std::vector<GRS_Points> *curves)
{
    double oldest = 0;
    if (!FindOldest(*source, &oldest) || !ReadPast(&source->past, oldest))
        return;
    const GRS_Past &past = source->past;
    const double low = std::clamp(from - (to - from), past.begin, oldest);
    const double high = std::clamp(to + (to - from), past.begin, oldest);
    for (size_t i = 0; i < curves->size(); ++i) {
        const std::vector<RDR_Column> &columns = past.recording.columns;
        const auto column =
            std::find_if(columns.begin(), columns.end(), [&](const RDR_Column &one) {
                return one.name == setup.curves[i].item.name;
            });
        if (column == columns.end())
            continue;
        const auto index = static_cast<size_t>(column - columns.begin());
        const GRH_Scale &scale = setup.curves[i].scale;
        AppendPast(past, index, scale, past.begin, low, 2 * COARSE_COLUMNS, &(*curves)[i]);
        AppendPast(past, index, scale, low, high, 6 * COLUMNS, &(*curves)[i]);
        AppendPast(past, index, scale, high, oldest, 2 * COARSE_COLUMNS, &(*curves)[i]);
    }
}

void DrawSampled(const GRS_Source &source, const GRA_Setup &setup, double from, double to,
                 std::vector<GRS_Points> *curves)
{
    double first = 0, last = 0;
    GRS_GetExtent(source, &first, &last);
    FindOldest(source, &first);
    const double width = to - from;
    const SMP_Totals &totals = source.sampler.totals;
    const double roundS = totals.rows > 0 ? static_cast<double>(totals.elapsedUs) / US_PER_S /
                                                static_cast<double>(totals.rows)
                                          : 0;
    const double pauseS =
        std::max({1.0, PAUSE_ROUNDS * roundS, PAUSE_ROUNDS * setup.periodMs / 1e3});
    const struct {
        double from, to;
        int columns;
    } stretches[] = {{first, from - width, COARSE_COLUMNS},
                     {from - width, to + width, 3 * COLUMNS},
                     {to + width, last, COARSE_COLUMNS}};
    for (size_t i = 0; i < curves->size() && i < source.indexes.size(); ++i) {
        for (const auto &stretch : stretches) {
            std::vector<double> times, values;
            if (stretch.from < stretch.to)
                GRH_Draw(source.sampler.store, i, source.indexes[i], source.originUs, stretch.from,
                         stretch.to, stretch.columns, pauseS, setup.curves[i].scale, &times,
                         &values);
            Append(times, values, -INFINITY, INFINITY, &(*curves)[i]);
        }
    }
}

int DrawFile(const GRS_Source &source, const GRA_Setup &setup, double from, double to,
             std::vector<GRS_Points> *curves)
{
    std::vector<size_t> columns(curves->size());
    std::iota(columns.begin(), columns.end(), size_t{0});
    const RDR_Recording &recording = source.recording;
    RDR_Curves whole, fine;
    int result = RDR_Read(recording, recording.timeMin, recording.timeMax, columns,
                          2 * COARSE_COLUMNS, &whole);
    const double low = from - (to - from), high = to + (to - from);
    if (result == 0 && whole.isDecimated)
        result = RDR_Read(recording, low, high, columns, 6 * COLUMNS, &fine);
    if (result < 0)
        return result;
    for (size_t i = 0; i < curves->size(); ++i) {
        GRS_Points &points = (*curves)[i];
        const bool isFine = !fine.times.empty();
        Append(whole.times, whole.values[i], -INFINITY, isFine ? low : INFINITY, &points);
        if (isFine) {
            Append(fine.times, fine.values[i], low, high, &points);
            Append(whole.times, whole.values[i], high, INFINITY, &points);
        }
        for (double &value : points.values)
            value = value * setup.curves[i].scale.factor + setup.curves[i].scale.offset;
    }
    return 0;
}

} // namespace

int GRS_Start(GRS_Source *source, const GRA_Setup &setup)
{
    const std::vector<SMP_Item> items = ItemsOf(setup);
    source->isFile = false;
    if (source->sampler.isRunning && source->sampler.periodMs == setup.periodMs) {
        const int result = SMP_Change(&source->sampler, items);
        source->indexes.assign(items.size(), GRH_Index());
        if (result == 0 && source->recorder.isOpen &&
            REC_ChangeItems(&source->recorder, items, NowUs()) < 0)
            source->message = source->recorder.problem;
        return result;
    }
    const SMP_Listener listener = {source, PutRow, Flush, PutMessage};
    const size_t samples = std::min(source->samplesMax, STORE_BYTES / (SST_BYTES_PER_SAMPLE + 1) /
                                                            std::max<size_t>(1, items.size()));
    source->markers.clear();
    source->past = GRS_Past();
    source->indexes.assign(items.size(), GRH_Index());
    source->originUs = NowUs();
    return SMP_Start(&source->sampler, items, setup.periodMs, listener, samples);
}

void GRS_Stop(GRS_Source *source)
{
    if (source->sampler.isRunning)
        SMP_Stop(&source->sampler);
    if (source->recorder.isOpen && REC_Close(&source->recorder) < 0)
        source->message = source->recorder.problem;
}

int GRS_Record(GRS_Source *source, const REC_Options &options)
{
    const int64_t nowUs = NowUs();
    const int result = REC_Open(&source->recorder, options, source->sampler.store.items, nowUs);
    if (result < 0)
        return result;
    source->past = GRS_Past();
    source->past.path = source->recorder.path;
    source->past.begin = static_cast<double>(nowUs - source->originUs) / US_PER_S;
    return 0;
}

int64_t GRS_Step(GRS_Source *source)
{
    const int64_t waitUs = SMP_Step(&source->sampler);
    for (size_t i = 0; source->isFresh && i < source->indexes.size(); ++i)
        GRH_Update(source->sampler.store, i, &source->indexes[i]);
    return waitUs;
}

double GRS_Now(const GRS_Source &source)
{
    return static_cast<double>(NowUs() - source.originUs) / US_PER_S;
}

int GRS_Mark(GRS_Source *source, double time, const std::string &text)
{
    source->markers.push_back({time, text});
    if (!source->recorder.isOpen)
        return 0;
    const int64_t timeUs = source->originUs + std::llround(time * US_PER_S);
    return REC_PutNote(&source->recorder, timeUs, "marker", text);
}

bool GRS_GetExtent(const GRS_Source &source, double *from, double *to)
{
    if (source.isFile) {
        *from = source.recording.timeMin;
        *to = source.recording.timeMax;
        return source.recording.rows > 0;
    }
    bool isThere = false;
    const SMP_Store &store = source.sampler.store;
    for (size_t i = 0; i < store.rings.size(); ++i) {
        const SMP_Ring &ring = store.rings[i];
        if (ring.first == ring.end)
            continue;
        const auto seconds = [&](uint64_t number) {
            return static_cast<double>(SST_Get(store, i, number).timeUs - source.originUs) /
                   US_PER_S;
        };
        const double first = seconds(ring.first), last = seconds(ring.end - 1);
        *from = isThere ? std::min(*from, first) : first;
        *to = isThere ? std::max(*to, last) : last;
        isThere = true;
    }
    double oldest = 0;
    if (!source.past.path.empty() && FindOldest(source, &oldest))
        *from = std::min(*from, source.past.begin);
    return isThere;
}

int GRS_Draw(GRS_Source *source, const GRA_Setup &setup, double from, double to,
             std::vector<GRS_Points> *curves)
{
    curves->assign(setup.curves.size(), GRS_Points());
    if (source->isFile)
        return DrawFile(*source, setup, from, to, curves);
    DrawPast(source, setup, from, to, curves);
    DrawSampled(*source, setup, from, to, curves);
    return 0;
}

int GRS_Measure(GRS_Source *source, const GRA_Setup &setup, double from, double to,
                std::vector<GRH_Measures> *measures)
{
    measures->assign(setup.curves.size(), GRH_Measures());
    double oldest = 0;
    if (!source->isFile) {
        if (FindOldest(*source, &oldest) && from < oldest)
            return -1;
        for (size_t i = 0; i < source->indexes.size() && i < measures->size(); ++i)
            (*measures)[i] = GRH_Measure(source->sampler.store, i, source->indexes[i],
                                         source->originUs, from, to, setup.curves[i].scale);
        return 0;
    }
    std::vector<size_t> columns(setup.curves.size());
    std::iota(columns.begin(), columns.end(), size_t{0});
    RDR_Curves rows;
    const int result = RDR_Read(source->recording, from, to, columns, MEASURED_ROWS_MAX, &rows);
    // Extremes alone have no mean.
    if (result < 0 || rows.isDecimated)
        return result < 0 ? result : -1;
    for (size_t i = 0; i < columns.size(); ++i) {
        for (double &value : rows.values[i])
            value = value * setup.curves[i].scale.factor + setup.curves[i].scale.offset;
        (*measures)[i] = GRH_MeasureCurve(rows.times, rows.values[i], from, to);
    }
    return 0;
}
