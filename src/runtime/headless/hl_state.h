// What the headless face keeps: one record a panel, control and menu item of the
// tables in ui/ui_table.h. Shared by the files of this folder only.
#ifndef RUNTIME_HEADLESS_HL_STATE_H
#define RUNTIME_HEADLESS_HL_STATE_H

#include <cstdio>
#include <deque>
#include <string>
#include <vector>

#include "runtime/headless/headless.h"
#include "ui/ui_table.h"

struct HL_Rect {
    int left = 0, top = 0, width = 0, height = 0;
};

struct HL_Line {
    std::string label;
    int value = 0;
    std::string tip;
};

struct HL_Control {
    const UI_Control *row = nullptr;
    int value = 0;              // switches, indicators, rings
    double number = 0;          // numbers; timers: interval in seconds
    std::string text;           // text and string fields
    std::vector<HL_Line> lines; // lists, rings; text boxes use the labels
    bool isLineOpen = false;    // the text box's last line has not seen its line feed
    int selected = -1;
    int firstVisible = 0;
    bool isDimmed = false;
    bool isVisible = true;
    int color = 0;
    int mode = 1;
    CompletionCallback completion = nullptr;
    HL_Rect rect;
    std::string label;
    std::string tooltip;
};

struct HL_Panel {
    const UI_Panel *row = nullptr;
    bool isLoaded = false;
    bool isVisible = false;
    int parent = 0;
    int isSizable = 0;
    HL_Rect rect;
    std::string title;
    int focus = 0;
    std::vector<HL_Control> controls;
};

struct HL_MenuItem {
    int menu = 0;
    int item = 0; // 0 = separator
    std::string text;
    int shortcut = 0;
    MenuCallback callback = nullptr;
    int isDimmed = 0;
    int isChecked = 0;
};

struct HL_Answer {
    int button = 0;
    std::string text;
};

struct HL_State {
    std::vector<HL_Panel> panels;
    std::vector<HL_MenuItem> items; // in menu order
    int nextItem = 1000;
    int popupMenu = 0;
    bool isSuspended = true;
    bool isQuit = false;
    int quitCode = 0;
    int (*driver)() = nullptr;
    std::deque<HL_Answer> answers;
    HL_DefaultAnswer defaultAnswer = HL_ANSWER_SAFE;
    std::vector<std::string> popups;
    std::vector<std::string> launched;
    std::string clipboard;
    bool isProgressShown = false;
    int cancelAt = 0;                        // progress updates until the user presses Cancel
    std::vector<std::string> progressTitles; // by handle - 1; "" once discarded
    std::FILE *out = stdout;
    std::FILE *err = stderr;
};

HL_State &HL_GetState();

// Null, and the code in *error, when there is no such panel or it is not loaded.
HL_Panel *HL_FindPanel(int panel, int *error);
HL_Control *HL_FindControl(int panel, int control, int *error);
HL_MenuItem *HL_FindItem(int item);

bool HL_HasLines(const HL_Control &control); // list or ring

#endif
