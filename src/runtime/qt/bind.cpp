// Ties the rows of the control table to the widgets of the Designer files: class check,
// and the signals that stand for the user's actions, each of which becomes one event.
#include "runtime/qt/qt_view.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>
#include <cstdio>

#include "runtime/qt/led_label.h"
#include "runtime/qt/line_list.h"
#include "runtime/qt/plot_widget.h"
#include "runtime/qt/segment_bar.h"
#include "runtime/qt/text_box.h"
#include "runtime/qt/toggle_switch.h"

bool (*QTV_postTo)(const VIEW_Event &event) = VIEW_Post;

namespace {

struct ClassRow {
    UI_Kind kind;
    const QMetaObject *widgetClass;
};

const ClassRow CLASS_ROWS[] = {
    {UIK_BUTTON, &QPushButton::staticMetaObject},    {UIK_SWITCH, &ToggleSwitch::staticMetaObject},
    {UIK_LED, &LedLabel::staticMetaObject},          {UIK_TEXT, &QLabel::staticMetaObject},
    {UIK_STRING, &QLineEdit::staticMetaObject},      {UIK_NUMBER, &QSpinBox::staticMetaObject},
    {UIK_NUMBER, &QDoubleSpinBox::staticMetaObject}, {UIK_RING, &QComboBox::staticMetaObject},
    {UIK_LIST, &LineList::staticMetaObject},         {UIK_TEXTBOX, &TextBox::staticMetaObject},
    {UIK_NUMBER, &QSlider::staticMetaObject},        {UIK_BAR, &SegmentBar::staticMetaObject},
    {UIK_GRAPH, &PlotWidget::staticMetaObject},      {UIK_DECOR, &QWidget::staticMetaObject},
};

bool IsOfKind(const QWidget *widget, UI_Kind kind)
{
    for (const ClassRow &row : CLASS_ROWS)
        if (row.kind == kind && row.widgetClass->cast(widget))
            return true;
    return false;
}

// What stands in the control now.
void FillValue(const QTV_Control &control, VIEW_Event *event)
{
    QWidget *widget = control.widget;
    if (auto *button = qobject_cast<ToggleSwitch *>(widget)) {
        event->value = button->isChecked();
    } else if (auto *whole = qobject_cast<QSpinBox *>(widget)) {
        event->value = whole->value();
        event->number = whole->value();
    } else if (auto *slider = qobject_cast<QSlider *>(widget)) {
        event->value = slider->value();
        event->number = slider->value();
    } else if (auto *real = qobject_cast<QDoubleSpinBox *>(widget)) {
        event->number = real->value();
    } else if (auto *field = qobject_cast<QLineEdit *>(widget)) {
        event->text = field->text().toStdString();
    } else if (auto *ring = qobject_cast<QComboBox *>(widget)) {
        const QVariant value = ring->currentData();
        event->value = value.isValid() ? value.toInt() : ring->currentIndex();
    } else if (auto *list = qobject_cast<LineList *>(widget)) {
        QTV_FillList(*list, event);
    } else if (auto *plot = qobject_cast<PlotWidget *>(widget)) {
        event->view = std::make_shared<const UI_GraphView>(plot->view());
    }
}

// A slot that posts an event of the control with its value.
auto Reporter(QTV_Control *control, int event)
{
    return [control, event] {
        if (!QTV_IsDrawing())
            QTV_PostControl(*control, event);
    };
}

// A click that was refused leaves the switch where it was.
void ConnectSwitch(QTV_Control *control, ToggleSwitch *toggle)
{
    QObject::connect(toggle, &QAbstractButton::clicked, [control, toggle](bool isOn) {
        if (!QTV_PostControl(*control, EVENT_COMMIT))
            toggle->setChecked(!isOn);
    });
}

void ConnectField(QTV_Control *control, QLineEdit *field)
{
    QObject::connect(field, &QLineEdit::textEdited, Reporter(control, EVENT_VAL_CHANGED));
    QObject::connect(field, &QLineEdit::returnPressed, [control, field] {
        if (!QTV_IsChoosing(field))
            QTV_PostControl(*control, EVENT_COMMIT);
    });
}

void ConnectNumber(QTV_Control *control)
{
    QWidget *widget = control->widget;
    if (auto *whole = qobject_cast<QSpinBox *>(widget))
        QObject::connect(whole, &QSpinBox::valueChanged, Reporter(control, EVENT_VAL_CHANGED));
    if (auto *slider = qobject_cast<QSlider *>(widget))
        QObject::connect(slider, &QSlider::valueChanged, Reporter(control, EVENT_VAL_CHANGED));
    if (auto *real = qobject_cast<QDoubleSpinBox *>(widget))
        QObject::connect(real, &QDoubleSpinBox::valueChanged, Reporter(control, EVENT_VAL_CHANGED));
    if (auto *field = widget->findChild<QLineEdit *>())
        QObject::connect(field, &QLineEdit::returnPressed, Reporter(control, EVENT_COMMIT));
}

VIEW_Event MakeEvent(const QTV_Control &control, VIEW_EventKind kind, int event)
{
    VIEW_Event made;
    made.kind = kind;
    made.event = event;
    made.panel = control.row->panel;
    made.control = control.row->control;
    return made;
}

void ConnectList(QTV_Control *control, LineList *list)
{
    QObject::connect(list, &LineList::selectedByUser, Reporter(control, EVENT_VAL_CHANGED));
    QObject::connect(list, &LineList::lineCommitted, Reporter(control, EVENT_COMMIT));
    QObject::connect(list, &LineList::lineDoubleClicked,
                     Reporter(control, EVENT_LEFT_DOUBLE_CLICK));
    QObject::connect(list, &LineList::contextRequested, Reporter(control, EVENT_RIGHT_CLICK));
    QObject::connect(list, &LineList::lineDropped, [control, list](int source, int target) {
        VIEW_Event event = MakeEvent(*control, VIEW_EVENT_CONTROL, EVENT_DROPPED);
        event.line = {source, list->lines()->id(source)};
        event.target = {target, list->lines()->id(target)};
        QTV_Post(event);
    });
    QObject::connect(list->lines(), &LineModel::cellEdited,
                     [control, list](int row, int column, const QString &text) {
                         VIEW_Event event =
                             MakeEvent(*control, VIEW_EVENT_CONTROL, EVENT_CELL_EDITED);
                         event.line = {row, list->lines()->id(row)};
                         event.column = column;
                         event.text = text.toStdString();
                         QTV_Post(event);
                     });
    QObject::connect(list, &LineList::viewMoved, [control, list] {
        VIEW_Event event = MakeEvent(*control, VIEW_EVENT_SCROLLED, 0);
        event.value = list->firstVisible();
        event.extra = list->linesInView();
        QTV_Post(event);
    });
    QObject::connect(list, &LineList::columnsDragged, [control, list] {
        VIEW_Event event = MakeEvent(*control, VIEW_EVENT_COLUMNS, 0);
        event.widths = list->columnWidths();
        QTV_Post(event);
    });
    list->setDraggable(control->row->callback != nullptr);
}

void ConnectBox(QTV_Control *control, TextBox *box)
{
    QObject::connect(box->verticalScrollBar(), &QScrollBar::valueChanged, [control, box](int top) {
        VIEW_Event event = MakeEvent(*control, VIEW_EVENT_SCROLLED, 0);
        event.value = top;
        event.extra = box->verticalScrollBar()->pageStep();
        QTV_Post(event);
    });
}

void Connect(QTV_Control *control)
{
    QWidget *widget = control->widget;
    switch (control->row->kind) {
    case UIK_BUTTON:
        QObject::connect(static_cast<QAbstractButton *>(widget), &QAbstractButton::clicked,
                         Reporter(control, EVENT_COMMIT));
        break;
    case UIK_SWITCH:
        ConnectSwitch(control, static_cast<ToggleSwitch *>(widget));
        break;
    case UIK_STRING:
        ConnectField(control, static_cast<QLineEdit *>(widget));
        break;
    case UIK_NUMBER:
        ConnectNumber(control);
        break;
    case UIK_RING:
        QObject::connect(static_cast<QComboBox *>(widget), &QComboBox::activated,
                         Reporter(control, EVENT_COMMIT));
        break;
    case UIK_LIST:
        ConnectList(control, static_cast<LineList *>(widget));
        break;
    case UIK_TEXTBOX:
        ConnectBox(control, static_cast<TextBox *>(widget));
        break;
    case UIK_GRAPH:
        QObject::connect(static_cast<PlotWidget *>(widget), &PlotWidget::changedByUser,
                         Reporter(control, EVENT_VAL_CHANGED));
        break;
    default: // the user cannot act on the rest
        break;
    }
}

} // namespace

bool QTV_BindControl(QTV_Control *control, QWidget *window)
{
    const UI_Control *row = control->row;
    if (row->kind == UIK_TIMER)
        return true;
    control->widget = window->findChild<QWidget *>(row->name);
    if (!control->widget || !IsOfKind(control->widget, row->kind)) {
        std::fprintf(stderr, "panel %d, control %d: %s '%s'\n", row->panel, row->control,
                     control->widget ? "wrong class of widget" : "no widget", row->name);
        return false;
    }
    Connect(control);
    return true;
}

bool QTV_Post(const VIEW_Event &event)
{
    return QTV_postTo(event);
}

void QTV_PostPanel(int panel, int event, int value)
{
    VIEW_Event posted;
    posted.kind = VIEW_EVENT_PANEL;
    posted.event = event;
    posted.panel = panel;
    posted.value = value;
    QTV_Post(posted);
}

bool QTV_PostControl(const QTV_Control &control, int event, int value)
{
    VIEW_Event posted = MakeEvent(control, VIEW_EVENT_CONTROL, event);
    FillValue(control, &posted);
    if (event == EVENT_KEYPRESS)
        posted.value = value;
    return QTV_Post(posted);
}
