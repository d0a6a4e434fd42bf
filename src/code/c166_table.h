// The opcode table of the C166 family: one row for each of the 256 first bytes. Only for the
// decoder.
#ifndef CODE_C166_TABLE_H
#define CODE_C166_TABLE_H

#include "code/c166.h"

// Where an operand stands. In the names N is the upper and M the lower half of the second
// byte; bytes are counted from 0.
// clang-format off
enum CODE_Place : uint8_t {
    AT_NONE,
    RWN, RWM, RBN, RBM,           // registers
    IND_N, IND_M, INC_M, DEC_M,   // [rN], [rM], [rM+], [-rM]
    INC_N,                        // [rN+]
    IDX_M,                        // [rM+#bytes 2, 3]
    REG, REGB,                    // short address in byte 1: register, word or byte
    BITOFF,                       // bit-addressable word in byte 1
    BIT_1,                        // bit of byte 1; its number in the upper half of byte 0
    BIT_1_HIGH,                   // bit of byte 1; its number in the upper half of byte 3
    BIT_2_LOW,                    // bit of byte 2; its number in the lower half of byte 3
    MEM, MEMB,                    // bytes 2, 3
    DATA3,                        // #0 to #7, or [r0] to [r3], or the same with "+"
    DATA4, RANGE2,                // upper half of byte 1; its bits 5 and 4, plus 1
    DATA8, DATA16,                // byte 2; bytes 2, 3
    FIELD_2, FIELD_3,             // mask or value of a bit field in byte 2, 3
    SEG8,                         // page or segment in bytes 2, 3
    TRAP7,                        // byte 1 without its lowest bit
    CC_0, CC_N,                   // condition in the upper half of byte 0, 1
    REL_1, REL_2,                 // signed words behind the instruction, in byte 1, 2
    CADDR,                        // bytes 2, 3, in the instruction's segment
    FAR_ADDR,                     // byte 1: segment; bytes 2, 3
};
// clang-format on

// What must stand in the bytes behind the first, else there is no such instruction.
enum CODE_Rest : uint8_t {
    REST_FREE,
    REST_M_0,       // lower half of byte 1 is 0
    REST_N_0,       // upper half of byte 1 is 0
    REST_GENERAL,   // byte 1 is the short address of a general register
    REST_TWINS,     // both halves of byte 1 are equal
    REST_BIT0_0,    // lowest bit of byte 1 is 0
    REST_BYTE3_M_0, // lower half of byte 3 is 0
    REST_CONSTANT1, // byte 1 is `constant`
    REST_PROTECTED, // byte 1 is the complement of byte 0, bytes 2 and 3 repeat byte 0
    REST_EXTEND,    // byte 1 selects among the extension instructions
};

struct CODE_Row {
    const char *mnemonic = nullptr; // null: no instruction begins with this byte
    // The family fetches whole words: what begins no instruction is passed over as one.
    uint8_t length = 2;
    CODE_Place places[CODE_OPERANDS_MAX] = {};
    CODE_Rest rest = REST_FREE;
    uint8_t constant = 0;
    CODE_Flow flow = CODE_FLOW_ON;
};

const CODE_Row &CODE_GetRow(uint8_t firstByte);

#endif
