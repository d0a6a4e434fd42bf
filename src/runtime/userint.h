// The run-time services the program is written against: numbered panels, numbered
// controls, blocking pop-ups, timers and the event loop. The model (runtime/model) keeps
// all of it as plain state and belongs to the program's thread, on which alone these calls
// are made; a view (runtime/view.h) shows it, and the linker decides which.
//
// A panel handle is the panel's resource number. Every call returns 0 or a positive
// value on success and a negative code for an unknown panel, control, menu item or
// attribute, or for a control that cannot do what is asked: never silence.
#ifndef RUNTIME_USERINT_H
#define RUNTIME_USERINT_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

enum UI_Error {
    UIE_NO_PANEL = -4,
    UIE_NO_CONTROL = -13,
    UIE_NO_ITEM = -23,
    UIE_BAD_ATTRIBUTE = -41,
    UIE_BAD_TYPE = -42, // the control's kind does not know this call or value
    UIE_BAD_INDEX = -47,
    UIE_NOT_LOADED = -56, // the panel exists but LoadPanel was not called
};

enum UI_Event {
    EVENT_COMMIT = 1,      // button pressed, switch toggled, Enter in a field, ring chosen
    EVENT_VAL_CHANGED = 2, // value or selection changed by the user
    EVENT_LEFT_DOUBLE_CLICK = 3,
    EVENT_RIGHT_CLICK = 4,
    EVENT_KEYPRESS = 5,     // data = key code below, of those in the panel's key table
    EVENT_CLOSE = 6,        // panel: the user asks the window to close
    EVENT_PANEL_SIZE = 7,   // panel: the user has resized the window
    EVENT_DROPPED = 8,      // list: a line was dragged; data = source * 65536 + target
    EVENT_ACTIVATED = 9,    // panel: the user has turned to its window
    EVENT_CELL_EDITED = 10, // list: see GetEditedCell; data = column
    EVENT_TIMER_TICK = 15,
};

// Key codes: a printable ASCII character, or one of these; modifiers are ORed in.
enum UI_Key {
    KEY_ENTER = 0x100,
    KEY_ESC,
    KEY_TAB,
    KEY_UP,
    KEY_DOWN,
    KEY_LEFT,
    KEY_RIGHT,
    KEY_PAGE_UP,
    KEY_PAGE_DOWN,
    KEY_HOME,
    KEY_END,
    KEY_INSERT,
    KEY_DELETE,
    KEY_BACKSPACE,
    KEY_F1 = 0x120, // KEY_F1 + n - 1 for Fn
    KEY_SHIFT = 0x1000,
    KEY_CTRL = 0x2000,
    KEY_ALT = 0x4000,
};

enum UI_Attribute {
    ATTR_DIMMED = 1,             // control, menu or menu item
    ATTR_VISIBLE = 2,            // control or panel
    ATTR_CHECKED = 3,            // menu item
    ATTR_TEXT_COLOR = 4,         // control; 0xRRGGBB
    ATTR_INTERVAL = 5,           // timer; seconds (double)
    ATTR_FIRST_VISIBLE_LINE = 6, // list, text box
    ATTR_LEFT = 7,               // this and the next three: panel, control; pixels
    ATTR_TOP = 8,
    ATTR_WIDTH = 9,
    ATTR_HEIGHT = 10,
    ATTR_SIZABLE = 11,       // panel
    ATTR_TITLE = 12,         // panel; text
    ATTR_LABEL_TEXT = 13,    // control; text of its label or button
    ATTR_CTRL_MODE = 14,     // text or number field; 1 the user may type, 0 shows only
    ATTR_TOOLTIP_TEXT = 15,  // control; text
    ATTR_IS_PLACED = 16,     // panel, reading only; 1 once its place and size are the user's
    ATTR_LINES_IN_VIEW = 17, // list, text box, reading only; 0 while the view has not said
};

typedef int (*PanelCallback)(int panel, int event, int data);
typedef int (*CtrlCallback)(int panel, int control, int event, int data);
typedef void (*MenuCallback)(int menuBar, int item);
// Whole texts that may stand in the field in place of what has been typed so far, which
// each of them contains.
typedef std::vector<std::string> (*CompletionCallback)(int panel, int control,
                                                       const std::string &typed);

