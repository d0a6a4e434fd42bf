// Ports by raw TCP on sockets that never block; every wait is bounded here.
#include "platform/tcp_port.h"

#include "platform/deadline.h"
#include "platform/tcp_socket.h"

#include <algorithm>
#include <condition_variable>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <thread>

namespace {

constexpr int PORTS_MAX = 16;
constexpr size_t DROP_CHUNK = 512, DROP_BYTES_MAX = 1u << 20;
constexpr long NUMBER_MAX = 65535; // of a TCP port
const char SCHEME[] = "tcp:";

struct Port {
    TCP_Socket socket = TCP_NO_SOCKET;
    unsigned readTotalMs = 0, writeTotalMs = 0;
};
Port ports[PORTS_MAX];
SER_Why lastReason = SER_WHY_OTHER;

// Handles lie below SER_INVALID, where no device's handle is: slot 0 is SER_INVALID - 1.
Port *FindPort(SER_Handle handle)
{
    const SER_Handle slot = SER_INVALID - 1 - handle;
    if (slot < 0 || slot >= PORTS_MAX || ports[slot].socket == TCP_NO_SOCKET)
        return nullptr;
    return &ports[slot];
}

// The system's resolver may take half a minute for a name when the network is down: it works
// on a thread of its own, and what it finds after our time goes nowhere.
struct Resolving {
    std::mutex lock;
    std::condition_variable done;
    bool isDone = false;
    std::vector<TCP_SocketAddress> addresses;
};

std::vector<TCP_SocketAddress> Resolve(const std::string &host, const std::string &port)
{
    const auto state = std::make_shared<Resolving>();
    std::thread([state, host, port] {
        std::vector<TCP_SocketAddress> found = TCP_ResolveHost(host, port);
        const std::lock_guard<std::mutex> guard(state->lock);
        state->addresses = std::move(found);
        state->isDone = true;
        state->done.notify_one();
    }).detach();
    std::unique_lock<std::mutex> guard(state->lock);
    state->done.wait_for(guard, std::chrono::milliseconds(TCP_CONNECT_MS),
                         [&] { return state->isDone; });
    return state->addresses; // none yet: as far as anybody can tell there is no such host
}

// A host has several addresses; all of them together get the time of one.
TCP_Socket Connect(const std::vector<TCP_SocketAddress> &addresses)
{
    const uint64_t deadline = PLT_DeadlineUs(TCP_CONNECT_MS);
    lastReason = addresses.empty() ? SER_WHY_HOST : SER_WHY_SILENT;
    for (const TCP_SocketAddress &address : addresses) {
        const TCP_Socket socket = TCP_ConnectSocket(address);
        if (socket == TCP_NO_SOCKET)
            continue;
        if (TCP_WaitForSocket(socket, true, static_cast<unsigned>(PLT_LeftMs(deadline))) == 1) {
            const SER_Why why = TCP_GetConnectResult(socket);
            if (why == SER_WHY_NONE)
                return socket;
            lastReason = why; // of several addresses the last one's is told
        }
        TCP_CloseSocket(socket);
    }
    return TCP_NO_SOCKET;
}

} // namespace

bool TCP_ParseAddress(const std::string &text, std::string *host, std::string *port)
{
    // The last colon parts host and port; an address of IPv6 has its own in brackets.
    const size_t scheme = sizeof SCHEME - 1;
    const size_t colon = text.rfind(':');
    if (text.compare(0, scheme, SCHEME) != 0 || colon == std::string::npos || colon <= scheme)
        return false;
    *host = text.substr(scheme, colon - scheme);
    *port = text.substr(colon + 1);
    if (host->size() > 2 && host->front() == '[' && host->back() == ']')
        *host = host->substr(1, host->size() - 2);
    else if (host->find(':') != std::string::npos)
        return false;
    const bool isNumber = !port->empty() && port->size() <= 5 &&
                          port->find_first_not_of("0123456789") == std::string::npos;
    const long number = isNumber ? std::strtol(port->c_str(), nullptr, 10) : 0;
    // What looks like a path, or like half of an address in brackets, is no host.
    return number >= 1 && number <= NUMBER_MAX &&
           host->find_first_of(" \t/\\[]") == std::string::npos;
}

bool TCP_IsAddress(const std::string &text)
{
    std::string host, port;
    return TCP_ParseAddress(text, &host, &port);
}

