// The bytes' way to the program: a pseudo terminal, or one TCP connection at a time on a port
// that is listened at. One file for each operating system; the clock of the line and its
// pacing stand above, in line.cpp. Used by the target's thread only, except SIM_WakeWire.
#ifndef SIM_WIRE_H
#define SIM_WIRE_H

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>

struct SIM_Wire; // owns its descriptors

// Null with a message in *error. *device: what the program opens.
SIM_Wire *SIM_OpenPty(const std::string &link, std::string *device, std::string *error);
// `address` is "port" or "host:port"; without a host only this machine's programs reach it.
// Port 0: any free one.
SIM_Wire *SIM_OpenTcp(const std::string &address, std::string *device, std::string *error);
void SIM_CloseWire(SIM_Wire *wire);
void SIM_WakeWire(SIM_Wire *wire); // ends every wait, now and from now on. Any thread.

// Characters that are there, waiting for them if so wanted. Returns their number, 0 when there
// were none after all, -1 when woken.
int SIM_ReadWire(SIM_Wire *wire, uint8_t *bytes, size_t capacity, bool isWaiting);
// What the program does not take is lost, as on a wire.
void SIM_WriteWire(SIM_Wire *wire, const uint8_t *bytes, size_t count);
// False when woken before that time.
bool SIM_WaitWire(SIM_Wire *wire, int64_t timeNs);
int64_t SIM_NowNs(); // of a steady clock
void SIM_GetUtc(time_t when, struct tm *date);

// The program's end: begin before any thread is started, wait on the first one.
void SIM_PrepareEnding();
void SIM_WaitForEnding(); // until the user, the system or SIM_EndProgram wants it
void SIM_EndProgram();    // any thread
// What stands in standard input, waited for; 0 = its end. Any thread.
size_t SIM_ReadInput(char *bytes, size_t capacity);

#endif
