#include "runtime/qt/plot_widget.h"

#include <algorithm>
#include <cmath>

#include "runtime/qt/look.h"
#include "runtime/qt/plot_curve.h"
#include "runtime/qt/qt_view.h"

namespace {

constexpr int GRAB_PIXELS = 5;      // how near the mouse must be to take a line
constexpr double ZOOM_STEP = 0.8;   // of a key
constexpr double PAN_STEP = 0.1;    // of what is in view
constexpr double FIT_MARGIN = 0.05; // of the height
constexpr int GROUND_STEPS = 8;     // the grid: a colour of 1/8 text, 7/8 ground
const QRgb COLORS[] = {0x1f77b4, 0xd95f02, 0x2ca02c, 0xc0392b, 0x7d4fb3, 0x8c564b,
                       0xd04a9b, 0x5f6a72, 0x8a8a00, 0x0f8f9f, 0x34495e, 0xb8860b,
                       0x006d5b, 0x9b2d5e, 0x3c6e00, 0x4b5fd0};
constexpr size_t COLOR_COUNT = sizeof COLORS / sizeof COLORS[0];

QString Number(double value)
{
    return QString::number(value, 'g', 6);
}

} // namespace

PlotWidget::PlotWidget(QWidget *parent) : QCustomPlot(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setInteractions(QCP::iRangeDrag | QCP::iRangeZoom);
    setMinimumSize(200, 120);
    for (QCPItemStraightLine *&line : m_cursorLines)
        line = new QCPItemStraightLine(this);
    m_level = new QCPItemStraightLine(this);
    m_position = new QCPItemStraightLine(this);
    m_readout = new QCPItemText(this);
    m_readout->setClipToAxisRect(false);
    m_readout->position->setType(QCPItemPosition::ptAxisRectRatio);
    m_readout->position->setCoords(0.01, 0.02);
    m_readout->setPositionAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_readout->setTextAlignment(Qt::AlignLeft);
    legend->setVisible(false);
    axisRect()->insetLayout()->setInsetAlignment(0, Qt::AlignRight | Qt::AlignTop);
    const auto changed = [this] { followAxes(); };
    connect(xAxis, QOverload<const QCPRange &>::of(&QCPAxis::rangeChanged), this, changed);
    connect(yAxis, QOverload<const QCPRange &>::of(&QCPAxis::rangeChanged), this, changed);
    usePalette();
    showRanges();
    drawLines();
}

void PlotWidget::setPlots(const std::vector<UI_Plot> &plots)
{
    for (PlotCurve *curve : m_curves)
        removePlottable(curve);
    m_curves.clear();
    for (const UI_Plot &plot : plots) {
        auto *curve = new PlotCurve(xAxis, yAxis, plot);
        const QString unit = QTV_ToQt(plot.unit);
        curve->setName(QTV_ToQt(plot.name) + (unit.isEmpty() ? "" : " [" + unit + "]"));
        curve->addToLegend();
        m_curves.push_back(curve);
    }
    legend->setVisible(!m_curves.empty());
    usePalette();
    drawLines();
}

void PlotWidget::setAxes(const UI_GraphAxes &axes)
{
    xAxis->setLabel(QTV_ToQt(axes.xLabel));
    yAxis->setLabel(QTV_ToQt(axes.yLabel));
    replot(rpQueuedReplot);
}

void PlotWidget::setView(const UI_GraphView &view)
{
    m_view = view;
    showRanges();
    usePalette(); // hidden curves are dim in the legend
    drawLines();
}

// The program's limits on the axes, without telling it that they have changed.
void PlotWidget::showRanges()
{
    m_isShowing = true;
    xAxis->setRange(m_view.xMin, m_view.xMax);
    yAxis->setRange(m_view.yMin, m_view.yMax);
    m_isShowing = false;
}

// The user has zoomed or panned.
void PlotWidget::followAxes()
{
    const bool isSame = m_view.xMin == xAxis->range().lower &&
                        m_view.xMax == xAxis->range().upper &&
                        m_view.yMin == yAxis->range().lower && m_view.yMax == yAxis->range().upper;
    if (m_isShowing || isSame)
        return;
    m_view.isFitted = false;
    m_view.xMin = xAxis->range().lower;
    m_view.xMax = xAxis->range().upper;
    m_view.yMin = yAxis->range().lower;
    m_view.yMax = yAxis->range().upper;
    tell();
}

void PlotWidget::tell()
{
    emit changedByUser();
    replot(rpQueuedReplot);
}

