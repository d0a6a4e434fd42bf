// Serial ports behind a network: raw TCP, as serial servers and the simulated target offer it.
// Baud rate and frame are the server's own affair. Only serial_ports.cpp calls the port functions,
// whose contract is that of serial.h; the addresses are for whoever names ports.
#ifndef PLATFORM_TCP_PORT_H
#define PLATFORM_TCP_PORT_H

#include "platform/serial.h"

// "tcp:host:port", "tcp:[::1]:port". False when the text is no such address.
bool TCP_ParseAddress(const std::string &text, std::string *host, std::string *port);
bool TCP_IsAddress(const std::string &text);

// Waits a bounded time (TCP_CONNECT_MS for the name and as much for the connection).
constexpr unsigned TCP_CONNECT_MS = 1500;
int TCP_Open(const std::string &address, SER_Handle *handle); // SER_OK or SER_ERR_OPEN
SER_Why TCP_LastReason();
bool TCP_IsHandle(SER_Handle handle); // handles of this file are below SER_INVALID
int TCP_SetTimeouts(SER_Handle handle, unsigned readTotalMs, unsigned writeTotalMs);
int TCP_Write(SER_Handle handle, const void *bytes, size_t count);
int TCP_Read(SER_Handle handle, void *buffer, size_t count);
int TCP_ReadSome(SER_Handle handle, void *buffer, size_t capacity, unsigned waitMs);
int TCP_BytesWaiting(SER_Handle handle); // SER_ERR_IO once the other end has closed
int TCP_DropInput(SER_Handle handle);
void TCP_Close(SER_Handle handle);

#endif
