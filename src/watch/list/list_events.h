// What the user does with the watch list: the Edit menu (also the list's context menu),
// keys, double clicks and dragged lines.
#ifndef WATCH_LIST_LIST_EVENTS_H
#define WATCH_LIST_LIST_EVENTS_H

// Dims the Edit menu's items that have nothing to act on. In the console view the list
// is out of sight, and nothing may change it.
void LEV_Enable();

int LEV_ListCB(int panel, int control, int event, int data);
void LEV_AddCB(int menuBar, int item);
void LEV_EditCB(int menuBar, int item);
void LEV_UndoCB(int menuBar, int item);
void LEV_RedoCB(int menuBar, int item);
void LEV_OtherBaseCB(int menuBar, int item); // selected lines in hexadecimal or decimal
void LEV_RemoveCB(int menuBar, int item);
void LEV_MoveCB(int menuBar, int item); // up or down by the item
void LEV_CommentCB(int menuBar, int item);
void LEV_WriteCB(int menuBar, int item);
void LEV_MemoryCB(int menuBar, int item);

#endif
