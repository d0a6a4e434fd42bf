// The window of the flash loader: a HEX file is chosen and checked, programmed into the
// target's flash and compared with it. It shows an LDR_Job, which it owns and which lives on
// while the window is closed, and decides nothing but what to ask.
#ifndef LOADER_WINDOW_H
#define LOADER_WINDOW_H

void LDW_Opened(); // the panel has been shown
void LDW_Reset();  // forgets file and flash; for tests

int LDW_PanelCB(int panel, int event, int data);
int LDW_ChooseCB(int panel, int control, int event, int data);
int LDW_ProgramCB(int panel, int control, int event, int data);
int LDW_CompareCB(int panel, int control, int event, int data);

#endif
