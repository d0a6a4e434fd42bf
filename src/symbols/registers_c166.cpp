// Special function registers of the C166 family by byte address.
#include "symbols/registers.h"

#define REGISTER_TABLE(rows)                                                                       \
    {                                                                                              \
        rows, static_cast<int>(sizeof rows / sizeof rows[0])                                       \
    }

static const RegisterRow commonRows[] = {
    {"DPP0", 0xFE00}, {"DPP1", 0xFE02},  {"DPP2", 0xFE04},  {"DPP3", 0xFE06}, {"CSP", 0xFE08},
    {"MDH", 0xFE0C},  {"MDL", 0xFE0E},   {"CP", 0xFE10},    {"SP", 0xFE12},   {"STKOV", 0xFE14},
    {"STKUN", 0xFE16},
};
static const RegisterRow c166Rows[] = {{"MDC", 0xFF0E}};
static const RegisterRow c167Rows[] = {{"MDC", 0xFF0E}};

const RegisterTable C166_COMMON_REGISTERS = REGISTER_TABLE(commonRows);
const RegisterTable C166_ONLY_REGISTERS = REGISTER_TABLE(c166Rows);
const RegisterTable C167_ONLY_REGISTERS = REGISTER_TABLE(c167Rows);