void PlotWidget::usePalette()
{
    const QColor ground = palette().color(QPalette::Base);
    const QColor text = palette().color(QPalette::Text);
    const QColor quiet = LOOK_Quiet(palette(), ground);
    setBackground(ground);
    for (QCPAxis *axis : {xAxis, yAxis}) {
        axis->setBasePen(text);
        axis->setTickPen(text);
        axis->setSubTickPen(quiet);
        axis->setTickLabelColor(text);
        axis->setLabelColor(text);
        axis->setTickLabelFont(font());
        axis->setLabelFont(font());
        axis->grid()->setPen(LOOK_Blend(text, ground, 1.0 / GROUND_STEPS));
        axis->grid()->setZeroLinePen(LOOK_Blend(text, ground, 3.0 / GROUND_STEPS));
    }
    m_readout->setColor(text);
    m_readout->setFont(font());
    m_readout->setBrush(ground);
    m_readout->setPadding(QMargins(3, 1, 3, 1));
    legend->setBrush(ground);
    legend->setTextColor(text);
    legend->setBorderPen(quiet);
    legend->setFont(font());
    for (size_t i = 0; i < m_curves.size(); i++) {
        PlotCurve *curve = m_curves[i];
        const UI_Plot &plot = curve->plot();
        const bool isHidden = std::count(m_view.hidden.begin(), m_view.hidden.end(), plot.handle);
        const QRgb wanted =
            plot.color >= 0 ? static_cast<QRgb>(plot.color) : COLORS[i % COLOR_COUNT];
        QPen pen(LOOK_Readable(QColor(wanted), ground));
        pen.setStyle(plot.isDashed ? Qt::DashLine : Qt::SolidLine);
        curve->setPen(pen);
        curve->setVisible(!isHidden);
        if (QCPPlottableLegendItem *item = legend->itemWithPlottable(curve)) {
            item->setTextColor(isHidden ? quiet : text);
            item->setFont(font());
        }
    }
    m_level->setPen(QPen(LOOK_Readable(QColor(0xc06000), ground), 1, Qt::DashLine));
    m_position->setPen(QPen(LOOK_Readable(QColor(0xc06000), ground), 1, Qt::DashLine));
    for (QCPItemStraightLine *line : m_cursorLines)
        line->setPen(QPen(text, 1, Qt::DotLine));
}

void PlotWidget::drawLines()
{
    const auto put = [](QCPItemStraightLine *line, bool isShown, double x, double y,
                        bool isAcross) {
        line->setVisible(isShown);
        line->point1->setCoords(x, y);
        if (isAcross) { // two points in pixels of the first: no limit of the axes matters
            line->point1->setTypeX(QCPItemPosition::ptAxisRectRatio);
            line->point2->setTypeX(QCPItemPosition::ptAxisRectRatio);
            line->point1->setCoords(0, y);
            line->point2->setCoords(1, y);
        } else {
            line->point1->setTypeY(QCPItemPosition::ptAxisRectRatio);
            line->point2->setTypeY(QCPItemPosition::ptAxisRectRatio);
            line->point1->setCoords(x, 0);
            line->point2->setCoords(x, 1);
        }
    };
    for (int i = 0; i < GRAPH_CURSORS; i++)
        put(m_cursorLines[i], m_view.cursors[i].isShown, m_view.cursors[i].x, 0, false);
    put(m_level, m_view.level.isShown, 0, m_view.level.value, true);
    put(m_position, m_view.position.isShown, m_view.position.value, 0, false);
    m_readout->setText(readout());
    m_readout->setVisible(!m_readout->text().isEmpty());
    replot(rpQueuedReplot);
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
        const double dx = two.x - one.x;
        parts << QString::fromUtf8("\u0394x %1, \u0394y %2, 1/\u0394x %3")
                     .arg(Number(dx), Number(two.y - one.y), dx == 0 ? "-" : Number(1 / dx));
    }
    if (!m_underMouse.isEmpty())
        parts << m_underMouse;
    return parts.join('\n');
}

PlotCurve *PlotWidget::curveOf(int handle) const
{
    for (PlotCurve *curve : m_curves)
        if (curve->plot().handle == handle)
            return curve;
    return nullptr;
}

PlotCurve *PlotWidget::nearestCurve(const QPoint &at) const
{
    PlotCurve *nearest = nullptr;
    double best = INFINITY;
    for (PlotCurve *curve : m_curves) {
        const int index = curve->sampleAt(xAxis->pixelToCoord(at.x()));
        if (index < 0 || !curve->visible())
            continue;
        const double y = (*curve->plot().y)[static_cast<size_t>(index)];
        const double distance = std::fabs(yAxis->coordToPixel(y) - at.y());
        if (distance < best || !nearest) {
            nearest = curve;
            best = std::isfinite(distance) ? distance : best;
        }
    }
    return nearest;
}

// --- what the user does -----------------------------------------------------------------

void PlotWidget::lock(bool isXLocked, bool isYLocked)
{
    m_isXLocked = isXLocked;
    m_isYLocked = isYLocked;
    axisRect()->setRangeZoomAxes(isXLocked ? nullptr : xAxis, isYLocked ? nullptr : yAxis);
    axisRect()->setRangeDragAxes(isXLocked ? nullptr : xAxis, isYLocked ? nullptr : yAxis);
}

