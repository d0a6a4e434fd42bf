// Ties the rows of the control table to the widgets of the Designer files: class
// check, timers, and the signals that stand for the user's actions.
#include "runtime/qt/face.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <cmath>
#include <cstdio>

#include "runtime/qt/led_label.h"
#include "runtime/qt/line_list.h"
#include "runtime/qt/panel_window.h"
#include "runtime/qt/text_box.h"
#include "runtime/qt/toggle_switch.h"

namespace {

constexpr double DEFAULT_INTERVAL_S = 1.0;
bool areTimersSuspended = true;

struct ClassRow {
    UI_Kind kind;
    const QMetaObject *widgetClass;
};

const ClassRow classRows[] = {
    {UIK_BUTTON, &QPushButton::staticMetaObject},    {UIK_SWITCH, &ToggleSwitch::staticMetaObject},
    {UIK_LED, &LedLabel::staticMetaObject},          {UIK_TEXT, &QLabel::staticMetaObject},
    {UIK_STRING, &QLineEdit::staticMetaObject},      {UIK_NUMBER, &QSpinBox::staticMetaObject},
    {UIK_NUMBER, &QDoubleSpinBox::staticMetaObject}, {UIK_RING, &QComboBox::staticMetaObject},
    {UIK_LIST, &LineList::staticMetaObject},         {UIK_TEXTBOX, &TextBox::staticMetaObject},
    {UIK_DECOR, &QWidget::staticMetaObject},
};

bool IsOfKind(const QWidget *widget, UI_Kind kind)
{
    for (const ClassRow &row : classRows)
        if (row.kind == kind && row.widgetClass->cast(widget))
            return true;
    return false;
}

// A slot that calls the control's callback. A signal that is not the user's (it comes
// while the program is at work) never gets there.
auto Reporter(FaceControl *control, int event)
{
    return [control, event] {
        if (!FACE_IsBusy())
            FACE_Call(*control, event, 0);
    };
}

void ConnectField(FaceControl *control, QLineEdit *field)
{
    QObject::connect(field, &QLineEdit::textEdited, Reporter(control, EVENT_VAL_CHANGED));
    QObject::connect(field, &QLineEdit::returnPressed, [control, field] {
        if (!FACE_IsBusy() && !FACE_IsChoosing(field))
            FACE_Call(*control, EVENT_COMMIT, 0);
    });
}

void ConnectNumber(FaceControl *control)
{
    QWidget *widget = control->widget;
    if (auto *whole = qobject_cast<QSpinBox *>(widget))
        QObject::connect(whole, &QSpinBox::valueChanged, Reporter(control, EVENT_VAL_CHANGED));
    if (auto *real = qobject_cast<QDoubleSpinBox *>(widget))
        QObject::connect(real, &QDoubleSpinBox::valueChanged, Reporter(control, EVENT_VAL_CHANGED));
    if (auto *field = widget->findChild<QLineEdit *>())
        QObject::connect(field, &QLineEdit::returnPressed, Reporter(control, EVENT_COMMIT));
}

void ConnectList(FaceControl *control, LineList *list)
{
    QObject::connect(list, &LineList::lineSelected, Reporter(control, EVENT_VAL_CHANGED));
    QObject::connect(list, &LineList::lineCommitted, Reporter(control, EVENT_COMMIT));
    QObject::connect(list, &LineList::lineDoubleClicked,
                     Reporter(control, EVENT_LEFT_DOUBLE_CLICK));
    QObject::connect(list, &LineList::contextRequested, Reporter(control, EVENT_RIGHT_CLICK));
    QObject::connect(list, &LineList::lineDropped, [control](int source, int target) {
        FACE_Call(*control, EVENT_DROPPED, source * 65536 + target);
    });
    list->setDraggable(control->callback != nullptr);
}

void Connect(FaceControl *control)
{
    switch (control->row->kind) {
    case UIK_BUTTON:
    case UIK_SWITCH:
        QObject::connect(static_cast<QAbstractButton *>(control->widget), &QAbstractButton::clicked,
                         Reporter(control, EVENT_COMMIT));
        break;
    case UIK_STRING:
        ConnectField(control, static_cast<QLineEdit *>(control->widget));
        break;
    case UIK_NUMBER:
        ConnectNumber(control);
        break;
    case UIK_RING:
        QObject::connect(static_cast<QComboBox *>(control->widget), &QComboBox::activated,
                         Reporter(control, EVENT_COMMIT));
        break;
    case UIK_LIST:
        ConnectList(control, static_cast<LineList *>(control->widget));
        break;
    default: // the user cannot act on the rest
        break;
    }
}

void BindTimer(FaceControl *control, QWidget *window)
{
    control->timer = new QTimer(window);
    control->timer->setTimerType(Qt::PreciseTimer);
    control->interval = DEFAULT_INTERVAL_S;
    // A tick that falls into a callback or a pop-up is left out: the link is in use.
    QObject::connect(control->timer, &QTimer::timeout, Reporter(control, EVENT_TIMER_TICK));
    FACE_StartTimer(control);
}

void RefreshAllTimers()
{
    for (int i = 0; i < UI_cnControls; i++) {
        FaceControl *control = nullptr;
        const UI_Control &row = UI_aControls[i];
        if (row.kind == UIK_TIMER && FACE_FindControl(row.panel, row.control, &control) == 0)
            FACE_StartTimer(control);
    }
}

} // namespace

bool FACE_BindControl(FaceControl *control, QWidget *window)
{
    const UI_Control *row = control->row;
    if (row->kind == UIK_TIMER) {
        BindTimer(control, window);
        return true;
    }
    control->widget = window->findChild<QWidget *>(row->name);
    if (!control->widget || !IsOfKind(control->widget, row->kind)) {
        std::fprintf(stderr, "panel %d, control %d: %s '%s'\n", row->panel, row->control,
                     control->widget ? "wrong class of widget" : "no widget", row->name);
        return false;
    }
    Connect(control);
    return true;
}

void FACE_StartTimer(FaceControl *control)
{
    const int ms = static_cast<int>(std::lround(control->interval * 1000.0));
    if (control->timer->interval() != ms) // setting it anew would delay the next tick
        control->timer->setInterval(ms);
    if (areTimersSuspended)
        control->timer->stop();
    else if (!control->timer->isActive())
        control->timer->start();
}

int SuspendTimerCallbacks()
{
    areTimersSuspended = true;
    RefreshAllTimers();
    return 0;
}

int ResumeTimerCallbacks()
{
    areTimersSuspended = false;
    RefreshAllTimers();
    return 0;
}
