// What a user can see, as plain state: one record a panel, control and menu item of the
// tables in ui/ui_table.h. It belongs to the program's thread; a call of userint.h changes
// it and marks what has changed, and MDL_Flush hands the marked parts to the view. Shared by
// the files of this folder; the headless view examines it on the program's own thread.
#ifndef RUNTIME_MODEL_MODEL_H
#define RUNTIME_MODEL_MODEL_H

#include <algorithm>
#include <deque>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <vector>

#include "runtime/view.h"
#include "ui/ui_table.h"

constexpr int MDL_DIMMED = -1; // the control or item is dimmed: the user cannot reach it
constexpr int MDL_STALE = -2;  // the program has changed meanwhile what the event is about

struct MDL_Control {
    const UI_Control *row = nullptr;
    VIEW_Control state;      // value, number, text, looks; state.mask = what the view must learn
    uint32_t stamp = 0;      // of the program's last change of the value
    double min = 0, max = 0; // numbers; min == max: no bounds
    CompletionCallback completion = nullptr;
    // lists and rings
    std::vector<VIEW_Line> lines;
    std::vector<VIEW_Line> shown; // what was handed to the view last
    std::vector<UI_Column> columns;
    int current = -1;
    std::vector<int> selected; // by rising index
    int shownCurrent = -1;
    std::vector<int> shownSelected;
    unsigned listMask = 0;
    bool isRefilled = false; // emptied, and since then only appended to
    bool isLoose = false;    // emptied, and the selection not set since
    VIEW_Event edited;       // the last EVENT_CELL_EDITED
    // lists and text boxes
    int firstVisible = 0, linesInView = 0;
    // text boxes
    std::deque<std::string> box;
    bool isLineOpen = false; // the last line has not seen its line feed
    VIEW_TextBox boxChange;
    bool isBoxChanged = false;
    // graphs
    std::vector<UI_Plot> plots;
    UI_GraphAxes axes;
    UI_GraphView graph;
    unsigned graphMask = 0;
    int lastPlot = 0; // handle
    // timers
    double interval = 1.0; // seconds
    uint64_t dueUs = 0;    // PLT_TickUs of the next tick
};

struct MDL_Panel {
    const UI_Panel *row = nullptr;
    bool isLoaded = false;
    bool isPlaced = false;
    VIEW_Panel state; // state.focus = the control with the keyboard
    std::vector<MDL_Control> controls;
};

struct MDL_Item {
    VIEW_MenuItem state;
    MenuCallback callback = nullptr;
    bool isChanged = false;
};

struct MDL_State {
    std::vector<MDL_Panel> panels;
    std::vector<MDL_Item> items;     // in menu order
    std::vector<MDL_Item> goneItems; // discarded, the view does not know yet
    std::vector<int> shownOrder;     // panels as they were shown last
    VIEW_Batch extra;                // what belongs to no record: questions, progress, clipboard
    int nextItem = 1000, nextQuestion = 1, nextProgress = 1;
    std::vector<VIEW_Progress> progress; // open boxes
    std::vector<UI_Layout> layouts;
    uint32_t stamp = 0;             // rises with every change of a value by the program
    uint32_t lineId = 0;            // the last number given to a line
    std::deque<VIEW_Event> queue;   // taken from the door, not handled yet
    std::deque<bool> isCaught;      // beside it: its value is in the model already
    MDL_Control *handled = nullptr; // the control whose own event is being handled
    int depth = 0;                  // callbacks and pop-ups that are running
    int result = 0;                 // of the last event: the callback's, or why it was dropped
    uint64_t flushedUs = 0;
    bool isSuspended = true;
    bool isStarting = false; // the program runs, its loop does not yet
    bool isQuit = false;
    int quitCode = 0;
    bool isEndWished = false; // nobody is there to answer any more
    void (*endCallback)() = nullptr;
    int (*driver)() = nullptr; // runs instead of the loop
};

MDL_State &MDL_GetState();
// Forgets everything: panels unloaded, queues empty, timers suspended, no driver.
void MDL_Reset();

