// The serial ports there are, with the number each has for the program, and the way to give
// a device a number. Two files implement it (POSIX, Win32). Where the system's own ports have
// names only, a number is a link in the user's configuration folder (see SER_DevicePath).
#ifndef PLATFORM_PORT_LIST_H
#define PLATFORM_PORT_LIST_H

#include <string>
#include <vector>

constexpr int SER_NUMBER_MAX = 256;

struct SER_PortEntry {
    int number = 0;          // it has, or would get from SER_PortUse; 0 = no number is left
    std::string device;      // "/dev/ttyUSB0"
    std::string description; // "FT232R USB UART"; "" = unknown
};

// By number. A number that was given to a device that is not plugged in is not among them.
std::vector<SER_PortEntry> SER_ListPorts();

// The number that leads to a device, which is given one when it has none. 0, or:
enum {
    SER_PORT_ERR_MISSING = -1, // there is no such device
    SER_PORT_ERR_WRITE = -2,   // the link cannot be written, or no number is left
};
int SER_PortUse(const std::string &device, int *number);

// Gives the device this very number, whoever had it. 0 or SER_PORT_ERR_WRITE; nothing is changed
// then. Only where SER_CanAssignPort: elsewhere the system numbers its ports.
int SER_AssignPort(const std::string &device, int number);
bool SER_CanAssignPort();

#endif
