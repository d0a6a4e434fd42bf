// Controls: values, attributes and the keyboard. Each kind answers only the calls a widget
// of that kind could answer.
#include "runtime/model/model.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double INTERVAL_MIN_S = 0.001;
constexpr double INTERVAL_MAX_S = 86400;

bool IsKind(const MDL_Control &control, std::initializer_list<UI_Kind> kinds)
{
    return std::find(kinds.begin(), kinds.end(), control.row->kind) != kinds.end();
}

// Setting what is there already changes nothing, not even for an event that crosses it.
template <class Value> int SetValue(MDL_Control *c, Value *field, const Value &value)
{
    if (*field != value) {
        *field = value;
        MDL_MarkValue(c);
    }
    return 0;
}

int SetNumber(MDL_Control *c, double value)
{
    if (c->min < c->max)
        value = std::clamp(value, c->min, c->max);
    return SetValue(c, &c->state.number, value);
}

int SetRing(MDL_Control *ring, int value)
{
    const auto found = std::find_if(ring->lines.begin(), ring->lines.end(),
                                    [&](const VIEW_Line &line) { return line.value == value; });
    if (found == ring->lines.end())
        return UIE_BAD_INDEX;
    return SetCtrlIndex(ring->row->panel, ring->row->control,
                        static_cast<int>(found - ring->lines.begin()));
}

struct IntAttribute {
    int attribute;
    int *field;
    unsigned mask;
};
struct FlagAttribute {
    int attribute;
    bool *field;
    unsigned mask;
};

IntAttribute FindInt(MDL_Control *c, int attribute)
{
    VIEW_Control &s = c->state;
    const IntAttribute rows[] = {{ATTR_TEXT_COLOR, &s.color, VIEW_CTRL_COLOR},
                                 {ATTR_LEFT, &s.rect.left, VIEW_CTRL_RECT},
                                 {ATTR_TOP, &s.rect.top, VIEW_CTRL_RECT},
                                 {ATTR_WIDTH, &s.rect.width, VIEW_CTRL_RECT},
                                 {ATTR_HEIGHT, &s.rect.height, VIEW_CTRL_RECT}};
    for (const IntAttribute &row : rows)
        if (row.attribute == attribute)
            return row;
    return {attribute, nullptr, 0};
}

FlagAttribute FindFlag(MDL_Control *c, int attribute)
{
    VIEW_Control &s = c->state;
    if (attribute == ATTR_DIMMED)
        return {attribute, &s.isDimmed, VIEW_CTRL_DIMMED};
    if (attribute == ATTR_VISIBLE)
        return {attribute, &s.isVisible, VIEW_CTRL_VISIBLE};
    if (attribute == ATTR_CTRL_MODE && IsKind(*c, {UIK_STRING, UIK_NUMBER, UIK_TEXTBOX}))
        return {attribute, &s.canType, VIEW_CTRL_MODE};
    return {attribute, nullptr, 0};
}

std::string *FindText(MDL_Control *c, int attribute, unsigned *mask)
{
    const bool isLabel = attribute == ATTR_LABEL_TEXT;
    if (c->row->kind == UIK_TIMER || (!isLabel && attribute != ATTR_TOOLTIP_TEXT))
        return nullptr;
    *mask = isLabel ? VIEW_CTRL_LABEL : VIEW_CTRL_TOOLTIP;
    return isLabel ? &c->state.label : &c->state.tooltip;
}

template <class Value> void SetLook(MDL_Control *c, Value *field, const Value &value, unsigned mask)
{
    if (*field == value)
        return;
    *field = value;
    c->state.mask |= mask;
    MDL_FlushNowAndThen();
}

int CountLines(const MDL_Control &c)
{
    return static_cast<int>(c.row->kind == UIK_TEXTBOX ? c.box.size() : c.lines.size());
}

// The last line that can stand on top.
int LastFirst(const MDL_Control &c)
{
    return std::max(0, CountLines(c) - std::max(1, c.linesInView));
}

int SetFirstVisible(MDL_Control *c, int line)
{
    if (!IsKind(*c, {UIK_LIST, UIK_TEXTBOX}))
        return UIE_BAD_ATTRIBUTE;
    if (line < 0)
        return UIE_BAD_INDEX;
    c->firstVisible = std::min(line, LastFirst(*c));
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
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        return c->row->kind == UIK_NUMBER ? SetNumber(c, value) : UIE_BAD_TYPE;
    });
}

int GetCtrlVal(int panel, int control, int *value)
{
    MDL_CatchUp();
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        if (IsKind(*c, {UIK_SWITCH, UIK_LED, UIK_RING}))
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
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        if (c->row->kind != UIK_NUMBER)
            return UIE_BAD_TYPE;
        *value = c->state.number;
        return 0;
    });
}

int SetCtrlAttribute(int panel, int control, int attribute, int value)
{
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        if (c->row->kind == UIK_TIMER)
            return UIE_BAD_ATTRIBUTE;
        if (attribute == ATTR_FIRST_VISIBLE_LINE)
            return SetFirstVisible(c, value);
        const FlagAttribute flag = FindFlag(c, attribute);
        const IntAttribute number = FindInt(c, attribute);
        if (flag.field)
            SetLook(c, flag.field, value != 0, flag.mask);
        else if (number.field)
            SetLook(c, number.field, value, number.mask);
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
        const bool isScrolled = IsKind(*c, {UIK_LIST, UIK_TEXTBOX});
        const FlagAttribute flag = FindFlag(c, attribute);
        const IntAttribute number = FindInt(c, attribute);
        if (attribute == ATTR_FIRST_VISIBLE_LINE && isScrolled)
            *value = std::min(c->firstVisible, LastFirst(*c));
        else if (attribute == ATTR_LINES_IN_VIEW && isScrolled)
            *value = c->linesInView;
        else if (flag.field)
            *value = *flag.field;
        else if (number.field)
            *value = *number.field;
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
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        if (c->row->kind != UIK_BAR)
            return UIE_BAD_TYPE;
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
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        if (c->row->kind != UIK_BAR)
            return UIE_BAD_TYPE;
        *segments = c->state.segments;
        return 0;
    });
}

int SetActiveCtrl(int panel, int control)
{
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        // A text takes keys only where somebody wants them.
        if (IsKind(*c, {UIK_LED, UIK_BAR, UIK_TIMER, UIK_DECOR}) ||
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
    return MDL_OnControl(panel, control, [&](MDL_Control *c) -> int {
        if (c->row->kind != UIK_STRING)
            return UIE_BAD_TYPE;
        c->completion = callback;
        SetLook(c, &c->state.hasCompletion, callback != nullptr,
                static_cast<unsigned>(VIEW_CTRL_COMPLETION));
        return 0;
    });
}
