// The graph control: curves with zoom, pan, two cursors, marks to drag, a legend and a
// readout. All of it happens on the window's thread; what the user has changed is told by
// changedByUser, and view() says how it looks now.
#ifndef RUNTIME_QT_PLOT_WIDGET_H
#define RUNTIME_QT_PLOT_WIDGET_H

#include <qcustomplot.h>
#include <vector>

#include "runtime/userint.h"

class PlotCurve;

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
    QString readout() const; // the line above the curves
    // PNG or PDF by the path's ending. False when it could not be written.
    bool saveTo(const QString &path);

signals:
    void changedByUser();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    enum Drag { DRAG_NONE, DRAG_CURSOR_1, DRAG_CURSOR_2, DRAG_LEVEL, DRAG_POSITION };
    void usePalette();
    void drawLines();
    void followAxes();
    void showRanges();
    void lock(bool isXLocked, bool isYLocked);
    void fit();
    void zoom(double factor);
    void pan(double xShare, double yShare);
    void toggleCursor(int cursor);
    void putCursor(int cursor, double x);
    void stepCursor(int samples);
    Drag dragAt(const QPoint &at) const;
    void dragTo(const QPoint &at);
    bool toggleLegend(const QPoint &at);
    void showUnderMouse(const QPoint &at);
    void savePicture();
    void tell();
    PlotCurve *curveOf(int handle) const;
    PlotCurve *nearestCurve(const QPoint &at) const;

    UI_GraphView m_view;
    std::vector<PlotCurve *> m_curves;
    QCPItemStraightLine *m_cursorLines[GRAPH_CURSORS];
    QCPItemStraightLine *m_level, *m_position;
    QCPItemText *m_readout;
    QString m_underMouse;
    Drag m_drag = DRAG_NONE;
    int m_lastCursor = 0;
    bool m_isXLocked = false, m_isYLocked = false;
    bool m_isShowing = false; // ranges change because the program said so
};

#endif
