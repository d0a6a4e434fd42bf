// Instructions as the manuals write them, in lower case.
#include "code/c166.h"

namespace {

const char *const CONDITIONS[] = {"cc_uc",  "cc_net", "cc_z",   "cc_nz",  "cc_v",   "cc_nv",
                                  "cc_n",   "cc_nn",  "cc_ult", "cc_uge", "cc_sgt", "cc_sle",
                                  "cc_slt", "cc_sge", "cc_ugt", "cc_ule"};
constexpr int SEGMENT_SHIFT = 16;
constexpr int OFFSET_DIGITS = 4, SEGMENT_DIGITS = 2, ADDRESS_DIGITS = 6;

// A number that begins with a letter gets a nought in front, as assemblers want it.
void AppendHex(uint32_t number, int digits, std::string *text)
{
    static const char DIGITS[] = "0123456789abcdef";
    const uint32_t first = number >> 4 * (digits - 1) & 0xF;
    if (first > 9)
        *text += '0';
    for (int i = digits - 1; i >= 0; --i)
        *text += DIGITS[number >> 4 * i & 0xF];
    *text += 'h';
}

void AppendRegister(uint16_t number, std::string *text)
{
    *text += 'r';
    *text += std::to_string(number);
}

void AppendSpecial(const CODE_Operand &operand, CODE_Namer namer, std::string *text)
{
    const std::string name = namer != nullptr ? namer(operand.address) : std::string();
    if (name.empty())
        AppendHex(operand.address, OFFSET_DIGITS, text);
    else
        *text += name;
}

void AppendOperand(const CODE_Operand &operand, CODE_Namer namer, std::string *text)
{
    switch (operand.kind) {
    case CODE_NOTHING:
        break;
    case CODE_WORD_REGISTER:
        AppendRegister(operand.value, text);
        break;
    case CODE_BYTE_REGISTER:
        *text += (operand.value % 2 == 0 ? "rl" : "rh") + std::to_string(operand.value / 2);
        break;
    case CODE_INDIRECT:
    case CODE_INDIRECT_INC:
    case CODE_INDIRECT_DEC:
    case CODE_INDEXED:
        *text += operand.kind == CODE_INDIRECT_DEC ? "[-" : "[";
        AppendRegister(operand.value, text);
        if (operand.kind == CODE_INDEXED) {
            *text += "+#";
            AppendHex(operand.extra, OFFSET_DIGITS, text);
        }
        *text += operand.kind == CODE_INDIRECT_INC ? "+]" : "]";
        break;
    case CODE_SPECIAL:
        AppendSpecial(operand, namer, text);
        break;
    case CODE_WORD_BIT:
        AppendSpecial(operand, namer, text);
        *text += '.' + std::to_string(operand.extra);
        break;
    case CODE_REGISTER_BIT:
        AppendRegister(operand.value, text);
        *text += '.' + std::to_string(operand.extra);
        break;
    case CODE_MEMORY:
        AppendHex(operand.value, OFFSET_DIGITS, text);
        break;
    case CODE_IMMEDIATE:
        *text += '#';
        if (operand.extra == 0)
            *text += std::to_string(operand.value);
        else
            AppendHex(operand.value, operand.extra, text);
        break;
    case CODE_CONDITION:
        *text += CONDITIONS[operand.value & 0xF];
        break;
    case CODE_CODE_ADDRESS:
        AppendHex(operand.address, ADDRESS_DIGITS, text);
        break;
    case CODE_SEGMENT_OFFSET:
        AppendHex(operand.address >> SEGMENT_SHIFT, SEGMENT_DIGITS, text);
        *text += ", ";
        AppendHex(operand.address & 0xFFFF, OFFSET_DIGITS, text);
        break;
    }
}

} // namespace

std::string CODE_ToText(const CODE_Instruction &instruction, CODE_Namer namer)
{
    if (!instruction.isValid)
        return "??";
    std::string text = instruction.mnemonic;
    const char *separator = " ";
    for (const CODE_Operand &operand : instruction.operands) {
        if (operand.kind == CODE_NOTHING)
            break;
        text += separator;
        AppendOperand(operand, namer, &text);
        separator = ", ";
    }
    return text;
}
