// The run-time services the program is written against: numbered panels, numbered
// controls, blocking pop-ups, timers and the event loop. Two faces implement this
// header (headless and Qt); the linker decides which one a program gets.
//
// A panel handle is the panel's resource number. Every call returns 0 or a positive
// value on success and a negative code for an unknown panel, control, menu item or
// attribute, or for a control that cannot do what is asked: never silence.
#ifndef RUNTIME_USERINT_H
#define RUNTIME_USERINT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

enum UI_Error {
    UIE_NO_PANEL = -4,
    UIE_NO_CONTROL = -13,
    UIE_NO_ITEM = -23,
    UIE_BAD_ATTRIBUTE = -41,
    UIE_BAD_TYPE = -42,   // the control's kind does not know this call or value
    UIE_BAD_INDEX = -47,
    UIE_NOT_LOADED = -56, // the panel exists but LoadPanel was not called
};

enum UI_Event {
    EVENT_COMMIT = 1,             // button pressed, switch toggled, Enter in a field, ring chosen
    EVENT_VAL_CHANGED = 2,        // value or selection changed by the user
    EVENT_LEFT_DOUBLE_CLICK = 3,
    EVENT_RIGHT_CLICK = 4,
    EVENT_KEYPRESS = 5,           // data = key code below; result 1 swallows the key
    EVENT_CLOSE = 6,              // panel: the user asks the window to close
    EVENT_PANEL_SIZE = 7,         // panel: the user has resized the window
    EVENT_DROPPED = 8,            // list: a line was dragged; data = source * 65536 + target
    EVENT_ACTIVATED = 9,          // panel: the user has turned to its window
    EVENT_TIMER_TICK = 15,
};

// Key codes: a printable ASCII character, or one of these; modifiers are ORed in.
enum UI_Key {
    KEY_ENTER = 0x100, KEY_ESC, KEY_TAB, KEY_UP, KEY_DOWN, KEY_LEFT, KEY_RIGHT, KEY_PAGE_UP,
    KEY_PAGE_DOWN, KEY_HOME, KEY_END, KEY_INSERT, KEY_DELETE, KEY_BACKSPACE,
    KEY_F1 = 0x120, // KEY_F1 + n - 1 for Fn
    KEY_SHIFT = 0x1000, KEY_CTRL = 0x2000, KEY_ALT = 0x4000,
};

enum UI_Attribute {
    ATTR_DIMMED = 1,          // control, menu or menu item
    ATTR_VISIBLE = 2,         // control or panel
    ATTR_CHECKED = 3,         // menu item
    ATTR_TEXT_COLOR = 4,      // control; 0xRRGGBB
    ATTR_INTERVAL = 5,        // timer; seconds (double)
    ATTR_FIRST_VISIBLE_LINE = 6, // list, text box
    ATTR_LEFT = 7, ATTR_TOP = 8, ATTR_WIDTH = 9, ATTR_HEIGHT = 10, // panel, control; pixels
    ATTR_SIZABLE = 11,        // panel
    ATTR_TITLE = 12,          // panel; text
    ATTR_LABEL_TEXT = 13,     // control; text of its label or button
    ATTR_CTRL_MODE = 14,      // text or number field; 1 the user may type, 0 shows only
    ATTR_TOOLTIP_TEXT = 15,   // control; text
};

typedef int (*PanelCallback)(int panel, int event, int data);
typedef int (*CtrlCallback)(int panel, int control, int event, int data);
typedef void (*MenuCallback)(int menuBar, int item);
// Whole texts that may stand in the field in place of what has been typed so far, which
// each of them contains.
typedef std::vector<std::string> (*CompletionCallback)(int panel, int control,
                                                       const std::string &typed);

// --- start and event loop ---------------------------------------------------------
// Takes the options the face knows out of argc/argv. 0, or negative when there is no screen.
int InitCVIRTE(int *argc, char **argv);
int RunUserInterface();          // the code given to QuitUserInterface
int QuitUserInterface(int code); // the loop ends after the running callback; may be called twice
int ProcessSystemEvents();       // repaints; user input is held back
int SuspendTimerCallbacks();     // the program starts with timers suspended
int ResumeTimerCallbacks();

// --- panels -----------------------------------------------------------------------
int LoadPanel(int parentPanel, int resource); // handle > 0; parent 0 = a window of its own
int DisplayPanel(int panel);
int HidePanel(int panel);
int SetActivePanel(int panel);
int SetPanelPos(int panel, int top, int left);
int SetPanelAttribute(int panel, int attribute, int value);
int SetPanelAttribute(int panel, int attribute, const std::string &text);
int GetPanelAttribute(int panel, int attribute, int *value);
int GetPanelAttribute(int panel, int attribute, std::string *text);