int TCP_Open(const std::string &address, SER_Handle *handle)
{
    *handle = SER_INVALID;
    lastReason = SER_WHY_OTHER;
    int slot = 0;
    while (slot < PORTS_MAX && ports[slot].socket != TCP_NO_SOCKET)
        ++slot;
    std::string host, port;
    if (slot == PORTS_MAX || !TCP_ParseAddress(address, &host, &port))
        return SER_ERR_OPEN;
    // At most twice TCP_CONNECT_MS: once for the name, once for the host.
    const TCP_Socket socket = Connect(Resolve(host, port));
    if (socket == TCP_NO_SOCKET)
        return SER_ERR_OPEN;
    ports[slot] = Port();
    ports[slot].socket = socket;
    *handle = SER_INVALID - 1 - slot;
    return SER_OK;
}

SER_Why TCP_LastReason()
{
    return lastReason;
}

bool TCP_IsHandle(SER_Handle handle)
{
    return handle < SER_INVALID;
}

int TCP_SetTimeouts(SER_Handle handle, unsigned readTotalMs, unsigned writeTotalMs)
{
    Port *port = FindPort(handle);
    if (port == nullptr)
        return SER_ERR_IO;
    port->readTotalMs = readTotalMs;
    port->writeTotalMs = writeTotalMs;
    return SER_OK;
}

int TCP_Write(SER_Handle handle, const void *bytes, size_t count)
{
    const Port *port = FindPort(handle);
    if (port == nullptr)
        return SER_ERR_IO;
    // When the other end takes nothing, the write ends short at its time-out, as on a device.
    const uint64_t deadline = PLT_DeadlineUs(port->writeTotalMs);
    const char *data = static_cast<const char *>(bytes);
    size_t done = 0;
    while (done < count) {
        const int sent = TCP_Send(port->socket, data + done, count - done);
        if (sent < 0)
            return SER_ERR_IO;
        done += static_cast<size_t>(sent);
        const auto left = static_cast<unsigned>(PLT_LeftMs(deadline));
        if (sent == 0 && (left == 0 || TCP_WaitForSocket(port->socket, true, left) < 0))
            break;
    }
    return static_cast<int>(done);
}

int TCP_Read(SER_Handle handle, void *buffer, size_t count)
{
    const Port *port = FindPort(handle);
    if (port == nullptr)
        return SER_ERR_IO;
    const uint64_t deadline = PLT_DeadlineUs(port->readTotalMs);
    char *data = static_cast<char *>(buffer);
    size_t done = 0;
    while (done < count) {
        const int got = TCP_Receive(port->socket, data + done, count - done);
        // What came before the end is delivered first; the next call finds the end again.
        if (got < 0)
            return done > 0 ? static_cast<int>(done) : SER_ERR_IO;
        done += static_cast<size_t>(got);
        const auto left = static_cast<unsigned>(PLT_LeftMs(deadline));
        if (got == 0 && (left == 0 || TCP_WaitForSocket(port->socket, false, left) <= 0))
            break;
    }
    return static_cast<int>(done);
}

int TCP_ReadSome(SER_Handle handle, void *buffer, size_t capacity, unsigned waitMs)
{
    const Port *port = FindPort(handle);
    if (port == nullptr)
        return SER_ERR_IO;
    if (capacity == 0)
        return 0;
    // What has come already costs one call.
    int got = TCP_Receive(port->socket, buffer, capacity);
    if (got == 0 && waitMs > 0 && TCP_WaitForSocket(port->socket, false, waitMs) > 0)
        got = TCP_Receive(port->socket, buffer, capacity);
    return got < 0 ? SER_ERR_IO : got;
}

int TCP_BytesWaiting(SER_Handle handle)
{
    const Port *port = FindPort(handle);
    const int waiting = port != nullptr ? TCP_CountWaiting(port->socket) : -1;
    return waiting < 0 ? SER_ERR_IO : waiting;
}

// Bounded: the other end may send faster than we drop.
int TCP_DropInput(SER_Handle handle)
{
    const Port *port = FindPort(handle);
    if (port == nullptr)
        return SER_ERR_IO;
    char chunk[DROP_CHUNK];
    int got = 1;
    for (size_t dropped = 0; got > 0 && dropped < DROP_BYTES_MAX; dropped += sizeof chunk)
        got = TCP_Receive(port->socket, chunk, sizeof chunk);
    return got < 0 ? SER_ERR_IO : SER_OK;
}

void TCP_Close(SER_Handle handle)
{
    Port *port = FindPort(handle);
    if (port == nullptr)
        return;
    TCP_CloseSocket(port->socket);
    *port = Port();
}
