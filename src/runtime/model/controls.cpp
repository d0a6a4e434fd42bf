// Controls: values, attributes and the keyboard. Each kind answers only the calls a widget
// of that kind could answer.
#include "runtime/model/model.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double INTERVAL_MIN_S = 0.001; // shorter ones would leave no time between ticks
constexpr double INTERVAL_MAX_S = 86400; // a day

// Setting what is there already changes nothing, not even for an event that crosses it.
template <class Value> int SetValue(MDL_Control *c, Value *field, const Value &value)
{
    if (*field != value) {
        *field = value;
        MDL_MarkValue(c);
    }
    return 0;
}

// A program's number beyond the bounds is as good as the bound: no field could show it.
int SetNumber(MDL_Control *c, double value)
{
    if (c->min < c->max)
        value = std::clamp(value, c->min, c->max);
    return SetValue(c, &c->state.number, value);
}

// The first entry of that value; entries are chosen by value, not by place.
int SetRing(MDL_Control *ring, int value)
{
    const auto found = std::find_if(ring->lines.begin(), ring->lines.end(),
                                    [&](const VIEW_Line &line) { return line.value == value; });
    if (found == ring->lines.end())
        return UIE_BAD_INDEX;
    return SetCtrlIndex(ring->row->panel, ring->row->control,
                        static_cast<int>(found - ring->lines.begin()));
}

// An attribute of whole numbers: where it stands and what of the view it changes. `number` or
// `flag`, or neither where the control has no such attribute.
struct Look {
    int *number = nullptr;
    bool *flag = nullptr;
    unsigned mask = 0;
};

Look FindLook(MDL_Control *c, int attribute)
{
    VIEW_Control &s = c->state;
    const bool isTyped = MDL_IsKind(*c, {UIK_STRING, UIK_NUMBER, UIK_TEXTBOX});
    switch (attribute) {
    case ATTR_DIMMED:
        return {nullptr, &s.isDimmed, VIEW_CTRL_DIMMED};
    case ATTR_VISIBLE:
        return {nullptr, &s.isVisible, VIEW_CTRL_VISIBLE};
    case ATTR_CTRL_MODE:
        return {nullptr, isTyped ? &s.canType : nullptr, VIEW_CTRL_MODE};
    case ATTR_TEXT_COLOR:
        return {&s.color, nullptr, VIEW_CTRL_COLOR};
    default:
        return {MDL_FindEdge(&s.rect, attribute), nullptr, VIEW_CTRL_RECT};
    }
}

std::string *FindText(MDL_Control *c, int attribute, unsigned *mask)
{
    const bool isLabel = attribute == ATTR_LABEL_TEXT;
    if (c->row->kind == UIK_TIMER || (!isLabel && attribute != ATTR_TOOLTIP_TEXT))
        return nullptr;
    *mask = isLabel ? VIEW_CTRL_LABEL : VIEW_CTRL_TOOLTIP;
    return isLabel ? &c->state.label : &c->state.tooltip;
}

// A look is the program's alone: no event crosses it, so the value's stamp stays.
template <class Value> void SetLook(MDL_Control *c, Value *field, const Value &value, unsigned mask)
{
    if (*field == value)
        return;
    *field = value;
    c->state.mask |= mask;
    MDL_FlushNowAndThen();
}

// The last line that can stand on top: the view scrolls no further than to a full window.
int LastFirst(const MDL_Control &c)
{
    const size_t count = c.row->kind == UIK_TEXTBOX ? c.box.size() : c.lines.size();
    return std::max(0, static_cast<int>(count) - std::max(1, c.linesInView));
}

int SetFirstVisible(MDL_Control *c, int line)
{
    if (!MDL_IsKind(*c, {UIK_LIST, UIK_TEXTBOX}))
        return UIE_BAD_ATTRIBUTE;
    if (line < 0)
        return UIE_BAD_INDEX;
    c->firstVisible = std::min(line, LastFirst(*c));
    // A box is scrolled with its text, which may bring the line only now.
    if (c->row->kind == UIK_LIST) {
        c->listMask |= VIEW_LIST_FIRST;
    } else {
        c->boxChange.firstVisible = c->firstVisible;
        c->isBoxChanged = true;
    }
    return 0;
}

} // namespace

int SetCtrlVal(int panel, int control, int value)
{
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        switch (c->row->kind) {
        case UIK_SWITCH:
        case UIK_LED:
            return SetValue(c, &c->state.value, value != 0 ? 1 : 0);
        case UIK_NUMBER:
            return SetNumber(c, value);
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
    return MDL_OnKind(panel, control, {UIK_NUMBER},
                      [&](MDL_Control *c) { return SetNumber(c, value); });
}

int GetCtrlVal(int panel, int control, int *value)
{
    MDL_CatchUp();
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        if (MDL_IsKind(*c, {UIK_SWITCH, UIK_LED, UIK_RING}))
            *value = c->state.value;
        else if (c->row->kind == UIK_NUMBER)
            *value = static_cast<int>(std::lround(c->state.number));
        else if (c->row->kind == UIK_LIST)
            *value = c->current;
        else
            return UIE_BAD_TYPE;
        return 0;
    });
}

