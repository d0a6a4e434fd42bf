// The records of panels and controls, and the loading of a panel's layout. A record for every row
// of the tables; its widgets come when the program loads the panel, and stay.
#include "runtime/qt/qt_view.h"

#include <QApplication>
#include <QFontDatabase>
#include <QLabel>
#include <cstdio>

#include "runtime/qt/panel_window.h"

namespace {

// False, and why on standard error, when the layout and the table differ: a mistake of ours that
// no user can mend.
bool Build(QTV_Panel *panel)
{
    if (!QTV_SetupPanel(panel->row->panel, panel->window)) {
        std::fprintf(stderr, "panel '%s': no layout\n", panel->row->name);
        return false;
    }
    // Widgets marked "mono" in the Designer file get the system's fixed-width font.
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fixed.setPixelSize(panel->window->font().pixelSize());
    const QList<QWidget *> widgets = panel->window->findChildren<QWidget *>();
    for (QWidget *widget : widgets)
        if (widget->property("mono").toBool())
            widget->setFont(fixed);
    // All records before the first is bound: signals keep their addresses.
    for (int i = 0; i < UI_cnControls; i++) {
        if (UI_aControls[i].panel != panel->row->panel)
            continue;
        QTV_Control control;
        control.row = &UI_aControls[i];
        panel->controls.push_back(control);
    }
    for (QTV_Control &control : panel->controls)
        if (!QTV_BindControl(&control, panel->window))
            return false;
    panel->window->setWindowTitle(panel->row->title);
    if (panel->row->panel == UI_nMenuPanel)
        panel->window->setMenuBar(QTV_BuildMenuBar(panel->window));
    QTV_UsePalette(panel); // the layouts know no dark desktop
    QTV_RememberSplitters(panel);
    return true;
}

} // namespace

QTV_Panel *QTV_FindPanel(int panel)
{
    static std::vector<QTV_Panel> records = [] {
        std::vector<QTV_Panel> made(static_cast<size_t>(UI_cnPanels));
        for (size_t i = 0; i < made.size(); i++)
            made[i].row = &UI_aPanels[i];
        return made;
    }();
    for (QTV_Panel &record : records)
        if (record.row->panel == panel)
            return &record;
    return nullptr;
}

QTV_Control *QTV_FindControl(int panel, int control)
{
    QTV_Panel *owner = QTV_FindPanel(panel);
    if (!owner || !owner->window)
        return nullptr;
    for (QTV_Control &record : owner->controls)
        if (record.row->control == control)
            return &record;
    return nullptr;
}

QTV_Control *QTV_ControlOf(QWidget *widget)
{
    PanelWindow *window = PanelWindow::holding(widget);
    if (!window)
        return nullptr;
    // The keyboard may be in a part of it: the field of a number, the viewport of a list.
    for (QWidget *w = widget; w && w != window; w = w->parentWidget())
        for (QTV_Control &record : window->record()->controls)
            if (record.widget == w)
                return &record;
    return nullptr;
}

PanelWindow *QTV_MainWindow()
{
    const QTV_Panel *main = QTV_FindPanel(UI_nMenuPanel);
    return main ? main->window : nullptr;
}

bool QTV_LoadPanel(int panel, int parent)
{
    QTV_Panel *record = QTV_FindPanel(panel);
    if (!record)
        return false;
    if (record->window)
        return true;
    record->parent = parent == 0 ? nullptr : QTV_FindPanel(parent);
    // Inside its parent, or a window of its own that belongs to the main one and goes with it.
    PanelWindow *inside = record->parent ? record->parent->window : nullptr;
    record->window = new PanelWindow(record, inside ? inside : QTV_MainWindow(), inside != nullptr);
    if (Build(record))
        return true;
    delete record->window; // half a window would answer half of the calls
    record->window = nullptr;
    record->controls.clear();
    return false;
}

void QTV_UnloadPanels()
{
    delete QTV_MainWindow(); // with the windows that belong to it
    QTV_ForgetMenus();
    QTV_ForgetLayouts();
    for (int i = 0; i < UI_cnPanels; i++) {
        QTV_Panel *record = QTV_FindPanel(UI_aPanels[i].panel);
        record->window = nullptr;
        record->parent = nullptr;
        record->controls.clear();
    }
}

QWidget *QTV_DialogParent()
{
    QWidget *active = QApplication::activeWindow();
    if (active && active->isVisible())
        return active;
    // Another program is in front: any window that can be seen.
    for (int i = 0; i < UI_cnPanels; i++) {
        QWidget *window = QTV_FindPanel(UI_aPanels[i].panel)->window;
        if (window && window->isWindow() && window->isVisible())
            return window;
    }
    return nullptr;
}

QString QTV_ToQt(const std::string &text)
{
    const QString decoded = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    if (!decoded.contains(QChar::ReplacementCharacter))
        return decoded;
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

QString QTV_AccessText(const std::string &text)
{
    QString shown = QTV_ToQt(text); // behind a tab Qt would look for a shortcut
    shown.replace('&', "&&").replace('\t', ' ');
    const qsizetype mark = shown.indexOf("__");
    if (mark >= 0)
        shown.replace(mark, 2, "&");
    return shown;
}
