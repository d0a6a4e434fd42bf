// Controls: drawing what the program has changed of them. The mask of a change says what, and
// all that stands in the layout beside it stays.
#include "runtime/qt/qt_view.h"

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>
#include <cmath>

#include "runtime/qt/led_label.h"
#include "runtime/qt/look.h"
#include "runtime/qt/panel_window.h"
#include "runtime/qt/segment_bar.h"
#include "runtime/qt/text_box.h"
#include "runtime/qt/toggle_switch.h"

namespace {

constexpr double PLAIN_CONTRAST = 12; // so dark on a light ground is meant as plain text

void DrawNumber(QWidget *widget, double value)
{
    const QSignalBlocker quiet(widget); // or the program would hear of it as typed
    if (auto *whole = qobject_cast<QSpinBox *>(widget))
        whole->setValue(static_cast<int>(std::lround(value)));
    else if (auto *slider = qobject_cast<QSlider *>(widget))
        slider->setValue(static_cast<int>(std::lround(value)));
    else if (auto *real = qobject_cast<QDoubleSpinBox *>(widget))
        real->setValue(value);
}

// The cursor stays where it is as far as the new text goes.
void DrawField(QLineEdit *field, const QString &text)
{
    if (field->text() == text)
        return;
    const int cursor = field->cursorPosition();
    const bool wasAtEnd = cursor == field->text().size();
    field->setText(text);
    if (!wasAtEnd)
        field->setCursorPosition(cursor);
}

void DrawValue(const QTV_Control &control, const VIEW_Control &change)
{
    QWidget *widget = control.widget;
    switch (control.row->kind) {
    case UIK_SWITCH:
        static_cast<ToggleSwitch *>(widget)->setChecked(change.value != 0);
        break;
    case UIK_LED:
        static_cast<LedLabel *>(widget)->setOn(change.value != 0);
        break;
    case UIK_NUMBER:
        DrawNumber(widget, change.number);
        break;
    case UIK_RING: { // entries of the layout alone have no data: their place is their value
        auto *ring = static_cast<QComboBox *>(widget);
        const int found = ring->findData(change.value);
        ring->setCurrentIndex(found >= 0 ? found : change.value);
        break;
    }
    case UIK_TEXT:
        static_cast<QLabel *>(widget)->setText(QTV_ToQt(change.text));
        break;
    case UIK_STRING:
        DrawField(static_cast<QLineEdit *>(widget), QTV_ToQt(change.text));
        break;
    default: // lists and text boxes have changes of their own
        break;
    }
}

// The window's palette, not the parent's: when the desktop changes its colours the window
// learns it before what is in it.
void DrawColor(QWidget *widget, int color)
{
    const QPalette around = widget->window()->palette();
    const QColor ground = around.color(QPalette::Window);
    const QColor meant = QColor::fromRgb(static_cast<QRgb>(color) | 0xFF000000u);
    // Black is no colour the program chose: on a dark desktop it means the desktop's own pen.
    const bool isPlain = QTV_GetContrast(meant, Qt::white) > PLAIN_CONTRAST;
    const QColor pen =
        isPlain ? around.color(QPalette::WindowText) : QTV_ReadableColor(meant, ground);
    QPalette palette = widget->palette();
    // Not the disabled group: what is dimmed must look so.
    for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Active, role, pen);
        palette.setColor(QPalette::Inactive, role, pen);
    }
    widget->setPalette(palette);
}

// The widget that shows a control's label: itself, or the label whose buddy it is.
QWidget *LabelOf(QWidget *widget)
{
    if (qobject_cast<QAbstractButton *>(widget) || qobject_cast<LedLabel *>(widget) ||
        qobject_cast<QGroupBox *>(widget))
        return widget;
    const QList<QLabel *> labels = widget->window()->findChildren<QLabel *>();
    for (QLabel *label : labels)
        if (label->buddy() == widget)
            return label;
    return qobject_cast<QLabel *>(widget);
}

} // namespace

void QTV_DrawControl(const VIEW_Control &change)
{
    QTV_Control *control = QTV_FindControl(change.panel, change.control);
    if (!control || !control->widget)
        return;
    QWidget *widget = control->widget;
    if (change.mask & VIEW_CTRL_VALUE)
        DrawValue(*control, change);
    if (change.mask & VIEW_CTRL_DIMMED)
        widget->setEnabled(!change.isDimmed);
    if (change.mask & VIEW_CTRL_VISIBLE)
        widget->setVisible(change.isVisible);
    if (change.mask & VIEW_CTRL_COLOR) {
        control->color = change.color; // kept for the day the desktop turns dark
        DrawColor(widget, change.color);
    }
    QWidget *label = change.mask & VIEW_CTRL_LABEL ? LabelOf(widget) : nullptr;
    if (label) // as a property: buttons, labels and group boxes have no base class with a text
        label->setProperty(qobject_cast<QGroupBox *>(label) ? "title" : "text",
                           QTV_AccessText(change.label));
    if (change.mask & VIEW_CTRL_TOOLTIP)
        widget->setToolTip(QTV_ToQt(change.tooltip));
    if (change.mask & VIEW_CTRL_MODE) {
        if (auto *field = qobject_cast<QLineEdit *>(widget))
            field->setReadOnly(!change.canType);
        else if (auto *number = qobject_cast<QAbstractSpinBox *>(widget))
            number->setReadOnly(!change.canType);
    }
    if ((change.mask & VIEW_CTRL_SEGMENTS) && control->row->kind == UIK_BAR)
        static_cast<SegmentBar *>(widget)->setSegments(change.segments);
    if (change.mask & VIEW_CTRL_COMPLETION)
        QTV_SetCompletion(*control, change.hasCompletion);
}

void QTV_UsePalette(QTV_Panel *panel)
{
    if (!panel->window)
        return;
    const QPalette around = panel->window->palette();
    const QColor quiet = QTV_QuietColor(around, around.color(QPalette::Window));
    // Captions over parts of a window are quieter than what stands in them.
    const QList<QLabel *> labels = panel->window->findChildren<QLabel *>();
    for (QLabel *label : labels) {
        if (!label->property("caption").toBool() || label->window() != panel->window)
            continue;
        QPalette palette = label->palette();
        palette.setColor(QPalette::WindowText, quiet);
        label->setPalette(palette);
    }
    // Some desktops leave the hints in empty fields dark on a dark ground.
    const QColor hint = QTV_QuietColor(around, around.color(QPalette::Base));
    const QList<QLineEdit *> fields = panel->window->findChildren<QLineEdit *>();
    for (QLineEdit *field : fields) {
        QPalette palette = field->palette();
        palette.setColor(QPalette::PlaceholderText, hint);
        field->setPalette(palette);
    }
    for (const QTV_Control &control : panel->controls)
        if (control.color >= 0 && control.widget)
            DrawColor(control.widget, control.color);
}
