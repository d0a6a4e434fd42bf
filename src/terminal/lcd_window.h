// The LCD and keyboard terminal: the display of a target's program as it stands there, and its
// keys, from buttons and from the keyboard. Reads by its own timer while communication is on.
#ifndef TERMINAL_LCD_WINDOW_H
#define TERMINAL_LCD_WINDOW_H

void LCW_SetPanelAttributes(); // port, station, names or communication may have changed

void LCW_OpenCB(int menuBar, int item);
int LCW_PanelCB(int panel, int event, int data);
int LCW_ScreenCB(int panel, int control, int event, int data);
int LCW_KeyCB(int panel, int control, int event, int data);
int LCW_CopyCB(int panel, int control, int event, int data);
int LCW_PlaceCB(int panel, int control, int event, int data); // place, station and code page
int LCW_TimerCB(int panel, int control, int event, int data);

#endif
