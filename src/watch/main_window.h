// What the rooms below app/ ask of the main window: its message area and title, and, from
// the host that the start-up names, what it shows of the settings and which view. And how the
// windows beside it are closed.
#ifndef WATCH_MAIN_WINDOW_H
#define WATCH_MAIN_WINDOW_H

#include <string>

// Entries may be null: then nothing is shown.
struct WIN_MainHost {
    void (*showSettings)();     // title, state line, check marks, recent files
    void (*enableControls)();   // dims what has nothing to act on
    void (*showView)(int item); // ITEM_WATCH_VIEW or ITEM_CONSOLE_VIEW
};
void WIN_SetMainHost(const WIN_MainHost &host);

// After a setting or a loaded file has changed: everything the main window shows of them.
void SetMainPanelAttributes();
// Enables what has something to act on (items, a debug file, a map) and dims the rest.
void VR_EnableControls();
void WIN_ShowMainView(int item);

void SetMainPanelTitle(); // debug file and whether it has unsaved changes

// What a message is about. Once that has changed, the message is drawn quietly, and the next
// time it goes: nobody shall read as true what was.
enum WIN_Topic {
    WIN_TOPIC_NEWS, // something was done; until anything else changes
    WIN_TOPIC_LINK, // port, settings of the link, communication on or off
    WIN_TOPIC_LIST,
    WIN_TOPIC_MAP,
};
void VR_ShowMessage(const std::string &text, WIN_Topic topic = WIN_TOPIC_NEWS); // message area
// Before anything is shown about the change itself.
void WIN_Outdate(WIN_Topic changed);

// Callback of windows that are only hidden, by their close button or Esc, and keep what is in
// them. 1 when that was the event.
int WIN_CloseWindowCB(int panel, int event, int data);

#endif