// --- controls ---------------------------------------------------------------------
// Switches, indicators, rings and numbers take int; numbers also double; text
// controls take text (a text box appends it). A list takes and gives its selected line.
int SetCtrlVal(int panel, int control, int value);
int SetCtrlVal(int panel, int control, double value);
int SetCtrlVal(int panel, int control, const std::string &text);
inline int SetCtrlVal(int panel, int control, const char *text)
{
    return SetCtrlVal(panel, control, std::string(text));
}
int GetCtrlVal(int panel, int control, int *value);
int GetCtrlVal(int panel, int control, double *value);
int GetCtrlVal(int panel, int control, std::string *text);
int SetCtrlAttribute(int panel, int control, int attribute, int value);
int SetCtrlAttribute(int panel, int control, int attribute, double value);
int SetCtrlAttribute(int panel, int control, int attribute, const std::string &text);
int GetCtrlAttribute(int panel, int control, int attribute, int *value);
int GetCtrlAttribute(int panel, int control, int attribute, double *value);
int GetCtrlAttribute(int panel, int control, int attribute, std::string *text);
int SetActiveCtrl(int panel, int control);
int GetActiveCtrl(int panel); // the control with the keyboard focus, 0 when none
// Offers completions while the user types into a one-line field; null ends it. A chosen
// one is reported as EVENT_VAL_CHANGED, as if it had been typed.
int SetCtrlCompletion(int panel, int control, CompletionCallback callback);

// --- lists (also rings) -----------------------------------------------------------
// A label may hold column escapes: ESC "p<pixels>l" starts a column at that pixel,
// left-aligned. Clearing and refilling a list repaints only lines that differ and
// keeps the scroll position. Index -1 inserts at the end.
int ClearListCtrl(int panel, int control);
int InsertListItem(int panel, int control, int index, const std::string &label, int value);
int ReplaceListItem(int panel, int control, int index, const std::string &label, int value);
int DeleteListItem(int panel, int control, int index, int count);
int GetNumListItems(int panel, int control, int *count);
int GetCtrlIndex(int panel, int control, int *index); // -1 when nothing is selected
int SetCtrlIndex(int panel, int control, int index);
int GetLabelFromIndex(int panel, int control, int index, std::string *label);
int GetValueFromIndex(int panel, int control, int index, int *value);
int SetListItemTip(int panel, int control, int index, const std::string &tip);

// --- text boxes -------------------------------------------------------------------
int ResetTextBox(int panel, int control, const std::string &text);
int InsertTextBoxLine(int panel, int control, int line, const std::string &text); // -1 = end
int DeleteTextBoxLines(int panel, int control, int line, int count);
int GetNumTextBoxLines(int panel, int control, int *count);
int GetTextBoxLine(int panel, int control, int line, std::string *text);

// --- menus ------------------------------------------------------------------------
int GetPanelMenuBar(int panel);
int SetMenuBarAttribute(int menuBar, int item, int attribute, int value);
int GetMenuBarAttribute(int menuBar, int item, int attribute, int *value);
// Inserts before `beforeItem`; `text` marks its access key with a double underscore;
// `shortcut` is a key code or 0. The new item's identifier (>= 1000).
int NewMenuItem(int menuBar, int menu, const std::string &text, int beforeItem, int shortcut,
                MenuCallback callback);
int DiscardMenuItem(int menuBar, int item);
// Shows a menu of the bar at the mouse (or at the control with the focus when the mouse
// is elsewhere) and returns; what the user then chooses calls the item's callback.
int RunPopupMenu(int menuBar, int menu);

// --- pop-ups: each blocks until it is answered -------------------------------------
enum { VAL_NO_FILE_SELECTED = 0, VAL_EXISTING_FILE_SELECTED = 1, VAL_NEW_FILE_SELECTED = 2 };
enum { FILE_LOAD = 0, FILE_SAVE = 1 };

int MessagePopup(const std::string &title, const std::string &message);
int ConfirmPopup(const std::string &title, const std::string &message); // 1 yes, 0 no
// 0 and the text, or negative when cancelled. `text` carries the proposal in.
int PromptPopup(const std::string &title, const std::string &message, std::string *text,
                size_t maxLength);
// One to three buttons (access keys marked with "__") and, when `text` is given, an
// entry field. Number of the button from 1; 0 when the box was closed.
int GenericMessagePopup(const std::string &title, const std::string &message,
                        const std::vector<std::string> &buttons, std::string *text,
                        size_t maxLength);
// `spec` is a file name or a pattern such as "*.d*"; `types` a list "*.dbg;*.dat".
// A new file chosen in FILE_SAVE mode that exists has been confirmed by the user.
int FileSelectPopup(const std::string &directory, const std::string &spec,
                    const std::string &types, const std::string &title, int mode,
                    std::string *path);

// A progress box with a Cancel button. The handle, then 1 once the user has cancelled.
int CreateProgressDialog(const std::string &title, const std::string &text);
int UpdateProgressDialog(int dialog, int percent, const std::string &text);
int DiscardProgressDialog(int dialog);

// --- the desktop --------------------------------------------------------------------
int LaunchExecutable(const std::string &commandLine);
int ClipboardPutText(const std::string &text);

#endif
