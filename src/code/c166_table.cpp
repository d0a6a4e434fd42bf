// Most of the opcode map is regular, so three tables make it: operations in rows, forms in columns,
// and single opcodes, which stand last and win.
#include "code/c166_table.h"

#include <array>

namespace {

struct Single {
    uint8_t opcode;
    CODE_Row row;
};

// The eight operations that begin a row of sixteen opcodes each, and what they combine.
struct Operation {
    uint8_t opcode;
    const char *word, *byte;
    bool isStored; // there are forms that leave the result in memory
};
const Operation OPERATIONS[] = {
    {0x00, "add", "addb", true},   {0x10, "addc", "addcb", true}, {0x20, "sub", "subb", true},
    {0x30, "subc", "subcb", true}, {0x40, "cmp", "cmpb", false},  {0x50, "xor", "xorb", true},
    {0x60, "and", "andb", true},   {0x70, "or", "orb", true},
};
// The columns that all of them share: which operands, and how many bytes they take.
struct Combination {
    uint8_t column;
    uint8_t length;
    CODE_Place places[2];
    bool isStored;
};
const Combination COMBINATIONS[] = {
    {0, 2, {RWN, RWM}, false},    {1, 2, {RBN, RBM}, false},    {2, 4, {REG, MEM}, false},
    {3, 4, {REGB, MEMB}, false},  {4, 4, {MEM, REG}, true},     {5, 4, {MEMB, REGB}, true},
    {6, 4, {REG, DATA16}, false}, {7, 4, {REGB, DATA8}, false}, {8, 2, {RWN, DATA3}, false},
    {9, 2, {RBN, DATA3}, false},
};

// clang-format off
const Single SINGLES[] = {
    // The high byte's instruction has mask and data the other way round.
    {0x0A, {"bfldl", 4, {BITOFF, FIELD_2, FIELD_3}}},
    {0x1A, {"bfldh", 4, {BITOFF, FIELD_3, FIELD_2}}},
    // What is written or compared stands behind its source in these.
    {0x2A, {"bcmp", 4, {BIT_2_LOW, BIT_1_HIGH}}},
    {0x3A, {"bmovn", 4, {BIT_2_LOW, BIT_1_HIGH}}},
    {0x4A, {"bmov", 4, {BIT_2_LOW, BIT_1_HIGH}}},
    {0x5A, {"bor", 4, {BIT_2_LOW, BIT_1_HIGH}}},
    {0x6A, {"band", 4, {BIT_2_LOW, BIT_1_HIGH}}},
    {0x7A, {"bxor", 4, {BIT_2_LOW, BIT_1_HIGH}}},

    {0x0B, {"mul", 2, {RWN, RWM}}},
    {0x1B, {"mulu", 2, {RWN, RWM}}},
    {0x2B, {"prior", 2, {RWN, RWM}}},
    {0x4B, {"div", 2, {RWN}, REST_TWINS}},
    {0x5B, {"divu", 2, {RWN}, REST_TWINS}},
    {0x6B, {"divl", 2, {RWN}, REST_TWINS}},
    {0x7B, {"divlu", 2, {RWN}, REST_TWINS}},

    {0x0C, {"rol", 2, {RWN, RWM}}},
    {0x1C, {"rol", 2, {RWM, DATA4}}},
    {0x2C, {"ror", 2, {RWN, RWM}}},
    {0x3C, {"ror", 2, {RWM, DATA4}}},
    {0x4C, {"shl", 2, {RWN, RWM}}},
    {0x5C, {"shl", 2, {RWM, DATA4}}},
    {0x6C, {"shr", 2, {RWN, RWM}}},
    {0x7C, {"shr", 2, {RWM, DATA4}}},
    {0xAC, {"ashr", 2, {RWN, RWM}}},
    {0xBC, {"ashr", 2, {RWM, DATA4}}},

    {0x80, {"cmpi1", 2, {RWM, DATA4}}},
    {0x90, {"cmpi2", 2, {RWM, DATA4}}},
    {0xA0, {"cmpd1", 2, {RWM, DATA4}}},
    {0xB0, {"cmpd2", 2, {RWM, DATA4}}},
    {0x82, {"cmpi1", 4, {REG, MEM}, REST_GENERAL}},
    {0x92, {"cmpi2", 4, {REG, MEM}, REST_GENERAL}},
    {0xA2, {"cmpd1", 4, {REG, MEM}, REST_GENERAL}},
    {0xB2, {"cmpd2", 4, {REG, MEM}, REST_GENERAL}},
    {0x86, {"cmpi1", 4, {REG, DATA16}, REST_GENERAL}},
    {0x96, {"cmpi2", 4, {REG, DATA16}, REST_GENERAL}},
    {0xA6, {"cmpd1", 4, {REG, DATA16}, REST_GENERAL}},
    {0xB6, {"cmpd2", 4, {REG, DATA16}, REST_GENERAL}},

    {0x81, {"neg", 2, {RWN}, REST_M_0}},
    {0x91, {"cpl", 2, {RWN}, REST_M_0}},
    {0xA1, {"negb", 2, {RBN}, REST_M_0}},
    {0xB1, {"cplb", 2, {RBN}, REST_M_0}},

    {0x84, {"mov", 4, {IND_M, MEM}, REST_N_0}},
    {0x94, {"mov", 4, {MEM, IND_M}, REST_N_0}},
    {0xA4, {"movb", 4, {IND_M, MEMB}, REST_N_0}},
    {0xB4, {"movb", 4, {MEMB, IND_M}, REST_N_0}},
    {0x88, {"mov", 2, {DEC_M, RWN}}},
    {0x98, {"mov", 2, {RWN, INC_M}}},
    {0xA8, {"mov", 2, {RWN, IND_M}}},
    {0xB8, {"mov", 2, {IND_M, RWN}}},
    {0xC8, {"mov", 2, {IND_N, IND_M}}},
    {0xD8, {"mov", 2, {INC_N, IND_M}}},
    {0xE8, {"mov", 2, {IND_N, INC_M}}},
    {0x89, {"movb", 2, {DEC_M, RBN}}},
    {0x99, {"movb", 2, {RBN, INC_M}}},
    {0xA9, {"movb", 2, {RBN, IND_M}}},
    {0xB9, {"movb", 2, {IND_M, RBN}}},
    {0xC9, {"movb", 2, {IND_N, IND_M}}},
    {0xD9, {"movb", 2, {INC_N, IND_M}}},
    {0xE9, {"movb", 2, {IND_N, INC_M}}},
    {0xC4, {"mov", 4, {IDX_M, RWN}}},
    {0xD4, {"mov", 4, {RWN, IDX_M}}},
    {0xE4, {"movb", 4, {IDX_M, RBN}}},
    {0xF4, {"movb", 4, {RBN, IDX_M}}},
    {0xE0, {"mov", 2, {RWM, DATA4}}},
    {0xE1, {"movb", 2, {RBM, DATA4}}},
    {0xE6, {"mov", 4, {REG, DATA16}}},
    {0xE7, {"movb", 4, {REGB, DATA8}}},
    {0xF0, {"mov", 2, {RWN, RWM}}},
    {0xF1, {"movb", 2, {RBN, RBM}}},
    {0xF2, {"mov", 4, {REG, MEM}}},
    {0xF3, {"movb", 4, {REGB, MEMB}}},
    {0xF6, {"mov", 4, {MEM, REG}}},
    {0xF7, {"movb", 4, {MEMB, REGB}}},
    {0xC0, {"movbz", 2, {RWM, RBN}}},
    {0xD0, {"movbs", 2, {RWM, RBN}}},
    {0xC2, {"movbz", 4, {REG, MEMB}}},
    {0xD2, {"movbs", 4, {REG, MEMB}}},
    {0xC5, {"movbz", 4, {MEM, REGB}}},
    {0xD5, {"movbs", 4, {MEM, REGB}}},

    {0xEC, {"push", 2, {REG}}},
    {0xFC, {"pop", 2, {REG}}},
    {0xC6, {"scxt", 4, {REG, DATA16}}},
    {0xD6, {"scxt", 4, {REG, MEM}}},

    {0x8A, {"jb", 4, {BIT_1_HIGH, REL_2}, REST_BYTE3_M_0, 0, CODE_FLOW_JUMP}},
    {0x9A, {"jnb", 4, {BIT_1_HIGH, REL_2}, REST_BYTE3_M_0, 0, CODE_FLOW_JUMP}},
    {0xAA, {"jbc", 4, {BIT_1_HIGH, REL_2}, REST_BYTE3_M_0, 0, CODE_FLOW_JUMP}},
    {0xBA, {"jnbs", 4, {BIT_1_HIGH, REL_2}, REST_BYTE3_M_0, 0, CODE_FLOW_JUMP}},
    {0xEA, {"jmpa", 4, {CC_N, CADDR}, REST_M_0, 0, CODE_FLOW_JUMP}},
    {0xFA, {"jmps", 4, {FAR_ADDR}, REST_FREE, 0, CODE_FLOW_JUMP}},
    {0x9C, {"jmpi", 2, {CC_N, IND_M}, REST_FREE, 0, CODE_FLOW_JUMP}},
    {0xCA, {"calla", 4, {CC_N, CADDR}, REST_M_0, 0, CODE_FLOW_CALL}},
    {0xDA, {"calls", 4, {FAR_ADDR}, REST_FREE, 0, CODE_FLOW_CALL}},
    {0xAB, {"calli", 2, {CC_N, IND_M}, REST_FREE, 0, CODE_FLOW_CALL}},
    {0xBB, {"callr", 2, {REL_1}, REST_FREE, 0, CODE_FLOW_CALL}},
    {0xE2, {"pcall", 4, {REG, CADDR}, REST_FREE, 0, CODE_FLOW_CALL}},
    {0x9B, {"trap", 2, {TRAP7}, REST_BIT0_0, 0, CODE_FLOW_CALL}},
    {0xCB, {"ret", 2, {}, REST_CONSTANT1, 0x00, CODE_FLOW_RETURN}},
    {0xDB, {"rets", 2, {}, REST_CONSTANT1, 0x00, CODE_FLOW_RETURN}},
    {0xFB, {"reti", 2, {}, REST_CONSTANT1, 0x88, CODE_FLOW_RETURN}},
    {0xEB, {"retp", 2, {REG}, REST_FREE, 0, CODE_FLOW_RETURN}},

    {0xCC, {"nop", 2, {}, REST_CONSTANT1}},
    // Named by their second byte; these are the places of all that share the first one.
    {0xD1, {"extr", 2, {RANGE2}, REST_EXTEND}},
    {0xD7, {"exts", 4, {SEG8, RANGE2}, REST_EXTEND}},
    {0xDC, {"exts", 2, {RWM, RANGE2}, REST_EXTEND}},
    {0x87, {"idle", 4, {}, REST_PROTECTED}},
    {0x97, {"pwrdn", 4, {}, REST_PROTECTED}},
    {0xA5, {"diswdt", 4, {}, REST_PROTECTED}},
    {0xA7, {"srvwdt", 4, {}, REST_PROTECTED}},
    {0xB5, {"einit", 4, {}, REST_PROTECTED}},
    {0xB7, {"srst", 4, {}, REST_PROTECTED}},
};
// clang-format on

constexpr int OPCODES = 256;
constexpr int ROW_OF_OPCODES = 16;
constexpr uint8_t COLUMN_JMPR = 0xD, COLUMN_BCLR = 0xE, COLUMN_BSET = 0xF;

std::array<CODE_Row, OPCODES> BuildTable()
{
    std::array<CODE_Row, OPCODES> table;
    for (const Operation &operation : OPERATIONS)
        for (const Combination &form : COMBINATIONS) {
            if (form.isStored && !operation.isStored)
                continue;
            // Word and byte forms take turns.
            const bool isByte = form.column % 2 != 0;
            table[operation.opcode + form.column] = {isByte ? operation.byte : operation.word,
                                                     form.length,
                                                     {form.places[0], form.places[1]}};
        }
    // Three columns run through all sixteen rows, which give the condition or the bit.
    for (int row = 0; row < ROW_OF_OPCODES; ++row) {
        CODE_Row *column = &table[static_cast<size_t>(row * ROW_OF_OPCODES)];
        column[COLUMN_JMPR] = {"jmpr", 2, {CC_0, REL_1}, REST_FREE, 0, CODE_FLOW_JUMP};
        column[COLUMN_BCLR] = {"bclr", 2, {BIT_1}};
        column[COLUMN_BSET] = {"bset", 2, {BIT_1}};
    }
    for (const Single &single : SINGLES)
        table[single.opcode] = single.row;
    return table;
}

} // namespace

const CODE_Row &CODE_GetRow(uint8_t firstByte)
{
    // Built at the first use: most runs of the program never list code.
    static const std::array<CODE_Row, OPCODES> table = BuildTable();
    return table[firstByte];
}
