// The simulator window: starts and stops a simulated target, leads communication to it and
// back, makes its line bad by sliders while it runs, and lists its requests. When it is closed the
// target goes on running: the main window says that it is there.
#ifndef SIMULATOR_WINDOW_H
#define SIMULATOR_WINDOW_H

void TGT_WindowOpened();
int TGT_ButtonCB(int panel, int control, int event, int data);
int TGT_OptionCB(int panel, int control, int event, int data); // what is to be started
int TGT_FaultCB(int panel, int control, int event, int data);
int TGT_TimerCB(int panel, int control, int event, int data);

#endif
