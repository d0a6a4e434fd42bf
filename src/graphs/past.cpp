// A part is a recording that is read on while it is written. Rows go into it one by one, shortly
// before the store drops them: a batch could be longer than the room that is left.
#include "graphs/past.h"

#include "platform/safe_file.h"
#include "platform/system.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>

namespace {

constexpr uint64_t EARLY_SHARE = 8;     // rows are written when an eighth of memory is left
constexpr double RENEWED_SHARE = 0.004; // of a reading: by so much its end may be old
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

bool AreSame(const std::vector<SMP_Item> &a, const std::vector<SMP_Item> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), SMP_IsSame);
}

// What was read last may have come from this file: it is read again.
void RemoveOldest(GRA_Past *past)
{
    (void)PLT_RemoveFile(past->parts.front().recording.path);
    past->parts.pop_front();
    past->coarse.isValid = past->fine.isValid = false;
}

int Fail(GRA_Past *past, const std::string &cause)
{
    past->problem = "What leaves memory is not kept any more: " + cause;
    return -1;
}

// Other items begin another file, for a recording has one head. The temporary name of a file that
// is never committed: it is locked while it is written, and what a killed program has left is found
// by it.
int BeginPart(GRA_Past *past, const SMP_Store &store, int64_t originUs)
{
    if (GRA_FlushPast(past) < 0)
        return -1;
    if (REC_Close(&past->recorder) < 0)
        return Fail(past, past->recorder.problem);
    if (past->parts.size() == GRA_PAST_PARTS_MAX)
        RemoveOldest(past);
    std::error_code none;
    const std::string folder =
        past->folder.empty() ? std::filesystem::temp_directory_path(none).u8string() : past->folder;
    const std::string number = std::to_string(past->begun++ % GRA_PAST_PARTS_MAX + 1);
    SafeFile file;
    if (PLT_MakeDirs(folder) != 0 ||
        PLT_BeginSave(&file, folder + PLT_PathSeparator() + "graph-history-" + number + ".csv",
                      "wb") != 0)
        return Fail(past, "no file can be made in " + folder + ".");
    REC_Options options;
    options.path = file.tempPath;
    options.file = file.file;
    options.hasDates = false; // times are enough: nobody but the graph reads it
    std::vector<SMP_Item> columns = store.items;
    for (size_t i = 0; i < columns.size(); ++i) // by place: names may repeat
        columns[i].name = "c" + std::to_string(i + 1);
    GRA_PastPart part;
    part.items = store.items;
    part.recording.path = options.path;
    past->parts.push_back(part);
    std::string problem;
    if (REC_Open(&past->recorder, options, columns, originUs) < 0)
        return Fail(past, past->recorder.problem);
    if (REC_OpenRecording(options.path, &past->parts.back().recording, &problem) < 0)
        return Fail(past, problem);
    return 0;
}

// A stretch of all parts, a curve an item; points are shared out by how long each part is.
bool Read(const GRA_Past &past, const std::vector<SMP_Item> &items, double from, double to,
          size_t pointsMax, std::vector<GRA_Points> *curves)
{
    curves->assign(items.size(), GRA_Points());
    for (const GRA_PastPart &part : past.parts) {
        const REC_Recording &recording = part.recording;
        const double low = std::max(from, recording.timeMin);
        const double high = std::min(to, recording.timeMax);
        if (recording.rows == 0 || low > high)
            continue;
        // A part may have been sampled with other curves: by item, not by place.
        std::vector<size_t> columns, wanted;
        for (size_t i = 0; i < items.size(); ++i)
            for (size_t k = 0; k < part.items.size(); ++k)
                if (SMP_IsSame(items[i], part.items[k])) {
                    columns.push_back(k);
                    wanted.push_back(i);
                    break;
                }
        const double share = to > from ? (high - low) / (to - from) : 1;
        REC_Curves read;
        if (REC_ReadCurves(recording, low, high, columns,
                           static_cast<size_t>(share * static_cast<double>(pointsMax)) + 2,
                           &read) < 0)
            return false;
        for (size_t c = 0; c < wanted.size(); ++c) {
            GRA_Points &points = (*curves)[wanted[c]];
            points.times.insert(points.times.end(), read.times.begin(), read.times.end());
            points.values.insert(points.values.end(), read.values[c].begin(), read.values[c].end());
        }
    }
    return true;
}

// What was read last will do when it begins where it should and ends at most a trifle early.
const std::vector<GRA_Points> *ReadAnew(const GRA_Past &past, const std::vector<SMP_Item> &items,
                                        double from, double to, size_t pointsMax,
                                        GRA_PastReading *reading)
{
    // The past grows at every row: reading it anew each time would cost more than drawing.
    const double trifle = RENEWED_SHARE * (to - from);
    if (reading->isValid && std::fabs(reading->from - from) <= trifle &&
        std::fabs(reading->to - to) <= trifle && AreSame(reading->items, items))
        return &reading->curves;
    reading->isValid = Read(past, items, from, to, pointsMax, &reading->curves);
    reading->from = from;
    reading->to = to;
    reading->items = items;
    return reading->isValid ? &reading->curves : nullptr;
}

} // namespace

