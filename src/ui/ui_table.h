// The one table that ties panels, controls and menu items to numbers, names and
// callbacks. The model and the views read it: a wrong number fails in a test without a
// window as it would in one.
// To add a control: give it a number in resource.h, a row in panels.cpp and a widget
// of that object name in panels/. To add a menu item: a number and a row in menus.cpp.
#ifndef UI_UI_TABLE_H
#define UI_UI_TABLE_H

#include "runtime/userint.h"

enum UI_Kind {
    UIK_BUTTON,  // push button
    UIK_SWITCH,  // toggle: 0 or 1
    UIK_LED,     // indicator: 0 or 1
    UIK_TEXT,    // a text the program shows
    UIK_STRING,  // a one-line field
    UIK_NUMBER,  // a number field
    UIK_RING,    // a choice; value = the chosen entry's value
    UIK_LIST,    // a list of lines with a selected one
    UIK_TEXTBOX, // many lines
    UIK_BAR,     // segments of a stretch, each in its colour
    UIK_GRAPH,   // curves over an axis
    UIK_TIMER,   // no widget
    UIK_DECOR,   // a widget the program only shows, hides or renames
};

struct UI_Control {
    int panel;
    int control;
    UI_Kind kind;
    const char *name;      // object name in the panel's Designer file
    CtrlCallback callback; // may be null
};

struct UI_Panel {
    int panel;
    const char *name; // base name of the Designer file
    const char *title;
    PanelCallback callback; // may be null
};

struct UI_Menu {
    int menu;
    int parent;       // 0 = in the menu bar, else the menu it is a submenu of
    const char *text; // "__" marks the access key
};

struct UI_MenuItem {
    int menu;
    int item; // 0 = separator
    const char *text;
    int shortcut; // key code or 0
    MenuCallback callback;
};

// What a ring offers from the start: entries the program never changes.
struct UI_RingEntry {
    int panel, control;
    const char *label;
    int value;
};

// Bounds and first value of a number field.
struct UI_Number {
    int panel, control;
    double min, max, value;
};

// A key, or a range of keys, that a callback wants (EVENT_KEYPRESS). A swallowed one means
// nothing else then: neither to the widget nor to the panel nor as a menu's shortcut.
struct UI_KeyRow {
    int panel;
    int control; // with the keyboard; 0 = the panel, whatever has the keyboard in it
    int first, last;
    bool isSwallowed;
};

// What the user does to stop what is running. It is seen at once, before its turn.
struct UI_Urgent {
    int panel;
    int control; // its EVENT_COMMIT; 0 = the panel's EVENT_CLOSE, or the item
    int item;    // 0 = not a menu item
    int value;   // only with this value (switch, check mark); -1 = with any
};

// Ends of the tables as counts. All tables are constant data.
extern const UI_Panel *const UI_aPanels;
extern const int UI_cnPanels;
extern const UI_Control *const UI_aControls;
extern const int UI_cnControls;
extern const UI_Menu UI_aMenus[];
extern const int UI_cnMenus;
extern const UI_MenuItem UI_aMenuItems[]; // in the order in which they stand in each menu
extern const int UI_cnMenuItems;
extern const int UI_nMenuPanel; // the panel whose menu bar they form
extern const UI_RingEntry UI_aRingEntries[];
extern const int UI_cnRingEntries;
extern const UI_Number UI_aNumbers[];
extern const int UI_cnNumbers;
extern const UI_KeyRow *const UI_aKeys;
extern const int UI_cnKeys;
extern const UI_Urgent UI_aUrgent[];
extern const int UI_cnUrgent;
extern const int UI_nPrintPanel, UI_nPrintControl; // the text box a terminal shows

// Of a further window of an inspector the number of its first one, whose Designer file and rows
// it has; of every other panel its own.
int UI_GetFirstAlike(int panel);
// The row for a key of a control (0: of the panel alone); null when nobody wants it.
const UI_KeyRow *UI_FindKey(int panel, int control, int key);

#endif
