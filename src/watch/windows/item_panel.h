// The window that adds a watch item or changes one: name or address, type, size and
// place in the list. It owns only what is typed into it; errors are said in the window.
#ifndef WATCH_WINDOWS_ITEM_PANEL_H
#define WATCH_WINDOWS_ITEM_PANEL_H

// Values of the position ring.
enum ITP_Position { ITP_AFTER = 0, ITP_BEFORE = 1, ITP_AT_END = 2 };

void ITP_OpenAdd();
void ITP_OpenEdit(int index);

int ITP_NameCB(int panel, int control, int event, int data);
int ITP_TypeCB(int panel, int control, int event, int data);
int ITP_RingCB(int panel, int control, int event, int data);
int ITP_ButtonCB(int panel, int control, int event, int data);

#endif
