// The points of a graph's picture: from the sampler's memory, from what has left it, or from a
// recording. A live picture costs what has come since the last one, one that stands what can be
// seen of it; neither looks at every sample of a day.
#include "graphs/source.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr int COLUMNS = 1200;       // of the picture's width; a screen has hardly more
constexpr int COARSE_COLUMNS = 300; // of what lies beyond it on either side
constexpr double COLUMN_STEP = 1.4142135623730951; // widths of live columns, from one to the next
constexpr double LIVE_MARGIN = 0.5;     // of the width in view: fine points to the left of it
constexpr double FILE_MARGIN = 0.5;     // likewise of a recording, on either side
constexpr double RENEWED_SHARE = 0.004; // of a history: so much of its end may be fine, still
constexpr double PAUSE_ROUNDS = 3;      // without a sample: nothing was sampled there
constexpr double PAUSE_MIN_S = 1;
constexpr double US_PER_S = 1e6;

// Of a recording, behind what is there already, from <= time < to: its times need not rise.
void AppendRead(const std::vector<double> &times, const std::vector<double> &values, double from,
                double to, const GRA_Scale &scale, GRA_Points *points)
{
    for (size_t i = 0; i < times.size(); ++i) {
        if (times[i] < from || times[i] >= to ||
            (!points->times.empty() && times[i] <= points->times.back()))
            continue;
        points->times.push_back(times[i]);
        points->values.push_back(values[i] * scale.factor + scale.offset);
    }
}

// Of memory: its times rise, stretches overlap by a sample.
void Append(const GRA_Points &more, double from, double to, GRA_Points *points)
{
    const std::vector<double> &times = more.times;
    auto begin = std::lower_bound(times.begin(), times.end(), from);
    if (!points->times.empty())
        begin = std::upper_bound(begin, times.end(), points->times.back());
    const auto end = std::lower_bound(begin, times.end(), to);
    const auto valueAt = [&](auto place) { return more.values.begin() + (place - times.begin()); };
    points->values.insert(points->values.end(), valueAt(begin), valueAt(end));
    points->times.insert(points->times.end(), begin, end);
}

// --- what has left memory -------------------------------------------------------------------

void AppendPast(const std::vector<GRA_Points> *past, const GRA_Setup &setup, double from, double to,
                std::vector<GRA_Points> *curves)
{
    for (size_t i = 0; past != nullptr && from < to && i < curves->size(); ++i)
        AppendRead((*past)[i].times, (*past)[i].values, from, to, setup.curves[i].scale,
                   &(*curves)[i]);
}

// Up to the oldest sample in memory.
void DrawPast(GRA_Source *source, const GRA_Setup &setup, double from, double to,
              std::vector<GRA_Points> *curves)
{
    GRA_Past *past = &source->past;
    double begin = 0, end = 0, oldest = 0;
    if (!GRA_FindOldest(*source, &oldest) || !GRA_GetPastExtent(*past, &begin, &end))
        return;
    const std::vector<SMP_Item> &items = source->sampler.store.items;
    const double low = std::clamp(from - (to - from), begin, std::max(begin, oldest));
    const double high = std::clamp(to + (to - from), begin, std::max(begin, oldest));
    AppendPast(GRA_ReadWholePast(past, items, 2 * COARSE_COLUMNS), setup, begin, low, curves);
    if (low < high)
        AppendPast(GRA_ReadPastFine(past, items, low, high, 6 * COLUMNS), setup, low, high, curves);
    AppendPast(GRA_ReadWholePast(past, items, 2 * COARSE_COLUMNS), setup, high, oldest, curves);
}

// --- the sampler's memory -------------------------------------------------------------------

void DrawStretch(const GRA_Source &source, const GRA_Setup &setup, size_t curve, double from,
                 double to, double columnS, GRA_Points *points)
{
    if (from >= to)
        return;
    // Where nothing was sampled for some rounds, and a second at least, the curve breaks. As fast
    // as the line allows there is no period: then by what a round has taken on the average.
    const SMP_Totals &totals = source.sampler.totals;
    const double roundS = totals.rows > 0 ? static_cast<double>(totals.elapsedUs) / US_PER_S /
                                                static_cast<double>(totals.rows)
                                          : 0;
    const double pauseS =
        std::max({PAUSE_MIN_S, PAUSE_ROUNDS * roundS, PAUSE_ROUNDS * setup.periodMs / 1e3});
    GRA_DrawHistory(source.sampler.store, curve, source.indexes[curve], source.originUs, from, to,
                    columnS, pauseS, setup.curves[curve].scale, points);
}

// Of a picture that stands: finely as wide again on either side.
void DrawStill(const GRA_Source &source, const GRA_Setup &setup, double first, double from,
               double to, double last, std::vector<GRA_Points> *curves)
{
    const double width = to - from;
    const struct {
        double from, to;
        int columns;
    } stretches[] = {{first, from - width, COARSE_COLUMNS},
                     {from - width, to + width, 3 * COLUMNS},
                     {to + width, last, COARSE_COLUMNS}};
    for (size_t i = 0; i < curves->size(); ++i)
        for (const auto &stretch : stretches) {
            GRA_Points points;
            const double columnS = GRA_ColumnS(source.sampler.store, i, source.originUs,
                                               stretch.from, stretch.to, stretch.columns);
            DrawStretch(source, setup, i, stretch.from, stretch.to, columnS, &points);
            Append(points, -INFINITY, INFINITY, &(*curves)[i]);
        }
}

