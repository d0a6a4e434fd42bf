// Numbers for ports behind the network: which address a port number stands for. Kept in a
// small file a number in the user's configuration folder, beside the links of devices.
#ifndef PLATFORM_REMOTE_PORTS_H
#define PLATFORM_REMOTE_PORTS_H

#include <string>

// What lists of ports say of one.
constexpr char TCP_PORT_DESCRIPTION[] = "behind the network";

// "tcp:host:port", or "" when the number is no remote port's.
std::string TCP_GetPortAddress(int port);
// Gives the number to an address, in one step; "" takes it away. 0, or -1: cannot be written.
int TCP_SetPortAddress(int port, const std::string &address);
// The number that leads to an address: one that has it, else the first that `isFree` and is
// given to it. 0 with *number, or a failure of SER_PortUse.
int TCP_UsePort(const std::string &address, bool (*isFree)(int port), int *number);

// Lends an address the highest number that nobody has given to a port, until TCP_TakePortBack or
// the end of the program; nothing is written. 0 when no number is left.
int TCP_LendPort(const std::string &address);
void TCP_TakePortBack(int port);

#endif
