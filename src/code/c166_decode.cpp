// One row of the opcode table applied to the bytes behind it.
#include "code/c166.h"
#include "code/c166_table.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint32_t SEGMENT_MASK = 0xFF0000, OFFSET_MASK = 0xFFFF;
constexpr int SEGMENT_SHIFT = 16, PAGE_SHIFT = 14;
constexpr uint32_t PAGE_OFFSET_MASK = 0x3FFF;
constexpr int PAGE_LAST = 1023, SEGMENT_LAST = 255;
// Short addresses: those from 0xF0 on are the general registers.
constexpr uint8_t SHORT_GENERAL = 0xF0, BITOFF_SPECIAL = 0x80;
// A short address counts words from one of these; "extr" exchanges the bases for the extended ones.
constexpr uint32_t SPECIAL_BASE = 0xFE00, EXTENDED_BASE = 0xF000, BIT_MEMORY_BASE = 0xFD00;
constexpr uint32_t BIT_SPECIAL_BASE = 0xFF00, BIT_EXTENDED_BASE = 0xF100;
constexpr uint32_t BYTES_PER_TRAP = 4;

// Bits 7 and 6 of the second byte of an extension instruction.
const char *const EXTEND_MEMORY[] = {"exts", "extp", "extsr", "extpr"};
const char *const EXTEND_COUNT[] = {"atomic", nullptr, "extr", nullptr};
constexpr uint8_t OPCODE_COUNT = 0xD1, OPCODE_IMMEDIATE = 0xD7;
constexpr int EXTEND_PAGE = 1, EXTEND_REGISTERS = 2; // bits of that number

uint8_t High(uint8_t byte)
{
    return static_cast<uint8_t>(byte >> 4);
}

uint8_t Low(uint8_t byte)
{
    return byte & 0xF;
}

uint16_t Word23(const uint8_t *bytes)
{
    return static_cast<uint16_t>(bytes[2] | bytes[3] << 8);
}

CODE_Operand MakeRegister(CODE_OperandKind kind, uint8_t number, uint16_t extra = 0)
{
    CODE_Operand operand;
    operand.kind = kind;
    operand.value = number;
    operand.extra = extra;
    return operand;
}

CODE_Operand MakeNumber(unsigned value, uint16_t digits)
{
    CODE_Operand operand;
    operand.kind = CODE_IMMEDIATE;
    operand.value = static_cast<uint16_t>(value);
    operand.extra = digits;
    return operand;
}

// The general registers are reached whichever base holds: they are not touched by "extr".
CODE_Operand MakeShort(uint8_t number, bool isByte, bool isExtended)
{
    if (number >= SHORT_GENERAL)
        return MakeRegister(isByte ? CODE_BYTE_REGISTER : CODE_WORD_REGISTER, Low(number));
    CODE_Operand operand;
    operand.kind = CODE_SPECIAL;
    operand.isByte = isByte;
    operand.address = (isExtended ? EXTENDED_BASE : SPECIAL_BASE) + 2u * number;
    return operand;
}

// `bit` is -1 for the whole word.
CODE_Operand MakeBitPlace(uint8_t number, int bit, bool isExtended)
{
    if (number >= SHORT_GENERAL)
        return bit < 0 ? MakeRegister(CODE_WORD_REGISTER, Low(number))
                       : MakeRegister(CODE_REGISTER_BIT, Low(number), static_cast<uint16_t>(bit));
    CODE_Operand operand;
    operand.kind = bit < 0 ? CODE_SPECIAL : CODE_WORD_BIT;
    operand.extra = static_cast<uint16_t>(std::max(bit, 0));
    if (number < BITOFF_SPECIAL)
        operand.address = BIT_MEMORY_BASE + 2u * number;
    else
        operand.address =
            (isExtended ? BIT_EXTENDED_BASE : BIT_SPECIAL_BASE) + 2u * (number - BITOFF_SPECIAL);
    return operand;
}

// Where 16 bits of memory address lead: through the scope, else through the page pointers.
CODE_Operand MakeMemory(uint16_t offset, bool isByte, const CODE_Scope &scope,
                        const CODE_Pages &pages)
{
    CODE_Operand operand;
    operand.kind = CODE_MEMORY;
    operand.isByte = isByte;
    operand.value = offset;
    const uint32_t number = scope.number;
    // A page of the scope replaces the pointer and leaves 14 bits of offset, a segment all 16.
    if (scope.memory == CODE_Scope::PAGE)
        operand.address = number << PAGE_SHIFT | (offset & PAGE_OFFSET_MASK);
    else if (scope.memory == CODE_Scope::SEGMENT)
        operand.address = number << SEGMENT_SHIFT | offset;
    else if (scope.memory == CODE_Scope::NONE && pages.isKnown) {
        const uint32_t page = pages.pages[offset >> PAGE_SHIFT] & unsigned{PAGE_LAST};
        operand.address = page << PAGE_SHIFT | (offset & PAGE_OFFSET_MASK);
    }
    return operand;
}

