// The Modbus master with a simulated slave on port 62.
#ifndef MODBUS_FIXTURE_H
#define MODBUS_FIXTURE_H

#include "comm/failures.h"
#include "comm/modbus.h"
#include "comm/modbus_step.h"
#include "comm/trace.h"
#include "comm/ucm.h"
#include "comm/ucm_modbus.h"
#include "support/program_state.h"

constexpr int MODBUS_PORT = 62, MODBUS_BAUD = 115200;

struct ModbusTest : TargetTest {
    ModbusTest() : TargetTest(MODBUS_PORT)
    {
        options.modbus = true;
        MBM_nTimeoutMs = PATIENT_MS;
    }
    void plug()
    {
        TargetTest::plug();
        ASSERT_EQ(UCM_Open(2, MODBUS_PORT, MODBUS_BAUD), 0) << UCM_LastErrorText();
    }
};

#endif
