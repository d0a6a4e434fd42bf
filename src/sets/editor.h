// The editor of one parameter of the device configuration: everything the header says about
// it, what target and file hold, and a new value.
#ifndef SETS_EDITOR_H
#define SETS_EDITOR_H

void CFE_Open(int entry); // nothing for -1
void CFE_Refresh();       // what it shows has changed; follows the table's selection

int CFE_PanelCB(int panel, int event, int data);
int CFE_NewCB(int panel, int control, int event, int data);
int CFE_ButtonCB(int panel, int control, int event, int data);

#endif
