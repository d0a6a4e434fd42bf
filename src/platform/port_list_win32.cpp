// Ports by the system's list of devices; their numbers are the system's own.
#include "platform/port_list.h"

#include "platform/remote_ports.h"
#include "platform/serial.h"
#include "platform/tcp_port.h"
#include "platform/utf8_win32.h"

#include <windows.h>

// After windows.h, which declares what these use.
#include <devguid.h>
#include <setupapi.h>

#include <cstdlib>
#include <map>

namespace {

constexpr DWORD TEXT_MAX = 512;

// By name ("COM5"): what the device manager calls it, "USB Serial Port (COM5)", without the name.
std::map<std::string, std::string> ReadFriendlyNames()
{
    std::map<std::string, std::string> names;
    const HDEVINFO devices =
        SetupDiGetClassDevsW(&GUID_DEVCLASS_PORTS, nullptr, nullptr, DIGCF_PRESENT);
    if (devices == INVALID_HANDLE_VALUE)
        return names;
    SP_DEVINFO_DATA device = {};
    device.cbSize = sizeof device;
    for (DWORD i = 0; SetupDiEnumDeviceInfo(devices, i, &device); i++) {
        wchar_t text[TEXT_MAX] = L"";
        if (!SetupDiGetDeviceRegistryPropertyW(devices, &device, SPDRP_FRIENDLYNAME, nullptr,
                                               reinterpret_cast<BYTE *>(text),
                                               sizeof text - sizeof text[0], nullptr))
            continue;
        // The name in brackets is the only way from here to the number.
        const std::string friendly = PLT_Utf8(text);
        const size_t begin = friendly.rfind(" (COM"), end = friendly.rfind(')');
        if (begin != std::string::npos && end != std::string::npos && end > begin)
            names[friendly.substr(begin + 2, end - begin - 2)] = friendly.substr(0, begin);
    }
    SetupDiDestroyDeviceInfoList(devices);
    return names;
}

// No device has it now; one that is plugged in later may ask for it all the same.
bool IsFree(int number)
{
    char target[TEXT_MAX];
    return QueryDosDeviceA(("COM" + std::to_string(number)).c_str(), target, TEXT_MAX) == 0;
}

} // namespace

std::vector<SER_PortEntry> SER_ListPorts()
{
    const std::map<std::string, std::string> names = ReadFriendlyNames();
    std::vector<SER_PortEntry> ports;
    for (int number = 1; number <= SER_NUMBER_MAX; number++) {
        char target[TEXT_MAX];
        const std::string name = "COM" + std::to_string(number);
        const std::string path = SER_DevicePath(number);
        if (TCP_IsAddress(path)) {
            SER_PortEntry port;
            port.number = number;
            port.device = path;
            port.description = TCP_PORT_DESCRIPTION;
            ports.push_back(port);
            continue;
        }
        if (QueryDosDeviceA(name.c_str(), target, TEXT_MAX) == 0)
            continue;
        SER_PortEntry port;
        port.number = number;
        port.device = name;
        const auto friendly = names.find(name);
        // A port without a driver's description is told by its device's name.
        port.description = friendly != names.end() ? friendly->second : target;
        ports.push_back(port);
    }
    return ports;
}

// "COM7" or "\\.\COM7", or an address.
int SER_PortUse(const std::string &device, int *number)
{
    if (TCP_IsAddress(device))
        return TCP_UsePort(device, IsFree, number);
    const size_t name = device.find_first_not_of("\\.");
    const std::string text = name == std::string::npos ? "" : device.substr(name);
    if (text.size() < 4 || _strnicmp(text.c_str(), "COM", 3) != 0)
        return SER_PORT_ERR_MISSING;
    const int wanted = std::atoi(text.c_str() + 3);
    if (wanted < 1 || wanted > SER_NUMBER_MAX)
        return SER_PORT_ERR_MISSING;
    *number = wanted;
    return 0;
}

// The system's numbers are the program's.
int SER_AssignPort(const std::string &, int)
{
    return SER_PORT_ERR_WRITE;
}

bool SER_CanAssignPort()
{
    return false;
}
