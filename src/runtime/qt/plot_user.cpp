// What the user does with a graph: each step changes the view, shows it at once and tells it.
#include <algorithm>
#include <cmath>

#include "runtime/plot_view.h"
#include "runtime/qt/plot_curve.h"
#include "runtime/qt/plot_overlay.h"
#include "runtime/qt/plot_widget.h"

namespace {

constexpr int GRAB_PIXELS = 5; // how near the mouse must be to take a line
constexpr int RECTANGLE_MIN_PIXELS = 4;
constexpr double ZOOM_STEP = 0.8; // of a key or a notch of the wheel
constexpr double PAN_STEP = 0.1;  // of what is in view
constexpr int NOTCH = 120;        // of a wheel, as Qt counts

void Shift(UI_Limits *limits, double by)
{
    limits->min += by;
    limits->max += by;
}

double Middle(const UI_Limits &limits)
{
    return limits.min / 2 + limits.max / 2;
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
    drawOver();
    tell();
}

void PlotWidget::fit(bool isX, bool isY)
{
    if (isX && !m_isXLocked) {
        m_view.isXFitted = true;
        m_view.isFollowing = false;
    }
    m_view.isYFitted = m_view.isYFitted || (isY && !m_isYLocked);
    PLV_Settle(plots(), &m_view);
    tell();
}

void PlotWidget::follow()
{
    if (!m_axes.isLive)
        return;
    m_view.isXFitted = false;
    m_view.isFollowing = true;
    PLV_Settle(plots(), &m_view);
    tell();
}

void PlotWidget::zoom(double share, const Pane &pane, double xCenter, double yCenter, bool isX,
                      bool isY)
{
    if (!hasSamples())
        return;
    if (isX && !m_isXLocked) {
        PLV_Zoom(&m_view.x, share, m_view.isFollowing ? m_view.x.max : xCenter);
        m_view.isXFitted = false;
    }
    if (isY && !m_isYLocked) {
        PLV_Zoom(&m_view.y[pane.number], share, yCenter);
        m_view.isYFitted = false;
    }
    tell();
}

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

// Over the numbers of an axis the wheel zooms that axis; Ctrl: up and down only, Shift: to the
// sides only. A graph that follows its newest sample keeps fitting the heights by itself.
void PlotWidget::wheelEvent(QWheelEvent *event)
{
    const QPoint at = event->position().toPoint();
    const QPoint turned = event->angleDelta(); // Alt, on some desktops Shift, turns it sideways
    const double notches = (turned.y() != 0 ? turned.y() : turned.x()) / double(NOTCH);
    const Pane &pane = paneAt(at);
    const QRect rect = pane.x->axisRect()->rect();
    bool isX = at.x() >= rect.left(), isY = at.y() <= rect.bottom();
    if (event->modifiers() & Qt::ControlModifier)
        isX = false;
    else if ((event->modifiers() & Qt::ShiftModifier) || (isX && m_view.isFollowing))
        isY = false;
    zoom(std::pow(ZOOM_STEP, notches), pane, pane.x->pixelToCoord(at.x()),
         pane.y->pixelToCoord(at.y()), isX, isY);
    event->accept();
}

void PlotWidget::zoomToRectangle()
{
    const QRect drawn = m_overlay->rectangle.normalized();
    m_overlay->rectangle = QRect();
    if (drawn.width() < RECTANGLE_MIN_PIXELS || drawn.height() < RECTANGLE_MIN_PIXELS ||
        !hasSamples()) {
        drawOver();
        return;
    }
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
    usePalette();
    PLV_Settle(plots(), &m_view);
    tell();
}

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
    usePalette();
    PLV_Settle(plots(), &m_view);
    tell();
}

PlotCurve *PlotWidget::legendCurveAt(const QPoint &at) const
{
    for (PlotCurve *curve : m_curves) {
        const QCPPlottableLegendItem *item = legend->itemWithPlottable(curve);
        if (item && item->outerRect().contains(at))
            return curve;
    }
    return nullptr;
}

// --- cursors --------------------------------------------------------------------------------

void PlotWidget::putCursor(int cursor, double x)
{
    UI_Cursor &put = m_view.cursors[cursor];
    PlotCurve *curve = curveOf(put.plot);
    const int index = curve ? curve->sampleAt(x) : -1;
    if (index < 0)
        return;
    m_lastCursor = cursor;
    put.isShown = true;
    put.index = index;
    put.x = (*curve->plot().x)[static_cast<size_t>(index)];
    put.y = (*curve->plot().y)[static_cast<size_t>(index)];
    drawOver();
    emit changedByUser();
}

