#include "runtime/qt/toggle_switch.h"

#include <QPainter>

#include "runtime/qt/look.h"

namespace {

// Pixels.
constexpr int TRACK_WIDTH = 30;
constexpr int TRACK_HEIGHT = 16;
constexpr int KNOB_INSET = 2;
constexpr int TEXT_GAP = 7;
constexpr int FRAME = 3; // room for the focus ring around the track

const QColor COLOR_ON(0x1F, 0x8A, 0x4C);

} // namespace

ToggleSwitch::ToggleSwitch(QWidget *parent) : QCheckBox(parent)
{
}

QSize ToggleSwitch::sizeHint() const
{
    const int textWidth = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
    return QSize(2 * FRAME + TRACK_WIDTH + TEXT_GAP + textWidth,
                 qMax(TRACK_HEIGHT + 2 * FRAME, fontMetrics().height()));
}

QSize ToggleSwitch::minimumSizeHint() const
{
    return sizeHint();
}

bool ToggleSwitch::hitButton(const QPoint &position) const
{
    return rect().contains(position); // beside the text as well: it is all one switch
}

void ToggleSwitch::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF track(FRAME, (height() - TRACK_HEIGHT) / 2.0, TRACK_WIDTH, TRACK_HEIGHT);
    const double radius = TRACK_HEIGHT / 2.0;

    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 1.5));
        painter.drawRoundedRect(track.adjusted(-2, -2, 2, 2), radius + 2, radius + 2);
    }
    // Off is grey, dimmed is paler still; on is the one colour.
    painter.setPen(Qt::NoPen);
    const QColor ground = palette().color(QPalette::Window);
    const QColor off = QTV_BlendColors(palette().color(QPalette::WindowText), ground, 0.45);
    painter.setBrush(!isEnabled()  ? QTV_BlendColors(off, ground, 0.4)
                     : isChecked() ? QTV_ReadableColor(COLOR_ON, ground)
                                   : off);
    painter.drawRoundedRect(track, radius, radius);

    const double knob = TRACK_HEIGHT - 2.0 * KNOB_INSET;
    const double left = isChecked() ? track.right() - KNOB_INSET - knob : track.left() + KNOB_INSET;
    painter.setBrush(isDown() ? QTV_BlendColors(off, ground, 0.3) : ground);
    painter.drawEllipse(QRectF(left, track.top() + KNOB_INSET, knob, knob));

    painter.setPen(
        palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
    const QRectF textRect(track.right() + TEXT_GAP, 0, width() - track.right() - TEXT_GAP,
                          height());
    painter.drawText(textRect, Qt::AlignVCenter | Qt::TextShowMnemonic, text());
}
