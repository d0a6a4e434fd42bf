// Windows has no pseudo terminal: the target is reached through TCP there.
#include "wire.h"

#include <winsock2.h>

#include <ws2tcpip.h>

#include <atomic>
#include <chrono>
#include <climits>
#include <cstring>
#include <thread>

struct SIM_Wire {
    SOCKET io = INVALID_SOCKET; // the connection
    SOCKET listening = INVALID_SOCKET;
    std::atomic<bool> isWoken{false};
};

namespace {

constexpr int BACKLOG = 4;
constexpr long SLICE_US = 5000;       // a wait looks up so often whether it was woken
constexpr int64_t SLICE_NS = 2000000; // the same for waits on the clock
constexpr int SEND_SLICES_MAX = 200;
const char LOOPBACK[] = "127.0.0.1";

HANDLE endingEvent = nullptr;

bool Fail(std::string *error, const std::string &what)
{
    *error = what + ": error " + std::to_string(WSAGetLastError());
    return false;
}

void CloseSocket(SOCKET *handle)
{
    if (*handle != INVALID_SOCKET)
        closesocket(*handle);
    *handle = INVALID_SOCKET;
}

void SetNonBlocking(SOCKET handle)
{
    u_long on = 1;
    ioctlsocket(handle, static_cast<long>(FIONBIO), &on);
}

bool ListenAt(SIM_Wire *wire, const addrinfo &place)
{
    const BOOL on = TRUE;
    wire->listening = socket(place.ai_family, SOCK_STREAM, IPPROTO_TCP);
    if (wire->listening == INVALID_SOCKET)
        return false;
    // Reusing an address means something else here: another program could take the port.
    setsockopt(wire->listening, SOL_SOCKET, SO_EXCLUSIVEADDRUSE,
               reinterpret_cast<const char *>(&on), sizeof on);
    if (bind(wire->listening, place.ai_addr, static_cast<int>(place.ai_addrlen)) == 0 &&
        listen(wire->listening, BACKLOG) == 0) {
        SetNonBlocking(wire->listening);
        return true;
    }
    CloseSocket(&wire->listening);
    return false;
}

std::string BoundPort(SOCKET handle)
{
    sockaddr_storage name;
    int size = sizeof name;
    char port[NI_MAXSERV] = "";
    auto *generic = reinterpret_cast<sockaddr *>(&name);
    if (getsockname(handle, generic, &size) == 0)
        getnameinfo(generic, size, nullptr, 0, port, sizeof port, NI_NUMERICSERV);
    return port;
}

bool OpenSocket(SIM_Wire *wire, const std::string &address, std::string *device, std::string *error)
{
    // The port is the last part, so that the host may be an address with colons.
    const size_t colon = address.rfind(':');
    std::string host = colon == std::string::npos ? LOOPBACK : address.substr(0, colon);
    const std::string port = colon == std::string::npos ? address : address.substr(colon + 1);
    if (host.size() > 2 && host.front() == '[' && host.back() == ']')
        host = host.substr(1, host.size() - 2);
    addrinfo hints;
    memset(&hints, 0, sizeof hints);
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_PASSIVE;
    addrinfo *list = nullptr;
    if (getaddrinfo(host.c_str(), port.c_str(), &hints, &list) != 0)
        return Fail(error, "Cannot listen at " + address);
    for (const addrinfo *item = list; item && wire->listening == INVALID_SOCKET;
         item = item->ai_next)
        ListenAt(wire, *item);
    freeaddrinfo(list);
    if (wire->listening == INVALID_SOCKET)
        return Fail(error, "Cannot listen at " + address);
    const bool isV6 = host.find(':') != std::string::npos;
    *device = "tcp:" + (isV6 ? "[" + host + "]" : host) + ":" + BoundPort(wire->listening);
    return true;
}

// One program at a time, as a port has one: who comes while another is there is turned away.
void AcceptProgram(SIM_Wire *wire)
{
    SOCKET fresh = accept(wire->listening, nullptr, nullptr);
    if (fresh == INVALID_SOCKET)
        return;
    if (wire->io != INVALID_SOCKET) {
        CloseSocket(&fresh);
        return;
    }
    const BOOL on = TRUE;
    SetNonBlocking(fresh);
    setsockopt(fresh, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char *>(&on), sizeof on);
    wire->io = fresh;
}

// Of the system's own thread: Ctrl-C, a closed window, the end of the session.
BOOL WINAPI HandleEnding(DWORD)
{
    SetEvent(endingEvent);
    return TRUE;
}

} // namespace

