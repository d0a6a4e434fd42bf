// The log window: one log, read from the target or opened from a file, filtered, sorted,
// searched, compared with another file, copied and exported. Owns both logs while they are
// shown. Of a long log one page of LGW_PAGE_LINES is in the list; filter, sort, jump and
// export work on all of it.
#ifndef LOGGER_LOG_WINDOW_H
#define LOGGER_LOG_WINDOW_H

#include <string>

// What the ring of types offers beside the types themselves (0 to 255).
enum LGW_Types { LGW_ALL_BUT_JUNK = -1, LGW_ALL = -2 };

// Shows a saved ".bin". 0 or DLLD_ERR_... after one message; what was shown stays then.
int LGW_ShowFile(const std::string &path);

// Menu, panel and control callbacks.
void LGW_OpenCB(int menuBar, int item);
int LGW_PanelCB(int panel, int event, int data);
int LGW_ReadCB(int panel, int control, int event, int data);
int LGW_OpenFileCB(int panel, int control, int event, int data);
int LGW_CompareCB(int panel, int control, int event, int data);
int LGW_FilterCB(int panel, int control, int event, int data);
int LGW_SortCB(int panel, int control, int event, int data);
int LGW_LocalCB(int panel, int control, int event, int data);
int LGW_ListCB(int panel, int control, int event, int data);
int LGW_PageCB(int panel, int control, int event, int data);
int LGW_JumpCB(int panel, int control, int event, int data);
int LGW_CopyCB(int panel, int control, int event, int data);
int LGW_ExportCB(int panel, int control, int event, int data);

#endif
