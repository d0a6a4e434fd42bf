// Sockets that never block: a call that would wait answers 0 here, and the waiting is
// TCP_WaitForSocket's.
#include "platform/tcp_socket.h"

#include "platform/deadline.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// A network that cannot be reached is to a user what a silent host is.
SER_Why WhyNotConnected(int error)
{
    switch (error) {
    case 0:
        return SER_WHY_NONE;
    case ECONNREFUSED:
        return SER_WHY_REFUSED;
    case ETIMEDOUT:
    case EHOSTUNREACH:
    case ENETUNREACH:
        return SER_WHY_SILENT;
    case EACCES:
    case EPERM:
        return SER_WHY_ACCESS;
    default:
        return SER_WHY_OTHER;
    }
}

// Nothing is wrong with the connection: there is only nothing to do at the moment.
bool IsPassing(int error)
{
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

} // namespace

std::vector<TCP_SocketAddress> TCP_ResolveHost(const std::string &host, const std::string &port)
{
    std::vector<TCP_SocketAddress> addresses;
    addrinfo hints;
    std::memset(&hints, 0, sizeof hints);
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *list = nullptr;
    if (getaddrinfo(host.c_str(), port.c_str(), &hints, &list) != 0)
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
    const int fd = socket(address.family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return TCP_NO_SOCKET;
    // Requests are short and wait for their answer: none is held back to be sent with the next.
    // Keeping alive shows a dead network after a while.
    const int on = 1;
    (void)setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    (void)setsockopt(fd, SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
    // A refusal that comes at once is told by TCP_GetConnectResult, like one that comes later.
    const auto *name = reinterpret_cast<const sockaddr *>(address.bytes.data());
    if (connect(fd, name, static_cast<socklen_t>(address.bytes.size())) != 0 &&
        errno != EINPROGRESS && errno != ECONNREFUSED) {
        close(fd);
        return TCP_NO_SOCKET;
    }
    return fd;
}

SER_Why TCP_GetConnectResult(TCP_Socket handle)
{
    int error = 0;
    socklen_t size = sizeof error;
    // Asking clears it: the reason is told once.
    if (getsockopt(static_cast<int>(handle), SOL_SOCKET, SO_ERROR, &error, &size) != 0)
        return SER_WHY_OTHER;
    return WhyNotConnected(error);
}

int TCP_WaitForSocket(TCP_Socket handle, bool isToWrite, unsigned waitMs)
{
    const uint64_t deadline = PLT_DeadlineUs(waitMs);
    pollfd item = {static_cast<int>(handle), static_cast<short>(isToWrite ? POLLOUT : POLLIN), 0};
    int result = 0;
    // A signal does not end the wait, or half an answer would pass for a time-out.
    do
        result = poll(&item, 1, PLT_LeftMs(deadline));
    while (result < 0 && errno == EINTR);
    if (result > 0)
        return (item.revents & POLLNVAL) != 0 ? -1 : 1;
    return result;
}

int TCP_Receive(TCP_Socket handle, void *buffer, size_t capacity)
{
    const ssize_t got = recv(static_cast<int>(handle), buffer, capacity, 0);
    if (got > 0)
        return static_cast<int>(got);
    // No bytes and no error: the other side has closed.
    return got < 0 && IsPassing(errno) ? 0 : -1;
}

int TCP_Send(TCP_Socket handle, const void *bytes, size_t count)
{
    // Without the flag a connection that has gone would end the program by a signal.
    const ssize_t sent = send(static_cast<int>(handle), bytes, count, MSG_NOSIGNAL);
    if (sent >= 0)
        return static_cast<int>(sent);
    return IsPassing(errno) ? 0 : -1;
}

int TCP_CountWaiting(TCP_Socket handle)
{
    int waiting = 0;
    if (ioctl(static_cast<int>(handle), FIONREAD, &waiting) != 0)
        return -1;
    if (waiting > 0)
        return waiting;
    // Nothing to read is either silence or the end.
    char byte = 0;
    const ssize_t got = recv(static_cast<int>(handle), &byte, 1, MSG_PEEK);
    if (got > 0)
        return 1;
    return got < 0 && IsPassing(errno) ? 0 : -1;
}

void TCP_CloseSocket(TCP_Socket handle)
{
    close(static_cast<int>(handle));
}