void PlotWidget::fit()
{
    double xMin = INFINITY, xMax = -INFINITY, yMin = INFINITY, yMax = -INFINITY;
    for (const PlotCurve *curve : m_curves) {
        bool hasKeys = false, hasValues = false;
        const QCPRange keys = curve->getKeyRange(hasKeys, QCP::sdBoth);
        const QCPRange values = curve->getValueRange(hasValues, QCP::sdBoth, QCPRange());
        if (!curve->visible() || !hasKeys || !hasValues)
            continue;
        xMin = std::min(xMin, keys.lower);
        xMax = std::max(xMax, keys.upper);
        yMin = std::min(yMin, values.lower);
        yMax = std::max(yMax, values.upper);
    }
    const double margin = yMin < yMax ? (yMax - yMin) * FIT_MARGIN : 0.5;
    m_isShowing = true; // one change for the program, not two
    if (!m_isXLocked && xMin < xMax)
        xAxis->setRange(xMin, xMax);
    if (!m_isYLocked && yMin <= yMax)
        yAxis->setRange(yMin - margin, yMax + margin);
    m_isShowing = false;
    followAxes();
    m_view.isFitted = !m_isXLocked && !m_isYLocked;
    tell();
}

void PlotWidget::zoom(double factor)
{
    if (!m_isXLocked)
        xAxis->scaleRange(factor);
    if (!m_isYLocked)
        yAxis->scaleRange(factor);
}

void PlotWidget::pan(double xShare, double yShare)
{
    if (!m_isXLocked && xShare != 0)
        xAxis->moveRange(xAxis->range().size() * xShare);
    if (!m_isYLocked && yShare != 0)
        yAxis->moveRange(yAxis->range().size() * yShare);
}

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
    drawLines();
    tell();
}

void PlotWidget::toggleCursor(int cursor)
{
    UI_Cursor &put = m_view.cursors[cursor];
    if (put.isShown) {
        put.isShown = false;
        drawLines();
        tell();
        return;
    }
    const QPoint mouse = mapFromGlobal(QCursor::pos());
    const QPoint at = axisRect()->rect().contains(mouse) ? mouse : axisRect()->rect().center();
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

PlotWidget::Drag PlotWidget::dragAt(const QPoint &at) const
{
    if (!axisRect()->rect().contains(at))
        return DRAG_NONE;
    const auto isAt = [](bool isShown, double pixel, int mouse) {
        return isShown && std::fabs(pixel - mouse) <= GRAB_PIXELS;
    };
    for (int i = 0; i < GRAPH_CURSORS; i++)
        if (isAt(m_view.cursors[i].isShown, xAxis->coordToPixel(m_view.cursors[i].x), at.x()))
            return i == 0 ? DRAG_CURSOR_1 : DRAG_CURSOR_2;
    if (isAt(m_view.level.isShown, yAxis->coordToPixel(m_view.level.value), at.y()))
        return DRAG_LEVEL;
    if (isAt(m_view.position.isShown, xAxis->coordToPixel(m_view.position.value), at.x()))
        return DRAG_POSITION;
    return DRAG_NONE;
}

void PlotWidget::dragTo(const QPoint &at)
{
    if (m_drag == DRAG_CURSOR_1 || m_drag == DRAG_CURSOR_2) {
        const int cursor = m_drag == DRAG_CURSOR_1 ? 0 : 1;
        if (const PlotCurve *curve = nearestCurve(at))
            m_view.cursors[cursor].plot = curve->plot().handle;
        putCursor(cursor, xAxis->pixelToCoord(at.x()));
        return;
    }
    if (m_drag == DRAG_LEVEL)
        m_view.level.value = yAxis->pixelToCoord(at.y());
    else
        m_view.position.value = xAxis->pixelToCoord(at.x());
    drawLines();
    tell();
}

bool PlotWidget::toggleLegend(const QPoint &at)
{
    for (PlotCurve *curve : m_curves) {
        const QCPPlottableLegendItem *item = legend->itemWithPlottable(curve);
        if (!item || !item->outerRect().contains(at))
            continue;
        std::vector<int> &hidden = m_view.hidden;
        const auto found = std::find(hidden.begin(), hidden.end(), curve->plot().handle);
        if (found == hidden.end())
            hidden.push_back(curve->plot().handle);
        else
            hidden.erase(found);
        usePalette();
        tell();
        return true;
    }
    return false;
}

void PlotWidget::showUnderMouse(const QPoint &at)
{
    QString text;
    const PlotCurve *curve = axisRect()->rect().contains(at) ? nearestCurve(at) : nullptr;
    if (curve) {
        const auto index = static_cast<size_t>(curve->sampleAt(xAxis->pixelToCoord(at.x())));
        text = QString("%1: %2, %3")
                   .arg(curve->name(), Number((*curve->plot().x)[index]),
                        Number((*curve->plot().y)[index]));
    }
    if (text == m_underMouse)
        return;
    m_underMouse = text;
    drawLines();
}

void PlotWidget::mousePressEvent(QMouseEvent *event)
{
    setFocus();
    if (event->button() == Qt::LeftButton && toggleLegend(event->pos()))
        return;
    m_drag = event->button() == Qt::LeftButton ? dragAt(event->pos()) : DRAG_NONE;
    if (m_drag != DRAG_NONE)
        return;
    const bool isRectangle = event->modifiers() & Qt::ShiftModifier;
    setSelectionRectMode(isRectangle ? QCP::srmZoom : QCP::srmNone);
    QCustomPlot::mousePressEvent(event);
}

void PlotWidget::mouseMoveEvent(QMouseEvent *event)
{
    if (m_drag != DRAG_NONE) {
        dragTo(event->pos());
        return;
    }
    const Drag near = event->buttons() ? DRAG_NONE : dragAt(event->pos());
    setCursor(near == DRAG_NONE    ? Qt::ArrowCursor
              : near == DRAG_LEVEL ? Qt::SizeVerCursor
                                   : Qt::SizeHorCursor);
    showUnderMouse(event->pos());
    QCustomPlot::mouseMoveEvent(event);
}

void PlotWidget::mouseReleaseEvent(QMouseEvent *event)
{
    if (m_drag != DRAG_NONE) {
        m_drag = DRAG_NONE;
        return;
    }
    QCustomPlot::mouseReleaseEvent(event);
}

void PlotWidget::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (axisRect()->rect().contains(event->pos()) && dragAt(event->pos()) == DRAG_NONE)
        fit();
}

