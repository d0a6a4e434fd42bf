// A stretch drawn as a bar with coloured segments on it, each with a tip.
#ifndef RUNTIME_QT_SEGMENT_BAR_H
#define RUNTIME_QT_SEGMENT_BAR_H

#include <QWidget>
#include <vector>

#include "runtime/userint.h"

class SegmentBar : public QWidget {
    Q_OBJECT

public:
    explicit SegmentBar(QWidget *parent = nullptr);
    void setSegments(const std::vector<UI_Segment> &segments);
    const std::vector<UI_Segment> &segments() const
    {
        return m_segments;
    }
    QSize sizeHint() const override;
    // Colour of a segment on the bar's ground.
    QColor colorOf(unsigned style) const;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;

private:
    QRectF rectOf(const UI_Segment &segment) const;

    std::vector<UI_Segment> m_segments;
};

#endif