CODE_Operand MakeTarget(CODE_OperandKind kind, uint32_t address)
{
    CODE_Operand operand;
    operand.kind = kind;
    operand.address = address;
    return operand;
}

// Targets never leave the segment: the instruction pointer has 16 bits.
CODE_Operand MakeRelative(const CODE_Instruction &instruction, uint8_t distance)
{
    const int words = static_cast<int8_t>(distance);
    const uint32_t next = instruction.address + instruction.length;
    const uint32_t offset = (next + static_cast<uint32_t>(2 * words)) & OFFSET_MASK;
    return MakeTarget(CODE_CODE_ADDRESS, (instruction.address & SEGMENT_MASK) | offset);
}

// Three bits of data, or one of the first four registers as a pointer.
CODE_Operand MakeData3(uint8_t low)
{
    if (low < 8)
        return MakeNumber(low, 0);
    return MakeRegister(low < 12 ? CODE_INDIRECT : CODE_INDIRECT_INC, low & 3);
}

CODE_Operand MakeOperand(CODE_Place place, const CODE_Instruction &instruction,
                         const CODE_Pages &pages, const CODE_Scope &scope)
{
    const uint8_t *b = instruction.bytes;
    const bool isExtended = scope.isExtendedRegisters;
    // clang-format off
    switch (place) {
    case AT_NONE: return CODE_Operand();
    case RWN: return MakeRegister(CODE_WORD_REGISTER, High(b[1]));
    case RWM: return MakeRegister(CODE_WORD_REGISTER, Low(b[1]));
    case RBN: return MakeRegister(CODE_BYTE_REGISTER, High(b[1]));
    case RBM: return MakeRegister(CODE_BYTE_REGISTER, Low(b[1]));
    case IND_N: return MakeRegister(CODE_INDIRECT, High(b[1]));
    case IND_M: return MakeRegister(CODE_INDIRECT, Low(b[1]));
    case INC_N: return MakeRegister(CODE_INDIRECT_INC, High(b[1]));
    case INC_M: return MakeRegister(CODE_INDIRECT_INC, Low(b[1]));
    case DEC_M: return MakeRegister(CODE_INDIRECT_DEC, Low(b[1]));
    case IDX_M: return MakeRegister(CODE_INDEXED, Low(b[1]), Word23(b));
    case REG: return MakeShort(b[1], false, isExtended);
    case REGB: return MakeShort(b[1], true, isExtended);
    case BITOFF: return MakeBitPlace(b[1], -1, isExtended);
    case BIT_1: return MakeBitPlace(b[1], High(b[0]), isExtended);
    case BIT_1_HIGH: return MakeBitPlace(b[1], High(b[3]), isExtended);
    case BIT_2_LOW: return MakeBitPlace(b[2], Low(b[3]), isExtended);
    case MEM: return MakeMemory(Word23(b), false, scope, pages);
    case MEMB: return MakeMemory(Word23(b), true, scope, pages);
    case DATA3: return MakeData3(Low(b[1]));
    case DATA4: return MakeNumber(High(b[1]), 0);
    case RANGE2: return MakeNumber((b[1] >> 4 & 3u) + 1, 0);
    case DATA8: return MakeNumber(b[2], 2);
    case DATA16: return MakeNumber(Word23(b), 4);
    case FIELD_2: return MakeNumber(b[2], 2);
    case FIELD_3: return MakeNumber(b[3], 2);
    case SEG8: return MakeNumber(Word23(b), 2);
    case TRAP7: return MakeNumber(b[1] >> 1, 2);
    case CC_0: return MakeRegister(CODE_CONDITION, High(b[0]));
    case CC_N: return MakeRegister(CODE_CONDITION, High(b[1]));
    case REL_1: return MakeRelative(instruction, b[1]);
    case REL_2: return MakeRelative(instruction, b[2]);
    case CADDR:
        return MakeTarget(CODE_CODE_ADDRESS, (instruction.address & SEGMENT_MASK) | Word23(b));
    case FAR_ADDR:
        return MakeTarget(CODE_SEGMENT_OFFSET, uint32_t{b[1]} << SEGMENT_SHIFT | Word23(b));
    }
    // clang-format on
    return CODE_Operand();
}

