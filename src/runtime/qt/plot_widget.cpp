// The graph control as it is shown; what the user does with it stands in plot_user.cpp. One view
// (m_view) is the truth, and axes, colours and overlay are set from it: nothing is read back.
#include "runtime/qt/plot_widget.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "runtime/plot_view.h"
#include "runtime/qt/look.h"
#include "runtime/qt/plot_curve.h"
#include "runtime/qt/plot_overlay.h"
#include "runtime/qt/qt_view.h"

namespace {

constexpr int GROUND_STEPS = 8;         // the grid: a colour of 1/8 text, 7/8 ground
constexpr size_t AXES_SIDE_BY_SIDE = 3; // of more panes over each other only one shows its own
constexpr double FINE_CLOCK_S = 8;      // a narrower view has milliseconds at its foot
constexpr int DIGITS = 6;               // of numbers in the corner: a float's, and no noise
// Curves without a colour of their own, by place. Each can be told from its neighbours; what is too
// pale or too dark for the ground is mended by QTV_ReadableColor.
const QRgb COLORS[] = {0x1f77b4, 0xd95f02, 0x2ca02c, 0xc0392b, 0x7d4fb3, 0x8c564b,
                       0xd04a9b, 0x5f6a72, 0x8a8a00, 0x0f8f9f, 0x34495e, 0xb8860b,
                       0x006d5b, 0x9b2d5e, 0x3c6e00, 0x4b5fd0};
constexpr size_t COLOR_COUNT = sizeof COLORS / sizeof COLORS[0];

QString Number(double value)
{
    return std::isfinite(value) ? QString::number(value, 'g', DIGITS) : QString("-");
}

} // namespace

PlotWidget::PlotWidget(QWidget *parent) : QCustomPlot(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setMinimumSize(200, 120);
    // The panes stand in a column of their own, the legend beside it hides no curve.
    m_rects = new QCPLayoutGrid;
    m_rects->setRowSpacing(0);
    QCPAxisRect *first = axisRect();
    first->insetLayout()->take(legend);
    plotLayout()->take(first);
    plotLayout()->addElement(0, 0, m_rects);
    m_rects->addElement(0, 0, first);
    auto *side = new QCPLayoutGrid;
    side->addElement(0, 0, legend);
    side->addElement(1, 0, new QCPLayoutElement(this)); // takes the height the legend leaves
    side->setRowStretchFactor(0, 0.001);
    plotLayout()->addElement(0, 1, side);
    plotLayout()->setColumnStretchFactor(1, 0.001);
    legend->setVisible(false);
    m_panes = {{0, xAxis, yAxis}};
    m_overlay = new PlotOverlay(this, &m_view, &m_axes);
    usePalette();
    showView();
}

void PlotWidget::setPlots(const std::vector<UI_Plot> &plots)
{
    const auto isSame = [](const PlotCurve *curve, const UI_Plot &plot) {
        return curve->plot().handle == plot.handle && curve->plot().name == plot.name &&
               curve->plot().unit == plot.unit && curve->plot().pane == plot.pane;
    };
    // New samples of the same curves are the rule while something is recorded: legend, axes and
    // colours stay then.
    if (std::equal(m_curves.begin(), m_curves.end(), plots.begin(), plots.end(), isSame)) {
        for (size_t i = 0; i < plots.size(); i++)
            m_curves[i]->setPlot(plots[i]);
    } else {
        for (PlotCurve *curve : m_curves)
            removePlottable(curve);
        m_curves.clear();
        for (const UI_Plot &plot : plots) {
            auto *curve = new PlotCurve(m_panes[0].x, m_panes[0].y, plot);
            const QString unit = QTV_ToQt(plot.unit);
            curve->setName(QTV_ToQt(plot.name) + (unit.isEmpty() ? "" : " [" + unit + "]"));
            curve->addToLegend();
            m_curves.push_back(curve);
        }
        legend->setVisible(!m_curves.empty());
        buildPanes();
        usePalette();
    }
    PLOT_SettleView(plots, &m_view);
    showView();
}

void PlotWidget::setAxes(const UI_GraphAxes &axes)
{
    const bool isOtherTicker = axes.isTime != m_axes.isTime;
    m_axes = axes;
    if (isOtherTicker)
        buildPanes();
    // One text at the foot of the lowest pane, one at the side of the first.
    m_panes.back().x->setLabel(QTV_ToQt(axes.xLabel));
    m_panes[0].y->setLabel(QTV_ToQt(axes.yLabel));
    replot(rpQueuedReplot);
}

void PlotWidget::setView(const UI_GraphView &view)
{
    const bool isOtherLayout = view.layout != m_view.layout;
    m_view = view;
    if (isOtherLayout)
        buildPanes();
    usePalette(); // hidden curves are dim in the legend
    showView();
}

// --- panes ----------------------------------------------------------------------------------

