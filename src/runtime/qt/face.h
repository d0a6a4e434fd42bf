// What the Qt face keeps: one record a panel and control of the tables in
// ui/ui_table.h, and the one gate through which every callback is called. Shared by
// the files of this folder and by the desktop tests, by nobody else.
#ifndef RUNTIME_QT_FACE_H
#define RUNTIME_QT_FACE_H

#include <QString>
#include <string>
#include <vector>

#include "ui/ui_table.h"

class PanelWindow;
class QAction;
class QLineEdit;
class QMenuBar;
class QTimer;
class QWidget;

constexpr int FACE_MENU_BAR_HEIGHT = 21; // pixels; a child panel at top 21 sits right under it

struct FaceControl {
    const UI_Control *row = nullptr;
    CtrlCallback callback = nullptr; // the row's; tests put their own here
    QWidget *widget = nullptr;       // null for a timer
    QTimer *timer = nullptr;         // null for a widget
    double interval = 0;             // timer; seconds
};

struct FacePanel {
    const UI_Panel *row = nullptr;
    PanelCallback callback = nullptr;  // the row's; tests put their own here
    PanelWindow *window = nullptr;     // null until loaded
    FacePanel *parent = nullptr;       // null for a window of its own
    std::vector<FaceControl> controls; // filled once, at loading: addresses stay valid
};

// --- records ------------------------------------------------------------------------
// 0 and the record, or UIE_NO_PANEL, UIE_NOT_LOADED, UIE_NO_CONTROL.
int FACE_FindPanel(int panel, FacePanel **found);
int FACE_FindControl(int panel, int control, FaceControl **found);
// What `use` answers for the panel or control, or why there is none.
template <class Use> int FACE_OnPanel(int panel, Use use)
{
    FacePanel *found = nullptr;
    const int error = FACE_FindPanel(panel, &found);
    return error < 0 ? error : use(found);
}
template <class Use> int FACE_OnControl(int panel, int control, Use use)
{
    FaceControl *found = nullptr;
    const int error = FACE_FindControl(panel, control, &found);
    return error < 0 ? error : use(found);
}
// The record of a number of the table, loaded or not; null when there is none.
FacePanel *FACE_PanelRecord(int panel);
// The control a widget is, or is part of; null when none.
FaceControl *FACE_ControlOf(QWidget *widget);

// --- callbacks ------------------------------------------------------------------------
// While one of these lives, the program is inside a callback or a pop-up: timers skip
// their ticks, close and resize reports wait.
struct FaceBusy {
    FaceBusy();
    ~FaceBusy();
    FaceBusy(const FaceBusy &) = delete;
    FaceBusy &operator=(const FaceBusy &) = delete;
};
bool FACE_IsBusy();
// The window a pop-up belongs to: the one in use, else any panel that is on the
// screen; null when there is none.
QWidget *FACE_PopupParent();
int FACE_Call(const FaceControl &control, int event,
              int data); // the callback's result, 0 without one
int FACE_Call(const FacePanel &panel, int event, int data);

// --- parts of loading -------------------------------------------------------------------
// Builds the Designer file of a panel into `window`. false when the panel has none.
bool FACE_SetupPanel(int panel, QWidget *window);
// Ties a control's row to its widget or timer and its signals to the callback. false,
// and a message on standard error, when the widget is missing or of the wrong class.
bool FACE_BindControl(FaceControl *control, QWidget *window);
void FACE_StartTimer(FaceControl *timer); // obeys the suspension of timers
QMenuBar *FACE_BuildMenuBar(QWidget *window);
QAction *FACE_MenuAction(int item); // null when there is no such item

// Whether the user is picking one of the completions of a field: Enter then takes it and
// means nothing else.
bool FACE_IsChoosing(const QLineEdit *field);

// --- keys and looks -----------------------------------------------------------------------
void FACE_InstallKeyRouting();
int FACE_KeyCode(int qtKey, Qt::KeyboardModifiers modifiers, const QString &text); // 0 = none
int FACE_QtKey(int code); // Qt's code for a key without its modifiers; 0 = none
void FACE_ApplyLook();

// --- texts --------------------------------------------------------------------------------
// Bytes that are not UTF-8 are taken as Latin-1: nothing is lost to the eye.
QString FACE_ToQt(const std::string &text);
std::string FACE_ToStd(const QString &text);
// "__Yes" to "&Yes"; only the first mark counts, an "&" of the text stays an "&".
QString FACE_AccessText(const std::string &text);

#endif