// --- start and event loop ---------------------------------------------------------
int InitCVIRTE(int *argc, char **argv); // the view has taken its options out by now. 0
int RunUserInterface();                 // the code given to QuitUserInterface
int QuitUserInterface(int code); // the loop ends after the running callback; may be called twice
int ProcessSystemEvents();       // shows what has changed; user input is held back
int SuspendTimerCallbacks();     // the program starts with timers suspended
int ResumeTimerCallbacks();
// What the program is waiting for, for whoever watches: "waiting for station 9". "" ends
// it, and so does the end of the callback.
int SetBusyText(const std::string &text);
// Whether the user wants what is running to end: a cancelled progress box, communication
// off, exit, an interrupt. Cheap; to be polled wherever the program waits, and shows on the
// way what has changed. True until the wish itself is handled or the callback ends.
bool IsBreakWished();
// Who is called, between callbacks and with no question to be asked any more, when the
// system wants the program to end (a signal, the end of the session). It saves what must be
// saved and calls QuitUserInterface. Without one the loop just ends.
int SetEndCallback(void (*callback)());
// Has the program's thread call `callback` between two other callbacks, with timers suspended
// as well. The one call of this file that any thread may make.
int PostDeferredCall(void (*callback)());

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

// --- lists as tables ----------------------------------------------------------------
// A list with columns is drawn as a table; its labels stay what they are underneath. The
// cells of a line are the columns of its label until SetListCells gives others, and again
// after the line's label has been replaced. Several lines can be selected; the one with the
// keyboard is GetCtrlIndex's.
enum UI_Align { UIA_LEFT, UIA_RIGHT, UIA_POINT /* decimal points in one line */ };
struct UI_Column {
    std::string title;
    int width = 0; // pixels; 0 = as wide as its texts
    UI_Align align = UIA_LEFT;
    bool isEditable = false; // Enter, F2 or a double click edits a cell: EVENT_CELL_EDITED
    bool isSpare = false;    // shown only where the window is wide enough
};
// What a cell's text means; the view has the colour for it. Flags.
enum UI_CellStyle : unsigned {
    UIS_NORMAL = 0,
    UIS_DIM = 1,     // old or of no use
    UIS_WARNING = 2, // red
    UIS_GOOD = 4,    // green
    UIS_STRUCK = 8,  // struck through: no longer true
    UIS_BOLD = 16,
    UIS_CHANGED = 32, // marked for a moment
};
struct UI_Cell {
    std::string text;
    unsigned style = UIS_NORMAL;
    std::string tip;
};
int SetListColumns(int panel, int control, const std::vector<UI_Column> &columns);
// As they are now: with the widths the user has given them.
int GetListColumns(int panel, int control, std::vector<UI_Column> *columns);
int SetListCells(int panel, int control, int index, const std::vector<UI_Cell> &cells);
int GetListCells(int panel, int control, int index, std::vector<UI_Cell> *cells);
int SetListSelection(int panel, int control, const std::vector<int> &indices);
int GetListSelection(int panel, int control, std::vector<int> *indices); // by rising index
// During EVENT_CELL_EDITED: what the user typed and where. The cell itself is unchanged.
int GetEditedCell(int panel, int control, int *index, int *column, std::string *text);

// --- bars ---------------------------------------------------------------------------
// A stretch drawn as a bar, and what lies where in it. Later segments lie over earlier ones.
constexpr size_t UI_SEGMENTS_MAX = 4000;
struct UI_Segment {
    double first = 0, last = 0;  // shares of the bar, 0 to 1, first <= last
    unsigned style = UIS_NORMAL; // UIS_DIM, UIS_GOOD or UIS_WARNING; the view has the colour
    std::string tip;
};
int SetBarSegments(int panel, int control, const std::vector<UI_Segment> &segments);
int GetBarSegments(int panel, int control, std::vector<UI_Segment> *segments);

