// Panels: loading, showing, place, size and title. Each call marks what the view must look at;
// setting what is there already is told again, for the user may have moved the window since.
#include "runtime/model/model.h"

#include <algorithm>

namespace {

void Mark(MDL_Panel *panel, unsigned mask)
{
    panel->state.mask |= mask;
    // Of several windows that come up in one batch the last one is to be in front.
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
    // Not MDL_FindPanel: that one knows loaded panels alone.
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
    return MDL_OnPanel(panel, [](MDL_Panel *p) { Mark(p, VIEW_PANEL_RAISED); });
}

int SetPanelPos(int panel, int top, int left)
{
    return MDL_OnPanel(panel, [&](MDL_Panel *p) {
        p->state.rect.top = top;
        p->state.rect.left = left;
        Mark(p, VIEW_PANEL_PLACE);
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
        int *edge = MDL_FindEdge(&p->state.rect, attribute);
        if (!edge)
            return UIE_BAD_ATTRIBUTE;
        *edge = value;
        const bool isPlace = attribute == ATTR_LEFT || attribute == ATTR_TOP;
        Mark(p, isPlace ? VIEW_PANEL_PLACE : VIEW_PANEL_SIZE);
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
    MDL_CatchUp(); // the user may have moved it a moment ago
    return MDL_OnPanel(panel, [&](MDL_Panel *p) -> int {
        const int *edge = MDL_FindEdge(&p->state.rect, attribute);
        if (edge)
            *value = *edge;
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
