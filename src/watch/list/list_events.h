// What the user does with the watch list: the Edit menu (also the list's context menu),
// keys, double clicks and dragged lines.
#ifndef WATCH_LIST_LIST_EVENTS_H
#define WATCH_LIST_LIST_EVENTS_H

// Dims the Edit menu's items that have nothing to act on. In the console view the list
// is out of sight, and nothing may change it.
void LSV_Enable();

int LSV_ListCB(int panel, int control, int event, int data);
void LSV_AddCB(int menuBar, int item);
void LSV_EditCB(int menuBar, int item);
void LSV_UndoCB(int menuBar, int item);
void LSV_RedoCB(int menuBar, int item);
void LSV_OtherBaseCB(int menuBar, int item); // selected lines in hexadecimal or decimal
void LSV_RemoveCB(int menuBar, int item);
void LSV_MoveCB(int menuBar, int item); // up or down by the item
void LSV_CommentCB(int menuBar, int item);
void LSV_WriteCB(int menuBar, int item);
void LSV_MemoryCB(int menuBar, int item);

#endif