// --- records ------------------------------------------------------------------------------
// Null, and the code in *error, when there is no such panel or it is not loaded.
MDL_Panel *MDL_FindPanel(int panel, int *error);
MDL_Control *MDL_FindControl(int panel, int control, int *error);
MDL_Item *MDL_FindItem(int item); // null when there is none
// What `use` answers for a record; 0 when it answers nothing.
template <class Use, class Record> int MDL_AnswerOf(Use use, Record *record)
{
    if constexpr (std::is_void_v<decltype(use(record))>) {
        use(record);
        return 0;
    } else {
        return use(record);
    }
}
// The same for the panel or control of that number, or why there is none.
template <class Use> int MDL_OnPanel(int panel, Use use)
{
    int error = 0;
    MDL_Panel *found = MDL_FindPanel(panel, &error);
    return found ? MDL_AnswerOf(use, found) : error;
}
template <class Use> int MDL_OnControl(int panel, int control, Use use)
{
    int error = 0;
    MDL_Control *found = MDL_FindControl(panel, control, &error);
    return found ? MDL_AnswerOf(use, found) : error;
}
inline bool MDL_IsKind(const MDL_Control &control, std::initializer_list<UI_Kind> kinds)
{
    return std::find(kinds.begin(), kinds.end(), control.row->kind) != kinds.end();
}
// The same for a control of one of these kinds; UIE_BAD_TYPE for any other.
template <class Use>
int MDL_OnKind(int panel, int control, std::initializer_list<UI_Kind> kinds, Use use)
{
    return MDL_OnControl(panel, control, [&](MDL_Control *found) -> int {
        return MDL_IsKind(*found, kinds) ? MDL_AnswerOf(use, found) : UIE_BAD_TYPE;
    });
}
inline bool MDL_HasLines(const MDL_Control &control)
{
    return MDL_IsKind(control, {UIK_LIST, UIK_RING});
}
// The side or edge that ATTR_LEFT, TOP, WIDTH or HEIGHT means; null for any other attribute.
int *MDL_FindEdge(VIEW_Rect *rect, int attribute);
void MDL_SetFocus(int panel, int control); // both exist; the window's other panels lose it

// --- changes --------------------------------------------------------------------------------
// The program has changed the control's value, selection or curves: what the user did before
// counts no more.
void MDL_Outdate(MDL_Control *control);
void MDL_MarkValue(MDL_Control *control); // the same, and the view must show the value
// Hands what is marked to the view. Lists only when `hasLists`: in the middle of a callback
// one may be half filled.
void MDL_Flush(bool hasLists = true);
// For calls that change what is seen: outside a callback shows it at once, in a long one
// every now and then.
void MDL_FlushNowAndThen();

// In place of the one of that name. UIE_BAD_INDEX: too many, or no good name.
int MDL_KeepLayout(const UI_Layout &layout);

// --- events -----------------------------------------------------------------------------------
// Puts into the model what the user has typed, chosen and moved so far; the callbacks follow
// in their turn. The control whose own event is being handled keeps the value it had then:
// Enter enters what stood there when it was pressed.
void MDL_CatchUp();
bool MDL_CarriesValue(const MDL_Control &control, const VIEW_Event &event);
// Applies the value an event carries. 0, also when it carries none; MDL_STALE.
int MDL_ApplyValue(MDL_Control *control, const VIEW_Event &event);
// The view shows the program's value again over what the user did.
void MDL_ShowAgain(MDL_Control *control);
// Where the line of an event stands now: in its place, elsewhere, or nowhere (-1).
int MDL_ResolveLine(const MDL_Control &list, const VIEW_LineRef &line);
// Applies what an event says of windows: places, widths, the keyboard. True when it is done
// with that, and no callback follows.
bool MDL_ApplyState(const VIEW_Event &event);
// Handles the next event. False when there is none.
bool MDL_HandleNext();
void MDL_BeginCall();
void MDL_EndCall();                    // shows what the callback did
int MDL_FireTimer(MDL_Control *timer); // 1 fired, 0 timers are suspended

#endif