int64_t SIM_NowNs()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

void SIM_GetUtc(time_t when, struct tm *date)
{
    gmtime_s(date, &when);
}

SIM_Wire *SIM_OpenPty(const std::string &, std::string *, std::string *error)
{
    *error = "There are no pseudo terminals on this system: use --tcp [HOST:]PORT.";
    return nullptr;
}

SIM_Wire *SIM_OpenTcp(const std::string &address, std::string *device, std::string *error)
{
    WSADATA data;
    if (WSAStartup(MAKEWORD(2, 2), &data) != 0) {
        *error = "Cannot use the network";
        return nullptr;
    }
    auto *wire = new SIM_Wire;
    if (OpenSocket(wire, address, device, error))
        return wire;
    SIM_CloseWire(wire);
    return nullptr;
}

void SIM_CloseWire(SIM_Wire *wire)
{
    CloseSocket(&wire->io);
    CloseSocket(&wire->listening);
    delete wire;
}

void SIM_WakeWire(SIM_Wire *wire)
{
    wire->isWoken = true;
}

int SIM_ReadWire(SIM_Wire *wire, uint8_t *bytes, size_t capacity, bool isWaiting)
{
    // A select cannot be woken by a flag: it ends after a slice, and the caller comes again.
    if (wire->isWoken)
        return -1;
    fd_set set;
    FD_ZERO(&set);
    FD_SET(wire->listening, &set);
    if (wire->io != INVALID_SOCKET)
        FD_SET(wire->io, &set);
    timeval wait = {0, isWaiting ? SLICE_US : 0};
    if (select(0, &set, nullptr, nullptr, &wait) <= 0)
        return wire->isWoken ? -1 : 0;
    int count = 0;
    if (wire->io != INVALID_SOCKET && FD_ISSET(wire->io, &set)) {
        const int limit = capacity > INT_MAX ? INT_MAX : static_cast<int>(capacity);
        count = recv(wire->io, reinterpret_cast<char *>(bytes), limit, 0);
        // The program has closed its connection; the next one may come.
        if (count == 0 || (count < 0 && WSAGetLastError() != WSAEWOULDBLOCK))
            CloseSocket(&wire->io);
    }
    if (FD_ISSET(wire->listening, &set))
        AcceptProgram(wire);
    return count > 0 ? count : 0;
}

void SIM_WriteWire(SIM_Wire *wire, const uint8_t *bytes, size_t count)
{
    // What the program does not take within a second is lost, as on a wire.
    for (int slices = 0; count > 0 && wire->io != INVALID_SOCKET && slices < SEND_SLICES_MAX;) {
        const int done =
            send(wire->io, reinterpret_cast<const char *>(bytes), static_cast<int>(count), 0);
        if (done > 0) {
            bytes += done;
            count -= static_cast<size_t>(done);
        } else if (done < 0 && WSAGetLastError() == WSAEWOULDBLOCK && !wire->isWoken) {
            fd_set set;
            FD_ZERO(&set);
            FD_SET(wire->io, &set);
            timeval wait = {0, SLICE_US};
            select(0, nullptr, &set, nullptr, &wait);
            ++slices;
        } else {
            return;
        }
    }
}

bool SIM_WaitWire(SIM_Wire *wire, int64_t timeNs)
{
    while (!wire->isWoken) {
        const int64_t left = timeNs - SIM_NowNs();
        if (left <= 0)
            return true;
        std::this_thread::sleep_for(std::chrono::nanoseconds(left < SLICE_NS ? left : SLICE_NS));
    }
    return false;
}

void SIM_PrepareEnding()
{
    endingEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    SetConsoleCtrlHandler(HandleEnding, TRUE);
}

void SIM_WaitForEnding()
{
    WaitForSingleObject(endingEvent, INFINITE);
}

void SIM_EndProgram()
{
    SetEvent(endingEvent);
}

size_t SIM_ReadInput(char *bytes, size_t capacity)
{
    DWORD count = 0;
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    return ReadFile(input, bytes, static_cast<DWORD>(capacity), &count, nullptr) ? count : 0;
}
