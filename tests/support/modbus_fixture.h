// A simulated Modbus slave on port 62 and the master's settings put back after each test.
#ifndef MODBUS_FIXTURE_H
#define MODBUS_FIXTURE_H

#include "comm/failures.h"
#include "comm/modbus.h"
#include "comm/modbus_step.h"
#include "comm/trace.h"
#include "comm/ucm.h"
#include "comm/ucm_modbus.h"
#include "sim_fixture.h"

#include <gtest/gtest.h>

#include <vector>

constexpr int MODBUS_PORT = 62, MODBUS_BAUD = 115200;

struct ModbusTest : testing::Test {
    SIM_Target *target = nullptr;
    SIM_Options options;

    ModbusTest()
    {
        options.demo = false;
        options.modbus = true;
        UCM_Init();
        MBM_nTimeoutMs = 5000; // never reached by a slave that answers
    }
    ~ModbusTest() override
    {
        UCM_Close();
        UCM_Init();
        MBM_nTimeoutMs = 400;
        MBM_isEcho = 0;
        TRC_SetSink(nullptr, nullptr);
        TRC_Enable(0);
        unplug();
    }
    void plug()
    {
        target = SIMT_Start(MODBUS_PORT, options);
        ASSERT_NE(target, nullptr);
        ASSERT_EQ(UCM_Open(2, MODBUS_PORT, MODBUS_BAUD), 0) << UCM_LastErrorText();
    }
    void unplug()
    {
        if (target != nullptr)
            SIMT_Stop(MODBUS_PORT, target);
        target = nullptr;
    }
    uint64_t requests() const
    {
        return SIM_GetCounters(target).requests;
    }
};

#endif
