// Two ways of drawing, chosen by how many samples are in view: a line through each, or a stroke a
// column of pixels from the lowest to the highest value in it. They look alike where they meet.
#include "runtime/qt/plot_curve.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int SAMPLES_A_PIXEL = 1;     // up to here a line is drawn from sample to sample
constexpr size_t SMOOTH_MAX = 12000;   // samples of all curves: smooth lines cost ten times more
constexpr double DOT_FROM_PIXELS = 12; // samples so far apart get a dot each
constexpr double FAR_PIXELS = 1e6;     // the painter's arithmetic ends somewhere behind
constexpr int DOT_RADIUS = 2;          // pixels

double Near(double pixel)
{
    return std::clamp(pixel, -FAR_PIXELS, FAR_PIXELS);
}

} // namespace

PlotCurve::PlotCurve(QCPAxis *keyAxis, QCPAxis *valueAxis, const UI_Plot &plot)
    : QCPAbstractPlottable(keyAxis, valueAxis), m_plot(plot),
      m_curve(PLOT_MakeThinCurve(plot.x, plot.y))
{
}

void PlotCurve::setPlot(const UI_Plot &plot)
{
    if (plot.x != m_plot.x || plot.y != m_plot.y) // the same vectors hold the same samples
        m_curve = PLOT_MakeThinCurve(plot.x, plot.y);
    m_plot = plot;
}

int PlotCurve::sampleAt(double x) const
{
    const std::vector<double> &all = *m_plot.x;
    if (all.empty())
        return -1;
    auto after = std::lower_bound(all.begin(), all.end(), x);
    if (after == all.end() || (after != all.begin() && x - after[-1] <= *after - x))
        --after;
    return static_cast<int>(after - all.begin());
}

double PlotCurve::selectTest(const QPointF &, bool, QVariant *) const
{
    return -1; // the plot's own selecting is not used
}

QCPRange PlotCurve::getKeyRange(bool &isFound, QCP::SignDomain) const
{
    isFound = !m_plot.x->empty();
    return isFound ? QCPRange(m_plot.x->front(), m_plot.x->back()) : QCPRange();
}

QCPRange PlotCurve::getValueRange(bool &isFound, QCP::SignDomain, const QCPRange &) const
{
    double low = INFINITY, high = -INFINITY;
    for (size_t i = 0; i < m_curve.low.size(); i++) {
        low = std::min(low, m_curve.low[i]);
        high = std::max(high, m_curve.high[i]);
    }
    isFound = low <= high;
    return isFound ? QCPRange(low, high) : QCPRange();
}

QPointF PlotCurve::pointAt(size_t index) const
{
    return QPointF(Near(mKeyAxis->coordToPixel((*m_plot.x)[index])),
                   Near(mValueAxis->coordToPixel((*m_plot.y)[index])));
}

void PlotCurve::drawSamples(QCPPainter *painter, size_t first, size_t end) const
{
    const double width = mKeyAxis->axisRect()->width();
    // Far apart, the eye should see what was measured and what is only a line between.
    const bool hasDots = static_cast<double>(end - first) * DOT_FROM_PIXELS < width;
    QPolygonF line;
    // A gap ends the line; a sample alone between two gaps is a point.
    const auto flush = [&] {
        if (line.size() > 1)
            painter->drawPolyline(line);
        else if (line.size() == 1)
            painter->drawPoint(line[0]);
        line.clear();
    };
    for (size_t i = first; i < end; i++) {
        if (!std::isfinite((*m_plot.y)[i])) {
            flush();
            continue;
        }
        line.append(pointAt(i));
        if (hasDots)
            painter->drawEllipse(line.back(), DOT_RADIUS, DOT_RADIUS);
    }
    flush();
}

void PlotCurve::drawColumns(QCPPainter *painter) const
{
    const QCPRange range = mKeyAxis->range();
    const int left = mKeyAxis->axisRect()->left();
    std::vector<PLOT_Column> columns;
    PLOT_ThinOut(m_curve, range.lower, range.upper, mKeyAxis->axisRect()->width(), &columns);
    QVector<QLineF> strokes;
    double last = NAN; // of the column before: the strokes join
    for (const PLOT_Column &column : columns) {
        double low = column.low, high = column.high;
        if (std::isfinite(last) && std::isfinite(column.first)) {
            low = std::min(low, last);
            high = std::max(high, last);
        }
        last = column.last;
        if (!(low <= high)) // gaps alone
            continue;
        const double x = left + column.pixel;
        const double foot = Near(mValueAxis->coordToPixel(low));
        const double top = Near(mValueAxis->coordToPixel(high));
        // A stroke without a length is not drawn: a level one takes the width of its column.
        if (foot - top < 1)
            strokes.append(QLineF(x - 1, foot, x, foot));
        else
            strokes.append(QLineF(x, foot, x, top));
    }
    painter->drawLines(strokes);
}

void PlotCurve::draw(QCPPainter *painter)
{
    if (!mKeyAxis || !mValueAxis || m_plot.x->empty())
        return;
    // With one more on each side: lines leave the picture rather than end in it.
    size_t first = 0, end = 0;
    const QCPRange range = mKeyAxis->range();
    PLOT_FindSample(m_curve, range.lower, range.upper, &first, &end);
    painter->setPen(mPen);
    painter->setBrush(Qt::NoBrush);
    const auto pixels = static_cast<size_t>(std::max(1, mKeyAxis->axisRect()->width()));
    if (end - first <= pixels * SAMPLES_A_PIXEL) {
        const auto curves = static_cast<size_t>(parentPlot()->plottableCount());
        painter->setAntialiasing((end - first) * curves <= SMOOTH_MAX);
        drawSamples(painter, first, end);
    } else {
        painter->setAntialiasing(false); // upright strokes on whole pixels have nothing to smooth
        drawColumns(painter);
    }
}

void PlotCurve::drawLegendIcon(QCPPainter *painter, const QRectF &rect) const
{
    painter->setPen(mPen);
    painter->drawLine(QLineF(rect.left(), rect.center().y(), rect.right(), rect.center().y()));
}
