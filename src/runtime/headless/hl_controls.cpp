// Controls: values and attributes. Each kind answers only the calls a widget of
// that kind could answer.
#include "runtime/headless/hl_state.h"

#include <algorithm>

namespace {

// What `use` answers for the control, or why there is none.
template <class Use> int OnControl(int panel, int control, Use use)
{
    int error = 0;
    HL_Control *c = HL_FindControl(panel, control, &error);
    return c ? use(c) : error;
}

bool IsKind(const HL_Control &control, std::initializer_list<UI_Kind> kinds)
{
    return std::find(kinds.begin(), kinds.end(), control.row->kind) != kinds.end();
}

// A ring without lines has its entries in the panel's layout: any value will do.
int SetRing(HL_Control *ring, int value)
{
    const int count = static_cast<int>(ring->lines.size());
    int index = 0;
    while (index < count && ring->lines[static_cast<size_t>(index)].value != value)
        index++;
    if (count > 0 && index == count)
        return UIE_BAD_INDEX;
    ring->selected = count > 0 ? index : -1;
    ring->value = value;
    return 0;
}

struct IntAttribute {
    int attribute;
    int *field;
};

int *IntField(HL_Control *c, int attribute)
{
    const IntAttribute fields[] = {
        {ATTR_TEXT_COLOR, &c->color}, {ATTR_LEFT, &c->rect.left},     {ATTR_TOP, &c->rect.top},
        {ATTR_WIDTH, &c->rect.width}, {ATTR_HEIGHT, &c->rect.height},
    };
    for (const IntAttribute &field : fields)
        if (field.attribute == attribute)
            return field.field;
    const bool canType = IsKind(*c, {UIK_STRING, UIK_NUMBER, UIK_TEXTBOX});
    return attribute == ATTR_CTRL_MODE && canType ? &c->mode : nullptr;
}

bool *FlagField(HL_Control *c, int attribute)
{
    if (attribute == ATTR_DIMMED)
        return &c->isDimmed;
    return attribute == ATTR_VISIBLE ? &c->isVisible : nullptr;
}

std::string *TextField(HL_Control *c, int attribute)
{
    if (c->row->kind == UIK_TIMER)
        return nullptr;
    if (attribute == ATTR_LABEL_TEXT)
        return &c->label;
    return attribute == ATTR_TOOLTIP_TEXT ? &c->tooltip : nullptr;
}

int SetFirstVisible(HL_Control *c, int line)
{
    if (!IsKind(*c, {UIK_LIST, UIK_TEXTBOX}))
        return UIE_BAD_ATTRIBUTE;
    if (line < 0)
        return UIE_BAD_INDEX;
    c->firstVisible = std::min(line, std::max(0, static_cast<int>(c->lines.size()) - 1));
    return 0;
}

std::string BoxText(const HL_Control &box)
{
    std::string text;
    for (size_t i = 0; i < box.lines.size(); i++)
        text += (i > 0 ? "\n" : "") + box.lines[i].label;
    return text;
}

} // namespace

int SetCtrlVal(int panel, int control, int value)
{
    return OnControl(panel, control, [&](HL_Control *c) -> int {
        switch (c->row->kind) {
        case UIK_SWITCH:
        case UIK_LED:
            c->value = value != 0;
            return 0;
        case UIK_NUMBER:
            c->number = value;
            return 0;
        case UIK_RING:
            return SetRing(c, value);
        case UIK_LIST:
            return SetCtrlIndex(panel, control, value);
        default:
            return UIE_BAD_TYPE;
        }
    });
}

int SetCtrlVal(int panel, int control, double value)
{
    return OnControl(panel, control, [&](HL_Control *c) -> int {
        if (c->row->kind != UIK_NUMBER)
            return UIE_BAD_TYPE;
        c->number = value;
        return 0;
    });
}

int GetCtrlVal(int panel, int control, int *value)
{
    return OnControl(panel, control, [&](HL_Control *c) -> int {
        if (IsKind(*c, {UIK_SWITCH, UIK_LED, UIK_RING}))
            *value = c->value;
        else if (c->row->kind == UIK_NUMBER)
            *value = static_cast<int>(c->number);
        else if (c->row->kind == UIK_LIST)
            *value = c->selected;
        else
            return UIE_BAD_TYPE;
        return 0;
    });
}

