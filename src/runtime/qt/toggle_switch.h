// A switch with a sliding knob: a check box by behaviour (Space, access key,
// accessibility), unmistakably on or off by its looks.
#ifndef RUNTIME_QT_TOGGLE_SWITCH_H
#define RUNTIME_QT_TOGGLE_SWITCH_H

#include <QCheckBox>

class ToggleSwitch : public QCheckBox {
    Q_OBJECT

public:
    explicit ToggleSwitch(QWidget *parent = nullptr);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool hitButton(const QPoint &position) const override;
    void paintEvent(QPaintEvent *event) override;
};

#endif
