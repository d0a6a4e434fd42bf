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
#include <algorithm>
#include <cstdio>

#include "runtime/qt/led_label.h"
#include "runtime/qt/line_list.h"
#include "runtime/qt/plot_widget.h"
#include "runtime/qt/segment_bar.h"
#include "runtime/qt/text_box.h"
#include "runtime/qt/toggle_switch.h"

// Tests put a notebook in place of the door.
bool (*QTV_postTo)(const VIEW_Event &event) = VIEW_Post;

namespace {

struct ClassRow {
    UI_Kind kind;
    const QMetaObject *widgetClass;
};

// Which classes a control may be made of. A number has three: a layout chooses the one that suits.
const ClassRow CLASS_ROWS[] = {
    {UIK_BUTTON, &QPushButton::staticMetaObject},    {UIK_SWITCH, &ToggleSwitch::staticMetaObject},
    {UIK_LED, &LedLabel::staticMetaObject},          {UIK_TEXT, &QLabel::staticMetaObject},
    {UIK_STRING, &QLineEdit::staticMetaObject},      {UIK_NUMBER, &QSpinBox::staticMetaObject},
    {UIK_NUMBER, &QDoubleSpinBox::staticMetaObject}, {UIK_RING, &QComboBox::staticMetaObject},
    {UIK_LIST, &LineList::staticMetaObject},         {UIK_TEXTBOX, &TextBox::staticMetaObject},
    {UIK_NUMBER, &QSlider::staticMetaObject},        {UIK_BAR, &SegmentBar::staticMetaObject},
    {UIK_GRAPH, &PlotWidget::staticMetaObject},      {UIK_DECOR, &QWidget::staticMetaObject},
};

// What stands in the control now. A button has nothing.
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
        // Entries of the Designer file alone have no data: their place is their value.
        const QVariant value = ring->currentData();
        event->value = value.isValid() ? value.toInt() : ring->currentIndex();
    } else if (auto *list = qobject_cast<LineList *>(widget)) {
        QTV_FillList(*list, event);
    } else if (auto *plot = qobject_cast<PlotWidget *>(widget)) {
        event->view = std::make_shared<const UI_GraphView>(plot->view());
    }
}

// A slot that posts an event of the control with its value. Many widgets signal a change of the
// program's like one of the user's: what comes while a batch is drawn is the program's.
auto Reporter(QTV_Control *control, int event)
{
    return [control, event] {
        if (!QTV_IsDrawing())
            QTV_PostControl(*control, event);
    };
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
    // Enter is heard by the field inside; a slider has none.
    if (auto *field = widget->findChild<QLineEdit *>())
        QObject::connect(field, &QLineEdit::returnPressed, Reporter(control, EVENT_COMMIT));
}

VIEW_Event MakeEvent(const QTV_Control &control, VIEW_EventKind kind, int event)
{
    return VIEW_MakeEvent(kind, control.row->panel, control.row->control, event);
}

void ConnectList(QTV_Control *control, LineList *list)
{
    QObject::connect(list, &LineList::selectedByUser, Reporter(control, EVENT_VAL_CHANGED));
    QObject::connect(list, &LineList::lineCommitted, Reporter(control, EVENT_COMMIT));
    QObject::connect(list, &LineList::lineDoubleClicked,
                     Reporter(control, EVENT_LEFT_DOUBLE_CLICK));
    QObject::connect(list, &LineList::contextRequested, Reporter(control, EVENT_RIGHT_CLICK));
    // What follows names lines by their numbers: rows may be others by the time it is handled.
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
    // A width the user has dragged is a setting of his.
    QObject::connect(list, &LineList::columnsDragged, [control, list] {
        VIEW_Event event = MakeEvent(*control, VIEW_EVENT_COLUMNS, 0);
        event.widths = list->columnWidths();
        QTV_Post(event);
    });
    list->setDraggable(control->row->callback != nullptr); // else nobody would move the line
}

// The signals of each kind that a user sets off.
void Connect(QTV_Control *control)
{
    QWidget *widget = control->widget;
    auto *button = qobject_cast<QAbstractButton *>(widget);
    auto *field = qobject_cast<QLineEdit *>(widget);
    switch (control->row->kind) {
    case UIK_BUTTON:
        QObject::connect(button, &QAbstractButton::clicked, Reporter(control, EVENT_COMMIT));
        break;
    case UIK_SWITCH: // a click that was refused leaves it where it was
        QObject::connect(button, &QAbstractButton::clicked, [control, button](bool isOn) {
            if (!QTV_PostControl(*control, EVENT_COMMIT))
                button->setChecked(!isOn);
        });
        break;
    case UIK_STRING:
        QObject::connect(field, &QLineEdit::textEdited, Reporter(control, EVENT_VAL_CHANGED));
        QObject::connect(field, &QLineEdit::returnPressed, [control, field] {
            if (!QTV_IsChoosing(field)) // else Enter takes the completion
                QTV_PostControl(*control, EVENT_COMMIT);
        });
        break;
    case UIK_NUMBER:
        ConnectNumber(control);
        break;
    case UIK_RING:
        // Not currentIndexChanged: a ring that is filled changes its entry too.
        QObject::connect(static_cast<QComboBox *>(widget), &QComboBox::activated,
                         Reporter(control, EVENT_COMMIT));
        break;
    case UIK_LIST:
        ConnectList(control, static_cast<LineList *>(widget));
        break;
    case UIK_TEXTBOX: {
        auto *bar = static_cast<TextBox *>(widget)->verticalScrollBar();
        QObject::connect(bar, &QScrollBar::valueChanged, [control, bar](int top) {
            VIEW_Event event = MakeEvent(*control, VIEW_EVENT_SCROLLED, 0);
            event.value = top;
            event.extra = bar->pageStep();
            QTV_Post(event);
        });
        break;
    }
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
    const auto isOfKind = [control, row](const ClassRow &candidate) {
        return candidate.kind == row->kind && candidate.widgetClass->cast(control->widget);
    };
    // A table and a layout that differ are a mistake of ours, found by the first test.
    if (!control->widget || std::none_of(std::begin(CLASS_ROWS), std::end(CLASS_ROWS), isOfKind)) {
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
    VIEW_Event posted = VIEW_MakeEvent(VIEW_EVENT_PANEL, panel, 0, event);
    posted.value = value;
    QTV_Post(posted);
}

bool QTV_PostControl(const QTV_Control &control, int event, int value)
{
    VIEW_Event posted = MakeEvent(control, VIEW_EVENT_CONTROL, event);
    FillValue(control, &posted);
    if (event == EVENT_KEYPRESS) // the key instead of what a switch or ring holds
        posted.value = value;
    return QTV_Post(posted);
}