int GetCtrlVal(int panel, int control, double *value)
{
    return OnControl(panel, control, [&](HL_Control *c) -> int {
        if (c->row->kind != UIK_NUMBER)
            return UIE_BAD_TYPE;
        *value = c->number;
        return 0;
    });
}

int GetCtrlVal(int panel, int control, std::string *text)
{
    return OnControl(panel, control, [&](HL_Control *c) -> int {
        if (IsKind(*c, {UIK_TEXT, UIK_STRING}))
            *text = c->text;
        else if (c->row->kind == UIK_TEXTBOX)
            *text = BoxText(*c);
        else
            return UIE_BAD_TYPE;
        return 0;
    });
}

int SetCtrlAttribute(int panel, int control, int attribute, int value)
{
    return OnControl(panel, control, [&](HL_Control *c) -> int {
        if (c->row->kind == UIK_TIMER)
            return UIE_BAD_ATTRIBUTE;
        if (attribute == ATTR_FIRST_VISIBLE_LINE)
            return SetFirstVisible(c, value);
        if (bool *flag = FlagField(c, attribute))
            *flag = value != 0;
        else if (int *field = IntField(c, attribute))
            *field = value;
        else
            return UIE_BAD_ATTRIBUTE;
        return 0;
    });
}

int SetCtrlAttribute(int panel, int control, int attribute, double value)
{
    return OnControl(panel, control, [&](HL_Control *c) -> int {
        if (c->row->kind != UIK_TIMER || attribute != ATTR_INTERVAL)
            return UIE_BAD_ATTRIBUTE;
        c->number = value;
        return 0;
    });
}

int SetCtrlAttribute(int panel, int control, int attribute, const std::string &text)
{
    return OnControl(panel, control, [&](HL_Control *c) -> int {
        std::string *field = TextField(c, attribute);
        if (!field)
            return UIE_BAD_ATTRIBUTE;
        *field = text;
        return 0;
    });
}

int GetCtrlAttribute(int panel, int control, int attribute, int *value)
{
    return OnControl(panel, control, [&](HL_Control *c) -> int {
        if (c->row->kind == UIK_TIMER)
            return UIE_BAD_ATTRIBUTE;
        if (attribute == ATTR_FIRST_VISIBLE_LINE && IsKind(*c, {UIK_LIST, UIK_TEXTBOX}))
            *value = c->firstVisible;
        else if (const bool *flag = FlagField(c, attribute))
            *value = *flag;
        else if (const int *field = IntField(c, attribute))
            *value = *field;
        else
            return UIE_BAD_ATTRIBUTE;
        return 0;
    });
}

int GetCtrlAttribute(int panel, int control, int attribute, double *value)
{
    return OnControl(panel, control, [&](HL_Control *c) -> int {
        if (c->row->kind != UIK_TIMER || attribute != ATTR_INTERVAL)
            return UIE_BAD_ATTRIBUTE;
        *value = c->number;
        return 0;
    });
}

int GetCtrlAttribute(int panel, int control, int attribute, std::string *text)
{
    return OnControl(panel, control, [&](HL_Control *c) -> int {
        const std::string *field = TextField(c, attribute);
        if (!field)
            return UIE_BAD_ATTRIBUTE;
        *text = *field;
        return 0;
    });
}

int SetActiveCtrl(int panel, int control)
{
    int error = 0;
    if (!HL_FindControl(panel, control, &error))
        return error;
    HL_FindPanel(panel, &error)->focus = control;
    return 0;
}

int GetActiveCtrl(int panel)
{
    int error = 0;
    const HL_Panel *p = HL_FindPanel(panel, &error);
    return p ? p->focus : error;
}

int SetCtrlCompletion(int panel, int control, CompletionCallback callback)
{
    return OnControl(panel, control, [&](HL_Control *c) -> int {
        if (c->row->kind != UIK_STRING)
            return UIE_BAD_TYPE;
        c->completion = callback;
        return 0;
    });
}
