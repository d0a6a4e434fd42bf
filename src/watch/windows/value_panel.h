// The value editor: one watch item's value in several forms, live with the list, and a
// field for a new one, which is written, read back and compared. It stays open for the
// next value and follows its item when the list is changed under it.
#ifndef WATCH_WINDOWS_VALUE_PANEL_H
#define WATCH_WINDOWS_VALUE_PANEL_H

constexpr double VALUE_PERIOD_S = 0.25;

void WIN_OpenValue(int index);
void WIN_RefreshValue(); // shows the item as it is now; nothing when the window is not open

int WIN_ValueNewCB(int panel, int control, int event, int data);
int WIN_ValueButtonCB(int panel, int control, int event, int data);
int WIN_ValueTimerCB(int panel, int control, int event, int data);

#endif
