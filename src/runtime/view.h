// The only door between the program and what a user sees. On one side stands the model
// (runtime/model), owned by the program's thread; on the other a view: widgets on the
// window's thread (runtime/qt), or a terminal and the tests (runtime/headless). Changes go
// to the view, events go to the program, each through one queue; nothing else is shared,
// and nothing else is locked.
//
// What a writer of a view must know:
// - A view provides VIEW_Main and VIEW_Wake at the end of this file and calls the rest. It
//   calls nothing of userint.h and nothing of the program. No call here waits for the
//   program, however long that is busy: each takes the queue's mutex for a moment.
// - VIEW_Fetch hands over everything that has changed since the last time as copies of
//   values. Many changes of one thing are one change; what the program did not touch is
//   not mentioned, so texts, bounds and looks that stand in a layout stay as they are.
//   Fetch and draw in one go, on one thread, and at the rate the eye needs (60 a second).
// - Draw the parts of a batch in this order: panels, menu items, lists, controls (a ring's value
//   after its entries), text boxes, graphs, then focus, questions and the rest.
// - A widget does at once what the user does to it and posts what became of it. An event
//   carries the value of the control as the user left it. The door stamps it with the last
//   batch that was fetched. When the program has set the control meanwhile, the program's
//   value wins: the event is dropped and the value comes again in a batch, to be drawn over
//   what the user did. (Setting a value that is already there does not count.)
// - A line of a list is named by its place and by the number it came with (VIEW_LineRef).
//   A line that has moved is found by its number; one that is gone takes its event with it,
//   so that a click never acts on another line.
// - Keys: UI_FindKey (ui/ui_table.h) says which keys a panel or control wants. Only those
//   are posted (EVENT_KEYPRESS), and those marked as swallowed are not acted on by the
//   widget. Nobody is asked at run time.
// - A control or menu item is dimmed by the program; an event that crosses this is dropped.
// - One question is open at a time. While it is, and while a callback runs, the events that
//   come are kept and handled afterwards, in order. Urgent ones (UI_aUrgent: communication
//   off, exit; a cancelled progress box) are also seen at once by IsBreakWished.
#ifndef RUNTIME_VIEW_H
#define RUNTIME_VIEW_H

#include <cstdint>
#include <string>
#include <vector>

#include "runtime/userint.h"

struct VIEW_Rect {
    int left = 0, top = 0, width = 0, height = 0; // pixels, device independent
};

// --- changes: to the view ---------------------------------------------------------------
// `mask` says which members have changed; the others hold what they held before.

enum VIEW_PanelMask : unsigned {
    VIEW_PANEL_LOADED = 1,  // parent
    VIEW_PANEL_VISIBLE = 2, // isVisible
    VIEW_PANEL_TITLE = 4,
    VIEW_PANEL_PLACE = 8, // rect.left, rect.top: set by the program, not by the user
    VIEW_PANEL_SIZE = 16, // rect.width, rect.height: likewise
    VIEW_PANEL_SIZABLE = 32,
    VIEW_PANEL_RAISED = 64, // to the front, with the keyboard
    VIEW_PANEL_FOCUS = 128, // focus
};
struct VIEW_Panel {
    int panel = 0;
    unsigned mask = 0;
    int parent = 0; // 0 = a window of its own
    bool isVisible = false;
    bool isSizable = false;
    VIEW_Rect rect;
    std::string title;
    int focus = 0; // control that gets the keyboard; to be given after the panel is shown
};

enum VIEW_ControlMask : unsigned {
    VIEW_CTRL_VALUE = 1, // value (switch, indicator), number (number), text (text, field); the
                         // choice of a ring comes as the selection of its VIEW_List
    VIEW_CTRL_DIMMED = 2,
    VIEW_CTRL_VISIBLE = 4,
    VIEW_CTRL_COLOR = 8,
    VIEW_CTRL_LABEL = 16,
    VIEW_CTRL_TOOLTIP = 32,
    VIEW_CTRL_MODE = 64,        // the user may type
    VIEW_CTRL_COMPLETION = 128, // hasCompletion: offer what VIEW_Completion brings
    VIEW_CTRL_RECT = 256,       // for views that place controls by number
    VIEW_CTRL_SEGMENTS = 512,   // segments of a bar, all of them
};
struct VIEW_Control {
    int panel = 0, control = 0;
    unsigned mask = 0;
    int value = 0;
    double number = 0;
    std::string text;
    bool isDimmed = false;
    bool isVisible = true;
    bool canType = true;
    bool hasCompletion = false;
    int color = 0; // 0xRRGGBB as the program means it on a light ground
    std::string label;
    std::string tooltip;
    VIEW_Rect rect;
    std::vector<UI_Segment> segments;
};

