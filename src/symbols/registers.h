// Register names of the supported processors: the tables and their loading into
// aVarNode166. One data file a family.
#ifndef SYMBOLS_REGISTERS_H
#define SYMBOLS_REGISTERS_H

#include <cstdint>

struct RegisterRow {
    const char *name;
    uint32_t addr; // byte address (C166) or 16-bit word address (TMS320)
};

struct RegisterTable {
    const RegisterRow *rows;
    int count;
};

template <int N> constexpr RegisterTable MakeRegisterTable(const RegisterRow (&rows)[N])
{
    return {rows, N};
}

// A group of equal peripherals: "<prefix><register>" at base + offset for each instance.
struct RegisterBlock {
    const char *prefix;
    uint32_t base;
    RegisterTable registers;
};

struct RegisterBlocks {
    const RegisterBlock *blocks;
    int count;
};

extern const RegisterTable C166_COMMON_REGISTERS; // core, ports and peripherals both have
extern const RegisterTable C166_ONLY_REGISTERS;
extern const RegisterTable C167_ONLY_REGISTERS;
extern const RegisterBlocks F28_COMMON_REGISTERS; // of both families below
extern const RegisterBlocks F283XX_REGISTERS;
extern const RegisterBlocks F2803X_REGISTERS;

// Each replaces aVarNode166 with the registers of one processor, sorted by name.
void initRg166();
void initRg167();
void initRg320F283xx();
void initRg320F2803x();

#endif
