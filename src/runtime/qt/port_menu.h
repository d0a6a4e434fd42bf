// The port menu's knowledge of real ports: which device stands behind each number,
// and a submenu that assigns a device to a number.
#ifndef RUNTIME_QT_PORT_MENU_H
#define RUNTIME_QT_PORT_MENU_H

class QMenu;
class QString;

// The menu looks the ports up each time it opens.
void FACE_EquipPortMenu(QMenu *menu);
// What the menu shows behind "COM<n>": "" when there is no such device.
QString FACE_DescribePort(int port);

#endif
