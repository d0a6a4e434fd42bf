// Panels: loading, showing, place, size and title.
#include "runtime/model/model.h"

#include <algorithm>

namespace {

struct RectField {
    int attribute;
    int VIEW_Rect::*field;
    unsigned mask;
};
const RectField RECT_FIELDS[] = {{ATTR_LEFT, &VIEW_Rect::left, VIEW_PANEL_PLACE},
                                 {ATTR_TOP, &VIEW_Rect::top, VIEW_PANEL_PLACE},
                                 {ATTR_WIDTH, &VIEW_Rect::width, VIEW_PANEL_SIZE},
                                 {ATTR_HEIGHT, &VIEW_Rect::height, VIEW_PANEL_SIZE}};

const RectField *FindField(int attribute)
{
    for (const RectField &row : RECT_FIELDS)
        if (row.attribute == attribute)
            return &row;
    return nullptr;
}

void Mark(MDL_Panel *panel, unsigned mask)
{
    panel->state.mask |= mask;
    if (!(mask & (VIEW_PANEL_VISIBLE | VIEW_PANEL_RAISED)))
        return;
    std::vector<int> &order = MDL_GetState().shownOrder;
    order.erase(std::remove(order.begin(), order.end(), panel->row->panel), order.end());
    order.push_back(panel->row->panel);
}

int SetVisible(MDL_Panel *panel, bool isVisible)
{
    panel->state.isVisible = isVisible;
    Mark(panel, VIEW_PANEL_VISIBLE);
    return 0;
}

} // namespace

int LoadPanel(int parentPanel, int resource)
{
    int error = 0;
    if (parentPanel != 0 && !MDL_FindPanel(parentPanel, &error))
        return error;
    for (MDL_Panel &panel : MDL_GetState().panels) {
        if (panel.row->panel != resource)
            continue;
        if (!panel.isLoaded)
            Mark(&panel, VIEW_PANEL_LOADED);
        panel.isLoaded = true;
        panel.state.parent = parentPanel;
        return resource;
    }
    return UIE_NO_PANEL;
}

int DisplayPanel(int panel)
{
    return MDL_OnPanel(panel, [](MDL_Panel *p) { return SetVisible(p, true); });
}

int HidePanel(int panel)
{
    return MDL_OnPanel(panel, [](MDL_Panel *p) { return SetVisible(p, false); });
}

int SetActivePanel(int panel)
{
    return MDL_OnPanel(panel, [](MDL_Panel *p) {
        Mark(p, VIEW_PANEL_RAISED);
        return 0;
    });
}

int SetPanelPos(int panel, int top, int left)
{
    return MDL_OnPanel(panel, [&](MDL_Panel *p) {
        p->state.rect.top = top;
        p->state.rect.left = left;
        Mark(p, VIEW_PANEL_PLACE);
        return 0;
    });
}

int SetPanelAttribute(int panel, int attribute, int value)
{
    return MDL_OnPanel(panel, [&](MDL_Panel *p) -> int {
        if (attribute == ATTR_VISIBLE)
            return SetVisible(p, value != 0);
        if (attribute == ATTR_SIZABLE) {
            p->state.isSizable = value != 0;
            Mark(p, VIEW_PANEL_SIZABLE);
            return 0;
        }
        const RectField *row = FindField(attribute);
        if (!row)
            return UIE_BAD_ATTRIBUTE;
        p->state.rect.*row->field = value;
        Mark(p, row->mask);
        return 0;
    });
}

int SetPanelAttribute(int panel, int attribute, const std::string &text)
{
    return MDL_OnPanel(panel, [&](MDL_Panel *p) -> int {
        if (attribute != ATTR_TITLE)
            return UIE_BAD_ATTRIBUTE;
        p->state.title = text;
        Mark(p, VIEW_PANEL_TITLE);
        return 0;
    });
}

int GetPanelAttribute(int panel, int attribute, int *value)
{
    MDL_CatchUp();
    return MDL_OnPanel(panel, [&](MDL_Panel *p) -> int {
        const RectField *row = FindField(attribute);
        if (row)
            *value = p->state.rect.*row->field;
        else if (attribute == ATTR_VISIBLE)
            *value = p->state.isVisible;
        else if (attribute == ATTR_SIZABLE)
            *value = p->state.isSizable;
        else if (attribute == ATTR_IS_PLACED)
            *value = p->isPlaced;
        else
            return UIE_BAD_ATTRIBUTE;
        return 0;
    });
}

int GetPanelAttribute(int panel, int attribute, std::string *text)
{
    return MDL_OnPanel(panel, [&](MDL_Panel *p) -> int {
        if (attribute != ATTR_TITLE)
            return UIE_BAD_ATTRIBUTE;
        *text = p->state.title;
        return 0;
    });
}
