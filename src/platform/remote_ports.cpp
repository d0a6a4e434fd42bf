// A number's address stands in a file of its own beside the links of devices, so that giving one
// away is one rename and never touches another. Lent numbers are kept in memory only.
#include "platform/remote_ports.h"

#include "platform/port_list.h"
#include "platform/safe_file.h"
#include "platform/serial.h"
#include "platform/system.h"
#include "platform/tcp_port.h"

#include <cstdio>
#include <cstdlib>
#include <map>

namespace {

constexpr int LENT_MAX = 98;        // every driver opens it
constexpr size_t ADDRESS_MAX = 300; // characters: a host name has at most 253

std::map<int, std::string> lent; // by number

std::string Folder()
{
    return PLT_ConfigDir() + PLT_PathSeparator() + "ports";
}

std::string FilePath(int port)
{
    return Folder() + PLT_PathSeparator() + "COM" + std::to_string(port) + ".tcp";
}

} // namespace

std::string TCP_GetPortAddress(int port)
{
    const auto found = lent.find(port);
    if (found != lent.end())
        return found->second;
    std::FILE *file = PLT_OpenFile(FilePath(port), "rb");
    if (file == nullptr)
        return "";
    char buffer[ADDRESS_MAX + 1] = "";
    const size_t length = std::fread(buffer, 1, ADDRESS_MAX, file);
    std::fclose(file);
    // The user may have written it by hand: what is no address is no port.
    const std::string text(buffer, length);
    const std::string address = text.substr(0, text.find_first_of("\r\n"));
    return TCP_IsAddress(address) ? address : "";
}

int TCP_SetPortAddress(int port, const std::string &address)
{
    // Taken away, or there was none; a number lent is no file and stays as it is.
    if (address.empty()) {
        (void)std::remove(FilePath(port).c_str());
        return TCP_GetPortAddress(port).empty() ? 0 : -1;
    }
    SafeFile file;
    if (PLT_ConfigDir().empty() || PLT_MakeDirs(Folder()) != 0 ||
        PLT_BeginSave(&file, FilePath(port), "wb") != 0)
        return -1;
    PLT_SaveText(file.file, address + "\n");
    return PLT_CommitSave(&file);
}

int TCP_UsePort(const std::string &address, bool (*isFree)(int port), int *number)
{
    int firstFree = 0;
    for (int port = 1; port <= SER_NUMBER_MAX; ++port) {
        if (SER_DevicePath(port) == address) {
            *number = port;
            return 0;
        }
        if (firstFree == 0 && TCP_GetPortAddress(port).empty() && isFree(port))
            firstFree = port;
    }
    if (firstFree == 0 || TCP_SetPortAddress(firstFree, address) != 0)
        return SER_PORT_ERR_WRITE;
    *number = firstFree;
    return 0;
}

int TCP_LendPort(const std::string &address)
{
    // From above, away from the numbers that systems give to their own ports.
    for (int port = LENT_MAX; port >= 1; --port) {
        const char *given = std::getenv(("VIREO2_COM" + std::to_string(port)).c_str());
        if ((given != nullptr && *given != '\0') || !TCP_GetPortAddress(port).empty())
            continue;
        lent[port] = address;
        return port;
    }
    return 0;
}

void TCP_TakePortBack(int port)
{
    lent.erase(port);
}
