// Numbers for ports behind the network: which address a port number stands for. Kept in a
// small file a number in the user's configuration folder, beside the links of devices.
#ifndef PLATFORM_REMOTE_PORTS_H
#define PLATFORM_REMOTE_PORTS_H

#include <string>

// What lists of ports say of one.
constexpr char RMP_DESCRIPTION[] = "behind the network";

// "tcp:host:port", or "" when the number is no remote port's.
std::string RMP_GetAddress(int port);
// Gives the number to an address, in one step; "" takes it away. 0, or -1: cannot be written.
int RMP_SetAddress(int port, const std::string &address);
// The number that leads to an address: one that has it, else the first that `isFree` and is
// given to it. 0 with *number, or a failure of PTL_Use.
int RMP_Use(const std::string &address, bool (*isFree)(int port), int *number);

// Lends an address the highest number that nobody has given to a port, until RMP_TakeBack or
// the end of the program; nothing is written. 0 when no number is left.
int RMP_Lend(const std::string &address);
void RMP_TakeBack(int port);

#endif
