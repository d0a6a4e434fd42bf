// Controls: their values and the keyboard focus. Each kind answers only the calls
// that make sense for it.
#include "runtime/qt/face.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSpinBox>
#include <cmath>

#include "runtime/qt/led_label.h"
#include "runtime/qt/panel_window.h"
#include "runtime/qt/text_box.h"
#include "runtime/qt/toggle_switch.h"

namespace {

int SetNumber(QWidget *widget, double value)
{
    const QSignalBlocker quiet(widget);
    if (auto *whole = qobject_cast<QSpinBox *>(widget))
        whole->setValue(static_cast<int>(std::lround(value)));
    else
        static_cast<QDoubleSpinBox *>(widget)->setValue(value);
    return 0;
}

double GetNumber(const QWidget *widget)
{
    if (const auto *whole = qobject_cast<const QSpinBox *>(widget))
        return whole->value();
    return static_cast<const QDoubleSpinBox *>(widget)->value();
}

int SetRing(const UI_Control &row, int value)
{
    int count = 0;
    GetNumListItems(row.panel, row.control, &count);
    for (int i = 0; i < count; i++) {
        int entry = 0;
        GetValueFromIndex(row.panel, row.control, i, &entry);
        if (entry == value)
            return SetCtrlIndex(row.panel, row.control, i);
    }
    return UIE_BAD_INDEX;
}

int GetRing(const UI_Control &row, int *value)
{
    int index = -1;
    GetCtrlIndex(row.panel, row.control, &index);
    return GetValueFromIndex(row.panel, row.control, index, value);
}

} // namespace

int SetCtrlVal(int panel, int control, int value)
{
    return FACE_OnControl(panel, control, [&](FaceControl *c) -> int {
        switch (c->row->kind) {
        case UIK_SWITCH:
            static_cast<ToggleSwitch *>(c->widget)->setChecked(value != 0);
            return 0;
        case UIK_LED:
            static_cast<LedLabel *>(c->widget)->setOn(value != 0);
            return 0;
        case UIK_NUMBER:
            return SetNumber(c->widget, value);
        case UIK_RING:
            return SetRing(*c->row, value);
        case UIK_LIST:
            return SetCtrlIndex(panel, control, value);
        default:
            return UIE_BAD_TYPE;
        }
    });
}

int SetCtrlVal(int panel, int control, double value)
{
    return FACE_OnControl(panel, control, [&](FaceControl *c) -> int {
        return c->row->kind == UIK_NUMBER ? SetNumber(c->widget, value) : UIE_BAD_TYPE;
    });
}

int SetCtrlVal(int panel, int control, const std::string &text)
{
    return FACE_OnControl(panel, control, [&](FaceControl *c) -> int {
        switch (c->row->kind) {
        case UIK_TEXT:
            static_cast<QLabel *>(c->widget)->setText(FACE_ToQt(text));
            return 0;
        case UIK_STRING:
            static_cast<QLineEdit *>(c->widget)->setText(FACE_ToQt(text));
            return 0;
        case UIK_TEXTBOX:
            static_cast<TextBox *>(c->widget)->appendText(FACE_ToQt(text));
            return 0;
        default:
            return UIE_BAD_TYPE;
        }
    });
}

int GetCtrlVal(int panel, int control, int *value)
{
    return FACE_OnControl(panel, control, [&](FaceControl *c) -> int {
        switch (c->row->kind) {
        case UIK_SWITCH:
            *value = static_cast<ToggleSwitch *>(c->widget)->isChecked();
            return 0;
        case UIK_LED:
            *value = static_cast<LedLabel *>(c->widget)->isOn();
            return 0;
        case UIK_NUMBER:
            *value = static_cast<int>(std::lround(GetNumber(c->widget)));
            return 0;
        case UIK_RING:
            return GetRing(*c->row, value);
        case UIK_LIST:
            return GetCtrlIndex(panel, control, value);
        default:
            return UIE_BAD_TYPE;
        }
    });
}

int GetCtrlVal(int panel, int control, double *value)
{
    return FACE_OnControl(panel, control, [&](FaceControl *c) -> int {
        if (c->row->kind != UIK_NUMBER)
            return UIE_BAD_TYPE;
        *value = GetNumber(c->widget);
        return 0;
    });
}

int GetCtrlVal(int panel, int control, std::string *text)
{
    return FACE_OnControl(panel, control, [&](FaceControl *c) -> int {
        switch (c->row->kind) {
        case UIK_TEXT:
            *text = FACE_ToStd(static_cast<QLabel *>(c->widget)->text());
            return 0;
        case UIK_STRING:
            *text = FACE_ToStd(static_cast<QLineEdit *>(c->widget)->text());
            return 0;
        case UIK_TEXTBOX:
            *text = FACE_ToStd(static_cast<TextBox *>(c->widget)->allText());
            return 0;
        default:
            return UIE_BAD_TYPE;
        }
    });
}

int SetActiveCtrl(int panel, int control)
{
    return FACE_OnControl(panel, control, [&](FaceControl *c) -> int {
        if (!c->widget || c->widget->focusPolicy() == Qt::NoFocus)
            return UIE_BAD_TYPE;
        c->widget->setFocus();
        return 0;
    });
}

int GetActiveCtrl(int panel)
{
    FacePanel *found = nullptr;
    const int error = FACE_FindPanel(panel, &found);
    if (error < 0)
        return error;
    const FaceControl *focused = FACE_ControlOf(found->window->window()->focusWidget());
    return focused && focused->row->panel == panel ? focused->row->control : 0;
}