int GetCtrlVal(int panel, int control, double *value)
{
    MDL_CatchUp();
    return MDL_OnKind(panel, control, {UIK_NUMBER},
                      [&](MDL_Control *c) { *value = c->state.number; });
}

int SetCtrlAttribute(int panel, int control, int attribute, int value)
{
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        if (c->row->kind == UIK_TIMER)
            return UIE_BAD_ATTRIBUTE;
        if (attribute == ATTR_FIRST_VISIBLE_LINE)
            return SetFirstVisible(c, value);
        const Look look = FindLook(c, attribute);
        if (look.flag)
            SetLook(c, look.flag, value != 0, look.mask);
        else if (look.number)
            SetLook(c, look.number, value, look.mask);
        else
            return UIE_BAD_ATTRIBUTE;
        return 0;
    });
}

int SetCtrlAttribute(int panel, int control, int attribute, double value)
{
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        if (c->row->kind != UIK_TIMER || attribute != ATTR_INTERVAL)
            return UIE_BAD_ATTRIBUTE;
        if (!(value > 0))
            return UIE_BAD_TYPE;
        const double interval = std::clamp(value, INTERVAL_MIN_S, INTERVAL_MAX_S);
        if (interval != c->interval)
            c->dueUs = 0; // counts anew; setting it anew would put the next tick off
        c->interval = interval;
        return 0;
    });
}

int SetCtrlAttribute(int panel, int control, int attribute, const std::string &text)
{
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        unsigned mask = 0;
        std::string *field = FindText(c, attribute, &mask);
        if (!field)
            return UIE_BAD_ATTRIBUTE;
        SetLook(c, field, text, mask);
        return 0;
    });
}

int GetCtrlAttribute(int panel, int control, int attribute, int *value)
{
    MDL_CatchUp();
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        if (c->row->kind == UIK_TIMER)
            return UIE_BAD_ATTRIBUTE;
        const bool isScrolled = MDL_IsKind(*c, {UIK_LIST, UIK_TEXTBOX});
        const Look look = FindLook(c, attribute);
        // The list may have become shorter since it was scrolled.
        if (attribute == ATTR_FIRST_VISIBLE_LINE && isScrolled)
            *value = std::min(c->firstVisible, LastFirst(*c));
        else if (attribute == ATTR_LINES_IN_VIEW && isScrolled)
            *value = c->linesInView;
        else if (look.flag)
            *value = *look.flag;
        else if (look.number)
            *value = *look.number;
        else
            return UIE_BAD_ATTRIBUTE;
        return 0;
    });
}

int GetCtrlAttribute(int panel, int control, int attribute, double *value)
{
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        if (c->row->kind != UIK_TIMER || attribute != ATTR_INTERVAL)
            return UIE_BAD_ATTRIBUTE;
        *value = c->interval;
        return 0;
    });
}

int GetCtrlAttribute(int panel, int control, int attribute, std::string *text)
{
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        unsigned mask = 0;
        const std::string *field = FindText(c, attribute, &mask);
        if (!field)
            return UIE_BAD_ATTRIBUTE;
        *text = *field;
        return 0;
    });
}

int SetBarSegments(int panel, int control, const std::vector<UI_Segment> &segments)
{
    return MDL_OnKind(panel, control, {UIK_BAR}, [&](MDL_Control *c) -> int {
        const auto isBad = [](const UI_Segment &segment) { // also what is no number
            return !(segment.first >= 0 && segment.first <= segment.last && segment.last <= 1);
        };
        if (segments.size() > UI_SEGMENTS_MAX ||
            std::any_of(segments.begin(), segments.end(), isBad))
            return UIE_BAD_INDEX;
        c->state.segments = segments;
        c->state.mask |= VIEW_CTRL_SEGMENTS;
        MDL_FlushNowAndThen();
        return 0;
    });
}

int GetBarSegments(int panel, int control, std::vector<UI_Segment> *segments)
{
    return MDL_OnKind(panel, control, {UIK_BAR},
                      [&](MDL_Control *c) { *segments = c->state.segments; });
}

int SetActiveCtrl(int panel, int control)
{
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        // A text takes keys only where somebody wants them: a character display.
        if (MDL_IsKind(*c, {UIK_LED, UIK_BAR, UIK_TIMER, UIK_DECOR}) ||
            (c->row->kind == UIK_TEXT && c->row->callback == nullptr))
            return UIE_BAD_TYPE;
        int error = 0;
        MDL_SetFocus(panel, control);
        MDL_FindPanel(panel, &error)->state.mask |= VIEW_PANEL_FOCUS;
        return 0;
    });
}

int GetActiveCtrl(int panel)
{
    MDL_CatchUp();
    return MDL_OnPanel(panel, [](MDL_Panel *p) { return p->state.focus; });
}

int SetCtrlCompletion(int panel, int control, CompletionCallback callback)
{
    return MDL_OnKind(panel, control, {UIK_STRING}, [&](MDL_Control *c) {
        c->completion = callback;
        SetLook(c, &c->state.hasCompletion, callback != nullptr, VIEW_CTRL_COMPLETION);
    });
}