// The axes the curves' panes need in this layout. The first pane keeps the control's own.
void PlotWidget::buildPanes()
{
    std::set<int> numbers;
    for (const PlotCurve *curve : m_curves)
        numbers.insert(PLOT_PaneOf(m_view, curve->plot().pane));
    if (numbers.empty())
        numbers.insert(0);
    for (PlotCurve *curve : m_curves) { // away from axes that go
        curve->setKeyAxis(xAxis);
        curve->setValueAxis(yAxis);
    }
    QCPAxisRect *first = xAxis->axisRect();
    // A cell stays, empty, until the grid is simplified.
    for (int cell = m_rects->elementCount() - 1; cell > 0; cell--)
        m_rects->removeAt(cell);
    m_rects->simplify();
    while (first->axisCount(QCPAxis::atLeft) > 1)
        first->removeAxis(first->axis(QCPAxis::atLeft, first->axisCount(QCPAxis::atLeft) - 1));
    m_panes.clear();
    delete m_margins; // it knows axes that are gone
    m_margins = new QCPMarginGroup(this);
    for (const int number : numbers) {
        Pane pane = {number, xAxis, yAxis};
        if (!m_panes.empty() && m_view.layout == GRAPH_STACKED) {
            auto *rect = new QCPAxisRect(this);
            m_rects->addElement(m_rects->rowCount(), 0, rect);
            pane.x = rect->axis(QCPAxis::atBottom);
            pane.y = rect->axis(QCPAxis::atLeft);
        } else if (!m_panes.empty()) {
            pane.y = first->addAxis(QCPAxis::atLeft);
        }
        m_panes.push_back(pane);
    }
    m_active = std::min(m_active, m_panes.size() - 1);
    // Of panes one under the other only the lowest has numbers at its foot.
    for (Pane &pane : m_panes) {
        const bool isLowest = pane.x == m_panes.back().x;
        QCPAxisRect *rect = pane.x->axisRect();
        rect->setMarginGroup(QCP::msLeft | QCP::msRight, m_margins);
        rect->setMinimumMargins(QMargins(8, 4, 8, isLowest ? 8 : 2));
        pane.x->setTickLabels(isLowest);
        pane.x->setLabel(isLowest ? QTV_ToQt(m_axes.xLabel) : QString());
        pane.x->setTicker(m_axes.isTime ? m_clock : QSharedPointer<QCPAxisTicker>::create());
    }
    for (PlotCurve *curve : m_curves) {
        const int number = PLOT_PaneOf(m_view, curve->plot().pane);
        for (const Pane &pane : m_panes) {
            if (pane.number != number)
                continue;
            curve->setKeyAxis(pane.x);
            curve->setValueAxis(pane.y);
        }
    }
}

QCPAxis *PlotWidget::valueAxis(int pane) const
{
    for (const Pane &one : m_panes)
        if (one.number == PLOT_PaneOf(m_view, pane))
            return one.y;
    return nullptr;
}

const PlotWidget::Pane &PlotWidget::paneAt(const QPoint &at) const
{
    if (m_view.layout == GRAPH_STACKED)
        for (const Pane &pane : m_panes)
            if (at.y() <= pane.x->axisRect()->bottom())
                return pane;
    return m_panes[m_active];
}

// --- colours --------------------------------------------------------------------------------

void PlotWidget::usePalette()
{
    const QColor ground = palette().color(QPalette::Base);
    const QColor text = palette().color(QPalette::Text);
    const QColor quiet = QTV_QuietColor(palette(), ground);
    setBackground(ground);
    legend->setBrush(ground);
    legend->setTextColor(text);
    legend->setBorderPen(Qt::NoPen);
    legend->setFont(font());
    for (size_t i = 0; i < m_curves.size(); i++) {
        PlotCurve *curve = m_curves[i];
        const UI_Plot &plot = curve->plot();
        const bool isHidden = PLOT_IsHidden(m_view, plot.handle);
        const QRgb wanted =
            plot.color >= 0 ? static_cast<QRgb>(plot.color) : COLORS[i % COLOR_COUNT];
        QPen pen(QTV_ReadableColor(QColor(wanted), ground));
        pen.setStyle(plot.isDashed ? Qt::DashLine : Qt::SolidLine);
        curve->setPen(pen);
        curve->setVisible(!isHidden);
        if (QCPPlottableLegendItem *item = legend->itemWithPlottable(curve)) {
            QFont itemFont = font();
            itemFont.setStrikeOut(isHidden);
            item->setTextColor(isHidden ? quiet : text);
            item->setFont(itemFont);
        }
    }
    colorAxes();
}

