// The window that adds a watch item or changes one: name or address, type, size and
// place in the list. It owns only what is typed into it; errors are said in the window.
#ifndef WATCH_WINDOWS_ITEM_PANEL_H
#define WATCH_WINDOWS_ITEM_PANEL_H

// Values of the position ring.
enum WIN_ItemPosition { WIN_ITEM_AFTER = 0, WIN_ITEM_BEFORE = 1, WIN_ITEM_AT_END = 2 };

void WIN_OpenAddItem();
void WIN_OpenEditItem(int index);

int WIN_ItemNameCB(int panel, int control, int event, int data);
int WIN_ItemTypeCB(int panel, int control, int event, int data);
int WIN_ItemRingCB(int panel, int control, int event, int data);
int WIN_ItemButtonCB(int panel, int control, int event, int data);

#endif
