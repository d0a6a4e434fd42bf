// Ties the rooms together: names to each lower room those that it tells its news and asks
// for what it does not know itself. The start-up calls it first; so does a test that wants
// the rooms to work together.
#ifndef APP_ROOMS_H
#define APP_ROOMS_H

void VR_ConnectRooms();

#endif
