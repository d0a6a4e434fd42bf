// Panels: loading, showing, position and attributes.
#include "runtime/qt/face.h"

#include <QFontDatabase>
#include <QMenuBar>
#include <cstdio>

#include "runtime/qt/panel_window.h"

namespace {

// Widgets marked "mono" in the Designer file get the system's fixed-width font.
void UseFixedFont(QWidget *window)
{
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fixed.setPixelSize(window->font().pixelSize());
    const QList<QWidget *> widgets = window->findChildren<QWidget *>();
    for (QWidget *widget : widgets)
        if (widget->property("mono").toBool())
            widget->setFont(fixed);
}

bool BindControls(FacePanel *panel)
{
    for (int i = 0; i < UI_cnControls; i++) {
        if (UI_aControls[i].panel != panel->row->panel)
            continue;
        FaceControl control;
        control.row = &UI_aControls[i];
        control.callback = control.row->callback;
        panel->controls.push_back(control);
    }
    for (FaceControl &control : panel->controls)
        if (!FACE_BindControl(&control, panel->window))
            return false;
    return true;
}

bool Build(FacePanel *panel)
{
    if (!FACE_SetupPanel(panel->row->panel, panel->window)) {
        std::fprintf(stderr, "panel '%s': no layout\n", panel->row->name);
        return false;
    }
    UseFixedFont(panel->window);
    if (!BindControls(panel))
        return false;
    panel->window->setWindowTitle(panel->row->title);
    panel->window->rememberLimits();
    if (panel->row->panel == UI_nMenuPanel)
        panel->window->setMenuBar(FACE_BuildMenuBar(panel->window));
    return true;
}

int ReadGeometry(const QWidget *window, int attribute, int *value)
{
    switch (attribute) {
    case ATTR_LEFT:
        *value = window->x();
        return 0;
    case ATTR_TOP:
        *value = window->y();
        return 0;
    case ATTR_WIDTH:
        *value = window->width();
        return 0;
    case ATTR_HEIGHT:
        *value = window->height();
        return 0;
    default:
        return UIE_BAD_ATTRIBUTE;
    }
}

// A window that has no place of its own yet opens over the main one, not in a corner.
void PlaceOverMain(QWidget *window)
{
    const FacePanel *main = FACE_PanelRecord(UI_nMenuPanel);
    if (!main->window || main->window == window || !main->window->isVisible() ||
        window->testAttribute(Qt::WA_Moved))
        return;
    const QRect around = main->window->frameGeometry();
    const QSize spare = (around.size() - window->size()) / 2;
    window->move(around.topLeft() + QPoint(qMax(0, spare.width()), qMax(0, spare.height())));
}

int Show(int panel, bool isVisible)
{
    return FACE_OnPanel(panel, [&](FacePanel *found) -> int {
        if (isVisible && !found->parent)
            PlaceOverMain(found->window);
        found->window->setVisible(isVisible);
        if (found->parent) {
            found->parent->window->setCoveredBy(isVisible ? found->window : nullptr);
        } else if (isVisible) {
            found->window->raise();
            found->window->activateWindow();
        }
        return 0;
    });
}

} // namespace

int LoadPanel(int parentPanel, int resource)
{
    FacePanel *parent = nullptr;
    const int error = parentPanel == 0 ? 0 : FACE_FindPanel(parentPanel, &parent);
    if (error < 0)
        return error;
    FacePanel *panel = FACE_PanelRecord(resource);
    if (!panel)
        return UIE_NO_PANEL;
    if (panel->window)
        return resource;
    panel->parent = parent;
    panel->window = new PanelWindow(panel, parent ? parent->window : nullptr);
    if (Build(panel))
        return resource;
    delete panel->window;
    panel->window = nullptr;
    panel->controls.clear();
    return UIE_NO_CONTROL;
}

int DisplayPanel(int panel)
{
    return Show(panel, true);
}

int HidePanel(int panel)
{
    return Show(panel, false);
}

int SetActivePanel(int panel)
{
    return FACE_OnPanel(panel, [&](FacePanel *found) -> int {
        found->window->raise();
        found->window->activateWindow();
        return 0;
    });
}

int SetPanelPos(int panel, int top, int left)
{
    return FACE_OnPanel(panel, [&](FacePanel *found) -> int {
        found->window->move(left, top);
        return 0;
    });
}

int SetPanelAttribute(int panel, int attribute, int value)
{
    return FACE_OnPanel(panel, [&](FacePanel *found) -> int {
        PanelWindow *window = found->window;
        switch (attribute) {
        case ATTR_VISIBLE:
            return Show(panel, value != 0);
        case ATTR_LEFT:
            window->move(value, window->y());
            return 0;
        case ATTR_TOP:
            window->move(window->x(), value);
            return 0;
        case ATTR_WIDTH:
            window->resizeByProgram(QSize(value, window->height()));
            return 0;
        case ATTR_HEIGHT:
            window->resizeByProgram(QSize(window->width(), value));
            return 0;
        case ATTR_SIZABLE:
            window->setSizable(value != 0);
            return 0;
        default:
            return UIE_BAD_ATTRIBUTE;
        }
    });
}

int SetPanelAttribute(int panel, int attribute, const std::string &text)
{
    return FACE_OnPanel(panel, [&](FacePanel *found) -> int {
        if (attribute != ATTR_TITLE)
            return UIE_BAD_ATTRIBUTE;
        // Qt would take "[*]" in a file name for its own mark of a changed document.
        found->window->setWindowTitle(FACE_ToQt(text).replace("[*]", "[*][*]"));
        return 0;
    });
}

int GetPanelAttribute(int panel, int attribute, int *value)
{
    return FACE_OnPanel(panel, [&](FacePanel *found) -> int {
        if (attribute == ATTR_VISIBLE)
            *value = !found->window->isHidden();
        else if (attribute == ATTR_SIZABLE)
            *value = found->window->isSizable();
        else
            return ReadGeometry(found->window, attribute, value);
        return 0;
    });
}

int GetPanelAttribute(int panel, int attribute, std::string *text)
{
    return FACE_OnPanel(panel, [&](FacePanel *found) -> int {
        if (attribute != ATTR_TITLE)
            return UIE_BAD_ATTRIBUTE;
        *text = FACE_ToStd(found->window->windowTitle().replace("[*][*]", "[*]"));
        return 0;
    });
}
