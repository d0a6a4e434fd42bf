// Sockets that never block: a call that would wait answers 0 here, and the waiting is
// TCP_WaitForSocket's.
#include "platform/tcp_socket.h"

#include <winsock2.h>

#include <ws2tcpip.h>

#include <climits>
#include <cstring>

namespace {

// The library is told once that somebody uses it; the system forgets that at the end.
bool StartLibrary()
{
    static const bool isStarted = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(2, 2), &data) == 0;
    }();
    return isStarted;
}

SOCKET ToSocket(TCP_Socket handle)
{
    return static_cast<SOCKET>(handle);
}

// A network that cannot be reached is to a user what a silent host is.
SER_Why WhyNotConnected(int error)
{
    switch (error) {
    case 0:
        return SER_WHY_NONE;
    case WSAECONNREFUSED:
        return SER_WHY_REFUSED;
    case WSAETIMEDOUT:
    case WSAEHOSTUNREACH:
    case WSAENETUNREACH:
        return SER_WHY_SILENT;
    case WSAEACCES:
        return SER_WHY_ACCESS;
    default:
        return SER_WHY_OTHER;
    }
}

// The calls count in ints; what does not fit is left to the next call.
int Limited(size_t count)
{
    return count > INT_MAX ? INT_MAX : static_cast<int>(count);
}

} // namespace

std::vector<TCP_SocketAddress> TCP_ResolveHost(const std::string &host, const std::string &port)
{
    std::vector<TCP_SocketAddress> addresses;
    addrinfo hints;
    std::memset(&hints, 0, sizeof hints);
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *list = nullptr;
    if (!StartLibrary() || getaddrinfo(host.c_str(), port.c_str(), &hints, &list) != 0)
        return addresses;
    // In the system's order of preference.
    for (const addrinfo *item = list; item != nullptr; item = item->ai_next) {
        const auto *bytes = reinterpret_cast<const uint8_t *>(item->ai_addr);
        addresses.push_back({item->ai_family, {bytes, bytes + item->ai_addrlen}});
    }
    freeaddrinfo(list);
    return addresses;
}

TCP_Socket TCP_ConnectSocket(const TCP_SocketAddress &address)
{
    if (!StartLibrary())
        return TCP_NO_SOCKET;
    const SOCKET handle = socket(address.family, SOCK_STREAM, IPPROTO_TCP);
    if (handle == INVALID_SOCKET)
        return TCP_NO_SOCKET;
    u_long isNonBlocking = 1; // before connecting, which would wait otherwise
    // Requests are short and wait for their answer: none is held back to be sent with the next.
    // Keeping alive shows a dead network after a while.
    const BOOL on = TRUE;
    const auto *value = reinterpret_cast<const char *>(&on);
    (void)setsockopt(handle, IPPROTO_TCP, TCP_NODELAY, value, sizeof on);
    (void)setsockopt(handle, SOL_SOCKET, SO_KEEPALIVE, value, sizeof on);
    const auto *name = reinterpret_cast<const sockaddr *>(address.bytes.data());
    if (ioctlsocket(handle, static_cast<long>(FIONBIO), &isNonBlocking) != 0 ||
        (connect(handle, name, static_cast<int>(address.bytes.size())) != 0 &&
         WSAGetLastError() != WSAEWOULDBLOCK)) {
        closesocket(handle);
        return TCP_NO_SOCKET;
    }
    return static_cast<TCP_Socket>(handle);
}

SER_Why TCP_GetConnectResult(TCP_Socket handle)
{
    int error = 0, size = sizeof error;
    // Asking clears it: the reason is told once.
    if (getsockopt(ToSocket(handle), SOL_SOCKET, SO_ERROR, reinterpret_cast<char *>(&error),
                   &size) != 0)
        return SER_WHY_OTHER;
    return WhyNotConnected(error);
}

int TCP_WaitForSocket(TCP_Socket handle, bool isToWrite, unsigned waitMs)
{
    // A connection that fails is told apart as an exception here, and nowhere else.
    fd_set wanted, failed;
    FD_ZERO(&wanted);
    FD_ZERO(&failed);
    FD_SET(ToSocket(handle), &wanted);
    FD_SET(ToSocket(handle), &failed);
    timeval wait;
    wait.tv_sec = static_cast<long>(waitMs / 1000);
    wait.tv_usec = static_cast<long>(waitMs % 1000 * 1000);
    const int result =
        select(0, isToWrite ? nullptr : &wanted, isToWrite ? &wanted : nullptr, &failed, &wait);
    return result > 0 ? 1 : result;
}

int TCP_Receive(TCP_Socket handle, void *buffer, size_t capacity)
{
    const int got = recv(ToSocket(handle), static_cast<char *>(buffer), Limited(capacity), 0);
    if (got > 0)
        return got;
    // No bytes and no error: the other side has closed.
    return got < 0 && WSAGetLastError() == WSAEWOULDBLOCK ? 0 : -1;
}

int TCP_Send(TCP_Socket handle, const void *bytes, size_t count)
{
    const int sent = send(ToSocket(handle), static_cast<const char *>(bytes), Limited(count), 0);
    if (sent >= 0)
        return sent;
    return WSAGetLastError() == WSAEWOULDBLOCK ? 0 : -1;
}

int TCP_CountWaiting(TCP_Socket handle)
{
    u_long waiting = 0;
    if (ioctlsocket(ToSocket(handle), FIONREAD, &waiting) != 0)
        return -1;
    if (waiting > 0)
        return Limited(waiting);
    // Nothing to read is either silence or the end.
    char mark = 0;
    const int got = recv(ToSocket(handle), &mark, 1, MSG_PEEK);
    if (got > 0)
        return 1;
    return got < 0 && WSAGetLastError() == WSAEWOULDBLOCK ? 0 : -1;
}

void TCP_CloseSocket(TCP_Socket handle)
{
    closesocket(ToSocket(handle));
}
