// A character display: draws UI_FormatLcd's text, which it is given as a label's, as cells of a
// panel with its own characters dot by dot, and blinks the cursor.
#ifndef RUNTIME_QT_LCD_SCREEN_H
#define RUNTIME_QT_LCD_SCREEN_H

#include <QLabel>
#include <QTimer>

struct UI_LcdPicture;

class LcdScreen : public QLabel {
    Q_OBJECT

public:
    explicit LcdScreen(QWidget *parent = nullptr);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    void drawCell(QPainter *painter, const UI_LcdPicture &picture, const QRectF &cell,
                  char32_t code) const;
    void drawCursor(QPainter *painter, const UI_LcdPicture &picture, const QRectF &cell) const;

    QTimer m_blinking;
    bool m_isDark = false; // the half of the time in which a blinking cell is filled
};

#endif
