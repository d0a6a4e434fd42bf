// The flash loader on a wire to a simulated one, in place of the serial port while it lives.
#ifndef TESTS_SUPPORT_LOADER_RIG_H
#define TESTS_SUPPORT_LOADER_RIG_H

#include "comm/mr166_link.h"
#include "loader/l3_protocol.h"
#include "sim/loader_wire.h"

struct LoaderRig : SIM_LoaderWire {
    unsigned readMs = 0;
    static inline LoaderRig *rig = nullptr; // the one in use

    explicit LoaderRig(uint32_t seed = 1)
    {
        static const LD167U_Port PORT = {
            [](const void *bytes, size_t count) { return SIM_WriteCable(rig, bytes, count); },
            [](void *buffer, size_t count) { return SIM_ReadCable(rig, buffer, count); },
            [] { return SIM_DropCable(rig), 0; },
            [](unsigned ms, unsigned) { return rig->readMs = ms, 0; }};
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
};

#endif