// --- graphs ---------------------------------------------------------------------------
// A graph holds curves (plots), two cursors and two marks. The numbers of a plot are handed
// over once and shared, never copied: nobody may change them afterwards. x rises; a NaN in y
// is a gap. Plots of one pane share a vertical axis; how the panes lie is the user's choice.
// What the user does to the graph comes as EVENT_VAL_CHANGED.
typedef std::shared_ptr<const std::vector<double>> UI_Samples;
struct UI_Plot {
    int handle = 0;  // PlotXY's
    UI_Samples x, y; // of one length
    std::string name, unit;
    int color = -1;           // 0xRRGGBB as on a light ground; -1 = by its place
    bool isDashed = false;    // a curve to compare with
    bool isVisible = true;    // the user may hide and show it in the legend
    int pane = 0;             // from 0 to GRAPH_PANES_MAX - 1
    double low = 0, high = 0; // of y, found when it is handed over; low > high: gaps alone
};
enum { GRAPH_CURSORS = 2, GRAPH_PLOTS_MAX = 64, GRAPH_PANES_MAX = 32 };
enum UI_GraphLayout {
    GRAPH_TOGETHER, // one vertical axis for all: pane 0
    GRAPH_OVERLAID, // the panes over each other, each with its own axis
    GRAPH_STACKED,  // the panes one under the other
};
struct UI_Limits {
    double min = 0, max = 1;
};
struct UI_Cursor {
    bool isShown = false;
    int plot = 0;   // handle of the plot it stands on
    int index = -1; // of the sample
    double x = 0, y = 0;
};
// A line the user may drag: a level lies across, a position stands upright.
struct UI_Mark {
    bool isShown = false;
    double value = 0;
    int pane = 0; // of a level
};
// A line with a text where something happened.
struct UI_Note {
    double x = 0;
    std::string text;
};
struct UI_GraphView {
    // Fitted limits show everything there is and follow the plots.
    bool isXFitted = true, isYFitted = true;
    bool isFollowing = false; // x.max is the newest sample's; the width stays
    UI_Limits x, y[GRAPH_PANES_MAX];
    UI_GraphLayout layout = GRAPH_TOGETHER;
    UI_Cursor cursors[GRAPH_CURSORS];
    UI_Mark level, position;
    std::vector<int> hidden; // handles
};
struct UI_GraphAxes {
    std::string xLabel, yLabel;
    bool isTime = false; // x in seconds, shown as hours, minutes and seconds
    bool isLive = false; // curves grow: the user may follow the newest sample
    std::vector<UI_Note> notes = {};
};
// The new plot's handle, from 1. UIE_BAD_INDEX: x and y differ in length, or too many plots.
int PlotXY(int panel, int control, const UI_Plot &plot);
// Leaves the view to the user: only fitted and following limits move.
int ReplacePlot(int panel, int control, int handle, const UI_Plot &plot);
int DeleteGraphPlot(int panel, int control, int handle); // 0 = all
int GetGraphPlots(int panel, int control, std::vector<UI_Plot> *plots);
int SetGraphAxes(int panel, int control, const UI_GraphAxes &axes);
// Limits that are not rising or not finite are refused (UIE_BAD_INDEX). A fitted view's
// limits are those of the visible plots. Cursors go to the nearest sample of their plot.
int SetGraphView(int panel, int control, const UI_GraphView &view);
int GetGraphView(int panel, int control, UI_GraphView *view);

// --- text boxes -------------------------------------------------------------------
// A box keeps at most this many lines; what goes beyond leaves it at the top.
constexpr int UI_BOX_LINES_MAX = 20000;
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
enum { CON_NO_FILE_SELECTED = 0, CON_EXISTING_FILE_SELECTED = 1, CON_NEW_FILE_SELECTED = 2 };
enum { FILE_LOAD = 0, FILE_SAVE = 1 };

int MessagePopup(const std::string &title, const std::string &message);
// What Enter means in a question whose wrong answer destroys something: no.
enum UI_Default { UI_DEFAULT_YES, UI_DEFAULT_NO };
int ConfirmPopup(const std::string &title, const std::string &message,
                 UI_Default enter = UI_DEFAULT_YES); // 1 yes, 0 no
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
int FileSelectPopup(const std::string &directory, const std::string &spec, const std::string &types,
                    const std::string &title, int mode, std::string *path);

// A progress box with a Cancel button. The handle, then 1 once the user has cancelled.
int CreateProgressDialog(const std::string &title, const std::string &text);
int UpdateProgressDialog(int dialog, int percent, const std::string &text);
int DiscardProgressDialog(int dialog);

// --- the desktop --------------------------------------------------------------------
// What a view remembers of its windows beside the place and size of panels: splitters, a
// window that fills the screen, windows of its own. Names and numbers are the view's affair;
// the program keeps them from one run to the next.
struct UI_Layout {
    std::string name; // at most UI_LAYOUT_NAME_MAX visible characters, no blank
    std::vector<int> numbers;
};
constexpr size_t UI_LAYOUT_NAME_MAX = 40, UI_LAYOUT_NUMBERS_MAX = 16, UI_LAYOUTS_MAX = 100;
int SetViewLayout(const UI_Layout &layout); // in place of the one of that name
int GetViewLayouts(std::vector<UI_Layout> *layouts);
// Shows a Markdown file in the help window, which has contents and a search of its own; a
// terminal is told where it is.
int ShowHelpText(const std::string &path);
int ClipboardPutText(const std::string &text);
int ClipboardGetText(std::string *text); // the view is asked for it; 0, or -1: there is none
int Beep();                              // the desktop's sound, or the terminal's bell

#endif
