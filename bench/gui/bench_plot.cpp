// Redrawing graphs: a scope's picture, and long curves while zooming, each against as many
// strokes on nothing but an image; and what a live graph costs: points taken from a sampler's
// store, handed over and drawn, as a share of the time between two pictures.
#include <QElapsedTimer>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <random>

#include "bench.h"
#include "graphs/source.h"
#include "runtime/plot_view.h"
#include "runtime/qt/plot_widget.h"
#include "runtime/qt/qt_view.h"

namespace {

constexpr int WIDTH = 1200, HEIGHT = 700, ROUNDS = 30;
constexpr double LIVE_PERIOD_MS = 50;

double PassedMs(const QElapsedTimer &timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

// What this thread has worked: others on the machine do not count.
double WorkedMs()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return 1000 * static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_nsec);
}

std::vector<UI_Plot> MakePlots(int count, size_t samples)
{
    std::mt19937 random(1);
    std::vector<double> x(samples);
    for (size_t i = 0; i < samples; i++)
        x[i] = static_cast<double>(i);
    const UI_Samples times = std::make_shared<const std::vector<double>>(std::move(x));
    std::vector<UI_Plot> plots(static_cast<size_t>(count));
    for (size_t k = 0; k < plots.size(); k++) {
        std::vector<double> y(samples);
        for (size_t i = 0; i < samples; i++)
            y[i] = 100.0 * static_cast<double>(k) +
                   40 * std::sin(static_cast<double>(i) * 20 / static_cast<double>(samples)) +
                   static_cast<double>(random() % 1000) / 100;
        plots[k].handle = static_cast<int>(k) + 1;
        plots[k].name = "curve " + std::to_string(k + 1);
        plots[k].x = times;
        plots[k].y = std::make_shared<const std::vector<double>>(std::move(y));
        PLOT_MeasurePlot(&plots[k]);
    }
    return plots;
}

// The least that can be asked: as many strokes as the curves have columns.
BEN_Cost MeasureFloor(int curves, int strokes)
{
    QImage image(WIDTH, HEIGHT, QImage::Format_RGB32);
    BEN_Cost cost;
    for (int round = 0; round < ROUNDS; round++) {
        QElapsedTimer timer;
        timer.start();
        image.fill(Qt::white);
        QPainter painter(&image);
        for (int curve = 0; curve < curves; curve++) {
            QVector<QLineF> lines;
            for (int i = 0; i < strokes; i++)
                lines.append(QLineF(i * WIDTH / strokes, curve * 40 + i % 10, i * WIDTH / strokes,
                                    curve * 40 + 30));
            painter.setPen(QColor::fromHsv(curve * 20, 200, 150));
            painter.drawLines(lines);
        }
        painter.end();
        cost.Add(PassedMs(timer));
    }
    return cost;
}

void Print(const char *what, const BEN_Cost &cost, const BEN_Cost &floor)
{
    std::printf("%-44s %8.2f ms (worst %.2f), %.1f x the strokes alone\n", what, cost.MeanMs(),
                cost.worstMs, cost.MeanMs() / floor.MeanMs());
}

// From everything down to a thousandth, a bit narrower at each picture.
void MeasureZoom(PlotWidget *plot, int curves, size_t samples, const char *what)
{
    UI_GraphView view; // everything there is, once the plots have come
    plot->setView(view);
    plot->setPlots(MakePlots(curves, samples));
    plot->replot(QCustomPlot::rpImmediateRefresh);
    BEN_Cost cost;
    for (int round = 0; round < ROUNDS; round++) {
        view = plot->view();
        view.isXFitted = false;
        PLOT_Zoom(&view.x, 0.8, static_cast<double>(samples) * 0.37);
        QElapsedTimer timer;
        timer.start();
        plot->setView(view);
        plot->replot(QCustomPlot::rpImmediateRefresh);
        cost.Add(PassedMs(timer));
    }
    Print(what, cost, MeasureFloor(curves, WIDTH));
}

