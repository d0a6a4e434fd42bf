// A cable between a program and a simulated boot-strap loader in the same process, without
// thread and clock: hundreds of programmings take a second. A read that does not get all of
// its bytes stands for a time-out, and the cable can be pulled at any byte.
#ifndef SIM_LOADER_WIRE_H
#define SIM_LOADER_WIRE_H

#include "loader.h"

struct SIM_LoaderWire {
    SIM_Loader loader;
    std::vector<uint8_t> incoming; // sent by the loader and not read yet
    std::vector<uint8_t> sent;     // by the program, until somebody clears it
    long bytesLeft = -1;           // until the cable is pulled; -1 = never
    bool isScripted = false;       // the loader sleeps: `incoming` is all there will be
};

// Bytes moved, or -1 when the cable is pulled.
int SIM_WriteCable(SIM_LoaderWire *wire, const void *bytes, size_t count);
int SIM_ReadCable(SIM_LoaderWire *wire, void *buffer, size_t count);
void SIM_DropCable(SIM_LoaderWire *wire); // what was not read
// Plugged in again: what the loader had of a command is forgotten by then.
void SIM_ReplugCable(SIM_LoaderWire *wire);
// Answers as given, whatever is asked from now on.
void SIM_ScriptCable(SIM_LoaderWire *wire, const std::vector<uint8_t> &answers);

#endif
