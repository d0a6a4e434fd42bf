// The port menu's knowledge of real ports: which device stands behind each number,
// and a submenu that assigns a device to a number.
#ifndef RUNTIME_QT_PORT_MENU_H
#define RUNTIME_QT_PORT_MENU_H

class QMenu;
class QString;

// The menu looks the ports up each time it opens.
void QTV_EquipPortMenu(QMenu *menu);
// Makes `device` stand behind "COM<n>" from now on; says so when it cannot. 0, or -1.
int QTV_AssignPort(int port, const QString &device);
// What the menu shows behind "COM<n>": "" when there is no such device.
QString QTV_DescribePort(int port);

#endif