void PlotWidget::toggleCursor(int cursor)
{
    UI_Cursor &put = m_view.cursors[cursor];
    if (put.isShown) {
        put.isShown = false;
        drawOver();
        emit changedByUser();
        return;
    }
    const QPoint mouse = mapFromGlobal(QCursor::pos());
    QPoint at = m_panes[m_active].x->axisRect()->rect().center();
    for (const QCPAxisRect *rect : axisRects())
        at = rect->rect().contains(mouse) ? mouse : at;
    if (const PlotCurve *curve = nearestCurve(at)) {
        put.plot = curve->plot().handle;
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

// --- mouse ----------------------------------------------------------------------------------

PlotWidget::Drag PlotWidget::dragAt(const QPoint &at) const
{
    const Pane &pane = paneAt(at);
    if (!pane.x->axisRect()->rect().contains(at))
        return DRAG_NONE;
    const auto isAt = [](bool isShown, double pixel, int mouse) {
        return isShown && std::fabs(pixel - mouse) <= GRAB_PIXELS;
    };
    for (int i = 0; i < GRAPH_CURSORS; i++)
        if (isAt(m_view.cursors[i].isShown, xAxis->coordToPixel(m_view.cursors[i].x), at.x()))
            return i == 0 ? DRAG_CURSOR_1 : DRAG_CURSOR_2;
    const QCPAxis *levelAxis = valueAxis(m_view.level.pane);
    if (levelAxis && levelAxis->axisRect() == pane.x->axisRect() &&
        isAt(m_view.level.isShown, levelAxis->coordToPixel(m_view.level.value), at.y()))
        return DRAG_LEVEL;
    if (isAt(m_view.position.isShown, xAxis->coordToPixel(m_view.position.value), at.x()))
        return DRAG_POSITION;
    return DRAG_PAN;
}

void PlotWidget::dragTo(const QPoint &at)
{
    const Pane &pane = paneAt(m_dragFrom);
    switch (m_drag) {
    case DRAG_CURSOR_1:
    case DRAG_CURSOR_2: {
        const int cursor = m_drag == DRAG_CURSOR_1 ? 0 : 1;
        if (const PlotCurve *curve = nearestCurve(at))
            m_view.cursors[cursor].plot = curve->plot().handle;
        putCursor(cursor, xAxis->pixelToCoord(at.x()));
        return;
    }
    case DRAG_LEVEL:
        m_view.level.value = valueAxis(m_view.level.pane)->pixelToCoord(at.y());
        break;
    case DRAG_POSITION:
        m_view.position.value = xAxis->pixelToCoord(at.x());
        break;
    case DRAG_RECTANGLE:
        m_overlay->rectangle = QRect(m_dragFrom, at);
        drawOver();
        return;
    default: {
        if (!hasSamples() || at == m_dragFrom)
            return;
        const QRect rect = pane.x->axisRect()->rect();
        const UI_Limits &x = m_dragView.x, &y = m_dragView.y[pane.number];
        if (!m_isXLocked && at.x() != m_dragFrom.x()) {
            m_view.x = x;
            Shift(&m_view.x, (m_dragFrom.x() - at.x()) * (x.max - x.min) / rect.width());
            m_view.isXFitted = m_view.isFollowing = false;
        }
        if (!m_isYLocked && at.y() != m_dragFrom.y()) {
            m_view.y[pane.number] = y;
            Shift(&m_view.y[pane.number],
                  (at.y() - m_dragFrom.y()) * (y.max - y.min) / rect.height());
            m_view.isYFitted = false;
        }
    }
    }
    tell();
}

void PlotWidget::showUnderMouse(const QPoint &at)
{
    QString text;
    const bool isInside = paneAt(at).x->axisRect()->rect().contains(at);
    const PlotCurve *curve = isInside ? nearestCurve(at) : nullptr;
    if (curve) {
        const auto index = static_cast<size_t>(curve->sampleAt(xAxis->pixelToCoord(at.x())));
        const double y = (*curve->plot().y)[index];
        text = QString("%1: %2, %3")
                   .arg(curve->name(), QString::number((*curve->plot().x)[index], 'g', 6),
                        std::isfinite(y) ? QString::number(y, 'g', 6) : QString("not read"));
    }
    if (text == m_underMouse)
        return;
    m_underMouse = text;
    drawOver();
}

void PlotWidget::mousePressEvent(QMouseEvent *event)
{
    setFocus();
    if (event->button() != Qt::LeftButton)
        return;
    if (PlotCurve *curve = legendCurveAt(event->pos())) {
        toggleCurve(curve);
        return;
    }
    m_dragFrom = event->pos();
    m_dragView = m_view;
    m_drag = dragAt(event->pos());
    if (m_drag == DRAG_PAN && (event->modifiers() & Qt::ShiftModifier))
        m_drag = DRAG_RECTANGLE;
    // Of panes over each other the one whose curve was clicked is the one to be moved.
    const PlotCurve *curve = m_drag == DRAG_PAN ? nearestCurve(event->pos()) : nullptr;
    for (size_t i = 0; curve && i < m_panes.size(); i++)
        if (m_panes[i].y == curve->valueAxis() && i != m_active)
            choosePane(static_cast<int>(i) - static_cast<int>(m_active));
}

void PlotWidget::mouseMoveEvent(QMouseEvent *event)
{
    if (m_drag != DRAG_NONE && (event->buttons() & Qt::LeftButton)) {
        dragTo(event->pos());
        return;
    }
    const Drag near = event->buttons() ? DRAG_NONE : dragAt(event->pos());
    setCursor(near == DRAG_NONE || near == DRAG_PAN ? Qt::ArrowCursor
              : near == DRAG_LEVEL                  ? Qt::SizeVerCursor
                                                    : Qt::SizeHorCursor);
    showUnderMouse(event->pos());
}

void PlotWidget::mouseReleaseEvent(QMouseEvent *)
{
    if (m_drag == DRAG_RECTANGLE)
        zoomToRectangle();
    m_drag = DRAG_NONE;
}

void PlotWidget::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (dragAt(event->pos()) == DRAG_PAN)
        fit(true, true);
}

void PlotWidget::leaveEvent(QEvent *)
{
    m_underMouse.clear();
    drawOver();
}

// --- keys and menu ----------------------------------------------------------------------------

void PlotWidget::keyPressEvent(QKeyEvent *event)
{
    const bool isShift = event->modifiers() & Qt::ShiftModifier;
    if (event->matches(QKeySequence::Copy))
        return copyPicture();
    if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier))
        return QCustomPlot::keyPressEvent(event);
    const int side = event->key() == Qt::Key_Left ? -1 : 1;
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        return isShift ? stepCursor(side) : pan(PAN_STEP * side, 0);
    case Qt::Key_Up:
        return pan(0, PAN_STEP);
    case Qt::Key_Down:
        return pan(0, -PAN_STEP);
    case Qt::Key_Plus:
        return zoomByKey(ZOOM_STEP);
    case Qt::Key_Minus:
        return zoomByKey(1 / ZOOM_STEP);
    case Qt::Key_Home:
        return fit(true, true);
    case Qt::Key_End:
        return follow();
    case Qt::Key_A:
        return fit(false, true);
    case Qt::Key_1:
    case Qt::Key_2:
        return toggleCursor(event->key() == Qt::Key_1 ? 0 : 1);
    case Qt::Key_X:
        return lock(!m_isXLocked, m_isYLocked);
    case Qt::Key_Y:
        return lock(m_isXLocked, !m_isYLocked);
    case Qt::Key_L:
        return setLayout(static_cast<UI_GraphLayout>((m_view.layout + 1) % (GRAPH_STACKED + 1)));
    case Qt::Key_PageUp:
        return choosePane(-1);
    case Qt::Key_PageDown:
        return choosePane(1);
    default:
        QCustomPlot::keyPressEvent(event);
    }
}

