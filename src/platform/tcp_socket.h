// The few calls on sockets that differ from one operating system to the other; two files
// implement them. Sockets never block: who wants to wait says how long.
#ifndef PLATFORM_TCP_SOCKET_H
#define PLATFORM_TCP_SOCKET_H

#include "platform/serial.h"

#include <vector>

typedef intptr_t SCK_Handle;
constexpr SCK_Handle SCK_INVALID = -1;

struct SCK_Address {
    int family = 0;
    std::vector<uint8_t> bytes; // the system's own form
};

// Addresses of a host, by asking the network if need be (which may take long). Any thread.
std::vector<SCK_Address> SCK_Resolve(const std::string &host, const std::string &port);
// Begins to connect; SCK_INVALID when that fails at once.
SCK_Handle SCK_Connect(const SCK_Address &address);
// Once it is writable: SER_WHY_NONE when it is connected, else why not.
SER_Why SCK_GetConnectResult(SCK_Handle handle);
// 1 ready (or broken, which the next call finds out), 0 the time is over, -1 error.
int SCK_Wait(SCK_Handle handle, bool isToWrite, unsigned waitMs);
int SCK_Receive(SCK_Handle handle, void *buffer, size_t capacity); // bytes, 0 none yet, -1 gone
int SCK_Send(SCK_Handle handle, const void *bytes, size_t count);  // bytes, 0 no room, -1 gone
int SCK_Waiting(SCK_Handle handle);                                // bytes to be received, -1 gone
void SCK_Close(SCK_Handle handle);

#endif
