// Least and greatest in single floats: a pixel shows no more, and they take half the memory.
#include "sampler/recording_rows.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float NO_FLOAT = std::numeric_limits<float>::quiet_NaN();
constexpr size_t PICTURE_NUMBERS_MAX = 4000000; // of all columns, least and greatest alike

void Widen(float *least, float *greatest, float low, float high)
{
    if (std::isnan(*least) || low < *least)
        *least = low;
    if (std::isnan(*greatest) || high > *greatest)
        *greatest = high;
}

// Two stretches become one, in place: what is written lies in front of what is still to be read.
void HalvePicture(REC_Recording *recording)
{
    const size_t columns = recording->columns.size();
    std::vector<REC_Stretch> &stretches = recording->stretches;
    const size_t halved = (stretches.size() + 1) / 2;
    for (size_t to = 0; to < halved; ++to) {
        const size_t from = 2 * to;
        REC_Stretch joined = stretches[from];
        for (size_t c = 0; c < columns; ++c) {
            recording->least[to * columns + c] = recording->least[from * columns + c];
            recording->greatest[to * columns + c] = recording->greatest[from * columns + c];
        }
        if (from + 1 < stretches.size()) {
            const REC_Stretch &second = stretches[from + 1];
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

} // namespace

void REC_AddRowToPicture(REC_Recording *recording, int64_t offset, double time,
                         const std::vector<double> &values, const REC_RowClock &before)
{
    const size_t columns = recording->columns.size();
    std::vector<REC_Stretch> &stretches = recording->stretches;
    if (stretches.empty() || stretches.back().rows >= recording->rowsPerStretch) {
        // Halving makes room in the last stretch, or it does not: asked again behind it.
        const size_t stretchesMax =
            std::clamp<size_t>(PICTURE_NUMBERS_MAX / (2 * columns), 2, REC_STRETCHES_MAX);
        if (stretches.size() >= stretchesMax)
            HalvePicture(recording);
        if (stretches.empty() || stretches.back().rows >= recording->rowsPerStretch) {
            stretches.push_back({offset, 0, time, time, before.dayOffset, before.last});
            recording->least.insert(recording->least.end(), columns, NO_FLOAT);
            recording->greatest.insert(recording->greatest.end(), columns, NO_FLOAT);
        }
    }
    REC_Stretch &stretch = stretches.back();
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
