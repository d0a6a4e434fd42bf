#include "runtime/qt/face.h"

#include <QApplication>
#include <QWidget>

#include "runtime/qt/panel_window.h"

namespace {

int busyCount = 0;

std::vector<FacePanel> MakeRecords()
{
    std::vector<FacePanel> records(static_cast<size_t>(UI_cnPanels));
    for (size_t i = 0; i < records.size(); i++) {
        records[i].row = &UI_aPanels[i];
        records[i].callback = UI_aPanels[i].callback;
    }
    return records;
}

} // namespace

FacePanel *FACE_PanelRecord(int panel)
{
    static std::vector<FacePanel> records = MakeRecords();
    for (FacePanel &record : records)
        if (record.row->panel == panel)
            return &record;
    return nullptr;
}

int FACE_FindPanel(int panel, FacePanel **found)
{
    *found = FACE_PanelRecord(panel);
    if (!*found)
        return UIE_NO_PANEL;
    return (*found)->window ? 0 : UIE_NOT_LOADED;
}

int FACE_FindControl(int panel, int control, FaceControl **found)
{
    FacePanel *owner = nullptr;
    const int error = FACE_FindPanel(panel, &owner);
    if (error < 0)
        return error;
    for (FaceControl &record : owner->controls) {
        if (record.row->control == control) {
            *found = &record;
            return 0;
        }
    }
    return UIE_NO_CONTROL;
}

FaceControl *FACE_ControlOf(QWidget *widget)
{
    PanelWindow *window = PanelWindow::holding(widget);
    if (!window)
        return nullptr;
    for (QWidget *w = widget; w && w != window; w = w->parentWidget())
        for (FaceControl &record : window->record()->controls)
            if (record.widget == w)
                return &record;
    return nullptr;
}

FaceBusy::FaceBusy()
{
    busyCount++;
}

FaceBusy::~FaceBusy()
{
    busyCount--;
}

bool FACE_IsBusy()
{
    return busyCount > 0;
}

QWidget *FACE_PopupParent()
{
    if (QWidget *active = QApplication::activeWindow())
        return active;
    for (int i = 0; i < UI_cnPanels; i++) {
        QWidget *window = FACE_PanelRecord(UI_aPanels[i].panel)->window;
        if (window && window->isWindow() && window->isVisible())
            return window;
    }
    return nullptr;
}

int FACE_Call(const FaceControl &control, int event, int data)
{
    if (!control.callback)
        return 0;
    const FaceBusy busy;
    return control.callback(control.row->panel, control.row->control, event, data);
}

int FACE_Call(const FacePanel &panel, int event, int data)
{
    if (!panel.callback)
        return 0;
    const FaceBusy busy;
    return panel.callback(panel.row->panel, event, data);
}

QString FACE_ToQt(const std::string &text)
{
    const QString decoded = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    if (!decoded.contains(QChar::ReplacementCharacter))
        return decoded;
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

std::string FACE_ToStd(const QString &text)
{
    return text.toStdString();
}

QString FACE_AccessText(const std::string &text)
{
    QString shown = FACE_ToQt(text);
    shown.replace('&', "&&").replace('\t', ' ');
    const qsizetype mark = shown.indexOf("__");
    if (mark >= 0)
        shown.replace(mark, 2, "&");
    return shown;
}