void PlotWidget::contextMenuEvent(QContextMenuEvent *event)
{
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto addCheck = [&](QMenu *to, const QString &text, bool isOn, auto job) {
        QAction *action = to->addAction(text, this, job);
        action->setCheckable(true);
        action->setChecked(isOn);
    };
    menu->addAction("Show everything\tHome", this, [this] { fit(true, true); });
    menu->addAction("Fit the heights\tA", this, [this] { fit(false, true); });
    if (m_axes.isLive)
        addCheck(menu, "Follow the newest\tEnd", m_view.isFollowing, [this] { follow(); });
    addCheck(menu, "Cursor 1\t1", m_view.cursors[0].isShown, [this] { toggleCursor(0); });
    addCheck(menu, "Cursor 2\t2", m_view.cursors[1].isShown, [this] { toggleCursor(1); });
    addCheck(menu, "Lock the horizontal axis\tX", m_isXLocked,
             [this] { lock(!m_isXLocked, m_isYLocked); });
    addCheck(menu, "Lock the vertical axis\tY", m_isYLocked,
             [this] { lock(m_isXLocked, !m_isYLocked); });
    menu->addSeparator();
    const char *const LAYOUTS[] = {"One axis for all\tL", "An axis for each\tL",
                                   "One under the other\tL"};
    for (int i = 0; i <= GRAPH_STACKED && m_curves.size() > 1; i++)
        addCheck(menu, LAYOUTS[i], m_view.layout == i,
                 [this, i] { setLayout(static_cast<UI_GraphLayout>(i)); });
    QMenu *curves = m_curves.empty() ? nullptr : menu->addMenu("Curves");
    for (PlotCurve *curve : m_curves)
        addCheck(curves, curve->name(), curve->visible(), [this, handle = curve->plot().handle] {
            if (PlotCurve *meant = curveOf(handle))
                toggleCurve(meant);
        });
    menu->addSeparator();
    menu->addAction("Copy picture\tCtrl+C", this, [this] { copyPicture(); });
    menu->addAction("Save picture...", this, [this] { savePicture(); });
    menu->popup(event->globalPos());
}
