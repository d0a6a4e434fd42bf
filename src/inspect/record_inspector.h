// The record inspector: a structure, union or array of the target as a tree with live values.
// Reads only the lines in view; a pointer is followed when its line is opened. A value is
// edited in its cell and read back; what has a name can be put into the watch list. Up to ten
// at once (inspectors.h).
#ifndef INSPECT_RECORD_INSPECTOR_H
#define INSPECT_RECORD_INSPECTOR_H

#include <string>

// In a window that shows it or nothing yet, else in a new one. "" = just a window.
void INS_OpenRecord(const std::string &expression);
// Maps or types may have changed: a tree of the old ones is built anew.
void INS_RecordNamesChanged();
void INS_RecordOpenCB(int menuBar, int item); // on the selected watch item
int INS_RecordPlaceCB(int panel, int control, int event, int data);
int INS_RecordListCB(int panel, int control, int event, int data);
int INS_RecordButtonCB(int panel, int control, int event, int data);
int INS_RecordTimerCB(int panel, int control, int event, int data);

#endif
