// Mouse and keys of a graph: which of the acts in plot_user.cpp is meant, and on what.
#include <cmath>

#include "runtime/qt/plot_curve.h"
#include "runtime/qt/plot_overlay.h"
#include "runtime/qt/plot_widget.h"

namespace {

constexpr int GRAB_PIXELS = 5;    // how near the mouse must be to take a line
constexpr double ZOOM_STEP = 0.8; // of a key or a notch of the wheel
constexpr double PAN_STEP = 0.1;  // of what is in view
constexpr int NOTCH = 120;        // of a wheel, as Qt counts

} // namespace

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

// What a press there would move. Cursors come before marks: they were put there last.
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
    // A level lies in its own pane alone; a position goes through all of them.
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
        // It goes over to the curve the mouse is nearest to.
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
        drawOver(); // the view changes when the button is let go
        return;
    default: {
        if (!hasSamples() || at == m_dragFrom)
            return;
        // Always from where the drag began: many small steps would add up their rounding, and
        // moving back brings the very same view again.
        const QRect rect = pane.x->axisRect()->rect();
        const UI_Limits &x = m_dragView.x, &y = m_dragView.y[pane.number];
        const double byX = (m_dragFrom.x() - at.x()) * (x.max - x.min) / rect.width();
        const double byY = (at.y() - m_dragFrom.y()) * (y.max - y.min) / rect.height();
        // An axis along which the mouse has not moved stays fitted.
        if (!m_isXLocked && at.x() != m_dragFrom.x()) {
            m_view.x = {x.min + byX, x.max + byX};
            m_view.isXFitted = m_view.isFollowing = false;
        }
        if (!m_isYLocked && at.y() != m_dragFrom.y()) {
            m_view.y[pane.number] = {y.min + byY, y.max + byY};
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
    if (text == m_underMouse) // most moves change nothing
        return;
    m_underMouse = text;
    drawOver();
}

void PlotWidget::mousePressEvent(QMouseEvent *event)
{
    setFocus();
    if (event->button() != Qt::LeftButton)
        return;
    for (PlotCurve *curve : m_curves) { // a click in the legend hides and shows
        const QCPPlottableLegendItem *item = legend->itemWithPlottable(curve);
        if (item && item->outerRect().contains(event->pos()))
            return toggleCurve(curve);
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
    // The pointer's shape says what a press would take.
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

// Not on a line: two quick presses there are meant for the line.
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

// The menu below names them; what is no key of the graph goes on to the window's shortcuts.
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
    menu->setAttribute(Qt::WA_DeleteOnClose); // it does not block: live curves go on behind it
    // The keys behind a tab are only shown; keyPressEvent hears them.
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
        // By handle: new curves may have come while the menu was open.
        addCheck(curves, curve->name(), curve->visible(), [this, handle = curve->plot().handle] {
            if (PlotCurve *meant = curveOf(handle))
                toggleCurve(meant);
        });
    menu->addSeparator();
    menu->addAction("Copy picture\tCtrl+C", this, [this] { copyPicture(); });
    menu->addAction("Save picture...", this, [this] { savePicture(); });
    menu->popup(event->globalPos());
}
