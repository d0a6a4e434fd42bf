// What the user does with debug files: open, save, reload, edit, the recent ones, and the
// question whether to save changes. Owns the list of recent files.
#ifndef WATCH_LIST_DEBUG_FILE_H
#define WATCH_LIST_DEBUG_FILE_H

#include <string>

#include "settings/settings.h"

// Puts a path first among the recent debug files; the oldest of more than RECENT_MAX goes.
void AddDebugFileName(const std::string &path);

// Asks about unsaved changes, then loads a file as the current one. 0, -1 the user
// cancelled, -2 cannot be opened (message area; list and name unchanged).
int LIT_OpenFile(const std::string &path);

int LoadDbgFile(int panel); // 0 loaded, -1 cancelled, -2 cannot be opened
int SaveDbg(int panel);     // 1 saved, 0 cancelled, -1 not saved (reported)
int SaveDbgAs(int panel);   // 1 a name was chosen, 0 cancelled, -1 nothing to save
int DbgChngSafety();        // 0 go on, -1 stop

// For the main panel when its window is activated: asks whether to load the debug file
// again when it has changed on disk. 1 loaded, 0 not changed or not wanted, -2 failed.
int LIT_CheckReload(int panel);

// Menu and button callbacks.
void OpenDatCB(int menuBar, int item);
void SaveDbgCB(int menuBar, int item);
void SaveDbgAsCB(int menuBar, int item);
void ReloadNowCB(int menuBar, int item); // the same file, without the dialog
void EditDbgCB(int menuBar, int item);
void MenuReopenFileCB(int menuBar, int item);
int RldDbgBtnCB(int panel, int control, int event, int data);
int DbgFileBtnCB(int panel, int control, int event, int data);
int SaveDbgBtnCB(int panel, int control, int event, int data);
// The ids of the recent-file menu items, set by the main panel's refresh; 0 = none.
extern int anRecentItems[RECENT_MAX];

#endif
