#include "runtime/qt/plot_overlay.h"

#include "runtime/qt/look.h"
#include "runtime/qt/plot_widget.h"
#include "runtime/qt/qt_view.h"

namespace {

constexpr int TAG_ROOM = 3; // pixels around the text of a tag

} // namespace

PlotOverlay::PlotOverlay(PlotWidget *plot) : QCPAbstractItem(plot), m_plot(plot)
{
    setClipToAxisRect(false);
    setLayer("overlay");
    layer()->setMode(QCPLayer::lmBuffered);
}

double PlotOverlay::selectTest(const QPointF &, bool, QVariant *) const
{
    return -1;
}

void PlotOverlay::draw(QCPPainter *painter)
{
    const UI_GraphView &view = m_plot->view();
    const QColor text = m_plot->palette().color(QPalette::Text);
    painter->setAntialiasing(false);
    painter->setFont(m_plot->font());
    painter->setPen(QPen(LOOK_Quiet(m_plot->palette(), m_plot->palette().color(QPalette::Base)), 1,
                         Qt::DotLine));
    for (const UI_Note &note : m_plot->axes().notes)
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
    const QString readout = m_plot->readout();
    if (!readout.isEmpty())
        drawTag(painter, m_plot->axisRect()->rect().topLeft() + QPointF(8, 4), readout);
}

// Through all panes; its tag at the foot (row 0) or the top (row 1) of the picture.
void PlotOverlay::drawUpright(QCPPainter *painter, double x, const QString &tag, int row) const
{
    if (!(x >= m_plot->view().x.min && x <= m_plot->view().x.max))
        return;
    const double pixel = m_plot->xAxis->coordToPixel(x);
    double foot = 0, top = 1e9;
    for (const QCPAxisRect *rect : m_plot->axisRects()) {
        painter->drawLine(QLineF(pixel, rect->top(), pixel, rect->bottom()));
        foot = std::max<double>(foot, rect->bottom());
        top = std::min<double>(top, rect->top());
    }
    const double height = painter->fontMetrics().height() + 2 * TAG_ROOM;
    const double width = painter->fontMetrics().horizontalAdvance(tag) + 2 * TAG_ROOM;
    const double right = m_plot->axisRect()->right();
    const double left = row == 0 ? pixel - width / 2 : pixel + 1;
    drawTag(painter, QPointF(std::min(left, right - width), row == 0 ? foot - height : top), tag);
}

void PlotOverlay::drawAcross(QCPPainter *painter, const UI_Mark &level) const
{
    const QCPAxis *axis = m_plot->valueAxis(level.pane);
    if (!axis || !axis->range().contains(level.value))
        return;
    const QRect rect = axis->axisRect()->rect();
    const double pixel = axis->coordToPixel(level.value);
    painter->drawLine(QLineF(rect.left(), pixel, rect.right(), pixel));
    const double height = painter->fontMetrics().height() + 2 * TAG_ROOM;
    const double width = painter->fontMetrics().horizontalAdvance("level") + 2 * TAG_ROOM;
    drawTag(painter, QPointF(rect.right() - width, pixel - height / 2), "level");
}

// A text on the ground of the picture, so that a curve behind it does not spoil it.
void PlotOverlay::drawTag(QCPPainter *painter, const QPointF &corner, const QString &text) const
{
    QRectF box = painter->fontMetrics().boundingRect(QRect(0, 0, 4000, 4000),
                                                     Qt::AlignLeft | Qt::AlignTop, text);
    box.moveTo(corner + QPointF(TAG_ROOM, TAG_ROOM));
    const QPen pen = painter->pen();
    painter->setPen(Qt::NoPen);
    painter->setBrush(m_plot->palette().color(QPalette::Base));
    painter->drawRect(box.adjusted(-TAG_ROOM, -TAG_ROOM, TAG_ROOM, TAG_ROOM));
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(pen.color()));
    painter->drawText(box, Qt::AlignLeft | Qt::AlignTop | Qt::TextDontClip, text);
    painter->setPen(pen);
}
