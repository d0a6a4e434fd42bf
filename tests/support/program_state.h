// The fixtures under all others: a program as it is before its start, whatever the test before
// has left; and one with a simulated target at its port.
#ifndef TESTS_SUPPORT_PROGRAM_STATE_H
#define TESTS_SUPPORT_PROGRAM_STATE_H

#include <gtest/gtest.h>
#include <vector>

#include "runtime/headless/headless.h"
#include "settings/settings.h"
#include "support/scratch.h"
#include "support/sim_fixture.h"
#include "support/text_checks.h"
#include "support/ui_reading.h"

constexpr uint32_t PATIENT_MS = 5000; // never reached by a target that answers
constexpr uint32_t HASTY_MS = 30;     // for targets that do not

// Settings, link, symbols, watch list, console and windows as a program finds them that has
// just been started; no panel is loaded.
void ResetProgram();

struct ProgramTest : testing::Test {
    ProgramTest()
    {
        ResetProgram();
    }
    ~ProgramTest() override
    {
        ResetProgram();
    }
};

struct TargetTest : ProgramTest {
    const int simPort; // leads to the target
    SIM_Target *target = nullptr;
    SIM_Options options;

    explicit TargetTest(int number) : simPort(number)
    {
        options.demo = false;
    }
    ~TargetTest() override
    {
        ResetProgram(); // closes the port before its device goes
        unplug();
    }
    void plug()
    {
        target = SIMT_Start(simPort, options);
        ASSERT_NE(target, nullptr);
    }
    void unplug()
    {
        if (target != nullptr)
            SIMT_Stop(simPort, target);
        target = nullptr;
    }
    uint64_t requests() const
    {
        return SIM_GetCounters(target).requests;
    }
    void poke(uint32_t address, const std::vector<uint8_t> &bytes, int station = 1)
    {
        SIM_Poke(target, station, address, bytes.data(), bytes.size());
    }
    void poke(uint32_t address, uint64_t value, int size, int station = 1)
    {
        SIM_Poke(target, station, address, &value, static_cast<size_t>(size));
    }
    std::vector<uint8_t> peek(uint32_t address, size_t count, int station = 1)
    {
        std::vector<uint8_t> bytes(count);
        SIM_Peek(target, station, address, bytes.data(), count);
        return bytes;
    }
};

#endif
