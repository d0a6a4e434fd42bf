// Ports by the kernel's list of terminals, which knows what hardware stands behind each.
#include "platform/port_list.h"

#include "platform/remote_ports.h"
#include "platform/serial.h"
#include "platform/system.h"
#include "platform/tcp_port.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const char TERMINALS[] = "/sys/class/tty/";
constexpr size_t DESCRIPTION_MAX = 100;

// The first line of a small file of the kernel's; "" when there is none.
std::string ReadLine(const std::string &path)
{
    std::FILE *file = std::fopen(path.c_str(), "r");
    if (file == nullptr)
        return "";
    char buffer[DESCRIPTION_MAX] = "";
    const bool isRead = std::fgets(buffer, sizeof buffer, file) != nullptr;
    std::fclose(file);
    std::string line = isRead ? buffer : "";
    return line.substr(0, line.find('\n'));
}

// "" when there is no such file.
std::string RealPath(const std::string &path)
{
    char *found = realpath(path.c_str(), nullptr);
    const std::string real = found != nullptr ? found : "";
    std::free(found);
    return real;
}

// The kernel lists legacy ports whether or not there is a chip behind them: type 0.
bool IsHardware(const std::string &terminal)
{
    return access((terminal + "/device").c_str(), F_OK) == 0 && ReadLine(terminal + "/type") != "0";
}

// What the adapter calls itself stands one or two levels above the terminal.
std::string Describe(const std::string &device)
{
    if (TCP_IsAddress(device))
        return TCP_PORT_DESCRIPTION;
    const std::string name = device.substr(device.find_last_of('/') + 1);
    for (const char *place : {"/device/../product", "/device/../../product"}) {
        const std::string text = ReadLine(TERMINALS + name + place);
        if (!text.empty())
            return text;
    }
    return "";
}

std::vector<std::string> Devices()
{
    std::vector<std::string> devices;
    DIR *folder = opendir(TERMINALS);
    if (folder == nullptr)
        return devices;
    while (const dirent *entry = readdir(folder))
        if (entry->d_name[0] != '.' && IsHardware(std::string(TERMINALS) + entry->d_name))
            devices.push_back(std::string("/dev/") + entry->d_name);
    closedir(folder);
    std::sort(devices.begin(), devices.end());
    return devices;
}

std::string LinkPath(int number)
{
    return PLT_ConfigDir() + "/ports/COM" + std::to_string(number);
}

// By the user, not by the order of the system's own ports.
bool IsGiven(int number)
{
    struct stat status;
    const char *device = std::getenv(("VIREO2_COM" + std::to_string(number)).c_str());
    return (device != nullptr && *device != '\0') || !TCP_GetPortAddress(number).empty() ||
           lstat(LinkPath(number).c_str(), &status) == 0;
}

// The number that leads to a device (a real path); 0 when none does.
int FindNumber(const std::string &real)
{
    for (int number = 1; number <= SER_NUMBER_MAX; number++)
        if (RealPath(SER_DevicePath(number)) == real)
            return number;
    return 0;
}

// A number that leads nowhere.
bool IsFree(int number)
{
    const std::string device = SER_DevicePath(number);
    const std::string name = device.substr(device.find_last_of('/') + 1);
    return !IsGiven(number) && !IsHardware(TERMINALS + name);
}

// The first one from `first` on; 0 when all are used.
int FindFree(int first)
{
    for (int number = first; number <= SER_NUMBER_MAX; number++)
        if (IsFree(number))
            return number;
    return 0;
}

SER_PortEntry MakePort(int number, const std::string &device)
{
    SER_PortEntry port;
    port.number = number;
    port.device = device;
    port.description = Describe(device);
    return port;
}

// In one step: a link that is there already leads somewhere all the time. A device need not be
// plugged in for that.
bool WriteLink(int number, const std::string &device)
{
    const std::string link = LinkPath(number), fresh = link + ".new";
    if (PLT_ConfigDir().empty() || PLT_MakeDirs(PLT_ConfigDir() + "/ports") != 0)
        return false;
    (void)unlink(fresh.c_str());
    return symlink(device.c_str(), fresh.c_str()) == 0 && rename(fresh.c_str(), link.c_str()) == 0;
}

} // namespace

std::vector<SER_PortEntry> SER_ListPorts()
{
    std::vector<SER_PortEntry> ports;
    std::vector<std::string> known;
    // What the user has given a number comes first, under that number.
    for (int number = 1; number <= SER_NUMBER_MAX; number++) {
        const std::string path = IsGiven(number) ? SER_DevicePath(number) : "";
        const std::string real = TCP_IsAddress(path) ? path : RealPath(path);
        if (real.empty())
            continue;
        ports.push_back(MakePort(number, real));
        known.push_back(real);
    }
    // Then the devices that nobody has named, with a system number or the next free one. That is
    // only an offer: the number is theirs once somebody chooses them.
    int nextFree = FindFree(1);
    for (const std::string &device : Devices()) {
        const std::string real = RealPath(device);
        if (real.empty() || std::find(known.begin(), known.end(), real) != known.end())
            continue;
        const int number = FindNumber(real);
        ports.push_back(MakePort(number != 0 ? number : nextFree, device));
        if (number == 0 && nextFree != 0)
            nextFree = FindFree(nextFree + 1);
    }
    std::sort(ports.begin(), ports.end(),
              [](const SER_PortEntry &a, const SER_PortEntry &b) { return a.number < b.number; });
    return ports;
}

int SER_PortUse(const std::string &device, int *number)
{
    if (TCP_IsAddress(device))
        return TCP_UsePort(device, IsFree, number);
    const std::string real = RealPath(device);
    if (real.empty())
        return SER_PORT_ERR_MISSING;
    *number = FindNumber(real);
    if (*number != 0)
        return 0;
    const int wanted = FindFree(1);
    // The path as given may be a name that stays with the adapter (by-id); keep it.
    if (wanted == 0 || !WriteLink(wanted, device[0] == '/' ? device : real))
        return SER_PORT_ERR_WRITE;
    *number = wanted;
    return 0;
}

int SER_AssignPort(const std::string &device, int number)
{
    return WriteLink(number, device) ? 0 : SER_PORT_ERR_WRITE;
}

bool SER_CanAssignPort()
{
    return !PLT_ConfigDir().empty();
}