// Columns of few widths, so that a view that grows with time keeps them for long. 0: every
// sample.
double LiveColumnS(const GRA_Source &source, double from, double to, double before)
{
    double wanted = 0;
    for (size_t i = 0; i < source.indexes.size(); ++i)
        wanted = std::max(wanted, GRA_ColumnS(source.sampler.store, i, source.originUs, from, to,
                                              before > 0 ? COLUMNS / 2 : COLUMNS));
    if (wanted <= 0)
        return 0;
    const double column = (to - from) / COLUMNS;
    return std::pow(COLUMN_STEP, std::floor(std::log(column) / std::log(COLUMN_STEP)));
}

// What is behind the border anew, coarsely; in front of it everything is to be drawn.
void RenewLive(const GRA_Source &source, const GRA_Setup &setup, double first, double border,
               double columnS, GRA_Live *live)
{
    const size_t count = source.indexes.size();
    *live = GRA_Live();
    live->isValid = true;
    live->columnS = columnS;
    live->first = first;
    live->border = border;
    for (const GRA_Curve &curve : setup.curves)
        live->scales.push_back(curve.scale);
    live->coarse.resize(count);
    live->fine.resize(count);
    live->openFrom.assign(count, border);
    for (size_t i = 0; i < count; ++i)
        DrawStretch(
            source, setup, i, first, border,
            GRA_ColumnS(source.sampler.store, i, source.originUs, first, border, COARSE_COLUMNS),
            &live->coarse[i]);
}

// The last column is not whole yet: it is drawn again with what has come.
void ExtendLive(const GRA_Source &source, const GRA_Setup &setup, size_t curve, double last,
                GRA_Live *live)
{
    GRA_Points &fine = live->fine[curve];
    double &openFrom = live->openFrom[curve];
    const auto keep = std::lower_bound(fine.times.begin(), fine.times.end(), openFrom);
    fine.values.resize(static_cast<size_t>(keep - fine.times.begin()));
    fine.times.erase(keep, fine.times.end());
    GRA_Points fresh;
    DrawStretch(source, setup, curve, openFrom, last + 1 / US_PER_S, live->columnS, &fresh);
    Append(fresh, openFrom, INFINITY, &fine);
    if (!fine.times.empty())
        openFrom =
            live->columnS > 0
                ? std::max(openFrom, std::floor(fine.times.back() / live->columnS) * live->columnS)
                : fine.times.back();
}

bool IsSameScale(const GRA_Scale &scale, const GRA_Curve &curve)
{
    return scale.factor == curve.scale.factor && scale.offset == curve.scale.offset;
}

// Of a picture at the newest sample: only what has come is looked at.
void DrawLive(GRA_Source *source, const GRA_Setup &setup, double first, double from, double to,
              double last, std::vector<GRA_Points> *curves)
{
    GRA_Live *live = &source->live;
    const double width = to - from;
    const double columnS = LiveColumnS(*source, from, to, live->isValid ? live->columnS : 0);
    const double border = std::max(first, from - LIVE_MARGIN * width);
    const double room = std::max(width, RENEWED_SHARE * (border - first));
    const bool isSame = live->isValid && live->columnS == columnS &&
                        std::equal(live->scales.begin(), live->scales.end(), setup.curves.begin(),
                                   setup.curves.end(), IsSameScale);
    if (!isSame || border < live->border - columnS || border > live->border + room)
        RenewLive(*source, setup, first, border, columnS, live);
    for (size_t i = 0; i < curves->size(); ++i) {
        ExtendLive(*source, setup, i, last, live);
        Append(live->coarse[i], -INFINITY, live->border, &(*curves)[i]);
        Append(live->fine[i], live->border, INFINITY, &(*curves)[i]);
    }
}

void DrawSampled(GRA_Source *source, const GRA_Setup &setup, double from, double to,
                 std::vector<GRA_Points> *curves)
{
    double first = 0, last = 0;
    if (curves->size() != source->indexes.size() || !GRA_GetSourceExtent(*source, &first, &last))
        return;
    GRA_FindOldest(*source, &first);
    if (to >= last && to > from)
        DrawLive(source, setup, first, from, to, last, curves);
    else
        DrawStill(*source, setup, first, from, to, last, curves);
}

int DrawFile(const GRA_Source &source, const GRA_Setup &setup, double from, double to,
             std::vector<GRA_Points> *curves)
{
    std::vector<size_t> columns(curves->size());
    std::iota(columns.begin(), columns.end(), size_t{0});
    const REC_Recording &recording = source.recording;
    REC_Curves whole, fine;
    int result = REC_ReadCurves(recording, recording.timeMin, recording.timeMax, columns,
                                2 * COARSE_COLUMNS, &whole);
    // Rows are read from the file where its picture is too coarse: no more than needed.
    const double low = from - FILE_MARGIN * (to - from), high = to + FILE_MARGIN * (to - from);
    if (result == 0 && whole.isDecimated)
        result = REC_ReadCurves(recording, low, high, columns, 2 * COLUMNS, &fine);
    if (result < 0)
        return result;
    const bool isFine = !fine.times.empty();
    for (size_t i = 0; i < curves->size(); ++i) {
        GRA_Points &points = (*curves)[i];
        const GRA_Scale &scale = setup.curves[i].scale;
        AppendRead(whole.times, whole.values[i], -INFINITY, isFine ? low : INFINITY, scale,
                   &points);
        if (!isFine)
            continue;
        AppendRead(fine.times, fine.values[i], low, high, scale, &points);
        AppendRead(whole.times, whole.values[i], high, INFINITY, scale, &points);
    }
    return 0;
}

} // namespace

int GRA_DrawSource(GRA_Source *source, const GRA_Setup &setup, double from, double to,
                   std::vector<GRA_Points> *curves)
{
    curves->assign(setup.curves.size(), GRA_Points());
    if (source->isFile)
        return DrawFile(*source, setup, from, to, curves);
    DrawPast(source, setup, from, to, curves);
    DrawSampled(source, setup, from, to, curves);
    return 0;
}