int GRA_KeepPast(GRA_Past *past, const SMP_Store &store, uint64_t rows, int64_t originUs)
{
    const uint64_t kept = store.samplesMax - store.samplesMax / EARLY_SHARE;
    if (!past->problem.empty() || rows <= kept)
        return 0;
    // Rows that fell out unwritten, while nothing could be kept, are given up.
    uint64_t inMemory = 0;
    for (const SMP_Ring &ring : store.rings)
        inMemory = std::max(inMemory, ring.end - ring.first);
    past->written = std::max(past->written, rows - std::min(rows, inMemory));
    const uint64_t end = rows - kept;
    if (past->written >= end)
        return 0;
    while (past->written < end) {
        const bool isOther = past->parts.empty() || !AreSame(past->parts.back().items, store.items);
        if ((isOther || past->recorder.bytes >= past->partBytes) &&
            BeginPart(past, store, originUs) < 0)
            return -1;
        std::vector<SMP_Sample> samples;
        const int64_t middleUs = SMP_GetRound(store, rows - past->written, &samples);
        if (REC_PutRow(&past->recorder, middleUs, samples.data(), store) < 0)
            return Fail(past, past->recorder.problem);
        ++past->written;
    }
    return 0;
}

int GRA_FlushPast(GRA_Past *past)
{
    if (!past->recorder.isOpen)
        return 0;
    // First to the file, then read on: what is only in the recorder's memory nobody can read.
    if (REC_Flush(&past->recorder, 0) < 0)
        return Fail(past, past->recorder.problem);
    return REC_FollowRecording(&past->parts.back().recording) < 0
               ? Fail(past, past->recorder.path + " cannot be read.")
               : 0;
}

bool GRA_GetPastExtent(const GRA_Past &past, double *from, double *to)
{
    bool isThere = false;
    for (const GRA_PastPart &part : past.parts) {
        if (part.recording.rows == 0)
            continue;
        *from = isThere ? *from : part.recording.timeMin;
        *to = part.recording.timeMax;
        isThere = true;
    }
    return isThere;
}

const std::vector<GRA_Points> *GRA_ReadWholePast(GRA_Past *past, const std::vector<SMP_Item> &items,
                                                 size_t pointsMax)
{
    double from = 0, to = 0;
    if (!GRA_GetPastExtent(*past, &from, &to))
        return nullptr;
    return ReadAnew(*past, items, from, to, pointsMax, &past->coarse);
}

const std::vector<GRA_Points> *GRA_ReadPastFine(GRA_Past *past, const std::vector<SMP_Item> &items,
                                                double from, double to, size_t pointsMax)
{
    return ReadAnew(*past, items, from, to, pointsMax, &past->fine);
}

bool GRA_ReadPastRows(const GRA_Past &past, const std::vector<SMP_Item> &items, double from,
                      double to, size_t rowsMax, REC_Curves *rows)
{
    *rows = REC_Curves();
    rows->values.resize(items.size());
    for (const GRA_PastPart &part : past.parts) {
        if (part.recording.rows == 0 || part.recording.timeMax < from ||
            part.recording.timeMin > to)
            continue;
        std::vector<size_t> all(part.items.size());
        for (size_t k = 0; k < all.size(); ++k)
            all[k] = k;
        REC_Curves read;
        if (REC_ReadCurves(part.recording, from, to, all, rowsMax, &read) < 0 || read.isDecimated)
            return false;
        // An item that this part has not is empty in its rows, so that all columns are as long.
        rows->times.insert(rows->times.end(), read.times.begin(), read.times.end());
        for (size_t i = 0; i < items.size(); ++i) {
            const auto found =
                std::find_if(part.items.begin(), part.items.end(),
                             [&](const SMP_Item &item) { return SMP_IsSame(item, items[i]); });
            const auto column = static_cast<size_t>(found - part.items.begin());
            if (found != part.items.end())
                rows->values[i].insert(rows->values[i].end(), read.values[column].begin(),
                                       read.values[column].end());
            rows->values[i].resize(rows->times.size(), NOT_A_NUMBER);
        }
    }
    return rows->times.size() <= rowsMax;
}

void GRA_ClearPast(GRA_Past *past)
{
    (void)REC_Close(&past->recorder);
    while (!past->parts.empty())
        RemoveOldest(past);
    GRA_Past fresh;
    fresh.folder = past->folder;
    fresh.partBytes = past->partBytes;
    *past = fresh;
}
