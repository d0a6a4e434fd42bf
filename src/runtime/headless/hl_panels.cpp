// Panels: loading, showing, position and attributes.
#include "runtime/headless/hl_state.h"

namespace {

int *RectField(HL_Rect *rect, int attribute)
{
    switch (attribute) {
    case ATTR_LEFT:
        return &rect->left;
    case ATTR_TOP:
        return &rect->top;
    case ATTR_WIDTH:
        return &rect->width;
    case ATTR_HEIGHT:
        return &rect->height;
    default:
        return nullptr;
    }
}

int SetVisible(int panel, bool isVisible)
{
    int error = 0;
    HL_Panel *p = HL_FindPanel(panel, &error);
    if (p)
        p->isVisible = isVisible;
    return error;
}

} // namespace

int LoadPanel(int parentPanel, int resource)
{
    int error = 0;
    if (parentPanel != 0 && !HL_FindPanel(parentPanel, &error))
        return error;
    for (HL_Panel &panel : HL_GetState().panels) {
        if (panel.row->panel != resource)
            continue;
        panel.isLoaded = true;
        panel.parent = parentPanel;
        return resource;
    }
    return UIE_NO_PANEL;
}

int DisplayPanel(int panel)
{
    return SetVisible(panel, true);
}

int HidePanel(int panel)
{
    return SetVisible(panel, false);
}

int SetActivePanel(int panel)
{
    int error = 0;
    HL_FindPanel(panel, &error);
    return error;
}

int SetPanelPos(int panel, int top, int left)
{
    int error = 0;
    HL_Panel *p = HL_FindPanel(panel, &error);
    if (p) {
        p->rect.top = top;
        p->rect.left = left;
    }
    return error;
}

int SetPanelAttribute(int panel, int attribute, int value)
{
    int error = 0;
    HL_Panel *p = HL_FindPanel(panel, &error);
    if (!p)
        return error;
    int *field = attribute == ATTR_SIZABLE ? &p->isSizable : RectField(&p->rect, attribute);
    if (field)
        *field = value;
    else if (attribute == ATTR_VISIBLE)
        p->isVisible = value != 0;
    else
        return UIE_BAD_ATTRIBUTE;
    return 0;
}

int SetPanelAttribute(int panel, int attribute, const std::string &text)
{
    int error = 0;
    HL_Panel *p = HL_FindPanel(panel, &error);
    if (!p)
        return error;
    if (attribute != ATTR_TITLE)
        return UIE_BAD_ATTRIBUTE;
    p->title = text;
    return 0;
}

int GetPanelAttribute(int panel, int attribute, int *value)
{
    int error = 0;
    HL_Panel *p = HL_FindPanel(panel, &error);
    if (!p)
        return error;
    const int *field = attribute == ATTR_SIZABLE ? &p->isSizable : RectField(&p->rect, attribute);
    if (field)
        *value = *field;
    else if (attribute == ATTR_VISIBLE)
        *value = p->isVisible;
    else
        return UIE_BAD_ATTRIBUTE;
    return 0;
}

int GetPanelAttribute(int panel, int attribute, std::string *text)
{
    int error = 0;
    HL_Panel *p = HL_FindPanel(panel, &error);
    if (!p)
        return error;
    if (attribute != ATTR_TITLE)
        return UIE_BAD_ATTRIBUTE;
    *text = p->title;
    return 0;
}
