// An indicator: a text with a lamp before it. Lit or dark is the program's to say;
// the lamp's colour comes from the property "lamp" of the Designer file.
#ifndef RUNTIME_QT_LED_LABEL_H
#define RUNTIME_QT_LED_LABEL_H

#include <QColor>
#include <QLabel>

class LedLabel : public QLabel {
    Q_OBJECT
    Q_PROPERTY(bool on READ isOn WRITE setOn)
    Q_PROPERTY(QColor lamp READ lamp WRITE setLamp)

public:
    explicit LedLabel(QWidget *parent = nullptr);
    bool isOn() const
    {
        return m_isOn;
    }
    void setOn(bool isOn);
    QColor lamp() const
    {
        return m_lamp;
    }
    void setLamp(const QColor &color);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    bool m_isOn = false;
    QColor m_lamp = QColor(0x1F, 0x8A, 0x4C);
};

#endif
