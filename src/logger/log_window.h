// The log window: one log, read from the target or opened from a file, filtered, sorted,
// searched, compared with another file, copied and exported. Owns both logs while they are
// shown. Of a long log one page of LOGV_PAGE_LINES is in the list; filter, sort, jump and
// export work on all of it.
#ifndef LOGGER_LOG_WINDOW_H
#define LOGGER_LOG_WINDOW_H

#include <string>

// What the ring of types offers beside the types themselves (0 to 255).
enum LOGV_TypeChoice { LOGV_ALL_BUT_JUNK = -1, LOGV_ALL = -2 };

// Shows a saved ".bin". 0 or DLLD_ERR_... after one message; what was shown stays then.
int LOGV_ShowFile(const std::string &path);

// Menu, panel and control callbacks.
void LOGV_OpenCB(int menuBar, int item);
int LOGV_PanelCB(int panel, int event, int data);
int LOGV_ReadCB(int panel, int control, int event, int data);
int LOGV_OpenFileCB(int panel, int control, int event, int data);
int LOGV_CompareCB(int panel, int control, int event, int data);
int LOGV_FilterCB(int panel, int control, int event, int data);
int LOGV_SortCB(int panel, int control, int event, int data);
int LOGV_LocalCB(int panel, int control, int event, int data);
int LOGV_ListCB(int panel, int control, int event, int data);
int LOGV_PageCB(int panel, int control, int event, int data);
int LOGV_JumpCB(int panel, int control, int event, int data);
int LOGV_CopyCB(int panel, int control, int event, int data);
int LOGV_ExportCB(int panel, int control, int event, int data);

#endif
