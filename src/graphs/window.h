// The graph window: curves of watched variables while they are sampled, or of a recording. It
// owns the sampler of what it shows, and the settings of the graph. Closing it ends sampling.
#ifndef GRAPHS_WINDOW_H
#define GRAPHS_WINDOW_H

#include "graphs/source.h"

// Menu item: opens the window; the selected lines of the watch list become curves besides those
// that are there, and are sampled.
void GRW_OpenCB(int menuBar, int item);
void GRW_OnQuit(); // ends sampling, and a recording whole

const GRA_Setup &GRW_GetSetup();
const GRS_Source &GRW_GetSource();

int GRW_PanelCB(int panel, int event, int data);
int GRW_StartCB(int panel, int control, int event, int data); // again: stops
int GRW_PauseCB(int panel, int control, int event, int data); // again: follows
int GRW_RecordCB(int panel, int control, int event, int data);
int GRW_MarkerCB(int panel, int control, int event, int data);
int GRW_WhenCB(int panel, int control, int event, int data); // triggers
int GRW_RemoveCB(int panel, int control, int event, int data);
int GRW_RingCB(int panel, int control, int event, int data); // period, time in view
int GRW_GraphCB(int panel, int control, int event, int data);
int GRW_CurvesCB(int panel, int control, int event, int data);
int GRW_FileCB(int panel, int control, int event, int data);
int GRW_TimerCB(int panel, int control, int event, int data);

#endif
