// The few calls on sockets that differ from one operating system to the other; two files
// implement them. Sockets never block: who wants to wait says how long.
#ifndef PLATFORM_TCP_SOCKET_H
#define PLATFORM_TCP_SOCKET_H

#include "platform/serial.h"

#include <vector>

typedef intptr_t TCP_Socket;
constexpr TCP_Socket TCP_NO_SOCKET = -1;

struct TCP_SocketAddress {
    int family = 0;
    std::vector<uint8_t> bytes; // the system's own form
};

// Addresses of a host, by asking the network if need be (which may take long). Any thread.
std::vector<TCP_SocketAddress> TCP_ResolveHost(const std::string &host, const std::string &port);
// Begins to connect; TCP_NO_SOCKET when that fails at once.
TCP_Socket TCP_ConnectSocket(const TCP_SocketAddress &address);
// Once it is writable: SER_WHY_NONE when it is connected, else why not.
SER_Why TCP_GetConnectResult(TCP_Socket handle);
// 1 ready (or broken, which the next call finds out), 0 the time is over, -1 error.
int TCP_WaitForSocket(TCP_Socket handle, bool isToWrite, unsigned waitMs);
int TCP_Receive(TCP_Socket handle, void *buffer, size_t capacity); // bytes, 0 none yet, -1 gone
int TCP_Send(TCP_Socket handle, const void *bytes, size_t count);  // bytes, 0 no room, -1 gone
int TCP_CountWaiting(TCP_Socket handle);                           // bytes to be received, -1 gone
void TCP_CloseSocket(TCP_Socket handle);

#endif
