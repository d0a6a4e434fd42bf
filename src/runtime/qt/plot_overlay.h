// What lies over the curves of a graph: cursors, marks, notes, the rectangle being drawn and
// the readout. On a layer of its own, so that the mouse moves it without a stroke of the
// curves being drawn again.
#ifndef RUNTIME_QT_PLOT_OVERLAY_H
#define RUNTIME_QT_PLOT_OVERLAY_H

#include <qcustomplot.h>

#include "runtime/userint.h"

class PlotOverlay : public QCPAbstractItem {
public:
    // What is drawn is looked up in `view` and `axes` whenever it is; they outlive the overlay.
    PlotOverlay(QCustomPlot *plot, const UI_GraphView *view, const UI_GraphAxes *axes);
    double selectTest(const QPointF &pos, bool onlySelectable, QVariant *details) const override;

    QRect rectangle;                    // pixels; null while none is drawn
    QString readout;                    // in the corner
    const QCPAxis *levelAxis = nullptr; // of the level's pane; null: it is not in the picture

protected:
    void draw(QCPPainter *painter) override;

private:
    void drawUpright(QCPPainter *painter, double x, const QString &tag, int row) const;
    void drawAcross(QCPPainter *painter, const UI_Mark &level) const;
    void drawTag(QCPPainter *painter, const QPointF &corner, const QString &text) const;

    const UI_GraphView *m_view;
    const UI_GraphAxes *m_axes;
};

#endif
