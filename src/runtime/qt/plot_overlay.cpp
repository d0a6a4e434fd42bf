#include "runtime/qt/plot_overlay.h"

#include "runtime/qt/look.h"
#include "runtime/qt/qt_view.h"

namespace {

constexpr int TAG_ROOM = 3;           // pixels around the text of a tag
constexpr int TAG_MAX_PIXELS = 4000;  // more than any window
constexpr QPointF CORNER_SPACE(8, 4); // of the readout, off the axes
constexpr int TAG_ALPHA = 215;        // a curve behind it is still to be seen

} // namespace

PlotOverlay::PlotOverlay(QCustomPlot *plot, const UI_GraphView *view, const UI_GraphAxes *axes)
    : QCPAbstractItem(plot), m_view(view), m_axes(axes)
{
    setClipToAxisRect(false); // upright lines go through all panes
    setLayer("overlay");
    layer()->setMode(QCPLayer::lmBuffered);
}

double PlotOverlay::selectTest(const QPointF &, bool, QVariant *) const
{
    return -1; // PlotWidget finds by itself what the mouse is on
}

void PlotOverlay::draw(QCPPainter *painter)
{
    const UI_GraphView &view = *m_view;
    const QColor text = mParentPlot->palette().color(QPalette::Text);
    painter->setAntialiasing(false);
    painter->setFont(mParentPlot->font());
    painter->setPen(
        QPen(QTV_QuietColor(mParentPlot->palette(), mParentPlot->palette().color(QPalette::Base)),
             1, Qt::DotLine));
    // From the quietest to what was put there last: what comes later lies on top.
    for (const UI_Note &note : m_axes->notes)
        drawUpright(painter, note.x, QTV_ToQt(note.text), 1);
    painter->setPen(QPen(text, 1, Qt::DotLine));
    for (int i = 0; i < GRAPH_CURSORS; i++)
        if (view.cursors[i].isShown)
            drawUpright(painter, view.cursors[i].x, QString::number(i + 1), 0);
    painter->setPen(QPen(text, 1, Qt::DashLine));
    if (view.position.isShown)
        drawUpright(painter, view.position.value, "trigger", 0);
    if (view.level.isShown)
        drawAcross(painter, view.level);
    painter->setPen(QPen(text));
    if (!rectangle.isNull())
        painter->drawRect(rectangle);
    if (!readout.isEmpty())
        drawTag(painter, mParentPlot->axisRect()->rect().topLeft() + CORNER_SPACE, readout);
}

// Through all panes; its tag at the foot (row 0) or the top (row 1) of the picture.
void PlotOverlay::drawUpright(QCPPainter *painter, double x, const QString &tag, int row) const
{
    if (!(x >= m_view->x.min && x <= m_view->x.max))
        return;
    const double pixel = mParentPlot->xAxis->coordToPixel(x);
    double foot = 0, top = 1e9;
    for (const QCPAxisRect *rect : mParentPlot->axisRects()) {
        painter->drawLine(QLineF(pixel, rect->top(), pixel, rect->bottom()));
        foot = std::max<double>(foot, rect->bottom());
        top = std::min<double>(top, rect->top());
    }
    const double height = painter->fontMetrics().height() + 2 * TAG_ROOM;
    const double width = painter->fontMetrics().horizontalAdvance(tag) + 2 * TAG_ROOM;
    const double right = mParentPlot->axisRect()->right();
    // Below a cursor its number; beside a note its text, which is longer.
    const double left = row == 0 ? pixel - width / 2 : pixel + 1;
    drawTag(painter, QPointF(std::min(left, right - width), row == 0 ? foot - height : top), tag);
}

void PlotOverlay::drawAcross(QCPPainter *painter, const UI_Mark &level) const
{
    if (!levelAxis || !levelAxis->range().contains(level.value))
        return;
    const QRect rect = levelAxis->axisRect()->rect();
    const double pixel = levelAxis->coordToPixel(level.value);
    painter->drawLine(QLineF(rect.left(), pixel, rect.right(), pixel));
    const double height = painter->fontMetrics().height() + 2 * TAG_ROOM;
    const double width = painter->fontMetrics().horizontalAdvance("level") + 2 * TAG_ROOM;
    drawTag(painter, QPointF(rect.right() - width, pixel - height / 2), "level");
}

// A text on the ground of the picture, so that a curve behind it does not spoil it.
void PlotOverlay::drawTag(QCPPainter *painter, const QPointF &corner, const QString &text) const
{
    QRectF box = painter->fontMetrics().boundingRect(QRect(0, 0, TAG_MAX_PIXELS, TAG_MAX_PIXELS),
                                                     Qt::AlignLeft | Qt::AlignTop, text);
    box.moveTo(corner + QPointF(TAG_ROOM, TAG_ROOM));
    const QPen pen = painter->pen();
    painter->setPen(Qt::NoPen);
    QColor ground = mParentPlot->palette().color(QPalette::Base);
    ground.setAlpha(TAG_ALPHA);
    painter->setBrush(ground);
    painter->drawRect(box.adjusted(-TAG_ROOM, -TAG_ROOM, TAG_ROOM, TAG_ROOM));
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(pen.color()));
    painter->drawText(box, Qt::AlignLeft | Qt::AlignTop | Qt::TextDontClip, text);
    painter->setPen(pen);
}
