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

void DIA_TraceOpened();  // the window has been put on the screen: starts recording
void DIA_RefreshTrace(); // takes new exchanges into the list; nothing when the window is not open
// The exchanges in the list (the filter applies) as lines of text.
std::string DIA_GetTraceText();

int DIA_TracePanelCB(int panel, int event, int data);
int DIA_TraceListCB(int panel, int control, int event, int data);
int DIA_TracePauseCB(int panel, int control, int event, int data);
int DIA_TraceClearCB(int panel, int control, int event, int data);
int DIA_TraceCopyCB(int panel, int control, int event, int data); // the selected exchange
int DIA_TraceCopyAllCB(int panel, int control, int event, int data);
int DIA_TraceSaveCB(int panel, int control, int event, int data);
int DIA_TraceFilterCB(int panel, int control, int event, int data);
int DIA_TraceTimerCB(int panel, int control, int event, int data);

#endif
