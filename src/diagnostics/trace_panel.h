// The wire trace window: the exchanges of the last while, newest at the end, and the
// bytes and meaning of the selected one. Recording is on only while the window is open;
// what was recorded is dropped when it closes. Whoever writes the trace to a file has a
// sink of its own and is not touched by this window.
#ifndef DIAGNOSTICS_TRACE_PANEL_H
#define DIAGNOSTICS_TRACE_PANEL_H

#include <cstddef>
#include <string>

constexpr size_t TRACE_CAPACITY = 2000; // exchanges kept
constexpr double TRACE_PERIOD_S = 0.25;

void TRP_Opened();  // the window has been put on the screen: starts recording
void TRP_Refresh(); // takes new exchanges into the list; nothing when the window is not open
// The exchanges in the list (the filter applies) as lines of text.
std::string TRP_Text();

int TRP_PanelCB(int panel, int event, int data);
int TRP_ListCB(int panel, int control, int event, int data);
int TRP_PauseCB(int panel, int control, int event, int data);
int TRP_ClearCB(int panel, int control, int event, int data);
int TRP_CopyCB(int panel, int control, int event, int data); // the selected exchange
int TRP_CopyAllCB(int panel, int control, int event, int data);
int TRP_SaveCB(int panel, int control, int event, int data);
int TRP_FilterCB(int panel, int control, int event, int data);
int TRP_TimerCB(int panel, int control, int event, int data);

#endif
