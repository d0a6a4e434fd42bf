// The array inspector: an array of the target as a table and as a curve; of more than two
// dimensions a slice by fixed indices. The table reads only the lines in view; curve, copy and
// files read all of it with the array commands' own transfers. Stands on the console's
// commands. Up to ten at once (inspectors.h).
#ifndef INSPECT_ARRAY_INSPECTOR_H
#define INSPECT_ARRAY_INSPECTOR_H

#include <string>

// In a window that shows it or nothing yet, else in a new one. "" = just a window.
void INS_OpenArray(const std::string &text);
// Maps or types may have changed: an array that moved or changed with them is shown anew.
void INS_ArrayNamesChanged();
void INS_ArrayOpenCB(int menuBar, int item); // on the selected watch item
int INS_ArrayPlaceCB(int panel, int control, int event, int data);
int INS_ArraySliceCB(int panel, int control, int event, int data);
int INS_ArrayListCB(int panel, int control, int event, int data);
int INS_ArrayButtonCB(int panel, int control, int event, int data);
int INS_ArrayTimerCB(int panel, int control, int event, int data);

#endif
