// Rows come from the sampler through a listener, within GRA_StepSource, and go to the recorder and
// to the past; what those have to say waits in the source for the window. Drawing: source_draw.cpp.
#include "graphs/source.h"

#include "platform/system.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr double US_PER_S = 1e6;
constexpr double ROUNDING_US = 2; // the middle of a round, and its six digits in a file
constexpr size_t STORE_BYTES = size_t{400} << 20; // all curves together
constexpr size_t MEASURED_ROWS_MAX = 200000;      // of a recording: read from disk twice a second

int64_t NowUs()
{
    return static_cast<int64_t>(PLT_TickUs());
}

// --- what the sampler tells -----------------------------------------------------------------

void PutMessage(void *context, const std::string &text)
{
    static_cast<GRA_Source *>(context)->message = text;
}

void NoteBeep(void *context)
{
    static_cast<GRA_Source *>(context)->isBeepDue = true;
}

void AddMarker(GRA_Source *source, double time, const std::string &text)
{
    if (source->markers.size() == GRA_MARKERS_MAX)
        source->markers.erase(source->markers.begin()); // the recording keeps all
    source->markers.push_back({time, text});
    ++source->markerCount;
}

void AddTriggered(void *context, int64_t timeUs, const std::string &text)
{
    auto *source = static_cast<GRA_Source *>(context);
    AddMarker(source, static_cast<double>(timeUs - source->originUs) / US_PER_S, text);
}

void PutRow(void *context, const SMP_Sampler &sampler, const SMP_Row &row)
{
    auto *source = static_cast<GRA_Source *>(context);
    source->isFresh = true;
    REC_PutArmedRow(&source->recorder, sampler.store, row);
    if (GRA_KeepPast(&source->past, sampler.store, sampler.totals.rows, source->originUs) < 0)
        source->message = source->past.problem;
}

void Flush(void *context)
{
    auto *source = static_cast<GRA_Source *>(context);
    if (REC_Flush(&source->recorder.file, NowUs()) < 0) {
        source->recorder.isOn = false;
        source->message = source->recorder.file.problem;
    }
    if (GRA_FlushPast(&source->past) < 0)
        source->message = source->past.problem;
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

} // namespace

int GRA_StartSource(GRA_Source *source, const GRA_Setup &setup)
{
    const std::vector<SMP_Item> items = ItemsOf(setup);
    source->isFile = false;
    // The same period goes on: curves that stay keep their samples. Blocks of the index belong to
    // places, which may hold other curves now; they are made again from the samples.
    if (source->sampler.isRunning && source->sampler.periodMs == setup.periodMs) {
        const int result = SMP_Change(&source->sampler, items);
        source->indexes.assign(items.size(), GRA_HistoryIndex());
        source->live = GRA_Live();
        if (result == 0 && REC_ChangeItems(&source->recorder.file, items, NowUs()) < 0) {
            source->recorder.isOn = false;
            source->message = source->recorder.file.problem;
        }
        return result;
    }
    // Many curves share what memory there is.
    const SMP_Listener listener = {source, PutRow, Flush, PutMessage};
    const size_t samples = std::min(source->samplesMax, STORE_BYTES / (SMP_BYTES_PER_SAMPLE + 1) /
                                                            std::max<size_t>(1, items.size()));
    source->markers.clear();
    GRA_UseTriggers(source, setup);
    GRA_ClearPast(&source->past);
    source->indexes.assign(items.size(), GRA_HistoryIndex());
    source->live = GRA_Live();
    source->originUs = NowUs();
    return SMP_Start(&source->sampler, items, setup.periodMs, listener, samples);
}

void GRA_StopSource(GRA_Source *source)
{
    if (source->sampler.isRunning)
        SMP_Stop(&source->sampler);
    if (REC_EndArmed(&source->recorder) < 0)
        source->message = source->recorder.file.problem;
}

void GRA_ClearSource(GRA_Source *source)
{
    GRA_StopSource(source);
    GRA_ClearPast(&source->past);
    *source = GRA_Source();
}

int GRA_RecordSource(GRA_Source *source, const REC_Options &options)
{
    return REC_BeginArmed(&source->recorder, options, source->sampler.store.items, NowUs());
}

