// One curve of a graph, drawn from the shared numbers without a copy: as a line while its
// samples are few, as one stroke a column of pixels when they are many.
#ifndef RUNTIME_QT_PLOT_CURVE_H
#define RUNTIME_QT_PLOT_CURVE_H

#include <qcustomplot.h>

#include "runtime/plot_thin.h"

class PlotCurve : public QCPAbstractPlottable {
public:
    PlotCurve(QCPAxis *keyAxis, QCPAxis *valueAxis, const UI_Plot &plot);
    const UI_Plot &plot() const
    {
        return m_plot;
    }
    void setPlot(const UI_Plot &plot); // other samples are looked through once
    // The sample nearest to x; -1 when there is none.
    int sampleAt(double x) const;

    double selectTest(const QPointF &pos, bool onlySelectable, QVariant *details) const override;
    QCPRange getKeyRange(bool &isFound, QCP::SignDomain domain) const override;
    QCPRange getValueRange(bool &isFound, QCP::SignDomain domain,
                           const QCPRange &keys) const override;

protected:
    void draw(QCPPainter *painter) override;
    void drawLegendIcon(QCPPainter *painter, const QRectF &rect) const override;

private:
    void drawSamples(QCPPainter *painter, size_t first, size_t end) const;
    void drawColumns(QCPPainter *painter) const;
    QPointF pointAt(size_t index) const;

    UI_Plot m_plot;
    PLOT_ThinCurve m_curve;
};

#endif
