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

struct LoaderRig {
    SIM_Loader loader;
    std::vector<uint8_t> incoming; // sent by the target and not read yet
    std::vector<uint8_t> sent;     // by the program, until the test clears it
    bool isScripted = false;       // the test fills `incoming`, the simulated loader sleeps
    long bytesLeft = -1;           // until the cable is pulled; -1 = never
    unsigned readMs = 0;
    static inline LoaderRig *rig = nullptr; // the one in use

    // Stands in place of the serial port while it lives.
    explicit LoaderRig(uint32_t seed = 1)
    {
        static const LD167U_Port PORT = {Write, Read, Drop, SetTimeouts};
        SIM_InitLoader(&loader, seed);
        rig = this;
        LD167U_pPort = &PORT;
        wMrOpenFlag = 1;
    }
    ~LoaderRig()
    {
        LD167U_pPort = &LD167U_SerialPort;
        wMrOpenFlag = 0;
    }
    LoaderRig(const LoaderRig &) = delete;
    LoaderRig &operator=(const LoaderRig &) = delete;

    // Answers as given, whatever is asked.
    void Script(const std::vector<uint8_t> &bytes)
    {
        isScripted = true;
        incoming = bytes;
        sent.clear();
    }
    // Plugged in again: what the target had of a command is forgotten by then.
    void Replug()
    {
        bytesLeft = -1;
        incoming.clear();
        SIM_LoaderQuiet(&loader);
    }
    // Bytes of `count` that still pass the cable.
    size_t Pass(size_t count)
    {
        const size_t passed =
            bytesLeft < 0 ? count : std::min(count, static_cast<size_t>(bytesLeft));
        bytesLeft -= bytesLeft < 0 ? 0 : static_cast<long>(passed);
        return passed;
    }
    static int Write(const void *bytes, size_t count)
    {
        const auto *byte = static_cast<const uint8_t *>(bytes);
        const size_t passed = rig->Pass(count);
        rig->sent.insert(rig->sent.end(), byte, byte + passed);
        for (size_t i = 0; i < passed && !rig->isScripted; ++i)
            SIM_FeedLoader(&rig->loader, byte[i], &rig->incoming);
        return passed == 0 && count > 0 ? -1 : static_cast<int>(passed);
    }
    static int Read(void *buffer, size_t count)
    {
        std::vector<uint8_t> &from = rig->incoming;
        const size_t passed = rig->Pass(std::min(count, from.size()));
        std::copy_n(from.begin(), passed, static_cast<uint8_t *>(buffer));
        from.erase(from.begin(), from.begin() + static_cast<long>(passed));
        if (passed < count)
            SIM_LoaderQuiet(&rig->loader);
        return rig->bytesLeft == 0 && passed == 0 ? -1 : static_cast<int>(passed);
    }
    static int Drop()
    {
        if (!rig->isScripted)
            rig->incoming.clear();
        return 0;
    }
    static int SetTimeouts(unsigned readMs, unsigned)
    {
        rig->readMs = readMs;
        return 0;
    }
};

#endif
