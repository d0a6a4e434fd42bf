// The view that draws the model with widgets: one record a panel and control of the tables
// in ui/ui_table.h. Everything here runs on the window's thread, which never calls the
// program and waits for nothing: changes come by QTV_Draw, what the user does goes out by
// QTV_Post. Shared by the files of this folder and the desktop tests, by nobody else.
#ifndef RUNTIME_QT_QT_VIEW_H
#define RUNTIME_QT_QT_VIEW_H

#include <QString>
#include <string>
#include <vector>

#include "runtime/view.h"
#include "ui/ui_table.h"

class LineList;
class PanelWindow;
class QAction;
class QLineEdit;
class QMenu;
class QMenuBar;
class QWidget;

struct QTV_Control {
    const UI_Control *row = nullptr;
    QWidget *widget = nullptr; // null for a timer
    int color = -1;            // as the program gave it; -1 = the desktop's
};

struct QTV_Panel {
    const UI_Panel *row = nullptr;
    PanelWindow *window = nullptr;     // null until loaded
    QTV_Panel *parent = nullptr;       // null for a window of its own
    std::vector<QTV_Control> controls; // filled once, at loading: addresses stay valid
};

// --- records ------------------------------------------------------------------------
QTV_Panel *QTV_FindPanel(int panel);                  // null when there is no such number
QTV_Control *QTV_FindControl(int panel, int control); // null when none, or not loaded
QTV_Control *QTV_ControlOf(QWidget *widget);          // which it is, or is part of
PanelWindow *QTV_MainWindow();                        // null until loaded
bool QTV_LoadPanel(int panel, int parent);            // false: its layout and its table differ
void QTV_UnloadPanels();                              // all of them; for tests

// --- the program's thread ---------------------------------------------------------------
// The application object, with the command line's options for it; negative: no screen.
int QTV_StartApplication(int *argc, char **argv);
// Fetches and draws what has changed; true when there was something.
bool QTV_DrawChanges();
void QTV_Draw(const VIEW_Batch &batch);
bool QTV_IsDrawing(); // what widgets report now is the program's doing, not the user's
void QTV_ShowBusy();  // looks what the program is at; called by a timer

// --- parts of drawing ---------------------------------------------------------------------
void QTV_DrawControl(const VIEW_Control &change);
void QTV_DrawList(const VIEW_List &change);
void QTV_DrawMenuItem(const VIEW_MenuItem &change);
void QTV_DrawCompletion(const VIEW_Completion &change);
void QTV_DrawProgress(const VIEW_Progress &change);
void QTV_OpenQuestion(const VIEW_Question &question);
void QTV_CloseQuestion(int id);
void QTV_OpenPopupMenu(int menu);
void QTV_ShowHelp(const std::string &path);
void QTV_UseLayout(const UI_Layout &layout); // of the last run
void QTV_UsePalette(QTV_Panel *panel);       // colours the program gave, on the ground there is now

// --- what the user does -------------------------------------------------------------------
// Hands an event in. `postTo` is the door; tests put their own here.
extern bool (*QTV_postTo)(const VIEW_Event &event);
bool QTV_Post(const VIEW_Event &event); // false: refused, and nothing will come of it
void QTV_PostPanel(int panel, int event, int value = 0);
// `event` of a control together with what stands in it now.
bool QTV_PostControl(const QTV_Control &control, int event, int value = 0);
void QTV_FillList(const LineList &list, VIEW_Event *event); // current and selected lines
bool QTV_BindControl(QTV_Control *control, QWidget *window);
QMenuBar *QTV_BuildMenuBar(QWidget *window);
void QTV_ForgetMenus();            // the window is gone, and they with it
QAction *QTV_MenuAction(int item); // null when there is no such item
void QTV_SetCompletion(const QTV_Control &control, bool isOn);
// Whether the user is picking one of the completions of a field: Enter then takes it and
// means nothing else.
bool QTV_IsChoosing(const QLineEdit *field);
void QTV_InstallKeyRouting();
int QTV_KeyCode(int qtKey, Qt::KeyboardModifiers modifiers, const QString &text); // 0 = none
int QTV_QtKey(int code); // Qt's code for a key without its modifiers; 0 = none

// What windows remember beside their place: kept here while the program runs, and by the
// program from one run to the next.
std::vector<int> QTV_FindLayout(const std::string &name); // empty when there is none
void QTV_KeepLayout(const std::string &name, const std::vector<int> &numbers);
void QTV_ForgetLayouts(); // for tests
// The splitters in a panel take the sizes of the last run and keep what the user drags.
void QTV_RememberSplitters(QTV_Panel *panel);

// Builds the Designer file of a panel into `window`. false when the panel has none.
bool QTV_SetupPanel(int panel, QWidget *window);
// The window a dialog belongs to: the one in use, else the main one.
QWidget *QTV_DialogParent();

// --- texts --------------------------------------------------------------------------------
// Bytes that are not UTF-8 are taken as Latin-1: nothing is lost to the eye.
QString QTV_ToQt(const std::string &text);
// "__Yes" to "&Yes"; only the first mark counts, an "&" of the text stays an "&".
QString QTV_AccessText(const std::string &text);

#endif
