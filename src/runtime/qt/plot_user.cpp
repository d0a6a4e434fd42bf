// What the user does with a graph: each act changes the view, shows it at once and tells it. Which
// mouse or key means which act stands in plot_input.cpp.
#include <algorithm>

#include "runtime/plot_view.h"
#include "runtime/qt/plot_curve.h"
#include "runtime/qt/plot_overlay.h"
#include "runtime/qt/plot_widget.h"

namespace {

constexpr int RECTANGLE_MIN_PIXELS = 4; // a smaller one is a click with a shaking hand

void Shift(UI_Limits *limits, double by)
{
    limits->min += by;
    limits->max += by;
}

double Middle(const UI_Limits &limits)
{
    return limits.min / 2 + limits.max / 2; // the sum of large ones may be no number
}

} // namespace

void PlotWidget::tell()
{
    showView();
    emit changedByUser();
}

// --- zoom and pan -----------------------------------------------------------------------

// A locked axis stays where it is, whatever comes.
void PlotWidget::lock(bool isXLocked, bool isYLocked)
{
    m_isXLocked = isXLocked;
    m_isYLocked = isYLocked;
    m_view.isXFitted = m_view.isXFitted && !isXLocked;
    m_view.isYFitted = m_view.isYFitted && !isYLocked;
    drawOver(); // the corner says so
    tell();
}

void PlotWidget::fit(bool isX, bool isY)
{
    if (isX && !m_isXLocked) {
        m_view.isXFitted = true;
        m_view.isFollowing = false;
    }
    m_view.isYFitted = m_view.isYFitted || (isY && !m_isYLocked);
    PLOT_SettleView(plots(), &m_view);
    tell();
}

void PlotWidget::follow()
{
    if (!m_axes.isLive) // a recording has no newest sample to come
        return;
    m_view.isXFitted = false;
    m_view.isFollowing = true;
    PLOT_SettleView(plots(), &m_view);
    tell();
}

void PlotWidget::zoom(double share, const Pane &pane, double xCenter, double yCenter, bool isX,
                      bool isY)
{
    if (!hasSamples())
        return;
    if (isX && !m_isXLocked) {
        // Following goes on with another width: the newest sample stays at the edge.
        PLOT_Zoom(&m_view.x, share, m_view.isFollowing ? m_view.x.max : xCenter);
        m_view.isXFitted = false;
    }
    if (isY && !m_isYLocked) {
        PLOT_Zoom(&m_view.y[pane.number], share, yCenter);
        m_view.isYFitted = false;
    }
    tell();
}

// A graph that follows fits its heights by itself, and a key is meant for the times then.
void PlotWidget::zoomByKey(double share)
{
    const Pane &pane = m_panes[m_active];
    zoom(share, pane, Middle(m_view.x), Middle(m_view.y[pane.number]), true, !m_view.isFollowing);
}

void PlotWidget::pan(double xShare, double yShare)
{
    if (!hasSamples())
        return;
    UI_Limits &y = m_view.y[m_panes[m_active].number];
    if (!m_isXLocked && xShare != 0) {
        Shift(&m_view.x, (m_view.x.max - m_view.x.min) * xShare);
        m_view.isXFitted = m_view.isFollowing = false;
    }
    if (!m_isYLocked && yShare != 0) {
        Shift(&y, (y.max - y.min) * yShare);
        m_view.isYFitted = false;
    }
    tell();
}

void PlotWidget::zoomToRectangle()
{
    const QRect drawn = m_overlay->rectangle.normalized(); // drawn from any corner
    m_overlay->rectangle = QRect();
    if (drawn.width() < RECTANGLE_MIN_PIXELS || drawn.height() < RECTANGLE_MIN_PIXELS ||
        !hasSamples()) {
        drawOver();
        return;
    }
    // Of stacked panes the one in which it began says what its heights mean.
    const Pane &pane = paneAt(m_dragFrom);
    if (!m_isXLocked) {
        m_view.x = {pane.x->pixelToCoord(drawn.left()), pane.x->pixelToCoord(drawn.right())};
        m_view.isXFitted = m_view.isFollowing = false;
    }
    if (!m_isYLocked) {
        m_view.y[pane.number] = {pane.y->pixelToCoord(drawn.bottom()),
                                 pane.y->pixelToCoord(drawn.top())};
        m_view.isYFitted = false;
    }
    tell();
}

// --- curves and panes ---------------------------------------------------------------------

void PlotWidget::setLayout(UI_GraphLayout layout)
{
    m_view.layout = layout;
    m_view.isYFitted = !m_isYLocked; // other curves share an axis now
    buildPanes();
    usePalette(); // new axes have Qt's colours
    PLOT_SettleView(plots(), &m_view);
    tell();
}

// Round, so that one key reaches all of them.
void PlotWidget::choosePane(int step)
{
    const int count = static_cast<int>(m_panes.size());
    m_active = static_cast<size_t>((static_cast<int>(m_active) + step + count) % count);
    colorAxes();
    replot(rpQueuedReplot);
}

void PlotWidget::toggleCurve(PlotCurve *curve)
{
    std::vector<int> &hidden = m_view.hidden;
    const auto found = std::find(hidden.begin(), hidden.end(), curve->plot().handle);
    if (found == hidden.end())
        hidden.push_back(curve->plot().handle);
    else
        hidden.erase(found);
    usePalette();                      // hidden curves are dim in the legend
    PLOT_SettleView(plots(), &m_view); // what is fitted, is fitted to what can be seen
    tell();
}

// --- cursors --------------------------------------------------------------------------------

// On the sample nearest to x: between two samples nothing was measured.
void PlotWidget::putCursor(int cursor, double x)
{
    UI_Cursor &moved = m_view.cursors[cursor];
    PlotCurve *curve = curveOf(moved.plot);
    const int index = curve ? curve->sampleAt(x) : -1;
    if (index < 0)
        return;
    m_lastCursor = cursor; // that Shift and an arrow move
    moved.isShown = true;
    moved.index = index;
    moved.x = (*curve->plot().x)[static_cast<size_t>(index)];
    moved.y = (*curve->plot().y)[static_cast<size_t>(index)];
    drawOver();
    emit changedByUser();
}

void PlotWidget::toggleCursor(int cursor)
{
    UI_Cursor &toggled = m_view.cursors[cursor];
    if (toggled.isShown) {
        toggled.isShown = false;
        drawOver();
        emit changedByUser();
        return;
    }
    // Where the mouse is, or in the middle when it is elsewhere: the keyboard alone must do.
    const QPoint mouse = mapFromGlobal(QCursor::pos());
    QPoint at = m_panes[m_active].x->axisRect()->rect().center();
    for (const QCPAxisRect *rect : axisRects())
        at = rect->rect().contains(mouse) ? mouse : at;
    if (const PlotCurve *curve = nearestCurve(at)) {
        toggled.plot = curve->plot().handle;
        putCursor(cursor, xAxis->pixelToCoord(at.x()));
    }
}

void PlotWidget::stepCursor(int samples)
{
    const UI_Cursor &cursor = m_view.cursors[m_lastCursor];
    const PlotCurve *curve = cursor.isShown ? curveOf(cursor.plot) : nullptr;
    if (!curve)
        return;
    const int last = static_cast<int>(curve->plot().x->size()) - 1;
    const int index = std::clamp(cursor.index + samples, 0, last);
    putCursor(m_lastCursor, (*curve->plot().x)[static_cast<size_t>(index)]);
}
