// The window of one panel, on its own or inside another panel. Tells the program by events
// that the user closes, resizes, moves or turns to it; whether it goes is the program's
// decision.
#ifndef RUNTIME_QT_PANEL_WINDOW_H
#define RUNTIME_QT_PANEL_WINDOW_H

#include <QPointer>
#include <QTimer>
#include <QWidget>

struct QTV_Panel;
class QMenuBar;

class PanelWindow : public QWidget {
    Q_OBJECT

public:
    // A window of its own stays in front of `owner`, which it belongs to.
    PanelWindow(QTV_Panel *panelRecord, QWidget *owner, bool isInside);

    QTV_Panel *record() const
    {
        return m_record;
    }
    // The innermost panel that holds `widget`; null when it is in none.
    static PanelWindow *holding(QWidget *widget);

    // Moves a window there, if that place is still on a screen. Whether it is.
    static bool placeOnScreen(QWidget *window, const QPoint &corner);
    // Before a window is shown: over the main one, unless it `hasPlace`, and no larger than
    // the screen.
    static void fit(QWidget *window, bool hasPlace);

    void setMenuBar(QMenuBar *bar);
    void setSizable(bool isSizable);
    // By the program: not reported. The place is brought onto a screen there is.
    void placeByProgram(const QPoint &corner);
    void resizeByProgram(const QSize &size);
    void setShown(bool isShown);

protected:
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void setCoveredBy(PanelWindow *child);
    void report();
    std::string maximizedName() const;

    QTV_Panel *m_record;
    QPointer<QWidget> m_focusBefore;
    QTimer m_reporting; // one report for many small moves
    QSize m_knownSize;  // the last size the program set or was told of
    QSize m_minimum, m_maximum;
    bool m_hasPlace = false; // of its own: the program's or the user's
};

#endif
