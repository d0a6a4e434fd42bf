// The mr166 link with a simulated target on port 61.
#ifndef LINK_FIXTURE_H
#define LINK_FIXTURE_H

#include "comm/mr166_link.h"
#include "comm/trace.h"
#include "comm/ucm.h"
#include "support/program_state.h"

constexpr int LINK_PORT = 61, LINK_BAUD = 115200;

struct LinkTest : TargetTest {
    LinkTest() : TargetTest(LINK_PORT)
    {
        Mr166_nTimeoutMs = PATIENT_MS;
    }
    // The first exchange with a station proves that nothing older is on the line.
    static void prove(int station)
    {
        uint8_t byte = 0;
        ASSERT_EQ(Mr166_Read(station, 0, 1, &byte), 0);
    }
    // `count` bytes that differ from block to block, also put into station 1 at address 0.
    std::vector<uint8_t> fill(size_t count)
    {
        std::vector<uint8_t> bytes(count);
        uint32_t random = 7;
        for (uint8_t &byte : bytes) {
            random = random * 1664525u + 1013904223u;
            byte = static_cast<uint8_t>(random >> 24);
        }
        poke(0, bytes);
        return bytes;
    }
};

#endif
