// Histories of curves: what is drawn and measured of long ones against every sample looked at.
#include "graphs/window.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <random>

namespace {

constexpr double GAP = std::numeric_limits<double>::quiet_NaN();
constexpr int64_t ORIGIN_US = 5000000;

struct History {
    SMP_Store store;
    GRA_HistoryIndex index;
    std::vector<double> times, values; // what is to come out
    std::mt19937 random{7};

    explicit History(size_t samplesMax)
    {
        SMP_Item item;
        item.name = "nSine";
        item.address = 0x8000;
        SMP_SetStoreItems(&store, {item}, samplesMax);
    }
    // Ten milliseconds apart; one of 40 fails.
    void add(size_t count)
    {
        const uint8_t failed = SMP_StateOf(&store, "no answer");
        for (size_t i = 0; i < count; ++i) {
            const auto number = static_cast<int64_t>(times.size());
            const auto value = static_cast<int16_t>(random() % 20000 - 10000);
            SMP_Sample sample;
            sample.timeUs = ORIGIN_US + 10000 * number;
            sample.bits = static_cast<uint16_t>(value);
            sample.state = random() % 40 == 0 ? failed : SMP_GOOD;
            SMP_AddRow(&store, 0, sample);
            times.push_back(static_cast<double>(number) / 100);
            values.push_back(sample.state == SMP_GOOD ? 0.5 * value - 3 : GAP);
        }
        GRA_UpdateHistory(store, 0, &index);
    }
};

constexpr GRA_Scale SCALE = {0.5, -3};

TEST(GraphHistory, EveryColumnHasItsExtremesAndGaps)
{
    History history(3000);
    for (const size_t more : {70u, 2000u, 1500u, 4000u}) { // the ring turns over
        history.add(more);
        const double first = history.times[static_cast<size_t>(history.store.rings[0].first)];
        const double last = history.times.back();
        for (const auto &[from, to] : {std::pair(first, last), {last - 9.13, last - 2.7}}) {
            constexpr int COLUMNS = 23;
            GRA_Points points;
            GRA_DrawHistory(history.store, 0, history.index, ORIGIN_US, from, to,
                            GRA_ColumnS(history.store, 0, ORIGIN_US, from, to, COLUMNS), 1, SCALE,
                            &points);
            const std::vector<double> &times = points.times, &values = points.values;
            ASSERT_TRUE(std::is_sorted(times.begin(), times.end()));
            ASSERT_LE(times.size(), 3 * (COLUMNS + 3u) + 46u);
            const double width = (to - from) / COLUMNS;
            for (double left = std::ceil(from / width) * width; left + width < to; left += width) {
                const auto extremes = [&](const std::vector<double> &x,
                                          const std::vector<double> &y) {
                    std::pair<double, double> both(INFINITY, -INFINITY);
                    bool hasGap = false;
                    for (size_t i = 0; i < x.size(); ++i) {
                        if (x[i] < first || std::floor(x[i] / width) != std::round(left / width))
                            continue;
                        hasGap = hasGap || std::isnan(y[i]);
                        both.first = y[i] < both.first ? y[i] : both.first;
                        both.second = y[i] > both.second ? y[i] : both.second;
                    }
                    return std::pair(both, hasGap);
                };
                ASSERT_EQ(extremes(times, values), extremes(history.times, history.values))
                    << more << " " << left;
            }
        }
    }
}

TEST(GraphHistory, MeasuresWhatEverySampleSays)
{
    History history(60000);
    history.add(50000);
    for (const auto &[from, to] : {std::pair(0.0, 499.99), {3.005, 480.0}, {10.0, 12.0}}) {
        double count = 0, sum = 0, squares = 0, low = INFINITY, high = -INFINITY, failed = 0;
        for (size_t i = 0; i < history.times.size(); ++i) {
            if (history.times[i] < from || history.times[i] > to)
                continue;
            if (std::isnan(history.values[i])) {
                failed++;
                continue;
            }
            count++;
            sum += history.values[i];
            squares += history.values[i] * history.values[i];
            low = std::min(low, history.values[i]);
            high = std::max(high, history.values[i]);
        }
        const GRA_Measures m =
            GRA_MeasureHistory(history.store, 0, history.index, ORIGIN_US, from, to, SCALE);
        EXPECT_EQ(static_cast<double>(m.count), count);
        EXPECT_EQ(static_cast<double>(m.failed), failed);
        EXPECT_EQ(m.min, low);
        EXPECT_EQ(m.max, high);
        EXPECT_NEAR(m.mean, sum / count, 1e-6);
        EXPECT_NEAR(m.rms, std::sqrt(squares / count), 1e-6);
        EXPECT_NEAR(m.deviation, std::sqrt(squares / count - sum / count * sum / count), 1e-6);
        EXPECT_EQ(m.hasShape, to - from < 100);
    }
    const std::vector<double> times = {0, 1, 2, 3, 4}, line = {5, GAP, 1, -1, -3};
    EXPECT_NEAR(GRA_MeasureCurve(times, line, 0, 4).slope, -2, 1e-12);
    // Another item in its place begins anew.
    SMP_Item other = history.store.items[0];
    other.address = 0x9000;
    SMP_SetStoreItems(&history.store, {other}, 60000);
    GRA_UpdateHistory(history.store, 0, &history.index);
    EXPECT_TRUE(history.index.blocks.empty());
}

// What was drawn before is kept; the picture is the one that would be drawn from nothing.
TEST(GraphSource, ALivePictureIsTheSameAsOneDrawnAnew)
{
    for (const double width : {1.0, 37.0}) { // every sample, and columns
        GRA_Setup setup;
        setup.curves.resize(2);
        setup.curves[1].scale = SCALE;
        GRA_Source source;
        std::vector<SMP_Item> items(2);
        items[1].address = 2;
        SMP_SetStoreItems(&source.sampler.store, items, 45000); // the ring turns over
        source.indexes.resize(2);
        source.originUs = ORIGIN_US;
        std::mt19937 random(3);
        int64_t timeUs = ORIGIN_US;
        for (int picture = 0; picture < 300; ++picture) {
            timeUs += picture % 50 == 0 ? 5000000 : 0; // nothing was sampled
            for (int row = 0; row < 171; ++row, timeUs += 1000)
                for (size_t i = 0; i < 2; ++i)
                    SMP_AddRow(&source.sampler.store, i,
                               {timeUs, random() % 1000, static_cast<uint8_t>(random() % 50 == 0)});
            for (size_t i = 0; i < 2; ++i)
                GRA_UpdateHistory(source.sampler.store, i, &source.indexes[i]);
            const double last = static_cast<double>(timeUs - 1000 - ORIGIN_US) / 1e6;
            std::vector<GRA_Points> grown, anew;
            ASSERT_EQ(GRA_DrawSource(&source, setup, last - width, last, &grown), 0);
            if (picture % 20 != 19)
                continue;
            const GRA_Live kept = source.live;
            source.live = GRA_Live();
            ASSERT_EQ(GRA_DrawSource(&source, setup, last - width, last, &anew), 0);
            source.live = kept;
            for (size_t i = 0; i < 2; ++i) {
                const auto inView = [&](const GRA_Points &points) {
                    std::vector<std::pair<double, std::string>> seen;
                    for (size_t k = 0; k < points.times.size(); ++k)
                        if (points.times[k] >= last - width)
                            seen.emplace_back(points.times[k], std::to_string(points.values[k]));
                    return seen;
                };
                ASSERT_EQ(inView(grown[i]), inView(anew[i])) << picture;
                ASSERT_TRUE(std::is_sorted(grown[i].times.begin(), grown[i].times.end()));
                ASSERT_LT(grown[i].times.size(), 15000u) << "a picture's, not a history's";
            }
        }
    }
}

} // namespace
