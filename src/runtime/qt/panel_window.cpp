// Nothing is decided here: a click on the cross becomes an event, and the window stays until the
// program hides it. Only where it fits on the screen is the view's own affair.
#include "runtime/qt/panel_window.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QLayout>
#include <QMenuBar>
#include <QScreen>

#include "runtime/qt/qt_view.h"

namespace {

constexpr int REPORT_MS = 50;                     // after the last of many small moves
constexpr int GRIP = 60;                          // pixels of a window that must be on a screen
constexpr int FRAME_WIDTH = 8, FRAME_HEIGHT = 40; // pixels around a window, at a guess
const char CONTENT_NAME[] = "content"; // the widget of a Designer file that a child panel covers

// The first widget of the panel that takes the keyboard, in tab order; the chain is a ring.
QWidget *FirstInTabOrder(QWidget *panel)
{
    for (QWidget *w = panel->nextInFocusChain(); w != panel; w = w->nextInFocusChain())
        if (panel->isAncestorOf(w) && (w->focusPolicy() & Qt::TabFocus) && w->isEnabled())
            return w;
    return panel;
}

} // namespace

PanelWindow::PanelWindow(QTV_Panel *panelRecord, QWidget *owner, bool isInside)
    : QWidget(owner, isInside ? Qt::Widget : Qt::Window), m_record(panelRecord)
{
    setAutoFillBackground(true); // inside another panel it would be see-through
    hide();                      // and shown along with that panel
    if (isInside && owner->layout()) {
        auto *rows = static_cast<QBoxLayout *>(owner->layout());
        auto *content = owner->findChild<QWidget *>(CONTENT_NAME, Qt::FindDirectChildrenOnly);
        rows->insertWidget(rows->indexOf(content) + 1, this, 1);
    }
    m_reporting.setSingleShot(true);
    m_reporting.setInterval(REPORT_MS);
    connect(&m_reporting, &QTimer::timeout, this, &PanelWindow::report);
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

void PanelWindow::setMenuBar(QMenuBar *bar)
{
    layout()->setMenuBar(bar);
}

void PanelWindow::setSizable(bool isSizable)
{
    if (!m_minimum.isValid()) { // the layout's own, before it was fixed for the first time
        m_minimum = minimumSize();
        m_maximum = maximumSize();
    }
    setMinimumSize(isSizable ? m_minimum : size());
    setMaximumSize(isSizable ? m_maximum : size());
}

bool PanelWindow::placeOnScreen(QWidget *window, const QPoint &corner)
{
    // A remembered place may be on a screen that is gone. Of a window that sticks out enough must
    // be left to take hold of.
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens) {
        if (!screen->availableGeometry().adjusted(-GRIP, 0, -GRIP, -GRIP).contains(corner))
            continue;
        window->move(corner);
        return true;
    }
    return false;
}

void PanelWindow::placeByProgram(const QPoint &corner)
{
    if (isWindow())
        m_hasPlace = placeOnScreen(this, corner) || m_hasPlace;
}

void PanelWindow::resizeByProgram(const QSize &newSize)
{
    if (!isWindow() || newSize.isEmpty())
        return;
    // A window of fixed size would not follow.
    const bool isFixed = minimumSize() == maximumSize();
    if (isFixed)
        setFixedSize(newSize);
    else
        resize(newSize);
    m_knownSize = size();
}

void PanelWindow::fit(QWidget *window, bool hasPlace)
{
    // The frame is not known before the window has been shown: some room is left for it.
    const PanelWindow *main = QTV_MainWindow();
    const bool isOverMain = !hasPlace && main && main != window && main->isVisible();
    const QScreen *screen = isOverMain ? main->screen() : window->screen();
    const QRect room = screen->availableGeometry().adjusted(0, 0, -FRAME_WIDTH, -FRAME_HEIGHT);
    const QSize least = window->minimumSizeHint().expandedTo(window->minimumSize());
    window->resize(window->size().boundedTo(room.size()).expandedTo(least));
    QPoint corner = window->pos();
    if (isOverMain) {
        const QSize spare = (main->frameGeometry().size() - window->size()) / 2;
        corner = main->pos() + QPoint(qMax(0, spare.width()), qMax(0, spare.height()));
    }
    const QPoint last(room.right() + 1 - window->width(), room.bottom() + 1 - window->height());
    const QPoint inside(qMax(room.left(), qMin(corner.x(), last.x())),
                        qMax(room.top(), qMin(corner.y(), last.y())));
    if (isOverMain || inside != corner)
        window->move(inside);
}

void PanelWindow::setShown(bool isShown)
{
    if (isWindow()) {
        if (isShown && !isVisible()) {
            fit(this, m_hasPlace);
            m_knownSize = size(); // made to fit: not the user's doing
            if (QTV_FindLayout(maximizedName()) == std::vector<int>{1})
                setWindowState(windowState() | Qt::WindowMaximized);
        }
        setVisible(isShown);
        return;
    }
    setVisible(isShown);
    if (m_record->parent && m_record->parent->window)
        m_record->parent->window->setCoveredBy(isShown ? this : nullptr);
}

// A panel shown inside this one hides what it covers, so that the keyboard cannot wander
// there; null shows it again.
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

void PanelWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        QTV_UsePalette(m_record);
    // A minimised window says nothing of how it will come back.
    if (event->type() == QEvent::WindowStateChange && isWindow() && isVisible() && !isMinimized())
        QTV_KeepLayout(maximizedName(), {isMaximized() ? 1 : 0});
    if (event->type() == QEvent::ActivationChange && isWindow() && isActiveWindow())
        QTV_PostPanel(m_record->row->panel, EVENT_ACTIVATED);
}

void PanelWindow::closeEvent(QCloseEvent *event)
{
    event->ignore(); // the program may ask first, or refuse
    QTV_PostPanel(m_record->row->panel, EVENT_CLOSE);
}

void PanelWindow::moveEvent(QMoveEvent *event)
{
    QWidget::moveEvent(event);
    if (isWindow() && isVisible())
        m_reporting.start();
}

void PanelWindow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (isWindow() && isVisible())
        m_reporting.start();
}

void PanelWindow::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (isWindow())
        m_reporting.start();
}

std::string PanelWindow::maximizedName() const
{
    return std::to_string(m_record->row->panel) + ".maximized";
}

void PanelWindow::report()
{
    if (!isVisible())
        return;
    m_hasPlace = true;
    // A window that fills the screen comes back to the place and size it has without that.
    if (isMaximized() || isFullScreen())
        return;
    VIEW_Event report = VIEW_MakeEvent(VIEW_EVENT_PLACED, m_record->row->panel);
    report.rect = {pos().x(), pos().y(), width(), height()};
    QTV_Post(report);
    if (size() == m_knownSize) // the program set it, or it has only been moved
        return;
    m_knownSize = size();
    report.kind = VIEW_EVENT_PANEL;
    report.event = EVENT_PANEL_SIZE;
    QTV_Post(report);
}
