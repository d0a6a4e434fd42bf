#include "runtime/qt/led_label.h"

#include <QPainter>

#include "runtime/qt/look.h"

namespace {

// Pixels, for a text of 12.
constexpr int LAMP_SIZE = 11;
constexpr int LAMP_LEFT = 3;
constexpr int TEXT_LEFT = LAMP_LEFT + LAMP_SIZE + 8;

} // namespace

LedLabel::LedLabel(QWidget *parent) : QLabel(parent)
{
    // The text is the label's own affair; the lamp is painted into the margin it leaves.
    setContentsMargins(TEXT_LEFT, 0, 0, 0);
}

void LedLabel::setOn(bool isOn)
{
    if (m_isOn == isOn)
        return;
    m_isOn = isOn;
    setAccessibleDescription(isOn ? "on" : "off"); // the lamp says nothing to a screen reader
    update();
}

void LedLabel::setLamp(const QColor &color)
{
    m_lamp = color;
    update();
}

void LedLabel::paintEvent(QPaintEvent *event)
{
    QLabel::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor ground = palette().color(QPalette::Window);
    const QColor rim = QTV_BlendColors(palette().color(QPalette::WindowText), ground, 0.5);
    // A dimmed one is dark: what it shows may not hold any more.
    const bool isLit = m_isOn && isEnabled();
    painter.setPen(QPen(isLit ? QTV_ReadableColor(m_lamp, ground) : rim, 1));
    painter.setBrush(isLit ? QTV_ReadableColor(m_lamp, ground) : QTV_BlendColors(rim, ground, 0.2));
    painter.drawEllipse(
        QRectF(LAMP_LEFT + 0.5, (height() - LAMP_SIZE) / 2.0 + 0.5, LAMP_SIZE - 1, LAMP_SIZE - 1));
}
