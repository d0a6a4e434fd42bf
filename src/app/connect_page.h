// The connect page: everything needed for a first value, on one page inside the main window.
// It is another way to the settings of the Options menu and takes effect at once, as that does.
// The desktop program opens it when there is no settings file.
#ifndef APP_CONNECT_PAGE_H
#define APP_CONNECT_PAGE_H

void APP_OpenConnectPage();
void APP_RefreshConnectPage(); // after a setting or a loaded file has changed; nothing when it is
                               // not shown

// Callbacks.
void ConnectPageCB(int menuBar, int item);
int APP_ConnectPortCB(int panel, int control, int event, int data);
int APP_ConnectSettingCB(int panel, int control, int event, int data); // rings and the station
int APP_ConnectButtonCB(int panel, int control, int event, int data);
int APP_ConnectPanelCB(int panel, int event, int data); // closed: back to the view behind it

#endif