void GRA_UseTriggers(GRA_Source *source, const GRA_Setup &setup)
{
    std::string problem; // the text was parsed when it was entered or loaded
    source->recorder.triggers.clear();
    (void)SMP_ParseTriggers(setup.triggers, &source->recorder.triggers, &problem);
    source->recorder.listener = {source, PutMessage, NoteBeep, AddTriggered};
}

int64_t GRA_StepSource(GRA_Source *source)
{
    const int64_t waitUs = SMP_Step(&source->sampler);
    // Only behind rows: the index takes in what has come, and most steps bring nothing.
    for (size_t i = 0; source->isFresh && i < source->indexes.size(); ++i)
        GRA_UpdateHistory(source->sampler.store, i, &source->indexes[i]);
    return waitUs;
}

double GRA_GetNow(const GRA_Source &source)
{
    return static_cast<double>(NowUs() - source.originUs) / US_PER_S;
}

int GRA_MarkSource(GRA_Source *source, double time, const std::string &text)
{
    AddMarker(source, time, text);
    const int64_t timeUs = source->originUs + std::llround(time * US_PER_S);
    return REC_PutNote(&source->recorder.file, timeUs, "marker", text);
}

bool GRA_FindOldest(const GRA_Source &source, double *seconds)
{
    const SMP_Store &store = source.sampler.store;
    uint64_t back = 0; // of the oldest round, counted from the newest
    for (const SMP_Ring &ring : store.rings)
        back = std::max(back, ring.first > 0 ? ring.end - ring.first : 0);
    if (back == 0)
        return false;
    // As its row in the past is timed, so that the past ends where memory begins.
    std::vector<SMP_Sample> samples;
    const int64_t middleUs = SMP_GetRound(store, back, &samples);
    *seconds = (static_cast<double>(middleUs - source.originUs) - ROUNDING_US) / US_PER_S;
    return true;
}

bool GRA_GetSourceExtent(const GRA_Source &source, double *from, double *to)
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
            return static_cast<double>(SMP_GetSample(store, i, number).timeUs - source.originUs) /
                   US_PER_S;
        };
        const double first = seconds(ring.first), last = seconds(ring.end - 1);
        *from = isThere ? std::min(*from, first) : first;
        *to = isThere ? std::max(*to, last) : last;
        isThere = true;
    }
    // The past overlaps what is in memory, so it can only begin earlier.
    double oldest = 0, pastEnd = 0;
    if (GRA_GetPastExtent(source.past, &oldest, &pastEnd))
        *from = std::min(*from, oldest);
    return isThere;
}

int GRA_MeasureSource(GRA_Source *source, const GRA_Setup &setup, double from, double to,
                      std::vector<GRA_Measures> *measures)
{
    measures->assign(setup.curves.size(), GRA_Measures());
    double oldest = 0;
    // Of the past there are curves for the eye, thinned: a mean of those would be a wrong one.
    if (!source->isFile) {
        if (GRA_FindOldest(*source, &oldest) && from < oldest)
            return -1;
        for (size_t i = 0; i < source->indexes.size() && i < measures->size(); ++i)
            (*measures)[i] = GRA_MeasureHistory(source->sampler.store, i, source->indexes[i],
                                                source->originUs, from, to, setup.curves[i].scale);
        return 0;
    }
    if (REC_CountRows(source->recording, from, to) > MEASURED_ROWS_MAX)
        return -1;
    std::vector<size_t> columns(setup.curves.size());
    std::iota(columns.begin(), columns.end(), size_t{0});
    REC_Curves rows;
    const int result =
        REC_ReadCurves(source->recording, from, to, columns, MEASURED_ROWS_MAX, &rows);
    // Extremes alone have no mean.
    if (result < 0 || rows.isDecimated)
        return result < 0 ? result : -1;
    for (size_t i = 0; i < columns.size(); ++i) {
        for (double &value : rows.values[i])
            value = value * setup.curves[i].scale.factor + setup.curves[i].scale.offset;
        (*measures)[i] = GRA_MeasureCurve(rows.times, rows.values[i], from, to);
    }
    return 0;
}
