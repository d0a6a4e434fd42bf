// The view of a terminal and of the tests, on the program's own thread: prints what is
// meant for a reader, answers questions from a queue, at a terminal, or safely. Beside it
// what a person would do (click, type) and see: the console program drives the program
// through it, tests drive and examine it. What a person does is posted through the same
// queue as a window's events (runtime/view.h), and handled before the call returns.
//
// Results follow runtime/userint.h: 0 or positive good, negative a UI_Error code, HL_DIMMED
// when the control or item cannot be reached.
#ifndef RUNTIME_HEADLESS_HEADLESS_H
#define RUNTIME_HEADLESS_HEADLESS_H

#include <cstdio>
#include <string>
#include <vector>

#include "runtime/userint.h"

constexpr int HL_DIMMED = -1;

// --- for tests ----------------------------------------------------------------------
// Forgets everything: panels unloaded, queues and logs empty, timers suspended, no
// driver, both streams silent, no program is started.
void HL_Reset();
// Loads every panel of the table as a window of its own. 0, or the first error.
int HL_LoadAllPanels();

// --- streams ------------------------------------------------------------------------
// Where console lines (`out`) and everything for the eye (`err`) go; null = nowhere.
// At program start they are standard output and standard error.
void HL_SetStreams(std::FILE *out, std::FILE *err);
// Whether progress boxes show as a line that is written over and over on `err`: for
// a terminal. Off at start, so that a log file does not fill with it.
void HL_ShowProgress(bool isShown);

// --- event loop -----------------------------------------------------------------------
// What RunUserInterface runs. The driver returns when it is done or HL_IsQuit() is
// true; its result is the loop's unless QuitUserInterface gave one.
void HL_SetDriver(int (*driver)());
bool HL_IsQuit();
// For a driver that nobody types to: as HL_IsQuit, where an interrupt that broke off a callback
// is a wish to end as well.
bool HL_IsEndWished();
// One tick of a timer: 1 fired, 0 timers are suspended or the loop is to end.
int HL_FireTimer(int panel, int control);
// Sleeps for the timer's interval, then fires it. Ends early, unfired (0), once
// `isStopped` (may be null) says so or the loop is to end.
int HL_WaitTimer(int panel, int control, bool (*isStopped)());

// --- questions ------------------------------------------------------------------------
enum HL_DefaultAnswer {
    HL_ANSWER_SAFE, // no, cancel, no file
    HL_ANSWER_YES,  // the first button; a question for a text is cancelled all the same
    HL_ANSWER_NO,   // no, or the second button
};
// How questions are answered once the queue is empty.
void HL_SetDefaultAnswer(HL_DefaultAnswer answer);
// A line a person types as an answer; false at the end of input. With one set, questions
// without a standing answer are really asked: for a terminal. Null = nobody is there.
void HL_SetAsker(bool (*readLine)(std::string *line));
// Queues the answer to the next question. `button`: 1 yes / OK / first button, 0 no /
// closed; `text`: what is typed into the entry field, or the file chosen.
void HL_PushAnswer(int button, const std::string &text = "");
int HL_CountAnswers(); // answers nobody asked for yet
// Every pop-up so far as "title: message" (questions too); HL_Reset empties it.
const std::vector<std::string> &HL_GetPopups();
// The user presses Cancel of the progress box at its n-th update from now; 0 = never.
void HL_CancelProgressAt(int update);

// --- what the user does -----------------------------------------------------------------
int HL_ClickMenu(int item);
int HL_CommitControl(int panel, int control);         // button pressed, field entered
int HL_Toggle(int panel, int control);                // switch flipped, then EVENT_COMMIT
int HL_SetUserVal(int panel, int control, int value); // then EVENT_VAL_CHANGED
int HL_SetUserVal(int panel, int control, const std::string &text);
int HL_SelectLine(int panel, int control, int index); // then EVENT_VAL_CHANGED
int HL_SelectLines(int panel, int control, const std::vector<int> &indices);
int HL_SetGraphView(int panel, int control, const UI_GraphView &view); // zoomed, dragged
int HL_EditCell(int panel, int control, int index, int column, const std::string &text);
// A key while `control` has the focus (0 = none): as the key table says to the control and
// the panel, else what the widget does by itself, else the menu shortcut.
int HL_Key(int panel, int control, int key);
int HL_Event(int panel, int control, int event, int data); // any event of userint.h
int HL_ClosePanel(int panel);
int HL_ActivatePanel(int panel); // turns to the panel's window
int HL_ResizePanel(int panel, int height, int width);

// --- what the user sees -----------------------------------------------------------------
std::vector<std::string> HL_GetLabels(int panel, int control); // list or ring lines
std::vector<std::string> HL_GetLines(int panel, int control);  // text box lines
std::string HL_GetTip(int panel, int control, int index);      // tip of a list line
std::vector<int> HL_GetMenuItems(int menu);                    // items from top to bottom
std::string HL_GetMenuText(int item);
int HL_GetShortcut(int item);
int HL_GetPopupMenu(); // last menu shown at the mouse, 0 = none
// What is offered for the text that stands in a field now.
std::vector<std::string> HL_Complete(int panel, int control);
const std::string &HL_GetClipboard();

#endif
