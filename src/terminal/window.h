// The two terminals of a target's program. The service terminal shows what the program writes and
// sends what is typed for it, read from the main panel's timer while communication is on; the LCD
// and keyboard terminal shows its display and presses its keys, by a timer of its own. Each has one
// conversation at a time.
#ifndef TERMINAL_WINDOW_H
#define TERMINAL_WINDOW_H

void T166_Init();  // shows the terminal and asks for communication
bool T166_Read();  // one look at the target; false: the terminal is not on
void T166_Close(); // ends the conversation; the text stays, and so does the window
// Port, station or names may have changed.
void T166_SetPanelAttributes();
// Communication was switched on or off: a terminal in view goes on, or is closed.
void T166_ShowCommunication();
bool T166_IsOn(); // it talks with the target

void T166_OpenCB(int menuBar, int item);
int T166_PanelCB(int panel, int event, int data);
int T166_ScreenCB(int panel, int control, int event, int data);
int T166_LineCB(int panel, int control, int event, int data);
int T166_ButtonCB(int panel, int control, int event, int data);
int T166_PlaceCB(int panel, int control, int event, int data); // place and station
int T166_LogCB(int panel, int control, int event, int data);

// The LCD and keyboard terminal (lcd_window.cpp).
void TRM_SetLcdPanelAttributes(); // port, station, names or communication may have changed

void TRM_LcdOpenCB(int menuBar, int item);
int TRM_LcdPanelCB(int panel, int event, int data);
int TRM_LcdScreenCB(int panel, int control, int event, int data);
int TRM_LcdKeyCB(int panel, int control, int event, int data);
int TRM_LcdCopyCB(int panel, int control, int event, int data);
int TRM_LcdPlaceCB(int panel, int control, int event, int data); // place, station and code page
int TRM_LcdTimerCB(int panel, int control, int event, int data);

#endif