// Bits that an instruction does not use must be as the assembler leaves them: data between the
// functions is then seldom taken for code.
bool IsRestRight(const CODE_Row &row, const uint8_t *b)
{
    // clang-format off
    switch (row.rest) {
    case REST_FREE: return true;
    case REST_M_0: return Low(b[1]) == 0;
    case REST_N_0: return High(b[1]) == 0;
    case REST_GENERAL: return b[1] >= SHORT_GENERAL;
    case REST_TWINS: return High(b[1]) == Low(b[1]);
    case REST_BIT0_0: return (b[1] & 1) == 0;
    case REST_BYTE3_M_0: return Low(b[3]) == 0;
    case REST_CONSTANT1: return b[1] == row.constant;
    case REST_PROTECTED: return (b[1] ^ b[0]) == 0xFF && b[2] == b[0] && b[3] == b[0];
    case REST_EXTEND: break; // looked at with its number
    }
    // clang-format on
    const int which = b[1] >> 6;
    if (b[0] == OPCODE_COUNT)
        return EXTEND_COUNT[which] != nullptr && Low(b[1]) == 0;
    if (b[0] != OPCODE_IMMEDIATE)
        return true;
    const int last = (which & EXTEND_PAGE) != 0 ? PAGE_LAST : SEGMENT_LAST;
    return Low(b[1]) == 0 && Word23(b) <= last;
}

// The name of an extension instruction, and what it means for those behind it. One counter
// serves all of them: a second one within the first one's scope starts it anew.
void Extend(CODE_Instruction *instruction, CODE_Scope *scope)
{
    const uint8_t *b = instruction->bytes;
    const int which = b[1] >> 6;
    scope->left = (b[1] >> 4 & 3) + 1;
    if (b[0] == OPCODE_COUNT) {
        instruction->mnemonic = EXTEND_COUNT[which];
        scope->isExtendedRegisters |= which == EXTEND_REGISTERS;
        return;
    }
    instruction->mnemonic = EXTEND_MEMORY[which];
    scope->isExtendedRegisters |= (which & EXTEND_REGISTERS) != 0;
    const bool isPage = (which & EXTEND_PAGE) != 0;
    if (b[0] == OPCODE_IMMEDIATE) {
        scope->memory = isPage ? CODE_Scope::PAGE : CODE_Scope::SEGMENT;
        scope->number = Word23(b);
        if (isPage)
            instruction->operands[0].extra = 3;
    } else {
        scope->memory = CODE_Scope::UNKNOWN; // its number is in a register
    }
}

// A trap's number is a place in the vector table, which begins at 0.
void SetFlow(const CODE_Row &row, CODE_Instruction *instruction)
{
    instruction->flow = row.flow;
    for (const CODE_Operand &operand : instruction->operands)
        if (operand.kind == CODE_CODE_ADDRESS || operand.kind == CODE_SEGMENT_OFFSET)
            instruction->target = operand.address;
    if (row.places[0] == TRAP7)
        instruction->target = BYTES_PER_TRAP * instruction->operands[0].value;
}

// With its last instruction a scope is gone, whatever it held.
void PassScope(CODE_Scope *scope)
{
    if (scope->left > 0 && --scope->left == 0)
        *scope = CODE_Scope();
}

} // namespace

void CODE_Decode(const uint8_t *bytes, size_t count, uint32_t address, const CODE_Pages &pages,
                 CODE_Scope *scope, CODE_Instruction *instruction)
{
    *instruction = CODE_Instruction();
    instruction->address = address;
    const CODE_Row &row = CODE_GetRow(bytes[0]);
    // At the end of what was read an instruction may lack bytes: shown as they are, without a name.
    instruction->length = static_cast<uint8_t>(std::min<size_t>(row.length, count));
    std::memcpy(instruction->bytes, bytes, instruction->length);
    instruction->isValid = row.mnemonic != nullptr && instruction->length == row.length &&
                           IsRestRight(row, instruction->bytes);
    if (!instruction->isValid) {
        PassScope(scope);
        return;
    }
    instruction->mnemonic = row.mnemonic;
    for (int i = 0; i < CODE_OPERANDS_MAX; ++i)
        instruction->operands[i] = MakeOperand(row.places[i], *instruction, pages, *scope);
    SetFlow(row, instruction);
    if (row.rest == REST_EXTEND)
        Extend(instruction, scope);
    else
        PassScope(scope);
}
