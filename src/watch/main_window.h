// What the rooms below app/ ask of the main window: its message area and title, and, from
// the host that the start-up names, what it shows of the settings and which view.
#ifndef WATCH_MAIN_WINDOW_H
#define WATCH_MAIN_WINDOW_H

#include <string>

// Entries may be null: then nothing is shown.
struct MWN_Host {
    void (*showSettings)();     // title, state line, check marks, recent files
    void (*enableControls)();   // dims what has nothing to act on
    void (*showView)(int item); // ITEM_WATCH_VIEW or ITEM_CONSOLE_VIEW
};
void MWN_SetHost(const MWN_Host &host);

// After a setting or a loaded file has changed: everything the main window shows of them.
void SetMainPanelAttributes();
// Enables what has something to act on (items, a debug file, a map) and dims the rest.
void VR_EnableControls();
void MWN_ShowView(int item);

void SetMainPanelTitle();                     // debug file and whether it has unsaved changes
void VR_ShowMessage(const std::string &text); // message area

#endif