// A line of a list or ring. `cells` is empty when the program gave only the label: then its
// columns are the cells (runtime/list_columns.h).
struct VIEW_Line {
    uint32_t id = 0; // its number: the same as long as it is the same line
    std::string label;
    int value = 0;
    std::string tip; // of the whole line
    std::vector<UI_Cell> cells;
};
struct VIEW_LineRef {
    int index = -1; // -1 = no line
    uint32_t id = 0;
};

enum VIEW_ListMask : unsigned {
    VIEW_LIST_LINES = 1,     // count, changed
    VIEW_LIST_COLUMNS = 2,   // columns; none = as the labels say
    VIEW_LIST_SELECTION = 4, // current, selected: set by the program, not by the user
    VIEW_LIST_FIRST = 8,     // firstVisible: scroll there
};
struct VIEW_List {
    int panel = 0, control = 0;
    unsigned mask = 0;
    int count = 0;                                  // of lines; those behind are gone
    std::vector<std::pair<int, VIEW_Line>> changed; // by rising place; new and different lines
    std::vector<UI_Column> columns;
    int current = -1; // -1 = none
    std::vector<int> selected;
    int firstVisible = 0;
};

// A text box keeps at most UI_BOX_LINES_MAX lines: what goes beyond leaves it at the top.
struct VIEW_TextBox {
    int panel = 0, control = 0;
    bool isReset = false;  // the text stands alone, else behind what is there
    std::string text;      // a line feed ends a line; without one more may follow it
    int dropped = 0;       // then so many lines leave the box at the top
    int firstVisible = -1; // line to scroll to; -1 = as it is. At or behind the last: the end
};

// A menu item that is new, gone, or looks different: always the whole of it.
struct VIEW_MenuItem {
    int item = 0;
    bool isNew = false; // to be put into `menu` before `before`
    bool isGone = false;
    int menu = 0, before = 0;
    std::string text; // "__" before the access key
    int shortcut = 0; // key code or 0
    bool isDimmed = false;
    bool isChecked = false;
    bool isCheckable = false;
};

// What may stand in the field in place of `typed`. An answer to EVENT_VAL_CHANGED; one for
// a text that no longer stands there is of no use.
struct VIEW_Completion {
    int panel = 0, control = 0;
    std::string typed;
    std::vector<std::string> candidates;
};

enum VIEW_QuestionKind {
    VIEW_MESSAGE,
    VIEW_CONFIRM,
    VIEW_PROMPT,
    VIEW_GENERIC,
    VIEW_FILE,
    VIEW_CLIPBOARD, // nobody is asked: the answer is 1 and the text on the clipboard
};
// To be answered by VIEW_EVENT_ANSWER with the same id, once. button: the number of the
// button from 1, 0 = closed. VIEW_CONFIRM 1 yes, 2 no; VIEW_PROMPT 1 OK, 2 cancel; VIEW_FILE
// 1 and the path as text (a new file in FILE_SAVE mode that exists has been confirmed).
struct VIEW_Question {
    int id = 0; // 0 = none
    VIEW_QuestionKind kind = VIEW_MESSAGE;
    std::string title, message;
    std::vector<std::string> buttons; // VIEW_GENERIC: one to three
    int defaultButton = 1;            // that Enter presses; numbered as in the answer
    bool hasEntry = false;            // an entry field that starts with `text`
    std::string text;
    size_t maxLength = 0; // of the entry, in bytes; 0 = no bound
    // VIEW_FILE:
    std::string directory, spec, types;
    int mode = FILE_LOAD;
};

enum VIEW_GraphMask : unsigned {
    VIEW_GRAPH_PLOTS = 1,
    VIEW_GRAPH_AXES = 2,
    VIEW_GRAPH_VIEW = 4, // set by the program, not by the user
};
// The plots share their numbers with the model: to be read only, from any thread.
struct VIEW_Graph {
    int panel = 0, control = 0;
    unsigned mask = 0;
    std::vector<UI_Plot> plots;
    UI_GraphAxes axes;
    UI_GraphView view;
};

struct VIEW_Progress {
    int id = 0;
    std::string title, text;
    int percent = 0;
    bool isGone = false;
};

struct VIEW_Batch {
    std::vector<VIEW_Panel> panels; // in the order in which they were shown last
    std::vector<VIEW_MenuItem> items;
    std::vector<VIEW_Control> controls;
    std::vector<VIEW_List> lists;
    std::vector<VIEW_TextBox> boxes;
    std::vector<VIEW_Graph> graphs;
    std::vector<VIEW_Completion> completions;
    std::vector<VIEW_Progress> progress;
    int popupMenu = 0;      // menu to be shown at the mouse; 0 = none
    VIEW_Question question; // to be opened
    int closedQuestion = 0; // id of a question that needs no answer any more; 0 = none
    bool isBeep = false;
    bool hasClipboard = false;
    std::string clipboard;
    std::vector<UI_Layout> layouts; // as they were in the last run; to be used from now on
    std::string helpFile; // Markdown, to be shown in a window of the view's own; "" = none
    bool isEnded = false; // the program has ended: leave
    int exitCode = 0;
};

