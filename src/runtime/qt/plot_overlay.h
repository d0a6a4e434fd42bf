// What lies over the curves of a graph: cursors, marks, notes, the rectangle being drawn and
// the readout. On a layer of its own, so that the mouse moves it without a stroke of the
// curves being drawn again.
#ifndef RUNTIME_QT_PLOT_OVERLAY_H
#define RUNTIME_QT_PLOT_OVERLAY_H

#include <qcustomplot.h>

#include "runtime/userint.h"

class PlotWidget;

class PlotOverlay : public QCPAbstractItem {
public:
    explicit PlotOverlay(PlotWidget *plot);
    double selectTest(const QPointF &pos, bool onlySelectable, QVariant *details) const override;

    QRect rectangle; // pixels; null while none is drawn

protected:
    void draw(QCPPainter *painter) override;

private:
    void drawUpright(QCPPainter *painter, double x, const QString &tag, int row) const;
    void drawAcross(QCPPainter *painter, const UI_Mark &level) const;
    void drawTag(QCPPainter *painter, const QPointF &corner, const QString &text) const;

    PlotWidget *m_plot;
};

#endif
