// The device configuration: a set as a form with groups, limits, and what target and file
// hold beside each value. The main window in configuration mode, a window of its own
// otherwise. Callbacks for the tables of ui/; the state is the form (form.h).
#ifndef SETS_WINDOW_H
#define SETS_WINDOW_H

#include <string>

void CFW_Opened(); // the window has been shown: reads the remembered header the first time
// The header that is open or to be opened with the window, for the settings; "" for none.
// Setting one closes what is open.
const std::string &CFW_GetHeader();
void CFW_SetHeader(const std::string &path);

int CFW_OpenCB(int panel, int control, int event, int data);
int CFW_GroupsCB(int panel, int control, int event, int data);
int CFW_ListCB(int panel, int control, int event, int data);
int CFW_MarkedCB(int panel, int control, int event, int data);
int CFW_ReadCB(int panel, int control, int event, int data);
int CFW_WriteCB(int panel, int control, int event, int data); // one, or all that are changed
int CFW_FileCB(int panel, int control, int event, int data);  // load, save, compare, print
int CFW_TerminalCB(int panel, int control, int event, int data);
int CFW_DetailsCB(int panel, int control, int event, int data);
// Its window was closed (not in configuration mode) or turned to.
void CFW_Activated();

#endif
