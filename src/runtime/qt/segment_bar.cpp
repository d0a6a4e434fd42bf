#include "runtime/qt/segment_bar.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include "runtime/qt/look.h"
#include "runtime/qt/qt_view.h"

namespace {

constexpr int BAR_WIDTH = 240, BAR_HEIGHT = 26; // wished
constexpr double SEGMENT_WIDTH_MIN = 3;         // pixels; less is not seen

} // namespace

SegmentBar::SegmentBar(QWidget *parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize SegmentBar::sizeHint() const
{
    return {BAR_WIDTH, BAR_HEIGHT};
}

void SegmentBar::setSegments(const std::vector<UI_Segment> &segments)
{
    m_segments = segments;
    QString description; // for those who cannot see the bar
    for (const UI_Segment &segment : m_segments)
        description += QTV_ToQt(segment.tip) + "\n";
    setAccessibleDescription(description);
    update();
}

QColor SegmentBar::colorOf(unsigned style) const
{
    const QColor ground = palette().color(QPalette::Base);
    // What went wrong shows through whatever else is said of the segment.
    if (style & UIS_WARNING)
        return QTV_ReadableColor(QColor(0xC0, 0x1C, 0x28), ground);
    if (style & UIS_GOOD)
        return QTV_ReadableColor(QColor(0x1F, 0x8A, 0x4C), ground);
    if (style & UIS_DIM)
        return QTV_BlendColors(palette().color(QPalette::Text), ground, 0.45);
    return QTV_ReadableColor(QColor(0x1D, 0x6F, 0xB8), ground);
}

QRectF SegmentBar::rectOf(const UI_Segment &segment) const
{
    const QRectF inside = QRectF(rect()).adjusted(1, 1, -1, -1);
    const double length = (segment.last - segment.first) * inside.width();
    // One byte of a megabyte is drawn as wide as can be seen, inside the bar even at its end.
    const double wide = qMin(qMax(SEGMENT_WIDTH_MIN, length), inside.width());
    const double left = qMin(segment.first * inside.width(), inside.width() - wide);
    return {inside.left() + left, inside.top(), wide, inside.height()};
}

void SegmentBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QColor ground = palette().color(QPalette::Base);
    painter.setPen(QTV_BlendColors(palette().color(QPalette::Text), ground, 0.5));
    painter.setBrush(ground);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    for (const UI_Segment &segment : m_segments)
        painter.fillRect(rectOf(segment), colorOf(segment.style));
}

// The segment that lies on top there says what it is.
bool SegmentBar::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto *help = static_cast<QHelpEvent *>(event);
    QString tip;
    for (const UI_Segment &segment : m_segments)
        if (rectOf(segment).contains(help->pos()))
            tip = QTV_ToQt(segment.tip);
    QToolTip::showText(help->globalPos(), tip, this);
    return true;
}
