// Ports by the system's list of devices; their numbers are the system's own.
#include "platform/port_list.h"

#include "platform/remote_ports.h"
#include "platform/serial.h"
#include "platform/tcp_port.h"

#include <windows.h>

#include <cstdlib>

namespace {

constexpr DWORD TARGET_MAX = 512;

// No device has it now; one that is plugged in later may ask for it all the same.
bool IsFree(int number)
{
    char target[TARGET_MAX];
    return QueryDosDeviceA(("COM" + std::to_string(number)).c_str(), target, TARGET_MAX) == 0;
}

} // namespace

std::vector<PTL_Port> PTL_List()
{
    std::vector<PTL_Port> ports;
    for (int number = 1; number <= PTL_NUMBER_MAX; number++) {
        char target[TARGET_MAX];
        const std::string name = "COM" + std::to_string(number);
        const std::string path = SER_DevicePath(number);
        if (TCP_IsAddress(path)) {
            PTL_Port port;
            port.number = number;
            port.device = path;
            port.description = "behind the network";
            ports.push_back(port);
            continue;
        }
        if (QueryDosDeviceA(name.c_str(), target, TARGET_MAX) == 0)
            continue;
        PTL_Port port;
        port.number = number;
        port.device = name;
        port.description = target;
        ports.push_back(port);
    }
    return ports;
}

// "COM7" or "\\.\COM7", or an address.
int PTL_Use(const std::string &device, int *number)
{
    if (TCP_IsAddress(device))
        return RMP_Use(device, IsFree, number);
    const size_t name = device.find_first_not_of("\\.");
    const std::string text = name == std::string::npos ? "" : device.substr(name);
    if (text.size() < 4 || _strnicmp(text.c_str(), "COM", 3) != 0)
        return PTL_ERR_MISSING;
    const int wanted = std::atoi(text.c_str() + 3);
    if (wanted < 1 || wanted > PTL_NUMBER_MAX)
        return PTL_ERR_MISSING;
    *number = wanted;
    return 0;
}
