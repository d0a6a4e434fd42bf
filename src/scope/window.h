// The scope's window: channels, trigger, the steps of a recording, the curves and what is
// measured on them. It owns the setup and the last recording; everything the target is told
// goes through the session.
#ifndef SCOPE_WINDOW_H
#define SCOPE_WINDOW_H

#include "scope/capture.h"

// Beside the settings file: a missing file leaves the defaults. 0, or -1 when the file is
// there and cannot be read; what is wrong in it is said in the window.
int DTSC_LoadSettings();
int DTSC_SaveSettings(); // 0, or -1. Nothing is written while nothing was ever set
void DTSC_Opened();      // the window has been put on the screen
void DTSC_OnQuit();      // stops a run; the target keeps what it does
const SCP_Setup &DTSC_GetSetup();
const SCP_Capture &DTSC_GetCapture(); // no traces before the first upload

int DTSC_PanelCB(int panel, int event, int data);
int DTSC_OnInit(int panel, int control, int event, int data);
int DTSC_OnRun(int panel, int control, int event, int data); // stops what runs
int DTSC_OnSnap(int panel, int control, int event, int data);
int DTSC_OnUpload(int panel, int control, int event, int data);
int DTSC_ChannelsCB(int panel, int control, int event, int data);
int DTSC_ChannelCB(int panel, int control, int event, int data);     // a field of the chosen one
int DTSC_OnTriggerMode(int panel, int control, int event, int data); // mode, level, position
int DTSC_OnSubPd(int panel, int control, int event, int data);
int DTSC_GraphCB(int panel, int control, int event, int data);
int DTSC_FileCB(int panel, int control, int event, int data);
int DTSC_ShownCB(int panel, int control, int event, int data);
int DTSC_TimerCB(int panel, int control, int event, int data);

#endif
