// The window of one panel, on its own or inside another panel. Reports closing and
// resizing by the user to the panel's callback; a window without a callback hides.
#ifndef RUNTIME_QT_PANEL_WINDOW_H
#define RUNTIME_QT_PANEL_WINDOW_H

#include <QPointer>
#include <QWidget>

struct FacePanel;
class QMenuBar;

class PanelWindow : public QWidget {
    Q_OBJECT

public:
    PanelWindow(FacePanel *panelRecord, QWidget *parent);

    FacePanel *record() const
    {
        return m_record;
    }
    // The innermost panel that holds `widget`; null when it is in none.
    static PanelWindow *holding(QWidget *widget);

    // Remembers the limits the Designer file gives: a sizable window keeps to them.
    void rememberLimits();
    void setMenuBar(QMenuBar *bar);
    bool isSizable() const
    {
        return m_isSizable;
    }
    void setSizable(bool isSizable);
    void resizeByProgram(const QSize &size); // no report to the callback
    // A panel shown inside this one hides what it covers, so that the keyboard
    // cannot wander there; null shows it again.
    void setCoveredBy(PanelWindow *child);
    void requestClose();

protected:
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void reportResize();

    FacePanel *m_record;
    QMenuBar *m_menuBar = nullptr;
    QPointer<QWidget> m_focusBefore;
    QSize m_knownSize; // the last size the program set or was told of
    QSize m_minimum, m_maximum;
    bool m_isSizable = true;
    bool m_isClosePending = false;
    bool m_isResizePending = false;
};

#endif
