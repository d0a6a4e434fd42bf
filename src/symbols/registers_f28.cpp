// Peripheral registers of the TMS320F283xx and F2803x by 16-bit word address.
#include "symbols/registers.h"

static const RegisterRow timerRows[] = {{"TIM", 0}, {"TIMH", 1},  {"PRD", 2}, {"PRDH", 3},
                                        {"TCR", 4}, {"TPR", 6}, {"TPRH", 7}};
#define TABLE_OF(rows)                                                                             \
    {                                                                                              \
        rows, static_cast<int>(sizeof rows / sizeof rows[0])                                       \
    }
static const RegisterBlock commonBlocks[] = {{"TIMER0", 0x0C00, TABLE_OF(timerRows)},
                                             {"TIMER1", 0x0C08, TABLE_OF(timerRows)},
                                             {"TIMER2", 0x0C10, TABLE_OF(timerRows)}};
const RegisterBlocks F283XX_REGISTERS = {commonBlocks, 3};
const RegisterBlocks F2803X_REGISTERS = {commonBlocks, 3};
