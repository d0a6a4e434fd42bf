// A simulated target on port 61 and the link's settings put back after each test.
#ifndef LINK_FIXTURE_H
#define LINK_FIXTURE_H

#include "comm/mr166_link.h"
#include "comm/trace.h"
#include "comm/ucm.h"
#include "sim_fixture.h"

#include <gtest/gtest.h>

#include <vector>

constexpr int LINK_PORT = 61, LINK_BAUD = 115200;
constexpr uint32_t PATIENT_MS = 5000; // never reached by a target that answers
constexpr uint32_t HASTY_MS = 30;     // for targets that do not

struct LinkTest : testing::Test {
    SIM_Target *target = nullptr;
    SIM_Options options;

    LinkTest()
    {
        options.demo = false;
        UCM_Init();
        Mr166_nTimeoutMs = PATIENT_MS;
        MrASC_UseWin32(1);
    }
    ~LinkTest() override
    {
        UCM_Close();
        MrASC_Close();
        UCM_Init();
        TRC_SetSink(nullptr, nullptr);
        TRC_Enable(0);
        Mr166_nTimeoutMs = 400;
        Mr166_CnBlkRpt = 3;
        unplug();
    }
    void plug()
    {
        target = SIMT_Start(LINK_PORT, options);
        ASSERT_NE(target, nullptr);
    }
    void unplug()
    {
        if (target != nullptr)
            SIMT_Stop(LINK_PORT, target);
        target = nullptr;
    }
    // The first exchange with a station proves that nothing older is on the line.
    static void prove(int station)
    {
        uint8_t byte = 0;
        ASSERT_EQ(Mr166_Read(station, 0, 1, &byte), 0);
    }
    uint64_t requests() const
    {
        return SIM_GetCounters(target).requests;
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
        SIM_Poke(target, 1, 0, bytes.data(), bytes.size());
        return bytes;
    }
};

#endif
