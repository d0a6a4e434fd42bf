// The instruction set of C166 and C167 controllers: bytes to instructions, with the scopes of
// the extension instructions, and instructions to text. Knows neither target nor names; pure
// functions on the caller's data, for everybody who shows code.
#ifndef CODE_C166_H
#define CODE_C166_H

#include <cstddef>
#include <cstdint>
#include <string>

constexpr uint32_t CODE_NO_ADDRESS = 0xFFFFFFFFu;
constexpr size_t CODE_LENGTH_MAX = 4; // bytes of the longest instruction
constexpr int CODE_OPERANDS_MAX = 3;

enum CODE_OperandKind : uint8_t {
    CODE_NOTHING,
    CODE_WORD_REGISTER,  // value: 0 to 15
    CODE_BYTE_REGISTER,  // value: 0 rl0, 1 rh0, ... 15 rh7
    CODE_INDIRECT,       // [rN]
    CODE_INDIRECT_INC,   // [rN+]
    CODE_INDIRECT_DEC,   // [-rN]
    CODE_INDEXED,        // [rN+#1234h]; value: N, extra: the offset
    CODE_SPECIAL,        // address: a special function register, or a word of bit memory
    CODE_WORD_BIT,       // the same with bit `extra`
    CODE_REGISTER_BIT,   // bit `extra` of register `value`
    CODE_MEMORY,         // value: the 16 bits of the instruction; address: what is known of it
    CODE_IMMEDIATE,      // value, with `extra` hexadecimal digits; 0 = decimal
    CODE_CONDITION,      // value: 0 to 15
    CODE_CODE_ADDRESS,   // address: a target in the segment of the instruction, or beside it
    CODE_SEGMENT_OFFSET, // two of the manual's operands: segment, and offset in it
};

struct CODE_Operand {
    CODE_OperandKind kind = CODE_NOTHING;
    bool isByte = false; // of a special function register or memory: one byte of it
    uint16_t value = 0;
    uint16_t extra = 0;
    uint32_t address = CODE_NO_ADDRESS;
};

enum CODE_Flow : uint8_t {
    CODE_FLOW_ON,     // the next instruction follows
    CODE_FLOW_JUMP,   // perhaps, when there is a condition
    CODE_FLOW_CALL,   // the same
    CODE_FLOW_RETURN, // to where the stack says
};

struct CODE_Instruction {
    uint32_t address = 0;
    uint8_t length = 2; // bytes: 2 or 4; 1 or 3 only where the bytes ended before it did
    uint8_t bytes[CODE_LENGTH_MAX] = {};
    bool isValid = false;      // false: no instruction, written "??"
    const char *mnemonic = ""; // lower case
    CODE_Operand operands[CODE_OPERANDS_MAX];
    CODE_Flow flow = CODE_FLOW_ON;
    uint32_t target = CODE_NO_ADDRESS; // of a jump or call; CODE_NO_ADDRESS when computed
};

// What an extension instruction has changed for those behind it. A listing begins with a
// fresh one and hands it from instruction to instruction.
struct CODE_Scope {
    int left = 0;                     // instructions it still holds for
    bool isExtendedRegisters = false; // EXTR: short addresses mean the extended area
    enum : uint8_t { NONE, PAGE, SEGMENT, UNKNOWN } memory = NONE;
    uint16_t number = 0; // of the page or segment
};

// The data page pointers, as far as the caller knows them.
struct CODE_Pages {
    bool isKnown = false;
    uint16_t pages[4] = {};
};

// Decodes the instruction at `bytes` (at least one), of which `count` may be looked at. Bytes
// that end within an instruction are no instruction. `scope` is brought up to date.
void CODE_Decode(const uint8_t *bytes, size_t count, uint32_t address, const CODE_Pages &pages,
                 CODE_Scope *scope, CODE_Instruction *instruction);

// Name of the special function register at an address as it is to be written; "" for none.
typedef std::string (*CODE_Namer)(uint32_t address);
// "mov r1, [r2+#0010h]"; "??" for what is no instruction. Without a namer registers are
// written as addresses.
std::string CODE_ToText(const CODE_Instruction &instruction, CODE_Namer namer);

#endif
