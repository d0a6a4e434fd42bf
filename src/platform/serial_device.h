// Serial ports of this machine, as one file for each operating system implements them. Only
// serial_ports.cpp calls these; everybody else goes through serial.h, whose contract they share.
#ifndef PLATFORM_SERIAL_DEVICE_H
#define PLATFORM_SERIAL_DEVICE_H

#include "platform/serial.h"

SER_Why DEV_LastReason();
std::string DEV_DevicePath(int port); // where a number leads that nobody gave away
// Handles are never below SER_INVALID.
int DEV_Open(const std::string &path, SER_Handle *handle);
int DEV_Configure(SER_Handle handle, const SER_Settings &settings);
int DEV_SetTimeouts(SER_Handle handle, unsigned readTotalMs, unsigned writeTotalMs);
int DEV_Write(SER_Handle handle, const void *bytes, size_t count);
int DEV_Read(SER_Handle handle, void *buffer, size_t count);
int DEV_ReadSome(SER_Handle handle, void *buffer, size_t capacity, unsigned waitMs);
int DEV_BytesWaiting(SER_Handle handle);
int DEV_DropInput(SER_Handle handle);
int DEV_DropOutput(SER_Handle handle);
int DEV_FlushOutput(SER_Handle handle);
void DEV_Close(SER_Handle handle);

#endif
