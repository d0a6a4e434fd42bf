#include "runtime/qt/led_label.h"

#include <QPainter>

namespace {

constexpr int LAMP_SIZE = 11;
constexpr int LAMP_LEFT = 3;
constexpr int TEXT_LEFT = LAMP_LEFT + LAMP_SIZE + 8;

} // namespace

LedLabel::LedLabel(QWidget *parent) : QLabel(parent)
{
    setContentsMargins(TEXT_LEFT, 0, 0, 0);
}

void LedLabel::setOn(bool isOn)
{
    if (m_isOn == isOn)
        return;
    m_isOn = isOn;
    setAccessibleDescription(isOn ? "on" : "off");
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
    const QColor dark(0xDD, 0xE3, 0xE8);
    painter.setPen(QPen(m_isOn ? m_lamp.darker(125) : QColor(0xA9, 0xB4, 0xBE), 1));
    painter.setBrush(m_isOn && isEnabled() ? m_lamp : dark);
    painter.drawEllipse(
        QRectF(LAMP_LEFT + 0.5, (height() - LAMP_SIZE) / 2.0 + 0.5, LAMP_SIZE - 1, LAMP_SIZE - 1));
}
