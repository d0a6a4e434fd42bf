// The open inspectors, at most ten: arrays and records mixed, each in a window of its own. A
// window is one row of the panels' table and is loaded when it is needed first. Owns the
// inspectors; an array or record inspector knows its own by the panel.
#ifndef INSPECT_INSPECTORS_H
#define INSPECT_INSPECTORS_H

#include <functional>
#include <memory>
#include <string>

struct INS_ArrayView;
struct INS_RecordView;

struct INS_Inspector {
    int panel = -1;
    std::shared_ptr<INS_ArrayView> array; // one of the two
    std::shared_ptr<INS_RecordView> record;
};

constexpr int INSPECTORS_MAX = 10;
extern INS_Inspector *Inspectors[INSPECTORS_MAX]; // null: none
extern int INS_anPanels[INSPECTORS_MAX];          // of each; -1: none

void INS_Clear(); // at the program's start
void INS_Free();  // at its end: all windows closed
// An inspector that `isMeant` accepts, else a new one whose window is one of those that begin
// with panel `first` and go on with `more`. Its window is shown, with the keyboard in `control`.
// Null after a message when ten are open.
INS_Inspector *INS_Open(int first, int more, int control,
                        const std::function<bool(const INS_Inspector &)> &isMeant);
INS_Inspector *INS_Find(int panel); // null: closed
// The lines of a list that are worth reading: those from `first` up to `end`, of `count`. Where
// no view has said how many it shows, as without a window, a screenful.
void INS_GetLinesInView(int panel, int list, int count, int *first, int *end);
// A window's close and Esc: the inspector is freed. What a panel's callback returns.
int INS_PanelCB(int panel, int event, int data);

#endif