void PlotWidget::keyPressEvent(QKeyEvent *event)
{
    const bool isShift = event->modifiers() & Qt::ShiftModifier;
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
        return zoom(ZOOM_STEP);
    case Qt::Key_Minus:
        return zoom(1 / ZOOM_STEP);
    case Qt::Key_Home:
        return fit();
    case Qt::Key_1:
    case Qt::Key_2:
        return toggleCursor(event->key() == Qt::Key_1 ? 0 : 1);
    case Qt::Key_X:
        return lock(!m_isXLocked, m_isYLocked);
    case Qt::Key_Y:
        return lock(m_isXLocked, !m_isYLocked);
    default:
        break;
    }
    if (event->matches(QKeySequence::Copy))
        QApplication::clipboard()->setPixmap(toPixmap());
    else
        QCustomPlot::keyPressEvent(event);
}

void PlotWidget::contextMenuEvent(QContextMenuEvent *event)
{
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction("Show everything\tHome", this, [this] { fit(); });
    const auto addCheck = [&](const QString &text, bool isOn, auto job) {
        QAction *action = menu->addAction(text, this, job);
        action->setCheckable(true);
        action->setChecked(isOn);
    };
    addCheck("Cursor 1\t1", m_view.cursors[0].isShown, [this] { toggleCursor(0); });
    addCheck("Cursor 2\t2", m_view.cursors[1].isShown, [this] { toggleCursor(1); });
    addCheck("Lock the horizontal axis\tX", m_isXLocked,
             [this] { lock(!m_isXLocked, m_isYLocked); });
    addCheck("Lock the vertical axis\tY", m_isYLocked, [this] { lock(m_isXLocked, !m_isYLocked); });
    menu->addSeparator();
    menu->addAction("Copy picture\tCtrl+C", this,
                    [this] { QApplication::clipboard()->setPixmap(toPixmap()); });
    menu->addAction("Save picture...", this, [this] { savePicture(); });
    menu->popup(event->globalPos());
}

void PlotWidget::changeEvent(QEvent *event)
{
    QCustomPlot::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        usePalette();
        replot(rpQueuedReplot);
    }
}

// --- pictures -----------------------------------------------------------------------------

bool PlotWidget::saveTo(const QString &path)
{
    return path.endsWith(".pdf", Qt::CaseInsensitive) ? savePdf(path) : savePng(path);
}

void PlotWidget::savePicture()
{
    auto *dialog = new QFileDialog(this, "Save picture", QString(), "PNG (*.png);;PDF (*.pdf)");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix("png");
    connect(dialog, &QFileDialog::filterSelected, dialog, [dialog](const QString &filter) {
        dialog->setDefaultSuffix(filter.startsWith("PDF") ? "pdf" : "png");
    });
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString &path) {
        if (!saveTo(path))
            QMessageBox::warning(this, "Error", "Could not write the file " + path + ".");
    });
    dialog->open();
}
