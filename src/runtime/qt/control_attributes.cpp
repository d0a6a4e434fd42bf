// Controls: their attributes.
#include "runtime/qt/face.h"

#include <QAbstractSpinBox>
#include <QGroupBox>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <cmath>

#include "runtime/qt/led_label.h"
#include "runtime/qt/line_list.h"
#include "runtime/qt/panel_window.h"
#include "runtime/qt/text_box.h"
#include "runtime/qt/toggle_switch.h"

namespace {

constexpr double INTERVAL_MIN_S = 0.001;
constexpr double INTERVAL_MAX_S = 86400;

int SetColor(QWidget *widget, int color)
{
    const QColor pen = QColor::fromRgb(static_cast<QRgb>(color) | 0xFF000000u);
    QPalette palette = widget->palette();
    for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Active, role, pen);
        palette.setColor(QPalette::Inactive, role, pen);
    }
    widget->setPalette(palette);
    return 0;
}

int GetColor(const QWidget *widget)
{
    return static_cast<int>(widget->palette().color(QPalette::WindowText).rgb() & 0xFFFFFFu);
}

// Where a layout arranges the widgets, their places are not the program's to set.
bool IsInLayout(const QWidget *widget)
{
    const QWidget *parent = widget->parentWidget();
    return parent && parent->layout();
}

int SetGeometry(QWidget *widget, int attribute, int value)
{
    if (IsInLayout(widget))
        return UIE_BAD_TYPE;
    if (attribute == ATTR_LEFT)
        widget->move(value, widget->y());
    else if (attribute == ATTR_TOP)
        widget->move(widget->x(), value);
    else if (attribute == ATTR_WIDTH)
        widget->resize(value, widget->height());
    else
        widget->resize(widget->width(), value);
    return 0;
}

int GetGeometry(const QWidget *widget, int attribute, int *value)
{
    const QPoint corner = widget->mapTo(PanelWindow::holding(widget->parentWidget()), QPoint(0, 0));
    if (attribute == ATTR_LEFT)
        *value = corner.x();
    else if (attribute == ATTR_TOP)
        *value = corner.y();
    else if (attribute == ATTR_WIDTH)
        *value = widget->width();
    else
        *value = widget->height();
    return 0;
}

int SetReadOnly(QWidget *widget, bool isReadOnly)
{
    if (auto *field = qobject_cast<QLineEdit *>(widget))
        field->setReadOnly(isReadOnly);
    else if (auto *number = qobject_cast<QAbstractSpinBox *>(widget))
        number->setReadOnly(isReadOnly);
    else if (auto *box = qobject_cast<TextBox *>(widget))
        box->setReadOnly(isReadOnly);
    else
        return UIE_BAD_ATTRIBUTE;
    return 0;
}

int GetMode(const QWidget *widget, int *value)
{
    const QVariant isReadOnly = widget->property("readOnly");
    if (!isReadOnly.isValid())
        return UIE_BAD_ATTRIBUTE;
    *value = !isReadOnly.toBool();
    return 0;
}

int SetFirstVisible(QWidget *widget, int line)
{
    auto *list = qobject_cast<LineList *>(widget);
    auto *box = qobject_cast<TextBox *>(widget);
    if (!list && !box)
        return UIE_BAD_ATTRIBUTE;
    if (line < 0)
        return UIE_BAD_INDEX;
    if (list)
        list->setFirstVisible(line);
    else
        box->setFirstVisibleLine(line);
    return 0;
}