// A graph of 16 curves with a million samples behind it that follows the newest.
void MeasureLive(PlotWidget *plot)
{
    constexpr size_t CURVES = 16, SAMPLES = 1000000;
    GRA_Setup setup;
    setup.curves.resize(CURVES);
    GRA_Source source;
    std::vector<SMP_Item> items(CURVES);
    for (size_t i = 0; i < CURVES; i++)
        items[i].name = setup.curves[i].item.name = "curve " + std::to_string(i + 1);
    SMP_SetStoreItems(&source.sampler.store, items, SAMPLES);
    source.indexes.resize(CURVES);
    int64_t timeUs = 0;
    std::mt19937 random(2);
    const auto addRow = [&] {
        for (size_t i = 0; i < CURVES; i++)
            SMP_AddRow(&source.sampler.store, i,
                       {timeUs,
                        (static_cast<uint64_t>(timeUs / 1000) + 77 * i) % 5000 + random() % 500,
                        SMP_GOOD});
        timeUs += 1000;
    };
    for (size_t row = 0; row < SAMPLES; row++)
        addRow();
    for (size_t i = 0; i < CURVES; i++)
        GRA_UpdateHistory(source.sampler.store, i, &source.indexes[i]);
    for (const double width : {10.0, 900.0}) {
        UI_GraphView view;
        view.isXFitted = false;
        view.isFollowing = true;
        view.x = {-width, 0};
        plot->setView(view);
        BEN_Cost taken, cost; // by the program's thread, and in all
        for (int round = 0; round < 4 * ROUNDS; round++) {
            for (int row = 0; row < static_cast<int>(LIVE_PERIOD_MS); row++)
                addRow();
            const double begin = WorkedMs();
            for (size_t i = 0; i < CURVES; i++)
                GRA_UpdateHistory(source.sampler.store, i, &source.indexes[i]);
            const double now = static_cast<double>(timeUs) / 1e6;
            std::vector<GRA_Points> points;
            GRA_DrawSource(&source, setup, now - width, now, &points);
            std::vector<UI_Plot> plots(CURVES);
            for (size_t i = 0; i < CURVES; i++) {
                plots[i].handle = static_cast<int>(i) + 1;
                plots[i].name = items[i].name;
                plots[i].x =
                    std::make_shared<const std::vector<double>>(std::move(points[i].times));
                plots[i].y =
                    std::make_shared<const std::vector<double>>(std::move(points[i].values));
                PLOT_MeasurePlot(&plots[i]);
            }
            taken.Add(WorkedMs() - begin);
            plot->setPlots(plots);
            plot->replot(QCustomPlot::rpImmediateRefresh);
            cost.Add(WorkedMs() - begin);
        }
        // The window draws when another of its columns can be seen, twice a second at least.
        const double ms = cost.MeanMs();
        const double pictures = std::clamp(WIDTH / width, 2.0, 1000 / LIVE_PERIOD_MS);
        std::printf("16 live curves, %4.0f s in view %6.2f ms a picture, %.2f of them to take what "
                    "is new: %.0f %% of one core at 20 a second, %.0f %% at the window's %.0f\n",
                    width, ms, taken.MeanMs(), 100 * ms / LIVE_PERIOD_MS, ms * pictures / 10,
                    pictures);
    }
    size_t bytes = 0;
    for (const GRA_HistoryIndex &index : source.indexes)
        bytes += index.blocks.size() * sizeof(GRA_HistoryBlock);
    std::printf("bytes a sample: %zu and %.2f of the index\n", SMP_BYTES_PER_SAMPLE,
                static_cast<double>(bytes) / static_cast<double>(CURVES * SAMPLES));
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (QTV_StartApplication(&argc, argv) < 0)
        return 1;
    PlotWidget plot;
    plot.resize(WIDTH, HEIGHT);
    plot.show();
    MeasureZoom(&plot, 10, 512, "10 x 512 samples, zooming");
    MeasureZoom(&plot, 16, 1000000, "16 x 1,000,000 samples, zooming");
    MeasureLive(&plot);
    return 0;
}
