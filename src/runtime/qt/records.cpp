// The records of panels and controls, and the loading of a panel's layout.
#include "runtime/qt/qt_view.h"

#include <QApplication>
#include <QFontDatabase>
#include <QLabel>
#include <cstdio>

#include "runtime/qt/panel_window.h"

namespace {

std::vector<QTV_Panel> MakeRecords()
{
    std::vector<QTV_Panel> records(static_cast<size_t>(UI_cnPanels));
    for (size_t i = 0; i < records.size(); i++)
        records[i].row = &UI_aPanels[i];
    return records;
}

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

bool Build(QTV_Panel *panel)
{
    if (!QTV_SetupPanel(panel->row->panel, panel->window)) {
        std::fprintf(stderr, "panel '%s': no layout\n", panel->row->name);
        return false;
    }
    UseFixedFont(panel->window);
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
    QTV_UsePalette(panel);
    QTV_RememberSplitters(panel);
    return true;
}

} // namespace

QTV_Panel *QTV_FindPanel(int panel)
{
    static std::vector<QTV_Panel> records = MakeRecords();
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
    PanelWindow *inside = record->parent ? record->parent->window : nullptr;
    record->window = new PanelWindow(record, inside ? inside : QTV_MainWindow(), inside != nullptr);
    if (Build(record))
        return true;
    delete record->window;
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
    QString shown = QTV_ToQt(text);
    shown.replace('&', "&&").replace('\t', ' ');
    const qsizetype mark = shown.indexOf("__");
    if (mark >= 0)
        shown.replace(mark, 2, "&");
    return shown;
}
