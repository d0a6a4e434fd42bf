// Callbacks of the switch and of the Options menu: each changes one setting while the
// program runs and, where the link is concerned, opens it anew.
#ifndef APP_OPTIONS_H
#define APP_OPTIONS_H

#include <cstdint>
#include <string>

// What the menus of baud rate and processor offer, in the order of their items.
constexpr int32_t APP_BAUD_RATES[] = {9600, 19200, 38400, 57600, 115200};
constexpr int APP_MENU_PORTS = 9; // COM1 to COM9; others by number or device

// A port by number ("12") or by the path of its device, which gets a number when it has
// none. 0, or -1 with a message and nothing changed.
int APP_UsePort(const std::string &text);
void APP_UseProcessor(int processor); // names and watch list follow

int CommSwitchCB(int panel, int control, int event, int data);
void ConnectCB(int menuBar, int item);
void BRateCB(int menuBar, int item);
void PortCB(int menuBar, int item);
void StationCB(int menuBar, int item);
void ProcesorCB(int menuBar, int item);
void ProtocolCB(int menuBar, int item);
void ComWin32CB(int menuBar, int item);
void AutoOffCB(int menuBar, int item);
void RateCB(int menuBar, int item);
void ClosePortCB(int menuBar, int item);
void FullCommandsCB(int menuBar, int item);
void EchoCB(int menuBar, int item);

#endif
