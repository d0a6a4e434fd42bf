// The main panel: what it shows of the settings and of communication, its two views (watch
// list and console), and the windows that its Window menu opens. Rooms below app/ reach it
// through watch/main_window.h.
#ifndef APP_MAIN_PANEL_H
#define APP_MAIN_PANEL_H

// The answers to what the rooms below ask, each named to watch/main_window.h.
void VR_ShowSettings();
void VR_DimControls();
void VR_ShowView(int item);

void SetMainPanelStateLine();
// Makes switch, indicator and menu show whether communication is on and the port open, and
// brings open statistics and trace windows up to date, whose timers do not run when it is off.
void VR_ShowComState();
// Brings console panel, text box and input line to the main panel's height, in pixels.
void VR_SizeConsole(int height);

// --- callbacks -----------------------------------------------------------------------
int PanelCB(int panel, int event, int data);
int ConfigPanelCB(int panel, int event,
                  int data); // in configuration mode its close ends the program
void WindowCB(int menuBar, int item);

#endif
