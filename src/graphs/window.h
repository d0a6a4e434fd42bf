// The graph window: curves of watched variables while they are sampled, or of a recording. It
// owns the sampler of what it shows, and the settings of the graph. Closing it ends sampling.
#ifndef GRAPHS_WINDOW_H
#define GRAPHS_WINDOW_H

#include "graphs/source.h"

// Menu item: opens the window; the selected lines of the watch list become curves besides those
// that are there, and are sampled.
void GRA_OpenCB(int menuBar, int item);
void GRA_OnQuit(); // ends sampling, and a recording whole

const GRA_Setup &GRA_GetSetup();
const GRA_Source &GRA_GetSource();

int GRA_PanelCB(int panel, int event, int data);
int GRA_StartCB(int panel, int control, int event, int data); // again: stops
int GRA_PauseCB(int panel, int control, int event, int data); // again: follows
int GRA_RecordCB(int panel, int control, int event, int data);
int GRA_MarkerCB(int panel, int control, int event, int data);
int GRA_WhenCB(int panel, int control, int event, int data); // triggers
int GRA_RemoveCB(int panel, int control, int event, int data);
int GRA_RingCB(int panel, int control, int event, int data); // period, time in view
int GRA_GraphCB(int panel, int control, int event, int data);
int GRA_CurvesCB(int panel, int control, int event, int data);
int GRA_FileCB(int panel, int control, int event, int data);
int GRA_TimerCB(int panel, int control, int event, int data);

#endif
