// The graph control: curves in one or several panes with zoom, pan, two cursors, marks to
// drag, a legend and a readout. All of it happens on the window's thread; what the user has
// changed is told by changedByUser, and view() says how it looks now: the axes only follow it.
#ifndef RUNTIME_QT_PLOT_WIDGET_H
#define RUNTIME_QT_PLOT_WIDGET_H

#include <qcustomplot.h>
#include <vector>

#include "runtime/userint.h"

class PlotCurve;
class PlotOverlay;

class PlotWidget : public QCustomPlot {
    Q_OBJECT
public:
    explicit PlotWidget(QWidget *parent = nullptr);
    void setPlots(const std::vector<UI_Plot> &plots);
    void setAxes(const UI_GraphAxes &axes);
    void setView(const UI_GraphView &view);
    const UI_GraphView &view() const
    {
        return m_view;
    }
    const UI_GraphAxes &axes() const
    {
        return m_axes;
    }
    QString readout() const;            // the lines in the corner
    QCPAxis *valueAxis(int pane) const; // of a plot's or mark's pane; null when there is none
    // PNG, PDF or, where this build knows it, SVG by the path's ending. False when it could
    // not be written.
    bool saveTo(const QString &path);

signals:
    void changedByUser();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    enum Drag {
        DRAG_NONE,
        DRAG_PAN,
        DRAG_RECTANGLE,
        DRAG_CURSOR_1,
        DRAG_CURSOR_2,
        DRAG_LEVEL,
        DRAG_POSITION
    };
    struct Pane {
        int number;
        QCPAxis *x, *y;
    };
    // what is shown
    void buildPanes();
    void usePalette();
    void colorAxes();
    void showView();
    void prepareOver();
    void drawOver();
    PlotCurve *curveOf(int handle) const;
    PlotCurve *nearestCurve(const QPoint &at) const;
    const Pane &paneAt(const QPoint &at) const;
    std::vector<UI_Plot> plots() const;
    bool hasSamples() const;
    // what the user does
    void tell();
    void lock(bool isXLocked, bool isYLocked);
    void fit(bool isX, bool isY);
    void follow();
    void zoom(double share, const Pane &pane, double xCenter, double yCenter, bool isX, bool isY);
    void zoomByKey(double share);
    void pan(double xShare, double yShare);
    void toggleCursor(int cursor);
    void putCursor(int cursor, double x);
    void stepCursor(int samples);
    void choosePane(int step);
    void setLayout(UI_GraphLayout layout);
    void toggleCurve(PlotCurve *curve);
    Drag dragAt(const QPoint &at) const;
    void dragTo(const QPoint &at);
    void zoomToRectangle();
    void showUnderMouse(const QPoint &at);
    // pictures
    void savePicture();
    void copyPicture();

    UI_GraphView m_view;
    UI_GraphAxes m_axes;
    std::vector<PlotCurve *> m_curves;
    std::vector<Pane> m_panes; // by rising number; never empty
    size_t m_active = 0;       // in m_panes: what keys move up and down
    QCPLayoutGrid *m_rects;
    QCPMarginGroup *m_margins = nullptr; // the panes' left edges lie in one line
    PlotOverlay *m_overlay;
    QSharedPointer<QCPAxisTickerTime> m_clock{new QCPAxisTickerTime};
    QString m_underMouse;
    Drag m_drag = DRAG_NONE;
    QPoint m_dragFrom;
    UI_GraphView m_dragView; // when the drag began
    int m_lastCursor = 0;
    bool m_isXLocked = false, m_isYLocked = false;
};

#endif