int GetFirstVisible(QWidget *widget, int *line)
{
    if (auto *list = qobject_cast<LineList *>(widget))
        *line = list->firstVisible();
    else if (auto *box = qobject_cast<TextBox *>(widget))
        *line = box->firstVisibleLine();
    else
        return UIE_BAD_ATTRIBUTE;
    return 0;
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

int SetLabel(QWidget *widget, const std::string &text)
{
    QWidget *label = LabelOf(widget);
    if (!label)
        return UIE_BAD_ATTRIBUTE;
    const char *property = qobject_cast<QGroupBox *>(label) ? "title" : "text";
    label->setProperty(property, FACE_AccessText(text));
    return 0;
}

int GetLabel(QWidget *widget, std::string *text)
{
    const QWidget *label = LabelOf(widget);
    if (!label)
        return UIE_BAD_ATTRIBUTE;
    const char *property = qobject_cast<const QGroupBox *>(label) ? "title" : "text";
    QString shown = label->property(property).toString();
    shown.replace("&&", QString(QChar::Null)).replace("&", "__").replace(QChar::Null, '&');
    *text = FACE_ToStd(shown);
    return 0;
}

// Timers are controls without a widget: they have none of its attributes.
template <class Use> int OnWidget(int panel, int control, Use use)
{
    return FACE_OnControl(panel, control, [&](FaceControl *found) -> int {
        return found->widget ? use(found->widget) : UIE_BAD_ATTRIBUTE;
    });
}

int FindTimer(int panel, int control, int attribute, FaceControl **timer)
{
    const int error = FACE_FindControl(panel, control, timer);
    if (error < 0)
        return error;
    return (*timer)->timer && attribute == ATTR_INTERVAL ? 0 : UIE_BAD_ATTRIBUTE;
}

} // namespace

int SetCtrlAttribute(int panel, int control, int attribute, int value)
{
    return OnWidget(panel, control, [&](QWidget *widget) -> int {
        switch (attribute) {
        case ATTR_DIMMED:
            widget->setEnabled(value == 0);
            return 0;
        case ATTR_VISIBLE:
            widget->setVisible(value != 0);
            return 0;
        case ATTR_TEXT_COLOR:
            return SetColor(widget, value);
        case ATTR_CTRL_MODE:
            return SetReadOnly(widget, value == 0);
        case ATTR_FIRST_VISIBLE_LINE:
            return SetFirstVisible(widget, value);
        case ATTR_LEFT:
        case ATTR_TOP:
        case ATTR_WIDTH:
        case ATTR_HEIGHT:
            return SetGeometry(widget, attribute, value);
        default:
            return UIE_BAD_ATTRIBUTE;
        }
    });
}

int SetCtrlAttribute(int panel, int control, int attribute, double value)
{
    FaceControl *timer = nullptr;
    const int error = FindTimer(panel, control, attribute, &timer);
    if (error < 0)
        return error;
    if (!(value > 0))
        return UIE_BAD_TYPE;
    timer->interval = qBound(INTERVAL_MIN_S, value, INTERVAL_MAX_S);
    FACE_StartTimer(timer);
    return 0;
}

int SetCtrlAttribute(int panel, int control, int attribute, const std::string &text)
{
    return OnWidget(panel, control, [&](QWidget *widget) -> int {
        if (attribute == ATTR_LABEL_TEXT)
            return SetLabel(widget, text);
        if (attribute != ATTR_TOOLTIP_TEXT)
            return UIE_BAD_ATTRIBUTE;
        widget->setToolTip(FACE_ToQt(text));
        return 0;
    });
}

int GetCtrlAttribute(int panel, int control, int attribute, int *value)
{
    return OnWidget(panel, control, [&](QWidget *widget) -> int {
        switch (attribute) {
        case ATTR_DIMMED:
            *value = !widget->isEnabledTo(PanelWindow::holding(widget));
            return 0;
        case ATTR_VISIBLE:
            *value = !widget->isHidden();
            return 0;
        case ATTR_TEXT_COLOR:
            *value = GetColor(widget);
            return 0;
        case ATTR_CTRL_MODE:
            return GetMode(widget, value);
        case ATTR_FIRST_VISIBLE_LINE:
            return GetFirstVisible(widget, value);
        case ATTR_LEFT:
        case ATTR_TOP:
        case ATTR_WIDTH:
        case ATTR_HEIGHT:
            return GetGeometry(widget, attribute, value);
        default:
            return UIE_BAD_ATTRIBUTE;
        }
    });
}

int GetCtrlAttribute(int panel, int control, int attribute, double *value)
{
    FaceControl *timer = nullptr;
    const int error = FindTimer(panel, control, attribute, &timer);
    if (error == 0)
        *value = timer->interval;
    return error;
}

int GetCtrlAttribute(int panel, int control, int attribute, std::string *text)
{
    return OnWidget(panel, control, [&](QWidget *widget) -> int {
        if (attribute == ATTR_LABEL_TEXT)
            return GetLabel(widget, text);
        if (attribute != ATTR_TOOLTIP_TEXT)
            return UIE_BAD_ATTRIBUTE;
        *text = FACE_ToStd(widget->toolTip());
        return 0;
    });
}
