// The flash loader wired straight to a simulated one: no port, no thread and no clock, so
// that hundreds of programmings and every kind of fault fit in a test. A read that does not
// get all of its bytes stands for a time-out.
#ifndef TESTS_SUPPORT_LOADER_RIG_H
#define TESTS_SUPPORT_LOADER_RIG_H

#include "comm/mr166_link.h"
#include "loader/l3_protocol.h"
#include "sim/loader.h"

#include <algorithm>
#include <cstdint>
#include <vector>

struct LoaderWire {
    SIM_Loader loader;
    std::vector<uint8_t> incoming;            // sent by the target and not read yet
    std::vector<uint8_t> sent;                // by the program, since the test cleared it
    std::vector<uint8_t> *scripted = nullptr; // answers in place of the simulated loader's
    long bytesLeft = -1;                      // until the cable is pulled; -1 = never
    unsigned readMs = 0, writeMs = 0;
};
inline LoaderWire *loaderWire = nullptr;

// Bytes of `count` that still pass the cable.
inline size_t PassBytes(size_t count)
{
    if (loaderWire->bytesLeft < 0)
        return count;
    const size_t passed = std::min(count, static_cast<size_t>(loaderWire->bytesLeft));
    loaderWire->bytesLeft -= static_cast<long>(passed);
    return passed;
}

inline int WireWrite(const void *bytes, size_t count)
{
    const auto *byte = static_cast<const uint8_t *>(bytes);
    const size_t passed = PassBytes(count);
    for (size_t i = 0; i < passed; ++i) {
        loaderWire->sent.push_back(byte[i]);
        if (loaderWire->scripted == nullptr)
            SIM_FeedLoader(&loaderWire->loader, byte[i], &loaderWire->incoming);
    }
    return passed == 0 && count > 0 ? -1 : static_cast<int>(passed);
}

inline int WireRead(void *buffer, size_t count)
{
    std::vector<uint8_t> &from =
        loaderWire->scripted != nullptr ? *loaderWire->scripted : loaderWire->incoming;
    const size_t passed = PassBytes(std::min(count, from.size()));
    std::copy_n(from.begin(), passed, static_cast<uint8_t *>(buffer));
    from.erase(from.begin(), from.begin() + static_cast<long>(passed));
    if (passed < count)
        SIM_LoaderQuiet(&loaderWire->loader);
    return loaderWire->bytesLeft == 0 && passed == 0 ? -1 : static_cast<int>(passed);
}

inline int WireDrop()
{
    loaderWire->incoming.clear();
    return 0;
}

inline int WireTimeouts(unsigned readMs, unsigned writeMs)
{
    loaderWire->readMs = readMs;
    loaderWire->writeMs = writeMs;
    return 0;
}

// Puts the wire in place of the serial port while it lives.
struct LoaderRig {
    LoaderWire wire;
    const LD167U_Port port = {WireWrite, WireRead, WireDrop, WireTimeouts};
    const uint16_t openFlag = wMrOpenFlag;

    explicit LoaderRig(uint32_t seed = 1)
    {
        SIM_InitLoader(&wire.loader, seed);
        loaderWire = &wire;
        LD167U_pPort = &port;
        wMrOpenFlag = 1;
    }
    ~LoaderRig()
    {
        LD167U_pPort = &LD167U_SerialPort;
        wMrOpenFlag = openFlag;
        loaderWire = nullptr;
    }
    LoaderRig(const LoaderRig &) = delete;
    LoaderRig &operator=(const LoaderRig &) = delete;
    // Plugged in again: what the target had of a command is forgotten by then.
    void Replug()
    {
        wire.bytesLeft = -1;
        wire.incoming.clear();
        SIM_LoaderQuiet(&wire.loader);
    }
};

#endif