// An axis of its own has the colour of the pane's first curve.
void PlotWidget::colorAxes()
{
    const QColor ground = palette().color(QPalette::Base);
    const QColor text = palette().color(QPalette::Text);
    const QColor grid = QTV_BlendColors(text, ground, 1.0 / GROUND_STEPS);
    const auto color = [&](QCPAxis *axis, const QColor &of) {
        axis->setBasePen(of);
        axis->setTickPen(of);
        axis->setSubTickPen(QTV_QuietColor(palette(), ground));
        axis->setTickLabelColor(of);
        axis->setLabelColor(of);
        axis->setTickLabelFont(font());
        axis->setLabelFont(font());
        axis->grid()->setPen(grid);
        axis->grid()->setZeroLinePen(QTV_BlendColors(text, ground, 3.0 / GROUND_STEPS));
    };
    for (size_t i = 0; i < m_panes.size(); i++) {
        QColor own = text;
        for (size_t k = m_curves.size(); m_panes.size() > 1 && k-- > 0;) // the first one wins
            if (PLOT_PaneOf(m_view, m_curves[k]->plot().pane) == m_panes[i].number)
                own = m_curves[k]->pen().color();
        color(m_panes[i].x, text);
        color(m_panes[i].y, own);
        // Grids of several panes over each other would be a thicket: the active one's is drawn.
        const bool isOver = m_view.layout == GRAPH_OVERLAID;
        m_panes[i].y->setVisible(!isOver || m_panes.size() <= AXES_SIDE_BY_SIDE || i == m_active);
        m_panes[i].y->grid()->setVisible(!isOver || i == m_active);
    }
}

// --- what is seen ---------------------------------------------------------------------------

void PlotWidget::showView()
{
    const bool isFine = m_view.x.max - m_view.x.min < FINE_CLOCK_S;
    m_clock->setTimeFormat(isFine ? "%h:%m:%s.%z" : "%h:%m:%s");
    for (const Pane &pane : m_panes) {
        pane.x->setRange(m_view.x.min, m_view.x.max);
        const UI_Limits &y = m_view.y[pane.number];
        pane.y->setRange(y.min, y.max);
    }
    prepareOver();
    replot(rpQueuedReplot); // many changes before the next picture are one
}

void PlotWidget::prepareOver()
{
    m_overlay->readout = readout();
    m_overlay->levelAxis = valueAxis(m_view.level.pane);
}

// Cursors follow the mouse: the curves below stay as they were painted.
void PlotWidget::drawOver()
{
    prepareOver();
    m_overlay->layer()->replot();
}

QString PlotWidget::readout() const
{
    QStringList parts;
    for (int i = 0; i < GRAPH_CURSORS; i++) {
        const UI_Cursor &cursor = m_view.cursors[i];
        const PlotCurve *curve = cursor.isShown ? curveOf(cursor.plot) : nullptr;
        if (curve)
            parts << QString("%1: %2, %3 (%4)")
                         .arg(i + 1)
                         .arg(Number(cursor.x), Number(cursor.y), curve->name());
    }
    const UI_Cursor &one = m_view.cursors[0], &two = m_view.cursors[1];
    if (one.isShown && two.isShown) {
        const double dx = two.x - one.x, dy = two.y - one.y;
        parts << QString::fromUtf8("\u0394x %1 (1/\u0394x %2), \u0394y %3 (1/\u0394y %4)")
                     .arg(Number(dx), Number(1 / dx), Number(dy), Number(1 / dy));
    }
    if (!m_underMouse.isEmpty())
        parts << m_underMouse;
    if (m_isXLocked || m_isYLocked)
        parts << (m_isXLocked && m_isYLocked ? "both axes locked"
                  : m_isXLocked              ? "horizontal axis locked"
                                             : "vertical axis locked");
    return parts.join('\n');
}

PlotCurve *PlotWidget::curveOf(int handle) const
{
    for (PlotCurve *curve : m_curves)
        if (curve->plot().handle == handle)
            return curve;
    return nullptr;
}

// By height among the curves that can be seen there.
PlotCurve *PlotWidget::nearestCurve(const QPoint &at) const
{
    const Pane &pane = paneAt(at);
    PlotCurve *nearest = nullptr;
    double best = INFINITY;
    for (PlotCurve *curve : m_curves) {
        const int index = curve->sampleAt(xAxis->pixelToCoord(at.x()));
        if (index < 0 || !curve->visible() || curve->keyAxis() != pane.x)
            continue;
        const double y = (*curve->plot().y)[static_cast<size_t>(index)];
        const double distance = std::fabs(curve->valueAxis()->coordToPixel(y) - at.y());
        // A curve with a gap there is taken only when there is no other.
        if (distance < best || !nearest) {
            nearest = curve;
            best = std::isfinite(distance) ? distance : best;
        }
    }
    return nearest;
}

// Shares the numbers.
std::vector<UI_Plot> PlotWidget::plots() const
{
    std::vector<UI_Plot> all;
    for (const PlotCurve *curve : m_curves)
        all.push_back(curve->plot());
    return all;
}

bool PlotWidget::hasSamples() const
{
    return PLOT_HasSamples(plots(), m_view);
}

void PlotWidget::changeEvent(QEvent *event)
{
    QCustomPlot::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        usePalette();
        replot(rpQueuedReplot);
    }
}