// Everything new since the last call; false when there is nothing. Any one thread.
bool VIEW_Fetch(VIEW_Batch *batch);

// --- events: to the program -----------------------------------------------------------------
enum VIEW_EventKind {
    VIEW_EVENT_CONTROL,  // `event` of a control, with its value
    VIEW_EVENT_PANEL,    // `event` of a panel
    VIEW_EVENT_MENU,     // item chosen; value = 1 when it was checked
    VIEW_EVENT_ANSWER,   // to question `id`: button, text
    VIEW_EVENT_CANCEL,   // of progress box `id`
    VIEW_EVENT_FOCUS,    // the keyboard is in `control` of `panel` (0 = in none). No callback
    VIEW_EVENT_SCROLLED, // list or box: value = first line in view, extra = lines in view
    VIEW_EVENT_PLACED,   // window moved or shown: rect. No callback
    VIEW_EVENT_COLUMNS,  // list: widths = the user's. No callback
    VIEW_EVENT_LAYOUT,   // UI_Layout: text = name, widths = numbers. No callback
    VIEW_EVENT_END,      // the system wants the program to end: a signal, the session's end
    VIEW_EVENT_CALL,     // `call`, from a thread of the program's own. Not for views
};
// What goes with which `event`:
//   control  EVENT_COMMIT, EVENT_VAL_CHANGED  the control's value: value (switch, ring: the
//            entry's value), number, text; a list: line and selected
//            EVENT_LEFT_DOUBLE_CLICK, EVENT_RIGHT_CLICK  a list: line and selected
//            a graph: view
//            EVENT_KEYPRESS  value = key code
//            EVENT_DROPPED   line = source, target
//            EVENT_CELL_EDITED  line, column, text = what was typed
//   panel    EVENT_CLOSE, EVENT_ACTIVATED; EVENT_PANEL_SIZE with rect; EVENT_KEYPRESS with
//            value (a key the focused control did not swallow; posted for the panel alone)
struct VIEW_Event {
    VIEW_EventKind kind = VIEW_EVENT_CONTROL;
    int event = 0; // UI_Event
    int panel = 0, control = 0;
    int value = 0, extra = 0;
    double number = 0;
    std::string text;
    VIEW_LineRef line, target;
    std::vector<VIEW_LineRef> selected; // several lines; none = `line` alone
    int column = 0;
    std::vector<int> widths; // pixels
    VIEW_Rect rect;
    std::shared_ptr<const UI_GraphView> view; // of a graph
    int item = 0;
    int id = 0, button = 0;
    void (*call)() = nullptr;
    uint32_t seen = 0; // the door's stamp, whatever the poster writes
};
inline VIEW_Event VIEW_MakeEvent(VIEW_EventKind kind, int panel = 0, int control = 0, int event = 0)
{
    VIEW_Event made;
    made.kind = kind;
    made.event = event;
    made.panel = panel;
    made.control = control;
    return made;
}
// Never waits. Values of one control that follow each other become one event. False when
// the event was refused: the program is busy and VIEW_EVENTS_MAX others wait; what was
// clicked goes back to what it was. Values, answers and urgent events are never refused.
// Any thread.
bool VIEW_Post(const VIEW_Event &event);
constexpr size_t VIEW_EVENTS_MAX = 256;

// --- what the program is at -------------------------------------------------------------------
struct VIEW_Busy {
    bool isBusy = false;  // in a callback, and no question open
    uint32_t sinceMs = 0; // PLT_TickMs when it began
    std::string text;     // "waiting for station 9"; "" = unknown
};
void VIEW_GetBusy(VIEW_Busy *busy);

// For tests and benches: how much has gone through the door since the last reset.
struct VIEW_Counters {
    uint64_t posted = 0, refused = 0; // events
    uint64_t handled = 0;             // events whose callback has returned, and dropped ones
    uint64_t fetched = 0;             // batches that were not empty
    uint64_t callbacks = 0;           // of the program that have begun
};
void VIEW_GetCounters(VIEW_Counters *counters);

// Runs the program on the calling thread and tells the view when it has ended
// (VIEW_Batch.isEnded). Its exit code. For VIEW_Main.
int VIEW_RunProgram(int argc, char **argv, int (*program)(int argc, char **argv));

// --- what a view provides -----------------------------------------------------------------------
// Runs the whole: takes the options it knows out of the command line, starts the program
// (VIEW_RunProgram), on another thread or on this one, and draws until it has ended. The
// program's exit code, negative when there is no screen. Called once, from main.
int VIEW_Main(int argc, char **argv, int (*program)(int argc, char **argv));
// There is something to fetch where there was nothing. Called on the program's thread,
// outside the queue's mutex; must return at once. A view on the same thread may fetch and
// post in here.
void VIEW_Wake();

#endif
