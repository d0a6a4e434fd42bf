#include "runtime/qt/panel_window.h"

#include <QCloseEvent>
#include <QMenuBar>
#include <QTimer>

#include "runtime/qt/face.h"

namespace {

constexpr int RETRY_MS = 20;           // how soon a report that came at a bad time is tried again
const char CONTENT_NAME[] = "content"; // the widget of a Designer file that a child panel covers

// The first widget of the panel that takes the keyboard, in tab order.
QWidget *FirstInTabOrder(QWidget *panel)
{
    for (QWidget *w = panel->nextInFocusChain(); w != panel; w = w->nextInFocusChain())
        if (panel->isAncestorOf(w) && (w->focusPolicy() & Qt::TabFocus) && w->isEnabled())
            return w;
    return panel;
}

} // namespace

PanelWindow::PanelWindow(FacePanel *panelRecord, QWidget *parent)
    : QWidget(parent), m_record(panelRecord)
{
    setAutoFillBackground(true); // inside another panel it would be see-through
    hide();                      // and shown along with that panel
}

PanelWindow *PanelWindow::holding(QWidget *widget)
{
    while (widget) {
        if (auto *window = qobject_cast<PanelWindow *>(widget))
            return window;
        widget = widget->parentWidget();
    }
    return nullptr;
}

void PanelWindow::rememberLimits()
{
    m_minimum = minimumSize();
    m_maximum = maximumSize();
    m_knownSize = size();
}

void PanelWindow::setMenuBar(QMenuBar *bar)
{
    m_menuBar = bar;
    m_menuBar->setGeometry(0, 0, width(), FACE_MENU_BAR_HEIGHT);
}

void PanelWindow::setSizable(bool isSizable)
{
    m_isSizable = isSizable;
    if (isSizable) {
        setMinimumSize(m_minimum);
        setMaximumSize(m_maximum);
    } else {
        setFixedSize(size());
    }
}

void PanelWindow::resizeByProgram(const QSize &newSize)
{
    m_knownSize = newSize;
    if (m_isSizable)
        resize(newSize);
    else
        setFixedSize(newSize);
    m_knownSize = size();
}

void PanelWindow::setCoveredBy(PanelWindow *child)
{
    auto *content = findChild<QWidget *>(CONTENT_NAME, Qt::FindDirectChildrenOnly);
    if (!content || content->isHidden() == (child != nullptr))
        return;
    if (child) {
        QWidget *focused = focusWidget();
        m_focusBefore = content->isAncestorOf(focused) ? focused : nullptr;
        content->hide();
        FirstInTabOrder(child)->setFocus();
        return;
    }
    content->show();
    if (m_focusBefore)
        m_focusBefore->setFocus();
    else
        FirstInTabOrder(content)->setFocus();
}

// Reported once the event loop turns: a callback may want to ask a question.
void PanelWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || !isWindow() || !isActiveWindow())
        return;
    QTimer::singleShot(0, this, [this] {
        if (isActiveWindow() && !FACE_IsBusy())
            FACE_Call(*m_record, EVENT_ACTIVATED, 0);
    });
}

void PanelWindow::closeEvent(QCloseEvent *event)
{
    event->ignore(); // whether the window goes is the program's decision
    requestClose();
}

void PanelWindow::requestClose()
{
    if (!m_record->callback) {
        hide();
        return;
    }
    if (!FACE_IsBusy()) {
        m_isClosePending = false;
        FACE_Call(*m_record, EVENT_CLOSE, 0);
    } else if (!m_isClosePending) {
        m_isClosePending = true;
        QTimer::singleShot(RETRY_MS, this, [this] {
            m_isClosePending = false;
            requestClose();
        });
    }
}

void PanelWindow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (m_menuBar)
        m_menuBar->setGeometry(0, 0, width(), FACE_MENU_BAR_HEIGHT);
    if (isWindow() && isVisible())
        reportResize();
}

void PanelWindow::reportResize()
{
    if (size() == m_knownSize)
        return;
    if (!FACE_IsBusy()) {
        m_knownSize = size();
        FACE_Call(*m_record, EVENT_PANEL_SIZE, 0);
    } else if (!m_isResizePending) {
        m_isResizePending = true;
        QTimer::singleShot(RETRY_MS, this, [this] {
            m_isResizePending = false;
            reportResize();
        });
    }
}
