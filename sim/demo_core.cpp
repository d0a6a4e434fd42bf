// The core of the demo target as a debugger sees it: pointers, a register bank, a stack that
// has calls on it, a timer that runs, and a little program that fits the demo's variables.
#include "demo.h"

#include <cmath>

namespace {

constexpr uint32_t DPP = 0xFE00, CP = 0xFE10, SP = 0xFE12, STKOV = 0xFE14, STKUN = 0xFE16;
constexpr uint32_t PSW = 0xFF10, T3 = 0xFE42, T3CON = 0xFF42, T3IC = 0xFF62, S0RIC = 0xFF6E;
constexpr uint32_t BANK = 0xFC00, STACK_TOP = 0xFBF4, STACK_BOTTOM = 0xFC00;
constexpr uint32_t PROGRAM = 0x21000;
constexpr double TICKS_PER_S = 39062.5; // 20 MHz / 512

// Counts wCount, calls, waits for the serial channel, begins again.
const uint8_t program[] = {
    0xF2, 0xF4, 0x02, 0x80, // mov r4, wCount
    0x06, 0xF4, 0x01, 0x00, // add r4, #1
    0xF6, 0xF4, 0x02, 0x80, // mov wCount, r4
    0xBF, 0x88,             // bset IEN
    0xDA, 0x02, 0x20, 0x10, // calls the routine below
    0x9A, 0xB7, 0xF5, 0x70, // jnb S0RIR, the beginning
    0xA7, 0x58, 0xA7, 0xA7, // srvwdt
    0x0D, 0xF2,             // jmpr, the beginning
    0xCC, 0x00, 0xCC, 0x00, // nop
    0xD7, 0x40, 0x02, 0x00, // 21020: extp #2, #1
    0xF2, 0xF5, 0x00, 0x01, // mov r5, wGain
    0x0B, 0x45,             // mul r4, r5
    0xF2, 0xF6, 0x0E, 0xFE, // mov r6, MDL
    0x88, 0x60,             // mov [-r0], r6
    0x98, 0x60,             // mov r6, [r0+]
    0xDB, 0x00,             // rets
};

} // namespace

void SIM_InitDemoCore(SIM_Station *station)
{
    for (uint32_t i = 0; i < 4; i++)
        SIM_SetValue(station, DPP + 2 * i, 2, i); // as after a reset: pages in order
    SIM_SetValue(station, CP, 2, BANK);
    SIM_SetValue(station, SP, 2, STACK_TOP);
    SIM_SetValue(station, STKOV, 2, 0xFA00);
    SIM_SetValue(station, STKUN, 2, STACK_BOTTOM);
    SIM_SetValue(station, PSW, 2, 0x0808); // interrupts on, Z
    SIM_SetValue(station, T3CON, 2, 0x0046);
    SIM_SetValue(station, T3IC, 2, 0x0064);
    SIM_SetValue(station, S0RIC, 2, 0x0048);
    const uint16_t stack[] = {0x1012, 0x0002, 0x0808, 0x1012, 0x0002, 0x0000};
    for (uint32_t i = 0; i < sizeof stack / sizeof *stack; i++)
        SIM_SetValue(station, STACK_TOP + 2 * i, 2, stack[i]);
    for (uint32_t i = 0; i < 16; i++)
        SIM_SetValue(station, BANK + 2 * i, 2, i == 0 ? 0x9F00 : 0x0100 * i);
    SIM_WriteMemory(station, PROGRAM, program, sizeof program);
}

void SIM_UpdateDemoCore(SIM_Station *station, double seconds)
{
    const double ticks = std::fmod(seconds * TICKS_PER_S, 65536);
    SIM_SetValue(station, T3, 2, static_cast<uint64_t>(ticks));
    uint8_t count[2];
    SIM_ReadMemory(*station, 0x8002, count, sizeof count);
    SIM_SetValue(station, BANK + 2 * 4, 2, static_cast<uint64_t>(count[0] | count[1] << 8));
}
